// AVX2 paths of the grayscale kernels (this file alone is compiled for AVX2;
// its table runs from the AVX2 level on, see GraySimd.cpp).
#include "gray/GraySimd.h"

#if defined(__AVX2__)
#include <immintrin.h>

namespace zo {
namespace gray {
namespace {

// Sixteen gray bytes are broadcast to both lanes of a register; four byte
// shuffles spread them to sixteen pixels g, g, g, 0 (a shuffle index with
// the high bit set gives the zero fourth byte). Output register k holds
// pixels 8k..8k+7: its low lane pixels 8k..8k+3, its high lane 8k+4..8k+7.
std::uint32_t GrayBytesToRGB32AVX2(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    constexpr char z = -128;  // selects a zero byte, and still does plus 8
    const __m256i spread0 = _mm256_setr_epi8(0, 0, 0, z, 1, 1, 1, z, 2, 2, 2, z, 3, 3, 3, z,  //
                                             4, 4, 4, z, 5, 5, 5, z, 6, 6, 6, z, 7, 7, 7, z);
    const __m256i eight = _mm256_set1_epi8(8);
    const __m256i spread1 = _mm256_add_epi8(spread0, eight);
    const std::uint32_t groups = n / 16;
    for (std::uint32_t i = 0; i < groups; ++i, s += 16, d += 64) {
        const __m256i g = _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s)));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), _mm256_shuffle_epi8(g, spread0));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + 32), _mm256_shuffle_epi8(g, spread1));
    }
    return groups * 16;
}

}  // namespace

const GrayPaths kGrayPathsAVX2 = {"AVX2", GrayBytesToRGB24Ssse3, GrayWordsToRGB24Ssse3, GrayBytesToRGB32AVX2};

}  // namespace gray
}  // namespace zo

#endif
