// Grayscale depth and expansion converters against a plain per-pixel
// reference, for every registered instance, and the deliberate quirks.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "ZoGrayscaleConverters.h"
#include "ZoPixelTypeFactory.h"
#include "gray/GrayscaleKernels.h"
#include "gray/GraySimd.h"
#include "support/ConvertSupport.h"
#include "support/AreaSupport.h"

using namespace zotest;

namespace {

using Bytes = std::vector<unsigned char>;
enum class Kind { RightShift, LeftShift, To8, HighByte, WordToRGB16, WordToRGB24, WordToRGB32, ByteToRGB16, ByteToRGB24, ByteToRGB32 };

struct Instance {
    std::int64_t source, destination;
    Kind kind;
    std::uint32_t parameter;  // shift, or extra bytes for the byte-taking kinds
    bool (*isClass)(const ZoPixelConverter*);
};

bool TakesByte(Kind k) { return k == Kind::ByteToRGB16 || k == Kind::ByteToRGB24 || k == Kind::ByteToRGB32; }

std::uint32_t SourceBytes(const Instance& i) { return TakesByte(i.kind) ? i.parameter + 1 : 2; }

std::uint32_t DestinationBytes(Kind k)
{
    const std::uint32_t bytes[] = {2, 2, 1, 1, 2, 3, 4, 2, 3, 4};
    return bytes[int(k)];
}

// RGB16 word of an 8-bit gray value: 5, 6 and 5 bits of it.
std::uint32_t RGB16Of(std::uint32_t g) { return ((g >> 3) << 11) | ((g >> 2) << 5) | (g >> 3); }

void Put16(unsigned char* d, std::uint32_t w)
{
    d[0] = static_cast<unsigned char>(w);
    d[1] = static_cast<unsigned char>(w >> 8);
}

void PutGray(unsigned char* d, std::uint32_t bytes, std::uint32_t g)
{
    if (bytes == 2)
        return Put16(d, RGB16Of(g));
    d[0] = d[1] = d[2] = static_cast<unsigned char>(g);
    if (bytes == 4)
        d[3] = 0;
}

// The line form, one pixel. The table-based kinds index a table of
// 2^(8 + shift) entries with the sample masked to that size.
void ReferencePixel(const Instance& in, const unsigned char* s, unsigned char* d)
{
    const std::uint32_t w = Word(s), sh = in.parameter;
    const std::uint32_t db = DestinationBytes(in.kind);
    switch (in.kind) {
    case Kind::RightShift: Put16(d, w >> sh); break;
    case Kind::LeftShift: Put16(d, (w << sh) & 0xFFFF); break;
    case Kind::To8: d[0] = static_cast<unsigned char>(w >> sh); break;
    case Kind::HighByte: d[0] = s[1]; break;
    case Kind::WordToRGB24: PutGray(d, db, (w >> sh) & 0xFF); break;
    case Kind::WordToRGB16:
    case Kind::WordToRGB32: PutGray(d, db, (w & ((256u << sh) - 1)) >> sh); break;
    case Kind::ByteToRGB16:
    case Kind::ByteToRGB24:
    case Kind::ByteToRGB32: PutGray(d, db, s[in.parameter]); break;  // the last byte of the pixel
    }
}

void ReferenceArea(const Instance& in, const Area& a, AreaBuffers& b)
{
    const std::uint32_t sb = SourceBytes(in), db = DestinationBytes(in.kind);
    const bool interlaced = (in.source & ZO_PIXEL_INTERLACED) != 0;
    for (const LinePlace& line : AreaLines(a, sb, db, interlaced, false))
        for (std::uint32_t x = 0; x < a.width; ++x)
            ReferencePixel(in, &b.source[line.source + x * sb], &b.expected[line.destination + x * db]);
}

// The registered instances, source by source as the library documents them.
std::vector<Instance> RegisteredInstances()
{
    constexpr std::int64_t N = ZO_PIXEL_NORMALIZED, I = ZO_PIXEL_INTERLACED;
    using K = Kind;
    std::vector<Instance> v;
    auto rgbFromBytes = [&](std::int64_t s, std::uint32_t extra) {
        v.push_back({s, ZO_PT_RGB16, K::ByteToRGB16, extra, IsA<ZoGrayscale8ToRGB16>});
        v.push_back({s, ZO_PT_RGB24, K::ByteToRGB24, extra, IsA<ZoGrayscale8ToRGB24>});
        v.push_back({s, ZO_PT_BGR24, K::ByteToRGB24, extra, IsA<ZoGrayscale8ToRGB24>});
        v.push_back({s, ZO_PT_RGB32, K::ByteToRGB32, extra, IsA<ZoGrayscale8ToRGB32>});
        v.push_back({s, ZO_PT_BGR32, K::ByteToRGB32, extra, IsA<ZoGrayscale8ToRGB32>});
    };
    auto shifted = [&](std::int64_t s, std::uint32_t shift) {
        v.push_back({s, ZO_PT_GRAY8, K::To8, shift, IsA<ZoGrayscale16ToGrayscale8>});
        v.push_back({s, ZO_PT_RGB16, K::WordToRGB16, shift, IsA<ZoGrayscale16ToRGB16>});
        v.push_back({s, ZO_PT_RGB24, K::WordToRGB24, shift, IsA<ZoGrayscale16ToRGB24>});
        v.push_back({s, ZO_PT_BGR24, K::WordToRGB24, shift, IsA<ZoGrayscale16ToRGB24>});
        v.push_back({s, ZO_PT_RGB32, K::WordToRGB32, shift, IsA<ZoGrayscale16ToRGB32>});
        v.push_back({s, ZO_PT_BGR32, K::WordToRGB32, shift, IsA<ZoGrayscale16ToRGB32>});
    };
    auto highByte = [&](std::int64_t s) {
        v.push_back({s, ZO_PT_GRAY8, K::HighByte, 0, IsA<ZoGrayscale16NormalizedToGrayscale8>});
        rgbFromBytes(s, 1);
    };
    auto left = [&](std::int64_t s, std::uint32_t shift, std::int64_t d) {
        v.push_back({s, d, K::LeftShift, shift, IsA<ZoGrayscale16ToGrayscale16LeftShift>});
    };
    auto right = [&](std::int64_t s, std::uint32_t shift, std::int64_t d) {
        v.push_back({s, d, K::RightShift, shift, IsA<ZoGrayscale16ToGrayscale16RightShift>});
    };
    auto fromNormalized = [&](std::int64_t s) {
        right(s, 6, ZO_PT_GRAY10);
        right(s, 4, ZO_PT_GRAY12);
        right(s, 2, ZO_PT_GRAY14);
    };

    rgbFromBytes(ZO_PT_GRAY8, 0);
    rgbFromBytes(ZO_PT_GRAY8 | I, 0);
    const std::int64_t grays[] = {ZO_PT_GRAY10, ZO_PT_GRAY12, ZO_PT_GRAY14, ZO_PT_GRAY16};
    for (std::uint32_t i = 0; i < 3; ++i) {  // 10, 12 and 14 bits
        shifted(grays[i], 2 * i + 2);
        shifted(grays[i] | I, 2 * i + 2);
        // Depth changes to every other right-aligned depth.
        for (std::uint32_t j = 0; j < 4; ++j) {
            if (j > i)
                left(grays[i], 2 * (j - i), grays[j]);
            else if (j < i)
                right(grays[i], 2 * (i - j), grays[j]);
        }
        highByte(grays[i] | N);
        highByte(grays[i] | N | I);
        fromNormalized(grays[i] | N);
    }
    for (std::int64_t s : {ZO_PT_GRAY16, ZO_PT_GRAY16 | I, ZO_PT_GRAY16 | N, ZO_PT_GRAY16 | N | I})
        highByte(s);
    fromNormalized(ZO_PT_GRAY16);
    fromNormalized(ZO_PT_GRAY16 | N);
    return v;
}

}  // namespace

TEST(GrayscaleConverters, EveryRegisteredInstanceMatchesTheReference)
{
    const std::vector<Instance> instances = RegisteredInstances();
    ASSERT_EQ(instances.size(), 130u);
    std::mt19937 rng(4242);
    for (const Instance& in : instances) {
        SCOPED_TRACE("from " + std::to_string(in.source) + " to " + std::to_string(in.destination));
        const ZoPixelConverter* c = Registered(in.source, in.destination);
        ASSERT_NE(c, nullptr);
        ASSERT_TRUE(in.isClass(c));
        EXPECT_EQ(c->GetSourceByteSize(), SourceBytes(in));
        EXPECT_EQ(c->GetDestinationByteSize(), DestinationBytes(in.kind));
        const bool interlaced = (in.source & ZO_PIXEL_INTERLACED) != 0;
        for (const Area& a : AwkwardAreas(interlaced)) {
            SCOPED_TRACE("width " + std::to_string(a.width) + ", height " + std::to_string(a.height) + ", flags " +
                         std::to_string(a.flags));
            // Random words of all 16 bits: out-of-range samples included.
            AreaBuffers b = MakeBuffers(a, SourceBytes(in), DestinationBytes(in.kind), false, rng);
            ReferenceArea(in, a, b);
            ASSERT_EQ(c->Convert(b.source.data(), a.sourceWidth, a.sourceHeight, b.destination.data(),
                                 a.destinationWidth, a.destinationHeight, a.width, a.height, a.flags, a.padding),
                      ZO_OK);
            ASSERT_TRUE(SameBytes(b.destination, b.expected));
        }
    }
}

TEST(GrayscaleConverters, DocumentedValues)
{
    CheckExamples({
        {ZO_PT_GRAY10, ZO_PT_RGB16, {0xFF, 0x03}, kPixel, {0xFF, 0xFF}},
        {ZO_PT_GRAY10, ZO_PT_RGB16, {0x00, 0x02}, 1, {0x10, 0x84}},
        {ZO_PT_GRAY10, ZO_PT_BGR32, {0xFF, 0x03}, 1, {0xFF, 0xFF, 0xFF, 0}},
        // No clamping: 0x7FF >> 2 = 0x1FF keeps its low byte.
        {ZO_PT_GRAY10, ZO_PT_GRAY8, {0xFF, 0x07}, kPixel, {0xFF}},
        // No saturation: bit 10 of 0x7FF is lost.
        {ZO_PT_GRAY10, ZO_PT_GRAY16, {0xFF, 0x03}, kPixel, {0xC0, 0xFF}},
        {ZO_PT_GRAY10, ZO_PT_GRAY16, {0xFF, 0x07}, 1, {0xC0, 0xFF}},
        {ZO_PT_GRAY16 | ZO_PIXEL_NORMALIZED, ZO_PT_GRAY8, {0x34, 0x12}, 1, {0x12}},
        // A sample past its table's range is masked to the table size.
        {ZO_PT_GRAY10, ZO_PT_RGB32, {0x00, 0x05}, 1, {0x40, 0x40, 0x40, 0}},
        {ZO_PT_GRAY10, ZO_PT_RGB16, {0x00, 0x04}, 1, {0, 0}},
        {ZO_PT_GRAY12, ZO_PT_RGB32, {0x01, 0x10}, kPixel, {0, 0, 0, 0}},
        {ZO_PT_GRAY14, ZO_PT_RGB16, {0x00, 0x41}, 1, {0x20, 0x00}},
    });
}

// The byte-taking classes: the line form reads the last byte of a pixel, the
// single-pixel form the first.
TEST(GrayscaleConverters, ByteChoiceOfSingleVersusLineForm)
{
    const std::uint32_t rgb16 = RGB16Of(0x34);
    CheckExamples({
        {ZO_PT_GRAY12 | ZO_PIXEL_NORMALIZED, ZO_PT_RGB24, {0x34, 0x12}, 1, {0x12, 0x12, 0x12}},
        {ZO_PT_GRAY12 | ZO_PIXEL_NORMALIZED, ZO_PT_RGB24, {0x34, 0x12}, kPixel, {0x34, 0x34, 0x34}},
        {ZO_PT_GRAY16, ZO_PT_BGR32, {0x34, 0x12}, kPixel, {0x34, 0x34, 0x34, 0}},
        {ZO_PT_GRAY16, ZO_PT_RGB16, {0x34, 0x12}, kPixel,
         {static_cast<unsigned char>(rgb16), static_cast<unsigned char>(rgb16 >> 8)}},
        // With one-byte pixels both forms agree.
        {ZO_PT_GRAY8, ZO_PT_RGB24, {0x34, 0x12}, kPixel, {0x34, 0x34, 0x34}},
    });
}

// The RGB16 and RGB32 expansions of 16-bit samples exist for shifts 2, 4 and
// 6 only: another shift writes nothing and still succeeds. RGB24 computes
// its bytes for any shift.
TEST(GrayscaleConverters, OnlyShiftsTwoFourSixWriteRGB16AndRGB32)
{
    const std::int64_t source = zotest::FreshTestId();  // a type no other converter serves
    const ZoGrayscale16ToRGB16 to16(source, 3);
    const ZoGrayscale16ToRGB32 to32(source, false, 3);
    const ZoGrayscale16ToRGB24 to24(source, false, 3);
    const unsigned char s[8] = {0xFF, 0x07, 0x00, 0x01, 0x10, 0x00, 0x08, 0x00};
    Bytes d(32, kPoison);
    EXPECT_EQ(to16.Convert(s, d.data(), 4), ZO_OK);
    EXPECT_EQ(to16.Convert(s, d.data()), ZO_OK);
    EXPECT_EQ(to32.Convert(s, d.data(), 4), ZO_OK);
    EXPECT_EQ(to32.Convert(s, d.data()), ZO_OK);
    EXPECT_EQ(d, Bytes(32, kPoison));
    EXPECT_EQ(to24.Convert(s, d.data(), 2), ZO_OK);
    EXPECT_EQ(Bytes(d.begin(), d.begin() + 6), (Bytes{0xFF, 0xFF, 0xFF, 0x20, 0x20, 0x20}));
}

// Grayscale expansion ignores the area conversion's filter.
TEST(GrayscaleConverters, FilterDoesNotApply)
{
    ZoRGBFilter filter(8);
    ASSERT_EQ(filter.SetMultipliers(0.5, 2.0, 0.25), ZO_OK);
    const unsigned char s[3] = {10, 100, 200};
    Bytes d(12, kPoison);
    ASSERT_EQ(Registered(ZO_PT_GRAY8, ZO_PT_RGB24)->Convert(filter, s, 3, 1, d.data(), 3, 1, 3, 1, 0, 0), ZO_OK);
    EXPECT_EQ(Bytes(d.begin(), d.begin() + 9), (Bytes{10, 10, 10, 100, 100, 100, 200, 200, 200}));
}

// The vector paths against the scalar kernel on random rows of awkward
// widths, poison after the row: the RGB24 expansion through the registered
// converters, and one-byte pixels to 32 bits alone and through both converters.
TEST(GrayscaleConverters, FastPathsMatchTheScalarKernels)
{
    namespace g = zo::gray;
    std::mt19937 rng(91);
    for (std::uint32_t n :
         {1u, 2u, 3u, 7u, 9u, 15u, 16u, 17u, 31u, 32u, 33u, 47u, 48u, 49u, 63u, 64u, 65u, 1001u, 1920u}) {
        SCOPED_TRACE(n);
        const Bytes s = RandomBytes(2 * std::size_t(n), rng);
        auto run = [&](std::int64_t source, auto reader) {
            Bytes fast(3 * std::size_t(n) + 32, kPoison), scalar = fast;
            ASSERT_EQ(Registered(source, ZO_PT_BGR24)->Convert(s.data(), fast.data(), n), ZO_OK);
            g::GrayLine<g::PutRGB24>(s.data(), scalar.data(), n, reader);
            EXPECT_TRUE(SameBytes(fast, scalar)) << source;
        };
        run(ZO_PT_GRAY8, g::ReadLastByte<1>{});
        run(ZO_PT_GRAY16, g::ReadLastByte<2>{});
        run(ZO_PT_GRAY10, g::ReadWordShifted<2>{});
        run(ZO_PT_GRAY12, g::ReadWordShifted<4>{});
        run(ZO_PT_GRAY14, g::ReadWordShifted<6>{});

        Bytes scalar(4 * std::size_t(n) + 64, kPoison), part(scalar);
        g::GrayLine<g::PutRGB32>(s.data(), scalar.data(), n, g::ReadLastByte<1>{});
        const std::uint32_t done = g::GrayActivePaths().bytesToRGB32(s.data(), part.data(), n);
        ASSERT_LE(done, n);
        for (std::size_t i = 0; i < part.size(); ++i)
            ASSERT_EQ(part[i], i < 4 * std::size_t(done) ? scalar[i] : kPoison) << "byte " << i;
        for (std::int64_t destination : {ZO_PT_RGB32, ZO_PT_BGR32}) {
            Bytes whole(scalar.size(), kPoison);
            ASSERT_EQ(Registered(ZO_PT_GRAY8, destination)->Convert(s.data(), whole.data(), n), ZO_OK);
            EXPECT_TRUE(SameBytes(whole, scalar)) << destination;
        }
    }
}
