// Line kernels of the grayscale converters: a sample reader (which byte or
// word of a source pixel, how it becomes an 8-bit gray value) and a writer of
// the destination layout, put together by one loop. Every parameter is
// explicit; the kernels know nothing of converters or contexts.
//
// The RGB16 and RGB32 writers compute the entries of the shared lookup
// tables (GrayscaleTables.h) with the same formula the tables are built from
// rather than loading them, which lets the loops vectorise; the results are
// the table entries, index masked to the table size.
#ifndef ZO_GRAYSCALE_KERNELS_H
#define ZO_GRAYSCALE_KERNELS_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/PixelIO.h"
#include "gray/GrayscaleTables.h"

// Source and destination lines of one call never overlap.
#if defined(__GNUC__) || defined(_MSC_VER)
#define ZO_RESTRICT __restrict
#else
#define ZO_RESTRICT
#endif

namespace zo {
namespace gray {

// ---------------------------------------------------------------------------
// Readers: the 8-bit gray value of pixel i.

// An (8 + Shift)-bit sample in a 16-bit word: (w >> Shift) & 0xFF. Bits above
// the sample's depth are dropped (the index of the shared tables, masked to
// the table size, gives the same value).
template <unsigned Shift>
struct ReadWordShifted {
    static constexpr unsigned kBytes = 2;
    std::uint32_t operator()(const unsigned char* s, std::size_t i) const { return (LoadLE16(s + 2 * i) >> Shift) & 0xFF; }
};

// The same with the shift known at run time only.
struct ReadWordShiftedBy {
    std::uint32_t shift;
    std::uint32_t operator()(const unsigned char* s, std::size_t i) const { return (LoadLE16(s + 2 * i) >> shift) & 0xFF; }
};

// The last byte of each Bytes-byte pixel: for a 16-bit word its high byte.
template <unsigned Bytes>
struct ReadLastByte {
    std::uint32_t operator()(const unsigned char* s, std::size_t i) const { return s[Bytes * i + Bytes - 1]; }
};

// The same with the pixel size known at run time only.
struct ReadLastByteOf {
    std::uint32_t bytes;
    std::uint32_t operator()(const unsigned char* s, std::size_t i) const { return s[bytes * i + bytes - 1]; }
};

// ---------------------------------------------------------------------------
// Writers: the gray writers of core/PixelIO.h (pixel i from its 8-bit gray
// value g). RGB32 pixels end in 0 here.

using PutGray8 = GrayToGray8;
using PutRGB16 = GrayToRGB16;  // entry g of the 8-bit gray-to-RGB16 table
using PutRGB24 = GrayToRGB24;
using PutRGB32 = GrayToRGB32;

// One line: pixel i of the source to pixel i of the destination.
template <class Writer, class Reader>
void GrayLine(const unsigned char* ZO_RESTRICT s, unsigned char* ZO_RESTRICT d, std::uint32_t n, Reader read)
{
    for (std::size_t i = 0; i < n; ++i)
        Writer::Put(d + Writer::kBytes * i, read(s, i));
}

// ---------------------------------------------------------------------------
// Depth changes within 16-bit words.

// w >> shift (logical).
inline void RightShiftLine(const unsigned char* ZO_RESTRICT s, unsigned char* ZO_RESTRICT d, std::uint32_t n,
                           std::uint32_t shift)
{
    for (std::size_t i = 0; i < n; ++i)
        StoreLE16(d + 2 * i, LoadLE16(s + 2 * i) >> shift);
}

// w << shift kept to 16 bits.
inline void LeftShiftLine(const unsigned char* ZO_RESTRICT s, unsigned char* ZO_RESTRICT d, std::uint32_t n,
                          std::uint32_t shift)
{
    for (std::size_t i = 0; i < n; ++i)
        StoreLE16(d + 2 * i, (LoadLE16(s + 2 * i) << shift) & 0xFFFF);
}

}  // namespace gray
}  // namespace zo

#endif
