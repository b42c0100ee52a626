// Whether a line call writes its destination with streaming (non-temporal)
// stores.
//
// A conversion whose buffers are far larger than the last-level cache gains
// from stores that go straight to memory: an ordinary store first reads the
// destination's cache line from memory, only to overwrite all of it, and
// evicts lines the conversion still needs. A small frame does better with
// ordinary stores: its destination stays in the cache for whoever reads it
// next. The choice is made here alone, from the size of the whole area
// conversion in progress (never from the length of one line), so that every
// line of a conversion is written the same way:
//
//   - an area conversion (the context carries its filter) whose source and
//     destination lines together span at least StreamingThreshold() bytes
//     streams. The threshold is a quarter of the last-level cache, the
//     rule recent C libraries use for memcpy's own streaming stores: a
//     conversion that size shares the cache with everything else the
//     machine runs, and its destination is mostly evicted before anyone
//     reads it, so writing around the cache takes little from the reader.
//     Measured with the benchmark's ThenRead and NewIntoReused rows
//     (32 MiB cache, shared): converting a cold 1920 x 1080 gray frame and
//     reading its destination once is about a tenth faster streamed for
//     Gray12 -> Gray8, Gray8 -> RGB16 and Gray8 -> BGRA in most runs (from
//     25% faster to 15% slower as the load of the machine varies); new
//     frames converted into one reused destination and read are 5% faster
//     streamed for Gray12 -> Gray8 but 1.4-1.8 times slower for
//     Gray8 -> RGB16 and Gray8 -> BGRA (the latter, 10 MiB, streams at
//     1920 x 1080), because ordinary stores keep a warm destination in the
//     cache. At 4096 x 3000 streaming is as fast or faster in every case
//     measured. A share per logical processor, as older C libraries use,
//     shrinks to a few hundred KiB on many-core servers and would stream
//     small frames too;
//   - a direct line call, and every line call of a band conversion (which
//     converts a part of a frame, often into scratch memory read at once),
//     use ordinary stores.
//
// The bytes written are the same either way. Streamed stores are weakly
// ordered: the area walk (convert/PixelConverter.cpp) ends every area
// conversion with FinishArea, one store fence after the last line, so that
// they are ordered before anything the caller does next. Line paths that
// stream do not fence: they run only inside such a walk, and a fence per
// line makes every line wait until its bytes have reached memory (at
// 1920 x 1080 that stall cost the streamed conversions a tenth to a fifth of
// their time). The thread's own reads see its streamed bytes without one.
#ifndef ZO_STREAM_STORES_H
#define ZO_STREAM_STORES_H

#include <cstddef>
#include <cstdint>

#include "ZoPixelConverter.h"

namespace zo {

// The size of the last-level data cache, read from the CPU once (8 MiB
// when the CPU does not say).
std::uint64_t LastLevelCacheBytes();

// The footprint (source plus destination bytes of the area) from which an
// area conversion streams: a quarter of the last-level cache unless set, or
// unless the environment variable ZOIMG_STREAMING, read once, says `off`
// (never) or `on` (every area conversion), in any case.
std::uint64_t StreamingThreshold();
// The threshold for a ZOIMG_STREAMING value (null: unset); anything but
// `off` and `on` keeps `cacheRule`.
std::uint64_t ThresholdFromSetting(const char* value, std::uint64_t cacheRule);
// Sets the threshold (0: every area conversion streams); for tests and
// benchmarks, while no conversion runs. ResetStreamingThreshold goes back to
// the cache rule.
void SetStreamingThreshold(std::uint64_t bytes);
void ResetStreamingThreshold();

// The choice for a line call made with the calling thread's context.
bool StreamDestination(const ZoPixelConverterContext& context);

// Copies `bytes` bytes from `s` to `d` (not overlapping): the whole 64-byte
// lines of `d` with streaming stores, the bytes before the first and after
// the last with ordinary ones. No fence: the area walk fences once after
// its last line (FinishArea).
void StreamCopy(unsigned char* d, const unsigned char* s, std::size_t bytes);
void StreamFence();

// Ends an area conversion: the store fence for whatever its lines streamed.
// The area walk holds an AreaFinish over its line calls, so that the fence
// comes on every way out, an exception from a line call included.
void FinishArea();
class AreaFinish {
public:
    AreaFinish() = default;
    ~AreaFinish() { FinishArea(); }
    AreaFinish(const AreaFinish&) = delete;
    AreaFinish& operator=(const AreaFinish&) = delete;
};

}  // namespace zo

#endif
