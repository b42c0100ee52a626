// Packed 10/12-bit unpacking: every registered instance against a plain
// per-pixel reference written here from the rules, byte-level examples,
// placement of two-tap sources, odd widths and guard bytes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ZoPackedConverters.h"
#include "ZoPixelTypeFactory.h"
#include "support/AreaSupport.h"
#include "core/StaticConverters.h"

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
};

const std::int64_t kDual[] = {0x1000000, 0x2000000, 0x4000000, 0x8000000};

std::vector<Instance> ExpectedInstances()
{
    std::vector<Instance> v;
    auto withDuals = [&](std::int64_t src, std::int64_t dst, int b, std::uint32_t m, int a) {
        v.push_back({src, dst, Kind::Gray16, b, m, a});
        for (std::int64_t d : kDual)
            v.push_back({src | d, dst, Kind::Gray16, b, m, a});
    };
    withDuals(0x410002, 0x10002, 4, 0x3FF, 0);
    withDuals(0x410002, 0x10003, 2, 0xFFF, 0);
    v.push_back({0x410002, 0x10005, Kind::Gray16, -2, 0xFFFF, 6});
    for (std::int64_t d : kDual)
        v.push_back({0x410002 | d, 0x10005, Kind::Gray16, 0, 0xFFFF, 6});
    withDuals(0x410002, 0x110002, 0, 0xFFFF, 6);
    withDuals(0x410003, 0x10003, 4, 0xFFF, 0);
    withDuals(0x410003, 0x10002, 4, 0x3FF, 0);
    withDuals(0x410003, 0x10005, 0, 0xFFFF, 4);
    withDuals(0x410003, 0x110003, 0, 0xFFFF, 4);
    v.push_back({0x420011, 0x20011, Kind::Gray16, 6, 0x3FF, 0});
    v.push_back({0x1420011, 0x20011, Kind::Gray16, 6, 0x3FF, 0});
    v.push_back({0x420014, 0x20014, Kind::Gray16, 6, 0x3FF, 0});
    v.push_back({0x1420014, 0x20014, Kind::Gray16, 6, 0x3FF, 0});
    v.push_back({0x420012, 0x20012, Kind::Gray16, 4, 0xFFF, 0});
    v.push_back({0x1420012, 0x20012, Kind::Gray16, 2, 0xFFF, 0});
    v.push_back({0x420015, 0x20015, Kind::Gray16, 4, 0xFFF, 0});
    v.push_back({0x1420015, 0x20015, Kind::Gray16, 2, 0xFFF, 0});
    const struct {
        Kind kind;
        std::int64_t destination;
    } eightBit[] = {{Kind::Gray8, 0x10001},  {Kind::RGB16, 0x20001}, {Kind::RGB24, 0x20002},
                    {Kind::RGB24, 0x20006},  {Kind::RGB32, 0x20003}, {Kind::RGB32, 0x20007}};
    for (const auto& e : eightBit) {
        for (std::int64_t tap : {std::int64_t{0}, kDual[0], kDual[1], kDual[2], kDual[3]}) {
            v.push_back({0x410002 | tap, e.destination, e.kind, 6, 0xFF, 2});
            v.push_back({0x410003 | tap, e.destination, e.kind, 8, 0xFF, 4});
        }
    }
    return v;
}

unsigned BytesPerPixel(Kind k)
{
    const unsigned bytes[] = {2, 1, 2, 3, 4};
    return bytes[int(k)];
}

// Tap bits 0x1000000, 0x2000000, 0x4000000, 0x8000000: modes 1 to 4.
int ModeOf(std::int64_t source)
{
    const int modes[16] = {0, 1, 2, 0, 3, 0, 0, 0, 4};
    return modes[(source >> 24) & 0xF];
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
    if (in.kind == Kind::RGB16) {
        const std::uint32_t w = ((g >> 3) << 11) | ((g >> 2) << 5) | (g >> 3);
        p[0] = static_cast<unsigned char>(w);
        p[1] = static_cast<unsigned char>(w >> 8);
        return;
    }
    for (unsigned i = 0; i < BytesPerPixel(in.kind); ++i)  // RGB32 carries the gray value in its fourth byte
        p[i] = g;
}

// Expected bytes of one line of n pixels written at `line` (which has room
// before and after): every group of the line, odd last pixel included.
void ReferenceLine(const Instance& in, const unsigned char* src, unsigned char* line, std::uint32_t n)
{
    const long h = n / 2, nn = n;
    const int mode = ModeOf(in.source);
    const long bpp = BytesPerPixel(in.kind);
    for (long i = 0; i < (nn + 1) / 2; ++i) {
        const unsigned char* g = src + 3 * i;
        const std::uint32_t w0 = g[0] | (g[1] << 8), w1 = g[1] | (g[2] << 8);
        const long a[] = {2 * i, i, i, h - 1 - i, h - 1 - i};  // where A and B land, by mode
        const long b[] = {2 * i + 1, h + i, nn - 1 - i, h + i, nn - 1 - i};
        ReferenceWrite(in, true, w0, line + a[mode] * bpp);
        ReferenceWrite(in, false, w1, line + b[mode] * bpp);
    }
}

bool IsKind(const ZoPixelConverter* c, Kind k)
{
    using zotest::IsA;
    bool (*const is[])(const ZoPixelConverter*) = {IsA<ZoGrayscale16PackedToGrayscale16>,
        IsA<ZoGrayscale16PackedToGrayscale8>, IsA<ZoGrayscale16PackedToRGB16>, IsA<ZoGrayscale16PackedToRGB24>,
        IsA<ZoGrayscale16PackedToRGB32>};
    return is[int(k)](c);
}

constexpr std::size_t kGuard = 16;  // bytes of poison on each side of a line
constexpr unsigned char kPoison = 0xCD;

// Converts one random line of n pixels with `c` and compares the whole
// padded destination with the reference.
void CheckLine(const ZoPixelConverter& c, const Instance& in, std::uint32_t n, std::mt19937& rng)
{
    const Bytes src = zotest::RandomBytes((n / 2) * 3 + 3 + kGuard, rng);
    const std::size_t bytes = static_cast<std::size_t>(n) * BytesPerPixel(in.kind);
    std::vector<unsigned char> got(bytes + 2 * kGuard, kPoison), want(got);
    EXPECT_EQ(c.Convert(src.data(), got.data() + kGuard, n), 0u);
    ReferenceLine(in, src.data(), want.data() + kGuard, n);
    ASSERT_EQ(got, want) << std::hex << in.source << " -> " << in.destination << std::dec << " n=" << n;
}

const std::uint32_t kWidths[] = {0, 1, 2, 3, 4, 7, 8, 9, 15, 16, 17, 33, 64, 250, 1001};

// The unpacking instances constructed by the family's start-up function into
// a store of our own (their pairs are registered already, so these are not).
class PackedInstances : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ZoAddPackedConverters(sStore); }
    static void TearDownTestSuite() { sStore.Clear(); }
    static ZoStaticConverters sStore;
};
ZoStaticConverters PackedInstances::sStore;

// Exactly the tabled instances, each matching the reference on random lines.
// Through the registry and the area walk: the registered converter of each
// pair is of the tabled class, lines are (width >> 1) x 3 source bytes apart,
// and padded destination lines keep their padding.
TEST_F(PackedInstances, ExactlyTheTabledInstancesMatchTheReference)
{
    const std::vector<Instance> expected = ExpectedInstances();
    ASSERT_EQ(expected.size(), 108u);
    ASSERT_EQ(sStore.Items().size(), 108u);
    std::set<std::pair<std::int64_t, std::int64_t>> pairs;
    for (const ZoPixelConverter* c : sStore.Items())
        pairs.insert({c->GetSourceType(), c->GetDestinationType()});
    EXPECT_EQ(pairs.size(), 108u) << "a pair is constructed twice";
    std::mt19937 rng(7);
    const std::uint32_t width = 22, height = 3, padding = 5;
    for (const Instance& in : expected) {
        SCOPED_TRACE(std::to_string(in.source) + " -> " + std::to_string(in.destination));
        const ZoPixelConverter* c = sStore.Find(in.source, in.destination);
        ASSERT_NE(c, nullptr);
        EXPECT_TRUE(IsKind(c, in.kind));
        EXPECT_EQ(c->GetDestinationByteSize(), BytesPerPixel(in.kind));
        EXPECT_EQ(c->GetSourceByteSize(), 2u);
        for (std::uint32_t n : kWidths)
            CheckLine(*c, in, n, rng);

        ASSERT_TRUE(ZoPixelTypeFactory::HasConverter(in.source, in.destination));
        const ZoPixelConverter& r = ZoPixelTypeFactory::GetConverter(in.source, in.destination);
        ASSERT_TRUE(IsKind(&r, in.kind));
        const std::size_t srcLine = (width / 2) * 3, dstLine = width * BytesPerPixel(in.kind) + padding;
        const Bytes src = zotest::RandomBytes(srcLine * height, rng);
        Bytes got(dstLine * height + kGuard, kPoison), want(got);
        EXPECT_EQ(r.Convert(src.data(), width, height, got.data(), width, height, width, height, 0, padding), 0u);
        for (std::uint32_t y = 0; y < height; ++y)
            ReferenceLine(in, src.data() + y * srcLine, want.data() + y * dstLine, width);
        ASSERT_EQ(got, want);
    }
}

// Groups of two samples, encoded as the 10- and 12-bit packed monochrome
// types carry them (A in group bits 0..N-1, B from group bit 12).
std::vector<unsigned char> Pack12(const std::vector<std::uint32_t>& samples)
{
    std::vector<unsigned char> out;
    for (std::size_t i = 0; i + 1 < samples.size(); i += 2) {
        const std::uint32_t g = (samples[i] & 0xFFF) | ((samples[i + 1] & 0xFFF) << 12);
        out.push_back(static_cast<unsigned char>(g));
        out.push_back(static_cast<unsigned char>(g >> 8));
        out.push_back(static_cast<unsigned char>(g >> 16));
    }
    return out;
}

std::vector<unsigned char> Line(const ZoPixelConverter& c, const std::vector<unsigned char>& src, std::uint32_t n)
{
    std::vector<unsigned char> dst(c.GetDestinationByteSize(n), kPoison);
    EXPECT_EQ(c.Convert(src.data(), dst.data(), n), 0u);
    return dst;
}

std::vector<std::uint16_t> Words(const std::vector<unsigned char>& bytes)
{
    std::vector<std::uint16_t> w;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        w.push_back(static_cast<std::uint16_t>(bytes[i] | (bytes[i + 1] << 8)));
    return w;
}

const ZoPixelConverter& Registered(std::int64_t s, std::int64_t d)
{
    return ZoPixelTypeFactory::GetConverter(s, d);
}

using W = std::vector<std::uint16_t>;

TEST(PackedBytes, TenBitGroups)
{
    // To 8-bit gray (A shift 2, B shift 6).
    EXPECT_EQ(Line(Registered(0x410002, 0x10001), Bytes{0xFF, 0x03, 0x00}, 2), (Bytes{0xFF, 0x00}));
    EXPECT_EQ(Line(Registered(0x410002, 0x10001), Bytes{0x00, 0xF0, 0x3F}, 2), (Bytes{0x00, 0xFF}));
    // W0 = 0x1234, W1 = 0x5612.
    const Bytes g{0x34, 0x12, 0x56};
    EXPECT_EQ(Words(Line(Registered(0x410002, 0x10002), g, 2)), (W{0x234, 0x161}));
    EXPECT_EQ(Words(Line(Registered(0x410002, 0x110002), g, 2)), (W{0x8D00, 0x5612}));
    // Bayer 10-bit packed takes B from bit 14 of the group.
    EXPECT_EQ(Words(Line(Registered(0x420011, 0x20011), g, 2)), (W{0x234, 0x158}));
    EXPECT_EQ(Words(Line(Registered(0x1420014, 0x20014), g, 2)), (W{0x234, 0x158}));
}

TEST(PackedBytes, TwelveBitGroups)
{
    const Bytes g{0x21, 0x43, 0x65};  // A = 0x321, B = 0x654
    EXPECT_EQ(Line(Registered(0x410003, 0x10003), g, 2), (Bytes{0x21, 0x03, 0x54, 0x06}));
    EXPECT_EQ(Words(Line(Registered(0x410003, 0x10002), g, 2)), (W{0x321, 0x254}));
    EXPECT_EQ(Words(Line(Registered(0x410003, 0x10005), g, 2)), (W{0x3210, 0x6543}));
    EXPECT_EQ(Line(Registered(0x410003, 0x10001), g, 2), (Bytes{0x32, 0x65}));
    // RGB: g = 0x32 and 0x65; RGB32 carries the gray value in its fourth byte.
    for (std::int64_t d : {0x20003, 0x20007})
        EXPECT_EQ(Line(Registered(0x410003, d), g, 2), (Bytes{0x32, 0x32, 0x32, 0x32, 0x65, 0x65, 0x65, 0x65}));
    EXPECT_EQ(Line(Registered(0x410003, 0x20006), g, 2), (Bytes{0x32, 0x32, 0x32, 0x65, 0x65, 0x65}));
    EXPECT_EQ(Words(Line(Registered(0x410003, 0x20001), g, 2)), (W{0x3186, 0x632C}));
    EXPECT_EQ(Words(Line(Registered(0x410003, 0x20001), Bytes{0xF0, 0xFF, 0xFF}, 2)), (W{0xFFFF, 0xFFFF}));
}

// Rows that do not scale both samples alike are kept as they are.
TEST(PackedBytes, AsymmetricRows)
{
    const Bytes g{0x34, 0x12, 0x56};  // 10-bit A = 0x234, B = 0x161
    // 10-bit to Gray 12: A unshifted, B shifted left by 2.
    EXPECT_EQ(Words(Line(Registered(0x410002, 0x10003), g, 2)), (W{0x234, 0x584}));
    // 10-bit to Gray 16: B shift -2 for the single-tap source, 0 for its dual forms.
    EXPECT_EQ(Words(Line(Registered(0x410002, 0x10005), g, 2)), (W{0x8D00, 0x5848}));
    for (std::int64_t d : kDual)
        EXPECT_EQ(Words(Line(Registered(0x410002 | d, 0x10005), g, 2)), (W{0x8D00, 0x5612})) << std::hex << d;
    // 12-bit packed Bayer: B shift 4 single-tap, 2 dual-tap.
    const Bytes h{0x21, 0x43, 0x65};
    EXPECT_EQ(Words(Line(Registered(0x420012, 0x20012), h, 2)), (W{0x321, 0x654}));
    EXPECT_EQ(Words(Line(Registered(0x1420012, 0x20012), h, 2)), (W{0x321, 0x950}));
    EXPECT_EQ(Words(Line(Registered(0x420015, 0x20015), h, 2)), (W{0x321, 0x654}));
    EXPECT_EQ(Words(Line(Registered(0x1420015, 0x20015), h, 2)), (W{0x321, 0x950}));
}

TEST(PackedBytes, SourceByteSizeCountsWholeGroups)
{
    // (n >> 1) x 3, the product taken at 32 bits.
    const std::uint32_t cases[][2] = {{7, 9}, {1, 0}, {0, 0}, {8, 12}, {1921, 2880}, {0xFFFFFFFFu, 0x7FFFFFFDu}};
    for (std::int64_t d : {0x10003, 0x10001, 0x20001, 0x20002, 0x20007})
        for (const auto& c : cases)
            EXPECT_EQ(Registered(0x410003, d).GetSourceByteSize(c[0]), c[1]) << d << " " << c[0];
}

TEST(PackedBytes, SinglePixelFormIsNotSupported)
{
    unsigned char src[3] = {1, 2, 3}, dst[8] = {};
    EXPECT_EQ(Registered(0x410003, 0x10003).Convert(src, dst), 26u);
    EXPECT_EQ(Registered(0x410003, 0x20003).Convert(src, dst), 26u);
    for (unsigned char b : dst)
        EXPECT_EQ(b, 0);
}

// Samples A_i = 0xA00 + 0x10 i and B_i = 0xB00 + 0x10 i in every placement mode.
TEST(PackedPlacement, EveryModeWithEightPixels)
{
    std::vector<std::uint32_t> samples;
    for (std::uint32_t i = 0; i < 4; ++i) {
        samples.push_back(0xA00 + 0x10 * i);
        samples.push_back(0xB00 + 0x10 * i);
    }
    const Bytes src = Pack12(samples);
    const struct {
        std::int64_t tap;
        W expected;
    } cases[] = {
        {0, {0xA00, 0xB00, 0xA10, 0xB10, 0xA20, 0xB20, 0xA30, 0xB30}},
        {0x1000000, {0xA00, 0xA10, 0xA20, 0xA30, 0xB00, 0xB10, 0xB20, 0xB30}},
        {0x2000000, {0xA00, 0xA10, 0xA20, 0xA30, 0xB30, 0xB20, 0xB10, 0xB00}},
        {0x4000000, {0xA30, 0xA20, 0xA10, 0xA00, 0xB00, 0xB10, 0xB20, 0xB30}},
        {0x8000000, {0xA30, 0xA20, 0xA10, 0xA00, 0xB30, 0xB20, 0xB10, 0xB00}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Words(Line(Registered(0x410003 | c.tap, 0x10003), src, 8)), c.expected) << std::hex << c.tap;
    // The RGB and 8-bit classes place alike: mode 2, B of groups 0..3 at 7, 6, 5, 4.
    EXPECT_EQ(Line(Registered(0x410003 | 0x2000000, 0x10001), src, 8),
              (Bytes{0xA0, 0xA1, 0xA2, 0xA3, 0xB3, 0xB2, 0xB1, 0xB0}));
    EXPECT_EQ(Line(Registered(0x410003 | 0x4000000, 0x20002), src, 8),
              (Bytes{0xA3, 0xA3, 0xA3, 0xA2, 0xA2, 0xA2, 0xA1, 0xA1, 0xA1, 0xA0, 0xA0, 0xA0,
                     0xB0, 0xB0, 0xB0, 0xB1, 0xB1, 0xB1, 0xB2, 0xB2, 0xB2, 0xB3, 0xB3, 0xB3}));
}

// Odd widths: the last group is converted whole. Single tap: its B lands one
// pixel past the line; Left Inverted taps: its A lands one pixel before it.
TEST(PackedPlacement, OddWidthOverwrites)
{
    const Bytes src = Pack12({1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    auto run16 = [&](std::int64_t tap) {
        Bytes dst(4 + 9 * 2 + 4, kPoison);
        Registered(0x410003 | tap, 0x10003).Convert(src.data(), dst.data() + 4, 9);
        return Words(dst);  // word 0,1 before the line, 2..10 the line, 11, 12 after
    };
    const std::uint16_t P = kPoison * 0x101;
    EXPECT_EQ(run16(0), (W{P, P, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, P}));
    EXPECT_EQ(run16(0x1000000), (W{P, P, 1, 3, 5, 7, 9, 4, 6, 8, 10, P, P}));  // h = 4: A of group 4 over B of group 0
    EXPECT_EQ(run16(0x2000000), (W{P, P, 1, 3, 5, 7, 10, 8, 6, 4, 2, P, P}));  // B of group 4 over its A
    EXPECT_EQ(run16(0x4000000), (W{P, 9, 7, 5, 3, 1, 2, 4, 6, 8, 10, P, P}));
    EXPECT_EQ(run16(0x8000000), (W{P, 9, 7, 5, 3, 1, 10, 8, 6, 4, 2, P, P}));
}

// Every 24-bit group pattern through each distinct unpacking rule.
TEST(PackedSweep, EveryGroupPattern)
{
    const std::uint32_t groupsPerLine = 4096, n = 2 * groupsPerLine;
    std::set<std::vector<long>> seen;
    std::vector<unsigned char> src(groupsPerLine * 3), got, want;
    for (const Instance& in : ExpectedInstances()) {
        if (ModeOf(in.source) != 0 || (in.kind != Kind::Gray16 && in.kind != Kind::Gray8))
            continue;
        if (!seen.insert({static_cast<long>(in.kind), in.bShift, static_cast<long>(in.mask), in.aShift}).second)
            continue;
        const ZoPixelConverter& c = Registered(in.source, in.destination);
        got.assign(static_cast<std::size_t>(n) * BytesPerPixel(in.kind), 0);
        want = got;
        for (std::uint32_t start = 0; start < (1u << 24); start += groupsPerLine) {
            for (std::uint32_t i = 0; i < groupsPerLine; ++i) {
                const std::uint32_t g = start + i;
                src[3 * i] = static_cast<unsigned char>(g);
                src[3 * i + 1] = static_cast<unsigned char>(g >> 8);
                src[3 * i + 2] = static_cast<unsigned char>(g >> 16);
            }
            c.Convert(src.data(), got.data(), n);
            ReferenceLine(in, src.data(), want.data(), n);
            ASSERT_EQ(got, want) << std::hex << in.source << " -> " << in.destination << " from group " << start;
        }
    }
    EXPECT_EQ(seen.size(), 9u);
}

}  // namespace
