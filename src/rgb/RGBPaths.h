// The RGB family's vector paths for one instruction set: byte shuffles for
// the identity filter with one-byte channels. Each converts whole groups of
// pixels from the start of the line and returns how many pixels it
// converted (0: none, the scalar kernel does the whole line); none reads or
// writes a byte the scalar kernel would not touch for the same `n`.
//
// Declarations only: the per-instruction-set files include this header and
// must share no inline function with the rest of the library.
#ifndef ZO_RGB_PATHS_H
#define ZO_RGB_PATHS_H

#include <cstdint>

namespace zo {
namespace simd {

struct LutFormPlan8;
struct LutRgb16Forms;

struct RGBPaths {
    const char* name;
    // r g b -> r g b 0 (or b g r 0 when blueFirst).
    std::uint32_t (*threeToFour)(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst);
    // r g b x -> r g b (or b g r).
    std::uint32_t (*fourToThree)(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst);
    // r g b x -> r g b 0 (or b g r 0).
    std::uint32_t (*fourToFour)(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst);
    // r g b (group 3) or r g b x (group 4) -> RGB16 words.
    std::uint32_t (*bytesToRGB16)(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group);
    // r g b -> three planes; the planes must not overlap within the n pixels.
    std::uint32_t (*threeToPlanes)(const unsigned char* s, unsigned char* red, unsigned char* green,
                                   unsigned char* blue, std::uint32_t n);
    // r g b -> b g r.
    std::uint32_t (*swapThree)(const unsigned char* s, unsigned char* d, std::uint32_t n);
    // r g b x -> b g r x.
    std::uint32_t (*swapFour)(const unsigned char* s, unsigned char* d, std::uint32_t n);
    // threeToFour and bytesToRGB16 writing with streaming stores where the
    // destination allows (core/StreamGroups.h); a level without such a path
    // has the ordinary one here.
    std::uint32_t (*threeToFourStream)(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst);
    std::uint32_t (*bytesToRGB16Stream)(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group);
    // r g b -> r g b 0 (or b g r 0), destination byte j through tables[j]
    // (null: the identity), streaming when `stream`; null where the level
    // has no such path.
    std::uint32_t (*threeToFourTables)(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                       const unsigned char* const* tables, bool stream);
    // The same through the arithmetic forms of an 8-bit plan made for
    // 4-byte pixels in the destination's byte order (simd/LutForm.h); null
    // where the level has no such path.
    std::uint32_t (*threeToFourFormed)(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                       const LutFormPlan8& plan, bool stream);
    // r g b (group 3) or r g b x (group 4) -> RGB16 words, red, green and
    // blue through tables[0..2] (null: the identity) before packing,
    // streaming when `stream`; null where the level has no such path.
    std::uint32_t (*bytesToRGB16Tables)(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                        const unsigned char* const* tables, bool stream);
    // The same through the forms of an 8-bit plan made for 4-byte pixels in
    // red, green, blue order (the caller's lookups finish the line); null
    // where the level has no such path.
    std::uint32_t (*bytesToRGB16Formed)(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                        const LutFormPlan8& plan, bool stream);
    // The same through the unit forms that match the tables in the bits
    // RGB16 keeps (simd/LutForm.h); null where the level has no such path.
    std::uint32_t (*bytesToRGB16Unit)(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                      const LutRgb16Forms& forms, bool stream);
};

// RGBSsse3.cpp: four (RGB16, planes: eight, sixteen) pixels a step, and
// three- to four-byte pixels with streaming stores too; RGBAvx2.cpp: its own
// RGB16 and three- to four-byte paths (sixteen and eight pixels a step, then
// the SSSE3 one) and the three- to four-byte path through table forms, the
// SSSE3 paths for the rest; RGBAvx512.cpp: its own RGB16 paths (thirty-two
// pixels a step, then the AVX2 one; through tables, the caller's scalar
// kernel after it), the AVX2 three- to four-byte paths, the
// SSSE3 paths for the rest.
std::uint32_t ThreeToFourSsse3(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst);
std::uint32_t ThreeToFourStreamSsse3(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst);
std::uint32_t FourToThreeSsse3(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst);
std::uint32_t FourToFourSsse3(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst);
std::uint32_t BytesToRGB16Ssse3(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group);
std::uint32_t ThreeToPlanesSsse3(const unsigned char* s, unsigned char* red, unsigned char* green,
                                 unsigned char* blue, std::uint32_t n);
std::uint32_t SwapThreeSsse3(const unsigned char* s, unsigned char* d, std::uint32_t n);
std::uint32_t SwapFourSsse3(const unsigned char* s, unsigned char* d, std::uint32_t n);
std::uint32_t ThreeToFourAvx2(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst);
std::uint32_t ThreeToFourStreamAvx2(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst);
extern const RGBPaths kRGBPathsSSSE3;
extern const RGBPaths kRGBPathsAVX2;
extern const RGBPaths kRGBPathsAVX512;

// The paths of the active level (simd/Cpu.h): the scalar table (every entry
// returns 0) below SSSE3, SSSE3 at SSSE3, AVX2 at AVX2, AVX-512 at AVX-512
// where the CPU has VBMI (AVX2 otherwise).
const RGBPaths& RGBActivePaths();

}  // namespace simd
}  // namespace zo

#endif
