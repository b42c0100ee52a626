// Whole-frame conversion through a registered converter, and the view of a
// converted frame as an image.
#ifndef ZOIMG_FRAME_CONVERT_H
#define ZOIMG_FRAME_CONVERT_H

#include <cstdint>
#include <string>
#include <vector>

#include "ImageFile.h"

class ZoPixelConverter;

namespace zoimg {

// Bytes of a width x height source frame for this converter (its source line
// bytes times height), or 0 if that does not fit in 32 bits.
std::uint64_t SourceFrameBytes(const ZoPixelConverter& converter, std::uint32_t width, std::uint32_t height);
std::uint64_t DestinationFrameBytes(const ZoPixelConverter& converter, std::uint32_t width, std::uint32_t height);

// Converts a whole frame. `gains`, when not null, are red, green and blue
// multipliers applied through a filter. The buffers handed to the library are
// zero-padded on both sides, since some converters read neighbours beyond the
// frame or write a pixel past an odd line. Returns the library's result code.
std::uint32_t ConvertFrame(const ZoPixelConverter& converter, const std::uint8_t* source, std::uint32_t width,
                           std::uint32_t height, std::uint32_t flags, const double* gains,
                           std::vector<std::uint8_t>& destination);

// The converted frame of pixel type `id` as an image, for RGB and BGR
// layouts (RGB16, 24, 32, 48, 64, planar) and unpacked grayscale. False for
// any other type (Bayer, YUV, packed gray, dual-tap...).
bool FrameToImage(std::int64_t id, const std::vector<std::uint8_t>& frame, std::uint32_t width,
                  std::uint32_t height, Image& image);

// Parses "bayer-grbg,interpolate,..." or a number into conversion flags.
bool ParseFlags(const std::string& text, std::uint32_t& flags, std::string& error);

}  // namespace zoimg

#endif
