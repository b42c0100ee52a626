// Chained converters size their intermediate frame in 64 bits, refuse frames
// they cannot hold, and give output that depends on the call's input alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

#include "ZoBayerConverters.h"
#include "ZoGenericConverters.h"
#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"
#include "convert/ChainFrame.h"
#include "support/AreaSupport.h"
#include "support/BuiltInPairs.h"

namespace {

using zotest::kPoison;

TEST(ChainFrame, SizesInSixtyFourBitsAndRefusesFramesItCannotHold)
{
    const struct {
        std::uint32_t pixel, width;
        std::uint64_t lines, bytes;  // bytes 0: does not fit
    } sizes[] = {
        {3, 65536, 21845, 4294901760u},       // just below 4 GiB
        {3, 65536, 21846, 0},                 // 4 GiB + 131072: wraps to 131072 in 32 bits
        {3, 65536, 21847, 0},                 // the frame of 21846 lines with its extra line
        {6, 4096, 3001, 6ull * 4096 * 3001},  // an ordinary frame
        {4, 0x40000000u, 1, 0},               // one line beyond 4 GiB
        {1, 1, 0x100000000ull, 0},            // more lines than 32 bits count
    };
    for (const auto& c : sizes) {
        std::uint64_t bytes = 12345;
        EXPECT_EQ(zo::ChainFrameBytes(c.pixel, c.width, c.lines, &bytes), c.bytes != 0) << c.pixel << " x " << c.width;
        EXPECT_EQ(bytes, c.bytes ? c.bytes : 12345u);
    }
    std::uint64_t bytes = 1;
    EXPECT_TRUE(zo::ChainFrameBytes(0, 5, 7, &bytes));
    EXPECT_EQ(bytes, 0u);

    // A conversion that would need such a frame, or reach outside the source
    // frame, reads and writes nothing: tiny buffers stand for the frames.
    const ZoPixelConverter& planar = ZoPixelTypeFactory::GetConverter(ZO_PT_GRAY8, ZO_PT_RGB24 | ZO_PIXEL_PLANAR);
    ASSERT_NE(dynamic_cast<const ZoComplexConverter*>(&planar), nullptr);
    std::vector<unsigned char> source(64, 7), destination(256, kPoison);
    const std::uint32_t refused[][4] = {
        {65536, 21846, 65536, 21846},  // a line-scan frame: 3 x 65536 x 21846 bytes in between
        {65536, 21845, 65536, 21845},  // its extra line takes it past 4 GiB - 1
        {4, 3, 5, 3},                  // wider than the source frame
        {4, 3, 4, 4},                  // taller than the source frame
    };
    for (const auto& c : refused) {
        EXPECT_EQ(planar.Convert(source.data(), c[0], c[1], destination.data(), c[0], c[1], c[2], c[3], 0, 0),
                  ZO_ERR_BAD_ARGUMENT);
        EXPECT_EQ(destination, std::vector<unsigned char>(256, kPoison));
    }
}

// Every chain whose second stage is a Bayer converter.
std::vector<const ZoComplexConverter*> BayerChains()
{
    std::vector<const ZoComplexConverter*> chains;
    for (const auto& pair : zotest::RegisteredBuiltInPairs()) {
        const auto* chain =
            dynamic_cast<const ZoComplexConverter*>(&ZoPixelTypeFactory::GetConverter(pair.first, pair.second));
        if (chain && (dynamic_cast<const ZoBayerRGB8ToRGB*>(chain->GetSecond()) ||
                      dynamic_cast<const ZoBayerRGB16ToRGB*>(chain->GetSecond())))
            chains.push_back(chain);
    }
    return chains;
}

struct Frame {
    std::uint32_t width, height;
    std::vector<unsigned char> source;
};

Frame RandomFrame(std::uint32_t width, std::uint32_t height, std::uint32_t seed)
{
    std::mt19937 rng(seed);
    return {width, height, zotest::RandomBytes(8 * width * (height + 2) + 64, rng)};
}

std::vector<unsigned char> ConvertFrame(const ZoPixelConverter& c, const Frame& f, std::uint32_t flags)
{
    std::vector<unsigned char> d(c.GetDestinationByteSize(f.width) * (f.height + 1) + 64, kPoison);
    EXPECT_EQ(c.Convert(f.source.data(), f.width, f.height, d.data(), f.width, f.height, f.width, f.height, flags,
                        0),
              ZO_OK);
    return d;
}

// A replicating second stage with an odd height reads the line after the
// intermediate frame: the output must not carry what an earlier frame, of
// this thread or another, left there.
TEST(ChainFrame, OutputDependsOnTheInputAlone)
{
    const std::vector<const ZoComplexConverter*> chains = BayerChains();
    ASSERT_GE(chains.size(), 100u);
    const Frame frame = RandomFrame(9, 5, 1), other = RandomFrame(9, 7, 2);
    int compared = 0;
    for (const ZoComplexConverter* chain : chains) {
        for (std::uint32_t flags : {ZO_FLAG_BAYER_GRBG, ZO_FLAG_BAYER_BGGR | ZO_FLAG_INVERT_DEINTERLACER}) {
            const std::vector<unsigned char> expected = ConvertFrame(*chain, frame, flags);
            ConvertFrame(*chain, other, flags);
            EXPECT_EQ(ConvertFrame(*chain, frame, flags), expected) << std::hex << chain->GetSourceType();
            std::vector<unsigned char> fromThread;
            std::thread([&] {
                ConvertFrame(*chain, other, flags);
                fromThread = ConvertFrame(*chain, frame, flags);
            }).join();
            EXPECT_EQ(fromThread, expected) << std::hex << chain->GetSourceType();
            ++compared;
        }
    }
    EXPECT_GE(compared, 200);
}

}  // namespace
