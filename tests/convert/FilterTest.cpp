// The RGB lookup filter: construction, multipliers, setters, sharing, flat
// functions.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "ZoImgLibC.h"
#include "ZoRGBFilter.h"

namespace {

// Reference value of one entry under SetMultipliers: i * m + offset,
// clamped to the last entry, truncated, low 16 bits.
std::uint16_t ReferenceEntry(std::uint32_t i, double m, std::uint16_t offset, std::uint32_t count)
{
    double v = static_cast<double>(i) * m + offset;
    if (v > count - 1.0)
        v = count - 1.0;
    return static_cast<std::uint16_t>(static_cast<std::uint64_t>(std::trunc(v)) & 0xFFFF);
}

std::uint8_t Clamp8(std::uint16_t v) { return v > 255 ? 255 : static_cast<std::uint8_t>(v); }

// Whole-table checks written as plain scans, independent of the filter's
// own bookkeeping.
bool ScanIdentity8(const ZoRGBFilter& f)
{
    for (std::uint32_t i = 0; i < 256; ++i)
        if (f.RedTable8()[i] != i || f.GreenTable8()[i] != i || f.BlueTable8()[i] != i)
            return false;
    return true;
}

bool ScanIdentity16(const ZoRGBFilter& f)
{
    for (std::uint32_t i = 0; i < 65536; ++i)
        if (f.RedTable16()[i] != i || f.GreenTable16()[i] != i || f.BlueTable16()[i] != i)
            return false;
    return true;
}

// Every entry of one channel; with `tail`, also the entries past the entry
// count (any 16-bit sample may index the tables), which hold the last one.
void ExpectChannel(const ZoRGBFilter& f, const std::uint8_t* t8, const std::uint16_t* t16, double m,
                   std::uint16_t offset, bool tail = false)
{
    const std::uint32_t count = f.GetEntryCount();
    for (std::uint32_t i = 0; i < (tail ? 65536 : count); ++i) {
        const std::uint16_t e = ReferenceEntry(i < count ? i : count - 1, m, offset, count);
        ASSERT_EQ(t16[i], e) << "entry " << i;
        if (i < 256) {
            ASSERT_EQ(t8[i], Clamp8(e)) << "entry " << i;
        }
    }
}

}  // namespace

TEST(RGBFilter, NewFiltersAreIdentitiesAndMultipliersTruncateAndClamp)
{
    const struct {
        std::uint32_t bits;
        double red, green, blue;  // 0 for all three: a new filter, not set
        std::uint16_t redOffset, greenOffset, blueOffset;
    } cases[] = {
        {0, 0, 0, 0, 0, 0, 0}, {4, 0, 0, 0, 0, 0, 0}, {8, 0, 0, 0, 0, 0, 0}, {10, 0, 0, 0, 0, 0, 0},
        {16, 0, 0, 0, 0, 0, 0},
        {8, 2.0, 1.0, 1.0, 0, 0, 0},
        {8, 1.5, 0.5, 0.29, 0, 0, 0},  // 100 * 0.29 is 28.999999999999996: truncated to 28
        {8, 0.0, 1.0, 3.7, 0, 7, 300},
        {16, 1.0, 1.0, 1.0, 10, 0, 0},
        {16, 0.1, 1.3, 65535.0, 0, 65535, 1},
        {12, 0.999, 2.0, 1.0, 0, 0, 4095},
        {4, 1.0, 0.5, 100.0, 3, 0, 0},
    };
    for (const auto& tc : cases) {
        SCOPED_TRACE(testing::Message() << tc.bits << " bits, " << tc.red << "/" << tc.green << "/" << tc.blue);
        ZoRGBFilter f(tc.bits);
        const bool fresh = tc.red + tc.green + tc.blue == 0;
        EXPECT_EQ(f.GetBitSize(), tc.bits);
        EXPECT_EQ(f.GetEntryCount(), 1u << tc.bits);
        if (!fresh) {
            ASSERT_EQ(f.SetMultipliers(tc.red, tc.green, tc.blue, tc.redOffset, tc.greenOffset, tc.blueOffset),
                      ZO_OK);
        }
        // A new filter's tables go on past the entry count (any 16-bit
        // sample may index them) with the last entry.
        ExpectChannel(f, f.RedTable8(), f.RedTable16(), fresh ? 1.0 : tc.red, tc.redOffset, fresh);
        ExpectChannel(f, f.GreenTable8(), f.GreenTable16(), fresh ? 1.0 : tc.green, tc.greenOffset, fresh);
        ExpectChannel(f, f.BlueTable8(), f.BlueTable16(), fresh ? 1.0 : tc.blue, tc.blueOffset, fresh);
        // An 8-bit filter is no 16-bit identity: entries 256.. read 255.
        EXPECT_EQ(f.IsIdentity8(), ScanIdentity8(f));
        EXPECT_EQ(f.IsIdentity16(), ScanIdentity16(f));
    }
    ZoRGBFilter f16(16);
    EXPECT_EQ(f16.GetRedValue8(300), 44);  // only the low 8 bits of the index
    EXPECT_EQ(f16.GetBlueValue16(65535), 65535);
}

TEST(RGBFilter, BadMultipliersChangeNothingAndAnInfiniteGainKeepsTheOffsetInEntryZero)
{
    ZoRGBFilter f(8);
    f.SetMultipliers(1.5, 0.5, 2.0, 1, 2, 3);
    const std::vector<std::uint8_t> before(f.RedTable8(), f.RedTable8() + 256);
    const std::vector<std::uint16_t> blueBefore(f.BlueTable16(), f.BlueTable16() + 256);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double bad[][3] = {{-0.5, 1, 1}, {1, -1e-300, 1}, {1, 1, -2}, {nan, 1, 1}, {1, 1, nan}};
    for (const auto& m : bad) {
        EXPECT_EQ(f.SetMultipliers(m[0], m[1], m[2]), ZO_ERR_BAD_ARGUMENT);
        EXPECT_EQ(std::vector<std::uint8_t>(f.RedTable8(), f.RedTable8() + 256), before);
        EXPECT_EQ(std::vector<std::uint16_t>(f.BlueTable16(), f.BlueTable16() + 256), blueBefore);
    }
    EXPECT_EQ(f.SetMultipliers(-0.0, 0.0, 0.0), ZO_OK);  // negative zero is not below zero

    ZoRGBFilter f16(16);
    f16.SetMultipliers(std::numeric_limits<double>::infinity(), 1.0, 1.0, 5, 0, 0);
    EXPECT_EQ(f16.GetRedValue16(0), 5);
    EXPECT_EQ(f16.GetRedValue16(1), 65535);
}

TEST(RGBFilter, SettersCheckIndexAndValue)
{
    ZoRGBFilter f8(8), f16(16);
    EXPECT_EQ(f8.SetRedValue(256, 5), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(f8.SetGreenValue(5, 256), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(f8.GetGreenValue8(5), 5);
    EXPECT_EQ(f8.SetBlueValue(255, 0), ZO_OK);
    EXPECT_EQ(f8.GetBlueValue8(255), 0);
    EXPECT_EQ(f8.GetBlueValue16(255), 0);

    EXPECT_EQ(f16.SetRedValue(5, 300), ZO_OK);
    EXPECT_EQ(f16.GetRedValue16(5), 300);
    EXPECT_EQ(f16.GetRedValue8(5), 255);
    EXPECT_EQ(f16.SetRedValue(65536, 1), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(f16.SetGreenValue(1000, 65535), ZO_OK);
    EXPECT_EQ(f16.GetGreenValue16(1000), 65535);
    EXPECT_EQ(f16.GetGreenValue8(1000), 232);  // the 8-bit table was not touched (1000 >= 256)
}

TEST(RGBFilter, IdentityFlagsStayExactThroughSetters)
{
    // Random edits of both filters, compared after each with a full scan of
    // the tables.
    std::mt19937 rng(1234);
    for (std::uint32_t bits : {8u, 16u}) {
        ZoRGBFilter f(bits);
        std::uniform_int_distribution<std::uint32_t> index(0, bits == 8 ? 300 : 70000);
        for (int step = 0; step < 400; ++step) {
            // Half the time an index inside the 8-bit table.
            const std::uint32_t i = (rng() & 1) ? rng() % 300 : index(rng);
            // Half the time put the identity back, else a value near it.
            const std::uint32_t v = (rng() & 1) ? i : i + (rng() % 3) - 1;
            const std::uint16_t value = static_cast<std::uint16_t>(v > 65535 ? 65535 : v);
            switch (rng() % 3) {
            case 0: f.SetRedValue(i, value); break;
            case 1: f.SetGreenValue(i, value); break;
            default: f.SetBlueValue(i, value); break;
            }
            ASSERT_EQ(f.IsIdentity8(), ScanIdentity8(f)) << bits << " bits, step " << step;
            if (step % 20 == 0) {
                ASSERT_EQ(f.IsIdentity16(), ScanIdentity16(f)) << bits << " bits, step " << step;
            }
        }
        ASSERT_EQ(f.IsIdentity16(), ScanIdentity16(f));
        // Back to the identity by multipliers.
        f.SetMultipliers(1.0, 1.0, 1.0);
        EXPECT_TRUE(f.IsIdentity8());
        EXPECT_EQ(f.IsIdentity16(), bits == 16);
    }
}

TEST(RGBFilter, SetMultipliersGoesThroughTheVirtualSetters)
{
    struct Recording : ZoRGBFilter {
        Recording() : ZoRGBFilter(4) { calls.clear(); }
        std::uint32_t Record(char c, std::uint32_t r) { return calls.push_back(c), r; }
        std::uint32_t SetRedValue(std::uint32_t i, std::uint16_t v) override
        {
            return Record('r', ZoRGBFilter::SetRedValue(i, v));
        }
        std::uint32_t SetGreenValue(std::uint32_t i, std::uint16_t v) override
        {
            return Record('g', ZoRGBFilter::SetGreenValue(i, v));
        }
        std::uint32_t SetBlueValue(std::uint32_t i, std::uint16_t v) override
        {
            return Record('b', ZoRGBFilter::SetBlueValue(i, v));
        }
        std::string calls;
    } f;
    f.SetMultipliers(2.0, 1.0, 0.5);
    std::string expected;
    for (int i = 0; i < 16; ++i)
        expected += "rgb";
    EXPECT_EQ(f.calls, expected);
    EXPECT_EQ(f.GetRedValue16(7), 14);
    EXPECT_EQ(f.GetRedValue16(8), 15);
}

TEST(RGBFilter, CopiesShareTheirTablesAndMayOutliveTheOriginal)
{
    ZoRGBFilter* a = new ZoRGBFilter(8);
    ZoRGBFilter b(*a);
    EXPECT_EQ(b.SetRedValue(10, 99), ZO_OK);
    EXPECT_EQ(a->GetRedValue8(10), 99);
    EXPECT_FALSE(a->IsIdentity8());
    ZoRGBFilter c(16);
    c = *a;
    c = c;  // self-assignment keeps the tables alive
    a->SetMultipliers(1.0, 2.0, 1.0);
    EXPECT_EQ(c.GetBitSize(), 8u);
    EXPECT_EQ(c.GetGreenValue8(50), 100);
    delete a;
    EXPECT_EQ(b.GetGreenValue8(50), 100);
    EXPECT_EQ(c.SetBlueValue(7, 70), ZO_OK);
    EXPECT_EQ(b.GetBlueValue8(7), 70);
    EXPECT_EQ(b.RedTable16(), c.RedTable16());
}

TEST(RGBFilter, FlatFunctions)
{
    ZoRGBFilter* f = ZoRGBFilter_Init(8);
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(ZoRGBFilter_GetBitSize(f), 8u);
    EXPECT_EQ(ZoRGBFilter_GetEntryCount(f), 256u);
    EXPECT_EQ(ZoRGBFilter_SetMultipliers(f, 2.0, 1.0, 0.5, 0, 1, 0), ZO_OK);
    EXPECT_EQ(ZoRGBFilter_GetRedValue8(f, 100), 200);
    EXPECT_EQ(ZoRGBFilter_GetGreenValue8(f, 356), 101);
    EXPECT_EQ(ZoRGBFilter_GetBlueValue16(f, 9), 4);
    EXPECT_EQ(ZoRGBFilter_SetMultipliers(f, -1.0, 1.0, 1.0, 0, 0, 0), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoRGBFilter_SetRedValue(f, 3, 4), ZO_OK);
    EXPECT_EQ(ZoRGBFilter_GetRedValue16(f, 3), 4);
    EXPECT_EQ(ZoRGBFilter_SetGreenValue(f, 256, 4), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoRGBFilter_SetBlueValue(f, 1, 1), ZO_OK);
    EXPECT_EQ(ZoRGBFilter_GetGreenValue16(f, 255), 255);
    ZoRGBFilter_Destroy(f);

    // An entry count that does not fit in 32 bits gives no filter.
    EXPECT_EQ(ZoRGBFilter_Init(32), nullptr);
    EXPECT_EQ(ZoRGBFilter_Init(1000), nullptr);

    ZoRGBFilter_Destroy(nullptr);
    EXPECT_EQ(ZoRGBFilter_GetBitSize(nullptr), 0u);
    EXPECT_EQ(ZoRGBFilter_GetEntryCount(nullptr), 0u);
    for (auto get8 : {ZoRGBFilter_GetRedValue8, ZoRGBFilter_GetGreenValue8, ZoRGBFilter_GetBlueValue8})
        EXPECT_EQ(get8(nullptr, 1), 0);
    for (auto get16 : {ZoRGBFilter_GetRedValue16, ZoRGBFilter_GetGreenValue16, ZoRGBFilter_GetBlueValue16})
        EXPECT_EQ(get16(nullptr, 1), 0);
    for (auto set : {ZoRGBFilter_SetRedValue, ZoRGBFilter_SetGreenValue, ZoRGBFilter_SetBlueValue})
        EXPECT_EQ(set(nullptr, 1, 1), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoRGBFilter_SetMultipliers(nullptr, 1, 1, 1, 0, 0, 0), ZO_ERR_BAD_ARGUMENT);
}
