// The packed-unpacking and dual-tap families' vector paths for one
// instruction set. A path places whole chunks of pairs [0, pairs) of a line
// of n pixels (`pairs` from DualTapVectorPairs: chunks of 8 groups reading 2
// more for unpacking, chunks of 16 pairs for dual-tap) with exactly the bytes
// of the scalar kernels, which finish every line and remain the reference.
// It returns false, placing nothing, where the level has no path for the
// layout.
//
// Declarations only: the per-instruction-set files include this header and
// must share no inline function with the rest of the library.
#ifndef ZO_PACKED_PATHS_H
#define ZO_PACKED_PATHS_H

#include <cstddef>
#include <cstdint>

namespace zo {

struct PackedRules;

// Unpacking into one destination layout, tap mode `mode` (0..4); firstA and
// firstB are the positions of pair 0's samples (DualTapRule<mode>).
using PackedUnpackPath = bool (*)(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                                  std::uint32_t pairs, std::ptrdiff_t firstA, std::ptrdiff_t firstB,
                                  const PackedRules& rules, unsigned mode);

struct PackedPaths {
    const char* name;
    PackedUnpackPath toGray16;
    PackedUnpackPath toGray8;
    PackedUnpackPath toRGB16;
    PackedUnpackPath toRGB32;  // RGB32 and BGR32 (RGB24 has no vector path)
};

// 8-bit dual-tap recombination, tap modes 1..4 (mode 0 is a copy).
struct DualTapPaths {
    const char* name;
    bool (*recombine)(const unsigned char* source, unsigned char* destination, std::uint32_t n, std::uint32_t pairs,
                      unsigned mode);
};

// PackedSse2.cpp: every layout and dual-tap; PackedAvx2.cpp: its own path
// for the 16-bit layout, the SSE2 paths for the rest.
bool UnpackToGray16Sse2(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                        std::uint32_t pairs, std::ptrdiff_t firstA, std::ptrdiff_t firstB, const PackedRules& rules,
                        unsigned mode);
bool UnpackToGray8Sse2(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                       std::uint32_t pairs, std::ptrdiff_t firstA, std::ptrdiff_t firstB, const PackedRules& rules,
                       unsigned mode);
bool UnpackToRGB16Sse2(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                       std::uint32_t pairs, std::ptrdiff_t firstA, std::ptrdiff_t firstB, const PackedRules& rules,
                       unsigned mode);
bool UnpackToRGB32Sse2(const unsigned char* source, unsigned char* destination, std::uint32_t n,
                       std::uint32_t pairs, std::ptrdiff_t firstA, std::ptrdiff_t firstB, const PackedRules& rules,
                       unsigned mode);
extern const PackedPaths kPackedPathsSSE2;
extern const PackedPaths kPackedPathsAVX2;
extern const DualTapPaths kDualTapPathsSSE2;

// The paths of the active level (simd/Cpu.h): scalar tables (every entry
// returns false) at the scalar level; SSE2 at SSE2 and SSSE3; AVX2 from
// AVX2 on (dual-tap: SSE2 from SSE2 on).
const PackedPaths& PackedActivePaths();
const DualTapPaths& DualTapActivePaths();

}  // namespace zo

#endif
