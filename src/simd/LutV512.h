// The 512-bit lanes the arithmetic table forms (LutArith.h) run on, for the
// files compiled for AVX-512 that evaluate them: the AVX-512 table passes
// and the YUV kernel that evaluates the forms before it stores.
//
// Include only from files compiled for AVX-512 (F, BW, VL): everything here
// is local to the including file.
#ifndef ZO_SIMD_LUT_V512_H
#define ZO_SIMD_LUT_V512_H

#if defined(__AVX512BW__)
#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace zo {
namespace simd {
namespace {

struct V512 {
    using T = __m512i;
    static constexpr std::size_t kBytes = 64;
    static constexpr bool kExact = true;
    static T Load(const void* p) { return _mm512_loadu_si512(p); }
    static void Store(void* p, T v) { _mm512_storeu_si512(p, v); }
    static T Zero() { return _mm512_setzero_si512(); }
    static T Set1(std::uint16_t x) { return _mm512_set1_epi16(static_cast<short>(x)); }
    static T Ramp()
    {
        alignas(64) static const std::uint16_t kRamp[32] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10,
                                                            11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21,
                                                            22, 23, 24, 25, 26, 27, 28, 29, 30, 31};
        return _mm512_load_si512(kRamp);
    }
    static T Add(T a, T b) { return _mm512_add_epi16(a, b); }
    static T Sub(T a, T b) { return _mm512_sub_epi16(a, b); }
    static T AddS(T a, T b) { return _mm512_adds_epu16(a, b); }
    static T SubS(T a, T b) { return _mm512_subs_epu16(a, b); }
    static T MulLo(T a, T b) { return _mm512_mullo_epi16(a, b); }
    static T MulHi(T a, T b) { return _mm512_mulhi_epu16(a, b); }
    static T Min(T a, T b) { return _mm512_min_epu16(a, b); }
    // ifGreater where a > b (unsigned), else otherwise.
    static constexpr bool kPickGreater = true;
    static T PickGreater(T a, T b, T ifGreater, T otherwise)
    {
        return _mm512_mask_mov_epi16(otherwise, _mm512_cmpgt_epu16_mask(a, b), ifGreater);
    }
    static T Or(T a, T b) { return _mm512_or_si512(a, b); }
    static T Xor(T a, T b) { return _mm512_xor_si512(a, b); }
    static T IfNonZero(T d, T x) { return _mm512_maskz_mov_epi16(_mm512_test_epi16_mask(d, d), x); }
    static T AddCarry(T f, T l, T s) { return _mm512_mask_add_epi16(f, _mm512_cmplt_epu16_mask(s, l), f, Set1(1)); }
    static T Lo8(T v) { return _mm512_unpacklo_epi8(v, Zero()); }
    static T Hi8(T v) { return _mm512_unpackhi_epi8(v, Zero()); }
    static T Pack(T a, T b) { return _mm512_packus_epi16(a, b); }
    static bool AllZero(T v) { return _mm512_test_epi64_mask(v, v) == 0; }
    // Lanes in order: words 0-15 and 16-31 widened to dwords, eight doubles
    // at a time, back to dwords, saturated to 16 bits (negative: 0).
    static __m256i High256(__m512i v) { return _mm512_extracti64x4_epi64(v, 1); }
    static __m256i MulTrunc8(__m256i x, const double* scale, const double* offset)
    {
        const __m512d v = _mm512_mul_pd(_mm512_cvtepi32_pd(x), _mm512_loadu_pd(scale));
        return _mm512_cvttpd_epi32(_mm512_add_pd(v, _mm512_loadu_pd(offset)));
    }
    static __m256i MulTrunc16(__m256i words, const double* scale, const double* offset)
    {
        const __m512i d = _mm512_cvtepu16_epi32(words);
        const __m256i low = MulTrunc8(_mm512_castsi512_si256(d), scale, offset);
        const __m256i high = MulTrunc8(High256(d), scale + 8, offset + 8);
        const __m512i r = _mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1);
        return _mm512_cvtusepi32_epi16(_mm512_max_epi32(r, Zero()));
    }
    static T MulTrunc(T j, const double* scale, const double* offset)
    {
        return _mm512_inserti64x4(_mm512_castsi256_si512(MulTrunc16(_mm512_castsi512_si256(j), scale, offset)),
                                  MulTrunc16(High256(j), scale + 16, offset + 16), 1);
    }
};

}  // namespace
}  // namespace simd
}  // namespace zo

#endif
#endif
