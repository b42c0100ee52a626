// Table passes: a filter's per-channel lookup tables applied in place to a
// line that a converter has already written through the identity path.
//
// A filtered conversion whose filter is applied to the final channel values
// just before they are stored equals the identity conversion followed by a
// lookup of every stored channel in its table, as long as the identity path
// stores exactly the value the filtered path indexes with. The converters
// that rely on this write the line with their vector identity path and call
// one of these passes while the line is still in the first-level cache.
//
// Every byte at position p of a pixel (p = 0, 1, 2) is replaced by
// table[p][byte]; the fourth byte of a 4-byte pixel is left as it is. The
// tables are given in byte order of the layout (blue first for BGR). `line`
// holds `count` whole pixels; nothing outside them is read or written. The
// tables must not overlap the line. The passes are chosen per CPU level
// through the CPU module (family "lut"): AVX-512 with VBMI byte permutes,
// scalar below. Only the vector pass beats lookups inside a kernel that has
// no vector path of its own to gain: converters whose filtered kernels are
// already fast ask VectorLutActive() first.
//
// Left out: AVX2 dword gathers (measured slower than plain lookups for
// 4-byte pixels); 16-entry byte shuffles (sixteen shuffles and selects per
// table and pixel position, not built); 16-bit tables as a pass, scalar or
// through gathers (measured no faster than the lookups inside the RGB48
// kernel).
#ifndef ZO_SIMD_LUT_H
#define ZO_SIMD_LUT_H

#include <cstdint>

#include "simd/Cpu.h"

namespace zo {
namespace simd {

struct LutTables8 {
    const std::uint8_t* byte0;
    const std::uint8_t* byte1;
    const std::uint8_t* byte2;
};

// The passes of one instruction set.
struct LutPaths {
    const char* name;
    bool vector;  // a vector pass (false: the scalar one)
    void (*bytes3)(unsigned char* line, std::uint32_t count, const LutTables8& tables);
    void (*bytes4)(unsigned char* line, std::uint32_t count, const LutTables8& tables);
};

// The passes for the level in force.
const LutPaths& ActiveLutPaths();

inline bool VectorLutActive() { return ActiveLutPaths().vector; }

// The passes of each kind (for tests; null where this build or the host has
// none: the AVX-512 passes need the AVX-512 level and VBMI).
const LutPaths& ScalarLutPaths();
const LutPaths* Avx512LutPaths();

// The 8-bit tables of a filter for a layout with red at byte `redIndex`
// (0 or 2) and green at byte 1.
inline LutTables8 LutTablesInByteOrder(const std::uint8_t* red, const std::uint8_t* green, const std::uint8_t* blue,
                                       unsigned redIndex)
{
    return redIndex == 0 ? LutTables8{red, green, blue} : LutTables8{blue, green, red};
}

// `count` 3- or 4-byte pixels (pixelBytes) through the 8-bit tables.
inline void ApplyLut8(unsigned char* line, std::uint32_t count, unsigned pixelBytes, const LutTables8& tables)
{
    const LutPaths& paths = ActiveLutPaths();
    if (pixelBytes == 4)
        paths.bytes4(line, count, tables);
    else
        paths.bytes3(line, count, tables);
}

}  // namespace simd
}  // namespace zo

#endif
