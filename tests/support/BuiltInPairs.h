// Test support: every built-in pixel type ID and the registered pairs
// between them (test converters excluded), in the registry's enumeration
// order.
#ifndef ZO_TEST_BUILT_IN_PAIRS_H
#define ZO_TEST_BUILT_IN_PAIRS_H

#include <cstdint>
#include <utility>
#include <vector>

#include "ZoPixelTypeFactory.h"
#include "ZoPixelTypeIDs.h"
#include "support/ConvertSupport.h"

namespace zotest {

// Every ID the built-in types are made of: base IDs with any of the
// Normalized, Interlaced, Packed and Planar bits and any tap mode.
inline const std::vector<std::int64_t>& CandidateIds()
{
    static const std::vector<std::int64_t> ids = [] {
        const std::int64_t bases[] = {ZO_PT_GRAY8, ZO_PT_GRAY10, ZO_PT_GRAY12, ZO_PT_GRAY14, ZO_PT_GRAY16,
            ZO_PT_RGB16, ZO_PT_RGB24, ZO_PT_RGB32, ZO_PT_RGB48, ZO_PT_RGB64, ZO_PT_BGR24, ZO_PT_BGR32,
            ZO_PT_RGB48_10BITS, ZO_PT_RGB64_10BITS, ZO_PT_RGB8_3, ZO_PT_RGB8_4, ZO_PT_RGB48_12BITS,
            ZO_PT_RGB64_12BITS, ZO_PT_BAYER_RGB8, ZO_PT_BAYER_RGB10, ZO_PT_BAYER_RGB12, ZO_PT_BAYER_RGGB8,
            ZO_PT_BAYER_RGGB10, ZO_PT_BAYER_RGGB12, ZO_PT_YUV8, ZO_PT_YUV10, ZO_PT_YUV8_444, ZO_PT_YCRCB};
        const std::uint32_t taps[] = {0, ZO_PIXEL_TAP_DUAL_LR, ZO_PIXEL_TAP_DUAL_LR_INV, ZO_PIXEL_TAP_DUAL_LINV_R,
                                      ZO_PIXEL_TAP_DUAL_LINV_RINV, ZO_PIXEL_TAP_DUAL_LINES};
        std::vector<std::int64_t> v;
        for (std::int64_t base : bases)
            for (std::uint32_t bits = 0; bits < 16; ++bits)
                for (std::uint32_t tap : taps)
                    v.push_back(base | (static_cast<std::int64_t>(bits) << 20) | tap);
        return v;
    }();
    return ids;
}

inline std::vector<std::pair<std::int64_t, std::int64_t>> RegisteredBuiltInPairs()
{
    std::vector<std::pair<std::int64_t, std::int64_t>> pairs;
    for (std::int64_t source : CandidateIds()) {
        std::int64_t destination = 0;
        for (std::uint32_t i = 0; ZoPixelTypeFactory::EnumConverterFrom(i, source, destination); ++i)
            if (!IsTestId(destination))
                pairs.push_back({source, destination});
    }
    return pairs;
}

}  // namespace zotest

#endif
