// Filtered conversions at every CPU level: the table passes against plain
// lookups, every Bayer instance against the reference demosaicer, and every
// conversion into a 24- or 32-bit layout against its own result at the
// scalar level (whose filtered kernels look every channel up one by one).
// Filters hold random per-entry tables (16-bit entries up to 65535 and
// indices from full 16-bit samples); destinations start poisoned and are
// compared whole, slack included.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "ZoImgLib.h"
#include "bayer/BayerReference.h"
#include "simd/Cpu.h"
#include "simd/Lut.h"

namespace {

using zo::simd::CpuLevel;

// Runs body(level) at every level the host has, the ceiling restored after.
template <class Body>
void AtEveryLevel(Body body)
{
    const CpuLevel saved = zo::simd::CpuCeiling();
    for (unsigned l = 0; l < zo::simd::kCpuLevelCount; ++l) {
        const CpuLevel level = static_cast<CpuLevel>(l);
        if (level > zo::simd::HostCpuLevel())
            break;
        zo::simd::SetCpuCeiling(level);
        SCOPED_TRACE(zo::simd::CpuLevelName(level));
        body(level);
        if (::testing::Test::HasFatalFailure())
            break;
    }
    zo::simd::SetCpuCeiling(saved);
}

// Table sets: three random tables; green the identity (usual white
// balance); first and last equal in content at different addresses; all
// the identity; all one table.
std::vector<std::uint8_t> TableSet(unsigned shape, std::mt19937& rng)
{
    std::vector<std::uint8_t> t(3 * 256);
    for (std::uint8_t& v : t)
        v = static_cast<std::uint8_t>(rng());
    for (unsigned i = 0; i < 256; ++i) {
        if (shape == 1 || shape == 3)
            t[256 + i] = static_cast<std::uint8_t>(i);
        if (shape == 3)
            t[i] = t[512 + i] = static_cast<std::uint8_t>(i);
        if (shape == 2 || shape == 4)
            t[512 + i] = t[i];
        if (shape == 4)
            t[256 + i] = t[i];
    }
    return t;
}

TEST(LutPasses, EveryPassMatchesPlainLookupsAndTouchesNothingElse)
{
    std::mt19937 rng(5);
    std::vector<const zo::simd::LutPaths*> paths{&zo::simd::ScalarLutPaths()};
    if (const zo::simd::LutPaths* p = zo::simd::Avx512LutPaths())
        paths.push_back(p);
    constexpr std::size_t kGuard = 70;
    for (unsigned shape = 0; shape < 5; ++shape) {
        const std::vector<std::uint8_t> tables = TableSet(shape, rng);
        const zo::simd::LutTables8 t{tables.data(), tables.data() + 256, tables.data() + 512};
        for (const zo::simd::LutPaths* p : paths)
            for (unsigned pixelBytes : {3u, 4u})
                for (std::uint32_t count : {0u, 1u, 2u, 3u, 5u, 15u, 16u, 17u, 21u, 22u, 63u, 64u, 65u, 85u, 191u,
                                            192u, 193u, 1000u}) {
                    const std::size_t bytes = std::size_t(count) * pixelBytes;
                    std::vector<std::uint8_t> line(bytes + 2 * kGuard);
                    for (std::uint8_t& v : line)
                        v = static_cast<std::uint8_t>(rng());
                    std::vector<std::uint8_t> expected = line;
                    for (std::size_t i = 0; i < bytes; ++i) {
                        const unsigned position = i % pixelBytes;
                        if (position < 3)
                            expected[kGuard + i] = tables[256 * position + line[kGuard + i]];
                    }
                    (pixelBytes == 3 ? p->bytes3 : p->bytes4)(line.data() + kGuard, count, t);
                    ASSERT_TRUE(line == expected)
                        << p->name << ", table set " << shape << ", " << pixelBytes << "-byte pixels, count " << count;
                }
    }
}

// 8-bit tables random, 16-bit tables random over the whole 16-bit range.
const ZoRGBFilter& RandomTables() { return bayer_test::RandomFilter(); }

// White balance as cameras use it: green left as it is.
const ZoRGBFilter& Gains()
{
    static const ZoRGBFilter* filter = [] {
        auto* f = new ZoRGBFilter(16);
        f->SetMultipliers(1.8, 1.0, 1.4);
        return f;
    }();
    return *filter;
}

// Every Bayer instance, both modes, through the random filter and the gains
// at every level: the reference model looks each channel up itself.
TEST(WhiteBalance, BayerMatchesTheReferenceAtEveryLevel)
{
    std::mt19937 rng(9);
    AtEveryLevel([&](CpuLevel) {
        for (const bayer_test::Instance& in : bayer_test::AllInstances())
            for (std::uint32_t mode : {0u, ZO_FLAG_BAYER_INTERPOLATE})
                for (std::uint32_t width : {1u, 2u, 3u, 5u, 6u, 17u, 34u, 63u, 64u, 66u, 97u, 131u})
                    for (std::uint32_t wordMask : {0x0FFFu, 0xFFFFu}) {
                        bayer_test::Case c{width + 3, width, 4, ZO_FLAG_BAYER_BGGR | mode,
                                           wordMask == 0xFFFF ? &RandomTables() : &Gains(), 5, wordMask};
                        const ZoPixelConverter& conv =
                            ZoPixelTypeFactory::GetConverter(in.source, in.destination);
                        const bayer_test::Outcome o = bayer_test::RunCase(conv, in, c, rng);
                        ASSERT_EQ(o.result, ZO_OK);
                        ASSERT_TRUE(o.actual == o.expected) << o.Describe(in, c);
                    }
    });
}

// One filtered area conversion into a poisoned buffer with slack.
std::vector<std::uint8_t> ConvertFiltered(const ZoPixelConverter& conv, const ZoRGBFilter& filter,
                                          const std::vector<std::uint8_t>& source, std::uint32_t width,
                                          std::uint32_t height, std::uint32_t flags)
{
    constexpr std::size_t kSlack = 64;
    std::vector<std::uint8_t> out(std::size_t(conv.GetDestinationByteSize(width)) * (height + 1) + kSlack, 0xA5);
    EXPECT_EQ(conv.Convert(filter, source.data(), width, height, out.data(), width, height, width, height,
                           flags, 0),
              ZO_OK);
    return out;
}

// Every registered conversion into RGB24, BGR24, RGB32 or BGR32 (Bayer in
// both modes), at awkward widths, through random tables or the gains: each
// level gives the scalar level's bytes.
TEST(WhiteBalance, EveryConversionInto24And32BitsMatchesTheScalarLevel)
{
    struct Run {
        std::int64_t source, destination;
        std::uint32_t width, flags;
        const ZoRGBFilter* filter;
        std::vector<std::uint8_t> input, expected;
    };
    std::vector<Run> runs;
    std::mt19937 rng(13);
    constexpr std::uint32_t kHeight = 4;
    for (std::int64_t destination : {ZO_PT_RGB24, ZO_PT_BGR24, ZO_PT_RGB32, ZO_PT_BGR32}) {
        std::int64_t source = 0;
        for (std::uint32_t i = 0; ZoPixelTypeFactory::EnumConverterTo(i, destination, source); ++i) {
            const ZoPixelConverter& conv = ZoPixelTypeFactory::GetConverter(source, destination);
            const bool bayer = ZoPixelTypeFactory::HasPixelType(source) &&
                               ZoPixelTypeFactory::GetPixelType(source).IsBayerPattern();
            for (std::uint32_t width : {1u, 3u, 22u, 64u, 65u, 193u})
                for (std::uint32_t flags : {0u, ZO_FLAG_BAYER_RGGB | ZO_FLAG_BAYER_INTERPOLATE}) {
                    // Dual-tap sources split lines in two halves: even widths.
                    if ((flags && !bayer) || ((source & ZO_PIXEL_TAP_MASK) && width % 2))
                        continue;
                    Run r{source, destination, width, flags, runs.size() % 2 ? &Gains() : &RandomTables(), {}, {}};
                    r.input.resize(std::size_t(conv.GetSourceByteSize(width)) * (kHeight + 1) + 64);
                    for (std::uint8_t& v : r.input)
                        v = static_cast<std::uint8_t>(rng());
                    runs.push_back(std::move(r));
                }
        }
    }
    ASSERT_GT(runs.size(), 100u);
    const CpuLevel saved = zo::simd::CpuCeiling();
    zo::simd::SetCpuCeiling(CpuLevel::kScalar);
    for (Run& r : runs)
        r.expected = ConvertFiltered(ZoPixelTypeFactory::GetConverter(r.source, r.destination), *r.filter, r.input,
                                     r.width, kHeight, r.flags);
    zo::simd::SetCpuCeiling(saved);
    AtEveryLevel([&](CpuLevel) {
        for (const Run& r : runs) {
            const std::vector<std::uint8_t> actual = ConvertFiltered(
                ZoPixelTypeFactory::GetConverter(r.source, r.destination), *r.filter, r.input, r.width, kHeight,
                r.flags);
            ASSERT_TRUE(actual == r.expected) << std::hex << "source 0x" << r.source << " destination 0x"
                                              << r.destination << std::dec << " width " << r.width << " flags "
                                              << r.flags;
        }
    });
}

}  // namespace
