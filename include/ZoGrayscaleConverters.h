// Grayscale converters: depth changes of monochrome samples and expansion of
// monochrome pixels to RGB16, RGB/BGR 24 and RGB/BGR 32.
//
// Samples of 10 to 16 bits are little-endian 16-bit words, either
// least-significant-bit aligned or "Normalized" (most-significant-bit
// aligned). The filter of an area conversion is not applied: the three
// channels of an RGB output all carry the gray value. Both forms always
// return 0 and convert exactly the pixels asked for.
#ifndef ZO_GRAYSCALE_CONVERTERS_H
#define ZO_GRAYSCALE_CONVERTERS_H

#include <cstdint>

#include "ZoPixelConverter.h"

// 16-bit word w to the 16-bit word w >> shift.
class ZO_API ZoGrayscale16ToGrayscale16RightShift : public ZoPixelConverter {
public:
    ZoGrayscale16ToGrayscale16RightShift(const std::int64_t& sourceType, const std::int64_t& destinationType, std::uint32_t shift);
    ~ZoGrayscale16ToGrayscale16RightShift() override;

    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t pixelCount) const override;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;

private:
    std::uint32_t mShift;
};

// 16-bit word w to (w << shift) kept to 16 bits: high bits are lost, there is
// no saturation.
class ZO_API ZoGrayscale16ToGrayscale16LeftShift : public ZoPixelConverter {
public:
    ZoGrayscale16ToGrayscale16LeftShift(const std::int64_t& sourceType, const std::int64_t& destinationType, std::uint32_t shift);
    ~ZoGrayscale16ToGrayscale16LeftShift() override;

    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t pixelCount) const override;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;

private:
    std::uint32_t mShift;
};

// 16-bit word w to the byte (w >> shift) & 0xFF (8-bit grayscale): bits above
// the eighth are dropped, there is no clamping.
class ZO_API ZoGrayscale16ToGrayscale8 : public ZoPixelConverter {
public:
    ZoGrayscale16ToGrayscale8(const std::int64_t& sourceType, std::uint32_t shift);
    ~ZoGrayscale16ToGrayscale8() override;

    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t pixelCount) const override;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;

private:
    std::uint32_t mShift;
};

// The high byte of each 16-bit word (8-bit grayscale).
class ZO_API ZoGrayscale16NormalizedToGrayscale8 : public ZoPixelConverter {
public:
    explicit ZoGrayscale16NormalizedToGrayscale8(const std::int64_t& sourceType);
    ~ZoGrayscale16NormalizedToGrayscale8() override;

    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t pixelCount) const override;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;
};

// 16-bit word w of an (8 + shift)-bit sample to RGB16 of the gray value
// (w >> shift) & 0xFF. Shifts 2, 4 and 6 are supported; with any other shift
// nothing is written.
class ZO_API ZoGrayscale16ToRGB16 : public ZoPixelConverter {
public:
    ZoGrayscale16ToRGB16(const std::int64_t& sourceType, std::uint32_t shift);
    ~ZoGrayscale16ToRGB16() override;

    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t pixelCount) const override;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;

private:
    std::uint32_t mShift;
};

// The same to RGB24 (or BGR24 when bgr: the bytes are the same), each byte
// (w >> shift) & 0xFF whatever the shift.
class ZO_API ZoGrayscale16ToRGB24 : public ZoPixelConverter {
public:
    ZoGrayscale16ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t shift);
    ~ZoGrayscale16ToRGB24() override;

    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t pixelCount) const override;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;

private:
    std::uint32_t mShift;
};

// The same to RGB32 (or BGR32): bytes g, g, g, 0. Shifts 2, 4 and 6 only;
// with any other shift nothing is written.
class ZO_API ZoGrayscale16ToRGB32 : public ZoPixelConverter {
public:
    ZoGrayscale16ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t shift);
    ~ZoGrayscale16ToRGB32() override;

    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t pixelCount) const override;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;

private:
    std::uint32_t mShift;
};

// One byte of each (extraBytes + 1)-byte source pixel to RGB16. The line form
// takes the LAST byte of the pixel (for 16-bit words the high byte), the
// single-pixel form the FIRST.
class ZO_API ZoGrayscale8ToRGB16 : public ZoPixelConverter {
public:
    ZoGrayscale8ToRGB16(const std::int64_t& sourceType, std::uint32_t extraBytes);
    ~ZoGrayscale8ToRGB16() override;

    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t pixelCount) const override;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;

private:
    std::uint32_t mSourcePixelBytes;
};

// The same to RGB24 (or BGR24): three equal bytes.
class ZO_API ZoGrayscale8ToRGB24 : public ZoPixelConverter {
public:
    ZoGrayscale8ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t extraBytes);
    ~ZoGrayscale8ToRGB24() override;

    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t pixelCount) const override;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;

private:
    std::uint32_t mSourcePixelBytes;
};

// The same to RGB32 (or BGR32): bytes g, g, g, 0.
class ZO_API ZoGrayscale8ToRGB32 : public ZoPixelConverter {
public:
    ZoGrayscale8ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t extraBytes);
    ~ZoGrayscale8ToRGB32() override;

    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t pixelCount) const override;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;

private:
    std::uint32_t mSourcePixelBytes;
};

#endif
