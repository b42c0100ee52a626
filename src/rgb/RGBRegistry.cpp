// Registered instances of this family (placeholder until the family lands).
#include "core/StaticConverters.h"

void ZoInitRGBTables() {}

void ZoAddRGBConverters(ZoStaticConverters&) {}
