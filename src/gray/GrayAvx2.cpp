// AVX2 paths of the grayscale kernels (this file alone is compiled for AVX2;
// its table runs from the AVX2 level on, see GraySimd.cpp). Each path has
// an ordinary and a streaming form (core/StreamGroups.h).
#include "gray/GraySimd.h"

#if defined(__AVX2__)
#include <immintrin.h>

#include "core/StreamGroups.h"

namespace zo {
namespace gray {
namespace {

inline __m256i Load(const unsigned char* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline void Store(unsigned char* p, __m256i v, OrdinaryStores) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
inline void Store(unsigned char* p, __m256i v, StreamingStores) { _mm256_stream_si256(reinterpret_cast<__m256i*>(p), v); }

// Sixteen gray bytes are broadcast to both lanes of a register; four byte
// shuffles spread them to sixteen pixels g, g, g, 0 (a shuffle index with
// the high bit set gives the zero fourth byte). Output register k holds
// pixels 8k..8k+7: its low lane pixels 8k..8k+3, its high lane 8k+4..8k+7.
std::uint32_t BytesToRGB32(const unsigned char* s, unsigned char* d, std::uint32_t n, bool stream)
{
    constexpr char z = -128;  // selects a zero byte, and still does plus 8
    const __m256i spread0 = _mm256_setr_epi8(0, 0, 0, z, 1, 1, 1, z, 2, 2, 2, z, 3, 3, 3, z,  //
                                             4, 4, 4, z, 5, 5, 5, z, 6, 6, 6, z, 7, 7, 7, z);
    const __m256i eight = _mm256_set1_epi8(8);
    const __m256i spread1 = _mm256_add_epi8(spread0, eight);
    auto fits = [&](std::uint32_t i) { return i + 16 <= n; };
    auto step = [&](std::uint32_t i, auto streaming) {
        const __m256i g = _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i)));
        Store(d + std::size_t(i) * 4, _mm256_shuffle_epi8(g, spread0), streaming);
        Store(d + std::size_t(i) * 4 + 32, _mm256_shuffle_epi8(g, spread1), streaming);
    };
    return RunGroups<16, 4>(d, n, stream, fits, step);
}

// Thirty-two gray bytes, widened to words w, give the RGB16 words
// ((w & 0xF8) << 8) | ((w & 0xFC) << 3) | (w >> 3).
std::uint32_t BytesToRGB16(const unsigned char* s, unsigned char* d, std::uint32_t n, bool stream)
{
    const __m256i red = _mm256_set1_epi16(0xF8), green = _mm256_set1_epi16(0xFC);
    auto word = [&](__m128i g) {
        const __m256i w = _mm256_cvtepu8_epi16(g);
        return _mm256_or_si256(_mm256_or_si256(_mm256_slli_epi16(_mm256_and_si256(w, red), 8),
                                               _mm256_slli_epi16(_mm256_and_si256(w, green), 3)),
                               _mm256_srli_epi16(w, 3));
    };
    auto fits = [&](std::uint32_t i) { return i + 32 <= n; };
    auto step = [&](std::uint32_t i, auto streaming) {
        const __m256i g = Load(s + i);
        Store(d + std::size_t(i) * 2, word(_mm256_castsi256_si128(g)), streaming);
        Store(d + std::size_t(i) * 2 + 32, word(_mm256_extracti128_si256(g, 1)), streaming);
    };
    return RunGroups<32, 2>(d, n, stream, fits, step);
}

// Thirty-two words a step: shifted, masked to a byte, packed (the in-lane
// packing leaves the quarters 0, 2, 1, 3, which one permute puts in order).
std::uint32_t WordsToGray8(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift,
                           bool stream)
{
    const __m128i count = _mm_cvtsi32_si128(static_cast<int>(shift));
    const __m256i low = _mm256_set1_epi16(0xFF);
    auto fits = [&](std::uint32_t i) { return i + 32 <= n; };
    auto step = [&](std::uint32_t i, auto streaming) {
        const unsigned char* p = s + std::size_t(i) * 2;
        const __m256i a = _mm256_and_si256(_mm256_srl_epi16(Load(p), count), low);
        const __m256i b = _mm256_and_si256(_mm256_srl_epi16(Load(p + 32), count), low);
        Store(d + i, _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), _MM_SHUFFLE(3, 1, 2, 0)), streaming);
    };
    return RunGroups<32, 1>(d, n, stream, fits, step);
}

std::uint32_t BytesToRGB32Avx2(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return BytesToRGB32(s, d, n, false);
}
std::uint32_t BytesToRGB32StreamAvx2(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return BytesToRGB32(s, d, n, true);
}
std::uint32_t BytesToRGB16Avx2(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return BytesToRGB16(s, d, n, false);
}
std::uint32_t BytesToRGB16StreamAvx2(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return BytesToRGB16(s, d, n, true);
}
std::uint32_t WordsToGray8Avx2(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift)
{
    return WordsToGray8(s, d, n, shift, false);
}
std::uint32_t WordsToGray8StreamAvx2(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift)
{
    return WordsToGray8(s, d, n, shift, true);
}

}  // namespace

const GrayPaths kGrayPathsAVX2 = {"AVX2",           GrayBytesToRGB24Ssse3,  GrayWordsToRGB24Ssse3,
                                  BytesToRGB32Avx2, BytesToRGB16Avx2,       WordsToGray8Avx2,
                                  BytesToRGB32StreamAvx2, BytesToRGB16StreamAvx2, WordsToGray8StreamAvx2};

}  // namespace gray
}  // namespace zo

#endif
