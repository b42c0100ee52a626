// The 16-bit Bayer family: right-aligned samples in 16-bit words.
#include <algorithm>
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
    if (WithTablePass<Writer>(filter, [&](const simd::LutPass8& pass) {
            With16<Writer>(filter, true, shift, [&](const auto& out) {
                ReplicateThenPass<Samples16>(call, false, out,
                                             [&](unsigned char* line, std::uint32_t n) { pass.Apply(line, n); });
            });
        }))
        return ZO_OK;
    With16<Writer>(filter, false, shift, [&](const auto& out) { ReplicateCall<Samples16>(call, false, out); });
    return ZO_OK;
}

template <class Writer>
std::uint32_t Interpolated16(const BayerLineCall& call, const ZoRGBFilter& filter, std::uint32_t shift)
{
    // One pass where the level's vector path evaluates the tables' forms.
    if (WithFusedWordsLine<Writer>(filter, shift < 31 ? shift : 31,
                                   [&](const auto& out) { InterpolateCall<Samples16>(call, out); }))
        return ZO_OK;
    if (WithTablePass<Writer>(filter, [&](const simd::LutPass8& pass) {  // as above
            With16<Writer>(filter, true, shift, [&](const auto& out) { InterpolateCall<Samples16>(call, out); });
            pass.Apply(call.destination, call.count);
        }))
        return ZO_OK;
    With16<Writer>(filter, false, shift, [&](const auto& out) { InterpolateCall<Samples16>(call, out); });
    return ZO_OK;
}

// RGB48: whole samples through the 16-bit tables. Tables with an arithmetic
// form (checked once per area conversion, see Convert below) take the
// identity line and then the 16-bit arithmetic pass, which writes the bytes
// the lookups write (interpolated lines, where the level has the formed
// vector path: the forms evaluated inside it, one pass); any other table is looked up inside the kernel (a
// lookup pass, scalar or with dword gathers, measured slower than that).
// Identity48 writes each sample value as it is, the very index Filtered48
// looks up (interpolated values never exceed 65535).
template <class Body, class Pass>
void With48(const ZoRGBFilter& filter, Body body, Pass pass)
{
    if (filter.IsIdentity16()) {
        body(Identity48{});
        return;
    }
    const simd::LutFormPlan16* plan =
        simd::ActiveLutPaths().words3
            ? simd::ScopedFormPlan16(filter.RedTable16(), filter.GreenTable16(), filter.BlueTable16())
            : nullptr;
    if (plan)
        pass(*plan);
    else
        body(Filtered48{filter.RedTable16(), filter.GreenTable16(), filter.BlueTable16()});
}

// Whether an area conversion of `pixels` checks if the filter's 16-bit
// tables have a form: from twice as many pixels as entries the check
// evaluates (the filter's entry count and one more), 65536 at most. A
// 16-bit filter's check (3 x 65536 entries) costs about a pass over as many
// pixels; a 12-bit filter's 1-4 us, where the 16-bit lookups it saves cost
// about 1.2 ns a pixel more than its forms. 12-bit Bayer -> RGB48 through
// gains 1.8, 1.0, 1.6 / 1.8, 1.0, 1.4 (ns a pixel, lines in the cache):
// 1920 x 6 1.73 / 1.73 -> 1.11 / 1.47, 1920 x 16 1.66 / 1.66 -> 0.62 /
// 0.77; the areas of three lines and fewer, mostly edge lines, about level.
bool WorthForm16(std::uint64_t pixels, std::uint32_t entries)
{
    return pixels >= std::min<std::uint64_t>(2 * (std::uint64_t{entries} + 1), 65536);
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
    // RGB48 through a filter: plan its 16-bit tables for this call.
    const ZoRGBFilter& filter = ActiveFilter(hold.Context());
    const std::uint32_t entries = filter.ZoRGBFilter::GetEntryCount();  // the tables' own count,
                                                                        // whatever a derived class reports
    const simd::LutForm16Scope forms(filter.RedTable16(), filter.GreenTable16(), filter.BlueTable16(),
                                     GetDestinationByteSize() == 6 && !filter.IsIdentity16() &&
                                         WorthForm16(std::uint64_t{width} * height, entries),
                                     entries);
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
    With48(
        ActiveFilter(context), [&](const auto& out) { ReplicateCall<Samples16>(call, false, out); },
        [&](const simd::LutFormPlan16& plan) {
            ReplicateThenPass<Samples16>(call, false, Identity48{}, [&](unsigned char* line, std::uint32_t n) {
                simd::ApplyLut16(line, n, plan);
            });
        });
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
        With48(
            ActiveFilter(context), [&](const auto& out) { InterpolateCall<Samples16>(call, out); },
            [&](const simd::LutFormPlan16& plan) {
                if (BayerActivePaths().words48Formed) {
                    // One pass: the forms evaluated inside the vector path.
                    const ZoRGBFilter& filter = ActiveFilter(context);
                    InterpolateCall<Samples16>(
                        call, Formed48{{filter.RedTable16(), filter.GreenTable16(), filter.BlueTable16()}, &plan});
                    return;
                }
                InterpolateCall<Samples16>(call, Identity48{});
                simd::ApplyLut16(call.destination, call.count, plan);
            });
        return ZO_OK;
    } catch (...) {
        return ZO_ERR_INTERPOLATION;
    }
}
