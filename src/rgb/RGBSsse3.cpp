// SSSE3 byte shuffles of the RGB kernels (this file alone is compiled for
// SSSE3; its table runs at the SSSE3 level and above, see RGBSimd.cpp). Each
// converts whole groups of pixels from the start of the line, never touching
// bytes past the n pixels the scalar kernel would read and write, and
// returns how many pixels it converted.
#include "rgb/RGBPaths.h"

#if defined(__SSSE3__)

#include <tmmintrin.h>

#include "core/StreamGroups.h"

namespace zo {
namespace simd {
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

__m128i ThreeToFourMask(bool blueFirst)
{
    return blueFirst ? _mm_setr_epi8(2, 1, 0, Z, 5, 4, 3, Z, 8, 7, 6, Z, 11, 10, 9, Z)
                     : _mm_setr_epi8(0, 1, 2, Z, 3, 4, 5, Z, 6, 7, 8, Z, 9, 10, 11, Z);
}

}  // namespace

std::uint32_t ThreeToFourSsse3(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst)
{
    return Shuffle<3, 4>(s, d, n, ThreeToFourMask(blueFirst));
}

// The same four pixels a step, written with streaming stores from the first
// 64-byte line of the destination on (core/StreamGroups.h).
std::uint32_t ThreeToFourStreamSsse3(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst)
{
    const __m128i mask = ThreeToFourMask(blueFirst);
    auto fits = [&](std::uint32_t i) { return std::uint64_t(i) * 3 + 16 <= std::uint64_t(n) * 3; };
    auto step = [&](std::uint32_t i, auto streaming) {
        const __m128i v = _mm_shuffle_epi8(Load(s + std::size_t(i) * 3), mask);
        if constexpr (decltype(streaming)::value)
            _mm_stream_si128(reinterpret_cast<__m128i*>(d + std::size_t(i) * 4), v);
        else
            Store(d + std::size_t(i) * 4, v);
    };
    return RunGroups<4, 4>(d, n, true, fits, step);
}

std::uint32_t FourToThreeSsse3(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst)
{
    const __m128i rgb = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, Z, Z, Z, Z);
    const __m128i bgr = _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, Z, Z, Z, Z);
    return Shuffle<4, 3>(s, d, n, blueFirst ? bgr : rgb);
}

std::uint32_t FourToFourSsse3(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst)
{
    const __m128i rgb = _mm_setr_epi8(0, 1, 2, Z, 4, 5, 6, Z, 8, 9, 10, Z, 12, 13, 14, Z);
    const __m128i bgr = _mm_setr_epi8(2, 1, 0, Z, 6, 5, 4, Z, 10, 9, 8, Z, 14, 13, 12, Z);
    return Shuffle<4, 4>(s, d, n, blueFirst ? bgr : rgb);
}

namespace {

// Shuffle masks gathering channel c of eight pixels of `group` bytes (32
// loaded bytes, lo and hi) into 16-bit lanes, high bytes zero.
struct ChannelMasks {
    __m128i lo, hi;
};

ChannelMasks MakeChannelMasks(unsigned group, unsigned c)
{
    alignas(16) char lo[16], hi[16];
    for (unsigned j = 0; j < 8; ++j) {
        const unsigned at = j * group + c;
        lo[2 * j] = at < 16 ? static_cast<char>(at) : Z;
        hi[2 * j] = at >= 16 ? static_cast<char>(at - 16) : Z;
        lo[2 * j + 1] = hi[2 * j + 1] = Z;
    }
    return {_mm_load_si128(reinterpret_cast<const __m128i*>(lo)), _mm_load_si128(reinterpret_cast<const __m128i*>(hi))};
}

inline __m128i Gather(__m128i lo, __m128i hi, const ChannelMasks& m)
{
    return _mm_or_si128(_mm_shuffle_epi8(lo, m.lo), _mm_shuffle_epi8(hi, m.hi));
}

}  // namespace

// word = ((r >> 3) << 11) | ((g & 0xFC) << 3) | (b >> 3), on 16-bit lanes.
std::uint32_t BytesToRGB16Ssse3(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group)
{
    if (std::uint64_t(n) * group < 32)
        return 0;
    // The masks of both groups, made once.
    static const ChannelMasks kMasks[2][3] = {
        {MakeChannelMasks(3, 0), MakeChannelMasks(3, 1), MakeChannelMasks(3, 2)},
        {MakeChannelMasks(4, 0), MakeChannelMasks(4, 1), MakeChannelMasks(4, 2)}};
    const ChannelMasks& red = kMasks[group == 4][0];
    const ChannelMasks& green = kMasks[group == 4][1];
    const ChannelMasks& blue = kMasks[group == 4][2];
    const __m128i redBits = _mm_set1_epi16(static_cast<short>(0xF8)), greenBits = _mm_set1_epi16(0xFC);
    const std::uint64_t inEnd = std::uint64_t(n) * group;
    std::uint32_t i = 0;
    for (; std::uint64_t(i) * group + 32 <= inEnd; i += 8) {
        const unsigned char* p = s + std::size_t(i) * group;
        const __m128i lo = Load(p), hi = Load(p + 16);
        const __m128i r = _mm_slli_epi16(_mm_and_si128(Gather(lo, hi, red), redBits), 8);
        const __m128i g = _mm_slli_epi16(_mm_and_si128(Gather(lo, hi, green), greenBits), 3);
        const __m128i b = _mm_srli_epi16(Gather(lo, hi, blue), 3);
        Store(d + std::size_t(i) * 2, _mm_or_si128(_mm_or_si128(r, g), b));
    }
    return i;
}

// Channel c of sixteen pixels from 48 bytes (three loads), one shuffle each.
std::uint32_t ThreeToPlanesSsse3(const unsigned char* s, unsigned char* red, unsigned char* green, unsigned char* blue,
                            std::uint32_t n)
{
    __m128i masks[3][3];  // [channel][load]
    for (unsigned c = 0; c < 3; ++c)
        for (unsigned part = 0; part < 3; ++part) {
            alignas(16) char m[16];
            for (unsigned j = 0; j < 16; ++j) {
                const unsigned at = 3 * j + c;
                m[j] = at / 16 == part ? static_cast<char>(at % 16) : Z;
            }
            masks[c][part] = _mm_load_si128(reinterpret_cast<const __m128i*>(m));
        }
    unsigned char* planes[3] = {red, green, blue};
    std::uint32_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const unsigned char* p = s + std::size_t(i) * 3;
        const __m128i a = Load(p), b = Load(p + 16), c = Load(p + 32);
        for (unsigned ch = 0; ch < 3; ++ch)
            Store(planes[ch] + i,
                  _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(a, masks[ch][0]), _mm_shuffle_epi8(b, masks[ch][1])),
                               _mm_shuffle_epi8(c, masks[ch][2])));
    }
    return i;
}

std::uint32_t SwapThreeSsse3(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return Shuffle<3, 3>(s, d, n, _mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, Z, Z, Z, Z));
}

std::uint32_t SwapFourSsse3(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return Shuffle<4, 4>(s, d, n, _mm_setr_epi8(2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15));
}

const RGBPaths kRGBPathsSSSE3 = {"SSSE3",           ThreeToFourSsse3,   FourToThreeSsse3, FourToFourSsse3,
                                 BytesToRGB16Ssse3, ThreeToPlanesSsse3, SwapThreeSsse3,   SwapFourSsse3,
                                 ThreeToFourStreamSsse3, BytesToRGB16Ssse3, nullptr,
                                 nullptr, nullptr, nullptr, nullptr};

}  // namespace simd
}  // namespace zo

#endif
