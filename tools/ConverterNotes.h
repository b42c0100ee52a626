// What a user should know about one registered conversion before relying on
// it: the bytes it reads and writes a pixel, the Bayer pattern it uses when
// given none, whether a filter (gains) changes its output, and every
// deliberate quirk of its converter, each in one short phrase. Where the
// answer is a matter of output bytes (default pattern, filter, packed depth
// changes) it is found by converting a small probe frame, so it is what the
// library does, not what it is believed to do.
#ifndef ZOIMG_CONVERTER_NOTES_H
#define ZOIMG_CONVERTER_NOTES_H

#include <cstdint>
#include <string>
#include <vector>

class ZoPixelConverter;

namespace zoimg {

// "3", "4", or "1.5" for packed sources (3 bytes per 2 pixels).
std::string SourceBytesPerPixel(const ZoPixelConverter& converter);
std::string DestinationBytesPerPixel(const ZoPixelConverter& converter);

// The pattern flag (ZO_FLAG_BAYER_*) a Bayer conversion uses when the flags
// carry none; 0 for a converter that is not a Bayer one.
std::uint32_t DefaultPattern(const ZoPixelConverter& converter);

// Whether red, green and blue gains change this conversion's output (the
// filter reaches a chain's first stage only).
bool FilterApplies(const ZoPixelConverter& converter);

// The quirks of the conversion from `source` to `destination`.
std::vector<std::string> Caveats(std::int64_t source, std::int64_t destination, const ZoPixelConverter& converter);

}  // namespace zoimg

#endif
