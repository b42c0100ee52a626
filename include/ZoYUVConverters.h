// YUV 4:2:2 (8- and 10-bit), YUV 4:4:4 and YCrCb 4:4:4 to RGB converters.
//
// Every converter turns each pixel's Y, U (Cb), V (Cr) into R, G, B with the
// BT.601 studio-range integer transform (8.8 fixed point, arithmetic shifts,
// results clamped to 0..255), maps the clamped channels through the 8-bit
// tables of the filter in force (the area conversion's filter, or the
// identity for direct line calls), and stores RGB16 (5-6-5 word), RGB24 /
// BGR24, or RGB32 / BGR32 (fourth byte 0).
//
// The single-pixel Convert of every class writes nothing and returns 26
// (ZO_ERR_NOT_SUPPORTED): a lone 4:2:2 pixel has no chroma of its own. The
// line Convert always returns 0 and does not check its arguments.
#ifndef ZO_YUV_CONVERTERS_H
#define ZO_YUV_CONVERTERS_H

#include <cstdint>

#include "ZoPixelConverter.h"

// ---------------------------------------------------------------------------
// 8-bit 4:2:2. A pair of pixels is the samples Y0 U Y1 V (YUYV, GenICam
// PFNC YCbCr601_422_8); UYVY data (U Y0 V Y1) must be swapped to this order
// first, or its colours come out wrong. Each sample is
// (extra + 1) bytes and its last byte is the value (extra 1 takes the high
// byte of 16-bit little-endian samples). Source pixel size 2 x (extra + 1).
//
// Buffers: a line of an odd number of pixels reads and writes one pixel
// more than asked (the whole last pair), so allow one extra source and
// destination pixel per line for odd widths.
class ZO_API ZoYUV8toRGB : public ZoPixelConverter {
public:
    ~ZoYUV8toRGB() override;

    using ZoPixelConverter::Convert;
    // Not supported: returns 26 and writes nothing.
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;

    bool IsBGR() const { return mBGR; }
    std::uint32_t GetSampleBytes() const { return mSampleBytes; }

protected:
    ZoYUV8toRGB(const std::int64_t& sourceType, const std::int64_t& destinationType,
                std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize, std::uint32_t pipeliningSize,
                bool bgr, std::uint32_t sampleBytes, std::uint32_t linesPerConvert);

    bool mBGR;
    std::uint32_t mSampleBytes;  // extra + 1
    std::uint32_t mRedOffset;    // 2 when BGR, else 0
    std::uint32_t mGreenOffset;  // 1
    std::uint32_t mBlueOffset;   // 0 when BGR, else 2
};

class ZO_API ZoYUV8ToRGB16 : public ZoYUV8toRGB {
public:
    ZoYUV8ToRGB16(const std::int64_t& sourceType, std::uint32_t extra);
    ~ZoYUV8ToRGB16() override;
    using ZoYUV8toRGB::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;
};

class ZO_API ZoYUV8ToRGB24 : public ZoYUV8toRGB {
public:
    ZoYUV8ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t extra);
    ~ZoYUV8ToRGB24() override;
    using ZoYUV8toRGB::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;
};

class ZO_API ZoYUV8ToRGB32 : public ZoYUV8toRGB {
public:
    ZoYUV8ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t extra);
    ~ZoYUV8ToRGB32() override;
    using ZoYUV8toRGB::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;
};

// ---------------------------------------------------------------------------
// 10-bit 4:2:2. A pair of pixels is the words Y0 U Y1 V, in the order of the
// 8-bit converters. Each sample is a 16-bit little-endian word; the value used is
// the low 8 bits of (word >> shift), not clamped: with shift 2 a word beyond
// the 10-bit range (0x7FC) loses its ninth bit (0x1FF gives 0xFF). Source
// pixel size 4.
//
// Buffers: as the 8-bit 4:2:2 converters, an odd line reads and writes one
// pixel more than asked.
class ZO_API ZoYUV10ToRGB : public ZoPixelConverter {
public:
    ~ZoYUV10ToRGB() override;

    using ZoPixelConverter::Convert;
    // Not supported: returns 26 and writes nothing.
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;

    bool IsBGR() const { return mBGR; }
    std::uint32_t GetShift() const { return mShift; }

protected:
    ZoYUV10ToRGB(const std::int64_t& sourceType, const std::int64_t& destinationType,
                 std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize, std::uint32_t pipeliningSize,
                 bool bgr, std::uint32_t shift, std::uint32_t linesPerConvert);

    bool mBGR;
    std::uint32_t mShift;
    std::uint32_t mRedOffset;
    std::uint32_t mGreenOffset;
    std::uint32_t mBlueOffset;
};

class ZO_API ZoYUV10ToRGB16 : public ZoYUV10ToRGB {
public:
    ZoYUV10ToRGB16(const std::int64_t& sourceType, std::uint32_t shift);
    ~ZoYUV10ToRGB16() override;
    using ZoYUV10ToRGB::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;
};

class ZO_API ZoYUV10ToRGB24 : public ZoYUV10ToRGB {
public:
    ZoYUV10ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t shift);
    ~ZoYUV10ToRGB24() override;
    using ZoYUV10ToRGB::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;
};

class ZO_API ZoYUV10ToRGB32 : public ZoYUV10ToRGB {
public:
    ZoYUV10ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t shift);
    ~ZoYUV10ToRGB32() override;
    using ZoYUV10ToRGB::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;
};

// ---------------------------------------------------------------------------
// 8-bit 4:4:4 (YUV or YCrCb). Pixel i starts at byte i x 3 x (extra + 1);
// from its byte `extra`, Y, U and V are read at the plain byte offsets
// yOffset, uOffset and vOffset. The reported source pixel size is 3 whatever
// `extra` is. Exactly `count` pixels are read and written.
//
// The line is converted four pixels at a time over the largest multiple of
// four pixels, then one by one. In ZoYUV8444ToRGB16 the four-at-a-time part
// maps green through the filter's blue table and blue through its green
// table, the remainder does not; the results differ only when those tables
// differ (kept deliberately, see ZoYUV8444ToRGB16).
class ZO_API ZoYUV8444ToRGB : public ZoPixelConverter {
public:
    ~ZoYUV8444ToRGB() override;

    using ZoPixelConverter::Convert;
    // Not supported: returns 26 and writes nothing.
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;

    bool IsBGR() const { return mBGR; }
    std::uint32_t GetSampleBytes() const { return mSampleBytes; }
    std::uint32_t GetYOffset() const { return mYOffset; }
    std::uint32_t GetUOffset() const { return mUOffset; }
    std::uint32_t GetVOffset() const { return mVOffset; }

protected:
    ZoYUV8444ToRGB(const std::int64_t& sourceType, const std::int64_t& destinationType,
                   std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize, std::uint32_t pipeliningSize,
                   bool bgr, std::uint32_t sampleBytes, std::uint32_t yOffset, std::uint32_t uOffset,
                   std::uint32_t vOffset, std::uint32_t linesPerConvert);

    // Pixels converted four at a time in a line of `count` pixels.
    std::uint32_t BlockedCount(std::uint32_t count) const;

    bool mBGR;
    std::uint32_t mSampleBytes;  // extra + 1
    std::uint32_t mRedOffset;
    std::uint32_t mGreenOffset;
    std::uint32_t mBlueOffset;
    std::uint32_t mYOffset;
    std::uint32_t mUOffset;
    std::uint32_t mVOffset;
};

// The four-at-a-time part of its line form looks green up in the filter's
// blue table and blue in the green table; the one-by-one remainder uses the
// green and blue tables as named. This is how the converter has always
// behaved and it is kept deliberately: with the identity filter, or any
// filter whose green and blue tables agree, nothing changes.
class ZO_API ZoYUV8444ToRGB16 : public ZoYUV8444ToRGB {
public:
    ZoYUV8444ToRGB16(const std::int64_t& sourceType, std::uint32_t extra, std::uint32_t yOffset,
                     std::uint32_t uOffset, std::uint32_t vOffset);
    ~ZoYUV8444ToRGB16() override;
    using ZoYUV8444ToRGB::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;
};

class ZO_API ZoYUV8444ToRGB24 : public ZoYUV8444ToRGB {
public:
    ZoYUV8444ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t extra, std::uint32_t yOffset,
                     std::uint32_t uOffset, std::uint32_t vOffset);
    ~ZoYUV8444ToRGB24() override;
    using ZoYUV8444ToRGB::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;
};

class ZO_API ZoYUV8444ToRGB32 : public ZoYUV8444ToRGB {
public:
    ZoYUV8444ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t extra, std::uint32_t yOffset,
                     std::uint32_t uOffset, std::uint32_t vOffset);
    ~ZoYUV8444ToRGB32() override;
    using ZoYUV8444ToRGB::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;
};

#endif
