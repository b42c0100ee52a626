// Registered instances of this family (placeholder until the family lands).
#include "core/StaticConverters.h"

void ZoAddBayerConverters(ZoStaticConverters&) {}
