// RGB repacking converters against a plain per-pixel reference written from
// the layout rules, for every registered instance.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "ZoPixelTypeFactory.h"
#include "ZoRGBConverters.h"
#include "rgb/AreaTestSupport.h"
#include "rgb/RGBKernels.h"
#include "rgb/RGBSimd.h"

using namespace zotest;

namespace {

// ---------------------------------------------------------------------------
// The reference.

enum class Src { Bytes3, Bytes4, Words3, Words4, RGB16 };
enum class Dst { RGB16, RGB24, BGR24, RGB32, BGR32, Planar };

struct Instance {
    std::int64_t source;
    std::int64_t destination;
    Src src;
    std::uint32_t parameter;  // skip (byte sources) or shift (word sources)
    Dst dst;
    bool keepFourth;          // ZoRGB32ToRGB32
    bool wholeGroups;         // converts count rounded up to a multiple of 4
    bool (*isClass)(const ZoPixelConverter*);
    const char* name;
};

template <class T>
bool IsA(const ZoPixelConverter* c)
{
    return dynamic_cast<const T*>(c) != nullptr;
}

std::uint32_t SourcePixelBytes(const Instance& i)
{
    switch (i.src) {
    case Src::Bytes3: return 3 * (i.parameter + 1);
    case Src::Bytes4: return 4 * (i.parameter + 1);
    case Src::Words3: return 6;
    case Src::Words4: return 8;
    case Src::RGB16: return 2;
    }
    return 0;
}

std::uint32_t DestinationPixelBytes(Dst d)
{
    switch (d) {
    case Dst::RGB16: return 2;
    case Dst::RGB24: case Dst::BGR24: case Dst::Planar: return 3;
    default: return 4;
    }
}

struct Filter {
    // Reads through the filter's public readers, not the converter's paths.
    const ZoRGBFilter& f;
    std::uint32_t R8(std::uint32_t v) const { return f.GetRedValue8(v); }
    std::uint32_t G8(std::uint32_t v) const { return f.GetGreenValue8(v); }
    std::uint32_t B8(std::uint32_t v) const { return f.GetBlueValue8(v); }
};

// Line form, one pixel: writes destination pixel bytes at d (for planar, the
// three plane bytes at d + plane offsets).
void ReferenceLinePixel(const Instance& in, const ZoRGBFilter& filter, const unsigned char* s, unsigned char* d,
                        const std::size_t planes[3])
{
    const Filter f{filter};
    std::uint32_t r = 0, g = 0, b = 0, fourth = 0;
    bool wide = false;  // r, g, b are shifted 16-bit values
    const std::uint32_t k = in.parameter + 1;
    switch (in.src) {
    case Src::Bytes3:
    case Src::Bytes4:
        // Last byte of each k-byte channel.
        r = f.R8(s[k - 1]);
        g = f.G8(s[2 * k - 1]);
        b = f.B8(s[3 * k - 1]);
        fourth = s[4 * k - 1];
        break;
    case Src::Words3:
    case Src::Words4:
        r = filter.GetRedValue16(Word(s)) >> in.parameter;
        g = filter.GetGreenValue16(Word(s + 2)) >> in.parameter;
        b = filter.GetBlueValue16(Word(s + 4)) >> in.parameter;
        wide = true;
        break;
    case Src::RGB16: {
        const std::uint32_t w = Word(s), g6 = (w >> 5) & 63, r5 = (w >> 11) & 31;
        if (in.dst == Dst::RGB24 || in.dst == Dst::BGR24) {
            // Expansion, then filter; red from entry 0.
            r = f.R8(0);
            g = f.G8(g6 << 2);
            b = f.B8(r5 << 3);
        } else {
            // Filter, then expansion (masked to the table); red and blue from entry 0.
            r = (f.R8(0) & 31) << 3;
            g = (f.G8(g6) & 63) << 2;
            b = (f.B8(0) & 31) << 3;
        }
        break;
    }
    }
    switch (in.dst) {
    case Dst::RGB16: {
        const std::uint32_t word = wide ? ((r & 0xFFF8) << 8) | ((g & 0xFC) << 3) | ((b & 0xFF) >> 3)
                                        : ((r >> 3) << 11) | ((g & 0xFC) << 3) | (b >> 3);
        d[0] = static_cast<unsigned char>(word);
        d[1] = static_cast<unsigned char>(word >> 8);
        break;
    }
    case Dst::RGB24: d[0] = r; d[1] = g; d[2] = b; break;
    case Dst::BGR24: d[0] = b; d[1] = g; d[2] = r; break;
    case Dst::RGB32: d[0] = r; d[1] = g; d[2] = b; d[3] = in.keepFourth ? fourth : 0; break;
    case Dst::BGR32: d[0] = b; d[1] = g; d[2] = r; d[3] = in.keepFourth ? fourth : 0; break;
    case Dst::Planar:
        d[planes[0]] = r;
        d[planes[1]] = g;
        d[planes[2]] = b;
        break;
    }
}

// The expected result of an area conversion through the instance.
void ReferenceArea(const Instance& in, const ZoRGBFilter& filter, const Area& a, AreaBuffers& b)
{
    const std::uint32_t sp = SourcePixelBytes(in), dp = DestinationPixelBytes(in.dst);
    const bool planar = in.dst == Dst::Planar;
    const std::size_t plane = std::size_t(a.destinationWidth) * a.destinationHeight;
    const std::size_t planes[3] = {0, plane, 2 * plane};
    const std::uint32_t n = in.wholeGroups ? (a.width + 3) / 4 * 4 : a.width;
    for (const LinePlace& line : AreaLines(a, sp, dp, false, planar))
        for (std::uint32_t x = 0; x < n; ++x)
            ReferenceLinePixel(in, filter, &b.source[line.source + x * sp],
                               &b.expected[line.destination + (planar ? x : x * dp)], planes);
}

// ---------------------------------------------------------------------------
// The registered instances, row by row as the library documents them.

constexpr std::int64_t N = ZO_PIXEL_NORMALIZED, P = ZO_PIXEL_PACKED;

std::vector<Instance> RegisteredInstances()
{
    std::vector<Instance> v;
    auto add = [&](std::int64_t s, std::int64_t d, Src src, std::uint32_t p, Dst dst, bool keep, bool whole,
                   bool (*is)(const ZoPixelConverter*), const char* name) {
        v.push_back({s, d, src, p, dst, keep, whole, is, name});
    };
    auto threeBytes = [&](std::int64_t s, std::uint32_t skip) {
        add(s, ZO_PT_RGB16, Src::Bytes3, skip, Dst::RGB16, false, false, IsA<ZoRGB24ToRGB16>, "ZoRGB24ToRGB16");
        add(s, ZO_PT_RGB24, Src::Bytes3, skip, Dst::RGB24, false, true, IsA<ZoRGB24ToRGB24>, "ZoRGB24ToRGB24");
        add(s, ZO_PT_BGR24, Src::Bytes3, skip, Dst::BGR24, false, true, IsA<ZoRGB24ToRGB24>, "ZoRGB24ToRGB24");
        add(s, ZO_PT_RGB32, Src::Bytes3, skip, Dst::RGB32, false, false, IsA<ZoRGB24ToRGB32>, "ZoRGB24ToRGB32");
        add(s, ZO_PT_BGR32, Src::Bytes3, skip, Dst::BGR32, false, false, IsA<ZoRGB24ToRGB32>, "ZoRGB24ToRGB32");
    };
    auto planar = [&](std::int64_t s) {
        add(s, ZO_PT_RGB24 | ZO_PIXEL_PLANAR, Src::Bytes3, 0, Dst::Planar, false, false, IsA<ZoRGB24ToRGB24Planar>,
            "ZoRGB24ToRGB24Planar");
    };
    auto fourBytes = [&](std::int64_t s, std::uint32_t skip) {
        add(s, ZO_PT_RGB16, Src::Bytes4, skip, Dst::RGB16, false, false, IsA<ZoRGB32ToRGB16>, "ZoRGB32ToRGB16");
        add(s, ZO_PT_RGB24, Src::Bytes4, skip, Dst::RGB24, false, true, IsA<ZoRGB32ToRGB24>, "ZoRGB32ToRGB24");
        add(s, ZO_PT_BGR24, Src::Bytes4, skip, Dst::BGR24, false, true, IsA<ZoRGB32ToRGB24>, "ZoRGB32ToRGB24");
        add(s, ZO_PT_RGB32, Src::Bytes4, skip, Dst::RGB32, true, true, IsA<ZoRGB32ToRGB32>, "ZoRGB32ToRGB32");
        add(s, ZO_PT_BGR32, Src::Bytes4, skip, Dst::BGR32, true, true, IsA<ZoRGB32ToRGB32>, "ZoRGB32ToRGB32");
    };
    auto threeWords = [&](std::int64_t s, std::uint32_t shift) {
        add(s, ZO_PT_RGB16, Src::Words3, shift, Dst::RGB16, false, false, IsA<ZoRGB48ToRGB16>, "ZoRGB48ToRGB16");
        add(s, ZO_PT_RGB24, Src::Words3, shift, Dst::RGB24, false, true, IsA<ZoRGB48ToRGB24>, "ZoRGB48ToRGB24");
        add(s, ZO_PT_BGR24, Src::Words3, shift, Dst::BGR24, false, true, IsA<ZoRGB48ToRGB24>, "ZoRGB48ToRGB24");
        add(s, ZO_PT_RGB32, Src::Words3, shift, Dst::RGB32, false, false, IsA<ZoRGB48ToRGB32>, "ZoRGB48ToRGB32");
        add(s, ZO_PT_BGR32, Src::Words3, shift, Dst::BGR32, false, false, IsA<ZoRGB48ToRGB32>, "ZoRGB48ToRGB32");
    };
    auto fourWords = [&](std::int64_t s, std::uint32_t shift) {
        add(s, ZO_PT_RGB16, Src::Words4, shift, Dst::RGB16, false, false, IsA<ZoRGB64ToRGB16>, "ZoRGB64ToRGB16");
        add(s, ZO_PT_RGB24, Src::Words4, shift, Dst::RGB24, false, true, IsA<ZoRGB64ToRGB24>, "ZoRGB64ToRGB24");
        add(s, ZO_PT_BGR24, Src::Words4, shift, Dst::BGR24, false, true, IsA<ZoRGB64ToRGB24>, "ZoRGB64ToRGB24");
        add(s, ZO_PT_RGB32, Src::Words4, shift, Dst::RGB32, false, false, IsA<ZoRGB64ToRGB32>, "ZoRGB64ToRGB32");
        add(s, ZO_PT_BGR32, Src::Words4, shift, Dst::BGR32, false, false, IsA<ZoRGB64ToRGB32>, "ZoRGB64ToRGB32");
    };

    add(ZO_PT_RGB16, ZO_PT_RGB24, Src::RGB16, 0, Dst::RGB24, false, false, IsA<ZoRGB16ToRGB24>, "ZoRGB16ToRGB24");
    add(ZO_PT_RGB16, ZO_PT_BGR24, Src::RGB16, 0, Dst::BGR24, false, false, IsA<ZoRGB16ToRGB24>, "ZoRGB16ToRGB24");
    add(ZO_PT_RGB16, ZO_PT_RGB32, Src::RGB16, 0, Dst::RGB32, false, false, IsA<ZoRGB16ToRGB32>, "ZoRGB16ToRGB32");
    add(ZO_PT_RGB16, ZO_PT_BGR32, Src::RGB16, 0, Dst::BGR32, false, false, IsA<ZoRGB16ToRGB32>, "ZoRGB16ToRGB32");
    // The unpacked RGB24 type is served by the four-byte classes.
    planar(ZO_PT_RGB24);
    fourBytes(ZO_PT_RGB24, 0);
    for (std::int64_t s : {ZO_PT_RGB24 | P, ZO_PT_RGB8_3, ZO_PT_RGB8_3 | P}) {
        threeBytes(s, 0);
        planar(s);
    }
    fourBytes(ZO_PT_RGB32, 0);
    fourBytes(ZO_PT_RGB8_4, 0);
    threeBytes(ZO_PT_RGB48_10BITS | N, 1);
    threeBytes(ZO_PT_RGB48_12BITS | N, 1);
    fourBytes(ZO_PT_RGB64_10BITS | N, 1);
    fourBytes(ZO_PT_RGB64_12BITS | N, 1);
    threeWords(ZO_PT_RGB48_10BITS, 2);
    threeWords(ZO_PT_RGB48_12BITS, 4);
    fourWords(ZO_PT_RGB64_10BITS, 2);
    fourWords(ZO_PT_RGB64_12BITS, 4);
    return v;
}

const ZoPixelConverter* Registered(std::int64_t s, std::int64_t d)
{
    return ZoPixelTypeFactory::HasConverter(s, d) ? &ZoPixelTypeFactory::GetConverter(s, d) : nullptr;
}

// Filters: none (the default identity), and white-balance gains with
// offsets in an 8-bit and a 16-bit filter.
struct FilterCase {
    const char* name;
    std::unique_ptr<ZoRGBFilter> filter;
};

std::vector<FilterCase> Filters()
{
    std::vector<FilterCase> v;
    v.push_back({"default", nullptr});
    auto f8 = std::make_unique<ZoRGBFilter>(8);
    EXPECT_EQ(f8->SetMultipliers(1.7, 0.6, 1.3, 9, 3, 40), ZO_OK);
    v.push_back({"8-bit white balance", std::move(f8)});
    auto f16 = std::make_unique<ZoRGBFilter>(16);
    EXPECT_EQ(f16->SetMultipliers(1.3, 0.9, 2.1, 500, 0, 77), ZO_OK);
    v.push_back({"16-bit white balance", std::move(f16)});
    return v;
}

std::uint32_t Convert(const ZoPixelConverter& c, const ZoRGBFilter* filter, const Area& a, AreaBuffers& b)
{
    if (filter)
        return c.Convert(*filter, b.source.data(), a.sourceWidth, a.sourceHeight, b.destination.data(),
                         a.destinationWidth, a.destinationHeight, a.width, a.height, a.flags, a.padding);
    return c.Convert(b.source.data(), a.sourceWidth, a.sourceHeight, b.destination.data(), a.destinationWidth,
                     a.destinationHeight, a.width, a.height, a.flags, a.padding);
}

}  // namespace

// ---------------------------------------------------------------------------

TEST(RGBConverters, EveryRegisteredInstanceMatchesTheReference)
{
    const std::vector<Instance> instances = RegisteredInstances();
    ASSERT_EQ(instances.size(), 78u);
    const std::vector<FilterCase> filters = Filters();
    const ZoRGBFilter identity16(16);
    std::mt19937 rng(20261121);
    for (const Instance& in : instances) {
        SCOPED_TRACE(std::string(in.name) + " from " + std::to_string(in.source) + " to " +
                     std::to_string(in.destination));
        const ZoPixelConverter* c = Registered(in.source, in.destination);
        ASSERT_NE(c, nullptr);
        ASSERT_TRUE(in.isClass(c));
        EXPECT_EQ(c->GetSourceByteSize(), SourcePixelBytes(in));
        EXPECT_EQ(c->GetDestinationByteSize(), DestinationPixelBytes(in.dst));
        for (const FilterCase& fc : filters) {
            SCOPED_TRACE(fc.name);
            // The area conversion's default for these multi-byte sources is the
            // 16-bit identity filter.
            const ZoRGBFilter& used = fc.filter ? *fc.filter : identity16;
            for (const Area& a : AwkwardAreas(false)) {
                SCOPED_TRACE("width " + std::to_string(a.width) + ", height " + std::to_string(a.height));
                AreaBuffers b = MakeBuffers(a, SourcePixelBytes(in), DestinationPixelBytes(in.dst),
                                            in.dst == Dst::Planar, rng);
                ReferenceArea(in, used, a, b);
                ASSERT_EQ(Convert(*c, fc.filter.get(), a, b), ZO_OK);
                ASSERT_TRUE(SameBytes(b.destination, b.expected));
            }
        }
    }
}

TEST(RGBConverters, DocumentedValues)
{
    const ZoPixelConverter* to16 = Registered(ZO_PT_RGB24 | P, ZO_PT_RGB16);
    ASSERT_NE(to16, nullptr);
    const struct {
        unsigned char rgb[3];
        std::uint32_t word;
    } cases[] = {{{255, 255, 255}, 0xFFFF}, {{255, 0, 0}, 0xF800}, {{0, 255, 0}, 0x07E0}, {{0, 0, 255}, 0x001F}};
    for (const auto& c : cases) {
        unsigned char d[2];
        ASSERT_EQ(to16->Convert(c.rgb, d, 1), ZO_OK);
        EXPECT_EQ(Word(d), c.word);
    }
    // 10-bit 1023 with shift 2 and 12-bit 4095 with shift 4 reach 255.
    const unsigned char s10[6] = {0xFF, 0x03, 0xFF, 0x03, 0xFF, 0x03}, s12[6] = {0xFF, 0x0F, 0, 0, 0, 0};
    unsigned char d[12] = {};
    ASSERT_EQ(Registered(ZO_PT_RGB48_10BITS, ZO_PT_RGB32)->Convert(s10, d), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d, d + 4), (std::vector<unsigned char>{255, 255, 255, 0}));
    ASSERT_EQ(Registered(ZO_PT_RGB48_12BITS, ZO_PT_RGB32)->Convert(s12, d), ZO_OK);
    EXPECT_EQ(d[0], 255);
    // RGB24 (1, 2, 3) to BGR24 and BGR32.
    const unsigned char rgb[16] = {1, 2, 3};
    ASSERT_EQ(Registered(ZO_PT_RGB24 | P, ZO_PT_BGR24)->Convert(rgb, d), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d, d + 3), (std::vector<unsigned char>{3, 2, 1}));
    ASSERT_EQ(Registered(ZO_PT_RGB24 | P, ZO_PT_BGR32)->Convert(rgb, d), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d, d + 4), (std::vector<unsigned char>{3, 2, 1, 0}));
}

// Red and blue of an RGB16 source come from the filter's entry 0, not from
// the word (the 24-bit line form takes blue from the word).
TEST(RGBConverters, RGB16SourceRedAndBlueFromFilterEntryZero)
{
    ZoRGBFilter filter(16);
    ASSERT_EQ(filter.SetRedValue(0, 5), ZO_OK);    // E5[5] = 40 after expansion
    ASSERT_EQ(filter.SetBlueValue(0, 100), ZO_OK);  // 100 & 31 = 4: E5[4] = 32
    const unsigned char white[8] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    std::vector<unsigned char> d(16, kPoison);

    // Identity filter: red and blue 0 whatever the word.
    ASSERT_EQ(Registered(ZO_PT_RGB16, ZO_PT_RGB32)->Convert(white, 2, 1, d.data(), 2, 1, 2, 1, 0, 0), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d.begin(), d.begin() + 8),
              (std::vector<unsigned char>{0, 0xFC, 0, 0, 0, 0xFC, 0, 0}));
    ASSERT_EQ(Registered(ZO_PT_RGB16, ZO_PT_RGB24)->Convert(white, 2, 1, d.data(), 2, 1, 2, 1, 0, 0), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d.begin(), d.begin() + 6),
              (std::vector<unsigned char>{0, 0xFC, 0xF8, 0, 0xFC, 0xF8}));

    // Through the filter: 32-bit, filter then expansion of entry 0.
    ASSERT_EQ(Registered(ZO_PT_RGB16, ZO_PT_BGR32)->Convert(filter, white, 1, 1, d.data(), 1, 1, 1, 1, 0, 0), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d.begin(), d.begin() + 4), (std::vector<unsigned char>{32, 0xFC, 40, 0}));
    // 24-bit line form: red is the filter's entry 0 itself, blue TB[E5[31]].
    ASSERT_EQ(Registered(ZO_PT_RGB16, ZO_PT_RGB24)->Convert(filter, white, 1, 1, d.data(), 1, 1, 1, 1, 0, 0), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d.begin(), d.begin() + 3), (std::vector<unsigned char>{5, 0xFC, 0xF8}));
    // 24-bit single-pixel form: as the 32-bit forms.
    ASSERT_EQ(Registered(ZO_PT_RGB16, ZO_PT_RGB24)->Convert(white, d.data()), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d.begin(), d.begin() + 3), (std::vector<unsigned char>{0, 0xFC, 0}));
}

// Blue of the 24-bit line form uses bits 15..11 of the word as the index of
// the 32-entry expansion table.
TEST(RGBConverters, RGB16ToRGB24LineBlueFromTopFiveBits)
{
    const ZoPixelConverter* c = Registered(ZO_PT_RGB16, ZO_PT_BGR24);
    for (std::uint32_t w = 0; w < 0x10000; ++w) {
        const unsigned char s[2] = {static_cast<unsigned char>(w), static_cast<unsigned char>(w >> 8)};
        unsigned char d[3];
        ASSERT_EQ(c->Convert(s, d, 1), ZO_OK);
        ASSERT_EQ(d[0], ((w >> 11) & 0x1F) << 3) << w;
        ASSERT_EQ(d[1], ((w >> 5) & 0x3F) << 2) << w;
        ASSERT_EQ(d[2], 0) << w;
    }
}

// Five pixels: the groups-of-four classes write eight, the others five.
TEST(RGBConverters, GroupOfFourOverrun)
{
    const unsigned char s[8 * 4 * 2] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24};
    const struct {
        std::int64_t source, destination;
        std::uint32_t written;
    } cases[] = {
        {ZO_PT_RGB24 | P, ZO_PT_RGB24, 8}, {ZO_PT_RGB24 | P, ZO_PT_RGB32, 5}, {ZO_PT_RGB32, ZO_PT_RGB24, 8},
        {ZO_PT_RGB32, ZO_PT_RGB32, 8},     {ZO_PT_RGB32, ZO_PT_RGB16, 5},     {ZO_PT_RGB48_10BITS, ZO_PT_BGR24, 8},
        {ZO_PT_RGB64_12BITS, ZO_PT_RGB24, 8}, {ZO_PT_RGB48_10BITS, ZO_PT_RGB32, 5},
    };
    for (const auto& c : cases) {
        const ZoPixelConverter* conv = Registered(c.source, c.destination);
        ASSERT_NE(conv, nullptr);
        const std::uint32_t dp = conv->GetDestinationByteSize();
        for (std::uint32_t count : {0u, 1u, 4u, 5u}) {
            std::vector<unsigned char> d(64, kPoison);
            ASSERT_EQ(conv->Convert(s, d.data(), count), ZO_OK);
            const std::uint32_t expected = c.written == 8 ? (count + 3) / 4 * 4 : count;
            std::size_t written = 0;
            for (std::size_t i = 0; i < d.size(); ++i)
                if (d[i] != kPoison)
                    written = i + 1;
            // Every pixel up to `expected` written, none after it.
            EXPECT_LE(written, expected * dp) << c.destination << " count " << count;
            if (expected) {
                EXPECT_GT(written, (expected - 1) * dp) << c.destination << " count " << count;
            }
        }
    }
}

// ZoRGB32ToRGB32 copies the fourth byte (the line form from the last byte of
// the fourth channel, the single-pixel form from byte 3); every other 32-bit
// output writes 0 there.
TEST(RGBConverters, FourthByteOfRGB32ToRGB32)
{
    const unsigned char s[16] = {10, 20, 30, 40, 11, 21, 31, 41};
    unsigned char d[16];
    ASSERT_EQ(Registered(ZO_PT_RGB32, ZO_PT_BGR32)->Convert(s, d, 2), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d, d + 8), (std::vector<unsigned char>{30, 20, 10, 40, 31, 21, 11, 41}));
    ASSERT_EQ(Registered(ZO_PT_RGB32, ZO_PT_RGB32)->Convert(s, d), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d, d + 4), (std::vector<unsigned char>{10, 20, 30, 40}));
    // Skip 1: line form from byte 7, single pixel from byte 3.
    const unsigned char wide[32] = {1, 10, 2, 20, 3, 30, 4, 40};  // room for the group of four
    ASSERT_EQ(Registered(ZO_PT_RGB64_10BITS | N, ZO_PT_RGB32)->Convert(wide, d, 1), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d, d + 4), (std::vector<unsigned char>{10, 20, 30, 40}));
    ASSERT_EQ(Registered(ZO_PT_RGB64_10BITS | N, ZO_PT_RGB32)->Convert(wide, d), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d, d + 4), (std::vector<unsigned char>{1, 2, 3, 20}));
    // Other 32-bit outputs write 0, whatever the source's fourth channel.
    const unsigned char words[8] = {0, 4, 0, 8, 0, 12, 0xFF, 0xFF};
    ASSERT_EQ(Registered(ZO_PT_RGB64_10BITS, ZO_PT_RGB32)->Convert(words, d, 1), ZO_OK);
    EXPECT_EQ(d[3], 0);
}

// A planar destination's lines are sourceWidth bytes apart, whatever the
// destination width and padding; planes are destinationWidth x
// destinationHeight bytes apart.
TEST(RGBConverters, PlanarLineSize)
{
    const ZoPixelConverter* c = Registered(ZO_PT_RGB24 | P, ZO_PT_RGB24 | ZO_PIXEL_PLANAR);
    // 2x2 area of a 3-pixel-wide source into a 4x3 planar frame, padding 7.
    std::vector<unsigned char> s(3 * 3 * 2);
    for (std::size_t i = 0; i < s.size(); ++i)
        s[i] = static_cast<unsigned char>(i + 1);
    std::vector<unsigned char> d(3 * 12 + 8, kPoison);
    ASSERT_EQ(c->Convert(s.data(), 3, 2, d.data(), 4, 3, 2, 2, 0, 7), ZO_OK);
    std::vector<unsigned char> e(d.size(), kPoison);
    for (std::size_t y = 0; y < 2; ++y)
        for (std::size_t x = 0; x < 2; ++x)
            for (std::size_t p = 0; p < 3; ++p)
                e[p * 12 + y * 3 + x] = s[y * 9 + x * 3 + p];
    EXPECT_TRUE(SameBytes(d, e));
}

// Skip-1 sources: the line form (and so the area conversion) takes the second
// byte of each channel, the single-pixel form the first.
TEST(RGBConverters, ByteChoiceOfSkipOneSources)
{
    const unsigned char s[24] = {0xA0, 0xA1, 0xB0, 0xB1, 0xC0, 0xC1};  // room for the group of four
    unsigned char d[16];
    const ZoPixelConverter* c = Registered(ZO_PT_RGB48_12BITS | N, ZO_PT_RGB24);
    ASSERT_EQ(c->Convert(s, 1, 1, d, 1, 1, 1, 1, 0, 0), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d, d + 3), (std::vector<unsigned char>{0xA1, 0xB1, 0xC1}));
    ASSERT_EQ(c->Convert(s, d), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d, d + 3), (std::vector<unsigned char>{0xA0, 0xB0, 0xC0}));
    unsigned char w[2];
    const ZoPixelConverter* to16 = Registered(ZO_PT_RGB48_12BITS | N, ZO_PT_RGB16);
    ASSERT_EQ(to16->Convert(s, w), ZO_OK);
    EXPECT_EQ(Word(w), ((0xA0u >> 3) << 11) | ((0xB0u & 0xFC) << 3) | (0xC0u >> 3));
}

// A white-balance filter changes each channel exactly as its tables say:
// 8-bit tables for byte channels, 16-bit tables then the shift for words.
TEST(RGBConverters, WhiteBalanceFilterFollowsItsTables)
{
    ZoRGBFilter f8(8), f16(16);
    ASSERT_EQ(f8.SetMultipliers(1.5, 1.0, 0.5), ZO_OK);
    ASSERT_EQ(f16.SetMultipliers(1.5, 1.0, 0.5), ZO_OK);
    const unsigned char rgb[12] = {100, 200, 201, 180, 3, 7};
    unsigned char d[16];
    ASSERT_EQ(Registered(ZO_PT_RGB24 | P, ZO_PT_BGR32)->Convert(f8, rgb, 2, 1, d, 2, 1, 2, 1, 0, 0), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d, d + 8), (std::vector<unsigned char>{100, 200, 150, 0, 3, 3, 255, 0}));
    // 10-bit words 400, 1000, 1023: red 600 >> 2 = 150, green 250, blue 511 >> 2 = 127.
    const unsigned char words[24] = {400 & 0xFF, 400 >> 8, 1000 & 0xFF, 1000 >> 8, 0xFF, 0x03};
    ASSERT_EQ(Registered(ZO_PT_RGB48_10BITS, ZO_PT_RGB24)->Convert(f16, words, 1, 1, d, 1, 1, 1, 1, 0, 0), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d, d + 3), (std::vector<unsigned char>{150, 250, 127}));
}

// Direct line calls outside an area conversion use the default identity
// filter for the source size.
TEST(RGBConverters, DirectCallsUseTheIdentityFilter)
{
    const unsigned char s[16] = {9, 8, 7, 6, 5, 4};
    unsigned char d[16];
    ASSERT_EQ(Registered(ZO_PT_RGB24 | P, ZO_PT_RGB32)->Convert(s, d, 2), ZO_OK);
    EXPECT_EQ(std::vector<unsigned char>(d, d + 8), (std::vector<unsigned char>{9, 8, 7, 0, 6, 5, 4, 0}));
}

// ---------------------------------------------------------------------------
// Fast paths against the scalar kernels, on random rows of awkward widths:
// every byte up to and past the row must agree (poison after the row shows
// a stray write).

namespace {

template <class Writer, unsigned Group>
void ExpectFastBytesPathMatchesScalar(const char* name)
{
    SCOPED_TRACE(name);
    std::mt19937 rng(77);
    const zo::ChannelTables8 none{nullptr, nullptr, nullptr};  // not read on the identity path
    for (std::uint32_t n : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 15u, 16u, 17u, 33u, 63u, 64u, 65u, 1001u}) {
        const std::vector<unsigned char> s = RandomBytes(std::size_t(n) * Group, rng);
        std::vector<unsigned char> fast(std::size_t(n) * Writer::kBytes + 32, kPoison), scalar = fast;
        const std::uint32_t done = zo::simd::RepackBytesIdentity<Writer, Group>(s.data(), fast.data(), n);
        ASSERT_LE(done, n);
        zo::RepackBytesLine<Writer, Group, 1, true>(s.data() + std::size_t(done) * Group,
                                                    fast.data() + std::size_t(done) * Writer::kBytes, n - done, 1,
                                                    none);
        zo::RepackBytesLine<Writer, Group, 1, true>(s.data(), scalar.data(), n, 1, none);
        ASSERT_TRUE(SameBytes(fast, scalar)) << "n " << n;
    }
}

template <unsigned RedIndex>
void ExpectFastKeepFourthPathMatchesScalar()
{
    std::mt19937 rng(78);
    const zo::ChannelTables8 none{nullptr, nullptr, nullptr};
    for (std::uint32_t n : {0u, 1u, 3u, 4u, 5u, 7u, 8u, 9u, 33u, 1001u}) {
        const std::vector<unsigned char> s = RandomBytes(std::size_t(n) * 4, rng);
        std::vector<unsigned char> fast(std::size_t(n) * 4 + 32, kPoison), scalar = fast;
        const std::uint32_t done = zo::simd::RepackKeepFourthIdentity<RedIndex>(s.data(), fast.data(), n);
        zo::RepackBytesKeepFourthLine<RedIndex, 1, true>(s.data() + 4 * done, fast.data() + 4 * done, n - done, 1,
                                                         none);
        zo::RepackBytesKeepFourthLine<RedIndex, 1, true>(s.data(), scalar.data(), n, 1, none);
        ASSERT_TRUE(SameBytes(fast, scalar)) << "n " << n;
    }
}

}  // namespace

TEST(RGBConverters, FastPathsMatchTheScalarKernels)
{
    RecordProperty("byte_shuffle", zo::simd::HasByteShuffle() ? "vector" : "scalar");
    ExpectFastBytesPathMatchesScalar<zo::Write32<0>, 3>("RGB24 to RGB32");
    ExpectFastBytesPathMatchesScalar<zo::Write32<2>, 3>("RGB24 to BGR32");
    ExpectFastBytesPathMatchesScalar<zo::Write24<0>, 3>("RGB24 to RGB24");
    ExpectFastBytesPathMatchesScalar<zo::Write24<2>, 3>("RGB24 to BGR24");
    ExpectFastBytesPathMatchesScalar<zo::Write24<0>, 4>("RGB32 to RGB24");
    ExpectFastBytesPathMatchesScalar<zo::Write24<2>, 4>("RGB32 to BGR24");
    ExpectFastKeepFourthPathMatchesScalar<0>();
    ExpectFastKeepFourthPathMatchesScalar<2>();

    ExpectFastBytesPathMatchesScalar<zo::WriteRGB16, 3>("RGB24 to RGB16");
    ExpectFastBytesPathMatchesScalar<zo::WriteRGB16, 4>("RGB32 to RGB16");
    ExpectFastBytesPathMatchesScalar<zo::Write32<0>, 4>("RGB32 to RGB32, fourth byte 0");
    ExpectFastBytesPathMatchesScalar<zo::Write32<2>, 4>("RGB32 to BGR32, fourth byte 0");

    // 16-bit samples: narrowed a chunk at a time, then repacked.
    std::mt19937 rng(79);
    const zo::ChannelTables16 none{nullptr, nullptr, nullptr};
    auto words = [&](auto writer, auto wordsPerPixel, const char* name) {
        using Writer = decltype(writer);
        constexpr unsigned W = decltype(wordsPerPixel)::value;
        SCOPED_TRACE(name);
        for (std::uint32_t shift : {2u, 4u})
            for (std::uint32_t n : {0u, 1u, 5u, 33u, 255u, 256u, 257u, 1001u}) {
                const std::vector<unsigned char> s = RandomBytes(std::size_t(n) * 2 * W, rng);
                std::vector<unsigned char> fast(std::size_t(n) * Writer::kBytes + 32, kPoison), scalar = fast;
                zo::simd::RepackWordsIdentityLine<Writer, W>(s.data(), fast.data(), n, shift);
                zo::RepackWordsLine<Writer, W, true>(s.data(), scalar.data(), n, shift, none);
                ASSERT_TRUE(SameBytes(fast, scalar)) << "n " << n << " shift " << shift;
            }
    };
    using Three = std::integral_constant<unsigned, 3>;
    using Four = std::integral_constant<unsigned, 4>;
    words(zo::WriteRGB16{}, Three{}, "RGB48 to RGB16");
    words(zo::Write24<0>{}, Three{}, "RGB48 to RGB24");
    words(zo::Write24<2>{}, Three{}, "RGB48 to BGR24");
    words(zo::Write32<2>{}, Three{}, "RGB48 to BGR32");
    words(zo::WriteRGB16{}, Four{}, "RGB64 to RGB16");
    words(zo::Write24<2>{}, Four{}, "RGB64 to BGR24");
    words(zo::Write32<0>{}, Four{}, "RGB64 to RGB32");
}

TEST(RGBConverters, PlanarAndRGB16FastPathsMatchTheScalarKernels)
{
    std::mt19937 rng(80);
    const ZoRGBFilter identity(8);
    const zo::ChannelTables8 t{identity.RedTable8(), identity.GreenTable8(), identity.BlueTable8()};
    for (std::uint32_t n : {1u, 15u, 16u, 17u, 47u, 48u, 49u, 255u, 256u, 257u, 1001u}) {
        SCOPED_TRACE(n);
        const std::vector<unsigned char> s = RandomBytes(3 * std::size_t(n), rng);
        // Planes apart, and planes overlapping (a 5-byte step between them).
        for (std::size_t gap : {std::size_t(n) + 3, std::size_t(5)}) {
            std::vector<unsigned char> fast(3 * gap + n + 32, kPoison), scalar = fast;
            const std::uint32_t done = zo::simd::RepackPlanarIdentity(s.data(), &fast[0], &fast[gap], &fast[2 * gap], n);
            zo::RepackBytesPlanarLine<1, true>(s.data() + 3 * done, &fast[done], &fast[gap + done],
                                               &fast[2 * gap + done], n - done, 1, t);
            zo::RepackBytesPlanarLine<1, true>(s.data(), &scalar[0], &scalar[gap], &scalar[2 * gap], n, 1, t);
            EXPECT_TRUE(SameBytes(fast, scalar)) << "gap " << gap;
        }
        // RGB16 words to 24 bits through the registered line forms.
        for (std::int64_t destination : {ZO_PT_RGB24, ZO_PT_BGR24}) {
            std::vector<unsigned char> fast(3 * std::size_t(n) + 32, kPoison), scalar = fast;
            ASSERT_EQ(Registered(ZO_PT_RGB16, destination)->Convert(s.data(), fast.data(), n), ZO_OK);
            if (destination == ZO_PT_RGB24)
                zo::ExpandThenFilterRGB16Line<zo::Write24<0>, false>(s.data(), scalar.data(), n, t);
            else
                zo::ExpandThenFilterRGB16Line<zo::Write24<2>, false>(s.data(), scalar.data(), n, t);
            EXPECT_TRUE(SameBytes(fast, scalar)) << destination;
        }
    }
}
