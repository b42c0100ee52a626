// The scaled forms of 8-bit tables (simd/LutForm.h) in kernels that hold
// each channel in its own register of 16-bit lanes, before they pack them:
// the choice of a loop's variant for a plan, and the forms on 128-bit lanes
// (SSE2) and 256-bit lanes (files compiled for AVX2). Used by the YUV and
// Bayer kernels; everything here is local to the including file.
#ifndef ZO_SIMD_LUT_SCALED_H
#define ZO_SIMD_LUT_SCALED_H

#include <type_traits>

#include "simd/LutForm.h"

#if defined(__AVX2__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

// The evaluations must melt into their loops.
#if defined(__GNUC__)
#define ZO_SCALED_INLINE inline __attribute__((always_inline))
#else
#define ZO_SCALED_INLINE inline
#endif

namespace zo {
namespace simd {
namespace {

// Whether every table of the plan has a scaled form.
inline bool HasScaledForms(const LutFormPlan8& plan)
{
    return plan.scaled[0].valid && plan.scaled[1].valid && plan.scaled[2].valid;
}

// Calls run(red, green, blue) with std::integral_constant<int, mode> for
// each channel and returns its result: -1 left as it is, 0 the fast form,
// 1 the corrected one, fixed at compile time so that a loop does only its
// channels' work. Green is left as it is where its table is the identity
// (white balance mostly), red and blue each fast or corrected; else all
// three take the corrected form (a fast form has cross = 0, so the
// corrected one never picks its g). Every table must have a scaled form;
// the plan is in byte order of the layout, red at byte `redIndex`.
template <class Run>
inline auto WithScaledModes(const LutFormPlan8& plan, unsigned redIndex, Run run)
{
    using Skip = std::integral_constant<int, -1>;
    using Fast = std::integral_constant<int, 0>;
    using Corrected = std::integral_constant<int, 1>;
    const bool red = plan.scaled[redIndex].corrected, blue = plan.scaled[2 - redIndex].corrected;
    if (!plan.identity[1])
        return run(Corrected{}, Corrected{}, Corrected{});
    if (red)
        return blue ? run(Corrected{}, Skip{}, Corrected{}) : run(Corrected{}, Skip{}, Fast{});
    return blue ? run(Fast{}, Skip{}, Corrected{}) : run(Fast{}, Skip{}, Fast{});
}

#if defined(__SSE2__)
// One channel's scaled form in every lane of a 128-bit register.
struct ScaledLanes128 {
    __m128i high, low, cross;
    explicit ScaledLanes128(const LutScaledForm& f)
        : high(_mm_set1_epi16(static_cast<short>(f.high))),
          low(_mm_set1_epi16(static_cast<short>(f.low))),
          cross(_mm_set1_epi16(static_cast<short>(f.cross)))
    {
    }
};

// The form (Mode as above) on signed 16-bit values v, |v| < 8192; packing
// with unsigned saturation then gives the table's bytes.
template <int Mode>
ZO_SCALED_INLINE __m128i EvalScaled(__m128i v, const ScaledLanes128& c)
{
    if constexpr (Mode < 0) {
        return v;
    } else {
        const __m128i x = _mm_slli_epi16(v, 2);
        const __m128i h = _mm_mulhi_epi16(x, c.high);
        if constexpr (Mode == 0) {
            return h;
        } else {
            // g where l reaches h's top bit (SSE2 has no byte blend).
            const __m128i l = _mm_mulhi_epi16(x, c.cross);
            const __m128i pick = _mm_cmpgt_epi16(l, _mm_xor_si128(l, h));
            const __m128i g = _mm_mulhi_epi16(x, c.low);
            return _mm_xor_si128(h, _mm_and_si128(pick, _mm_xor_si128(h, g)));
        }
    }
}
#endif

#if defined(__AVX2__)
// The same on 256-bit registers (files compiled for AVX2).
struct ScaledLanes256 {
    __m256i high, low, cross;
    explicit ScaledLanes256(const LutScaledForm& f)
        : high(_mm256_set1_epi16(static_cast<short>(f.high))),
          low(_mm256_set1_epi16(static_cast<short>(f.low))),
          cross(_mm256_set1_epi16(static_cast<short>(f.cross)))
    {
    }
};

template <int Mode>
ZO_SCALED_INLINE __m256i EvalScaled(__m256i v, const ScaledLanes256& c)
{
    if constexpr (Mode < 0) {
        return v;
    } else {
        const __m256i x = _mm256_slli_epi16(v, 2);
        const __m256i h = _mm256_mulhi_epi16(x, c.high);
        if constexpr (Mode == 0) {
            return h;
        } else {
            const __m256i l = _mm256_mulhi_epi16(x, c.cross);
            return _mm256_blendv_epi8(h, _mm256_mulhi_epi16(x, c.low), _mm256_cmpgt_epi16(l, _mm256_xor_si256(l, h)));
        }
    }
}
#endif

}  // namespace
}  // namespace simd
}  // namespace zo

#endif
