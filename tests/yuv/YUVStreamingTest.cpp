// 8-bit 4:2:2 into 32-bit pixels with streaming stores forced on: every
// level must write the scalar level's bytes, wherever the frame starts
// relative to a 64-byte line. The streaming paths store ordinarily up to
// the first line they can fill whole, stream whole lines, and convert the
// line's last pairs through a buffer; the widths give lines with no
// streamed part, a head and a tail only, and every tail length of the
// 16- and 32-pair groups. Padding of 8 bytes moves each line's start
// by 8 from the one before.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "ZoImgLib.h"
#include "core/StreamStores.h"
#include "support/AreaSupport.h"
#include "support/CpuLevels.h"

namespace {

using zo::simd::CpuLevel;

// The frame `offset` bytes past a 64-byte line, returned with 64 bytes of
// guard on either side.
std::vector<unsigned char> ConvertAt(const ZoPixelConverter& c, const std::vector<unsigned char>& source,
                                     std::uint32_t width, std::uint32_t height, std::uint32_t padding,
                                     const ZoRGBFilter& filter, unsigned offset)
{
    const std::size_t frame = (std::size_t(width + 1) * 4 + padding) * height;
    std::vector<unsigned char> d(frame + 256, zotest::kPoison);
    unsigned char* at = d.data() + 64 + (64 - reinterpret_cast<std::uintptr_t>(d.data()) % 64) % 64 + offset;
    EXPECT_EQ(c.Convert(filter, source.data(), width, height, at, width, height, width, height, 0, padding), ZO_OK);
    return std::vector<unsigned char>(at - 64, at + frame + 64);
}

TEST(YUVStreaming, EveryLevelWritesTheScalarBytesAtEveryLineOffset)
{
    constexpr std::uint32_t kHeight = 3;
    std::mt19937 rng(17);
    ZoRGBFilter identity(8), gains(8), tables(8);
    ASSERT_EQ(gains.SetMultipliers(1.8, 1.0, 1.4), ZO_OK);  // a form at AVX2, lookups at AVX-512
    for (std::uint32_t i = 0; i < 256; ++i)
        ASSERT_EQ(tables.SetRedValue(i, rng() & 0xFF) | tables.SetGreenValue(i, rng() & 0xFF) |
                      tables.SetBlueValue(i, rng() & 0xFF),
                  ZO_OK);
    const struct {
        const char* name;
        const ZoRGBFilter* filter;
    } kFilters[] = {{"identity", &identity}, {"gains", &gains}, {"random tables", &tables}};
    const struct {
        std::int64_t source, destination;
    } kPairs[] = {{ZO_PT_YUV8, ZO_PT_BGR32},
                  {ZO_PT_YUV8, ZO_PT_RGB32},
                  {ZO_PT_YUV10 | ZO_PIXEL_NORMALIZED, ZO_PT_BGR32}};  // 16-bit samples, high bytes
    std::vector<std::uint32_t> widths = {1, 31, 33, 63, 95};
    for (std::uint32_t w = 129; w <= 193; w += 2)  // 65..97 pairs: every tail length at each offset
        widths.push_back(w);
    for (std::uint32_t w : {256u, 321u, 1023u})
        widths.push_back(w);
    for (const auto& pair : kPairs) {
        const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(pair.source, pair.destination);
        for (std::uint32_t width : widths) {
            const auto source = zotest::RandomBytes(std::size_t(c.GetSourceByteSize(width + 1)) * kHeight + 64, rng);
            for (const auto& f : kFilters)
                for (std::uint32_t padding : {0u, 8u}) {
                    std::vector<unsigned char> expected;
                    {
                        const zotest::CpuCeilingScope ceiling(CpuLevel::kScalar);
                        expected = ConvertAt(c, source, width, kHeight, padding, *f.filter, 0);
                    }
                    zo::SetStreamingThreshold(0);
                    for (unsigned offset : {0u, 4u, 8u, 16u, 24u, 40u, 48u, 56u})
                        for (CpuLevel level : zotest::HostCpuLevels()) {
                            const zotest::CpuCeilingScope ceiling(level);
                            ASSERT_TRUE(zotest::SameBytes(
                                ConvertAt(c, source, width, kHeight, padding, *f.filter, offset), expected))
                                << std::hex << pair.source << " -> " << pair.destination << std::dec << ", width "
                                << width << ", padding " << padding << ", offset " << offset << ", level "
                                << zo::simd::CpuLevelName(level) << ", " << f.name;
                        }
                    zo::ResetStreamingThreshold();
                }
        }
    }
}

}  // namespace
