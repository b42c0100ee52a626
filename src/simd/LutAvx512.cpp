// Table passes with AVX-512 (F, BW, VL and VBMI; compiled for them alone).
//
// 8-bit tables: a 256-entry table is four 64-byte registers; two-source byte
// permutes (vpermi2b) look up its low and its high half, each in the lanes
// whose index has bit 7 clear or set and whose byte position in the pixel is
// the table's (fixed masks: every fourth byte, or the period-3 pattern that
// repeats every three registers).
// GCC 12 takes the undefined upper halves inside its widening and narrowing
// intrinsics for uninitialised values.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include "simd/Lut.h"

namespace zo {
namespace simd {
namespace {

struct Table256 {
    __m512i q0, q1, q2, q3;
};

inline Table256 LoadTable(const std::uint8_t* t)
{
    return {_mm512_loadu_si512(t), _mm512_loadu_si512(t + 64), _mm512_loadu_si512(t + 128),
            _mm512_loadu_si512(t + 192)};
}

// The bytes of `v` at the lanes of the three position masks through their
// tables. A two-source permute merging into its index register changes only
// the lanes of its mask and leaves the others holding their index, so six
// masked permutes (three tables, low and high half) chained on one register
// look every lane up once.
inline __m512i Lookup3(__m512i v, std::uint64_t m0, std::uint64_t m1, std::uint64_t m2, const Table256& t0,
                       const Table256& t1, const Table256& t2)
{
    const std::uint64_t upper = _mm512_movepi8_mask(v);
    __m512i r = _mm512_mask2_permutex2var_epi8(t0.q0, v, m0 & ~upper, t0.q1);
    r = _mm512_mask2_permutex2var_epi8(t0.q2, r, m0 & upper, t0.q3);
    r = _mm512_mask2_permutex2var_epi8(t1.q0, r, m1 & ~upper, t1.q1);
    r = _mm512_mask2_permutex2var_epi8(t1.q2, r, m1 & upper, t1.q3);
    r = _mm512_mask2_permutex2var_epi8(t2.q0, r, m2 & ~upper, t2.q1);
    return _mm512_mask2_permutex2var_epi8(t2.q2, r, m2 & upper, t2.q3);
}

// Lane masks of the bytes whose position in the pixel is p, for a register
// starting `phase` bytes into a pixel of `pixelBytes`.
constexpr std::uint64_t PositionMask(unsigned pixelBytes, unsigned phase, unsigned p)
{
    std::uint64_t m = 0;
    for (unsigned lane = 0; lane < 64; ++lane)
        if ((lane + phase) % pixelBytes == p)
            m |= std::uint64_t(1) << lane;
    return m;
}

inline __mmask64 FirstBytes(std::size_t n)
{
    return n >= 64 ? ~__mmask64(0) : (__mmask64(1) << n) - 1;
}

void Bytes4(unsigned char* line, std::uint32_t count, const LutTables8& tables)
{
    const Table256 t0 = LoadTable(tables.byte0), t1 = LoadTable(tables.byte1), t2 = LoadTable(tables.byte2);
    constexpr std::uint64_t m0 = PositionMask(4, 0, 0), m1 = PositionMask(4, 0, 1), m2 = PositionMask(4, 0, 2);
    const std::size_t bytes = static_cast<std::size_t>(count) * 4;
    std::size_t i = 0;
    for (; i + 64 <= bytes; i += 64) {
        const __m512i v = _mm512_loadu_si512(line + i);
        _mm512_storeu_si512(line + i, Lookup3(v, m0, m1, m2, t0, t1, t2));
    }
    if (i < bytes) {  // masked: nothing past the line is touched
        const __mmask64 valid = FirstBytes(bytes - i);
        const __m512i v = _mm512_maskz_loadu_epi8(valid, line + i);
        _mm512_mask_storeu_epi8(line + i, valid, Lookup3(v, m0, m1, m2, t0, t1, t2));
    }
}

void Bytes3(unsigned char* line, std::uint32_t count, const LutTables8& tables)
{
    const Table256 t0 = LoadTable(tables.byte0), t1 = LoadTable(tables.byte1), t2 = LoadTable(tables.byte2);
    // 64 = 1 (mod 3): register k of a group of three starts k bytes into a
    // pixel; a group is 64 pixels.
    auto run = [&](unsigned char* p, std::uint64_t a, std::uint64_t b, std::uint64_t c) {
        _mm512_storeu_si512(p, Lookup3(_mm512_loadu_si512(p), a, b, c, t0, t1, t2));
    };
    auto runPart = [&](unsigned char* p, __mmask64 valid, std::uint64_t a, std::uint64_t b, std::uint64_t c) {
        const __m512i v = _mm512_maskz_loadu_epi8(valid, p);
        _mm512_mask_storeu_epi8(p, valid, Lookup3(v, a, b, c, t0, t1, t2));
    };
    constexpr std::uint64_t m00 = PositionMask(3, 0, 0), m01 = PositionMask(3, 0, 1), m02 = PositionMask(3, 0, 2);
    constexpr std::uint64_t m10 = PositionMask(3, 1, 0), m11 = PositionMask(3, 1, 1), m12 = PositionMask(3, 1, 2);
    constexpr std::uint64_t m20 = PositionMask(3, 2, 0), m21 = PositionMask(3, 2, 1), m22 = PositionMask(3, 2, 2);
    const std::size_t bytes = static_cast<std::size_t>(count) * 3;
    std::size_t i = 0;
    for (; i + 192 <= bytes; i += 192) {
        run(line + i, m00, m01, m02);
        run(line + i + 64, m10, m11, m12);
        run(line + i + 128, m20, m21, m22);
    }
    if (i < bytes)
        runPart(line + i, FirstBytes(bytes - i), m00, m01, m02);
    if (i + 64 < bytes)
        runPart(line + i + 64, FirstBytes(bytes - i - 64), m10, m11, m12);
    if (i + 128 < bytes)
        runPart(line + i + 128, FirstBytes(bytes - i - 128), m20, m21, m22);
}

constexpr LutPaths kAvx512 = {"AVX-512 VBMI", true, Bytes3, Bytes4};

}  // namespace

const LutPaths* Avx512LutPaths()
{
    const CpuFeatures& f = HostCpuFeatures();
    return HostCpuLevel() >= CpuLevel::kAVX512 && f.avx512vbmi ? &kAvx512 : nullptr;
}

}  // namespace simd
}  // namespace zo
