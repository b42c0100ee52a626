// Several threads converting through one converter and one chain at once,
// each with its own filter, flags and frame, get exactly what a serial run
// gives: test converters, test chains and built-in chains behind a
// deinterlacer, an unpacker, a recombiner, a Bayer converter and another chain.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "ZoPixelTypeFactory.h"
#include "support/ConvertSupport.h"

using zotest::FilterStage;
using zotest::FreshTestId;

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 12;

struct Job {
    std::uint32_t width, height, padding, flags;
    std::vector<unsigned char> source;
    ZoRGBFilter filter{16};
};

std::vector<Job> MakeJobs()
{
    std::vector<Job> jobs(kThreads);
    std::mt19937 rng(99);
    for (int t = 0; t < kThreads; ++t) {
        Job& j = jobs[t];
        j.width = 17 + 6 * t;  // odd: packed stages write past the line inside the chain's buffer
        j.height = 10 + 2 * t;  // even: the field split falls on a line
        j.padding = t;
        const std::uint32_t flags[] = {0, ZO_FLAG_INVERT_DEINTERLACER | ZO_FLAG_BAYER_INTERPOLATE,
                                       ZO_FLAG_BAYER_RGGB | ZO_FLAG_BAYER_INTERPOLATE,
                                       ZO_FLAG_INVERT_DEINTERLACER | ZO_FLAG_BAYER_BGGR};
        j.flags = flags[t];
        j.source.resize(j.width * (j.height + 1) * 8 + 64);  // room for the widest source pixels
        for (auto& b : j.source)
            b = static_cast<unsigned char>(rng());
        j.filter.SetMultipliers(0.3 + 0.4 * t, 1.0, 1.5 - 0.2 * t, static_cast<std::uint16_t>(t * 5), 0, 0);
    }
    return jobs;
}

// One filtered area conversion into a fresh poisoned buffer (with room for
// planar destinations and converters that write past the last pixel).
std::vector<unsigned char> ConvertFrame(const ZoPixelConverter& c, const Job& j)
{
    const std::uint32_t stride = c.GetDestinationByteSize(j.width) + j.padding;
    std::vector<unsigned char> d(stride * (j.height + 1) + 3 * j.width * j.height + 64, 0xA5);
    c.Convert(j.filter, j.source.data(), j.width, j.height, d.data(), j.width, j.height, j.width, j.height,
              j.flags, j.padding);
    return d;
}

}  // namespace

TEST(ConvertConcurrency, ConvertersAndChainsShared)
{
    // A filter-applying converter, a chain of two of them (the caller's
    // filter on the first stage only) and a chain behind the deinterlacing
    // identity, all converted through by every thread at once.
    const std::int64_t x = FreshTestId(), y = FreshTestId(), z = FreshTestId();
    static FilterStage single(FreshTestId(), FreshTestId(), 3, 0x0D);
    static FilterStage a(x, y, 1, 0x11), b(y, z, 2, 0x05);
    static ZoComplexConverter chain(&a, &b);
    ZoPixelConverter* deinterlace = const_cast<ZoPixelConverter*>(
        &ZoPixelTypeFactory::GetConverter(ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, ZO_PT_GRAY8));
    ASSERT_NE(deinterlace, nullptr);
    static FilterStage after(ZO_PT_GRAY8, FreshTestId(), 2, 0x21);
    static ZoComplexConverter fieldChain(deinterlace, &after);
    std::vector<const ZoPixelConverter*> converters = {&single, &chain, &fieldChain, deinterlace};
    const std::pair<std::int64_t, std::int64_t> builtIn[] = {
        {ZO_PT_BAYER_RGB10 | ZO_PIXEL_INTERLACED, ZO_PT_RGB24},
        {ZO_PT_BAYER_RGB10 | ZO_PIXEL_INTERLACED, ZO_PT_RGB24 | ZO_PIXEL_PLANAR},
        {ZO_PT_GRAY10 | ZO_PIXEL_PACKED, ZO_PT_GRAY14},
        {ZO_PT_BAYER_RGB8 | ZO_PIXEL_TAP_DUAL_LR, ZO_PT_RGB32},
        {ZO_PT_BAYER_RGGB12, ZO_PT_RGB24 | ZO_PIXEL_PLANAR}};
    for (const auto& p : builtIn) {
        converters.push_back(
            dynamic_cast<const ZoComplexConverter*>(&ZoPixelTypeFactory::GetConverter(p.first, p.second)));
        ASSERT_NE(converters.back(), nullptr) << std::hex << p.first << "->" << p.second;
    }

    const std::vector<Job> jobs = MakeJobs();
    std::vector<std::vector<std::vector<unsigned char>>> serial(converters.size());
    for (std::size_t c = 0; c < converters.size(); ++c)
        for (const Job& j : jobs)
            serial[c].push_back(ConvertFrame(*converters[c], j));
    const auto mismatches = zotest::CountThreadMismatches(kThreads, kRounds, [&](int t) {
        int bad = 0;
        for (std::size_t c = 0; c < converters.size(); ++c)
            bad += ConvertFrame(*converters[c], jobs[t]) != serial[c][t];
        return bad != 0;
    });
    EXPECT_EQ(mismatches, std::vector<int>(kThreads, 0));
}

TEST(ConvertConcurrency, DirectLineCallsWhileOthersConvertAreas)
{
    // Threads mixing direct line calls (no filter: the default) with
    // filtered area conversions keep their records apart.
    static FilterStage stage(FreshTestId(), FreshTestId(), 2, 0x07);
    const std::vector<Job> jobs = MakeJobs();
    const std::uint8_t* identity = ZoPixelConverter::DefaultFilter(1).RedTable8();
    std::vector<std::vector<unsigned char>> expected;
    for (int t = 0; t < kThreads; ++t) {
        const Job& j = jobs[t];
        if (t & 1) {
            expected.emplace_back(j.width * 2);
            FilterStage::Apply(identity, 0, 0x07, 2, j.source.data(), expected.back().data(), j.width);
        } else {
            expected.push_back(ConvertFrame(stage, j));
        }
    }
    const auto mismatches = zotest::CountThreadMismatches(kThreads, kRounds * 4, [&](int t) {
        const Job& j = jobs[t];
        if (!(t & 1))
            return ConvertFrame(stage, j) != expected[t];
        std::vector<unsigned char> line(j.width * 2);
        stage.Convert(j.source.data(), line.data(), j.width);
        return line != expected[t];
    });
    EXPECT_EQ(mismatches, std::vector<int>(kThreads, 0));
}
