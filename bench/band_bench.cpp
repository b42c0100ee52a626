// Band conversion on two cores: one caller thread converting a whole
// 4096 x 3000 frame against two caller threads each converting half of its
// lines as a band, beside a memcpy of a 4-byte-per-pixel frame by one and by
// two threads. The second thread is a persistent helper woken for each
// frame, so thread start-up is not measured; frames are touched before
// timing starts. Times are wall-clock; bytes are destination bytes, items
// are frames. Every iteration converts the same frame, so part of it may
// still be in the last-level cache (32 MiB here) when the next begins: the
// two-frame rows (threads:3) touch twice the memory and show what separate
// frames from a camera cost.
#include <benchmark/benchmark.h>

#include <condition_variable>
#include <cstring>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "BenchCommon.h"
#include "ZoImgLibExt.h"
#include "ZoPixelTypeIDs.h"

namespace {

constexpr std::uint32_t kWidth = 4096, kHeight = 3000;

// A thread that runs one job at a time for the benchmark's thread.
class Helper {
public:
    Helper() : mThread([this] { Loop(); }) {}
    ~Helper()
    {
        {
            std::lock_guard<std::mutex> lock(mLock);
            mStop = true;
        }
        mWake.notify_one();
        mThread.join();
    }
    void Start(std::function<void()> job)
    {
        {
            std::lock_guard<std::mutex> lock(mLock);
            mJob = std::move(job);
            mBusy = true;
        }
        mWake.notify_one();
    }
    void Wait()
    {
        std::unique_lock<std::mutex> lock(mLock);
        mDone.wait(lock, [this] { return !mBusy; });
    }

private:
    void Loop()
    {
        std::unique_lock<std::mutex> lock(mLock);
        for (;;) {
            mWake.wait(lock, [this] { return mStop || mJob; });
            if (mStop)
                return;
            std::function<void()> job = std::move(mJob);
            mJob = nullptr;
            lock.unlock();
            job();
            lock.lock();
            mBusy = false;
            mDone.notify_one();
        }
    }

    std::mutex mLock;
    std::condition_variable mWake, mDone;
    std::function<void()> mJob;
    bool mBusy = false, mStop = false;
    std::thread mThread;
};

Helper& TheHelper()
{
    static Helper helper;
    return helper;
}

// One frame's buffers, filled (and so touched) before timing.
struct Frame {
    const ZoPixelConverter* converter;
    std::vector<unsigned char> source, destination;
    std::uint32_t flags;

    std::uint32_t Whole()
    {
        return converter->Convert(source.data(), kWidth, kHeight, destination.data(), kWidth, kHeight, kWidth,
                                  kHeight, flags, 0);
    }
    std::uint32_t Band(std::uint32_t first, std::uint32_t count)
    {
        return ZoPixelConverter_ConvertBand(converter, nullptr, source.data(), kWidth, kHeight, destination.data(),
                                            kWidth, kHeight, kWidth, kHeight, flags, 0, first, count);
    }
};

Frame MakeFrame(const ZoPixelConverter& converter, unsigned sampleBits, std::uint32_t flags)
{
    Frame f{&converter, {}, {}, flags};
    f.source.resize(static_cast<std::size_t>(converter.GetSourceByteSize(kWidth)) * (kHeight + 1) +
                    zobench::kSlack);
    f.destination.resize(static_cast<std::size_t>(converter.GetDestinationByteSize(kWidth)) * (kHeight + 1) +
                         zobench::kSlack);
    zobench::FillRandom(f.source, sampleBits);
    std::memset(f.destination.data(), 0, f.destination.size());
    return f;
}

// state.range(0): 1 = the whole frame by this thread, 2 = the top half by
// this thread and the bottom half by the helper, at once. For comparison,
// 3 = two frames at once, one whole frame each (two items an iteration).
void Bands(benchmark::State& state, std::int64_t source, std::int64_t destination, unsigned sampleBits,
           std::uint32_t flags)
{
    if (!ZoPixelTypeFactory::HasConverter(source, destination)) {
        state.SkipWithError("no converter registered for this pair");
        return;
    }
    Frame f = MakeFrame(ZoPixelTypeFactory::GetConverter(source, destination), sampleBits, flags);
    Frame other = state.range(0) == 3 ? MakeFrame(*f.converter, sampleBits, flags) : Frame{};
    const std::uint32_t half = (kHeight / 2) & ~1u;  // even: replicating Bayer bands start on even lines
    bool ok = true;
    for (auto _ : state) {
        if (state.range(0) == 1) {
            ok &= f.Whole() == ZO_OK;
        } else if (state.range(0) == 3) {
            std::uint32_t helperResult = ZO_OK;
            TheHelper().Start([&] { helperResult = other.Whole(); });
            ok &= f.Whole() == ZO_OK;
            TheHelper().Wait();
            ok &= helperResult == ZO_OK;
        } else {
            std::uint32_t helperResult = ZO_OK;
            TheHelper().Start([&] { helperResult = f.Band(half, kHeight - half); });
            ok &= f.Band(0, half) == ZO_OK;
            TheHelper().Wait();
            ok &= helperResult == ZO_OK;
        }
        benchmark::ClobberMemory();
    }
    if (!ok)
        state.SkipWithError("a conversion failed");
    const std::int64_t frames = state.iterations() * (state.range(0) == 3 ? 2 : 1);
    state.SetItemsProcessed(frames);
    state.SetBytesProcessed(frames * static_cast<std::int64_t>(f.converter->GetDestinationByteSize(kWidth)) *
                            kHeight);
}

void BM_Band_Bayer8ToRGB24_Interpolate(benchmark::State& s)
{
    Bands(s, ZO_PT_BAYER_RGB8, ZO_PT_RGB24, 8, ZO_FLAG_BAYER_GRBG | ZO_FLAG_BAYER_INTERPOLATE);
}
void BM_Band_Bayer12ToRGB48_Interpolate(benchmark::State& s)
{
    Bands(s, ZO_PT_BAYER_RGB12, ZO_PT_RGB48, 12, ZO_FLAG_BAYER_GRBG | ZO_FLAG_BAYER_INTERPOLATE);
}
void BM_Band_YUYVToBGR32(benchmark::State& s) { Bands(s, ZO_PT_YUV8, ZO_PT_BGR32, 8, 0); }
void BM_Band_Gray12PackedToGray12(benchmark::State& s)
{
    Bands(s, ZO_PT_GRAY12 | ZO_PIXEL_PACKED, ZO_PT_GRAY12, 8, 0);
}

// memcpy of a 4096 x 3000 x 4-byte frame, by one thread or in two halves by
// this thread and the helper.
void BM_Band_Memcpy4(benchmark::State& state)
{
    const std::size_t bytes = std::size_t{kWidth} * kHeight * 4, half = bytes / 2;
    std::vector<unsigned char> from(bytes), to(bytes);
    zobench::FillRandom(from);
    std::memset(to.data(), 0, bytes);
    for (auto _ : state) {
        if (state.range(0) == 1) {
            std::memcpy(to.data(), from.data(), bytes);
        } else {
            TheHelper().Start([&] { std::memcpy(to.data() + half, from.data() + half, bytes - half); });
            std::memcpy(to.data(), from.data(), half);
            TheHelper().Wait();
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void Threads(benchmark::internal::Benchmark* b)
{
    b->Arg(1)->Arg(2)->ArgName("threads")->Unit(benchmark::kMillisecond)->UseRealTime();
}

void ThreadsAndSeparateFrames(benchmark::internal::Benchmark* b)
{
    Threads(b);
    b->Arg(3);
}

}  // namespace

BENCHMARK(BM_Band_Memcpy4)->Apply(Threads);
BENCHMARK(BM_Band_Bayer8ToRGB24_Interpolate)->Apply(ThreadsAndSeparateFrames);
BENCHMARK(BM_Band_Bayer12ToRGB48_Interpolate)->Apply(ThreadsAndSeparateFrames);
BENCHMARK(BM_Band_YUYVToBGR32)->Apply(ThreadsAndSeparateFrames);
BENCHMARK(BM_Band_Gray12PackedToGray12)->Apply(ThreadsAndSeparateFrames);
