// Registered instances of the 8-bit dual-tap converters, in construction
// order (13 in all).
#include "ZoDualTapConverters.h"
#include "core/StaticConverters.h"

namespace {

constexpr std::int64_t kDualTaps[] = {ZO_PIXEL_TAP_DUAL_LR, ZO_PIXEL_TAP_DUAL_LR_INV, ZO_PIXEL_TAP_DUAL_LINV_R,
                                      ZO_PIXEL_TAP_DUAL_LINV_RINV};

// Each type's four left/right dual-tap forms recombine into the type itself.
constexpr std::int64_t kRecombined[] = {ZO_PT_GRAY8, ZO_PT_BAYER_RGB8, ZO_PT_BAYER_RGGB8};

}  // namespace

void ZoAddDualTapConverters(ZoStaticConverters& store)
{
    for (std::int64_t type : kRecombined)
        for (std::int64_t tap : kDualTaps)
            store.Add<ZoDualGrayscale8ToGrayscale8>(type | tap, type);
    store.Add<ZoDualLinesGrayscale8ToGrayscale8>();  // 0x10010001 -> 0x10001
}
