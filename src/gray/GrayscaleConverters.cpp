// Grayscale converters: each form picks the kernel specialised for its shift
// or pixel size once per call and runs it over the line.
#include "ZoGrayscaleConverters.h"

#include "core/StreamStores.h"
#include "gray/GrayscaleKernels.h"
#include "gray/GraySimd.h"

namespace g = zo::gray;

namespace {

const std::int64_t kGray8 = ZO_PT_GRAY8;
const std::int64_t kRGB16 = ZO_PT_RGB16;

std::int64_t RGB24Type(bool bgr) { return bgr ? ZO_PT_BGR24 : ZO_PT_RGB24; }
std::int64_t RGB32Type(bool bgr) { return bgr ? ZO_PT_BGR32 : ZO_PT_RGB32; }

// A 16-bit-sample line to any layout, the registered shifts specialised.
template <class Writer>
void ShiftedWordsLine(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift)
{
    switch (shift) {
    case 2:
        g::GrayLine<Writer>(s, d, n, g::ReadWordShifted<2>{});
        break;
    case 4:
        g::GrayLine<Writer>(s, d, n, g::ReadWordShifted<4>{});
        break;
    case 6:
        g::GrayLine<Writer>(s, d, n, g::ReadWordShifted<6>{});
        break;
    default:
        g::GrayLine<Writer>(s, d, n, g::ReadWordShiftedBy{shift});
        break;
    }
}

// The RGB16 and RGB32 expansions exist for the three table shifts only: any
// other shift writes nothing (deliberately; only 2, 4 and 6 are registered).
template <class Writer>
void TableShiftLine(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift)
{
    if (shift == 2 || shift == 4 || shift == 6)
        ShiftedWordsLine<Writer>(s, d, n, shift);
}

// One byte of each pixel (its last byte) to any layout.
template <class Writer>
void LastByteLine(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t pixelBytes)
{
    if (pixelBytes == 1)
        g::GrayLine<Writer>(s, d, n, g::ReadLastByte<1>{});
    else if (pixelBytes == 2)
        g::GrayLine<Writer>(s, d, n, g::ReadLastByte<2>{});
    else
        g::GrayLine<Writer>(s, d, n, g::ReadLastByteOf{pixelBytes});
}

// Whether a line of n pixels is written with streaming stores
// (core/StreamStores.h), through the converter's context holder `Hold`.
// Lines shorter than this never are, and their direct calls skip the
// context look-up.
constexpr std::uint32_t kStreamMinPixels = 256;
template <class Hold, class Converter>
bool StreamLine(const Converter& converter, std::uint32_t n)
{
    if (n < kStreamMinPixels)
        return false;
    const Hold hold(converter);
    return zo::StreamDestination(hold.Context());
}

// The single-pixel form of the byte-taking classes reads the FIRST byte of
// the pixel, where the line form reads the last: for 16-bit sources the low
// byte instead of the high one. The asymmetry is deliberate and kept.
template <class Writer>
void FirstBytePixel(const unsigned char* s, unsigned char* d)
{
    Writer::Put(d, s[0]);
}

}  // namespace

// Base values: source bytes, destination bytes, pipelining 4, one line a call.
ZoGrayscale16ToGrayscale16RightShift::ZoGrayscale16ToGrayscale16RightShift(const std::int64_t& sourceType,
                                                                           const std::int64_t& destinationType,
                                                                           std::uint32_t shift)
    : ZoPixelConverter(sourceType, destinationType, 2, 2, 4, 1), mShift(shift)
{
}
ZoGrayscale16ToGrayscale16LeftShift::ZoGrayscale16ToGrayscale16LeftShift(const std::int64_t& sourceType,
                                                                         const std::int64_t& destinationType,
                                                                         std::uint32_t shift)
    : ZoPixelConverter(sourceType, destinationType, 2, 2, 4, 1), mShift(shift)
{
}
ZoGrayscale16ToGrayscale8::ZoGrayscale16ToGrayscale8(const std::int64_t& sourceType, std::uint32_t shift)
    : ZoPixelConverter(sourceType, kGray8, 2, 1, 4, 1), mShift(shift)
{
}
ZoGrayscale16NormalizedToGrayscale8::ZoGrayscale16NormalizedToGrayscale8(const std::int64_t& sourceType)
    : ZoPixelConverter(sourceType, kGray8, 2, 1, 4, 1)
{
}
ZoGrayscale16ToRGB16::ZoGrayscale16ToRGB16(const std::int64_t& sourceType, std::uint32_t shift)
    : ZoPixelConverter(sourceType, kRGB16, 2, 2, 4, 1), mShift(shift)
{
}
ZoGrayscale16ToRGB24::ZoGrayscale16ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t shift)
    : ZoPixelConverter(sourceType, RGB24Type(bgr), 2, 3, 4, 1), mShift(shift)
{
}
ZoGrayscale16ToRGB32::ZoGrayscale16ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t shift)
    : ZoPixelConverter(sourceType, RGB32Type(bgr), 2, 4, 4, 1), mShift(shift)
{
}
ZoGrayscale8ToRGB16::ZoGrayscale8ToRGB16(const std::int64_t& sourceType, std::uint32_t extraBytes)
    : ZoPixelConverter(sourceType, kRGB16, extraBytes + 1, 2, 4, 1), mSourcePixelBytes(extraBytes + 1)
{
}
ZoGrayscale8ToRGB24::ZoGrayscale8ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t extraBytes)
    : ZoPixelConverter(sourceType, RGB24Type(bgr), extraBytes + 1, 3, 4, 1), mSourcePixelBytes(extraBytes + 1)
{
}
ZoGrayscale8ToRGB32::ZoGrayscale8ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t extraBytes)
    : ZoPixelConverter(sourceType, RGB32Type(bgr), extraBytes + 1, 4, 4, 1), mSourcePixelBytes(extraBytes + 1)
{
}

ZoGrayscale16ToGrayscale16RightShift::~ZoGrayscale16ToGrayscale16RightShift() = default;
ZoGrayscale16ToGrayscale16LeftShift::~ZoGrayscale16ToGrayscale16LeftShift() = default;
ZoGrayscale16ToGrayscale8::~ZoGrayscale16ToGrayscale8() = default;
ZoGrayscale16NormalizedToGrayscale8::~ZoGrayscale16NormalizedToGrayscale8() = default;
ZoGrayscale16ToRGB16::~ZoGrayscale16ToRGB16() = default;
ZoGrayscale16ToRGB24::~ZoGrayscale16ToRGB24() = default;
ZoGrayscale16ToRGB32::~ZoGrayscale16ToRGB32() = default;
ZoGrayscale8ToRGB16::~ZoGrayscale8ToRGB16() = default;
ZoGrayscale8ToRGB24::~ZoGrayscale8ToRGB24() = default;
ZoGrayscale8ToRGB32::~ZoGrayscale8ToRGB32() = default;

// ---------------------------------------------------------------------------

std::uint32_t ZoGrayscale16ToGrayscale16RightShift::Convert(const unsigned char* s, unsigned char* d,
                                                            std::uint32_t n) const
{
    g::RightShiftLine(s, d, n, mShift);
    return ZO_OK;
}
std::uint32_t ZoGrayscale16ToGrayscale16RightShift::Convert(const unsigned char* s, unsigned char* d) const
{
    g::RightShiftLine(s, d, 1, mShift);
    return ZO_OK;
}

std::uint32_t ZoGrayscale16ToGrayscale16LeftShift::Convert(const unsigned char* s, unsigned char* d,
                                                           std::uint32_t n) const
{
    g::LeftShiftLine(s, d, n, mShift);
    return ZO_OK;
}
std::uint32_t ZoGrayscale16ToGrayscale16LeftShift::Convert(const unsigned char* s, unsigned char* d) const
{
    g::LeftShiftLine(s, d, 1, mShift);
    return ZO_OK;
}

std::uint32_t ZoGrayscale16ToGrayscale8::Convert(const unsigned char* s, unsigned char* d, std::uint32_t n) const
{
    std::uint32_t done = 0;
    if (mShift < 16) {
        const g::GrayPaths& paths = g::GrayActivePaths();
        done = StreamLine<ContextHold>(*this, n) ? paths.wordsToGray8Stream(s, d, n, mShift) : paths.wordsToGray8(s, d, n, mShift);
    }
    ShiftedWordsLine<g::PutGray8>(s + 2 * std::size_t(done), d + done, n - done, mShift);
    return ZO_OK;
}
std::uint32_t ZoGrayscale16ToGrayscale8::Convert(const unsigned char* s, unsigned char* d) const
{
    ShiftedWordsLine<g::PutGray8>(s, d, 1, mShift);
    return ZO_OK;
}

// The high byte of a little-endian word is the second byte in memory.
std::uint32_t ZoGrayscale16NormalizedToGrayscale8::Convert(const unsigned char* s, unsigned char* d,
                                                           std::uint32_t n) const
{
    g::GrayLine<g::PutGray8>(s, d, n, g::ReadLastByte<2>{});
    return ZO_OK;
}
std::uint32_t ZoGrayscale16NormalizedToGrayscale8::Convert(const unsigned char* s, unsigned char* d) const
{
    g::GrayLine<g::PutGray8>(s, d, 1, g::ReadLastByte<2>{});
    return ZO_OK;
}

std::uint32_t ZoGrayscale16ToRGB16::Convert(const unsigned char* s, unsigned char* d, std::uint32_t n) const
{
    TableShiftLine<g::PutRGB16>(s, d, n, mShift);
    return ZO_OK;
}
std::uint32_t ZoGrayscale16ToRGB16::Convert(const unsigned char* s, unsigned char* d) const
{
    TableShiftLine<g::PutRGB16>(s, d, 1, mShift);
    return ZO_OK;
}

std::uint32_t ZoGrayscale16ToRGB24::Convert(const unsigned char* s, unsigned char* d, std::uint32_t n) const
{
    const std::uint32_t done = mShift < 16 ? g::GrayActivePaths().wordsToRGB24(s, d, n, mShift) : 0;
    ShiftedWordsLine<g::PutRGB24>(s + 2 * std::size_t(done), d + 3 * std::size_t(done), n - done, mShift);
    return ZO_OK;
}
std::uint32_t ZoGrayscale16ToRGB24::Convert(const unsigned char* s, unsigned char* d) const
{
    ShiftedWordsLine<g::PutRGB24>(s, d, 1, mShift);
    return ZO_OK;
}

std::uint32_t ZoGrayscale16ToRGB32::Convert(const unsigned char* s, unsigned char* d, std::uint32_t n) const
{
    TableShiftLine<g::PutRGB32>(s, d, n, mShift);
    return ZO_OK;
}
std::uint32_t ZoGrayscale16ToRGB32::Convert(const unsigned char* s, unsigned char* d) const
{
    TableShiftLine<g::PutRGB32>(s, d, 1, mShift);
    return ZO_OK;
}

std::uint32_t ZoGrayscale8ToRGB16::Convert(const unsigned char* s, unsigned char* d, std::uint32_t n) const
{
    // One-byte pixels: the vector path first, the scalar kernel for the rest.
    std::uint32_t done = 0;
    if (mSourcePixelBytes == 1) {
        const g::GrayPaths& paths = g::GrayActivePaths();
        done = StreamLine<ContextHold>(*this, n) ? paths.bytesToRGB16Stream(s, d, n) : paths.bytesToRGB16(s, d, n);
    }
    LastByteLine<g::PutRGB16>(s + mSourcePixelBytes * std::size_t(done), d + 2 * std::size_t(done), n - done,
                              mSourcePixelBytes);
    return ZO_OK;
}
std::uint32_t ZoGrayscale8ToRGB16::Convert(const unsigned char* s, unsigned char* d) const
{
    FirstBytePixel<g::PutRGB16>(s, d);
    return ZO_OK;
}

std::uint32_t ZoGrayscale8ToRGB24::Convert(const unsigned char* s, unsigned char* d, std::uint32_t n) const
{
    // Vector paths for one-byte pixels and for the high byte of 16-bit words.
    std::uint32_t done = 0;
    if (mSourcePixelBytes == 1)
        done = g::GrayActivePaths().bytesToRGB24(s, d, n);
    else if (mSourcePixelBytes == 2)
        done = g::GrayActivePaths().wordsToRGB24(s, d, n, 8);
    LastByteLine<g::PutRGB24>(s + mSourcePixelBytes * std::size_t(done), d + 3 * std::size_t(done), n - done,
                              mSourcePixelBytes);
    return ZO_OK;
}
std::uint32_t ZoGrayscale8ToRGB24::Convert(const unsigned char* s, unsigned char* d) const
{
    FirstBytePixel<g::PutRGB24>(s, d);
    return ZO_OK;
}

std::uint32_t ZoGrayscale8ToRGB32::Convert(const unsigned char* s, unsigned char* d, std::uint32_t n) const
{
    // One-byte pixels: the vector path first, the scalar kernel for the rest.
    std::uint32_t done = 0;
    if (mSourcePixelBytes == 1) {
        const g::GrayPaths& paths = g::GrayActivePaths();
        done = StreamLine<ContextHold>(*this, n) ? paths.bytesToRGB32Stream(s, d, n) : paths.bytesToRGB32(s, d, n);
    }
    LastByteLine<g::PutRGB32>(s + done, d + std::size_t(done) * 4, n - done, mSourcePixelBytes);
    return ZO_OK;
}
std::uint32_t ZoGrayscale8ToRGB32::Convert(const unsigned char* s, unsigned char* d) const
{
    FirstBytePixel<g::PutRGB32>(s, d);
    return ZO_OK;
}
