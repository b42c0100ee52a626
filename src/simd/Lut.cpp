// Table passes: the scalar lookups (every level below AVX-512 with VBMI)
// and the choice of passes per CPU level.
#include "simd/Lut.h"

#include <cstring>

namespace zo {
namespace simd {
namespace {

// Little-endian 32-bit words, whatever the host's order.
inline std::uint32_t Load32(const unsigned char* p)
{
    return std::uint32_t(p[0]) | (std::uint32_t(p[1]) << 8) | (std::uint32_t(p[2]) << 16) |
           (std::uint32_t(p[3]) << 24);
}

inline void Store32(unsigned char* p, std::uint32_t v)
{
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    std::memcpy(p, &v, 4);
#else
    p[0] = static_cast<unsigned char>(v);
    p[1] = static_cast<unsigned char>(v >> 8);
    p[2] = static_cast<unsigned char>(v >> 16);
    p[3] = static_cast<unsigned char>(v >> 24);
#endif
}

}  // namespace

bool IsIdentityTable8(const std::uint8_t* table)
{
    struct Ramp {
        std::uint8_t bytes[256];
        Ramp()
        {
            for (unsigned i = 0; i < 256; ++i)
                bytes[i] = static_cast<std::uint8_t>(i);
        }
    };
    static const Ramp kRamp;
    return std::memcmp(table, kRamp.bytes, 256) == 0;
}

// A pixel is read and written as one word (one store instead of three).
void LutBytes4Scalar(unsigned char* line, std::uint32_t count, const LutTables8& tables)
{
    // Local copies: the stores could otherwise alias the pointers.
    const std::uint8_t* const t0 = tables.byte0;
    const std::uint8_t* const t1 = tables.byte1;
    const std::uint8_t* const t2 = tables.byte2;
    for (std::uint32_t i = 0; i < count; ++i, line += 4) {
        const std::uint32_t v = Load32(line);
        Store32(line, t0[v & 0xFF] | (std::uint32_t(t1[(v >> 8) & 0xFF]) << 8) |
                          (std::uint32_t(t2[(v >> 16) & 0xFF]) << 16) | (v & 0xFF000000u));
    }
}

// Four pixels are three words: b0 b1 b2 b0 | b1 b2 b0 b1 | b2 b0 b1 b2.
void LutBytes3Scalar(unsigned char* line, std::uint32_t count, const LutTables8& tables)
{
    const std::uint8_t* const t0 = tables.byte0;
    const std::uint8_t* const t1 = tables.byte1;
    const std::uint8_t* const t2 = tables.byte2;
    auto at = [](std::uint32_t v, unsigned byte) { return (v >> (8 * byte)) & 0xFF; };
    std::uint32_t i = 0;
    for (; i + 4 <= count; i += 4, line += 12) {
        const std::uint32_t a = Load32(line), b = Load32(line + 4), c = Load32(line + 8);
        Store32(line, t0[at(a, 0)] | (std::uint32_t(t1[at(a, 1)]) << 8) | (std::uint32_t(t2[at(a, 2)]) << 16) |
                          (std::uint32_t(t0[at(a, 3)]) << 24));
        Store32(line + 4, t1[at(b, 0)] | (std::uint32_t(t2[at(b, 1)]) << 8) |
                              (std::uint32_t(t0[at(b, 2)]) << 16) | (std::uint32_t(t1[at(b, 3)]) << 24));
        Store32(line + 8, t2[at(c, 0)] | (std::uint32_t(t0[at(c, 1)]) << 8) |
                              (std::uint32_t(t1[at(c, 2)]) << 16) | (std::uint32_t(t2[at(c, 3)]) << 24));
    }
    for (; i < count; ++i, line += 3) {
        const std::uint8_t x = t0[line[0]], y = t1[line[1]], z = t2[line[2]];
        line[0] = x;
        line[1] = y;
        line[2] = z;
    }
}

namespace {

// No arithmetic pass: in scalar code it is no faster than the lookups.
constexpr LutPaths kScalar = {"scalar", false, LutBytes3Scalar, LutBytes4Scalar, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr, false};

// AVX-512 with VBMI; AVX2 otherwise (also on AVX-512 without VBMI); SSE2
// at the SSE2 and SSSE3 levels.
const LutPaths* Choose(CpuLevel level)
{
    const LutPaths* p = nullptr;
    if (level >= CpuLevel::kAVX512)
        p = Avx512LutPaths();
    if (!p && level >= CpuLevel::kAVX2)
        p = Avx2LutPaths();
    if (!p && level >= CpuLevel::kSSE2)
        p = Sse2LutPaths();
    return p ? p : &kScalar;
}

const PathChoice<LutPaths>& Choice()
{
    static const PathChoice<LutPaths> choice("lut", Choose);
    return choice;
}

}  // namespace

const LutPaths& ActiveLutPaths() { return Choice().Get(); }

const LutPaths& ScalarLutPaths() { return kScalar; }

#if !ZO_SIMD_X86
const LutPaths* Sse2LutPaths() { return nullptr; }
const LutPaths* Avx2LutPaths() { return nullptr; }
const LutPaths* Avx512LutPaths() { return nullptr; }
#endif

}  // namespace simd
}  // namespace zo
