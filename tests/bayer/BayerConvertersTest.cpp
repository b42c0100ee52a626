// The Bayer families against the reference demosaicer of BayerReference.h.
#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "ZoBayerConverters.h"
#include "ZoImgLib.h"
#include "bayer/BayerReference.h"
#include "support/AreaSupport.h"

using namespace bayer_test;

namespace {

const ZoPixelConverter& Get(const Instance& in)
{
    return ZoPixelTypeFactory::GetConverter(in.source, in.destination);
}

// A Bayer converter with its protected getters public.
template <class Converter>
struct Exposed : Converter {
    using Converter::Converter;
    using Converter::GetLinesPerConvert;
    using Converter::GetPipeliningSize;
};

}  // namespace

// Deliberately, the 16-bit family's 24-bit converters pipeline two pixels,
// unlike the others (eight). Built on taken pairs, they do not register.
TEST(BayerRegistration, PipeliningSizes)
{
    EXPECT_EQ(Exposed<ZoBayerRGB16ToRGB24>(ZO_PT_BAYER_RGB12, true, 4, ZO_FLAG_BAYER_GRBG).GetPipeliningSize(), 2u);
    EXPECT_EQ(Exposed<ZoBayerRGB8ToRGB32>(ZO_PT_BAYER_RGB8, false, 0, ZO_FLAG_BAYER_GRBG).GetPipeliningSize(), 8u);
}

// Every instance, pattern (none: the 8-bit family's registered default, GRBG
// for the 16-bit family; each one; several at once, where the first in order
// wins) and mode against the reference, every byte of exactly sized buffers:
// sizes 1..9 x 1..9 and a few wider ones, then a non-identity filter,
// destination padding and areas narrower than the source lines.
TEST(BayerConverters, EveryInstanceMatchesTheReference)
{
    ASSERT_EQ(AllInstances().size(), 58u);
    std::mt19937 rng(1);
    std::vector<Case> cases;
    for (std::uint32_t w = 1; w <= 9; ++w)
        for (std::uint32_t h = 1; h <= 9; ++h)  // 16-bit samples: 12-bit data or full range
            cases.push_back({w, w, h, 0, nullptr, 0, (w + h) % 2 ? 0x0FFFu : 0xFFFFu});
    for (const auto& [w, h] : {std::pair{16u, 3u}, std::pair{17u, 4u}, std::pair{33u, 6u}, std::pair{40u, 2u}})
        cases.push_back({w, w, h, 0, nullptr, 0});
    cases.push_back({41, 41, 3, 0, nullptr, 0});
    for (Case c : {Case{9, 9, 7, 0, nullptr, 0}, Case{20, 17, 6, 0, nullptr, 3}, Case{12, 5, 5, 0, nullptr, 1},
                   Case{33, 33, 4, 0, nullptr, 0}, Case{2, 1, 3, 0, nullptr, 2}})
        for (const ZoRGBFilter* f : {&RandomFilter(), static_cast<const ZoRGBFilter*>(nullptr)}) {
            c.filter = f;
            cases.push_back(c);
        }
    const std::uint32_t patterns[] = {0, ZO_FLAG_BAYER_GRBG, ZO_FLAG_BAYER_GBRG, ZO_FLAG_BAYER_RGGB,
                                      ZO_FLAG_BAYER_BGGR, 0xF0, 0xE0, 0xC0, 0x50, 0xA0};
    for (const Instance& in : AllInstances())
        for (std::uint32_t pattern : patterns)
            for (std::uint32_t mode : {0u, ZO_FLAG_BAYER_INTERPOLATE})
                for (Case c : cases) {
                    c.flags = pattern | mode;
                    const Outcome o = RunCase(Get(in), in, c, rng);  // reference: ColourAt's order
                    ASSERT_EQ(o.result, ZO_OK);
                    ASSERT_TRUE(o.actual == o.expected) << o.Describe(in, c);
                }
}

// Deliberate: replicating GRBG to RGB16 (8-bit family) takes the red of
// pixels 2 and 3 of each group of eight from pixel 4 of the first line.
TEST(BayerConverters, RedSamplingQuirk)
{
    const ZoPixelConverter& conv = ZoPixelTypeFactory::GetConverter(ZO_PT_BAYER_RGB8, ZO_PT_RGB16);
    const std::uint32_t w = 18, h = 2;
    std::vector<std::uint8_t> source(w * h), dest(w * h * 2);
    for (std::uint32_t x = 0; x < w; ++x) {
        source[x] = (x & 1) ? 0xF8 : 0x40;  // line 0: G R G R ... (red 0xF8, green 0x40)
        source[w + x] = (x & 1) ? 0x40 : 0x08;  // line 1: B G B G ...
    }
    conv.Convert(source.data(), w, h, dest.data(), w, h, w, h, ZO_FLAG_BAYER_GRBG, 0);
    for (std::uint32_t y = 0; y < h; ++y)
        for (std::uint32_t x = 0; x < w; ++x) {
            const bool quirk = x < 16 && (x % 8 == 2 || x % 8 == 3);
            const unsigned red = quirk ? 0x40 : 0xF8;
            const unsigned word = (red >> 3) << 11 | (0x40 >> 2) << 5 | (0x08 >> 3);
            EXPECT_EQ(dest[(y * w + x) * 2] | dest[(y * w + x) * 2 + 1] << 8, int(word)) << x << "," << y;
        }
}

TEST(BayerConverters, LineAndPixelFormsOutsideAnArea)
{
    std::vector<std::uint8_t> source(64, 7), dest(64 * 6, 0x5A);
    // No area conversion: no pattern flag, so the replicating line call refuses.
    for (const Instance& in : AllInstances())
        EXPECT_TRUE(Get(in).Convert(source.data(), dest.data(), 4) == ZO_ERR_BAD_ARGUMENT &&
                    Get(in).Convert(source.data(), dest.data()) == ZO_ERR_NOT_SUPPORTED);
    EXPECT_EQ(dest, std::vector<std::uint8_t>(64 * 6, 0x5A));
}

namespace {

// A converter whose area walk hands each line call to `line`: Bayer line
// calls then run inside a conversion that is not the Bayer converter's own,
// as a caller's nested use would. It takes the given converter's pair, which
// is registered already, so it never registers.
class LineRelay : public ZoPixelConverter {
public:
    using Line = std::function<std::uint32_t(const unsigned char*, unsigned char*, std::uint32_t)>;
    LineRelay(const ZoPixelConverter& pair, std::uint32_t linesPerConvert, Line line)
        : ZoPixelConverter(pair.GetSourceType(), pair.GetDestinationType(), pair.GetSourceByteSize(),
                           pair.GetDestinationByteSize(), 1, linesPerConvert),
          mLine(std::move(line))
    {
    }
    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* s, unsigned char* d, std::uint32_t count) const override
    {
        results.push_back(mLine(s, d, count));
        return 0;
    }
    mutable std::vector<std::uint32_t> results;

private:
    Line mLine;
};

}  // namespace

// A line call outside the Bayer converter's own area call uses the layout
// that its last area call left (all zero before the first).
TEST(BayerConverters, LineCallsSeeTheLastAreaLayout)
{
    ZoBayerRGB8ToRGB24 fresh(ZO_PT_BAYER_RGB8, false, 0, ZO_FLAG_BAYER_GRBG);  // not registered: pair taken
    EXPECT_EQ(fresh.GetLastLayout().neighbourOffsets[8][3], 0);

    std::mt19937 rng(5);
    const std::uint32_t w = 13, h = 6;
    const std::vector<std::uint8_t> source = zotest::RandomBytes(w * h, rng);
    // Interpolating: a line per Bayer call; replicating: two, the relay
    // itself stepping two lines.
    for (std::uint32_t flags : {ZO_FLAG_BAYER_BGGR | ZO_FLAG_BAYER_INTERPOLATE, std::uint32_t{ZO_FLAG_BAYER_GBRG}}) {
        const std::uint32_t lines = (flags & ZO_FLAG_BAYER_INTERPOLATE) ? 1 : 2;
        LineRelay relay(fresh, lines, [&fresh](auto s, auto d, std::uint32_t n) { return fresh.Convert(s, d, n); });
        std::vector<std::uint8_t> direct(w * h * 3, 1), relayed(w * h * 3, 2);
        fresh.Convert(source.data(), w, h, direct.data(), w, h, w, h, flags, 0);
        relay.Convert(source.data(), w, h, relayed.data(), w, h, w, h, flags, 0);
        EXPECT_EQ(relayed, direct) << flags;
        EXPECT_EQ(relay.results, std::vector<std::uint32_t>(h / lines, ZO_OK));
    }
}

// Lines per line call follow the calling thread's current flags: 2 when
// replicating (or outside any conversion), 1 when interpolating.
TEST(BayerConverters, LinesPerConvertFollowTheThreadsFlags)
{
    const Exposed<ZoBayerRGB16ToRGB32> probe(ZO_PT_BAYER_RGB10, false, 2, ZO_FLAG_BAYER_GRBG);
    EXPECT_EQ(probe.GetLinesPerConvert(), 2u);
    LineRelay recorder(probe, 1, [&probe](const unsigned char*, unsigned char*, std::uint32_t) {
        return probe.GetLinesPerConvert();
    });
    std::vector<std::uint8_t> buffer(64);
    recorder.Convert(buffer.data(), 2, 2, buffer.data(), 2, 2, 2, 2, ZO_FLAG_BAYER_INTERPOLATE, 0);
    recorder.Convert(buffer.data(), 2, 2, buffer.data(), 2, 2, 2, 2, ZO_FLAG_BAYER_BGGR, 0);
    EXPECT_EQ(recorder.results, (std::vector<std::uint32_t>{1, 1, 2, 2}));
}
