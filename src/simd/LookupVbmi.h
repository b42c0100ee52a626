// 256-entry byte tables looked up with AVX-512 VBMI byte permutes, exact for
// any table: a table is four 64-byte registers, two two-source permutes
// (vpermi2b) look up its low and its high 128 entries (seven bits of the
// index each) for a whole register, and bit 7 of each index picks the half.
// The Bayer, YUYV and RGB kernels look their channel bytes up this way before
// they store, and the table pass runs it over written lines.
//
// Include only from files compiled for AVX-512 with VBMI (F, BW, VL,
// VBMI): everything here is local to the including file.
#ifndef ZO_SIMD_LOOKUP_VBMI_H
#define ZO_SIMD_LOOKUP_VBMI_H

#if defined(__AVX512BW__) && defined(__AVX512VBMI__)
#include <immintrin.h>

#include <cstdint>

namespace zo {
namespace simd {
namespace {

struct ByteTable256 {
    __m512i q[4];  // entries 0-63, 64-127, 128-191, 192-255

    ByteTable256() = default;
    explicit ByteTable256(const std::uint8_t* table)
    {
        for (unsigned h = 0; h < 4; ++h)
            q[h] = _mm512_loadu_si512(table + 64 * h);
    }
};

// The entries of the low and the high half at every byte of x; `upper`
// (bit 7 of each byte of x) picks between them.
inline __m512i LookUp(__m512i x, const ByteTable256& t, __mmask64 upper)
{
    const __m512i low = _mm512_permutex2var_epi8(t.q[0], x, t.q[1]);
    const __m512i high = _mm512_permutex2var_epi8(t.q[2], x, t.q[3]);
    return _mm512_mask_blend_epi8(upper, low, high);
}

inline __m512i LookUp(__m512i x, const ByteTable256& t) { return LookUp(x, t, _mm512_movepi8_mask(x)); }

// The entries at the bytes of x that `at` selects, the other bytes of x kept
// as they are; `upper` is bit 7 of each byte of x. Two masked two-source
// permutes and no blend: the first looks the low half up where `at` is set
// and bit 7 is clear, the second the high half where both are set (its
// index bytes there are still those of x). Cheaper than LookUp followed by a
// masked move when only some bytes of a register belong to the table.
inline __m512i LookUpAt(__m512i x, const ByteTable256& t, __mmask64 at, __mmask64 upper)
{
    const __m512i low = _mm512_mask2_permutex2var_epi8(t.q[0], x, _kandn_mask64(upper, at), t.q[1]);
    return _mm512_mask2_permutex2var_epi8(t.q[2], low, _kand_mask64(upper, at), t.q[3]);
}

// Thirty-two bytes (a 256-bit register) through the table.
inline __m256i LookUp(__m256i x, const ByteTable256& t)
{
    const __m512i index = _mm512_castsi256_si512(x);
    const __m512i low = _mm512_permutex2var_epi8(t.q[0], index, t.q[1]);
    const __m512i high = _mm512_permutex2var_epi8(t.q[2], index, t.q[3]);
    return _mm256_mask_blend_epi8(_mm256_movepi8_mask(x), _mm512_castsi512_si256(low), _mm512_castsi512_si256(high));
}

}  // namespace
}  // namespace simd
}  // namespace zo

#endif
#endif
