// Vector paths of the YUV kernels for the identity filter, per instruction
// set. Each converts whole groups of pixels from the start of a line and
// returns how many pairs (4:2:2) or pixels (4:4:4) it converted; 0 when it
// does not handle the arguments. The scalar kernels of YUVKernels.h finish
// every line and are the reference these paths are tested against.
#ifndef ZO_YUV_SIMD_H
#define ZO_YUV_SIMD_H

#include <cstdint>

namespace zo {

// One instruction set's entry points (null where a form has no vector path).
struct YUVVectorPaths {
    const char* name;
    std::uint32_t (*pairs8)(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                            std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex);
    std::uint32_t (*pairs10)(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, std::uint32_t shift,
                             std::uint32_t dstBytes, std::uint32_t redIndex);
    std::uint32_t (*pixels444)(const unsigned char* src, unsigned char* dst, std::uint32_t count,
                               std::uint32_t pixelBytes, std::uint32_t yOffset, std::uint32_t uOffset,
                               std::uint32_t vOffset, std::uint32_t dstBytes, std::uint32_t redIndex);
};

// Every path this build and this CPU can run, best last (for tests).
// `count` receives the number of entries.
const YUVVectorPaths* const* YUVAvailableVectorPaths(std::uint32_t& count);

#if defined(__x86_64__) || defined(_M_X64)
#define ZO_YUV_HAVE_X86 1
extern const YUVVectorPaths kYUVPathsSSE2;
#if defined(ZO_YUV_HAVE_AVX2)
extern const YUVVectorPaths kYUVPathsAVX2;  // YUVSimdAVX2.cpp, built with -mavx2
#endif
#if defined(ZO_YUV_HAVE_AVX512)
// YUVSimdAVX512.cpp, built with -mavx512bw -mavx512vbmi (its own path for
// 8-bit 4:2:2 to 32-bit pixels, the AVX2 paths for the rest).
extern const YUVVectorPaths kYUVPathsAVX512;
#endif
#endif

}  // namespace zo

#endif
