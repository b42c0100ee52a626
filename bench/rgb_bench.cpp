// RGB repacking benchmarks, and the memcpy baseline every family compares to
// (destination bytes per second).
#include "BenchCommon.h"

#include <string>

#include "ZoPixelTypeIDs.h"

namespace {

void BM_MemcpyDestination(benchmark::State& state)
{
    zobench::MemcpyDestination(state);
}
BENCHMARK(BM_MemcpyDestination)->Apply(zobench::MemcpySizes);

constexpr std::int64_t kPacked = ZO_PIXEL_PACKED, kNormalized = ZO_PIXEL_NORMALIZED;

template <std::int64_t Source, std::int64_t Destination, unsigned Bits>
void BM_RGB(benchmark::State& state)
{
    zobench::ConvertFrames(state, Source, Destination, Bits);
}

// A white-balance filter: the table path instead of the identity fast path.
template <std::int64_t Source, std::int64_t Destination, unsigned Bits>
void BM_RGBFiltered(benchmark::State& state)
{
    ZoRGBFilter filter(Bits > 8 ? 16 : 8);
    filter.SetMultipliers(1.2, 1.0, 0.8);
    zobench::ConvertFrames(state, Source, Destination, Bits, &filter);
}

#define ZO_RGB_BENCH(Label, Source, Destination, Bits)                                   \
    BENCHMARK_TEMPLATE(BM_RGB, Source, Destination, Bits)                         \
        ->Name(std::string("BM_") + (Label))                                 \
        ->Apply(zobench::FrameSizes)
#define ZO_RGB_FILTERED_BENCH(Label, Source, Destination, Bits)                          \
    BENCHMARK_TEMPLATE(BM_RGBFiltered, Source, Destination, Bits)                 \
        ->Name(std::string("BM_") + (Label) + "_Filtered")                     \
        ->Apply(zobench::FrameSizes)

ZO_RGB_BENCH("RGB24PackedToBGR32", ZO_PT_RGB24 | kPacked, ZO_PT_BGR32, 8);
ZO_RGB_BENCH("RGB24PackedToRGB32", ZO_PT_RGB24 | kPacked, ZO_PT_RGB32, 8);
ZO_RGB_BENCH("RGB24PackedToBGR24", ZO_PT_RGB24 | kPacked, ZO_PT_BGR24, 8);
ZO_RGB_BENCH("RGB24PackedToRGB16", ZO_PT_RGB24 | kPacked, ZO_PT_RGB16, 8);
ZO_RGB_BENCH("RGB24PackedToRGB24Planar", ZO_PT_RGB24 | kPacked, ZO_PT_RGB24 | ZO_PIXEL_PLANAR, 8);
ZO_RGB_BENCH("RGB32ToBGR32", ZO_PT_RGB32, ZO_PT_BGR32, 8);
ZO_RGB_BENCH("RGB32ToRGB32", ZO_PT_RGB32, ZO_PT_RGB32, 8);
ZO_RGB_BENCH("RGB32ToBGR24", ZO_PT_RGB32, ZO_PT_BGR24, 8);
ZO_RGB_BENCH("RGB16ToBGR32", ZO_PT_RGB16, ZO_PT_BGR32, 8);
ZO_RGB_BENCH("RGB16ToRGB24", ZO_PT_RGB16, ZO_PT_RGB24, 8);
ZO_RGB_BENCH("RGB48_12ToRGB24", ZO_PT_RGB48_12BITS, ZO_PT_RGB24, 12);
ZO_RGB_BENCH("RGB48_12ToBGR24", ZO_PT_RGB48_12BITS, ZO_PT_BGR24, 12);
ZO_RGB_BENCH("RGB48_10ToBGR32", ZO_PT_RGB48_10BITS, ZO_PT_BGR32, 10);
ZO_RGB_BENCH("RGB64_12ToRGB16", ZO_PT_RGB64_12BITS, ZO_PT_RGB16, 12);
ZO_RGB_BENCH("RGB48_12NormalizedToBGR32", ZO_PT_RGB48_12BITS | kNormalized, ZO_PT_BGR32, 16);
ZO_RGB_FILTERED_BENCH("RGB24PackedToBGR32", ZO_PT_RGB24 | kPacked, ZO_PT_BGR32, 8);
ZO_RGB_FILTERED_BENCH("RGB48_12ToRGB24", ZO_PT_RGB48_12BITS, ZO_PT_RGB24, 12);

}  // namespace
