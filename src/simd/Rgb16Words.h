// RGB16 words, as PackRGB16 (core/PixelIO.h) makes them, from red, green
// and blue held apart in vector registers: the vector kernels that store
// RGB16 from separate channels (YUV, Bayer). Everything here is local to
// the including file, which is compiled for the instruction set it uses.
#ifndef ZO_SIMD_RGB16_WORDS_H
#define ZO_SIMD_RGB16_WORDS_H

#if defined(__AVX2__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zo {
namespace simd {
namespace {

#if defined(__SSE2__)
// r, g, b: 16-bit lanes holding 0-255.
inline __m128i PackRGB16Words(__m128i r, __m128i g, __m128i b)
{
    const __m128i red = _mm_and_si128(_mm_slli_epi16(r, 8), _mm_set1_epi16(static_cast<short>(0xF800)));
    const __m128i green = _mm_slli_epi16(_mm_and_si128(g, _mm_set1_epi16(0xFC)), 3);
    return _mm_or_si128(_mm_or_si128(red, green), _mm_srli_epi16(b, 3));
}

// Sixteen pixels from sixteen bytes of each channel, in order, to 32 bytes
// at d.
inline void StoreRGB16x16(unsigned char* d, __m128i r, __m128i g, __m128i b)
{
    const __m128i zero = _mm_setzero_si128();
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d),
                     PackRGB16Words(_mm_unpacklo_epi8(r, zero), _mm_unpacklo_epi8(g, zero),
                                    _mm_unpacklo_epi8(b, zero)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 16),
                     PackRGB16Words(_mm_unpackhi_epi8(r, zero), _mm_unpackhi_epi8(g, zero),
                                    _mm_unpackhi_epi8(b, zero)));
}
#endif

#if defined(__AVX2__)
inline __m256i PackRGB16Words(__m256i r, __m256i g, __m256i b)
{
    const __m256i red = _mm256_and_si256(_mm256_slli_epi16(r, 8), _mm256_set1_epi16(static_cast<short>(0xF800)));
    const __m256i green = _mm256_slli_epi16(_mm256_and_si256(g, _mm256_set1_epi16(0xFC)), 3);
    return _mm256_or_si256(_mm256_or_si256(red, green), _mm256_srli_epi16(b, 3));
}
#endif

}  // namespace
}  // namespace simd
}  // namespace zo

#endif
