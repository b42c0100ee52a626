// The Bayer family's vector paths for one instruction set: the inside of an
// interpolating inner line through an identity filter. Each converts pixels
// x = from, from + step, ... (from even) while a whole block fits before
// `to` (at most count - 1, so that loads at x + 1 stay inside the line) and
// returns where it stopped; the scalar pair loop of BayerKernels.h finishes
// the line and is the reference. A 24-bit or RGB48 block writes a few bytes
// past its last pixel, which the caller writes afterwards. `above`/`below`
// are byte offsets of the neighbouring lines.
//
// Declarations only: the per-instruction-set files include this header and
// must share no inline function with the rest of the library.
#ifndef ZO_BAYER_PATHS_H
#define ZO_BAYER_PATHS_H

#include <cstddef>
#include <cstdint>

namespace zo {

namespace simd {
struct LutFormPlan8;
struct LutFormPlan16;
}

// 8-bit samples into a 3- or 4-byte layout, red first or blue first.
using BayerBytesPath = std::uint32_t (*)(unsigned bytes, bool blueFirst, const unsigned char* line,
                                         std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                                         std::uint32_t from, std::uint32_t to, int phase);
// 16-bit samples into a 3- or 4-byte layout, each value (v >> shift) & 0xFF.
using BayerWordsPath = std::uint32_t (*)(unsigned bytes, bool blueFirst, const unsigned char* line,
                                         std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                                         std::uint32_t from, std::uint32_t to, int phase, unsigned shift);
// 16-bit samples into RGB48.
using BayerWords48Path = std::uint32_t (*)(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                                           unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase);

// 8-bit samples into a 3- or 4-byte layout through 8-bit tables that have an
// arithmetic form (`plan`, simd/LutForm.h, in byte order of the layout):
// each channel evaluated through its form before it is stored, the bytes the
// tables' lookups give.
using BayerBytesFormedPath = std::uint32_t (*)(unsigned bytes, bool blueFirst, const unsigned char* line,
                                               std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                                               std::uint32_t from, std::uint32_t to, int phase,
                                               const simd::LutFormPlan8& plan);

// 16-bit samples into a 3- or 4-byte layout through 8-bit tables that all
// have scaled forms (simd/LutScaled.h, `plan` in byte order of the layout):
// each value (v >> shift) & 0xFF evaluated through its channel's form
// before it is stored.
using BayerWordsScaledPath = std::uint32_t (*)(unsigned bytes, bool blueFirst, const unsigned char* line,
                                               std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                                               std::uint32_t from, std::uint32_t to, int phase, unsigned shift,
                                               const simd::LutFormPlan8& plan);

// 16-bit samples into RGB48 through 16-bit tables that have an arithmetic
// form (`plan`, red, green, blue): the same, evaluated before the store.
using BayerWords48FormedPath = std::uint32_t (*)(const unsigned char* line, std::ptrdiff_t above,
                                                 std::ptrdiff_t below, unsigned char* dst, std::uint32_t from,
                                                 std::uint32_t to, int phase, const simd::LutFormPlan16& plan);

// 8-bit samples into a 3- or 4-byte layout through any 8-bit tables (red,
// green, blue: 256 entries each), each channel's bytes looked up in its
// table before they are stored.
using BayerBytesLookupPath = std::uint32_t (*)(unsigned bytes, bool blueFirst, const unsigned char* line,
                                               std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                                               std::uint32_t from, std::uint32_t to, int phase,
                                               const std::uint8_t* red, const std::uint8_t* green,
                                               const std::uint8_t* blue);

struct BayerPaths {
    const char* name;
    BayerBytesPath bytes;
    BayerWordsPath words;
    BayerWords48Path words48;
    // Null: no such path (filtered lines take the identity line and the table pass).
    BayerBytesFormedPath bytesFormed;
    BayerWords48FormedPath words48Formed;
    // Null below AVX-512 VBMI; where set, filtered 8-bit lines take it
    // before bytesFormed (BayerTablePass.h).
    BayerBytesLookupPath bytesLookup;
    // As bytesFormed for plans whose tables all have scaled forms (simd/
    // LutScaled.h; each gain from 1.00 to 1.99 has one), taken before
    // bytesFormed where set (SSE2 has no bytesFormed); also into RGB16
    // (bytes 2, a plan in red, green, blue order), which bytesFormed does
    // not take.
    BayerBytesFormedPath bytesScaled;
    // Null: 16-bit samples into 8-bit layouts take the identity line and the
    // table pass (AVX-512 VBMI, whose pass looks the tables up).
    BayerWordsScaledPath wordsScaled;
};

// BayerSse2.cpp: every form, sixteen (RGB48: eight) pixels a step, and
// 8-bit samples through scaled table forms sixteen;
// BayerAvx2.cpp: 8-bit samples 32 pixels a step, then the SSE2 path, and the
// SSE2 paths for 16-bit samples; 8-bit samples through table forms 32 pixels
// a step and RGB48 through table forms sixteen (the only formed paths).
std::uint32_t BayerBytesSse2(unsigned bytes, bool blueFirst, const unsigned char* line, std::ptrdiff_t above,
                             std::ptrdiff_t below, unsigned char* dst, std::uint32_t from, std::uint32_t to,
                             int phase);
std::uint32_t BayerWordsSse2(unsigned bytes, bool blueFirst, const unsigned char* line, std::ptrdiff_t above,
                             std::ptrdiff_t below, unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase,
                             unsigned shift);
std::uint32_t BayerWordsScaledSse2(unsigned bytes, bool blueFirst, const unsigned char* line, std::ptrdiff_t above,
                                   std::ptrdiff_t below, unsigned char* dst, std::uint32_t from, std::uint32_t to,
                                   int phase, unsigned shift, const simd::LutFormPlan8& plan);
std::uint32_t BayerWords48Sse2(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                               unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase);
// BayerAvx512.cpp: 8-bit samples through tables, 32 pixels a step (the
// lookup path of the AVX-512 table, which keeps AVX2's other paths).
std::uint32_t BayerBytesLookupAvx512(unsigned bytes, bool blueFirst, const unsigned char* line, std::ptrdiff_t above,
                                     std::ptrdiff_t below, unsigned char* dst, std::uint32_t from, std::uint32_t to,
                                     int phase, const std::uint8_t* red, const std::uint8_t* green,
                                     const std::uint8_t* blue);
// BayerWords48Avx512.cpp: RGB48, the identity line and through table forms,
// 32 pixels a step, then the AVX2 paths.
std::uint32_t BayerWords48Avx512(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                                 unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase);
std::uint32_t BayerWords48FormedAvx512(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below,
                                       unsigned char* dst, std::uint32_t from, std::uint32_t to, int phase,
                                       const simd::LutFormPlan16& plan);
extern const BayerPaths kBayerPathsSSE2;
extern const BayerPaths kBayerPathsAVX2;

// The paths of the active level (simd/Cpu.h): the scalar table (every entry
// returns `from`) at the scalar level, SSE2 at SSE2 and SSSE3, AVX2 from
// AVX2 on, and at AVX-512 on CPUs with VBMI the AVX2 paths plus the lookup
// path and the 32-pixel RGB48 paths.
const BayerPaths& BayerActivePaths();

}  // namespace zo

#endif
