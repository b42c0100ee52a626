// Registered instances of the grayscale family, in one table. For each source,
// in this order: the converter to 8-bit gray, the five RGB converters (RGB16,
// RGB24, BGR24, RGB32, BGR32) and the depth changes within 16-bit words.
//
// The rule behind the table: an LSB-aligned N-bit source reaches 8 bits by a
// right shift of N - 8 and a wider LSB-aligned type by a left shift of the
// difference; a normalized (or full 16-bit) source reaches 8 bits through its
// high byte and an LSB-aligned N-bit type by a right shift of 16 - N.
// Interlaced sources get only the 8-bit and RGB destinations.
#include "ZoGrayscaleConverters.h"
#include "core/StaticConverters.h"

namespace {

// How a source reaches 8 bits, and so which RGB classes serve it.
enum class GrayTo8 {
    None,      // already 8-bit: ZoGrayscale8ToRGB*, extra 0
    Shift,     // ZoGrayscale16ToGrayscale8 and ZoGrayscale16ToRGB*, with the shift
    HighByte,  // ZoGrayscale16NormalizedToGrayscale8 and ZoGrayscale8ToRGB*, extra 1
};

struct DepthChange {
    bool left;
    std::uint32_t shift;
    std::int64_t destination;
};

struct GrayRow {
    std::int64_t source;
    GrayTo8 to8;
    std::uint32_t shift;  // for GrayTo8::Shift
    DepthChange changes[3];
    std::uint32_t changeCount;
};

constexpr std::int64_t kN = ZO_PIXEL_NORMALIZED;
constexpr std::int64_t kI = ZO_PIXEL_INTERLACED;

constexpr DepthChange Left(std::uint32_t shift, std::int64_t destination) { return {true, shift, destination}; }
constexpr DepthChange Right(std::uint32_t shift, std::int64_t destination) { return {false, shift, destination}; }

// Every MSB-aligned source: right shift 6 to 10-bit, 4 to 12-bit, 2 to 14-bit.
#define ZO_FROM_NORMALIZED {Right(6, ZO_PT_GRAY10), Right(4, ZO_PT_GRAY12), Right(2, ZO_PT_GRAY14)}, 3
#define ZO_NO_CHANGES {}, 0

const GrayRow kGrayInstances[] = {
    {ZO_PT_GRAY8, GrayTo8::None, 0, ZO_NO_CHANGES},
    {ZO_PT_GRAY8 | kI, GrayTo8::None, 0, ZO_NO_CHANGES},
    {ZO_PT_GRAY10, GrayTo8::Shift, 2, {Left(2, ZO_PT_GRAY12), Left(4, ZO_PT_GRAY14), Left(6, ZO_PT_GRAY16)}, 3},
    {ZO_PT_GRAY10 | kI, GrayTo8::Shift, 2, ZO_NO_CHANGES},
    {ZO_PT_GRAY10 | kN, GrayTo8::HighByte, 0, ZO_FROM_NORMALIZED},
    {ZO_PT_GRAY10 | kN | kI, GrayTo8::HighByte, 0, ZO_NO_CHANGES},
    {ZO_PT_GRAY12, GrayTo8::Shift, 4, {Right(2, ZO_PT_GRAY10), Left(2, ZO_PT_GRAY14), Left(4, ZO_PT_GRAY16)}, 3},
    {ZO_PT_GRAY12 | kI, GrayTo8::Shift, 4, ZO_NO_CHANGES},
    {ZO_PT_GRAY12 | kN, GrayTo8::HighByte, 0, ZO_FROM_NORMALIZED},
    {ZO_PT_GRAY12 | kN | kI, GrayTo8::HighByte, 0, ZO_NO_CHANGES},
    {ZO_PT_GRAY14, GrayTo8::Shift, 6, {Right(4, ZO_PT_GRAY10), Right(2, ZO_PT_GRAY12), Left(2, ZO_PT_GRAY16)}, 3},
    {ZO_PT_GRAY14 | kI, GrayTo8::Shift, 6, ZO_NO_CHANGES},
    {ZO_PT_GRAY14 | kN, GrayTo8::HighByte, 0, ZO_FROM_NORMALIZED},
    {ZO_PT_GRAY14 | kN | kI, GrayTo8::HighByte, 0, ZO_NO_CHANGES},
    {ZO_PT_GRAY16, GrayTo8::HighByte, 0, ZO_FROM_NORMALIZED},
    {ZO_PT_GRAY16 | kI, GrayTo8::HighByte, 0, ZO_NO_CHANGES},
    {ZO_PT_GRAY16 | kN, GrayTo8::HighByte, 0, ZO_FROM_NORMALIZED},
    {ZO_PT_GRAY16 | kN | kI, GrayTo8::HighByte, 0, ZO_NO_CHANGES},
};

#undef ZO_FROM_NORMALIZED
#undef ZO_NO_CHANGES

template <class To16, class To24, class To32, class Parameter>
void AddRGBSet(ZoStaticConverters& store, const std::int64_t& source, Parameter p)
{
    store.Add<To16>(source, p);
    store.Add<To24>(source, false, p);
    store.Add<To24>(source, true, p);
    store.Add<To32>(source, false, p);
    store.Add<To32>(source, true, p);
}

void AddRow(ZoStaticConverters& store, const GrayRow& row)
{
    const std::int64_t& s = row.source;
    switch (row.to8) {
    case GrayTo8::None:
        AddRGBSet<ZoGrayscale8ToRGB16, ZoGrayscale8ToRGB24, ZoGrayscale8ToRGB32>(store, s, 0u);
        break;
    case GrayTo8::Shift:
        store.Add<ZoGrayscale16ToGrayscale8>(s, row.shift);
        AddRGBSet<ZoGrayscale16ToRGB16, ZoGrayscale16ToRGB24, ZoGrayscale16ToRGB32>(store, s, row.shift);
        break;
    case GrayTo8::HighByte:
        store.Add<ZoGrayscale16NormalizedToGrayscale8>(s);
        AddRGBSet<ZoGrayscale8ToRGB16, ZoGrayscale8ToRGB24, ZoGrayscale8ToRGB32>(store, s, 1u);
        break;
    }
    for (std::uint32_t i = 0; i < row.changeCount; ++i) {
        const DepthChange& c = row.changes[i];
        if (c.left)
            store.Add<ZoGrayscale16ToGrayscale16LeftShift>(s, c.destination, c.shift);
        else
            store.Add<ZoGrayscale16ToGrayscale16RightShift>(s, c.destination, c.shift);
    }
}

}  // namespace

// The shared lookup tables are constant-initialised (GrayscaleTables.cpp):
// nothing to fill at start-up.
void ZoInitGrayscaleTables() {}

void ZoAddGrayscaleConverters(ZoStaticConverters& store)
{
    for (const GrayRow& row : kGrayInstances)
        AddRow(store, row);
}
