// Bayer kernels: replicating (one pair of lines, 2x2 cells) and
// interpolating (one line with its neighbours above and below). They are
// templates over the sample reader (`Src`), the output (`Out`: filter lookup
// and destination layout) and the pattern or row phase, and take every other
// parameter explicitly; they never touch the context.
#ifndef ZO_BAYER_KERNELS_H
#define ZO_BAYER_KERNELS_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "bayer/BayerLayout.h"
#include "bayer/BayerPaths.h"
#include "core/PixelIO.h"
#include "simd/LutForm.h"
#include "simd/LutScaled.h"

namespace zo {

// ---- Sample readers: the sample i positions after p -----------------------

// One byte per sample, `Step` bytes apart, read at byte `Offset` of each
// (the upper byte of a little-endian word for Step 2, Offset 1).
template <unsigned Step, unsigned Offset>
struct ByteSamples {
    static constexpr unsigned kBytes = Step;
    static std::uint32_t At(const unsigned char* p, std::ptrdiff_t i) { return p[i * Step + Offset]; }
};
using Samples8 = ByteSamples<1, 0>;
using UpperBytes16 = ByteSamples<2, 1>;

// Whole 16-bit little-endian words.
struct Samples16 {
    static constexpr unsigned kBytes = 2;
    static std::uint32_t At(const unsigned char* p, std::ptrdiff_t i) { return LoadLE16(p + 2 * i); }
};

// ---- Outputs: filter lookup and destination layout -------------------------

// 8-bit channel layouts through the filter's 8-bit tables. With `Shifted`
// (16-bit samples) a value is first shifted right by `shift` and its low
// 8 bits index the table; otherwise it is a byte already.
template <class Writer, bool Shifted>
struct Filtered8 {
    static constexpr unsigned kBytes = Writer::kBytes;
    const std::uint8_t* red;
    const std::uint8_t* green;
    const std::uint8_t* blue;
    unsigned shift;
    void Put(unsigned char* d, std::uint32_t r, std::uint32_t g, std::uint32_t b) const
    {
        if (Shifted) {
            r = (r >> shift) & 0xFF;
            g = (g >> shift) & 0xFF;
            b = (b >> shift) & 0xFF;
        }
        Writer::Put(d, red[r], green[g], blue[b]);
    }
};

// The same when the 8-bit tables are the identity: the lookups are skipped.
template <class Writer, bool Shifted>
struct Identity8 {
    static constexpr unsigned kBytes = Writer::kBytes;
    unsigned shift;
    void Put(unsigned char* d, std::uint32_t r, std::uint32_t g, std::uint32_t b) const
    {
        if (Shifted) {
            r >>= shift;
            g >>= shift;
            b >>= shift;
        }
        Writer::Put(d, static_cast<std::uint8_t>(r), static_cast<std::uint8_t>(g), static_cast<std::uint8_t>(b));
    }
};

// The same for 8-bit samples through tables that have an arithmetic form
// (`plan`: simd/LutForm.h, in byte order of the layout): the scalar loops
// look the channels up, the vector path evaluates the forms (the same bytes).
template <class Writer>
struct Formed8 : Filtered8<Writer, false> {
    const simd::LutFormPlan8* plan;
};

// The same for 16-bit samples into 8-bit layouts through tables that all
// have scaled forms (the Bayer paths' wordsScaled): the scalar loops look
// the shifted values up, the vector path evaluates the forms.
template <class Writer>
struct ScaledWords8 : Filtered8<Writer, true> {
    const simd::LutFormPlan8* plan;
};

// The same for 8-bit samples where the level's vector path looks the
// channels up itself (the Bayer paths' bytesLookup): the same lookups in
// the scalar loops and in the vector path.
template <class Writer>
struct Looked8 : Filtered8<Writer, false> {};

// RGB48 through the filter's 16-bit tables (16-bit values index them).
struct Filtered48 {
    static constexpr unsigned kBytes = 6;
    static constexpr unsigned shift = 0;
    const std::uint16_t* red;
    const std::uint16_t* green;
    const std::uint16_t* blue;
    void Put(unsigned char* d, std::uint32_t r, std::uint32_t g, std::uint32_t b) const
    {
        WriteRGB48::Put(d, red[r], green[g], blue[b]);
    }
};

// The same through 16-bit tables that have an arithmetic form (`plan`):
// lookups in the scalar loops, the forms in the vector path.
struct Formed48 : Filtered48 {
    const simd::LutFormPlan16* plan;
};

struct Identity48 {
    static constexpr unsigned kBytes = 6;
    static constexpr unsigned shift = 0;
    void Put(unsigned char* d, std::uint32_t r, std::uint32_t g, std::uint32_t b) const
    {
        WriteRGB48::Put(d, static_cast<std::uint16_t>(r), static_cast<std::uint16_t>(g), static_cast<std::uint16_t>(b));
    }
};

// ---- Replicating: 2x2 cells ------------------------------------------------
//
//   line 0:  c0 c1       GRBG: G R   GBRG: G B   RGGB: R G   BGGR: B G
//   line 1:  c0 c1             B G         R G         G B         G R
//
// Both pixels of both lines take the cell's red and blue; the left pixel the
// green of line 0, the right pixel the green of line 1.

struct BayerCell {
    int redLine, redColumn;
    int blueLine, blueColumn;
    int green0Column;  // column of line 0's green (line 1's is the other)
};

constexpr BayerCell kBayerCells[4] = {
    {0, 1, 1, 0, 0},  // GRBG
    {1, 0, 0, 1, 0},  // GBRG
    {0, 0, 1, 1, 1},  // RGGB
    {1, 1, 0, 0, 1},  // BGGR
};

// Converts source lines line0/line1 into destination line dst0, eight
// pixels (four cells) per pass, then the remaining whole cells, then a last
// half cell for an odd count (its missing column's colour comes from the
// pixel to the left, 0 without one; its green is the cell's green in its own
// column). Nothing beyond `count` pixels is read or written. The second
// destination line of the pair is a copy of the first (ReplicateCall).
//
// RedQuirk: deliberately, the second cell of every eight-pixel pass takes
// its red from pixel 4 of line 0 (in GRBG a green site) rather than from its
// own red site. Only the 8-bit RGB16 GRBG routine uses it.
template <class Src, class Out, int Pattern, bool RedQuirk>
void ReplicateLines(const unsigned char* line0, const unsigned char* line1, unsigned char* dst0, std::uint32_t count,
                    const Out& out)
{
    constexpr BayerCell c = kBayerCells[Pattern];
    constexpr unsigned kOut = Out::kBytes;
    const unsigned char* redLine = c.redLine ? line1 : line0;
    const unsigned char* blueLine = c.blueLine ? line1 : line0;
    const unsigned char* green0Line = c.green0Column == 0 ? line0 : line1;  // green in column 0

    auto cell = [&](std::uint32_t x, std::uint32_t red) {
        const std::uint32_t blue = Src::At(blueLine, x + c.blueColumn);
        const std::uint32_t g0 = Src::At(line0, x + c.green0Column);
        const std::uint32_t g1 = Src::At(line1, x + 1 - c.green0Column);
        out.Put(dst0 + x * kOut, red, g0, blue);
        out.Put(dst0 + (x + 1) * kOut, red, g1, blue);
    };
    auto red = [&](std::uint32_t x) { return Src::At(redLine, x + c.redColumn); };

    std::uint32_t x = 0;
    for (; x + 8 <= count; x += 8) {
        cell(x, red(x));
        cell(x + 2, RedQuirk ? Src::At(line0, x + 4) : red(x + 2));
        cell(x + 4, red(x + 4));
        cell(x + 6, red(x + 6));
    }
    for (; x + 2 <= count; x += 2)
        cell(x, red(x));
    if (x < count) {
        auto sample = [&](const unsigned char* line, int column) -> std::uint32_t {
            if (column == 0)
                return Src::At(line, x);
            return x > 0 ? Src::At(line, x - 1) : 0;
        };
        out.Put(dst0 + x * kOut, sample(redLine, c.redColumn), Src::At(green0Line, x), sample(blueLine, c.blueColumn));
    }
}

template <class Src, class Out>
void ReplicateByPattern(int pattern, bool redQuirk, const unsigned char* line0, const unsigned char* line1,
                        unsigned char* dst0, std::uint32_t count, const Out& out)
{
    switch (pattern) {
    case kGRBG:
        if (redQuirk)
            ReplicateLines<Src, Out, kGRBG, true>(line0, line1, dst0, count, out);
        else
            ReplicateLines<Src, Out, kGRBG, false>(line0, line1, dst0, count, out);
        break;
    case kGBRG:
        ReplicateLines<Src, Out, kGBRG, false>(line0, line1, dst0, count, out);
        break;
    case kRGGB:
        ReplicateLines<Src, Out, kRGGB, false>(line0, line1, dst0, count, out);
        break;
    default:
        ReplicateLines<Src, Out, kBGGR, false>(line0, line1, dst0, count, out);
        break;
    }
}

// ---- Interpolating ---------------------------------------------------------
//
// Row phases (colours of even, odd pixels): 0 G R, 1 G B, 2 R G, 3 B G; the
// rows above and below carry phase 3 - p. For a pixel P of the current line:
//
//     AL  A  AR      at a red or blue site: green = (A + B + L + R) >> 2,
//      L  P  R         the opposite colour = (AL + AR + BL + BR) >> 2;
//     BL  B  BR      at a green site: the colour of its row = (L + R) >> 1,
//                      the colour of its column = (A + B) >> 1.
//
// At the edges of the area only the neighbours inside it count: three
// summed / 3, two summed >> 1, a lone one as it is (none: 0). Sums of raw
// samples, truncated, looked up in the filter afterwards.

enum BayerColour : int { kRed = 0, kGreen = 1, kBlue = 2 };
constexpr int kEvenColour[4] = {kGreen, kGreen, kRed, kBlue};
constexpr int kOddColour[4] = {kRed, kBlue, kGreen, kGreen};

inline std::uint32_t BayerAverage(std::uint32_t sum, unsigned n)
{
    switch (n) {
    case 0: return 0;
    case 1: return sum;
    case 2: return sum >> 1;
    case 3: return sum / 3;
    default: return sum >> 2;
    }
}

// One pixel anywhere on a line, with its neighbours limited to the area.
// `above`/`below` are byte offsets of the neighbouring lines, used only when
// they exist.
template <class Src>
inline void BayerEdgePixel(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below, bool hasAbove,
                           bool hasBelow, std::uint32_t x, std::uint32_t count, int phase, std::uint32_t rgb[3])
{
    const std::ptrdiff_t i = x;
    const bool hasLeft = x > 0, hasRight = x + 1 < count;
    const unsigned across = unsigned(hasLeft) + unsigned(hasRight);
    const unsigned upDown = unsigned(hasAbove) + unsigned(hasBelow);
    const int own = (x & 1) ? kOddColour[phase] : kEvenColour[phase];
    // Sums of the existing neighbours: left + right, above + below, and the
    // diagonals.
    const std::uint32_t row = (hasLeft ? Src::At(line, i - 1) : 0) + (hasRight ? Src::At(line, i + 1) : 0);
    std::uint32_t column = 0, diagonal = 0;
    for (int k = 0; k < 2; ++k) {
        const bool has = k == 0 ? hasAbove : hasBelow;
        if (!has)
            continue;
        const unsigned char* l = line + (k == 0 ? above : below);
        column += Src::At(l, i);
        if (hasLeft)
            diagonal += Src::At(l, i - 1);
        if (hasRight)
            diagonal += Src::At(l, i + 1);
    }
    rgb[own] = Src::At(line, i);
    if (own == kGreen) {
        const int rowColour = (x & 1) ? kEvenColour[phase] : kOddColour[phase];
        rgb[rowColour] = BayerAverage(row, across);
        rgb[2 - rowColour] = BayerAverage(column, upDown);
    } else {
        rgb[kGreen] = BayerAverage(row + column, across + upDown);
        rgb[2 - own] = BayerAverage(diagonal, across * upDown);
    }
}

// Pixel pairs (x, x+1), x even, from `from` to `to` (exclusive) of the first
// or last line of an area of two lines or more: every pixel has its left and
// right neighbours and one neighbouring line, `other` bytes away.
//   green site: its row's colour (L + R) >> 1, its column's colour the lone
//   sample of the other line; red or blue site: green (L + R + V) / 3, the
//   opposite colour the two diagonals >> 1.
template <class Src, class Out, int Phase>
void InterpolateEdgeLinePairs(const unsigned char* line, std::ptrdiff_t other, unsigned char* dst,
                              std::uint32_t from, std::uint32_t to, const Out& out)
{
    const unsigned char* v = line + other;
    constexpr unsigned kOut = Out::kBytes;
    for (std::ptrdiff_t x = from; x < static_cast<std::ptrdiff_t>(to); x += 2) {
        unsigned char* d = dst + x * kOut;
        if (Phase < 2) {
            const std::uint32_t g0 = Src::At(line, x);
            const std::uint32_t row0 = (Src::At(line, x - 1) + Src::At(line, x + 1)) >> 1;
            const std::uint32_t column0 = Src::At(v, x);
            const std::uint32_t own1 = Src::At(line, x + 1);
            const std::uint32_t g1 = (Src::At(v, x + 1) + Src::At(line, x) + Src::At(line, x + 2)) / 3;
            const std::uint32_t other1 = (Src::At(v, x) + Src::At(v, x + 2)) >> 1;
            if (Phase == 0) {
                out.Put(d, row0, g0, column0);
                out.Put(d + kOut, own1, g1, other1);
            } else {
                out.Put(d, column0, g0, row0);
                out.Put(d + kOut, other1, g1, own1);
            }
        } else {
            const std::uint32_t own0 = Src::At(line, x);
            const std::uint32_t g0 = (Src::At(v, x) + Src::At(line, x - 1) + Src::At(line, x + 1)) / 3;
            const std::uint32_t other0 = (Src::At(v, x - 1) + Src::At(v, x + 1)) >> 1;
            const std::uint32_t g1 = Src::At(line, x + 1);
            const std::uint32_t row1 = (Src::At(line, x) + Src::At(line, x + 2)) >> 1;
            const std::uint32_t column1 = Src::At(v, x + 1);
            if (Phase == 2) {
                out.Put(d, own0, g0, other0);
                out.Put(d + kOut, row1, g1, column1);
            } else {
                out.Put(d, other0, g0, own0);
                out.Put(d + kOut, column1, g1, row1);
            }
        }
    }
}

// Pixel pairs (x, x+1), x even, from `from` to `to` (exclusive) of an inner
// line, all with four orthogonal and four diagonal neighbours.
template <class Src, class Out, int Phase>
void InterpolatePairs(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                      std::uint32_t from, std::uint32_t to, const Out& out)
{
    const unsigned char* a = line + above;
    const unsigned char* b = line + below;
    constexpr unsigned kOut = Out::kBytes;
    for (std::ptrdiff_t x = from; x < static_cast<std::ptrdiff_t>(to); x += 2) {
        unsigned char* d = dst + x * kOut;
        if (Phase < 2) {
            // G at x, red (phase 0) or blue (phase 1) at x + 1.
            const std::uint32_t g0 = Src::At(line, x);
            const std::uint32_t row0 = (Src::At(line, x - 1) + Src::At(line, x + 1)) >> 1;
            const std::uint32_t column0 = (Src::At(a, x) + Src::At(b, x)) >> 1;
            const std::uint32_t own1 = Src::At(line, x + 1);
            const std::uint32_t g1 =
                (Src::At(a, x + 1) + Src::At(b, x + 1) + Src::At(line, x) + Src::At(line, x + 2)) >> 2;
            const std::uint32_t other1 =
                (Src::At(a, x) + Src::At(a, x + 2) + Src::At(b, x) + Src::At(b, x + 2)) >> 2;
            if (Phase == 0) {
                out.Put(d, row0, g0, column0);
                out.Put(d + kOut, own1, g1, other1);
            } else {
                out.Put(d, column0, g0, row0);
                out.Put(d + kOut, other1, g1, own1);
            }
        } else {
            // Red (phase 2) or blue (phase 3) at x, G at x + 1.
            const std::uint32_t own0 = Src::At(line, x);
            const std::uint32_t g0 =
                (Src::At(a, x) + Src::At(b, x) + Src::At(line, x - 1) + Src::At(line, x + 1)) >> 2;
            const std::uint32_t other0 =
                (Src::At(a, x - 1) + Src::At(a, x + 1) + Src::At(b, x - 1) + Src::At(b, x + 1)) >> 2;
            const std::uint32_t g1 = Src::At(line, x + 1);
            const std::uint32_t row1 = (Src::At(line, x) + Src::At(line, x + 2)) >> 1;
            const std::uint32_t column1 = (Src::At(a, x + 1) + Src::At(b, x + 1)) >> 1;
            if (Phase == 2) {
                out.Put(d, own0, g0, other0);
                out.Put(d + kOut, row1, g1, column1);
            } else {
                out.Put(d, other0, g0, own0);
                out.Put(d + kOut, column1, g1, row1);
            }
        }
    }
}

// The vector inside of inner lines where one exists (8-bit samples through
// an identity filter, or through table forms where the level has the formed
// path, into 24/32-bit layouts; 16-bit samples through an
// identity filter into 24/32/48-bit layouts, `shift` theirs): the active
// level's path (BayerPaths.h); returns the first pixel it left to the scalar
// loop.
template <class Src, class Out>
struct BayerInteriorSimd {
    static std::uint32_t Run(const unsigned char*, std::ptrdiff_t, std::ptrdiff_t, unsigned char*, std::uint32_t from,
                             std::uint32_t, int, const Out&)
    {
        return from;
    }
};

template <unsigned RedIndex, unsigned Bytes>
struct BayerInteriorBytes {
    template <class Out>
    static std::uint32_t Run(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                             unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase, const Out&)
    {
        return BayerActivePaths().bytes(Bytes, RedIndex == 2, line, above, below, dst, from, to, phase);
    }
};
template <unsigned RedIndex, unsigned Bytes>
struct BayerInteriorWords {
    template <class Out>
    static std::uint32_t Run(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                             unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase, const Out& out)
    {
        return BayerActivePaths().words(Bytes, RedIndex == 2, line, above, below, dst, from, to, phase, out.shift);
    }
};
// Only chosen where the level has the formed path (BayerTablePass.h).
template <unsigned RedIndex, unsigned Bytes>
struct BayerInteriorFormed {
    template <class Out>
    static std::uint32_t Run(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                             unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase, const Out& out)
    {
        const BayerPaths& paths = BayerActivePaths();
        // RGB16 (Bytes 2): only chosen where the scaled path takes the plan.
        const BayerBytesFormedPath formed = Bytes == 2 || (paths.bytesScaled && simd::HasScaledForms(*out.plan))
                                                ? paths.bytesScaled
                                                : paths.bytesFormed;
        return formed(Bytes, RedIndex == 2, line, above, below, dst, from, to, phase, *out.plan);
    }
};
// Only chosen where the level has the lookup path (BayerTablePass.h).
template <unsigned RedIndex, unsigned Bytes>
struct BayerInteriorLooked {
    template <class Out>
    static std::uint32_t Run(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                             unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase, const Out& out)
    {
        return BayerActivePaths().bytesLookup(Bytes, RedIndex == 2, line, above, below, dst, from, to, phase,
                                              out.red, out.green, out.blue);
    }
};
template <unsigned RedIndex>
struct BayerInteriorSimd<Samples8, Identity8<Write24<RedIndex>, false>> : BayerInteriorBytes<RedIndex, 3> {};
template <unsigned RedIndex>
struct BayerInteriorSimd<Samples8, Identity8<Write32<RedIndex>, false>> : BayerInteriorBytes<RedIndex, 4> {};
template <unsigned RedIndex>
struct BayerInteriorSimd<Samples8, Formed8<Write24<RedIndex>>> : BayerInteriorFormed<RedIndex, 3> {};
template <unsigned RedIndex>
struct BayerInteriorSimd<Samples8, Formed8<Write32<RedIndex>>> : BayerInteriorFormed<RedIndex, 4> {};
template <>
struct BayerInteriorSimd<Samples8, Formed8<WriteRGB16>> : BayerInteriorFormed<0, 2> {};
template <unsigned RedIndex>
struct BayerInteriorSimd<Samples8, Looked8<Write24<RedIndex>>> : BayerInteriorLooked<RedIndex, 3> {};
template <unsigned RedIndex>
struct BayerInteriorSimd<Samples8, Looked8<Write32<RedIndex>>> : BayerInteriorLooked<RedIndex, 4> {};
// Only chosen where the level has the path (BayerTablePass.h).
template <unsigned RedIndex, unsigned Bytes>
struct BayerInteriorWordsScaled {
    template <class Out>
    static std::uint32_t Run(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                             unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase, const Out& out)
    {
        return BayerActivePaths().wordsScaled(Bytes, RedIndex == 2, line, above, below, dst, from, to, phase,
                                              out.shift, *out.plan);
    }
};
template <unsigned RedIndex>
struct BayerInteriorSimd<Samples16, ScaledWords8<Write24<RedIndex>>> : BayerInteriorWordsScaled<RedIndex, 3> {};
template <unsigned RedIndex>
struct BayerInteriorSimd<Samples16, ScaledWords8<Write32<RedIndex>>> : BayerInteriorWordsScaled<RedIndex, 4> {};
template <unsigned RedIndex>
struct BayerInteriorSimd<Samples16, Identity8<Write24<RedIndex>, true>> : BayerInteriorWords<RedIndex, 3> {};
template <unsigned RedIndex>
struct BayerInteriorSimd<Samples16, Identity8<Write32<RedIndex>, true>> : BayerInteriorWords<RedIndex, 4> {};
template <>
struct BayerInteriorSimd<Samples16, Formed48> {
    static std::uint32_t Run(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                             unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase, const Formed48& out)
    {
        return BayerActivePaths().words48Formed(line, above, below, dst, from, to, phase, *out.plan);
    }
};
template <>
struct BayerInteriorSimd<Samples16, Identity48> {
    static std::uint32_t Run(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                             unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase, const Identity48&)
    {
        return BayerActivePaths().words48(line, above, below, dst, from, to, phase);
    }
};

// One line of `count` pixels of row phase `phase`. `above`/`below` are the
// offsets of the neighbouring lines in samples; hasAbove is false on the
// area's first line, hasBelow on its last. The first two and last one or two
// pixels (and every pixel of a one-line area) go through BayerEdgePixel; the
// inside of inner lines through the vector blocks and the unrolled pair loop,
// the inside of the first and last lines through their own pair loop.
// `Vector` false keeps to the scalar code (the reference for the vector
// paths); true takes the active level's vector path.
template <class Src, class Out, bool Vector = true>
void InterpolateLine(const unsigned char* line, unsigned char* dst, std::uint32_t count, int phase,
                     std::ptrdiff_t above, std::ptrdiff_t below, bool hasAbove, bool hasBelow, const Out& out)
{
    above *= Src::kBytes;
    below *= Src::kBytes;
    phase &= 3;
    auto edge = [&](std::uint32_t x) {
        std::uint32_t rgb[3];
        BayerEdgePixel<Src>(line, above, below, hasAbove, hasBelow, x, count, phase, rgb);
        out.Put(dst + x * Out::kBytes, rgb[0], rgb[1], rgb[2]);
    };
    std::uint32_t x = 0;
    if (count >= 4 && (hasAbove || hasBelow)) {
        edge(0);
        edge(1);
        // Pairs (x, x + 1) with x + 1 <= count - 2.
        const std::uint32_t end = 2 + ((count - 3) & ~1u);
        if (hasAbove && hasBelow) {
            const std::uint32_t from =
                Vector ? BayerInteriorSimd<Src, Out>::Run(line, above, below, dst, 2, end, phase, out) : 2;
            switch (phase) {
            case 0: InterpolatePairs<Src, Out, 0>(line, above, below, dst, from, end, out); break;
            case 1: InterpolatePairs<Src, Out, 1>(line, above, below, dst, from, end, out); break;
            case 2: InterpolatePairs<Src, Out, 2>(line, above, below, dst, from, end, out); break;
            default: InterpolatePairs<Src, Out, 3>(line, above, below, dst, from, end, out); break;
            }
        } else {
            const std::ptrdiff_t other = hasAbove ? above : below;
            switch (phase) {
            case 0: InterpolateEdgeLinePairs<Src, Out, 0>(line, other, dst, 2, end, out); break;
            case 1: InterpolateEdgeLinePairs<Src, Out, 1>(line, other, dst, 2, end, out); break;
            case 2: InterpolateEdgeLinePairs<Src, Out, 2>(line, other, dst, 2, end, out); break;
            default: InterpolateEdgeLinePairs<Src, Out, 3>(line, other, dst, 2, end, out); break;
            }
        }
        x = end;
    }
    for (; x < count; ++x)
        edge(x);
}

// ---- What a line call needs, read from the context once --------------------

struct BayerLineCall {
    const unsigned char* source;
    unsigned char* destination;
    std::uint32_t count;
    // Replicating: the second line of the pair and the pattern (-1: none).
    std::uint32_t sourceLineBytes;
    std::uint32_t destinationLineBytes;
    int pattern;
    // Interpolating: row phase, neighbour line offsets in samples, and
    // whether those lines lie inside the area.
    int phase;
    std::ptrdiff_t above;
    std::ptrdiff_t below;
    bool hasAbove;
    bool hasBelow;
};

inline BayerLineCall MakeBayerLineCall(const ZoPixelConverterContext& context, const ZoBayerLayout* layout,
                                       const unsigned char* source, unsigned char* destination,
                                       std::uint32_t count)
{
    BayerLineCall call{};
    call.source = source;
    call.destination = destination;
    call.count = count;
    call.sourceLineBytes = context.sourceLineBytes;
    call.destinationLineBytes = context.destinationLineBytes;
    call.pattern = BayerPatternOf(context.flags);
    if (layout) {
        const std::uint32_t line = context.currentLine;
        call.phase = (line & 1) ? layout->oddRowPhase : layout->evenRowPhase;
        call.above = layout->neighbourOffsets[kAbove][0];
        call.below = layout->neighbourOffsets[kBelow][0];
        call.hasAbove = line != 0;
        // The area's last line is line areaHeight - 1 (none below it).
        call.hasBelow = line + 1 < context.areaHeight;
    }
    return call;
}

// Both destination lines of a pair receive the same pixels: the first is
// converted, the second copied from it.
template <class Src, class Out>
void ReplicateCall(const BayerLineCall& call, bool redQuirk, const Out& out)
{
    ReplicateByPattern<Src>(call.pattern, redQuirk, call.source, call.source + call.sourceLineBytes,
                            call.destination, call.count, out);
    std::memmove(call.destination + call.destinationLineBytes, call.destination,
                 static_cast<std::size_t>(call.count) * Out::kBytes);
}

template <class Src, class Out>
void InterpolateCall(const BayerLineCall& call, const Out& out)
{
    InterpolateLine<Src>(call.source, call.destination, call.count, call.phase, call.above, call.below,
                         call.hasAbove, call.hasBelow, out);
}

}  // namespace zo

#endif
