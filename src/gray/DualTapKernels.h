// Line kernels of the 8-bit dual-tap converters.
#ifndef ZO_DUAL_TAP_KERNELS_H
#define ZO_DUAL_TAP_KERNELS_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "gray/DualTapPlacement.h"
#include "gray/PackedPaths.h"

namespace zo {

// Left/right taps: source bytes a0 b0 a1 b1 ... placed by tap mode Mode (see
// DualTapPlacement.h, also for what an odd n writes); pairs before `first`
// (a multiple of four) are left out. The reference kernel.
template <unsigned Mode>
void RecombineDualTapLineScalar(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                                std::uint32_t pipelining, std::uint32_t first = 0)
{
    ForEachDualTapPair<Mode>(
        n, pipelining,
        [&](std::uint32_t i, std::ptrdiff_t a, std::ptrdiff_t b) {
            destination[a] = source[2 * static_cast<std::size_t>(i)];
            destination[b] = source[2 * static_cast<std::size_t>(i) + 1];
        },
        first);
}

template <unsigned Mode>
void RecombineDualTapLine(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                          std::uint32_t pipelining)
{
    if constexpr (Mode == 0) {
        // Stream order: every pair lands where it stands, a plain copy.
        const std::size_t bytes = static_cast<std::size_t>(DualTapPairCount(n, pipelining)) * 2;
        if (bytes != 0)
            std::memcpy(destination, source, bytes);
    } else {
        std::uint32_t first = DualTapVectorPairs(n, pipelining, 16, 0);
        if (first == 0 || !DualTapActivePaths().recombine(source, destination, n, first, Mode))
            first = 0;
        RecombineDualTapLineScalar<Mode>(source, destination, n, pipelining, first);
    }
}

inline void RecombineDualTapLine(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                                 std::uint32_t pipelining, std::uint32_t mode)
{
    WithDualTapMode(mode, [&](auto m) {
        RecombineDualTapLine<decltype(m)::value>(source, destination, n, pipelining);
    });
}

// Dual lines: destination byte k = source byte 2k, for k < n (four bytes a
// step, then singly). The caller points `source` at the first byte of the
// wanted line's samples (even or odd bytes of the interleaved pair).
inline void TakeEveryOtherByte(const unsigned char* source, unsigned char* destination, std::uint32_t n)
{
    std::uint32_t k = 0;
    for (; k + 4 <= n; k += 4) {
        destination[k] = source[2 * static_cast<std::size_t>(k)];
        destination[k + 1] = source[2 * static_cast<std::size_t>(k) + 2];
        destination[k + 2] = source[2 * static_cast<std::size_t>(k) + 4];
        destination[k + 3] = source[2 * static_cast<std::size_t>(k) + 6];
    }
    for (; k < n; ++k)
        destination[k] = source[2 * static_cast<std::size_t>(k)];
}

}  // namespace zo

#endif
