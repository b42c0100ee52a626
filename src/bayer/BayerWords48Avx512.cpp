// RGB48 from 10- to 14-bit Bayer samples with AVX-512 BW (this file alone is
// compiled for AVX-512; its paths run in the AVX-512 table, see
// BayerSimd.cpp): the AVX2 block of BayerAvx2.cpp on twice the width, 32
// pixels a step. Filtered lines evaluate each channel's 16-bit table form
// (simd/LutArith.h) on 512-bit lanes just before the store, which halves
// the forms' instructions per pixel against the 16-pixel block. A line's
// last block ends at its end (overlapping the one before); lines of fewer
// than 32 pixels go to the AVX2 path.
#include "bayer/BayerPaths.h"

#if defined(__AVX512F__) && defined(__AVX512BW__)
// GCC 12 warns about the deliberately undefined upper halves of the exact
// form's registers (_mm512_castsi256_si512) once they are inlined.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include <type_traits>

#include "simd/LutArith.h"
#include "simd/LutV512.h"
#include "bayer/BayerBilinear.h"
#include "bayer/BayerWords48Forms.h"

namespace zo {
namespace {

using V = simd::V512;
using Arith = simd::LutArith<V>;

// The lanes of bayer/BayerBilinear.h: thirty-two words.
struct Avx512Words {
    using T = __m512i;
    static T Add(T a, T b) { return _mm512_add_epi16(a, b); }
    template <int N>
    static T Shift(T a) { return _mm512_srli_epi16(a, N); }
    static T Pick(T evenValue, T oddValue) { return _mm512_mask_blend_epi16(0x55555555u, oddValue, evenValue); }
};

// The bilinear red, green and blue of 32 pixels.
inline void Interpolate(__m512i a0, __m512i a1, __m512i a2, __m512i c0, __m512i c1, __m512i c2, __m512i b0,
                        __m512i b1, __m512i b2, int phase, __m512i& r, __m512i& g, __m512i& b)
{
    Bilinear<Avx512Words>(a0, a1, a2, c0, c1, c2, b0, b1, b2, phase, r, g, b);
}

// Word permutes that interleave 32 pixels' red, green and blue (one
// register each) into three registers of RGB48: output register k holds
// words 32k to 32k + 31; red and green come from one two-source permute,
// blue is merged in under a mask.
struct Rgb48Permutes {
    alignas(64) std::uint16_t redGreen[3][32];
    alignas(64) std::uint16_t blue[3][32];
    std::uint32_t blueMask[3];
};
constexpr Rgb48Permutes MakeRgb48Permutes()
{
    Rgb48Permutes s{};
    for (int k = 0; k < 3; ++k)
        for (int j = 0; j < 32; ++j) {
            const int word = 32 * k + j, pixel = word / 3, channel = word % 3;
            // Index bit 5 picks the second source (green).
            s.redGreen[k][j] = static_cast<std::uint16_t>(channel == 1 ? 32 + pixel : pixel);
            s.blue[k][j] = static_cast<std::uint16_t>(pixel);
            if (channel == 2)
                s.blueMask[k] |= 1u << j;
        }
    return s;
}
constexpr Rgb48Permutes kRgb48Permutes = MakeRgb48Permutes();

inline __m512i Load(const unsigned char* p) { return _mm512_loadu_si512(p); }

// Thirty-two pixels a step while a block fits before `to`. Samples below
// 2^14 are summed in 16-bit lanes; a block with larger samples takes the
// SSE2 path. `forms(rgb, any)` maps the channels before they are stored
// (`any`: the OR of the block's samples, which bounds every interpolated
// value), `formsAfter(d)` the 192 bytes the SSE2 path wrote at d.
template <class Forms, class FormsAfter>
std::uint32_t Words48Blocks(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                            std::uint32_t from, std::uint32_t to, int phase, Forms forms, FormsAfter formsAfter)
{
    const __m512i high = _mm512_set1_epi16(static_cast<short>(0xC000));
    const __m512i redGreen[3] = {Load(reinterpret_cast<const unsigned char*>(kRgb48Permutes.redGreen[0])),
                                 Load(reinterpret_cast<const unsigned char*>(kRgb48Permutes.redGreen[1])),
                                 Load(reinterpret_cast<const unsigned char*>(kRgb48Permutes.redGreen[2]))};
    const __m512i blue[3] = {Load(reinterpret_cast<const unsigned char*>(kRgb48Permutes.blue[0])),
                             Load(reinterpret_cast<const unsigned char*>(kRgb48Permutes.blue[1])),
                             Load(reinterpret_cast<const unsigned char*>(kRgb48Permutes.blue[2]))};
    // Whole blocks; where the rest of the line is an even number of pixels
    // (the interiors the line walk hands over are), one more block ending
    // at `to`, over pixels already written: it writes them again with the
    // same values (every block computes from the source alone), and its
    // even start keeps the lanes' colours.
    if (to < from + 32)
        return from;
    const std::uint32_t end = (to - from) % 2 == 0 ? to : from + (to - from) / 32 * 32;
    for (std::uint32_t step = from; step < end; step += 32) {
        const std::uint32_t x = step + 32 <= end ? step : end - 32;
        const unsigned char* c = line + 2 * static_cast<std::ptrdiff_t>(x);
        const unsigned char* a = c + above;
        const unsigned char* b = c + below;
        const __m512i a0 = Load(a - 2), a1 = Load(a), a2 = Load(a + 2);
        const __m512i c0 = Load(c - 2), c1 = Load(c), c2 = Load(c + 2);
        const __m512i b0 = Load(b - 2), b1 = Load(b), b2 = Load(b + 2);
        const __m512i any = _mm512_ternarylogic_epi64(
            _mm512_ternarylogic_epi64(a0, a1, a2, 0xFE), _mm512_ternarylogic_epi64(c0, c1, c2, 0xFE),
            _mm512_ternarylogic_epi64(b0, b1, b2, 0xFE), 0xFE);
        unsigned char* d = dst + static_cast<std::size_t>(x) * 6;
        if (_mm512_test_epi16_mask(any, high) != 0) {
            BayerWords48Sse2(line, above, below, dst, x, x + 32, phase);
            formsAfter(d);
            continue;
        }
        __m512i rgb[3];
        Interpolate(a0, a1, a2, c0, c1, c2, b0, b1, b2, phase, rgb[0], rgb[1], rgb[2]);
        forms(rgb, any);
        for (int k = 0; k < 3; ++k) {
            const __m512i rg = _mm512_permutex2var_epi16(rgb[0], redGreen[k], rgb[1]);
            _mm512_storeu_si512(d + 64 * k,
                                _mm512_mask_permutexvar_epi16(rg, kRgb48Permutes.blueMask[k], blue[k], rgb[2]));
        }
    }
    return end;
}

using WordForms = WordFormsOf<Arith>;

// FastMask: the channels (bit c) a corrected plan evaluates by the fast
// form. SkipGreen: green's table is the identity below greenBound (a power
// of two), and blocks whose samples all lie below it keep green as it is.
template <int Mode, bool Wide, unsigned FastMask, bool SkipGreen, bool Unit>
std::uint32_t FormedWords48(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                            std::uint32_t from, std::uint32_t to, int phase, const simd::LutFormPlan16& plan,
                            std::uint32_t greenBound)
{
    const WordForms forms = MakeWordForms<Arith>(plan);
    const __m512i aboveGreen = _mm512_set1_epi16(static_cast<short>(~(greenBound - 1) & 0xFFFF));
    return Words48Blocks(
        line, above, below, dst, from, to, phase,
        [&](__m512i(&rgb)[3], __m512i any) {
            rgb[0] = EvalChannel<V, Mode, Wide, (FastMask & 1) != 0, Unit>(rgb[0], forms, 0);
            if (!SkipGreen || _mm512_test_epi16_mask(any, aboveGreen) != 0)
                rgb[1] = EvalChannel<V, Mode, Wide, (FastMask & 2) != 0, Unit>(rgb[1], forms, 1);
            rgb[2] = EvalChannel<V, Mode, Wide, (FastMask & 4) != 0, Unit>(rgb[2], forms, 2);
        },
        [&](unsigned char* d) {
            // Register k starts 32k words, (32k) mod 3 words into a pixel.
            for (unsigned k = 0; k < 3; ++k)
                Arith::Words<Mode, Wide>(d + 64 * k, plan, (2 * k) % 3);
        });
}

std::uint32_t FormedBlocks(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                           std::uint32_t from, std::uint32_t to, int phase, const simd::LutFormPlan16& plan)
{
    return WithWordForms<Arith>(plan, from, [&](auto mode, auto wide, auto fast, auto skip, auto unit,
                                              std::uint32_t greenBound) {
        return FormedWords48<decltype(mode)::value, decltype(wide)::value, decltype(fast)::value,
                             decltype(skip)::value, decltype(unit)::value>(line, above, below, dst, from, to, phase,
                                                                           plan, greenBound);
    });
}

}  // namespace

std::uint32_t BayerWords48FormedAvx512(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                                       unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase,
                                       const simd::LutFormPlan16& plan)
{
    const std::uint32_t x = FormedBlocks(line, above, below, dst, from, to, phase, plan);
    // A tail of 16 pixels or more: the AVX2 block's 16 at a time.
    return x + 16 <= to ? kBayerPathsAVX2.words48Formed(line, above, below, dst, x, to, phase, plan) : x;
}

// The identity RGB48 line.
std::uint32_t BayerWords48Avx512(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                                 unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase)
{
    const std::uint32_t x = Words48Blocks(
        line, above, below, dst, from, to, phase, [](__m512i(&)[3], __m512i) {}, [](unsigned char*) {});
    return kBayerPathsAVX2.words48(line, above, below, dst, x, to, phase);
}

}  // namespace zo
#endif
