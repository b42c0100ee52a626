// The loop of a vector path that may write its destination with streaming
// stores (see core/StreamStores.h for when it should). Included by the
// per-instruction-set files only; everything here has internal linkage, so
// files compiled for different instruction sets share nothing.
//
// A path converts whole groups of `Group` units (pixels, or pairs of a 4:2:2
// line) of `UnitBytes` destination bytes each. Streaming stores want the
// destination aligned to a 64-byte line: groups are first converted with
// ordinary stores up to the first unit that starts a line, then, from that
// unit on (re-converting the units in between, which writes the same bytes),
// with streaming stores. A destination where no unit starts a line (4-byte
// pixels at an odd address) is written with ordinary stores throughout.
//
// No store fence here: a line that streams is always one line of an area
// conversion, and the area walk fences once after its last line
// (core/StreamStores.h). A fence per line stalled every line until its
// streamed bytes had reached memory, which cost short lines most.
#ifndef ZO_STREAM_GROUPS_H
#define ZO_STREAM_GROUPS_H

#include <cstdint>
#include <type_traits>

namespace zo {
namespace {

using OrdinaryStores = std::false_type;
using StreamingStores = std::true_type;

// Asks for the 64-byte line at `at`, for writing soon. In assembly: the
// compiler dropped such prefetches, written as builtins in a loop or
// unrolled, from the paths that use them. The address may lie past the
// buffer: a prefetch never faults.
inline void PrefetchLine(std::uintptr_t at)
{
    __asm__ volatile("prefetcht0 %0" : : "m"(*reinterpret_cast<const char*>(at)));
}

// Runs step(i, OrdinaryStores{}) or step(i, StreamingStores{}) for groups
// starting at unit i = 0, Group, ... while fits(i); returns the units
// converted (the end of the last group). `n`: the units of the line, whose
// end the caller writes. `stream` false: ordinary stores only.
template <std::uint32_t Group, std::uint32_t UnitBytes, class Fits, class Step>
inline std::uint32_t RunGroups(unsigned char* d, std::uint32_t n, bool stream, Fits fits, Step step)
{
    static_assert(64 % UnitBytes == 0, "a unit never straddles a 64-byte line");
    std::uint32_t i = 0;
    const std::uint32_t toLine = static_cast<std::uint32_t>(-reinterpret_cast<std::uintptr_t>(d) & 63);
    if (!stream || toLine % UnitBytes != 0) {
        for (; fits(i); i += Group)
            step(i, OrdinaryStores{});
        return i;
    }
    // A line that ends inside a 64-byte line shares it with the next line's
    // start (in a frame without padding): both write it with ordinary
    // stores, as the next line does its head groups below (up to a group
    // and a line past its start), and ordinary stores first read their
    // lines from memory. Asked for now, those reads overlap this line's
    // streamed groups instead of stalling the streaming stores queued
    // behind them. Measured at 1080p into frames 16 bytes past a 64-byte
    // line (where malloc puts large blocks): RGB 24 -> BGRA through gains
    // 1.8, 1.0, 1.4 1.31-1.32 times the identity line's time before,
    // 1.05-1.10 after; YUYV -> BGRA 0.50-0.52 ms before, 0.38-0.39 after.
    constexpr std::uintptr_t kHeadLines = Group * UnitBytes / 64 + 1;
    const std::uintptr_t end = reinterpret_cast<std::uintptr_t>(d) + std::uintptr_t(n) * UnitBytes;
    if (end & 63)
        for (std::uintptr_t k = 0; k <= kHeadLines; ++k)
            PrefetchLine(end - 1 + 64 * k);
    // Streaming starts at the first line start where a whole group of
    // ordinary stores can end (at once where the line starts on a 64-byte
    // line): no line takes both kinds of store (an ordinary store into a
    // line that is then streamed, or the other way round, waits for
    // memory).
    constexpr std::uint32_t kLine = 64 / UnitBytes;
    std::uint32_t start = toLine / UnitBytes;
    while (start != 0 && start < Group)
        start += kLine;
    for (; i + Group <= start; i += Group) {
        if (!fits(i))
            return i;
        step(i, OrdinaryStores{});
    }
    if (i < start) {  // the last head group ends where streaming starts
        if (!fits(start - Group))
            return i;
        step(start - Group, OrdinaryStores{});
        i = start;
    }
    constexpr std::uint32_t kGroupBytes = Group * UnitBytes;
    if constexpr (kGroupBytes < 64 && 64 % kGroupBytes == 0) {
        // Groups smaller than a 64-byte line stream only by whole lines: the
        // last groups of a row, which share their line with the caller's
        // ordinary stores of the row's end, take ordinary stores too.
        // Measured on RGB 24 -> BGRA at 1080p (eight pixels, 32 bytes a
        // group) into frames that start on a 64-byte line: 0.43-0.49 ms a
        // frame, from 0.74-0.75 with the half-streamed last line (an
        // ordinary store into a line a streaming store has just half
        // written waits for memory); frames 16 bytes past a line start
        // measured 0.45-0.49 against 0.44-0.47.
        while (fits(i + kLine - Group))
            for (const std::uint32_t lineEnd = i + kLine; i < lineEnd; i += Group)
                step(i, StreamingStores{});
        for (; fits(i); i += Group)
            step(i, OrdinaryStores{});
    } else {
        for (; fits(i); i += Group)
            step(i, StreamingStores{});
    }
    return i;
}

}  // namespace
}  // namespace zo

#endif
