// White balance inside the interpolating 8-bit Bayer block with AVX-512 VBMI
// (this file alone is compiled for AVX-512 F, BW, VL and VBMI; the path runs
// at the AVX-512 level on CPUs with VBMI, see BayerSimd.cpp). The block is
// the AVX2 one (BayerBlocks256.h); right after it packs a channel to 32
// bytes, each byte is looked up in the channel's 256-entry table by byte
// permutes, so any table gives its own entries exactly: no arithmetic form
// is needed, and tables written entry by entry run as fast as gains.
//
// A table is four 64-byte registers. One two-source permute (vpermi2b)
// looks up 128 entries by the low seven bits of each index: the low half
// of the table in one, the high half in another, and bit 7 of the index
// picks between the two results. The channel's 32 bytes sit in the low
// half of the 512-bit index register (the upper half's results are
// dropped). A green table that is the identity (white balance usually
// leaves green alone) is not looked up.
#include "bayer/BayerPaths.h"

#if defined(__AVX512F__) && defined(__AVX512BW__) && defined(__AVX512VL__) && defined(__AVX512VBMI__)
// GCC 12 warns about the deliberately undefined upper halves of the index
// registers (_mm512_castsi256_si512) once they are inlined.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include "bayer/BayerBlocks256.h"
#include "simd/LookupVbmi.h"
#include "simd/Lut.h"

namespace zo {
namespace {

using simd::ByteTable256;
using simd::LookUp;

struct Tables {
    ByteTable256 red, green, blue;
};

template <unsigned Bytes, bool BlueFirst, bool Green>
std::uint32_t LookupBlocks(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                           std::uint32_t from, std::uint32_t to, int phase, const Tables& t)
{
    return Blocks256<Bytes, BlueFirst>(line, above, below, dst, from, to, phase, KeepWidened{},
                                       [&t](__m256i& red, __m256i& green, __m256i& blue) {
                                           red = LookUp(red, t.red);
                                           if constexpr (Green)
                                               green = LookUp(green, t.green);
                                           else
                                               (void)green;
                                           blue = LookUp(blue, t.blue);
                                       });
}

template <unsigned Bytes, bool BlueFirst>
std::uint32_t LookupLayout(const unsigned char* line, std::ptrdiff_t above, std::ptrdiff_t below, unsigned char* dst,
                           std::uint32_t from, std::uint32_t to, int phase, const Tables& t, bool lookGreen)
{
    return !lookGreen ? LookupBlocks<Bytes, BlueFirst, false>(line, above, below, dst, from, to, phase, t)
                               : LookupBlocks<Bytes, BlueFirst, true>(line, above, below, dst, from, to, phase, t);
}

}  // namespace

std::uint32_t BayerBytesLookupAvx512(unsigned bytes, bool blueFirst, const unsigned char* line, std::ptrdiff_t above,
                                     std::ptrdiff_t below, unsigned char* dst, std::uint32_t from, std::uint32_t to,
                                     int phase, const std::uint8_t* red, const std::uint8_t* green,
                                     const std::uint8_t* blue)
{
    const Tables t = {ByteTable256(red), ByteTable256(green), ByteTable256(blue)};
    const bool lookGreen = !simd::IsIdentityTable8(green);
    if (bytes == 4)
        return blueFirst ? LookupLayout<4, true>(line, above, below, dst, from, to, phase, t, lookGreen)
                         : LookupLayout<4, false>(line, above, below, dst, from, to, phase, t, lookGreen);
    return blueFirst ? LookupLayout<3, true>(line, above, below, dst, from, to, phase, t, lookGreen)
                     : LookupLayout<3, false>(line, above, below, dst, from, to, phase, t, lookGreen);
}

}  // namespace zo
#endif
