// SSE2 paths of the YUV kernels (the x86-64 baseline; chosen at the SSE2 and
// SSSE3 levels, see YUVSimd.cpp).
//
// Pixels are handled sixteen at a time. Every reader brings eight pixels of
// 4:2:2 into one register in the 8-bit layout Y0 U Y1 V Y2 U' Y3 V' ...;
// the transform runs on 16-bit lanes in the split form of YUVTransform.h
// (exact, no rounding differences), and packing with unsigned saturation is
// the clamp to 0..255.
#include "yuv/YUVSimd.h"

#include "simd/LutScaled.h"
#include "simd/Rgb16Words.h"
#include "yuv/YUVSimdTransform.h"

#if defined(__SSE2__)
#include <emmintrin.h>

namespace zo {
namespace {

// Keeps a constant multiplier opaque to the compiler, which would otherwise
// replace one pmullw by a longer chain of shifts and adds.
inline __m128i Opaque(__m128i v)
{
#if defined(__GNUC__)
    __asm__("" : "+x"(v));
#endif
    return v;
}

// 16-bit lane operations for TransformLanes.
struct V128 {
    using Reg = __m128i;
    static Reg Set(std::int32_t v) { return _mm_set1_epi16(static_cast<short>(v)); }
    static Reg Add(Reg a, Reg b) { return _mm_add_epi16(a, b); }
    static Reg Sub(Reg a, Reg b) { return _mm_sub_epi16(a, b); }
    static Reg MulLo(Reg a, Reg b) { return _mm_mullo_epi16(a, Opaque(b)); }
    template <int N>
    static Reg Slli(Reg a) { return _mm_slli_epi16(a, N); }
    template <int N>
    static Reg Srai(Reg a) { return _mm_srai_epi16(a, N); }
    // -100 U + 48 V (SSE2 has no byte multiply-add; the pairs are not used).
    static Reg GreenChroma(Reg u, Reg v, Reg)
    {
        return Sub(MulLo(v, Set(bt601::kGreenFromVFraction)), MulLo(u, Set(bt601::kGreenFromU)));
    }
};

// Eight pixels: Y, U, V as 16-bit lanes -> unclamped R, G, B as 16-bit lanes.
inline void Transform8(__m128i y, __m128i u, __m128i v, __m128i& r, __m128i& g, __m128i& b)
{
    TransformLanes<V128>(y, u, v, u, r, g, b);
}

// Eight 4:2:2 pixels (bytes Y0 U Y1 V ...) -> unclamped R, G, B.
inline void Transform422(__m128i x, __m128i& r, __m128i& g, __m128i& b)
{
    const __m128i y = _mm_and_si128(x, _mm_set1_epi16(0xFF));
    const __m128i chroma = _mm_srli_epi16(x, 8);  // U0 V0 U1 V1 U2 V2 U3 V3
    const __m128i u = _mm_shufflehi_epi16(_mm_shufflelo_epi16(chroma, _MM_SHUFFLE(2, 2, 0, 0)), _MM_SHUFFLE(2, 2, 0, 0));
    const __m128i v = _mm_shufflehi_epi16(_mm_shufflelo_epi16(chroma, _MM_SHUFFLE(3, 3, 1, 1)), _MM_SHUFFLE(3, 3, 1, 1));
    Transform8(y, u, v, r, g, b);
}

// Sixteen pixels as clamped R, G, B bytes.
struct Bytes16 {
    __m128i r, g, b;
};

inline Bytes16 Clamp16(__m128i r0, __m128i g0, __m128i b0, __m128i r1, __m128i g1, __m128i b1)
{
    return Bytes16{_mm_packus_epi16(r0, r1), _mm_packus_epi16(g0, g1), _mm_packus_epi16(b0, b1)};
}

// --- destination writers: sixteen pixels from clamped bytes --------------

// Four registers of four 32-bit pixels each: bytes (first, g, third, 0).
template <unsigned RedIndex>
inline void Interleave32(const Bytes16& p, __m128i (&q)[4])
{
    const __m128i first = RedIndex == 0 ? p.r : p.b;
    const __m128i third = RedIndex == 0 ? p.b : p.r;
    const __m128i zero = _mm_setzero_si128();
    const __m128i lo = _mm_unpacklo_epi8(first, p.g);
    const __m128i hi = _mm_unpacklo_epi8(third, zero);
    const __m128i lo2 = _mm_unpackhi_epi8(first, p.g);
    const __m128i hi2 = _mm_unpackhi_epi8(third, zero);
    q[0] = _mm_unpacklo_epi16(lo, hi);
    q[1] = _mm_unpackhi_epi16(lo, hi);
    q[2] = _mm_unpacklo_epi16(lo2, hi2);
    q[3] = _mm_unpackhi_epi16(lo2, hi2);
}

template <unsigned RedIndex>
struct Store32 {
    static constexpr std::uint32_t kBytes = 4;
    static void Put(unsigned char* d, const Bytes16& p)
    {
        __m128i q[4];
        Interleave32<RedIndex>(p, q);
        for (int i = 0; i < 4; ++i)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 16 * i), q[i]);
    }
};

// Four 32-bit pixels -> their 24-bit bytes in the low 12 bytes.
inline __m128i Compact4(__m128i x)
{
    const __m128i m0 = _mm_setr_epi32(0x00FFFFFF, 0, 0, 0);
    const __m128i m1 = _mm_setr_epi32(0, 0x00FFFFFF, 0, 0);
    const __m128i m2 = _mm_setr_epi32(0, 0, 0x00FFFFFF, 0);
    const __m128i m3 = _mm_setr_epi32(0, 0, 0, 0x00FFFFFF);
    return _mm_or_si128(_mm_or_si128(_mm_and_si128(x, m0), _mm_srli_si128(_mm_and_si128(x, m1), 1)),
                        _mm_or_si128(_mm_srli_si128(_mm_and_si128(x, m2), 2), _mm_srli_si128(_mm_and_si128(x, m3), 3)));
}

template <unsigned RedIndex>
struct Store24 {
    static constexpr std::uint32_t kBytes = 3;
    static void Put(unsigned char* d, const Bytes16& p)
    {
        __m128i q[4];
        Interleave32<RedIndex>(p, q);
        const __m128i c0 = Compact4(q[0]), c1 = Compact4(q[1]), c2 = Compact4(q[2]), c3 = Compact4(q[3]);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_or_si128(c0, _mm_slli_si128(c1, 12)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 16), _mm_or_si128(_mm_srli_si128(c1, 4), _mm_slli_si128(c2, 8)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 32), _mm_or_si128(_mm_srli_si128(c2, 8), _mm_slli_si128(c3, 4)));
    }
};

struct Store16 {
    static constexpr std::uint32_t kBytes = 2;
    static void Put(unsigned char* d, const Bytes16& p) { simd::StoreRGB16x16(d, p.r, p.g, p.b); }
};

// --- readers: sixteen 4:2:2 pixels as two registers of 8-bit samples -------

struct Read8Bit {  // samples of one byte: 32 bytes
    static constexpr std::uint32_t kGroupBytes = 32;
    std::uint32_t unused;
    void Load(const unsigned char* s, __m128i& x0, __m128i& x1) const
    {
        x0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s));
        x1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 16));
    }
};

struct ReadHighByte {  // samples of two bytes, the second is the value: 64 bytes
    static constexpr std::uint32_t kGroupBytes = 64;
    std::uint32_t unused;
    static __m128i Two(const unsigned char* s)
    {
        const __m128i a = _mm_srli_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s)), 8);
        const __m128i b = _mm_srli_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 16)), 8);
        return _mm_packus_epi16(a, b);
    }
    void Load(const unsigned char* s, __m128i& x0, __m128i& x1) const
    {
        x0 = Two(s);
        x1 = Two(s + 32);
    }
};

struct ReadShiftedWord {  // 16-bit words, value = low 8 bits of word >> shift
    static constexpr std::uint32_t kGroupBytes = 64;
    std::uint32_t shift;
    __m128i Two(const unsigned char* s, __m128i count) const
    {
        const __m128i mask = _mm_set1_epi16(0xFF);
        const __m128i a = _mm_and_si128(_mm_srl_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s)), count), mask);
        const __m128i b =
            _mm_and_si128(_mm_srl_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 16)), count), mask);
        return _mm_packus_epi16(a, b);
    }
    void Load(const unsigned char* s, __m128i& x0, __m128i& x1) const
    {
        const __m128i count = _mm_cvtsi32_si128(static_cast<int>(shift));
        x0 = Two(s, count);
        x1 = Two(s + 32, count);
    }
};

// forms(r, g, b): maps the unclamped 16-bit channels before they are packed
// (white balance; the identity line passes NoForms).
struct NoForms {
    void operator()(__m128i&, __m128i&, __m128i&) const {}
};

template <class Store, class Reader, class Forms = NoForms>
std::uint32_t Pairs422(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, const Reader& reader,
                       Forms forms = {})
{
    const std::uint32_t groups = pairs / 8;
    for (std::uint32_t i = 0; i < groups; ++i, src += Reader::kGroupBytes, dst += 16 * Store::kBytes) {
        __m128i x0, x1, r0, g0, b0, r1, g1, b1;
        reader.Load(src, x0, x1);
        Transform422(x0, r0, g0, b0);
        Transform422(x1, r1, g1, b1);
        forms(r0, g0, b0);
        forms(r1, g1, b1);
        Store::Put(dst, Clamp16(r0, g0, b0, r1, g1, b1));
    }
    return groups * 8;
}

template <class Reader>
std::uint32_t Pairs422ByLayout(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                               std::uint32_t dstBytes, std::uint32_t redIndex, const Reader& reader)
{
    switch (dstBytes) {
    case 2:
        return Pairs422<Store16>(src, dst, pairs, reader);
    case 3:
        return redIndex ? Pairs422<Store24<2>>(src, dst, pairs, reader) : Pairs422<Store24<0>>(src, dst, pairs, reader);
    case 4:
        return redIndex ? Pairs422<Store32<2>>(src, dst, pairs, reader) : Pairs422<Store32<0>>(src, dst, pairs, reader);
    default:
        return 0;
    }
}

std::uint32_t Pairs8SSE2(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, std::uint32_t sampleBytes,
                         std::uint32_t dstBytes, std::uint32_t redIndex, bool)
{
    if (sampleBytes == 1)
        return Pairs422ByLayout(src, dst, pairs, dstBytes, redIndex, Read8Bit{0});
    if (sampleBytes == 2)
        return Pairs422ByLayout(src, dst, pairs, dstBytes, redIndex, ReadHighByte{0});
    return 0;
}

std::uint32_t Pairs10SSE2(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, std::uint32_t shift,
                          std::uint32_t dstBytes, std::uint32_t redIndex)
{
    if (shift > 15)
        return 0;
    return Pairs422ByLayout(src, dst, pairs, dstBytes, redIndex, ReadShiftedWord{shift});
}

// 4:4:4: sixteen pixels are gathered into Y, U and V rows first (any pixel
// size and offsets), then transformed together.
template <class Store>
std::uint32_t Pixels444(const unsigned char* src, unsigned char* dst, std::uint32_t count, std::uint32_t pixelBytes,
                        std::uint32_t yOffset, std::uint32_t uOffset, std::uint32_t vOffset)
{
    const std::uint32_t groups = count / 16;
    const __m128i zero = _mm_setzero_si128();
    for (std::uint32_t i = 0; i < groups; ++i, src += 16 * pixelBytes, dst += 16 * Store::kBytes) {
        alignas(16) unsigned char yr[16], ur[16], vr[16];
        const unsigned char* p = src;
        for (int k = 0; k < 16; ++k, p += pixelBytes) {
            yr[k] = p[yOffset];
            ur[k] = p[uOffset];
            vr[k] = p[vOffset];
        }
        const __m128i y = _mm_load_si128(reinterpret_cast<const __m128i*>(yr));
        const __m128i u = _mm_load_si128(reinterpret_cast<const __m128i*>(ur));
        const __m128i v = _mm_load_si128(reinterpret_cast<const __m128i*>(vr));
        __m128i r0, g0, b0, r1, g1, b1;
        Transform8(_mm_unpacklo_epi8(y, zero), _mm_unpacklo_epi8(u, zero), _mm_unpacklo_epi8(v, zero), r0, g0, b0);
        Transform8(_mm_unpackhi_epi8(y, zero), _mm_unpackhi_epi8(u, zero), _mm_unpackhi_epi8(v, zero), r1, g1, b1);
        Store::Put(dst, Clamp16(r0, g0, b0, r1, g1, b1));
    }
    return groups * 16;
}

std::uint32_t Pixels444SSE2(const unsigned char* src, unsigned char* dst, std::uint32_t count,
                            std::uint32_t pixelBytes, std::uint32_t yOffset, std::uint32_t uOffset,
                            std::uint32_t vOffset, std::uint32_t dstBytes, std::uint32_t redIndex)
{
    switch (dstBytes) {
    case 2:
        return Pixels444<Store16>(src, dst, count, pixelBytes, yOffset, uOffset, vOffset);
    case 3:
        return redIndex ? Pixels444<Store24<2>>(src, dst, count, pixelBytes, yOffset, uOffset, vOffset)
                        : Pixels444<Store24<0>>(src, dst, count, pixelBytes, yOffset, uOffset, vOffset);
    case 4:
        return redIndex ? Pixels444<Store32<2>>(src, dst, count, pixelBytes, yOffset, uOffset, vOffset)
                        : Pixels444<Store32<0>>(src, dst, count, pixelBytes, yOffset, uOffset, vOffset);
    default:
        return 0;
    }
}

// ---- Filtered: scaled table forms before the pack ----

// As Pairs422, each channel through its scaled form between the transform
// and the pack. Store: a writer of this file; the plan is in byte order of
// its layout (RGB16: red, green, blue), red at byte RedIndex.
template <class Store, unsigned RedIndex, class Reader>
std::uint32_t Pairs422Scaled(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, const Reader& reader,
                             const simd::LutFormPlan8& plan)
{
    return simd::WithScaledForms<simd::ScaledOps128>(
        plan, RedIndex, [&](const auto& forms) { return Pairs422<Store>(src, dst, pairs, reader, forms); });
}

// Into 16-, 24- and 32-bit layouts, every table with a scaled form; 0 (the
// line's pair loop looks the channels up) for anything else.
template <class Reader>
std::uint32_t Pairs422ScaledByLayout(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                     const Reader& reader, std::uint32_t dstBytes, std::uint32_t redIndex,
                                     const simd::LutFormPlan8& plan)
{
    if (!simd::HasScaledForms(plan))
        return 0;
    switch (dstBytes) {
    case 2:
        return Pairs422Scaled<Store16, 0>(src, dst, pairs, reader, plan);
    case 3:
        return redIndex ? Pairs422Scaled<Store24<2>, 2>(src, dst, pairs, reader, plan)
                        : Pairs422Scaled<Store24<0>, 0>(src, dst, pairs, reader, plan);
    case 4:
        return redIndex ? Pairs422Scaled<Store32<2>, 2>(src, dst, pairs, reader, plan)
                        : Pairs422Scaled<Store32<0>, 0>(src, dst, pairs, reader, plan);
    default:
        return 0;
    }
}

std::uint32_t Pairs8ScaledSSE2(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                               std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex,
                               const simd::LutFormPlan8& plan, bool)
{
    if (sampleBytes != 1)
        return 0;
    return Pairs422ScaledByLayout(src, dst, pairs, Read8Bit{0}, dstBytes, redIndex, plan);
}

std::uint32_t Pairs10ScaledSSE2(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, std::uint32_t shift,
                                std::uint32_t dstBytes, std::uint32_t redIndex, const simd::LutFormPlan8& plan)
{
    if (shift > 15)
        return 0;
    return Pairs422ScaledByLayout(src, dst, pairs, ReadShiftedWord{shift}, dstBytes, redIndex, plan);
}

}  // namespace

const YUVVectorPaths kYUVPathsSSE2 = {"SSE2",           Pairs8SSE2, Pairs10SSE2, Pixels444SSE2,
                                      Pairs8ScaledSSE2, nullptr,    nullptr,     Pairs10ScaledSSE2};

}  // namespace zo

#endif
