// The bytes one area conversion may touch in the caller's buffers, worked
// out from the rules the converter headers state (over-reads and
// over-writes included), so that the fuzzers can allocate exactly that much
// and let AddressSanitizer catch a single byte beyond it.
#ifndef ZO_FUZZ_BUFFER_SIZES_H
#define ZO_FUZZ_BUFFER_SIZES_H

#include <cstdint>

class ZoPixelConverter;

namespace zofuzz {

struct AreaSizes {
    std::uint64_t source = 0;             // bytes from the source pointer
    std::uint64_t destination = 0;        // bytes from the destination pointer
    std::uint64_t destinationBefore = 0;  // bytes just before the destination pointer
};

// For ZoPixelConverter_ConvertArea(converter, ..., sourceWidth, sourceHeight,
// destinationWidth, destinationHeight, width, height, flags, padding). The
// area must lie inside both frames (width <= sourceWidth, destinationWidth;
// height <= sourceHeight, destinationHeight).
AreaSizes AreaBufferSizes(const ZoPixelConverter& converter, std::uint32_t sourceWidth,
                          std::uint32_t sourceHeight, std::uint32_t destinationWidth,
                          std::uint32_t destinationHeight, std::uint32_t width, std::uint32_t height,
                          std::uint32_t flags, std::uint32_t padding);

}  // namespace zofuzz

#endif
