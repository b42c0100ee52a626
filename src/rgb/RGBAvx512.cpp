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
#include "simd/LookupVbmi.h"

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
// as (x & 0xF800) | ((x & 0xFC) << 3) | (y >> 3), where the permutes gather
// x = green | red << 8 and y = blue; `channels(x, y)` may change the channel
// bytes before they pack. The second load reads only the step's own bytes
// (32 for three-byte pixels, masked). Returns the pixels converted.
template <class Channels>
std::uint32_t BytesToRGB16Steps(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group, bool stream,
                                Channels channels)
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
        __m512i x = _mm512_permutex2var_epi8(a, t.greenRed, b);
        __m512i y = _mm512_maskz_permutex2var_epi8(lowBytes, a, t.blue, b);
        channels(x, y);
        const __m512i word = _mm512_or_si512(
            _mm512_or_si512(_mm512_and_si512(x, redBits), _mm512_slli_epi16(_mm512_and_si512(x, greenBits), 3)),
            _mm512_srli_epi16(y, 3));
        Store(d + std::size_t(i) * 2, word, streaming);
    };
    return RunGroups<32, 2>(d, stream, fits, step);
}

// The identity: the AVX2 path takes what is left of the line.
std::uint32_t BytesToRGB16Run(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group, bool stream)
{
    const std::uint32_t i = BytesToRGB16Steps(s, d, n, group, stream, [](__m512i&, __m512i&) {});
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

using simd::ByteTable256;
using simd::LookUp;

// The destination tables of one line: each 256-entry table as four
// registers, and whether it is looked up (a null table is the identity).
struct LineTables {
    ByteTable256 table[3];
    bool look[3];

    explicit LineTables(const unsigned char* const* tables)
    {
        for (unsigned c = 0; c < 3; ++c) {
            look[c] = tables[c] != nullptr;
            if (look[c])
                table[c] = ByteTable256(tables[c]);
        }
    }
};
// Sixteen pixels, the table lookups fused into the three- to four-byte
// permute: one permute spreads 48 source bytes over 64 (the fourth bytes
// zeroed), then each table is looked up over the whole register and its
// destination bytes take the result.
inline __m512i Spread16(const unsigned char* s, const __m512i& spread, const LineTables& t)
{
    const __mmask64 colour = 0x7777777777777777ull, sourceBytes = 0xFFFFFFFFFFFFull;
    const __m512i v = _mm512_maskz_permutexvar_epi8(colour, spread, _mm512_maskz_loadu_epi8(sourceBytes, s));
    __m512i r = v;
    for (unsigned c = 0; c < 3; ++c)
        if (t.look[c])
            r = _mm512_mask_mov_epi8(r, 0x1111111111111111ull << c, LookUp(v, t.table[c]));
    return r;
}

// Gathers of one channel of sixty-four pixels from their 192 source bytes
// (three registers), in the order the interleave below wants: byte
// 16k + 4m + i of the register holds pixel 16m + 4k + i (k, m, i < 4), so
// that in-lane unpacks put every pixel in its place.
struct GatherIndex {
    __m512i channel[3];
    __mmask64 third[3];  // the bytes taken from the third register
};

GatherIndex MakeGatherIndex()
{
    GatherIndex g;
    for (unsigned c = 0; c < 3; ++c) {
        alignas(64) unsigned char x[64];
        std::uint64_t third = 0;
        for (unsigned p = 0; p < 64; ++p) {
            const unsigned k = p / 16, m = p / 4 % 4, i = p % 4;
            const unsigned from = 3 * (16 * m + 4 * k + i) + c;
            x[p] = static_cast<unsigned char>(from);
            if (from >= 128)
                third |= std::uint64_t(1) << p;
        }
        g.channel[c] = _mm512_load_si512(x);
        g.third[c] = third;
    }
    return g;
}

// Sixty-four pixels a step with ordinary stores: each channel's bytes
// gathered into a register of their own (two permutes), every table looked
// up once per 64 bytes (the sixteen-pixel step uses a quarter of each of its
// lookups), then four byte and four word unpacks interleave the channels
// with the zero fourth byte. Half the work of the sixteen-pixel step
// (measured on a frame in the cache: 0.117 ns a pixel, the identity line
// 0.113, the previous sixteen-pixel lookups 0.247); the sixteen-pixel step
// takes what is left of the line.
// With streaming stores this step measured slower than the sixteen-pixel
// one on cold frames (1.5-1.9 times the identity twin at 1080p against
// 1.2-1.25), hence only ordinary stores here.
std::uint32_t ThreeToFourTables64(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                  const LineTables& t)
{
    static const GatherIndex kGather = MakeGatherIndex();
    static const __m512i kSpread[2] = {SpreadIndex(false), SpreadIndex(true)};
    // Destination byte c holds source channel order[c].
    const unsigned order[3] = {blueFirst ? 2u : 0u, 1u, blueFirst ? 0u : 2u};
    __m512i index[3];
    __mmask64 third[3];
    for (unsigned c = 0; c < 3; ++c) {
        index[c] = kGather.channel[order[c]];
        third[c] = kGather.third[order[c]];
    }
    const __m512i zero = _mm512_setzero_si512();
    std::uint32_t i = 0;
    for (; i + 64 <= n; i += 64) {
        const unsigned char* p = s + std::size_t(i) * 3;
        const __m512i a = _mm512_loadu_si512(p), b = _mm512_loadu_si512(p + 64), e = _mm512_loadu_si512(p + 128);
        __m512i x[3];
        for (unsigned c = 0; c < 3; ++c) {
            x[c] = _mm512_mask_permutexvar_epi8(_mm512_permutex2var_epi8(a, index[c], b), third[c], index[c], e);
            if (t.look[c])
                x[c] = LookUp(x[c], t.table[c]);
        }
        const __m512i low = _mm512_unpacklo_epi8(x[0], x[1]), high = _mm512_unpackhi_epi8(x[0], x[1]);
        const __m512i lowEnd = _mm512_unpacklo_epi8(x[2], zero), highEnd = _mm512_unpackhi_epi8(x[2], zero);
        unsigned char* o = d + std::size_t(i) * 4;
        _mm512_storeu_si512(o, _mm512_unpacklo_epi16(low, lowEnd));
        _mm512_storeu_si512(o + 64, _mm512_unpackhi_epi16(low, lowEnd));
        _mm512_storeu_si512(o + 128, _mm512_unpacklo_epi16(high, highEnd));
        _mm512_storeu_si512(o + 192, _mm512_unpackhi_epi16(high, highEnd));
    }
    for (; i + 16 <= n; i += 16)
        _mm512_storeu_si512(d + std::size_t(i) * 4, Spread16(s + std::size_t(i) * 3, kSpread[blueFirst], t));
    return i;
}

// With streaming stores: the sixteen-pixel step throughout. Every table
// gives exactly its entries, whatever they are. Measured on cold frames, RGB
// 24 to BGRA through gains 1.8, 1.0, 1.4 (green skipped), time over the
// identity twin's, alternating runs against the previous form of this step
// (its tables packed into an array by a loop over the tables it looks up,
// now four registers a destination byte): 1.18-1.26 at 1080p and 1.06-1.17 at 4096 x 3000, from 1.47-1.58 and
// 1.37-1.41. The sixty-four-pixel step with ordinary stores measured
// 1.18-1.26 and 1.32-1.41.
std::uint32_t ThreeToFourTablesStream16(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                        const LineTables& t)
{
    static const __m512i kSpread[2] = {SpreadIndex(false), SpreadIndex(true)};
    const __m512i spread = kSpread[blueFirst];
    auto fits = [&](std::uint32_t i) { return i + 16 <= n; };
    auto step = [&](std::uint32_t i, auto streaming) {
        Store(d + std::size_t(i) * 4, Spread16(s + std::size_t(i) * 3, spread, t), streaming);
    };
    return RunGroups<16, 4>(d, true, fits, step);
}

// RGB16 packing through 8-bit tables (red, green, blue; null: the identity,
// skipped): the lookups run on the channel bytes the packing permutes
// gathered (x: green in the low bytes, red in the high ones; y: blue in the
// low bytes). The caller's scalar kernel takes the rest of the line.
// Measured on cold frames, RGB 24 to RGB16 through gains 1.8, 1.0, 1.4
// (green skipped): 1.25 times the identity twin's time at 1080p and 1.33 at
// 4096 x 3000, where the scalar lookups took 4.8.
std::uint32_t BytesToRGB16TablesAvx512(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                       const unsigned char* const* tables, bool stream)
{
    const LineTables t(tables);
    const __mmask64 lowBytes = 0x5555555555555555ull, highBytes = ~lowBytes;
    return BytesToRGB16Steps(s, d, n, group, stream, [&](__m512i& x, __m512i& y) {
        const __m512i greenRed = x;
        if (t.look[0])
            x = _mm512_mask_mov_epi8(x, highBytes, LookUp(greenRed, t.table[0]));
        if (t.look[1])
            x = _mm512_mask_mov_epi8(x, lowBytes, LookUp(greenRed, t.table[1]));
        if (t.look[2])
            y = _mm512_mask_mov_epi8(y, lowBytes, LookUp(y, t.table[2]));
    });
}

std::uint32_t ThreeToFourTablesAvx512(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                      const unsigned char* const* tables, bool stream)
{
    const LineTables t(tables);
    return stream ? ThreeToFourTablesStream16(s, d, n, blueFirst, t) : ThreeToFourTables64(s, d, n, blueFirst, t);
}

}  // namespace

const RGBPaths kRGBPathsAVX512 = {"AVX-512",          ThreeToFourAvx2,    FourToThreeSsse3,      FourToFourSsse3,
                                  BytesToRGB16Avx512, ThreeToPlanesSsse3, SwapThreeSsse3,        SwapFourSsse3,
                                  ThreeToFourStreamAvx2, BytesToRGB16StreamAvx512, ThreeToFourTablesAvx512,
                                  nullptr,          BytesToRGB16TablesAvx512};

}  // namespace simd
}  // namespace zo

#endif
