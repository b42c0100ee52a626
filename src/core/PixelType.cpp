#include "ZoPixelType.h"

#include "ZoPixelTypeFactory.h"
#include "core/PixelTypeId.h"

ZoPixelType::ZoPixelType(const std::int64_t& id, std::uint16_t bitSize, std::uint16_t byteSize, bool bayer)
    : mTypeID(id), mBitSize(bitSize), mByteSize(byteSize), mBayer(bayer && ZoIdHas(id, ZO_PIXEL_COLORSPACE_RGB))
{
}

ZoPixelType::~ZoPixelType() = default;

ZoPixelType* ZoPixelType::Clone() const
{
    return new ZoPixelType(GetTypeID(), GetPixelBitSize(), GetPixelByteSize(), IsBayerPattern());
}

const std::int64_t& ZoPixelType::GetTypeID() const { return mTypeID; }
std::uint16_t ZoPixelType::GetPixelBitSize() const { return mBitSize; }
std::uint16_t ZoPixelType::GetPixelByteSize() const { return mByteSize; }
bool ZoPixelType::IsBayerPattern() const { return mBayer; }

std::uint32_t ZoPixelType::GetBufferSizeFor(std::uint32_t width, std::uint32_t height) const
{
    const std::int64_t id = GetTypeID();
    const std::uint32_t bits = GetPixelBitSize();
    const bool packed = ZoIdHas(id, ZO_PIXEL_PACKED);
    if (packed && (ZoIdHas(id, ZO_PIXEL_COLORSPACE_GRAY) || IsBayerPattern()) && (bits == 10 || bits == 12)) {
        std::uint32_t n = width * height;
        if (n & 1)
            n += 1;
        return (n * 3) >> 1;
    }
    if (bits == 24 && GetPixelByteSize() == 3 && !packed)
        return width * height * 4;  // room for converters that read 24-bit pixels as words
    return static_cast<std::uint32_t>(GetPixelByteSize()) * width * height;
}

bool ZoPixelType::HasConverterTo(const ZoPixelType& destination) const
{
    return ZoPixelTypeFactory::HasConverter(GetTypeID(), destination.GetTypeID());
}

const ZoPixelConverter& ZoPixelType::GetConverterTo(const ZoPixelType& destination) const
{
    return ZoPixelTypeFactory::GetConverter(GetTypeID(), destination.GetTypeID());
}

bool ZoPixelType::HasConverterFrom(const ZoPixelType& source) const { return source.HasConverterTo(*this); }

const ZoPixelConverter& ZoPixelType::GetConverterFrom(const ZoPixelType& source) const
{
    return source.GetConverterTo(*this);
}

#define ZO_DEFINE_PIXEL_TYPE(Name, bits, bytes, bayer, defaultId)                          \
    Name::Name() : ZoPixelType(static_cast<std::int64_t>(defaultId), bits, bytes, bayer) {} \
    Name::Name(const std::int64_t& id) : ZoPixelType(id, bits, bytes, bayer) {}            \
    Name::~Name() = default;

ZO_DEFINE_PIXEL_TYPE(ZoGrayscale8, 8, 1, false, ZO_PT_GRAY8)
ZO_DEFINE_PIXEL_TYPE(ZoGrayscale10, 10, 2, false, ZO_PT_GRAY10)
ZO_DEFINE_PIXEL_TYPE(ZoGrayscale12, 12, 2, false, ZO_PT_GRAY12)
ZO_DEFINE_PIXEL_TYPE(ZoGrayscale14, 14, 2, false, ZO_PT_GRAY14)
ZO_DEFINE_PIXEL_TYPE(ZoGrayscale16, 16, 2, false, ZO_PT_GRAY16)
ZO_DEFINE_PIXEL_TYPE(ZoRGB16, 16, 2, false, ZO_PT_RGB16)
ZO_DEFINE_PIXEL_TYPE(ZoRGB24, 24, 3, false, ZO_PT_RGB24)
ZO_DEFINE_PIXEL_TYPE(ZoRGB32, 32, 4, false, ZO_PT_RGB32)
ZO_DEFINE_PIXEL_TYPE(ZoRGB48, 48, 6, false, ZO_PT_RGB48)
ZO_DEFINE_PIXEL_TYPE(ZoRGB64, 64, 8, false, ZO_PT_RGB64)
ZO_DEFINE_PIXEL_TYPE(ZoBGR24, 24, 3, false, ZO_PT_BGR24)
ZO_DEFINE_PIXEL_TYPE(ZoBGR32, 32, 4, false, ZO_PT_BGR32)
ZO_DEFINE_PIXEL_TYPE(ZoRGB48_10Bits, 10, 6, false, ZO_PT_RGB48_10BITS)
ZO_DEFINE_PIXEL_TYPE(ZoRGB64_10Bits, 10, 8, false, ZO_PT_RGB64_10BITS)
ZO_DEFINE_PIXEL_TYPE(ZoRGB8_3, 8, 3, false, ZO_PT_RGB8_3)
ZO_DEFINE_PIXEL_TYPE(ZoRGB8_4, 8, 4, false, ZO_PT_RGB8_4)
ZO_DEFINE_PIXEL_TYPE(ZoRGB48_12Bits, 12, 6, false, ZO_PT_RGB48_12BITS)
ZO_DEFINE_PIXEL_TYPE(ZoRGB64_12Bits, 12, 8, false, ZO_PT_RGB64_12BITS)
ZO_DEFINE_PIXEL_TYPE(ZoBayerRGB8, 8, 1, true, ZO_PT_BAYER_RGB8)
ZO_DEFINE_PIXEL_TYPE(ZoBayerRGB10, 10, 2, true, ZO_PT_BAYER_RGB10)
ZO_DEFINE_PIXEL_TYPE(ZoBayerRGB12, 12, 2, true, ZO_PT_BAYER_RGB12)
ZO_DEFINE_PIXEL_TYPE(ZoBayerRGGB8, 8, 1, true, ZO_PT_BAYER_RGGB8)
ZO_DEFINE_PIXEL_TYPE(ZoBayerRGGB10, 10, 2, true, ZO_PT_BAYER_RGGB10)
ZO_DEFINE_PIXEL_TYPE(ZoBayerRGGB12, 12, 2, true, ZO_PT_BAYER_RGGB12)
ZO_DEFINE_PIXEL_TYPE(ZoYUV8, 16, 2, false, ZO_PT_YUV8)
ZO_DEFINE_PIXEL_TYPE(ZoYUV10, 20, 4, false, ZO_PT_YUV10)
ZO_DEFINE_PIXEL_TYPE(ZoYUV8_444, 24, 3, false, ZO_PT_YUV8_444)
ZO_DEFINE_PIXEL_TYPE(ZoYCrCb, 24, 3, false, ZO_PT_YCRCB)
