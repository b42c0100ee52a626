// The arithmetic table passes (see LutForm.h), written once over a vector
// type V and instantiated by each instruction set's file with its own V.
//
// V (a type local to the including file) provides T, kBytes and: Load,
// Store, Zero, Set1, Ramp (lanes 0, 1, 2, ...), Add, Sub, AddS and SubS
// (unsigned saturating), MulLo, MulHi (unsigned), Min (unsigned), Or, Xor,
// IfNonZero(d, x) (x where d is not 0, else 0), AddCarry(f, l, s)
// (f + 1 where the 16-bit sum s = l + t wrapped, i.e. s < l), Lo8/Hi8 (the
// low/high eight bytes of every 128-bit lane widened to 16-bit lanes), Pack
// (the reverse, unsigned saturation) and AllZero. All lanes are 16-bit.
// Where kExact, also MulTrunc(j, scale, offset): trunc(double(j) * scale +
// offset) per lane (scale and offset: doubles in lane order), saturated to
// 16 bits unsigned. The double products are the filter's own: no fused
// multiply-add (the instruction sets' flags do not enable FMA, and ISO C++
// mode does not contract).
//
// Only templates over V live here: the instruction sets' files must share
// no inline function with the rest of the library.
#ifndef ZO_SIMD_LUT_ARITH_H
#define ZO_SIMD_LUT_ARITH_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "simd/Lut.h"
#include "simd/LutForm.h"

namespace zo {
namespace simd {

template <class V>
struct LutArith {
    using Vec = V;
    using T = typename V::T;
    static constexpr std::size_t W = V::kBytes;
    using Lanes = std::uint16_t[kLutParamCount][32];

    struct Params {
        T p[kLutParamCount];
    };

    static Params Load(const Lanes& lanes)
    {
        Params r;
        for (unsigned q = 0; q < kLutParamCount; ++q)
            r.p[q] = V::Load(lanes[q]);
        return r;
    }

    // The formula of LutForm.h on 16-bit lanes i.
    template <bool General, bool Wide>
    static T Eval(T i, const Params& P)
    {
        T j = i, d = i;
        if constexpr (General) {
            d = V::SubS(i, P.p[kLutK]);
            j = V::Sub(i, d);
        }
        T f = V::MulHi(j, P.p[kLutFh]);
        if constexpr (Wide) {
            const T l = V::MulLo(j, P.p[kLutFh]);
            f = V::AddCarry(f, l, V::Add(l, V::MulHi(j, P.p[kLutFl])));
        }
        const T p = V::MulLo(j, P.p[kLutA]);
        if constexpr (General)
            return V::Add(V::Add(V::Add(p, f), P.p[kLutOff]), V::IfNonZero(d, P.p[kLutLimit]));
        else
            return V::Min(V::AddS(V::AddS(p, f), P.p[kLutOff]), P.p[kLutLimit]);
    }

    // The exact form: the index clamped to k, the double formula, delta
    // past k.
    static T EvalExact(T i, const Params& P, const double* scale, const double* offset)
    {
        static_assert(V::kExact, "the exact form needs MulTrunc");
        const T d = V::SubS(i, P.p[kLutK]);
        return V::Add(V::MulTrunc(V::Sub(i, d), scale, offset), V::IfNonZero(d, P.p[kLutLimit]));
    }

    // The corrected form: fast forms with fractions fh and fg (kLutFl lanes),
    // the difference taken back where x = h + h*kap/2^16 (kap: kLutK lanes)
    // passed the power of two above h.
    static T EvalCorrected(T i, const Params& P)
    {
        const T p = V::MulLo(i, P.p[kLutA]);
        const T h = V::Min(V::AddS(V::AddS(p, V::MulHi(i, P.p[kLutFh])), P.p[kLutOff]), P.p[kLutLimit]);
        const T g = V::Min(V::AddS(V::AddS(p, V::MulHi(i, P.p[kLutFl])), P.p[kLutOff]), P.p[kLutLimit]);
        const T x = V::Add(h, V::MulHi(h, P.p[kLutK]));
        return V::Sub(h, V::Min(V::Sub(h, g), V::SubS(V::Xor(x, h), h)));
    }

    // On bytes whose tables all end at 255, the fast and corrected forms
    // without the limit (and the corrected one without offset): Pack
    // saturates what passes 255 (the plan keeps lanes below 32768).
    static T EvalFastSaturating(T i, const Params& P)
    {
        return V::AddS(V::AddS(V::MulLo(i, P.p[kLutA]), V::MulHi(i, P.p[kLutFh])), P.p[kLutOff]);
    }
    static T EvalCorrectedSaturating(T i, const Params& P)
    {
        const T p = V::MulLo(i, P.p[kLutA]);
        const T h = V::AddS(p, V::MulHi(i, P.p[kLutFh]));
        const T g = V::AddS(p, V::MulHi(i, P.p[kLutFl]));
        const T x = V::Add(h, V::MulHi(h, P.p[kLutK]));
        return V::Sub(h, V::Min(V::Sub(h, g), V::SubS(V::Xor(x, h), h)));
    }

    // The unit forms of a byte table with slope a = 1 and offset 0 (gains
    // from 1 up to 2, as white balance mostly has; LutFormPlan8::unit says
    // where they hold): a*i is i, no multiply-low; the sums saturate to 255
    // byte-wise (no clamp after them; i and the lanes below 256); the
    // corrected form picks g where x passed the power of two above h instead
    // of taking back min(h - g, ...):
    //   fast:      h = sat8(i + MulHi(i, fh))
    //   corrected: g = sat8(i + MulHi(i, fg)), x = h + h*kap/2^16,
    //              r = x ^ h > h ? g : h
    // (EvalLutUnit8; needs AddS8, Greater (signed) and Select from V).
    template <bool Corrected>
    static T EvalUnit(T i, const Params& P)
    {
        const T h = V::AddS8(i, V::MulHi(i, P.p[kLutFh]));
        if constexpr (Corrected) {
            const T g = V::AddS8(i, V::MulHi(i, P.p[kLutFl]));
            const T x = V::Add(h, V::MulHi(h, P.p[kLutK]));
            return V::Select(V::Greater(V::Xor(x, h), h), g, h);
        } else {
            return h;
        }
    }

    // Mode: 0 fast, 1 general, 3 corrected, 4 fast and 5 corrected
    // saturating (fixed-point: one-multiply fraction); 6 and 7: the fast and
    // corrected unit-slope forms (EvalUnit).
    template <int Mode>
    static T EvalFixed(T i, const Params& P)
    {
        if constexpr (Mode == 6 || Mode == 7)
            return EvalUnit<Mode == 7>(i, P);
        else if constexpr (Mode == 3)
            return EvalCorrected(i, P);
        else if constexpr (Mode == 4)
            return EvalFastSaturating(i, P);
        else if constexpr (Mode == 5)
            return EvalCorrectedSaturating(i, P);
        else
            return Eval<Mode == 1, false>(i, P);
    }

    // ---- 8-bit tables on 3- or 4-byte pixels ----

    template <int Mode>
    static void Bytes(unsigned char* at, const Params& low, const Params& high)
    {
        const T v = V::Load(at);
        V::Store(at, V::Pack(EvalFixed<Mode>(V::Lo8(v), low), EvalFixed<Mode>(V::Hi8(v), high)));
    }

    template <int Mode>
    static void BytesPhase(unsigned char* at, const LutFormPlan8& plan, unsigned phase)
    {
        Bytes<Mode>(at, Load(plan.lanes[phase][0]), Load(plan.lanes[phase][1]));
    }

    // The last bytes of a line through a register-sized copy.
    template <int Mode>
    static void BytesTail(unsigned char* at, std::size_t n, const LutFormPlan8& plan, unsigned phase)
    {
        alignas(64) unsigned char buffer[W] = {};
        std::memcpy(buffer, at, n);
        BytesPhase<Mode>(buffer, plan, phase);
        std::memcpy(at, buffer, n);
    }

    template <int Mode>
    static void BytesLine(unsigned char* line, std::size_t bytes, const LutFormPlan8& plan)
    {
        std::size_t i = 0;
        unsigned phase = 0;
        if (plan.pixelBytes == 4) {
            // Every register starts on a pixel: the parameters stay in registers.
            const Params low = Load(plan.lanes[0][0]), high = Load(plan.lanes[0][1]);
            for (; i + W <= bytes; i += W)
                Bytes<Mode>(line + i, low, high);
        } else {
            // A register starts (r * W) mod 3 bytes into a pixel.
            constexpr unsigned step = W % 3;
            for (; i + 3 * W <= bytes; i += 3 * W) {
                BytesPhase<Mode>(line + i, plan, 0);
                BytesPhase<Mode>(line + i + W, plan, step);
                BytesPhase<Mode>(line + i + 2 * W, plan, (2 * step) % 3);
            }
            for (; i + W <= bytes; i += W, phase = (phase + step) % 3)
                BytesPhase<Mode>(line + i, plan, phase);
        }
        if (i < bytes)
            BytesTail<Mode>(line + i, bytes - i, plan, phase);
    }

    // Calls run(std::integral_constant<int, Mode>) with the EvalFixed mode
    // of an 8-bit plan.
    template <class Run>
    static void WithMode(const LutFormPlan8& plan, Run run)
    {
        if (plan.saturating)
            plan.corrected ? run(std::integral_constant<int, 5>{}) : run(std::integral_constant<int, 4>{});
        else if (plan.corrected)
            run(std::integral_constant<int, 3>{});
        else if (plan.general)
            run(std::integral_constant<int, 1>{});
        else
            run(std::integral_constant<int, 0>{});
    }

    static void BytesAnyMode(unsigned char* line, std::size_t bytes, const LutFormPlan8& plan)
    {
        WithMode(plan, [&](auto mode) { BytesLine<decltype(mode)::value>(line, bytes, plan); });
    }

    // The parameters of the channel at byte `position` (0-2) of a pixel in
    // every lane, for kernels that hold each channel in its own register
    // (lane j of the plan's first half is byte j of a pixel-aligned register).
    static Params Channel(const LutFormPlan8& plan, unsigned position)
    {
        Params r;
        for (unsigned q = 0; q < kLutParamCount; ++q)
            r.p[q] = V::Set1(plan.lanes[0][0][q][position]);
        return r;
    }

    // Red, green and blue's parameters for such kernels, from a plan in byte
    // order of a layout with red at byte redIndex (0 or 2).
    struct Channels {
        Params red, green, blue;
    };
    static Channels ChannelsOf(const LutFormPlan8& plan, unsigned redIndex)
    {
        return {Channel(plan, redIndex), Channel(plan, 1), Channel(plan, 2 - redIndex)};
    }

    // Calls run(mode, green) with WithMode's mode and whether green's table
    // is evaluated (std::bool_constant; false where it is the identity, as
    // white balance usually leaves it).
    template <class Run>
    static void WithModeAndGreen(const LutFormPlan8& plan, Run run)
    {
        WithMode(plan, [&](auto mode) {
            if (plan.identity[1])
                run(mode, std::false_type{});
            else
                run(mode, std::true_type{});
        });
    }

    // Whether the unit form of the channel at byte `position` of a pixel
    // (which gives its bytes, LutFormPlan8::unit) is the corrected one (else
    // the fast one is: fg = fh, kap = 0).
    static bool CorrectedChannel(const LutFormPlan8& plan, unsigned position)
    {
        const std::uint16_t(&lanes)[kLutParamCount][32] = plan.lanes[0][0];
        return plan.corrected && (lanes[kLutK][position] != 0 || lanes[kLutFl][position] != lanes[kLutFh][position]);
    }

    // For kernels that hold the channels apart: calls run(red, green, blue)
    // with each channel's EvalFixed mode (std::integral_constant; -1: green's
    // table is the identity, left as it is), from a plan with red at byte
    // redIndex. Where green is the identity and red and blue have unit forms,
    // each takes its own (6 fast, 7 corrected); else all take WithMode's
    // mode. The unit forms take indices below 256 only.
    template <class Run>
    static void WithChannelModes(const LutFormPlan8& plan, unsigned redIndex, Run run)
    {
        const unsigned blueIndex = 2 - redIndex;
        using Skip = std::integral_constant<int, -1>;
        if (plan.identity[1] && plan.unit[redIndex] && plan.unit[blueIndex]) {
            using Fast = std::integral_constant<int, 6>;
            using Corrected = std::integral_constant<int, 7>;
            const bool red = CorrectedChannel(plan, redIndex), blue = CorrectedChannel(plan, blueIndex);
            if (red)
                blue ? run(Corrected{}, Skip{}, Corrected{}) : run(Corrected{}, Skip{}, Fast{});
            else
                blue ? run(Fast{}, Skip{}, Corrected{}) : run(Fast{}, Skip{}, Fast{});
            return;
        }
        WithModeAndGreen(plan, [&](auto mode, auto green) {
            if constexpr (decltype(green)::value)
                run(mode, mode, mode);
            else
                run(mode, Skip{}, mode);
        });
    }

    static void Form3(unsigned char* line, std::uint32_t count, const LutFormPlan8& plan)
    {
        BytesAnyMode(line, std::size_t(count) * 3, plan);
    }

    static void Form4(unsigned char* line, std::uint32_t count, const LutFormPlan8& plan)
    {
        BytesAnyMode(line, std::size_t(count) * 4, plan);
    }

    // ---- 16-bit tables on RGB48 lines ----

    // Mode: 0 fast, 1 general, 2 exact, 3 corrected; Wide: the two-multiply
    // fraction. scale and offset: the exact form's doubles in lane order.
    template <int Mode, bool Wide>
    static T EvalWord(T v, const Params& P, const double* scale, const double* offset)
    {
        if constexpr (Mode == 2) {
            if constexpr (V::kExact)
                return EvalExact(v, P, scale, offset);
            else
                return v;  // never planned: such sets verify no exact form
        } else if constexpr (Mode == 3) {
            return EvalCorrected(v, P);
        } else {
            return Eval<Mode == 1, Wide>(v, P);
        }
    }

    // Calls run(std::integral_constant<int, Mode>, std::bool_constant<Wide>)
    // with the EvalWord mode of a 16-bit plan.
    template <class Run>
    static void WithMode16(const LutFormPlan16& plan, Run run)
    {
        using Narrow = std::false_type;
        if (plan.exact)
            run(std::integral_constant<int, 2>{}, Narrow{});
        else if (plan.corrected)
            run(std::integral_constant<int, 3>{}, Narrow{});
        else if (plan.general)
            plan.wide ? run(std::integral_constant<int, 1>{}, std::true_type{})
                      : run(std::integral_constant<int, 1>{}, Narrow{});
        else
            plan.wide ? run(std::integral_constant<int, 0>{}, std::true_type{})
                      : run(std::integral_constant<int, 0>{}, Narrow{});
    }

    // The parameters of channel c (0 red, 1 green, 2 blue) in every lane.
    static Params Channel16(const LutFormPlan16& plan, unsigned c)
    {
        return Load(plan.channel[c]);
    }

    template <int Mode, bool Wide>
    static void Words(unsigned char* at, const LutFormPlan16& plan, unsigned phase)
    {
        V::Store(at, EvalWord<Mode, Wide>(V::Load(at), Load(plan.lanes[phase]), plan.scale[phase],
                                          plan.offset[phase]));
    }

    template <int General, bool Wide>
    static void WordsLine(unsigned char* line, std::size_t bytes, const LutFormPlan16& plan)
    {
        // A register starts (r * W / 2) mod 3 words into a pixel.
        constexpr unsigned step = (W / 2) % 3;
        std::size_t i = 0;
        for (; i + 3 * W <= bytes; i += 3 * W) {
            Words<General, Wide>(line + i, plan, 0);
            Words<General, Wide>(line + i + W, plan, step);
            Words<General, Wide>(line + i + 2 * W, plan, (2 * step) % 3);
        }
        unsigned phase = 0;
        for (; i + W <= bytes; i += W, phase = (phase + step) % 3)
            Words<General, Wide>(line + i, plan, phase);
        if (i < bytes) {
            alignas(64) unsigned char buffer[W] = {};
            std::memcpy(buffer, line + i, bytes - i);
            Words<General, Wide>(buffer, plan, phase);
            std::memcpy(line + i, buffer, bytes - i);
        }
    }

    static void Words3(unsigned char* line, std::uint32_t count, const LutFormPlan16& plan)
    {
        const std::size_t bytes = std::size_t(count) * 6;
        WithMode16(plan, [&](auto mode, auto wide) {
            WordsLine<decltype(mode)::value, decltype(wide)::value>(line, bytes, plan);
        });
    }

    // ---- The check of a 16-bit table at its first `count` indices ----

    template <bool General, bool Wide>
    static bool VerifyAll(const LutChannelForm& f, const std::uint16_t* table, std::uint32_t count)
    {
        Params P;
        P.p[kLutK] = V::Set1(f.k);
        P.p[kLutA] = V::Set1(f.a);
        P.p[kLutFh] = V::Set1(f.fh);
        P.p[kLutFl] = V::Set1(f.fl);
        P.p[kLutOff] = V::Set1(f.off);
        P.p[kLutLimit] = V::Set1(General ? f.delta : f.limit);
        return Sweep(table, count, [&](T index) { return Eval<General, Wide>(index, P); });
    }

    // Whether eval(indices) gives the table at its first `count` indices
    // (rounded up to whole registers, at most 65536; stops at the first
    // block that differs).
    template <class Eval>
    static bool Sweep(const std::uint16_t* table, std::uint32_t count, Eval eval)
    {
        constexpr std::uint32_t kLanes = W / 2;
        const std::uint32_t end = count < 65536 ? (count + kLanes - 1) / kLanes * kLanes : 65536;
        const T step = V::Set1(static_cast<std::uint16_t>(kLanes));
        T index = V::Ramp();
        for (std::uint32_t block = 0; block < end; block += 2048) {
            const std::uint32_t stop = block + 2048 < end ? block + 2048 : end;
            T differences = V::Zero();
            for (std::uint32_t i = block; i < stop; i += kLanes, index = V::Add(index, step))
                differences = V::Or(differences, V::Xor(eval(index), V::Load(table + i)));
            if (!V::AllZero(differences))
                return false;
        }
        return true;
    }

    static bool VerifyCorrected16(const LutChannelForm& f, const std::uint16_t* table, std::uint32_t count)
    {
        Params P;
        P.p[kLutK] = V::Set1(f.kap);
        P.p[kLutA] = V::Set1(f.a);
        P.p[kLutFh] = V::Set1(f.fh);
        P.p[kLutFl] = V::Set1(f.fg);
        P.p[kLutOff] = V::Set1(f.off);
        P.p[kLutLimit] = V::Set1(f.limit);
        return Sweep(table, count, [&](T index) { return EvalCorrected(index, P); });
    }

    static bool VerifyExact16(const LutChannelForm& f, const std::uint16_t* table, std::uint32_t count)
    {
        if constexpr (V::kExact) {
            alignas(64) double scale[32], offset[32];
            for (unsigned j = 0; j < 32; ++j) {
                scale[j] = f.scale;
                offset[j] = f.off;
            }
            Params P;
            P.p[kLutK] = V::Set1(f.k);
            P.p[kLutLimit] = V::Set1(f.delta);
            return Sweep(table, count, [&](T index) { return EvalExact(index, P, scale, offset); });
        } else {
            (void)f;
            (void)table;
            (void)count;
            return false;
        }
    }

    static bool Verify16(const LutChannelForm& f, bool general, bool wide, const std::uint16_t* table,
                         std::uint32_t count)
    {
        if (general)
            return wide ? VerifyAll<true, true>(f, table, count) : VerifyAll<true, false>(f, table, count);
        return wide ? VerifyAll<false, true>(f, table, count) : VerifyAll<false, false>(f, table, count);
    }
};

}  // namespace simd
}  // namespace zo

#endif
