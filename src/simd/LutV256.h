// The 256-bit lanes the arithmetic table forms (LutArith.h) run on, for the
// files compiled for AVX2 that evaluate them: the AVX2 table passes and the
// Bayer kernels that evaluate the forms before they store.
//
// Include only from files compiled for AVX2: everything here is local to the
// including file.
#ifndef ZO_SIMD_LUT_V256_H
#define ZO_SIMD_LUT_V256_H

#if defined(__AVX2__)
#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace zo {
namespace simd {
namespace {

struct V256 {
    using T = __m256i;
    static constexpr std::size_t kBytes = 32;
    static constexpr bool kExact = true;
    static T Load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
    static void Store(void* p, T v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }
    static T Zero() { return _mm256_setzero_si256(); }
    static T Set1(std::uint16_t x) { return _mm256_set1_epi16(static_cast<short>(x)); }
    static T Ramp() { return _mm256_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15); }
    static T Add(T a, T b) { return _mm256_add_epi16(a, b); }
    static T Sub(T a, T b) { return _mm256_sub_epi16(a, b); }
    static T AddS(T a, T b) { return _mm256_adds_epu16(a, b); }
    static T SubS(T a, T b) { return _mm256_subs_epu16(a, b); }
    static T MulLo(T a, T b) { return _mm256_mullo_epi16(a, b); }
    static T MulHi(T a, T b) { return _mm256_mulhi_epu16(a, b); }
    static T Min(T a, T b) { return _mm256_min_epu16(a, b); }
    // No unsigned 16-bit compare: corrected forms take back min(h - g, ...).
    static constexpr bool kPickGreater = false;
    static T AddS8(T a, T b) { return _mm256_adds_epu8(a, b); }
    static T Greater(T a, T b) { return _mm256_cmpgt_epi16(a, b); }
    static T Select(T mask, T a, T b) { return _mm256_blendv_epi8(b, a, mask); }
    static T Or(T a, T b) { return _mm256_or_si256(a, b); }
    static T Xor(T a, T b) { return _mm256_xor_si256(a, b); }
    static T IfNonZero(T d, T x) { return _mm256_andnot_si256(_mm256_cmpeq_epi16(d, Zero()), x); }
    // No wrap exactly when l - s saturates to 0; that mask is -1: f + 1 - 1.
    static T AddCarry(T f, T l, T s)
    {
        return _mm256_add_epi16(_mm256_add_epi16(f, Set1(1)), _mm256_cmpeq_epi16(_mm256_subs_epu16(l, s), Zero()));
    }
    static T Lo8(T v) { return _mm256_unpacklo_epi8(v, Zero()); }
    static T Hi8(T v) { return _mm256_unpackhi_epi8(v, Zero()); }
    static T Pack(T a, T b) { return _mm256_packus_epi16(a, b); }
    static bool AllZero(T v) { return _mm256_testz_si256(v, v) != 0; }
    // Lanes widened in-lane: the low dwords hold words 0-3 and 8-11, the
    // high ones 4-7 and 12-15; the in-lane pack puts them back.
    static __m128i MulTrunc4(__m128i x, const double* scale, const double* offset)
    {
        const __m256d v = _mm256_mul_pd(_mm256_cvtepi32_pd(x), _mm256_loadu_pd(scale));
        return _mm256_cvttpd_epi32(_mm256_add_pd(v, _mm256_loadu_pd(offset)));
    }
    static T MulTrunc(T j, const double* scale, const double* offset)
    {
        const T lo = _mm256_unpacklo_epi16(j, Zero()), hi = _mm256_unpackhi_epi16(j, Zero());
        const T a = _mm256_set_m128i(MulTrunc4(_mm256_extracti128_si256(lo, 1), scale + 8, offset + 8),
                                     MulTrunc4(_mm256_castsi256_si128(lo), scale, offset));
        const T b = _mm256_set_m128i(MulTrunc4(_mm256_extracti128_si256(hi, 1), scale + 12, offset + 12),
                                     MulTrunc4(_mm256_castsi256_si128(hi), scale + 4, offset + 4));
        return _mm256_packus_epi32(a, b);
    }
};

}  // namespace
}  // namespace simd
}  // namespace zo

#endif
#endif
