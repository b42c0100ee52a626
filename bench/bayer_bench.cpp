// Bayer demosaicing benchmarks: whole frames through the registered
// converters, replicating and interpolating, against a memcpy of the
// destination frame registered here with the destination sizes used.
#include <benchmark/benchmark.h>

#include <vector>

#include "BenchCommon.h"
#include "ZoPixelTypeIDs.h"

namespace {

void BayerFrames(benchmark::State& state, std::int64_t source, std::int64_t destination, unsigned sampleBits,
                 std::uint32_t flags)
{
    if (!ZoPixelTypeFactory::HasConverter(source, destination)) {
        state.SkipWithError("no converter registered for this pair");
        return;
    }
    const ZoPixelConverter& converter = ZoPixelTypeFactory::GetConverter(source, destination);
    const auto width = static_cast<std::uint32_t>(state.range(0));
    const auto height = static_cast<std::uint32_t>(state.range(1));
    std::vector<unsigned char> frame(static_cast<std::size_t>(converter.GetSourceByteSize(width)) * height);
    std::vector<unsigned char> out(static_cast<std::size_t>(converter.GetDestinationByteSize(width)) * height);
    zobench::FillRandom(frame, sampleBits);
    for (auto _ : state) {
        converter.Convert(frame.data(), width, height, out.data(), width, height, width, height, flags, 0);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(out.size()));
}

constexpr std::uint32_t kReplicate = ZO_FLAG_BAYER_GRBG;
constexpr std::uint32_t kInterpolate = ZO_FLAG_BAYER_GRBG | ZO_FLAG_BAYER_INTERPOLATE;

void BM_Bayer8ToRGB24_Replicate(benchmark::State& s) { BayerFrames(s, ZO_PT_BAYER_RGB8, ZO_PT_RGB24, 8, kReplicate); }
void BM_Bayer8ToRGB24_Interpolate(benchmark::State& s) { BayerFrames(s, ZO_PT_BAYER_RGB8, ZO_PT_RGB24, 8, kInterpolate); }
void BM_Bayer8ToRGB32_Replicate(benchmark::State& s) { BayerFrames(s, ZO_PT_BAYER_RGB8, ZO_PT_RGB32, 8, kReplicate); }
void BM_Bayer8ToRGB32_Interpolate(benchmark::State& s) { BayerFrames(s, ZO_PT_BAYER_RGB8, ZO_PT_RGB32, 8, kInterpolate); }
void BM_Bayer12ToRGB24_Replicate(benchmark::State& s) { BayerFrames(s, ZO_PT_BAYER_RGB12, ZO_PT_RGB24, 12, kReplicate); }
void BM_Bayer12ToRGB24_Interpolate(benchmark::State& s) { BayerFrames(s, ZO_PT_BAYER_RGB12, ZO_PT_RGB24, 12, kInterpolate); }
void BM_Bayer12ToRGB48_Replicate(benchmark::State& s) { BayerFrames(s, ZO_PT_BAYER_RGB12, ZO_PT_RGB48, 12, kReplicate); }
void BM_Bayer12ToRGB48_Interpolate(benchmark::State& s) { BayerFrames(s, ZO_PT_BAYER_RGB12, ZO_PT_RGB48, 12, kInterpolate); }

// The memcpy baseline for the destinations above: 3, 4 and 6 bytes a pixel.
void BayerMemcpySizes(benchmark::internal::Benchmark* b)
{
    for (const zobench::FrameSize& f : zobench::kFrameSizes)
        for (std::int64_t bytesPerPixel : {3, 4, 6})
            b->Args({static_cast<std::int64_t>(f.width), static_cast<std::int64_t>(f.height), bytesPerPixel});
    b->ArgNames({"w", "h", "bpp"})->Unit(benchmark::kMillisecond);
}

}  // namespace

BENCHMARK(zobench::MemcpyDestination)->Name("BM_BayerMemcpyDestination")->Apply(BayerMemcpySizes);
BENCHMARK(BM_Bayer8ToRGB24_Replicate)->Apply(zobench::FrameSizes);
BENCHMARK(BM_Bayer8ToRGB24_Interpolate)->Apply(zobench::FrameSizes);
BENCHMARK(BM_Bayer8ToRGB32_Replicate)->Apply(zobench::FrameSizes);
BENCHMARK(BM_Bayer8ToRGB32_Interpolate)->Apply(zobench::FrameSizes);
BENCHMARK(BM_Bayer12ToRGB24_Replicate)->Apply(zobench::FrameSizes);
BENCHMARK(BM_Bayer12ToRGB24_Interpolate)->Apply(zobench::FrameSizes);
BENCHMARK(BM_Bayer12ToRGB48_Replicate)->Apply(zobench::FrameSizes);
BENCHMARK(BM_Bayer12ToRGB48_Interpolate)->Apply(zobench::FrameSizes);
