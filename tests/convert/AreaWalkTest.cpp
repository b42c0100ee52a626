// The base area walk, seen through a converter that records its line calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "ZoPixelTypeFactory.h"
#include "support/ConvertSupport.h"

using zotest::FreshTestId;
using zotest::LineCall;
using zotest::RecordingConverter;

namespace {

// Plain buffers: the converter writes nothing, only the offsets matter.
struct Frame {
    std::vector<unsigned char> source = std::vector<unsigned char>(4096);
    std::vector<unsigned char> destination = std::vector<unsigned char>(8192);
    void Attach(RecordingConverter& c) const
    {
        c.sourceBase = source.data();
        c.destinationBase = destination.data();
    }
};

struct Expected {
    std::ptrdiff_t source, destination;
    std::uint32_t line;
};

void ExpectCalls(const std::vector<LineCall>& calls, const std::vector<Expected>& expected, std::uint32_t count)
{
    ASSERT_EQ(calls.size(), expected.size());
    for (std::size_t k = 0; k < calls.size(); ++k) {
        SCOPED_TRACE(k);
        EXPECT_EQ(calls[k].source, expected[k].source);
        EXPECT_EQ(calls[k].destination, expected[k].destination);
        EXPECT_EQ(calls[k].context.currentLine, expected[k].line);
        EXPECT_EQ(calls[k].count, count);
    }
}

}  // namespace

TEST(AreaWalk, ProgressiveLinesWithPadding)
{
    // 3-byte source pixels, 4-byte destination pixels; the area is narrower
    // than both frames, and lines are sourceWidth / destinationWidth apart.
    RecordingConverter c(FreshTestId(), FreshTestId(), 3, 4);
    Frame f;
    f.Attach(c);
    ASSERT_EQ(c.Convert(f.source.data(), 7, 9, f.destination.data(), 5, 8, 2, 3, ZO_FLAG_BAYER_RGGB, 6), ZO_OK);
    const std::ptrdiff_t s = 7 * 3, d = 5 * 4 + 6;
    ExpectCalls(c.calls, {{0, 0, 0}, {s, d, 1}, {2 * s, 2 * d, 2}}, 2);
    for (const LineCall& call : c.calls) {
        EXPECT_EQ(call.context.sourceLineBytes, 21u);
        EXPECT_EQ(call.context.destinationLineBytes, 26u);
        EXPECT_EQ(call.context.sourceHeight, 9u);
        EXPECT_EQ(call.context.destinationHeight, 8u);
        EXPECT_EQ(call.context.areaHeight, 3u);
        EXPECT_EQ(call.context.flags, ZO_FLAG_BAYER_RGGB);
        EXPECT_EQ(call.context.planeOffsets[0] | call.context.planeOffsets[1] | call.context.planeOffsets[2], 0u);
        EXPECT_EQ(call.context.referenceCount, 2u);  // the walk and the line
    }
}

TEST(AreaWalk, LinesPerConvertTwoStepsOverOddHeightsAndHeightZeroConvertsNothing)
{
    RecordingConverter c(FreshTestId(), FreshTestId(), 2, 3, /*linesPerConvert=*/2);
    Frame f;
    f.Attach(c);
    const std::ptrdiff_t s = 10 * 2, d = 10 * 3 + 1;
    const struct {
        std::uint32_t height;
        std::vector<Expected> calls;
    } cases[] = {
        {0, {}},
        {1, {{0, 0, 0}}},
        {2, {{0, 0, 0}}},
        {3, {{0, 0, 0}, {2 * s, 2 * d, 2}}},
        {5, {{0, 0, 0}, {2 * s, 2 * d, 2}, {4 * s, 4 * d, 4}}},
    };
    for (const auto& tc : cases) {
        SCOPED_TRACE(tc.height);
        c.calls.clear();
        EXPECT_EQ(c.Convert(f.source.data(), 10, 6, f.destination.data(), 10, 6, 9, tc.height, 0, 1), ZO_OK);
        ExpectCalls(c.calls, tc.calls, 9);
        EXPECT_EQ(c.Probe().referenceCount, 1u);  // nothing left held
    }
}

TEST(AreaWalk, InterlacedFieldsFillEvenThenOddLines)
{
    // Two fields one after the other; sourceHeight 5 with 3-byte lines puts
    // the second field at (5 * 3) / 2 = 7 bytes (truncated, not a line
    // boundary). Lines per convert does not apply to interlaced sources.
    RecordingConverter c(FreshTestId(ZO_PIXEL_INTERLACED), FreshTestId(), 1, 2, /*linesPerConvert=*/4);
    Frame f;
    f.Attach(c);
    const std::ptrdiff_t s = 3, d = 3 * 2 + 5, second = 7;
    const std::vector<Expected> plain = {{0, 0, 0},          {s, 2 * d, 2},          {2 * s, 4 * d, 4},
                                         {second, d, 0},     {second + s, 3 * d, 2}, {second + 2 * s, 5 * d, 4}};
    const std::vector<Expected> inverted = {{second, 0, 0}, {second + s, 2 * d, 2}, {second + 2 * s, 4 * d, 4},
                                            {0, d, 0},      {s, 3 * d, 2},          {2 * s, 5 * d, 4}};
    c.Convert(f.source.data(), 3, 5, f.destination.data(), 3, 6, 3, 5, 0, 5);
    ExpectCalls(c.calls, plain, 3);
    c.calls.clear();
    c.Convert(f.source.data(), 3, 5, f.destination.data(), 3, 6, 3, 5, ZO_FLAG_INVERT_DEINTERLACER, 5);
    ExpectCalls(c.calls, inverted, 3);
    EXPECT_EQ(c.calls[0].context.flags, ZO_FLAG_INVERT_DEINTERLACER | ZO_FLAG_BAYER_GRBG);
    c.calls.clear();  // height 0: no field pass at all
    EXPECT_EQ(c.Convert(f.source.data(), 3, 5, f.destination.data(), 3, 6, 3, 0, 0, 5), ZO_OK);
    // An empty area may come with null buffers: no field start is computed
    // from them (offsetting a null pointer is undefined; the sanitizers stop).
    for (std::uint32_t flags : {0u, ZO_FLAG_INVERT_DEINTERLACER}) {
        EXPECT_EQ(c.Convert(nullptr, 3, 5, nullptr, 3, 6, 3, 0, flags, 5), ZO_OK);
        EXPECT_EQ(ZoPixelTypeFactory::GetConverter(ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, ZO_PT_GRAY8)
                      .Convert(nullptr, 3, 5, nullptr, 3, 5, 3, 0, flags, 0),
                  ZO_OK);
    }
    EXPECT_TRUE(c.calls.empty());
}

TEST(AreaWalk, PlanarDestinationLinesAreSourceWidthApart)
{
    RecordingConverter planar(FreshTestId(), FreshTestId(ZO_PIXEL_PLANAR), 3, 3);
    RecordingConverter both(FreshTestId(ZO_PIXEL_PLANAR), FreshTestId(ZO_PIXEL_PLANAR), 3, 3);
    Frame f;
    f.Attach(planar);
    f.Attach(both);
    // Padding is ignored and the line distance is sourceWidth, even with a
    // different destinationWidth.
    planar.Convert(f.source.data(), 6, 4, f.destination.data(), 5, 4, 6, 3, 0, 100);
    ExpectCalls(planar.calls, {{0, 0, 0}, {18, 6, 1}, {36, 12, 2}}, 6);
    const auto& ctx = planar.calls[0].context;
    EXPECT_EQ(ctx.destinationLineBytes, 6u);
    EXPECT_EQ(ctx.planeOffsets[0], 0u);
    EXPECT_EQ(ctx.planeOffsets[1], 20u);
    EXPECT_EQ(ctx.planeOffsets[2], 40u);
    // A planar source keeps the ordinary line distance and no plane offsets.
    both.Convert(f.source.data(), 6, 4, f.destination.data(), 5, 4, 6, 2, 0, 100);
    ExpectCalls(both.calls, {{0, 0, 0}, {18, 115, 1}}, 6);
    EXPECT_EQ(both.calls[0].context.planeOffsets[1], 0u);
}

TEST(AreaWalk, BayerPatternDefaultsToGRBG)
{
    RecordingConverter c(FreshTestId(), FreshTestId(), 1, 1);
    Frame f;
    f.Attach(c);
    const struct {
        std::uint32_t given, seen;
    } cases[] = {
        {0, ZO_FLAG_BAYER_GRBG},
        {ZO_FLAG_INVERT_DEINTERLACER | ZO_FLAG_BAYER_INTERPOLATE,
         ZO_FLAG_INVERT_DEINTERLACER | ZO_FLAG_BAYER_INTERPOLATE | ZO_FLAG_BAYER_GRBG},
        {ZO_FLAG_BAYER_GRBG, ZO_FLAG_BAYER_GRBG},
        {ZO_FLAG_BAYER_GBRG, ZO_FLAG_BAYER_GBRG},
        {ZO_FLAG_BAYER_RGGB | ZO_FLAG_BAYER_INTERPOLATE, ZO_FLAG_BAYER_RGGB | ZO_FLAG_BAYER_INTERPOLATE},
        {ZO_FLAG_BAYER_BGGR, ZO_FLAG_BAYER_BGGR},
        {ZO_FLAG_BAYER_GBRG | ZO_FLAG_BAYER_BGGR, ZO_FLAG_BAYER_GBRG | ZO_FLAG_BAYER_BGGR},
        {0xFFFF0000u, 0xFFFF0010u},
    };
    for (const auto& tc : cases) {
        c.calls.clear();
        c.Convert(f.source.data(), 2, 1, f.destination.data(), 2, 1, 2, 1, tc.given, 0);
        ASSERT_EQ(c.calls.size(), 1u);
        EXPECT_EQ(c.calls[0].context.flags, tc.seen) << std::hex << tc.given;
    }
}

TEST(AreaWalk, FlagConstantsAreTheDocumentedValues)
{
    // Taken by address on purpose: the members must be defined.
    const std::uint32_t* flags[] = {&ZoPixelConverter::FLAG_INVERT_DEINTERLACER, &ZoPixelConverter::FLAG_BAYER_GRBG,
                                    &ZoPixelConverter::FLAG_BAYER_GBRG, &ZoPixelConverter::FLAG_BAYER_RGGB,
                                    &ZoPixelConverter::FLAG_BAYER_BGGR, &ZoPixelConverter::FLAG_BAYER_INTERPOLATE};
    const std::uint32_t values[] = {0x01, 0x10, 0x20, 0x40, 0x80, 0x100};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(*flags[i], values[i]);
}

TEST(AreaWalk, DefaultFilterFollowsSourceByteSize)
{
    const ZoRGBFilter& f8 = ZoPixelConverter::DefaultFilter(1);
    const ZoRGBFilter& f16 = ZoPixelConverter::DefaultFilter(2);
    EXPECT_EQ(f8.GetBitSize(), 8u);
    EXPECT_EQ(f16.GetBitSize(), 16u);
    Frame f;
    for (std::uint32_t size : {1u, 2u, 3u, 4u, 6u}) {
        SCOPED_TRACE(size);
        RecordingConverter c(FreshTestId(), FreshTestId(), size, 1);
        f.Attach(c);
        const ZoRGBFilter* expected = size == 1 ? &f8 : &f16;
        c.Convert(f.source.data(), 2, 1, f.destination.data(), 2, 1, 2, 1, 0, 0);
        ASSERT_EQ(c.calls.size(), 1u);
        EXPECT_EQ(c.calls[0].context.filter, expected);
        // A direct line call has no filter in its record and falls back to
        // the same default.
        c.calls.clear();
        c.Convert(f.source.data(), f.destination.data(), 2);
        ASSERT_EQ(c.calls.size(), 1u);
        EXPECT_EQ(c.calls[0].context.filter, nullptr);
        EXPECT_EQ(c.calls[0].active, expected);
        EXPECT_EQ(c.calls[0].context.referenceCount, 1u);
    }
}

TEST(AreaWalk, ContextRecordIsFreedAfterEachConversion)
{
    RecordingConverter c(FreshTestId(), FreshTestId(), 2, 2);
    Frame f;
    f.Attach(c);
    ZoRGBFilter filter(16);
    filter.SetMultipliers(0.5, 1.0, 1.0);
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        c.calls.clear();
        EXPECT_EQ(c.Convert(filter, f.source.data(), 5, 2, f.destination.data(), 5, 2, 5, 2, ZO_FLAG_BAYER_BGGR, 3),
                  ZO_OK);
        // The filtered form hands its filter to every line.
        ASSERT_EQ(c.calls.size(), 2u);
        for (const LineCall& call : c.calls) {
            EXPECT_EQ(call.context.filter, &filter);
            EXPECT_EQ(call.active, &filter);
            EXPECT_EQ(call.context.referenceCount, 3u);  // filtered form, walk, line
        }
        // Afterwards the thread starts afresh: a new, all-zero record.
        const zotest::ContextSnapshot fresh = c.Probe();
        EXPECT_EQ(fresh.referenceCount, 1u);
        EXPECT_EQ(fresh.filter, nullptr);
        EXPECT_EQ(fresh.sourceLineBytes, 0u);
        EXPECT_EQ(fresh.destinationLineBytes, 0u);
        EXPECT_EQ(fresh.flags, 0u);
        EXPECT_EQ(fresh.currentLine, 0u);
    }
}

TEST(AreaWalk, LineResultsAreIgnoredAndAThrowingLineReleasesTheRecord)
{
    RecordingConverter c(FreshTestId(), FreshTestId(), 1, 1);
    Frame f;
    f.Attach(c);
    c.lineResult = ZO_ERR_INTERPOLATION;
    EXPECT_EQ(c.Convert(f.source.data(), 3, 3, f.destination.data(), 3, 3, 3, 3, 0, 0), ZO_OK);
    EXPECT_EQ(c.calls.size(), 3u);

    struct Throwing : RecordingConverter {
        using RecordingConverter::RecordingConverter;
        using ZoPixelConverter::Convert;
        std::uint32_t Convert(const unsigned char*, unsigned char*, std::uint32_t) const override
        {
            ContextHold hold(*this);
            throw std::runtime_error("line failed");
        }
    } t(FreshTestId(), FreshTestId(), 1, 1);
    ZoRGBFilter filter(8);
    EXPECT_THROW(t.Convert(filter, f.source.data(), 3, 3, f.destination.data(), 3, 3, 3, 3, 0, 0),
                 std::runtime_error);
    const zotest::ContextSnapshot after = t.Probe();
    EXPECT_EQ(after.referenceCount, 1u);
    EXPECT_EQ(after.filter, nullptr);
}

TEST(AreaWalk, BaseFormsAreNotSupportedAndWriteNothing)
{
    struct Bare : ZoPixelConverter {
        Bare() : ZoPixelConverter(FreshTestId(), FreshTestId(), 2, 2, 1, 1) {}
    } bare;
    unsigned char source[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    unsigned char destination[8];
    std::fill(std::begin(destination), std::end(destination), 0xCD);
    EXPECT_EQ(bare.Convert(source, destination), ZO_ERR_NOT_SUPPORTED);
    EXPECT_EQ(bare.Convert(source, destination, 4), ZO_ERR_NOT_SUPPORTED);
    for (unsigned char b : destination)
        EXPECT_EQ(b, 0xCD);
}

TEST(AreaWalk, ByteSizesWrapAtThirtyTwoBits)
{
    RecordingConverter c(FreshTestId(), FreshTestId(), 6, 3, 1, 8);
    EXPECT_EQ(c.GetSourceByteSize(7), 42u);
    EXPECT_EQ(c.GetSourceByteSize(0x80000001u), 6u);  // 0x300000006 wrapped
    EXPECT_EQ(c.GetSourceByteSize(0x80000000u), 0u);
    EXPECT_EQ(c.GetDestinationByteSize(0x55555556u), 2u);
}

TEST(Registration, FirstConstructedWins)
{
    const std::int64_t s = FreshTestId(), d = FreshTestId();
    EXPECT_FALSE(ZoPixelTypeFactory::HasConverter(s, d));
    static RecordingConverter first(s, d, 1, 1);
    // Registered at once, though neither type is registered.
    EXPECT_TRUE(ZoPixelTypeFactory::HasConverter(s, d));
    EXPECT_FALSE(ZoPixelTypeFactory::HasPixelType(s));
    static RecordingConverter second(s, d, 2, 2);
    EXPECT_EQ(&ZoPixelTypeFactory::GetConverter(s, d), &first);

    // A second object for a built-in pair leaves the built-in one in place.
    const ZoPixelConverter* builtIn = &ZoPixelTypeFactory::GetConverter(ZO_PT_GRAY8, ZO_PT_GRAY8);
    ASSERT_NE(builtIn, nullptr);
    static ZoIdentityConverter again(ZO_PT_GRAY8, ZO_PT_GRAY8, 1, 1);
    EXPECT_EQ(&ZoPixelTypeFactory::GetConverter(ZO_PT_GRAY8, ZO_PT_GRAY8), builtIn);
}
