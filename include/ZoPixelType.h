// Pixel type objects: the description of one pixel format.
#ifndef ZO_PIXEL_TYPE_H
#define ZO_PIXEL_TYPE_H

#include <cstdint>

#include "ZoPixelTypeIDs.h"
#include "ZoUtils.h"

class ZoPixelConverter;

// Immutable description of a pixel format: ID, significant bits per pixel
// (or per sample for padded multi-component types), bytes per pixel and
// the Bayer property (kept only for IDs in the RGB colour space).
class ZO_API ZoPixelType : public ZoObject {
public:
    ZoPixelType(const std::int64_t& id, std::uint16_t bitSize, std::uint16_t byteSize, bool bayer);
    virtual ~ZoPixelType();

    // A new plain ZoPixelType with the same four properties, owned by the
    // caller; null if allocation fails.
    virtual ZoPixelType* Clone() const;
    virtual const std::int64_t& GetTypeID() const;
    virtual std::uint16_t GetPixelBitSize() const;
    virtual std::uint16_t GetPixelByteSize() const;
    virtual bool IsBayerPattern() const;
    // Bytes of a width x height frame (32-bit arithmetic, wraps). Packed 10-
    // and 12-bit grayscale or Bayer frames take 3 bytes per 2 samples
    // (rounded up to a pair); unpacked 24-bit RGB/BGR frames are sized at 4
    // bytes a pixel, leaving room for converters that read whole words.
    virtual std::uint32_t GetBufferSizeFor(std::uint32_t width, std::uint32_t height) const;

    bool HasConverterTo(const ZoPixelType& destination) const;
    // A reference whose address is null when no converter is registered (as
    // ZoPixelTypeFactory::GetConverter): test with HasConverterTo first, or
    // use the flat ZoPixelType_GetConverterTo, which answers null; the
    // address of a reference cannot be reliably compared with null in C++.
    const ZoPixelConverter& GetConverterTo(const ZoPixelType& destination) const;
    bool HasConverterFrom(const ZoPixelType& source) const;
    const ZoPixelConverter& GetConverterFrom(const ZoPixelType& source) const;

private:
    std::int64_t mTypeID;
    std::uint16_t mBitSize;
    std::uint16_t mByteSize;
    bool mBayer;
};

#define ZO_DECLARE_PIXEL_TYPE(Name)                          \
    class ZO_API Name : public ZoPixelType {                 \
    public:                                                  \
        Name();                                              \
        explicit Name(const std::int64_t& id);               \
        ~Name() override;                                    \
    };

ZO_DECLARE_PIXEL_TYPE(ZoGrayscale8)
ZO_DECLARE_PIXEL_TYPE(ZoGrayscale10)
ZO_DECLARE_PIXEL_TYPE(ZoGrayscale12)
ZO_DECLARE_PIXEL_TYPE(ZoGrayscale14)
ZO_DECLARE_PIXEL_TYPE(ZoGrayscale16)
ZO_DECLARE_PIXEL_TYPE(ZoRGB16)
ZO_DECLARE_PIXEL_TYPE(ZoRGB24)
ZO_DECLARE_PIXEL_TYPE(ZoRGB32)
ZO_DECLARE_PIXEL_TYPE(ZoRGB48)
ZO_DECLARE_PIXEL_TYPE(ZoRGB64)
ZO_DECLARE_PIXEL_TYPE(ZoBGR24)
ZO_DECLARE_PIXEL_TYPE(ZoBGR32)
ZO_DECLARE_PIXEL_TYPE(ZoRGB48_10Bits)
ZO_DECLARE_PIXEL_TYPE(ZoRGB64_10Bits)
ZO_DECLARE_PIXEL_TYPE(ZoRGB8_3)
ZO_DECLARE_PIXEL_TYPE(ZoRGB8_4)
ZO_DECLARE_PIXEL_TYPE(ZoRGB48_12Bits)
ZO_DECLARE_PIXEL_TYPE(ZoRGB64_12Bits)
ZO_DECLARE_PIXEL_TYPE(ZoBayerRGB8)
ZO_DECLARE_PIXEL_TYPE(ZoBayerRGB10)
ZO_DECLARE_PIXEL_TYPE(ZoBayerRGB12)
ZO_DECLARE_PIXEL_TYPE(ZoBayerRGGB8)
ZO_DECLARE_PIXEL_TYPE(ZoBayerRGGB10)
ZO_DECLARE_PIXEL_TYPE(ZoBayerRGGB12)
ZO_DECLARE_PIXEL_TYPE(ZoYUV8)
ZO_DECLARE_PIXEL_TYPE(ZoYUV10)
ZO_DECLARE_PIXEL_TYPE(ZoYUV8_444)
ZO_DECLARE_PIXEL_TYPE(ZoYCrCb)

#undef ZO_DECLARE_PIXEL_TYPE

#endif
