// Pointer forms of the registry look-ups, for code that must test for
// absence (the flat interface, the tools): null when absent.
#ifndef ZO_REGISTRY_INTERNAL_H
#define ZO_REGISTRY_INTERNAL_H

#include <cstdint>

class ZoPixelType;
class ZoPixelConverter;

const ZoPixelType* ZoFindPixelType(std::int64_t id);
const ZoPixelConverter* ZoFindConverter(std::int64_t source, std::int64_t destination);

#endif
