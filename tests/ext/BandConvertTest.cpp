// Band conversion: bands of any split, converted in any order from several
// threads, give byte for byte the whole-area conversion, over every
// registered pair; a band alone writes only its own lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <numeric>
#include <random>
#include <vector>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"
#include "support/AreaSupport.h"
#include "support/BuiltInPairs.h"
#include "support/ConvertSupport.h"

namespace {

using zotest::kPoison;
constexpr std::size_t kFront = 64;  // room for writes before the destination pointer
constexpr int kRounds = 4;          // random areas per pair

// Bayer IDs: RGB colour space, formats 0x10 to 0x15.
bool IsBayer(std::int64_t id)
{
    const std::int64_t format = id & ZO_PIXEL_FORMAT_MASK;  // the six Bayer formats are 0x10 to 0x15
    return (id & ZO_PIXEL_COLORSPACE_MASK) == ZO_PIXEL_COLORSPACE_RGB && format >= 0x10 && format < 0x16;
}

// A random area (or one of size x size pixels) with random flags, padding,
// filter use and source bytes.
struct Case {
    Case(std::int64_t s, std::int64_t d, std::mt19937& rng, const ZoRGBFilter* f, std::uint32_t size = 0)
        : converter(ZoPixelTypeFactory_GetConverter(s, d)), planar((d & ZO_PIXEL_PLANAR) && !(s & ZO_PIXEL_PLANAR))
    {
        const std::uint32_t w = size ? size : (rng() % 3 == 0 ? 40 + rng() % 100 : 1 + rng() % 19);
        const std::uint32_t h = size ? size : 1 + rng() % 13;
        a = {w, h, w + (rng() % 3 == 0 ? 1 : 0), h, w, h, 0, 0};
        a.flags = (rng() % 5 ? ZO_FLAG_BAYER_GRBG << (rng() % 4) : 0) | (rng() % 2 ? ZO_FLAG_BAYER_INTERPOLATE : 0) |
                  (rng() % 2 ? ZO_FLAG_INVERT_DEINTERLACER : 0);
        a.padding = rng() % 4;
        filter = rng() % 2 ? f : nullptr;
        paired = IsBayer(s) && !IsBayer(d) && !planar;
        stride = planar ? a.sourceWidth : converter->GetDestinationByteSize(a.destinationWidth) + a.padding;
        const std::size_t lines = h + 2;
        bytes = kFront + 64 +
                std::max<std::size_t>(std::size_t{stride} * lines, 3u * std::size_t{a.destinationWidth} * lines);
        input = zotest::RandomBytes(kFront + std::size_t{converter->GetSourceByteSize(w) + 8} * lines + 64, rng);
    }
    // A demosaic that replicates 2 x 2 cells converts lines in pairs.
    bool PairedLines() const { return paired && !(a.flags & ZO_FLAG_BAYER_INTERPOLATE); }
    std::vector<unsigned char> Fresh() const { return std::vector<unsigned char>(bytes, kPoison); }
    std::uint32_t Band(std::vector<unsigned char>& out, std::uint32_t first, std::uint32_t count) const
    {
        return ZoPixelConverter_ConvertBand(converter, filter, input.data() + kFront, a.sourceWidth, a.sourceHeight,
                                            out.data() + kFront, a.destinationWidth, a.destinationHeight, a.width,
                                            a.height, a.flags, a.padding, first, count);
    }
    std::vector<unsigned char> Whole() const
    {
        std::vector<unsigned char> out = Fresh();
        EXPECT_EQ(ZoPixelConverter_ConvertAreaFilter(converter, filter, input.data() + kFront, a.sourceWidth,
                                                     a.sourceHeight, out.data() + kFront, a.destinationWidth,
                                                     a.destinationHeight, a.width, a.height, a.flags, a.padding),
                  ZO_OK);
        return out;
    }
    // Whether destination byte `at` (from the buffer start) lies in the
    // lines [first, end) of the area; the first band also owns what lies
    // before line 0, the last what lies after the area. Planar lines are
    // sourceWidth apart in each of three planes.
    bool Owns(std::size_t at, std::uint32_t first, std::uint32_t end) const
    {
        std::int64_t x = static_cast<std::int64_t>(at) - static_cast<std::int64_t>(kFront);
        const std::int64_t plane = std::int64_t{a.destinationWidth} * a.destinationHeight;
        if (planar && plane != 0 && x >= 0)
            x = x >= 3 * plane ? x - 2 * plane : x % plane;
        const std::int64_t line = x < 0 ? -1 : x / stride;
        return (line >= first || first == 0) && (line < end || end == a.height);
    }

    const ZoPixelConverter* converter;
    bool planar, paired;
    zotest::Area a;
    const ZoRGBFilter* filter;
    std::uint32_t stride;  // destination line bytes, as the area walk steps
    std::size_t bytes;
    std::vector<unsigned char> input;
};

// Random band boundaries: 1 to 8 bands, on even lines when lines go in pairs.
std::vector<std::uint32_t> RandomCuts(const Case& c, std::mt19937& rng)
{
    std::vector<std::uint32_t> cuts = {0, c.a.height};
    for (std::uint32_t b = 1, bands = 1 + rng() % 8; b < bands; ++b)
        cuts.push_back((rng() % (c.a.height + 1)) & (c.PairedLines() ? ~1u : ~0u));
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
    return cuts;
}

// Converts the bands between `cuts` in a random order from three threads.
std::vector<unsigned char> ConvertInBands(const Case& c, const std::vector<std::uint32_t>& cuts, std::mt19937& rng)
{
    std::vector<unsigned char> out = c.Fresh();
    std::vector<std::size_t> order(cuts.size() - 1);
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), rng);
    std::atomic<std::size_t> next{0};
    const std::vector<int> failures = zotest::CountThreadMismatches(3, 1, [&](int) {
        bool failed = false;
        for (std::size_t k; (k = next++) < order.size();)
            failed |= c.Band(out, cuts[order[k]], cuts[order[k] + 1] - cuts[order[k]]) != ZO_OK;
        return failed;
    });
    EXPECT_EQ(failures, std::vector<int>(3, 0));
    return out;
}

TEST(BandConvert, EveryPairSplitAnyWayGivesTheWholeArea)
{
    const auto pairs = zotest::RegisteredBuiltInPairs();
    ASSERT_EQ(pairs.size(), 680u);
    ZoRGBFilter filter(16);
    filter.SetMultipliers(0.7, 1.2, 0.9, 3, 0, 5);
    std::mt19937 rng(2024);
    for (const auto& pair : pairs)
        for (int round = 0; round < kRounds; ++round) {
            const Case c(pair.first, pair.second, rng, &filter);
            const std::vector<unsigned char> whole = c.Whole();
            const std::vector<std::uint32_t> cuts = RandomCuts(c, rng);
            SCOPED_TRACE(testing::Message() << std::hex << pair.first << " -> " << pair.second << std::dec << " "
                                            << c.a.width << " x " << c.a.height << " flags " << c.a.flags
                                            << " padding " << c.a.padding << " bands " << cuts.size() - 1);
            ASSERT_TRUE(zotest::SameBytes(ConvertInBands(c, cuts, rng), whole));

            // One band alone: its lines as in the whole area, nothing else.
            const std::size_t b = rng() % (cuts.size() - 1);
            std::vector<unsigned char> alone = c.Fresh();
            ASSERT_EQ(c.Band(alone, cuts[b], cuts[b + 1] - cuts[b]), ZO_OK);
            for (std::size_t at = 0; at < alone.size(); ++at)
                ASSERT_EQ(alone[at], c.Owns(at, cuts[b], cuts[b + 1]) ? whole[at] : kPoison)
                    << "byte " << at << " band " << cuts[b] << ".." << cuts[b + 1] << " stride " << c.stride;
        }
}

TEST(BandConvert, RefusedBandsWriteNothing)
{
    std::mt19937 rng(7);
    const struct {
        std::int64_t source, destination;
        std::uint32_t flags, first, count, result;
    } refusals[] = {
        {ZO_PT_BAYER_RGB8, ZO_PT_RGB24, 0, 1, 2, ZO_ERR_BAD_ARGUMENT},  // replicating: odd first line
        {ZO_PT_BAYER_RGB8, ZO_PT_RGB24, 0, 2, 3, ZO_ERR_BAD_ARGUMENT},  // ends between two paired lines
        {ZO_PT_BAYER_RGB10 | ZO_PIXEL_PACKED, ZO_PT_BGR32, ZO_FLAG_BAYER_RGGB, 3, 2, ZO_ERR_BAD_ARGUMENT},  // chain
        {ZO_PT_GRAY8, ZO_PT_RGB24, 0, 4, 3, ZO_ERR_BAD_ARGUMENT},       // ends beyond the area
        {ZO_PT_YUV8, ZO_PT_RGB32, 0, 8, 0, ZO_ERR_BAD_ARGUMENT},        // starts beyond it
        {ZO_PT_BAYER_RGB8, ZO_PT_RGB24, ZO_FLAG_BAYER_INTERPOLATE, 6, 0, ZO_OK},  // an empty band: nothing
    };
    for (const auto& r : refusals) {
        Case c(r.source, r.destination, rng, nullptr, 6);
        c.a.flags = r.flags;
        std::vector<unsigned char> out = c.Fresh();
        EXPECT_EQ(c.Band(out, r.first, r.count), r.result) << std::hex << r.source;
        EXPECT_EQ(out, c.Fresh());
    }
}

}  // namespace
