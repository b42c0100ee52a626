// White balance against its identity twin, with cold buffers.
//
// Each benchmark is one row: a conversion measured three ways in the same
// run, call after call in turn, every call on buffers not touched for a long
// time (a ring of source and destination frames totalling 256 MiB, far more
// than any cache):
//   - the conversion through a white-balance filter (gains 1.8, 1.0, 1.4;
//     the Gain16 rows 1.8, 1.0, 1.6), whose times are the benchmark's own;
//   - the same conversion through the identity filter (its twin);
//   - a memcpy of a destination-sized frame, the yardstick peers are
//     quoted against.
// The counters give the medians (ms) and the ratios between them:
//   wb_ms, id_ms, memcpy_ms, wb/id, wb/memcpy, id/memcpy.
// Each call is timed with the thread's CPU clock where there is one: on a
// machine shared with other work a wall clock counts the time the thread
// waited for a core, which swamps a 1 ms call; waiting for memory is still
// counted.
//
// Frames start 16 bytes past a 64-byte line, where glibc's malloc places a
// large block (and so a std::vector or numpy array of a frame); the
// environment variable ZOBENCH_FRAME_OFFSET sets another offset (0-63), for
// instance 0 for page-aligned driver buffers. Streaming stores are sensitive
// to it.
//
//   zoimg_bench --benchmark_filter=WhiteBalance
//   ZOBENCH_FRAME_OFFSET=0 zoimg_bench --benchmark_filter=WhiteBalance
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "BenchCommon.h"
#include "ZoPixelTypeIDs.h"
#include "ZoRGBFilter.h"
#include "core/StreamStores.h"

namespace {

constexpr std::size_t kRingBytes = std::size_t(256) << 20;
constexpr int kCalls = 31;  // per kind, the median is taken over them

// Bytes past a 64-byte line at which every frame starts.
std::size_t FrameOffset()
{
    const char* v = std::getenv("ZOBENCH_FRAME_OFFSET");
    return v ? static_cast<std::size_t>(std::strtoul(v, nullptr, 10)) % 64 : 16;
}

// The ring: one 256 MiB block, cut into (source, destination) slots. Slots
// are whole 64-byte lines, so every frame starts FrameOffset() past a line.
struct Ring {
    std::vector<unsigned char> block;
    unsigned char* base = nullptr;
    std::size_t sourceBytes = 0, destinationBytes = 0, slotBytes = 0, slots = 0;

    unsigned char* Source(std::size_t i) { return base + (i % slots) * slotBytes; }
    unsigned char* Destination(std::size_t i) { return Source(i) + Lines(sourceBytes + zobench::kSlack); }
    static std::size_t Lines(std::size_t bytes) { return (bytes + 63) & ~std::size_t(63); }
};

Ring& SharedRing()
{
    static Ring ring;
    if (ring.block.empty()) {
        ring.block.assign(kRingBytes + 128, 0);  // touched once, so no call pays for page faults
        const auto start = reinterpret_cast<std::uintptr_t>(ring.block.data());
        ring.base = ring.block.data() + (-start & 63) + FrameOffset();
    }
    return ring;
}

// Cuts the ring for one row and fills every source with random samples of
// `sampleBits` (little-endian words for more than 8).
Ring& PrepareRing(std::size_t sourceBytes, std::size_t destinationBytes, unsigned sampleBits)
{
    Ring& ring = SharedRing();
    ring.sourceBytes = sourceBytes;
    ring.destinationBytes = destinationBytes;
    ring.slotBytes = Ring::Lines(sourceBytes + zobench::kSlack) + Ring::Lines(destinationBytes + zobench::kSlack);
    ring.slots = kRingBytes / ring.slotBytes;
    std::uint64_t x = 0x9E3779B97F4A7C15ull;
    const std::uint32_t mask = sampleBits > 8 ? (1u << sampleBits) - 1 : 0xFF;
    for (std::size_t s = 0; s < ring.slots; ++s) {
        unsigned char* p = ring.Source(s);
        if (sampleBits > 8) {
            for (std::size_t i = 0; i + 1 < sourceBytes; i += 2) {
                x ^= x << 13, x ^= x >> 7, x ^= x << 17;
                const std::uint32_t w = static_cast<std::uint32_t>(x) & mask;
                p[i] = static_cast<unsigned char>(w);
                p[i + 1] = static_cast<unsigned char>(w >> 8);
            }
        } else {
            for (std::size_t i = 0; i < sourceBytes; ++i) {
                x ^= x << 13, x ^= x >> 7, x ^= x << 17;
                p[i] = static_cast<unsigned char>(x >> 24);
            }
        }
    }
    return ring;
}

double Median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    const std::size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

double Now()
{
#if defined(CLOCK_THREAD_CPUTIME_ID)
    timespec t;
    if (clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t) == 0)
        return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
#endif
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

template <class F>
double Seconds(F&& f)
{
    const double start = Now();
    f();
    benchmark::ClobberMemory();
    return Now() - start;
}

// A row's converter, frame size (the state's range) and the ring filled for
// its buffers; null after marking the row skipped.
struct Row {
    const ZoPixelConverter* converter;
    std::uint32_t width, height;
    std::size_t sourceBytes, destinationBytes;
    Ring* ring;
};

bool SetUpRow(benchmark::State& state, std::int64_t source, std::int64_t destination, unsigned sampleBits, Row& row)
{
    if (!ZoPixelTypeFactory::HasConverter(source, destination)) {
        state.SkipWithError("no converter registered for this pair");
        return false;
    }
    row.converter = &ZoPixelTypeFactory::GetConverter(source, destination);
    row.width = static_cast<std::uint32_t>(state.range(0));
    row.height = static_cast<std::uint32_t>(state.range(1));
    row.sourceBytes = static_cast<std::size_t>(row.converter->GetSourceByteSize(row.width)) * row.height;
    row.destinationBytes = static_cast<std::size_t>(row.converter->GetDestinationByteSize(row.width)) * row.height;
    row.ring = &PrepareRing(row.sourceBytes, row.destinationBytes, sampleBits);
    if (row.ring->slots < 2) {
        state.SkipWithError("frame too large for the ring");
        return false;
    }
    return true;
}

// One row: `filterBits` is the white-balance filter's bit size (8: the 8-bit
// tables of byte samples; 12 or 16: 16-bit tables). The twin converts through
// the identity filter the library itself uses for such a source: 8-bit, or
// 16-bit beyond 8 bits (a 12-bit filter is not the identity on 16-bit
// tables: its entries past 4095 stay 4095).
//
// The blue gain matters to the arithmetic table passes (simd/LutForm.h):
// 1.4 is a double just below 7/5, so the filter's table holds products
// rounded up to an integer and takes the slower corrected form; 1.6 (just
// above 8/5) gives plain floors, the fast form, as most computed gains do.
void WhiteBalanceRow(benchmark::State& state, std::int64_t source, std::int64_t destination, unsigned sampleBits,
                     unsigned filterBits, std::uint32_t flags, double blueGain = 1.4)
{
    Row row;
    if (!SetUpRow(state, source, destination, sampleBits, row))
        return;
    const ZoPixelConverter& converter = *row.converter;
    const std::uint32_t width = row.width, height = row.height;
    const std::size_t destinationBytes = row.destinationBytes;
    Ring& ring = *row.ring;

    ZoRGBFilter balance(filterBits);
    balance.SetMultipliers(1.8, 1.0, blueGain);
    const ZoRGBFilter identity(filterBits > 8 ? 16 : 8);

    std::size_t slot = 0;
    auto convert = [&](const ZoRGBFilter& filter) {
        const std::size_t i = slot++;
        return Seconds([&] {
            converter.Convert(filter, ring.Source(i), width, height, ring.Destination(i), width, height, width,
                              height, flags, 0);
        });
    };
    // The copy takes two slots: the conversion after it must not find its
    // destination in the cache, where the copy's reads would have left it.
    auto copy = [&] {
        const std::size_t i = slot;
        slot += 2;
        return Seconds([&] { std::memcpy(ring.Destination(i), ring.Destination(i + 1), destinationBytes); });
    };

    std::vector<double> wb, id, mc;
    for (auto _ : state) {
        mc.push_back(copy());
        id.push_back(convert(identity));
        const double t = convert(balance);
        wb.push_back(t);
        state.SetIterationTime(t);
    }
    const double wbMs = Median(wb) * 1e3, idMs = Median(id) * 1e3, mcMs = Median(mc) * 1e3;
    state.counters["wb_ms"] = wbMs;
    state.counters["id_ms"] = idMs;
    state.counters["memcpy_ms"] = mcMs;
    state.counters["wb/id"] = wbMs / idMs;
    state.counters["wb/memcpy"] = wbMs / mcMs;
    state.counters["id/memcpy"] = idMs / mcMs;
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(destinationBytes));
}

constexpr std::uint32_t kBilinear = ZO_FLAG_BAYER_GRBG | ZO_FLAG_BAYER_INTERPOLATE;

void BM_WhiteBalance_Bayer8ToRGB24(benchmark::State& s)
{
    WhiteBalanceRow(s, ZO_PT_BAYER_RGB8, ZO_PT_RGB24, 8, 8, kBilinear);
}
void BM_WhiteBalance_Bayer8ToBGR32(benchmark::State& s)
{
    WhiteBalanceRow(s, ZO_PT_BAYER_RGB8, ZO_PT_BGR32, 8, 8, kBilinear);
}
void BM_WhiteBalance_Bayer12ToRGB48(benchmark::State& s)
{
    WhiteBalanceRow(s, ZO_PT_BAYER_RGB12, ZO_PT_RGB48, 12, 12, kBilinear);
}
void BM_WhiteBalance_YUV422ToBGR32(benchmark::State& s) { WhiteBalanceRow(s, ZO_PT_YUV8, ZO_PT_BGR32, 8, 8, 0); }
void BM_WhiteBalance_RGB24PackedToBGR32(benchmark::State& s)
{
    WhiteBalanceRow(s, ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_BGR32, 8, 8, 0);
}

void BM_WhiteBalance_Gain16_Bayer8ToRGB24(benchmark::State& s)
{
    WhiteBalanceRow(s, ZO_PT_BAYER_RGB8, ZO_PT_RGB24, 8, 8, kBilinear, 1.6);
}
void BM_WhiteBalance_Gain16_Bayer12ToRGB48(benchmark::State& s)
{
    WhiteBalanceRow(s, ZO_PT_BAYER_RGB12, ZO_PT_RGB48, 12, 12, kBilinear, 1.6);
}
void BM_WhiteBalance_Gain16_YUV422ToBGR32(benchmark::State& s)
{
    WhiteBalanceRow(s, ZO_PT_YUV8, ZO_PT_BGR32, 8, 8, 0, 1.6);
}
void BM_WhiteBalance_Gain16_RGB24PackedToBGR32(benchmark::State& s)
{
    WhiteBalanceRow(s, ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_BGR32, 8, 8, 0, 1.6);
}

void Rows(benchmark::internal::Benchmark* b)
{
    zobench::FrameSizes(b);
    b->Iterations(kCalls)->UseManualTime();
}

}  // namespace

BENCHMARK(BM_WhiteBalance_Bayer8ToRGB24)->Apply(Rows);
BENCHMARK(BM_WhiteBalance_Bayer8ToBGR32)->Apply(Rows);
BENCHMARK(BM_WhiteBalance_Bayer12ToRGB48)->Apply(Rows);
BENCHMARK(BM_WhiteBalance_YUV422ToBGR32)->Apply(Rows);
BENCHMARK(BM_WhiteBalance_RGB24PackedToBGR32)->Apply(Rows);
BENCHMARK(BM_WhiteBalance_Gain16_Bayer8ToRGB24)->Apply(Rows);
BENCHMARK(BM_WhiteBalance_Gain16_Bayer12ToRGB48)->Apply(Rows);
BENCHMARK(BM_WhiteBalance_Gain16_YUV422ToBGR32)->Apply(Rows);
BENCHMARK(BM_WhiteBalance_Gain16_RGB24PackedToBGR32)->Apply(Rows);

// Rows measured against this machine's memcpy of the destination (the
// id/memcpy counter; their wb figures repeat the identity where the pair
// takes no filter). The counter `streams` is 1 where the library's rule
// streams into these cold destinations (core/StreamStores.h): a conversion
// whose kernels have a streaming form then writes around the cache.
namespace {

void ColdRow(benchmark::State& s, std::int64_t source, std::int64_t destination, unsigned sampleBits,
             unsigned filterBits)
{
    WhiteBalanceRow(s, source, destination, sampleBits, filterBits, 0);
    if (!ZoPixelTypeFactory::HasConverter(source, destination))
        return;
    const ZoPixelConverter& converter = ZoPixelTypeFactory::GetConverter(source, destination);
    const auto width = static_cast<std::uint32_t>(s.range(0));
    const std::uint64_t footprint = std::uint64_t(s.range(1)) * (std::uint64_t(converter.GetSourceByteSize(width)) +
                                                                 converter.GetDestinationByteSize(width));
    s.counters["streams"] = zo::StreamingRule(footprint, false) ? 1 : 0;
}

void BM_ColdRow_RGB24PackedToRGB16(benchmark::State& s)
{
    ColdRow(s, ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_RGB16, 8, 8);
}
void BM_ColdRow_YUV422ToBGR32(benchmark::State& s) { ColdRow(s, ZO_PT_YUV8, ZO_PT_BGR32, 8, 8); }
void BM_ColdRow_RGB24PackedToBGR32(benchmark::State& s)
{
    ColdRow(s, ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_BGR32, 8, 8);
}
void BM_ColdRow_Gray12ToGray8(benchmark::State& s) { ColdRow(s, ZO_PT_GRAY12, ZO_PT_GRAY8, 12, 16); }
void BM_ColdRow_Gray8ToRGB16(benchmark::State& s) { ColdRow(s, ZO_PT_GRAY8, ZO_PT_RGB16, 8, 8); }
void BM_ColdRow_Gray8ToBGR32(benchmark::State& s) { ColdRow(s, ZO_PT_GRAY8, ZO_PT_BGR32, 8, 8); }

}  // namespace

BENCHMARK(BM_ColdRow_RGB24PackedToRGB16)->Apply(Rows);
BENCHMARK(BM_ColdRow_YUV422ToBGR32)->Apply(Rows);
BENCHMARK(BM_ColdRow_RGB24PackedToBGR32)->Apply(Rows);
BENCHMARK(BM_ColdRow_Gray12ToGray8)->Apply(Rows);
BENCHMARK(BM_ColdRow_Gray8ToRGB16)->Apply(Rows);
BENCHMARK(BM_ColdRow_Gray8ToBGR32)->Apply(Rows);

// Streaming stores against ordinary ones for the reader that comes next
// (zoimg_bench --benchmark_filter='ThenRead|NewInto'). In the ColdThenRead
// rows each call converts a cold frame (identity filter, as the ColdRow rows) and
// then reads its whole destination once (a sum of 64-bit words, the least
// any consumer of the frame does). Both store kinds are timed in turn in the
// same run, the threshold forced each way (0: stream; the largest: never).
// Counters, medians in ms:
//   ord_ms, str_ms             convert + read, ordinary / streaming stores;
//   ord_read_ms, str_read_ms   the read alone;
//   str/ord                    ratio of the totals (below 1: streaming pays);
//   rule                       1 where the library's default rule streams.
// They say whether the rule's choice serves the caller, not only the
// conversion's own time. Two more kinds of rows keep one destination frame
// for every call, as an application that converts each camera frame into
// the same buffer: whatever of it the cache holds stays warm, and streaming
// stores throw it out. NewIntoReused converts a new cold source each call
// (a camera's next frame); ReusedThenRead reuses the source too (a frame an
// earlier stage has just written).
namespace {

std::uint64_t ReadOnce(const unsigned char* p, std::size_t bytes)
{
    std::uint64_t sum = 0;
    std::size_t i = 0;
    for (; i + 8 <= bytes; i += 8) {
        std::uint64_t w;
        std::memcpy(&w, p + i, 8);
        sum += w;
    }
    for (; i < bytes; ++i)
        sum += p[i];
    return sum;
}

enum class Frames { kCold, kNewIntoReused, kReused };

void ConvertThenRead(benchmark::State& state, std::int64_t source, std::int64_t destination, unsigned sampleBits,
                     Frames frames = Frames::kCold)
{
    Row row;
    if (!SetUpRow(state, source, destination, sampleBits, row))
        return;
    const ZoPixelConverter& converter = *row.converter;
    const std::uint32_t width = row.width, height = row.height;
    const std::size_t sourceBytes = row.sourceBytes, destinationBytes = row.destinationBytes;
    Ring& ring = *row.ring;
    const bool rule = zo::StreamingRule(sourceBytes + destinationBytes, frames != Frames::kCold);
    const ZoRGBFilter identity(sampleBits > 8 ? 16 : 8);

    std::size_t slot = 0;
    std::uint64_t sink = 0;
    // One call: returns convert + read, the read alone in `read`.
    auto run = [&](bool stream, double& read) {
        zo::SetStreamingThreshold(stream ? 0 : ~std::uint64_t(0));
        // Slot 0 is the reused one; cold frames come from the others.
        const std::size_t cold = 1 + slot++ % (ring.slots - 1);
        const std::size_t i = frames == Frames::kCold ? cold : 0;
        const std::size_t from = frames == Frames::kReused ? 0 : cold;
        const double convert = Seconds([&] {
            converter.Convert(identity, ring.Source(from), width, height, ring.Destination(i), width, height, width,
                              height, 0, 0);
        });
        read = Seconds([&] { sink += ReadOnce(ring.Destination(i), destinationBytes); });
        return convert + read;
    };
    std::vector<double> ord, str, ordRead, strRead;
    for (auto _ : state) {
        double read = 0;
        ord.push_back(run(false, read));
        ordRead.push_back(read);
        const double t = run(true, read);
        str.push_back(t);
        strRead.push_back(read);
        state.SetIterationTime(t);
    }
    zo::ResetStreamingThreshold();
    benchmark::DoNotOptimize(sink);
    const double ordMs = Median(ord) * 1e3, strMs = Median(str) * 1e3;
    state.counters["ord_ms"] = ordMs;
    state.counters["str_ms"] = strMs;
    state.counters["ord_read_ms"] = Median(ordRead) * 1e3;
    state.counters["str_read_ms"] = Median(strRead) * 1e3;
    state.counters["str/ord"] = strMs / ordMs;
    state.counters["rule"] = rule ? 1 : 0;
}

void BM_ColdThenRead_Gray12ToGray8(benchmark::State& s) { ConvertThenRead(s, ZO_PT_GRAY12, ZO_PT_GRAY8, 12); }
void BM_ColdThenRead_Gray8ToRGB16(benchmark::State& s) { ConvertThenRead(s, ZO_PT_GRAY8, ZO_PT_RGB16, 8); }
void BM_ColdThenRead_Gray8ToBGR32(benchmark::State& s) { ConvertThenRead(s, ZO_PT_GRAY8, ZO_PT_BGR32, 8); }
void BM_NewIntoReused_Gray12ToGray8(benchmark::State& s)
{
    ConvertThenRead(s, ZO_PT_GRAY12, ZO_PT_GRAY8, 12, Frames::kNewIntoReused);
}
void BM_NewIntoReused_Gray8ToRGB16(benchmark::State& s)
{
    ConvertThenRead(s, ZO_PT_GRAY8, ZO_PT_RGB16, 8, Frames::kNewIntoReused);
}
void BM_NewIntoReused_Gray8ToBGR32(benchmark::State& s)
{
    ConvertThenRead(s, ZO_PT_GRAY8, ZO_PT_BGR32, 8, Frames::kNewIntoReused);
}
void BM_ReusedThenRead_Gray12ToGray8(benchmark::State& s)
{
    ConvertThenRead(s, ZO_PT_GRAY12, ZO_PT_GRAY8, 12, Frames::kReused);
}
void BM_ReusedThenRead_Gray8ToRGB16(benchmark::State& s)
{
    ConvertThenRead(s, ZO_PT_GRAY8, ZO_PT_RGB16, 8, Frames::kReused);
}
void BM_ReusedThenRead_Gray8ToBGR32(benchmark::State& s)
{
    ConvertThenRead(s, ZO_PT_GRAY8, ZO_PT_BGR32, 8, Frames::kReused);
}

}  // namespace

BENCHMARK(BM_ColdThenRead_Gray12ToGray8)->Apply(Rows);
BENCHMARK(BM_ColdThenRead_Gray8ToRGB16)->Apply(Rows);
BENCHMARK(BM_ColdThenRead_Gray8ToBGR32)->Apply(Rows);
BENCHMARK(BM_NewIntoReused_Gray12ToGray8)->Apply(Rows);
BENCHMARK(BM_NewIntoReused_Gray8ToRGB16)->Apply(Rows);
BENCHMARK(BM_NewIntoReused_Gray8ToBGR32)->Apply(Rows);
BENCHMARK(BM_ReusedThenRead_Gray12ToGray8)->Apply(Rows);
BENCHMARK(BM_ReusedThenRead_Gray8ToRGB16)->Apply(Rows);
BENCHMARK(BM_ReusedThenRead_Gray8ToBGR32)->Apply(Rows);
