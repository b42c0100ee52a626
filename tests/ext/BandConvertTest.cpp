// Band conversion: bands of any split, converted in any order from several
// threads, give byte for byte the whole-area conversion, over every
// registered pair; a band alone writes only its own lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <random>
#include <thread>
#include <vector>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"
#include "ZoPixelConverter.h"
#include "ZoRGBFilter.h"
#include "support/AreaSupport.h"
#include "support/BuiltInPairs.h"

namespace {

using zotest::kPoison;
constexpr std::size_t kFront = 64;  // room for writes before the destination pointer
constexpr int kRounds = 4;          // random areas per pair

bool IsBayer(std::int64_t id)
{
    const std::uint32_t format = static_cast<std::uint32_t>(id) & ZO_PIXEL_FORMAT_MASK;
    return (static_cast<std::uint32_t>(id) & ZO_PIXEL_COLORSPACE_MASK) == ZO_PIXEL_COLORSPACE_RGB &&
           format >= 0x10 && format <= 0x15;
}

struct Area {
    std::uint32_t sourceWidth, sourceHeight, destinationWidth, destinationHeight, width, height, flags, padding;
    bool filtered;
};

struct Case {
    const ZoPixelConverter* converter;
    std::int64_t source, destination;
    Area area;
    std::vector<unsigned char> input;
    ZoRGBFilter* filter;
    std::size_t destinationBytes;
    std::uint32_t stride;  // destination line bytes, as the area walk steps
    bool planar;

    // A demosaic that replicates 2 x 2 cells converts lines in pairs.
    bool PairedLines() const
    {
        return IsBayer(source) && !IsBayer(destination) && !planar && !(area.flags & ZO_FLAG_BAYER_INTERPOLATE);
    }

    std::vector<unsigned char> Fresh() const { return std::vector<unsigned char>(destinationBytes, kPoison); }

    std::uint32_t Band(std::vector<unsigned char>& out, std::uint32_t first, std::uint32_t count) const
    {
        const Area& a = area;
        return ZoPixelConverter_ConvertBand(converter, a.filtered ? filter : nullptr, input.data() + kFront,
                                            a.sourceWidth, a.sourceHeight, out.data() + kFront,
                                            a.destinationWidth, a.destinationHeight, a.width, a.height, a.flags,
                                            a.padding, first, count);
    }

    std::vector<unsigned char> Whole() const
    {
        std::vector<unsigned char> out = Fresh();
        const Area& a = area;
        EXPECT_EQ(ZoPixelConverter_ConvertAreaFilter(converter, a.filtered ? filter : nullptr,
                                                     input.data() + kFront, a.sourceWidth, a.sourceHeight,
                                                     out.data() + kFront, a.destinationWidth, a.destinationHeight,
                                                     a.width, a.height, a.flags, a.padding),
                  ZO_OK);
        return out;
    }

    // Whether destination byte `at` (from the buffer start) lies in the
    // lines [first, end) of the area; the first band also owns what lies
    // before line 0, the last what lies after the area.
    bool Owns(std::size_t at, std::uint32_t first, std::uint32_t end) const
    {
        const std::int64_t x = static_cast<std::int64_t>(at) - static_cast<std::int64_t>(kFront);
        std::int64_t line;
        if (planar) {
            const std::int64_t plane = std::int64_t{area.destinationWidth} * area.destinationHeight;
            const std::int64_t inPlane = plane == 0 ? x : (x < 0 ? x : (x >= 3 * plane ? x - 2 * plane : x % plane));
            line = inPlane < 0 ? -1 : inPlane / area.sourceWidth;
        } else {
            line = x < 0 ? -1 : x / stride;
        }
        return (line >= first || first == 0) && (line < end || end == area.height);
    }
};

// A random area (or one of size x size pixels) with random flags, padding,
// filter use and source bytes.
Case MakeCase(const ZoPixelConverter& converter, std::int64_t source, std::int64_t destination, std::mt19937& rng,
              ZoRGBFilter* filter, std::uint32_t size = 0)
{
    Case c{&converter, source, destination, {}, {}, filter, 0, 0, false};
    Area& a = c.area;
    a.width = size ? size : (rng() % 3 == 0 ? 40 + rng() % 100 : 1 + rng() % 19);
    a.height = size ? size : 1 + rng() % 13;
    a.sourceWidth = a.width;
    a.sourceHeight = a.height;
    a.destinationWidth = a.width + (rng() % 3 == 0 ? 1 : 0);
    a.destinationHeight = a.height;
    const std::uint32_t patterns[] = {0, ZO_FLAG_BAYER_GRBG, ZO_FLAG_BAYER_GBRG, ZO_FLAG_BAYER_RGGB,
                                      ZO_FLAG_BAYER_BGGR};
    a.flags = patterns[rng() % 5] | (rng() % 2 ? ZO_FLAG_BAYER_INTERPOLATE : 0) |
              (rng() % 2 ? ZO_FLAG_INVERT_DEINTERLACER : 0);
    a.padding = rng() % 4;
    a.filtered = rng() % 2 == 0;
    c.planar = (destination & ZO_PIXEL_PLANAR) && !(source & ZO_PIXEL_PLANAR);
    c.stride = c.planar ? a.sourceWidth : converter.GetDestinationByteSize(a.destinationWidth) + a.padding;
    const std::size_t lines = a.height + 2;
    c.destinationBytes = kFront + std::max<std::size_t>(std::size_t{c.stride} * lines,
                                                       3u * std::size_t{a.destinationWidth} * lines) + 64;
    c.input = zotest::RandomBytes(kFront + std::size_t{converter.GetSourceByteSize(a.sourceWidth) + 8} * lines + 64, rng);
    return c;
}

// Random band boundaries: 1 to 8 bands, on even lines when lines go in pairs.
std::vector<std::uint32_t> RandomCuts(const Case& c, std::mt19937& rng)
{
    std::vector<std::uint32_t> cuts = {0, c.area.height};
    const std::uint32_t bands = 1 + rng() % 8;
    for (std::uint32_t b = 1; b < bands; ++b) {
        std::uint32_t cut = rng() % (c.area.height + 1);
        if (c.PairedLines())
            cut &= ~1u;
        cuts.push_back(cut);
    }
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
    return cuts;
}

// Converts the bands between `cuts` in a random order from three threads.
std::vector<unsigned char> ConvertInBands(const Case& c, const std::vector<std::uint32_t>& cuts, std::mt19937& rng)
{
    std::vector<unsigned char> out = c.Fresh();
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i + 1 < cuts.size(); ++i)
        order.push_back(i);
    std::shuffle(order.begin(), order.end(), rng);
    std::atomic<std::size_t> next{0};
    std::atomic<int> failures{0};
    auto work = [&] {
        for (std::size_t k; (k = next++) < order.size();) {
            const std::size_t b = order[k];
            if (c.Band(out, cuts[b], cuts[b + 1] - cuts[b]) != ZO_OK)
                ++failures;
        }
    };
    std::thread t1(work), t2(work);
    work();
    t1.join();
    t2.join();
    EXPECT_EQ(failures.load(), 0);
    return out;
}

TEST(BandConvert, EveryPairSplitAnyWayGivesTheWholeArea)
{
    const auto pairs = zotest::RegisteredBuiltInPairs();
    ASSERT_EQ(pairs.size(), 680u);
    ZoRGBFilter filter(16);
    filter.SetMultipliers(0.7, 1.2, 0.9, 3, 0, 5);
    std::mt19937 rng(2024);
    int splits = 0;
    for (const auto& pair : pairs) {
        const ZoPixelConverter& converter = ZoPixelTypeFactory::GetConverter(pair.first, pair.second);
        for (int round = 0; round < kRounds; ++round) {
            const Case c = MakeCase(converter, pair.first, pair.second, rng, &filter);
            const std::vector<unsigned char> whole = c.Whole();
            const std::vector<std::uint32_t> cuts = RandomCuts(c, rng);
            const std::vector<unsigned char> banded = ConvertInBands(c, cuts, rng);
            ASSERT_TRUE(zotest::SameBytes(banded, whole))
                << std::hex << pair.first << " -> " << pair.second << std::dec << " " << c.area.width << " x "
                << c.area.height << " flags " << c.area.flags << " padding " << c.area.padding << " bands "
                << cuts.size() - 1;

            // One band alone: its lines as in the whole area, nothing else.
            const std::size_t b = rng() % (cuts.size() - 1);
            std::vector<unsigned char> alone = c.Fresh();
            ASSERT_EQ(c.Band(alone, cuts[b], cuts[b + 1] - cuts[b]), ZO_OK);
            for (std::size_t at = 0; at < alone.size(); ++at)
                ASSERT_EQ(alone[at], c.Owns(at, cuts[b], cuts[b + 1]) ? whole[at] : kPoison)
                    << std::hex << pair.first << " -> " << pair.second << std::dec << " byte " << at << " band "
                    << cuts[b] << ".." << cuts[b + 1] << " of " << c.area.height << " stride " << c.stride;
            ++splits;
        }
    }
    EXPECT_EQ(splits, kRounds * 680);
}

TEST(BandConvert, RefusedBandsWriteNothing)
{
    std::mt19937 rng(7);
    ZoRGBFilter filter(16);
    struct Refusal {
        std::int64_t source, destination;
        std::uint32_t flags, first, count;
    };
    const std::int64_t packedBayer = ZO_PT_BAYER_RGB10 | ZO_PIXEL_PACKED;
    const Refusal refusals[] = {
        {ZO_PT_BAYER_RGB8, ZO_PT_RGB24, 0, 1, 2},          // replicating: odd first line
        {ZO_PT_BAYER_RGB8, ZO_PT_RGB24, 0, 2, 3},          // replicating: ends between two paired lines
        {packedBayer, ZO_PT_BGR32, ZO_FLAG_BAYER_RGGB, 3, 2},  // a chain that replicates in its second stage
        {ZO_PT_GRAY8, ZO_PT_RGB24, 0, 4, 3},               // ends beyond the area
        {ZO_PT_YUV8, ZO_PT_RGB32, 0, 8, 0},                // starts beyond it
    };
    for (const Refusal& r : refusals) {
        const ZoPixelConverter& converter = ZoPixelTypeFactory::GetConverter(r.source, r.destination);
        Case c = MakeCase(converter, r.source, r.destination, rng, &filter, 6);
        c.area.flags = r.flags;
        std::vector<unsigned char> out = c.Fresh();
        EXPECT_EQ(c.Band(out, r.first, r.count), ZO_ERR_BAD_ARGUMENT) << std::hex << r.source;
        EXPECT_EQ(out, c.Fresh());
    }
    // The interpolating mode takes any line; an empty band converts nothing.
    const ZoPixelConverter& bayer = ZoPixelTypeFactory::GetConverter(ZO_PT_BAYER_RGB8, ZO_PT_RGB24);
    Case c = MakeCase(bayer, ZO_PT_BAYER_RGB8, ZO_PT_RGB24, rng, &filter);
    c.area.flags = ZO_FLAG_BAYER_INTERPOLATE;
    std::vector<unsigned char> out = c.Fresh();
    EXPECT_EQ(c.Band(out, c.area.height, 0), ZO_OK);
    EXPECT_EQ(out, c.Fresh());
    EXPECT_EQ(ZoPixelConverter_ConvertBand(nullptr, nullptr, nullptr, 1, 1, nullptr, 1, 1, 1, 1, 0, 0, 0, 1),
              ZO_ERR_BAD_ARGUMENT);
}

}  // namespace
