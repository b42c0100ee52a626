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
//     streams. The threshold is three quarters of the last-level cache's
//     share per logical processor sharing it, the rule the C library's
//     memcpy uses for its own streaming stores: when every processor that
//     shares the cache converts at once, each has about its share, and a
//     conversion whose buffers exceed it would evict its own destination
//     (and its neighbours' data) before anyone reads it, so writing around
//     the cache takes nothing from the reader; below it the destination
//     is still in the cache when the call returns;
//   - a direct line call, and every line call of a band conversion (which
//     converts a part of a frame, often into scratch memory read at once),
//     use ordinary stores.
//
// The bytes written are the same either way. A path that streams ends with a
// store fence before it returns, so that its stores are ordered before
// anything the caller does next.
#ifndef ZO_STREAM_STORES_H
#define ZO_STREAM_STORES_H

#include <cstddef>
#include <cstdint>

#include "ZoPixelConverter.h"

namespace zo {

// The size of the last-level data cache and the number of logical
// processors sharing it, read from the CPU once (8 MiB and 1 when the CPU
// does not say).
std::uint64_t LastLevelCacheBytes();
std::uint64_t LastLevelCacheSharers();

// Three quarters of one sharer's part of a cache of `cacheBytes` shared by
// `sharers` logical processors (0 counts as 1).
std::uint64_t CacheShareThreshold(std::uint64_t cacheBytes, std::uint64_t sharers);

// The footprint (source plus destination bytes of the area) from which an
// area conversion streams: CacheShareThreshold of the last-level cache
// unless set.
std::uint64_t StreamingThreshold();
// Sets the threshold (0: every area conversion streams); for tests and
// benchmarks, while no conversion runs. ResetStreamingThreshold goes back to
// the cache size.
void SetStreamingThreshold(std::uint64_t bytes);
void ResetStreamingThreshold();

// The choice for a line call made with the calling thread's context.
bool StreamDestination(const ZoPixelConverterContext& context);

// Copies `bytes` bytes from `s` to `d` (not overlapping): the whole 64-byte
// lines of `d` with streaming stores, the bytes before the first and after
// the last with ordinary ones. No fence: a caller that copies a line in parts
// calls StreamFence() once after the last part.
void StreamCopy(unsigned char* d, const unsigned char* s, std::size_t bytes);
void StreamFence();

}  // namespace zo

#endif
