// Line kernels of the packed 10/12-bit unpacking converters.
//
// A packed group is three bytes holding two samples. Each sample is taken
// from one of two overlapping little-endian words of the group:
//
//   bytes     b0        b1        b2
//   W0   =  [ b0 ] | [ b1 ] << 8                 first sample A from W0
//   W1   =            [ b1 ] | [ b2 ] << 8       second sample B from W1
//
//   group bits (24-bit little-endian value of b0 b1 b2):
//   10-bit:  A = bits 0..9  (W0 & 0x3FF)     B = bits 12..21 ((W1 >> 4) & 0x3FF)
//   12-bit:  A = bits 0..11 (W0 & 0xFFF)     B = bits 12..23 ((W1 >> 4) & 0xFFF)
//
// A sample is ((W << left) >> right) & mask, computed in 32 bits: with a
// 16-bit mask this is a left shift truncated to 16 bits, or a logical right
// shift. Each converter supplies one rule for A and one for B; the samples
// are placed in the line by the dual-tap rule (gray/DualTapPlacement.h) and
// stored by a destination writer.
//
// Odd n: the last group is converted whole, reading three source bytes from
// offset (n >> 1) x 3 on (past the (n >> 1) x 3 bytes a line of n pixels is
// counted as) and writing both its samples (see DualTapPlacement.h for where).
#ifndef ZO_PACKED_KERNELS_H
#define ZO_PACKED_KERNELS_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "core/PixelIO.h"
#include "gray/DualTapPlacement.h"
#include "gray/PackedPaths.h"

namespace zo {

// How one sample is taken from its word. The makers below set at most one
// of the two counts (the 16-bit vector path relies on it).
struct PackedSampleRule {
    std::uint32_t left;   // 0..16
    std::uint32_t right;  // 0..16
    std::uint32_t mask;   // at most 0xFFFF

    std::uint32_t Extract(std::uint32_t word) const { return ((word << left) >> right) & mask; }
};

// A signed left shift (negative: right shift) as a rule whose counts are no
// larger than 16; that gives the same 16-bit result as the plain shift of a
// 16-bit word (counts of 16 and beyond shift everything out).
inline PackedSampleRule LeftShiftRule(std::int32_t shift, std::uint32_t mask)
{
    if (shift >= 0)
        return {static_cast<std::uint32_t>(shift < 16 ? shift : 16), 0, mask & 0xFFFFu};
    return {0, static_cast<std::uint32_t>(shift > -16 ? -shift : 16), mask & 0xFFFFu};
}
// A logical right shift of the word.
inline PackedSampleRule RightShiftRule(std::uint32_t shift, std::uint32_t mask)
{
    return {0, shift < 16 ? shift : 16, mask & 0xFFFFu};
}

struct PackedRules {
    PackedSampleRule a;
    PackedSampleRule b;
};

// Destination writers (core/PixelIO.h): Put(d, v) stores the sample v at
// pixel d. The RGB writers take the 8-bit gray value (the rule's mask is
// 0xFF). RGB32 and BGR32 get the gray value in all four bytes, unlike the
// grayscale expansion whose RGB32 pixels end in 0: this difference is
// deliberate and kept.
using PackedToGray16 = GrayToGray16;
using PackedToGray8 = GrayToGray8;
using PackedToRGB16 = GrayToRGB16;
using PackedToRGB24 = GrayToRGB24;  // the same three bytes serve RGB24 and BGR24
using PackedToRGB32 = GrayToRGB32Filled;

// Unpacks one line of n pixels from `source` (packed groups) to `destination`
// in the layout of Writer, placing the samples by tap mode Mode; groups
// before `first` (a multiple of four) are left out. This is the reference
// kernel; UnpackPackedLine below adds the vector path.
template <class Writer, unsigned Mode>
void UnpackPackedLineScalar(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                            std::uint32_t pipelining, PackedRules rules, std::uint32_t first = 0)
{
    ForEachDualTapPair<Mode>(
        n, pipelining,
        [&](std::uint32_t i, std::ptrdiff_t a, std::ptrdiff_t b) {
            const unsigned char* g = source + static_cast<std::size_t>(i) * 3;
            const std::uint32_t w0 = g[0] | (static_cast<std::uint32_t>(g[1]) << 8);
            const std::uint32_t w1 = g[1] | (static_cast<std::uint32_t>(g[2]) << 8);
            Writer::Put(destination + a * static_cast<std::ptrdiff_t>(Writer::kBytes), rules.a.Extract(w0));
            Writer::Put(destination + b * static_cast<std::ptrdiff_t>(Writer::kBytes), rules.b.Extract(w1));
        },
        first);
}

// The active level's unpacking path for a layout (null: none for it).
template <class Writer>
inline PackedUnpackPath PackedVectorPath(const PackedPaths& paths)
{
    if constexpr (std::is_same<Writer, PackedToGray16>::value)
        return paths.toGray16;
    else if constexpr (std::is_same<Writer, PackedToGray8>::value)
        return paths.toGray8;
    else if constexpr (std::is_same<Writer, PackedToRGB16>::value)
        return paths.toRGB16;
    else if constexpr (std::is_same<Writer, PackedToRGB32>::value)
        return paths.toRGB32;
    else
        return nullptr;
}

// Unpacks one line: the active level's vector path, then the scalar kernel
// for the rest of the line.
template <class Writer, unsigned Mode>
void UnpackPackedLine(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                      std::uint32_t pipelining, PackedRules rules)
{
    std::uint32_t first = 0;
    if (const PackedUnpackPath path = PackedVectorPath<Writer>(PackedActivePaths())) {
        // Chunks of eight groups; the loads read into the two groups after.
        const std::uint32_t pairs = DualTapVectorPairs(n, pipelining, 8, 2);
        if (pairs != 0 && path(source, destination, n, pairs, DualTapRule<Mode>::FirstA(n),
                               DualTapRule<Mode>::FirstB(n), rules, Mode))
            first = pairs;
    }
    UnpackPackedLineScalar<Writer, Mode>(source, destination, n, pipelining, rules, first);
}

// The same with the tap mode given at run time (switched once).
template <class Writer>
void UnpackPackedLine(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                      std::uint32_t pipelining, PackedRules rules, std::uint32_t mode)
{
    WithDualTapMode(mode, [&](auto m) {
        UnpackPackedLine<Writer, decltype(m)::value>(source, destination, n, pipelining, rules);
    });
}

}  // namespace zo

#endif
