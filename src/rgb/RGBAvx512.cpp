// AVX-512 paths of the RGB kernels (this file alone is compiled for AVX-512
// with VBMI; its table runs at the AVX-512 level on a CPU with VBMI, see
// RGBSimd.cpp). RGB16 packing and three- to four-byte pixels have their own
// paths here (with ordinary and with streaming stores); the other shuffles
// keep the SSSE3 ones.
#include "rgb/RGBPaths.h"

#if defined(__AVX512BW__) && defined(__AVX512VBMI__)

#include <immintrin.h>

#include <cstddef>

#include "core/StreamGroups.h"

namespace zo {
namespace simd {
namespace {

// Byte permutes that gather, from the 128 bytes of two registers holding
// thirty-two pixels of `group` bytes (the second register partly loaded for
// three-byte pixels), one 16-bit lane per pixel: x = green | red << 8 and
// y = blue (the high bytes of y are zeroed by the permute's mask).
struct PackTables {
    __m512i greenRed, blue;
};

PackTables MakePackTables(unsigned group)
{
    alignas(64) unsigned char x[64], y[64];
    for (unsigned j = 0; j < 32; ++j) {
        x[2 * j] = static_cast<unsigned char>(group * j + 1);
        x[2 * j + 1] = static_cast<unsigned char>(group * j);
        y[2 * j] = static_cast<unsigned char>(group * j + 2);
        y[2 * j + 1] = 0;
    }
    return {_mm512_load_si512(x), _mm512_load_si512(y)};
}

inline void Store(unsigned char* d, __m512i v, OrdinaryStores) { _mm512_storeu_si512(d, v); }
inline void Store(unsigned char* d, __m512i v, StreamingStores) { _mm512_stream_si512(reinterpret_cast<__m512i*>(d), v); }

// Thirty-two pixels a step: ((r >> 3) << 11) | ((g & 0xFC) << 3) | (b >> 3)
// as (x & 0xF800) | ((x & 0xFC) << 3) | (y >> 3). The second load reads only
// the step's own bytes (32 for three-byte pixels, masked); the AVX2 path
// takes what is left of the line.
std::uint32_t BytesToRGB16Run(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group, bool stream)
{
    static const PackTables kTables[2] = {MakePackTables(3), MakePackTables(4)};
    const PackTables t = kTables[group == 4];
    const __mmask64 secondBytes = group == 4 ? ~__mmask64(0) : __mmask64(0xFFFFFFFF);
    const __mmask64 lowBytes = 0x5555555555555555ull;
    const __m512i redBits = _mm512_set1_epi16(static_cast<short>(0xF800)), greenBits = _mm512_set1_epi16(0xFC);
    auto fits = [&](std::uint32_t i) { return i + 32 <= n; };
    auto step = [&](std::uint32_t i, auto streaming) {
        const unsigned char* p = s + std::size_t(i) * group;
        const __m512i a = _mm512_loadu_si512(p);
        const __m512i b = _mm512_maskz_loadu_epi8(secondBytes, p + 64);
        const __m512i x = _mm512_permutex2var_epi8(a, t.greenRed, b);
        const __m512i y = _mm512_maskz_permutex2var_epi8(lowBytes, a, t.blue, b);
        const __m512i word = _mm512_or_si512(
            _mm512_or_si512(_mm512_and_si512(x, redBits), _mm512_slli_epi16(_mm512_and_si512(x, greenBits), 3)),
            _mm512_srli_epi16(y, 3));
        Store(d + std::size_t(i) * 2, word, streaming);
    };
    const std::uint32_t i = RunGroups<32, 2>(d, stream, fits, step);
    return i + kRGBPathsAVX2.bytesToRGB16(s + std::size_t(i) * group, d + std::size_t(i) * 2, n - i, group);
}

std::uint32_t BytesToRGB16Avx512(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group)
{
    return BytesToRGB16Run(s, d, n, group, false);
}
std::uint32_t BytesToRGB16StreamAvx512(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group)
{
    return BytesToRGB16Run(s, d, n, group, true);
}

// The byte permute that spreads sixteen three-byte pixels to four bytes
// each, r g b (or b g r) then a byte the permute's mask zeroes.
__m512i MakeSpreadIndex(bool blueFirst)
{
    alignas(64) unsigned char x[64];
    for (unsigned j = 0; j < 16; ++j)
        for (unsigned k = 0; k < 4; ++k)
            x[4 * j + k] = static_cast<unsigned char>(3 * j + (k == 3 ? 0 : blueFirst ? 2 - k : k));
    return _mm512_load_si512(x);
}

// Sixteen pixels a step: a masked load reads the step's 48 bytes and no
// more, one permute spreads them; the AVX2 path takes what is left.
std::uint32_t ThreeToFourRun(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst, bool stream)
{
    static const __m512i kSpread[2] = {MakeSpreadIndex(false), MakeSpreadIndex(true)};
    const __m512i spread = kSpread[blueFirst];
    const __mmask64 sourceBytes = (__mmask64(1) << 48) - 1;
    const __mmask64 colourBytes = 0x7777777777777777ull;  // not the fourth byte of a pixel
    auto fits = [&](std::uint32_t i) { return i + 16 <= n; };
    auto step = [&](std::uint32_t i, auto streaming) {
        const __m512i v = _mm512_maskz_loadu_epi8(sourceBytes, s + std::size_t(i) * 3);
        Store(d + std::size_t(i) * 4, _mm512_maskz_permutexvar_epi8(colourBytes, spread, v), streaming);
    };
    const std::uint32_t i = RunGroups<16, 4>(d, stream, fits, step);
    return i + kRGBPathsAVX2.threeToFour(s + std::size_t(i) * 3, d + std::size_t(i) * 4, n - i, blueFirst);
}

std::uint32_t ThreeToFourAvx512(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst)
{
    return ThreeToFourRun(s, d, n, blueFirst, false);
}
std::uint32_t ThreeToFourStreamAvx512(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst)
{
    return ThreeToFourRun(s, d, n, blueFirst, true);
}

}  // namespace

const RGBPaths kRGBPathsAVX512 = {"AVX-512",          ThreeToFourAvx512,  FourToThreeSsse3,        FourToFourSsse3,
                                  BytesToRGB16Avx512, ThreeToPlanesSsse3, SwapThreeSsse3,          SwapFourSsse3,
                                  ThreeToFourStreamAvx512, BytesToRGB16StreamAvx512};

}  // namespace simd
}  // namespace zo

#endif
