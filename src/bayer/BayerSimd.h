// SSE2 inside of an interpolating line: 8-bit samples, identity filter,
// 24- and 32-bit destinations, sixteen pixels per pass. The scalar pair loop
// of BayerKernels.h is the reference and finishes what this leaves.
#ifndef ZO_BAYER_SIMD_H
#define ZO_BAYER_SIMD_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "bayer/BayerSimdDispatch.h"

#if ZO_BAYER_SSE2
#include <emmintrin.h>
#endif

namespace zo {

#if ZO_BAYER_SSE2

// Per pixel of a block, in 16-bit lanes (lane i = pixel x + i, x even):
//   C  own sample             V  above + below
//   H  left + right           D  sum of the four diagonals
// A green site takes (H >> 1) for its row's colour and (V >> 1) for its
// column's; a red or blue site takes (V + H) >> 2 for green and D >> 2 for
// the opposite colour. Even lanes and odd lanes are then picked by phase.
struct BayerBlock16 {
    __m128i red, green, blue;  // 16 bytes each
};

inline __m128i BayerPick(__m128i evenValue, __m128i oddValue)
{
    const __m128i even = _mm_set1_epi32(0x0000FFFF);
    return _mm_or_si128(_mm_and_si128(even, evenValue), _mm_andnot_si128(even, oddValue));
}

// Eight pixels (one half of a block) as 16-bit lanes of red, green, blue.
inline void BayerHalf(__m128i a0, __m128i a1, __m128i a2, __m128i c0, __m128i c1, __m128i c2, __m128i b0,
                      __m128i b1, __m128i b2, int phase, __m128i& r, __m128i& g, __m128i& b)
{
    const __m128i v = _mm_add_epi16(a1, b1);
    const __m128i h = _mm_add_epi16(c0, c2);
    const __m128i d = _mm_add_epi16(_mm_add_epi16(a0, a2), _mm_add_epi16(b0, b2));
    const __m128i rowAverage = _mm_srli_epi16(h, 1);
    const __m128i columnAverage = _mm_srli_epi16(v, 1);
    const __m128i cross = _mm_srli_epi16(_mm_add_epi16(v, h), 2);
    const __m128i diagonal = _mm_srli_epi16(d, 2);
    if (phase < 2) {
        // Even: green; odd: red (phase 0) or blue (phase 1).
        const __m128i rowColour = BayerPick(rowAverage, c1);
        const __m128i columnColour = BayerPick(columnAverage, diagonal);
        g = BayerPick(c1, cross);
        r = phase == 0 ? rowColour : columnColour;
        b = phase == 0 ? columnColour : rowColour;
    } else {
        // Even: red (phase 2) or blue (phase 3); odd: green.
        const __m128i own = BayerPick(c1, rowAverage);
        const __m128i other = BayerPick(diagonal, columnAverage);
        g = BayerPick(cross, c1);
        r = phase == 2 ? own : other;
        b = phase == 2 ? other : own;
    }
}

inline BayerBlock16 BayerBlock(const unsigned char* a, const unsigned char* c, const unsigned char* b, int phase)
{
    const __m128i zero = _mm_setzero_si128();
    const __m128i a0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a - 1));
    const __m128i a1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a));
    const __m128i a2 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + 1));
    const __m128i c0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(c - 1));
    const __m128i c1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(c));
    const __m128i c2 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(c + 1));
    const __m128i b0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b - 1));
    const __m128i b1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b));
    const __m128i b2 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + 1));
    __m128i rl, gl, bl, rh, gh, bh;
    BayerHalf(_mm_unpacklo_epi8(a0, zero), _mm_unpacklo_epi8(a1, zero), _mm_unpacklo_epi8(a2, zero),
              _mm_unpacklo_epi8(c0, zero), _mm_unpacklo_epi8(c1, zero), _mm_unpacklo_epi8(c2, zero),
              _mm_unpacklo_epi8(b0, zero), _mm_unpacklo_epi8(b1, zero), _mm_unpacklo_epi8(b2, zero), phase, rl, gl,
              bl);
    BayerHalf(_mm_unpackhi_epi8(a0, zero), _mm_unpackhi_epi8(a1, zero), _mm_unpackhi_epi8(a2, zero),
              _mm_unpackhi_epi8(c0, zero), _mm_unpackhi_epi8(c1, zero), _mm_unpackhi_epi8(c2, zero),
              _mm_unpackhi_epi8(b0, zero), _mm_unpackhi_epi8(b1, zero), _mm_unpackhi_epi8(b2, zero), phase, rh, gh,
              bh);
    return {_mm_packus_epi16(rl, rh), _mm_packus_epi16(gl, gh), _mm_packus_epi16(bl, bh)};
}

// Four registers of four pixels each: byte 0 first colour, 1 green, 2 last
// colour, 3 zero.
inline void BayerQuads(const BayerBlock16& block, bool blueFirst, __m128i q[4])
{
    const __m128i zero = _mm_setzero_si128();
    const __m128i first = blueFirst ? block.blue : block.red;
    const __m128i last = blueFirst ? block.red : block.blue;
    const __m128i fgLow = _mm_unpacklo_epi8(first, block.green), fgHigh = _mm_unpackhi_epi8(first, block.green);
    const __m128i lzLow = _mm_unpacklo_epi8(last, zero), lzHigh = _mm_unpackhi_epi8(last, zero);
    q[0] = _mm_unpacklo_epi16(fgLow, lzLow);
    q[1] = _mm_unpackhi_epi16(fgLow, lzLow);
    q[2] = _mm_unpacklo_epi16(fgHigh, lzHigh);
    q[3] = _mm_unpackhi_epi16(fgHigh, lzHigh);
}

// Pixels x = from, from + 16, ... while a whole block fits before `to`
// (`to` at most count - 1, so that the loads at x + 1 stay inside the line).
// Returns where it stopped. A 24-bit block stores two bytes past its last
// pixel, which the caller writes afterwards.
template <unsigned Bytes, bool BlueFirst>
std::uint32_t InterpolateBlocksSse2(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                                    unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase)
{
    std::uint32_t x = from;
    for (; x + 16 <= to; x += 16) {
        const BayerBlock16 block = BayerBlock(line + above + x, line + x, line + below + x, phase);
        __m128i q[4];
        BayerQuads(block, BlueFirst, q);
        unsigned char* d = dst + static_cast<std::size_t>(x) * Bytes;
        if (Bytes == 4) {
            for (int k = 0; k < 4; ++k)
                _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 16 * k), q[k]);
        } else {
            for (int k = 0; k < 4; ++k) {
                const std::uint64_t pair[2] = {
                    static_cast<std::uint64_t>(_mm_cvtsi128_si64(q[k])),
                    static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(q[k], q[k])))};
                for (int p = 0; p < 2; ++p) {
                    const std::uint64_t six = (pair[p] & 0xFFFFFFu) | ((pair[p] >> 8) & 0xFFFFFF000000u);
                    std::memcpy(d, &six, 8);
                    d += 6;
                }
            }
        }
    }
    return x;
}

#endif

}  // namespace zo

#endif
