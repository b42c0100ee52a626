// The 8-bit Bayer family: one byte per sample (8-bit Bayer types, and the
// upper byte of "Normalized" 16-bit containers).
#include "ZoBayerConverters.h"
#include "bayer/BayerKernels.h"
#include "bayer/BayerTablePass.h"

namespace {

using namespace zo;

// Calls body(reader, output) with the sample reader for `sampleBytes` (1, or
// 2 for the upper byte of a word) and the output for `filter` (the identity
// output with `identity`). 18 for any other sample size.
template <class Writer, class Body>
std::uint32_t With8(const ZoRGBFilter& filter, bool identity, std::uint32_t sampleBytes, Body body)
{
    auto withOutput = [&](auto reader) {
        if (identity || filter.IsIdentity8())
            body(reader, Identity8<Writer, false>{0});
        else
            body(reader, Filtered8<Writer, false>{filter.RedTable8(), filter.GreenTable8(), filter.BlueTable8(), 0});
    };
    if (sampleBytes == 1)
        withOutput(Samples8{});
    else if (sampleBytes == 2)
        withOutput(UpperBytes16{});
    else
        return ZO_ERR_BAD_ARGUMENT;
    return ZO_OK;
}

// A filter that is not the identity on a 24- or 32-bit layout: the identity
// line (the vector path), then the table pass (see BayerTablePass.h).
template <class Writer>
std::uint32_t Nearest8(const BayerLineCall& call, const ZoRGBFilter& filter, std::uint32_t sampleBytes,
                       bool redQuirk)
{
    if (call.pattern < 0)
        return ZO_ERR_BAD_ARGUMENT;
    std::uint32_t result = ZO_OK;
    if (WithTablePass<Writer>(filter, [&](const simd::LutPass8& pass) {
            result = With8<Writer>(filter, true, sampleBytes, [&](auto reader, const auto& out) {
                ReplicateThenPass<decltype(reader)>(call, redQuirk, out,
                                                    [&](unsigned char* line, std::uint32_t n) { pass.Apply(line, n); });
            });
        }))
        return result;
    return With8<Writer>(filter, false, sampleBytes, [&](auto reader, const auto& out) {
        ReplicateCall<decltype(reader)>(call, redQuirk, out);
    });
}

// Interpolated lines of 8-bit samples apply the tables inside the vector
// path where the level can (VBMI lookups, or the tables' form; one pass,
// see WithFusedLine); others take the identity line and the table pass, or
// the kernel's own lookups.
template <class Writer>
std::uint32_t Interpolated8(const BayerLineCall& call, const ZoRGBFilter& filter, std::uint32_t sampleBytes)
{
    if (sampleBytes == 1 &&
        WithFusedLine<Writer>(filter, [&](const auto& out) { InterpolateCall<Samples8>(call, out); }))
        return ZO_OK;
    std::uint32_t result = ZO_OK;
    if (WithTablePass<Writer>(filter, [&](const simd::LutPass8& pass) {
            result = With8<Writer>(filter, true, sampleBytes, [&](auto reader, const auto& out) {
                InterpolateCall<decltype(reader)>(call, out);
                pass.Apply(call.destination, call.count);
            });
        }))
        return result;
    return With8<Writer>(filter, false, sampleBytes,
                         [&](auto reader, const auto& out) { InterpolateCall<decltype(reader)>(call, out); });
}

}  // namespace

// ---- Family ----------------------------------------------------------------

ZoBayerRGB8ToRGB::ZoBayerRGB8ToRGB(const std::int64_t& sourceType, const std::int64_t& destinationType,
                                   std::uint32_t bytesPerPixel, std::uint32_t destinationPixelSize,
                                   std::uint32_t pipeliningSize, bool bgr, std::uint32_t extraBytes,
                                   std::uint32_t defaultPattern)
    : ZoPixelConverter(sourceType, destinationType, (extraBytes + 1) * bytesPerPixel, destinationPixelSize,
                       pipeliningSize, 1),
      mBGROrder(bgr),
      mSampleParam(extraBytes + 1),
      mRedIndex(bgr ? 2 : 0),
      mGreenIndex(1),
      mBlueIndex(bgr ? 0 : 2),
      mDefaultPattern(defaultPattern)
{
}

ZoBayerRGB8ToRGB::~ZoBayerRGB8ToRGB() = default;

std::uint32_t ZoBayerRGB8ToRGB::GetLinesPerConvert() const
{
    ContextHold hold(*this);
    return (hold.Context().flags & FLAG_BAYER_INTERPOLATE) ? 1 : 2;
}

std::uint32_t ZoBayerRGB8ToRGB::Convert(const unsigned char* source, std::uint32_t sourceWidth,
                                        std::uint32_t sourceHeight, unsigned char* destination,
                                        std::uint32_t destinationWidth, std::uint32_t destinationHeight,
                                        std::uint32_t width, std::uint32_t height, std::uint32_t flags,
                                        std::uint32_t destinationPadding) const
{
    if ((flags & ZO_FLAG_BAYER_PATTERN_MASK) == 0)
        flags |= mDefaultPattern;
    const ZoBayerLayout layout = ComputeBayerLayout(sourceWidth, flags);
    mLastLayout.Store(layout);
    ContextHold hold(*this);
    BayerLayoutScope scope(hold.Context(), layout);
    return ZoPixelConverter::Convert(source, sourceWidth, sourceHeight, destination, destinationWidth,
                                     destinationHeight, width, height, flags, destinationPadding);
}

std::uint32_t ZoBayerRGB8ToRGB::Convert(const unsigned char* source, unsigned char* destination,
                                        std::uint32_t count) const
{
    ContextHold hold(*this);
    return (hold.Context().flags & FLAG_BAYER_INTERPOLATE) ? ConvertLinesInterpolated(source, destination, count)
                                                           : ConvertLinesNearest(source, destination, count);
}

const ZoBayerLayout& ZoBayerRGB8ToRGB::LineLayout(const ZoPixelConverterContext& context,
                                                  ZoBayerLayout& local) const
{
    return mLastLayout.ForLine(context, local);
}

// ---- RGB16 -----------------------------------------------------------------

ZoBayerRGB8ToRGB16::ZoBayerRGB8ToRGB16(const std::int64_t& sourceType, std::uint32_t extraBytes,
                                       std::uint32_t defaultPattern)
    : ZoBayerRGB8ToRGB(sourceType, ZO_PT_RGB16, 1, 2, 8, false, extraBytes, defaultPattern)
{
}

ZoBayerRGB8ToRGB16::~ZoBayerRGB8ToRGB16() = default;

std::uint32_t ZoBayerRGB8ToRGB16::ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                                      std::uint32_t count) const
{
    ContextHold hold(*this);
    const ZoPixelConverterContext& context = hold.Context();
    const BayerLineCall call = MakeBayerLineCall(context, nullptr, source, destination, count);
    // This routine alone carries the red-sampling quirk of GRBG input.
    return Nearest8<WriteRGB16>(call, ActiveFilter(context), mSampleParam, true);
}

std::uint32_t ZoBayerRGB8ToRGB16::ConvertLinesInterpolated(const unsigned char* source,
                                                           unsigned char* destination, std::uint32_t count) const
{
    try {
        ContextHold hold(*this);
        const ZoPixelConverterContext& context = hold.Context();
        ZoBayerLayout local;
        const BayerLineCall call =
            MakeBayerLineCall(context, &LineLayout(context, local), source, destination, count);
        return Interpolated8<WriteRGB16>(call, ActiveFilter(context), mSampleParam);
    } catch (...) {
        return ZO_ERR_INTERPOLATION;
    }
}

// ---- RGB24 / BGR24 ---------------------------------------------------------

ZoBayerRGB8ToRGB24::ZoBayerRGB8ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t extraBytes,
                                       std::uint32_t defaultPattern)
    : ZoBayerRGB8ToRGB(sourceType, bgr ? ZO_PT_BGR24 : ZO_PT_RGB24, 1, 3, 8, bgr, extraBytes, defaultPattern)
{
}

ZoBayerRGB8ToRGB24::~ZoBayerRGB8ToRGB24() = default;

std::uint32_t ZoBayerRGB8ToRGB24::ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                                      std::uint32_t count) const
{
    ContextHold hold(*this);
    const ZoPixelConverterContext& context = hold.Context();
    const BayerLineCall call = MakeBayerLineCall(context, nullptr, source, destination, count);
    const ZoRGBFilter& filter = ActiveFilter(context);
    return mBGROrder ? Nearest8<WriteBGR24>(call, filter, mSampleParam, false)
                     : Nearest8<WriteRGB24>(call, filter, mSampleParam, false);
}

std::uint32_t ZoBayerRGB8ToRGB24::ConvertLinesInterpolated(const unsigned char* source,
                                                           unsigned char* destination, std::uint32_t count) const
{
    try {
        ContextHold hold(*this);
        const ZoPixelConverterContext& context = hold.Context();
        ZoBayerLayout local;
        const BayerLineCall call =
            MakeBayerLineCall(context, &LineLayout(context, local), source, destination, count);
        const ZoRGBFilter& filter = ActiveFilter(context);
        return mBGROrder ? Interpolated8<WriteBGR24>(call, filter, mSampleParam)
                         : Interpolated8<WriteRGB24>(call, filter, mSampleParam);
    } catch (...) {
        return ZO_ERR_INTERPOLATION;
    }
}

// ---- RGB32 / BGR32 ---------------------------------------------------------

ZoBayerRGB8ToRGB32::ZoBayerRGB8ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t extraBytes,
                                       std::uint32_t defaultPattern)
    : ZoBayerRGB8ToRGB(sourceType, bgr ? ZO_PT_BGR32 : ZO_PT_RGB32, 1, 4, 8, bgr, extraBytes, defaultPattern)
{
}

ZoBayerRGB8ToRGB32::~ZoBayerRGB8ToRGB32() = default;

std::uint32_t ZoBayerRGB8ToRGB32::ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                                      std::uint32_t count) const
{
    ContextHold hold(*this);
    const ZoPixelConverterContext& context = hold.Context();
    const BayerLineCall call = MakeBayerLineCall(context, nullptr, source, destination, count);
    const ZoRGBFilter& filter = ActiveFilter(context);
    return mBGROrder ? Nearest8<WriteBGR32>(call, filter, mSampleParam, false)
                     : Nearest8<WriteRGB32>(call, filter, mSampleParam, false);
}

std::uint32_t ZoBayerRGB8ToRGB32::ConvertLinesInterpolated(const unsigned char* source,
                                                           unsigned char* destination, std::uint32_t count) const
{
    ContextHold hold(*this);
    const ZoPixelConverterContext& context = hold.Context();
    ZoBayerLayout local;
    const BayerLineCall call = MakeBayerLineCall(context, &LineLayout(context, local), source, destination, count);
    const ZoRGBFilter& filter = ActiveFilter(context);
    return mBGROrder ? Interpolated8<WriteBGR32>(call, filter, mSampleParam)
                     : Interpolated8<WriteRGB32>(call, filter, mSampleParam);
}
