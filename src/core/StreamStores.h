// Whether a line call writes its destination with streaming (non-temporal)
// stores.
//
// A conversion whose buffers are far larger than the last-level cache gains
// from stores that go straight to memory: an ordinary store first reads the
// destination's cache line from memory, only to overwrite all of it, and
// evicts lines the conversion still needs. A destination that is still in
// the cache does better with ordinary stores, and so does a small frame
// whose destination stays in the cache for whoever reads it next. The
// choice is made once per area conversion (AreaStores), from the size of
// the whole area (never from the length of one line) and from whether this
// thread has written the same destination lately, so that every line of a
// conversion is written the same way:
//
//   - an area conversion (the context carries its filter) whose source and
//     destination lines together span at least an eighth of the last-level
//     cache streams into a destination that is not one of the last four
//     this thread converted into: a new frame buffer is cold, and ordinary
//     stores would first read every line of it from memory. Measured with
//     the benchmark's ColdRow rows (32 MiB cache, cold buffers), streaming
//     made a 1920 x 1080 Gray12 -> Gray8 frame (6.2 MB) 1.2-1.3 times
//     faster and Gray8 -> RGB16 1.2-1.4 times; the ColdThenRead rows, which
//     also read the destination once after converting, 0.77-0.85 times the
//     ordinary stores' time for the three gray conversions;
//   - into one of those last four destinations (a display loop converting
//     every frame into the same buffer) it streams only from half the
//     cache: ordinary stores keep a warm destination in the cache, and new
//     1920 x 1080 gray frames converted into one reused buffer and read
//     were up to 1.4-1.8 times slower streamed for Gray8 -> RGB16 and
//     Gray8 -> BGRA in earlier runs of the NewIntoReused rows (0.99 and 1.10
//     in the run that set this rule, 0.89 for Gray12 -> Gray8). At
//     4096 x 3000 streaming is as fast or faster in every case measured, so
//     any destination streams there. Shares of the cache per
//     logical processor, as older C libraries use, shrink to a few hundred
//     KiB on many-core servers and would stream small frames too;
//   - a direct line call, and every line call of a band conversion (which
//     converts a part of a frame, often into scratch memory read at once),
//     use ordinary stores.
//
// The bytes written are the same either way. Streamed stores are weakly
// ordered: the area walk (convert/PixelConverter.cpp) ends every area
// conversion with AreaStores, one store fence after the last line, so that
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
// area conversion streams into any destination: half the last-level cache
// unless set, or unless the environment variable ZOIMG_STREAMING, read
// once, says `off` (never) or `on` (every area conversion), in any case.
std::uint64_t StreamingThreshold();
// The footprint from which it streams into a destination this thread has
// not converted into lately: an eighth of the last-level cache under the
// cache rule, else (set, or ZOIMG_STREAMING) StreamingThreshold().
std::uint64_t NewDestinationThreshold();
// The choice for an area of `footprint` bytes into a destination that is
// (`recent`) or is not one of the thread's last four.
bool StreamingRule(std::uint64_t footprint, bool recent);
// The threshold for a ZOIMG_STREAMING value (null: unset); anything but
// `off` and `on` keeps `cacheRule`.
std::uint64_t ThresholdFromSetting(const char* value, std::uint64_t cacheRule);
// Sets one threshold for every destination (0: every area conversion
// streams); for tests and benchmarks, while no conversion runs.
// ResetStreamingThreshold goes back to the cache rule.
void SetStreamingThreshold(std::uint64_t bytes);
void ResetStreamingThreshold();

// The choice for a line call made with the calling thread's context: the
// one its area conversion made (AreaStores), never for a direct line call
// or a band conversion.
bool StreamDestination(const ZoPixelConverterContext& context);

// Copies `bytes` bytes from `s` to `d` (not overlapping): the whole 64-byte
// lines of `d` with streaming stores, the bytes before the first and after
// the last with ordinary ones. No fence: the area walk fences once after
// its last line (AreaStores).
void StreamCopy(unsigned char* d, const unsigned char* s, std::size_t bytes);
void StreamFence();

// One area conversion's choice: made when the area walk starts (from the
// context's line sizes and area height, and the destination), kept for its
// line calls, and at the end (on every way out, an exception from a line
// call included) the store fence for whatever its lines streamed. An area
// conversion inside another's line call makes its own choice and gives the
// outer one back when it ends.
class AreaStores {
public:
    AreaStores(const ZoPixelConverterContext& context, const unsigned char* destination);
    ~AreaStores();
    AreaStores(const AreaStores&) = delete;
    AreaStores& operator=(const AreaStores&) = delete;

private:
    bool mOuter;
};

}  // namespace zo

#endif
