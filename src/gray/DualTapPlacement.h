// Where the two taps of a dual-tap line go, shared by the packed unpacking
// and the 8-bit dual-tap converters.
//
// A two-tap source delivers its line as pairs (A, B): A is the i-th pixel of
// the first tap, B the i-th pixel of the second. With n pixels in the line
// and h = n >> 1, pair i is placed by the tap mode:
//
//   mode  tap layout (from the source ID)      A of pair i   B of pair i
//   0     single tap, stream order             2i            2i + 1
//   1     Left+Right                           i             h + i
//   2     Left+Right Inverted                  i             n - 1 - i
//   3     Left Inverted+Right                  h - 1 - i     h + i
//   4     Left Inverted+Right Inverted         h - 1 - i     n - 1 - i
//
//   n = 8, source a0 b0 a1 b1 a2 b2 a3 b3:
//     mode 1  a0 a1 a2 a3 b0 b1 b2 b3      mode 3  a3 a2 a1 a0 b0 b1 b2 b3
//     mode 2  a0 a1 a2 a3 b3 b2 b1 b0      mode 4  a3 a2 a1 a0 b3 b2 b1 b0
//
// A line is walked in blocks of four pairs over the first (n / P) x P pixels
// (P the converter's pipelining size, that count taken up to a multiple of
// eight), then pair by pair, ((n - done - 1) >> 1) + 1 further pairs, and no
// further pair when nothing is left. Pairs are visited in order, A before B.
//
// Odd n: the last pair (i = h) is still visited whole. In mode 0 its B lands
// at position n, one past the line; in modes 3 and 4 its A lands at
// position -1, one before the line; in mode 1 its A replaces the B of pair 0
// on position h, and in mode 2 both its samples go to position h, B last.
// Callers give even widths.
#ifndef ZO_DUAL_TAP_PLACEMENT_H
#define ZO_DUAL_TAP_PLACEMENT_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "ZoPixelTypeIDs.h"

namespace zo {

// The tap mode 0..4 of a source type: one of the four left/right dual bits
// alone gives 1..4; none of them, or any other combination, gives 0 (the
// dual-lines bit is not one of them).
constexpr std::uint32_t DualTapModeFromId(std::int64_t sourceType)
{
    switch (static_cast<std::uint32_t>(sourceType) & 0x0F000000u) {
    case ZO_PIXEL_TAP_DUAL_LR: return 1;
    case ZO_PIXEL_TAP_DUAL_LR_INV: return 2;
    case ZO_PIXEL_TAP_DUAL_LINV_R: return 3;
    case ZO_PIXEL_TAP_DUAL_LINV_RINV: return 4;
    default: return 0;
    }
}

// The mode a converter uses: the source's, unless the destination is itself
// a left/right dual-tap type, which keeps the stream order.
constexpr std::uint32_t DualTapModeFor(std::int64_t sourceType, std::int64_t destinationType)
{
    return (static_cast<std::uint32_t>(destinationType) & 0x0F000000u) ? 0 : DualTapModeFromId(sourceType);
}

// Position of A and B of pair 0 in a line of n pixels, and their steps per pair.
template <unsigned Mode>
struct DualTapRule {
    static_assert(Mode <= 4, "tap modes are 0 to 4");
    static constexpr std::ptrdiff_t kAStep = Mode == 0 ? 2 : (Mode <= 2 ? 1 : -1);
    static constexpr std::ptrdiff_t kBStep = Mode == 0 ? 2 : (Mode == 1 || Mode == 3 ? 1 : -1);
    static constexpr std::ptrdiff_t FirstA(std::uint32_t n)
    {
        return Mode <= 2 ? 0 : static_cast<std::ptrdiff_t>(n >> 1) - 1;
    }
    static constexpr std::ptrdiff_t FirstB(std::uint32_t n)
    {
        return Mode == 0 ? 1
                         : (Mode == 1 || Mode == 3 ? static_cast<std::ptrdiff_t>(n >> 1)
                                                   : static_cast<std::ptrdiff_t>(n) - 1);
    }
};

// Pixels covered by the four-pair blocks: (n / P) x P taken up to a multiple
// of eight (a pipelining size of 0 leaves every pair to the single steps).
constexpr std::uint32_t DualTapBlockPixels(std::uint32_t n, std::uint32_t pipelining)
{
    return pipelining == 0 ? 0 : (((n / pipelining) * pipelining + 7u) & ~7u);
}

// Number of pairs a line of n pixels converts: the blocks' pairs, then the
// single ones, ((n - done - 1) >> 1) + 1 when anything is left.
constexpr std::uint32_t DualTapPairCount(std::uint32_t n, std::uint32_t pipelining)
{
    const std::uint32_t done = DualTapBlockPixels(n, pipelining);
    return (done >> 1) + (n > done ? ((n - done - 1) >> 1) + 1 : 0);
}

// Visits the pairs of a line of n pixels: visit(i, positionOfA, positionOfB)
// for pair i, in blocks of four then singly, as described above. `first`
// (a multiple of four) skips the pairs before it, which a faster path has
// already placed.
template <unsigned Mode, class Visit>
inline void ForEachDualTapPair(std::uint32_t n, std::uint32_t pipelining, Visit&& visit, std::uint32_t first = 0)
{
    using Rule = DualTapRule<Mode>;
    const std::uint32_t done = DualTapBlockPixels(n, pipelining);
    std::uint32_t i = first;
    std::ptrdiff_t a = Rule::FirstA(n) + static_cast<std::ptrdiff_t>(i) * Rule::kAStep;
    std::ptrdiff_t b = Rule::FirstB(n) + static_cast<std::ptrdiff_t>(i) * Rule::kBStep;
    for (; i < (done >> 1); i += 4, a += 4 * Rule::kAStep, b += 4 * Rule::kBStep) {
        visit(i, a, b);
        visit(i + 1, a + Rule::kAStep, b + Rule::kBStep);
        visit(i + 2, a + 2 * Rule::kAStep, b + 2 * Rule::kBStep);
        visit(i + 3, a + 3 * Rule::kAStep, b + 3 * Rule::kBStep);
    }
    const std::uint32_t end = DualTapPairCount(n, pipelining);  // no further pair when nothing is left
    for (; i < end; ++i, a += Rule::kAStep, b += Rule::kBStep)
        visit(i, a, b);
}

// Pairs a vector path may place before the scalar visit takes over, in
// chunks of `chunk` pairs (a multiple of four): only pairs below h, whose
// positions no other pair below h shares (pairs from h on, which exist for
// odd n, may land on their positions and must come later, as they do), and
// only while `spare` further pairs exist after the chunk (for over-reads).
constexpr std::uint32_t DualTapVectorPairs(std::uint32_t n, std::uint32_t pipelining, std::uint32_t chunk,
                                           std::uint32_t spare)
{
    const std::uint32_t count = DualTapPairCount(n, pipelining);
    std::uint32_t limit = n >> 1;
    if (limit + spare > count)
        limit = count > spare ? count - spare : 0;
    return limit - limit % chunk;
}

// Calls fn(std::integral_constant<unsigned, mode>) once, so that a kernel
// can be instantiated per mode and the mode switched once per line.
template <class Fn>
inline void WithDualTapMode(std::uint32_t mode, Fn&& fn)
{
    switch (mode) {
    case 1: fn(std::integral_constant<unsigned, 1>{}); break;
    case 2: fn(std::integral_constant<unsigned, 2>{}); break;
    case 3: fn(std::integral_constant<unsigned, 3>{}); break;
    case 4: fn(std::integral_constant<unsigned, 4>{}); break;
    default: fn(std::integral_constant<unsigned, 0>{}); break;
    }
}

}  // namespace zo

#endif
