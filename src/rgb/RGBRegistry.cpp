// Registered instances of the RGB repacking family, in one table. Each row
// names a source type and the set of converters made for it; the sets add
// their instances in the order listed beside them. Where a set says "both",
// the red-first instance comes before the blue-first one.
#include "ZoRGBConverters.h"
#include "core/StaticConverters.h"

namespace {

enum class RGBSet {
    // ZoRGB16ToRGB24 both; ZoRGB16ToRGB32 both.
    FromRGB16,
    // ZoRGB24ToRGB24Planar; ZoRGB32ToRGB16; ZoRGB32ToRGB24 both; ZoRGB32ToRGB32
    // both, all skip 0. Deliberately the four-byte classes: the unpacked
    // RGB24 type is read four bytes a pixel, unlike its packed form.
    FromRGB24Unpacked,
    // ZoRGB24ToRGB16; ZoRGB24ToRGB24 both; ZoRGB24ToRGB32 both;
    // ZoRGB24ToRGB24Planar (the planar one only with skip 0).
    ThreeBytes,
    // ZoRGB32ToRGB16; ZoRGB32ToRGB24 both; ZoRGB32ToRGB32 both.
    FourBytes,
    // ZoRGB48ToRGB16; ZoRGB48ToRGB24 both; ZoRGB48ToRGB32 both.
    ThreeWords,
    // ZoRGB64ToRGB16; ZoRGB64ToRGB24 both; ZoRGB64ToRGB32 both.
    FourWords,
};

struct RGBRow {
    std::int64_t source;
    RGBSet set;
    std::uint32_t parameter;  // skip for byte sets, shift for word sets
};

constexpr std::int64_t kNormalized = ZO_PIXEL_NORMALIZED;
constexpr std::int64_t kPacked = ZO_PIXEL_PACKED;

const RGBRow kRGBInstances[] = {
    {ZO_PT_RGB16, RGBSet::FromRGB16, 0},
    {ZO_PT_RGB24, RGBSet::FromRGB24Unpacked, 0},
    {ZO_PT_RGB24 | kPacked, RGBSet::ThreeBytes, 0},
    {ZO_PT_RGB8_3, RGBSet::ThreeBytes, 0},
    {ZO_PT_RGB8_3 | kPacked, RGBSet::ThreeBytes, 0},
    {ZO_PT_RGB32, RGBSet::FourBytes, 0},
    {ZO_PT_RGB8_4, RGBSet::FourBytes, 0},
    // Normalized 10/12-bit samples in 16-bit words: one byte in two, the
    // line forms take the high byte.
    {ZO_PT_RGB48_10BITS | kNormalized, RGBSet::ThreeBytes, 1},
    {ZO_PT_RGB48_12BITS | kNormalized, RGBSet::ThreeBytes, 1},
    {ZO_PT_RGB64_10BITS | kNormalized, RGBSet::FourBytes, 1},
    {ZO_PT_RGB64_12BITS | kNormalized, RGBSet::FourBytes, 1},
    // Least-significant-bit aligned samples: shifted by depth - 8.
    {ZO_PT_RGB48_10BITS, RGBSet::ThreeWords, 2},
    {ZO_PT_RGB48_12BITS, RGBSet::ThreeWords, 4},
    {ZO_PT_RGB64_10BITS, RGBSet::FourWords, 2},
    {ZO_PT_RGB64_12BITS, RGBSet::FourWords, 4},
};

void AddSet(ZoStaticConverters& store, const RGBRow& row)
{
    const std::int64_t& s = row.source;
    const std::uint32_t p = row.parameter;
    switch (row.set) {
    case RGBSet::FromRGB16:
        store.Add<ZoRGB16ToRGB24>(s, false);
        store.Add<ZoRGB16ToRGB24>(s, true);
        store.Add<ZoRGB16ToRGB32>(s, false);
        store.Add<ZoRGB16ToRGB32>(s, true);
        break;
    case RGBSet::FromRGB24Unpacked:
        store.Add<ZoRGB24ToRGB24Planar>(s, p);
        store.Add<ZoRGB32ToRGB16>(s, p);
        store.Add<ZoRGB32ToRGB24>(s, false, p);
        store.Add<ZoRGB32ToRGB24>(s, true, p);
        store.Add<ZoRGB32ToRGB32>(s, false, p);
        store.Add<ZoRGB32ToRGB32>(s, true, p);
        break;
    case RGBSet::ThreeBytes:
        store.Add<ZoRGB24ToRGB16>(s, p);
        store.Add<ZoRGB24ToRGB24>(s, false, p);
        store.Add<ZoRGB24ToRGB24>(s, true, p);
        store.Add<ZoRGB24ToRGB32>(s, false, p);
        store.Add<ZoRGB24ToRGB32>(s, true, p);
        if (p == 0)
            store.Add<ZoRGB24ToRGB24Planar>(s, p);
        break;
    case RGBSet::FourBytes:
        store.Add<ZoRGB32ToRGB16>(s, p);
        store.Add<ZoRGB32ToRGB24>(s, false, p);
        store.Add<ZoRGB32ToRGB24>(s, true, p);
        store.Add<ZoRGB32ToRGB32>(s, false, p);
        store.Add<ZoRGB32ToRGB32>(s, true, p);
        break;
    case RGBSet::ThreeWords:
        store.Add<ZoRGB48ToRGB16>(s, p);
        store.Add<ZoRGB48ToRGB24>(s, p, false);
        store.Add<ZoRGB48ToRGB24>(s, p, true);
        store.Add<ZoRGB48ToRGB32>(s, p, false);
        store.Add<ZoRGB48ToRGB32>(s, p, true);
        break;
    case RGBSet::FourWords:
        store.Add<ZoRGB64ToRGB16>(s, p);
        store.Add<ZoRGB64ToRGB24>(s, p, false);
        store.Add<ZoRGB64ToRGB24>(s, p, true);
        store.Add<ZoRGB64ToRGB32>(s, p, false);
        store.Add<ZoRGB64ToRGB32>(s, p, true);
        break;
    }
}

}  // namespace

// The RGB16 expansion tables are constant-initialised (see RGBKernels.h):
// nothing to fill at start-up.
void ZoInitRGBTables() {}

void ZoAddRGBConverters(ZoStaticConverters& store)
{
    for (const RGBRow& row : kRGBInstances)
        AddSet(store, row);
}
