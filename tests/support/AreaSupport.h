// Test support for the RGB and grayscale families: random frames, poison,
// and an independent model of where an area conversion puts each line, so a
// per-pixel reference can build the whole expected destination buffer.
#ifndef ZO_TESTS_AREA_TEST_SUPPORT_H
#define ZO_TESTS_AREA_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <random>
#include <vector>

#include "ZoPixelConverter.h"
#include "ZoPixelTypeFactory.h"
#include "ZoRGBFilter.h"
#include "ZoPixelTypeIDs.h"

namespace zotest {

constexpr unsigned char kPoison = 0xA5;

inline std::vector<unsigned char> RandomBytes(std::size_t n, std::mt19937& rng)
{
    std::vector<unsigned char> v(n);
    for (unsigned char& b : v)
        b = static_cast<unsigned char>(rng());
    return v;
}

// An area conversion's arguments.
struct Area {
    std::uint32_t sourceWidth, sourceHeight;
    std::uint32_t destinationWidth, destinationHeight;
    std::uint32_t width, height;
    std::uint32_t flags;
    std::uint32_t padding;
};

// One line of the walk: byte offsets of the source and destination lines.
struct LinePlace {
    std::size_t source, destination;
};

// The lines an area conversion converts, in order: progressive sources line
// by line; interlaced sources as two fields stored one after the other, the
// first (second with ZO_FLAG_INVERT_DEINTERLACER) to the even lines. A planar
// destination has lines sourceWidth bytes apart.
inline std::vector<LinePlace> AreaLines(const Area& a, std::uint32_t sourcePixelBytes,
                                        std::uint32_t destinationPixelBytes, bool interlaced, bool planar)
{
    const std::size_t sourceLine = std::size_t(a.sourceWidth) * sourcePixelBytes;
    const std::size_t destinationLine =
        planar ? a.sourceWidth : std::size_t(a.destinationWidth) * destinationPixelBytes + a.padding;
    std::vector<LinePlace> lines;
    if (!interlaced) {
        for (std::uint32_t y = 0; y < a.height; ++y)
            lines.push_back({y * sourceLine, y * destinationLine});
        return lines;
    }
    const std::size_t secondField = (a.sourceHeight * sourceLine) / 2;
    const bool invert = (a.flags & ZO_FLAG_INVERT_DEINTERLACER) != 0;
    for (int pass = 0; pass < 2; ++pass) {
        const std::size_t start = (pass == 0) != invert ? 0 : secondField;
        std::size_t k = 0;
        for (std::uint32_t y = 0; y < a.height; y += 2, ++k)
            lines.push_back({start + k * sourceLine, (y + pass) * destinationLine});
    }
    return lines;
}

// Source and destination buffers of an area, with slack after both: random
// source bytes, poisoned destination.
struct AreaBuffers {
    std::vector<unsigned char> source, destination, expected;
};

inline AreaBuffers MakeBuffers(const Area& a, std::uint32_t sourcePixelBytes, std::uint32_t destinationPixelBytes,
                               bool planar, std::mt19937& rng)
{
    constexpr std::size_t kSlack = 64;
    AreaBuffers b;
    b.source = RandomBytes(std::size_t(a.sourceWidth) * sourcePixelBytes * a.sourceHeight + kSlack, rng);
    const std::size_t destinationBytes =
        planar ? 3 * std::size_t(a.destinationWidth) * a.destinationHeight
               : (std::size_t(a.destinationWidth) * destinationPixelBytes + a.padding) * a.destinationHeight;
    b.destination.assign(destinationBytes + kSlack, kPoison);
    b.expected = b.destination;
    return b;
}

// First differing byte, for a readable failure.
inline ::testing::AssertionResult SameBytes(const std::vector<unsigned char>& actual,
                                            const std::vector<unsigned char>& expected)
{
    if (actual.size() != expected.size())
        return ::testing::AssertionFailure() << "sizes differ";
    for (std::size_t i = 0; i < actual.size(); ++i)
        if (actual[i] != expected[i])
            return ::testing::AssertionFailure() << "byte " << i << ": got " << int(actual[i]) << ", expected "
                                                 << int(expected[i]);
    return ::testing::AssertionSuccess();
}

inline std::uint32_t Word(const unsigned char* p) { return std::uint32_t(p[0]) | (std::uint32_t(p[1]) << 8); }

// Bytes of a pixel of the RGB16, RGB24, BGR24, RGB32 and BGR32 types.
inline int RGBBytes(std::int64_t layout)
{
    return layout == ZO_PT_RGB16 ? 2 : layout == ZO_PT_RGB24 || layout == ZO_PT_BGR24 ? 3 : 4;
}

// Writes 8-bit r, g, b as one pixel of those types: RGB16 keeps the top 5,
// 6 and 5 bits (little-endian word), the 32-bit types write 0 last.
inline void WriteRGB(std::int64_t layout, unsigned char* d, int r, int g, int b)
{
    const bool bgr = layout == ZO_PT_BGR24 || layout == ZO_PT_BGR32;
    if (layout == ZO_PT_RGB16) {
        const unsigned w = (unsigned(r >> 3) << 11) | (unsigned(g >> 2) << 5) | unsigned(b >> 3);
        d[0] = static_cast<unsigned char>(w);
        d[1] = static_cast<unsigned char>(w >> 8);
        return;
    }
    d[0] = static_cast<unsigned char>(bgr ? b : r);
    d[1] = static_cast<unsigned char>(g);
    d[2] = static_cast<unsigned char>(bgr ? r : b);
    if (RGBBytes(layout) == 4)
        d[3] = 0;
}

// Areas of awkward widths, with source and destination frames wider than the
// area and padded destination lines.
inline std::vector<Area> AwkwardAreas(bool interlaced)
{
    std::vector<Area> areas;
    const std::uint32_t widths[] = {1, 2, 3, 5, 7, 9, 33, 70};
    std::uint32_t h = 1;
    for (std::uint32_t w : widths) {
        h = h % 5 + 1;
        const std::uint32_t sourceHeight = interlaced ? 2 * ((h + 1) / 2) + 2 : h + 1;
        areas.push_back({w + 3, sourceHeight, w + 1, h + 2, w, h, 0, w % 3 ? 5u : 0u});
        if (interlaced)
            areas.push_back({w + 3, sourceHeight, w + 1, h + 2, w, h, ZO_FLAG_INVERT_DEINTERLACER, 2});
    }
    return areas;
}

// Converts area `a` of random source bytes through `c` (with `filter`, or the
// plain area form) into a poisoned destination and compares every byte with
// what `reference` writes into the expected buffer.
template <class Reference>
::testing::AssertionResult AreaMatches(const ZoPixelConverter& c, const ZoRGBFilter* filter, const Area& a,
                                       bool planar, std::mt19937& rng, Reference reference)
{
    AreaBuffers b = MakeBuffers(a, c.GetSourceByteSize(), c.GetDestinationByteSize(), planar, rng);
    reference(b);
    const std::uint32_t rc =
        filter ? c.Convert(*filter, b.source.data(), a.sourceWidth, a.sourceHeight, b.destination.data(),
                           a.destinationWidth, a.destinationHeight, a.width, a.height, a.flags, a.padding)
               : c.Convert(b.source.data(), a.sourceWidth, a.sourceHeight, b.destination.data(), a.destinationWidth,
                           a.destinationHeight, a.width, a.height, a.flags, a.padding);
    const ::testing::AssertionResult same = SameBytes(b.destination, b.expected);
    if (rc == ZO_OK && same)
        return same;
    return ::testing::AssertionFailure() << "result " << rc << ", " << same.message() << " (width " << a.width
                                         << ", height " << a.height << ", flags " << a.flags << ")";
}

template <class T>
bool IsA(const ZoPixelConverter* c)
{
    return dynamic_cast<const T*>(c) != nullptr;
}

inline const ZoPixelConverter* Registered(std::int64_t s, std::int64_t d)
{
    return ZoPixelTypeFactory::HasConverter(s, d) ? &ZoPixelTypeFactory::GetConverter(s, d) : nullptr;
}

// One hand-worked conversion through a registered pair: the single-pixel form
// (count kPixel), the line form of `count` pixels, or with a filter a one-line
// area of `count` pixels. `out` is the start of a poisoned destination.
constexpr int kPixel = -1;
struct Example {
    std::int64_t source, destination;
    unsigned char in[32];
    int count;
    std::vector<unsigned char> out;
    const ZoRGBFilter* filter = nullptr;
};

inline void CheckExamples(const std::vector<Example>& examples)
{
    for (const Example& e : examples) {
        const ZoPixelConverter* c = Registered(e.source, e.destination);
        ASSERT_NE(c, nullptr) << e.source << " to " << e.destination;
        std::vector<unsigned char> d(64, kPoison);
        const std::uint32_t n = static_cast<std::uint32_t>(e.count);
        const std::uint32_t rc = e.count == kPixel ? c->Convert(e.in, d.data())
                                 : e.filter ? c->Convert(*e.filter, e.in, n, 1, d.data(), n, 1, n, 1, 0, 0)
                                            : c->Convert(e.in, d.data(), n);
        ASSERT_EQ(rc, ZO_OK);
        EXPECT_EQ(std::vector<unsigned char>(d.begin(), d.begin() + e.out.size()), e.out)
            << e.source << " to " << e.destination << ", count " << e.count;
    }
}

}  // namespace zotest

#endif
