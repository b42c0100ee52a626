// Line kernels of the YUV families: free functions over one line, templated
// over the destination writer (core/PixelIO.h). Every parameter comes in
// explicitly; the kernels never touch a converter or its context.
//
// 4:2:2 sources: a pair of pixels is four samples Y0 U Y1 V; pixel 0 is
// (Y0, U, V), pixel 1 is (Y1, U, V).
//
//   8-bit, sample of (extra + 1) bytes, the value is its last byte:
//     extra 0:  | Y0 | U | Y1 | V |                      4 bytes a pair
//     extra 1:  | .. Y0 | .. U | .. Y1 | .. V |          8 bytes a pair
//   10-bit, little-endian words, value = low 8 bits of (word >> shift):
//               | Y0 lo hi | U lo hi | Y1 lo hi | V lo hi |   8 bytes a pair
//
// 4:4:4 sources: pixel i starts at i x pixelBytes; with p = its byte
// `extra`, Y = p[yOffset], U = p[uOffset], V = p[vOffset].
#ifndef ZO_YUV_KERNELS_H
#define ZO_YUV_KERNELS_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "core/PixelIO.h"
#include "simd/Lut.h"
#include "yuv/YUVTransform.h"

namespace zo {

// The filter's 8-bit channel tables, and whether they are the identity (then
// the lookups are skipped; the result is the same).
struct YUVChannelTables {
    const std::uint8_t* red;
    const std::uint8_t* green;
    const std::uint8_t* blue;
    bool identity;
};

// Transform, clamp, filter and store one pixel.
template <class Writer, bool Filtered>
inline void PutYUVPixel(unsigned char* d, std::int32_t y, std::int32_t u, std::int32_t v, const YUVChannelTables& t)
{
    const RGB8 c = YUVToRGB8(y, u, v);
    if (Filtered)
        Writer::Put(d, t.red[c.r], t.green[c.g], t.blue[c.b]);
    else
        Writer::Put(d, c.r, c.g, c.b);
}

// Readers of one 4:2:2 pair: the four sample values Y0, U, Y1, V.
struct YUV8PairReader {
    std::uint32_t sampleBytes;  // extra + 1
    std::uint32_t PairBytes() const { return 4 * sampleBytes; }
    void Read(const unsigned char* s, std::int32_t (&out)[4]) const
    {
        const unsigned char* last = s + sampleBytes - 1;
        out[0] = last[0];
        out[1] = last[sampleBytes];
        out[2] = last[2 * sampleBytes];
        out[3] = last[3 * sampleBytes];
    }
};

struct YUV10PairReader {
    std::uint32_t shift;
    std::uint32_t PairBytes() const { return 8; }
    void Read(const unsigned char* s, std::int32_t (&out)[4]) const
    {
        // No clamping: bits above the eighth of the shifted word are dropped.
        for (int i = 0; i < 4; ++i)
            out[i] = static_cast<std::int32_t>((LoadLE16(s + 2 * i) >> shift) & 0xFF);
    }
};

// Pairs [firstPair, pairEnd) of a 4:2:2 line.
template <class Writer, bool Filtered, class Reader>
inline void YUV422PairsToRGB(const unsigned char* src, unsigned char* dst, std::uint32_t firstPair,
                             std::uint32_t pairEnd, const Reader& reader, const YUVChannelTables& tables)
{
    const YUVChannelTables t = tables;  // a local copy: byte stores cannot alias it
    const std::uint32_t pairBytes = reader.PairBytes();
    const unsigned char* s = src + static_cast<std::size_t>(firstPair) * pairBytes;
    unsigned char* d = dst + static_cast<std::size_t>(firstPair) * 2 * Writer::kBytes;
    for (std::uint32_t p = firstPair; p < pairEnd; ++p, s += pairBytes, d += 2 * Writer::kBytes) {
        std::int32_t q[4];
        reader.Read(s, q);
        PutYUVPixel<Writer, Filtered>(d, q[0], q[1], q[3], t);
        PutYUVPixel<Writer, Filtered>(d + Writer::kBytes, q[2], q[1], q[3], t);
    }
}

// Number of pairs a 4:2:2 line of `count` pixels converts: count rounded up
// to even, halved. An odd count therefore writes one pixel past `count`
// (deliberately: the last pixel of a pair cannot be left out). Zero gives
// zero: no pair is converted.
inline std::uint32_t YUV422PairCount(std::uint32_t count) { return count / 2 + (count & 1); }

// Vector paths (YUVSimd.cpp, those of the active level): convert whole groups
// from the start of the line, unfiltered, into the layout of dstBytes
// (2 RGB16, 3 and 4 with red at redIndex) and return how many pairs or
// pixels they did; the scalar kernels finish the line. 0 where no vector
// path applies. `stream`: the 8-bit 4:2:2 paths may write with streaming
// stores (YUVSimd.h).
std::uint32_t YUV8PairsToRGBVector(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                   std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex,
                                   bool stream);
std::uint32_t YUV10PairsToRGBVector(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                    std::uint32_t shift, std::uint32_t dstBytes, std::uint32_t redIndex);
// The same through tables that have a form, evaluated before the store
// (one pass); false (nothing done) where the level has no such path for
// these arguments, else true with the pairs converted in `done`.
bool YUV8PairsFormedVector(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                           std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex,
                           const simd::LutFormPlan8& plan, bool stream, std::uint32_t& done);
// The same from 10-bit samples, where every table has a scaled form.
bool YUV10PairsScaledVector(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, std::uint32_t shift,
                            std::uint32_t dstBytes, std::uint32_t redIndex, const simd::LutFormPlan8& plan,
                            std::uint32_t& done);
// The same through any 8-bit tables (in byte order of the layout), looked
// up inside the vector path before the store.
bool YUV8PairsLutVector(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                        std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex,
                        const simd::LutTables8& tables, bool stream, std::uint32_t& done);
std::uint32_t YUV444ToRGBVector(const unsigned char* src, unsigned char* dst, std::uint32_t count,
                                std::uint32_t pixelBytes, std::uint32_t yOffset, std::uint32_t uOffset,
                                std::uint32_t vOffset, std::uint32_t dstBytes, std::uint32_t redIndex);

// Writer-dependent arguments of the vector entry points.
template <class Writer>
struct WriterShape;
template <>
struct WriterShape<WriteRGB16> {
    static constexpr std::uint32_t kRedIndex = 0;
};
template <unsigned R>
struct WriterShape<Write24<R>> {
    static constexpr std::uint32_t kRedIndex = R;
};
template <unsigned R>
struct WriterShape<Write32<R>> {
    static constexpr std::uint32_t kRedIndex = R;
};

// A whole 4:2:2 line of `count` pixels (rounded up to even, see above).
// `vector` allows the vector paths (with a filter, through a small buffer).
// Pairs are independent, so converting in vector groups and then pair by
// pair gives what blocks of four pairs followed by single pairs give.
// `stream`: the line may write with streaming stores (core/StreamStores.h);
// the paths that write the destination once do where they can, those
// that read it back (the table pass) never.
template <class Writer, class Reader>
void YUV422LineToRGB(const unsigned char* src, unsigned char* dst, std::uint32_t count, const Reader& reader,
                     const YUVChannelTables& t, bool vector, bool stream = false);

template <class Writer>
inline std::uint32_t YUV422Vector(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                  const YUV8PairReader& r, bool stream = false)
{
    return YUV8PairsToRGBVector(src, dst, pairs, r.sampleBytes, Writer::kBytes, WriterShape<Writer>::kRedIndex,
                                stream);
}

template <class Writer>
inline std::uint32_t YUV422Vector(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                  const YUV10PairReader& r, bool = false)
{
    return YUV10PairsToRGBVector(src, dst, pairs, r.shift, Writer::kBytes, WriterShape<Writer>::kRedIndex);
}

// Filtered lines: a vector path converts a chunk of pixels into plain
// RGB32 bytes in a small buffer; each pixel then goes through the tables to
// the destination layout. Same result as the scalar kernels, faster.
// With a vector table pass for the tables (simd/Lut.h) the 24- and 32-bit
// layouts do better: the filter is applied to the final channel values just
// before they are stored, so the vector path writes the destination directly
// and the pass follows over the pixels it wrote, while they are still in the
// first-level cache. Better still, 8-bit 4:2:2 in one pass: into 32-bit
// layouts at AVX-512 VBMI the vector path looks every table up itself
// before it stores (any tables); at AVX2, where the tables have an
// arithmetic form, it evaluates the form before it stores; and at every
// vector level, 8- and 10-bit samples into 16-, 24- and 32-bit layouts,
// where every table has a scaled form (simd/LutScaled.h; through gains 1.8,
// 1.0, 1.4 at avx2, 1920 x 32 in the cache, times the identity: YUYV ->
// RGB16 5.0 -> 1.33, -> RGB24 2.10 -> 1.33; 10-bit -> RGB32 2.45 -> 1.31).
constexpr std::uint32_t kFilterChunkPixels = 256;

template <class Writer>
constexpr bool kTablePassLayout = Writer::kBytes == 3 || Writer::kBytes == 4;

template <class Writer>
inline simd::LutTables8 YUVByteOrderTables(const YUVChannelTables& t)
{
    return simd::LutTablesInByteOrder(t.red, t.green, t.blue, WriterShape<Writer>::kRedIndex);
}

// Whether these tables have a vector pass at this level (VBMI lookups, or
// the arithmetic pass of tables with a form, simd/LutForm.h).
template <class Writer>
inline bool UseYUVTablePass(const YUVChannelTables& t)
{
    if constexpr (kTablePassLayout<Writer>)
        return !t.identity && simd::VectorLutFor(YUVByteOrderTables<Writer>(t), Writer::kBytes);
    else
        return false;
}

template <class Writer>
inline void YUVTablePass(unsigned char* dst, std::uint32_t pixels, const YUVChannelTables& t)
{
    simd::ApplyLut8(dst, pixels, Writer::kBytes, YUVByteOrderTables<Writer>(t));
}

// The plan of the tables for this layout: in its byte order, RGB16 in red,
// green, blue order made for 4-byte pixels.
template <class Writer>
inline const simd::LutFormPlan8* YUVFormPlan(const YUVChannelTables& t)
{
    return simd::FormPlan8(YUVByteOrderTables<Writer>(t), kTablePassLayout<Writer> ? Writer::kBytes : 4);
}

// Filtered 8- and 10-bit lines into 16-, 24- and 32-bit layouts: the
// vector path looks the tables up before it stores where the level has such
// lookups (8-bit samples into 24/32-bit layouts), else evaluates the
// tables' form (checked as the table pass checks them) where they have one
// and the level has that path. False: not taken.
template <class Writer, class Reader>
inline bool YUV422OnePass(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, const Reader& reader,
                          const YUVChannelTables& t, bool stream, std::uint32_t& done)
{
    if constexpr ((kTablePassLayout<Writer> || Writer::kBytes == 2) && std::is_same<Reader, YUV10PairReader>::value) {
        if (t.identity)
            return false;
        const simd::LutFormPlan8* plan = YUVFormPlan<Writer>(t);
        return plan && YUV10PairsScaledVector(src, dst, pairs, reader.shift, Writer::kBytes,
                                              WriterShape<Writer>::kRedIndex, *plan, done);
    } else if constexpr ((kTablePassLayout<Writer> || Writer::kBytes == 2) &&
                         std::is_same<Reader, YUV8PairReader>::value) {
        if (t.identity)
            return false;
        if (kTablePassLayout<Writer> &&
            YUV8PairsLutVector(src, dst, pairs, reader.sampleBytes, Writer::kBytes, WriterShape<Writer>::kRedIndex,
                               YUVByteOrderTables<Writer>(t), stream, done))
            return true;
        const simd::LutFormPlan8* plan = YUVFormPlan<Writer>(t);
        return plan && YUV8PairsFormedVector(src, dst, pairs, reader.sampleBytes, Writer::kBytes,
                                             WriterShape<Writer>::kRedIndex, *plan, stream, done);
    } else {
        (void)src, (void)dst, (void)pairs, (void)reader, (void)t, (void)stream, (void)done;
        return false;
    }
}

template <class Writer>
inline void FilterRGB32(const unsigned char* rgb32, unsigned char* dst, std::uint32_t n, const YUVChannelTables& t)
{
    // Local copies: byte stores could otherwise alias the table pointers.
    const std::uint8_t* const red = t.red;
    const std::uint8_t* const green = t.green;
    const std::uint8_t* const blue = t.blue;
    for (std::uint32_t i = 0; i < n; ++i, rgb32 += 4, dst += Writer::kBytes)
        Writer::Put(dst, red[rgb32[0]], green[rgb32[1]], blue[rgb32[2]]);
}

template <class Writer, class Reader>
void YUV422LineToRGB(const unsigned char* src, unsigned char* dst, std::uint32_t count, const Reader& reader,
                     const YUVChannelTables& t, bool vector, bool stream)
{
    const std::uint32_t pairs = YUV422PairCount(count);
    std::uint32_t done = 0;
    if (vector && t.identity) {
        done = YUV422Vector<Writer>(src, dst, pairs, reader, stream);
    } else if (vector && YUV422OnePass<Writer>(src, dst, pairs, reader, t, stream, done)) {
        // one pass: the rest of the line below
    } else if (vector && UseYUVTablePass<Writer>(t)) {
        done = YUV422Vector<Writer>(src, dst, pairs, reader);
        YUVTablePass<Writer>(dst, 2 * done, t);
    } else if (vector) {
        alignas(16) unsigned char buffer[kFilterChunkPixels * 4];
        while (done < pairs) {
            const std::uint32_t want = pairs - done < kFilterChunkPixels / 2 ? pairs - done : kFilterChunkPixels / 2;
            const std::uint32_t got =
                YUV422Vector<WriteRGB32>(src + static_cast<std::size_t>(done) * reader.PairBytes(), buffer, want, reader);
            FilterRGB32<Writer>(buffer, dst + static_cast<std::size_t>(done) * 2 * Writer::kBytes, 2 * got, t);
            done += got;
            if (got < want)
                break;
        }
    }
    if (t.identity)
        YUV422PairsToRGB<Writer, false>(src, dst, done, pairs, reader, t);
    else
        YUV422PairsToRGB<Writer, true>(src, dst, done, pairs, reader, t);
}

// Pixels [first, end) of a 4:4:4 line.
template <class Writer, bool Filtered>
inline void YUV444PixelsToRGB(const unsigned char* src, unsigned char* dst, std::uint32_t first, std::uint32_t end,
                              std::uint32_t pixelBytes, std::uint32_t extra, std::uint32_t yOffset,
                              std::uint32_t uOffset, std::uint32_t vOffset, const YUVChannelTables& tables)
{
    const YUVChannelTables t = tables;  // a local copy: byte stores cannot alias it
    const unsigned char* p = src + static_cast<std::size_t>(first) * pixelBytes + extra;
    unsigned char* d = dst + static_cast<std::size_t>(first) * Writer::kBytes;
    for (std::uint32_t i = first; i < end; ++i, p += pixelBytes, d += Writer::kBytes)
        PutYUVPixel<Writer, Filtered>(d, p[yOffset], p[uOffset], p[vOffset], t);
}

// Pixels [first, end) of a 4:4:4 line through one set of tables, the vector
// path first where allowed.
template <class Writer>
void YUV444RangeToRGB(const unsigned char* src, unsigned char* dst, std::uint32_t first, std::uint32_t end,
                      std::uint32_t extra, std::uint32_t yOffset, std::uint32_t uOffset, std::uint32_t vOffset,
                      const YUVChannelTables& t, bool vector)
{
    const std::uint32_t pixelBytes = 3 * (extra + 1);
    std::uint32_t done = first;
    auto at = [&](std::uint32_t i) { return src + static_cast<std::size_t>(i) * pixelBytes + extra; };
    if (vector && (t.identity || UseYUVTablePass<Writer>(t))) {
        unsigned char* out = dst + static_cast<std::size_t>(done) * Writer::kBytes;
        const std::uint32_t got = YUV444ToRGBVector(at(done), out, end - done, pixelBytes, yOffset, uOffset,
                                                    vOffset, Writer::kBytes, WriterShape<Writer>::kRedIndex);
        if (!t.identity)
            YUVTablePass<Writer>(out, got, t);
        done += got;
    } else if (vector) {
        alignas(16) unsigned char buffer[kFilterChunkPixels * 4];
        while (done < end) {
            const std::uint32_t want = end - done < kFilterChunkPixels ? end - done : kFilterChunkPixels;
            const std::uint32_t got =
                YUV444ToRGBVector(at(done), buffer, want, pixelBytes, yOffset, uOffset, vOffset, 4, 0);
            FilterRGB32<Writer>(buffer, dst + static_cast<std::size_t>(done) * Writer::kBytes, got, t);
            done += got;
            if (got < want)
                break;
        }
    }
    if (t.identity)
        YUV444PixelsToRGB<Writer, false>(src, dst, done, end, pixelBytes, extra, yOffset, uOffset, vOffset, t);
    else
        YUV444PixelsToRGB<Writer, true>(src, dst, done, end, pixelBytes, extra, yOffset, uOffset, vOffset, t);
}

// A whole 4:4:4 line: pixels [0, blocked) in the four-at-a-time part through
// `blockTables`, the rest one by one through `tables` (the caller decides
// both; they differ only where a class says so).
template <class Writer>
void YUV444LineToRGB(const unsigned char* src, unsigned char* dst, std::uint32_t count, std::uint32_t blocked,
                     std::uint32_t extra, std::uint32_t yOffset, std::uint32_t uOffset, std::uint32_t vOffset,
                     const YUVChannelTables& blockTables, const YUVChannelTables& tables, bool vector)
{
    if (blockTables.identity && tables.identity) {  // no difference between the parts
        YUV444RangeToRGB<Writer>(src, dst, 0, count, extra, yOffset, uOffset, vOffset, tables, vector);
        return;
    }
    YUV444RangeToRGB<Writer>(src, dst, 0, blocked, extra, yOffset, uOffset, vOffset, blockTables, vector);
    YUV444RangeToRGB<Writer>(src, dst, blocked, count, extra, yOffset, uOffset, vOffset, tables, vector);
}

}  // namespace zo

#endif
