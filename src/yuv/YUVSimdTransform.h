// The BT.601 transform on 16-bit vector lanes, written once over a small
// operations class (V128 for SSE2 here, V256 in the AVX2 file), in the folded
// split form of YUVTransform.h: every intermediate fits in signed 16 bits
// and the result equals the scalar transform before clamping. Packing to
// bytes with unsigned saturation then is the clamp.
#ifndef ZO_YUV_SIMD_TRANSFORM_H
#define ZO_YUV_SIMD_TRANSFORM_H

#include "yuv/YUVTransform.h"

namespace zo {

// y, u, v: raw 8-bit samples in 16-bit lanes. r, g, b: unclamped results.
template <class V>
inline void TransformLanes(typename V::Reg y, typename V::Reg u, typename V::Reg v, typename V::Reg& r,
                           typename V::Reg& g, typename V::Reg& b)
{
    using namespace bt601;
    using Reg = typename V::Reg;
    static_assert(kBlueFromUWhole == 2 && kBlueFromUFraction == 4, "blue terms are shifts below");
    const Reg d = V::Sub(u, V::Set(kChromaOffset));
    const Reg e = V::Sub(v, V::Set(kChromaOffset));
    const Reg base = V::Add(V::MulLo(y, V::Set(kLumaFraction)), V::Set(kFoldedRound));
    const Reg rf = V::Add(base, V::MulLo(e, V::Set(kRedFromVFraction)));
    const Reg gf = V::Add(base, V::Sub(V::MulLo(e, V::Set(kGreenFromVFraction)), V::MulLo(d, V::Set(kGreenFromU))));
    const Reg bf = V::Add(base, V::template Slli<2>(d));
    r = V::Add(V::Add(y, V::Add(v, V::Set(kRedWholeOffset))), V::template Srai<kFractionBits>(rf));
    g = V::Add(V::Sub(y, V::Sub(v, V::Set(kGreenWholeOffset))), V::template Srai<kFractionBits>(gf));
    b = V::Add(V::Add(y, V::Add(V::template Slli<1>(u), V::Set(kBlueWholeOffset))),
               V::template Srai<kFractionBits>(bf));
}

}  // namespace zo

#endif
