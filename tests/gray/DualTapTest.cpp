// 8-bit dual-tap recombination: every instance and mode against a plain
// per-pixel reference, the area override's width, and dual lines over areas.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <thread>
#include <vector>

#include "ZoDualTapConverters.h"
#include "ZoPixelTypeFactory.h"
#include "support/AreaSupport.h"
#include "core/StaticConverters.h"

namespace {

using Bytes = std::vector<unsigned char>;
constexpr std::size_t kGuard = 8;
constexpr unsigned char kPoison = 0xCD;

// Tap bits 0x1000000, 0x2000000, 0x4000000, 0x8000000: modes 1 to 4.
int ModeOf(std::int64_t source)
{
    const int modes[16] = {0, 1, 2, 0, 3, 0, 0, 0, 4};
    return modes[(source >> 24) & 0xF];
}

// Expected line of n pixels at `line` (room on both sides): every pair of the
// line in order, A then B, the odd last pixel's pair included.
void ReferenceLine(int mode, const unsigned char* src, unsigned char* line, std::uint32_t n)
{
    const long h = n / 2, nn = n;
    for (long i = 0; i < (nn + 1) / 2; ++i) {
        const long a[] = {2 * i, i, i, h - 1 - i, h - 1 - i};
        const long b[] = {2 * i + 1, h + i, nn - 1 - i, h + i, nn - 1 - i};
        line[a[mode]] = src[2 * i];
        line[b[mode]] = src[2 * i + 1];
    }
}

const std::int64_t kTaps[] = {0x1000000, 0x2000000, 0x4000000, 0x8000000};
const std::int64_t kTypes[] = {0x10001, 0x20010, 0x20013};

class DualTapInstances : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ZoAddDualTapConverters(sStore); }
    static void TearDownTestSuite() { sStore.Clear(); }
    static ZoStaticConverters sStore;
};
ZoStaticConverters DualTapInstances::sStore;

// Exactly the tabled instances, registered as constructed; every left/right
// instance matches the reference.
TEST_F(DualTapInstances, ExactlyTheTabledInstancesMatchTheReference)
{
    using zotest::IsA;
    ASSERT_EQ(sStore.Items().size(), 13u);
    const ZoPixelConverter* lines = sStore.Find(0x10010001, 0x10001);
    ASSERT_NE(lines, nullptr);
    EXPECT_TRUE(IsA<ZoDualLinesGrayscale8ToGrayscale8>(lines));
    EXPECT_TRUE(IsA<ZoDualLinesGrayscale8ToGrayscale8>(&ZoPixelTypeFactory::GetConverter(0x10010001, 0x10001)));
    std::mt19937 rng(3);
    for (std::int64_t type : kTypes) {
        for (std::int64_t tap : kTaps) {
            const ZoPixelConverter* c = sStore.Find(type | tap, type);
            ASSERT_NE(c, nullptr) << std::hex << (type | tap);
            EXPECT_TRUE(IsA<ZoDualGrayscale8ToGrayscale8>(c));
            EXPECT_TRUE(IsA<ZoDualGrayscale8ToGrayscale8>(&ZoPixelTypeFactory::GetConverter(type | tap, type)));
            for (std::uint32_t n : {0u, 1u, 2u, 3u, 7u, 8u, 9u, 15u, 16u, 17u, 33u, 64u, 1001u, 1920u}) {
                const Bytes src = zotest::RandomBytes(n + 1 + kGuard, rng);
                Bytes got(n + 2 * kGuard, kPoison), want(got);
                EXPECT_EQ(c->Convert(src.data(), got.data() + kGuard, n), 0u);
                ReferenceLine(ModeOf(type | tap), src.data(), want.data() + kGuard, n);
                ASSERT_EQ(got, want) << std::hex << (type | tap) << std::dec << " n=" << n;
            }
        }
    }
}

TEST(DualTapModes, EightPixels)
{
    const Bytes src{0xA0, 0xB0, 0xA1, 0xB1, 0xA2, 0xB2, 0xA3, 0xB3};
    const struct {
        std::int64_t tap;
        Bytes expected;
    } cases[] = {
        {0x1000000, {0xA0, 0xA1, 0xA2, 0xA3, 0xB0, 0xB1, 0xB2, 0xB3}},
        {0x2000000, {0xA0, 0xA1, 0xA2, 0xA3, 0xB3, 0xB2, 0xB1, 0xB0}},
        {0x4000000, {0xA3, 0xA2, 0xA1, 0xA0, 0xB0, 0xB1, 0xB2, 0xB3}},
        {0x8000000, {0xA3, 0xA2, 0xA1, 0xA0, 0xB3, 0xB2, 0xB1, 0xB0}},
    };
    for (const auto& c : cases) {
        Bytes dst(8, kPoison);
        ZoPixelTypeFactory::GetConverter(0x10001 | c.tap, 0x10001).Convert(src.data(), dst.data(), 8);
        EXPECT_EQ(dst, c.expected) << std::hex << c.tap;
    }
    // Mode 0 (a source without left/right bits) copies the line unchanged. This
    // pair is served by the dual-lines converter already, so this object is
    // not registered.
    const ZoDualGrayscale8ToGrayscale8 copy(0x10010001, 0x10001);
    Bytes dst(8, kPoison);
    copy.Convert(src.data(), dst.data(), 8);
    EXPECT_EQ(dst, src);
}

// With a left/right layout the area conversion converts sourceWidth pixels a
// line whatever `width` says; without one it keeps `width`.
TEST(DualTapArea, LineWidthIsTheSourceWidth)
{
    const std::uint32_t sw = 16, height = 3;
    std::mt19937 rng(5);
    const Bytes src = zotest::RandomBytes(sw * height, rng);
    const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(0x2010001, 0x10001);
    Bytes got(sw * height, kPoison), want(got);
    EXPECT_EQ(c.Convert(src.data(), sw, height, got.data(), sw, height, 6, height, 0, 0), 0u);
    for (std::uint32_t y = 0; y < height; ++y)
        ReferenceLine(2, src.data() + y * sw, want.data() + y * sw, sw);
    EXPECT_EQ(got, want);

    // The same through the filtered form.
    ZoRGBFilter filter(8);
    got.assign(got.size(), kPoison);
    EXPECT_EQ(c.Convert(filter, src.data(), sw, height, got.data(), sw, height, 6, height, 0, 0), 0u);
    EXPECT_EQ(got, want);

    const ZoDualGrayscale8ToGrayscale8 copy(0x10010001, 0x10001);  // mode 0, not registered
    got.assign(got.size(), kPoison);
    copy.Convert(src.data(), sw, height, got.data(), sw, height, 6, height, 0, 0);
    want.assign(want.size(), kPoison);
    for (std::uint32_t y = 0; y < height; ++y)
        std::copy(src.begin() + y * sw, src.begin() + y * sw + 6, want.begin() + y * sw);
    EXPECT_EQ(got, want);
}

// Dual lines: destination line y takes the even bytes of source line y when
// y is even, the odd bytes of source line y - 1 when y is odd.
Bytes DualLinesReference(const Bytes& src, std::uint32_t sourceStride, std::uint32_t width, std::uint32_t height,
                         std::uint32_t destinationStride, Bytes dst)
{
    for (std::uint32_t y = 0; y < height; ++y) {
        const std::size_t from = (y % 2 == 0) ? y * sourceStride : (y - 1) * sourceStride + 1;
        for (std::uint32_t k = 0; k < width; ++k)
            dst[y * destinationStride + k] = src[from + 2 * k];
    }
    return dst;
}

void CheckDualLinesArea(std::uint32_t width, std::uint32_t sourceWidth, std::uint32_t height,
                        std::uint32_t padding, std::uint32_t seed)
{
    const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(0x10010001, 0x10001);
    std::mt19937 rng(seed);
    const Bytes src = zotest::RandomBytes(sourceWidth * height + 2 * width, rng);
    const std::uint32_t stride = width + padding;
    Bytes got(stride * height + kGuard, kPoison);
    const Bytes want = DualLinesReference(src, sourceWidth, width, height, stride, got);
    EXPECT_EQ(c.Convert(src.data(), sourceWidth, height, got.data(), width, height, width, height, 0, padding), 0u);
    ASSERT_EQ(got, want) << "width " << width << " source width " << sourceWidth << " height " << height;
}

TEST(DualLines, AreaOfSeveralLines)
{
    CheckDualLinesArea(8, 8, 6, 0, 1);     // interleaved pairs of lines, frame as large as the result
    CheckDualLinesArea(13, 13, 5, 3, 2);   // odd width and height, padded destination
    CheckDualLinesArea(10, 20, 4, 0, 3);   // each pair of lines in one source line of 2n bytes
    CheckDualLinesArea(33, 40, 7, 1, 4);
}

TEST(DualLines, DirectLineCallIsAnEvenLine)
{
    const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(0x10010001, 0x10001);
    const Bytes src{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
    Bytes dst(8, kPoison);
    EXPECT_EQ(c.Convert(src.data(), dst.data() + 1, 6), 0u);
    EXPECT_EQ(dst, (Bytes{kPoison, 1, 3, 5, 7, 9, 11, kPoison}));
}

// Each thread's parity comes from its own context record.
TEST(DualTapConcurrency, DualLinesAreasOnSeveralThreads)
{
    auto worker = [](std::uint32_t seed, bool* ok) {
        const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(0x10010001, 0x10001);
        const std::uint32_t width = 24 + seed, height = 9;
        std::mt19937 rng(seed);
        const Bytes src = zotest::RandomBytes(width * height + 2 * width, rng);
        Bytes got(width * height, 0);
        const Bytes want = DualLinesReference(src, width, width, height, width, got);
        *ok = true;
        for (int round = 0; round < 300 && *ok; ++round) {
            c.Convert(src.data(), width, height, got.data(), width, height, width, height, 0, 0);
            *ok = got == want;
        }
    };
    bool ok[4] = {};
    std::vector<std::thread> threads;
    for (std::uint32_t t = 0; t < 4; ++t)
        threads.emplace_back(worker, t + 1, &ok[t]);
    for (auto& t : threads)
        t.join();
    for (bool b : ok)
        EXPECT_TRUE(b);
}

}  // namespace
