// 8-bit dual-tap converters: thin classes over gray/DualTapKernels.h.
#include "ZoDualTapConverters.h"

#include "gray/DualTapKernels.h"

ZoDualGrayscale8ToGrayscale8::ZoDualGrayscale8ToGrayscale8(const std::int64_t& sourceType,
                                                           const std::int64_t& destinationType)
    : ZoPixelConverter(sourceType, destinationType, 1, 1, 8, 1),
      mDualTapMode(zo::DualTapModeFor(sourceType, destinationType))
{
}

ZoDualGrayscale8ToGrayscale8::~ZoDualGrayscale8ToGrayscale8() = default;

std::uint32_t ZoDualGrayscale8ToGrayscale8::Convert(const unsigned char* source, std::uint32_t sourceWidth,
                                                    std::uint32_t sourceHeight, unsigned char* destination,
                                                    std::uint32_t destinationWidth,
                                                    std::uint32_t destinationHeight, std::uint32_t width,
                                                    std::uint32_t height, std::uint32_t flags,
                                                    std::uint32_t destinationPadding) const
{
    // Deliberate: a dual-tap line is recombined over the whole source width,
    // which replaces the requested width.
    const std::uint32_t lineWidth = mDualTapMode != 0 ? sourceWidth : width;
    return ZoPixelConverter::Convert(source, sourceWidth, sourceHeight, destination, destinationWidth,
                                     destinationHeight, lineWidth, height, flags, destinationPadding);
}

std::uint32_t ZoDualGrayscale8ToGrayscale8::Convert(const unsigned char* source, unsigned char* destination,
                                                    std::uint32_t count) const
{
    zo::RecombineDualTapLine(source, destination, count, GetPipeliningSize(), mDualTapMode);
    return ZO_OK;
}

// ---------------------------------------------------------------------------

namespace {
constexpr std::int64_t kDualLinesGray8 = ZO_PT_GRAY8 | ZO_PIXEL_TAP_DUAL_LINES;  // 0x10010001
}

ZoDualLinesGrayscale8ToGrayscale8::ZoDualLinesGrayscale8ToGrayscale8()
    : ZoPixelConverter(kDualLinesGray8, ZO_PT_GRAY8, 1, 1, 4, 1), mReserved(0)
{
}

ZoDualLinesGrayscale8ToGrayscale8::~ZoDualLinesGrayscale8ToGrayscale8() = default;

std::uint32_t ZoDualLinesGrayscale8ToGrayscale8::Convert(const unsigned char* source, unsigned char* destination,
                                                         std::uint32_t count) const
{
    std::uint32_t line, sourceLineBytes;
    {
        ContextHold hold(*this);
        line = hold.Context().currentLine;
        sourceLineBytes = hold.Context().sourceLineBytes;
    }
    // An odd line is the odd bytes of the interleaved pair that starts one
    // source line back.
    const unsigned char* from =
        (line & 1) ? source + 1 - static_cast<std::ptrdiff_t>(sourceLineBytes) : source;
    zo::TakeEveryOtherByte(from, destination, count);
    return ZO_OK;
}
