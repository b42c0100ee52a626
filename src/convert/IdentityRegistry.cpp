// Registered identity converters: plain copies for RGB16 and 8-bit gray, and
// interlaced-to-progressive copies that deinterlace through the area walk.
#include "ZoGenericConverters.h"
#include "core/StaticConverters.h"

void ZoAddIdentityConverters(ZoStaticConverters& store)
{
    constexpr std::int64_t I = ZO_PIXEL_INTERLACED, N = ZO_PIXEL_NORMALIZED;
    static const struct {
        std::int64_t source, destination;
        std::uint32_t pixelSize;
    } kIdentities[] = {
        {ZO_PT_RGB16, ZO_PT_RGB16, 2},
        {ZO_PT_GRAY8, ZO_PT_GRAY8, 1},
        {ZO_PT_GRAY8 | I, ZO_PT_GRAY8, 1},
        {ZO_PT_GRAY10 | I, ZO_PT_GRAY10, 2},
        {ZO_PT_GRAY10 | N | I, ZO_PT_GRAY10 | N, 2},
        {ZO_PT_GRAY12 | I, ZO_PT_GRAY12, 2},
        {ZO_PT_GRAY12 | N | I, ZO_PT_GRAY12 | N, 2},
        {ZO_PT_GRAY14 | I, ZO_PT_GRAY14, 2},
        {ZO_PT_GRAY14 | N | I, ZO_PT_GRAY14 | N, 2},
        {ZO_PT_GRAY16 | I, ZO_PT_GRAY16, 2},
        {ZO_PT_GRAY16 | N | I, ZO_PT_GRAY16 | N, 2},
        {ZO_PT_BAYER_RGB10 | I, ZO_PT_BAYER_RGB10, 2},
        {ZO_PT_BAYER_RGB10 | N | I, ZO_PT_BAYER_RGB10 | N, 2},
        {ZO_PT_BAYER_RGGB10 | I, ZO_PT_BAYER_RGGB10, 2},
        {ZO_PT_BAYER_RGGB10 | N | I, ZO_PT_BAYER_RGGB10 | N, 2},
        {ZO_PT_YUV10 | I, ZO_PT_YUV10, 2},
        {ZO_PT_YUV10 | N | I, ZO_PT_YUV10 | N, 2},
        {ZO_PT_YUV8 | I, ZO_PT_YUV8, 2},
    };
    for (const auto& e : kIdentities)
        store.Add<ZoIdentityConverter>(e.source, e.destination, e.pixelSize, e.pixelSize);
}
