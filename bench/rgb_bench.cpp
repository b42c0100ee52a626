// RGB repacking benchmarks, and the memcpy baseline every family compares to.
#include "BenchCommon.h"

#include "ZoPixelTypeIDs.h"

namespace {

void BM_MemcpyDestination(benchmark::State& state)
{
    zobench::MemcpyDestination(state);
}
BENCHMARK(BM_MemcpyDestination)->Apply(zobench::MemcpySizes);

void BM_RGB24ToBGR32(benchmark::State& state)
{
    zobench::ConvertFrames(state, ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_BGR32);
}
BENCHMARK(BM_RGB24ToBGR32)->Apply(zobench::FrameSizes);

}  // namespace
