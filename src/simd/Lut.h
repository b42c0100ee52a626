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
#include "simd/LutForm.h"

namespace zo {
namespace simd {

struct LutTables8 {
    const std::uint8_t* byte0;
    const std::uint8_t* byte1;
    const std::uint8_t* byte2;
};

// The passes of one instruction set: lookups, and the arithmetic passes of
// tables that have a form (LutForm.h; null where the set has none).
struct LutPaths {
    const char* name;
    bool vector;  // the lookups are a vector pass (false: the scalar one)
    void (*bytes3)(unsigned char* line, std::uint32_t count, const LutTables8& tables);
    void (*bytes4)(unsigned char* line, std::uint32_t count, const LutTables8& tables);
    void (*form3)(unsigned char* line, std::uint32_t count, const LutFormPlan8& plan);
    void (*form4)(unsigned char* line, std::uint32_t count, const LutFormPlan8& plan);
    // RGB48: `count` pixels of three little-endian words through a 16-bit plan.
    void (*words3)(unsigned char* line, std::uint32_t count, const LutFormPlan16& plan);
    // Whether the form gives the table's entry at each of the 65536 indices.
    bool (*verify16)(const LutChannelForm& form, bool general, bool wide, const std::uint16_t* table);
    // The same for the exact form; null where the set has no exact form
    // (its passes are never given exact plans).
    bool (*verifyExact16)(const LutChannelForm& form, const std::uint16_t* table);
    // The same for the corrected form.
    bool (*verifyCorrected16)(const LutChannelForm& form, const std::uint16_t* table);
};

// The passes for the level in force.
const LutPaths& ActiveLutPaths();

inline bool VectorLutActive() { return ActiveLutPaths().vector; }

// The passes of each kind (for tests; null where this build or the host has
// none: the AVX-512 passes need the AVX-512 level and VBMI).
const LutPaths& ScalarLutPaths();
const LutPaths* Sse2LutPaths();
const LutPaths* Avx2LutPaths();
const LutPaths* Avx512LutPaths();

// The scalar lookups (every kind's lookups where it has no vector ones).
void LutBytes3Scalar(unsigned char* line, std::uint32_t count, const LutTables8& tables);
void LutBytes4Scalar(unsigned char* line, std::uint32_t count, const LutTables8& tables);

// The 8-bit tables of a filter for a layout with red at byte `redIndex`
// (0 or 2) and green at byte 1.
inline LutTables8 LutTablesInByteOrder(const std::uint8_t* red, const std::uint8_t* green, const std::uint8_t* blue,
                                       unsigned redIndex)
{
    return redIndex == 0 ? LutTables8{red, green, blue} : LutTables8{blue, green, red};
}

// A pass over lines of 3- or 4-byte pixels (pixelBytes) through 8-bit
// tables, prepared for one line: the arithmetic pass where the level has one
// and the tables have a form, else the level's lookups. Apply before
// preparing another pass on the same thread (the plan lives in its cache).
class LutPass8 {
public:
    LutPass8(const LutTables8& tables, unsigned pixelBytes)
        : mPaths(ActiveLutPaths()),
          mTables(tables),
          mPixelBytes(pixelBytes),
          mPlan(mPaths.form3 && mPaths.form4 ? FormPlan8(tables, pixelBytes) : nullptr)
    {
    }
    // A vector pass: worth an identity line followed by the pass where the
    // kernel's own lookups would run otherwise.
    bool Vector() const { return mPlan || mPaths.vector; }
    void Apply(unsigned char* line, std::uint32_t count) const
    {
        if (mPlan)
            (mPixelBytes == 4 ? mPaths.form4 : mPaths.form3)(line, count, *mPlan);
        else
            (mPixelBytes == 4 ? mPaths.bytes4 : mPaths.bytes3)(line, count, mTables);
    }

private:
    const LutPaths& mPaths;
    LutTables8 mTables;
    unsigned mPixelBytes;
    const LutFormPlan8* mPlan;
};

// `count` 3- or 4-byte pixels (pixelBytes) through the 8-bit tables.
inline void ApplyLut8(unsigned char* line, std::uint32_t count, unsigned pixelBytes, const LutTables8& tables)
{
    LutPass8(tables, pixelBytes).Apply(line, count);
}

// Whether lines through these tables have a vector pass at this level.
inline bool VectorLutFor(const LutTables8& tables, unsigned pixelBytes)
{
    return LutPass8(tables, pixelBytes).Vector();
}

// `count` RGB48 pixels through a 16-bit plan, when this level has the pass
// (false: nothing done).
inline bool ApplyLut16(unsigned char* line, std::uint32_t count, const LutFormPlan16& plan)
{
    const LutPaths& paths = ActiveLutPaths();
    if (!paths.words3)
        return false;
    paths.words3(line, count, plan);
    return true;
}

}  // namespace simd
}  // namespace zo

#endif
