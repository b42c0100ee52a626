// The RGB lookup filter: construction, multipliers, setters, sharing, flat
// functions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "ZoImgLibC.h"
#include "ZoRGBFilter.h"

namespace {

// Whole-table identity checks written as plain scans, independent of the
// filter's own bookkeeping.
bool ScanIdentity(const ZoRGBFilter& f, std::uint32_t entries)
{
    for (std::uint32_t i = 0; i < entries; ++i) {
        const bool eight = entries == 256;
        if ((eight ? f.RedTable8()[i] : f.RedTable16()[i]) != i ||
            (eight ? f.GreenTable8()[i] : f.GreenTable16()[i]) != i ||
            (eight ? f.BlueTable8()[i] : f.BlueTable16()[i]) != i)
            return false;
    }
    return true;
}

}  // namespace

TEST(RGBFilter, NewFiltersAreIdentitiesAndMultipliersTruncateAndClamp)
{
    const struct {
        std::uint32_t bits;
        double m[3];  // all 0: a new filter, not set
        std::uint16_t offset[3];
    } cases[] = {
        {0, {0, 0, 0}, {0, 0, 0}},         {4, {0, 0, 0}, {0, 0, 0}},         {8, {0, 0, 0}, {0, 0, 0}},
        {10, {0, 0, 0}, {0, 0, 0}},        {16, {0, 0, 0}, {0, 0, 0}},        {8, {2.0, 1.0, 1.0}, {0, 0, 0}},
        {8, {1.5, 0.5, 0.29}, {0, 0, 0}},  // 100 * 0.29 is 28.999999999999996: truncated to 28
        {8, {0.0, 1.0, 3.7}, {0, 7, 300}}, {16, {1.0, 1.0, 1.0}, {10, 0, 0}}, {16, {0.1, 1.3, 65535.0}, {0, 65535, 1}},
        {12, {0.999, 2.0, 1.0}, {0, 0, 4095}}, {4, {1.0, 0.5, 100.0}, {3, 0, 0}},
        {16, {HUGE_VAL, 1.0, 1.0}, {5, 0, 0}},  // an infinite gain keeps the offset in entry 0
    };
    for (const auto& tc : cases) {
        SCOPED_TRACE(testing::Message() << tc.bits << " bits, " << tc.m[0] << "/" << tc.m[1] << "/" << tc.m[2]);
        ZoRGBFilter f(tc.bits);
        const bool fresh = tc.m[0] + tc.m[1] + tc.m[2] == 0;
        const std::uint32_t count = 1u << tc.bits;
        EXPECT_EQ(f.GetBitSize(), tc.bits);
        ASSERT_EQ(f.GetEntryCount(), count);
        if (!fresh) {
            ASSERT_EQ(f.SetMultipliers(tc.m[0], tc.m[1], tc.m[2], tc.offset[0], tc.offset[1], tc.offset[2]), ZO_OK);
        }
        const std::uint8_t* t8[] = {f.RedTable8(), f.GreenTable8(), f.BlueTable8()};
        const std::uint16_t* t16[] = {f.RedTable16(), f.GreenTable16(), f.BlueTable16()};
        for (int ch = 0; ch < 3; ++ch)
            // Entry i is i * m + offset (entry 0: the offset), clamped to the
            // last entry, truncated, low 16 bits; the 8-bit table clamps that
            // to 255. A new filter's tables go on past the entry count (any
            // 16-bit sample may index them) with the last entry.
            for (std::uint32_t i = 0; i < (fresh ? 65536 : count); ++i) {
                const double gain = i == 0 ? 0.0 : std::fmin(i, count - 1.0) * (fresh ? 1.0 : tc.m[ch]);
                const double v = std::trunc(std::fmin(gain + tc.offset[ch], count - 1.0));
                const std::uint16_t e = static_cast<std::uint16_t>(static_cast<std::uint64_t>(v) & 0xFFFF);
                ASSERT_EQ(t16[ch][i], e) << "channel " << ch << " entry " << i;
                if (i < 256) {
                    ASSERT_EQ(t8[ch][i], e > 255 ? 255 : e) << "channel " << ch << " entry " << i;
                }
            }
        // An 8-bit filter is no 16-bit identity: entries 256.. read 255.
        EXPECT_EQ(f.IsIdentity8(), ScanIdentity(f, 256));
        EXPECT_EQ(f.IsIdentity16(), ScanIdentity(f, 65536));
    }
    ZoRGBFilter f16(16);
    EXPECT_EQ(f16.GetRedValue8(300), 44);  // only the low 8 bits of the index
    EXPECT_EQ(f16.GetBlueValue16(65535), 65535);
}

TEST(RGBFilter, BadMultipliersChangeNothing)
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
}

TEST(RGBFilter, SettersCheckIndexAndValueAndKeepTheIdentityFlagsExact)
{
    ZoRGBFilter f8(8), f16(16);
    const std::uint32_t bad = ZO_ERR_BAD_ARGUMENT;
    EXPECT_EQ((std::vector<std::uint32_t>{f8.SetRedValue(256, 5), f8.SetGreenValue(5, 256), f8.SetBlueValue(255, 0),
                                          f16.SetRedValue(5, 300), f16.SetRedValue(65536, 1),
                                          f16.SetGreenValue(1000, 65535)}),
              (std::vector<std::uint32_t>{bad, bad, ZO_OK, ZO_OK, bad, ZO_OK}));
    // The 8-bit table clamps at 255 and is indexed by the low 8 bits: 1000 reads entry 232, untouched.
    EXPECT_EQ(std::make_tuple(f8.GetGreenValue8(5), f8.GetBlueValue8(255) | f8.GetBlueValue16(255),
                              f16.GetRedValue16(5), f16.GetRedValue8(5), f16.GetGreenValue16(1000),
                              f16.GetGreenValue8(1000)),
              std::make_tuple(5, 0, 300, 255, 65535, 232));

    // Random edits, half the time inside the 8-bit table, half the time
    // putting the identity back: the flags against a full scan.
    std::mt19937 rng(1234);
    for (std::uint32_t bits : {8u, 16u}) {
        ZoRGBFilter f(bits);
        for (int step = 0; step < 400; ++step) {
            const std::uint32_t i = (rng() & 1) ? rng() % 300 : rng() % (bits == 8 ? 301 : 70001);
            const std::uint32_t v = std::min<std::uint32_t>((rng() & 1) ? i : i + (rng() % 3) - 1, 65535);
            (f.*(rng() % 3 == 0 ? &ZoRGBFilter::SetRedValue : rng() % 2 ? &ZoRGBFilter::SetGreenValue
                                                                          : &ZoRGBFilter::SetBlueValue))(
                i, static_cast<std::uint16_t>(v));
            ASSERT_EQ(f.IsIdentity8(), ScanIdentity(f, 256)) << bits << " bits, step " << step;
            if (step % 20 == 0 || step == 399) {
                ASSERT_EQ(f.IsIdentity16(), ScanIdentity(f, 65536)) << bits << " bits, step " << step;
            }
        }
        // Back to the identity by multipliers.
        f.SetMultipliers(1.0, 1.0, 1.0);
        EXPECT_TRUE(f.IsIdentity8());
        EXPECT_EQ(f.IsIdentity16(), bits == 16);
    }
}

TEST(RGBFilter, SetMultipliersGoesThroughTheVirtualSetters)
{
#define ZO_RECORDED(Set, letter) \
    std::uint32_t Set(std::uint32_t i, std::uint16_t v) override { return Record(letter, ZoRGBFilter::Set(i, v)); }
    struct Recording : ZoRGBFilter {
        Recording() : ZoRGBFilter(4) { calls.clear(); }
        std::uint32_t Record(char c, std::uint32_t r) { return calls.push_back(c), r; }
        ZO_RECORDED(SetRedValue, 'r')
        ZO_RECORDED(SetGreenValue, 'g')
        ZO_RECORDED(SetBlueValue, 'b')
        std::string calls;
    } f;
#undef ZO_RECORDED
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
    // Braces: the calls are made in this order.
    EXPECT_EQ((std::vector<std::uint32_t>{ZoRGBFilter_SetMultipliers(f, 2.0, 1.0, 0.5, 0, 1, 0),
                                          ZoRGBFilter_SetMultipliers(f, -1.0, 1.0, 1.0, 0, 0, 0),
                                          ZoRGBFilter_SetRedValue(f, 3, 4), ZoRGBFilter_SetGreenValue(f, 256, 4),
                                          ZoRGBFilter_SetBlueValue(f, 1, 1)}),
              (std::vector<std::uint32_t>{ZO_OK, ZO_ERR_BAD_ARGUMENT, ZO_OK, ZO_ERR_BAD_ARGUMENT, ZO_OK}));
    EXPECT_EQ(std::make_tuple(ZoRGBFilter_GetBitSize(f), ZoRGBFilter_GetRedValue8(f, 100),
                              ZoRGBFilter_GetGreenValue8(f, 356), ZoRGBFilter_GetBlueValue16(f, 9),
                              ZoRGBFilter_GetRedValue16(f, 3), ZoRGBFilter_GetGreenValue16(f, 255),
                              ZoRGBFilter_GetBlueValue8(f, 1)),
              std::make_tuple(8u, 200, 101, 4, 4, 255, 1));
    ZoRGBFilter_Destroy(f);
    // An entry count that does not fit in 32 bits gives no filter.
    EXPECT_EQ(ZoRGBFilter_Init(32), nullptr);
    EXPECT_EQ(ZoRGBFilter_Init(1000), nullptr);

    // Null handles (bit size, entry count, multipliers: CApiTest.c).
    for (auto get8 : {ZoRGBFilter_GetRedValue8, ZoRGBFilter_GetGreenValue8, ZoRGBFilter_GetBlueValue8})
        EXPECT_EQ(get8(nullptr, 1), 0);
    for (auto get16 : {ZoRGBFilter_GetRedValue16, ZoRGBFilter_GetGreenValue16, ZoRGBFilter_GetBlueValue16})
        EXPECT_EQ(get16(nullptr, 1), 0);
    for (auto set : {ZoRGBFilter_SetRedValue, ZoRGBFilter_SetGreenValue, ZoRGBFilter_SetBlueValue})
        EXPECT_EQ(set(nullptr, 1, 1), ZO_ERR_BAD_ARGUMENT);
}
