// The built-in chained converters against the settled table of chains, and
// the chains' intermediate frame: refused when it cannot be held, its line
// after an odd height a copy, and nothing of an earlier frame in the output.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "ZoGenericConverters.h"
#include "ZoPixelTypeFactory.h"
#include "support/AreaSupport.h"
#include "support/ConvertSupport.h"

#ifndef ZO_CHAIN_TABLE_CSV
#define ZO_CHAIN_TABLE_CSV "chained-converters.csv"
#endif

namespace {

using Pair = std::pair<std::int64_t, std::int64_t>;
using zotest::kPoison;
using zotest::Registered;

// A row of the table. Its stages are named as direct converters ("ZoClass
// 0xS->0xD key=value ...": registered converters, whose class and parameters
// the golden registry table checks), kept here as -1, or as the chain of an
// earlier row ("chain#7(0xS->0xD)"), kept as that row's number.
struct ChainEntry {
    int order;
    std::int64_t source, intermediate, destination;
    int first, second;
    bool registers;
};

std::int64_t Hex(const std::string& s) { return static_cast<std::int64_t>(std::stoll(s, nullptr, 16)); }

int ParseStage(const std::string& text) { return text.rfind("chain#", 0) == 0 ? std::stoi(text.substr(6)) : -1; }

// The table is part of the repository (tests/data/): a missing or empty one
// fails the tests that read it, never skips them.
const std::vector<ChainEntry>& Table()
{
    static const std::vector<ChainEntry> table = [] {
        std::vector<ChainEntry> rows;
        for (const auto& f : zotest::CsvRows(ZO_CHAIN_TABLE_CSV, 7))
            if (f.size() != 7)
                ADD_FAILURE() << "bad table line: " << f[0];
            else if (f[0] != "order")  // the header
                rows.push_back({std::stoi(f[0]), Hex(f[1]), Hex(f[2]), Hex(f[3]), ParseStage(f[4]),
                                ParseStage(f[5]), f[6] == "yes"});
        return rows;
    }();
    return table;
}

constexpr std::uint32_t kWidth = 16, kHeight = 6;

// A filtered (or, with a null filter, plain) area conversion of a kWidth x
// sourceHeight frame into a poisoned buffer with room for any layout.
std::vector<unsigned char> ConvertArea(const ZoPixelConverter& c, const std::vector<unsigned char>& source,
                                       const zotest::Area& a, const ZoRGBFilter* filter)
{
    std::vector<unsigned char> d((c.GetDestinationByteSize(kWidth) + a.padding) * (kHeight + 1) +
                                     3 * kWidth * kHeight + 64,
                                 kPoison);
    const std::uint32_t h = a.sourceHeight;
    if (filter)
        c.Convert(*filter, source.data(), kWidth, h, d.data(), kWidth, h, a.width, a.height, a.flags, a.padding);
    else
        c.Convert(source.data(), kWidth, h, d.data(), kWidth, h, a.width, a.height, a.flags, a.padding);
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

TEST(ChainedRegistry, EveryRowIsAChainOfItsStagesAndEqualsThemByHand)
{
    // The registry's 225 chains (the golden registry table's
    // ZoComplexConverter rows) are the registering rows' pairs. A registering
    // row's chain is made of the table's stages. The first stage converts the
    // whole frame with the caller's filter and flags; the second converts the
    // requested area from there with the default filter.
    const auto& t = Table();
    ASSERT_EQ(t.size(), 229u) << "table of chains: " ZO_CHAIN_TABLE_CSV;
    std::set<Pair> chainPairs;
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
        ASSERT_EQ(row.second, -1);
        chainPairs.insert({row.source, row.destination});
        const ZoPixelConverter& first = *chain->GetFirst();
        const ZoPixelConverter& second = *chain->GetSecond();
        EXPECT_EQ(&second, Registered(row.intermediate, row.destination));
        EXPECT_EQ(first.GetDestinationType(), row.intermediate);
        // The chain built by an earlier row (a registered one), or the direct converter.
        const ChainEntry* earlier = row.first >= 0 ? &t.at(row.first) : nullptr;
        ASSERT_TRUE(!earlier || earlier->registers);
        EXPECT_EQ(&first, earlier ? Registered(earlier->source, earlier->destination)
                                  : Registered(row.source, row.intermediate));

        // An area inside the frame, and whole frames of odd heights: the
        // line after an odd-height intermediate frame (which a replicating
        // second stage reads) is a copy of line height - 2 (line 0 at height
        // 1), so the last output row takes the colours of the row above.
        const auto source = SourceFrame(*chain, 1000 + row.order);
        const std::uint32_t flags = kFlagSets[k++ % 5];
        for (std::uint32_t h : {kHeight, 5u, 1u}) {
            const zotest::Area area{kWidth, h, kWidth, h, kWidth - (h == kHeight ? 4 : 0),
                                    h == kHeight ? h - 2 : h, flags, 3};
            const std::size_t line = first.GetDestinationByteSize(kWidth);
            std::vector<unsigned char> intermediate(line * (h + 1) + 256, kPoison);
            first.Convert(gains, source.data(), kWidth, h, intermediate.data(), kWidth, h, kWidth, h, flags, 0);
            std::memcpy(&intermediate[line * h], &intermediate[line * (h >= 2 ? h - 2 : 0)], line);
            const auto chained = ConvertArea(*chain, source, area, &gains);
            EXPECT_EQ(chained, ConvertArea(second, intermediate, area, nullptr)) << "height " << h;
            EXPECT_NE(chained, std::vector<unsigned char>(chained.size(), kPoison));
            // The output depends on this call's input alone: not on what an
            // earlier, taller frame (above, or another here) left behind, on
            // this thread or another.
            std::vector<unsigned char> again;
            const zotest::Area whole{kWidth, kHeight, kWidth, kHeight, kWidth, kHeight, flags, 0};
            std::thread([&] {
                ConvertArea(*chain, SourceFrame(*chain, row.order), whole, nullptr);
                again = ConvertArea(*chain, source, area, &gains);
            }).join();
            EXPECT_EQ(again, chained) << "height " << h << " after another frame";
        }
    }
    EXPECT_EQ(chainPairs.size(), 225u);
}

TEST(ChainFrame, SizedInSixtyFourBitsAndRefusedWhenItCannotBeHeld)
{
    // A conversion that would need an intermediate frame (or line) of 4 GiB
    // or more, or reach outside the source frame, reads and writes nothing:
    // tiny buffers stand for the frames.
    const ZoPixelConverter& planar = ZoPixelTypeFactory::GetConverter(ZO_PT_GRAY8, ZO_PT_RGB24 | ZO_PIXEL_PLANAR);
    ASSERT_NE(dynamic_cast<const ZoComplexConverter*>(&planar), nullptr);
    std::vector<unsigned char> source(64, 7), destination(256, kPoison);
    const std::uint32_t refused[][4] = {
        {65536, 21846, 65536, 21846},  // 3 x 65536 x 21846 bytes in between: 4 GiB + 131072, 131072 in 32 bits
        {65536, 21845, 65536, 21845},  // just below 4 GiB, but its extra line takes it past
        {0x40000000, 1, 0x40000000, 1},  // 3 GiB lines
        {4, 3, 5, 3},                  // wider than the source frame
        {4, 3, 4, 4},                  // taller than the source frame
    };
    for (const auto& c : refused) {
        EXPECT_EQ(planar.Convert(source.data(), c[0], c[1], destination.data(), c[0], c[1], c[2], c[3], 0, 0),
                  ZO_ERR_BAD_ARGUMENT);
        EXPECT_EQ(destination, std::vector<unsigned char>(256, kPoison));
    }
    // The line form: one intermediate line of 3 x 0x60000000 bytes.
    EXPECT_EQ(planar.Convert(source.data(), destination.data(), 0x60000000u), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(destination, std::vector<unsigned char>(256, kPoison));
}
