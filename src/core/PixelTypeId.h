// Reading a pixel type ID: display names and attribute matches.
#ifndef ZO_PIXEL_TYPE_ID_H
#define ZO_PIXEL_TYPE_ID_H

#include <cstdint>

#include "ZoPixelType.h"

inline std::uint32_t ZoLow32(std::int64_t id) { return static_cast<std::uint32_t>(id); }
inline bool ZoIdHas(std::int64_t id, std::uint32_t bits) { return (ZoLow32(id) & bits) != 0; }

// The generated display name of an ID, for example
// "Bayer RGB 10-bits, Packed, Dual Left+Right output".
void ZoGeneratePixelTypeName(std::int64_t id, std::uint16_t bitSize, bool bayer, ZoString& name);

// Whether `type` has exactly these attributes (the Bayer property is not
// part of the test). colourSpace and tapMode are masked values.
bool ZoPixelTypeMatches(const ZoPixelType& type, std::uint32_t bitSize, std::int64_t colourSpace,
                        bool normalized, bool packed, bool interlaced, bool planar, std::int64_t tapMode);

#endif
