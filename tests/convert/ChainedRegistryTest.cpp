// The built-in chained converters against the settled table of chains, and
// the registry as a whole once every family is in.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <typeinfo>
#include <vector>

#include "ZoBayerConverters.h"
#include "ZoDualTapConverters.h"
#include "ZoGrayscaleConverters.h"
#include "ZoPackedConverters.h"
#include "ZoPixelTypeFactory.h"
#include "ZoRGBConverters.h"
#include "ZoYUVConverters.h"
#include "support/AreaSupport.h"
#include "support/BuiltInPairs.h"

#ifndef ZO_CHAIN_TABLE_CSV
#define ZO_CHAIN_TABLE_CSV "chained-converters.csv"
#endif

namespace {

using Pair = std::pair<std::int64_t, std::int64_t>;
using zotest::kPoison;
using zotest::Registered;

// One stage as the table names it: a direct converter ("ZoClass 0xS->0xD
// key=value ...") or the chain of an earlier row ("chain#7(0xS->0xD)").
struct StageEntry {
    int chain = -1;
    std::string cls;
    std::int64_t source = 0, destination = 0;
    std::map<std::string, std::string> params;
};

struct ChainEntry {
    int order;
    std::int64_t source, intermediate, destination;
    StageEntry first, second;
    bool registers;
};

std::int64_t Hex(const std::string& s) { return static_cast<std::int64_t>(std::stoll(s, nullptr, 16)); }

StageEntry ParseStage(std::string text)
{
    StageEntry stage;
    if (text.rfind("chain#", 0) == 0) {
        stage.chain = std::stoi(text.substr(6));
        text = "chain " + text.substr(text.find('(') + 1, text.find(')') - text.find('(') - 1);
    }
    std::istringstream words(text);
    std::string pair, param;
    words >> stage.cls >> pair;
    stage.source = Hex(pair.substr(0, pair.find("->")));
    stage.destination = Hex(pair.substr(pair.find("->") + 2));
    while (words >> param)
        stage.params[param.substr(0, param.find('='))] = param.substr(param.find('=') + 1);
    return stage;
}

// The table is part of the repository (tests/data/): a missing or empty one
// fails the tests that read it, never skips them.
const std::vector<ChainEntry>& Table()
{
    static const std::vector<ChainEntry> table = [] {
        std::vector<ChainEntry> rows;
        std::ifstream in(ZO_CHAIN_TABLE_CSV);
        std::string line;
        std::getline(in, line);  // header
        while (std::getline(in, line)) {
            if (!line.empty() && line.back() == '\r')
                line.pop_back();
            std::vector<std::string> f;
            std::istringstream fields(line);
            for (std::string field; std::getline(fields, field, ',');)
                f.push_back(field);
            if (f.size() == 7)
                rows.push_back({std::stoi(f[0]), Hex(f[1]), Hex(f[2]), Hex(f[3]), ParseStage(f[4]),
                                ParseStage(f[5]), f[6] == "yes"});
            else if (!line.empty())
                ADD_FAILURE() << "bad table line: " << line;
        }
        return rows;
    }();
    return table;
}

// The registry as the library left it at load, taken before any test can
// register converters of its own.
std::set<Pair> gPairsAtLoad;
struct RegistrySnapshot : testing::Environment {
    void SetUp() override
    {
        for (const Pair& p : zotest::RegisteredBuiltInPairs())
            gPairsAtLoad.insert(p);
    }
};
testing::Environment* const gSnapshot = testing::AddGlobalTestEnvironment(new RegistrySnapshot);

// The exact class of a converter, compared by its type name.
bool IsExactly(const ZoPixelConverter& c, const std::string& cls)
{
    return std::string(typeid(c).name()) == std::to_string(cls.size()) + cls;
}

bool Flag(const StageEntry& s, const char* key) { return s.params.at(key) == "True"; }
std::uint32_t Num(const StageEntry& s, const char* key) { return static_cast<std::uint32_t>(std::stoul(s.params.at(key))); }
std::uint32_t Pattern(const StageEntry& s)
{
    const std::string& p = s.params.at("pattern");
    return p == "GRBG" ? ZO_FLAG_BAYER_GRBG : p == "GBRG" ? ZO_FLAG_BAYER_GBRG
         : p == "RGGB" ? ZO_FLAG_BAYER_RGGB : ZO_FLAG_BAYER_BGGR;
}

// A second object built from the table's constructor parameters; it does
// not register (the pair is served already) and is compared with the
// registered one. Null for an unknown class.
std::unique_ptr<ZoPixelConverter> Twin(const StageEntry& s)
{
    const std::int64_t src = s.source, dst = s.destination;
    const std::string& c = s.cls;
#define ZO_TWIN(cls, ...) \
    if (c == #cls)          \
    return std::make_unique<cls>(__VA_ARGS__)
    ZO_TWIN(ZoIdentityConverter, src, dst, Num(s, "src_size"), Num(s, "dst_size"));
    ZO_TWIN(ZoBayerRGB16ToRGB16, src, Num(s, "shift"), Pattern(s));
    ZO_TWIN(ZoBayerRGB16ToRGB24, src, Flag(s, "bgr"), Num(s, "shift"), Pattern(s));
    ZO_TWIN(ZoBayerRGB16ToRGB32, src, Flag(s, "bgr"), Num(s, "shift"), Pattern(s));
    ZO_TWIN(ZoBayerRGB16ToRGB48, src, Flag(s, "normalized"), Pattern(s));
    ZO_TWIN(ZoBayerRGB8ToRGB16, src, Num(s, "extra"), Pattern(s));
    ZO_TWIN(ZoBayerRGB8ToRGB24, src, Flag(s, "bgr"), Num(s, "extra"), Pattern(s));
    ZO_TWIN(ZoBayerRGB8ToRGB32, src, Flag(s, "bgr"), Num(s, "extra"), Pattern(s));
    ZO_TWIN(ZoGrayscale16PackedToGrayscale16, src, dst, static_cast<std::int16_t>(Num(s, "b_shift")),
            static_cast<std::uint16_t>(Num(s, "mask")), static_cast<std::int16_t>(Num(s, "a_shift")));
    ZO_TWIN(ZoGrayscale16PackedToRGB24, src, Flag(s, "bgr"), Num(s, "a_shift"), Num(s, "b_shift"));
    ZO_TWIN(ZoGrayscale16ToGrayscale16LeftShift, src, dst, Num(s, "shift"));
    ZO_TWIN(ZoDualGrayscale8ToGrayscale8, src, dst);
    ZO_TWIN(ZoGrayscale8ToRGB16, src, Num(s, "extra"));
    ZO_TWIN(ZoGrayscale8ToRGB24, src, Flag(s, "bgr"), Num(s, "extra"));
    ZO_TWIN(ZoGrayscale8ToRGB32, src, Flag(s, "bgr"), Num(s, "extra"));
    ZO_TWIN(ZoGrayscale16ToRGB24, src, Flag(s, "bgr"), Num(s, "shift"));
    ZO_TWIN(ZoRGB24ToRGB24Planar, src, Num(s, "skip"));
    ZO_TWIN(ZoRGB16ToRGB24, src, Flag(s, "blue_first"));
    ZO_TWIN(ZoRGB24ToRGB24, src, Flag(s, "blue_first"), Num(s, "skip"));
    ZO_TWIN(ZoRGB32ToRGB24, src, Flag(s, "blue_first"), Num(s, "skip"));
    ZO_TWIN(ZoRGB48ToRGB24, src, Num(s, "shift"), Flag(s, "blue_first"));
    ZO_TWIN(ZoRGB64ToRGB24, src, Num(s, "shift"), Flag(s, "blue_first"));
    ZO_TWIN(ZoYUV8ToRGB24, src, Flag(s, "bgr"), Num(s, "extra"));
    ZO_TWIN(ZoYUV10ToRGB24, src, Flag(s, "bgr"), Num(s, "shift"));
    ZO_TWIN(ZoYUV8444ToRGB24, src, Flag(s, "bgr"), Num(s, "extra"), Num(s, "y"), Num(s, "u"), Num(s, "v"));
#undef ZO_TWIN
    return nullptr;
}

constexpr std::uint32_t kWidth = 16, kHeight = 6;

// A filtered (or, with a null filter, plain) area conversion of a kWidth x
// kHeight frame into a poisoned buffer with room for any layout.
std::vector<unsigned char> ConvertArea(const ZoPixelConverter& c, const std::vector<unsigned char>& source,
                                       const zotest::Area& a, const ZoRGBFilter* filter)
{
    std::vector<unsigned char> d((c.GetDestinationByteSize(kWidth) + a.padding) * (kHeight + 1) +
                                     3 * kWidth * kHeight + 64,
                                 kPoison);
    if (filter)
        c.Convert(*filter, source.data(), kWidth, kHeight, d.data(), kWidth, kHeight, a.width, a.height, a.flags,
                  a.padding);
    else
        c.Convert(source.data(), kWidth, kHeight, d.data(), kWidth, kHeight, a.width, a.height, a.flags, a.padding);
    return d;
}

std::vector<unsigned char> SourceFrame(const ZoPixelConverter& c, std::uint32_t seed)
{
    std::mt19937 rng(seed);
    return zotest::RandomBytes(c.GetSourceByteSize(kWidth) * (kHeight + 1) + 64, rng);
}

const std::uint32_t kFlagSets[] = {0, ZO_FLAG_BAYER_GBRG, ZO_FLAG_BAYER_RGGB | ZO_FLAG_BAYER_INTERPOLATE,
                                   ZO_FLAG_BAYER_BGGR | ZO_FLAG_BAYER_INTERPOLATE,
                                   ZO_FLAG_INVERT_DEINTERLACER | ZO_FLAG_BAYER_INTERPOLATE};

}  // namespace

TEST(ChainedRegistry, StagesAreBuiltWithTheTablesParameters)
{
    // Each direct stage the table names is compared, conversion by
    // conversion, with a converter built from the table's parameters.
    ASSERT_FALSE(Table().empty()) << "table of chains not found: " ZO_CHAIN_TABLE_CSV;
    std::set<Pair> seen;
    ZoRGBFilter gains(16);
    gains.SetMultipliers(0.8, 1.3, 0.6, 5, 0, 2);
    const ZoRGBFilter* const filters[] = {nullptr, &gains};
    for (const ChainEntry& row : Table())
        for (const StageEntry* s : {&row.first, &row.second}) {
            if (s->chain >= 0 || !seen.insert({s->source, s->destination}).second)
                continue;
            SCOPED_TRACE(testing::Message() << s->cls << " " << std::hex << s->source << "->" << s->destination);
            const ZoPixelConverter* registered = Registered(s->source, s->destination);
            ASSERT_NE(registered, nullptr);
            ASSERT_TRUE(IsExactly(*registered, s->cls)) << typeid(*registered).name();
            std::unique_ptr<ZoPixelConverter> twin = Twin(*s);
            ASSERT_TRUE(twin) << "no way to build " << s->cls;
            EXPECT_EQ(twin->GetSourceByteSize(kWidth), registered->GetSourceByteSize(kWidth));
            EXPECT_EQ(twin->GetDestinationByteSize(), registered->GetDestinationByteSize());
            const auto source = SourceFrame(*registered, static_cast<std::uint32_t>(seen.size()));
            for (std::uint32_t flags : kFlagSets)
                for (const ZoRGBFilter* filter : filters) {
                    const zotest::Area area{kWidth, kHeight, kWidth, kHeight, kWidth, kHeight - 2, flags, 2};
                    EXPECT_EQ(ConvertArea(*registered, source, area, filter), ConvertArea(*twin, source, area, filter))
                        << "flags " << std::hex << flags << (filter ? " filtered" : "");
                }
        }
    EXPECT_GT(seen.size(), 100u);
}

TEST(ChainedRegistry, SixHundredEightyPairsAtLoadAndTheChainsAreTheTablesRows)
{
    std::set<Pair> chainPairs, tablePairs;
    for (const Pair& p : gPairsAtLoad)
        if (dynamic_cast<const ZoComplexConverter*>(Registered(p.first, p.second)))
            chainPairs.insert(p);
    EXPECT_EQ(gPairsAtLoad.size(), 680u);
    EXPECT_EQ(chainPairs.size(), 225u);
    EXPECT_EQ(Table().size(), 229u);
    for (const ChainEntry& row : Table())
        if (row.registers)
            tablePairs.insert({row.source, row.destination});
    EXPECT_EQ(chainPairs, tablePairs);
}

TEST(ChainedRegistry, EveryRowIsAChainOfItsStagesAndEqualsThemByHand)
{
    // A registering row's chain is made of the table's stages. The first
    // stage converts the whole frame with the caller's filter and flags; the
    // second converts the requested area from there with the default filter.
    const auto& t = Table();
    ASSERT_FALSE(t.empty()) << "table of chains not found: " ZO_CHAIN_TABLE_CSV;
    ZoRGBFilter gains(16);
    gains.SetMultipliers(0.75, 1.25, 0.5, 3, 0, 7);
    std::uint32_t k = 0;
    for (const ChainEntry& row : t) {
        SCOPED_TRACE(testing::Message() << "row " << row.order);
        EXPECT_EQ(row.order, &row - t.data());
        ASSERT_NE(Registered(row.source, row.destination), nullptr);
        const auto* chain = dynamic_cast<const ZoComplexConverter*>(Registered(row.source, row.destination));
        if (!row.registers) {
            EXPECT_EQ(chain, nullptr);  // the pair was served before the chain was built
            continue;
        }
        ASSERT_NE(chain, nullptr);
        ASSERT_EQ(row.second.chain, -1);
        const ZoPixelConverter& first = *chain->GetFirst();
        const ZoPixelConverter& second = *chain->GetSecond();
        EXPECT_EQ(&second, Registered(row.intermediate, row.destination));
        EXPECT_TRUE(IsExactly(second, row.second.cls)) << typeid(second).name() << " for " << row.second.cls;
        EXPECT_EQ(first.GetDestinationType(), row.intermediate);
        if (row.first.chain >= 0) {
            // The chain built by the earlier row (a registered one).
            const ChainEntry& earlier = t.at(row.first.chain);
            ASSERT_TRUE(earlier.registers);
            EXPECT_EQ(&first, Registered(earlier.source, earlier.destination));
        } else {
            EXPECT_EQ(&first, Registered(row.source, row.intermediate));
            EXPECT_TRUE(IsExactly(first, row.first.cls)) << typeid(first).name() << " for " << row.first.cls;
        }

        const zotest::Area area{kWidth, kHeight, kWidth, kHeight, kWidth - 4, kHeight - 2, kFlagSets[k++ % 5], 3};
        const auto source = SourceFrame(*chain, 1000 + row.order);
        std::vector<unsigned char> intermediate(first.GetDestinationByteSize(kWidth * kHeight) + 256, kPoison);
        first.Convert(gains, source.data(), kWidth, kHeight, intermediate.data(), kWidth, kHeight, kWidth, kHeight,
                      area.flags, 0);
        const auto byHand = ConvertArea(second, intermediate, area, nullptr);
        const auto chained = ConvertArea(*chain, source, area, &gains);
        EXPECT_EQ(chained, byHand);
        EXPECT_NE(chained, std::vector<unsigned char>(chained.size(), kPoison));
    }
}
