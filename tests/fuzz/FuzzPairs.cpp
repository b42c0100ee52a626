#include "fuzz/FuzzPairs.h"

#include <cstdio>
#include <cstdlib>

namespace zofuzz {

const std::vector<Pair>& RegisteredPairs()
{
    static const std::vector<Pair> pairs = [] {
        // Every ID the built-in types are made of: a base ID with any of the
        // Normalized, Interlaced, Packed and Planar bits and any tap mode.
        const std::int64_t bases[] = {ZO_PT_GRAY8, ZO_PT_GRAY10, ZO_PT_GRAY12, ZO_PT_GRAY14, ZO_PT_GRAY16,
            ZO_PT_RGB16, ZO_PT_RGB24, ZO_PT_RGB32, ZO_PT_RGB48, ZO_PT_RGB64, ZO_PT_BGR24, ZO_PT_BGR32,
            ZO_PT_RGB48_10BITS, ZO_PT_RGB64_10BITS, ZO_PT_RGB8_3, ZO_PT_RGB8_4, ZO_PT_RGB48_12BITS,
            ZO_PT_RGB64_12BITS, ZO_PT_BAYER_RGB8, ZO_PT_BAYER_RGB10, ZO_PT_BAYER_RGB12, ZO_PT_BAYER_RGGB8,
            ZO_PT_BAYER_RGGB10, ZO_PT_BAYER_RGGB12, ZO_PT_YUV8, ZO_PT_YUV10, ZO_PT_YUV8_444, ZO_PT_YCRCB};
        const std::uint32_t taps[] = {0, ZO_PIXEL_TAP_DUAL_LR, ZO_PIXEL_TAP_DUAL_LR_INV, ZO_PIXEL_TAP_DUAL_LINV_R,
                                      ZO_PIXEL_TAP_DUAL_LINV_RINV, ZO_PIXEL_TAP_DUAL_LINES};
        std::vector<Pair> found;
        for (std::int64_t base : bases)
            for (std::int64_t bits = 0; bits < 16; ++bits)
                for (std::uint32_t tap : taps) {
                    const std::int64_t source = base | (bits << 20) | tap;
                    std::int64_t destination = 0;
                    for (std::uint32_t i = 0; ZoPixelTypeFactory_EnumConverterFrom(i, source, &destination); ++i)
                        found.push_back({source, destination, ZoPixelTypeFactory_GetConverter(source, destination)});
                }
        if (found.size() != 680) {
            std::fprintf(stderr, "found %zu registered pairs, expected 680\n", found.size());
            std::abort();
        }
        return found;
    }();
    return pairs;
}

}  // namespace zofuzz
