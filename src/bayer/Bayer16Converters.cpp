// The 16-bit Bayer family: right-aligned samples in 16-bit words.
#include "ZoBayerConverters.h"
#include "bayer/BayerKernels.h"
#include "bayer/BayerTablePass.h"

namespace {

using namespace zo;

// Calls body(output) with the 8-bit channel output for `filter` (the
// identity output with `identity`) and `shift` (a shift past 31 gives 0 like
// a shift of 31 does on 16-bit samples).
template <class Writer, class Body>
void With16(const ZoRGBFilter& filter, bool identity, std::uint32_t shift, Body body)
{
    shift = shift < 31 ? shift : 31;
    if (identity || filter.IsIdentity8())
        body(Identity8<Writer, true>{shift});
    else
        body(Filtered8<Writer, true>{filter.RedTable8(), filter.GreenTable8(), filter.BlueTable8(), shift});
}

template <class Writer>
std::uint32_t Nearest16(const BayerLineCall& call, const ZoRGBFilter& filter, std::uint32_t shift)
{
    if (call.pattern < 0)
        return ZO_ERR_BAD_ARGUMENT;
    // A filter that is not the identity on a 24- or 32-bit layout: the
    // identity line, whose channels are (v >> shift) truncated to 8 bits, the
    // very indices of the filtered path, then the table pass.
    if (UsesTablePass<Writer>(filter)) {
        With16<Writer>(filter, true, shift, [&](const auto& out) {
            ReplicateThenPass<Samples16>(call, false, out, [&](unsigned char* line, std::uint32_t n) {
                TablePass<Writer>(line, n, filter);
            });
        });
        return ZO_OK;
    }
    With16<Writer>(filter, false, shift, [&](const auto& out) { ReplicateCall<Samples16>(call, false, out); });
    return ZO_OK;
}

template <class Writer>
std::uint32_t Interpolated16(const BayerLineCall& call, const ZoRGBFilter& filter, std::uint32_t shift)
{
    if (UsesTablePass<Writer>(filter)) {  // as above
        With16<Writer>(filter, true, shift, [&](const auto& out) { InterpolateCall<Samples16>(call, out); });
        TablePass<Writer>(call.destination, call.count, filter);
        return ZO_OK;
    }
    With16<Writer>(filter, false, shift, [&](const auto& out) { InterpolateCall<Samples16>(call, out); });
    return ZO_OK;
}

// RGB48: whole samples through the 16-bit tables, looked up inside the
// kernel. (An identity line followed by a 16-bit table pass, scalar or with
// dword gathers, measured slower on this path: the gathers are no faster than
// plain lookups, and the tables' 24 KiB compete with the line for the
// first-level cache.)
template <class Body>
void With48(const ZoRGBFilter& filter, Body body)
{
    if (filter.IsIdentity16())
        body(Identity48{});
    else
        body(Filtered48{filter.RedTable16(), filter.GreenTable16(), filter.BlueTable16()});
}

}  // namespace

// ---- Family ----------------------------------------------------------------

ZoBayerRGB16ToRGB::ZoBayerRGB16ToRGB(const std::int64_t& sourceType, const std::int64_t& destinationType,
                                     std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize,
                                     std::uint32_t pipeliningSize, bool bgr, std::uint32_t shift,
                                     std::uint32_t defaultPattern)
    : ZoPixelConverter(sourceType, destinationType, sourcePixelSize, destinationPixelSize, pipeliningSize, 1),
      mBGROrder(bgr),
      mSampleParam(shift),
      mRedIndex(bgr ? 2 : 0),
      mGreenIndex(1),
      mBlueIndex(bgr ? 0 : 2),
      mDefaultPattern(defaultPattern)
{
}

ZoBayerRGB16ToRGB::~ZoBayerRGB16ToRGB() = default;

std::uint32_t ZoBayerRGB16ToRGB::GetLinesPerConvert() const
{
    ContextHold hold(*this);
    return (hold.Context().flags & FLAG_BAYER_INTERPOLATE) ? 1 : 2;
}

std::uint32_t ZoBayerRGB16ToRGB::Convert(const unsigned char* source, std::uint32_t sourceWidth,
                                         std::uint32_t sourceHeight, unsigned char* destination,
                                         std::uint32_t destinationWidth, std::uint32_t destinationHeight,
                                         std::uint32_t width, std::uint32_t height, std::uint32_t flags,
                                         std::uint32_t destinationPadding) const
{
    // Deliberately no default-pattern merge here (unlike the 8-bit family):
    // without a pattern flag the base walk reads the mosaic as GRBG.
    const ZoBayerLayout layout = ComputeBayerLayout(sourceWidth, flags);
    mLastLayout.Store(layout);
    ContextHold hold(*this);
    BayerLayoutScope scope(hold.Context(), layout);
    return ZoPixelConverter::Convert(source, sourceWidth, sourceHeight, destination, destinationWidth,
                                     destinationHeight, width, height, flags, destinationPadding);
}

std::uint32_t ZoBayerRGB16ToRGB::Convert(const unsigned char* source, unsigned char* destination,
                                         std::uint32_t count) const
{
    ContextHold hold(*this);
    return (hold.Context().flags & FLAG_BAYER_INTERPOLATE) ? ConvertLinesInterpolated(source, destination, count)
                                                           : ConvertLinesNearest(source, destination, count);
}

const ZoBayerLayout& ZoBayerRGB16ToRGB::LineLayout(const ZoPixelConverterContext& context,
                                                   ZoBayerLayout& local) const
{
    return mLastLayout.ForLine(context, local);
}

// ---- RGB16 -----------------------------------------------------------------

ZoBayerRGB16ToRGB16::ZoBayerRGB16ToRGB16(const std::int64_t& sourceType, std::uint32_t shift,
                                         std::uint32_t defaultPattern)
    : ZoBayerRGB16ToRGB(sourceType, ZO_PT_RGB16, 2, 2, 8, false, shift, defaultPattern)
{
}

ZoBayerRGB16ToRGB16::~ZoBayerRGB16ToRGB16() = default;

std::uint32_t ZoBayerRGB16ToRGB16::ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                                       std::uint32_t count) const
{
    ContextHold hold(*this);
    const ZoPixelConverterContext& context = hold.Context();
    const BayerLineCall call = MakeBayerLineCall(context, nullptr, source, destination, count);
    return Nearest16<WriteRGB16>(call, ActiveFilter(context), mSampleParam);
}

std::uint32_t ZoBayerRGB16ToRGB16::ConvertLinesInterpolated(const unsigned char* source,
                                                            unsigned char* destination, std::uint32_t count) const
{
    ContextHold hold(*this);
    const ZoPixelConverterContext& context = hold.Context();
    ZoBayerLayout local;
    const BayerLineCall call = MakeBayerLineCall(context, &LineLayout(context, local), source, destination, count);
    return Interpolated16<WriteRGB16>(call, ActiveFilter(context), mSampleParam);
}

// ---- RGB24 / BGR24 ---------------------------------------------------------

// Pipelining size 2 (8 elsewhere): deliberate.
ZoBayerRGB16ToRGB24::ZoBayerRGB16ToRGB24(const std::int64_t& sourceType, bool bgr, std::uint32_t shift,
                                         std::uint32_t defaultPattern)
    : ZoBayerRGB16ToRGB(sourceType, bgr ? ZO_PT_BGR24 : ZO_PT_RGB24, 2, 3, 2, bgr, shift, defaultPattern)
{
}

ZoBayerRGB16ToRGB24::~ZoBayerRGB16ToRGB24() = default;

std::uint32_t ZoBayerRGB16ToRGB24::ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                                       std::uint32_t count) const
{
    ContextHold hold(*this);
    const ZoPixelConverterContext& context = hold.Context();
    const BayerLineCall call = MakeBayerLineCall(context, nullptr, source, destination, count);
    const ZoRGBFilter& filter = ActiveFilter(context);
    return mBGROrder ? Nearest16<WriteBGR24>(call, filter, mSampleParam)
                     : Nearest16<WriteRGB24>(call, filter, mSampleParam);
}

std::uint32_t ZoBayerRGB16ToRGB24::ConvertLinesInterpolated(const unsigned char* source,
                                                            unsigned char* destination, std::uint32_t count) const
{
    try {
        ContextHold hold(*this);
        const ZoPixelConverterContext& context = hold.Context();
        ZoBayerLayout local;
        const BayerLineCall call =
            MakeBayerLineCall(context, &LineLayout(context, local), source, destination, count);
        const ZoRGBFilter& filter = ActiveFilter(context);
        return mBGROrder ? Interpolated16<WriteBGR24>(call, filter, mSampleParam)
                         : Interpolated16<WriteRGB24>(call, filter, mSampleParam);
    } catch (...) {
        return ZO_ERR_INTERPOLATION;
    }
}

// ---- RGB32 / BGR32 ---------------------------------------------------------

ZoBayerRGB16ToRGB32::ZoBayerRGB16ToRGB32(const std::int64_t& sourceType, bool bgr, std::uint32_t shift,
                                         std::uint32_t defaultPattern)
    : ZoBayerRGB16ToRGB(sourceType, bgr ? ZO_PT_BGR32 : ZO_PT_RGB32, 2, 4, 8, bgr, shift, defaultPattern)
{
}

ZoBayerRGB16ToRGB32::~ZoBayerRGB16ToRGB32() = default;

std::uint32_t ZoBayerRGB16ToRGB32::ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                                       std::uint32_t count) const
{
    ContextHold hold(*this);
    const ZoPixelConverterContext& context = hold.Context();
    const BayerLineCall call = MakeBayerLineCall(context, nullptr, source, destination, count);
    const ZoRGBFilter& filter = ActiveFilter(context);
    return mBGROrder ? Nearest16<WriteBGR32>(call, filter, mSampleParam)
                     : Nearest16<WriteRGB32>(call, filter, mSampleParam);
}

std::uint32_t ZoBayerRGB16ToRGB32::ConvertLinesInterpolated(const unsigned char* source,
                                                            unsigned char* destination, std::uint32_t count) const
{
    ContextHold hold(*this);
    const ZoPixelConverterContext& context = hold.Context();
    ZoBayerLayout local;
    const BayerLineCall call = MakeBayerLineCall(context, &LineLayout(context, local), source, destination, count);
    const ZoRGBFilter& filter = ActiveFilter(context);
    return mBGROrder ? Interpolated16<WriteBGR32>(call, filter, mSampleParam)
                     : Interpolated16<WriteRGB32>(call, filter, mSampleParam);
}

// ---- RGB48 -----------------------------------------------------------------

ZoBayerRGB16ToRGB48::ZoBayerRGB16ToRGB48(const std::int64_t& sourceType, bool normalized,
                                         std::uint32_t defaultPattern)
    : ZoBayerRGB16ToRGB(sourceType, normalized ? (ZO_PT_RGB48 | ZO_PIXEL_NORMALIZED) : ZO_PT_RGB48, 2, 6, 8,
                        false, 0, defaultPattern)
{
}

ZoBayerRGB16ToRGB48::~ZoBayerRGB16ToRGB48() = default;

std::uint32_t ZoBayerRGB16ToRGB48::ConvertLinesNearest(const unsigned char* source, unsigned char* destination,
                                                       std::uint32_t count) const
{
    ContextHold hold(*this);
    const ZoPixelConverterContext& context = hold.Context();
    const BayerLineCall call = MakeBayerLineCall(context, nullptr, source, destination, count);
    if (call.pattern < 0)
        return ZO_ERR_BAD_ARGUMENT;
    With48(ActiveFilter(context), [&](const auto& out) { ReplicateCall<Samples16>(call, false, out); });
    return ZO_OK;
}

std::uint32_t ZoBayerRGB16ToRGB48::ConvertLinesInterpolated(const unsigned char* source,
                                                            unsigned char* destination, std::uint32_t count) const
{
    try {
        ContextHold hold(*this);
        const ZoPixelConverterContext& context = hold.Context();
        ZoBayerLayout local;
        const BayerLineCall call =
            MakeBayerLineCall(context, &LineLayout(context, local), source, destination, count);
        With48(ActiveFilter(context), [&](const auto& out) { InterpolateCall<Samples16>(call, out); });
        return ZO_OK;
    } catch (...) {
        return ZO_ERR_INTERPOLATION;
    }
}
