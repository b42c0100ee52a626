// SSSE3 byte shuffles of the RGB kernels; see RGBSimdSSSE3.h.
#include "rgb/RGBSimdSSSE3.h"

#if ZO_RGB_HAVE_SSSE3

#include <tmmintrin.h>

namespace zo {
namespace simd {
namespace ssse3 {

namespace {

constexpr char Z = -128;  // shuffle index that writes 0

inline __m128i Load(const unsigned char* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline void Store(unsigned char* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

// Four pixels of `inBytes` each from 16 loaded bytes to `outBytes` each
// (16 stored bytes, of which the valid ones come first). The loop stops
// while a full 16-byte load and store still lie inside the n pixels; the
// bytes a store writes past its four pixels are rewritten by the next one.
template <unsigned InBytes, unsigned OutBytes>
std::uint32_t Shuffle(const unsigned char* s, unsigned char* d, std::uint32_t n, __m128i mask)
{
    std::uint32_t i = 0;
    const std::uint64_t inEnd = std::uint64_t(n) * InBytes, outEnd = std::uint64_t(n) * OutBytes;
    for (; std::uint64_t(i) * InBytes + 16 <= inEnd && std::uint64_t(i) * OutBytes + 16 <= outEnd; i += 4)
        Store(d + std::size_t(i) * OutBytes, _mm_shuffle_epi8(Load(s + std::size_t(i) * InBytes), mask));
    return i;
}

}  // namespace

std::uint32_t ThreeToFour(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst)
{
    const __m128i rgb = _mm_setr_epi8(0, 1, 2, Z, 3, 4, 5, Z, 6, 7, 8, Z, 9, 10, 11, Z);
    const __m128i bgr = _mm_setr_epi8(2, 1, 0, Z, 5, 4, 3, Z, 8, 7, 6, Z, 11, 10, 9, Z);
    return Shuffle<3, 4>(s, d, n, blueFirst ? bgr : rgb);
}

std::uint32_t FourToThree(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst)
{
    const __m128i rgb = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, Z, Z, Z, Z);
    const __m128i bgr = _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, Z, Z, Z, Z);
    return Shuffle<4, 3>(s, d, n, blueFirst ? bgr : rgb);
}

std::uint32_t SwapThree(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return Shuffle<3, 3>(s, d, n, _mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, Z, Z, Z, Z));
}

std::uint32_t SwapFour(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return Shuffle<4, 4>(s, d, n, _mm_setr_epi8(2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15));
}

namespace {

// Sixteen gray bytes to 48 bytes g g g.
inline void StoreGrayThree(unsigned char* d, __m128i g)
{
    Store(d, _mm_shuffle_epi8(g, _mm_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5)));
    Store(d + 16, _mm_shuffle_epi8(g, _mm_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10)));
    Store(d + 32, _mm_shuffle_epi8(g, _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15)));
}

}  // namespace

std::uint32_t GrayBytesToThree(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    std::uint32_t i = 0;
    for (; i + 16 <= n; i += 16)
        StoreGrayThree(d + std::size_t(i) * 3, Load(s + i));
    return i;
}

std::uint32_t GrayWordsToThree(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift)
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

}  // namespace ssse3
}  // namespace simd
}  // namespace zo

#endif
