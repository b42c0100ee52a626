// Line kernels of the RGB repacking converters. Each converts `n` pixels of
// one line; every parameter (filter tables, channel step, shift) is passed
// in, the kernels never touch the conversion context. The destination layout
// is a writer of core/PixelIO.h (or Write32Keep below); `Identity` skips the
// filter lookups when the caller has checked that the tables are the identity.
#ifndef ZO_RGB_KERNELS_H
#define ZO_RGB_KERNELS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "core/PixelIO.h"

// Source and destination lines of one call never overlap.
#if defined(__GNUC__) || defined(_MSC_VER)
#define ZO_RESTRICT __restrict
#else
#define ZO_RESTRICT
#endif

namespace zo {

// Expansion of RGB16 channels to 8 bits: plain shifts, low bits left zero.
constexpr std::array<std::uint8_t, 32> MakeExpand5()
{
    std::array<std::uint8_t, 32> t{};
    for (std::uint32_t i = 0; i < 32; ++i)
        t[i] = static_cast<std::uint8_t>(i << 3);
    return t;
}
constexpr std::array<std::uint8_t, 64> MakeExpand6()
{
    std::array<std::uint8_t, 64> t{};
    for (std::uint32_t i = 0; i < 64; ++i)
        t[i] = static_cast<std::uint8_t>(i << 2);
    return t;
}
inline constexpr std::array<std::uint8_t, 32> kExpand5 = MakeExpand5();
inline constexpr std::array<std::uint8_t, 64> kExpand6 = MakeExpand6();

// The filter's channel tables, read once per line.
struct ChannelTables8 {
    const std::uint8_t* red;
    const std::uint8_t* green;
    const std::uint8_t* blue;
};
struct ChannelTables16 {
    const std::uint16_t* red;
    const std::uint16_t* green;
    const std::uint16_t* blue;
};

template <bool Identity>
inline std::uint8_t Map8(const std::uint8_t* table, std::uint8_t v)
{
    return Identity ? v : table[v];
}

template <bool Identity>
inline std::uint32_t Map16(const std::uint16_t* table, std::uint16_t v)
{
    return Identity ? v : table[v];
}

// RGB32/BGR32 whose fourth byte is given by the caller instead of 0.
template <unsigned RedIndex>
struct Write32Keep {
    static constexpr unsigned kBytes = 4;
    static void Put(unsigned char* d, std::uint8_t r, std::uint8_t g, std::uint8_t b, std::uint8_t fourth)
    {
        Write32<RedIndex>::Put(d, r, g, b);
        d[3] = fourth;
    }
};

// 8-bit-channel source, Group (3 or 4) channels of k bytes a pixel. The line
// form takes the LAST byte of each k-byte channel (bytes k-1, 2k-1, 3k-1):
// for sources that hold each channel in a little-endian 16-bit word (k = 2)
// that is the high byte. K is k when known at compile time, else 0.
//
//   k = 1:  r g b [x]                    k = 2:  r0 R  g0 G  b0 B  [x0 X]
//           ^ ^ ^                                   ^     ^     ^
template <class Writer, unsigned Group, unsigned K, bool Identity>
void RepackBytesLine(const unsigned char* ZO_RESTRICT s, unsigned char* ZO_RESTRICT d, std::uint32_t n,
                     std::uint32_t k, const ChannelTables8& t)
{
    const std::size_t step = K ? K : k;
    const std::size_t pixel = Group * step;
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned char* p = s + i * pixel;
        PutPixel<Writer>(d + i * Writer::kBytes, Map8<Identity>(t.red, p[step - 1]),
                    Map8<Identity>(t.green, p[2 * step - 1]), Map8<Identity>(t.blue, p[3 * step - 1]));
    }
}

// The same from four-channel pixels into RGB32/BGR32, the fourth byte copied
// unfiltered from the last byte of the fourth channel.
template <unsigned RedIndex, unsigned K, bool Identity>
void RepackBytesKeepFourthLine(const unsigned char* ZO_RESTRICT s, unsigned char* ZO_RESTRICT d, std::uint32_t n,
                               std::uint32_t k, const ChannelTables8& t)
{
    const std::size_t step = K ? K : k;
    const std::size_t pixel = 4 * step;
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned char* p = s + i * pixel;
        Write32Keep<RedIndex>::Put(d + 4 * i, Map8<Identity>(t.red, p[step - 1]),
                                   Map8<Identity>(t.green, p[2 * step - 1]), Map8<Identity>(t.blue, p[3 * step - 1]),
                                   p[4 * step - 1]);
    }
}

// Three-channel pixels of k-byte channels into three planes, one byte a
// pixel in each.
template <unsigned K, bool Identity>
void RepackBytesPlanarLine(const unsigned char* s, unsigned char* red, unsigned char* green, unsigned char* blue,
                           std::uint32_t n, std::uint32_t k, const ChannelTables8& t)
{
    // No restrict here: a direct call (plane offsets all 0) makes the three
    // planes one, and then the last written channel, blue, is what remains.
    const std::size_t step = K ? K : k;
    const std::size_t pixel = 3 * step;
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned char* p = s + i * pixel;
        red[i] = Map8<Identity>(t.red, p[step - 1]);
        green[i] = Map8<Identity>(t.green, p[2 * step - 1]);
        blue[i] = Map8<Identity>(t.blue, p[3 * step - 1]);
    }
}

// 16-bit samples, Words (3 or 4) little-endian words a pixel, red, green,
// blue in words 0, 1, 2: each looked up in the 16-bit table with the raw
// sample, shifted right, and its low 8 bits kept. For RGB16 output this is
// ((r & 0xFFF8) << 8) | ((g & 0xFC) << 3) | ((b & 0xFF) >> 3) on 16 bits:
// bits of r above the eighth fall off the top.
template <class Writer, unsigned Words, bool Identity>
void RepackWordsLine(const unsigned char* ZO_RESTRICT s, unsigned char* ZO_RESTRICT d, std::uint32_t n,
                     std::uint32_t shift, const ChannelTables16& t)
{
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned char* p = s + i * 2 * Words;
        PutPixel<Writer>(d + i * Writer::kBytes, static_cast<std::uint8_t>(Map16<Identity>(t.red, LoadLE16(p)) >> shift),
                    static_cast<std::uint8_t>(Map16<Identity>(t.green, LoadLE16(p + 2)) >> shift),
                    static_cast<std::uint8_t>(Map16<Identity>(t.blue, LoadLE16(p + 4)) >> shift));
    }
}

// `count` 16-bit samples to bytes (w >> shift) & 0xFF, in order.
inline void NarrowSamples(const unsigned char* ZO_RESTRICT s, unsigned char* ZO_RESTRICT d, std::uint32_t count,
                          std::uint32_t shift)
{
    for (std::size_t j = 0; j < count; ++j)
        d[j] = static_cast<unsigned char>(LoadLE16(s + 2 * j) >> shift);
}

// RGB16 source, filter then expansion: green E6[TG[word bits 10..5]]; red
// and blue are E5[TR[0]] and E5[TB[0]] whatever the word holds. Dropping
// the source's red and blue bits is deliberate: it is this library's
// established output of these forms (the 32-bit line form and the
// single-pixel forms). A filter entry past the 32/64-entry expansion table
// is masked to the table size. With the identity filter green is E6[bits].
template <class Writer, bool Identity>
void ExpandRGB16Line(const unsigned char* ZO_RESTRICT s, unsigned char* ZO_RESTRICT d, std::uint32_t n,
                     const ChannelTables8& t)
{
    const std::uint8_t r = kExpand5[t.red[0] & 0x1F];
    const std::uint8_t b = kExpand5[t.blue[0] & 0x1F];
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint32_t w = LoadLE16(s + 2 * i);
        // E6[bits 10..5] is (w >> 3) & 0xFC, computed so that the loop vectorises.
        const std::uint32_t g = Identity ? (w >> 3) & 0xFC : kExpand6[t.green[(w >> 5) & 0x3F] & 0x3F];
        PutPixel<Writer>(d + i * Writer::kBytes, r, static_cast<std::uint8_t>(g), b);
    }
}

// RGB16 source, expansion then filter (the 24-bit line form): red is TR[E5[0]]
// whatever the word holds (deliberate, as above), green TG[E6[bits 10..5]],
// blue TB[E5[bits 15..11]].
template <class Writer, bool Identity>
void ExpandThenFilterRGB16Line(const unsigned char* ZO_RESTRICT s, unsigned char* ZO_RESTRICT d, std::uint32_t n,
                               const ChannelTables8& t)
{
    const std::uint8_t r = t.red[kExpand5[0]];
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint32_t w = LoadLE16(s + 2 * i);
        // E6[bits 10..5] = (w >> 3) & 0xFC and E5[bits 15..11] = (w >> 8) & 0xF8.
        const std::uint32_t g = (w >> 3) & 0xFC, b = (w >> 8) & 0xF8;
        PutPixel<Writer>(d + i * Writer::kBytes, r, Identity ? static_cast<std::uint8_t>(g) : t.green[g],
                    Identity ? static_cast<std::uint8_t>(b) : t.blue[b]);
    }
}

}  // namespace zo

#endif
