// The YUV converter classes: each line Convert reads the thread's filter once
// and hands the line to a kernel of YUVKernels.h.
#include "ZoYUVConverters.h"

#include "core/StreamStores.h"
#include "yuv/YUVKernels.h"

namespace {

using zo::YUVChannelTables;

YUVChannelTables TablesOf(const ZoRGBFilter& filter)
{
    return YUVChannelTables{filter.RedTable8(), filter.GreenTable8(), filter.BlueTable8(), filter.IsIdentity8()};
}

std::int64_t Destination(std::int64_t rgb, std::int64_t bgr, bool isBgr) { return isBgr ? bgr : rgb; }

constexpr std::uint32_t kRedOffsetRGB = 0, kRedOffsetBGR = 2;

// Pipelining sizes: 8 pixels (four pairs) a block for 8-bit 4:2:2, 4 for the
// others.
constexpr std::uint32_t kYUV8Pipelining = 8;
constexpr std::uint32_t kYUV10Pipelining = 4;
constexpr std::uint32_t kYUV444Pipelining = 4;
constexpr std::uint32_t kYUV10PixelBytes = 4;
constexpr std::uint32_t kYUV444PixelBytes = 3;  // whatever the extra bytes

}  // namespace

// ---------------------------------------------------------------------------
// 8-bit 4:2:2

ZoYUV8toRGB::ZoYUV8toRGB(const std::int64_t& sourceType, const std::int64_t& destinationType,
                         std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize,
                         std::uint32_t pipeliningSize, bool bgr, std::uint32_t sampleBytes,
                         std::uint32_t linesPerConvert)
    : ZoPixelConverter(sourceType, destinationType, sourcePixelSize, destinationPixelSize, pipeliningSize,
                       linesPerConvert),
      mBGR(bgr),
      mSampleBytes(sampleBytes),
      mRedOffset(bgr ? kRedOffsetBGR : kRedOffsetRGB),
      mGreenOffset(1),
      mBlueOffset(bgr ? kRedOffsetRGB : kRedOffsetBGR)
{
}

ZoYUV8toRGB::~ZoYUV8toRGB() = default;

std::uint32_t ZoYUV8toRGB::Convert(const unsigned char*, unsigned char*) const { return ZO_ERR_NOT_SUPPORTED; }

ZoYUV8ToRGB16::ZoYUV8ToRGB16(const std::int64_t& sourceType, std::uint32_t extra)
    : ZoYUV8toRGB(sourceType, ZO_PT_RGB16, 2 * (extra + 1), 2, kYUV8Pipelining, false, extra + 1, 1)
{
}
ZoYUV8ToRGB16::~ZoYUV8ToRGB16() = default;

std::uint32_t ZoYUV8ToRGB16::Convert(const unsigned char* source, unsigned char* destination,
                                     std::uint32_t count) const
{
    ContextHold hold(*this);
    const YUVChannelTables t = TablesOf(ActiveFilter(hold.Context()));
    const zo::YUV8PairReader reader{mSampleBytes};
    zo::YUV422LineToRGB<zo::WriteRGB16>(source, destination, count, reader, t, true);
    return ZO_OK;
}

ZoYUV8ToRGB24::ZoYUV8ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t extra)
    : ZoYUV8toRGB(sourceType, Destination(ZO_PT_RGB24, ZO_PT_BGR24, bgr), 2 * (extra + 1), 3, kYUV8Pipelining, bgr,
                  extra + 1, 1)
{
}
ZoYUV8ToRGB24::~ZoYUV8ToRGB24() = default;

std::uint32_t ZoYUV8ToRGB24::Convert(const unsigned char* source, unsigned char* destination,
                                     std::uint32_t count) const
{
    ContextHold hold(*this);
    const YUVChannelTables t = TablesOf(ActiveFilter(hold.Context()));
    const zo::YUV8PairReader reader{mSampleBytes};
    zo::ByChannelOrder<zo::Write24>(mBGR, [&](auto writer) {
        zo::YUV422LineToRGB<decltype(writer)>(source, destination, count, reader, t, true);
    });
    return ZO_OK;
}

ZoYUV8ToRGB32::ZoYUV8ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t extra)
    : ZoYUV8toRGB(sourceType, Destination(ZO_PT_RGB32, ZO_PT_BGR32, bgr), 2 * (extra + 1), 4, kYUV8Pipelining, bgr,
                  extra + 1, 1)
{
}
ZoYUV8ToRGB32::~ZoYUV8ToRGB32() = default;

std::uint32_t ZoYUV8ToRGB32::Convert(const unsigned char* source, unsigned char* destination,
                                     std::uint32_t count) const
{
    ContextHold hold(*this);
    const YUVChannelTables t = TablesOf(ActiveFilter(hold.Context()));
    const zo::YUV8PairReader reader{mSampleBytes};
    const bool stream = zo::StreamDestination(hold.Context());
    zo::ByChannelOrder<zo::Write32>(mBGR, [&](auto writer) {
        zo::YUV422LineToRGB<decltype(writer)>(source, destination, count, reader, t, true, stream);
    });
    return ZO_OK;
}

// ---------------------------------------------------------------------------
// 10-bit 4:2:2

ZoYUV10ToRGB::ZoYUV10ToRGB(const std::int64_t& sourceType, const std::int64_t& destinationType,
                           std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize,
                           std::uint32_t pipeliningSize, bool bgr, std::uint32_t shift, std::uint32_t linesPerConvert)
    : ZoPixelConverter(sourceType, destinationType, sourcePixelSize, destinationPixelSize, pipeliningSize,
                       linesPerConvert),
      mBGR(bgr),
      mShift(shift),
      mRedOffset(bgr ? kRedOffsetBGR : kRedOffsetRGB),
      mGreenOffset(1),
      mBlueOffset(bgr ? kRedOffsetRGB : kRedOffsetBGR)
{
}

ZoYUV10ToRGB::~ZoYUV10ToRGB() = default;

std::uint32_t ZoYUV10ToRGB::Convert(const unsigned char*, unsigned char*) const { return ZO_ERR_NOT_SUPPORTED; }

ZoYUV10ToRGB16::ZoYUV10ToRGB16(const std::int64_t& sourceType, std::uint32_t shift)
    : ZoYUV10ToRGB(sourceType, ZO_PT_RGB16, kYUV10PixelBytes, 2, kYUV10Pipelining, false, shift, 1)
{
}
ZoYUV10ToRGB16::~ZoYUV10ToRGB16() = default;

std::uint32_t ZoYUV10ToRGB16::Convert(const unsigned char* source, unsigned char* destination,
                                      std::uint32_t count) const
{
    ContextHold hold(*this);
    const YUVChannelTables t = TablesOf(ActiveFilter(hold.Context()));
    const zo::YUV10PairReader reader{mShift};
    zo::YUV422LineToRGB<zo::WriteRGB16>(source, destination, count, reader, t, true);
    return ZO_OK;
}

ZoYUV10ToRGB24::ZoYUV10ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t shift)
    : ZoYUV10ToRGB(sourceType, Destination(ZO_PT_RGB24, ZO_PT_BGR24, bgr), kYUV10PixelBytes, 3, kYUV10Pipelining,
                   bgr, shift, 1)
{
}
ZoYUV10ToRGB24::~ZoYUV10ToRGB24() = default;

std::uint32_t ZoYUV10ToRGB24::Convert(const unsigned char* source, unsigned char* destination,
                                      std::uint32_t count) const
{
    ContextHold hold(*this);
    const YUVChannelTables t = TablesOf(ActiveFilter(hold.Context()));
    const zo::YUV10PairReader reader{mShift};
    zo::ByChannelOrder<zo::Write24>(mBGR, [&](auto writer) {
        zo::YUV422LineToRGB<decltype(writer)>(source, destination, count, reader, t, true);
    });
    return ZO_OK;
}

ZoYUV10ToRGB32::ZoYUV10ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t shift)
    : ZoYUV10ToRGB(sourceType, Destination(ZO_PT_RGB32, ZO_PT_BGR32, bgr), kYUV10PixelBytes, 4, kYUV10Pipelining,
                   bgr, shift, 1)
{
}
ZoYUV10ToRGB32::~ZoYUV10ToRGB32() = default;

std::uint32_t ZoYUV10ToRGB32::Convert(const unsigned char* source, unsigned char* destination,
                                      std::uint32_t count) const
{
    ContextHold hold(*this);
    const YUVChannelTables t = TablesOf(ActiveFilter(hold.Context()));
    const zo::YUV10PairReader reader{mShift};
    zo::ByChannelOrder<zo::Write32>(mBGR, [&](auto writer) {
        zo::YUV422LineToRGB<decltype(writer)>(source, destination, count, reader, t, true);
    });
    return ZO_OK;
}

// ---------------------------------------------------------------------------
// 8-bit 4:4:4

ZoYUV8444ToRGB::ZoYUV8444ToRGB(const std::int64_t& sourceType, const std::int64_t& destinationType,
                               std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize,
                               std::uint32_t pipeliningSize, bool bgr, std::uint32_t sampleBytes,
                               std::uint32_t yOffset, std::uint32_t uOffset, std::uint32_t vOffset,
                               std::uint32_t linesPerConvert)
    : ZoPixelConverter(sourceType, destinationType, sourcePixelSize, destinationPixelSize, pipeliningSize,
                       linesPerConvert),
      mBGR(bgr),
      mSampleBytes(sampleBytes),
      mRedOffset(bgr ? kRedOffsetBGR : kRedOffsetRGB),
      mGreenOffset(1),
      mBlueOffset(bgr ? kRedOffsetRGB : kRedOffsetBGR),
      mYOffset(yOffset),
      mUOffset(uOffset),
      mVOffset(vOffset)
{
}

ZoYUV8444ToRGB::~ZoYUV8444ToRGB() = default;

std::uint32_t ZoYUV8444ToRGB::Convert(const unsigned char*, unsigned char*) const { return ZO_ERR_NOT_SUPPORTED; }

std::uint32_t ZoYUV8444ToRGB::BlockedCount(std::uint32_t count) const
{
    const std::uint32_t block = GetPipeliningSize();
    return (count / block) * block;
}

ZoYUV8444ToRGB16::ZoYUV8444ToRGB16(const std::int64_t& sourceType, std::uint32_t extra, std::uint32_t yOffset,
                                   std::uint32_t uOffset, std::uint32_t vOffset)
    : ZoYUV8444ToRGB(sourceType, ZO_PT_RGB16, kYUV444PixelBytes, 2, kYUV444Pipelining, false, extra + 1, yOffset,
                     uOffset, vOffset, 1)
{
}
ZoYUV8444ToRGB16::~ZoYUV8444ToRGB16() = default;

std::uint32_t ZoYUV8444ToRGB16::Convert(const unsigned char* source, unsigned char* destination,
                                        std::uint32_t count) const
{
    ContextHold hold(*this);
    const YUVChannelTables t = TablesOf(ActiveFilter(hold.Context()));
    // Deliberate: the four-at-a-time part of this converter has always
    // looked green up in the blue table and blue in the green table, while
    // the remainder uses them as named. Kept so that filtered RGB16 output
    // stays as it always was.
    const YUVChannelTables swapped{t.red, t.blue, t.green, t.identity};
    zo::YUV444LineToRGB<zo::WriteRGB16>(source, destination, count, BlockedCount(count), mSampleBytes - 1, mYOffset,
                                        mUOffset, mVOffset, swapped, t, true);
    return ZO_OK;
}

ZoYUV8444ToRGB24::ZoYUV8444ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t extra,
                                   std::uint32_t yOffset, std::uint32_t uOffset, std::uint32_t vOffset)
    : ZoYUV8444ToRGB(sourceType, Destination(ZO_PT_RGB24, ZO_PT_BGR24, bgr), kYUV444PixelBytes, 3,
                     kYUV444Pipelining, bgr, extra + 1, yOffset, uOffset, vOffset, 1)
{
}
ZoYUV8444ToRGB24::~ZoYUV8444ToRGB24() = default;

std::uint32_t ZoYUV8444ToRGB24::Convert(const unsigned char* source, unsigned char* destination,
                                        std::uint32_t count) const
{
    ContextHold hold(*this);
    const YUVChannelTables t = TablesOf(ActiveFilter(hold.Context()));
    const std::uint32_t blocked = BlockedCount(count);
    zo::ByChannelOrder<zo::Write24>(mBGR, [&](auto writer) {
        zo::YUV444LineToRGB<decltype(writer)>(source, destination, count, blocked, mSampleBytes - 1, mYOffset,
                                              mUOffset, mVOffset, t, t, true);
    });
    return ZO_OK;
}

ZoYUV8444ToRGB32::ZoYUV8444ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t extra,
                                   std::uint32_t yOffset, std::uint32_t uOffset, std::uint32_t vOffset)
    : ZoYUV8444ToRGB(sourceType, Destination(ZO_PT_RGB32, ZO_PT_BGR32, bgr), kYUV444PixelBytes, 4,
                     kYUV444Pipelining, bgr, extra + 1, yOffset, uOffset, vOffset, 1)
{
}
ZoYUV8444ToRGB32::~ZoYUV8444ToRGB32() = default;

std::uint32_t ZoYUV8444ToRGB32::Convert(const unsigned char* source, unsigned char* destination,
                                        std::uint32_t count) const
{
    ContextHold hold(*this);
    const YUVChannelTables t = TablesOf(ActiveFilter(hold.Context()));
    const std::uint32_t blocked = BlockedCount(count);
    zo::ByChannelOrder<zo::Write32>(mBGR, [&](auto writer) {
        zo::YUV444LineToRGB<decltype(writer)>(source, destination, count, blocked, mSampleBytes - 1, mYOffset,
                                              mUOffset, mVOffset, t, t, true);
    });
    return ZO_OK;
}
