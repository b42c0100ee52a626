// The scaled forms of 8-bit tables (simd/LutForm.h) in kernels that hold
// each channel in its own register of 16-bit lanes, before they pack them:
// the choice of a loop's variant for a plan, and the forms on 128-bit lanes
// (SSE2) and 256-bit lanes (files compiled for AVX2). Used by the YUV and
// Bayer kernels; everything here is local to the including file.
#ifndef ZO_SIMD_LUT_SCALED_H
#define ZO_SIMD_LUT_SCALED_H

#include <cstdint>
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

// The lane operations the scaled forms take, per register width.
#if defined(__SSE2__)
struct ScaledOps128 {
    using T = __m128i;
    static T Set(std::uint16_t b) { return _mm_set1_epi16(static_cast<short>(b)); }
    static T Times4(T v) { return _mm_slli_epi16(v, 2); }
    static T MulHi(T a, T b) { return _mm_mulhi_epi16(a, b); }
    static T Greater(T a, T b) { return _mm_cmpgt_epi16(a, b); }
    static T Xor(T a, T b) { return _mm_xor_si128(a, b); }
    // b where mask is set, else a (SSE2 has no byte blend).
    static T Select(T a, T b, T mask) { return Xor(a, _mm_and_si128(mask, Xor(a, b))); }
};
#endif

#if defined(__AVX2__)
struct ScaledOps256 {
    using T = __m256i;
    static T Set(std::uint16_t b) { return _mm256_set1_epi16(static_cast<short>(b)); }
    static T Times4(T v) { return _mm256_slli_epi16(v, 2); }
    static T MulHi(T a, T b) { return _mm256_mulhi_epi16(a, b); }
    static T Greater(T a, T b) { return _mm256_cmpgt_epi16(a, b); }
    static T Xor(T a, T b) { return _mm256_xor_si256(a, b); }
    static T Select(T a, T b, T mask) { return _mm256_blendv_epi8(a, b, mask); }
};
#endif

// One channel's scaled form in every lane.
template <class Ops>
struct ScaledLanes {
    typename Ops::T high, low, cross;
    explicit ScaledLanes(const LutScaledForm& f) : high(Ops::Set(f.high)), low(Ops::Set(f.low)), cross(Ops::Set(f.cross))
    {
    }
};

// The form (Mode as above) on signed 16-bit values v, |v| < 8192; packing
// with unsigned saturation then gives the table's bytes.
template <int Mode, class Ops>
ZO_SCALED_INLINE typename Ops::T EvalScaled(typename Ops::T v, const ScaledLanes<Ops>& c)
{
    if constexpr (Mode < 0) {
        return v;
    } else {
        const typename Ops::T x = Ops::Times4(v);
        const typename Ops::T h = Ops::MulHi(x, c.high);
        if constexpr (Mode == 0) {
            return h;
        } else {
            // g where l reaches h's top bit.
            const typename Ops::T l = Ops::MulHi(x, c.cross);
            return Ops::Select(h, Ops::MulHi(x, c.low), Ops::Greater(l, Ops::Xor(l, h)));
        }
    }
}

#if defined(__SSE2__)
using ScaledLanes128 = ScaledLanes<ScaledOps128>;
#endif
#if defined(__AVX2__)
using ScaledLanes256 = ScaledLanes<ScaledOps256>;
#endif

// Red, green and blue registers through their forms (the modes of
// WithScaledModes), for the hook a kernel calls before it packs.
template <class Ops, int Red, int Green, int Blue>
struct ScaledTriple {
    const ScaledLanes<Ops>& red;
    const ScaledLanes<Ops>& green;
    const ScaledLanes<Ops>& blue;
    ZO_SCALED_INLINE void operator()(typename Ops::T& r, typename Ops::T& g, typename Ops::T& b) const
    {
        r = EvalScaled<Red>(r, red);
        g = EvalScaled<Green>(g, green);
        b = EvalScaled<Blue>(b, blue);
    }
};

// Returns run(forms) with the ScaledTriple of the plan's variant (every
// table must have a scaled form; red at byte `redIndex` of the plan).
template <class Ops, class Run>
inline auto WithScaledForms(const LutFormPlan8& plan, unsigned redIndex, Run run)
{
    const ScaledLanes<Ops> red(plan.scaled[redIndex]), green(plan.scaled[1]), blue(plan.scaled[2 - redIndex]);
    return WithScaledModes(plan, redIndex, [&](auto r, auto g, auto b) {
        return run(ScaledTriple<Ops, decltype(r)::value, decltype(g)::value, decltype(b)::value>{red, green, blue});
    });
}

}  // namespace
}  // namespace simd
}  // namespace zo

#endif
