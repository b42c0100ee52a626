// Vector paths of the RGB kernels for identity filters and one-byte channels.
// Each returns how many leading pixels it converted (0 when the CPU lacks the
// instructions or the layout has no vector path); the caller converts the
// rest with the scalar kernel, which stays the reference.
#ifndef ZO_RGB_SIMD_H
#define ZO_RGB_SIMD_H

#include <cstdint>

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

}  // namespace simd
}  // namespace zo

#endif
