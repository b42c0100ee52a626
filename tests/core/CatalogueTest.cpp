// The built-in catalogue: every type with its exact name and sizes, nothing
// else registered, the searches by attributes over it, and the golden table
// of registered converters.
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <typeinfo>
#include <vector>

#include "ZoBayerConverters.h"
#include "ZoGenericConverters.h"
#include "ZoImgLibExt.h"
#include "ZoPixelTypeFactory.h"
#include "core/PixelTypeId.h"
#include "support/BuiltInPairs.h"
#include "support/FamilyTables.h"

namespace {

struct CatalogueRow {
    std::int64_t id;
    std::uint16_t bits, bytes;
    bool bayer;
    std::string name;
};

// The catalogue as published (tests/data/catalogue.csv), group by group.
const std::vector<CatalogueRow>& Catalogue()
{
    static const std::vector<CatalogueRow> rows = [] {
        std::vector<CatalogueRow> v;
        for (const zotest::TableRow& r : zotest::ReadTable("catalogue.csv", 5))
            v.push_back({zotest::Number(r[0]), std::uint16_t(zotest::Number(r[1])), std::uint16_t(zotest::Number(r[2])),
                         r[3] == "1", r[4]});
        return v;
    }();
    return rows;
}

// Every type that any search by attributes can find, in search order. Each
// search numbers its types in ascending ID order (deprecated aliases have the
// higher IDs) up to its count, and hands out plain clones owned by the
// caller, each matching the search's attributes in the argument order. Types
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
                        std::int64_t last = -1;
                        for (std::uint32_t k = 0; k <= count; ++k) {
                            std::unique_ptr<ZoPixelType> t(
                                ZoPixelTypeFactory::CreatePixelType(bits, space, n, p, i, pl, tap, bayer, k));
                            if (k == count || !t) {
                                EXPECT_EQ(t == nullptr, k == count) << "index " << k << " of " << count;
                                continue;
                            }
                            const std::int64_t id = t->GetTypeID();
                            EXPECT_GT(id, last);
                            last = id;
                            EXPECT_TRUE(ZoPixelTypeMatches(*t, bits, space, n, p, i, pl, tap)) << id;
                            EXPECT_EQ(std::make_tuple(t->IsBayerPattern(), typeid(*t) == typeid(ZoPixelType)),
                                      std::make_tuple(bayer, true));
                            if ((id >> 32) == 0) {
                                EXPECT_NE(t.get(), &ZoPixelTypeFactory::GetPixelType(id));
                                ids.push_back(id);
                            }
                        }
                    }
    return ids;
}

TEST(Catalogue, HoldsEveryTypeWithItsNameAndSizesAndNothingElse)
{
    ASSERT_EQ(Catalogue().size(), 121u);
    std::set<std::int64_t> expected;
    for (const CatalogueRow& row : Catalogue()) {
        SCOPED_TRACE(::testing::Message() << std::hex << row.id);
        ASSERT_TRUE(ZoPixelTypeFactory::HasPixelType(row.id));
        EXPECT_EQ(ZoPixelTypeFactory::GetPixelTypeName(row.id), row.name);
        const ZoPixelType& t = ZoPixelTypeFactory::GetPixelType(row.id);
        EXPECT_EQ(std::make_tuple(t.GetTypeID(), t.GetPixelBitSize(), t.GetPixelByteSize(), t.IsBayerPattern()),
                  std::make_tuple(row.id, row.bits, row.bytes, row.bayer));
        expected.insert(row.id);
    }
    const std::vector<std::int64_t> found = EverySearchableType();
    EXPECT_EQ(found.size(), 121u);
    EXPECT_EQ(std::set<std::int64_t>(found.begin(), found.end()), expected);
    // The unflagged 4:4:4 IDs are deliberately not registered.
    EXPECT_FALSE(ZoPixelTypeFactory::HasPixelType(0x00040003) || ZoPixelTypeFactory::HasPixelType(0x00040005));
}

TEST(CatalogueSearch, TheColourSpaceAndTheTapModeAreMaskedValues)
{
    // (Every search of valid attributes: HoldsEveryTypeWithItsNameAndSizesAndNothingElse.)
    EXPECT_EQ(ZoPixelTypeFactory::CountPixelTypes(8, 1, false, false, false, false, 0, false), 0u);
    EXPECT_EQ(ZoPixelTypeFactory::CountPixelTypes(8, 0x10000, false, false, false, false, 1, false), 0u);
    EXPECT_EQ(ZoPixelTypeFactory::CountPixelTypes(8, 0x10000, false, false, false, false, 0x3000000, false), 0u);
}

// The golden registry table that the family tests read their instances
// from: every registered pair exactly once, of the tabled class, with its
// sizes and, where the class shows it, its default Bayer pattern.
TEST(Catalogue, RegistryTableHoldsEveryRegisteredPairOnce)
{
    const auto& table = zotest::RegistryTable();
    const auto pairs = zotest::RegisteredBuiltInPairs();
    ASSERT_EQ(table.size(), 680u);
    ASSERT_EQ(pairs.size(), 680u);
    for (std::size_t i = 0; i < table.size(); ++i) {
        const zotest::RegistryRow& row = table[i];
        SCOPED_TRACE(::testing::Message() << std::hex << row.source << " -> " << row.destination);
        ASSERT_EQ(pairs[i], std::make_pair(row.source, row.destination));  // same order: each pair once
        const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(row.source, row.destination);
        // The flat interface names the exact class, once (a cached string),
        // and gives a chain's two stages.
        const char* name = ZoPixelConverter_GetClassName(&c);
        EXPECT_EQ(name, row.className);
        EXPECT_EQ(typeid(c).name(), std::to_string(row.className.size()) + row.className);
        EXPECT_EQ(ZoPixelConverter_GetClassName(&c), name);
        const auto* chain = dynamic_cast<const ZoComplexConverter*>(&c);
        EXPECT_EQ(ZoPixelConverter_GetChainStage(&c, 0), chain ? chain->GetFirst() : nullptr);
        EXPECT_EQ(ZoPixelConverter_GetChainStage(&c, 1), chain ? chain->GetSecond() : nullptr);
        EXPECT_EQ(ZoPixelConverter_GetChainStage(&c, 2), nullptr);
        EXPECT_EQ(std::make_pair(c.GetSourceByteSize(), c.GetDestinationByteSize()),
                  std::make_pair(row.sourceBytes, row.destinationBytes));
        if (const auto* b8 = dynamic_cast<const ZoBayerRGB8ToRGB*>(&c)) {
            EXPECT_EQ(b8->GetDefaultPattern(), row.Param("pattern"));
        }
        if (const auto* b16 = dynamic_cast<const ZoBayerRGB16ToRGB*>(&c)) {
            EXPECT_EQ(b16->GetDefaultPattern(), row.Param("pattern"));
        }
    }
    EXPECT_EQ(ZoPixelConverter_GetClassName(nullptr), nullptr);
    EXPECT_EQ(ZoPixelConverter_GetChainStage(nullptr, 0), nullptr);
}

}  // namespace
