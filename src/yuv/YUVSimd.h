// Vector paths of the YUV kernels for the identity filter, per instruction
// set. Each converts whole groups of pixels from the start of a line and
// returns how many pairs (4:2:2) or pixels (4:4:4) it converted; 0 when it
// does not handle the arguments. The scalar kernels of YUVKernels.h finish
// every line and are the reference these paths are tested against.
//
// The AVX2 and AVX-512 4:2:2 paths into 32-bit layouts (pairs8, the
// AVX-512 pairs8Lut and the AVX2 pairs8Scaled) convert every pair of the
// line, the last ones through a buffer (yuv/YUVLineEnd.h). `stream` (the 8-bit 4:2:2 entries): the line may
// write its destination with streaming stores (core/StreamStores.h says
// when). Those paths then stream every whole 64-byte line from the first
// one they can fill whole (core/StreamGroups.h); every other path ignores
// it. The bytes written are the same either way.
#ifndef ZO_YUV_SIMD_H
#define ZO_YUV_SIMD_H

#include <cstdint>

namespace zo {

namespace simd {
struct LutFormPlan8;
}

// One instruction set's entry points (never null).
struct YUVVectorPaths {
    const char* name;
    std::uint32_t (*pairs8)(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                            std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex, bool stream);
    std::uint32_t (*pairs10)(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, std::uint32_t shift,
                             std::uint32_t dstBytes, std::uint32_t redIndex);
    std::uint32_t (*pixels444)(const unsigned char* src, unsigned char* dst, std::uint32_t count,
                               std::uint32_t pixelBytes, std::uint32_t yOffset, std::uint32_t uOffset,
                               std::uint32_t vOffset, std::uint32_t dstBytes, std::uint32_t redIndex);
    // Filtered 8-bit 4:2:2 through tables that have arithmetic forms
    // (`plan`, simd/LutForm.h, in byte order of the layout), evaluated on
    // the transform's 16-bit results before the pack: as pairs8 with the
    // filter applied. pairs8Scaled takes plans whose three tables all have
    // scaled forms (each gain from 1.00 to 1.99 has one), into 16-, 24- and
    // 32-bit layouts (RGB16: a plan in red, green, blue order);
    // pairs8Formed any plan, into 32-bit layouts. Null where the set has no
    // such path (filtered lines then take the identity path and the table
    // pass, or the pair loop's lookups for RGB16). Into 32-bit layouts the
    // AVX-512 VBMI lookups below come first.
    std::uint32_t (*pairs8Scaled)(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                  std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex,
                                  const simd::LutFormPlan8& plan, bool stream);
    std::uint32_t (*pairs8Formed)(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                  std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex,
                                  const simd::LutFormPlan8& plan, bool stream);
    // Filtered 8-bit 4:2:2 through any three 256-entry tables (tables[j]
    // for destination byte j, the layout's byte order), looked up before the
    // store: as pairs8 with the filter applied. `lookMiddle` false: the
    // table of byte 1 (green) is the identity and is not looked up. Null
    // where the set has no byte lookups of its own (AVX-512 VBMI has them).
    std::uint32_t (*pairs8Lut)(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                               std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex,
                               const std::uint8_t* const* tables, bool lookMiddle, bool stream);
    // As pairs8Scaled from 10-bit samples (pairs10's arguments).
    std::uint32_t (*pairs10Scaled)(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                   std::uint32_t shift, std::uint32_t dstBytes, std::uint32_t redIndex,
                                   const simd::LutFormPlan8& plan);
};

// Every path this build and this CPU can run, best last (for tests).
// `count` receives the number of entries.
const YUVVectorPaths* const* YUVAvailableVectorPaths(std::uint32_t& count);

// The tables of each instruction set (absent from builds for other
// processors). The AVX-512 table (YUVAvx512.cpp) has its own path for 8-bit
// 4:2:2 to 32-bit pixels (identity and filtered) and uses the AVX2 paths for
// the rest.
extern const YUVVectorPaths kYUVPathsSSE2;    // YUVSse2.cpp
extern const YUVVectorPaths kYUVPathsAVX2;    // YUVAvx2.cpp
extern const YUVVectorPaths kYUVPathsAVX512;  // YUVAvx512.cpp

// The paths of the active level (simd/Cpu.h): the scalar table (every entry
// returns 0) at the scalar level, SSE2 at SSE2 and SSSE3, AVX2 at AVX2, and
// AVX-512 at AVX-512 where the CPU has VBMI (AVX2 otherwise).
const YUVVectorPaths& YUVActivePaths();

}  // namespace zo

#endif
