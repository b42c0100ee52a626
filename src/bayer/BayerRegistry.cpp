// Registered instances of the Bayer families, constructed in table order.
//
// Each source type gets one converter per destination: 10- and 12-bit
// sources through the 16-bit family (shift 2 or 4 to 8 bits, whole words to
// RGB48); "Normalized" 10- and 12-bit sources through the 8-bit family
// reading the upper byte (extra byte 1), except to RGB48 Normalized, which
// the 16-bit family serves with whole words; 8-bit sources through the 8-bit
// family.
//
// The last column is the default pattern. Deliberately, the deprecated RGGB
// 10-bit types carry GRBG while the deprecated RGGB 8- and 12-bit types
// carry RGGB; and the 16-bit family never consults its default at all.
#include "ZoBayerConverters.h"
#include "core/StaticConverters.h"

namespace {

enum class Kind { B16ToRGB16, B16ToRGB24, B16ToRGB32, B16ToRGB48, B8ToRGB16, B8ToRGB24, B8ToRGB32 };

struct BayerInstance {
    std::int64_t source;
    Kind kind;
    bool option;           // RGB24/RGB32: blue first; RGB48: RGB48 Normalized destination
    std::uint32_t param;   // 16-bit family: shift; 8-bit family: extra bytes per sample
    std::uint32_t pattern;  // default pattern
};

constexpr std::int64_t kNorm = ZO_PIXEL_NORMALIZED;
constexpr std::uint32_t GRBG = ZO_FLAG_BAYER_GRBG, RGGB = ZO_FLAG_BAYER_RGGB;

// clang-format off
const BayerInstance kBayerInstances[] = {
    // Bayer RGB 10-bits
    {ZO_PT_BAYER_RGB10,           Kind::B16ToRGB16, false, 2, GRBG},
    {ZO_PT_BAYER_RGB10,           Kind::B16ToRGB24, false, 2, GRBG},
    {ZO_PT_BAYER_RGB10,           Kind::B16ToRGB24, true,  2, GRBG},
    {ZO_PT_BAYER_RGB10,           Kind::B16ToRGB32, false, 2, GRBG},
    {ZO_PT_BAYER_RGB10,           Kind::B16ToRGB32, true,  2, GRBG},
    {ZO_PT_BAYER_RGB10,           Kind::B16ToRGB48, false, 0, GRBG},
    // Bayer RGB 10-bits, Normalized
    {ZO_PT_BAYER_RGB10 | kNorm,   Kind::B8ToRGB16,  false, 1, GRBG},
    {ZO_PT_BAYER_RGB10 | kNorm,   Kind::B8ToRGB24,  false, 1, GRBG},
    {ZO_PT_BAYER_RGB10 | kNorm,   Kind::B8ToRGB24,  true,  1, GRBG},
    {ZO_PT_BAYER_RGB10 | kNorm,   Kind::B8ToRGB32,  false, 1, GRBG},
    {ZO_PT_BAYER_RGB10 | kNorm,   Kind::B8ToRGB32,  true,  1, GRBG},
    {ZO_PT_BAYER_RGB10 | kNorm,   Kind::B16ToRGB48, true,  0, GRBG},
    // "Bayer RGGB, 10-bits (deprecated)": GRBG default (kept as registered)
    {ZO_PT_BAYER_RGGB10,          Kind::B16ToRGB16, false, 2, GRBG},
    {ZO_PT_BAYER_RGGB10,          Kind::B16ToRGB24, false, 2, GRBG},
    {ZO_PT_BAYER_RGGB10,          Kind::B16ToRGB24, true,  2, GRBG},
    {ZO_PT_BAYER_RGGB10,          Kind::B16ToRGB32, false, 2, GRBG},
    {ZO_PT_BAYER_RGGB10,          Kind::B16ToRGB32, true,  2, GRBG},
    {ZO_PT_BAYER_RGGB10,          Kind::B16ToRGB48, false, 0, GRBG},
    // "Bayer RGGB 10-bits, Normalized (deprecated)": GRBG default (kept)
    {ZO_PT_BAYER_RGGB10 | kNorm,  Kind::B8ToRGB16,  false, 1, GRBG},
    {ZO_PT_BAYER_RGGB10 | kNorm,  Kind::B8ToRGB24,  false, 1, GRBG},
    {ZO_PT_BAYER_RGGB10 | kNorm,  Kind::B8ToRGB24,  true,  1, GRBG},
    {ZO_PT_BAYER_RGGB10 | kNorm,  Kind::B8ToRGB32,  false, 1, GRBG},
    {ZO_PT_BAYER_RGGB10 | kNorm,  Kind::B8ToRGB32,  true,  1, GRBG},
    {ZO_PT_BAYER_RGGB10 | kNorm,  Kind::B16ToRGB48, true,  0, GRBG},
    // Bayer RGB 12-bits
    {ZO_PT_BAYER_RGB12,           Kind::B16ToRGB16, false, 4, GRBG},
    {ZO_PT_BAYER_RGB12,           Kind::B16ToRGB24, false, 4, GRBG},
    {ZO_PT_BAYER_RGB12,           Kind::B16ToRGB24, true,  4, GRBG},
    {ZO_PT_BAYER_RGB12,           Kind::B16ToRGB32, false, 4, GRBG},
    {ZO_PT_BAYER_RGB12,           Kind::B16ToRGB32, true,  4, GRBG},
    {ZO_PT_BAYER_RGB12,           Kind::B16ToRGB48, false, 0, GRBG},
    // Bayer RGB 12-bits, Normalized
    {ZO_PT_BAYER_RGB12 | kNorm,   Kind::B8ToRGB16,  false, 1, GRBG},
    {ZO_PT_BAYER_RGB12 | kNorm,   Kind::B8ToRGB24,  false, 1, GRBG},
    {ZO_PT_BAYER_RGB12 | kNorm,   Kind::B8ToRGB24,  true,  1, GRBG},
    {ZO_PT_BAYER_RGB12 | kNorm,   Kind::B8ToRGB32,  false, 1, GRBG},
    {ZO_PT_BAYER_RGB12 | kNorm,   Kind::B8ToRGB32,  true,  1, GRBG},
    {ZO_PT_BAYER_RGB12 | kNorm,   Kind::B16ToRGB48, true,  0, GRBG},
    // "Bayer RGGB, 12-bits (deprecated)"
    {ZO_PT_BAYER_RGGB12,          Kind::B16ToRGB16, false, 4, RGGB},
    {ZO_PT_BAYER_RGGB12,          Kind::B16ToRGB24, false, 4, RGGB},
    {ZO_PT_BAYER_RGGB12,          Kind::B16ToRGB24, true,  4, RGGB},
    {ZO_PT_BAYER_RGGB12,          Kind::B16ToRGB32, false, 4, RGGB},
    {ZO_PT_BAYER_RGGB12,          Kind::B16ToRGB32, true,  4, RGGB},
    {ZO_PT_BAYER_RGGB12,          Kind::B16ToRGB48, false, 0, RGGB},
    // "Bayer RGGB 12-bits, Normalized (deprecated)"
    {ZO_PT_BAYER_RGGB12 | kNorm,  Kind::B8ToRGB16,  false, 1, RGGB},
    {ZO_PT_BAYER_RGGB12 | kNorm,  Kind::B8ToRGB24,  false, 1, RGGB},
    {ZO_PT_BAYER_RGGB12 | kNorm,  Kind::B8ToRGB24,  true,  1, RGGB},
    {ZO_PT_BAYER_RGGB12 | kNorm,  Kind::B8ToRGB32,  false, 1, RGGB},
    {ZO_PT_BAYER_RGGB12 | kNorm,  Kind::B8ToRGB32,  true,  1, RGGB},
    {ZO_PT_BAYER_RGGB12 | kNorm,  Kind::B16ToRGB48, true,  0, RGGB},
    // Bayer RGB 8-bits
    {ZO_PT_BAYER_RGB8,            Kind::B8ToRGB16,  false, 0, GRBG},
    {ZO_PT_BAYER_RGB8,            Kind::B8ToRGB24,  false, 0, GRBG},
    {ZO_PT_BAYER_RGB8,            Kind::B8ToRGB24,  true,  0, GRBG},
    {ZO_PT_BAYER_RGB8,            Kind::B8ToRGB32,  false, 0, GRBG},
    {ZO_PT_BAYER_RGB8,            Kind::B8ToRGB32,  true,  0, GRBG},
    // "Bayer RGGB 8-bits (deprecated)"
    {ZO_PT_BAYER_RGGB8,           Kind::B8ToRGB16,  false, 0, RGGB},
    {ZO_PT_BAYER_RGGB8,           Kind::B8ToRGB24,  false, 0, RGGB},
    {ZO_PT_BAYER_RGGB8,           Kind::B8ToRGB24,  true,  0, RGGB},
    {ZO_PT_BAYER_RGGB8,           Kind::B8ToRGB32,  false, 0, RGGB},
    {ZO_PT_BAYER_RGGB8,           Kind::B8ToRGB32,  true,  0, RGGB},
};
// clang-format on

}  // namespace

void ZoAddBayerConverters(ZoStaticConverters& store)
{
    for (const BayerInstance& i : kBayerInstances) {
        switch (i.kind) {
        case Kind::B16ToRGB16: store.Add<ZoBayerRGB16ToRGB16>(i.source, i.param, i.pattern); break;
        case Kind::B16ToRGB24: store.Add<ZoBayerRGB16ToRGB24>(i.source, i.option, i.param, i.pattern); break;
        case Kind::B16ToRGB32: store.Add<ZoBayerRGB16ToRGB32>(i.source, i.option, i.param, i.pattern); break;
        case Kind::B16ToRGB48: store.Add<ZoBayerRGB16ToRGB48>(i.source, i.option, i.pattern); break;
        case Kind::B8ToRGB16: store.Add<ZoBayerRGB8ToRGB16>(i.source, i.param, i.pattern); break;
        case Kind::B8ToRGB24: store.Add<ZoBayerRGB8ToRGB24>(i.source, i.option, i.param, i.pattern); break;
        case Kind::B8ToRGB32: store.Add<ZoBayerRGB8ToRGB32>(i.source, i.option, i.param, i.pattern); break;
        }
    }
}
