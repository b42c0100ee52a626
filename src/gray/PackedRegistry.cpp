// Registered instances of the packed unpacking converters, in construction
// order (108 in all).
#include "ZoPackedConverters.h"
#include "core/StaticConverters.h"

namespace {

constexpr std::int64_t kTaps[] = {ZO_PIXEL_TAP_SINGLE, ZO_PIXEL_TAP_DUAL_LR, ZO_PIXEL_TAP_DUAL_LR_INV,
                                  ZO_PIXEL_TAP_DUAL_LINV_R, ZO_PIXEL_TAP_DUAL_LINV_RINV};
constexpr std::int64_t kGray10Packed = ZO_PT_GRAY10 | ZO_PIXEL_PACKED;  // 0x410002
constexpr std::int64_t kGray12Packed = ZO_PT_GRAY12 | ZO_PIXEL_PACKED;  // 0x410003

// Packed to 16-bit words: B shift, mask, A shift per (source, destination).
// The parameters are kept as they are, including the rows that do not treat
// both samples alike: 10-bit packed to Gray 12 leaves A as it is but shifts B
// left by 2 (B shift 2 instead of 4), and 10-bit packed to Gray 16 uses B
// shift -2 for the single-tap source but 0 for its dual-tap forms, and the
// dual-tap 12-bit packed Bayer sources use B shift 2 where the single-tap
// ones use 4. These
// rows are deliberate and must not be "corrected".
// Rows marked kAllTaps stand for the source and its four dual-tap forms.
constexpr std::int64_t kAllTaps = -1;
constexpr struct {
    std::int64_t source;
    std::int64_t taps;  // kAllTaps, or the tap bits of the one source
    std::int64_t destination;
    std::int16_t bShift;
    std::uint16_t mask;
    std::int16_t aShift;
} kUnpack16[] = {
    {kGray10Packed, kAllTaps, ZO_PT_GRAY10, 4, 0x3FF, 0},
    {kGray10Packed, kAllTaps, ZO_PT_GRAY12, 2, 0xFFF, 0},  // asymmetric, deliberate
    {kGray10Packed, ZO_PIXEL_TAP_SINGLE, ZO_PT_GRAY16, -2, 0xFFFF, 6},
    {kGray10Packed, ZO_PIXEL_TAP_DUAL_LR, ZO_PT_GRAY16, 0, 0xFFFF, 6},  // B shift 0: deliberate
    {kGray10Packed, ZO_PIXEL_TAP_DUAL_LR_INV, ZO_PT_GRAY16, 0, 0xFFFF, 6},
    {kGray10Packed, ZO_PIXEL_TAP_DUAL_LINV_R, ZO_PT_GRAY16, 0, 0xFFFF, 6},
    {kGray10Packed, ZO_PIXEL_TAP_DUAL_LINV_RINV, ZO_PT_GRAY16, 0, 0xFFFF, 6},
    {kGray10Packed, kAllTaps, ZO_PT_GRAY10 | ZO_PIXEL_NORMALIZED, 0, 0xFFFF, 6},
    {kGray12Packed, kAllTaps, ZO_PT_GRAY12, 4, 0xFFF, 0},
    {kGray12Packed, kAllTaps, ZO_PT_GRAY10, 4, 0x3FF, 0},
    {kGray12Packed, kAllTaps, ZO_PT_GRAY16, 0, 0xFFFF, 4},
    {kGray12Packed, kAllTaps, ZO_PT_GRAY12 | ZO_PIXEL_NORMALIZED, 0, 0xFFFF, 4},
    {ZO_PT_BAYER_RGB10 | ZO_PIXEL_PACKED, ZO_PIXEL_TAP_SINGLE, ZO_PT_BAYER_RGB10, 6, 0x3FF, 0},
    {ZO_PT_BAYER_RGB10 | ZO_PIXEL_PACKED, ZO_PIXEL_TAP_DUAL_LR, ZO_PT_BAYER_RGB10, 6, 0x3FF, 0},
    {ZO_PT_BAYER_RGGB10 | ZO_PIXEL_PACKED, ZO_PIXEL_TAP_SINGLE, ZO_PT_BAYER_RGGB10, 6, 0x3FF, 0},
    {ZO_PT_BAYER_RGGB10 | ZO_PIXEL_PACKED, ZO_PIXEL_TAP_DUAL_LR, ZO_PT_BAYER_RGGB10, 6, 0x3FF, 0},
    {ZO_PT_BAYER_RGB12 | ZO_PIXEL_PACKED, ZO_PIXEL_TAP_SINGLE, ZO_PT_BAYER_RGB12, 4, 0xFFF, 0},
    {ZO_PT_BAYER_RGB12 | ZO_PIXEL_PACKED, ZO_PIXEL_TAP_DUAL_LR, ZO_PT_BAYER_RGB12, 2, 0xFFF, 0},  // deliberate
    {ZO_PT_BAYER_RGGB12 | ZO_PIXEL_PACKED, ZO_PIXEL_TAP_SINGLE, ZO_PT_BAYER_RGGB12, 4, 0xFFF, 0},
    {ZO_PT_BAYER_RGGB12 | ZO_PIXEL_PACKED, ZO_PIXEL_TAP_DUAL_LR, ZO_PT_BAYER_RGGB12, 2, 0xFFF, 0},  // deliberate
};

// The 8-bit and RGB destinations: A shift, B shift per packed depth, for the
// source and its four dual-tap forms.
constexpr struct {
    std::int64_t source;
    std::uint32_t aShift;
    std::uint32_t bShift;
} kTo8Bit[] = {
    {kGray10Packed, 2, 6},
    {kGray12Packed, 4, 8},
};

}  // namespace

void ZoAddPackedConverters(ZoStaticConverters& store)
{
    for (const auto& row : kUnpack16) {
        for (std::int64_t tap : kTaps) {
            if (row.taps != kAllTaps && row.taps != tap)
                continue;
            store.Add<ZoGrayscale16PackedToGrayscale16>(row.source | tap, row.destination, row.bShift, row.mask,
                                                        row.aShift);
        }
    }
    for (const auto& row : kTo8Bit)
        for (std::int64_t tap : kTaps)
            store.Add<ZoGrayscale16PackedToGrayscale8>(row.source | tap, static_cast<std::uint16_t>(row.aShift),
                                                       static_cast<std::uint16_t>(row.bShift));
    for (const auto& row : kTo8Bit)
        for (std::int64_t tap : kTaps)
            store.Add<ZoGrayscale16PackedToRGB16>(row.source | tap, row.aShift, row.bShift);
    for (bool blueFirst : {false, true})
        for (const auto& row : kTo8Bit)
            for (std::int64_t tap : kTaps)
                store.Add<ZoGrayscale16PackedToRGB24>(row.source | tap, blueFirst, row.aShift, row.bShift);
    for (bool blueFirst : {false, true})
        for (const auto& row : kTo8Bit)
            for (std::int64_t tap : kTaps)
                store.Add<ZoGrayscale16PackedToRGB32>(row.source | tap, blueFirst, row.aShift, row.bShift);
}
