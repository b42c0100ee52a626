// Registered instances of the YUV families, in construction order. Each row
// makes five converters for its source: RGB16, RGB24, BGR24, RGB32, BGR32.
#include "ZoYUVConverters.h"
#include "core/StaticConverters.h"

namespace {

enum class YUVFamily { YUV8, YUV10, YUV444 };

struct YUVRow {
    std::int64_t source;
    YUVFamily family;
    std::uint32_t parameter;  // YUV8 and YUV444: extra bytes per sample; YUV10: shift
    // 4:4:4 only: byte offsets of Y, U, V, for RGB16 and for RGB24/32 (the
    // rows differ for YCrCb, see below).
    std::uint32_t y16, u16, v16;
    std::uint32_t y, u, v;
};

constexpr std::int64_t kInterlaced = ZO_PIXEL_INTERLACED;
constexpr std::int64_t kNormalized = ZO_PIXEL_NORMALIZED;

// Two deliberate details, kept as the converters have always been registered:
// - YCrCb to RGB16 reads Y from byte 2 and V from byte 2 as well (2, 1, 2),
//   while YCrCb to RGB24/32 reads Y 0, Cr 1, Cb 2; the same YCrCb pixel
//   therefore gives different colours in RGB16 than in RGB24/32.
// - The 4:4:4 converters are registered under the IDs without the Packed flag
//   (0x40003, 0x40005 and their interlaced forms); the catalogue lists these
//   formats only with it, so a lookup by the catalogue ID finds no direct
//   4:4:4 converter.
const YUVRow kYUVRows[] = {
    // source                                  family             param  RGB16 Y U V   RGB24/32 Y U V
    {ZO_PT_YUV8,                               YUVFamily::YUV8,   0,     0, 0, 0,      0, 0, 0},
    {ZO_PT_YUV8 | kInterlaced,                 YUVFamily::YUV8,   0,     0, 0, 0,      0, 0, 0},
    {ZO_PT_YUV10 | kNormalized,                YUVFamily::YUV8,   1,     0, 0, 0,      0, 0, 0},
    {ZO_PT_YUV10 | kNormalized | kInterlaced,  YUVFamily::YUV8,   1,     0, 0, 0,      0, 0, 0},
    {ZO_PT_YUV10,                              YUVFamily::YUV10,  2,     0, 0, 0,      0, 0, 0},
    {ZO_PT_YUV10 | kInterlaced,                YUVFamily::YUV10,  2,     0, 0, 0,      0, 0, 0},
    {ZO_PT_YUV8_444,                           YUVFamily::YUV444, 0,     0, 1, 2,      0, 1, 2},
    {ZO_PT_YUV8_444 | kInterlaced,             YUVFamily::YUV444, 0,     0, 1, 2,      0, 1, 2},
    {ZO_PT_YCRCB,                              YUVFamily::YUV444, 0,     2, 1, 2,      0, 2, 1},
    {ZO_PT_YCRCB | kInterlaced,                YUVFamily::YUV444, 0,     2, 1, 2,      0, 2, 1},
};

void AddRow(ZoStaticConverters& store, const YUVRow& r)
{
    switch (r.family) {
    case YUVFamily::YUV8:
        store.Add<ZoYUV8ToRGB16>(r.source, r.parameter);
        store.Add<ZoYUV8ToRGB24>(r.source, false, r.parameter);
        store.Add<ZoYUV8ToRGB24>(r.source, true, r.parameter);
        store.Add<ZoYUV8ToRGB32>(r.source, false, r.parameter);
        store.Add<ZoYUV8ToRGB32>(r.source, true, r.parameter);
        break;
    case YUVFamily::YUV10:
        store.Add<ZoYUV10ToRGB16>(r.source, r.parameter);
        store.Add<ZoYUV10ToRGB24>(r.source, false, r.parameter);
        store.Add<ZoYUV10ToRGB24>(r.source, true, r.parameter);
        store.Add<ZoYUV10ToRGB32>(r.source, false, r.parameter);
        store.Add<ZoYUV10ToRGB32>(r.source, true, r.parameter);
        break;
    case YUVFamily::YUV444:
        store.Add<ZoYUV8444ToRGB16>(r.source, r.parameter, r.y16, r.u16, r.v16);
        store.Add<ZoYUV8444ToRGB24>(r.source, false, r.parameter, r.y, r.u, r.v);
        store.Add<ZoYUV8444ToRGB24>(r.source, true, r.parameter, r.y, r.u, r.v);
        store.Add<ZoYUV8444ToRGB32>(r.source, false, r.parameter, r.y, r.u, r.v);
        store.Add<ZoYUV8444ToRGB32>(r.source, true, r.parameter, r.y, r.u, r.v);
        break;
    }
}

}  // namespace

void ZoAddYUVConverters(ZoStaticConverters& store)
{
    for (const YUVRow& row : kYUVRows)
        AddRow(store, row);
}
