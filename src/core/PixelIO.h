// Pixel loads, stores and destination writers shared by every converter
// family. Multi-byte words are little-endian; where the host is too, loads
// and stores are plain moves (which lets the compiler vectorise the loops).
//
// RGB writers store one pixel from three 8-bit channel values (already
// filtered):
//
//   RGB16   one word: bits 15..11 red, 10..5 green, 4..0 blue
//   RGB24   r g b          BGR24   b g r
//   RGB32   r g b 0        BGR32   b g r 0     (fourth byte written 0)
//   RGB48   three words r g b (16-bit channels, see WriteRGB48)
//
// Gray writers store one pixel from one gray value (see GrayToGray8 ...).
#ifndef ZO_PIXEL_IO_H
#define ZO_PIXEL_IO_H

#include <cstdint>
#include <cstring>
#include <type_traits>

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
#define ZO_BIG_ENDIAN_HOST 1
#else
#define ZO_BIG_ENDIAN_HOST 0
#endif

namespace zo {

// ---- Little-endian words ----------------------------------------------------

inline std::uint32_t LoadLE16(const unsigned char* s)
{
#if ZO_BIG_ENDIAN_HOST
    return static_cast<std::uint32_t>(s[0] | (s[1] << 8));
#else
    std::uint16_t w;
    std::memcpy(&w, s, 2);
    return w;
#endif
}

// Stores the low 16 bits of v.
inline void StoreLE16(unsigned char* d, std::uint32_t v)
{
#if ZO_BIG_ENDIAN_HOST
    d[0] = static_cast<unsigned char>(v);
    d[1] = static_cast<unsigned char>(v >> 8);
#else
    const std::uint16_t w = static_cast<std::uint16_t>(v);
    std::memcpy(d, &w, 2);
#endif
}

inline void StoreLE32(unsigned char* d, std::uint32_t v)
{
#if ZO_BIG_ENDIAN_HOST
    d[0] = static_cast<unsigned char>(v);
    d[1] = static_cast<unsigned char>(v >> 8);
    d[2] = static_cast<unsigned char>(v >> 16);
    d[3] = static_cast<unsigned char>(v >> 24);
#else
    std::memcpy(d, &v, 4);
#endif
}

// ---- RGB writers --------------------------------------------------------------

// The RGB16 word of three 8-bit channels.
constexpr std::uint16_t PackRGB16(std::uint32_t r, std::uint32_t g, std::uint32_t b)
{
    return static_cast<std::uint16_t>(((r >> 3) << 11) | ((g & 0xFC) << 3) | (b >> 3));
}

struct WriteRGB16 {
    static constexpr unsigned kBytes = 2;
    static void Put(unsigned char* d, std::uint8_t r, std::uint8_t g, std::uint8_t b) { StoreLE16(d, PackRGB16(r, g, b)); }
};

// 24- and 32-bit layouts; RedIndex is 0 for red-first, 2 for blue-first.
template <unsigned RedIndex>
struct Write24 {
    static constexpr unsigned kBytes = 3;
    static constexpr unsigned kRed = RedIndex, kGreen = 1, kBlue = 2 - RedIndex;
    static void Put(unsigned char* d, std::uint8_t r, std::uint8_t g, std::uint8_t b)
    {
        d[kRed] = r;
        d[kGreen] = g;
        d[kBlue] = b;
    }
};

template <unsigned RedIndex>
struct Write32 {
    static constexpr unsigned kBytes = 4;
    static constexpr unsigned kRed = RedIndex, kGreen = 1, kBlue = 2 - RedIndex;
    static void Put(unsigned char* d, std::uint8_t r, std::uint8_t g, std::uint8_t b)
    {
        d[kRed] = r;
        d[kGreen] = g;
        d[kBlue] = b;
        d[3] = 0;
    }
};

// Runs `kernel` with the writer of the channel order chosen at run time:
// Layout<2> (blue first) when bgr, else Layout<0> (red first). The kernel
// takes the writer as a value whose type selects the instantiation.
template <template <unsigned> class Layout, class Kernel>
void ByChannelOrder(bool bgr, Kernel&& kernel)
{
    if (bgr)
        kernel(Layout<2>{});
    else
        kernel(Layout<0>{});
}

using WriteRGB24 = Write24<0>;
using WriteBGR24 = Write24<2>;
using WriteRGB32 = Write32<0>;
using WriteBGR32 = Write32<2>;

template <class Writer>
struct IsWrite32 : std::false_type {};
template <unsigned RedIndex>
struct IsWrite32<Write32<RedIndex>> : std::true_type {};

// Writer::Put from channel values whose low 8 bits count, except that the
// 32-bit and RGB16 layouts are stored as one word (the same bytes), which
// lets the compiler vectorise.
template <class Writer>
inline void PutPixel(unsigned char* d, std::uint32_t r, std::uint32_t g, std::uint32_t b)
{
#if !ZO_BIG_ENDIAN_HOST
    if constexpr (IsWrite32<Writer>::value) {
        const std::uint32_t v = ((r & 0xFF) << (8 * Writer::kRed)) | ((g & 0xFF) << 8) | ((b & 0xFF) << (8 * Writer::kBlue));
        std::memcpy(d, &v, 4);
        return;
    }
    if constexpr (std::is_same<Writer, WriteRGB16>::value) {
        const std::uint16_t v = PackRGB16(r & 0xFF, g & 0xFF, b & 0xFF);
        std::memcpy(d, &v, 2);
        return;
    }
#endif
    Writer::Put(d, static_cast<std::uint8_t>(r), static_cast<std::uint8_t>(g), static_cast<std::uint8_t>(b));
}

// 48-bit output keeps 16-bit channels: three little-endian words, red first
// (one 6-byte copy where the host is little-endian).
struct WriteRGB48 {
    static constexpr unsigned kBytes = 6;
    static void Put(unsigned char* d, std::uint16_t r, std::uint16_t g, std::uint16_t b)
    {
#if ZO_BIG_ENDIAN_HOST
        StoreLE16(d, r);
        StoreLE16(d + 2, g);
        StoreLE16(d + 4, b);
#else
        const std::uint16_t words[3] = {r, g, b};
        std::memcpy(d, words, 6);
#endif
    }
};

// ---- Gray writers: Put(d, v) stores gray value v at pixel d ------------------

// RGB16 word of an 8-bit gray g: 5 bits in 15..11, 6 bits in 10..5, 5 in 4..0.
constexpr std::uint16_t GrayToRGB16Word(std::uint32_t g)
{
    return static_cast<std::uint16_t>(((g >> 3) << 11) | ((g >> 2) << 5) | (g >> 3));
}

// A 16-bit gray value as one word.
struct GrayToGray16 {
    static constexpr unsigned kBytes = 2;
    static void Put(unsigned char* d, std::uint32_t v) { StoreLE16(d, v); }
};
// The 8-bit layouts take the low 8 bits of v.
struct GrayToGray8 {
    static constexpr unsigned kBytes = 1;
    static void Put(unsigned char* d, std::uint32_t v) { d[0] = static_cast<unsigned char>(v); }
};
struct GrayToRGB16 {
    static constexpr unsigned kBytes = 2;
    static void Put(unsigned char* d, std::uint32_t v) { StoreLE16(d, GrayToRGB16Word(v & 0xFF)); }
};
// Three bytes g: the same for RGB24 and BGR24.
struct GrayToRGB24 {
    static constexpr unsigned kBytes = 3;
    static void Put(unsigned char* d, std::uint32_t v)
    {
        const auto g = static_cast<unsigned char>(v);
        d[0] = g;
        d[1] = g;
        d[2] = g;
    }
};
// Bytes g, g, g, 0: the same for RGB32 and BGR32.
struct GrayToRGB32 {
    static constexpr unsigned kBytes = 4;
    static void Put(unsigned char* d, std::uint32_t v)
    {
        const std::uint32_t g = v & 0xFF;
        StoreLE32(d, g | (g << 8) | (g << 16));
    }
};
// Bytes g, g, g, g: the packed unpacking converters fill the fourth byte
// too, unlike the grayscale expansion whose RGB32 pixels end in 0; the
// difference is deliberate and kept.
struct GrayToRGB32Filled {
    static constexpr unsigned kBytes = 4;
    static void Put(unsigned char* d, std::uint32_t v) { StoreLE32(d, (v & 0xFF) * 0x1010101u); }
};

}  // namespace zo

#endif
