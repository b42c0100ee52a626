// AVX-512 paths of the RGB kernels (this file alone is compiled for AVX-512
// with VBMI; its table runs at the AVX-512 level on a CPU with VBMI, see
// RGBSimd.cpp). RGB16 packing has its own paths here (with ordinary and
// with streaming stores, and through 8-bit tables), and so have three- to
// four-byte pixels through 8-bit tables (the lookups fused into the
// permute, see below). Three- to
// four-byte pixels through the identity keep the AVX2 paths: a
// sixteen-pixel byte-permute form was no faster with the destination in the
// cache and slower into a destination that is not (measured on cold
// 1920 x 1080 frames). The other shuffles keep the SSSE3 ones.
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

// A 256-entry byte table in four registers, looked up for a whole register:
// two two-source permutes for its low and its high half, bit 7 of each index
// picks the half, and only `lanes` take the result.
struct ByteTable {
    __m512i q[4];
    __mmask64 lanes;
};

inline __m512i LookUp(__m512i v, const ByteTable* tables, unsigned count)
{
    const __mmask64 upper = _mm512_movepi8_mask(v);
    __m512i r = v;
    for (unsigned j = 0; j < count; ++j) {
        const ByteTable& t = tables[j];
        const __m512i low = _mm512_permutex2var_epi8(t.q[0], v, t.q[1]);
        const __m512i high = _mm512_permutex2var_epi8(t.q[2], v, t.q[3]);
        r = _mm512_mask_mov_epi8(r, t.lanes, _mm512_mask_blend_epi8(upper, low, high));
    }
    return r;
}

// RGB16 packing through 8-bit tables (red, green, blue; null: the identity,
// skipped): BytesToRGB16Run's permutes, then the lookups on the channel
// bytes they gathered (x: green in the low bytes, red in the high ones; y:
// blue in the low bytes), then the packing. Thirty-two pixels a step; the
// caller's scalar kernel takes the rest of the line. Measured on cold
// frames, RGB 24 to RGB16 through gains 1.8, 1.0, 1.4 (green skipped): 1.25
// times the identity twin's time at 1080p and 1.33 at 4096 x 3000, where
// the scalar lookups took 4.8.
std::uint32_t BytesToRGB16TablesAvx512(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                       const unsigned char* const* tables, bool stream)
{
    static const PackTables kTables[2] = {MakePackTables(3), MakePackTables(4)};
    const PackTables t = kTables[group == 4];
    const __mmask64 secondBytes = group == 4 ? ~__mmask64(0) : __mmask64(0xFFFFFFFF);
    const __mmask64 lowBytes = 0x5555555555555555ull, highBytes = ~lowBytes;
    ByteTable xTables[2], yTables[1];
    unsigned xCount = 0, yCount = 0;
    auto load = [](ByteTable& b, const unsigned char* table, __mmask64 lanes) {
        for (unsigned h = 0; h < 4; ++h)
            b.q[h] = _mm512_loadu_si512(table + 64 * h);
        b.lanes = lanes;
    };
    if (tables[0])
        load(xTables[xCount++], tables[0], highBytes);
    if (tables[1])
        load(xTables[xCount++], tables[1], lowBytes);
    if (tables[2])
        load(yTables[yCount++], tables[2], lowBytes);
    const __m512i redBits = _mm512_set1_epi16(static_cast<short>(0xF800)), greenBits = _mm512_set1_epi16(0xFC);
    auto fits = [&](std::uint32_t i) { return i + 32 <= n; };
    auto step = [&](std::uint32_t i, auto streaming) {
        const unsigned char* p = s + std::size_t(i) * group;
        const __m512i a = _mm512_loadu_si512(p);
        const __m512i b = _mm512_maskz_loadu_epi8(secondBytes, p + 64);
        const __m512i x = LookUp(_mm512_permutex2var_epi8(a, t.greenRed, b), xTables, xCount);
        const __m512i y = LookUp(_mm512_maskz_permutex2var_epi8(lowBytes, a, t.blue, b), yTables, yCount);
        const __m512i word = _mm512_or_si512(
            _mm512_or_si512(_mm512_and_si512(x, redBits), _mm512_slli_epi16(_mm512_and_si512(x, greenBits), 3)),
            _mm512_srli_epi16(y, 3));
        Store(d + std::size_t(i) * 2, word, streaming);
    };
    return RunGroups<32, 2>(d, stream, fits, step);
}

// The source byte of each destination byte of sixteen three- to four-byte
// pixels (the fourth bytes are zeroed by the permute's mask).
__m512i SpreadIndex(bool blueFirst)
{
    alignas(64) unsigned char spread[64];
    for (unsigned j = 0; j < 64; ++j) {
        const unsigned c = j % 4 == 3 ? 0 : (blueFirst ? 2 - j % 4 : j % 4);
        spread[j] = static_cast<unsigned char>(3 * (j / 4) + c);
    }
    return _mm512_load_si512(spread);
}

// Sixteen pixels a step, the table lookups fused into the three- to
// four-byte permute: one permute spreads 48 source bytes over 64 (the fourth
// bytes zeroed), then per table two two-source permutes look up the low and
// the high half of its 256 entries, bit 7 of each byte picks the half, and
// the table's destination bytes take the result. Every table gives exactly
// its entries, whatever they are. Measured on cold frames, RGB 24 to BGRA
// through gains 1.8, 1.0, 1.4 (green skipped): 1.4 times the identity twin's
// time at 1080p and 1.24 at 4096 x 3000, where the identity line followed
// by the VBMI pass measured 1.7 and 1.6 (through a cache-resident chunk and a
// streaming copy) or 1.6 and 1.8-2.1 (in place).
std::uint32_t ThreeToFourTablesAvx512(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                      const unsigned char* const* tables, bool stream)
{
    static const __m512i kSpread[2] = {SpreadIndex(false), SpreadIndex(true)};
    const __m512i index = kSpread[blueFirst];
    const __mmask64 colour = 0x7777777777777777ull, sourceBytes = 0xFFFFFFFFFFFFull;
    __m512i q[3][4];
    __mmask64 lanes[3];
    unsigned count = 0;
    for (unsigned c = 0; c < 3; ++c) {
        if (!tables[c])
            continue;
        for (unsigned h = 0; h < 4; ++h)
            q[count][h] = _mm512_loadu_si512(tables[c] + 64 * h);
        lanes[count++] = 0x1111111111111111ull << c;
    }
    auto fits = [&](std::uint32_t i) { return i + 16 <= n; };
    auto step = [&](std::uint32_t i, auto streaming) {
        const __m512i v =
            _mm512_maskz_permutexvar_epi8(colour, index, _mm512_maskz_loadu_epi8(sourceBytes, s + std::size_t(i) * 3));
        const __mmask64 upper = _mm512_movepi8_mask(v);
        __m512i r = v;
        for (unsigned j = 0; j < count; ++j) {
            const __m512i low = _mm512_permutex2var_epi8(q[j][0], v, q[j][1]);
            const __m512i high = _mm512_permutex2var_epi8(q[j][2], v, q[j][3]);
            r = _mm512_mask_mov_epi8(r, lanes[j], _mm512_mask_blend_epi8(upper, low, high));
        }
        Store(d + std::size_t(i) * 4, r, streaming);
    };
    return RunGroups<16, 4>(d, stream, fits, step);
}

}  // namespace

const RGBPaths kRGBPathsAVX512 = {"AVX-512",          ThreeToFourAvx2,    FourToThreeSsse3,      FourToFourSsse3,
                                  BytesToRGB16Avx512, ThreeToPlanesSsse3, SwapThreeSsse3,        SwapFourSsse3,
                                  ThreeToFourStreamAvx2, BytesToRGB16StreamAvx512, ThreeToFourTablesAvx512,
                                  nullptr,          BytesToRGB16TablesAvx512};

}  // namespace simd
}  // namespace zo

#endif
