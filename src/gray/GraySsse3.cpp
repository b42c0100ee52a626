// SSSE3 paths of the grayscale kernels (this file alone is compiled for
// SSSE3; its table runs at the SSSE3 level, see GraySimd.cpp).
#include "gray/GraySimd.h"

#if defined(__SSSE3__)

#include <tmmintrin.h>

namespace zo {
namespace gray {
namespace {

inline __m128i Load(const unsigned char* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline void Store(unsigned char* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

// Sixteen gray bytes to 48 bytes g g g.
inline void StoreGrayThree(unsigned char* d, __m128i g)
{
    Store(d, _mm_shuffle_epi8(g, _mm_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5)));
    Store(d + 16, _mm_shuffle_epi8(g, _mm_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10)));
    Store(d + 32, _mm_shuffle_epi8(g, _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15)));
}

}  // namespace

std::uint32_t GrayBytesToRGB24Ssse3(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    std::uint32_t i = 0;
    for (; i + 16 <= n; i += 16)
        StoreGrayThree(d + std::size_t(i) * 3, Load(s + i));
    return i;
}

std::uint32_t GrayWordsToRGB24Ssse3(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift)
{
    const __m128i count = _mm_cvtsi32_si128(static_cast<int>(shift));
    const __m128i low = _mm_set1_epi16(0xFF);
    std::uint32_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i a = _mm_and_si128(_mm_srl_epi16(Load(s + std::size_t(i) * 2), count), low);
        const __m128i b = _mm_and_si128(_mm_srl_epi16(Load(s + std::size_t(i) * 2 + 16), count), low);
        StoreGrayThree(d + std::size_t(i) * 3, _mm_packus_epi16(a, b));
    }
    return i;
}

// RGB32, RGB16 and Gray8 are left to the scalar kernels at this level.
const GrayPaths kGrayPathsSSSE3 = {"SSSE3",     GrayBytesToRGB24Ssse3, GrayWordsToRGB24Ssse3, GrayNoBytes, GrayNoBytes,
                                   GrayNoWords, GrayNoBytes,           GrayNoBytes,           GrayNoWords};

}  // namespace gray
}  // namespace zo

#endif
