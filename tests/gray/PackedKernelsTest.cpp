// The vector paths of the packed and dual-tap kernels, at every level the
// host runs, against their scalar kernels: every layout and tap mode, random
// rules, awkward widths, guard bytes on both sides of the line.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "gray/DualTapKernels.h"
#include "gray/PackedKernels.h"
#include "support/AreaSupport.h"
#include "support/CpuLevels.h"

namespace {

using Bytes = std::vector<unsigned char>;
constexpr std::size_t kGuard = 64;

std::vector<std::uint32_t> AwkwardWidths()
{
    std::vector<std::uint32_t> w;
    for (std::uint32_t n = 0; n <= 80; ++n)
        w.push_back(n);
    for (std::uint32_t n : {95u, 96u, 97u, 127u, 128u, 129u, 1001u, 1920u, 4097u})
        w.push_back(n);
    return w;
}

zo::PackedSampleRule RandomRule(std::mt19937& rng)
{
    const std::int32_t shift = static_cast<std::int32_t>(rng() % 41) - 20;  // beyond 16 both ways
    const std::uint32_t mask = (rng() % 4 == 0) ? 0xFFFF : (rng() & 0xFFFF);
    return zo::LeftShiftRule(shift, mask);
}

template <class Writer>
void CompareUnpacking(std::mt19937& rng)
{
    for (std::uint32_t pipelining : {8u, 16u, 0u}) {
        for (std::uint32_t n : AwkwardWidths()) {
            zo::PackedRules rules{RandomRule(rng), RandomRule(rng)};
            if (Writer::kBytes != 2 || rng() % 2)  // 8-bit layouts take an 8-bit gray value
                rules = {zo::RightShiftRule(rng() % 17, 0xFF), zo::RightShiftRule(rng() % 17, 0xFF)};
            // Exactly the groups a line reads (sanitizer builds catch more).
            const Bytes src = zotest::RandomBytes(((n + 1) / 2) * 3, rng);
            for (unsigned mode = 0; mode <= 4; ++mode) {
                Bytes ref(static_cast<std::size_t>(n) * Writer::kBytes + 2 * kGuard, 0x5A);
                zo::WithDualTapMode(mode, [&](auto m) {
                    zo::UnpackPackedLineScalar<Writer, decltype(m)::value>(src.data(), ref.data() + kGuard, n,
                                                                           pipelining, rules);
                });
                for (zo::simd::CpuLevel level : zotest::HostCpuLevels()) {
                    const zotest::CpuCeilingScope ceiling(level);
                    Bytes vec(ref.size(), 0x5A);
                    zo::UnpackPackedLine<Writer>(src.data(), vec.data() + kGuard, n, pipelining, rules, mode);
                    ASSERT_EQ(vec, ref) << zo::simd::CpuLevelName(level) << ", bytes " << Writer::kBytes
                                        << " mode " << mode << " n " << n << " P " << pipelining;
                }
            }
        }
    }
}

TEST(PackedKernels, VectorPathMatchesScalarForEveryLayout)
{
    std::mt19937 rng(21);
    CompareUnpacking<zo::PackedToGray16>(rng);
    CompareUnpacking<zo::PackedToGray8>(rng);
    CompareUnpacking<zo::PackedToRGB16>(rng);
    CompareUnpacking<zo::PackedToRGB24>(rng);
    CompareUnpacking<zo::PackedToRGB32>(rng);
}

TEST(DualTapKernels, VectorPathMatchesScalar)
{
    std::mt19937 rng(22);
    for (std::uint32_t pipelining : {8u, 16u, 0u}) {
        for (std::uint32_t n : AwkwardWidths()) {
            const Bytes src = zotest::RandomBytes(n + (n & 1), rng);  // exactly the pairs a line reads
            for (unsigned mode = 0; mode <= 4; ++mode) {
                Bytes ref(n + 2 * kGuard, 0x5A);
                zo::WithDualTapMode(mode, [&](auto m) {
                    zo::RecombineDualTapLineScalar<decltype(m)::value>(src.data(), ref.data() + kGuard, n,
                                                                       pipelining);
                });
                for (zo::simd::CpuLevel level : zotest::HostCpuLevels()) {
                    const zotest::CpuCeilingScope ceiling(level);
                    Bytes vec(ref.size(), 0x5A);
                    zo::RecombineDualTapLine(src.data(), vec.data() + kGuard, n, pipelining, mode);
                    ASSERT_EQ(vec, ref) << zo::simd::CpuLevelName(level) << ", mode " << mode << " n " << n
                                        << " P " << pipelining;
                }
            }
        }
    }
}

// Block split: pairs in blocks of four over (n / P) x P pixels taken up to a
// multiple of eight, then ((n - done - 1) >> 1) + 1 single pairs, none when
// nothing is left.
TEST(DualTapKernels, PairCounts)
{
    // {n, pipelining, pairs}
    const std::uint32_t cases[][3] = {{0, 8, 0}, {8, 8, 4}, {16, 8, 8}, {1, 8, 1}, {9, 8, 5}, {15, 8, 8}, {14, 8, 7}};
    for (const auto& c : cases)
        EXPECT_EQ(zo::DualTapPairCount(c[0], c[1]), c[2]) << c[0];
    EXPECT_EQ(zo::DualTapBlockPixels(15, 8), 8u);
    EXPECT_EQ(zo::DualTapBlockPixels(12, 6), 16u);  // 12 taken up to 16: the blocks overrun the line
    EXPECT_EQ(zo::DualTapPairCount(12, 6), 8u);
}

}  // namespace
