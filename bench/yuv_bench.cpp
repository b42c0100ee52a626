// YUV to RGB conversions on whole frames, through the registry and the area
// Convert. Compare each with BM_MemcpyDestination at the same frame size and
// destination bytes per pixel (rgb_bench.cpp), for example
//   zoimg_bench --benchmark_filter='YUV|Memcpy' --benchmark_repetitions=5
#include "BenchCommon.h"

#include "ZoPixelTypeIDs.h"

namespace {

// 4:2:2 8-bit (YUYV) to 24- and 32-bit, red- and blue-first.
void BM_YUV422ToRGB24(benchmark::State& state) { zobench::ConvertFrames(state, ZO_PT_YUV8, ZO_PT_RGB24); }
void BM_YUV422ToBGR24(benchmark::State& state) { zobench::ConvertFrames(state, ZO_PT_YUV8, ZO_PT_BGR24); }
void BM_YUV422ToRGB32(benchmark::State& state) { zobench::ConvertFrames(state, ZO_PT_YUV8, ZO_PT_RGB32); }
void BM_YUV422ToBGR32(benchmark::State& state) { zobench::ConvertFrames(state, ZO_PT_YUV8, ZO_PT_BGR32); }

// The same through a non-identity filter (the exact table path).
void BM_YUV422ToBGR32Filtered(benchmark::State& state)
{
    static ZoRGBFilter filter(8);
    filter.SetMultipliers(1.2, 1.0, 0.9);
    zobench::ConvertFrames(state, ZO_PT_YUV8, ZO_PT_BGR32, 8, &filter);
}

// 10-bit 4:2:2 words to BGR32.
void BM_YUV10ToBGR32(benchmark::State& state) { zobench::ConvertFrames(state, ZO_PT_YUV10, ZO_PT_BGR32, 10); }

// 4:4:4 to 32-bit (the registered IDs lack the Packed flag).
void BM_YUV444ToRGB32(benchmark::State& state) { zobench::ConvertFrames(state, ZO_PT_YUV8_444, ZO_PT_RGB32); }
void BM_YUV444ToBGR32(benchmark::State& state) { zobench::ConvertFrames(state, ZO_PT_YUV8_444, ZO_PT_BGR32); }

// Diagnostic: the whole frame as one line call, without the per-line context
// handling of the area walk (the kernel alone).
void BM_YUV422ToBGR32OneLine(benchmark::State& state)
{
    const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(ZO_PT_YUV8, ZO_PT_BGR32);
    const auto n = static_cast<std::uint32_t>(state.range(0) * state.range(1));
    std::vector<unsigned char> source(c.GetSourceByteSize(n) + zobench::kSlack);
    std::vector<unsigned char> destination(c.GetDestinationByteSize(n) + zobench::kSlack);
    zobench::FillRandom(source);
    for (auto _ : state) {
        c.Convert(source.data(), destination.data(), n);
        benchmark::DoNotOptimize(destination.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(c.GetDestinationByteSize(n)));
}

}  // namespace

BENCHMARK(BM_YUV422ToRGB24)->Apply(zobench::FrameSizes);
BENCHMARK(BM_YUV422ToBGR24)->Apply(zobench::FrameSizes);
BENCHMARK(BM_YUV422ToRGB32)->Apply(zobench::FrameSizes);
BENCHMARK(BM_YUV422ToBGR32)->Apply(zobench::FrameSizes);
BENCHMARK(BM_YUV422ToBGR32Filtered)->Apply(zobench::FrameSizes);
BENCHMARK(BM_YUV10ToBGR32)->Apply(zobench::FrameSizes);
BENCHMARK(BM_YUV444ToRGB32)->Apply(zobench::FrameSizes);
BENCHMARK(BM_YUV444ToBGR32)->Apply(zobench::FrameSizes);
BENCHMARK(BM_YUV422ToBGR32OneLine)->Apply(zobench::FrameSizes);
