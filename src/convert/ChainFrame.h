// Sizing of a chained converter's intermediate frame, in 64 bits.
#ifndef ZO_CHAIN_FRAME_H
#define ZO_CHAIN_FRAME_H

#include <cstdint>

namespace zo {

// The largest intermediate frame a chain takes: its stages address it with
// the 32-bit byte sizes of the converter interface.
constexpr std::uint64_t kChainFrameLimit = 0xFFFFFFFFu;

// Bytes of `lines` intermediate lines of `width` pixels of `pixelBytes`
// bytes, in *bytes; false (and *bytes untouched) when a line or the frame
// exceeds kChainFrameLimit.
inline bool ChainFrameBytes(std::uint32_t pixelBytes, std::uint32_t width, std::uint64_t lines,
                            std::uint64_t* bytes)
{
    const std::uint64_t line = std::uint64_t{pixelBytes} * width;  // below 2^64: both factors are 32-bit
    if (line > kChainFrameLimit)
        return false;
    if (line != 0 && lines > kChainFrameLimit / line)
        return false;
    *bytes = line * lines;
    return true;
}

}  // namespace zo

#endif
