// White balance where the tables have an arithmetic form and the vector
// kernels evaluate the form before they store (Bayer 8-bit interpolation,
// YUYV and RGB 24 into 32-bit layouts, 12-bit Bayer into RGB48), or look
// any 8-bit table up before they store (Bayer 8-bit, YUYV and RGB 24 to
// 32-bit layouts with VBMI), and RGB16, whose kernels look the channels up
// before packing or run the pass over a copy of the source. One filter per
// evaluation mode of the form, each with green changed too (and one with
// green left alone), into every layout these kernels write: every level
// gives the scalar level's bytes (the scalar kernels look the channels up
// one by one).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "ZoImgLib.h"
#include "core/StreamStores.h"
#include "simd/Cpu.h"
#include "simd/Lut.h"
#include "simd/LutForm.h"
#include "support/AreaSupport.h"
#include "support/CpuLevels.h"

namespace {

using zo::simd::CpuLevel;

enum class Mode { kFast, kGeneral, kCorrected, kFastSaturating, kCorrectedSaturating };

Mode ModeOf(const zo::simd::LutFormPlan8& plan)
{
    if (plan.saturating)
        return plan.corrected ? Mode::kCorrectedSaturating : Mode::kFastSaturating;
    return plan.corrected ? Mode::kCorrected : plan.general ? Mode::kGeneral : Mode::kFast;
}

// Converts `input` (width x height) through `filter` at the scalar level and
// at every level the host has; every level must give the scalar bytes.
void ExpectEveryLevelMatchesScalar(const ZoPixelConverter& conv, const ZoRGBFilter& filter,
                                   const std::vector<std::uint8_t>& input, std::uint32_t width, std::uint32_t height,
                                   std::uint32_t flags, const std::string& what)
{
    auto convert = [&] {
        std::vector<std::uint8_t> out(std::size_t(conv.GetDestinationByteSize(width)) * (height + 1) + 64,
                                      zotest::kPoison);
        EXPECT_EQ(conv.Convert(filter, input.data(), width, height, out.data(), width, height, width, height, flags, 0),
                  ZO_OK);
        return out;
    };
    std::vector<std::uint8_t> expected;
    {
        const zotest::CpuCeilingScope ceiling(CpuLevel::kScalar);
        expected = convert();
    }
    for (CpuLevel level : zotest::HostCpuLevels()) {
        const zotest::CpuCeilingScope ceiling(level);
        ASSERT_TRUE(convert() == expected) << zo::simd::CpuLevelName(level) << ", " << what;
    }
}

struct Gains {
    double red, green, blue;
    std::uint16_t redOffset, greenOffset, blueOffset;
    Mode mode;
};

const Gains kGains[] = {
    {0.9, 0.8, 0.6, 0, 0, 0, Mode::kFast},                  // every table ends below 255
    {HUGE_VAL, 1.0, 1.2, 9, 0, 0, Mode::kGeneral},         // red: entry 0, then 255
    {1.4, 0.9, 1.2, 0, 0, 0, Mode::kCorrected},             // 1.4 * 5 is lifted to 7; green ends below 255
    {1.8, 1.2, 1.6, 0, 0, 0, Mode::kFastSaturating},
    {1.8, 1.4, 1.4, 0, 0, 0, Mode::kCorrectedSaturating},
    {1.8, 1.0, 1.4, 0, 0, 0, Mode::kCorrectedSaturating},  // green the identity, skipped
    // Slopes of 1 (and green the identity): each of red and blue its own
    // unit form, fast or corrected; red the identity itself.
    {1.4, 1.0, 1.8, 0, 0, 0, Mode::kCorrectedSaturating},
    {1.4, 1.0, 1.4, 0, 0, 0, Mode::kCorrectedSaturating},
    {1.6, 1.0, 1.2, 0, 0, 0, Mode::kFastSaturating},
    {1.0, 1.0, 1.4, 0, 0, 0, Mode::kCorrectedSaturating},
    // Not unit forms: an offset, a slope of 2.
    {1.8, 1.0, 1.6, 3, 0, 0, Mode::kFastSaturating},
    {2.2, 1.0, 1.4, 0, 0, 0, Mode::kCorrectedSaturating},
};

TEST(FusedWhiteBalance, EightBitLinesMatchTheScalarLevelInEveryMode)
{
    constexpr std::uint32_t kWidth = 203, kHeight = 4;
    std::mt19937 rng(41);
    // Enough for the widest source, four bytes a pixel.
    const std::vector<std::uint8_t> input = zotest::RandomBytes(std::size_t(kWidth) * 4 * (kHeight + 1) + 64, rng);
    const std::uint32_t kBilinear = ZO_FLAG_BAYER_GBRG | ZO_FLAG_BAYER_INTERPOLATE;
    const struct {
        std::int64_t source, destination;
        std::uint32_t flags;
    } kConversions[] = {
        {ZO_PT_BAYER_RGB8, ZO_PT_RGB24, kBilinear}, {ZO_PT_BAYER_RGB8, ZO_PT_BGR24, kBilinear},
        {ZO_PT_BAYER_RGB8, ZO_PT_RGB32, kBilinear}, {ZO_PT_BAYER_RGB8, ZO_PT_BGR32, kBilinear},
        {ZO_PT_YUV8, ZO_PT_RGB32, 0},               {ZO_PT_YUV8, ZO_PT_BGR32, 0},
        {ZO_PT_YUV8, ZO_PT_RGB24, 0},               {ZO_PT_YUV8, ZO_PT_BGR24, 0},
        {ZO_PT_YUV8, ZO_PT_RGB16, 0},               {ZO_PT_YUV10, ZO_PT_RGB32, 0},
        {ZO_PT_YUV10, ZO_PT_BGR24, 0},              {ZO_PT_YUV10, ZO_PT_RGB16, 0},
        {ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_RGB32, 0}, {ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_BGR32, 0},
        {ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_RGB16, 0}, {ZO_PT_RGB32, ZO_PT_RGB16, 0},
        {ZO_PT_BAYER_RGB12, ZO_PT_RGB24, kBilinear}, {ZO_PT_BAYER_RGB12, ZO_PT_BGR32, kBilinear},
        {ZO_PT_BAYER_RGB8, ZO_PT_RGB16, kBilinear},
    };
    for (const Gains& g : kGains) {
        ZoRGBFilter filter(8);
        ASSERT_EQ(filter.SetMultipliers(g.red, g.green, g.blue, g.redOffset, g.greenOffset, g.blueOffset), ZO_OK);
        const zo::simd::LutFormPlan8* plan = zo::simd::FormPlan8(
            zo::simd::LutTablesInByteOrder(filter.RedTable8(), filter.GreenTable8(), filter.BlueTable8(), 0), 3);
        ASSERT_NE(plan, nullptr) << g.red << " " << g.green << " " << g.blue;
        EXPECT_EQ(ModeOf(*plan), g.mode) << g.red << " " << g.green << " " << g.blue;
        for (const auto& c : kConversions) {
            const ZoPixelConverter& conv = ZoPixelTypeFactory::GetConverter(c.source, c.destination);
            std::ostringstream what;
            what << "gains " << g.red << " " << g.green << " " << g.blue << std::hex << ", source 0x" << c.source
                 << ", destination 0x" << c.destination;
            ExpectEveryLevelMatchesScalar(conv, filter, input, kWidth, kHeight, c.flags, what.str());
        }
    }
}

// The forms at every line length up to beyond two of the widest steps and a
// few more, with ordinary and with streaming stores: the steps, the last
// steps of a line (loads that end with it, blocks overlapping the one
// before) and what the lookups are left give the scalar level's bytes. The
// unit forms (slope 1, green the identity: red and blue each fast or
// corrected), and forms with green evaluated or slopes below 1.
TEST(FusedWhiteBalance, FormsMatchTheScalarLevelAtEveryLineLength)
{
    constexpr std::uint32_t kHeight = 3;
    std::mt19937 rng(43);
    const std::uint32_t kBilinear = ZO_FLAG_BAYER_GBRG | ZO_FLAG_BAYER_INTERPOLATE;
    const struct {
        std::int64_t source, destination;
        std::uint32_t flags;
    } kConversions[] = {
        {ZO_PT_BAYER_RGB8, ZO_PT_RGB24, kBilinear},      {ZO_PT_BAYER_RGB8, ZO_PT_BGR32, kBilinear},
        {ZO_PT_BAYER_RGB8, ZO_PT_RGB32, kBilinear},      {ZO_PT_YUV8, ZO_PT_BGR32, 0},
        {ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_RGB32, 0}, {ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_BGR32, 0},
    };
    const struct {
        double red, green, blue;
        bool unit;
    } kGainSets[] = {{1.8, 1.0, 1.4, true},  {1.4, 1.0, 1.6, true},   {1.6, 1.0, 1.2, true},
                     {1.4, 1.0, 1.4, true},  {0.9, 0.8, 0.6, false},  {1.8, 1.4, 1.4, false}};
    std::vector<std::uint32_t> widths;
    for (std::uint32_t w = 1; w <= 72; ++w)
        widths.push_back(w);
    for (std::uint32_t w : {95u, 96u, 97u, 129u, 203u})
        widths.push_back(w);
    for (const auto& g : kGainSets) {
        ZoRGBFilter filter(8);
        ASSERT_EQ(filter.SetMultipliers(g.red, g.green, g.blue), ZO_OK);
        for (unsigned redIndex : {0u, 2u}) {
            const zo::simd::LutFormPlan8* plan = zo::simd::FormPlan8(
                zo::simd::LutTablesInByteOrder(filter.RedTable8(), filter.GreenTable8(), filter.BlueTable8(), redIndex),
                4);
            ASSERT_NE(plan, nullptr) << g.red << " " << g.green << " " << g.blue;
            EXPECT_EQ(plan->unit[0] && plan->unit[2] && plan->identity[1], g.unit) << g.red << " " << g.blue;
        }
        for (std::uint64_t threshold : {std::uint64_t(1) << 62, std::uint64_t(1)})
            for (const auto& c : kConversions)
                for (std::uint32_t width : widths) {
                    const ZoPixelConverter& conv = ZoPixelTypeFactory::GetConverter(c.source, c.destination);
                    const std::vector<std::uint8_t> input =
                        zotest::RandomBytes(std::size_t(conv.GetSourceByteSize(width)) * (kHeight + 1) + 64, rng);
                    std::ostringstream what;
                    what << "gains " << g.red << " " << g.green << " " << g.blue << ", width " << width
                         << (threshold == 1 ? ", streaming" : "") << std::hex << ", source 0x" << c.source
                         << ", destination 0x" << c.destination;
                    zo::SetStreamingThreshold(threshold);
                    ExpectEveryLevelMatchesScalar(conv, filter, input, width, kHeight, c.flags, what.str());
                    zo::ResetStreamingThreshold();
                }
    }
}

// RGB16 keeps five bits of red and blue and six of green: the unit form
// whose fraction PackedUnitFraction finds must give the table's kept bits
// at every index, and it must find one wherever a search over every
// fraction does (the gains cover tables with and without one, an offset
// and slopes below 1 and of 2).
TEST(FusedWhiteBalance, PackedUnitFractionsAreFoundWhereverOneExists)
{
    struct Case {
        double gain;
        std::uint16_t offset;
        unsigned dropBits;
        bool has;
    };
    const Case kCases[] = {
        {1.4, 0, 3, true},  {1.4, 0, 2, false}, {1.4, 0, 0, false}, {1.15, 0, 3, true}, {1.15, 0, 0, false},
        {1.8, 0, 0, true},  {1.8, 0, 2, true},  {1.0, 0, 3, true},  {1.99, 0, 3, true}, {0.9, 0, 3, false},
        {2.2, 0, 3, false}, {1.6, 3, 3, false}, {1.105, 0, 0, true},  // one fraction only
    };
    auto matches = [](const std::uint8_t* table, unsigned drop, std::uint32_t fraction) {
        for (std::uint32_t i = 0; i < 256; ++i)
            if ((std::min(i + ((i * fraction) >> 16), 255u) >> drop) != std::uint32_t(table[i] >> drop))
                return false;
        return true;
    };
    for (const Case& c : kCases) {
        ZoRGBFilter filter(8);
        ASSERT_EQ(filter.SetMultipliers(c.gain, 1.0, 1.0, c.offset, 0, 0), ZO_OK);
        const std::uint8_t* table = filter.RedTable8();
        bool exists = false;
        for (std::uint32_t f = 0; f < 65536 && !exists; ++f)
            exists = matches(table, c.dropBits, f);
        std::uint16_t fraction = 0;
        const bool found = zo::simd::PackedUnitFraction(table, c.dropBits, fraction);
        EXPECT_EQ(exists, c.has) << c.gain << " + " << c.offset << ", dropping " << c.dropBits;
        EXPECT_EQ(found, exists) << c.gain << " + " << c.offset << ", dropping " << c.dropBits;
        if (found) {
            EXPECT_TRUE(matches(table, c.dropBits, fraction)) << c.gain << ", fraction " << fraction;
        }
    }
}

// The scaled forms take the YUV transform's unclamped results: at every
// lane value a kernel can hold they must give the entry a clamp to 0-255
// and the table give. Over the gains 1.000 to 1.999 the fast form is
// returned exactly where a search over every multiplier finds one; every
// gain 1.00, 1.01, ... 1.99 has a form (five of them only the corrected
// one); slopes below 1 or of 2 and more, and offsets, have none.
TEST(FusedWhiteBalance, ScaledFormsGiveTheClampedEntryAtEveryLaneValue)
{
    auto derive = [](double gain, std::uint16_t offset, zo::simd::LutScaledForm& form) {
        ZoRGBFilter filter(8);
        EXPECT_EQ(filter.SetMultipliers(gain, 1.0, 1.0, offset, 0, 0), ZO_OK);
        const std::uint8_t* table = filter.RedTable8();
        const bool found = zo::simd::DeriveLutScaledForm(table, form);
        for (std::int32_t v = -8191; v < 8192 && found; ++v)
            if (zo::simd::EvalLutScaled8(form, v) != table[std::clamp(v, 0, 255)]) {
                ADD_FAILURE() << gain << " at " << v;
                break;
            }
        bool fastExists = false;
        for (std::uint32_t high = 16384; high < 32768 && !fastExists; ++high) {
            fastExists = true;
            for (std::uint32_t i = 0; i < 256 && fastExists; ++i)
                fastExists = std::min<std::uint32_t>((i * high) >> 14, 255) == table[i];
        }
        EXPECT_EQ(found && !form.corrected, fastExists) << gain << " + " << offset;
        return found;
    };
    zo::simd::LutScaledForm form;
    for (int step = 1000; step < 2000; ++step)
        derive(step / 1000.0, 0, form);
    const double kCorrected[] = {1.15, 1.16, 1.38, 1.4, 1.64};
    for (int step = 100; step < 200; ++step) {
        const double gain = step / 100.0;
        EXPECT_TRUE(derive(gain, 0, form)) << gain;
        EXPECT_EQ(form.corrected, std::count(std::begin(kCorrected), std::end(kCorrected), gain) == 1) << gain;
    }
    for (double gain : {0.9, 2.2})
        EXPECT_FALSE(derive(gain, 0, form)) << gain;
    EXPECT_FALSE(derive(1.6, 3, form));
}

// RGB 24 and RGB32 to RGB16 at every line length up to beyond two of the
// widest steps, ordinary and streaming: through the unit forms of
// Rgb16Forms (green skipped or evaluated, red the identity) and, where a
// table has none (green 1.4), the tables' own forms or lookups.
TEST(FusedWhiteBalance, Rgb16FormsMatchTheScalarLevelAtEveryLineLength)
{
    constexpr std::uint32_t kHeight = 3;
    std::mt19937 rng(53);
    const struct {
        double red, green, blue;
        bool packed;
    } kGainSets[] = {{1.8, 1.0, 1.4, true}, {1.8, 1.2, 1.15, true}, {1.0, 1.0, 1.4, true}, {1.8, 1.4, 1.6, false}};
    for (const auto& g : kGainSets) {
        ZoRGBFilter filter(8);
        ASSERT_EQ(filter.SetMultipliers(g.red, g.green, g.blue), ZO_OK);
        EXPECT_EQ(zo::simd::Rgb16Forms(zo::simd::LutTablesInByteOrder(filter.RedTable8(), filter.GreenTable8(),
                                                                      filter.BlueTable8(), 0)) != nullptr,
                  g.packed)
            << g.red << " " << g.green << " " << g.blue;
        for (std::uint64_t threshold : {std::uint64_t(1) << 62, std::uint64_t(1)})
            for (std::int64_t source : {ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_RGB32})
                for (std::uint32_t width = 1; width <= 136; width += width < 72 ? 1 : 7) {
                    const ZoPixelConverter& conv = ZoPixelTypeFactory::GetConverter(source, ZO_PT_RGB16);
                    const std::vector<std::uint8_t> input =
                        zotest::RandomBytes(std::size_t(conv.GetSourceByteSize(width)) * (kHeight + 1) + 64, rng);
                    std::ostringstream what;
                    what << "gains " << g.red << " " << g.green << " " << g.blue << ", width " << width
                         << (threshold == 1 ? ", streaming" : "") << std::hex << ", source 0x" << source;
                    zo::SetStreamingThreshold(threshold);
                    ExpectEveryLevelMatchesScalar(conv, filter, input, width, kHeight, 0, what.str());
                    zo::ResetStreamingThreshold();
                }
    }
}

// 8-bit tables without a form, written entry by entry (the VBMI level looks
// them up inside the Bayer block and the RGB permutes, any table; other
// levels fall back from the forms): red and blue random, green the
// identity except one quarter of its entries (random there), so that a
// check for the identity green that skips its lookup must read the whole
// table; and all three random.
TEST(FusedWhiteBalance, EightBitLinesThroughAnyTablesMatchTheScalarLevel)
{
    constexpr std::uint32_t kWidth = 203, kHeight = 4;
    std::mt19937 rng(47);
    // Enough for the widest source, four bytes a pixel.
    const std::vector<std::uint8_t> input = zotest::RandomBytes(std::size_t(kWidth) * 4 * (kHeight + 1) + 64, rng);
    const std::vector<std::uint8_t> random = zotest::RandomBytes(3 * 256, rng);
    for (unsigned changedQuarter : {0u, 1u, 2u, 3u, 4u}) {  // 4: green random too
        ZoRGBFilter filter(8);
        for (std::uint32_t i = 0; i < 256; ++i) {
            const bool changed = changedQuarter == 4 || i / 64 == changedQuarter;
            ASSERT_EQ(filter.SetRedValue(i, random[i]), ZO_OK);
            ASSERT_EQ(filter.SetGreenValue(i, std::uint16_t(changed ? random[256 + i] ^ 0x80 : i)), ZO_OK);
            ASSERT_EQ(filter.SetBlueValue(i, random[512 + i]), ZO_OK);
        }
        for (std::int64_t destination : {ZO_PT_RGB24, ZO_PT_BGR24, ZO_PT_RGB32, ZO_PT_BGR32})
            for (std::uint32_t pattern : {ZO_FLAG_BAYER_GBRG, ZO_FLAG_BAYER_RGGB}) {
                std::ostringstream what;
                what << "green changed in quarter " << changedQuarter << std::hex << ", destination 0x"
                     << destination << ", pattern 0x" << pattern;
                ExpectEveryLevelMatchesScalar(ZoPixelTypeFactory::GetConverter(ZO_PT_BAYER_RGB8, destination), filter,
                                              input, kWidth, kHeight, pattern | ZO_FLAG_BAYER_INTERPOLATE,
                                              what.str());
            }
        const std::int64_t kRGB[][2] = {{ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_RGB32},
                                        {ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_BGR32},
                                        {ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_RGB16},
                                        {ZO_PT_RGB32, ZO_PT_RGB16}};
        for (const auto& pair : kRGB) {
            std::ostringstream what;
            what << "green changed in quarter " << changedQuarter << std::hex << ", source 0x" << pair[0]
                 << ", destination 0x" << pair[1];
            ExpectEveryLevelMatchesScalar(ZoPixelTypeFactory::GetConverter(pair[0], pair[1]), filter, input, kWidth,
                                          kHeight, 0, what.str());
        }
    }
}

// 16-bit tables: one filter per form of the RGB48 kernels, over areas large
// enough for the per-call plan, from 12-bit samples with a band of 10-bit
// ones (the kernels' 16-bit sums; WhiteBalanceTest feeds full 16-bit
// samples).
struct Gains16 {
    std::uint32_t bits;
    double red, green, blue;
    std::uint16_t redOffset, blueOffset;
    bool exact, corrected, general, wide;
};

const Gains16 kGains16[] = {
    {12, 1.8, 1.2, 1.6, 0, 0, false, false, false, false},
    {16, 1.4737219, 1.1, 2.018331, 0, 0, false, false, true, true},  // two-multiply fraction
    {12, 3.0, 0.0, 1.0, 5, 4000, false, false, true, false},
    {16, 1.8, 1.2, 1.4, 0, 0, true, false, true, false},
    {12, 1.8, 1.2, 1.4, 0, 0, false, true, false, false},
    {12, 1.8, 1.0, 1.4, 0, 0, false, true, false, false},  // green the identity, skipped
    // Corrected plans whose other channels take the fast form; green the
    // identity below 1024 only: skipped in the 10-bit band of the samples.
    {12, 1.4, 1.6, 1.8, 0, 0, false, true, false, false},
    {12, 1.4, 1.0, 1.6, 0, 0, false, true, false, false},
    {10, 1.8, 1.0, 1.4, 0, 0, false, true, false, false},
    {10, 1.8, 1.0, 1.6, 0, 0, false, false, false, false},
    // A gain below 1 ends below the limit the entries past the count hold:
    // general and exact forms, green skipped.
    {12, 0.9, 1.0, 1.6, 0, 0, false, false, true, false},
    {12, 0.7, 1.0, 1.8, 0, 0, true, false, true, false},
    {16, 0.75, 1.0, 1.5, 0, 0, false, false, false, false},  // fast, red's slope below 1
    {12, 1.8, 1.0, 1.4, 5, 0, false, true, false, false},    // corrected, red fast with an offset
    {16, 0.75, 0.5, 0.625, 0, 0, false, false, false, false},  // every slope below 1: not the unit forms
};

// Area sizes (at least the per-call plan's 65536 pixels): line interiors of
// 254 pixels (blocks and a last block overlapping the one before), 98 (32k
// + 2: the last block overlaps by 30, 16k + 2 at AVX2) and 26 (fewer than
// one 32-pixel block: the AVX2 block and its overlap).
struct Area16 {
    std::uint32_t width, height;
};
const Area16 kAreas16[] = {{258, 256}, {102, 643}, {30, 2185}};

TEST(FusedWhiteBalance, Bayer12ToRgb48MatchesTheScalarLevelInEveryForm)
{
    const ZoPixelConverter& conv = ZoPixelTypeFactory::GetConverter(ZO_PT_BAYER_RGB12, ZO_PT_RGB48);
    const std::uint32_t flags = ZO_FLAG_BAYER_BGGR | ZO_FLAG_BAYER_INTERPOLATE;
    for (const Area16& area : kAreas16) {
        const std::uint32_t kWidth = area.width, kHeight = area.height;
        std::mt19937 rng(43);
        std::vector<std::uint8_t> input =
            zotest::RandomBytes(std::size_t(conv.GetSourceByteSize(kWidth)) * (kHeight + 1) + 64, rng);
        // 12-bit samples, 10-bit ones in a band of columns (in the widest
        // area every line has both).
        const std::size_t rowBytes = conv.GetSourceByteSize(kWidth);
        for (std::size_t i = 1; i < input.size(); i += 2)
            input[i] &= (i % rowBytes) / 2 - 96 < 100 ? 0x03 : 0x0F;
        for (const Gains16& g : kGains16) {
            ZoRGBFilter filter(g.bits);
            ASSERT_EQ(filter.SetMultipliers(g.red, g.green, g.blue, g.redOffset, 0, g.blueOffset), ZO_OK);
            if (zo::simd::HostCpuLevel() >= CpuLevel::kAVX2) {  // the forms planned at the host's level
                const zotest::CpuCeilingScope ceiling(zo::simd::HostCpuLevel());
                const zo::simd::LutForm16Scope scope(filter.RedTable16(), filter.GreenTable16(),
                                                     filter.BlueTable16(), true);
                const zo::simd::LutFormPlan16* plan =
                    scope.Plan(filter.RedTable16(), filter.GreenTable16(), filter.BlueTable16());
                ASSERT_NE(plan, nullptr) << g.red << " " << g.green << " " << g.blue;
                EXPECT_EQ(plan->exact, g.exact) << g.red << " " << g.green << " " << g.blue;
                EXPECT_EQ(plan->corrected, g.corrected) << g.red << " " << g.green << " " << g.blue;
                EXPECT_EQ(plan->general, g.general) << g.red << " " << g.green << " " << g.blue;
                EXPECT_EQ(plan->wide, g.wide) << g.red << " " << g.green << " " << g.blue;
            }
            std::ostringstream what;
            what << kWidth << " x " << kHeight << ", gains " << g.red << " " << g.green << " " << g.blue;
            ExpectEveryLevelMatchesScalar(conv, filter, input, kWidth, kHeight, flags, what.str());
        }
    }
}

}  // namespace
