// The YUV converter classes and their 50 registered instances against the
// per-pixel reference of YUVReference.h.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <thread>

#include "ZoPixelTypeFactory.h"
#include "ZoYUVConverters.h"
#include "yuv/YUVReference.h"

namespace {

using yuvref::Family;
using yuvref::Instance;

constexpr unsigned char kPoison = 0xA5;
constexpr std::size_t kGuard = 64;
const unsigned kWidths[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 31, 33, 35, 64, 100, 257, 301, 600};

const ZoPixelConverter& Registered(const Instance& in)
{
    return ZoPixelTypeFactory::GetConverter(in.source, in.dest);
}

std::string Describe(const Instance& in)
{
    char text[64];
    std::snprintf(text, sizeof text, "0x%llx -> 0x%llx", static_cast<unsigned long long>(in.source),
                  static_cast<unsigned long long>(in.dest));
    return text;
}

// A filter with random (non-identity) 8-bit tables.
void Randomise(ZoRGBFilter& filter, yuvref::Tables& t, std::mt19937& rng)
{
    for (std::uint32_t i = 0; i < 256; ++i) {
        t.r[i] = static_cast<unsigned char>(rng());
        t.g[i] = static_cast<unsigned char>(rng());
        t.b[i] = static_cast<unsigned char>(rng());
        filter.SetRedValue(i, t.r[i]);
        filter.SetGreenValue(i, t.g[i]);
        filter.SetBlueValue(i, t.b[i]);
    }
}

TEST(YUVConverters, RegistryHoldsAllFiftyInstancesWithTheirSizes)
{
    const std::vector<Instance> all = yuvref::RegisteredInstances();
    ASSERT_EQ(all.size(), 50u);
    for (const Instance& in : all) {
        SCOPED_TRACE(Describe(in));
        ASSERT_TRUE(ZoPixelTypeFactory::HasConverter(in.source, in.dest));
        const ZoPixelConverter& c = Registered(in);
        EXPECT_EQ(c.GetSourceType(), in.source);
        EXPECT_EQ(c.GetDestinationType(), in.dest);
        EXPECT_EQ(c.GetDestinationByteSize(), static_cast<std::uint32_t>(yuvref::DestBytes(in.dest)));
        EXPECT_EQ(c.GetSourceByteSize(), in.family == Family::YUV444 ? 3u : in.SourcePixelBytes());
    }
    // The catalogue's Packed 4:4:4 IDs have no direct converter.
    for (std::int64_t packed : {0x440003LL, 0x640003LL, 0x440005LL, 0x640005LL})
        EXPECT_FALSE(ZoPixelTypeFactory::HasConverter(packed, ZO_PT_RGB24));
}

// Every instance, odd and even widths, poisoned destinations with guard
// bytes: direct line calls (identity filter), then the filtered area
// conversion with random tables and padded destination lines, where
// interlaced sources fill even then odd lines.
TEST(YUVConverters, EveryInstanceMatchesReference)
{
    std::mt19937 rng(7);
    const yuvref::Tables identity = yuvref::Tables::Identity();
    for (const Instance& in : yuvref::RegisteredInstances()) {
        const ZoPixelConverter& c = Registered(in);
        const unsigned db = yuvref::DestBytes(in.dest), sb = in.SourcePixelBytes();
        const bool interlaced = (in.source & ZO_PIXEL_INTERLACED) != 0;
        for (unsigned w : kWidths) {
            SCOPED_TRACE(Describe(in) + " width " + std::to_string(w));
            const auto line = yuvref::RandomBytes((w + 2) * sb, rng);
            std::vector<unsigned char> got((w + 1) * db + kGuard, kPoison), want = got;
            EXPECT_EQ(c.Convert(line.data(), got.data(), w), ZO_OK);
            yuvref::Line(in, line.data(), want.data(), w, identity);
            ASSERT_EQ(got, want);

            ZoRGBFilter filter(8);
            yuvref::Tables t;
            Randomise(filter, t, rng);
            const unsigned h = 4, padding = 5, srcLine = w * sb, dstLine = w * db + padding;
            const auto src = yuvref::RandomBytes(h * srcLine + 2 * sb, rng);
            got.assign(h * dstLine + kGuard, kPoison);
            want = got;
            EXPECT_EQ(c.Convert(filter, src.data(), w, h, got.data(), w, h, w, h, 0, padding), ZO_OK);
            // The walk's order of line calls, so overlapping writes land alike.
            for (unsigned pass = 0; pass < (interlaced ? 2u : 1u); ++pass)
                for (unsigned i = 0; i < (interlaced ? h / 2 : h); ++i) {
                    const unsigned srcRow = interlaced ? pass * (h / 2) + i : i;
                    const unsigned dstRow = interlaced ? 2 * i + pass : i;
                    yuvref::Line(in, src.data() + srcRow * srcLine, want.data() + dstRow * dstLine, w, t);
                }
            ASSERT_EQ(got, want);
        }
    }
}

// Converters built with other sample sizes and offsets than the registered
// ones (for pairs that are taken, so nothing new is registered).
TEST(YUVConverters, ConstructedInstancesWithExtraBytesAndOffsets)
{
    std::mt19937 rng(5);
    const yuvref::Tables identity = yuvref::Tables::Identity();
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
        EXPECT_NE(&Registered(k.in), k.converter.get());
        const unsigned db = yuvref::DestBytes(k.in.dest);
        for (unsigned w : {1u, 7u, 33u, 70u}) {
            SCOPED_TRACE(Describe(k.in) + " param " + std::to_string(k.in.param) + " width " + std::to_string(w));
            const auto src = yuvref::RandomBytes((w + 2) * k.in.SourcePixelBytes(), rng);
            std::vector<unsigned char> got((w + 1) * db + kGuard, kPoison), want = got;
            k.converter->Convert(src.data(), got.data(), w);
            yuvref::Line(k.in, src.data(), want.data(), w, identity);
            ASSERT_EQ(got, want);
        }
    }
    EXPECT_EQ(cases[4].converter->GetSourceByteSize(), 3u);  // whatever the extra bytes
}

// The single-pixel form is refused and a zero count writes nothing.
TEST(YUVConverters, SinglePixelFormAndZeroCountWriteNothing)
{
    for (const Instance& in : yuvref::RegisteredInstances()) {
        const unsigned char src[16] = {16, 128, 235, 128, 16, 128, 235, 128};
        unsigned char dst[16];
        std::memset(dst, kPoison, sizeof dst);
        EXPECT_EQ(Registered(in).Convert(src, dst), ZO_ERR_NOT_SUPPORTED) << Describe(in);
        EXPECT_EQ(Registered(in).Convert(src, dst, 0), ZO_OK) << Describe(in);
        for (unsigned char b : dst)
            EXPECT_EQ(b, kPoison) << Describe(in);
    }
}

// BT.601 corner values through a 4:2:2 line to RGB24 (two pixels of one
// pair share U and V).
TEST(YUVConverters, BT601CornerValues)
{
    struct Case {
        int y, u, v;
        int r, g, b;
    };
    const Case cases[] = {
        {16, 128, 128, 0, 0, 0},        // black
        {235, 128, 128, 255, 255, 255}, // white: (298 x 219 + 128) >> 8 = 255
        {0, 128, 128, 0, 0, 0},         // -19 clamped to 0
        {255, 255, 255, 255, 125, 255}, // R 481 and B clamped to 255
        {255, 0, 0, 74, 255, 20},       // G 432 clamped to 255
        {16, 0, 0, 0, 154, 0},          // R -204 and B -258 clamped to 0
        {128, 128, 128, 130, 130, 130},
        {81, 90, 240, 255, 0, 0},       // a saturated red
    };
    ZoYUV8ToRGB24 c(ZO_PT_YUV8, false, 0);
    for (const Case& k : cases) {
        const unsigned char src[4] = {static_cast<unsigned char>(k.y), static_cast<unsigned char>(k.u),
                                      static_cast<unsigned char>(k.y), static_cast<unsigned char>(k.v)};
        unsigned char dst[6];
        c.Convert(src, dst, 2);
        const std::vector<int> want{k.r, k.g, k.b, k.r, k.g, k.b};  // both pixels of the pair
        EXPECT_EQ(std::vector<int>(dst, dst + 6), want) << k.y << "," << k.u << "," << k.v;
    }
}

// 10-bit words: value = low 8 bits of word >> 2, no clamping.
TEST(YUVConverters, TenBitWordsBeyondRangeAreTruncated)
{
    struct Case {
        std::uint16_t word;
        int value;
    };
    const Case cases[] = {{0x3FC, 0xFF}, {0x7FC, 0xFF}, {0x400, 0x00}, {0x43C, 0x0F}, {0xFFFF, 0xFF}, {0x3AC, 0xEB}};
    ZoYUV10ToRGB24 c(ZO_PT_YUV10, false, 2);
    for (const Case& k : cases) {
        // Y0 = word, U = V = 128 (0x200): grey value of Y.
        const std::uint16_t words[4] = {k.word, 0x200, k.word, 0x200};
        unsigned char src[8];
        for (int i = 0; i < 4; ++i) {
            src[2 * i] = static_cast<unsigned char>(words[i] & 0xFF);
            src[2 * i + 1] = static_cast<unsigned char>(words[i] >> 8);
        }
        unsigned char dst[6];
        c.Convert(src, dst, 2);
        const yuvref::RGB want = yuvref::Convert(k.value, 128, 128);
        EXPECT_EQ(dst[0], want.r) << std::hex << k.word;
        EXPECT_EQ(dst[4], want.g) << std::hex << k.word;
    }
}

// The same YCrCb pixels give different colours in RGB16 (Y 2, U 1, V 2)
// than in RGB24 (Y 0, Cr 1, Cb 2).
TEST(YUVConverters, YCrCbRGB16ReadsOtherBytesThanRGB24)
{
    const ZoPixelConverter& to16 = ZoPixelTypeFactory::GetConverter(ZO_PT_YCRCB, ZO_PT_RGB16);
    const ZoPixelConverter& to24 = ZoPixelTypeFactory::GetConverter(ZO_PT_YCRCB, ZO_PT_RGB24);
    // Y 200, Cr 180, Cb 60: an orange. RGB16 reads Y = 60, U = 180, V = 60.
    const unsigned char src[3] = {200, 180, 60};
    unsigned char d16[2], d24[3];
    to16.Convert(src, d16, 1);
    to24.Convert(src, d24, 1);
    const yuvref::RGB want24 = yuvref::Convert(200, 60, 180);
    const yuvref::RGB want16 = yuvref::Convert(60, 180, 60);
    unsigned char w16[2], w24[3];
    yuvref::WritePixel(ZO_PT_RGB16, w16, want16.r, want16.g, want16.b);
    yuvref::WritePixel(ZO_PT_RGB24, w24, want24.r, want24.g, want24.b);
    EXPECT_EQ(std::memcmp(d16, w16, 2), 0);
    EXPECT_EQ(std::memcmp(d24, w24, 3), 0);
    EXPECT_GT(want24.r, want24.b);  // orange in RGB24
    EXPECT_LT(want16.r, want16.b);  // not in RGB16
}

// 4:4:4 to RGB16: pixels in whole blocks of four map green through the blue
// table and blue through the green table; the remainder does not.
TEST(YUVConverters, RGB16BlocksOfFourSwapGreenAndBlueTables)
{
    ZoRGBFilter filter(8);
    for (std::uint32_t i = 0; i < 256; ++i) {
        filter.SetGreenValue(i, 255);  // green table: all 255
        filter.SetBlueValue(i, 0);     // blue table: all 0
    }
    ZoYUV8444ToRGB16 c(ZO_PT_YUV8_444, 0, 0, 1, 2);
    std::vector<unsigned char> src(7 * 3, 128);
    std::vector<unsigned char> dst(7 * 2 + kGuard, kPoison);
    c.Convert(filter, src.data(), 7, 1, dst.data(), 7, 1, 7, 1, 0, 0);
    for (int p = 0; p < 7; ++p) {
        const unsigned word = dst[2 * p] | (dst[2 * p + 1] << 8);
        const unsigned red = 130 >> 3 << 11;
        // Blocks: green 0 (blue table), blue 255 (green table); remainder: as named.
        const unsigned want = p < 4 ? red | 0x001F : red | 0x07E0;
        EXPECT_EQ(word, want) << "pixel " << p;
    }
    EXPECT_EQ(dst[14], kPoison);
}

// Several threads convert through the same instances with their own filters.
TEST(YUVConcurrency, SharedInstancesWithPerThreadFilters)
{
    std::vector<Instance> all;  // progressive sources: one line per area here
    for (const Instance& in : yuvref::RegisteredInstances())
        if (!(in.source & ZO_PIXEL_INTERLACED))
            all.push_back(in);
    std::vector<std::thread> threads;
    std::vector<int> failures(4, 0);
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            std::mt19937 rng(100 + t);
            for (int round = 0; round < 20; ++round) {
                const Instance& in = all[(t * 13 + round * 7) % all.size()];
                ZoRGBFilter filter(8);
                yuvref::Tables tables;
                Randomise(filter, tables, rng);
                const unsigned w = 37, h = 2;
                const unsigned db = yuvref::DestBytes(in.dest);
                const auto src = yuvref::RandomBytes((h * w + 2) * in.SourcePixelBytes(), rng);
                std::vector<unsigned char> got(h * w * db + kGuard, kPoison), want = got;
                Registered(in).Convert(filter, src.data(), w, h, got.data(), w, h, w, 1, 0, 0);
                yuvref::Line(in, src.data(), want.data(), w, tables);
                if (got != want)
                    ++failures[t];
            }
        });
    for (auto& th : threads)
        th.join();
    for (int f : failures)
        EXPECT_EQ(f, 0);
}

}  // namespace
