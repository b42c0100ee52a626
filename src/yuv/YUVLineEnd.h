// The last pairs of a 4:2:2 line that are fewer than a vector path's group,
// for the paths into 32-bit pixels (8 destination bytes a pair). Included by
// the per-instruction-set files only (internal linkage).
//
// The pairs are converted by the group's own step into a buffer and copied
// out: the scalar kernels took up to a group less one of pairs a line, and
// their ordinary stores into the whole 64-byte lines among them each read
// the line from memory first, which a streamed line avoids. Measured on
// YUYV -> BGRA at 1920 x 1080 (AVX-512, frames 16 bytes past a 64-byte
// line, one run each): 0.55 ms a frame with the scalar end of each line,
// 0.50 ms with this; most of what remained to the 0.37 ms of frames on a
// line went when the streamed line asked for the next line's head (RunGroups).
#ifndef ZO_YUV_LINE_END_H
#define ZO_YUV_LINE_END_H

#include <cstdint>
#include <cstring>

#include "core/StreamGroups.h"

namespace zo {
namespace {

// `left` (< Group) pairs from `s` (SourcePairBytes each) to `d`.
// convert(in, out): one group from `in` into `out` with ordinary stores.
// `stream`: the whole 64-byte lines of `d` go out through
// streamLine(to, from) (64 bytes, `to` on a line start) where `d` starts a
// line; the rest, and everything otherwise, with ordinary stores.
template <std::uint32_t Group, std::uint32_t SourcePairBytes, class Convert, class StreamLine>
inline void ConvertLineEnd(const unsigned char* s, unsigned char* d, std::uint32_t left, bool stream,
                           Convert convert, StreamLine streamLine)
{
    if (left == 0)
        return;
    alignas(64) unsigned char in[Group * SourcePairBytes] = {};
    alignas(64) unsigned char out[Group * 8];
    std::memcpy(in, s, std::size_t(left) * SourcePairBytes);
    convert(in, out);
    const std::size_t bytes = std::size_t(left) * 8;
    std::size_t at = 0;
    if (stream && (reinterpret_cast<std::uintptr_t>(d) & 63) == 0)
        for (; at + 64 <= bytes; at += 64)
            streamLine(d + at, out + at);
    std::memcpy(d + at, out + at, bytes - at);
}

// A whole line of `pairs` pairs into 32-bit pixels: groups of Group pairs
// through RunGroups (streamed where `stream` and the destination allow,
// the next line's head asked for), and the pairs left through
// ConvertLineEnd. convert(s, d, streaming): one group from `s` into `d`
// with that kind of store. Returns `pairs`.
template <std::uint32_t Group, std::uint32_t SourcePairBytes, class Convert, class StreamLine>
inline std::uint32_t ConvertPairsLine(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, bool stream,
                                      Convert convert, StreamLine streamLine)
{
    auto fits = [&](std::uint32_t i) { return i + Group <= pairs; };
    auto step = [&](std::uint32_t i, auto streaming) __attribute__((always_inline)) {
        convert(src + std::size_t(i) * SourcePairBytes, dst + std::size_t(i) * 8, streaming);
    };
    const std::uint32_t done = RunGroups<Group, 8>(dst, pairs, stream, fits, step);
    ConvertLineEnd<Group, SourcePairBytes>(
        src + std::size_t(done) * SourcePairBytes, dst + std::size_t(done) * 8, pairs - done, stream,
        [&](const unsigned char* s, unsigned char* d) { convert(s, d, OrdinaryStores{}); }, streamLine);
    return pairs;
}

}  // namespace
}  // namespace zo

#endif
