// The YUV converter classes and their 50 registered instances against the
// per-pixel reference of YUVReference.h, and hand-worked pixels.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "ZoPixelTypeFactory.h"
#include "ZoYUVConverters.h"
#include "support/AreaSupport.h"
#include "yuv/YUVReference.h"

namespace {

using yuvref::Family;
using yuvref::Instance;
using zotest::kPoison;
using zotest::RandomBytes;

constexpr std::size_t kGuard = 64;
const unsigned kWidths[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 31, 33, 35, 64, 100, 257, 301, 600};

// A filter with random (non-identity) 8-bit tables.
void Randomise(ZoRGBFilter& filter, std::mt19937& rng)
{
    for (std::uint32_t i = 0; i < 256; ++i) {
        filter.SetRedValue(i, rng() & 0xFF);
        filter.SetGreenValue(i, rng() & 0xFF);
        filter.SetBlueValue(i, rng() & 0xFF);
    }
}

// Direct line calls (identity filter) of odd and even widths into poisoned
// destinations with guard bytes.
void CheckLines(const ZoPixelConverter& c, const Instance& in, std::mt19937& rng)
{
    const unsigned db = zotest::RGBBytes(in.dest), sb = in.SourcePixelBytes();
    for (unsigned w : kWidths) {
        const auto line = RandomBytes((w + 2) * sb, rng);
        std::vector<unsigned char> got((w + 1) * db + kGuard, kPoison), want = got;
        EXPECT_EQ(c.Convert(line.data(), got.data(), w), ZO_OK);
        yuvref::Line(in, line.data(), want.data(), w, ZoRGBFilter(8));
        ASSERT_EQ(got, want) << std::hex << in.source << " -> " << in.dest << std::dec << " param " << in.param
                             << " width " << w;
    }
}

// Every instance: line calls, then the filtered area conversion with random
// tables and padded destination lines, where interlaced sources fill even
// then odd lines. The single-pixel form is refused and a zero count writes
// nothing.
TEST(YUVConverters, EveryInstanceMatchesReference)
{
    std::mt19937 rng(7);
    ASSERT_EQ(yuvref::RegisteredInstances().size(), 50u);
    for (const Instance& in : yuvref::RegisteredInstances()) {
        const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(in.source, in.dest);
        const unsigned db = zotest::RGBBytes(in.dest), sb = in.SourcePixelBytes();
        ASSERT_EQ(c.GetDestinationByteSize(), db);
        const bool interlaced = (in.source & ZO_PIXEL_INTERLACED) != 0;
        std::vector<unsigned char> got(16, kPoison);
        EXPECT_EQ(c.Convert(got.data(), got.data()), ZO_ERR_NOT_SUPPORTED);
        EXPECT_EQ(c.Convert(got.data(), got.data(), 0), ZO_OK);
        EXPECT_EQ(got, std::vector<unsigned char>(16, kPoison));
        CheckLines(c, in, rng);
        for (unsigned w : kWidths) {
            ZoRGBFilter filter(8);
            Randomise(filter, rng);
            const unsigned h = 4, padding = 5, srcLine = w * sb, dstLine = w * db + padding;
            const auto src = RandomBytes(h * srcLine + 2 * sb, rng);
            got.assign(h * dstLine + kGuard, kPoison);
            std::vector<unsigned char> want = got;
            EXPECT_EQ(c.Convert(filter, src.data(), w, h, got.data(), w, h, w, h, 0, padding), ZO_OK);
            // The walk's order of line calls, so overlapping writes land alike.
            for (unsigned pass = 0; pass < (interlaced ? 2u : 1u); ++pass)
                for (unsigned i = 0; i < (interlaced ? h / 2 : h); ++i) {
                    const unsigned srcRow = interlaced ? pass * (h / 2) + i : i;
                    const unsigned dstRow = interlaced ? 2 * i + pass : i;
                    yuvref::Line(in, src.data() + srcRow * srcLine, want.data() + dstRow * dstLine, w, filter);
                }
            ASSERT_EQ(got, want) << std::hex << in.source << " -> " << in.dest << std::dec << " width " << w;
        }
    }
}

// Converters built with other sample sizes and offsets than the registered
// ones (for pairs that are taken, so nothing new is registered).
TEST(YUVConverters, ConstructedInstancesWithExtraBytesAndOffsets)
{
    std::mt19937 rng(5);
    struct Case {
        std::unique_ptr<const ZoPixelConverter> converter;
        Instance in;
    };
    const Case cases[] = {
        {std::make_unique<ZoYUV8ToRGB24>(ZO_PT_YUV8, true, 2), {ZO_PT_YUV8, ZO_PT_BGR24, Family::YUV8, 2, 0, 0, 0}},
        {std::make_unique<ZoYUV8ToRGB16>(ZO_PT_YUV8, 1), {ZO_PT_YUV8, ZO_PT_RGB16, Family::YUV8, 1, 0, 0, 0}},
        {std::make_unique<ZoYUV10ToRGB32>(ZO_PT_YUV10, false, 0), {ZO_PT_YUV10, ZO_PT_RGB32, Family::YUV10, 0, 0, 0, 0}},
        {std::make_unique<ZoYUV10ToRGB24>(ZO_PT_YUV10, true, 6), {ZO_PT_YUV10, ZO_PT_BGR24, Family::YUV10, 6, 0, 0, 0}},
        {std::make_unique<ZoYUV8444ToRGB32>(ZO_PT_YUV8_444, true, 1, 2, 0, 1),
         {ZO_PT_YUV8_444, ZO_PT_BGR32, Family::YUV444, 1, 2, 0, 1}},
        {std::make_unique<ZoYUV8444ToRGB16>(ZO_PT_YUV8_444, 2, 1, 1, 0),
         {ZO_PT_YUV8_444, ZO_PT_RGB16, Family::YUV444, 2, 1, 1, 0}},
    };
    for (const Case& k : cases) {
        EXPECT_NE(&ZoPixelTypeFactory::GetConverter(k.in.source, k.in.dest), k.converter.get());
        CheckLines(*k.converter, k.in, rng);
    }
    EXPECT_EQ(cases[4].converter->GetSourceByteSize(), 3u);  // whatever the extra bytes
}

TEST(YUVConverters, HandWorkedPixels)
{
    // 4:4:4 to RGB16 of mid-grey (R 130) through a filter whose green table
    // is all 255 and blue table all 0: pixels in whole blocks of four map green
    // through the blue table and blue through the green table; the rest not.
    ZoRGBFilter swap(8);
    for (std::uint32_t i = 0; i < 256; ++i) {
        swap.SetGreenValue(i, 255);
        swap.SetBlueValue(i, 0);
    }
    const std::int64_t Y8 = ZO_PT_YUV8, Y10 = ZO_PT_YUV10;
    zotest::CheckExamples({
        // BT.601 through a 4:2:2 pair {Y, U, Y, V} to RGB24: both pixels alike.
        {Y8, ZO_PT_RGB24, {16, 128, 16, 128}, 2, {0, 0, 0, 0, 0, 0}},  // black; Y 0 would give -19, clamped
        {Y8, ZO_PT_RGB24, {235, 128, 235, 128}, 2, {255, 255, 255, 255, 255, 255}},  // (298 x 219 + 128) >> 8
        {Y8, ZO_PT_RGB24, {255, 255, 255, 255}, 2, {255, 125, 255, 255, 125, 255}},  // R 481, B clamped
        {Y8, ZO_PT_RGB24, {255, 0, 255, 0}, 2, {74, 255, 20, 74, 255, 20}},  // G 432 clamped
        {Y8, ZO_PT_RGB24, {16, 0, 16, 0}, 2, {0, 154, 0, 0, 154, 0}},  // R -204 and B -258 clamped
        {Y8, ZO_PT_RGB24, {81, 90, 81, 240}, 2, {255, 0, 0, 255, 0, 0}},  // a saturated red
        // 10-bit words: the low 8 bits of word >> 2, no clamping (U = V = 0x200).
        {Y10, ZO_PT_RGB24, {0x00, 0x06, 0x00, 0x02, 0x00, 0x06, 0x00, 0x02}, 2, {130, 130, 130, 130, 130, 130}},
        {Y10, ZO_PT_RGB24, {0x3C, 0x04, 0x00, 0x02, 0x3C, 0x04, 0x00, 0x02}, 2, {0, 0, 0, 0, 0, 0}},
        {Y10, ZO_PT_RGB24, {0xFC, 0x07, 0x00, 0x02, 0xFC, 0x07, 0x00, 0x02}, 2, {255, 255, 255, 255, 255, 255}},
        // YCrCb: RGB24 reads Y 0, Cr 1, Cb 2 (an orange); RGB16 reads Y 2, U 1, V 2.
        {ZO_PT_YCRCB, ZO_PT_RGB24, {200, 180, 60}, 1, {255, 199, 77}},
        {ZO_PT_YCRCB, ZO_PT_RGB16, {200, 180, 60}, 1, {0xB3, 0x02}},
        {ZO_PT_YUV8_444, ZO_PT_RGB16, {128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128,
                                       128, 128, 128, 128, 128, 128}, 7,
         {0x1F, 0x80, 0x1F, 0x80, 0x1F, 0x80, 0x1F, 0x80, 0xE0, 0x87, 0xE0, 0x87, 0xE0, 0x87, kPoison}, &swap},
    });
}

}  // namespace
