// Lookup tables from gray samples to RGB16 words and RGB32 pixels, shared by
// the grayscale and packed converters. Constant-initialised, so they are
// ready before any converter exists.
#ifndef ZO_GRAYSCALE_TABLES_H
#define ZO_GRAYSCALE_TABLES_H

#include <array>
#include <cstdint>

#include "core/PixelIO.h"

namespace zo {

template <unsigned Shift>
struct GrayTable {
    static constexpr std::uint32_t kSize = 256u << Shift;
    // Entry v: the RGB16 word for g = v >> Shift.
    static constexpr std::array<std::uint16_t, kSize> MakeRGB16()
    {
        std::array<std::uint16_t, kSize> t{};
        for (std::uint32_t v = 0; v < kSize; ++v)
            t[v] = GrayToRGB16Word(v >> Shift);
        return t;
    }
    // Entry v: g * 0x10101 with g = v >> Shift; in memory g, g, g, 0.
    static constexpr std::array<std::uint32_t, kSize> MakeRGB32()
    {
        std::array<std::uint32_t, kSize> t{};
        for (std::uint32_t v = 0; v < kSize; ++v)
            t[v] = (v >> Shift) * 0x10101u;
        return t;
    }
};

// Tables for shifts 0 (8-bit), 2, 4 and 6 (10-, 12- and 14-bit samples).
extern const std::array<std::uint16_t, 256> kGrayToRGB16_8;
extern const std::array<std::uint16_t, 1024> kGrayToRGB16_Shift2;
extern const std::array<std::uint16_t, 4096> kGrayToRGB16_Shift4;
extern const std::array<std::uint16_t, 16384> kGrayToRGB16_Shift6;
extern const std::array<std::uint32_t, 256> kGrayToRGB32_8;
extern const std::array<std::uint32_t, 1024> kGrayToRGB32_Shift2;
extern const std::array<std::uint32_t, 4096> kGrayToRGB32_Shift4;
extern const std::array<std::uint32_t, 16384> kGrayToRGB32_Shift6;

}  // namespace zo

#endif
