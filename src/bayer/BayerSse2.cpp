// SSE2 inside of an interpolating line (SSE2 is the baseline of x86-64
// builds; the table runs from the SSE2 level on, see BayerSimd.cpp): 8-bit
// samples sixteen pixels per pass, 16-bit samples eight or sixteen.
#include "bayer/BayerPaths.h"

#if defined(__SSE2__)
#include <emmintrin.h>

#include <cstring>

#include "bayer/BayerBilinear.h"
#include "simd/LutScaled.h"
#include "simd/Rgb16Words.h"

// The block helpers below must melt into their loops.
#if defined(__GNUC__)
#define ZO_BAYER_INLINE inline __attribute__((always_inline))
#else
#define ZO_BAYER_INLINE inline
#endif

namespace zo {
namespace {

// A block's red, green and blue in 16-bit lanes (bayer/BayerBilinear.h).
struct BayerBlock16 {
    __m128i red, green, blue;  // 16 bytes each
};

// The lanes of bayer/BayerBilinear.h: eight words, or (Bits 32) four dwords
// for sums that need more than 16 bits.
template <int Bits>
struct Sse2Lanes {
    using T = __m128i;
    static T Add(T a, T b) { return Bits == 16 ? _mm_add_epi16(a, b) : _mm_add_epi32(a, b); }
    template <int N>
    static T Shift(T a) { return Bits == 16 ? _mm_srli_epi16(a, N) : _mm_srli_epi32(a, N); }
    static T Pick(T evenValue, T oddValue)
    {
        const T even = Bits == 16 ? _mm_set1_epi32(0x0000FFFF) : _mm_set1_epi64x(0xFFFFFFFF);
        return _mm_or_si128(_mm_and_si128(even, evenValue), _mm_andnot_si128(even, oddValue));
    }
};

// Eight pixels (one half of a block) as 16-bit lanes of red, green, blue.
ZO_BAYER_INLINE void BayerHalf(__m128i a0, __m128i a1, __m128i a2, __m128i c0, __m128i c1, __m128i c2, __m128i b0,
                      __m128i b1, __m128i b2, int phase, __m128i& r, __m128i& g, __m128i& b)
{
    Bilinear<Sse2Lanes<16>>(a0, a1, a2, c0, c1, c2, b0, b1, b2, phase, r, g, b);
}

// Sixteen pixels as 16-bit lanes of red, green and blue (l: pixels 0-7,
// h: 8-15), every value 0-255.
ZO_BAYER_INLINE void BayerBlockLanes(const unsigned char* a, const unsigned char* c, const unsigned char* b, int phase,
                                     __m128i& rl, __m128i& gl, __m128i& bl, __m128i& rh, __m128i& gh, __m128i& bh)
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
    BayerHalf(_mm_unpacklo_epi8(a0, zero), _mm_unpacklo_epi8(a1, zero), _mm_unpacklo_epi8(a2, zero),
              _mm_unpacklo_epi8(c0, zero), _mm_unpacklo_epi8(c1, zero), _mm_unpacklo_epi8(c2, zero),
              _mm_unpacklo_epi8(b0, zero), _mm_unpacklo_epi8(b1, zero), _mm_unpacklo_epi8(b2, zero), phase, rl, gl,
              bl);
    BayerHalf(_mm_unpackhi_epi8(a0, zero), _mm_unpackhi_epi8(a1, zero), _mm_unpackhi_epi8(a2, zero),
              _mm_unpackhi_epi8(c0, zero), _mm_unpackhi_epi8(c1, zero), _mm_unpackhi_epi8(c2, zero),
              _mm_unpackhi_epi8(b0, zero), _mm_unpackhi_epi8(b1, zero), _mm_unpackhi_epi8(b2, zero), phase, rh, gh,
              bh);
}

// Four registers of four pixels each: byte 0 first colour, 1 green, 2 last
// colour, 3 zero.
ZO_BAYER_INLINE void BayerQuads(const BayerBlock16& block, bool blueFirst, __m128i q[4])
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

// Stores a block of sixteen pixels in a 2-, 3- or 4-byte layout (2: RGB16
// words, as PackRGB16 makes them). A 24-bit block writes two bytes past its
// last pixel.
template <unsigned Bytes, bool BlueFirst>
ZO_BAYER_INLINE void BayerStoreBlock(const BayerBlock16& block, unsigned char* d)
{
    if constexpr (Bytes == 2) {
        simd::StoreRGB16x16(d, block.red, block.green, block.blue);
        return;
    }
    __m128i q[4];
    BayerQuads(block, BlueFirst, q);
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

// `forms(r, g, b)`: maps a block's red, green and blue 16-bit lanes before
// they are packed (white balance; the identity line passes NoForms).
struct NoForms {
    void operator()(__m128i&, __m128i&, __m128i&) const {}
};

// Pixels x = from, from + 16, ... while a whole block fits before `to`
// (`to` at most count - 1, so that the loads at x + 1 stay inside the line).
// Returns where it stopped. A 24-bit block stores two bytes past its last
// pixel, which the caller writes afterwards.
template <unsigned Bytes, bool BlueFirst, class Forms>
std::uint32_t InterpolateBlocksSse2(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                                    unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase, Forms forms)
{
    std::uint32_t x = from;
    for (; x + 16 <= to; x += 16) {
        __m128i rl, gl, bl, rh, gh, bh;
        BayerBlockLanes(line + above + x, line + x, line + below + x, phase, rl, gl, bl, rh, gh, bh);
        forms(rl, gl, bl);
        forms(rh, gh, bh);
        const BayerBlock16 block{_mm_packus_epi16(rl, rh), _mm_packus_epi16(gl, gh), _mm_packus_epi16(bl, bh)};
        BayerStoreBlock<Bytes, BlueFirst>(block, dst + static_cast<std::size_t>(x) * Bytes);
    }
    return x;
}

// ---- 16-bit samples: eight pixels per pass in 32-bit lanes -----------------
//
// The same neighbourhood sums as above on whole words (exact for any 16-bit
// sample). For 8-bit layouts each value is shifted right by `shift` and its
// low 8 bits kept; RGB48 keeps the 16-bit values.

ZO_BAYER_INLINE void BayerQuarter(__m128i a0, __m128i a1, __m128i a2, __m128i c0, __m128i c1, __m128i c2, __m128i b0,
                         __m128i b1, __m128i b2, int phase, __m128i& r, __m128i& g, __m128i& b)
{
    Bilinear<Sse2Lanes<32>>(a0, a1, a2, c0, c1, c2, b0, b1, b2, phase, r, g, b);
}

// Eight pixels at word pointers a, c, b (above, current, below): red, green
// and blue as eight 16-bit lanes each (sums in 32-bit lanes unless every
// sample is below 2^14).
ZO_BAYER_INLINE void BayerWords8(const unsigned char* a, const unsigned char* c, const unsigned char* b, int phase,
                        __m128i& red, __m128i& green, __m128i& blue)
{
    const __m128i zero = _mm_setzero_si128();
    auto load = [](const unsigned char* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); };
    const __m128i a0 = load(a - 2), a1 = load(a), a2 = load(a + 2);
    const __m128i c0 = load(c - 2), c1 = load(c), c2 = load(c + 2);
    const __m128i b0 = load(b - 2), b1 = load(b), b2 = load(b + 2);
    // Samples below 2^14 (10- and 12-bit data) cannot overflow a 16-bit sum
    // of four: then the sums are taken in 16-bit lanes directly.
    const __m128i any = _mm_or_si128(_mm_or_si128(_mm_or_si128(a0, a1), _mm_or_si128(a2, c0)),
                                     _mm_or_si128(_mm_or_si128(c1, c2), _mm_or_si128(_mm_or_si128(b0, b1), b2)));
    const __m128i high = _mm_and_si128(any, _mm_set1_epi16(static_cast<short>(0xC000)));
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(high, zero)) == 0xFFFF) {
        BayerHalf(a0, a1, a2, c0, c1, c2, b0, b1, b2, phase, red, green, blue);
        return;
    }
    __m128i rl, gl, bl, rh, gh, bh;
    BayerQuarter(_mm_unpacklo_epi16(a0, zero), _mm_unpacklo_epi16(a1, zero), _mm_unpacklo_epi16(a2, zero),
                 _mm_unpacklo_epi16(c0, zero), _mm_unpacklo_epi16(c1, zero), _mm_unpacklo_epi16(c2, zero),
                 _mm_unpacklo_epi16(b0, zero), _mm_unpacklo_epi16(b1, zero), _mm_unpacklo_epi16(b2, zero), phase, rl,
                 gl, bl);
    BayerQuarter(_mm_unpackhi_epi16(a0, zero), _mm_unpackhi_epi16(a1, zero), _mm_unpackhi_epi16(a2, zero),
                 _mm_unpackhi_epi16(c0, zero), _mm_unpackhi_epi16(c1, zero), _mm_unpackhi_epi16(c2, zero),
                 _mm_unpackhi_epi16(b0, zero), _mm_unpackhi_epi16(b1, zero), _mm_unpackhi_epi16(b2, zero), phase, rh,
                 gh, bh);
    // 32-bit lanes below 65536 to 16-bit lanes (signed packing around 32768).
    const __m128i bias32 = _mm_set1_epi32(32768);
    const __m128i bias16 = _mm_set1_epi16(-32768);
    auto pack = [&](__m128i low, __m128i high) {
        return _mm_xor_si128(_mm_packs_epi32(_mm_sub_epi32(low, bias32), _mm_sub_epi32(high, bias32)), bias16);
    };
    red = pack(rl, rh);
    green = pack(gl, gh);
    blue = pack(bl, bh);
}

// 16-bit samples into a 3- or 4-byte layout (`above`/`below` in bytes):
// sixteen pixels from `from` (even) while they fit before `to` (at most
// count - 1). A 24-bit block writes two bytes past its last pixel, which the
// caller writes afterwards.
// `forms(r, g, b)` maps the values (v >> shift) & 0xFF in 16-bit lanes
// before they are packed (the identity line: it does nothing).
template <unsigned Bytes, bool BlueFirst, class Forms>
std::uint32_t InterpolateWordBlocksSse2(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                                        unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase,
                                        unsigned shift, Forms forms)
{
    const __m128i count = _mm_cvtsi32_si128(static_cast<int>(shift));
    const __m128i low8 = _mm_set1_epi16(0xFF);
    auto bytes = [&](__m128i v) { return _mm_and_si128(_mm_srl_epi16(v, count), low8); };
    std::uint32_t x = from;
    for (; x + 16 <= to; x += 16) {
        const unsigned char* c = line + 2 * static_cast<std::ptrdiff_t>(x);
        __m128i r[2], g[2], b[2];
        BayerWords8(c + above, c, c + below, phase, r[0], g[0], b[0]);
        BayerWords8(c + 16 + above, c + 16, c + 16 + below, phase, r[1], g[1], b[1]);
        for (int k = 0; k < 2; ++k) {
            r[k] = bytes(r[k]), g[k] = bytes(g[k]), b[k] = bytes(b[k]);
            forms(r[k], g[k], b[k]);
        }
        BayerBlock16 block;
        block.red = _mm_packus_epi16(r[0], r[1]);
        block.green = _mm_packus_epi16(g[0], g[1]);
        block.blue = _mm_packus_epi16(b[0], b[1]);
        BayerStoreBlock<Bytes, BlueFirst>(block, dst + static_cast<std::size_t>(x) * Bytes);
    }
    return x;
}

// 16-bit samples into RGB48 (identity filter): each pixel stored as eight
// bytes, the last two of which the next pixel overwrites; the block's last
// store writes two bytes past it, which the caller writes afterwards.
std::uint32_t InterpolateWordBlocks48Sse2(const unsigned char* line, std::ptrdiff_t above,
                                                 std::ptrdiff_t below, unsigned char* dst, std::uint32_t from,
                                                 std::uint32_t to, int phase)
{
    const __m128i zero = _mm_setzero_si128();
    std::uint32_t x = from;
    for (; x + 8 <= to; x += 8) {
        const unsigned char* c = line + 2 * static_cast<std::ptrdiff_t>(x);
        __m128i r, g, b;
        BayerWords8(c + above, c, c + below, phase, r, g, b);
        const __m128i rg[2] = {_mm_unpacklo_epi16(r, g), _mm_unpackhi_epi16(r, g)};
        const __m128i b0[2] = {_mm_unpacklo_epi16(b, zero), _mm_unpackhi_epi16(b, zero)};
        unsigned char* d = dst + static_cast<std::size_t>(x) * 6;
        for (int k = 0; k < 2; ++k) {
            const __m128i p01 = _mm_unpacklo_epi32(rg[k], b0[k]);  // r g b 0 of two pixels
            const __m128i p23 = _mm_unpackhi_epi32(rg[k], b0[k]);
            _mm_storel_epi64(reinterpret_cast<__m128i*>(d), p01);
            _mm_storel_epi64(reinterpret_cast<__m128i*>(d + 6), _mm_unpackhi_epi64(p01, p01));
            _mm_storel_epi64(reinterpret_cast<__m128i*>(d + 12), p23);
            _mm_storel_epi64(reinterpret_cast<__m128i*>(d + 18), _mm_unpackhi_epi64(p23, p23));
            d += 24;
        }
    }
    return x;
}

}  // namespace

std::uint32_t BayerBytesSse2(unsigned bytes, bool blueFirst, const unsigned char* line, std::ptrdiff_t above,
                             std::ptrdiff_t below, unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase)
{
    if (bytes == 4)
        return blueFirst ? InterpolateBlocksSse2<4, true>(line, above, below, dst, from, to, phase, NoForms{})
                         : InterpolateBlocksSse2<4, false>(line, above, below, dst, from, to, phase, NoForms{});
    return blueFirst ? InterpolateBlocksSse2<3, true>(line, above, below, dst, from, to, phase, NoForms{})
                     : InterpolateBlocksSse2<3, false>(line, above, below, dst, from, to, phase, NoForms{});
}

std::uint32_t BayerWordsSse2(unsigned bytes, bool blueFirst, const unsigned char* line, std::ptrdiff_t above,
                             std::ptrdiff_t below, unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase,
                             unsigned shift)
{
    if (bytes == 4)
        return blueFirst ? InterpolateWordBlocksSse2<4, true>(line, above, below, dst, from, to, phase, shift, NoForms{})
                         : InterpolateWordBlocksSse2<4, false>(line, above, below, dst, from, to, phase, shift, NoForms{});
    return blueFirst ? InterpolateWordBlocksSse2<3, true>(line, above, below, dst, from, to, phase, shift, NoForms{})
                     : InterpolateWordBlocksSse2<3, false>(line, above, below, dst, from, to, phase, shift, NoForms{});
}

// The scaled-form lines: the plan is in byte order of the layout, blue
// first for BGR; `from` (nothing done) where a table has no scaled form.
std::uint32_t BayerWordsScaledSse2(unsigned bytes, bool blueFirst, const unsigned char* line, std::ptrdiff_t above,
                                   std::ptrdiff_t below, unsigned char* dst, std::uint32_t from, std::uint32_t to,
                                   int phase, unsigned shift, const simd::LutFormPlan8& plan)
{
    if (!simd::HasScaledForms(plan))
        return from;
    return simd::WithScaledForms<simd::ScaledOps128>(plan, blueFirst ? 2 : 0, [&](const auto& forms) {
        if (bytes == 4)
            return blueFirst
                       ? InterpolateWordBlocksSse2<4, true>(line, above, below, dst, from, to, phase, shift, forms)
                       : InterpolateWordBlocksSse2<4, false>(line, above, below, dst, from, to, phase, shift, forms);
        return blueFirst ? InterpolateWordBlocksSse2<3, true>(line, above, below, dst, from, to, phase, shift, forms)
                         : InterpolateWordBlocksSse2<3, false>(line, above, below, dst, from, to, phase, shift, forms);
    });
}

std::uint32_t BayerWords48Sse2(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                               unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase)
{
    return InterpolateWordBlocks48Sse2(line, above, below, dst, from, to, phase);
}

std::uint32_t BayerBytesScaledSse2(unsigned bytes, bool blueFirst, const unsigned char* line, std::ptrdiff_t above,
                                   std::ptrdiff_t below, unsigned char* dst, std::uint32_t from, std::uint32_t to,
                                   int phase, const simd::LutFormPlan8& plan)
{
    if (!simd::HasScaledForms(plan))
        return from;
    return simd::WithScaledForms<simd::ScaledOps128>(plan, blueFirst ? 2 : 0, [&](const auto& forms) {
        if (bytes == 2)
            return InterpolateBlocksSse2<2, false>(line, above, below, dst, from, to, phase, forms);
        if (bytes == 4)
            return blueFirst ? InterpolateBlocksSse2<4, true>(line, above, below, dst, from, to, phase, forms)
                             : InterpolateBlocksSse2<4, false>(line, above, below, dst, from, to, phase, forms);
        return blueFirst ? InterpolateBlocksSse2<3, true>(line, above, below, dst, from, to, phase, forms)
                         : InterpolateBlocksSse2<3, false>(line, above, below, dst, from, to, phase, forms);
    });
}

const BayerPaths kBayerPathsSSE2 = {"SSE2",  BayerBytesSse2, BayerWordsSse2,       BayerWords48Sse2,    nullptr,
                                    nullptr, nullptr,        BayerBytesScaledSse2, BayerWordsScaledSse2};

}  // namespace zo

#endif
