#include "core/PixelTypeId.h"

#include <cstdio>

namespace {

const char* ColourSpaceWord(std::uint32_t id, bool bayer)
{
    switch (id & ZO_PIXEL_COLORSPACE_MASK) {
    case ZO_PIXEL_COLORSPACE_GRAY: return "Grayscale";
    case ZO_PIXEL_COLORSPACE_RGB: return bayer ? "Bayer RGB" : "RGB";
    case ZO_PIXEL_COLORSPACE_YUV: return "YUV";
    default: return "Unknown Colorspace";
    }
}

const char* TapSuffix(std::uint32_t id)
{
    switch (id & ZO_PIXEL_TAP_MASK) {
    case ZO_PIXEL_TAP_DUAL_LR: return ", Dual Left+Right output";
    case ZO_PIXEL_TAP_DUAL_LR_INV: return ", Dual Left+Right Inverted output";
    case ZO_PIXEL_TAP_DUAL_LINV_R: return ", Dual Left Inverted+Right output";
    case ZO_PIXEL_TAP_DUAL_LINV_RINV: return ", Dual Left Inverted+Right Inverted output";
    case ZO_PIXEL_TAP_DUAL_LINES: return ", Dual Lines output";
    default: return "";  // single output, or a combination of tap bits
    }
}

}  // namespace

void ZoGeneratePixelTypeName(std::int64_t id, std::uint16_t bitSize, bool bayer, ZoString& name)
{
    const std::uint32_t low = ZoLow32(id);
    char bits[16];
    std::snprintf(bits, sizeof bits, " %u-bits", static_cast<unsigned>(bitSize));
    name = ColourSpaceWord(low, bayer);
    name += bits;
    static const struct {
        std::uint32_t bit;
        const char* text;
    } kFlags[] = {{ZO_PIXEL_NORMALIZED, ", Normalized"},
                  {ZO_PIXEL_INTERLACED, ", Interlaced"},
                  {ZO_PIXEL_PACKED, ", Packed"},
                  {ZO_PIXEL_PLANAR, ", Planar"}};
    for (const auto& flag : kFlags)
        if (low & flag.bit)
            name += flag.text;
    name += TapSuffix(low);
}

bool ZoPixelTypeMatches(const ZoPixelType& type, std::uint32_t bitSize, std::int64_t colourSpace,
                        bool normalized, bool packed, bool interlaced, bool planar, std::int64_t tapMode)
{
    const std::uint32_t low = ZoLow32(type.GetTypeID());
    return static_cast<std::int64_t>(low & ZO_PIXEL_COLORSPACE_MASK) == colourSpace &&
           static_cast<std::uint32_t>(type.GetPixelBitSize()) == bitSize &&
           ((low & ZO_PIXEL_NORMALIZED) != 0) == normalized && ((low & ZO_PIXEL_PACKED) != 0) == packed &&
           ((low & ZO_PIXEL_INTERLACED) != 0) == interlaced && ((low & ZO_PIXEL_PLANAR) != 0) == planar &&
           static_cast<std::int64_t>(low & ZO_PIXEL_TAP_MASK) == tapMode;
}
