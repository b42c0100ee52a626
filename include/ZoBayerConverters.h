// Bayer demosaicing: 8-bit and 16-bit Bayer mosaics to packed RGB.
//
// A Bayer source holds one colour sample per pixel in a repeating 2x2
// pattern, named by the colours of the first two pixels of line 0 and of
// line 1 (the flags FLAG_BAYER_GRBG, _GBRG, _RGGB, _BGGR; with several set,
// the first of that order wins):
//
//     GRBG      GBRG      RGGB      BGGR
//     G R G R   G B G B   R G R G   B G B G
//     B G B G   R G R G   G B G B   G R G R
//
// Two modes, chosen by FLAG_BAYER_INTERPOLATE:
//
//  - Replicating (flag clear): the image is cut into 2x2 cells; both pixels
//    of both lines of a cell get the cell's red and blue sample, the left
//    pixel the green of the cell's first line and the right pixel the green
//    of its second line. One line call converts two lines.
//  - Interpolating (flag set): each missing colour is the truncating average
//    of the same-coloured samples in the pixel's 3x3 neighbourhood that lie
//    inside the area (two summed >> 1, three summed / 3, four summed >> 2; a
//    lone one taken as it is; none gives 0, which only happens in one-line
//    or one-column areas). Averages are taken on raw samples, then looked up
//    in the filter. One line call converts one line; line 0 and the area's
//    last line (line `height` - 1 of the area call) have no neighbours above
//    or below.
//
// Buffer sizes the caller must allow for:
//
//  - Source lines must lie sourceWidth samples apart (no padding between
//    source lines): the neighbour offsets are computed from sourceWidth.
//  - Replicating mode with an odd `height` converts the pair of lines
//    (height - 1, height): it reads one source line and writes one
//    destination line past the area. Both buffers must then hold height + 1
//    lines. Interpolating mode reads and writes only the area.
//  - Within a line nothing outside `width` pixels is read or written. The
//    last pixel of an odd width in replicating mode has only half a cell: it
//    takes the colour that lies in the missing column from the pixel to its
//    left (0 when the width is 1) and its green from the cell's green that
//    lies in its own column.
//
// The line form is meant for the area walk. Called directly outside an area
// conversion it finds no pattern flag and returns 18; called inside another
// conversion on the same thread it uses the thread's flags, and the
// neighbour offsets and row phases of the last area call through this
// converter (all zero before the first). The single-pixel form returns 26.
#ifndef ZO_BAYER_CONVERTERS_H
#define ZO_BAYER_CONVERTERS_H

#include <cstdint>
#include <mutex>

#include "ZoPixelConverter.h"

// The layout of the last area call through a converter, kept so that direct
// line calls see what that call left. Area calls themselves work from a copy
// in the thread's context, so threads never share it while converting.
class ZO_API ZoBayerLastLayout {
public:
    ZoBayerLastLayout() : mLayout() {}
    void Store(const ZoBayerLayout& layout);
    ZoBayerLayout Load() const;
    // The layout a line call works from: the one the area call in progress
    // put in the thread's context, else (a direct line call) a copy of the
    // last one stored, kept in `local`.
    const ZoBayerLayout& ForLine(const ZoPixelConverterContext& context, ZoBayerLayout& local) const;

private:
    mutable std::mutex mLock;
    ZoBayerLayout mLayout;
};

// Bayer sources with one byte per sample: the 8-bit Bayer types, and the
// "Normalized" 10- and 12-bit types whose most-significant-bit aligned
// 16-bit little-endian words are read by their upper byte only.
//
// An area call without a pattern flag uses the converter's default pattern.
class ZO_API ZoBayerRGB8ToRGB : public ZoPixelConverter {
public:
    // Source pixel size (extraBytes + 1) x bytesPerPixel; a sample is read
    // from the last byte of its extraBytes + 1 bytes. extraBytes is 0 or 1
    // (with any other value the line calls convert nothing and return 18).
    ZoBayerRGB8ToRGB(const std::int64_t& sourceType, const std::int64_t& destinationType,
                     std::uint32_t bytesPerPixel, std::uint32_t destinationPixelSize,
                     std::uint32_t pipeliningSize, bool bgr, std::uint32_t extraBytes,
                     std::uint32_t defaultPattern);
    ~ZoBayerRGB8ToRGB() override;

    using ZoPixelConverter::Convert;
    // See the notes at the top of this header for the lines and pixels read
    // and written beyond the area.
    std::uint32_t Convert(const unsigned char* source, std::uint32_t sourceWidth, std::uint32_t sourceHeight,
                          unsigned char* destination, std::uint32_t destinationWidth,
                          std::uint32_t destinationHeight, std::uint32_t width, std::uint32_t height,
                          std::uint32_t flags, std::uint32_t destinationPadding) const override;
    // Replicating: lines n and n+1 (0 on success, 18 without a pattern flag
    // in the thread's flags). Interpolating: line n (0, or 33 if the kernel
    // failed).
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;

    bool IsBGROrder() const { return mBGROrder; }
    // Bytes per source sample (1, or 2 for 16-bit containers).
    std::uint32_t GetSampleParam() const { return mSampleParam; }
    std::uint32_t GetRedIndex() const { return mRedIndex; }
    std::uint32_t GetGreenIndex() const { return mGreenIndex; }
    std::uint32_t GetBlueIndex() const { return mBlueIndex; }
    std::uint32_t GetDefaultPattern() const { return mDefaultPattern; }
    // The layout the last area call left (all zero before the first).
    ZoBayerLayout GetLastLayout() const { return mLastLayout.Load(); }

protected:
    // 2 lines per call when replicating, 1 when interpolating (by the
    // calling thread's current flags).
    std::uint32_t GetLinesPerConvert() const override;
    virtual std::uint32_t ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                              std::uint32_t count) const = 0;
    virtual std::uint32_t ConvertLinesInterpolated(const unsigned char* source, unsigned char* destination,
                                                   std::uint32_t count) const = 0;
    // The layout for a line call: the one the thread's area call set up, or
    // else (copied into `local`) the last one stored in the converter.
    const ZoBayerLayout& LineLayout(const ZoPixelConverterContext& context, ZoBayerLayout& local) const;

    bool mBGROrder;
    std::uint32_t mSampleParam;
    std::uint32_t mRedIndex;
    std::uint32_t mGreenIndex;
    std::uint32_t mBlueIndex;
    std::uint32_t mDefaultPattern;

private:
    mutable ZoBayerLastLayout mLastLayout;
};

// Bayer sources with right-aligned samples in 16-bit little-endian words
// (10 to 16 bits). For 8-bit channel output an average is shifted right by
// the converter's shift and its low 8 bits index the filter's 8-bit tables;
// RGB48 output keeps the 16-bit average and looks it up in the 16-bit
// tables.
//
// Deliberately, this family has no default pattern of its own: an area call
// without a pattern flag is read as GRBG whatever default the converter was
// built with.
class ZO_API ZoBayerRGB16ToRGB : public ZoPixelConverter {
public:
    ZoBayerRGB16ToRGB(const std::int64_t& sourceType, const std::int64_t& destinationType,
                      std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize,
                      std::uint32_t pipeliningSize, bool bgr, std::uint32_t shift, std::uint32_t defaultPattern);
    ~ZoBayerRGB16ToRGB() override;

    using ZoPixelConverter::Convert;
    // See the notes at the top of this header for the lines and pixels read
    // and written beyond the area.
    std::uint32_t Convert(const unsigned char* source, std::uint32_t sourceWidth, std::uint32_t sourceHeight,
                          unsigned char* destination, std::uint32_t destinationWidth,
                          std::uint32_t destinationHeight, std::uint32_t width, std::uint32_t height,
                          std::uint32_t flags, std::uint32_t destinationPadding) const override;
    // As for ZoBayerRGB8ToRGB.
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;

    bool IsBGROrder() const { return mBGROrder; }
    // Right shift that brings a sample to 8 bits (0 for 48-bit output).
    std::uint32_t GetSampleParam() const { return mSampleParam; }
    std::uint32_t GetRedIndex() const { return mRedIndex; }
    std::uint32_t GetGreenIndex() const { return mGreenIndex; }
    std::uint32_t GetBlueIndex() const { return mBlueIndex; }
    std::uint32_t GetDefaultPattern() const { return mDefaultPattern; }
    ZoBayerLayout GetLastLayout() const { return mLastLayout.Load(); }

protected:
    std::uint32_t GetLinesPerConvert() const override;
    virtual std::uint32_t ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                              std::uint32_t count) const = 0;
    virtual std::uint32_t ConvertLinesInterpolated(const unsigned char* source, unsigned char* destination,
                                                   std::uint32_t count) const = 0;
    const ZoBayerLayout& LineLayout(const ZoPixelConverterContext& context, ZoBayerLayout& local) const;

    bool mBGROrder;
    std::uint32_t mSampleParam;
    std::uint32_t mRedIndex;
    std::uint32_t mGreenIndex;
    std::uint32_t mBlueIndex;
    std::uint32_t mDefaultPattern;

private:
    mutable ZoBayerLastLayout mLastLayout;
};

// 8-bit family to RGB16 (5-6-5). Source pixel size extraBytes + 1.
// Replicating GRBG input deliberately takes the red of output pixels 2 and 3
// of every eight-pixel group from source pixel 4 of the first line (a green
// site) instead of pixel 3; the last width % 8 pixels of a line and every
// other pattern take each cell's own red.
class ZO_API ZoBayerRGB8ToRGB16 : public ZoBayerRGB8ToRGB {
public:
    ZoBayerRGB8ToRGB16(const std::int64_t& sourceType, std::uint32_t extraBytes, std::uint32_t defaultPattern);
    ~ZoBayerRGB8ToRGB16() override;

protected:
    std::uint32_t ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                      std::uint32_t count) const override;
    std::uint32_t ConvertLinesInterpolated(const unsigned char* source, unsigned char* destination,
                                           std::uint32_t count) const override;
};

// 8-bit family to RGB24 (bgr false) or BGR24 (bgr true).
class ZO_API ZoBayerRGB8ToRGB24 : public ZoBayerRGB8ToRGB {
public:
    ZoBayerRGB8ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t extraBytes,
                       std::uint32_t defaultPattern);
    ~ZoBayerRGB8ToRGB24() override;

protected:
    std::uint32_t ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                      std::uint32_t count) const override;
    std::uint32_t ConvertLinesInterpolated(const unsigned char* source, unsigned char* destination,
                                           std::uint32_t count) const override;
};

// 8-bit family to RGB32 (bgr false) or BGR32 (bgr true); fourth byte 0.
class ZO_API ZoBayerRGB8ToRGB32 : public ZoBayerRGB8ToRGB {
public:
    ZoBayerRGB8ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t extraBytes,
                       std::uint32_t defaultPattern);
    ~ZoBayerRGB8ToRGB32() override;

protected:
    std::uint32_t ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                      std::uint32_t count) const override;
    std::uint32_t ConvertLinesInterpolated(const unsigned char* source, unsigned char* destination,
                                           std::uint32_t count) const override;
};

// 16-bit family to RGB16 (5-6-5).
class ZO_API ZoBayerRGB16ToRGB16 : public ZoBayerRGB16ToRGB {
public:
    ZoBayerRGB16ToRGB16(const std::int64_t& sourceType, std::uint32_t shift, std::uint32_t defaultPattern);
    ~ZoBayerRGB16ToRGB16() override;

protected:
    std::uint32_t ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                      std::uint32_t count) const override;
    std::uint32_t ConvertLinesInterpolated(const unsigned char* source, unsigned char* destination,
                                           std::uint32_t count) const override;
};

// 16-bit family to RGB24 / BGR24. Its pipelining size is 2 where every other
// Bayer converter reports 8; deliberately kept so.
class ZO_API ZoBayerRGB16ToRGB24 : public ZoBayerRGB16ToRGB {
public:
    ZoBayerRGB16ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t shift,
                        std::uint32_t defaultPattern);
    ~ZoBayerRGB16ToRGB24() override;

protected:
    std::uint32_t ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                      std::uint32_t count) const override;
    std::uint32_t ConvertLinesInterpolated(const unsigned char* source, unsigned char* destination,
                                           std::uint32_t count) const override;
};

// 16-bit family to RGB32 / BGR32; fourth byte 0.
class ZO_API ZoBayerRGB16ToRGB32 : public ZoBayerRGB16ToRGB {
public:
    ZoBayerRGB16ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t shift,
                        std::uint32_t defaultPattern);
    ~ZoBayerRGB16ToRGB32() override;

protected:
    std::uint32_t ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                      std::uint32_t count) const override;
    std::uint32_t ConvertLinesInterpolated(const unsigned char* source, unsigned char* destination,
                                           std::uint32_t count) const override;
};

// 16-bit family to RGB48: whole 16-bit samples, three little-endian words,
// always red first. `normalized` chooses the destination type (RGB48
// Normalized or RGB48), not the channel order.
class ZO_API ZoBayerRGB16ToRGB48 : public ZoBayerRGB16ToRGB {
public:
    ZoBayerRGB16ToRGB48(const std::int64_t& sourceType, bool normalized, std::uint32_t defaultPattern);
    ~ZoBayerRGB16ToRGB48() override;

protected:
    std::uint32_t ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                      std::uint32_t count) const override;
    std::uint32_t ConvertLinesInterpolated(const unsigned char* source, unsigned char* destination,
                                           std::uint32_t count) const override;
};

#endif
