// RGB repacking converters: each form reads the filter from the thread's
// context once and hands the line to a kernel of RGBKernels.h.
#include "ZoRGBConverters.h"

#include <cstring>
#include <type_traits>

#include "core/StreamStores.h"
#include "rgb/RGBKernels.h"
#include "rgb/RGBSimd.h"
#include "simd/Lut.h"

using zo::ChannelTables16;
using zo::ChannelTables8;

namespace {

ChannelTables8 Tables8(const ZoRGBFilter& f)
{
    return {f.RedTable8(), f.GreenTable8(), f.BlueTable8()};
}

ChannelTables16 Tables16(const ZoRGBFilter& f)
{
    return {f.RedTable16(), f.GreenTable16(), f.BlueTable16()};
}

// Calls f with the red-first or the blue-first writer of a layout.
template <template <unsigned> class Layout, class F>
void WithOrder(bool blueFirst, F&& f)
{
    if (blueFirst)
        f(Layout<2>{});
    else
        f(Layout<0>{});
}

// The 8-bit tables in the byte order of a 24- or 32-bit layout.
zo::simd::LutTables8 ByteOrderTables(const ZoRGBFilter& f, unsigned redIndex)
{
    return zo::simd::LutTablesInByteOrder(f.RedTable8(), f.GreenTable8(), f.BlueTable8(), redIndex);
}

template <class Writer>
struct TablePassLayout {
    static constexpr bool kUses = false;
};
template <unsigned R>
struct TablePassLayout<zo::Write24<R>> {
    static constexpr bool kUses = true;
};
template <unsigned R>
struct TablePassLayout<zo::Write32<R>> {
    static constexpr bool kUses = true;
};

// Whether the table passes below may run at this level: the VBMI lookups,
// and from AVX2 on the arithmetic passes (measured: below AVX2 this family's
// identity line gains less than the pass costs).
bool RGBTablePassLevel()
{
    return zo::simd::VectorLutActive() || zo::simd::ActiveCpuLevel() >= zo::simd::CpuLevel::kAVX2;
}

// Null for a table that maps every byte to itself (the fused lookups skip
// it), else the table.
const unsigned char* IdentityOrTable(const std::uint8_t* table)
{
    return zo::simd::IsIdentityTable8(table) ? nullptr : table;
}

// A line of one-byte channels whose identity line would stream: chunk by
// chunk, the identity line into a per-thread scratch buffer that stays in the
// first-level cache, the table pass over it there, then a streaming copy to
// the destination. Written in place instead, the line takes ordinary stores
// (the pass reads it back) and loses what streaming gains on frames larger
// than the cache. The line is cut into equal chunks of at most 1024 pixels,
// each a whole number of 16 pixels (whole 64-byte lines of 4-byte pixels).
// Measured, RGB 24 to BGRA through gains 1.8, 1.0, 1.4, cold buffers, time
// over the identity twin's: at 4096 x 3000 the VBMI pass goes from 1.8-2.1
// in place to 1.5-1.55 here, the AVX2 arithmetic pass from 2.65 to 2.0-2.3;
// at 1080p (a destination the last-level cache holds) the filtered time is
// the same either way on an idle machine (1.6-1.7), and 2.3 in place against
// 1.7 here under load. Chunks of 1024 and 896 pixels for a 1920-pixel line
// measured 2.3 under load, chunks of 2048 pixels 1.8 at 4096 x 3000: hence
// equal chunks of at most 1024. The pass itself (and its per-call set-up)
// is what remains above the identity line.
template <class Writer, unsigned Group>
void StreamedPassLine(const unsigned char* s, unsigned char* d, std::uint32_t n, const zo::simd::LutPass8& pass)
{
    constexpr std::uint32_t kChunk = 1024;
    alignas(64) thread_local unsigned char scratch[kChunk * 4];
    const std::uint32_t chunks = (n + kChunk - 1) / kChunk;
    const std::uint32_t chunk = chunks ? std::min(kChunk, ((n + chunks - 1) / chunks + 15) / 16 * 16) : 0;
    for (std::uint32_t done = 0; done < n;) {
        const std::uint32_t m = std::min(chunk, n - done);
        zo::simd::RepackBytesIdentityLine<Writer, Group>(s + std::size_t(done) * Group, scratch, m);
        pass.Apply(scratch, m);
        zo::StreamCopy(d + std::size_t(done) * Writer::kBytes, scratch, std::size_t(m) * Writer::kBytes);
        done += m;
    }
}

// A line of one-byte channels into a layout the table pass cannot run over
// (RGB16 packs the channels into fewer bits than the tables index with), at
// a level without the fused lookups: chunk by chunk, the source pixels are
// copied into a per-thread scratch buffer that stays in the first-level
// cache, the pass runs over them there (source byte order: red, green,
// blue, an unused fourth byte), and the identity line repacks the chunk,
// into the destination or, streaming, into a second scratch buffer that a
// streaming copy writes out (the area walk fences once). The line
// is cut into equal chunks of at most 2048 pixels. Measured on cold frames,
// RGB 24 to RGB16 through gains 1.8, 1.0, 1.4 at the AVX2 level, time over
// the identity twin's: 2.8-3.0 at 1080p and 3.3-3.6 at 4096 x 3000,
// against 4.7-4.8 for the scalar lookups. Smaller chunks cost more (256
// pixels: about three times the time of 1024-pixel chunks with a fence each,
// still 1.5 times without), one chunk a 1920-pixel line less than two.
template <class Writer, unsigned Group>
void PrefilteredLine(const unsigned char* s, unsigned char* d, std::uint32_t n, const zo::simd::LutPass8& pass,
                     bool stream)
{
    constexpr std::uint32_t kChunk = 2048;
    alignas(64) thread_local unsigned char scratch[kChunk * Group];
    alignas(64) thread_local unsigned char packed[kChunk * Writer::kBytes];
    const std::uint32_t chunks = (n + kChunk - 1) / kChunk;
    const std::uint32_t chunk = chunks ? std::min(kChunk, ((n + chunks - 1) / chunks + 31) / 32 * 32) : 0;
    for (std::uint32_t done = 0; done < n;) {
        const std::uint32_t m = std::min(chunk, n - done);
        std::memcpy(scratch, s + std::size_t(done) * Group, std::size_t(m) * Group);
        pass.Apply(scratch, m);
        unsigned char* const out = d + std::size_t(done) * Writer::kBytes;
        if (stream) {
            zo::simd::RepackBytesIdentityLine<Writer, Group>(scratch, packed, m);
            zo::StreamCopy(out, packed, std::size_t(m) * Writer::kBytes);
        } else {
            zo::simd::RepackBytesIdentityLine<Writer, Group>(scratch, out, m);
        }
        done += m;
    }
}

// An 8-bit-channel line: the kernel specialised for the common channel steps
// and for the identity filter. With a filter that is not the identity and a
// vector table pass for its tables (simd/Lut.h), the 24- and 32-bit layouts
// of one- and two-byte channels take the identity line (its bytes are the
// channel bytes the filtered kernel indexes with; the fourth byte is 0 either
// way) and then the pass over it; without one, the filtered kernel's own
// lookups are faster. Three- to four-byte pixels of one-byte channels take
// first the fused shuffle and forms where the level has them and every
// table has a form (AVX2: 1.35-1.43 times the identity line at 1080p and
// 1.26-1.31 at 4096 x 3000 through gains 1.8, 1.0, 1.4, against 2.0-2.3
// and 2.0-2.1 for the identity line and the pass), then the fused permute
// and lookups (AVX-512 VBMI, rgb/RGBAvx512.cpp: 1.1-1.25 times the identity
// line, against 1.5-1.7 for the identity line and the pass). RGB16, which no
// pass can run over, takes (AVX2 and up) the unit forms that match every
// table in the bits the packing keeps (LutRgb16Forms: at 1080p through
// gains 1.8, 1.0, 1.4, 1.02-1.03 times the identity line at the AVX-512
// level, where the lookups before packing took 1.44-1.49, and 1.25-1.28 at
// AVX2, where the tables' own forms took 1.65-1.67), else the lookups before
// packing where the level has them (AVX-512 VBMI), else the tables' own
// forms before packing where every table has one (AVX2), else
// PrefilteredLine. `stream`: the identity line of
// one-byte channels may write with streaming stores
// (core/StreamStores.h), and so may the fused paths; a filtered line that
// would stream otherwise takes StreamedPassLine (at 4096 x 3000 measured
// 1.5 times the identity line, where the pass in place measured 1.8-2.1).
template <class Writer, unsigned Group>
void BytesLine(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t k, const ZoRGBFilter& f,
               bool stream = false)
{
    const ChannelTables8 t = Tables8(f);
    if constexpr (TablePassLayout<Writer>::kUses && Group == 3 && Writer::kBytes == 4) {
        if (!f.IsIdentity8() && k == 1) {
            const zo::simd::LutTables8 b = ByteOrderTables(f, Writer::kRed);
            std::uint32_t done = zo::simd::ThreeToFourFormed(s, d, n, Writer::kRed == 2, b, stream);
            if (!done) {
                const unsigned char* const tables[3] = {IdentityOrTable(b.byte0), IdentityOrTable(b.byte1),
                                                        IdentityOrTable(b.byte2)};
                done = zo::simd::ThreeToFourTables(s, d, n, Writer::kRed == 2, tables, stream);
            }
            if (done) {
                zo::RepackBytesLine<Writer, Group, 1, false>(s + std::size_t(done) * 3, d + std::size_t(done) * 4,
                                                             n - done, 1, t);
                return;
            }
        }
    }
    if constexpr (std::is_same_v<Writer, zo::WriteRGB16>) {
        if (!f.IsIdentity8() && k == 1) {
            std::uint32_t done = zo::simd::BytesToRGB16Formed(s, d, n, Group, ByteOrderTables(f, 0), stream);
            if (!done) {
                const unsigned char* const tables[3] = {IdentityOrTable(f.RedTable8()),
                                                        IdentityOrTable(f.GreenTable8()),
                                                        IdentityOrTable(f.BlueTable8())};
                done = zo::simd::BytesToRGB16Tables(s, d, n, Group, tables, stream);
            }
            if (done) {
                zo::RepackBytesLine<Writer, Group, 1, false>(s + std::size_t(done) * Group, d + std::size_t(done) * 2,
                                                             n - done, 1, t);
                return;
            }
        }
        if (!f.IsIdentity8() && k == 1 && RGBTablePassLevel()) {
            const zo::simd::LutPass8 pass(ByteOrderTables(f, 0), Group);
            if (pass.Vector()) {
                PrefilteredLine<Writer, Group>(s, d, n, pass, stream);
                return;
            }
        }
    }
    if constexpr (TablePassLayout<Writer>::kUses) {
        if (!f.IsIdentity8() && (k == 1 || k == 2) && RGBTablePassLevel()) {
            const zo::simd::LutPass8 pass(ByteOrderTables(f, Writer::kRed), Writer::kBytes);
            if (pass.Vector()) {
                if (k == 1 && stream) {
                    StreamedPassLine<Writer, Group>(s, d, n, pass);
                    return;
                }
                if (k == 1)
                    zo::simd::RepackBytesIdentityLine<Writer, Group>(s, d, n);
                else
                    zo::simd::RepackWordsIdentityLine<Writer, Group>(s, d, n, 8);
                pass.Apply(d, n);
                return;
            }
        }
    }
    if (f.IsIdentity8()) {
        if (k == 1)
            zo::simd::RepackBytesIdentityLine<Writer, Group>(s, d, n, stream);
        else if (k == 2)  // the second byte of each channel is the high byte of a word
            zo::simd::RepackWordsIdentityLine<Writer, Group>(s, d, n, 8);
        else
            zo::RepackBytesLine<Writer, Group, 0, true>(s, d, n, k, t);
    } else {
        if (k == 1)
            zo::RepackBytesLine<Writer, Group, 1, false>(s, d, n, 1, t);
        else if (k == 2)
            zo::RepackBytesLine<Writer, Group, 2, false>(s, d, n, 2, t);
        else
            zo::RepackBytesLine<Writer, Group, 0, false>(s, d, n, k, t);
    }
}

// With a filter that is not the identity, one-byte channels and a vector
// table pass: the identity line, then the pass, which leaves the kept fourth
// byte as it is.
template <unsigned RedIndex>
void BytesKeepFourthLine(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t k,
                         const ZoRGBFilter& f)
{
    const ChannelTables8 t = Tables8(f);
    if (!f.IsIdentity8() && k == 1 && RGBTablePassLevel()) {
        const zo::simd::LutPass8 pass(ByteOrderTables(f, RedIndex), 4);
        if (pass.Vector()) {
            const std::uint32_t done = zo::simd::RepackKeepFourthIdentity<RedIndex>(s, d, n);
            zo::RepackBytesKeepFourthLine<RedIndex, 1, true>(s + 4 * done, d + 4 * done, n - done, 1, t);
            pass.Apply(d, n);
            return;
        }
    }
    if (f.IsIdentity8()) {
        if (k == 1) {
            const std::uint32_t done = zo::simd::RepackKeepFourthIdentity<RedIndex>(s, d, n);
            zo::RepackBytesKeepFourthLine<RedIndex, 1, true>(s + 4 * done, d + 4 * done, n - done, 1, t);
        } else if (k == 2) {
            zo::RepackBytesKeepFourthLine<RedIndex, 2, true>(s, d, n, 2, t);
        } else {
            zo::RepackBytesKeepFourthLine<RedIndex, 0, true>(s, d, n, k, t);
        }
    } else {
        if (k == 1)
            zo::RepackBytesKeepFourthLine<RedIndex, 1, false>(s, d, n, 1, t);
        else if (k == 2)
            zo::RepackBytesKeepFourthLine<RedIndex, 2, false>(s, d, n, 2, t);
        else
            zo::RepackBytesKeepFourthLine<RedIndex, 0, false>(s, d, n, k, t);
    }
}

template <class Writer, unsigned Words>
void WordsLine(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift, const ZoRGBFilter& f)
{
    if (f.IsIdentity16()) {
        zo::simd::RepackWordsIdentityLine<Writer, Words>(s, d, n, shift);
    } else {
        zo::RepackWordsLine<Writer, Words, false>(s, d, n, shift, Tables16(f));
    }
}

// The 24-bit line form of an RGB16 source with the identity filter: a chunk
// at a time expanded to 32-bit pixels (which vectorises) in a stack buffer,
// then repacked to three bytes a pixel.
template <class Writer>
void ExpandRGB16IdentityTo24(const unsigned char* s, unsigned char* d, std::uint32_t n, const ChannelTables8& t)
{
    constexpr std::uint32_t kChunk = 256;
    unsigned char pixels[kChunk * 4];
    for (std::uint32_t done = 0; done < n;) {
        const std::uint32_t m = n - done < kChunk ? n - done : kChunk;
        zo::ExpandThenFilterRGB16Line<zo::Write32<0>, true>(s + 2 * std::size_t(done), pixels, m, t);
        zo::simd::RepackBytesIdentityLine<Writer, 4>(pixels, d + 3 * std::size_t(done), m);
        done += m;
    }
}

// Single pixel of an 8-bit-channel source: unlike the line form it reads
// the FIRST byte of each k-byte channel (bytes 0, k, 2k). The two forms agree
// for k = 1 only; the difference is deliberate and kept.
template <class Writer>
void BytesPixel(const unsigned char* s, unsigned char* d, std::uint32_t k, const ZoRGBFilter& f)
{
    Writer::Put(d, f.RedTable8()[s[0]], f.GreenTable8()[s[k]], f.BlueTable8()[s[2 * k]]);
}

}  // namespace

// ---------------------------------------------------------------------------

ZoRGBtoRGB::ZoRGBtoRGB(const std::int64_t& sourceType, const std::int64_t& destinationType,
                       std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize,
                       std::uint32_t pipeliningSize, bool blueFirst, std::uint32_t skip, std::uint32_t shift,
                       std::uint32_t linesPerConvert)
    : ZoPixelConverter(sourceType, destinationType, (skip + 1) * sourcePixelSize, destinationPixelSize,
                       pipeliningSize, linesPerConvert),
      mBlueFirst(blueFirst),
      mChannelStep(skip + 1),
      mShift(shift),
      mRedIndex(blueFirst ? 2 : 0),
      mGreenIndex(1),
      mBlueIndex(blueFirst ? 0 : 2)
{
}

ZoRGBtoRGB::~ZoRGBtoRGB() = default;

namespace {
const std::int64_t kRGB16 = ZO_PT_RGB16;
const std::int64_t kRGB24 = ZO_PT_RGB24;
const std::int64_t kBGR24 = ZO_PT_BGR24;
const std::int64_t kRGB32 = ZO_PT_RGB32;
const std::int64_t kBGR32 = ZO_PT_BGR32;
const std::int64_t kRGB24Planar = ZO_PT_RGB24 | ZO_PIXEL_PLANAR;
}  // namespace

// Arguments to the base: (source type, destination type, channel group or
// pixel size, destination pixel size, pipelining 4, blue first, skip, shift,
// lines per convert 1).
ZoRGB24ToRGB16::ZoRGB24ToRGB16(const std::int64_t& s, std::uint32_t skip)
    : ZoRGBtoRGB(s, kRGB16, 3, 2, 4, false, skip, 0, 1) {}
ZoRGB32ToRGB16::ZoRGB32ToRGB16(const std::int64_t& s, std::uint32_t skip)
    : ZoRGBtoRGB(s, kRGB16, 4, 2, 4, false, skip, 0, 1) {}
ZoRGB48ToRGB16::ZoRGB48ToRGB16(const std::int64_t& s, unsigned int shift)
    : ZoRGBtoRGB(s, kRGB16, 6, 2, 4, false, 0, shift, 1) {}
ZoRGB64ToRGB16::ZoRGB64ToRGB16(const std::int64_t& s, unsigned int shift)
    : ZoRGBtoRGB(s, kRGB16, 8, 2, 4, false, 0, shift, 1) {}
ZoRGB16ToRGB24::ZoRGB16ToRGB24(const std::int64_t& s, bool blueFirst)
    : ZoRGBtoRGB(s, blueFirst ? kBGR24 : kRGB24, 2, 3, 4, blueFirst, 0, 0, 1) {}
ZoRGB24ToRGB24::ZoRGB24ToRGB24(const std::int64_t& s, bool blueFirst, std::uint32_t skip)
    : ZoRGBtoRGB(s, blueFirst ? kBGR24 : kRGB24, 3, 3, 4, blueFirst, skip, 0, 1) {}
ZoRGB32ToRGB24::ZoRGB32ToRGB24(const std::int64_t& s, bool blueFirst, std::uint32_t skip)
    : ZoRGBtoRGB(s, blueFirst ? kBGR24 : kRGB24, 4, 3, 4, blueFirst, skip, 0, 1) {}
ZoRGB48ToRGB24::ZoRGB48ToRGB24(const std::int64_t& s, unsigned int shift, bool blueFirst)
    : ZoRGBtoRGB(s, blueFirst ? kBGR24 : kRGB24, 6, 3, 4, blueFirst, 0, shift, 1) {}
ZoRGB64ToRGB24::ZoRGB64ToRGB24(const std::int64_t& s, unsigned int shift, bool blueFirst)
    : ZoRGBtoRGB(s, blueFirst ? kBGR24 : kRGB24, 8, 3, 4, blueFirst, 0, shift, 1) {}
ZoRGB24ToRGB24Planar::ZoRGB24ToRGB24Planar(const std::int64_t& s, std::uint32_t skip)
    : ZoRGBtoRGB(s, kRGB24Planar, 3, 3, 4, false, skip, 0, 1) {}
ZoRGB16ToRGB32::ZoRGB16ToRGB32(const std::int64_t& s, bool blueFirst)
    : ZoRGBtoRGB(s, blueFirst ? kBGR32 : kRGB32, 2, 4, 4, blueFirst, 0, 0, 1) {}
ZoRGB24ToRGB32::ZoRGB24ToRGB32(const std::int64_t& s, bool blueFirst, std::uint32_t skip)
    : ZoRGBtoRGB(s, blueFirst ? kBGR32 : kRGB32, 3, 4, 4, blueFirst, skip, 0, 1) {}
ZoRGB32ToRGB32::ZoRGB32ToRGB32(const std::int64_t& s, bool blueFirst, std::uint32_t skip)
    : ZoRGBtoRGB(s, blueFirst ? kBGR32 : kRGB32, 4, 4, 4, blueFirst, skip, 0, 1) {}
ZoRGB48ToRGB32::ZoRGB48ToRGB32(const std::int64_t& s, unsigned int shift, bool blueFirst)
    : ZoRGBtoRGB(s, blueFirst ? kBGR32 : kRGB32, 6, 4, 4, blueFirst, 0, shift, 1) {}
ZoRGB64ToRGB32::ZoRGB64ToRGB32(const std::int64_t& s, unsigned int shift, bool blueFirst)
    : ZoRGBtoRGB(s, blueFirst ? kBGR32 : kRGB32, 8, 4, 4, blueFirst, 0, shift, 1) {}

ZoRGB24ToRGB16::~ZoRGB24ToRGB16() = default;
ZoRGB32ToRGB16::~ZoRGB32ToRGB16() = default;
ZoRGB48ToRGB16::~ZoRGB48ToRGB16() = default;
ZoRGB64ToRGB16::~ZoRGB64ToRGB16() = default;
ZoRGB16ToRGB24::~ZoRGB16ToRGB24() = default;
ZoRGB24ToRGB24::~ZoRGB24ToRGB24() = default;
ZoRGB32ToRGB24::~ZoRGB32ToRGB24() = default;
ZoRGB48ToRGB24::~ZoRGB48ToRGB24() = default;
ZoRGB64ToRGB24::~ZoRGB64ToRGB24() = default;
ZoRGB24ToRGB24Planar::~ZoRGB24ToRGB24Planar() = default;
ZoRGB16ToRGB32::~ZoRGB16ToRGB32() = default;
ZoRGB24ToRGB32::~ZoRGB24ToRGB32() = default;
ZoRGB32ToRGB32::~ZoRGB32ToRGB32() = default;
ZoRGB48ToRGB32::~ZoRGB48ToRGB32() = default;
ZoRGB64ToRGB32::~ZoRGB64ToRGB32() = default;

// ---------------------------------------------------------------------------
// Line forms. Those marked "groups of four" convert `count` rounded up to a
// multiple of four pixels, reading and writing up to three pixels past the
// line; the others exactly `count`. The split is deliberate and part of each
// class's contract (see the header).

#define ZO_RGB_LINE(Name)                                                                          \
    std::uint32_t Name::Convert(const unsigned char* s, unsigned char* d, std::uint32_t count) const \
    {                                                                                              \
        ContextHold hold(*this);                                                                   \
        const ZoRGBFilter& filter = ActiveFilter(hold.Context());
#define ZO_RGB_PIXEL(Name)                                                                         \
    std::uint32_t Name::Convert(const unsigned char* s, unsigned char* d) const                    \
    {                                                                                              \
        ContextHold hold(*this);                                                                   \
        const ZoRGBFilter& filter = ActiveFilter(hold.Context());
#define ZO_RGB_END \
    return ZO_OK;  \
    }

ZO_RGB_LINE(ZoRGB24ToRGB16)
    BytesLine<zo::WriteRGB16, 3>(s, d, count, mChannelStep, filter, zo::StreamDestination(hold.Context()));
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB24ToRGB16)
    BytesPixel<zo::WriteRGB16>(s, d, mChannelStep, filter);
ZO_RGB_END

ZO_RGB_LINE(ZoRGB32ToRGB16)
    BytesLine<zo::WriteRGB16, 4>(s, d, count, mChannelStep, filter, zo::StreamDestination(hold.Context()));
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB32ToRGB16)
    BytesPixel<zo::WriteRGB16>(s, d, mChannelStep, filter);
ZO_RGB_END

ZO_RGB_LINE(ZoRGB48ToRGB16)
    WordsLine<zo::WriteRGB16, 3>(s, d, count, mShift, filter);
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB48ToRGB16)
    zo::RepackWordsLine<zo::WriteRGB16, 3, false>(s, d, 1, mShift, Tables16(filter));
ZO_RGB_END

ZO_RGB_LINE(ZoRGB64ToRGB16)
    WordsLine<zo::WriteRGB16, 4>(s, d, count, mShift, filter);
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB64ToRGB16)
    zo::RepackWordsLine<zo::WriteRGB16, 4, false>(s, d, 1, mShift, Tables16(filter));
ZO_RGB_END

// The 24-bit line form expands before filtering and takes blue from the
// word; the single-pixel form filters before expanding and, like the 32-bit
// forms, gives red and blue from the filter's entry 0. Kept as they are.
ZO_RGB_LINE(ZoRGB16ToRGB24)
    WithOrder<zo::Write24>(mBlueFirst, [&](auto w) {
        if (filter.IsIdentity8())
            ExpandRGB16IdentityTo24<decltype(w)>(s, d, count, Tables8(filter));
        else
            zo::ExpandThenFilterRGB16Line<decltype(w), false>(s, d, count, Tables8(filter));
    });
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB16ToRGB24)
    WithOrder<zo::Write24>(mBlueFirst,
                           [&](auto w) { zo::ExpandRGB16Line<decltype(w), false>(s, d, 1, Tables8(filter)); });
ZO_RGB_END

ZO_RGB_LINE(ZoRGB24ToRGB24)  // groups of four
    WithOrder<zo::Write24>(mBlueFirst, [&](auto w) {
        BytesLine<decltype(w), 3>(s, d, WholeGroupsOfFour(count), mChannelStep, filter);
    });
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB24ToRGB24)
    WithOrder<zo::Write24>(mBlueFirst, [&](auto w) { BytesPixel<decltype(w)>(s, d, mChannelStep, filter); });
ZO_RGB_END

ZO_RGB_LINE(ZoRGB32ToRGB24)  // groups of four
    WithOrder<zo::Write24>(mBlueFirst, [&](auto w) {
        BytesLine<decltype(w), 4>(s, d, WholeGroupsOfFour(count), mChannelStep, filter);
    });
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB32ToRGB24)
    WithOrder<zo::Write24>(mBlueFirst, [&](auto w) { BytesPixel<decltype(w)>(s, d, mChannelStep, filter); });
ZO_RGB_END

ZO_RGB_LINE(ZoRGB48ToRGB24)  // groups of four
    WithOrder<zo::Write24>(mBlueFirst, [&](auto w) {
        WordsLine<decltype(w), 3>(s, d, WholeGroupsOfFour(count), mShift, filter);
    });
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB48ToRGB24)
    WithOrder<zo::Write24>(mBlueFirst, [&](auto w) {
        zo::RepackWordsLine<decltype(w), 3, false>(s, d, 1, mShift, Tables16(filter));
    });
ZO_RGB_END

ZO_RGB_LINE(ZoRGB64ToRGB24)  // groups of four
    WithOrder<zo::Write24>(mBlueFirst, [&](auto w) {
        WordsLine<decltype(w), 4>(s, d, WholeGroupsOfFour(count), mShift, filter);
    });
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB64ToRGB24)
    WithOrder<zo::Write24>(mBlueFirst, [&](auto w) {
        zo::RepackWordsLine<decltype(w), 4, false>(s, d, 1, mShift, Tables16(filter));
    });
ZO_RGB_END

// Planes at the offsets the area conversion put in the context (all zero for
// a direct call, when the three channels land on the same bytes).
ZO_RGB_LINE(ZoRGB24ToRGB24Planar)
    const ZoPixelConverterContext& context = hold.Context();
    const ChannelTables8 t = Tables8(filter);
    unsigned char* red = d + context.planeOffsets[0];
    unsigned char* green = d + context.planeOffsets[1];
    unsigned char* blue = d + context.planeOffsets[2];
    if (mChannelStep == 1 && filter.IsIdentity8()) {
        const std::uint32_t done = zo::simd::RepackPlanarIdentity(s, red, green, blue, count);
        zo::RepackBytesPlanarLine<1, true>(s + 3 * std::size_t(done), red + done, green + done, blue + done,
                                           count - done, 1, t);
    }
    else if (mChannelStep == 1)
        zo::RepackBytesPlanarLine<1, false>(s, red, green, blue, count, 1, t);
    else
        zo::RepackBytesPlanarLine<0, false>(s, red, green, blue, count, mChannelStep, t);
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB24ToRGB24Planar)
    const ZoPixelConverterContext& context = hold.Context();
    d[context.planeOffsets[0]] = filter.RedTable8()[s[0]];
    d[context.planeOffsets[1]] = filter.GreenTable8()[s[mChannelStep]];
    d[context.planeOffsets[2]] = filter.BlueTable8()[s[2 * mChannelStep]];
ZO_RGB_END

ZO_RGB_LINE(ZoRGB16ToRGB32)
    WithOrder<zo::Write32>(mBlueFirst, [&](auto w) {
        if (filter.IsIdentity8())
            zo::ExpandRGB16Line<decltype(w), true>(s, d, count, Tables8(filter));
        else
            zo::ExpandRGB16Line<decltype(w), false>(s, d, count, Tables8(filter));
    });
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB16ToRGB32)
    WithOrder<zo::Write32>(mBlueFirst,
                           [&](auto w) { zo::ExpandRGB16Line<decltype(w), false>(s, d, 1, Tables8(filter)); });
ZO_RGB_END

ZO_RGB_LINE(ZoRGB24ToRGB32)
    const bool stream = zo::StreamDestination(hold.Context());
    WithOrder<zo::Write32>(mBlueFirst,
                           [&](auto w) { BytesLine<decltype(w), 3>(s, d, count, mChannelStep, filter, stream); });
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB24ToRGB32)
    WithOrder<zo::Write32>(mBlueFirst, [&](auto w) { BytesPixel<decltype(w)>(s, d, mChannelStep, filter); });
ZO_RGB_END

// The fourth byte is the source's, unfiltered: the only 32-bit output of this
// family that does not write 0 there (the line form from the last byte of the
// fourth channel, the single-pixel form from byte 3).
ZO_RGB_LINE(ZoRGB32ToRGB32)  // groups of four
    const std::uint32_t n = WholeGroupsOfFour(count);
    if (mBlueFirst)
        BytesKeepFourthLine<2>(s, d, n, mChannelStep, filter);
    else
        BytesKeepFourthLine<0>(s, d, n, mChannelStep, filter);
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB32ToRGB32)
    WithOrder<zo::Write32>(mBlueFirst, [&](auto w) { BytesPixel<decltype(w)>(s, d, mChannelStep, filter); });
    d[3] = s[3];
ZO_RGB_END

ZO_RGB_LINE(ZoRGB48ToRGB32)
    WithOrder<zo::Write32>(mBlueFirst, [&](auto w) { WordsLine<decltype(w), 3>(s, d, count, mShift, filter); });
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB48ToRGB32)
    WithOrder<zo::Write32>(mBlueFirst, [&](auto w) {
        zo::RepackWordsLine<decltype(w), 3, false>(s, d, 1, mShift, Tables16(filter));
    });
ZO_RGB_END

ZO_RGB_LINE(ZoRGB64ToRGB32)
    WithOrder<zo::Write32>(mBlueFirst, [&](auto w) { WordsLine<decltype(w), 4>(s, d, count, mShift, filter); });
ZO_RGB_END
ZO_RGB_PIXEL(ZoRGB64ToRGB32)
    WithOrder<zo::Write32>(mBlueFirst, [&](auto w) {
        zo::RepackWordsLine<decltype(w), 4, false>(s, d, 1, mShift, Tables16(filter));
    });
ZO_RGB_END
