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
#include "simd/LutForm.h"

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
    return RunGroups<32, 2>(d, n, stream, fits, step);
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

// The source byte of each destination byte of sixty-four three- to
// four-byte pixels, in four parts of sixteen pixels (the fourth bytes are
// zeroed by the permute's mask). Part k reads source bytes 48k to 48k + 47
// of the three source registers: the first from the first register, the
// second from the first two, the third from the last two, the fourth from
// the last; its indices count from the first register it reads.
struct SpreadIndex {
    __m512i part[4];
};

SpreadIndex MakeSpreadIndex(bool blueFirst)
{
    static const unsigned kBase[4] = {0, 0, 64, 128};
    SpreadIndex x;
    for (unsigned k = 0; k < 4; ++k) {
        alignas(64) unsigned char spread[64];
        for (unsigned j = 0; j < 64; ++j) {
            const unsigned c = j % 4 == 3 ? 0 : (blueFirst ? 2 - j % 4 : j % 4);
            spread[j] = static_cast<unsigned char>(3 * (16 * k + j / 4) + c - kBase[k]);
        }
        x.part[k] = _mm512_load_si512(spread);
    }
    return x;
}

using simd::ByteTable256;
using simd::LookUp;
using simd::LookUpAt;

// The destination tables of one line: each 256-entry table as four
// registers, and whether it is looked up (a null table is the identity).
// at[r][c]: the bytes of the r-th register of a 192-byte source block (64
// three-byte pixels) that destination byte c takes, i.e. the source bytes
// table c looks up: byte j of register r is source channel (64r + j) % 3.
struct LineTables {
    ByteTable256 table[3];
    bool look[3];
    __mmask64 at[3][3];

    explicit LineTables(const unsigned char* const* tables, bool blueFirst = false)
    {
        for (unsigned c = 0; c < 3; ++c) {
            look[c] = tables[c] != nullptr;
            if (look[c])
                table[c] = ByteTable256(tables[c]);
            // (r + j) % 3 == channel where j % 3 == (channel + 3 - r) % 3.
            static const std::uint64_t kEveryThird[3] = {0x9249249249249249ull, 0x2492492492492492ull,
                                                         0x4924924924924924ull};
            const unsigned channel = blueFirst ? 2 - c : c;
            for (unsigned r = 0; r < 3; ++r)
                at[r][c] = kEveryThird[(channel + 3 - r) % 3];
        }
    }
};

// The source bytes of register r of a block through their tables, in
// place: two masked permutes a table, green skipped when it is the
// identity.
inline __m512i LookUpSource(__m512i v, const LineTables& t, unsigned r)
{
    const __mmask64 upper = _mm512_movepi8_mask(v);
    for (unsigned c = 0; c < 3; ++c)
        if (t.look[c])
            v = LookUpAt(v, t.table[c], t.at[r][c], upper);
    return v;
}

// With streaming stores: sixteen pixels a step, one permute spreads 48
// source bytes over 64 (the fourth bytes zeroed), then each table is looked
// up over the whole register and its destination bytes take the result.
// Measured on cold 1080p frames, RGB 24 to BGRA through gains 1.8, 1.0, 1.4,
// time over the identity twin's in alternating runs: this step 1.23-1.65
// (the machine's load 2.7-4.2), the sixty-four-pixel step below with
// streaming stores 1.83-1.98, and its sixteen-pixel form (lookups on the
// loaded source bytes, then the spread) 1.29-1.79. Not the length of the
// lookup chains: with red and blue looked up side by side and merged, the
// sixty-four-pixel step measured the same, and so it did with a source
// prefetch and with 256-bit streaming stores; it is only slow streaming
// (without streaming it matches the identity twin).
std::uint32_t ThreeToFourTablesStream16(const unsigned char* s, unsigned char* d, std::uint32_t n,
                                        const __m512i& spread, const LineTables& t)
{
    const __mmask64 colour = 0x7777777777777777ull, sourceBytes = 0xFFFFFFFFFFFFull;
    auto fits = [&](std::uint32_t i) { return i + 16 <= n; };
    auto step = [&](std::uint32_t i, auto streaming) {
        const __m512i v = _mm512_maskz_permutexvar_epi8(colour, spread,
                                                        _mm512_maskz_loadu_epi8(sourceBytes, s + std::size_t(i) * 3));
        __m512i r = v;
        for (unsigned c = 0; c < 3; ++c)
            if (t.look[c])
                r = _mm512_mask_mov_epi8(r, 0x1111111111111111ull << c, LookUp(v, t.table[c]));
        Store(d + std::size_t(i) * 4, r, streaming);
    };
    return RunGroups<16, 4>(d, n, true, fits, step);
}

// Three- to four-byte pixels through 8-bit tables, sixty-four pixels a
// step: the tables are looked up on the three source registers, before the
// spread (each lookup serves 64 source bytes, and the masked permutes merge
// the looked-up bytes into their places, so no blend), then four permutes
// spread the 192 bytes over the four destination registers. Sixteen pixels
// a step (the same on a partly loaded register) take what is left of the
// line. Every table gives exactly its entries, whatever they are. With
// ordinary stores only: streaming lines take ThreeToFourTablesStream16.
// It replaced a sixty-four-pixel step that gathered each channel into a
// register of its own (six permutes) and interleaved them with eight
// unpacks: fewer instructions, the same time on cold 1080p frames without
// streaming (ZOIMG_STREAMING=off: 0.61 and 0.76 ms against 0.62 and 0.78,
// alternating runs).
std::uint32_t ThreeToFourTablesAvx512(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                      const unsigned char* const* tables, bool stream)
{
    static const SpreadIndex kSpread[2] = {MakeSpreadIndex(false), MakeSpreadIndex(true)};
    const SpreadIndex& x = kSpread[blueFirst];
    const LineTables t(tables, blueFirst);
    const __mmask64 colour = 0x7777777777777777ull, sourceBytes = 0xFFFFFFFFFFFFull;
    auto fits = [&](std::uint32_t i) { return i + 64 <= n; };
    auto step = [&](std::uint32_t i, auto streaming) {
        const unsigned char* p = s + std::size_t(i) * 3;
        const __m512i a = LookUpSource(_mm512_loadu_si512(p), t, 0);
        const __m512i b = LookUpSource(_mm512_loadu_si512(p + 64), t, 1);
        const __m512i e = LookUpSource(_mm512_loadu_si512(p + 128), t, 2);
        unsigned char* o = d + std::size_t(i) * 4;
        Store(o, _mm512_maskz_permutexvar_epi8(colour, x.part[0], a), streaming);
        Store(o + 64, _mm512_maskz_permutex2var_epi8(colour, a, x.part[1], b), streaming);
        Store(o + 128, _mm512_maskz_permutex2var_epi8(colour, b, x.part[2], e), streaming);
        Store(o + 192, _mm512_maskz_permutexvar_epi8(colour, x.part[3], e), streaming);
    };
    if (stream)
        return ThreeToFourTablesStream16(s, d, n, x.part[0], t);
    std::uint32_t i = RunGroups<64, 4>(d, n, false, fits, step);
    for (; i + 16 <= n; i += 16) {
        const __m512i v = LookUpSource(_mm512_maskz_loadu_epi8(sourceBytes, s + std::size_t(i) * 3), t, 0);
        _mm512_storeu_si512(d + std::size_t(i) * 4, _mm512_maskz_permutexvar_epi8(colour, x.part[0], v));
    }
    return i;
}

// RGB16 packing through 8-bit tables (red, green, blue; null: the identity,
// skipped): the lookups run on the channel bytes the packing permutes
// gathered (x: green in the low bytes, red in the high ones; y: blue in the
// low bytes). The caller's scalar kernel takes the rest of the line.
// Measured on cold frames, RGB 24 to RGB16 through gains 1.8, 1.0, 1.4
// (green skipped): 1.25 times the identity twin's time at 1080p and 1.33 at
// 4096 x 3000, where the scalar lookups took 4.8. Each lookup merges its
// bytes in place (LookUpAt: red and green share x's bit-7 mask), two
// permutes a table and no blend.
std::uint32_t BytesToRGB16TablesAvx512(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                       const unsigned char* const* tables, bool stream)
{
    const LineTables t(tables);
    const __mmask64 lowBytes = 0x5555555555555555ull, highBytes = ~lowBytes;
    return BytesToRGB16Steps(s, d, n, group, stream, [&](__m512i& x, __m512i& y) {
        const __mmask64 upper = _mm512_movepi8_mask(x);
        if (t.look[0])
            x = LookUpAt(x, t.table[0], highBytes, upper);
        if (t.look[1])
            x = LookUpAt(x, t.table[1], lowBytes, upper);
        if (t.look[2])
            y = LookUpAt(y, t.table[2], lowBytes, _mm512_movepi8_mask(y));
    });
}

// RGB16 packing through the unit forms of LutRgb16Forms (simd/LutForm.h):
// each channel byte v becomes min(255, v + MulHi(v, fraction)) in place,
// a byte-masked saturating sum (red in x's high bytes, green in its low
// bytes unless its table is the identity, blue in y's low bytes). The AVX2
// path takes what is left of the line, the caller's lookups the rest.
// Measured on cold frames, RGB 24 to RGB16 through gains 1.8, 1.0, 1.4,
// time over the identity twin's: 1.02-1.03 at 1080p and 1.06-1.10 at
// 4096 x 3000, where the lookups below took 1.44-1.49 and 1.25-1.44.
std::uint32_t BytesToRGB16UnitAvx512(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                     const LutRgb16Forms& forms, bool stream)
{
    if (group != 3 && group != 4)
        return 0;
    const __m512i red = _mm512_set1_epi16(static_cast<short>(forms.fraction[0]));
    const __m512i green = _mm512_set1_epi16(static_cast<short>(forms.fraction[1]));
    const __m512i blue = _mm512_set1_epi16(static_cast<short>(forms.fraction[2]));
    const __m512i highBytes = _mm512_set1_epi16(static_cast<short>(0xFF00)), lowBytes = _mm512_set1_epi16(0xFF);
    const __mmask64 high = 0xAAAAAAAAAAAAAAAAull, low = ~high;
    const bool greenToo = !forms.identity[1];
    const std::uint32_t i = BytesToRGB16Steps(s, d, n, group, stream, [&](__m512i& x, __m512i& y) {
        x = _mm512_mask_adds_epu8(x, high, x, _mm512_mulhi_epu16(_mm512_and_si512(x, highBytes), red));
        if (greenToo)
            x = _mm512_mask_adds_epu8(x, low, x, _mm512_mulhi_epu16(_mm512_and_si512(x, lowBytes), green));
        y = _mm512_adds_epu8(y, _mm512_mulhi_epu16(y, blue));
    });
    return i + kRGBPathsAVX2.bytesToRGB16Unit(s + std::size_t(i) * group, d + std::size_t(i) * 2, n - i, group,
                                              forms, stream);
}

}  // namespace

const RGBPaths kRGBPathsAVX512 = {"AVX-512",          ThreeToFourAvx2,    FourToThreeSsse3,      FourToFourSsse3,
                                  BytesToRGB16Avx512, ThreeToPlanesSsse3, SwapThreeSsse3,        SwapFourSsse3,
                                  ThreeToFourStreamAvx2, BytesToRGB16StreamAvx512, ThreeToFourTablesAvx512,
                                  nullptr,          BytesToRGB16TablesAvx512, nullptr, BytesToRGB16UnitAvx512};

}  // namespace simd
}  // namespace zo

#endif
