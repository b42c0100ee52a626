// Area conversions written with streaming stores give the bytes of the
// scalar path. Small frames never stream on their own, so the threshold is
// lowered to 0; every destination starts at each offset from a 64-byte line
// (the streaming loops store ordinarily up to the first whole cache line) and
// lines are padded, so the head, the streamed middle and the tail all occur.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "ZoImgLibExt.h"
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

// The buffer sizes the area needs, over-reads and over-writes included.
ZoAreaBufferSizes Sizes(const ZoPixelConverter& c, std::uint32_t width, std::uint32_t height, std::uint32_t padding)
{
    ZoAreaBufferSizes z{};
    EXPECT_EQ(ZoPixelConverter_GetAreaBufferSizes(&c, width, height, width, height, width, height, 0, padding, &z),
              0u);
    return z;
}

// A poisoned destination whose frame starts `offset` bytes past a 64-byte
// boundary, converted at the ceiling `level`; the bytes around the frame are
// returned too.
Bytes ConvertAt(zo::simd::CpuLevel level, const ZoPixelConverter& c, const Bytes& source, std::uint32_t width,
                std::uint32_t height, std::uint32_t padding, std::uint32_t offset)
{
    zotest::CpuCeilingScope ceiling(level);
    const ZoAreaBufferSizes z = Sizes(c, width, height, padding);
    const std::size_t guard = 64 + z.destinationBytesBefore;
    Bytes d(3 * guard + 64 + z.destinationBytes, zotest::kPoison);
    unsigned char* start = d.data() + guard + (64 - reinterpret_cast<std::uintptr_t>(d.data()) % 64) % 64 + offset;
    c.Convert(source.data(), width, height, start, width, height, width, height, 0, padding);
    return Bytes(start - guard, start + z.destinationBytes + guard);
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
            const Bytes source = zotest::RandomBytes(Sizes(c, width, height, 0).sourceBytes, rng);
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
