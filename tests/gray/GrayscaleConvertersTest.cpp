// Grayscale depth and expansion converters against a plain per-pixel
// reference, for every registered instance, and the deliberate quirks.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "ZoGrayscaleConverters.h"
#include "ZoPixelTypeFactory.h"
#include "support/ConvertSupport.h"
#include "support/AreaSupport.h"
#include "support/FamilyTables.h"

using namespace zotest;

namespace {

using Bytes = std::vector<unsigned char>;
enum class Kind { RightShift, LeftShift, To8, HighByte, WordToRGB16, WordToRGB24, WordToRGB32, ByteToRGB16, ByteToRGB24, ByteToRGB32 };

struct Instance {
    std::int64_t source, destination;
    Kind kind;
    std::uint32_t parameter;  // shift, or extra bytes for the byte-taking kinds
    std::uint32_t sourceBytes, destinationBytes;
};

void Put16(unsigned char* d, std::uint32_t w)
{
    d[0] = static_cast<unsigned char>(w);
    d[1] = static_cast<unsigned char>(w >> 8);
}

// The line form, one pixel. The table-based kinds index a table of
// 2^(8 + shift) entries with the sample masked to that size.
void ReferencePixel(const Instance& in, const unsigned char* s, unsigned char* d)
{
    const std::uint32_t w = Word(s), sh = in.parameter;
    const auto gray = [&](std::uint32_t g) { WriteRGB(in.destination, d, int(g), int(g), int(g)); };
    switch (in.kind) {
    case Kind::RightShift: Put16(d, w >> sh); break;
    case Kind::LeftShift: Put16(d, (w << sh) & 0xFFFF); break;
    case Kind::To8: d[0] = static_cast<unsigned char>(w >> sh); break;
    case Kind::HighByte: d[0] = s[1]; break;
    case Kind::WordToRGB24: gray((w >> sh) & 0xFF); break;
    case Kind::WordToRGB16:
    case Kind::WordToRGB32: gray((w & ((256u << sh) - 1)) >> sh); break;
    case Kind::ByteToRGB16:
    case Kind::ByteToRGB24:
    case Kind::ByteToRGB32: gray(s[in.parameter]); break;  // the last byte of the pixel
    }
}

void ReferenceArea(const Instance& in, const Area& a, AreaBuffers& b)
{
    const std::uint32_t sb = in.sourceBytes, db = in.destinationBytes;
    const bool interlaced = (in.source & ZO_PIXEL_INTERLACED) != 0;
    for (const LinePlace& line : AreaLines(a, sb, db, interlaced, false))
        for (std::uint32_t x = 0; x < a.width; ++x)
            ReferencePixel(in, &b.source[line.source + x * sb], &b.expected[line.destination + x * db]);
}

// The registered instances (tests/data/registry.csv): the class gives the kind.
std::vector<Instance> RegisteredInstances()
{
    const char* classes[] = {"ZoGrayscale16ToGrayscale16RightShift", "ZoGrayscale16ToGrayscale16LeftShift",
                             "ZoGrayscale16ToGrayscale8", "ZoGrayscale16NormalizedToGrayscale8",
                             "ZoGrayscale16ToRGB16", "ZoGrayscale16ToRGB24", "ZoGrayscale16ToRGB32",
                             "ZoGrayscale8ToRGB16", "ZoGrayscale8ToRGB24", "ZoGrayscale8ToRGB32"};
    std::vector<Instance> v;
    for (const RegistryRow& r : RegistryTable())
        for (int k = 0; k < 10; ++k)
            if (r.className == classes[k])
                v.push_back({r.source, r.destination, Kind(k), std::uint32_t(r.Param("shift") + r.Param("extra")),
                             r.sourceBytes, r.destinationBytes});
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
        const bool interlaced = (in.source & ZO_PIXEL_INTERLACED) != 0;
        // Random words of all 16 bits: out-of-range samples included.
        for (const Area& a : AwkwardAreas(interlaced))
            ASSERT_TRUE(AreaMatches(*c, nullptr, a, false, rng, [&](AreaBuffers& b) { ReferenceArea(in, a, b); }));
    }
}

// Hand-worked pixels, the deliberate quirks among them.
TEST(GrayscaleConverters, HandWorkedPixels)
{
    ZoRGBFilter filter(8);
    ASSERT_EQ(filter.SetMultipliers(0.5, 2.0, 0.25), ZO_OK);
    CheckExamples({
        {ZO_PT_GRAY10, ZO_PT_RGB16, {0xFF, 0x03}, kPixel, {0xFF, 0xFF}},
        {ZO_PT_GRAY10, ZO_PT_RGB16, {0x00, 0x02}, 1, {0x10, 0x84}},
        {ZO_PT_GRAY10, ZO_PT_BGR32, {0xFF, 0x03}, 1, {0xFF, 0xFF, 0xFF, 0}},
        // No clamping: 0x7FF >> 2 = 0x1FF keeps its low byte.
        {ZO_PT_GRAY10, ZO_PT_GRAY8, {0xFF, 0x07}, kPixel, {0xFF}},
        // No saturation: bit 10 of 0x7FF is lost.
        {ZO_PT_GRAY10, ZO_PT_GRAY16, {0xFF, 0x07}, 1, {0xC0, 0xFF}},
        {ZO_PT_GRAY16 | ZO_PIXEL_NORMALIZED, ZO_PT_GRAY8, {0x34, 0x12}, 1, {0x12}},
        // A sample past its table's range is masked to the table size.
        {ZO_PT_GRAY10, ZO_PT_RGB32, {0x00, 0x05}, 1, {0x40, 0x40, 0x40, 0}},
        {ZO_PT_GRAY10, ZO_PT_RGB16, {0x00, 0x04}, 1, {0, 0}},
        {ZO_PT_GRAY12, ZO_PT_RGB32, {0x01, 0x10}, kPixel, {0, 0, 0, 0}},
        {ZO_PT_GRAY14, ZO_PT_RGB16, {0x00, 0x41}, 1, {0x20, 0x00}},
        // The byte-taking classes: the line form reads the last byte of a
        // pixel, the single-pixel form the first (0x34: RGB16 0x31A6).
        {ZO_PT_GRAY12 | ZO_PIXEL_NORMALIZED, ZO_PT_RGB24, {0x34, 0x12}, 1, {0x12, 0x12, 0x12}},
        {ZO_PT_GRAY12 | ZO_PIXEL_NORMALIZED, ZO_PT_RGB24, {0x34, 0x12}, kPixel, {0x34, 0x34, 0x34}},
        {ZO_PT_GRAY16, ZO_PT_RGB16, {0x34, 0x12}, kPixel, {0xA6, 0x31}},
        {ZO_PT_GRAY8, ZO_PT_RGB24, {0x34, 0x12}, kPixel, {0x34, 0x34, 0x34}},  // one-byte pixels: alike
        // Grayscale expansion ignores the area conversion's filter.
        {ZO_PT_GRAY8, ZO_PT_RGB24, {10, 100, 200}, 3, {10, 10, 10, 100, 100, 100, 200, 200, 200, kPoison}, &filter},
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
    const unsigned char s[8] = {0xFF, 0x07, 0x00, 0x01, 0x10, 0x00, 0x08, 0x00};
    Bytes d(32, kPoison);
    for (const ZoPixelConverter* c : std::initializer_list<const ZoPixelConverter*>{&to16, &to32})
        EXPECT_TRUE(c->Convert(s, d.data(), 4) == ZO_OK && c->Convert(s, d.data()) == ZO_OK);
    EXPECT_EQ(d, Bytes(32, kPoison));
    EXPECT_EQ(ZoGrayscale16ToRGB24(source, false, 3).Convert(s, d.data(), 2), ZO_OK);
    EXPECT_EQ(Bytes(d.begin(), d.begin() + 6), (Bytes{0xFF, 0xFF, 0xFF, 0x20, 0x20, 0x20}));
}
