// SSSE3 byte shuffles of the RGB kernels (RGBSimdSSSE3.cpp, built with
// -mssse3; call only when the CPU has SSSE3). Each converts whole groups of
// four pixels from the start of the line, never touching bytes past the
// n pixels the scalar kernel would read and write, and returns how many
// pixels it converted.
#ifndef ZO_RGB_SIMD_SSSE3_H
#define ZO_RGB_SIMD_SSSE3_H

#include <cstdint>

// Set by the build on x86 (where RGBSimdSSSE3.cpp gets -mssse3).
#ifndef ZO_RGB_HAVE_SSSE3
#define ZO_RGB_HAVE_SSSE3 0
#endif

namespace zo {
namespace simd {
namespace ssse3 {

// r g b -> r g b 0 (or b g r 0 when blueFirst).
std::uint32_t ThreeToFour(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst);
// r g b x -> r g b (or b g r).
std::uint32_t FourToThree(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst);
// r g b x -> r g b 0 (or b g r 0).
std::uint32_t FourToFour(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst);
// r g b (group 3) or r g b x (group 4) -> RGB16 words (8 pixels a step).
std::uint32_t BytesToRGB16(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group);
// r g b -> three planes (16 pixels a step); the planes must not overlap
// within the n pixels.
std::uint32_t ThreeToPlanes(const unsigned char* s, unsigned char* red, unsigned char* green, unsigned char* blue,
                            std::uint32_t n);
// r g b -> b g r.
std::uint32_t SwapThree(const unsigned char* s, unsigned char* d, std::uint32_t n);
// r g b x -> b g r x.
std::uint32_t SwapFour(const unsigned char* s, unsigned char* d, std::uint32_t n);
// g -> g g g, one byte a pixel (16 pixels a step).
std::uint32_t GrayBytesToThree(const unsigned char* s, unsigned char* d, std::uint32_t n);
// 16-bit word w -> three bytes (w >> shift) & 0xFF (16 pixels a step).
std::uint32_t GrayWordsToThree(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift);

}  // namespace ssse3
}  // namespace simd
}  // namespace zo

#endif
