// The BT.601 transform on 16-bit vector lanes, written once over a small
// operations class (V128 in YUVSse2.cpp, V256 in YUVAvx2.cpp), in the
// raw-sample split form of YUVTransform.h:
//   R = (y + v - 144)    + ((42 y + 153 v + kRedSumOffset) >> 8)
//   G = (y - v + 112)    + ((42 y - 100 u + 48 v + kGreenSumOffset) >> 8)
//   B = (y + 2 u - 272)  + ((42 y + 4 u + kBlueSumOffset) >> 8)
// Products may wrap in 16-bit lanes but every sum lies in signed 16-bit
// range, so the results equal the scalar transform before clamping. Packing
// to bytes with unsigned saturation then is the clamp.
#ifndef ZO_YUV_SIMD_TRANSFORM_H
#define ZO_YUV_SIMD_TRANSFORM_H

#include "yuv/YUVTransform.h"

namespace zo {

// y, u, v: raw 8-bit samples in 16-bit lanes; uv: each lane's (U, V) byte
// pair, U in the low byte (used by V::GreenChroma where it helps).
// r, g, b: unclamped results.
template <class V>
inline void TransformLanes(typename V::Reg y, typename V::Reg u, typename V::Reg v, typename V::Reg uv,
                           typename V::Reg& r, typename V::Reg& g, typename V::Reg& b)
{
    using namespace bt601;
    using Reg = typename V::Reg;
    static_assert(kBlueFromUWhole == 2 && kBlueFromUFraction == 4, "blue terms are shifts below");
    // The blue sum's constant rides in the shared luma term.
    const Reg base = V::Add(V::MulLo(y, V::Set(kLumaFraction)), V::Set(kBlueSumOffset));
    const Reg rs = V::Add(base, V::Add(V::MulLo(v, V::Set(kRedFromVFraction)), V::Set(kRedSumOffset - kBlueSumOffset)));
    const Reg gs = V::Add(base, V::Add(V::GreenChroma(u, v, uv), V::Set(kGreenSumOffset - kBlueSumOffset)));
    const Reg bs = V::Add(base, V::template Slli<2>(u));
    r = V::Add(V::Add(y, V::Add(v, V::Set(kRedWholeOffset))), V::template Srai<kFractionBits>(rs));
    g = V::Add(V::Sub(y, V::Sub(v, V::Set(kGreenWholeOffset))), V::template Srai<kFractionBits>(gs));
    b = V::Add(V::Add(y, V::Add(V::template Slli<1>(u), V::Set(kBlueWholeOffset))),
               V::template Srai<kFractionBits>(bs));
}

}  // namespace zo

#endif
