// SSE2 paths of the packed unpacking and dual-tap kernels (SSE2 is the
// baseline of x86-64 builds; the tables run from the SSE2 level on, see
// PackedSimd.cpp). They place whole chunks of pairs below `pairs`, as
// DualTapVectorPairs allows, and produce exactly the bytes of the scalar
// kernels, which finish every line and remain the reference.
#include "gray/PackedKernels.h"
#include "gray/PackedPaths.h"

#if defined(__SSE2__)
#include <emmintrin.h>

namespace zo {
namespace {

// Reverses the eight 16-bit lanes.
inline __m128i Reverse16(__m128i x)
{
    x = _mm_shuffle_epi32(x, 0x1B);
    x = _mm_shufflelo_epi16(x, 0xB1);
    return _mm_shufflehi_epi16(x, 0xB1);
}

// Reverses the sixteen bytes.
inline __m128i Reverse8(__m128i x)
{
    x = Reverse16(x);
    return _mm_or_si128(_mm_slli_epi16(x, 8), _mm_srli_epi16(x, 8));
}

// Four groups from 16 bytes at g (groups 0..3 and one byte more): lane k
// holds bytes 3k, 3k + 1, 3k + 2 (and one more byte in bits 24..31).
inline __m128i LoadGroups4(const unsigned char* g)
{
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(g));
    const __m128i g01 = _mm_unpacklo_epi32(x, _mm_srli_si128(x, 3));
    const __m128i g23 = _mm_unpacklo_epi32(_mm_srli_si128(x, 6), _mm_srli_si128(x, 9));
    return _mm_unpacklo_epi64(g01, g23);
}

// One sample rule as shift counts and mask in vector form.
struct Rule {
    __m128i left, right, mask;
    explicit Rule(const PackedSampleRule& r)
        : left(_mm_cvtsi32_si128(static_cast<int>(r.left))),
          right(_mm_cvtsi32_si128(static_cast<int>(r.right))),
          mask(_mm_set1_epi32(static_cast<int>(r.mask)))
    {
    }
    __m128i Extract(__m128i word) const
    {
        return _mm_and_si128(_mm_srl_epi32(_mm_sll_epi32(word, left), right), mask);
    }
};

// Dword lanes (values up to 0xFFFF) of two vectors to eight 16-bit lanes.
inline __m128i PackWords(__m128i lo, __m128i hi)
{
    lo = _mm_srai_epi32(_mm_slli_epi32(lo, 16), 16);
    hi = _mm_srai_epi32(_mm_slli_epi32(hi, 16), 16);
    return _mm_packs_epi32(lo, hi);
}

// The low byte of each dword lane: the 8-bit layouts store the gray value
// sample & 0xFF, as their scalar writers do.
inline __m128i LowByte(__m128i v) { return _mm_and_si128(v, _mm_set1_epi32(0xFF)); }

// Eight samples as stored by each destination layout: one or two vectors.
// Gray16: words; Gray8: bytes in the low half; RGB16: words; RGB32: dwords.
template <class Writer>
struct Pixels8;

template <>
struct Pixels8<PackedToGray16> {
    __m128i v;
    Pixels8(__m128i lo, __m128i hi) : v(PackWords(lo, hi)) {}
};
template <>
struct Pixels8<PackedToRGB16> {
    __m128i v;
    Pixels8(__m128i lo, __m128i hi)
    {
        // ((g >> 3) << 11) | ((g >> 2) << 5) | (g >> 3), as GrayToRGB16Word.
        const __m128i g = PackWords(LowByte(lo), LowByte(hi));
        const __m128i five = _mm_srli_epi16(g, 3);
        v = _mm_or_si128(_mm_or_si128(_mm_slli_epi16(five, 11), _mm_slli_epi16(_mm_srli_epi16(g, 2), 5)), five);
    }
};
template <>
struct Pixels8<PackedToGray8> {
    __m128i v;  // eight 16-bit lanes holding bytes; packed when stored
    Pixels8(__m128i lo, __m128i hi) : v(PackWords(LowByte(lo), LowByte(hi))) {}
};
template <>
struct Pixels8<PackedToRGB32> {
    __m128i lo, hi;
    static __m128i Spread(__m128i g)  // g x 0x1010101, as GrayToRGB32Filled
    {
        g = _mm_or_si128(g, _mm_slli_epi32(g, 8));
        return _mm_or_si128(g, _mm_slli_epi32(g, 16));
    }
    Pixels8(__m128i l, __m128i h) : lo(Spread(LowByte(l))), hi(Spread(LowByte(h))) {}
};

inline void Store(unsigned char* d, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(d), v); }
inline void Store8(unsigned char* d, __m128i v) { _mm_storel_epi64(reinterpret_cast<__m128i*>(d), v); }

// Stores eight pixels at pixel d, reversed or not.
template <class Writer>
inline void StoreRun(unsigned char* d, const Pixels8<Writer>& p, bool reversed)
{
    if constexpr (Writer::kBytes == 4) {
        if (reversed) {
            Store(d, _mm_shuffle_epi32(p.hi, 0x1B));
            Store(d + 16, _mm_shuffle_epi32(p.lo, 0x1B));
        } else {
            Store(d, p.lo);
            Store(d + 16, p.hi);
        }
    } else if constexpr (Writer::kBytes == 2) {
        Store(d, reversed ? Reverse16(p.v) : p.v);
    } else {
        const __m128i w = reversed ? Reverse16(p.v) : p.v;
        Store8(d, _mm_packus_epi16(w, w));
    }
}

// Stores A0 B0 A1 B1 ... A7 B7 at pixel d.
template <class Writer>
inline void StoreInterleaved(unsigned char* d, const Pixels8<Writer>& a, const Pixels8<Writer>& b)
{
    if constexpr (Writer::kBytes == 4) {
        Store(d, _mm_unpacklo_epi32(a.lo, b.lo));
        Store(d + 16, _mm_unpackhi_epi32(a.lo, b.lo));
        Store(d + 32, _mm_unpacklo_epi32(a.hi, b.hi));
        Store(d + 48, _mm_unpackhi_epi32(a.hi, b.hi));
    } else if constexpr (Writer::kBytes == 2) {
        Store(d, _mm_unpacklo_epi16(a.v, b.v));
        Store(d + 16, _mm_unpackhi_epi16(a.v, b.v));
    } else {
        const __m128i ab = _mm_packus_epi16(a.v, b.v);  // A0..A7 B0..B7
        Store(d, _mm_unpacklo_epi8(ab, _mm_srli_si128(ab, 8)));
    }
}

// Places groups [0, pairs) of a line (pairs a multiple of 8, from
// DualTapVectorPairs with spare 2: the loads read 4 bytes past each chunk).
template <class Writer, unsigned Mode>
void UnpackPackedPairs(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                       std::uint32_t pairs, const PackedRules& rules)
{
    using Place = DualTapRule<Mode>;
    const Rule ruleA(rules.a), ruleB(rules.b);
    const __m128i low16 = _mm_set1_epi32(0xFFFF);
    constexpr std::ptrdiff_t bytes = Writer::kBytes;
    for (std::uint32_t i = 0; i < pairs; i += 8) {
        const unsigned char* g = source + static_cast<std::size_t>(i) * 3;
        const __m128i g0 = LoadGroups4(g), g1 = LoadGroups4(g + 12);
        const __m128i a0 = ruleA.Extract(_mm_and_si128(g0, low16)), a1 = ruleA.Extract(_mm_and_si128(g1, low16));
        const __m128i b0 = ruleB.Extract(_mm_and_si128(_mm_srli_epi32(g0, 8), low16));
        const __m128i b1 = ruleB.Extract(_mm_and_si128(_mm_srli_epi32(g1, 8), low16));
        const Pixels8<Writer> a(a0, a1), b(b0, b1);
        const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(i);
        if constexpr (Mode == 0) {
            StoreInterleaved<Writer>(destination + 2 * at * bytes, a, b);
        } else {
            // First and last positions of the eight A (and B) of this chunk.
            const std::ptrdiff_t pa = Place::FirstA(n) + at * Place::kAStep;
            const std::ptrdiff_t pb = Place::FirstB(n) + at * Place::kBStep;
            if (Place::kAStep > 0)
                StoreRun<Writer>(destination + pa * bytes, a, false);
            else
                StoreRun<Writer>(destination + (pa - 7) * bytes, a, true);
            if (Place::kBStep > 0)
                StoreRun<Writer>(destination + pb * bytes, b, false);
            else
                StoreRun<Writer>(destination + (pb - 7) * bytes, b, true);
        }
    }
}

// Dual-tap 8-bit: places pairs [0, pairs) (a multiple of 16) of a line.
template <unsigned Mode>
void RecombinePairs(const unsigned char* source, unsigned char* destination, std::uint32_t n, std::uint32_t pairs)
{
    using Place = DualTapRule<Mode>;
    const __m128i even = _mm_set1_epi16(0xFF);
    for (std::uint32_t i = 0; i < pairs; i += 16) {
        const __m128i x0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + 2 * static_cast<std::size_t>(i)));
        const __m128i x1 =
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + 2 * static_cast<std::size_t>(i) + 16));
        const __m128i a = _mm_packus_epi16(_mm_and_si128(x0, even), _mm_and_si128(x1, even));
        const __m128i b = _mm_packus_epi16(_mm_srli_epi16(x0, 8), _mm_srli_epi16(x1, 8));
        const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(i);
        const std::ptrdiff_t pa = Place::FirstA(n) + at * Place::kAStep;
        const std::ptrdiff_t pb = Place::FirstB(n) + at * Place::kBStep;
        if (Place::kAStep > 0)
            Store(destination + pa, a);
        else
            Store(destination + pa - 15, Reverse8(a));
        if (Place::kBStep > 0)
            Store(destination + pb, b);
        else
            Store(destination + pb - 15, Reverse8(b));
    }
}

// The unpacking of one layout with the tap mode given at run time.
template <class Writer>
bool UnpackSse2(const unsigned char* source, unsigned char* destination, std::uint32_t n, std::uint32_t pairs,
                const PackedRules& rules, unsigned mode)
{
    WithDualTapMode(mode, [&](auto m) {
        UnpackPackedPairs<Writer, decltype(m)::value>(source, destination, n, pairs, rules);
    });
    return true;
}

bool RecombineSse2(const unsigned char* source, unsigned char* destination, std::uint32_t n, std::uint32_t pairs,
                   unsigned mode)
{
    WithDualTapMode(mode, [&](auto m) {
        if constexpr (decltype(m)::value != 0)
            RecombinePairs<decltype(m)::value>(source, destination, n, pairs);
    });
    return mode != 0;
}

}  // namespace

bool UnpackToGray16Sse2(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                        std::uint32_t pairs, std::ptrdiff_t, std::ptrdiff_t, const PackedRules& rules, unsigned mode)
{
    return UnpackSse2<PackedToGray16>(source, destination, n, pairs, rules, mode);
}
bool UnpackToGray8Sse2(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                       std::uint32_t pairs, std::ptrdiff_t, std::ptrdiff_t, const PackedRules& rules, unsigned mode)
{
    return UnpackSse2<PackedToGray8>(source, destination, n, pairs, rules, mode);
}
bool UnpackToRGB16Sse2(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                       std::uint32_t pairs, std::ptrdiff_t, std::ptrdiff_t, const PackedRules& rules, unsigned mode)
{
    return UnpackSse2<PackedToRGB16>(source, destination, n, pairs, rules, mode);
}
bool UnpackToRGB32Sse2(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                       std::uint32_t pairs, std::ptrdiff_t, std::ptrdiff_t, const PackedRules& rules, unsigned mode)
{
    return UnpackSse2<PackedToRGB32>(source, destination, n, pairs, rules, mode);
}

const PackedPaths kPackedPathsSSE2 = {"SSE2", UnpackToGray16Sse2, UnpackToGray8Sse2, UnpackToRGB16Sse2,
                                      UnpackToRGB32Sse2};
const DualTapPaths kDualTapPathsSSE2 = {"SSE2", RecombineSse2};

}  // namespace zo

#endif
