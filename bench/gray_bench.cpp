// Grayscale depth and expansion benchmarks (destination bytes per second;
// compare with BM_MemcpyDestination of the same destination size).
#include "BenchCommon.h"

#include <string>

#include "ZoPixelTypeIDs.h"

namespace {

// Samples in range for the source depth.
template <std::int64_t Source, std::int64_t Destination, unsigned Bits>
void BM_Gray(benchmark::State& state)
{
    zobench::ConvertFrames(state, Source, Destination, Bits);
}

#define ZO_GRAY_BENCH(Label, Source, Destination, Bits)                                  \
    BENCHMARK_TEMPLATE(BM_Gray, Source, Destination, Bits)                        \
        ->Name(std::string("BM_") + (Label))                                 \
        ->Apply(zobench::FrameSizes)

ZO_GRAY_BENCH("Gray8ToBGR32", ZO_PT_GRAY8, ZO_PT_BGR32, 8);
ZO_GRAY_BENCH("Gray8ToRGB32", ZO_PT_GRAY8, ZO_PT_RGB32, 8);
ZO_GRAY_BENCH("Gray8ToRGB24", ZO_PT_GRAY8, ZO_PT_RGB24, 8);
ZO_GRAY_BENCH("Gray8ToRGB16", ZO_PT_GRAY8, ZO_PT_RGB16, 8);
ZO_GRAY_BENCH("Gray10ToRGB32", ZO_PT_GRAY10, ZO_PT_RGB32, 10);
ZO_GRAY_BENCH("Gray10ToRGB16", ZO_PT_GRAY10, ZO_PT_RGB16, 10);
ZO_GRAY_BENCH("Gray12ToRGB32", ZO_PT_GRAY12, ZO_PT_RGB32, 12);
ZO_GRAY_BENCH("Gray12ToRGB24", ZO_PT_GRAY12, ZO_PT_RGB24, 12);
ZO_GRAY_BENCH("Gray12ToRGB16", ZO_PT_GRAY12, ZO_PT_RGB16, 12);
ZO_GRAY_BENCH("Gray14ToRGB32", ZO_PT_GRAY14, ZO_PT_RGB32, 14);
ZO_GRAY_BENCH("Gray16ToRGB32", ZO_PT_GRAY16, ZO_PT_RGB32, 16);
ZO_GRAY_BENCH("Gray16ToRGB24", ZO_PT_GRAY16, ZO_PT_RGB24, 16);
ZO_GRAY_BENCH("Gray16ToRGB16", ZO_PT_GRAY16, ZO_PT_RGB16, 16);
ZO_GRAY_BENCH("Gray12ToGray8", ZO_PT_GRAY12, ZO_PT_GRAY8, 12);
ZO_GRAY_BENCH("Gray16ToGray8", ZO_PT_GRAY16, ZO_PT_GRAY8, 16);
ZO_GRAY_BENCH("Gray10ToGray16", ZO_PT_GRAY10, ZO_PT_GRAY16, 10);
ZO_GRAY_BENCH("Gray16ToGray12", ZO_PT_GRAY16, ZO_PT_GRAY12, 16);

}  // namespace
