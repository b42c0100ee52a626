// Fast paths of the RGB kernels for the identity filter and one-byte
// channels (k = 1). Each converts a leading part of the line and returns how
// many pixels it converted (0 when the CPU lacks the instructions or the
// layout has no fast path); the caller converts the rest with the scalar
// kernel of RGBKernels.h, which stays the reference.
//
// The vector paths never read or write a byte the scalar kernel would not
// touch for the same `n`.
#ifndef ZO_RGB_SIMD_H
#define ZO_RGB_SIMD_H

#include <cstdint>
#include <cstring>

#include "rgb/RGBLayouts.h"

namespace zo {
namespace simd {

// Three- or four-byte pixels (red, green, blue first) to the Writer layout.
template <class Writer, unsigned Group>
inline std::uint32_t RepackBytesIdentity(const unsigned char*, unsigned char*, std::uint32_t)
{
    return 0;
}

// Four-byte pixels to RGB32/BGR32 keeping the fourth byte.
template <unsigned RedIndex>
inline std::uint32_t RepackKeepFourthIdentity(const unsigned char*, unsigned char*, std::uint32_t)
{
    return 0;
}

// 16-bit samples (Words a pixel) shifted to bytes, to the Writer layout.
template <class Writer, unsigned Words>
inline std::uint32_t RepackWordsIdentity(const unsigned char*, unsigned char*, std::uint32_t, std::uint32_t)
{
    return 0;
}

// Same layout in and out: a copy.
template <>
inline std::uint32_t RepackBytesIdentity<Write24<0>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    std::memcpy(d, s, std::size_t(n) * 3);
    return n;
}
template <>
inline std::uint32_t RepackKeepFourthIdentity<0>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    std::memcpy(d, s, std::size_t(n) * 4);
    return n;
}

// Red-first 48-bit to RGB24: every sample becomes one byte in place, so the
// line is one flat loop over 3n samples (which the compiler vectorises).
template <>
inline std::uint32_t RepackWordsIdentity<Write24<0>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n,
                                                        std::uint32_t shift)
{
    const std::size_t samples = std::size_t(n) * 3;
    for (std::size_t j = 0; j < samples; ++j) {
        std::uint16_t w;
        std::memcpy(&w, s + 2 * j, 2);  // little-endian hosts only (x86, ARM)
        d[j] = static_cast<unsigned char>(w >> shift);
    }
    return n;
}

// Byte shuffles (SSSE3 where the CPU has it; RGBSimd.cpp).
template <>
std::uint32_t RepackBytesIdentity<Write32<0>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentity<Write32<2>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentity<Write24<2>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentity<Write24<0>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentity<Write24<2>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackKeepFourthIdentity<2>(const unsigned char* s, unsigned char* d, std::uint32_t n);

// Gray to RGB24/BGR24 (three equal bytes): one byte a pixel, or 16-bit
// words w giving (w >> shift) & 0xFF (shift 8: the high byte).
std::uint32_t GrayBytesToRGB24(const unsigned char* s, unsigned char* d, std::uint32_t n);
std::uint32_t GrayWordsToRGB24(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift);

// Whether the byte shuffles above use vector instructions on this CPU.
bool HasByteShuffle();

}  // namespace simd
}  // namespace zo

#endif
