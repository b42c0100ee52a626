// The 256-bit bilinear block of 8-bit Bayer samples, written once for the
// files compiled for AVX2 and up: 32 pixels a step, the SSE2 block of
// BayerSse2.cpp on twice the width. A block widens the three lines to 16-bit
// lanes, interpolates red, green and blue there, packs each channel to 32
// bytes (pixel order within each 128-bit lane: 0-7 and 16-23 from the low
// halves, 8-15 and 24-31 from the high ones, packed back in pixel order) and
// interleaves them into the layout. Two hooks let a file apply white balance
// inside the block, before anything is stored:
//   widened(rl, gl, bl, rh, gh, bh)  the 16-bit lanes of each channel, low
//                                    and high halves (table forms);
//   packed(red, green, blue)         the 32 channel bytes, pixel order
//                                    (table lookups).
// Both take their arguments by reference; the identity line passes hooks
// that do nothing.
//
// Include only from files compiled for AVX2 or wider: everything here is
// local to the including file, so that a file compiled for AVX-512 never
// lends its code to the AVX2 one.
#ifndef ZO_BAYER_BLOCKS256_H
#define ZO_BAYER_BLOCKS256_H

#if defined(__AVX2__)
#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "bayer/BayerBilinear.h"
#include "simd/Rgb16Words.h"

namespace zo {
namespace {

// The lanes of bayer/BayerBilinear.h: sixteen words.
struct Avx2Words {
    using T = __m256i;
    static T Add(T a, T b) { return _mm256_add_epi16(a, b); }
    template <int N>
    static T Shift(T a) { return _mm256_srli_epi16(a, N); }
    static T Pick(T evenValue, T oddValue)
    {
        const T even = _mm256_set1_epi32(0x0000FFFF);
        return _mm256_or_si256(_mm256_and_si256(even, evenValue), _mm256_andnot_si256(even, oddValue));
    }
};

// Sixteen pixels of each 128-bit lane as 16-bit lanes (see BayerHalf).
// Always inlined into the 8-bit block: a call passes its nine registers
// through memory, which a file instantiating many blocks (one per table
// form) would otherwise get. Half: the same where the compiler chooses.
inline __attribute__((always_inline)) void HalfInlined(__m256i a0, __m256i a1, __m256i a2, __m256i c0, __m256i c1,
                                                       __m256i c2, __m256i b0, __m256i b1, __m256i b2, int phase,
                                                       __m256i& r, __m256i& g, __m256i& b)
{
    Bilinear<Avx2Words>(a0, a1, a2, c0, c1, c2, b0, b1, b2, phase, r, g, b);
}

inline void Half(__m256i a0, __m256i a1, __m256i a2, __m256i c0, __m256i c1, __m256i c2, __m256i b0, __m256i b1,
                 __m256i b2, int phase, __m256i& r, __m256i& g, __m256i& b)
{
    HalfInlined(a0, a1, a2, c0, c1, c2, b0, b1, b2, phase, r, g, b);
}

inline __m256i Load(const unsigned char* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }

// Converts pixels from, from + 32, ... while a block fits before `to` (and
// one block ending there, see below) and returns where it stopped (see
// BayerPaths.h; an even number of pixels past `from`). Bytes: 2 (RGB16,
// BlueFirst false), 3 or 4.
template <unsigned Bytes, bool BlueFirst, class Widened, class Packed>
std::uint32_t Blocks256(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                        std::uint32_t from, std::uint32_t to, int phase, Widened widened, Packed packed)
{
    const __m256i zero = _mm256_setzero_si256();
    // 4-byte pixels to 3-byte pixels within each 128-bit lane (12 bytes).
    const __m256i compress = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1, 0, 1, 2, 4, 5,
                                              6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    // A 24-bit block writes four bytes past its last pixel: keep two pixels
    // of room before `to`.
    const std::uint32_t room = Bytes == 3 ? 34 : 32;
    // One block at pixel x (always inlined: called twice below).
    auto block = [&](std::uint32_t x) __attribute__((always_inline)) {
        const unsigned char* a = line + above + x;
        const unsigned char* c = line + x;
        const unsigned char* b = line + below + x;
        const __m256i a0 = Load(a - 1), a1 = Load(a), a2 = Load(a + 1);
        const __m256i c0 = Load(c - 1), c1 = Load(c), c2 = Load(c + 1);
        const __m256i b0 = Load(b - 1), b1 = Load(b), b2 = Load(b + 1);
        __m256i rl, gl, bl, rh, gh, bh;
        HalfInlined(_mm256_unpacklo_epi8(a0, zero), _mm256_unpacklo_epi8(a1, zero), _mm256_unpacklo_epi8(a2, zero),
             _mm256_unpacklo_epi8(c0, zero), _mm256_unpacklo_epi8(c1, zero), _mm256_unpacklo_epi8(c2, zero),
             _mm256_unpacklo_epi8(b0, zero), _mm256_unpacklo_epi8(b1, zero), _mm256_unpacklo_epi8(b2, zero), phase,
             rl, gl, bl);
        HalfInlined(_mm256_unpackhi_epi8(a0, zero), _mm256_unpackhi_epi8(a1, zero), _mm256_unpackhi_epi8(a2, zero),
             _mm256_unpackhi_epi8(c0, zero), _mm256_unpackhi_epi8(c1, zero), _mm256_unpackhi_epi8(c2, zero),
             _mm256_unpackhi_epi8(b0, zero), _mm256_unpackhi_epi8(b1, zero), _mm256_unpackhi_epi8(b2, zero), phase,
             rh, gh, bh);
        widened(rl, gl, bl, rh, gh, bh);
        __m256i red = _mm256_packus_epi16(rl, rh);
        __m256i green = _mm256_packus_epi16(gl, gh);
        __m256i blue = _mm256_packus_epi16(bl, bh);
        packed(red, green, blue);
        unsigned char* d = dst + static_cast<std::size_t>(x) * Bytes;
        if constexpr (Bytes == 2) {
            // RGB16 words as PackRGB16 makes them; lane 0 holds pixels 0-15,
            // lane 1 pixels 16-31, eight per half.
            const __m256i lo = simd::PackRGB16Words(_mm256_unpacklo_epi8(red, zero), _mm256_unpacklo_epi8(green, zero),
                                                    _mm256_unpacklo_epi8(blue, zero));
            const __m256i hi = simd::PackRGB16Words(_mm256_unpackhi_epi8(red, zero), _mm256_unpackhi_epi8(green, zero),
                                                    _mm256_unpackhi_epi8(blue, zero));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), _mm256_permute2x128_si256(lo, hi, 0x20));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + 32), _mm256_permute2x128_si256(lo, hi, 0x31));
            return;
        }
        const __m256i first = BlueFirst ? blue : red;
        const __m256i last = BlueFirst ? red : blue;
        const __m256i fgLow = _mm256_unpacklo_epi8(first, green), fgHigh = _mm256_unpackhi_epi8(first, green);
        const __m256i lzLow = _mm256_unpacklo_epi8(last, zero), lzHigh = _mm256_unpackhi_epi8(last, zero);
        // Lane 0 holds pixels 0-15, lane 1 pixels 16-31, four per register.
        const __m256i q[4] = {_mm256_unpacklo_epi16(fgLow, lzLow), _mm256_unpackhi_epi16(fgLow, lzLow),
                              _mm256_unpacklo_epi16(fgHigh, lzHigh), _mm256_unpackhi_epi16(fgHigh, lzHigh)};
        if (Bytes == 4) {
            __m256i* out = reinterpret_cast<__m256i*>(d);
            _mm256_storeu_si256(out + 0, _mm256_permute2x128_si256(q[0], q[1], 0x20));
            _mm256_storeu_si256(out + 1, _mm256_permute2x128_si256(q[2], q[3], 0x20));
            _mm256_storeu_si256(out + 2, _mm256_permute2x128_si256(q[0], q[1], 0x31));
            _mm256_storeu_si256(out + 3, _mm256_permute2x128_si256(q[2], q[3], 0x31));
        } else {
            for (int lane = 0; lane < 2; ++lane)
                for (int k = 0; k < 4; ++k) {
                    const __m256i packedPixels = _mm256_shuffle_epi8(q[k], compress);
                    const __m128i half =
                        lane ? _mm256_extracti128_si256(packedPixels, 1) : _mm256_castsi256_si128(packedPixels);
                    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), half);
                    d += 12;
                }
        }
    };
    std::uint32_t x = from;
    for (; x + room <= to; x += 32)
        block(x);
    // Where a block ran and fewer than 32 pixels are left, one more block
    // that ends `room` before `to`, on the parity of `from` (the phase's),
    // overlapping the last one: it writes the same bytes there, and the
    // caller's pixel loop is left two pixels at most instead of up to 33.
    if (x > from && x < to) {
        std::uint32_t last = to - room;
        last -= (last - from) & 1;
        if (last + 32 > x) {
            block(last);
            x = last + 32;
        }
    }
    return x;
}

// Hooks that leave the channels as they are.
struct KeepWidened {
    void operator()(__m256i&, __m256i&, __m256i&, __m256i&, __m256i&, __m256i&) const {}
};
struct KeepPacked {
    void operator()(__m256i&, __m256i&, __m256i&) const {}
};

}  // namespace
}  // namespace zo

#endif
#endif
