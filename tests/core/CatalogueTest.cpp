// The built-in catalogue: every type with its exact name and sizes, nothing
// else registered, and the searches by attributes over it.
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <typeinfo>
#include <vector>

#include "ZoPixelTypeFactory.h"

namespace {

struct CatalogueRow {
    std::int64_t id;
    std::uint16_t bits, bytes;
    bool bayer;
    const char* name;
};

// The catalogue as published, group by group.
const CatalogueRow kCatalogue[] = {
    {0x00010001, 8, 1, false, "Grayscale 8-bits"},
    {0x00010002, 10, 2, false, "Grayscale 10-bits"},
    {0x00010003, 12, 2, false, "Grayscale 12-bits"},
    {0x00010004, 14, 2, false, "Grayscale 14-bits"},
    {0x00010005, 16, 2, false, "Grayscale 16-bits"},
    {0x00110002, 10, 2, false, "Grayscale 10-bits, Normalized"},
    {0x00110003, 12, 2, false, "Grayscale 12-bits, Normalized"},
    {0x00110004, 14, 2, false, "Grayscale 14-bits, Normalized"},
    {0x00110005, 16, 2, false, "Grayscale 16-bits, Normalized"},
    {0x00210001, 8, 1, false, "Grayscale 8-bits, Interlaced"},
    {0x00210002, 10, 2, false, "Grayscale 10-bits, Interlaced"},
    {0x00210003, 12, 2, false, "Grayscale 12-bits, Interlaced"},
    {0x00210004, 14, 2, false, "Grayscale 14-bits, Interlaced"},
    {0x00210005, 16, 2, false, "Grayscale 16-bits, Interlaced"},
    {0x00310002, 10, 2, false, "Grayscale 10-bits, Normalized, Interlaced"},
    {0x00310003, 12, 2, false, "Grayscale 12-bits, Normalized, Interlaced"},
    {0x00310004, 14, 2, false, "Grayscale 14-bits, Normalized, Interlaced"},
    {0x00310005, 16, 2, false, "Grayscale 16-bits, Normalized, Interlaced"},
    {0x00410002, 10, 2, false, "Grayscale 10-bits, Packed"},
    {0x00410003, 12, 2, false, "Grayscale 12-bits, Packed"},
    {0x00610002, 10, 2, false, "Grayscale 10-bits, Interlaced, Packed"},
    {0x00610003, 12, 2, false, "Grayscale 12-bits, Interlaced, Packed"},
    {0x01010001, 8, 1, false, "Grayscale 8-bits, Dual Left+Right output"},
    {0x01410002, 10, 2, false, "Grayscale 10-bits, Packed, Dual Left+Right output"},
    {0x01410003, 12, 2, false, "Grayscale 12-bits, Packed, Dual Left+Right output"},
    {0x01610002, 10, 2, false, "Grayscale 10-bits, Interlaced, Packed, Dual Left+Right output"},
    {0x01610003, 12, 2, false, "Grayscale 12-bits, Interlaced, Packed, Dual Left+Right output"},
    {0x02010001, 8, 1, false, "Grayscale 8-bits, Dual Left+Right Inverted output"},
    {0x02410002, 10, 2, false, "Grayscale 10-bits, Packed, Dual Left+Right Inverted output"},
    {0x02410003, 12, 2, false, "Grayscale 12-bits, Packed, Dual Left+Right Inverted output"},
    {0x02610002, 10, 2, false, "Grayscale 10-bits, Interlaced, Packed, Dual Left+Right Inverted output"},
    {0x02610003, 12, 2, false, "Grayscale 12-bits, Interlaced, Packed, Dual Left+Right Inverted output"},
    {0x04010001, 8, 1, false, "Grayscale 8-bits, Dual Left Inverted+Right output"},
    {0x04410002, 10, 2, false, "Grayscale 10-bits, Packed, Dual Left Inverted+Right output"},
    {0x04410003, 12, 2, false, "Grayscale 12-bits, Packed, Dual Left Inverted+Right output"},
    {0x04610002, 10, 2, false, "Grayscale 10-bits, Interlaced, Packed, Dual Left Inverted+Right output"},
    {0x04610003, 12, 2, false, "Grayscale 12-bits, Interlaced, Packed, Dual Left Inverted+Right output"},
    {0x08010001, 8, 1, false, "Grayscale 8-bits, Dual Left Inverted+Right Inverted output"},
    {0x08410002, 10, 2, false, "Grayscale 10-bits, Packed, Dual Left Inverted+Right Inverted output"},
    {0x08410003, 12, 2, false, "Grayscale 12-bits, Packed, Dual Left Inverted+Right Inverted output"},
    {0x08610002, 10, 2, false, "Grayscale 10-bits, Interlaced, Packed, Dual Left Inverted+Right Inverted output"},
    {0x08610003, 12, 2, false, "Grayscale 12-bits, Interlaced, Packed, Dual Left Inverted+Right Inverted output"},
    {0x10010001, 8, 1, false, "Grayscale 8-bits, Dual Lines output"},
    {0x00020001, 16, 2, false, "RGB 16-bits"},
    {0x00020002, 24, 3, false, "RGB 24-bits"},
    {0x00020003, 32, 4, false, "RGB 32-bits"},
    {0x00020004, 48, 6, false, "RGB 48-bits"},
    {0x00020005, 64, 8, false, "RGB 64-bits"},
    {0x00020006, 24, 3, false, "BGR 24-bits"},
    {0x00020007, 32, 4, false, "RGB 32-bits"},
    {0x00020008, 10, 6, false, "RGB 48-bits (3 x 10 bits)"},
    {0x00020009, 10, 8, false, "RGB 64-bits (4 x 10 bits)"},
    {0x0002000A, 8, 3, false, "RGB 24-bits (3 X 8-bits)"},
    {0x0002000B, 8, 4, false, "RGB 32-bits (4 X 8-bits)"},
    {0x0002000C, 12, 6, false, "RGB 48-bits (3 x 12 bits)"},
    {0x0002000D, 12, 8, false, "RGB 64-bits (4 x 12 bits)"},
    {0x00120004, 48, 6, false, "RGB 48-bits, Normalized"},
    {0x00120005, 64, 8, false, "RGB 64-bits, Normalized"},
    {0x00120008, 10, 6, false, "RGB 48-bits (3 x 10 bits), Normalized"},
    {0x00120009, 10, 8, false, "RGB 64-bits (4 x 10 bits), Normalized"},
    {0x0012000C, 12, 6, false, "RGB 48-bits (3 x 12 bits), Normalized"},
    {0x0012000D, 12, 8, false, "RGB 64-bits (4 x 12 bits), Normalized"},
    {0x00420002, 24, 3, false, "RGB 24-bits, Packed"},
    {0x00420006, 24, 3, false, "BGR 24-bits, Packed"},
    {0x0042000A, 8, 3, false, "RGB 24-bits (3 X 8-bits), Packed"},
    {0x0042000B, 8, 4, false, "RGB 32-bits (4 X 8-bits), Packed"},
    {0x00820002, 24, 3, false, "RGB 24-bits, Planar"},
    {0x0082000A, 8, 3, false, "RGB 24-bits (3 X 8-bits), Planar"},
    {0x0082000B, 8, 4, false, "RGB 32-bits (4 X 8-bits), Planar"},
    {0x00020010, 8, 1, true, "Bayer RGB 8-bits"},
    {0x00020011, 10, 2, true, "Bayer RGB 10-bits"},
    {0x00020012, 12, 2, true, "Bayer RGB 12-bits"},
    {0x00120011, 10, 2, true, "Bayer RGB 10-bits, Normalized"},
    {0x00120012, 12, 2, true, "Bayer RGB 12-bits, Normalized"},
    {0x00220011, 10, 2, true, "Bayer RGB 10-bits, Interlaced"},
    {0x00320011, 10, 2, true, "Bayer RGB 10-bits, Normalized, Interlaced"},
    {0x00420011, 10, 2, true, "Bayer RGB 10-bits, Packed"},
    {0x00420012, 12, 2, true, "Bayer RGB 12-bits, Packed"},
    {0x01020010, 8, 1, true, "Bayer RGB 8-bits, Dual Left+Right output"},
    {0x01420011, 10, 2, true, "Bayer RGB 10-bits, Packed, Dual Left+Right output"},
    {0x01420012, 12, 2, true, "Bayer RGB 12-bits, Packed, Dual Left+Right output"},
    {0x02020010, 8, 1, true, "Bayer RGB 8-bits, Dual Left+Right Inverted output"},
    {0x02420011, 10, 2, true, "Bayer RGB 10-bits, Packed, Dual Left+Right Inverted output"},
    {0x02420012, 12, 2, true, "Bayer RGB 12-bits, Packed, Dual Left+Right Inverted output"},
    {0x04020010, 8, 1, true, "Bayer RGB 8-bits, Dual Left Inverted+Right output"},
    {0x04420011, 10, 2, true, "Bayer RGB 10-bits, Packed, Dual Left Inverted+Right output"},
    {0x04420012, 12, 2, true, "Bayer RGB 12-bits, Packed, Dual Left Inverted+Right output"},
    {0x08020010, 8, 1, true, "Bayer RGB 8-bits, Dual Left Inverted+Right Inverted output"},
    {0x08420011, 10, 2, true, "Bayer RGB 10-bits, Packed, Dual Left Inverted+Right Inverted output"},
    {0x08420012, 12, 2, true, "Bayer RGB 12-bits, Packed, Dual Left Inverted+Right Inverted output"},
    {0x00020013, 8, 1, true, "Bayer RGGB 8-bits (deprecated)"},
    {0x00020014, 10, 2, true, "Bayer RGGB, 10-bits (deprecated)"},
    {0x00020015, 12, 2, true, "Bayer RGGB, 12-bits (deprecated)"},
    {0x00120014, 10, 2, true, "Bayer RGGB 10-bits, Normalized (deprecated)"},
    {0x00120015, 12, 2, true, "Bayer RGGB 12-bits, Normalized (deprecated)"},
    {0x00220014, 10, 2, true, "Bayer RGGB 10-bits, Interlaced (deprecated)"},
    {0x00320014, 10, 2, true, "Bayer RGGB 10-bits, Normalized, Interlaced (deprecated)"},
    {0x00420014, 10, 2, true, "Bayer RGGB 10-bits, Packed (deprecated)"},
    {0x00420015, 12, 2, true, "Bayer RGGB 12-bits, Packed (deprecated)"},
    {0x01020013, 8, 1, true, "Bayer RGGB, 8-bits, Dual Left+Right Output (deprecated)"},
    {0x01420014, 10, 2, true, "Bayer RGGB, 10-bits, Packed, Dual Left+Right Output (deprecated)"},
    {0x01420015, 12, 2, true, "Bayer RGGB, 12-bits, Packed, Dual Left+Right Output (deprecated)"},
    {0x02020013, 8, 1, true, "Bayer RGGB 8-bits, Dual Left Inverted+Right Output (deprecated)"},
    {0x02420014, 10, 2, true, "Bayer RGGB, 10-bits, Packed, Dual Left+Right Inverted Output (deprecated)"},
    {0x02420015, 12, 2, true, "Bayer RGGB, 12-bits, Packed, Dual Left+Right Inverted Output (deprecated)"},
    {0x04020013, 8, 1, true, "Bayer RGGB 8-bits, Dual Left+Right Inverted Output (deprecated)"},
    {0x04420014, 10, 2, true, "Bayer RGGB, 10-bits, Packed, Dual Left Inverted+Right Output (deprecated)"},
    {0x04420015, 12, 2, true, "Bayer RGGB, 12-bits, Packed, Dual Left Inverted+Right Output (deprecated)"},
    {0x08020013, 8, 1, true, "Bayer RGGB 8-bits, Dual Left Inverted+Right Inverted Output (deprecated)"},
    {0x08420014, 10, 2, true, "Bayer RGGB, 10-bits, Packed, Dual Left Inverted+Right Inverted Output (deprecated)"},
    {0x08420015, 12, 2, true, "Bayer RGGB, 12-bits, Packed, Dual Left Inverted+Right Inverted Output (deprecated)"},
    {0x00040001, 16, 2, false, "YUV 8-bits 4:2:2"},
    {0x00040002, 20, 4, false, "YUV 10-bits 4:2:2"},
    {0x00140002, 20, 4, false, "YUV 10-bits 4:2:2, Normalized"},
    {0x00240001, 16, 2, false, "YUV 8-bits 4:2:2, Interlaced"},
    {0x00240002, 20, 4, false, "YUV 10-bits 4:2:2, Interlaced"},
    {0x00340002, 20, 4, false, "YUV 10-bits 4:2:2, Normalized, Interlaced"},
    {0x00440003, 24, 3, false, "YUV 8-bits 4:4:4, Packed"},
    {0x00440005, 24, 3, false, "YCrCb 8-bits 4:4:4, Packed"},
    {0x00640003, 24, 3, false, "YUV 8-bits 4:4:4, Packed, Interlaced"},
    {0x00640005, 24, 3, false, "YCrCb 8-bits 4:4:4, Packed, Interlaced"},
};

TEST(Catalogue, HoldsEveryTypeWithItsNameAndSizes)
{
    ASSERT_EQ(std::size(kCatalogue), 121u);
    for (const CatalogueRow& row : kCatalogue) {
        SCOPED_TRACE(::testing::Message() << std::hex << row.id);
        ASSERT_TRUE(ZoPixelTypeFactory::HasPixelType(row.id));
        EXPECT_STREQ(ZoPixelTypeFactory::GetPixelTypeName(row.id), row.name);
        const ZoPixelType& type = ZoPixelTypeFactory::GetPixelType(row.id);
        EXPECT_EQ(type.GetTypeID(), row.id);
        EXPECT_EQ(type.GetPixelBitSize(), row.bits);
        EXPECT_EQ(type.GetPixelByteSize(), row.bytes);
        EXPECT_EQ(type.IsBayerPattern(), row.bayer);
    }
}

// Every type that any search by attributes can find, in search order. Types
// that the tests register carry bits 32-63, which the catalogue never uses,
// and are left out.
std::vector<std::int64_t> EverySearchableType()
{
    std::vector<std::int64_t> ids;
    for (std::uint32_t bits = 0; bits <= 64; ++bits)
        for (std::int64_t space : {0x10000, 0x20000, 0x40000})
            for (std::int64_t tap : {0x0, 0x1000000, 0x2000000, 0x4000000, 0x8000000, 0x10000000})
                for (int flags = 0; flags < 16; ++flags)
                    for (bool bayer : {false, true}) {
                        const bool n = flags & 1, p = flags & 2, i = flags & 4, pl = flags & 8;
                        const std::uint32_t count =
                            ZoPixelTypeFactory::CountPixelTypes(bits, space, n, p, i, pl, tap, bayer);
                        for (std::uint32_t k = 0; k < count; ++k) {
                            std::unique_ptr<ZoPixelType> t(
                                ZoPixelTypeFactory::CreatePixelType(bits, space, n, p, i, pl, tap, bayer, k));
                            if (t && (t->GetTypeID() >> 32) == 0)
                                ids.push_back(t->GetTypeID());
                        }
                    }
    return ids;
}

TEST(Catalogue, RegistersNothingElse)
{
    const std::vector<std::int64_t> found = EverySearchableType();
    std::set<std::int64_t> expected;
    for (const CatalogueRow& row : kCatalogue)
        expected.insert(row.id);
    EXPECT_EQ(found.size(), 121u);
    EXPECT_EQ(std::set<std::int64_t>(found.begin(), found.end()), expected);
    // The unflagged 4:4:4 IDs are deliberately not registered.
    EXPECT_FALSE(ZoPixelTypeFactory::HasPixelType(0x00040003));
    EXPECT_FALSE(ZoPixelTypeFactory::HasPixelType(0x00040005));
}

struct Search {
    std::uint32_t bits;
    std::int64_t space;
    bool normalized, packed, interlaced, planar;
    std::int64_t tap;
    bool bayer;
    std::vector<std::int64_t> ids;  // in the order the search numbers them
};

TEST(CatalogueSearch, FindsTypesInAscendingIdOrderWithAliasesAfterTheirCurrentTypes)
{
    const Search kSearches[] = {
        {8, 0x20000, false, false, false, false, 0, true, {0x00020010, 0x00020013}},
        {10, 0x20000, false, false, false, false, 0, true, {0x00020011, 0x00020014}},
        {10, 0x20000, true, false, true, false, 0, true, {0x00320011, 0x00320014}},
        {12, 0x20000, false, true, false, false, 0x1000000, true, {0x01420012, 0x01420015}},
        {8, 0x20000, false, false, false, false, 0x4000000, true, {0x04020010, 0x04020013}},
        {12, 0x20000, false, false, true, false, 0, true, {}},  // no interlaced 12-bit Bayer
        {8, 0x10000, false, false, false, false, 0x10000000, false, {0x10010001}},
        // The argument order is packed, then interlaced.
        {10, 0x10000, false, true, false, false, 0, false, {0x00410002}},
        {10, 0x10000, false, false, true, false, 0, false, {0x00210002}},
        {10, 0x10000, false, true, true, false, 0x8000000, false, {0x08610002}},
        // The Bayer property is compared separately.
        {8, 0x20000, false, false, false, false, 0, false, {0x0002000A, 0x0002000B}},
        {8, 0x20000, false, true, false, false, 0, false, {0x0042000A, 0x0042000B}},
        {24, 0x20000, false, false, false, false, 0, false, {0x00020002, 0x00020006}},
        {24, 0x20000, false, false, false, true, 0, false, {0x00820002}},
        {10, 0x20000, true, false, false, false, 0, false, {0x00120008, 0x00120009}},
        {24, 0x40000, false, true, false, false, 0, false, {0x00440003, 0x00440005}},
        {24, 0x40000, false, false, false, false, 0, false, {}},
        {20, 0x40000, true, false, true, false, 0, false, {0x00340002}},
        {16, 0x40000, false, false, false, false, 0, false, {0x00040001}},
        // The colour space is the masked value, the tap mode too.
        {8, 1, false, false, false, false, 0, false, {}},
        {8, 0x10000, false, false, false, false, 1, false, {}},
        {8, 0x10000, false, false, false, false, 0x3000000, false, {}},
    };
    for (const Search& s : kSearches) {
        SCOPED_TRACE(::testing::Message() << s.bits << " bits, space " << std::hex << s.space << ", tap "
                                          << s.tap << (s.bayer ? ", Bayer" : ""));
        EXPECT_EQ(ZoPixelTypeFactory::CountPixelTypes(s.bits, s.space, s.normalized, s.packed, s.interlaced,
                                                      s.planar, s.tap, s.bayer),
                  s.ids.size());
        for (std::uint32_t index = 0; index <= s.ids.size(); ++index) {
            std::unique_ptr<ZoPixelType> t(ZoPixelTypeFactory::CreatePixelType(
                s.bits, s.space, s.normalized, s.packed, s.interlaced, s.planar, s.tap, s.bayer, index));
            if (index == s.ids.size()) {
                EXPECT_EQ(t, nullptr) << "index equal to the count";
            } else {
                ASSERT_NE(t, nullptr) << index;
                EXPECT_EQ(t->GetTypeID(), s.ids[index]) << index;
                // A plain clone owned by the caller, not the registered object.
                EXPECT_NE(t.get(), &ZoPixelTypeFactory::GetPixelType(s.ids[index]));
                EXPECT_EQ(typeid(*t), typeid(ZoPixelType));
                EXPECT_EQ(t->IsBayerPattern(), s.bayer);
            }
        }
    }
}

}  // namespace
