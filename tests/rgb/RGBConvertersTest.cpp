// RGB repacking converters against a plain per-pixel reference written from
// the layout rules, for every registered instance, and the deliberate quirks.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "ZoPixelTypeFactory.h"
#include "ZoRGBConverters.h"
#include "support/AreaSupport.h"
#include "support/FamilyTables.h"

using namespace zotest;

namespace {

using Bytes = std::vector<unsigned char>;
enum class Src { Bytes3, Bytes4, Words3, Words4, RGB16 };
enum class Dst { RGB16, RGB24, BGR24, RGB32, BGR32, Planar };

struct Instance {
    std::int64_t source, destination;
    Src src;
    std::uint32_t parameter;  // skip (byte sources) or shift (word sources)
    Dst dst;
    // Converts count rounded up to a multiple of 4. Among 32-bit outputs only
    // ZoRGB32ToRGB32 does, and it alone keeps the source's fourth byte.
    bool wholeGroups;
    std::uint32_t sourceBytes, destinationBytes;
};

// Line form, one pixel: writes destination pixel bytes at d (for planar, the
// three plane bytes at d + plane offsets).
void ReferenceLinePixel(const Instance& in, const ZoRGBFilter& f, const unsigned char* s, unsigned char* d,
                        const std::size_t planes[3])
{
    std::uint32_t r = 0, g = 0, b = 0, fourth = 0;
    const std::uint32_t k = in.parameter + 1;
    switch (in.src) {
    case Src::Bytes3:
    case Src::Bytes4:
        // Last byte of each k-byte channel.
        r = f.GetRedValue8(s[k - 1]);
        g = f.GetGreenValue8(s[2 * k - 1]);
        b = f.GetBlueValue8(s[3 * k - 1]);
        fourth = s[4 * k - 1];
        break;
    case Src::Words3:
    case Src::Words4:
        r = f.GetRedValue16(Word(s)) >> in.parameter;
        g = f.GetGreenValue16(Word(s + 2)) >> in.parameter;
        b = f.GetBlueValue16(Word(s + 4)) >> in.parameter;
        break;
    case Src::RGB16: {
        const std::uint32_t w = Word(s), g6 = (w >> 5) & 63, r5 = (w >> 11) & 31;
        if (in.dst == Dst::RGB24 || in.dst == Dst::BGR24) {
            // Expansion, then filter; red from entry 0.
            r = f.GetRedValue8(0);
            g = f.GetGreenValue8(g6 << 2);
            b = f.GetBlueValue8(r5 << 3);
        } else {
            // Filter, then expansion (masked to the table); red and blue from entry 0.
            r = (f.GetRedValue8(0) & 31) << 3;
            g = (f.GetGreenValue8(g6) & 63) << 2;
            b = (f.GetBlueValue8(0) & 31) << 3;
        }
        break;
    }
    }
    if (in.dst == Dst::Planar) {
        d[planes[0]] = r, d[planes[1]] = g, d[planes[2]] = b;
        return;
    }
    // Word channels keep their low byte (RGB16 its top 5, 6 and 5 bits).
    WriteRGB(in.destination, d, r & 0xFF, g & 0xFF, b & 0xFF);
    if (in.destinationBytes == 4)
        d[3] = in.wholeGroups ? fourth : 0;
}

// The expected result of an area conversion through the instance.
void ReferenceArea(const Instance& in, const ZoRGBFilter& filter, const Area& a, AreaBuffers& b)
{
    const std::uint32_t sp = in.sourceBytes, dp = in.destinationBytes;
    const bool planar = in.dst == Dst::Planar;
    const std::size_t plane = std::size_t(a.destinationWidth) * a.destinationHeight;
    const std::size_t planes[3] = {0, plane, 2 * plane};
    const std::uint32_t n = in.wholeGroups ? (a.width + 3) / 4 * 4 : a.width;
    for (const LinePlace& line : AreaLines(a, sp, dp, false, planar))
        for (std::uint32_t x = 0; x < n; ++x)
            ReferenceLinePixel(in, filter, &b.source[line.source + x * sp],
                               &b.expected[line.destination + (planar ? x : x * dp)], planes);
}

constexpr std::int64_t N = ZO_PIXEL_NORMALIZED, P = ZO_PIXEL_PACKED;

// The registered instances (tests/data/registry.csv): the class gives the
// source layout, the destination ID the written one.
std::vector<Instance> RegisteredInstances()
{
    const char* sources[] = {"ZoRGB24To", "ZoRGB32To", "ZoRGB48To", "ZoRGB64To", "ZoRGB16To"};
    const std::int64_t destinations[] = {ZO_PT_RGB16, ZO_PT_RGB24, ZO_PT_BGR24, ZO_PT_RGB32, ZO_PT_BGR32,
                                         ZO_PT_RGB24 | ZO_PIXEL_PLANAR};
    std::vector<Instance> v;
    for (const RegistryRow& r : RegistryTable())
        for (int s = 0; s < 5; ++s)
            if (r.Is(sources[s])) {
                const Src src = Src(s);
                const Dst dst = Dst(std::find(destinations, destinations + 6, r.destination) - destinations);
                const bool to24 = dst == Dst::RGB24 || dst == Dst::BGR24;
                v.push_back({r.source, r.destination, src, std::uint32_t(r.Param("skip") + r.Param("shift")), dst,
                             (to24 && src != Src::RGB16) || r.className == "ZoRGB32ToRGB32", r.sourceBytes,
                             r.destinationBytes});
            }
    return v;
}

}  // namespace

TEST(RGBConverters, EveryRegisteredInstanceMatchesTheReference)
{
    const std::vector<Instance> instances = RegisteredInstances();
    ASSERT_EQ(instances.size(), 78u);
    // No filter (the area conversion's default for these multi-byte sources:
    // the 16-bit identity), and white-balance gains with offsets in an 8-bit
    // and a 16-bit filter.
    ZoRGBFilter identity16(16), f8(8), f16(16);
    ASSERT_EQ(f8.SetMultipliers(1.7, 0.6, 1.3, 9, 3, 40), ZO_OK);
    ASSERT_EQ(f16.SetMultipliers(1.3, 0.9, 2.1, 500, 0, 77), ZO_OK);
    const ZoRGBFilter* const filters[] = {nullptr, &f8, &f16};
    std::mt19937 rng(20261121);
    for (const Instance& in : instances) {
        SCOPED_TRACE("from " + std::to_string(in.source) + " to " + std::to_string(in.destination));
        const ZoPixelConverter* c = Registered(in.source, in.destination);
        ASSERT_NE(c, nullptr);
        for (const ZoRGBFilter* filter : filters) {
            SCOPED_TRACE(!filter ? "default filter" : filter == &f8 ? "8-bit white balance" : "16-bit white balance");
            for (const Area& a : AwkwardAreas(false))
                ASSERT_TRUE(AreaMatches(*c, filter, a, in.dst == Dst::Planar, rng, [&](AreaBuffers& b) {
                    ReferenceArea(in, filter ? *filter : identity16, a, b);
                }));
        }
    }
}

// Hand-worked pixels, the deliberate quirks among them.
TEST(RGBConverters, HandWorkedPixels)
{
    ZoRGBFilter entry0(16), f8(8), f16(16);
    ASSERT_EQ(entry0.SetRedValue(0, 5), ZO_OK);     // E5[5] = 40 after expansion
    ASSERT_EQ(entry0.SetBlueValue(0, 100), ZO_OK);  // 100 & 31 = 4: E5[4] = 32
    ASSERT_EQ(f8.SetMultipliers(1.5, 1.0, 0.5), ZO_OK);
    ASSERT_EQ(f16.SetMultipliers(1.5, 1.0, 0.5), ZO_OK);
    const std::int64_t S16 = ZO_PT_RGB16, skip1 = ZO_PT_RGB64_10BITS | N, skip1x3 = ZO_PT_RGB48_12BITS | N;
    CheckExamples({
        {ZO_PT_RGB24 | P, ZO_PT_RGB16, {255, 0, 0, 0, 255, 0, 0, 0, 255}, 3, {0x00, 0xF8, 0xE0, 0x07, 0x1F, 0x00}},
        // 10-bit 1023 with shift 2 and 12-bit 4095 with shift 4 reach 255.
        {ZO_PT_RGB48_10BITS, ZO_PT_RGB32, {0xFF, 0x03, 0xFF, 0x03, 0xFF, 0x03}, kPixel, {255, 255, 255, 0}},
        {ZO_PT_RGB48_12BITS, ZO_PT_RGB32, {0xFF, 0x0F}, kPixel, {255, 0, 0, 0}},
        {ZO_PT_RGB24 | P, ZO_PT_BGR24, {1, 2, 3}, kPixel, {3, 2, 1}},
        // Direct line calls outside an area conversion use the identity filter.
        {ZO_PT_RGB24 | P, ZO_PT_RGB32, {9, 8, 7, 6, 5, 4}, 2, {9, 8, 7, 0, 6, 5, 4, 0}},
        // Five pixels: the groups-of-four classes write eight, the others five.
        {ZO_PT_RGB24 | P, ZO_PT_RGB24, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}, 5,
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 0, 0, 0, 0, 0, 0, 0, 0, 0, kPoison}},
        {ZO_PT_RGB24 | P, ZO_PT_BGR32, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}, 5,
         {3, 2, 1, 0, 6, 5, 4, 0, 9, 8, 7, 0, 12, 11, 10, 0, 15, 14, 13, 0, kPoison}},
        // An RGB16 source's red and blue come from the filter's entry 0, not
        // from the word: identity filter, red and blue 0 whatever the word.
        {S16, ZO_PT_RGB32, {0xFF, 0xFF, 0xFF, 0xFF}, 2, {0, 0xFC, 0, 0, 0, 0xFC, 0, 0}},
        {S16, ZO_PT_RGB24, {0xFF, 0xFF, 0xFF, 0xFF}, 2, {0, 0xFC, 0xF8, 0, 0xFC, 0xF8}},
        // Through the filter: 32-bit, filter then expansion of entry 0.
        {S16, ZO_PT_BGR32, {0xFF, 0xFF}, 1, {32, 0xFC, 40, 0}, &entry0},
        // 24-bit line form: red is the filter's entry 0 itself, blue TB[E5[31]]
        // (the expansion table indexed with bits 15..11).
        {S16, ZO_PT_RGB24, {0xFF, 0xFF}, 1, {5, 0xFC, 0xF8}, &entry0},
        {S16, ZO_PT_RGB24, {0x01, 0x80}, 1, {0, 0, 0x80}},
        // 24-bit single-pixel form: as the 32-bit forms.
        {S16, ZO_PT_RGB24, {0xFF, 0xFF}, kPixel, {0, 0xFC, 0}},
        // ZoRGB32ToRGB32 copies the fourth byte (the line form from the last
        // byte of the fourth channel, the single-pixel form from byte 3);
        // every other 32-bit output writes 0 there.
        {ZO_PT_RGB32, ZO_PT_BGR32, {10, 20, 30, 40, 11, 21, 31, 41}, 2, {30, 20, 10, 40, 31, 21, 11, 41}},
        {ZO_PT_RGB32, ZO_PT_RGB32, {10, 20, 30, 40}, kPixel, {10, 20, 30, 40}},
        {skip1, ZO_PT_RGB32, {1, 10, 2, 20, 3, 30, 4, 40}, 1, {10, 20, 30, 40}},
        {skip1, ZO_PT_RGB32, {1, 10, 2, 20, 3, 30, 4, 40}, kPixel, {1, 2, 3, 20}},
        {ZO_PT_RGB64_10BITS, ZO_PT_RGB32, {4, 0, 8, 0, 12, 0, 0xFF, 0xFF}, 1, {1, 2, 3, 0}},
        // Skip-1 sources: the line form (and so the area conversion) takes the
        // second byte of each channel, the single-pixel form the first.
        {skip1x3, ZO_PT_RGB24, {0xA0, 0xA1, 0xB0, 0xB1, 0xC0, 0xC1}, 1, {0xA1, 0xB1, 0xC1}},
        {skip1x3, ZO_PT_RGB24, {0xA0, 0xA1, 0xB0, 0xB1, 0xC0, 0xC1}, kPixel, {0xA0, 0xB0, 0xC0}},
        // White balance: 8-bit tables for byte channels, 16-bit tables then the
        // shift for words (10-bit 400, 1000, 1023: 600 >> 2, 1000 >> 2, 511 >> 2).
        {ZO_PT_RGB24 | P, ZO_PT_BGR32, {100, 200, 201, 180, 3, 7}, 2, {100, 200, 150, 0, 3, 3, 255, 0}, &f8},
        {ZO_PT_RGB48_10BITS, ZO_PT_RGB24, {400 & 0xFF, 400 >> 8, 1000 & 0xFF, 1000 >> 8, 0xFF, 0x03}, 1,
         {150, 250, 127}, &f16},
    });
}

