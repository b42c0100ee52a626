// Grayscale depth and expansion converters against a plain per-pixel
// reference, for every registered instance.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "ZoGrayscaleConverters.h"
#include "ZoPixelTypeFactory.h"
#include "gray/GrayscaleKernels.h"
#include "gray/GrayscaleSimd.h"
#include "gray/GrayscaleTables.h"
#include "convert/ConvertTestSupport.h"
#include "rgb/AreaTestSupport.h"

using namespace zotest;

namespace {

enum class Kind { RightShift, LeftShift, To8, HighByte, WordToRGB16, WordToRGB24, WordToRGB32, ByteToRGB16, ByteToRGB24, ByteToRGB32 };

struct Instance {
    std::int64_t source, destination;
    Kind kind;
    std::uint32_t parameter;  // shift, or extra bytes for the byte-taking kinds
    bool (*isClass)(const ZoPixelConverter*);
    const char* name;
};

template <class T>
bool IsA(const ZoPixelConverter* c)
{
    return dynamic_cast<const T*>(c) != nullptr;
}

bool TakesByte(Kind k) { return k == Kind::ByteToRGB16 || k == Kind::ByteToRGB24 || k == Kind::ByteToRGB32; }

std::uint32_t SourceBytes(const Instance& i) { return TakesByte(i.kind) ? i.parameter + 1 : 2; }

std::uint32_t DestinationBytes(Kind k)
{
    switch (k) {
    case Kind::To8: case Kind::HighByte: return 1;
    case Kind::WordToRGB24: case Kind::ByteToRGB24: return 3;
    case Kind::WordToRGB32: case Kind::ByteToRGB32: return 4;
    default: return 2;
    }
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
    if (bytes == 2) {
        Put16(d, RGB16Of(g));
        return;
    }
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
    std::vector<Instance> v;
    auto rgbFromBytes = [&](std::int64_t s, std::uint32_t extra) {
        v.push_back({s, ZO_PT_RGB16, Kind::ByteToRGB16, extra, IsA<ZoGrayscale8ToRGB16>, "ZoGrayscale8ToRGB16"});
        v.push_back({s, ZO_PT_RGB24, Kind::ByteToRGB24, extra, IsA<ZoGrayscale8ToRGB24>, "ZoGrayscale8ToRGB24"});
        v.push_back({s, ZO_PT_BGR24, Kind::ByteToRGB24, extra, IsA<ZoGrayscale8ToRGB24>, "ZoGrayscale8ToRGB24"});
        v.push_back({s, ZO_PT_RGB32, Kind::ByteToRGB32, extra, IsA<ZoGrayscale8ToRGB32>, "ZoGrayscale8ToRGB32"});
        v.push_back({s, ZO_PT_BGR32, Kind::ByteToRGB32, extra, IsA<ZoGrayscale8ToRGB32>, "ZoGrayscale8ToRGB32"});
    };
    auto shifted = [&](std::int64_t s, std::uint32_t shift) {
        v.push_back({s, ZO_PT_GRAY8, Kind::To8, shift, IsA<ZoGrayscale16ToGrayscale8>, "ZoGrayscale16ToGrayscale8"});
        v.push_back({s, ZO_PT_RGB16, Kind::WordToRGB16, shift, IsA<ZoGrayscale16ToRGB16>, "ZoGrayscale16ToRGB16"});
        v.push_back({s, ZO_PT_RGB24, Kind::WordToRGB24, shift, IsA<ZoGrayscale16ToRGB24>, "ZoGrayscale16ToRGB24"});
        v.push_back({s, ZO_PT_BGR24, Kind::WordToRGB24, shift, IsA<ZoGrayscale16ToRGB24>, "ZoGrayscale16ToRGB24"});
        v.push_back({s, ZO_PT_RGB32, Kind::WordToRGB32, shift, IsA<ZoGrayscale16ToRGB32>, "ZoGrayscale16ToRGB32"});
        v.push_back({s, ZO_PT_BGR32, Kind::WordToRGB32, shift, IsA<ZoGrayscale16ToRGB32>, "ZoGrayscale16ToRGB32"});
    };
    auto highByte = [&](std::int64_t s) {
        v.push_back({s, ZO_PT_GRAY8, Kind::HighByte, 0, IsA<ZoGrayscale16NormalizedToGrayscale8>,
                     "ZoGrayscale16NormalizedToGrayscale8"});
        rgbFromBytes(s, 1);
    };
    auto left = [&](std::int64_t s, std::uint32_t shift, std::int64_t d) {
        v.push_back({s, d, Kind::LeftShift, shift, IsA<ZoGrayscale16ToGrayscale16LeftShift>,
                     "ZoGrayscale16ToGrayscale16LeftShift"});
    };
    auto right = [&](std::int64_t s, std::uint32_t shift, std::int64_t d) {
        v.push_back({s, d, Kind::RightShift, shift, IsA<ZoGrayscale16ToGrayscale16RightShift>,
                     "ZoGrayscale16ToGrayscale16RightShift"});
    };
    auto fromNormalized = [&](std::int64_t s) {
        right(s, 6, ZO_PT_GRAY10);
        right(s, 4, ZO_PT_GRAY12);
        right(s, 2, ZO_PT_GRAY14);
    };

    rgbFromBytes(ZO_PT_GRAY8, 0);
    rgbFromBytes(ZO_PT_GRAY8 | I, 0);
    shifted(ZO_PT_GRAY10, 2);
    left(ZO_PT_GRAY10, 2, ZO_PT_GRAY12);
    left(ZO_PT_GRAY10, 4, ZO_PT_GRAY14);
    left(ZO_PT_GRAY10, 6, ZO_PT_GRAY16);
    shifted(ZO_PT_GRAY10 | I, 2);
    highByte(ZO_PT_GRAY10 | N);
    fromNormalized(ZO_PT_GRAY10 | N);
    highByte(ZO_PT_GRAY10 | N | I);
    shifted(ZO_PT_GRAY12, 4);
    right(ZO_PT_GRAY12, 2, ZO_PT_GRAY10);
    left(ZO_PT_GRAY12, 2, ZO_PT_GRAY14);
    left(ZO_PT_GRAY12, 4, ZO_PT_GRAY16);
    shifted(ZO_PT_GRAY12 | I, 4);
    highByte(ZO_PT_GRAY12 | N);
    fromNormalized(ZO_PT_GRAY12 | N);
    highByte(ZO_PT_GRAY12 | N | I);
    shifted(ZO_PT_GRAY14, 6);
    right(ZO_PT_GRAY14, 4, ZO_PT_GRAY10);
    right(ZO_PT_GRAY14, 2, ZO_PT_GRAY12);
    left(ZO_PT_GRAY14, 2, ZO_PT_GRAY16);
    shifted(ZO_PT_GRAY14 | I, 6);
    highByte(ZO_PT_GRAY14 | N);
    fromNormalized(ZO_PT_GRAY14 | N);
    highByte(ZO_PT_GRAY14 | N | I);
    highByte(ZO_PT_GRAY16);
    fromNormalized(ZO_PT_GRAY16);
    highByte(ZO_PT_GRAY16 | I);
    highByte(ZO_PT_GRAY16 | N);
    fromNormalized(ZO_PT_GRAY16 | N);
    highByte(ZO_PT_GRAY16 | N | I);
    return v;
}

const ZoPixelConverter* Registered(std::int64_t s, std::int64_t d)
{
    return ZoPixelTypeFactory::HasConverter(s, d) ? &ZoPixelTypeFactory::GetConverter(s, d) : nullptr;
}

std::vector<unsigned char> Bytes(const unsigned char* p, std::size_t n) { return std::vector<unsigned char>(p, p + n); }

}  // namespace

TEST(GrayscaleConverters, EveryRegisteredInstanceMatchesTheReference)
{
    const std::vector<Instance> instances = RegisteredInstances();
    ASSERT_EQ(instances.size(), 130u);
    std::mt19937 rng(4242);
    for (const Instance& in : instances) {
        SCOPED_TRACE(std::string(in.name) + " from " + std::to_string(in.source) + " to " +
                     std::to_string(in.destination));
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
    unsigned char d[8];
    const unsigned char s3FF[2] = {0xFF, 0x03}, s200[2] = {0x00, 0x02}, s7FF[2] = {0xFF, 0x07};
    ASSERT_EQ(Registered(ZO_PT_GRAY10, ZO_PT_RGB16)->Convert(s3FF, d), ZO_OK);
    EXPECT_EQ(Word(d), 0xFFFFu);
    ASSERT_EQ(Registered(ZO_PT_GRAY10, ZO_PT_RGB16)->Convert(s200, d, 1), ZO_OK);
    EXPECT_EQ(Word(d), 0x8410u);
    ASSERT_EQ(Registered(ZO_PT_GRAY10, ZO_PT_BGR32)->Convert(s3FF, d, 1), ZO_OK);
    EXPECT_EQ(Bytes(d, 4), (std::vector<unsigned char>{0xFF, 0xFF, 0xFF, 0}));
    // No clamping: 0x7FF >> 2 = 0x1FF keeps its low byte.
    ASSERT_EQ(Registered(ZO_PT_GRAY10, ZO_PT_GRAY8)->Convert(s7FF, d), ZO_OK);
    EXPECT_EQ(d[0], 0xFF);
    // No saturation: bit 10 of 0x7FF is lost.
    ASSERT_EQ(Registered(ZO_PT_GRAY10, ZO_PT_GRAY16)->Convert(s3FF, d), ZO_OK);
    EXPECT_EQ(Word(d), 0xFFC0u);
    ASSERT_EQ(Registered(ZO_PT_GRAY10, ZO_PT_GRAY16)->Convert(s7FF, d, 1), ZO_OK);
    EXPECT_EQ(Word(d), 0xFFC0u);
    const unsigned char s1234[2] = {0x34, 0x12};
    ASSERT_EQ(Registered(ZO_PT_GRAY16 | ZO_PIXEL_NORMALIZED, ZO_PT_GRAY8)->Convert(s1234, d, 1), ZO_OK);
    EXPECT_EQ(d[0], 0x12);
}

// The byte-taking classes: the line form reads the last byte of a pixel, the
// single-pixel form the first.
TEST(GrayscaleConverters, ByteChoiceOfSingleVersusLineForm)
{
    const unsigned char s[2] = {0x34, 0x12};
    unsigned char d[8];
    const ZoPixelConverter* c = Registered(ZO_PT_GRAY12 | ZO_PIXEL_NORMALIZED, ZO_PT_RGB24);
    ASSERT_EQ(c->Convert(s, d, 1), ZO_OK);
    EXPECT_EQ(Bytes(d, 3), (std::vector<unsigned char>{0x12, 0x12, 0x12}));
    ASSERT_EQ(c->Convert(s, d), ZO_OK);
    EXPECT_EQ(Bytes(d, 3), (std::vector<unsigned char>{0x34, 0x34, 0x34}));
    ASSERT_EQ(Registered(ZO_PT_GRAY16, ZO_PT_BGR32)->Convert(s, d), ZO_OK);
    EXPECT_EQ(Bytes(d, 4), (std::vector<unsigned char>{0x34, 0x34, 0x34, 0}));
    ASSERT_EQ(Registered(ZO_PT_GRAY16, ZO_PT_RGB16)->Convert(s, d), ZO_OK);
    EXPECT_EQ(Word(d), RGB16Of(0x34));
    // With one-byte pixels both forms agree.
    ASSERT_EQ(Registered(ZO_PT_GRAY8, ZO_PT_RGB24)->Convert(s, d), ZO_OK);
    EXPECT_EQ(Bytes(d, 3), (std::vector<unsigned char>{0x34, 0x34, 0x34}));
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
    std::vector<unsigned char> d(32, kPoison);
    EXPECT_EQ(to16.Convert(s, d.data(), 4), ZO_OK);
    EXPECT_EQ(to16.Convert(s, d.data()), ZO_OK);
    EXPECT_EQ(to32.Convert(s, d.data(), 4), ZO_OK);
    EXPECT_EQ(to32.Convert(s, d.data()), ZO_OK);
    EXPECT_EQ(d, std::vector<unsigned char>(32, kPoison));
    EXPECT_EQ(to24.Convert(s, d.data(), 2), ZO_OK);
    EXPECT_EQ(Bytes(d.data(), 6), (std::vector<unsigned char>{0xFF, 0xFF, 0xFF, 0x20, 0x20, 0x20}));
}

// A sample past its table's range is masked to the table size: every 16-bit
// word through the three table shifts.
TEST(GrayscaleConverters, SamplesBeyondTheTableAreMasked)
{
    std::vector<unsigned char> s(2 * 65536);
    for (std::uint32_t w = 0; w < 65536; ++w)
        Put16(&s[2 * w], w);
    for (std::uint32_t shift : {2u, 4u, 6u}) {
        const std::int64_t source = shift == 2 ? ZO_PT_GRAY10 : shift == 4 ? ZO_PT_GRAY12 : ZO_PT_GRAY14;
        std::vector<unsigned char> d16(2 * 65536), d32(4 * 65536);
        ASSERT_EQ(Registered(source, ZO_PT_RGB16)->Convert(s.data(), d16.data(), 65536), ZO_OK);
        ASSERT_EQ(Registered(source, ZO_PT_RGB32)->Convert(s.data(), d32.data(), 65536), ZO_OK);
        const std::uint32_t mask = (256u << shift) - 1;
        for (std::uint32_t w = 0; w < 65536; ++w) {
            const std::uint32_t g = (w & mask) >> shift;
            ASSERT_EQ(Word(&d16[2 * w]), RGB16Of(g)) << shift << " " << w;
            ASSERT_EQ(Bytes(&d32[4 * w], 4), (std::vector<unsigned char>{static_cast<unsigned char>(g),
                                                                          static_cast<unsigned char>(g),
                                                                          static_cast<unsigned char>(g), 0}))
                << shift << " " << w;
        }
    }
}

// The shared tables hold, for index v, the RGB16 word and the RGB32 value of
// the gray v >> shift (the low five bits of an RGB16 word: v >> (shift + 3)).
TEST(GrayscaleConverters, SharedTablesFollowTheirFormula)
{
    auto check16 = [](const auto& table, std::uint32_t shift) {
        for (std::uint32_t v = 0; v < table.size(); ++v) {
            const std::uint32_t g = v >> shift;
            ASSERT_EQ(table[v], ((g >> 3) << 11) | ((g >> 2) << 5) | (v >> (shift + 3))) << v;
        }
    };
    auto check32 = [](const auto& table, std::uint32_t shift) {
        for (std::uint32_t v = 0; v < table.size(); ++v)
            ASSERT_EQ(table[v], (v >> shift) * 0x10101u) << v;
    };
    check16(zo::kGrayToRGB16_8, 0);
    check16(zo::kGrayToRGB16_Shift2, 2);
    check16(zo::kGrayToRGB16_Shift4, 4);
    check16(zo::kGrayToRGB16_Shift6, 6);
    check32(zo::kGrayToRGB32_8, 0);
    check32(zo::kGrayToRGB32_Shift2, 2);
    check32(zo::kGrayToRGB32_Shift4, 4);
    check32(zo::kGrayToRGB32_Shift6, 6);
}

// Grayscale expansion ignores the area conversion's filter.
TEST(GrayscaleConverters, FilterDoesNotApply)
{
    ZoRGBFilter filter(8);
    ASSERT_EQ(filter.SetMultipliers(0.5, 2.0, 0.25), ZO_OK);
    const unsigned char s[3] = {10, 100, 200};
    unsigned char d[12];
    ASSERT_EQ(Registered(ZO_PT_GRAY8, ZO_PT_RGB24)->Convert(filter, s, 3, 1, d, 3, 1, 3, 1, 0, 0), ZO_OK);
    EXPECT_EQ(Bytes(d, 9), (std::vector<unsigned char>{10, 10, 10, 100, 100, 100, 200, 200, 200}));
}

// The vector paths of the RGB24 expansion against the scalar kernel, on
// random rows of awkward widths, with poison after the row.
TEST(GrayscaleConverters, FastPathsMatchTheScalarKernels)
{
    namespace g = zo::gray;
    std::mt19937 rng(91);
    for (std::uint32_t n : {1u, 7u, 15u, 16u, 17u, 31u, 33u, 64u, 1001u}) {
        SCOPED_TRACE(n);
        const std::vector<unsigned char> s = RandomBytes(2 * std::size_t(n), rng);
        auto run = [&](std::int64_t source, auto reader) {
            std::vector<unsigned char> fast(3 * std::size_t(n) + 32, kPoison), scalar = fast;
            ASSERT_EQ(Registered(source, ZO_PT_BGR24)->Convert(s.data(), fast.data(), n), ZO_OK);
            g::GrayLine<g::PutRGB24>(s.data(), scalar.data(), n, reader);
            EXPECT_TRUE(SameBytes(fast, scalar)) << source;
        };
        run(ZO_PT_GRAY8, g::ReadLastByte<1>{});
        run(ZO_PT_GRAY16, g::ReadLastByte<2>{});
        run(ZO_PT_GRAY10, g::ReadWordShifted<2>{});
        run(ZO_PT_GRAY12, g::ReadWordShifted<4>{});
        run(ZO_PT_GRAY14, g::ReadWordShifted<6>{});
    }
}

// The vector path for one-byte pixels to 32-bit destinations, alone and
// through both registered converters, against the scalar kernel: awkward
// widths, poison around the written bytes.
TEST(GrayscaleConverters, Gray8ToRGB32VectorPathMatchesTheScalarKernel)
{
    namespace g = zo::gray;
    std::mt19937 rng(92);
    for (std::uint32_t n : {1u, 2u, 3u, 7u, 9u, 15u, 16u, 17u, 31u, 32u, 33u, 47u, 48u, 49u, 63u, 65u, 1001u, 1920u}) {
        SCOPED_TRACE(n);
        const std::vector<unsigned char> s = RandomBytes(n, rng);
        std::vector<unsigned char> scalar(4 * std::size_t(n) + 64, kPoison);
        g::GrayLine<g::PutRGB32>(s.data(), scalar.data(), n, g::ReadLastByte<1>{});

        std::vector<unsigned char> part(scalar.size(), kPoison);
        const std::uint32_t done = g::GrayBytesToRGB32(s.data(), part.data(), n);
        ASSERT_LE(done, n);
        for (std::size_t i = 0; i < part.size(); ++i)
            ASSERT_EQ(part[i], i < 4 * std::size_t(done) ? scalar[i] : kPoison) << "byte " << i;

        for (std::int64_t destination : {ZO_PT_RGB32, ZO_PT_BGR32}) {
            std::vector<unsigned char> whole(scalar.size(), kPoison);
            ASSERT_EQ(Registered(ZO_PT_GRAY8, destination)->Convert(s.data(), whole.data(), n), ZO_OK);
            EXPECT_TRUE(SameBytes(whole, scalar)) << destination;
        }
    }
}
