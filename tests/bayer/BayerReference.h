// A plain per-pixel Bayer demosaicer written from the rules, and every
// registered Bayer converter as it reads and writes, for the Bayer tests.
#ifndef ZO_TESTS_BAYER_REFERENCE_H
#define ZO_TESTS_BAYER_REFERENCE_H

#include <algorithm>
#include <cstdint>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "ZoImgLib.h"
#include "support/AreaSupport.h"
#include "support/FamilyTables.h"

namespace bayer_test {

enum class Layout { RGB16, RGB24, BGR24, RGB32, BGR32, RGB48 };

inline unsigned LayoutBytes(Layout l)
{
    const unsigned bytes[] = {2, 3, 3, 4, 4, 6};
    return bytes[int(l)];
}

// How a registered converter reads its source and what it writes.
struct Instance {
    std::int64_t source;
    std::int64_t destination;
    Layout layout;
    bool wordFamily;            // 16-bit family (whole words)
    unsigned sourceBytes;       // bytes per source pixel (1 or 2)
    unsigned shift;             // 16-bit family: shift to 8 bits (none for RGB48)
    std::uint32_t noFlagPattern;  // the pattern used by an area call without pattern flag
};

// The 58 registered instances (tests/data/registry.csv). The 16-bit family
// ignores its default pattern: always GRBG without a pattern flag.
inline std::vector<Instance> AllInstances()
{
    const std::int64_t layouts[] = {ZO_PT_RGB16, ZO_PT_RGB24, ZO_PT_BGR24, ZO_PT_RGB32, ZO_PT_BGR32};
    std::vector<Instance> all;
    for (const zotest::RegistryRow& r : zotest::RegistryTable()) {
        if (!r.Is("ZoBayerRGB"))
            continue;
        const bool words = r.Is("ZoBayerRGB16To");
        const Layout layout = Layout(std::find(layouts, std::end(layouts), r.destination) - layouts);
        all.push_back({r.source, r.destination, layout, words, words ? 2u : unsigned(r.Param("extra")) + 1,
                       unsigned(r.Param("shift")), words ? ZO_FLAG_BAYER_GRBG : std::uint32_t(r.Param("pattern"))});
    }
    return all;
}

// Colour (0 red, 1 green, 2 blue) of pixel (x, y) for a pattern flag.
inline int ColourAt(std::uint32_t patternFlag, std::uint32_t x, std::uint32_t y)
{
    const char* rows = patternFlag & ZO_FLAG_BAYER_GRBG   ? "GRBG"
                       : patternFlag & ZO_FLAG_BAYER_GBRG ? "GBRG"
                       : patternFlag & ZO_FLAG_BAYER_RGGB ? "RGGB"
                                                          : "BGGR";
    const char c = rows[(y & 1) * 2 + (x & 1)];
    return c == 'R' ? 0 : c == 'G' ? 1 : 2;
}

// A mosaic of raw sample values (what the converter averages: bytes for the
// 8-bit family, whole words for the 16-bit family).
struct Mosaic {
    std::uint32_t width = 0;  // source width (samples per line)
    std::vector<std::uint32_t> v;
    std::uint32_t At(std::uint32_t x, std::uint32_t y) const { return v[y * width + x]; }
};

// Raw (unfiltered) colour of one output pixel, interpolating: each missing
// colour is the truncating average of the same-coloured samples of the 3x3
// neighbourhood inside the area (areaWidth x areaHeight).
inline void InterpolatedPixel(const Mosaic& m, std::uint32_t pattern, std::uint32_t areaWidth,
                              std::uint32_t areaHeight, std::uint32_t x, std::uint32_t y, std::uint32_t rgb[3])
{
    for (int ch = 0; ch < 3; ++ch) {
        if (ColourAt(pattern, x, y) == ch) {
            rgb[ch] = m.At(x, y);
            continue;
        }
        std::uint32_t sum = 0, n = 0;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                const long nx = long(x) + dx, ny = long(y) + dy;
                if (nx < 0 || ny < 0 || nx >= long(areaWidth) || ny >= long(areaHeight))
                    continue;
                if (ColourAt(pattern, std::uint32_t(nx), std::uint32_t(ny)) == ch) {
                    sum += m.At(std::uint32_t(nx), std::uint32_t(ny));
                    ++n;
                }
            }
        rgb[ch] = n == 0 ? 0 : n == 1 ? sum : n == 2 ? sum / 2 : n == 3 ? sum / 3 : sum / 4;
    }
}

// Raw colour of one output pixel, replicating: the 2x2 cell's red and blue,
// the left pixel the green of the cell's first line, the right one that of
// its second line. A half cell at an odd width takes a colour missing from
// its column from the pixel to its left (0 if none) and the green of its
// own column. `redQuirk`: in every full group of eight pixels, pixels 2 and 3
// take red from pixel 4 of the cell's first line.
inline void ReplicatedPixel(const Mosaic& m, std::uint32_t pattern, std::uint32_t areaWidth, bool redQuirk,
                            std::uint32_t x, std::uint32_t y, std::uint32_t rgb[3])
{
    const std::uint32_t cx = x & ~1u, cy = y & ~1u;
    const bool half = cx + 1 >= areaWidth;
    for (int ch = 0; ch < 3; ++ch) {
        if (ch == 1) {
            const std::uint32_t gy = half ? (ColourAt(pattern, cx, cy) == 1 ? cy : cy + 1) : (x == cx ? cy : cy + 1);
            const std::uint32_t gx = half ? cx : (ColourAt(pattern, cx, gy) == 1 ? cx : cx + 1);
            rgb[1] = m.At(gx, gy);
            continue;
        }
        for (std::uint32_t dy = 0; dy < 2; ++dy)
            for (std::uint32_t dx = 0; dx < 2; ++dx)
                if (ColourAt(pattern, cx + dx, cy + dy) == ch) {
                    if (!half || dx == 0)
                        rgb[ch] = m.At(cx + dx, cy + dy);
                    else
                        rgb[ch] = cx > 0 ? m.At(cx - 1, cy + dy) : 0;
                }
    }
    const std::uint32_t group = x / 8 * 8;
    if (redQuirk && group + 8 <= areaWidth && (x - group == 2 || x - group == 3))
        rgb[0] = m.At(group + 4, cy);
}

// Filters the raw colour and writes one destination pixel.
inline void PutPixel(const Instance& in, const ZoRGBFilter& f, const std::uint32_t raw[3], unsigned char* d)
{
    if (in.layout == Layout::RGB48) {
        const std::uint16_t c[3] = {f.GetRedValue16(raw[0]), f.GetGreenValue16(raw[1]), f.GetBlueValue16(raw[2])};
        for (int i = 0; i < 3; ++i) {
            d[2 * i] = std::uint8_t(c[i] & 0xFF);
            d[2 * i + 1] = std::uint8_t(c[i] >> 8);
        }
        return;
    }
    std::uint32_t v[3];
    for (int i = 0; i < 3; ++i)
        v[i] = in.wordFamily ? (raw[i] >> in.shift) % 256 : raw[i];
    const std::uint8_t r = f.GetRedValue8(v[0]), g = f.GetGreenValue8(v[1]), b = f.GetBlueValue8(v[2]);
    zotest::WriteRGB(in.destination, d, r, g, b);
}

// A filter whose 8-bit and 16-bit tables hold random values.
inline const ZoRGBFilter& RandomFilter()
{
    static const ZoRGBFilter* filter = [] {
        ZoRGBFilter* f = new ZoRGBFilter(16);
        std::mt19937 rng(77);
        for (std::uint32_t i = 0; i < 65536; ++i) {
            const std::uint32_t top = i < 256 ? 256 : 65536;
            f->SetRedValue(i, std::uint16_t(rng() % top));
            f->SetGreenValue(i, std::uint16_t(rng() % top));
            f->SetBlueValue(i, std::uint16_t(rng() % top));
        }
        return f;
    }();
    return *filter;
}


struct Case {
    std::uint32_t sourceWidth;
    std::uint32_t width;   // area width (<= sourceWidth)
    std::uint32_t height;  // area height
    std::uint32_t flags;   // pattern flags (maybe none) and FLAG_BAYER_INTERPOLATE
    const ZoRGBFilter* filter;  // null: the converter's default
    std::uint32_t padding;
    std::uint32_t wordMask = 0xFFFF;  // range of random 16-bit samples
};

inline const ZoRGBFilter& IdentityFilter()
{
    static const ZoRGBFilter identity(16);
    return identity;
}

struct Outcome {
    std::vector<std::uint8_t> actual, expected;
    std::uint32_t result = 0;
    std::string Describe(const Instance& in, const Case& c) const
    {
        std::ostringstream s;
        s << std::hex << in.source << " -> " << in.destination << std::dec << " source width " << c.sourceWidth
          << ", area " << c.width << "x" << c.height << std::hex << ", flags " << c.flags << std::dec
          << (c.filter ? ", filtered" : "") << ", padding " << c.padding << ", first difference at byte "
          << (std::mismatch(actual.begin(), actual.end(), expected.begin()).first - actual.begin());
        return s.str();
    }
};

// Fills a random mosaic (full-range samples) into a source buffer sized
// exactly for the lines the conversion touches, converts it through `conv`
// into a poisoned destination of exactly those lines, and computes the
// expected destination with the reference.
inline Outcome RunCase(const ZoPixelConverter& conv, const Instance& in, const Case& c, std::mt19937& rng)
{
    const bool interpolate = (c.flags & ZO_FLAG_BAYER_INTERPOLATE) != 0;
    const std::uint32_t pattern =
        (c.flags & ZO_FLAG_BAYER_PATTERN_MASK) ? (c.flags & ZO_FLAG_BAYER_PATTERN_MASK) : in.noFlagPattern;
    const std::uint32_t lines = interpolate ? c.height : (c.height + 1) & ~1u;  // replicating: even lines
    const unsigned outBytes = LayoutBytes(in.layout);

    Mosaic m;
    m.width = c.sourceWidth;
    std::vector<std::uint8_t> source(std::size_t(lines) * c.sourceWidth * in.sourceBytes);
    for (std::uint32_t i = 0; i < lines * c.sourceWidth; ++i) {
        const std::uint32_t s = in.sourceBytes == 2 && in.wordFamily ? rng() & c.wordMask : rng() & 0xFF;
        m.v.push_back(s);
        // One byte; a word; or, for the 8-bit family on a 16-bit container,
        // the value in the upper byte and noise below.
        unsigned char* p = &source[std::size_t(i) * in.sourceBytes];
        p[0] = std::uint8_t(in.sourceBytes == 2 && !in.wordFamily ? rng() : s);
        if (in.sourceBytes == 2)
            p[1] = std::uint8_t(in.wordFamily ? s >> 8 : s);
    }

    const std::uint32_t lineBytes = c.sourceWidth * outBytes + c.padding;
    Outcome o;
    o.expected.assign(std::size_t(lines) * lineBytes, 0xA5);
    o.actual = o.expected;
    const ZoRGBFilter& f = c.filter ? *c.filter : IdentityFilter();
    const bool quirk = !interpolate && !in.wordFamily && in.layout == Layout::RGB16 && (pattern & ZO_FLAG_BAYER_GRBG);
    for (std::uint32_t y = 0; y < lines; ++y)
        for (std::uint32_t x = 0; x < c.width; ++x) {
            std::uint32_t raw[3];
            if (interpolate)
                InterpolatedPixel(m, pattern, c.width, c.height, x, y, raw);
            else
                ReplicatedPixel(m, pattern, c.width, quirk, x, y, raw);
            PutPixel(in, f, raw, &o.expected[std::size_t(y) * lineBytes + std::size_t(x) * outBytes]);
        }

    if (c.filter)
        o.result = conv.Convert(*c.filter, source.data(), c.sourceWidth, lines, o.actual.data(), c.sourceWidth,
                                lines, c.width, c.height, c.flags, c.padding);
    else
        o.result = conv.Convert(source.data(), c.sourceWidth, lines, o.actual.data(), c.sourceWidth, lines, c.width,
                                c.height, c.flags, c.padding);
    return o;
}

}  // namespace bayer_test

#endif
