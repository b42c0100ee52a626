// Every registered pair at every instruction-set level the host runs,
// against the scalar level: awkward widths, padded destination lines, two of
// the default, an 8-bit and a 16-bit white-balance filter per width, every
// Bayer mode, both field orders of interlaced sources, destinations poisoned
// twice (two poison values, so that a byte one level writes and the other
// leaves shows whatever value it gets) with guard bytes after the frame.
// Then the layouts with streaming stores, streaming forced, and every
// family's choice of paths under the ceiling.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "ZoImgLib.h"
#include "bayer/BayerPaths.h"
#include "core/StreamStores.h"
#include "gray/GraySimd.h"
#include "gray/PackedPaths.h"
#include "simd/Lut.h"
#include "rgb/RGBPaths.h"
#include "support/AreaSupport.h"
#include "support/CpuLevels.h"
#include "support/BuiltInPairs.h"
#include "yuv/YUVSimd.h"

namespace {

using Bytes = std::vector<unsigned char>;
using zo::simd::CpuLevel;

constexpr std::uint32_t kWidths[] = {1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 33, 63, 65, 66, 100, 127, 129, 1921};
constexpr std::uint32_t kHeight = 5;  // odd: a last replicated pair of one line; three inner lines
constexpr std::size_t kGuard = 4096;  // dual-tap blocks may place pixels outside short lines
constexpr unsigned char kPoisons[2] = {0xA5, 0x5A};

// One area conversion of a width x height frame into a buffer filled with
// `poison`: guards before and after the frame, room for the planes of a
// planar destination and for the line an interlaced source adds. The frame
// starts `lineOffset` bytes past a 64-byte boundary if that is not negative.
Bytes Convert(const ZoPixelConverter& c, const Bytes& source, std::uint32_t width, std::uint32_t flags,
              const ZoRGBFilter* filter, unsigned char poison, int lineOffset = -1, std::uint32_t height = kHeight)
{
    const std::uint32_t padding = width % 4;
    Bytes d((std::size_t(c.GetDestinationByteSize(width)) + padding) * (height + 1) + 3 * width * height +
                2 * kGuard + 128, poison);
    unsigned char* frame = d.data() + kGuard;
    if (lineOffset >= 0)
        frame += (64 - reinterpret_cast<std::uintptr_t>(frame) % 64) % 64 + lineOffset;
    if (filter)
        c.Convert(*filter, source.data(), width, height, frame, width, height, width, height, flags, padding);
    else
        c.Convert(source.data(), width, height, frame, width, height, width, height, flags, padding);
    return lineOffset < 0 ? d : Bytes(frame - kGuard, frame - kGuard + d.size() - 128);
}

TEST(SimdLevels, EveryPairMatchesTheScalarLevelAtEveryLevel)
{
    // Every level but the first, scalar (each printed by the family test below).
    const std::vector<CpuLevel> all = zotest::HostCpuLevels(), vectorLevels(all.begin() + 1, all.end());
    ZoRGBFilter gains(16), gains8(8);
    ASSERT_EQ(gains.SetMultipliers(1.8, 1.0, 1.4, 3, 0, 7), ZO_OK);
    ASSERT_EQ(gains8.SetMultipliers(0.6, 1.3, 1.7, 9, 3, 40), ZO_OK);
    const ZoRGBFilter* const filters[] = {nullptr, &gains, &gains8};
    const std::vector<std::uint32_t> bayerFlags = {
        ZO_FLAG_BAYER_GRBG, ZO_FLAG_BAYER_BGGR, ZO_FLAG_BAYER_RGGB | ZO_FLAG_BAYER_INTERPOLATE,
        ZO_FLAG_BAYER_GBRG | ZO_FLAG_BAYER_INTERPOLATE};

    const auto pairs = zotest::RegisteredBuiltInPairs();
    ASSERT_EQ(pairs.size(), 680u);
    std::mt19937 rng(13);
    for (const auto& pair : pairs) {
        const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(pair.first, pair.second);
        SCOPED_TRACE(testing::Message() << std::hex << pair.first << " -> " << pair.second);
        const bool interlaced = (pair.first & ZO_PIXEL_INTERLACED) != 0;
        const bool bayer = ZoPixelTypeFactory::HasPixelType(pair.first) &&
                           ZoPixelTypeFactory::GetPixelType(pair.first).IsBayerPattern();
        for (std::size_t w = 0; w < std::size(kWidths); ++w) {
            const std::uint32_t width = kWidths[w];
            const Bytes source = zotest::RandomBytes(std::size_t(c.GetSourceByteSize(width)) * (kHeight + 1) + 64, rng);
            // Both field orders, and two of the three filters, in turn.
            const std::uint32_t field = interlaced && w % 2 ? ZO_FLAG_INVERT_DEINTERLACER : 0;
            for (std::uint32_t flags : bayer ? bayerFlags : std::vector<std::uint32_t>{0})
                for (const ZoRGBFilter* filter : {filters[w % 3], filters[(w + 1) % 3]}) {
                    auto convert = [&](CpuLevel level) {
                        const zotest::CpuCeilingScope ceiling(level);
                        return std::array<Bytes, 2>{Convert(c, source, width, flags | field, filter, kPoisons[0]),
                                                    Convert(c, source, width, flags | field, filter, kPoisons[1])};
                    };
                    const std::array<Bytes, 2> scalar = convert(CpuLevel::kScalar);
                    for (CpuLevel level : vectorLevels) {
                        const std::array<Bytes, 2> actual = convert(level);
                        for (int p = 0; p < 2; ++p)
                            ASSERT_TRUE(zotest::SameBytes(actual[p], scalar[p]))
                                << zo::simd::CpuLevelName(level) << ", width " << std::dec << width << ", flags "
                                << std::hex << (flags | field)
                                << (!filter ? "" : filter == &gains8 ? ", 8-bit gains" : ", 16-bit gains")
                                << ", poison " << int(kPoisons[p]);
                    }
                }
        }
    }
}

// Area conversions written with streaming stores give the scalar level's
// bytes. Small frames never stream on their own, so the threshold is lowered
// to 0; every destination starts at each offset from a 64-byte line (the
// streaming loops store ordinarily up to the first whole cache line) and
// lines are padded, so the head, the streamed middle and the tail all occur.
// With white balance too: filtered lines stream through their own paths.
TEST(StreamingStores, EveryLevelWritesTheScalarBytes)
{
    std::mt19937 rng(11);
    ZoRGBFilter gains(8);
    ASSERT_EQ(gains.SetMultipliers(1.8, 1.2, 1.6), ZO_OK);
    int checked = 0;
    for (const auto& pair : zotest::RegisteredBuiltInPairs()) {
        if (pair.second != ZO_PT_RGB16 && pair.second != ZO_PT_RGB32 && pair.second != ZO_PT_BGR32 &&
            pair.second != ZO_PT_GRAY8)
            continue;
        const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(pair.first, pair.second);
        ++checked;
        for (std::uint32_t width : {256u, 257u, 333u, 1023u}) {  // padded lines: width % 4 bytes
            const Bytes source = zotest::RandomBytes(std::size_t(c.GetSourceByteSize(width)) * (kHeight + 1) + 64, rng);
            for (const ZoRGBFilter* filter : std::initializer_list<const ZoRGBFilter*>{nullptr, &gains}) {
                const auto convert = [&](CpuLevel level, int offset, std::uint64_t threshold) {
                    const zotest::CpuCeilingScope ceiling(level);
                    zo::SetStreamingThreshold(threshold);
                    const Bytes d = Convert(c, source, width, 0, filter, zotest::kPoison, offset, 3);
                    zo::ResetStreamingThreshold();
                    return d;
                };
                // Streaming off, ordinary stores: the same bytes at every offset.
                const Bytes expected = convert(CpuLevel::kScalar, 0, ~std::uint64_t(0));
                for (int offset : {0, 1, 7})
                    for (CpuLevel level : zotest::HostCpuLevels())
                        ASSERT_TRUE(zotest::SameBytes(convert(level, offset, 0), expected))
                            << std::hex << pair.first << " -> " << pair.second << std::dec << " width " << width
                            << " offset " << offset << " level " << zo::simd::CpuLevelName(level)
                            << (filter ? ", gains" : "");
            }
        }
    }
    EXPECT_GT(checked, 20);
}

// ZOIMG_STREAMING: `off` and `on` in any case, anything else the cache rule.
TEST(StreamingStores, TheSettingChoosesTheRule)
{
    const std::uint64_t rule = 8u << 20, never = ~std::uint64_t(0) - 1;
    const struct {
        const char* value;
        std::uint64_t threshold;
    } kCases[] = {{nullptr, rule}, {"", rule}, {"auto", rule}, {"off", never}, {"OFF", never}, {"Off", never},
                  {"on", 0},       {"ON", 0},  {"o", rule},    {"offf", rule}, {"on ", rule}, {"1", rule}};
    for (const auto& c : kCases)
        EXPECT_EQ(zo::ThresholdFromSetting(c.value, rule), c.threshold) << (c.value ? c.value : "(unset)");
}

// The cache rule, through one area's choice as the walk makes it: a
// destination none of the thread's last four area conversions wrote streams
// from an eighth of the last-level cache, one of them from half of it;
// inner area conversions give the outer choice back; a set threshold holds
// for every destination. Skipped where ZOIMG_STREAMING sets the rule.
TEST(StreamingStores, RecentDestinationsStreamOnlyWhenLarge)
{
    if (std::getenv("ZOIMG_STREAMING"))
        GTEST_SKIP() << "ZOIMG_STREAMING is set";
    const std::uint64_t cache = zo::LastLevelCacheBytes();
    const ZoRGBFilter filter(8);
    unsigned char buffers[6];
    auto streams = [&](const unsigned char* destination, std::uint64_t footprint) {
        ZoPixelConverterContext context;
        context.filter = &filter;
        context.sourceLineBytes = 64;
        context.destinationLineBytes = 64;
        context.areaHeight = static_cast<std::uint32_t>(footprint / 128);
        const zo::AreaStores stores(context, destination);
        return zo::StreamDestination(context);
    };
    EXPECT_FALSE(streams(&buffers[0], cache / 8 - 128));
    EXPECT_TRUE(streams(&buffers[1], cache / 8));
    EXPECT_FALSE(streams(&buffers[1], cache / 8));  // now one of the last four
    EXPECT_FALSE(streams(&buffers[0], cache / 2 - 128));
    EXPECT_TRUE(streams(&buffers[0], cache / 2));
    for (int i = 2; i < 5; ++i)
        streams(&buffers[i], 0);
    EXPECT_FALSE(streams(&buffers[1], cache / 8));  // three others since
    for (int i = 2; i < 6; ++i)
        streams(&buffers[i], 0);
    EXPECT_TRUE(streams(&buffers[1], cache / 8));  // four others since
    {
        ZoPixelConverterContext outer;
        outer.filter = &filter;
        outer.sourceLineBytes = outer.destinationLineBytes = 64;
        outer.areaHeight = static_cast<std::uint32_t>(cache / 8 / 128);
        const zo::AreaStores stores(outer, &buffers[5] + 1);
        EXPECT_FALSE(streams(&buffers[2], 0));
        EXPECT_TRUE(zo::StreamDestination(outer));
        outer.filter = nullptr;  // a direct line call
        EXPECT_FALSE(zo::StreamDestination(outer));
    }
    zo::SetStreamingThreshold(1024);
    EXPECT_TRUE(streams(&buffers[1], 1024));
    EXPECT_FALSE(streams(&buffers[3], 896));
    zo::ResetStreamingThreshold();
}

// Every family follows the ceiling: at the scalar level each chooses its
// scalar table, from AVX2 on the converter families have vector paths
// (x86-64). The choices per level are printed for the log. Level names read
// back, in any case; nothing else reads as a level.
TEST(SimdLevels, EveryFamilyFollowsTheCeiling)
{
    // Make every family choose once, so that each is in the list.
    (void)zo::YUVActivePaths(), (void)zo::simd::RGBActivePaths(), (void)zo::gray::GrayActivePaths();
    (void)zo::PackedActivePaths(), (void)zo::DualTapActivePaths(), (void)zo::BayerActivePaths();
    (void)zo::simd::ActiveLutPaths();
    zo::simd::PathFamily families[16];
    const unsigned count = zo::simd::PathFamilies(families, 16);
    ASSERT_TRUE(count >= 6 && count <= 16) << count;
    const std::set<std::string> vectorAtAvx2 = {"YUV", "RGB", "gray", "packed", "dual-tap", "Bayer"};
    for (CpuLevel level : zotest::HostCpuLevels()) {
        const zotest::CpuCeilingScope ceiling(level);
        std::cout << zo::simd::CpuLevelName(level) << ":";
        std::size_t listed = 0;  // of the families with vector paths
        for (unsigned i = 0; i < count; ++i) {
            const std::string name = families[i].activeName(families[i].choice);
            listed += vectorAtAvx2.count(families[i].family);
            std::cout << " " << families[i].family << "=" << name;
            EXPECT_TRUE(level != CpuLevel::kScalar || name == "scalar") << families[i].family;
#if ZO_SIMD_X86
            EXPECT_TRUE(level < CpuLevel::kAVX2 || !vectorAtAvx2.count(families[i].family) || name != "scalar")
                << families[i].family << " at " << zo::simd::CpuLevelName(level);
#endif
        }
        std::cout << "\n";
        EXPECT_EQ(listed, vectorAtAvx2.size());
    }
    CpuLevel level = CpuLevel::kAVX512;
    for (unsigned i = 0; i < zo::simd::kCpuLevelCount; ++i)
        EXPECT_TRUE(zo::simd::ParseCpuLevel(zo::simd::CpuLevelName(CpuLevel(i)), level) && level == CpuLevel(i));
    EXPECT_TRUE(zo::simd::ParseCpuLevel("AVX2", level) && level == CpuLevel::kAVX2);
    for (const char* bad : {"", "avx", "sse", "avx2 ", "avx5122", "native", static_cast<const char*>(nullptr)})
        EXPECT_FALSE(zo::simd::ParseCpuLevel(bad, level)) << (bad ? bad : "null");
}

}  // namespace

#if defined(__x86_64__) && defined(__GNUC__)
// The CPU module reads the features the compiler's own detection sees (a
// misread bit would quietly drop a whole level).
TEST(SimdLevels, HostFeaturesAgreeWithTheCompilersDetection)
{
    const zo::simd::CpuFeatures& f = zo::simd::HostCpuFeatures();
    __builtin_cpu_init();
    EXPECT_EQ(std::vector<bool>({f.sse2, f.ssse3, f.sse41, f.avx2, f.avx512f, f.avx512bw, f.avx512vl, f.avx512vbmi}),
              std::vector<bool>({!!__builtin_cpu_supports("sse2"), !!__builtin_cpu_supports("ssse3"),
                                 !!__builtin_cpu_supports("sse4.1"), !!__builtin_cpu_supports("avx2"),
                                 !!__builtin_cpu_supports("avx512f"), !!__builtin_cpu_supports("avx512bw"),
                                 !!__builtin_cpu_supports("avx512vl"), !!__builtin_cpu_supports("avx512vbmi")}));
}
#endif
