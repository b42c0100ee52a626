// AVX-512 path of the YUV kernels for 8-bit 4:2:2 to 32-bit pixels (this
// file alone is compiled for AVX-512; the path runs only at the AVX-512
// level on a CPU with VBMI, see YUVSimd.cpp). Every other form is left to
// the AVX2 paths.
//
// Thirty-two pixels a step: the byte-pair transform of YUVTransform.h (two
// byte shuffles, then only byte multiply-adds), packing with unsigned
// saturation as the clamp, and one two-table byte permute per 64 bytes of
// destination that interleaves the channels in pixel order.
#include "yuv/YUVSimd.h"

#if defined(__AVX512BW__) && defined(__AVX512VBMI__)
#include <immintrin.h>

#include "simd/LutArith.h"
#include "simd/LutV512.h"
#include "yuv/YUVTransform.h"

namespace zo {
namespace {

// Keeps a constant opaque to the compiler (one broadcast register each).
inline __m512i Opaque(__m512i v)
{
    __asm__("" : "+v"(v));
    return v;
}

inline __m512i BytePair(std::int32_t low, std::int32_t high)
{
    return Opaque(_mm512_set1_epi16(static_cast<short>(((high & 0xFF) << 8) | (low & 0xFF))));
}

inline __m512i Words(std::int32_t v) { return Opaque(_mm512_set1_epi16(static_cast<short>(v))); }

// Byte tables, built once.
struct Tables {
    // Within each 16-byte block (four pairs Y0 U Y1 V): each pixel's lane
    // as the byte pair (Y, U) or (Y, V).
    __m512i pickU, pickV;
    // Pixels 0-15 and 16-31 as bytes (first, green, third, 0) from
    // `ends` (block k: first of pixels 8k..8k+7, then their third) and
    // `middle` (block k: green of pixels 8k..8k+7, then zeros); indices 64
    // and up select from `middle`.
    __m512i out[2];

    Tables()
    {
        alignas(64) signed char u[64], v[64], o[2][64];
        for (int k = 0; k < 64; ++k) {
            const int block = k & ~15, j = k & 15, pair = j & ~3;
            u[k] = static_cast<signed char>(block + ((j & 1) ? pair + 1 : j));
            v[k] = static_cast<signed char>(block + ((j & 1) ? pair + 3 : j));
        }
        for (int p = 0; p < 32; ++p) {
            signed char* d = o[p / 16] + 4 * (p % 16);
            const int block = 16 * (p / 8), q = p % 8;
            d[0] = static_cast<signed char>(block + q);           // first
            d[1] = static_cast<signed char>(64 + block + q);      // green
            d[2] = static_cast<signed char>(block + 8 + q);       // third
            d[3] = static_cast<signed char>(64 + block + 8 + q);  // a zero of `middle`
        }
        pickU = _mm512_loadu_si512(u);
        pickV = _mm512_loadu_si512(v);
        out[0] = _mm512_loadu_si512(o[0]);
        out[1] = _mm512_loadu_si512(o[1]);
    }
};

// Thirty-two pixels (64 bytes Y0 U Y1 V ...) -> unclamped R, G, B in
// 16-bit lanes, pixel i in lane i. No product pair or sum saturates.
inline void Transform422(__m512i x, const Tables& t, __m512i& r, __m512i& g, __m512i& b)
{
    using namespace bt601;
    const __m512i yu = _mm512_shuffle_epi8(x, t.pickU);
    const __m512i yv = _mm512_shuffle_epi8(x, t.pickV);
    const __m512i rs = _mm512_add_epi16(_mm512_maddubs_epi16(yv, BytePair(kLumaFraction, -kRedFromVPairFraction)),
                                        Words(kRedPairSumOffset));
    const __m512i gs = _mm512_add_epi16(
        _mm512_add_epi16(_mm512_maddubs_epi16(yv, BytePair(kLumaFraction, kGreenFromVFraction)),
                         _mm512_maddubs_epi16(yu, BytePair(0, -kGreenFromU))),
        Words(kGreenSumOffset));
    const __m512i bs = _mm512_add_epi16(_mm512_maddubs_epi16(yu, BytePair(kLumaFraction, kBlueFromUFraction)),
                                        Words(kBlueSumOffset));
    const __m512i rw =
        _mm512_add_epi16(_mm512_maddubs_epi16(yv, BytePair(1, kRedFromVPairWhole)), Words(kRedPairWholeOffset));
    const __m512i gw = _mm512_add_epi16(_mm512_maddubs_epi16(yv, BytePair(1, -1)), Words(kGreenWholeOffset));
    const __m512i bw =
        _mm512_add_epi16(_mm512_maddubs_epi16(yu, BytePair(1, kBlueFromUWhole)), Words(kBlueWholeOffset));
    r = _mm512_add_epi16(rw, _mm512_srai_epi16(rs, kFractionBits));
    g = _mm512_add_epi16(gw, _mm512_srai_epi16(gs, kFractionBits));
    b = _mm512_add_epi16(bw, _mm512_srai_epi16(bs, kFractionBits));
}

template <unsigned RedIndex>
std::uint32_t Pairs8To32(const unsigned char* src, unsigned char* dst, std::uint32_t pairs)
{
    static const Tables kTables;
    const Tables t = kTables;
    const __m512i zero = _mm512_setzero_si512();
    const std::uint32_t groups = pairs / 16;
    for (std::uint32_t i = 0; i < groups; ++i, src += 64, dst += 128) {
        __m512i r, g, b;
        Transform422(_mm512_loadu_si512(src), t, r, g, b);
        const __m512i ends = RedIndex == 0 ? _mm512_packus_epi16(r, b) : _mm512_packus_epi16(b, r);
        const __m512i middle = _mm512_packus_epi16(g, zero);
        _mm512_storeu_si512(dst, _mm512_permutex2var_epi8(ends, t.out[0], middle));
        _mm512_storeu_si512(dst + 64, _mm512_permutex2var_epi8(ends, t.out[1], middle));
    }
    return groups * 16;
}

std::uint32_t Pairs8AVX512(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, std::uint32_t sampleBytes,
                           std::uint32_t dstBytes, std::uint32_t redIndex)
{
    if (sampleBytes == 1 && dstBytes == 4)
        return redIndex ? Pairs8To32<2>(src, dst, pairs) : Pairs8To32<0>(src, dst, pairs);
    return kYUVPathsAVX2.pairs8(src, dst, pairs, sampleBytes, dstBytes, redIndex);
}

std::uint32_t Pairs10AVX512(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, std::uint32_t shift,
                            std::uint32_t dstBytes, std::uint32_t redIndex)
{
    return kYUVPathsAVX2.pairs10(src, dst, pairs, shift, dstBytes, redIndex);
}

std::uint32_t Pixels444AVX512(const unsigned char* src, unsigned char* dst, std::uint32_t count,
                              std::uint32_t pixelBytes, std::uint32_t yOffset, std::uint32_t uOffset,
                              std::uint32_t vOffset, std::uint32_t dstBytes, std::uint32_t redIndex)
{
    return kYUVPathsAVX2.pixels444(src, dst, count, pixelBytes, yOffset, uOffset, vOffset, dstBytes, redIndex);
}

// ---- Filtered: table forms evaluated before the store ----

using Arith = simd::LutArith<simd::V512>;

using ChannelForms = Arith::Channels;

const Tables& SharedTables()
{
    static const Tables kTables;
    return kTables;
}

// As Pairs8To32, each channel clamped to 0-255 (what the pack does) and
// evaluated through its form before the pack. Green false: green's table is
// the identity, not evaluated.
template <unsigned RedIndex, int Mode, bool Green>
std::uint32_t Pairs8To32Formed(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                               const ChannelForms& forms)
{
    const Tables t = SharedTables();
    const __m512i zero = _mm512_setzero_si512();
    const __m512i top = _mm512_set1_epi16(255);
    auto clamp = [&](__m512i v) { return _mm512_min_epi16(_mm512_max_epi16(v, zero), top); };
    const std::uint32_t groups = pairs / 16;
    for (std::uint32_t i = 0; i < groups; ++i, src += 64, dst += 128) {
        __m512i r, g, b;
        Transform422(_mm512_loadu_si512(src), t, r, g, b);
        r = Arith::EvalFixed<Mode>(clamp(r), forms.red);
        if (Green)
            g = Arith::EvalFixed<Mode>(clamp(g), forms.green);
        b = Arith::EvalFixed<Mode>(clamp(b), forms.blue);
        const __m512i ends = RedIndex == 0 ? _mm512_packus_epi16(r, b) : _mm512_packus_epi16(b, r);
        const __m512i middle = _mm512_packus_epi16(g, zero);
        _mm512_storeu_si512(dst, _mm512_permutex2var_epi8(ends, t.out[0], middle));
        _mm512_storeu_si512(dst + 64, _mm512_permutex2var_epi8(ends, t.out[1], middle));
    }
    return groups * 16;
}

template <unsigned RedIndex>
std::uint32_t Pairs8To32FormedAnyMode(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                      const simd::LutFormPlan8& plan)
{
    // The plan is in byte order of the layout: red at byte RedIndex.
    const ChannelForms forms = Arith::ChannelsOf(plan, RedIndex);
    std::uint32_t done = 0;
    Arith::WithModeAndGreen(plan, [&](auto mode, auto green) {
        done = Pairs8To32Formed<RedIndex, decltype(mode)::value, decltype(green)::value>(src, dst, pairs, forms);
    });
    return done;
}

std::uint32_t Pairs8FormedAVX512(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                 std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex,
                                 const simd::LutFormPlan8& plan)
{
    if (sampleBytes != 1 || dstBytes != 4)
        return 0;
    return redIndex ? Pairs8To32FormedAnyMode<2>(src, dst, pairs, plan)
                    : Pairs8To32FormedAnyMode<0>(src, dst, pairs, plan);
}

}  // namespace

const YUVVectorPaths kYUVPathsAVX512 = {"AVX-512", Pairs8AVX512, Pairs10AVX512, Pixels444AVX512,
                                        Pairs8FormedAVX512};

}  // namespace zo

#endif
