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

// A type given on the command line: a hex ID ("0x20010" or "20010"), a
// registered display name (case-insensitive, must be unique: "RGB 32-bits"
// names two types) or the name of a pixel type class, with or without its
// "Zo" prefix ("BayerRGB8", "RGB24", "Gray8" for Grayscale8), meaning the
// class's default ID. On failure returns false with a message in `error`.
bool ParseType(const std::string& text, std::int64_t& id, std::string& error);

// The converter's class name ("ZoBayerRGB8ToRGB24"), demangled.
std::string ClassName(const ZoPixelConverter& converter);

// "ZoBayerRGB8ToRGB24", or for a chain
// "ZoIdentityConverter (0x00220011 -> 0x00020011) + ZoBayerRGB16ToRGB16 (...)".
std::string DescribeConverter(const ZoPixelConverter& converter);

}  // namespace zoimg

#endif
