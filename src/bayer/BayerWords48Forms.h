// The white-balance set-up of the vector RGB48 blocks (AVX2: sixteen pixels
// a step, AVX-512: thirty-two): the forms of a 16-bit plan in every lane, and
// the choice of the block's compile-time variant (formula mode, channels on
// the fast form, green skipped, unit slopes). Include only from the files
// compiled for those sets, after LutArith.h and the lane type: everything
// here is local to the including file.
#ifndef ZO_BAYER_WORDS48_FORMS_H
#define ZO_BAYER_WORDS48_FORMS_H

#include <cstdint>
#include <type_traits>

#include "simd/LutArith.h"
#include "simd/LutForm.h"

namespace zo {
namespace {

// The forms of red, green and blue in every lane, and the exact form's
// doubles in the plan. Made by the function that runs a line's blocks, as
// a local: the compiler keeps the parameters the variant reads in
// registers and drops the others. (A copy of every parameter and of 192
// doubles made per line and handed down by reference measured slower than
// the forms themselves at 1920 pixels a line.)
template <class Arith>
struct WordFormsOf {
    typename Arith::Params channel[3];
    const double* scale[3];
    const double* offset[3];
};

template <class Arith>
inline WordFormsOf<Arith> MakeWordForms(const simd::LutFormPlan16& plan)
{
    WordFormsOf<Arith> forms;
    for (unsigned ch = 0; ch < 3; ++ch) {
        forms.channel[ch] = Arith::Channel16(plan, ch);
        forms.scale[ch] = plan.channelScale[ch];
        forms.offset[ch] = plan.channelOffset[ch];
    }
    return forms;
}

// The fast and corrected forms where a is 1 and the offset 0 (gains from 1
// to 2, as white balance mostly has): a * i is i, and nothing is added.
template <class V>
inline typename V::T UnitFast(typename V::T i, const typename simd::LutArith<V>::Params& P, simd::LutParam fraction)
{
    return V::Min(V::AddS(i, V::MulHi(i, P.p[fraction])), P.p[simd::kLutLimit]);
}

// Where the lanes compare unsigned (AVX-512), g is picked where x ^ h > h,
// two operations fewer; WithWordForms takes this form there only for
// pickable plans (LutFormPlan16::pickable).
template <class V>
inline typename V::T UnitCorrected(typename V::T i, const typename simd::LutArith<V>::Params& P)
{
    const typename V::T h = UnitFast<V>(i, P, simd::kLutFh), g = UnitFast<V>(i, P, simd::kLutFl);
    const typename V::T x = V::Add(h, V::MulHi(h, P.p[simd::kLutK]));
    if constexpr (V::kPickGreater)
        return V::PickGreater(V::Xor(x, h), h, g, h);
    else
        return V::Sub(h, V::Min(V::Sub(h, g), V::SubS(V::Xor(x, h), h)));
}

// One channel through its form: the plan's mode, or (Fast) the fast form
// with the same lanes, which a corrected plan's channel without correction
// (kap 0) equals: x = h, so nothing is taken back. Unit: every channel has
// a 1 and offset 0 (fast and corrected forms only).
template <class V, int Mode, bool Wide, bool Fast, bool Unit>
inline typename V::T EvalChannel(typename V::T v, const WordFormsOf<simd::LutArith<V>>& forms, unsigned ch)
{
    using Arith = simd::LutArith<V>;
    if constexpr (Unit && (Fast || Mode == 0))
        return UnitFast<V>(v, forms.channel[ch], simd::kLutFh);
    else if constexpr (Unit)
        return UnitCorrected<V>(v, forms.channel[ch]);
    else if constexpr (Fast)
        return Arith::template Eval<false, false>(v, forms.channel[ch]);
    else
        return Arith::template EvalWord<Mode, Wide>(v, forms.channel[ch], forms.scale[ch], forms.offset[ch]);
}

// Calls run(std::integral_constant<unsigned, mask>) for a mask of bits 0-2;
// with `Green` false, bit 1 is ignored.
template <bool Green, class Run>
inline void WithFastMask(unsigned mask, Run run)
{
    using U = unsigned;
    switch (mask & (Green ? 7u : 5u)) {
    case 1: run(std::integral_constant<U, 1>{}); break;
    case 4: run(std::integral_constant<U, 4>{}); break;
    case 5: run(std::integral_constant<U, 5>{}); break;
    case 2: if constexpr (Green) run(std::integral_constant<U, 2>{}); break;
    case 3: if constexpr (Green) run(std::integral_constant<U, 3>{}); break;
    case 6: if constexpr (Green) run(std::integral_constant<U, 6>{}); break;
    case 7: if constexpr (Green) run(std::integral_constant<U, 7>{}); break;
    default: run(std::integral_constant<U, 0>{}); break;
    }
}

// Returns blocks(mode, wide, fast, skipGreen, unit, greenBound) for the
// plan's variant (`from` if it has none): mode and wide as
// LutArith::WithMode16 gives them; fast, the mask of the channels a
// corrected plan evaluates by the fast form; skipGreen, whether green is
// the identity in blocks whose samples stay below greenBound; unit, whether
// every channel has slope 1 and no offset (no multiply, no offset add),
// and, for a corrected plan on lanes that pick (UnitCorrected), that the
// plan is pickable.
template <class Arith, class Blocks>
std::uint32_t WithWordForms(const simd::LutFormPlan16& plan, std::uint32_t from, Blocks blocks)
{
    unsigned fastMask = 0;
    bool unit = !plan.corrected || !Arith::Vec::kPickGreater || plan.pickable;
    for (unsigned ch = 0; ch < 3; ++ch) {
        unit &= plan.lanes[ch][simd::kLutA][0] == 1 && plan.lanes[ch][simd::kLutOff][0] == 0;
        if (plan.corrected && plan.lanes[ch][simd::kLutK][0] == 0)
            fastMask |= 1u << ch;
    }
    // The largest power of two up to which green is the identity; worth a
    // test per block from 256 on (blocks hold samples below 2^14 anyway).
    std::uint32_t greenBound = 1;
    while (greenBound * 2 <= plan.identityBelow[1] && greenBound < 16384)
        greenBound *= 2;
    const bool skipGreen = greenBound >= 256;
    std::uint32_t x = from;
    Arith::WithMode16(plan, [&](auto mode, auto wide) {
        constexpr int kMode = decltype(mode)::value;
        constexpr bool kWide = decltype(wide)::value;
        auto run = [&](auto fast, auto skip) {
            if constexpr (kMode == 3 || (kMode == 0 && !kWide)) {
                if (unit) {
                    x = blocks(mode, wide, fast, skip, std::true_type{}, greenBound);
                    return;
                }
            }
            x = blocks(mode, wide, fast, skip, std::false_type{}, greenBound);
        };
        if constexpr (kMode == 3) {
            if (skipGreen)
                WithFastMask<false>(fastMask, [&](auto fast) { run(fast, std::true_type{}); });
            else
                WithFastMask<true>(fastMask, [&](auto fast) { run(fast, std::false_type{}); });
        } else {
            if (skipGreen)
                run(std::integral_constant<unsigned, 0>{}, std::true_type{});
            else
                run(std::integral_constant<unsigned, 0>{}, std::false_type{});
        }
    });
    return x;
}

}  // namespace
}  // namespace zo

#endif
