// Fast paths of the RGB kernels for the identity filter and one-byte
// channels (k = 1), and for identity 16-bit samples. The byte paths convert
// a leading part of the line and return how many pixels they converted (0
// when the CPU lacks the instructions or the layout has no fast path); the
// caller converts the rest with the scalar kernel of RGBKernels.h, which
// stays the reference. No path reads or writes a byte the scalar kernel
// would not touch for the same `n`.
#ifndef ZO_RGB_SIMD_H
#define ZO_RGB_SIMD_H

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/PixelIO.h"
#include "rgb/RGBKernels.h"

namespace zo {
namespace simd {

// Three- or four-byte pixels (red, green, blue first) to the Writer layout.
template <class Writer, unsigned Group>
inline std::uint32_t RepackBytesIdentity(const unsigned char*, unsigned char*, std::uint32_t)
{
    return 0;
}

// Four-byte pixels to RGB32/BGR32 keeping the fourth byte.
template <unsigned RedIndex>
inline std::uint32_t RepackKeepFourthIdentity(const unsigned char*, unsigned char*, std::uint32_t)
{
    return 0;
}

// Same layout in and out: a copy.
template <>
inline std::uint32_t RepackBytesIdentity<Write24<0>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    if (n)
        std::memcpy(d, s, std::size_t(n) * 3);
    return n;
}
template <>
inline std::uint32_t RepackKeepFourthIdentity<0>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    if (n)
        std::memcpy(d, s, std::size_t(n) * 4);
    return n;
}

// Byte shuffles (the active level's table of RGBPaths.h; RGBSimd.cpp).
template <>
std::uint32_t RepackBytesIdentity<Write32<0>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentity<Write32<2>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentity<Write24<2>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentity<WriteRGB16, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentity<Write32<0>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentity<Write32<2>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentity<Write24<0>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentity<Write24<2>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentity<WriteRGB16, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackKeepFourthIdentity<2>(const unsigned char* s, unsigned char* d, std::uint32_t n);

// The same with streaming stores (core/StreamStores.h), for the layouts
// that have such a path at some level; the others take the ordinary path.
template <class Writer, unsigned Group>
inline std::uint32_t RepackBytesIdentityStream(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RepackBytesIdentity<Writer, Group>(s, d, n);
}
template <>
std::uint32_t RepackBytesIdentityStream<Write32<0>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentityStream<Write32<2>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentityStream<WriteRGB16, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n);
template <>
std::uint32_t RepackBytesIdentityStream<WriteRGB16, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n);

// One-byte channels to three planes (red, green, blue); 0 when the planes
// overlap within the n pixels, where the scalar kernel's per-pixel order of
// writes decides the result.
std::uint32_t RepackPlanarIdentity(const unsigned char* s, unsigned char* red, unsigned char* green,
                                   unsigned char* blue, std::uint32_t n);

// Three-byte pixels (red, green, blue first) to RGB32 (or BGR32 when
// blueFirst), destination byte j through the 256-entry table tables[j]
// (null: the identity); the fourth byte is 0. Streaming stores when
// `stream`. 0 where the level has no such path.
std::uint32_t ThreeToFourTables(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                const unsigned char* const* tables, bool stream);

// Three-byte (group 3) or four-byte (group 4) pixels, red, green, blue
// first, to RGB16 words, red, green and blue through the 256-entry tables
// tables[0..2] (null: the identity) before packing. Streaming stores when
// `stream`. 0 where the level has no such path.
std::uint32_t BytesToRGB16Tables(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                 const unsigned char* const* tables, bool stream);

// The same for tables that all have an arithmetic form (simd/LutForm.h;
// `tables` in the destination's byte order), evaluated on the pixels before
// they store, bit for bit the lookups. 0 where a table has no form or the
// level has no such path.
struct LutTables8;
std::uint32_t ThreeToFourFormed(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                const LutTables8& tables, bool stream);
// BytesToRGB16Tables through such forms (`tables` red, green, blue), at the
// AVX2 level and up: the unit forms that match the tables in the bits RGB16
// keeps where every table has one (LutRgb16Forms), else the tables' own;
// 0 elsewhere or where a table has neither.
std::uint32_t BytesToRGB16Formed(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                 const LutTables8& tables, bool stream);

// Whether the byte shuffles above use vector instructions at the active
// level.
bool HasByteShuffle();

// A whole line of one-byte channels through the identity filter: the fast
// path (with streaming stores when `stream`), then the scalar kernel for
// what it left.
template <class Writer, unsigned Group>
inline void RepackBytesIdentityLine(const unsigned char* s, unsigned char* d, std::uint32_t n, bool stream = false)
{
    const ChannelTables8 unused{nullptr, nullptr, nullptr};  // not read on the identity path
    const std::uint32_t done =
        stream ? RepackBytesIdentityStream<Writer, Group>(s, d, n) : RepackBytesIdentity<Writer, Group>(s, d, n);
    RepackBytesLine<Writer, Group, 1, true>(s + std::size_t(done) * Group, d + std::size_t(done) * Writer::kBytes,
                                            n - done, 1, unused);
}

// A whole line of 16-bit samples through the identity filter: each chunk of
// the line is narrowed to bytes ((w >> shift) & 0xFF, one flat loop over the
// samples, which vectorises) into a small buffer on the stack, then repacked
// as one-byte channels. Same result as RepackWordsLine<Writer, Words, true>.
template <class Writer, unsigned Words>
inline void RepackWordsIdentityLine(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift)
{
    constexpr std::uint32_t kChunk = 256;
    unsigned char bytes[kChunk * Words];
    for (std::uint32_t done = 0; done < n;) {
        const std::uint32_t m = std::min(kChunk, n - done);
        NarrowSamples(s + std::size_t(done) * 2 * Words, bytes, m * Words, shift);
        RepackBytesIdentityLine<Writer, Words>(bytes, d + std::size_t(done) * Writer::kBytes, m);
        done += m;
    }
}

}  // namespace simd
}  // namespace zo

#endif
