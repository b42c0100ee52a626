// AVX2 paths of the YUV kernels (this file alone is compiled for AVX2; the
// paths run only at the AVX2 level and above, see YUVSimd.cpp).
//
// Thirty-two pixels a step. Byte vectors of R, G, B come in one of two
// orders of 8-pixel quarters: "natural" (0-7, 8-15 | 16-23, 24-31, the 4:4:4
// path) or "packed" (0-7, 16-23 | 8-15, 24-31, as the 4:2:2 path's in-lane
// packing leaves them); the stores' lane permutes put either back in order.
//
// White balance on 8-bit 4:2:2 into 32-bit layouts: where the tables have an
// arithmetic form (simd/LutForm.h) it is evaluated on the 16-bit channel
// values just before they are packed, so the line is converted in one pass.
#include "yuv/YUVSimd.h"

#if defined(__AVX2__)
#include <immintrin.h>

#include "core/StreamGroups.h"
#include "simd/LutArith.h"
#include "simd/LutScaled.h"
#include "simd/Rgb16Words.h"
#include "simd/LutV256.h"
#include "yuv/YUVLineEnd.h"
#include "yuv/YUVSimdTransform.h"

namespace zo {
namespace {

// Keeps a constant multiplier opaque to the compiler, which would otherwise
// replace one vpmullw by a longer chain of shifts and adds.
inline __m256i Opaque(__m256i v)
{
    __asm__("" : "+x"(v));
    return v;
}

struct V256 {
    using Reg = __m256i;
    static Reg Set(std::int32_t v) { return _mm256_set1_epi16(static_cast<short>(v)); }
    static Reg Add(Reg a, Reg b) { return _mm256_add_epi16(a, b); }
    static Reg Sub(Reg a, Reg b) { return _mm256_sub_epi16(a, b); }
    static Reg MulLo(Reg a, Reg b) { return _mm256_mullo_epi16(a, Opaque(b)); }
    template <int N>
    static Reg Slli(Reg a) { return _mm256_slli_epi16(a, N); }
    template <int N>
    static Reg Srai(Reg a) { return _mm256_srai_epi16(a, N); }
    // -100 U + 48 V from each lane's (U, V) byte pair in one multiply-add;
    // the sum lies in -25500..12240, so its saturation never acts.
    static Reg GreenChroma(Reg, Reg, Reg uv)
    {
        static_assert(bt601::kGreenFromU <= 128 && bt601::kGreenFromVFraction <= 127, "signed byte coefficients");
        const int pair = ((bt601::kGreenFromVFraction & 0xFF) << 8) | ((-bt601::kGreenFromU) & 0xFF);
        return _mm256_maddubs_epi16(uv, Opaque(_mm256_set1_epi16(static_cast<short>(pair))));
    }
};

inline __m256i Load(const unsigned char* s) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s)); }
inline void Store(unsigned char* d, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), v); }
inline void Store(unsigned char* d, __m256i v, OrdinaryStores) { Store(d, v); }
inline void Store(unsigned char* d, __m256i v, StreamingStores)
{
    _mm256_stream_si256(reinterpret_cast<__m256i*>(d), v);
}

// 64 bytes from `s` (aligned) to a line start `d`, streamed (ConvertLineEnd).
inline void StreamLine(unsigned char* d, const unsigned char* s)
{
    const __m256i* v = reinterpret_cast<const __m256i*>(s);
    Store(d, _mm256_load_si256(v), StreamingStores{});
    Store(d + 32, _mm256_load_si256(v + 1), StreamingStores{});
}

// Thirty-two pixels as clamped bytes, quarters in natural or packed order.
struct Bytes32 {
    __m256i r, g, b;
};

// --- destination writers -----------------------------------------------------

// 32-bit pixels (first, g, third, 0), eight per register, in pixel order.
template <unsigned RedIndex, bool Packed>
inline void Interleave32(const Bytes32& p, __m256i (&out)[4])
{
    const __m256i first = RedIndex == 0 ? p.r : p.b;
    const __m256i third = RedIndex == 0 ? p.b : p.r;
    const __m256i zero = _mm256_setzero_si256();
    // Natural order: lo 0-7 | 16-23, lo2 8-15 | 24-31; packed: lo 0-7 | 8-15, lo2 16-23 | 24-31.
    const __m256i lo = _mm256_unpacklo_epi8(first, p.g);
    const __m256i hi = _mm256_unpacklo_epi8(third, zero);
    const __m256i lo2 = _mm256_unpackhi_epi8(first, p.g);
    const __m256i hi2 = _mm256_unpackhi_epi8(third, zero);
    const __m256i q0 = _mm256_unpacklo_epi16(lo, hi);    // natural 0-3 | 16-19, packed 0-3 | 8-11
    const __m256i q1 = _mm256_unpackhi_epi16(lo, hi);    // natural 4-7 | 20-23, packed 4-7 | 12-15
    const __m256i q2 = _mm256_unpacklo_epi16(lo2, hi2);  // natural 8-11 | 24-27, packed 16-19 | 24-27
    const __m256i q3 = _mm256_unpackhi_epi16(lo2, hi2);  // natural 12-15 | 28-31, packed 20-23 | 28-31
    out[0] = _mm256_permute2x128_si256(q0, q1, 0x20);
    out[1] = Packed ? _mm256_permute2x128_si256(q0, q1, 0x31) : _mm256_permute2x128_si256(q2, q3, 0x20);
    out[2] = Packed ? _mm256_permute2x128_si256(q2, q3, 0x20) : _mm256_permute2x128_si256(q0, q1, 0x31);
    out[3] = _mm256_permute2x128_si256(q2, q3, 0x31);
}

template <unsigned RedIndex, bool Packed>
struct Store32 {
    static constexpr std::uint32_t kBytes = 4;
    static void Put(unsigned char* d, const Bytes32& p)
    {
        __m256i q[4];
        Interleave32<RedIndex, Packed>(p, q);
        for (int i = 0; i < 4; ++i)
            Store(d + 32 * i, q[i]);
    }
};

// 24-bit: each register of eight 32-bit pixels is squeezed to its 24 bytes
// (in-lane byte shuffle, then a dword permute joins the lanes). The first
// three registers are stored 32 bytes wide, each store's last 8 bytes being
// rewritten by the next; the last one is stored as 16 + 8 bytes so nothing
// past the 96 bytes of the group is touched.
template <unsigned RedIndex, bool Packed>
struct Store24 {
    static constexpr std::uint32_t kBytes = 3;
    static __m256i Squeeze(__m256i x)
    {
        const __m256i bytes = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1,  //
                                               0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
        const __m256i dwords = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
        return _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(x, bytes), dwords);
    }
    static void Put(unsigned char* d, const Bytes32& p)
    {
        __m256i q[4];
        Interleave32<RedIndex, Packed>(p, q);
        Store(d, Squeeze(q[0]));
        Store(d + 24, Squeeze(q[1]));
        Store(d + 48, Squeeze(q[2]));
        const __m256i last = Squeeze(q[3]);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 72), _mm256_castsi256_si128(last));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(d + 88), _mm256_extracti128_si256(last, 1));
    }
};

template <bool Packed>
struct Store16 {
    static constexpr std::uint32_t kBytes = 2;
    static void Put(unsigned char* d, const Bytes32& p)
    {
        const __m256i zero = _mm256_setzero_si256();
        // Natural order: w0 0-7 | 16-23, w1 8-15 | 24-31; packed: w0 0-15, w1 16-31.
        const __m256i w0 = simd::PackRGB16Words(_mm256_unpacklo_epi8(p.r, zero), _mm256_unpacklo_epi8(p.g, zero),
                                                _mm256_unpacklo_epi8(p.b, zero));
        const __m256i w1 = simd::PackRGB16Words(_mm256_unpackhi_epi8(p.r, zero), _mm256_unpackhi_epi8(p.g, zero),
                                                _mm256_unpackhi_epi8(p.b, zero));
        Store(d, Packed ? w0 : _mm256_permute2x128_si256(w0, w1, 0x20));
        Store(d + 32, Packed ? w1 : _mm256_permute2x128_si256(w0, w1, 0x31));
    }
};

// --- 4:2:2 -------------------------------------------------------------------

// Sixteen pixels (bytes Y0 U Y1 V ...) -> unclamped R, G, B in 16-bit lanes.
// Byte shuffles spread each pair's U and V (and the (U, V) byte pair) over
// its two pixels.
inline void Transform422(__m256i x, __m256i& r, __m256i& g, __m256i& b)
{
    const __m256i spreadU = _mm256_setr_epi8(1, -1, 1, -1, 5, -1, 5, -1, 9, -1, 9, -1, 13, -1, 13, -1,  //
                                             1, -1, 1, -1, 5, -1, 5, -1, 9, -1, 9, -1, 13, -1, 13, -1);
    const __m256i spreadV = _mm256_setr_epi8(3, -1, 3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1,  //
                                             3, -1, 3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1);
    const __m256i spreadUV = _mm256_setr_epi8(1, 3, 1, 3, 5, 7, 5, 7, 9, 11, 9, 11, 13, 15, 13, 15,  //
                                              1, 3, 1, 3, 5, 7, 5, 7, 9, 11, 9, 11, 13, 15, 13, 15);
    const __m256i y = _mm256_and_si256(x, _mm256_set1_epi16(0xFF));
    TransformLanes<V256>(y, _mm256_shuffle_epi8(x, spreadU), _mm256_shuffle_epi8(x, spreadV),
                         _mm256_shuffle_epi8(x, spreadUV), r, g, b);
}

// Packs two registers of sixteen 16-bit values into bytes in pixel order.
inline __m256i PackInOrder(__m256i a, __m256i b)
{
    return _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), _MM_SHUFFLE(3, 1, 2, 0));
}

// Readers: thirty-two pixels as two registers of 8-bit samples Y0 U Y1 V.
struct Read8Bit {
    static constexpr std::uint32_t kGroupBytes = 64;
    std::uint32_t unused;
    void Load2(const unsigned char* s, __m256i& x0, __m256i& x1) const
    {
        x0 = Load(s);
        x1 = Load(s + 32);
    }
};

// Two registers of 16-bit values (< 256) -> one register of bytes in order.
inline __m256i Narrow(__m256i a, __m256i b) { return PackInOrder(a, b); }

struct ReadHighByte {
    static constexpr std::uint32_t kGroupBytes = 128;
    std::uint32_t unused;
    void Load2(const unsigned char* s, __m256i& x0, __m256i& x1) const
    {
        x0 = Narrow(_mm256_srli_epi16(Load(s), 8), _mm256_srli_epi16(Load(s + 32), 8));
        x1 = Narrow(_mm256_srli_epi16(Load(s + 64), 8), _mm256_srli_epi16(Load(s + 96), 8));
    }
};

struct ReadShiftedWord {
    static constexpr std::uint32_t kGroupBytes = 128;
    std::uint32_t shift;
    void Load2(const unsigned char* s, __m256i& x0, __m256i& x1) const
    {
        const __m128i count = _mm_cvtsi32_si128(static_cast<int>(shift));
        const __m256i mask = _mm256_set1_epi16(0xFF);
        auto value = [&](const unsigned char* p) { return _mm256_and_si256(_mm256_srl_epi16(Load(p), count), mask); };
        x0 = Narrow(value(s), value(s + 32));
        x1 = Narrow(value(s + 64), value(s + 96));
    }
};

// forms(r, g, b): maps the unclamped 16-bit channels before they are packed
// (white balance; the identity line passes NoForms).
struct NoForms {
    void operator()(__m256i&, __m256i&, __m256i&) const {}
};

template <class Store, class Reader, class Forms = NoForms>
std::uint32_t Pairs422(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, const Reader& reader,
                       Forms forms = {})
{
    const std::uint32_t groups = pairs / 16;
    for (std::uint32_t i = 0; i < groups; ++i, src += Reader::kGroupBytes, dst += 32 * Store::kBytes) {
        __m256i x0, x1, r0, g0, b0, r1, g1, b1;
        reader.Load2(src, x0, x1);
        Transform422(x0, r0, g0, b0);
        Transform422(x1, r1, g1, b1);
        forms(r0, g0, b0);
        forms(r1, g1, b1);
        Store::Put(dst, Bytes32{_mm256_packus_epi16(r0, r1), _mm256_packus_epi16(g0, g1), _mm256_packus_epi16(b0, b1)});
    }
    return groups * 16;
}

inline __m256i BytePair(std::int32_t low, std::int32_t high)
{
    return _mm256_set1_epi16(static_cast<short>(((high & 0xFF) << 8) | (low & 0xFF)));
}

// The constants of Transform422BytePairs. The loops read them from memory,
// through InMemory: with sixteen vector registers a loop cannot keep them
// all, and GCC then rebuilds the ones it gives up (a move and a broadcast
// each, five a step) instead of reading them, while read as operands of
// the multiply-adds and adds they cost nothing.
struct Transform422Constants {
    __m256i pickU, pickV;                   // the (Y, U) and (Y, V) byte pairs
    __m256i rs, gsv, gsu, bs, rw, gw, bw;   // byte-pair coefficients
    __m256i rso, gso, bso, rwo, gwo, bwo;   // the sums' offsets
};

inline Transform422Constants MakeTransform422Constants()
{
    using namespace bt601;
    Transform422Constants k;
    k.pickU = _mm256_setr_epi8(0, 1, 2, 1, 4, 5, 6, 5, 8, 9, 10, 9, 12, 13, 14, 13,  //
                               0, 1, 2, 1, 4, 5, 6, 5, 8, 9, 10, 9, 12, 13, 14, 13);
    k.pickV = _mm256_setr_epi8(0, 3, 2, 3, 4, 7, 6, 7, 8, 11, 10, 11, 12, 15, 14, 15,  //
                               0, 3, 2, 3, 4, 7, 6, 7, 8, 11, 10, 11, 12, 15, 14, 15);
    k.rs = BytePair(kLumaFraction, -kRedFromVPairFraction);
    k.gsv = BytePair(kLumaFraction, kGreenFromVFraction);
    k.gsu = BytePair(0, -kGreenFromU);
    k.bs = BytePair(kLumaFraction, kBlueFromUFraction);
    k.rw = BytePair(1, kRedFromVPairWhole);
    k.gw = BytePair(1, -1);
    k.bw = BytePair(1, kBlueFromUWhole);
    k.rso = _mm256_set1_epi16(static_cast<short>(kRedPairSumOffset));
    k.gso = _mm256_set1_epi16(static_cast<short>(kGreenSumOffset));
    k.bso = _mm256_set1_epi16(static_cast<short>(kBlueSumOffset));
    k.rwo = _mm256_set1_epi16(static_cast<short>(kRedPairWholeOffset));
    k.gwo = _mm256_set1_epi16(static_cast<short>(kGreenWholeOffset));
    k.bwo = _mm256_set1_epi16(static_cast<short>(kBlueWholeOffset));
    return k;
}

// `v` behind a pointer the compiler cannot see through, so that loops read
// it from memory (see above); `v` must outlive the loop.
template <class T>
inline const T* InMemory(const T& v)
{
    const T* p = &v;
    __asm__("" : "+r"(p) : : "memory");
    return p;
}

// The 4:2:2 transform with byte multiply-adds only (the byte-pair form of
// YUVTransform.h). Two byte shuffles give each pixel's lane the byte pairs
// (Y, U) and (Y, V); every term, whole or fraction, is then one vpmaddubsw
// of such a pair (no sum saturates), which leaves the shift unit free for
// the arithmetic shifts and the packing.
inline __attribute__((always_inline)) void Transform422BytePairs(__m256i x, const Transform422Constants& k,
                                                                 __m256i& r, __m256i& g, __m256i& b)
{
    using namespace bt601;
    const __m256i yu = _mm256_shuffle_epi8(x, k.pickU);
    const __m256i yv = _mm256_shuffle_epi8(x, k.pickV);
    const __m256i rs = _mm256_add_epi16(_mm256_maddubs_epi16(yv, k.rs), k.rso);
    const __m256i gs =
        _mm256_add_epi16(_mm256_add_epi16(_mm256_maddubs_epi16(yv, k.gsv), _mm256_maddubs_epi16(yu, k.gsu)), k.gso);
    const __m256i bs = _mm256_add_epi16(_mm256_maddubs_epi16(yu, k.bs), k.bso);
    const __m256i rw = _mm256_add_epi16(_mm256_maddubs_epi16(yv, k.rw), k.rwo);
    const __m256i gw = _mm256_add_epi16(_mm256_maddubs_epi16(yv, k.gw), k.gwo);
    const __m256i bw = _mm256_add_epi16(_mm256_maddubs_epi16(yu, k.bw), k.bwo);
    r = _mm256_add_epi16(rw, _mm256_srai_epi16(rs, kFractionBits));
    g = _mm256_add_epi16(gw, _mm256_srai_epi16(gs, kFractionBits));
    b = _mm256_add_epi16(bw, _mm256_srai_epi16(bs, kFractionBits));
}

// 32-bit destinations, sixteen pixels at a time straight from the 16-bit
// results. The source's 8-byte quarters (four pixels each) are first put in
// the order 0, 2 | 1, 3, so that after packing (first, third) and (green, 0)
// two rounds of in-lane unpacking give pixels 0-7 and 8-15 in order.
template <unsigned RedIndex, class Streaming>
inline __attribute__((always_inline)) void Store422To32(unsigned char* d, __m256i r, __m256i g, __m256i b,
                                                       Streaming streaming)
{
    const __m256i ends = RedIndex == 0 ? _mm256_packus_epi16(r, b) : _mm256_packus_epi16(b, r);
    const __m256i middle = _mm256_packus_epi16(g, _mm256_setzero_si256());
    const __m256i lo = _mm256_unpacklo_epi8(ends, middle);  // first, green
    const __m256i hi = _mm256_unpackhi_epi8(ends, middle);  // third, 0
    Store(d, _mm256_unpacklo_epi16(lo, hi), streaming);       // pixels 0-7
    Store(d + 32, _mm256_unpackhi_epi16(lo, hi), streaming);  // pixels 8-15
}

// Sixteen pairs (128 destination bytes) a group, with streaming stores
// where `stream` says and the destination allows (core/StreamGroups.h);
// the line's last pairs through ConvertLineEnd. Converts every pair.
// forms(r, g, b): as for Pairs422.
template <unsigned RedIndex, class Reader, class Forms>
std::uint32_t Pairs422To32(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, const Reader& reader,
                           bool stream, Forms forms)
{
    constexpr std::uint32_t kPairBytes = Reader::kGroupBytes / 16;
    const Transform422Constants constants = MakeTransform422Constants();
    const Transform422Constants* c = InMemory(constants);
    auto convert = [&](const unsigned char* s, unsigned char* d, auto streaming) __attribute__((always_inline)) {
        __m256i x[2];
        reader.Load2(s, x[0], x[1]);
        for (int k = 0; k < 2; ++k) {
            __m256i r, g, b;
            Transform422BytePairs(_mm256_permute4x64_epi64(x[k], _MM_SHUFFLE(3, 1, 2, 0)), *c, r, g, b);
            forms(r, g, b);
            Store422To32<RedIndex>(d + 64 * k, r, g, b, streaming);
        }
    };
    return ConvertPairsLine<16, kPairBytes>(src, dst, pairs, stream, convert, StreamLine);
}

template <class Reader>
std::uint32_t Pairs422ByLayout(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                               std::uint32_t dstBytes, std::uint32_t redIndex, const Reader& reader, bool stream)
{
    switch (dstBytes) {
    case 2:
        return Pairs422<Store16<true>>(src, dst, pairs, reader);
    case 3:
        return redIndex ? Pairs422<Store24<2, true>>(src, dst, pairs, reader) : Pairs422<Store24<0, true>>(src, dst, pairs, reader);
    case 4:
        return redIndex ? Pairs422To32<2>(src, dst, pairs, reader, stream, NoForms{})
                        : Pairs422To32<0>(src, dst, pairs, reader, stream, NoForms{});
    default:
        return 0;
    }
}

std::uint32_t Pairs8AVX2(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, std::uint32_t sampleBytes,
                         std::uint32_t dstBytes, std::uint32_t redIndex, bool stream)
{
    if (sampleBytes == 1)
        return Pairs422ByLayout(src, dst, pairs, dstBytes, redIndex, Read8Bit{0}, stream);
    if (sampleBytes == 2)
        return Pairs422ByLayout(src, dst, pairs, dstBytes, redIndex, ReadHighByte{0}, stream);
    return 0;
}

std::uint32_t Pairs10AVX2(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, std::uint32_t shift,
                          std::uint32_t dstBytes, std::uint32_t redIndex)
{
    if (shift > 15)
        return 0;
    return Pairs422ByLayout(src, dst, pairs, dstBytes, redIndex, ReadShiftedWord{shift}, false);
}

// ---- Filtered: table forms evaluated before the pack ----

using Arith = simd::LutArith<simd::V256>;

using ChannelForms = Arith::Channels;

// As Pairs422To32 from 8-bit samples, sixteen pixels a step, each channel
// clamped to 0-255 (what the pack does) and evaluated through its table's
// form (Arith::EvalFixed mode; -1: the identity, not evaluated) before the
// pack. Its own loop: through Pairs422To32's line loop, the many variants
// of this path kept the line loop out of line and measured 0.30 ns a pixel
// against this loop's 0.23 (lines in the cache).
template <unsigned RedIndex, int Red, int Green, int Blue>
std::uint32_t Pairs422To32Formed(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                 const ChannelForms& forms)
{
    const __m256i zero = _mm256_setzero_si256();
    const __m256i top = _mm256_set1_epi16(255);
    auto eval = [&](__m256i v, const Arith::Params& form, auto mode) {
        constexpr int kMode = decltype(mode)::value;
        if constexpr (kMode < 0) {
            return v;
        } else if constexpr (kMode == 6) {
            // The fast unit form without the clamp to 255 and its byte-wise
            // saturation: i + MulHi(i, fh) passes 255 exactly where the
            // table's entry is 255 (its last), which the pack gives.
            const __m256i i = _mm256_max_epi16(v, zero);
            return _mm256_add_epi16(i, _mm256_mulhi_epu16(i, form.p[simd::kLutFh]));
        } else {
            return Arith::EvalFixed<kMode>(_mm256_min_epi16(_mm256_max_epi16(v, zero), top), form);
        }
    };
    const std::uint32_t steps = pairs / 8;
    const Transform422Constants constants = MakeTransform422Constants();
    const Transform422Constants* k = InMemory(constants);
    for (std::uint32_t i = 0; i < steps; ++i, src += 32, dst += 64) {
        __m256i r, g, b;
        Transform422BytePairs(_mm256_permute4x64_epi64(Load(src), _MM_SHUFFLE(3, 1, 2, 0)), *k, r, g, b);
        r = eval(r, forms.red, std::integral_constant<int, Red>{});
        g = eval(g, forms.green, std::integral_constant<int, Green>{});
        b = eval(b, forms.blue, std::integral_constant<int, Blue>{});
        Store422To32<RedIndex>(dst, r, g, b, OrdinaryStores{});
    }
    return steps * 8;
}

template <unsigned RedIndex>
std::uint32_t Pairs422To32FormedAnyMode(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                        const simd::LutFormPlan8& plan)
{
    // The plan is in byte order of the layout: red at byte RedIndex.
    const ChannelForms forms = Arith::ChannelsOf(plan, RedIndex);
    std::uint32_t done = 0;
    Arith::WithChannelModes(plan, RedIndex, [&](auto red, auto green, auto blue) {
        done = Pairs422To32Formed<RedIndex, decltype(red)::value, decltype(green)::value, decltype(blue)::value>(
            src, dst, pairs, forms);
    });
    return done;
}

// The scaled forms of a plan's tables (simd/LutScaled.h) in every lane,
// read from memory in the loop as the transform's constants are.
struct ScaledChannels {
    simd::ScaledLanes256 red, green, blue;
};

// As Pairs422To32 (DstBytes 4, streamed where `stream` says, every pair of
// the line) or Pairs422 (DstBytes 2 or 3, whole groups), each channel
// through the scaled form of its table on the transform's unclamped results
// (Mode -1: left as it is; 0 fast, 1 corrected).
template <unsigned DstBytes, unsigned RedIndex, int Red, int Green, int Blue, class Reader>
std::uint32_t Pairs422Scaled(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, const Reader& reader,
                             const ScaledChannels& channels, bool stream)
{
    const ScaledChannels* forms = InMemory(channels);
    auto apply = [&](__m256i& r, __m256i& g, __m256i& b) __attribute__((always_inline)) {
        r = simd::EvalScaled<Red>(r, forms->red);
        g = simd::EvalScaled<Green>(g, forms->green);
        b = simd::EvalScaled<Blue>(b, forms->blue);
    };
    if constexpr (DstBytes == 4)
        return Pairs422To32<RedIndex>(src, dst, pairs, reader, stream, apply);
    else if constexpr (DstBytes == 3)
        return Pairs422<Store24<RedIndex, true>>(src, dst, pairs, reader, apply);
    else
        return Pairs422<Store16<true>>(src, dst, pairs, reader, apply);
}

// Through the scaled forms (every table must have one).
template <unsigned DstBytes, unsigned RedIndex, class Reader>
std::uint32_t Pairs422ScaledAnyMode(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                    const Reader& reader, const simd::LutFormPlan8& plan, bool stream)
{
    // The plan is in byte order of the layout (RGB16: red, green, blue):
    // red at byte RedIndex.
    alignas(32) const ScaledChannels channels{simd::ScaledLanes256(plan.scaled[RedIndex]),
                                              simd::ScaledLanes256(plan.scaled[1]),
                                              simd::ScaledLanes256(plan.scaled[2 - RedIndex])};
    return simd::WithScaledModes(plan, RedIndex, [&](auto r, auto g, auto b) {
        return Pairs422Scaled<DstBytes, RedIndex, decltype(r)::value, decltype(g)::value, decltype(b)::value>(
            src, dst, pairs, reader, channels, stream);
    });
}

// Into 16-, 24- and 32-bit layouts, every table with a scaled form; 0 (the
// line's pair loop looks the channels up) for anything else. Into 32-bit
// pixels streamed where `stream` says, every pair of the line; else whole
// groups.
template <class Reader>
std::uint32_t Pairs422ScaledByLayout(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                     const Reader& reader, std::uint32_t dstBytes, std::uint32_t redIndex,
                                     const simd::LutFormPlan8& plan, bool stream)
{
    if (!simd::HasScaledForms(plan))
        return 0;
    switch (dstBytes) {
    case 2:
        return Pairs422ScaledAnyMode<2, 0>(src, dst, pairs, reader, plan, stream);
    case 3:
        return redIndex ? Pairs422ScaledAnyMode<3, 2>(src, dst, pairs, reader, plan, stream)
                        : Pairs422ScaledAnyMode<3, 0>(src, dst, pairs, reader, plan, stream);
    case 4:
        return redIndex ? Pairs422ScaledAnyMode<4, 2>(src, dst, pairs, reader, plan, stream)
                        : Pairs422ScaledAnyMode<4, 0>(src, dst, pairs, reader, plan, stream);
    default:
        return 0;
    }
}

// 8-bit samples.
//
// YUYV -> BGRA through gains 1.8, 1.0, 1.4 at ZOIMG_CPU=avx2 (cold frames,
// 1920 x 1080, one run alternating with the unit forms' loop): 0.61 ms a
// frame against 0.66; lines in the cache, 0.264 ns a pixel against 0.302.
// Streamed or not measured the same (0.59-0.63 ms against 0.61): the forms'
// arithmetic bounds it; it streams as the identity path does.
std::uint32_t Pairs8ScaledAVX2(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                               std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex,
                               const simd::LutFormPlan8& plan, bool stream)
{
    if (sampleBytes != 1)
        return 0;
    return Pairs422ScaledByLayout(src, dst, pairs, Read8Bit{0}, dstBytes, redIndex, plan, stream);
}

// 10-bit samples (16-bit words), ordinary stores.
std::uint32_t Pairs10ScaledAVX2(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, std::uint32_t shift,
                                std::uint32_t dstBytes, std::uint32_t redIndex, const simd::LutFormPlan8& plan)
{
    if (shift > 15)
        return 0;
    return Pairs422ScaledByLayout(src, dst, pairs, ReadShiftedWord{shift}, dstBytes, redIndex, plan, false);
}

// The same through the unit and plan forms (tables without a scaled form),
// with ordinary stores, whole steps only.
std::uint32_t Pairs8FormedAVX2(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                               std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex,
                               const simd::LutFormPlan8& plan, bool)
{
    if (sampleBytes != 1 || dstBytes != 4)
        return 0;
    return redIndex ? Pairs422To32FormedAnyMode<2>(src, dst, pairs, plan)
                    : Pairs422To32FormedAnyMode<0>(src, dst, pairs, plan);
}

// --- 4:4:4, three-byte pixels ---------------------------------------------

// Shuffle masks that pick byte `offset` of each of sixteen 3-byte pixels
// from the three 16-byte blocks of 48 bytes (one mask per block; bytes of
// other blocks select zero).
struct Pick444 {
    __m256i block[3];
    explicit Pick444(std::uint32_t offset)
    {
        alignas(16) signed char m[3][16];
        for (int j = 0; j < 3; ++j)
            for (int k = 0; k < 16; ++k) {
                const int at = 3 * k + static_cast<int>(offset) - 16 * j;
                m[j][k] = static_cast<signed char>(at >= 0 && at < 16 ? at : -1);
            }
        for (int j = 0; j < 3; ++j)
            block[j] = _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(m[j])));
    }
    __m256i Apply(__m256i a, __m256i b, __m256i c) const
    {
        return _mm256_or_si256(_mm256_or_si256(_mm256_shuffle_epi8(a, block[0]), _mm256_shuffle_epi8(b, block[1])),
                               _mm256_shuffle_epi8(c, block[2]));
    }
};

inline __m256i LoadHalves(const unsigned char* lo, const unsigned char* hi)
{
    return _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(lo))),
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(hi)), 1);
}

template <class Store>
std::uint32_t Pixels444(const unsigned char* src, unsigned char* dst, std::uint32_t count, std::uint32_t yOffset,
                        std::uint32_t uOffset, std::uint32_t vOffset)
{
    const Pick444 pickY(yOffset), pickU(uOffset), pickV(vOffset);
    const __m256i zero = _mm256_setzero_si256();
    const std::uint32_t groups = count / 32;
    for (std::uint32_t i = 0; i < groups; ++i, src += 96, dst += 32 * Store::kBytes) {
        // Low lanes: pixels 0-15 (bytes 0-47), high lanes: 16-31 (48-95).
        const __m256i a = LoadHalves(src, src + 48);
        const __m256i b = LoadHalves(src + 16, src + 64);
        const __m256i c = LoadHalves(src + 32, src + 80);
        const __m256i y = pickY.Apply(a, b, c), u = pickU.Apply(a, b, c), v = pickV.Apply(a, b, c);
        __m256i r0, g0, b0, r1, g1, b1;
        TransformLanes<V256>(_mm256_unpacklo_epi8(y, zero), _mm256_unpacklo_epi8(u, zero),
                             _mm256_unpacklo_epi8(v, zero), _mm256_unpacklo_epi8(u, v), r0, g0, b0);
        TransformLanes<V256>(_mm256_unpackhi_epi8(y, zero), _mm256_unpackhi_epi8(u, zero),
                             _mm256_unpackhi_epi8(v, zero), _mm256_unpackhi_epi8(u, v), r1, g1, b1);
        // In-lane packing gives natural order here.
        Store::Put(dst, Bytes32{_mm256_packus_epi16(r0, r1), _mm256_packus_epi16(g0, g1), _mm256_packus_epi16(b0, b1)});
    }
    return groups * 32;
}

std::uint32_t Pixels444AVX2(const unsigned char* src, unsigned char* dst, std::uint32_t count,
                            std::uint32_t pixelBytes, std::uint32_t yOffset, std::uint32_t uOffset,
                            std::uint32_t vOffset, std::uint32_t dstBytes, std::uint32_t redIndex)
{
    if (pixelBytes != 3 || yOffset > 2 || uOffset > 2 || vOffset > 2)
        return kYUVPathsSSE2.pixels444(src, dst, count, pixelBytes, yOffset, uOffset, vOffset, dstBytes, redIndex);
    switch (dstBytes) {
    case 2:
        return Pixels444<Store16<false>>(src, dst, count, yOffset, uOffset, vOffset);
    case 3:
        return redIndex ? Pixels444<Store24<2, false>>(src, dst, count, yOffset, uOffset, vOffset)
                        : Pixels444<Store24<0, false>>(src, dst, count, yOffset, uOffset, vOffset);
    case 4:
        return redIndex ? Pixels444<Store32<2, false>>(src, dst, count, yOffset, uOffset, vOffset)
                        : Pixels444<Store32<0, false>>(src, dst, count, yOffset, uOffset, vOffset);
    default:
        return 0;
    }
}

}  // namespace

const YUVVectorPaths kYUVPathsAVX2 = {"AVX2",           Pairs8AVX2,       Pairs10AVX2, Pixels444AVX2,
                                      Pairs8ScaledAVX2, Pairs8FormedAVX2, nullptr,     Pairs10ScaledAVX2};

}  // namespace zo

#endif
