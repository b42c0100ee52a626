// 8-bit dual-tap recombination: every registered instance against a plain
// per-pixel reference (its placement is checked by hand in the packed tests),
// the area override's width, and dual lines over areas.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "ZoDualTapConverters.h"
#include "ZoPixelTypeFactory.h"
#include "support/AreaSupport.h"
#include "support/FamilyTables.h"
#include "gray/TapPlacement.h"

namespace {

using Bytes = std::vector<unsigned char>;
using zotest::kPoison;
constexpr std::size_t kGuard = 8;

// Expected line of n pixels at `line` (room on both sides).
void ReferenceLine(std::int64_t source, const unsigned char* src, unsigned char* line, std::uint32_t n)
{
    tap_test::PlacePairs(source, n, [&](long at, bool isA, long i) { line[at] = src[2 * i + (isA ? 0 : 1)]; });
}

TEST(DualTapConverters, EveryRegisteredInstanceMatchesTheReference)
{
    std::mt19937 rng(3);
    int instances = 0;
    for (const zotest::RegistryRow& r : zotest::RegistryTable()) {
        if (r.className != "ZoDualGrayscale8ToGrayscale8")
            continue;
        ++instances;
        const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(r.source, r.destination);
        for (std::uint32_t n : {0u, 1u, 2u, 3u, 7u, 8u, 9u, 15u, 16u, 17u, 33u, 64u, 1001u, 1920u}) {
            const Bytes src = zotest::RandomBytes(n + 1 + kGuard, rng);
            Bytes got(n + 2 * kGuard, kPoison), want(got);
            EXPECT_EQ(c.Convert(src.data(), got.data() + kGuard, n), 0u);
            ReferenceLine(r.source, src.data(), want.data() + kGuard, n);
            ASSERT_EQ(got, want) << std::hex << r.source << std::dec << " n=" << n;
        }
    }
    EXPECT_EQ(instances, 12);
}

// With a left/right layout the area conversion converts sourceWidth pixels a
// line whatever `width` says (filtered or not); without one (mode 0, which
// copies lines unchanged) it keeps `width`.
TEST(DualTapConverters, AreaLineWidthIsTheSourceWidth)
{
    const std::uint32_t sw = 16, height = 3;
    std::mt19937 rng(5);
    const Bytes src = zotest::RandomBytes(sw * height, rng);
    const ZoDualGrayscale8ToGrayscale8 copy(0x10010001, 0x10001);  // mode 0; the pair is taken: not registered
    const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(0x2010001, 0x10001);
    const ZoRGBFilter filter(8);
    for (int k = 0; k < 3; ++k) {
        Bytes got(sw * height, kPoison), want(got);
        for (std::uint32_t y = 0; y < height; ++y)
            if (k < 2)
                ReferenceLine(0x2010001, src.data() + y * sw, want.data() + y * sw, sw);
            else
                std::copy(src.begin() + y * sw, src.begin() + y * sw + 6, want.begin() + y * sw);
        EXPECT_EQ(k == 1 ? c.Convert(filter, src.data(), sw, height, got.data(), sw, height, 6, height, 0, 0)
                         : (k ? copy : c).Convert(src.data(), sw, height, got.data(), sw, height, 6, height, 0, 0),
                  0u);
        EXPECT_EQ(got, want) << k;
    }
}

// Dual lines: destination line y takes the even bytes of source line y when
// y is even, the odd bytes of source line y - 1 when y is odd.
TEST(DualTapConverters, DualLinesAreas)
{
    const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(0x10010001, 0x10001);
    const std::uint32_t cases[][4] = {
        // width, source width, height, padding
        {8, 8, 6, 0},    // interleaved pairs of lines, frame as large as the result
        {13, 13, 5, 3},  // odd width and height, padded destination
        {10, 20, 4, 0},  // each pair of lines in one source line of 2n bytes
        {33, 40, 7, 1}};
    std::mt19937 rng(1);
    for (const auto& k : cases) {
        const std::uint32_t width = k[0], sourceWidth = k[1], height = k[2], stride = width + k[3];
        const Bytes src = zotest::RandomBytes(sourceWidth * height + 2 * width, rng);
        Bytes got(stride * height + kGuard, kPoison), want(got);
        for (std::uint32_t y = 0; y < height; ++y) {
            const std::size_t from = (y % 2 == 0) ? y * sourceWidth : (y - 1) * sourceWidth + 1;
            for (std::uint32_t x = 0; x < width; ++x)
                want[y * stride + x] = src[from + 2 * x];
        }
        EXPECT_EQ(c.Convert(src.data(), sourceWidth, height, got.data(), width, height, width, height, 0, k[3]), 0u);
        ASSERT_EQ(got, want) << "width " << width << " source width " << sourceWidth << " height " << height;
    }
}

}  // namespace
