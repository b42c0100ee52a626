// Threads converting through shared converters and chains at once, each with
// its own frame size, flags, padding and filter, get exactly what a serial
// run gives. The filter and the Bayer layout travel in each call's context,
// the dual-lines parity in each thread's record: nothing may leak between
// threads. One table of jobs: test converters and test chains, built-in
// chains behind a deinterlacer, an unpacker, a recombiner and a Bayer
// converter, one converter of each family, and direct line calls.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "ZoImgLibC.h"
#include "ZoPixelTypeFactory.h"
#include "support/AreaSupport.h"
#include "support/ConvertSupport.h"

using zotest::FilterStage;
using zotest::FreshTestId;

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 6;

// One conversion: a converter and the arguments of one thread's frame.
struct Job {
    const ZoPixelConverter* converter;
    std::uint32_t width, height, padding, flags;
    const ZoRGBFilter* filter;  // null: the default
    const std::vector<unsigned char>* source;
};

// One filtered area conversion into a fresh poisoned buffer (with room for
// planar destinations and converters that write past the last pixel); height
// 0: a direct line call, which has no filter of its own (the default).
std::vector<unsigned char> ConvertFrame(const Job& j)
{
    const ZoPixelConverter& c = *j.converter;
    const std::uint32_t stride = c.GetDestinationByteSize(j.width) + j.padding;
    std::vector<unsigned char> d(stride * (j.height + 1) + 3 * j.width * j.height + 64, 0xA5);
    if (!j.height)
        c.Convert(j.source->data(), d.data(), j.width);
    else  // a null filter: the unfiltered area form
        ZoPixelConverter_ConvertAreaFilter(&c, j.filter, j.source->data(), j.width, j.height, d.data(), j.width,
                                           j.height, j.width, j.height, j.flags, j.padding);
    return d;
}

}  // namespace

TEST(ConvertConcurrency, EveryJobMatchesTheSerialRun)
{
    // A filter-applying converter, a chain of two of them (the caller's
    // filter on the first stage only) and a chain behind the deinterlacing
    // identity.
    const std::int64_t x = FreshTestId(), y = FreshTestId(), z = FreshTestId();
    static FilterStage single(FreshTestId(), FreshTestId(), 3, 0x0D);
    static FilterStage a(x, y, 1, 0x11), b(y, z, 2, 0x05);
    static ZoComplexConverter chain(&a, &b);
    ZoPixelConverter* deinterlace = const_cast<ZoPixelConverter*>(
        &ZoPixelTypeFactory::GetConverter(ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, ZO_PT_GRAY8));
    static FilterStage after(ZO_PT_GRAY8, FreshTestId(), 2, 0x21);
    static ZoComplexConverter fieldChain(deinterlace, &after);
    std::vector<const ZoPixelConverter*> converters = {&single, &chain, &fieldChain};
    const std::int64_t I = ZO_PIXEL_INTERLACED, P = ZO_PIXEL_PACKED, planar = ZO_PT_RGB24 | ZO_PIXEL_PLANAR;
    const std::pair<std::int64_t, std::int64_t> builtIn[] = {
        // Chains.
        {ZO_PT_BAYER_RGB10 | I, ZO_PT_RGB24}, {ZO_PT_BAYER_RGB10 | I, planar}, {ZO_PT_GRAY10 | P, ZO_PT_GRAY14},
        {ZO_PT_BAYER_RGB8 | ZO_PIXEL_TAP_DUAL_LR, ZO_PT_RGB32}, {ZO_PT_BAYER_RGGB12, planar},
        // Single converters of each family.
        {ZO_PT_RGB24 | P, ZO_PT_BGR32}, {ZO_PT_RGB48_12BITS, ZO_PT_RGB24}, {ZO_PT_BAYER_RGB8, ZO_PT_RGB24},
        {ZO_PT_YUV8, ZO_PT_RGB24}, {ZO_PT_YUV10 | I, ZO_PT_BGR32}, {ZO_PT_GRAY14, ZO_PT_RGB32},
        {ZO_PT_GRAY12 | ZO_PIXEL_TAP_DUAL_LR_INV | P, ZO_PT_GRAY16},
        {ZO_PT_GRAY8 | ZO_PIXEL_TAP_DUAL_LINES, ZO_PT_GRAY8}};
    for (const auto& p : builtIn) {
        ASSERT_TRUE(ZoPixelTypeFactory::HasConverter(p.first, p.second)) << std::hex << p.first << "->" << p.second;
        converters.push_back(&ZoPixelTypeFactory::GetConverter(p.first, p.second));
    }

    // Four variants per converter, next to each other in the table: threads
    // walk it from different starts, so one converter serves several variants
    // at the same moment.
    const std::uint32_t flags[kThreads] = {0, ZO_FLAG_INVERT_DEINTERLACER | ZO_FLAG_BAYER_INTERPOLATE,
                                           ZO_FLAG_BAYER_RGGB | ZO_FLAG_BAYER_INTERPOLATE,
                                           ZO_FLAG_INVERT_DEINTERLACER | ZO_FLAG_BAYER_BGGR};
    std::vector<ZoRGBFilter> filters;
    std::vector<std::vector<unsigned char>> sources(kThreads);
    std::mt19937 rng(99);
    for (int v = 0; v < kThreads; ++v) {
        filters.emplace_back(v % 2 ? 16 : 8);
        filters.back().SetMultipliers(0.3 + 0.4 * v, 1.0, 1.5 - 0.2 * v, static_cast<std::uint16_t>(v * 5), 0, 0);
        sources[v] = zotest::RandomBytes((17 + 6 * v) * (11 + 2 * v) * 8 + 64, rng);  // the widest source pixels
    }
    std::vector<Job> jobs;
    for (const ZoPixelConverter* c : converters)
        for (int v = 0; v < kThreads; ++v)  // odd widths: packed stages write past the line in a chain's buffer;
            // even heights: the field split falls on a line
            jobs.push_back({c, 17u + 6 * v, 10u + 2 * v, std::uint32_t(v), flags[v],
                            v == 3 ? nullptr : &filters[v], &sources[v]});
    // Direct line calls among them, on converters that apply the filter.
    for (const ZoPixelConverter* c : {converters[0], converters[1]})
        jobs.insert(jobs.begin() + 2, {c, 40, 0, 0, 0, nullptr, &sources[3]});
    std::vector<std::vector<unsigned char>> serial;
    for (const Job& j : jobs)
        serial.push_back(ConvertFrame(j));
    const auto mismatches = zotest::CountThreadMismatches(kThreads, kRounds, [&](int t) {
        int bad = 0;
        for (std::size_t i = 0; i < jobs.size(); ++i) {
            const std::size_t k = (i + t) % jobs.size();
            bad += ConvertFrame(jobs[k]) != serial[k];
        }
        return bad != 0;
    });
    EXPECT_EQ(mismatches, std::vector<int>(kThreads, 0));
}
