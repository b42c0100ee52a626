// The grayscale family's vector paths for one instruction set. Each
// converts a leading part of the line and returns how many pixels it
// converted; the scalar kernels of GrayscaleKernels.h finish the line and
// stay the reference. No path reads or writes a byte the scalar kernel would
// not touch for the same `n`.
//
// Declarations only: the per-instruction-set files include this header and
// must share no inline function with the rest of the library.
#ifndef ZO_GRAY_SIMD_H
#define ZO_GRAY_SIMD_H

#include <cstdint>

namespace zo {
namespace gray {

struct GrayPaths {
    const char* name;
    // g -> g g g, one byte a pixel.
    std::uint32_t (*bytesToRGB24)(const unsigned char* s, unsigned char* d, std::uint32_t n);
    // 16-bit word w -> three bytes (w >> shift) & 0xFF (shift below 16).
    std::uint32_t (*wordsToRGB24)(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift);
    // g -> g g g 0 (RGB32 and BGR32 alike), one byte a pixel.
    std::uint32_t (*bytesToRGB32)(const unsigned char* s, unsigned char* d, std::uint32_t n);
    // g -> the RGB16 word of gray g, one byte a pixel.
    std::uint32_t (*bytesToRGB16)(const unsigned char* s, unsigned char* d, std::uint32_t n);
    // 16-bit word w -> one byte (w >> shift) & 0xFF (shift below 16).
    std::uint32_t (*wordsToGray8)(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift);
    // The same three writing with streaming stores where the destination
    // allows (core/StreamGroups.h).
    std::uint32_t (*bytesToRGB32Stream)(const unsigned char* s, unsigned char* d, std::uint32_t n);
    std::uint32_t (*bytesToRGB16Stream)(const unsigned char* s, unsigned char* d, std::uint32_t n);
    std::uint32_t (*wordsToGray8Stream)(const unsigned char* s, unsigned char* d, std::uint32_t n,
                                        std::uint32_t shift);
};

// GraySsse3.cpp: sixteen pixels a step (its table leaves RGB32, RGB16 and
// Gray8 to the scalar kernels, which the compiler vectorises for SSE2);
// GrayAvx2.cpp: the SSSE3 paths and its own RGB32, RGB16 and Gray8 paths.
std::uint32_t GrayBytesToRGB24Ssse3(const unsigned char* s, unsigned char* d, std::uint32_t n);
std::uint32_t GrayWordsToRGB24Ssse3(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift);
std::uint32_t GrayNoBytes(const unsigned char* s, unsigned char* d, std::uint32_t n);
std::uint32_t GrayNoWords(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift);
extern const GrayPaths kGrayPathsSSSE3;
extern const GrayPaths kGrayPathsAVX2;

// The paths of the active level (simd/Cpu.h): the scalar table (every entry
// returns 0) below SSSE3, SSSE3 at SSSE3, AVX2 from AVX2 on.
const GrayPaths& GrayActivePaths();

}  // namespace gray
}  // namespace zo

#endif
