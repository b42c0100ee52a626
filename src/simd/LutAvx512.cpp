// Table passes with AVX-512 (F, BW, VL and VBMI; compiled for them alone):
// VBMI lookups for 8-bit tables, the arithmetic passes (LutArith.h) on
// 512-bit registers for 16-bit ones.
//
// A 256-entry table is four 64-byte registers; two-source byte permutes
// (vpermi2b) look up its low and its high half for a whole register, bit 7
// of each index picks between them, and the lanes whose byte position in the
// pixel is the table's take the result (fixed masks: every fourth byte, or
// the period-3 pattern that repeats every three registers). The permutes of
// a register depend only on its bytes, not on each other: chained through
// merge masks instead, they ran 2.5 times slower. Identity tables are
// skipped and equal ones looked up once.
// GCC 12 warns about the deliberately undefined pass-through operand inside
// the AVX-512 intrinsics (_mm512_undefined_*) once they are inlined.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include <cstring>

#include "simd/LookupVbmi.h"
#include "simd/Lut.h"
#include "simd/LutArith.h"
#include "simd/LutV512.h"

namespace zo {
namespace simd {
namespace {

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

// PositionMask(pixelBytes, k, p) for 3- and 4-byte pixels, k, p < 3.
struct PositionMasks {
    std::uint64_t m[2][3][3];
};
constexpr PositionMasks MakePositionMasks()
{
    PositionMasks r{};
    for (unsigned b = 0; b < 2; ++b)
        for (unsigned k = 0; k < 3; ++k)
            for (unsigned p = 0; p < 3; ++p)
                r.m[b][k][p] = PositionMask(3 + b, k, p);
    return r;
}
constexpr PositionMasks kPositionMasks = MakePositionMasks();

inline __mmask64 FirstBytes(std::size_t n)
{
    return n >= 64 ? ~__mmask64(0) : (__mmask64(1) << n) - 1;
}


// The distinct tables a pass needs and the positions each serves: a table
// that is the identity is skipped (white balance usually leaves green as it
// is) and positions with equal tables share one lookup, two permutes each.
// masks[j][k]: lanes of table j in a register starting k bytes into a pixel.
struct LookupPlan {
    ByteTable256 tables[3];
    std::uint64_t masks[3][3];
    unsigned count = 0;
};

LookupPlan MakePlan(const LutTables8& t, unsigned pixelBytes)
{
    const std::uint8_t* byPosition[3] = {t.byte0, t.byte1, t.byte2};
    const std::uint8_t* distinct[3] = {};
    LookupPlan plan;
    for (unsigned p = 0; p < 3; ++p) {
        if (IsIdentityTable8(byPosition[p]))
            continue;
        unsigned j = 0;
        while (j < plan.count && std::memcmp(distinct[j], byPosition[p], 256) != 0)
            ++j;
        if (j == plan.count) {
            distinct[j] = byPosition[p];
            plan.tables[j] = ByteTable256(byPosition[p]);
            for (unsigned k = 0; k < 3; ++k)
                plan.masks[j][k] = 0;
            ++plan.count;
        }
        for (unsigned k = 0; k < 3; ++k)
            plan.masks[j][k] |= kPositionMasks.m[pixelBytes - 3][k][p];
    }
    return plan;
}

// The bytes of `v` through the plan's N tables for a register of phase k:
// per table, two two-source permutes look up its low and its high half
// (independent of each other and of the other tables), bit 7 of the index
// picks between them and the table's lanes take the result.
template <unsigned N>
inline __m512i Lookup(__m512i v, const LookupPlan& plan, unsigned k)
{
    const __mmask64 upper = _mm512_movepi8_mask(v);
    __m512i r = v;
    for (unsigned j = 0; j < N; ++j) {
        r = _mm512_mask_mov_epi8(r, plan.masks[j][k], LookUp(v, plan.tables[j], upper));
    }
    return r;
}

template <unsigned N>
void Register(unsigned char* p, const LookupPlan& plan, unsigned k)
{
    _mm512_storeu_si512(p, Lookup<N>(_mm512_loadu_si512(p), plan, k));
}

// The last bytes of a line: masked, nothing past them is touched.
template <unsigned N>
void PartRegister(unsigned char* p, std::size_t bytes, const LookupPlan& plan, unsigned k)
{
    const __mmask64 valid = FirstBytes(bytes);
    _mm512_mask_storeu_epi8(p, valid, Lookup<N>(_mm512_maskz_loadu_epi8(valid, p), plan, k));
}

// 4-byte pixels: every register starts on a pixel (phase 0).
template <unsigned N>
void Bytes4Plan(unsigned char* line, std::size_t bytes, const LookupPlan& plan)
{
    std::size_t i = 0;
    for (; i + 64 <= bytes; i += 64)
        Register<N>(line + i, plan, 0);
    if (i < bytes)
        PartRegister<N>(line + i, bytes - i, plan, 0);
}

// 3-byte pixels: 64 = 1 (mod 3), register k of a group of three starts k
// bytes into a pixel; a group is 64 pixels.
template <unsigned N>
void Bytes3Plan(unsigned char* line, std::size_t bytes, const LookupPlan& plan)
{
    std::size_t i = 0;
    for (; i + 192 <= bytes; i += 192) {
        Register<N>(line + i, plan, 0);
        Register<N>(line + i + 64, plan, 1);
        Register<N>(line + i + 128, plan, 2);
    }
    for (unsigned k = 0; k < 3 && i < bytes; ++k, i += 64)
        PartRegister<N>(line + i, bytes - i, plan, k);
}

template <template <unsigned> class Run>
void ByTableCount(const LookupPlan& plan, unsigned char* line, std::size_t bytes)
{
    switch (plan.count) {
    case 1: Run<1>::Go(line, bytes, plan); break;
    case 2: Run<2>::Go(line, bytes, plan); break;
    case 3: Run<3>::Go(line, bytes, plan); break;
    default: break;  // every table the identity
    }
}

template <unsigned N>
struct Run4 {
    static void Go(unsigned char* line, std::size_t bytes, const LookupPlan& plan) { Bytes4Plan<N>(line, bytes, plan); }
};
template <unsigned N>
struct Run3 {
    static void Go(unsigned char* line, std::size_t bytes, const LookupPlan& plan) { Bytes3Plan<N>(line, bytes, plan); }
};

void Bytes4(unsigned char* line, std::uint32_t count, const LutTables8& tables)
{
    ByTableCount<Run4>(MakePlan(tables, 4), line, std::size_t(count) * 4);
}

void Bytes3(unsigned char* line, std::uint32_t count, const LutTables8& tables)
{
    ByTableCount<Run3>(MakePlan(tables, 3), line, std::size_t(count) * 3);
}

// The arithmetic passes on 512-bit registers (BW).
using Arith = LutArith<V512>;
// Bytes: the VBMI lookups, as fast as the arithmetic pass (measured) and
// good for any table.
constexpr LutPaths kAvx512 = {"AVX-512 VBMI", true,           Bytes3,          Bytes4, nullptr, nullptr,
                              Arith::Words3,  Arith::Verify16, Arith::VerifyExact16, Arith::VerifyCorrected16, true};

}  // namespace

const LutPaths* Avx512LutPaths()
{
    const CpuFeatures& f = HostCpuFeatures();
    return HostCpuLevel() >= CpuLevel::kAVX512 && f.avx512vbmi ? &kAvx512 : nullptr;
}

}  // namespace simd
}  // namespace zo
