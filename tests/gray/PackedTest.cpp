// Packed 10/12-bit unpacking: every registered instance against a plain
// per-pixel reference written here from the rules, byte-level examples,
// placement of two-tap sources, odd widths and guard bytes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "ZoPackedConverters.h"
#include "ZoPixelTypeFactory.h"
#include "support/AreaSupport.h"
#include "support/FamilyTables.h"
#include "gray/TapPlacement.h"

namespace {

using Bytes = std::vector<unsigned char>;

enum class Kind { Gray16, Gray8, RGB16, RGB24, RGB32 };

// One registered instance: for Gray16, bShift/mask/aShift as the constructor
// takes them; for the others aShift and bShift are right shifts.
struct Instance {
    std::int64_t source;
    std::int64_t destination;
    Kind kind;
    int bShift;
    std::uint32_t mask;
    int aShift;
    unsigned destinationBytes;
};

// The registered instances (tests/data/registry.csv): the class gives the kind.
std::vector<Instance> RegisteredInstances()
{
    const char* classes[] = {"ZoGrayscale16PackedToGrayscale16", "ZoGrayscale16PackedToGrayscale8",
                             "ZoGrayscale16PackedToRGB16", "ZoGrayscale16PackedToRGB24", "ZoGrayscale16PackedToRGB32"};
    std::vector<Instance> v;
    for (const zotest::RegistryRow& r : zotest::RegistryTable())
        for (int k = 0; k < 5; ++k)
            if (r.className == classes[k])
                v.push_back({r.source, r.destination, Kind(k), int(r.Param("bShift")), std::uint32_t(r.Param("mask")),
                             int(r.Param("aShift")), r.destinationBytes});
    return v;
}

// Writes sample `word` (from W0 for A, W1 for B) of instance `in` at pixel `p`.
void ReferenceWrite(const Instance& in, bool isA, std::uint32_t word, unsigned char* p)
{
    if (in.kind == Kind::Gray16) {
        std::uint32_t v;
        if (isA)
            v = static_cast<std::uint16_t>(word << in.aShift) & in.mask;
        else if (in.bShift >= 0)
            v = (word >> in.bShift) & in.mask;
        else
            v = static_cast<std::uint16_t>(word << -in.bShift) & in.mask;
        p[0] = static_cast<unsigned char>(v);
        p[1] = static_cast<unsigned char>(v >> 8);
        return;
    }
    const unsigned char g = static_cast<unsigned char>(word >> (isA ? in.aShift : in.bShift));
    if (in.kind == Kind::RGB16)
        return zotest::WriteRGB(ZO_PT_RGB16, p, g, g, g);
    for (unsigned i = 0; i < in.destinationBytes; ++i)  // RGB32 carries the gray value in its fourth byte
        p[i] = g;
}

// Expected bytes of one line of n pixels written at `line` (which has room
// before and after): every group of the line, odd last pixel included.
void ReferenceLine(const Instance& in, const unsigned char* src, unsigned char* line, std::uint32_t n)
{
    tap_test::PlacePairs(in.source, n, [&](long at, bool isA, long i) {
        const unsigned char* g = src + 3 * i + (isA ? 0 : 1);
        ReferenceWrite(in, isA, g[0] | (g[1] << 8), line + at * long(in.destinationBytes));
    });
}

constexpr std::size_t kGuard = 16;  // bytes of poison on each side of a line
using zotest::kPoison;

// Converts one random line of n pixels with `c` and compares the whole
// padded destination with the reference.
void CheckLine(const ZoPixelConverter& c, const Instance& in, std::uint32_t n, std::mt19937& rng)
{
    const Bytes src = zotest::RandomBytes((n / 2) * 3 + 3 + kGuard, rng);
    const std::size_t bytes = static_cast<std::size_t>(n) * in.destinationBytes;
    std::vector<unsigned char> got(bytes + 2 * kGuard, kPoison), want(got);
    EXPECT_EQ(c.Convert(src.data(), got.data() + kGuard, n), 0u);
    ReferenceLine(in, src.data(), want.data() + kGuard, n);
    ASSERT_EQ(got, want) << std::hex << in.source << " -> " << in.destination << std::dec << " n=" << n;
}

const std::uint32_t kWidths[] = {0, 1, 2, 3, 4, 7, 8, 9, 15, 16, 17, 33, 64, 250, 1001};

// Every registered instance against the reference on random lines, and
// through the area walk: lines are (width >> 1) x 3 source bytes apart, and
// padded destination lines keep their padding.
TEST(PackedConverters, EveryRegisteredInstanceMatchesTheReference)
{
    const std::vector<Instance> expected = RegisteredInstances();
    ASSERT_EQ(expected.size(), 108u);
    std::mt19937 rng(7);
    const std::uint32_t width = 22, height = 3, padding = 5;
    for (const Instance& in : expected) {
        SCOPED_TRACE(std::to_string(in.source) + " -> " + std::to_string(in.destination));
        const ZoPixelConverter& r = ZoPixelTypeFactory::GetConverter(in.source, in.destination);
        for (std::uint32_t n : kWidths)
            CheckLine(r, in, n, rng);
        const std::size_t srcLine = (width / 2) * 3, dstLine = width * in.destinationBytes + padding;
        const Bytes src = zotest::RandomBytes(srcLine * height, rng);
        Bytes got(dstLine * height + kGuard, kPoison), want(got);
        EXPECT_EQ(r.Convert(src.data(), width, height, got.data(), width, height, width, height, 0, padding), 0u);
        for (std::uint32_t y = 0; y < height; ++y)
            ReferenceLine(in, src.data() + y * srcLine, want.data() + y * dstLine, width);
        ASSERT_EQ(got, want);
    }
}

Bytes W(std::initializer_list<std::uint16_t> words)
{
    Bytes out;
    for (std::uint16_t w : words) {
        out.push_back(static_cast<unsigned char>(w));
        out.push_back(static_cast<unsigned char>(w >> 8));
    }
    return out;
}

// Hand-worked groups. 10-bit group {0x34, 0x12, 0x56}: W0 = 0x1234, W1 =
// 0x5612, A = 0x234, B = 0x161. 12-bit group {0x21, 0x43, 0x65}: A = 0x321,
// B = 0x654. Eight 12-bit samples A_i = 0xA00 + 0x10 i, B_i = 0xB00 + 0x10 i
// in every placement mode (the placement the dual-tap reference shares).
TEST(PackedConverters, HandWorkedGroups)
{
    using zotest::Example;
    const unsigned char eight[32] = {0x00, 0x0A, 0xB0, 0x10, 0x0A, 0xB1, 0x20, 0x0A, 0xB2, 0x30, 0x0A, 0xB3};
    std::vector<Example> examples = {
        // 10 bits to 8-bit gray (A shift 2, B shift 6), 10- and 16-bit gray.
        {0x410002, 0x10001, {0xFF, 0x03, 0x00}, 2, {0xFF, 0x00}},
        {0x410002, 0x10002, {0x34, 0x12, 0x56}, 2, W({0x234, 0x161})},
        {0x410002, 0x110002, {0x34, 0x12, 0x56}, 2, W({0x8D00, 0x5612})},
        // Bayer 10-bit packed takes B from bit 14 of the group.
        {0x420011, 0x20011, {0x34, 0x12, 0x56}, 2, W({0x234, 0x158})},
        // Rows that do not scale both samples alike: to Gray 12, A unshifted
        // and B shifted left by 2; to Gray 16, B shift -2 single-tap, 0 dual.
        {0x410002, 0x10003, {0x34, 0x12, 0x56}, 2, W({0x234, 0x584})},
        {0x410002, 0x10005, {0x34, 0x12, 0x56}, 2, W({0x8D00, 0x5848})},
        {0x2410002, 0x10005, {0x34, 0x12, 0x56}, 2, W({0x8D00, 0x5612})},
        {0x8410002, 0x10005, {0x34, 0x12, 0x56}, 2, W({0x8D00, 0x5612})},
        // 12 bits.
        {0x410003, 0x10003, {0x21, 0x43, 0x65}, 2, W({0x321, 0x654})},
        {0x410003, 0x10002, {0x21, 0x43, 0x65}, 2, W({0x321, 0x254})},
        {0x410003, 0x10005, {0x21, 0x43, 0x65}, 2, W({0x3210, 0x6543})},
        {0x410003, 0x10001, {0x21, 0x43, 0x65}, 2, {0x32, 0x65}},
        // RGB of gray 0x32 and 0x65; RGB32 carries the gray value in its fourth byte.
        {0x410003, 0x20003, {0x21, 0x43, 0x65}, 2, {0x32, 0x32, 0x32, 0x32, 0x65, 0x65, 0x65, 0x65}},
        {0x410003, 0x20006, {0x21, 0x43, 0x65}, 2, {0x32, 0x32, 0x32, 0x65, 0x65, 0x65}},
        {0x410003, 0x20001, {0x21, 0x43, 0x65}, 2, W({0x3186, 0x632C})},
        {0x410003, 0x20001, {0xF0, 0xFF, 0xFF}, 2, W({0xFFFF, 0xFFFF})},
        // 12-bit packed Bayer: B shift 4 single-tap, 2 dual-tap.
        {0x420012, 0x20012, {0x21, 0x43, 0x65}, 2, W({0x321, 0x654})},
        {0x1420012, 0x20012, {0x21, 0x43, 0x65}, 2, W({0x321, 0x950})},
        // Placement; the RGB and 8-bit classes place alike.
        {0x2410003, 0x10001, {}, 8, {0xA0, 0xA1, 0xA2, 0xA3, 0xB3, 0xB2, 0xB1, 0xB0}},
        {0x4410003, 0x20002, {}, 8, {0xA3, 0xA3, 0xA3, 0xA2, 0xA2, 0xA2, 0xA1, 0xA1, 0xA1, 0xA0, 0xA0, 0xA0,
                                     0xB0, 0xB0, 0xB0, 0xB1, 0xB1, 0xB1, 0xB2, 0xB2, 0xB2, 0xB3, 0xB3, 0xB3}},
        {0x410003, 0x10003, {}, 8, W({0xA00, 0xB00, 0xA10, 0xB10, 0xA20, 0xB20, 0xA30, 0xB30})},
        {0x1410003, 0x10003, {}, 8, W({0xA00, 0xA10, 0xA20, 0xA30, 0xB00, 0xB10, 0xB20, 0xB30})},
        {0x2410003, 0x10003, {}, 8, W({0xA00, 0xA10, 0xA20, 0xA30, 0xB30, 0xB20, 0xB10, 0xB00})},
        {0x4410003, 0x10003, {}, 8, W({0xA30, 0xA20, 0xA10, 0xA00, 0xB00, 0xB10, 0xB20, 0xB30})},
        {0x8410003, 0x10003, {}, 8, W({0xA30, 0xA20, 0xA10, 0xA00, 0xB30, 0xB20, 0xB10, 0xB00})},
        // An odd width converts the last group whole: samples 1, 2, ... 10 in
        // nine pixels; h = 4, so A of group 4 lands over B of group 0.
        {0x1410003, 0x10003, {0x01, 0x20, 0, 0x03, 0x40, 0, 0x05, 0x60, 0, 0x07, 0x80, 0, 0x09, 0xA0, 0}, 9,
         W({1, 3, 5, 7, 9, 4, 6, 8, 10, kPoison * 0x101})},
    };
    for (Example& e : examples)
        if (e.count == 8)
            std::copy(eight, eight + 32, e.in);
    zotest::CheckExamples(examples);
}

// Source sizes count whole groups, (n >> 1) x 3 taken at 32 bits; the
// single-pixel form is refused and writes nothing.
TEST(PackedConverters, SourceSizesAndSinglePixelForm)
{
    const std::uint32_t cases[][2] = {{7, 9}, {1, 0}, {0, 0}, {8, 12}, {1921, 2880}, {0xFFFFFFFFu, 0x7FFFFFFDu}};
    unsigned char src[3] = {1, 2, 3}, dst[8] = {};
    for (std::int64_t d : {0x10003, 0x10001, 0x20001, 0x20002, 0x20007}) {
        const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(0x410003, d);
        for (const auto& k : cases)
            EXPECT_EQ(c.GetSourceByteSize(k[0]), k[1]) << d << " " << k[0];
        EXPECT_EQ(c.Convert(src, dst), ZO_ERR_NOT_SUPPORTED);
    }
    EXPECT_EQ(Bytes(dst, dst + 8), Bytes(8, 0));
}

}  // namespace
