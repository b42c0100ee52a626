// AVX2 inside of an interpolating line (this file alone is compiled for
// AVX2; its table runs from the AVX2 level on, see BayerSimd.cpp): the
// 32-pixel block of BayerBlocks256.h. Filtered lines whose 8-bit tables
// have an arithmetic form take the same block with each channel evaluated
// through its form (simd/LutArith.h) on the 16-bit lanes just before they
// are packed: the bytes a table pass over the identity line would give,
// without the second pass over the line (at the AVX-512 VBMI level the
// block looks the tables up instead, BayerAvx512.cpp).
#include "bayer/BayerPaths.h"

#if defined(__AVX2__)
#include <immintrin.h>

#include "bayer/BayerBlocks256.h"
#include "simd/LutArith.h"
#include "simd/LutScaled.h"
#include "simd/LutV256.h"
#include "bayer/BayerWords48Forms.h"

namespace zo {
namespace {

using Arith = simd::LutArith<simd::V256>;

// The forms of red, green and blue, each broadcast to every lane.
using ChannelForms = Arith::Channels;

// Red, Green, Blue: each channel's form (Arith::EvalFixed mode; `forms`
// read only then), -1 the identity, not evaluated (green's table, as white
// balance usually leaves it; all three: the identity line).
template <unsigned Bytes, bool BlueFirst, int Red = -1, int Green = -1, int Blue = -1>
std::uint32_t Blocks(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                     std::uint32_t from, std::uint32_t to, int phase, const ChannelForms* forms = nullptr)
{
    if constexpr (Red < 0 && Green < 0 && Blue < 0) {
        (void)forms;
        return Blocks256<Bytes, BlueFirst>(line, above, below, dst, from, to, phase, KeepWidened{}, KeepPacked{});
    } else {
        return Blocks256<Bytes, BlueFirst>(
            line, above, below, dst, from, to, phase,
            [forms](__m256i& rl, __m256i& gl, __m256i& bl, __m256i& rh, __m256i& gh, __m256i& bh) {
                if constexpr (Red >= 0) {
                    rl = Arith::EvalFixed<Red>(rl, forms->red);
                    rh = Arith::EvalFixed<Red>(rh, forms->red);
                }
                if constexpr (Green >= 0) {
                    gl = Arith::EvalFixed<Green>(gl, forms->green);
                    gh = Arith::EvalFixed<Green>(gh, forms->green);
                } else {
                    (void)gl, (void)gh;
                }
                if constexpr (Blue >= 0) {
                    bl = Arith::EvalFixed<Blue>(bl, forms->blue);
                    bh = Arith::EvalFixed<Blue>(bh, forms->blue);
                }
            },
            KeepPacked{});
    }
}

// 32 pixels a step, then the SSE2 blocks for what is left.
std::uint32_t BayerBytesAvx2(unsigned bytes, bool blueFirst, const unsigned char* line, std::ptrdiff_t above,
                             std::ptrdiff_t below, unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase)
{
    if (bytes == 4)
        from = blueFirst ? Blocks<4, true>(line, above, below, dst, from, to, phase)
                         : Blocks<4, false>(line, above, below, dst, from, to, phase);
    else
        from = blueFirst ? Blocks<3, true>(line, above, below, dst, from, to, phase)
                         : Blocks<3, false>(line, above, below, dst, from, to, phase);
    return BayerBytesSse2(bytes, blueFirst, line, above, below, dst, from, to, phase);
}

template <unsigned Bytes, bool BlueFirst>
std::uint32_t FormedBlocks(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                           std::uint32_t from, std::uint32_t to, int phase, const simd::LutFormPlan8& plan)
{
    // The plan is in byte order of the layout: blue first for BGR.
    const ChannelForms forms = Arith::ChannelsOf(plan, BlueFirst ? 2 : 0);
    std::uint32_t x = from;
    Arith::WithChannelModes(plan, BlueFirst ? 2 : 0, [&](auto red, auto green, auto blue) {
        x = Blocks<Bytes, BlueFirst, decltype(red)::value, decltype(green)::value, decltype(blue)::value>(
            line, above, below, dst, from, to, phase, &forms);
    });
    return x;
}

// 32 pixels a step through the forms; the caller's pair loop (the tables'
// lookups) finishes the line.
std::uint32_t BayerBytesFormedAvx2(unsigned bytes, bool blueFirst, const unsigned char* line, std::ptrdiff_t above,
                                   std::ptrdiff_t below, unsigned char* dst, std::uint32_t from, std::uint32_t to,
                                   int phase, const simd::LutFormPlan8& plan)
{
    if (bytes == 4)
        return blueFirst ? FormedBlocks<4, true>(line, above, below, dst, from, to, phase, plan)
                         : FormedBlocks<4, false>(line, above, below, dst, from, to, phase, plan);
    return blueFirst ? FormedBlocks<3, true>(line, above, below, dst, from, to, phase, plan)
                     : FormedBlocks<3, false>(line, above, below, dst, from, to, phase, plan);
}

// 32 pixels a step through the scaled forms of tables that all have one
// (simd/LutScaled.h; the plan in byte order of the layout, blue first for
// BGR), the rest as BayerBytesFormedAvx2; `from` where a table has none.
std::uint32_t BayerBytesScaledAvx2(unsigned bytes, bool blueFirst, const unsigned char* line, std::ptrdiff_t above,
                                   std::ptrdiff_t below, unsigned char* dst, std::uint32_t from, std::uint32_t to,
                                   int phase, const simd::LutFormPlan8& plan)
{
    if (!simd::HasScaledForms(plan))
        return from;
    return simd::WithScaledForms<simd::ScaledOps256>(plan, blueFirst ? 2 : 0, [&](const auto& forms) {
        auto both = [&](__m256i& rl, __m256i& gl, __m256i& bl, __m256i& rh, __m256i& gh, __m256i& bh) {
            forms(rl, gl, bl);
            forms(rh, gh, bh);
        };
        if (bytes == 2)
            return Blocks256<2, false>(line, above, below, dst, from, to, phase, both, KeepPacked{});
        if (bytes == 4)
            return blueFirst ? Blocks256<4, true>(line, above, below, dst, from, to, phase, both, KeepPacked{})
                             : Blocks256<4, false>(line, above, below, dst, from, to, phase, both, KeepPacked{});
        return blueFirst ? Blocks256<3, true>(line, above, below, dst, from, to, phase, both, KeepPacked{})
                         : Blocks256<3, false>(line, above, below, dst, from, to, phase, both, KeepPacked{});
    });
}

// ---- RGB48 through 16-bit table forms ----

// Shuffles that interleave eight pixels' red, green and blue words (one
// register each) into three registers of RGB48: m[k][c] moves channel c's
// words into output register k.
struct Rgb48Shuffles {
    alignas(16) signed char m[3][3][16];
};
constexpr Rgb48Shuffles MakeRgb48Shuffles()
{
    Rgb48Shuffles s{};
    for (int k = 0; k < 3; ++k)
        for (int c = 0; c < 3; ++c)
            for (int j = 0; j < 8; ++j) {
                const int word = 8 * k + j;
                const bool mine = word % 3 == c;
                s.m[k][c][2 * j] = static_cast<signed char>(mine ? 2 * (word / 3) : -1);
                s.m[k][c][2 * j + 1] = static_cast<signed char>(mine ? 2 * (word / 3) + 1 : -1);
            }
    return s;
}
constexpr Rgb48Shuffles kRgb48Shuffles = MakeRgb48Shuffles();

inline void Store48(unsigned char* d, __m128i r, __m128i g, __m128i b)
{
    const __m128i channels[3] = {r, g, b};
    for (int k = 0; k < 3; ++k) {
        __m128i out = _mm_setzero_si128();
        for (int c = 0; c < 3; ++c)
            out = _mm_or_si128(out, _mm_shuffle_epi8(channels[c], _mm_load_si128(reinterpret_cast<const __m128i*>(
                                                                       kRgb48Shuffles.m[k][c]))));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 16 * k), out);
    }
}

using WordForms = WordFormsOf<Arith>;

// Sixteen pixels a step. Samples below 2^14 (10- and 12-bit data) are summed
// in 16-bit lanes (as the SSE2 path does); a block with larger samples takes
// the SSE2 blocks. `forms(rgb, any)` maps the red, green and blue registers
// before they are stored (`any`: the OR of the block's samples, which bounds
// every interpolated value: they are averages of them), `formsAfter(d)` the
// 96 bytes an SSE2 block wrote at d (the identity line: neither does
// anything).
template <class Forms, class FormsAfter>
std::uint32_t Words48Blocks(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                            std::uint32_t from, std::uint32_t to, int phase, Forms forms, FormsAfter formsAfter)
{
    const __m256i high = _mm256_set1_epi16(static_cast<short>(0xC000));
    // Whole blocks; where the rest of the line is an even number of pixels
    // (the interiors the line walk hands over are), one more block ending
    // at `to`, over pixels already written: it writes them again with the
    // same values (every block computes from the source alone), and its
    // even start keeps the lanes' colours.
    if (to < from + 16)
        return from;
    const std::uint32_t end = (to - from) % 2 == 0 ? to : from + (to - from) / 16 * 16;
    for (std::uint32_t step = from; step < end; step += 16) {
        const std::uint32_t x = step + 16 <= end ? step : end - 16;
        const unsigned char* c = line + 2 * static_cast<std::ptrdiff_t>(x);
        const unsigned char* a = c + above;
        const unsigned char* b = c + below;
        const __m256i a0 = Load(a - 2), a1 = Load(a), a2 = Load(a + 2);
        const __m256i c0 = Load(c - 2), c1 = Load(c), c2 = Load(c + 2);
        const __m256i b0 = Load(b - 2), b1 = Load(b), b2 = Load(b + 2);
        const __m256i any =
            _mm256_or_si256(_mm256_or_si256(_mm256_or_si256(a0, a1), _mm256_or_si256(a2, c0)),
                            _mm256_or_si256(_mm256_or_si256(c1, c2), _mm256_or_si256(_mm256_or_si256(b0, b1), b2)));
        unsigned char* d = dst + static_cast<std::size_t>(x) * 6;
        if (!_mm256_testz_si256(any, high)) {
            BayerWords48Sse2(line, above, below, dst, x, x + 16, phase);
            formsAfter(d);
            continue;
        }
        __m256i rgb[3];
        Half(a0, a1, a2, c0, c1, c2, b0, b1, b2, phase, rgb[0], rgb[1], rgb[2]);
        forms(rgb, any);
        Store48(d, _mm256_castsi256_si128(rgb[0]), _mm256_castsi256_si128(rgb[1]), _mm256_castsi256_si128(rgb[2]));
        Store48(d + 48, _mm256_extracti128_si256(rgb[0], 1), _mm256_extracti128_si256(rgb[1], 1),
                _mm256_extracti128_si256(rgb[2], 1));
    }
    return end;
}

// The identity RGB48 line.
std::uint32_t BayerWords48Avx2(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                               unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase)
{
    return Words48Blocks(
        line, above, below, dst, from, to, phase, [](__m256i(&)[3], __m256i) {}, [](unsigned char*) {});
}

// FastMask: the channels (bit c) a corrected plan evaluates by the fast
// form. SkipGreen: green's table is the identity below greenBound (a power
// of two), and blocks whose samples all lie below it keep green as it is
// (white balance usually leaves green alone; a 10- or 12-bit filter's green
// table is the identity over the samples' range, not beyond).
template <int Mode, bool Wide, unsigned FastMask, bool SkipGreen, bool Unit>
std::uint32_t FormedWords48(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                            std::uint32_t from, std::uint32_t to, int phase, const simd::LutFormPlan16& plan,
                            std::uint32_t greenBound)
{
    const WordForms forms = MakeWordForms<Arith>(plan);
    const __m256i aboveGreen = _mm256_set1_epi16(static_cast<short>(~(greenBound - 1) & 0xFFFF));
    return Words48Blocks(
        line, above, below, dst, from, to, phase,
        [&](__m256i(&rgb)[3], __m256i any) {
            rgb[0] = EvalChannel<simd::V256, Mode, Wide, (FastMask & 1) != 0, Unit>(rgb[0], forms, 0);
            if (!SkipGreen || !_mm256_testz_si256(any, aboveGreen))
                rgb[1] = EvalChannel<simd::V256, Mode, Wide, (FastMask & 2) != 0, Unit>(rgb[1], forms, 1);
            rgb[2] = EvalChannel<simd::V256, Mode, Wide, (FastMask & 4) != 0, Unit>(rgb[2], forms, 2);
        },
        [&](unsigned char* d) {
            // Register k starts 16k words, (16k) mod 3 words into a pixel.
            for (unsigned k = 0; k < 3; ++k)
                Arith::Words<Mode, Wide>(d + 32 * k, plan, k);
        });
}

std::uint32_t BayerWords48FormedAvx2(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                                     unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase,
                                     const simd::LutFormPlan16& plan)
{
    return WithWordForms<Arith>(plan, from, [&](auto mode, auto wide, auto fast, auto skip, auto unit,
                                              std::uint32_t greenBound) {
        return FormedWords48<decltype(mode)::value, decltype(wide)::value, decltype(fast)::value,
                             decltype(skip)::value, decltype(unit)::value>(line, above, below, dst, from, to, phase,
                                                                           plan, greenBound);
    });
}

}  // namespace

const BayerPaths kBayerPathsAVX2 = {"AVX2", BayerBytesAvx2, BayerWordsSse2, BayerWords48Avx2,
                                    BayerBytesFormedAvx2, BayerWords48FormedAvx2, nullptr, BayerBytesScaledAvx2,
                                    BayerWordsScaledSse2};

}  // namespace zo
#endif
