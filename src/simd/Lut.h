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
// tables must not overlap the line. RGB48 lines take the same pass over
// their 16-bit words through 16-bit tables.
//
// Two kinds of pass, chosen per CPU level through the CPU module (family
// "lut"):
//   - lookups: AVX-512 with VBMI byte permutes (any 8-bit table); scalar
//     elsewhere;
//   - arithmetic (SSE2, AVX2, AVX-512 BW; simd/LutForm.h): tables that equal
//     a formula of a few 16-bit lane operations at every index the pass can
//     meet -- the tables SetMultipliers writes, with or without offsets --
//     are evaluated instead of looked up, bit for bit, any other table
//     (entries written one by one, or a multiplier table with one entry
//     edited) keeps the lookups. 8-bit tables are checked once per content
//     (a per-thread cache compared on every line); 16-bit tables once per
//     area conversion (the Bayer RGB48 converters open the scope). On
//     AVX-512 with VBMI the 8-bit tables keep the VBMI lookups (as fast).
// A vector pass beats lookups inside a kernel that has no vector path of
// its own to gain; converters whose filtered kernels are already fast ask
// LutPass8::Vector() for their tables first.
//
// Measured (bench/wb_bench.cpp, cold buffers; one run per level, before ->
// after, white balance / identity twin at 1080p / 4096 x 3000). Gains 1.8,
// 1.0, 1.4 (1.4 needs the corrected form):
//   host (AVX-512 VBMI): 12-bit Bayer -> RGB48 2.76 / 2.56 -> 1.46 / 1.35;
//     the 8-bit rows keep the VBMI lookups (Bayer 8 -> RGB24 1.33 / 1.18).
//   ZOIMG_CPU=avx2: Bayer 8 -> RGB24 3.54 / 2.98 -> 2.07 / 1.76, -> BGRA
//     3.87 / 3.16 -> 1.96 / 1.77, YUYV -> BGRA 5.03 / 3.71 -> 2.75 / 2.30,
//     RGB48 2.65 / 2.55 -> 1.43 / 1.45; RGB24 -> BGRA 2.80 / 2.28 -> 2.99 /
//     2.26 (no gain: on 4-byte pixels the corrected form costs what the
//     lookups cost; the difference is the machine's noise).
//   ZOIMG_CPU=sse2: RGB48 2.61 / 2.46 -> 2.24 / 2.11; bytes keep the
//     lookups (the corrected form does not pay there).
// Gains 1.8, 1.0, 1.6 (the Gain16 rows: plain floors, the fast form, as
// most computed gains give): AVX2 Bayer 8 -> RGB24 1.64 / 1.36, RGB48 1.38 /
// 1.20; SSE2 1.52 / 1.48 and 1.70 / 1.44; host RGB48 1.32 / 1.19.
// (Bytes whose tables all end at 255 drop the limit and let the pack
// saturate: about a fifth off the AVX2 8-bit rows.)
// A pass over a line already written costs about half the fastest identity
// kernels' time whatever it computes. So the Bayer kernels no longer take it
// where they can avoid it: interpolated lines of 8-bit samples into 24/32-bit
// layouts and of 16-bit samples into RGB48, at the AVX2 level and up, whose
// tables have a form evaluate the form on the channel lanes just before they
// pack and store them (bayer/BayerAvx2.cpp, through LutArith.h's EvalFixed
// and EvalWord; green tables that are the identity are skipped). Tables
// that all have scaled forms (simd/LutScaled.h, gains from 1 to 2) are
// evaluated that way at the SSE2 and SSSE3 levels too, for Bayer and YUV
// 4:2:2 lines (SSE2 Bayer 8 -> RGB24 2.46 / 2.42 -> 1.20 / 1.25, YUYV ->
// BGRA 3.26 / 3.31 -> 1.29 / 1.35; the "bytes keep the lookups" above is
// the older state). Measured
// (one run per level, load about 6.5 on the two cores, before -> after,
// 1080p / 4096 x 3000, gains 1.8, 1.0, 1.4):
//   host (AVX-512 VBMI, before its lookups below): Bayer 8 -> RGB24
//     1.32 / 1.34 -> 1.24 / 1.26, -> BGRA 1.31 / 1.39 -> 1.16 / 1.23,
//     12-bit Bayer -> RGB48 1.53 / 1.25 -> 1.33 / 1.18;
//   ZOIMG_CPU=avx2: Bayer 8 -> RGB24 1.70 / 1.63 -> 1.34 / 1.31, -> BGRA
//     1.77 / 1.63 -> 1.26 / 1.24, RGB48 1.49 / 1.33 -> 1.22 / 1.07;
//   Gain16 rows (1.8, 1.0, 1.6): host Bayer 8 -> RGB24 1.55 / 1.30 -> 1.12 /
//     1.19, RGB48 1.38 / 1.08 -> 1.06 / 0.97; avx2 1.34 / 1.36 -> 1.26 /
//     1.16 and 1.20 / 1.12 -> 0.95 / 0.97 (the formed RGB48 block, sixteen
//     pixels with shuffled stores, outran the SSE2 identity block; the
//     identity line now takes the same AVX2 block: id/memcpy 1.26 -> 0.99 at
//     1080p, 1.23 -> 1.14 at 4096 x 3000).
// The corrected form (gains such as 1.4) costs about twice the plain one
// inside the kernel; the RGB48 kernel keeps it to the channels that need it
// (the others take the fast form), drops the multiply and the offset where
// every channel has a = 1 and no offset (gains from 1 to 2), and leaves
// green alone in blocks below its table's identity range; the per-call
// check of the 16-bit forms stops at the filter's entry count (a profile
// put it under 1% of a call: 30-50 us cold at 1080p, now 5-12 us). Host,
// four alternating runs at load 2.0-2.4, 1080p / 4096 x 3000: wb/id
// 1.36-1.56 / 1.19-1.36 -> 1.21-1.28 / 1.02-1.30 (gains 1.8, 1.0, 1.4);
// Gain16 1.25-1.37 / 1.01-1.12 -> 1.15-1.31 / 0.96-1.26, its filtered time
// unchanged within the noise (warm buffers: 10% less extra time at 1080p,
// none at 4096 x 3000). YUYV into RGB32/BGR32 evaluates the forms at AVX2
// (yuv/YUVAvx2.cpp; wb/id about 2.4 -> 1.55-1.75), RGB 24 into RGB32/BGR32
// too (rgb/RGBAvx2.cpp; about 2.0-2.3 -> 1.34-1.44 at 1080p, 1.26-1.35 at
// 4096 x 3000).
// With AVX-512 VBMI the 8-bit kernels look any table up inside the kernel
// instead, two two-source byte permutes and a blend on bit 7 per table and
// register, which measured faster than the forms for every gain (host,
// cold buffers, wb/id at 1080p / 4096 x 3000, gains 1.8, 1.0, 1.4):
// Bayer 8-bit bilinear (bayer/BayerAvx512.cpp) 1.25-1.27 / 1.32 -> 1.04-1.06
// / 0.99-1.00 into RGB24 and 1.19-1.21 / 1.23-1.28 -> 0.94-0.95 / 0.92-1.13
// into BGRA; YUYV into RGB32/BGR32 (yuv/YUVAvx512.cpp) 1.27-1.29 /
// 1.25-1.28 -> 1.01-1.03 / 0.99-1.01; RGB 24 into RGB32/BGR32
// (rgb/RGBAvx512.cpp) 1.45-1.50 / 1.32-1.34 -> 1.24-1.25 / 0.96-1.06; RGB 24
// and RGB 32 into RGB16, looked up before packing, 4.8 / 5.2 -> 1.25-1.44 /
// 1.24-1.33 (below VBMI the pass runs over a cached copy of the source
// chunk before the identity packing: 2.8-3.0 / 3.3-3.6). The rest of the
// RGB filtered conversions take the pass after their identity line.
//
// Left out: AVX2 dword gathers (measured slower than plain lookups for
// 4-byte pixels); 16-entry byte shuffles (sixteen shuffles and selects per
// table and pixel position, not built); 16-bit lookups as a pass, scalar or
// through gathers (measured no faster than the lookups inside the RGB48
// kernel); the exact double form on bytes (no faster than the lookups).
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
    // Whether the form gives the table's entry at each of its first `count`
    // indices (rounded up to whole registers; at most 65536).
    bool (*verify16)(const LutChannelForm& form, bool general, bool wide, const std::uint16_t* table,
                     std::uint32_t count);
    // The same for the exact form; null where the set has no exact form
    // (its passes are never given exact plans).
    bool (*verifyExact16)(const LutChannelForm& form, const std::uint16_t* table, std::uint32_t count);
    // The same for the corrected form.
    bool (*verifyCorrected16)(const LutChannelForm& form, const std::uint16_t* table, std::uint32_t count);
    // Whether the corrected form on bytes beats lookups inside a kernel
    // (measured: from AVX2 on; with SSE2 it loses a little, and 8-bit
    // tables that need it keep the lookups there).
    bool correctedBytesPay;
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

// Whether an 8-bit table maps every byte to itself: the fused lookups skip
// such a table (white balance usually leaves green as it is).
bool IsIdentityTable8(const std::uint8_t* table);

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
        if (mPlan && mPlan->corrected && !mPaths.correctedBytesPay)
            mPlan = nullptr;
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
