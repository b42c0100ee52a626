// Filtered conversions at every CPU level: the table passes (lookups and
// the arithmetic forms of multiplier tables) against plain lookups, and
// every conversion into a 24-, 32- or 48-bit layout against its own result
// at the scalar level (whose filtered kernels look every channel up one by
// one; the Bayer tests hold the host level's bytes to the reference
// demosaicer, through random tables too). Filters hold
// random per-entry tables (16-bit entries up to 65535 and indices from full
// 16-bit samples), multiplier tables, and multiplier tables with one entry
// written afterwards; destinations start poisoned and are compared whole,
// slack included.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "ZoImgLib.h"
#include "bayer/BayerReference.h"
#include "simd/Cpu.h"
#include "simd/Lut.h"
#include "simd/LutForm.h"
#include "support/AreaSupport.h"
#include "support/CpuLevels.h"

namespace {

using zo::simd::CpuLevel;

// Runs body(level) at every level the host has, the ceiling restored after.
template <class Body>
void AtEveryLevel(Body body)
{
    for (CpuLevel level : zotest::HostCpuLevels()) {
        const zotest::CpuCeilingScope ceiling(level);
        SCOPED_TRACE(zo::simd::CpuLevelName(level));
        body(level);
        if (::testing::Test::HasFatalFailure())
            return;
    }
}

// A filtered area conversion's bytes at the scalar level.
template <class Convert>
std::vector<std::uint8_t> AtScalarLevel(Convert convert)
{
    const zotest::CpuCeilingScope ceiling(CpuLevel::kScalar);
    return convert();
}

// Table sets, each channel one of three random tables (0, 1, 2) or the
// identity (3): three random tables; green the identity (usual white
// balance); first and last equal in content at different addresses; all the
// identity; all one table.
std::vector<std::uint8_t> TableSet(unsigned shape, std::mt19937& rng)
{
    static const unsigned kShapes[5][3] = {{0, 1, 2}, {0, 3, 2}, {0, 1, 0}, {3, 3, 3}, {0, 0, 0}};
    const std::vector<std::uint8_t> random = zotest::RandomBytes(3 * 256, rng);
    std::vector<std::uint8_t> t(3 * 256);
    for (unsigned i = 0; i < 3 * 256; ++i)
        t[i] = kShapes[shape][i / 256] == 3 ? i % 256 : random[256 * kShapes[shape][i / 256] + i % 256];
    return t;
}

// Every instruction set's paths this host runs.
std::vector<const zo::simd::LutPaths*> HostLutPaths()
{
    std::vector<const zo::simd::LutPaths*> paths{&zo::simd::ScalarLutPaths(), zo::simd::Sse2LutPaths(),
                                                 zo::simd::Avx2LutPaths(), zo::simd::Avx512LutPaths()};
    paths.erase(std::remove(paths.begin(), paths.end(), nullptr), paths.end());
    return paths;
}

TEST(LutPasses, EveryPassMatchesPlainLookupsAndTouchesNothingElse)
{
    std::mt19937 rng(5);
    constexpr std::size_t kGuard = 70;
    for (unsigned shape = 0; shape < 5; ++shape) {
        const std::vector<std::uint8_t> tables = TableSet(shape, rng);
        const zo::simd::LutTables8 t{tables.data(), tables.data() + 256, tables.data() + 512};
        for (const zo::simd::LutPaths* p : HostLutPaths())
            for (unsigned pixelBytes : {3u, 4u})
                for (std::uint32_t count : {0u, 1u, 2u, 3u, 5u, 15u, 16u, 17u, 21u, 22u, 63u, 64u, 65u, 85u, 191u,
                                            192u, 193u, 1000u}) {
                    const std::size_t bytes = std::size_t(count) * pixelBytes;
                    std::vector<std::uint8_t> line = zotest::RandomBytes(bytes + 2 * kGuard, rng);
                    std::vector<std::uint8_t> expected = line;
                    for (std::size_t i = 0; i < bytes; ++i)
                        if (i % pixelBytes < 3)
                            expected[kGuard + i] = tables[256 * (i % pixelBytes) + line[kGuard + i]];
                    (pixelBytes == 3 ? p->bytes3 : p->bytes4)(line.data() + kGuard, count, t);
                    ASSERT_TRUE(line == expected)
                        << p->name << ", table set " << shape << ", " << pixelBytes << "-byte pixels, count " << count;
                }
    }
}

// One filtered area conversion into a poisoned buffer with slack.
std::vector<std::uint8_t> ConvertFiltered(const ZoPixelConverter& conv, const ZoRGBFilter& filter,
                                          const std::vector<std::uint8_t>& source, std::uint32_t width,
                                          std::uint32_t height, std::uint32_t flags)
{
    constexpr std::size_t kSlack = 64;
    std::vector<std::uint8_t> out(std::size_t(conv.GetDestinationByteSize(width)) * (height + 1) + kSlack, zotest::kPoison);
    EXPECT_EQ(conv.Convert(filter, source.data(), width, height, out.data(), width, height, width, height, flags, 0),
              ZO_OK);
    return out;
}

// Multiplier filters, and what the arithmetic passes must make of them:
// `form8` whether the 8-bit tables have a form, `form16` which form the
// 16-bit ones take. Multipliers just below a short fraction (1.4, 0.7, 2.3)
// give tables whose products the filter rounded up to an integer: corrected
// forms, or exact ones (offset, entries beyond 32767, or not fast). An entry
// written after SetMultipliers (edit: its index; 0 none) breaks every form,
// the last one a filter below 16 bits lets set too.
struct MultiplierCase {
    std::uint32_t bits;
    double red, green, blue;
    std::uint16_t redOffset, blueOffset;
    std::uint32_t edit;
    bool form8;
    enum { kNone, kFixed, kCorrected, kExact } form16;
};
const MultiplierCase kMultiplierCases[] = {
    {12, 1.8, 1.0, 1.6, 0, 0, false, true, MultiplierCase::kFixed},
    {16, 1.8, 1.0, 1.6, 0, 0, false, true, MultiplierCase::kFixed},
    {12, 0.9, 1.0, 2.1, 0, 0, false, true, MultiplierCase::kFixed},   // below 1: entries past the count
    {10, 0.55, 0.93, 1.2731, 3, 17, false, true, MultiplierCase::kFixed},
    {16, 1.4737219, 1.0, 2.018331, 0, 0, false, true, MultiplierCase::kFixed},  // two-multiply fraction
    {16, 1.8, 1.0, 1.4, 0, 0, false, true, MultiplierCase::kExact},  // 1.4 * 45 rounds up to 63
    {12, 3.0, 0.0, 1.0, 5, 4000, false, true, MultiplierCase::kFixed},  // a channel 0 after entry 0
    {8, 1.8, 1.0, 1.6, 0, 0, 100, false, MultiplierCase::kNone},
    {16, 1.8, 1.0, 1.6, 0, 0, 100, false, MultiplierCase::kNone},
    {12, 1.8, 1.0, 1.6, 0, 0, 4095, true, MultiplierCase::kNone},
    {10, 1.8, 1.0, 1.4, 0, 0, 1023, true, MultiplierCase::kNone},
    {12, 1.8, 1.0, 1.4, 0, 0, false, true, MultiplierCase::kCorrected},  // the benchmark's gains
    {12, 0.7, 1.0, 2.3, 0, 0, false, true, MultiplierCase::kExact},
    {12, 1.2, 1.9, 1.4, 0, 7, false, false, MultiplierCase::kExact},  // offset on a lifted table
    {8, HUGE_VAL, 0.0, 1.0, 9, 0, false, true, MultiplierCase::kFixed},  // entry 0, then the last entry
    {4, 1.8, 1.0, 0.5, 0, 2, false, true, MultiplierCase::kFixed},       // 16 entries: bytes past them clamp
    {20, 1.8, 1.0, 1.6, 0, 0, false, true, MultiplierCase::kNone},       // 16-bit entries wrap past 65535
};

std::unique_ptr<ZoRGBFilter> MakeFilter(const MultiplierCase& c)
{
    auto f = std::make_unique<ZoRGBFilter>(c.bits);
    EXPECT_EQ(f->SetMultipliers(c.red, c.green, c.blue, c.redOffset, 0, c.blueOffset), ZO_OK);
    EXPECT_TRUE(!c.edit || f->SetBlueValue(c.edit, 3) == ZO_OK);
    return f;
}

// Multiplier tables: the 8-bit plans, run by every arithmetic pass over
// random lines, give the lookups' bytes; the 16-bit plan of a conversion,
// checked at every index or up to the filter's entry count, is made where
// the level has the pass and equals the lookups on random RGB48 lines and on
// one holding every 16-bit value. Tables without a form get no plan.
TEST(LutPasses, MultiplierTablePlansMatchLookups)
{
    std::mt19937 rng(21);
    for (const MultiplierCase& c : kMultiplierCases) {
        SCOPED_TRACE(testing::Message() << "multiplier case " << &c - kMultiplierCases);
        const auto filter = MakeFilter(c);
        for (unsigned redIndex : {0u, 2u})
            for (unsigned pixelBytes : {3u, 4u}) {
                const zo::simd::LutTables8 t = zo::simd::LutTablesInByteOrder(
                    filter->RedTable8(), filter->GreenTable8(), filter->BlueTable8(), redIndex);
                const zo::simd::LutFormPlan8* plan = zo::simd::FormPlan8(t, pixelBytes);
                ASSERT_EQ(plan != nullptr, c.form8);
                for (const zo::simd::LutPaths* p : HostLutPaths())
                    for (std::uint32_t count : {1u, 5u, 21u, 22u, 64u, 193u, 1000u}) {
                        if (!plan || !p->form3)
                            break;
                        std::vector<std::uint8_t> line = zotest::RandomBytes(std::size_t(count) * pixelBytes + 64, rng);
                        std::vector<std::uint8_t> expected = line;
                        (pixelBytes == 3 ? zo::simd::LutBytes3Scalar : zo::simd::LutBytes4Scalar)(expected.data(),
                                                                                                count, t);
                        (pixelBytes == 3 ? p->form3 : p->form4)(line.data(), count, *plan);
                        ASSERT_TRUE(line == expected) << p->name << ", " << pixelBytes << "-byte pixels, count "
                                                      << count << ", red at " << redIndex;
                    }
            }
        const std::uint16_t* const t[3] = {filter->RedTable16(), filter->GreenTable16(), filter->BlueTable16()};
        std::vector<std::uint8_t> everyValue(std::size_t(21846) * 6 + 64);
        for (std::size_t i = 0; i < 65536; ++i) {
            everyValue[2 * i] = static_cast<std::uint8_t>(i);
            everyValue[2 * i + 1] = static_cast<std::uint8_t>(i >> 8);
        }
        for (const std::uint32_t entries : {65536u, filter->GetEntryCount()}) {
            AtEveryLevel([&](CpuLevel) {
                const zo::simd::LutPaths& paths = zo::simd::ActiveLutPaths();
                const zo::simd::LutForm16Scope scope(t[0], t[1], t[2], true, entries);
                const zo::simd::LutFormPlan16* plan = zo::simd::ScopedFormPlan16(t[0], t[1], t[2]);
                const bool expected =
                    paths.words3 && (c.form16 == MultiplierCase::kFixed ||
                                     (c.form16 == MultiplierCase::kCorrected && paths.verifyCorrected16) ||
                                     (c.form16 == MultiplierCase::kExact && paths.verifyExact16));
                ASSERT_EQ(plan != nullptr, expected) << paths.name << ", entries " << entries;
                EXPECT_EQ(zo::simd::ScopedFormPlan16(t[1], t[0], t[2]), nullptr);  // other tables: no plan
                if (!plan)
                    return;
                EXPECT_EQ(plan->corrected, c.form16 == MultiplierCase::kCorrected);
                EXPECT_EQ(plan->exact, c.form16 == MultiplierCase::kExact);
                // A pickable plan's h and g lie at most one apart at every index.
                EXPECT_EQ(plan->pickable, plan->corrected);
                for (unsigned ch = 0; ch < 3 && plan->pickable; ++ch) {
                    zo::simd::LutChannelForm h{}, g{};
                    h.a = g.a = plan->channel[ch][zo::simd::kLutA][0];
                    h.off = g.off = plan->channel[ch][zo::simd::kLutOff][0];
                    h.limit = g.limit = plan->channel[ch][zo::simd::kLutLimit][0];
                    h.fh = h.fg = plan->channel[ch][zo::simd::kLutFh][0];
                    g.fh = g.fg = plan->channel[ch][zo::simd::kLutFl][0];
                    for (std::uint32_t i = 0; i < 65536; ++i) {
                        const auto index = static_cast<std::uint16_t>(i);
                        const int apart = zo::simd::EvalLutCorrected(h, index) - zo::simd::EvalLutCorrected(g, index);
                        ASSERT_TRUE(apart == 0 || apart == 1) << "channel " << ch << " at " << i;
                    }
                }
                for (std::uint32_t count : {1u, 3u, 7u, 17u, 33u, 1001u, 21846u}) {
                    std::vector<std::uint8_t> line =
                        count == 21846u ? everyValue : zotest::RandomBytes(std::size_t(count) * 6 + 64, rng);
                    std::vector<std::uint8_t> expected = line;
                    for (std::size_t i = 0; i < std::size_t(count) * 3; ++i) {
                        const std::uint16_t v = t[i % 3][line[2 * i] | line[2 * i + 1] << 8];
                        expected[2 * i] = static_cast<std::uint8_t>(v);
                        expected[2 * i + 1] = static_cast<std::uint8_t>(v >> 8);
                    }
                    ASSERT_TRUE(zo::simd::ApplyLut16(line.data(), count, *plan));
                    ASSERT_TRUE(line == expected) << paths.name << ", count " << count << ", entries " << entries;
                }
            });
        }
    }
}

// A 16-bit plan answers only inside its scope, for its own tables; the
// innermost scope answers; an unwanted scope plans nothing.
TEST(LutPasses, SixteenBitScopesNestAndAnswerOnlyForTheirTables)
{
    using Scope = zo::simd::LutForm16Scope;
    const auto a = MakeFilter(kMultiplierCases[0]), b = MakeFilter(kMultiplierCases[1]);
    auto planned = [](const ZoRGBFilter& f) {
        return zo::simd::ScopedFormPlan16(f.RedTable16(), f.GreenTable16(), f.BlueTable16()) != nullptr;
    };
    auto open = [](const ZoRGBFilter& f, bool worth) {
        return std::make_unique<Scope>(f.RedTable16(), f.GreenTable16(), f.BlueTable16(), worth);
    };
    AtEveryLevel([&](CpuLevel) {
        if (!zo::simd::ActiveLutPaths().words3)
            return;
        EXPECT_FALSE(planned(*a));
        std::unique_ptr<Scope> outer = open(*a, true);
        EXPECT_TRUE(planned(*a));
        std::unique_ptr<Scope> inner = open(*b, true);
        EXPECT_TRUE(planned(*b) && !planned(*a));
        inner = nullptr;
        EXPECT_TRUE(planned(*a) && !planned(*b));
        inner = open(*a, false);
        EXPECT_FALSE(planned(*a));
        inner.reset(), outer.reset();
        EXPECT_FALSE(planned(*a));
    });
}

// Tables edited at the same addresses between two calls: the 8-bit plan
// cache notices, and a conversion after the edit gives the scalar level's
// bytes for the edited tables at every level; the same for 16-bit tables.
TEST(LutPasses, PlansFollowTablesEditedBetweenCalls)
{
    using Get = std::uint8_t (ZoRGBFilter::*)(std::uint32_t) const;
    using Set = std::uint32_t (ZoRGBFilter::*)(std::uint32_t, std::uint16_t);
    const std::pair<Get, Set> channels[] = {{&ZoRGBFilter::GetRedValue8, &ZoRGBFilter::SetRedValue},
                                            {&ZoRGBFilter::GetGreenValue8, &ZoRGBFilter::SetGreenValue},
                                            {&ZoRGBFilter::GetBlueValue8, &ZoRGBFilter::SetBlueValue}};
    const ZoPixelConverter& conv = ZoPixelTypeFactory::GetConverter(ZO_PT_BAYER_RGB8, ZO_PT_RGB24);
    constexpr std::uint32_t kWidth = 97, kHeight = 6, kFlags = ZO_FLAG_BAYER_GRBG | ZO_FLAG_BAYER_INTERPOLATE;
    std::mt19937 rng(23);
    const std::vector<std::uint8_t> input = zotest::RandomBytes(std::size_t(kWidth) * (kHeight + 1) + 64, rng);
    for (const auto& channel : channels) {
        const Get get = channel.first;
        const Set set = channel.second;
        ZoRGBFilter filter(8);
        ASSERT_EQ(filter.SetMultipliers(1.8, 1.0, 1.6), ZO_OK);
        const zo::simd::LutTables8 t{filter.RedTable8(), filter.GreenTable8(), filter.BlueTable8()};
        ASSERT_NE(zo::simd::FormPlan8(t, 3), nullptr);
        const std::uint8_t kept = (filter.*get)(100);
        ASSERT_EQ((filter.*set)(100, 3), ZO_OK);
        EXPECT_EQ(zo::simd::FormPlan8(t, 3), nullptr);
        ASSERT_EQ((filter.*set)(100, kept), ZO_OK);
        EXPECT_NE(zo::simd::FormPlan8(t, 3), nullptr);
        AtEveryLevel([&](CpuLevel) {
            ASSERT_EQ((filter.*set)(100, kept), ZO_OK);
            ConvertFiltered(conv, filter, input, kWidth, kHeight, kFlags);  // plans the unedited tables
            ASSERT_EQ((filter.*set)(100, 3), ZO_OK);
            const std::vector<std::uint8_t> actual = ConvertFiltered(conv, filter, input, kWidth, kHeight, kFlags);
            ASSERT_TRUE(actual ==
                        AtScalarLevel([&] { return ConvertFiltered(conv, filter, input, kWidth, kHeight, kFlags); }));
        });
    }
    // 16-bit tables (planned per area conversion): 12-bit Bayer into RGB48
    // over an area large enough for the plan, a run of entries edited
    // between two conversions at the same addresses.
    const ZoPixelConverter& conv48 = ZoPixelTypeFactory::GetConverter(ZO_PT_BAYER_RGB12, ZO_PT_RGB48);
    constexpr std::uint32_t kWidth48 = 258, kHeight48 = 256;
    std::vector<std::uint8_t> input48 =
        zotest::RandomBytes(std::size_t(conv48.GetSourceByteSize(kWidth48)) * (kHeight48 + 1) + 64, rng);
    for (std::size_t i = 1; i < input48.size(); i += 2)
        input48[i] &= 0x0F;
    auto convert48 = [&](const ZoRGBFilter& f) {
        return ConvertFiltered(conv48, f, input48, kWidth48, kHeight48, kFlags);
    };
    for (const auto& channel : channels) {
        const Set set = channel.second;
        ZoRGBFilter filter(12);
        AtEveryLevel([&](CpuLevel) {
            ASSERT_EQ(filter.SetMultipliers(1.8, 1.0, 1.6), ZO_OK);
            convert48(filter);  // plans the unedited tables
            for (std::uint32_t i = 1000; i < 1064; ++i)
                ASSERT_EQ((filter.*set)(i, 3), ZO_OK);
            const std::vector<std::uint8_t> actual = convert48(filter);
            ASSERT_TRUE(actual == AtScalarLevel([&] { return convert48(filter); }));
        });
    }
}

// Plans of several sets of tables asked for in turn on one thread (more sets
// than the thread keeps): each answer is the plan its own tables gave when
// first asked, never that of another set, whatever was asked in between.
TEST(LutPasses, PlansOfAlternatingTablesStayTheirOwn)
{
    const double gains[][3] = {{1.8, 1.0, 1.4}, {1.8, 1.0, 1.6}, {1.0, 1.0, 1.0},
                               {1.2, 1.0, 0.8}, {1.8, 1.0, 1.4}, {1.05, 1.3, 1.99}};
    std::vector<std::unique_ptr<ZoRGBFilter>> filters;
    for (const auto& g : gains) {
        filters.push_back(std::make_unique<ZoRGBFilter>(8));
        ASSERT_EQ(filters.back()->SetMultipliers(g[0], g[1], g[2]), ZO_OK);
    }
    ASSERT_EQ(filters.back()->SetBlueValue(77, 3), ZO_OK);  // no form: no plan
    struct Answer {
        bool has;
        zo::simd::LutFormPlan8 plan;
        bool hasRgb16;
        zo::simd::LutRgb16Forms rgb16;
    };
    auto ask = [&](std::size_t key) {
        const ZoRGBFilter& f = *filters[key / 2];
        const zo::simd::LutTables8 t{f.RedTable8(), f.GreenTable8(), f.BlueTable8()};
        Answer a{};
        const zo::simd::LutFormPlan8* plan = zo::simd::FormPlan8(t, key % 2 ? 4 : 3);
        a.has = plan != nullptr;
        if (plan)
            a.plan = *plan;
        const zo::simd::LutRgb16Forms* rgb16 = zo::simd::Rgb16Forms(t);
        a.hasRgb16 = rgb16 != nullptr;
        if (rgb16)
            a.rgb16 = *rgb16;
        return a;
    };
    auto same = [](const Answer& a, const Answer& b) {
        if (a.has != b.has || a.hasRgb16 != b.hasRgb16)
            return false;
        const auto& p = a.plan;
        const auto& q = b.plan;
        bool equal = !a.has || (std::memcmp(p.lanes, q.lanes, sizeof p.lanes) == 0 &&
                                p.pixelBytes == q.pixelBytes && p.general == q.general &&
                                p.corrected == q.corrected && p.saturating == q.saturating);
        for (unsigned c = 0; c < 3 && a.has; ++c)
            equal &= p.identity[c] == q.identity[c] && p.unit[c] == q.unit[c] &&
                     p.scaled[c].valid == q.scaled[c].valid && p.scaled[c].high == q.scaled[c].high &&
                     p.scaled[c].low == q.scaled[c].low && p.scaled[c].cross == q.scaled[c].cross;
        for (unsigned c = 0; c < 3 && a.hasRgb16; ++c)
            equal &= a.rgb16.fraction[c] == b.rgb16.fraction[c] && a.rgb16.identity[c] == b.rgb16.identity[c];
        return equal;
    };
    const std::size_t keys = 2 * filters.size();
    std::vector<Answer> first;
    for (std::size_t k = 0; k < keys; ++k)
        first.push_back(ask(k));
    EXPECT_TRUE(first[0].has && !first.back().has && !same(first[0], first[2]) && !same(first[0], first[1]));
    EXPECT_TRUE(same(first[0], first[8]));  // equal tables, the same plan
    std::mt19937 rng(5);
    for (int round = 0; round < 200; ++round) {
        const std::size_t k = rng() % keys;
        ASSERT_TRUE(same(ask(k), first[k])) << "key " << k << ", round " << round;
    }
}

// The filters of the area tests: 8-bit tables random and 16-bit tables
// random over the whole 16-bit range; white balance as cameras use it
// (green left as it is); multiplier tables of the fixed-point kind; and the
// same with one entry written after SetMultipliers (no form: the lookups).
const ZoRGBFilter& RandomTables() { return bayer_test::RandomFilter(); }
const ZoRGBFilter& Gains(unsigned which = 0)
{
    static const std::unique_ptr<ZoRGBFilter> filters[] = {
        MakeFilter({16, 1.8, 1.0, 1.4, 0, 0, 0, true, {}}), MakeFilter(kMultiplierCases[0]),
        MakeFilter(kMultiplierCases[8])};
    return *filters[which];
}
const ZoRGBFilter& FixedFormGains() { return Gains(1); }
const ZoRGBFilter& EditedGains() { return Gains(2); }

// Every registered conversion into RGB24, BGR24, RGB32 or BGR32 (Bayer in
// both modes), at awkward widths, through random tables or the gains: each
// level gives the scalar level's bytes.
TEST(WhiteBalance, EveryConversionInto24And32BitsMatchesTheScalarLevel)
{
    struct Run {
        std::int64_t source, destination;
        std::uint32_t width, flags;
        const ZoRGBFilter* filter;
        std::vector<std::uint8_t> input, expected;
    };
    std::vector<Run> runs;
    std::mt19937 rng(13);
    constexpr std::uint32_t kHeight = 4;
    for (std::int64_t destination : {ZO_PT_RGB24, ZO_PT_BGR24, ZO_PT_RGB32, ZO_PT_BGR32}) {
        std::int64_t source = 0;
        for (std::uint32_t i = 0; ZoPixelTypeFactory::EnumConverterTo(i, destination, source); ++i) {
            const ZoPixelConverter& conv = ZoPixelTypeFactory::GetConverter(source, destination);
            const bool bayer = ZoPixelTypeFactory::HasPixelType(source) &&
                               ZoPixelTypeFactory::GetPixelType(source).IsBayerPattern();
            for (std::uint32_t width : {1u, 3u, 22u, 64u, 65u, 193u})
                for (std::uint32_t flags : {0u, ZO_FLAG_BAYER_RGGB | ZO_FLAG_BAYER_INTERPOLATE}) {
                    // Dual-tap sources split lines in two halves: even widths.
                    if ((flags && !bayer) || ((source & ZO_PIXEL_TAP_MASK) && width % 2))
                        continue;
                    const ZoRGBFilter* const filters[] = {&RandomTables(), &Gains(), &FixedFormGains(),
                                                          &EditedGains()};
                    Run r{source, destination, width, flags, filters[runs.size() % 4], {}, {}};
                    r.input = zotest::RandomBytes(std::size_t(conv.GetSourceByteSize(width)) * (kHeight + 1) + 64, rng);
                    runs.push_back(std::move(r));
                }
        }
    }
    ASSERT_GT(runs.size(), 100u);
    for (Run& r : runs)
        r.expected = AtScalarLevel([&] {
            return ConvertFiltered(ZoPixelTypeFactory::GetConverter(r.source, r.destination), *r.filter, r.input,
                                   r.width, kHeight, r.flags);
        });
    AtEveryLevel([&](CpuLevel) {
        for (const Run& r : runs) {
            const std::vector<std::uint8_t> actual = ConvertFiltered(
                ZoPixelTypeFactory::GetConverter(r.source, r.destination), *r.filter, r.input, r.width, kHeight,
                r.flags);
            ASSERT_TRUE(actual == r.expected) << std::hex << "source 0x" << r.source << " destination 0x"
                                              << r.destination << std::dec << " width " << r.width << " flags "
                                              << r.flags;
        }
    });
}

// 16-bit Bayer into RGB48 over areas large enough for the per-call 16-bit
// plan, through multiplier tables (fixed-point, corrected and exact forms), an edited
// one and random tables, from full 16-bit samples: each level gives the
// scalar level's bytes.
TEST(WhiteBalance, Rgb48AreasMatchTheScalarLevel)
{
    constexpr std::uint32_t kWidth = 258, kHeight = 256;  // 66048 pixels
    std::mt19937 rng(31);
    const ZoPixelConverter& conv = ZoPixelTypeFactory::GetConverter(ZO_PT_BAYER_RGB12, ZO_PT_RGB48);
    std::vector<std::uint8_t> input = zotest::RandomBytes(std::size_t(conv.GetSourceByteSize(kWidth)) * (kHeight + 1) + 64, rng);
    const std::unique_ptr<const ZoRGBFilter> exact = MakeFilter(kMultiplierCases[5]),
                                             corrected = MakeFilter(kMultiplierCases[9]);
    for (const ZoRGBFilter* filter : {&FixedFormGains(), exact.get(), corrected.get(), &EditedGains(), &RandomTables()})
        for (std::uint32_t flags : {ZO_FLAG_BAYER_GBRG, ZO_FLAG_BAYER_RGGB | ZO_FLAG_BAYER_INTERPOLATE}) {
            const std::vector<std::uint8_t> expected =
                AtScalarLevel([&] { return ConvertFiltered(conv, *filter, input, kWidth, kHeight, flags); });
            AtEveryLevel([&](CpuLevel) {
                ASSERT_TRUE(ConvertFiltered(conv, *filter, input, kWidth, kHeight, flags) == expected)
                    << "flags " << flags;
            });
        }
}

}  // namespace
