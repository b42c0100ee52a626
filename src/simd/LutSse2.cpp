// Arithmetic table passes with SSE2 (the lookups stay scalar).
#include <emmintrin.h>

#include "simd/LutArith.h"

namespace zo {
namespace simd {
namespace {

struct V128 {
    using T = __m128i;
    static constexpr std::size_t kBytes = 16;
    static constexpr bool kExact = false;  // two doubles a register: not worth it
    static T Load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
    static void Store(void* p, T v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
    static T Zero() { return _mm_setzero_si128(); }
    static T Set1(std::uint16_t x) { return _mm_set1_epi16(static_cast<short>(x)); }
    static T Ramp() { return _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7); }
    static T Add(T a, T b) { return _mm_add_epi16(a, b); }
    static T Sub(T a, T b) { return _mm_sub_epi16(a, b); }
    static T AddS(T a, T b) { return _mm_adds_epu16(a, b); }
    static T SubS(T a, T b) { return _mm_subs_epu16(a, b); }
    static T MulLo(T a, T b) { return _mm_mullo_epi16(a, b); }
    static T MulHi(T a, T b) { return _mm_mulhi_epu16(a, b); }
    static T Min(T a, T b) { return _mm_sub_epi16(a, _mm_subs_epu16(a, b)); }  // no unsigned min before SSE4.1
    static T Or(T a, T b) { return _mm_or_si128(a, b); }
    static T Xor(T a, T b) { return _mm_xor_si128(a, b); }
    static T IfNonZero(T d, T x) { return _mm_andnot_si128(_mm_cmpeq_epi16(d, Zero()), x); }
    // No wrap exactly when l - s saturates to 0; that mask is -1: f + 1 - 1.
    static T AddCarry(T f, T l, T s)
    {
        return _mm_add_epi16(_mm_add_epi16(f, Set1(1)), _mm_cmpeq_epi16(_mm_subs_epu16(l, s), Zero()));
    }
    static T Lo8(T v) { return _mm_unpacklo_epi8(v, Zero()); }
    static T Hi8(T v) { return _mm_unpackhi_epi8(v, Zero()); }
    static T Pack(T a, T b) { return _mm_packus_epi16(a, b); }
    static bool AllZero(T v) { return _mm_movemask_epi8(_mm_cmpeq_epi8(v, Zero())) == 0xFFFF; }
};

using A = LutArith<V128>;
constexpr LutPaths kSse2 = {"SSE2", false, LutBytes3Scalar, LutBytes4Scalar, A::Form3, A::Form4, A::Words3,
                            A::Verify16, nullptr, A::VerifyCorrected16, false};

}  // namespace

const LutPaths* Sse2LutPaths() { return HostCpuLevel() >= CpuLevel::kSSE2 ? &kSse2 : nullptr; }

}  // namespace simd
}  // namespace zo
