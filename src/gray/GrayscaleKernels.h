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

#include "gray/GrayscaleTables.h"

// Source and destination lines of one call never overlap.
#if defined(__GNUC__) || defined(_MSC_VER)
#define ZO_RESTRICT __restrict
#else
#define ZO_RESTRICT
#endif

namespace zo {
namespace gray {

// Little-endian loads and stores that compile to plain moves on x86.
inline std::uint32_t Load16(const unsigned char* s)
{
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    return static_cast<std::uint32_t>(s[0] | (s[1] << 8));
#else
    std::uint16_t w;
    std::memcpy(&w, s, 2);
    return w;
#endif
}

inline void Store16(unsigned char* d, std::uint32_t v)
{
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    d[0] = static_cast<unsigned char>(v);
    d[1] = static_cast<unsigned char>(v >> 8);
#else
    const std::uint16_t w = static_cast<std::uint16_t>(v);
    std::memcpy(d, &w, 2);
#endif
}

inline void Store32(unsigned char* d, std::uint32_t v)
{
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    d[0] = static_cast<unsigned char>(v);
    d[1] = static_cast<unsigned char>(v >> 8);
    d[2] = static_cast<unsigned char>(v >> 16);
    d[3] = static_cast<unsigned char>(v >> 24);
#else
    std::memcpy(d, &v, 4);
#endif
}

// ---------------------------------------------------------------------------
// Readers: the 8-bit gray value of pixel i.

// An (8 + Shift)-bit sample in a 16-bit word: (w >> Shift) & 0xFF. Bits above
// the sample's depth are dropped (the index of the shared tables, masked to
// the table size, gives the same value).
template <unsigned Shift>
struct ReadWordShifted {
    static constexpr unsigned kBytes = 2;
    std::uint32_t operator()(const unsigned char* s, std::size_t i) const { return (Load16(s + 2 * i) >> Shift) & 0xFF; }
};

// The same with the shift known at run time only.
struct ReadWordShiftedBy {
    std::uint32_t shift;
    std::uint32_t operator()(const unsigned char* s, std::size_t i) const { return (Load16(s + 2 * i) >> shift) & 0xFF; }
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
// Writers: store pixel i from its 8-bit gray value g.

struct PutGray8 {
    static void Put(unsigned char* d, std::size_t i, std::uint32_t g) { d[i] = static_cast<unsigned char>(g); }
};

// RGB16 word of g (entry g of the 8-bit gray-to-RGB16 table).
struct PutRGB16 {
    static void Put(unsigned char* d, std::size_t i, std::uint32_t g) { Store16(d + 2 * i, GrayToRGB16Word(g)); }
};

// Three bytes g: the same for RGB24 and BGR24.
struct PutRGB24 {
    static void Put(unsigned char* d, std::size_t i, std::uint32_t g)
    {
        d[3 * i] = static_cast<unsigned char>(g);
        d[3 * i + 1] = static_cast<unsigned char>(g);
        d[3 * i + 2] = static_cast<unsigned char>(g);
    }
};

// g x 0x10101 little-endian: bytes g, g, g, 0, the same for RGB32 and BGR32.
struct PutRGB32 {
    static void Put(unsigned char* d, std::size_t i, std::uint32_t g) { Store32(d + 4 * i, g | (g << 8) | (g << 16)); }
};

// One line: pixel i of the source to pixel i of the destination.
template <class Writer, class Reader>
void GrayLine(const unsigned char* ZO_RESTRICT s, unsigned char* ZO_RESTRICT d, std::uint32_t n, Reader read)
{
    for (std::size_t i = 0; i < n; ++i)
        Writer::Put(d, i, read(s, i));
}

// ---------------------------------------------------------------------------
// Depth changes within 16-bit words.

// w >> shift (logical).
inline void RightShiftLine(const unsigned char* ZO_RESTRICT s, unsigned char* ZO_RESTRICT d, std::uint32_t n,
                           std::uint32_t shift)
{
    for (std::size_t i = 0; i < n; ++i)
        Store16(d + 2 * i, Load16(s + 2 * i) >> shift);
}

// w << shift kept to 16 bits.
inline void LeftShiftLine(const unsigned char* ZO_RESTRICT s, unsigned char* ZO_RESTRICT d, std::uint32_t n,
                          std::uint32_t shift)
{
    for (std::size_t i = 0; i < n; ++i)
        Store16(d + 2 * i, (Load16(s + 2 * i) << shift) & 0xFFFF);
}

}  // namespace gray
}  // namespace zo

#endif
