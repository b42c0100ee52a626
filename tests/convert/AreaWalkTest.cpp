// The base area walk, seen through a converter that records its line calls.
#include <gtest/gtest.h>

#include <stdexcept>
#include <tuple>
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
    RecordingConverter& Attach(RecordingConverter& c) const
    {
        c.sourceBase = source.data();
        c.destinationBase = destination.data();
        c.calls.clear();
        return c;
    }
};

// Expected line call: source and destination offsets, current line.
struct Expected {
    std::ptrdiff_t source, destination;
    std::uint32_t line;
};

void ExpectCalls(const std::vector<LineCall>& calls, const std::vector<Expected>& expected, std::uint32_t count)
{
    ASSERT_EQ(calls.size(), expected.size());
    for (std::size_t k = 0; k < calls.size(); ++k)
        EXPECT_EQ(std::make_tuple(calls[k].source, calls[k].destination, calls[k].context.currentLine, calls[k].count),
                  std::make_tuple(expected[k].source, expected[k].destination, expected[k].line, count))
            << "call " << k;
}

}  // namespace

TEST(AreaWalk, ProgressiveLinesWithPaddingAndLinesPerConvert)
{
    // 3-byte source pixels, 4-byte destination pixels; the area is narrower
    // than both frames, and lines are sourceWidth / destinationWidth apart.
    RecordingConverter c(FreshTestId(), FreshTestId(), 3, 4);
    Frame f;
    ASSERT_EQ(f.Attach(c).Convert(f.source.data(), 7, 9, f.destination.data(), 5, 8, 2, 3, ZO_FLAG_BAYER_RGGB, 6),
              ZO_OK);
    ExpectCalls(c.calls, {{0, 0, 0}, {21, 26, 1}, {42, 52, 2}}, 2);
    // Line bytes, heights, flags, no planes; held by the walk and the line.
    for (const LineCall& call : c.calls) {
        const ZoPixelConverterContext& x = call.context;
        EXPECT_EQ(std::make_tuple(x.sourceLineBytes, x.destinationLineBytes, x.sourceHeight, x.destinationHeight,
                                  x.areaHeight, x.flags, x.planeOffsets[0] | x.planeOffsets[1] | x.planeOffsets[2],
                                  x.referenceCount),
                  std::make_tuple(21u, 26u, 9u, 8u, 3u, std::uint32_t{ZO_FLAG_BAYER_RGGB}, 0u, 2u));
    }

    // Two lines per call step over odd heights; height 0 converts nothing.
    RecordingConverter two(FreshTestId(), FreshTestId(), 2, 3, /*linesPerConvert=*/2);
    const std::ptrdiff_t s = 10 * 2, d = 10 * 3 + 1;
    const std::vector<Expected> all = {{0, 0, 0}, {2 * s, 2 * d, 2}, {4 * s, 4 * d, 4}};
    for (std::uint32_t height : {0u, 1u, 2u, 3u, 5u}) {
        SCOPED_TRACE(height);
        EXPECT_EQ(f.Attach(two).Convert(f.source.data(), 10, 6, f.destination.data(), 10, 6, 9, height, 0, 1), ZO_OK);
        ExpectCalls(two.calls, std::vector<Expected>(all.begin(), all.begin() + (height + 1) / 2), 9);
        EXPECT_EQ(two.Probe().referenceCount, 1u);  // nothing left held
    }
}

TEST(AreaWalk, InterlacedFieldsFillEvenThenOddLines)
{
    // Two fields one after the other; sourceHeight 5 with 3-byte lines puts
    // the second field at (5 * 3) / 2 = 7 bytes (truncated, not a line
    // boundary). Lines per convert does not apply to interlaced sources.
    RecordingConverter c(FreshTestId(ZO_PIXEL_INTERLACED), FreshTestId(), 1, 2, /*linesPerConvert=*/4);
    Frame f;
    const std::ptrdiff_t s = 3, d = 3 * 2 + 5;
    for (std::uint32_t invert : {0u, std::uint32_t{ZO_FLAG_INVERT_DEINTERLACER}}) {
        const std::ptrdiff_t even = invert ? 7 : 0, odd = invert ? 0 : 7;
        f.Attach(c).Convert(f.source.data(), 3, 5, f.destination.data(), 3, 6, 3, 5, invert, 5);
        ExpectCalls(c.calls, {{even, 0, 0}, {even + s, 2 * d, 2}, {even + 2 * s, 4 * d, 4},
                              {odd, d, 0}, {odd + s, 3 * d, 2}, {odd + 2 * s, 5 * d, 4}}, 3);
        EXPECT_EQ(c.calls[0].context.flags, invert | ZO_FLAG_BAYER_GRBG);
    }
    // Height 0: no field pass at all. An empty area may come with null
    // buffers: no field start is computed from them (offsetting a null
    // pointer is undefined; the sanitizers stop).
    f.Attach(c);
    EXPECT_EQ(c.Convert(f.source.data(), 3, 5, f.destination.data(), 3, 6, 3, 0, 0, 5), ZO_OK);
    for (std::uint32_t flags : {0u, ZO_FLAG_INVERT_DEINTERLACER}) {
        EXPECT_EQ(c.Convert(nullptr, 3, 5, nullptr, 3, 6, 3, 0, flags, 5), ZO_OK);
        EXPECT_EQ(ZoPixelTypeFactory::GetConverter(ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, ZO_PT_GRAY8)
                      .Convert(nullptr, 3, 5, nullptr, 3, 5, 3, 0, flags, 0),
                  ZO_OK);
    }
    EXPECT_TRUE(c.calls.empty());
}

TEST(AreaWalk, PlanarSourcesKeepTheOrdinaryLineDistance)
{
    // (Planar destinations, with lines sourceWidth apart, padding ignored and
    // planes destinationWidth x destinationHeight apart: the RGB reference.)
    RecordingConverter both(FreshTestId(ZO_PIXEL_PLANAR), FreshTestId(ZO_PIXEL_PLANAR), 3, 3);
    Frame f;
    f.Attach(both).Convert(f.source.data(), 6, 4, f.destination.data(), 5, 4, 6, 2, 0, 100);
    ExpectCalls(both.calls, {{0, 0, 0}, {18, 115, 1}}, 6);
    EXPECT_EQ(both.calls[0].context.planeOffsets[1], 0u);
}

TEST(AreaWalk, BayerPatternDefaultsToGRBGAndFlagsHaveTheirValues)
{
    const std::uint32_t invert = ZO_FLAG_INVERT_DEINTERLACER, interpolate = ZO_FLAG_BAYER_INTERPOLATE;
    RecordingConverter c(FreshTestId(), FreshTestId(), 1, 1);
    Frame f;
    const std::uint32_t gbrgBggr = ZO_FLAG_BAYER_GBRG | ZO_FLAG_BAYER_BGGR;
    const std::uint32_t cases[][2] = {
        {0, ZO_FLAG_BAYER_GRBG}, {invert | interpolate, invert | interpolate | ZO_FLAG_BAYER_GRBG},
        {ZO_FLAG_BAYER_GRBG, ZO_FLAG_BAYER_GRBG}, {ZO_FLAG_BAYER_GBRG, ZO_FLAG_BAYER_GBRG},
        {ZO_FLAG_BAYER_RGGB | interpolate, ZO_FLAG_BAYER_RGGB | interpolate},
        {ZO_FLAG_BAYER_BGGR, ZO_FLAG_BAYER_BGGR}, {gbrgBggr, gbrgBggr}, {0xFFFF0000u, 0xFFFF0010u}};
    for (const auto& tc : cases) {
        f.Attach(c).Convert(f.source.data(), 2, 1, f.destination.data(), 2, 1, 2, 1, tc[0], 0);
        ASSERT_EQ(c.calls.size(), 1u);
        EXPECT_EQ(c.calls[0].context.flags, tc[1]) << std::hex << tc[0];
    }
    // Taken by address on purpose: the members must be defined.
    const std::uint32_t* flags[] = {&ZoPixelConverter::FLAG_INVERT_DEINTERLACER, &ZoPixelConverter::FLAG_BAYER_GRBG,
                                    &ZoPixelConverter::FLAG_BAYER_GBRG, &ZoPixelConverter::FLAG_BAYER_RGGB,
                                    &ZoPixelConverter::FLAG_BAYER_BGGR, &ZoPixelConverter::FLAG_BAYER_INTERPOLATE};
    const std::uint32_t values[] = {0x01, 0x10, 0x20, 0x40, 0x80, 0x100};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(*flags[i], values[i]);
}

TEST(AreaWalk, FilterInForceAndTheContextRecordsLifetime)
{
    // The default filter follows the source byte size, for area calls and
    // for direct line calls, which have no filter in their record.
    const ZoRGBFilter& f8 = ZoPixelConverter::DefaultFilter(1);
    const ZoRGBFilter& f16 = ZoPixelConverter::DefaultFilter(2);
    EXPECT_EQ(f8.GetBitSize(), 8u);
    EXPECT_EQ(f16.GetBitSize(), 16u);
    Frame f;
    for (std::uint32_t size : {1u, 2u, 3u, 6u}) {
        RecordingConverter c(FreshTestId(), FreshTestId(), size, 1);
        f.Attach(c).Convert(f.source.data(), 2, 1, f.destination.data(), 2, 1, 2, 1, 0, 0);
        c.Convert(f.source.data(), f.destination.data(), 2);
        ASSERT_EQ(c.calls.size(), 2u);
        const ZoRGBFilter* expected = size == 1 ? &f8 : &f16;
        EXPECT_EQ(std::make_tuple(c.calls[0].context.filter, c.calls[1].context.filter, c.calls[1].active,
                                  c.calls[1].context.referenceCount),
                  std::make_tuple(expected, nullptr, expected, 1u))
            << "source size " << size;
    }

    // The filtered form hands its filter to every line; afterwards the
    // thread starts afresh with a new, all-zero record. Line results are
    // ignored.
    RecordingConverter c(FreshTestId(), FreshTestId(), 2, 2);
    c.lineResult = ZO_ERR_INTERPOLATION;
    ZoRGBFilter filter(16);
    filter.SetMultipliers(0.5, 1.0, 1.0);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(f.Attach(c).Convert(filter, f.source.data(), 5, 2, f.destination.data(), 5, 2, 5, 2,
                                      ZO_FLAG_BAYER_BGGR, 3),
                  ZO_OK);
        ASSERT_EQ(c.calls.size(), 2u);
        for (const LineCall& call : c.calls) {
            EXPECT_EQ(call.context.filter, &filter);
            EXPECT_EQ(call.active, &filter);
            EXPECT_EQ(call.context.referenceCount, 3u);  // filtered form, walk, line
        }
        const zotest::ContextSnapshot x = c.Probe();
        EXPECT_EQ(std::make_tuple(x.referenceCount, x.filter,
                                  x.sourceLineBytes | x.destinationLineBytes | x.flags | x.currentLine),
                  std::make_tuple(1u, nullptr, 0u));
    }

    // A throwing line releases the record too.
    struct Throwing : RecordingConverter {
        using RecordingConverter::RecordingConverter;
        using ZoPixelConverter::Convert;
        std::uint32_t Convert(const unsigned char*, unsigned char*, std::uint32_t) const override
        {
            ContextHold hold(*this);
            throw std::runtime_error("line failed");
        }
    } t(FreshTestId(), FreshTestId(), 1, 1);
    EXPECT_THROW(t.Convert(filter, f.source.data(), 3, 3, f.destination.data(), 3, 3, 3, 3, 0, 0),
                 std::runtime_error);
    EXPECT_EQ(std::make_tuple(t.Probe().referenceCount, t.Probe().filter), std::make_tuple(1u, nullptr));
}

TEST(AreaWalk, BaseFormsAreNotSupportedAndByteSizesWrapAtThirtyTwoBits)
{
    struct Bare : ZoPixelConverter {
        Bare() : ZoPixelConverter(FreshTestId(), FreshTestId(), 6, 3, 1, 8) {}
    } bare;
    unsigned char source[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    std::vector<unsigned char> destination(8, 0xCD);
    EXPECT_EQ(bare.Convert(source, destination.data()), ZO_ERR_NOT_SUPPORTED);
    EXPECT_EQ(bare.Convert(source, destination.data(), 1), ZO_ERR_NOT_SUPPORTED);
    EXPECT_EQ(destination, std::vector<unsigned char>(8, 0xCD));

    // 0x300000006 wraps to 6, 0x300000000 to 0, 0x100000002 to 2.
    EXPECT_EQ(std::make_tuple(bare.GetSourceByteSize(7), bare.GetSourceByteSize(0x80000001u),
                              bare.GetSourceByteSize(0x80000000u), bare.GetDestinationByteSize(0x55555556u)),
              std::make_tuple(42u, 6u, 0u, 2u));
}
