// Packed 10/12-bit unpacking converters: thin classes over the line kernels
// of gray/PackedKernels.h.
#include "ZoPackedConverters.h"

#include "gray/PackedKernels.h"

namespace {

// Three bytes per two pixels; an odd last pixel is not counted (deliberate:
// it has no group of its own).
std::uint32_t PackedLineBytes(std::uint32_t pixelCount)
{
    return (pixelCount >> 1) * 3;
}

constexpr std::uint32_t kPackedPipelining = 8;

}  // namespace

// ---------------------------------------------------------------------------

ZoGrayscale16PackedToGrayscale16::ZoGrayscale16PackedToGrayscale16(const std::int64_t& sourceType,
                                                                   const std::int64_t& destinationType,
                                                                   std::int16_t bShift, std::uint16_t mask,
                                                                   std::int16_t aShift)
    : ZoPixelConverter(sourceType, destinationType, 2, 2, kPackedPipelining, 1),
      mDualTapMode(zo::DualTapModeFor(sourceType, destinationType)),
      mBShift(bShift),
      mMask(mask),
      mAShift(aShift)
{
}

ZoGrayscale16PackedToGrayscale16::~ZoGrayscale16PackedToGrayscale16() = default;

std::uint32_t ZoGrayscale16PackedToGrayscale16::GetSourceByteSize(std::uint32_t pixelCount) const
{
    return PackedLineBytes(pixelCount);
}

std::uint32_t ZoGrayscale16PackedToGrayscale16::Convert(const unsigned char* source, unsigned char* destination,
                                                        std::uint32_t count) const
{
    // A: left shift; B: right shift, or left for a negative count.
    const zo::PackedRules rules{zo::LeftShiftRule(mAShift, mMask), zo::LeftShiftRule(-mBShift, mMask)};
    zo::UnpackPackedLine<zo::PackedToGray16>(source, destination, count, GetPipeliningSize(), rules,
                                             mDualTapMode);
    return ZO_OK;
}

// ---------------------------------------------------------------------------

ZoGrayscale16PackedToGrayscale8::ZoGrayscale16PackedToGrayscale8(const std::int64_t& sourceType,
                                                                 std::uint16_t aShift, std::uint16_t bShift)
    : ZoPixelConverter(sourceType, ZO_PT_GRAY8, 2, 1, kPackedPipelining, 1),
      mDualTapMode(zo::DualTapModeFromId(sourceType)),
      mAShift(aShift),
      mBShift(bShift)
{
}

ZoGrayscale16PackedToGrayscale8::~ZoGrayscale16PackedToGrayscale8() = default;

std::uint32_t ZoGrayscale16PackedToGrayscale8::GetSourceByteSize(std::uint32_t pixelCount) const
{
    return PackedLineBytes(pixelCount);
}

std::uint32_t ZoGrayscale16PackedToGrayscale8::Convert(const unsigned char* source, unsigned char* destination,
                                                       std::uint32_t count) const
{
    const zo::PackedRules rules{zo::RightShiftRule(mAShift, 0xFF), zo::RightShiftRule(mBShift, 0xFF)};
    zo::UnpackPackedLine<zo::PackedToGray8>(source, destination, count, GetPipeliningSize(), rules,
                                            mDualTapMode);
    return ZO_OK;
}

// ---------------------------------------------------------------------------

ZoGrayscale16PackedToRGB::ZoGrayscale16PackedToRGB(const std::int64_t& sourceType,
                                                   const std::int64_t& destinationType,
                                                   std::uint32_t sourcePixelSize,
                                                   std::uint32_t destinationPixelSize,
                                                   std::uint32_t pipeliningSize, std::uint32_t aShift,
                                                   std::uint32_t bShift)
    : ZoPixelConverter(sourceType, destinationType, sourcePixelSize, destinationPixelSize, pipeliningSize, 1),
      mDualTapMode(zo::DualTapModeFor(sourceType, destinationType)),
      mAShift(aShift),
      mBShift(bShift)
{
}

ZoGrayscale16PackedToRGB::~ZoGrayscale16PackedToRGB() = default;

std::uint32_t ZoGrayscale16PackedToRGB::GetSourceByteSize(std::uint32_t pixelCount) const
{
    return PackedLineBytes(pixelCount);
}

std::uint32_t ZoGrayscale16PackedToRGB::Convert(const unsigned char* source, unsigned char* destination,
                                                std::uint32_t count) const
{
    const zo::PackedRules rules{zo::RightShiftRule(mAShift, 0xFF), zo::RightShiftRule(mBShift, 0xFF)};
    const std::uint32_t pipelining = GetPipeliningSize();
    switch (GetDestinationByteSize()) {
    case 2:
        zo::UnpackPackedLine<zo::PackedToRGB16>(source, destination, count, pipelining, rules, mDualTapMode);
        return ZO_OK;
    case 3:
        zo::UnpackPackedLine<zo::PackedToRGB24>(source, destination, count, pipelining, rules, mDualTapMode);
        return ZO_OK;
    case 4:
        zo::UnpackPackedLine<zo::PackedToRGB32>(source, destination, count, pipelining, rules, mDualTapMode);
        return ZO_OK;
    default:
        return ZO_ERR_NOT_SUPPORTED;
    }
}

ZoGrayscale16PackedToRGB16::ZoGrayscale16PackedToRGB16(const std::int64_t& sourceType, std::uint32_t aShift,
                                                       std::uint32_t bShift)
    : ZoGrayscale16PackedToRGB(sourceType, ZO_PT_RGB16, 2, 2, kPackedPipelining, aShift, bShift)
{
}
ZoGrayscale16PackedToRGB16::~ZoGrayscale16PackedToRGB16() = default;

ZoGrayscale16PackedToRGB24::ZoGrayscale16PackedToRGB24(const std::int64_t& sourceType, bool blueFirst,
                                                       std::uint32_t aShift, std::uint32_t bShift)
    : ZoGrayscale16PackedToRGB(sourceType, blueFirst ? ZO_PT_BGR24 : ZO_PT_RGB24, 2, 3, kPackedPipelining, aShift,
                               bShift)
{
}
ZoGrayscale16PackedToRGB24::~ZoGrayscale16PackedToRGB24() = default;

ZoGrayscale16PackedToRGB32::ZoGrayscale16PackedToRGB32(const std::int64_t& sourceType, bool blueFirst,
                                                       std::uint32_t aShift, std::uint32_t bShift)
    : ZoGrayscale16PackedToRGB(sourceType, blueFirst ? ZO_PT_BGR32 : ZO_PT_RGB32, 2, 4, kPackedPipelining, aShift,
                               bShift)
{
}
ZoGrayscale16PackedToRGB32::~ZoGrayscale16PackedToRGB32() = default;
