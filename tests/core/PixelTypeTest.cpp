// Pixel type IDs and objects: the naming rule, the attribute match, the
// class table, Clone and buffer sizes.
#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "ZoPixelType.h"
#include "ZoPixelTypeFactory.h"
#include "core/PixelTypeId.h"

namespace {

std::string Name(std::int64_t id, std::uint16_t bits, bool bayer)
{
    ZoString name("stale text");
    ZoGeneratePixelTypeName(id, bits, bayer, name);
    return name.c_str_ascii();
}

TEST(PixelTypeNaming, FollowsTheRule)
{
    static const struct {
        std::int64_t id;
        std::uint16_t bits;
        bool bayer;
        const char* name;
    } kCases[] = {
        // Names of the registered types are the catalogue test's; here the rule's corners.
        {0x00010001, 8, false, "Grayscale 8-bits"}, {0x00010001, 0, false, "Grayscale 0-bits"},
        {0x00020010, 8, false, "RGB 8-bits"},  // the Bayer word needs the Bayer property
        {0x00340002, 20, false, "YUV 20-bits, Normalized, Interlaced"},
        // All four flags, always in the order Normalized, Interlaced, Packed, Planar.
        {0x00F20002, 24, false, "RGB 24-bits, Normalized, Interlaced, Packed, Planar"},
        // The colour space is one value of bits 16-18, compared exactly.
        {0x00000001, 8, false, "Unknown Colorspace 8-bits"}, {0x00030001, 8, false, "Unknown Colorspace 8-bits"},
        {0x00050001, 8, true, "Unknown Colorspace 8-bits"}, {0x00070001, 8, false, "Unknown Colorspace 8-bits"},
        {0x00090001, 8, false, "Grayscale 8-bits"},  // bit 19 lies outside the field
        // Tap values other than the five named ones get no suffix; bit 29 is not a tap bit.
        {0x03010001, 8, false, "Grayscale 8-bits"}, {0x20010001, 8, false, "Grayscale 8-bits"},
        {0x1F410002, 10, false, "Grayscale 10-bits, Packed"},
        // Bits 32-63 play no part.
        {0x700020003LL, 32, false, "RGB 32-bits"},
        {-1, 8, true, "Unknown Colorspace 8-bits, Normalized, Interlaced, Packed, Planar"},
    };
    for (const auto& c : kCases)
        EXPECT_EQ(Name(c.id, c.bits, c.bayer), c.name) << std::hex << c.id;
}

TEST(PixelTypeMatch, ComparesEveryAttributeExactly)
{
    const bool F = false, T = true;
    static const struct {
        std::int64_t id;  // the type's own: ID, bit size and Bayer property
        std::uint16_t typeBits;
        bool bayer;
        std::uint32_t bits;  // the search's
        std::int64_t space;
        bool normalized, packed, interlaced, planar;
        std::int64_t tap;
        bool matches;
    } kCases[] = {
        {0x01610002, 10, F, 10, 0x10000, F, T, T, F, 0x01000000, T},
        // Each argument changed alone makes the match fail.
        {0x01610002, 10, F, 12, 0x10000, F, T, T, F, 0x01000000, F},
        {0x01610002, 10, F, 10, 0x20000, F, T, T, F, 0x01000000, F},
        {0x01610002, 10, F, 10, 1, F, T, T, F, 0x01000000, F},  // space as a code
        {0x01610002, 10, F, 10, 0x10000, T, T, T, F, 0x01000000, F},
        {0x01610002, 10, F, 10, 0x10000, F, F, T, F, 0x01000000, F},
        {0x01610002, 10, F, 10, 0x10000, F, T, F, F, 0x01000000, F},
        {0x01610002, 10, F, 10, 0x10000, F, T, T, T, 0x01000000, F},
        {0x01610002, 10, F, 10, 0x10000, F, T, T, F, 0x02000000, F},
        {0x01610002, 10, F, 10, 0x10000, F, T, T, F, 1, F},  // tap as a code
        // Two tap bits: only that exact tap value matches.
        {0x03010001, 8, F, 8, 0x10000, F, F, F, F, 0x03000000, T},
        {0x03010001, 8, F, 8, 0x10000, F, F, F, F, 0x01000000, F},
        {0x03010001, 8, F, 8, 0x10000, F, F, F, F, 0, F},
        // An unknown colour space can never be searched for by a valid one.
        {0x00030001, 8, F, 8, 0x10000, F, F, F, F, 0, F},
        {0x00030001, 8, F, 8, 0x20000, F, F, F, F, 0, F},
        {0x00030001, 8, F, 8, 0x40000, F, F, F, F, 0, F},
        // High bits are ignored; the Bayer property is not part of the match.
        {0x300020010LL, 8, T, 8, 0x20000, F, F, F, F, 0, T},
        {0x00020010, 8, F, 8, 0x20000, F, F, F, F, 0, T},
    };
    for (const auto& c : kCases) {
        const ZoPixelType type(c.id, c.typeBits, 2, c.bayer);
        EXPECT_EQ(ZoPixelTypeMatches(type, c.bits, c.space, c.normalized, c.packed, c.interlaced, c.planar, c.tap),
                  c.matches)
            << std::hex << c.id << " bits " << std::dec << c.bits << " space " << std::hex << c.space << " tap "
            << c.tap << " n/p/i/pl " << c.normalized << c.packed << c.interlaced << c.planar;
    }
}

// The 28 classes: default ID, and the sizes and Bayer property of the
// registered type of that ID (checked against the catalogue there), or for
// the unregistered 4:4:4 default IDs, of their packed twins.
TEST(PixelTypeClasses, HaveTheirDefaults)
{
    struct Row {
        std::unique_ptr<ZoPixelType> byDefault;
        std::int64_t id;
    };
#define ROW(Class, id) Row{std::unique_ptr<ZoPixelType>(new Class()), id}
    Row rows[] = {
        ROW(ZoGrayscale8, 0x00010001), ROW(ZoGrayscale10, 0x00010002), ROW(ZoGrayscale12, 0x00010003),
        ROW(ZoGrayscale14, 0x00010004), ROW(ZoGrayscale16, 0x00010005), ROW(ZoRGB16, 0x00020001),
        ROW(ZoRGB24, 0x00020002), ROW(ZoRGB32, 0x00020003), ROW(ZoRGB48, 0x00020004), ROW(ZoRGB64, 0x00020005),
        ROW(ZoBGR24, 0x00020006), ROW(ZoBGR32, 0x00020007), ROW(ZoRGB48_10Bits, 0x00020008),
        ROW(ZoRGB64_10Bits, 0x00020009), ROW(ZoRGB8_3, 0x0002000A), ROW(ZoRGB8_4, 0x0002000B),
        ROW(ZoRGB48_12Bits, 0x0002000C), ROW(ZoRGB64_12Bits, 0x0002000D), ROW(ZoBayerRGB8, 0x00020010),
        ROW(ZoBayerRGB10, 0x00020011), ROW(ZoBayerRGB12, 0x00020012), ROW(ZoBayerRGGB8, 0x00020013),
        ROW(ZoBayerRGGB10, 0x00020014), ROW(ZoBayerRGGB12, 0x00020015), ROW(ZoYUV8, 0x00040001),
        ROW(ZoYUV10, 0x00040002), ROW(ZoYUV8_444, 0x00040003), ROW(ZoYCrCb, 0x00040005),
    };
#undef ROW
    for (const Row& r : rows) {
        const ZoPixelType& t = ZoPixelTypeFactory::GetPixelType(
            r.id | (r.id == 0x00040003 || r.id == 0x00040005 ? ZO_PIXEL_PACKED : 0));
        const ZoPixelType& d = *r.byDefault;
        EXPECT_EQ(std::make_tuple(d.GetTypeID(), d.GetPixelBitSize(), d.GetPixelByteSize(), d.IsBayerPattern()),
                  std::make_tuple(r.id, t.GetPixelBitSize(), t.GetPixelByteSize(), t.IsBayerPattern()));
    }
}

TEST(PixelTypeClasses, BayerPropertyNeedsTheRgbBit)
{
    // 0x50000 is 0x40000 | 0x10000; 0x70000 has bit 17 set in an unknown space.
    EXPECT_EQ(std::make_tuple(ZoBayerRGB8(0x00010001).IsBayerPattern(), ZoBayerRGB10(0x00440011).IsBayerPattern(),
                              ZoPixelType(0x00050000, 8, 1, true).IsBayerPattern(),
                              ZoPixelType(0x00070000, 8, 1, true).IsBayerPattern(),
                              ZoPixelType(0x00020000, 8, 1, true).IsBayerPattern()),
              std::make_tuple(false, false, false, true, true));
}

TEST(PixelTypeBufferSize, FollowsTheThreeRules)
{
    static const struct {
        std::int64_t id;
        std::uint16_t bits, bytes;
        bool bayer;
        std::uint32_t width, height, expected;
    } kCases[] = {
        // Packed 10/12-bit gray or Bayer: 3 bytes per pair, rounded up to a pair.
        {0x00410002, 10, 2, false, 3, 1, 6}, {0x00410002, 10, 2, false, 1, 1, 3},
        {0x08420011, 10, 2, true, 9, 1, 15},
        {0x00410003, 12, 2, false, 7, 3, 33},  // 21 -> 22 samples
        {0x00410002, 10, 2, true, 5, 1, 9},    // Bayer argument on a gray ID: still the gray rule
        {0x00440002, 10, 2, true, 5, 1, 10},   // neither gray nor Bayer: 2 bytes a pixel
        {0x00420012, 12, 2, false, 5, 1, 10},  // RGB packed but not Bayer
        {0x00410004, 14, 2, false, 5, 1, 10},  // packed 14-bit: plain rule
        {0x00410001, 8, 1, false, 5, 1, 5}, {0x00010002, 10, 2, false, 5, 1, 10},  // 8 bits; not packed
        // Unpacked 24-bit, 3-byte types are sized at 4 bytes a pixel (the
        // 4:4:4 default IDs are unpacked too); not so 8 bits in 3 bytes.
        {0x00020002, 24, 3, false, 3, 1, 12}, {0x00820002, 24, 3, false, 3, 1, 12},
        {0x00040003, 24, 3, false, 3, 1, 12},
        {0x00420002, 24, 3, false, 3, 1, 9}, {0x00440005, 24, 3, false, 3, 1, 9}, {0x0002000A, 8, 3, false, 3, 1, 9},
        {0x00020004, 48, 6, false, 7, 1, 42}, {0x00040002, 20, 4, false, 7, 9, 252},
        // Zero sizes; 32-bit arithmetic wraps.
        {0x00410002, 10, 2, false, 0, 480, 0}, {0x00020002, 24, 3, false, 640, 0, 0},
        {0x00020005, 64, 8, false, 65536, 8192, 0}, {0x00020002, 24, 3, false, 0x40000000, 1, 0},
        {0x00410002, 10, 2, false, 0x80000001, 1, 0x40000003}, {0x00010001, 8, 1, false, 0x10001, 0x10001, 0x20001},
    };
    for (const auto& c : kCases) {
        const ZoPixelType type(c.id, c.bits, c.bytes, c.bayer);
        EXPECT_EQ(type.GetBufferSizeFor(c.width, c.height), c.expected)
            << std::hex << c.id << std::dec << " " << c.width << "x" << c.height;
    }
}

TEST(PixelTypeBufferSize, ReadsPropertiesThroughTheAccessors)
{
    // A subclass whose accessors disagree with its stored fields.
    struct ReportsPackedBayer12 : ZoPixelType {
        ReportsPackedBayer12() : ZoPixelType(0x00020002, 24, 3, false) {}
        const std::int64_t& GetTypeID() const override { return id; }
        std::uint16_t GetPixelBitSize() const override { return 12; }
        std::uint16_t GetPixelByteSize() const override { return 2; }
        bool IsBayerPattern() const override { return true; }
        std::int64_t id = 0x00420012;
    };
    EXPECT_EQ(ReportsPackedBayer12().GetBufferSizeFor(5, 1), 9u);
}

}  // namespace
