// Packed unpacking and dual-tap recombination benchmarks (compare with
// BM_MemcpyDestination at the same frame size and destination bytes per
// pixel: 2 for 16-bit, 4 for RGB32, 1 for 8-bit).
#include "BenchCommon.h"

#include "ZoPixelTypeIDs.h"

namespace {

constexpr std::int64_t kGray12Packed = ZO_PT_GRAY12 | ZO_PIXEL_PACKED;

void BM_Packed12ToGray12(benchmark::State& state)
{
    zobench::ConvertFrames(state, kGray12Packed, ZO_PT_GRAY12);
}
BENCHMARK(BM_Packed12ToGray12)->Apply(zobench::FrameSizes);

void BM_Packed12ToRGB32(benchmark::State& state)
{
    zobench::ConvertFrames(state, kGray12Packed, ZO_PT_RGB32);
}
BENCHMARK(BM_Packed12ToRGB32)->Apply(zobench::FrameSizes);

void BM_DualTapLRInvertedToGray8(benchmark::State& state)
{
    zobench::ConvertFrames(state, ZO_PT_GRAY8 | ZO_PIXEL_TAP_DUAL_LR_INV, ZO_PT_GRAY8);
}
BENCHMARK(BM_DualTapLRInvertedToGray8)->Apply(zobench::FrameSizes);

}  // namespace
