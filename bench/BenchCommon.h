// Helpers shared by every family's benchmarks.
//
// A conversion benchmark takes its frame size from the arguments
// (width, height), converts the whole frame with the area Convert and reports
// destination bytes per second, so that every figure can be set against the
// memcpy of a destination-sized frame (ZoBench_MemcpyDestination, registered
// once in rgb_bench.cpp with the arguments width, height, bytes per pixel).
//
//   static void BM_Gray8ToRGB32(benchmark::State& state)
//   {
//       zobench::ConvertFrames(state, ZO_PT_GRAY8, ZO_PT_RGB32);
//   }
//   BENCHMARK(BM_Gray8ToRGB32)->Apply(zobench::FrameSizes);
#ifndef ZO_BENCH_COMMON_H
#define ZO_BENCH_COMMON_H

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "ZoPixelConverter.h"
#include "ZoPixelTypeFactory.h"

namespace zobench {

struct FrameSize {
    std::uint32_t width;
    std::uint32_t height;
};

// The two frames every conversion is measured on.
constexpr FrameSize kFrameSizes[] = {{1920, 1080}, {4096, 3000}};

// Registers the arguments (width, height) of both frames; times in ms.
inline void FrameSizes(benchmark::internal::Benchmark* b)
{
    for (const FrameSize& f : kFrameSizes)
        b->Args({static_cast<std::int64_t>(f.width), static_cast<std::int64_t>(f.height)});
    b->ArgNames({"w", "h"})->Unit(benchmark::kMillisecond);
}

// Bytes slack after every buffer: some converters write whole groups of
// pixels past the requested width.
constexpr std::size_t kSlack = 256;

// Fills `frame` with random data. With sampleBits between 9 and 16 the frame
// is filled with little-endian 16-bit words below 2^sampleBits (in-range
// samples of a 10/12/14-bit type); otherwise with random bytes.
inline void FillRandom(std::vector<unsigned char>& frame, unsigned sampleBits = 8, std::uint32_t seed = 12345)
{
    std::mt19937 rng(seed);
    if (sampleBits > 8 && sampleBits <= 16) {
        const std::uint32_t mask = (1u << sampleBits) - 1;
        for (std::size_t i = 0; i + 1 < frame.size(); i += 2) {
            const std::uint32_t w = rng() & mask;
            frame[i] = static_cast<unsigned char>(w);
            frame[i + 1] = static_cast<unsigned char>(w >> 8);
        }
    } else {
        for (unsigned char& b : frame)
            b = static_cast<unsigned char>(rng());
    }
}

// Runs the area Convert of `converter` over a random width x height frame
// (taken from the benchmark's two arguments) for every iteration and reports
// destination bytes per second. `filter` null: the converter's default path.
inline void ConvertFrames(benchmark::State& state, const ZoPixelConverter& converter, unsigned sampleBits = 8,
                          const ZoRGBFilter* filter = nullptr)
{
    const auto width = static_cast<std::uint32_t>(state.range(0));
    const auto height = static_cast<std::uint32_t>(state.range(1));
    const std::size_t sourceBytes = static_cast<std::size_t>(converter.GetSourceByteSize(width)) * height;
    const std::size_t destinationBytes = static_cast<std::size_t>(converter.GetDestinationByteSize(width)) * height;
    std::vector<unsigned char> source(sourceBytes + kSlack);
    std::vector<unsigned char> destination(destinationBytes + kSlack);
    FillRandom(source, sampleBits);
    for (auto _ : state) {
        if (filter)
            converter.Convert(*filter, source.data(), width, height, destination.data(), width, height, width,
                              height, 0, 0);
        else
            converter.Convert(source.data(), width, height, destination.data(), width, height, width, height, 0, 0);
        benchmark::DoNotOptimize(destination.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(destinationBytes));
}

// The same through the registry: skipped with a message when the pair has
// no registered converter (yet).
inline void ConvertFrames(benchmark::State& state, std::int64_t sourceType, std::int64_t destinationType,
                          unsigned sampleBits = 8, const ZoRGBFilter* filter = nullptr)
{
    if (!ZoPixelTypeFactory::HasConverter(sourceType, destinationType)) {
        state.SkipWithError("no converter registered for this pair");
        return;
    }
    ConvertFrames(state, ZoPixelTypeFactory::GetConverter(sourceType, destinationType), sampleBits, filter);
}

// Baseline: memcpy of a destination-sized frame (arguments width, height,
// destination bytes per pixel), bytes per second of the copy. Registered
// once, with MemcpySizes, by the RGB benchmarks.
inline void MemcpyDestination(benchmark::State& state)
{
    const std::size_t bytes = static_cast<std::size_t>(state.range(0)) * static_cast<std::size_t>(state.range(1)) *
                              static_cast<std::size_t>(state.range(2));
    std::vector<unsigned char> from(bytes), to(bytes);
    FillRandom(from);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), bytes);
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(bytes));
}

// Arguments of the baseline: both frames at 1, 2, 3 and 4 bytes per pixel.
inline void MemcpySizes(benchmark::internal::Benchmark* b)
{
    for (const FrameSize& f : kFrameSizes)
        for (std::int64_t bytesPerPixel = 1; bytesPerPixel <= 4; ++bytesPerPixel)
            b->Args({static_cast<std::int64_t>(f.width), static_cast<std::int64_t>(f.height), bytesPerPixel});
    b->ArgNames({"w", "h", "bpp"})->Unit(benchmark::kMillisecond);
}

}  // namespace zobench

#endif
