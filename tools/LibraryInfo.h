// What the zoimg tool learns from the library through its public interface:
// the registered pixel types, the registered converter pairs, type names
// given on the command line, and what stands behind a converter.
#ifndef ZOIMG_LIBRARY_INFO_H
#define ZOIMG_LIBRARY_INFO_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

class ZoPixelConverter;

namespace zoimg {

// Every registered pixel type ID, ascending. The registry has no "list all"
// operation, so the ID space that pixel types use is scanned: every format
// number up to 0xFF in each colour space, with every combination of the
// Normalized, Interlaced, Packed and Planar bits and every tap mode.
std::vector<std::int64_t> RegisteredTypes();

// Every ID of that space from which at least one converter is registered
// (registered as a type or not), ascending.
std::vector<std::int64_t> ConverterSources();

// The destinations registered from `source`, in the registry's order.
std::vector<std::int64_t> ConverterDestinations(std::int64_t source);

// "0x00020010".
std::string HexId(std::int64_t id);

// The display name of a registered type, or "(not a registered type)"
// without recording the ID in the registry.
std::string TypeName(std::int64_t id);

// The ID bits as words: "Normalized,Interlaced,Packed,Planar,Dual L+R", or
// "-" when none is set.
std::string FlagWords(std::int64_t id);

// The class of the registered pixel type object without its "Zo" prefix
// ("RGB32", "BGR32", "BayerRGB8"), or "" for an unregistered ID.
std::string TypeClass(std::int64_t id);

// Whether at least one converter is registered from `id`.
bool IsConverterSource(std::int64_t id);

// The converter sources closest to `id` (same colour space and format
// number, fewest differing ID bits first), at most `count` of them.
std::vector<std::int64_t> NearestSources(std::int64_t id, std::size_t count);

// The pattern flags (ZO_FLAG_BAYER_*) set in `flags`, as words
// ("bayer-grbg"), comma-separated; "" for none.
std::string PatternWords(std::uint32_t flags);

// A type given on the command line: a hex ID ("0x20010" or "20010"), a
// registered display name (case-insensitive, must be unique: "RGB 32-bits"
// names two types), the name of a pixel type class, with or without its
// "Zo" prefix ("BayerRGB8", "RGB24", "Gray8" for Grayscale8), meaning the
// class's default ID, or a GenICam PFNC name as PFNC spells it
// ("BayerRG12p"), which also gives the Bayer pattern in `patternFlags`
// (0 otherwise). A name that is both a class and a PFNC format of other
// bytes ("RGB16") is ambiguous. On failure returns false with a message in
// `error`.
bool ParseType(const std::string& text, std::int64_t& id, std::uint32_t& patternFlags, std::string& error);

// The converter's class name ("ZoBayerRGB8ToRGB24"), demangled, as the
// library's ZoPixelConverter_GetClassName gives it.
std::string ClassName(const ZoPixelConverter& converter);

// "ZoBayerRGB8ToRGB24", or for a chain
// "ZoIdentityConverter (0x00220011 -> 0x00020011) + ZoBayerRGB16ToRGB16 (...)".
std::string DescribeConverter(const ZoPixelConverter& converter);

}  // namespace zoimg

#endif
