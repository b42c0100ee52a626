// Whole-frame conversion through a registered converter, and the view of a
// converted frame as an image.
#ifndef ZOIMG_FRAME_CONVERT_H
#define ZOIMG_FRAME_CONVERT_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ImageFile.h"

class ZoPixelConverter;
class ZoRGBFilter;

namespace zoimg {

// Converts frames of one size, one after the other, through one registered
// converter. Buffers are sized by ZoPixelConverter_GetAreaBufferSizes, so
// every line a converter reads or writes beyond the frame lies inside them;
// the bytes beyond the frame are zero, except in one case:
//
// A Bayer conversion in replicating mode with an odd height converts the
// last line together with the line after it, which lies outside the frame.
// Zeros there would leave the last row with no blue and every other green
// 0, so the line after the frame is a copy of the frame's last line of the
// same mosaic row kind (height - 2): the last row then gets the colours of
// the cell row above it. For a chain ending in such a stage the two stages
// are run here one after the other, exactly as the chain runs them, with
// that line added between them.
//
// With threads > 1 each stage is cut into bands of lines converted
// concurrently (ZoPixelConverter_ConvertBand), which gives the same bytes.
class FrameConverter {
public:
    FrameConverter();
    ~FrameConverter();

    // False with a message when the frame is too large. `gains`, when not
    // null, are red, green and blue multipliers applied through a filter.
    bool Prepare(const ZoPixelConverter& converter, std::uint32_t width, std::uint32_t height, std::uint32_t flags,
                 const double* gains, unsigned threads, std::string& error);

    // Bytes of one source frame (source line bytes x height) and of one
    // converted frame (destination line bytes x height).
    std::uint64_t SourceFrameBytes() const { return mSourceFrameBytes; }
    std::uint64_t DestinationFrameBytes() const { return mDestinationFrameBytes; }
    std::uint32_t SourceLineBytes() const { return mSourceLineBytes; }
    // Whether the line after the frame is filled as described above.
    bool ExtendsLastRow() const { return mExtendLastRow; }

    // Converts one frame of SourceFrameBytes() bytes; `destination` receives
    // DestinationFrameBytes() bytes. Returns the library's result code.
    std::uint32_t Convert(const std::uint8_t* source, std::vector<std::uint8_t>& destination);

private:
    struct Stage;
    std::uint32_t RunStage(const Stage& stage, const unsigned char* source, unsigned char* destination,
                           const ZoRGBFilter* filter);

    std::vector<Stage> mStages;
    std::unique_ptr<ZoRGBFilter> mFilter;
    std::uint32_t mWidth = 0, mHeight = 0, mFlags = 0;
    unsigned mThreads = 1;
    bool mExtendLastRow = false;
    std::uint32_t mSourceLineBytes = 0;
    std::uint64_t mSourceFrameBytes = 0, mDestinationFrameBytes = 0;
    std::vector<std::uint8_t> mSource, mIntermediate, mDestination;
};

// Whether the converter (or a stage of a chain) demosaics a Bayer mosaic.
bool IsBayerConverter(const ZoPixelConverter& converter);

// Significant bits per sample of a converted frame whose words say less than
// the destination type: RGB48/RGB64 frames demosaiced from 10- or 12-bit
// Bayer sources hold 10- or 12-bit values (right-aligned, or in the top bits
// for the "Normalized" forms). 0 when the destination type says it all.
std::uint32_t SignificantBits(std::int64_t source, std::int64_t destination);

// The converted frame of pixel type `id` as an image, for RGB and BGR
// layouts (RGB16, 24, 32, 48, 64, planar) and unpacked grayscale. False for
// any other type (Bayer, YUV, packed gray, dual-tap...). `significantBits`
// (0 for the type's own depth) narrows 16-bit samples, as SignificantBits.
bool FrameToImage(std::int64_t id, const std::vector<std::uint8_t>& frame, std::uint32_t width,
                  std::uint32_t height, std::uint32_t significantBits, Image& image);

// Parses "bayer-grbg,interpolate,..." or a number into conversion flags.
// Two Bayer patterns at once are refused: the library would silently use
// the first of the order GRBG, GBRG, RGGB, BGGR.
bool ParseFlags(const std::string& text, std::uint32_t& flags, std::string& error);

constexpr std::uint32_t kPatternFlags = 0x10 | 0x20 | 0x40 | 0x80;

}  // namespace zoimg

#endif
