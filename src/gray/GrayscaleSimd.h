// Vector paths of the grayscale kernels, chosen once for this CPU. Each
// converts a leading part of the line and returns how many pixels it
// converted (0 when the CPU lacks the instructions); the scalar kernels of
// GrayscaleKernels.h finish the line and stay the reference. No path reads
// or writes a byte the scalar kernel would not touch for the same `n`.
#ifndef ZO_GRAYSCALE_SIMD_H
#define ZO_GRAYSCALE_SIMD_H

#include <cstdint>

namespace zo {
namespace gray {

// One byte a pixel to RGB32/BGR32 (bytes g, g, g, 0): the best path for this
// CPU.
std::uint32_t GrayBytesToRGB32(const unsigned char* s, unsigned char* d, std::uint32_t n);

#if defined(ZO_GRAY_HAVE_AVX2)
// The AVX2 path itself (GrayscaleAVX2.cpp, built with -mavx2; run it only
// where the CPU reports AVX2).
std::uint32_t GrayBytesToRGB32AVX2(const unsigned char* s, unsigned char* d, std::uint32_t n);
#endif

}  // namespace gray
}  // namespace zo

#endif
