// Area conversions written with streaming stores give the bytes of the
// scalar path. Small frames never stream on their own, so the threshold is
// lowered to 0; every destination starts at each offset from a 64-byte line
// (the streaming loops store ordinarily up to the first whole cache line) and
// lines are padded, so the head, the streamed middle and the tail all occur.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "ZoPixelTypeFactory.h"
#include "ZoPixelTypeIDs.h"
#include "core/StreamStores.h"
#include "support/AreaSupport.h"
#include "support/BuiltInPairs.h"
#include "support/CpuLevels.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct ThresholdScope {
    explicit ThresholdScope(std::uint64_t bytes) { zo::SetStreamingThreshold(bytes); }
    ~ThresholdScope() { zo::ResetStreamingThreshold(); }
};

// A poisoned destination whose frame starts `offset` bytes past a 64-byte
// boundary, converted at the ceiling `level`.
Bytes ConvertAt(zo::simd::CpuLevel level, const ZoPixelConverter& c, const Bytes& source, std::uint32_t width,
                std::uint32_t height, std::uint32_t padding, std::uint32_t offset)
{
    zotest::CpuCeilingScope ceiling(level);
    // Guards on both sides: some layouts write before the frame's start or
    // past its last line.
    const std::size_t guard = 4096;
    const std::size_t frame = std::size_t(c.GetDestinationByteSize(width) + padding) * (height + 1);
    Bytes d(frame + 3 * guard, zotest::kPoison);
    unsigned char* start = d.data() + guard + (64 - reinterpret_cast<std::uintptr_t>(d.data()) % 64) % 64 + offset;
    c.Convert(source.data(), width, height, start, width, height, width, height, 0, padding);
    return Bytes(start - guard, start + frame + guard);
}

// Every registered pair writing one of the layouts with streaming paths.
TEST(StreamingStores, EveryLevelWritesTheScalarBytes)
{
    std::mt19937 rng(11);
    const std::uint32_t height = 3;
    int checked = 0;
    for (const auto& pair : zotest::RegisteredBuiltInPairs()) {
        if (pair.second != ZO_PT_RGB16 && pair.second != ZO_PT_RGB32 && pair.second != ZO_PT_BGR32 &&
            pair.second != ZO_PT_GRAY8)
            continue;
        const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(pair.first, pair.second);
        ++checked;
        for (std::uint32_t width : {256u, 257u, 333u, 1023u}) {
            const Bytes source = zotest::RandomBytes(std::size_t(c.GetSourceByteSize(width)) * height, rng);
            for (std::uint32_t padding : {0u, 5u})
                for (std::uint32_t offset : {0u, 1u, 7u}) {
                    const Bytes expected =
                        ConvertAt(zo::simd::CpuLevel::kScalar, c, source, width, height, padding, offset);
                    ThresholdScope streamEverything(0);
                    for (zo::simd::CpuLevel level : zotest::HostCpuLevels())
                        ASSERT_EQ(ConvertAt(level, c, source, width, height, padding, offset), expected)
                            << std::hex << pair.first << " -> " << pair.second << std::dec << " width " << width
                            << " padding " << padding << " offset " << offset << " level " << int(level);
                }
        }
    }
    EXPECT_GT(checked, 20);
}

}  // namespace
