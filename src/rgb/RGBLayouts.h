// RGB destination layouts written by every converter family. Each writer
// stores one pixel from three 8-bit channel values (already filtered).
// Multi-byte words are little-endian.
//
//   RGB16   one word: bits 15..11 red, 10..5 green, 4..0 blue
//   RGB24   r g b          BGR24   b g r
//   RGB32   r g b 0        BGR32   b g r 0     (fourth byte written 0)
//   RGB48   three words r g b (16-bit channels, see WriteRGB48)
#ifndef ZO_RGB_LAYOUTS_H
#define ZO_RGB_LAYOUTS_H

#include <cstdint>
#include <cstring>

namespace zo {

inline void StoreWord(unsigned char* d, std::uint16_t w)
{
    d[0] = static_cast<unsigned char>(w);
    d[1] = static_cast<unsigned char>(w >> 8);
}

inline std::uint16_t LoadWord(const unsigned char* s)
{
    return static_cast<std::uint16_t>(s[0] | (s[1] << 8));
}

// The RGB16 word of three 8-bit channels.
inline std::uint16_t PackRGB16(std::uint32_t r, std::uint32_t g, std::uint32_t b)
{
    return static_cast<std::uint16_t>(((r >> 3) << 11) | ((g & 0xFC) << 3) | (b >> 3));
}

struct WriteRGB16 {
    static constexpr unsigned kBytes = 2;
    static void Put(unsigned char* d, std::uint8_t r, std::uint8_t g, std::uint8_t b) { StoreWord(d, PackRGB16(r, g, b)); }
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

// 48-bit output keeps 16-bit channels: three little-endian words, red first.
struct WriteRGB48 {
    static constexpr unsigned kBytes = 6;
    static void Put(unsigned char* d, std::uint16_t r, std::uint16_t g, std::uint16_t b)
    {
        StoreWord(d, r);
        StoreWord(d + 2, g);
        StoreWord(d + 4, b);
    }
};

}  // namespace zo

#endif
