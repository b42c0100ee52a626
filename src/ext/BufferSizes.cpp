// The bytes an area conversion reads from its source and writes to its
// destination, every over-read and over-write of the core's converters
// included (ZoPixelConverter_GetAreaBufferSizes).
//
// The sizes follow the base area walk (ZoPixelConverter.h): which line calls
// it makes, where each starts, and what one line call of each converter
// class reaches around its line start. A chain is sized from its stages: its
// first stage reads the whole source frame, its second writes the caller's
// destination.
#include <cstdint>

#include "ZoBayerConverters.h"
#include "ZoDualTapConverters.h"
#include "ZoGenericConverters.h"
#include "ZoGrayscaleConverters.h"
#include "ZoImgLibExt.h"
#include "ZoPackedConverters.h"
#include "ZoRGBConverters.h"
#include "ZoYUVConverters.h"
#include "gray/DualTapPlacement.h"

namespace {

using U64 = std::uint64_t;
constexpr U64 kMax32 = 0xFFFFFFFFu;

struct Area {
    std::uint32_t sourceWidth, sourceHeight, destinationWidth, destinationHeight, width, height, flags, padding;
};

// What one line call of a converter reaches, relative to the source and
// destination line starts the walk hands it.
struct LineReach {
    U64 sourceLineBytes = 0;   // distance between source lines, as the walk computes it
    std::uint32_t linesPerCall = 1;  // lines one call reads and writes (2: replicating Bayer)
    U64 readBytes = 0;         // source bytes read from each line start
    U64 writeBefore = 0;       // destination bytes written just before the line start
    U64 writeBytes = 0;        // destination bytes written from each line start
    bool dualLines = false;    // odd lines read from the line before (Dual Lines source)
    bool planar = false;       // one byte a pixel into each of three planes
};

U64 Even(U64 n) { return n + (n & 1); }
U64 WholeFours(U64 n) { return (n + 3) / 4 * 4; }

// Overflow-checked arithmetic: false once any step does not fit in 64 bits.
struct Checked {
    bool ok = true;
    U64 Mul(U64 a, U64 b)
    {
        U64 r;
        if (__builtin_mul_overflow(a, b, &r))
            ok = false;
        return r;
    }
    U64 Add(U64 a, U64 b)
    {
        U64 r;
        if (__builtin_add_overflow(a, b, &r))
            ok = false;
        return r;
    }
};

// Gives the protected line count of a converter of a class the library does
// not know (through a member pointer, which carries no access check).
struct LinesAccess : ZoPixelConverter {
    static std::uint32_t Of(const ZoPixelConverter& c)
    {
        const std::uint32_t lines = (c.*(&LinesAccess::GetLinesPerConvert))();
        return lines ? lines : 1;
    }
};

// Writes of a two-tap placement (DualTapPlacement.h) of n pixels of
// `pixel` bytes: an odd n still converts its last pair whole, which writes
// pixel n in stream order and pixel -1 in the Left Inverted layouts.
void TapWrites(std::uint32_t mode, U64 n, U64 pixel, LineReach& r)
{
    r.writeBytes = (mode == 0 ? Even(n) : n) * pixel;
    r.writeBefore = ((mode == 3 || mode == 4) && (n & 1)) ? pixel : 0;
}

// The reach of one line call of `c` for this area. False for a converter of
// a class of the caller's own, sized by its byte sizes and line count alone.
bool Reach(const ZoPixelConverter& c, const Area& a, LineReach& r)
{
    const U64 n = a.width;
    const U64 sourcePixel = c.GetSourceByteSize(), destinationPixel = c.GetDestinationByteSize();
    const std::int64_t sourceType = c.GetSourceType(), destinationType = c.GetDestinationType();
    r.sourceLineBytes = sourcePixel * a.sourceWidth;
    r.readBytes = n * sourcePixel;
    r.writeBytes = n * destinationPixel;

    if (dynamic_cast<const ZoBayerRGB8ToRGB*>(&c) || dynamic_cast<const ZoBayerRGB16ToRGB*>(&c)) {
        // Replicating: a call converts lines n and n + 1, so an odd height
        // reaches one line past the area.
        r.linesPerCall = (a.flags & ZO_FLAG_BAYER_INTERPOLATE) ? 1 : 2;
    } else if (dynamic_cast<const ZoDualGrayscale8ToGrayscale8*>(&c)) {
        // Two-tap lines span the whole source line, whatever the width.
        const std::uint32_t mode = zo::DualTapModeFor(sourceType, destinationType);
        const U64 pixels = mode ? a.sourceWidth : a.width;
        r.readBytes = Even(pixels);
        TapWrites(mode, pixels, 1, r);
    } else if (dynamic_cast<const ZoDualLinesGrayscale8ToGrayscale8*>(&c)) {
        r.dualLines = true;
        r.readBytes = n ? 2 * n - 1 : 0;
    } else if (dynamic_cast<const ZoGrayscale16PackedToGrayscale16*>(&c) ||
               dynamic_cast<const ZoGrayscale16PackedToGrayscale8*>(&c) ||
               dynamic_cast<const ZoGrayscale16PackedToRGB*>(&c)) {
        // Three bytes a pair; an odd last pixel still reads its whole group.
        const std::uint32_t mode = dynamic_cast<const ZoGrayscale16PackedToGrayscale8*>(&c)
                                       ? zo::DualTapModeFromId(sourceType)
                                       : zo::DualTapModeFor(sourceType, destinationType);
        r.sourceLineBytes = (U64{a.sourceWidth} >> 1) * 3;
        r.readBytes = (n + 1) / 2 * 3;
        TapWrites(mode, n, destinationPixel, r);
    } else if (dynamic_cast<const ZoRGB24ToRGB24*>(&c) || dynamic_cast<const ZoRGB32ToRGB24*>(&c) ||
               dynamic_cast<const ZoRGB48ToRGB24*>(&c) || dynamic_cast<const ZoRGB64ToRGB24*>(&c) ||
               dynamic_cast<const ZoRGB32ToRGB32*>(&c)) {
        // Whole groups of four pixels.
        r.readBytes = WholeFours(n) * sourcePixel;
        r.writeBytes = WholeFours(n) * destinationPixel;
    } else if (dynamic_cast<const ZoRGB24ToRGB24Planar*>(&c)) {
        r.planar = true;
        r.writeBytes = n;
    } else if (dynamic_cast<const ZoYUV8toRGB*>(&c) || dynamic_cast<const ZoYUV10ToRGB*>(&c)) {
        // Whole pairs: an odd width reads and writes one pixel more.
        r.readBytes = Even(n) * sourcePixel;
        r.writeBytes = Even(n) * destinationPixel;
    } else if (const auto* yuv444 = dynamic_cast<const ZoYUV8444ToRGB*>(&c)) {
        // The reported source size is 3 whatever the sample size.
        r.readBytes = n * 3 * yuv444->GetSampleBytes();
    } else if (dynamic_cast<const ZoIdentityConverter*>(&c)) {
        r.writeBytes = n * sourcePixel;  // copies source-sized pixels
    } else if (dynamic_cast<const ZoGrayscale16ToGrayscale16RightShift*>(&c) ||
               dynamic_cast<const ZoGrayscale16ToGrayscale16LeftShift*>(&c) ||
               dynamic_cast<const ZoGrayscale16ToGrayscale8*>(&c) ||
               dynamic_cast<const ZoGrayscale16NormalizedToGrayscale8*>(&c) ||
               dynamic_cast<const ZoGrayscale16ToRGB16*>(&c) || dynamic_cast<const ZoGrayscale16ToRGB24*>(&c) ||
               dynamic_cast<const ZoGrayscale16ToRGB32*>(&c) || dynamic_cast<const ZoGrayscale8ToRGB16*>(&c) ||
               dynamic_cast<const ZoGrayscale8ToRGB24*>(&c) || dynamic_cast<const ZoGrayscale8ToRGB32*>(&c) ||
               dynamic_cast<const ZoRGBtoRGB*>(&c)) {
        // Exactly `width` pixels a line.
    } else {
        r.sourceLineBytes = c.GetSourceByteSize(a.sourceWidth);
        r.readBytes = c.GetSourceByteSize(a.width);
        r.writeBytes = c.GetDestinationByteSize(a.width);
        r.linesPerCall = LinesAccess::Of(c);
        return false;
    }
    return true;
}

// Sizes of one converter that runs the base area walk (or a chain).
bool Sizes(const ZoPixelConverter& c, const Area& a, ZoAreaBufferSizes& out)
{
    if (const auto* chain = dynamic_cast<const ZoComplexConverter*>(&c)) {
        // The first stage converts the whole source frame into the chain's
        // own buffer; only what it reads and what the second stage writes
        // reach the caller's buffers.
        // A chain refuses an area beyond the source frame, and an
        // intermediate frame (with the line after it) beyond 32 bits.
        const U64 line = U64{chain->GetFirst() ? chain->GetFirst()->GetDestinationByteSize() : 0} * a.sourceWidth;
        if (a.width > a.sourceWidth || a.height > a.sourceHeight || line * (U64{a.sourceHeight} + 1) > kMax32)
            return false;
        const Area first{a.sourceWidth, a.sourceHeight, a.sourceWidth, a.sourceHeight,
                         a.sourceWidth, a.sourceHeight, a.flags, 0};
        ZoAreaBufferSizes one, two;
        if (!chain->GetFirst() || !chain->GetSecond() || !Sizes(*chain->GetFirst(), first, one) ||
            !Sizes(*chain->GetSecond(), a, two))
            return false;
        out = {one.sourceBytes, two.destinationBytes, two.destinationBytesBefore};
        return true;
    }

    LineReach r;
    Reach(c, a, r);
    const bool interlaced = (static_cast<std::uint32_t>(c.GetSourceType()) & ZO_PIXEL_INTERLACED) != 0;
    const bool planes = r.planar && (static_cast<std::uint32_t>(c.GetDestinationType()) & ZO_PIXEL_PLANAR) &&
                        !(static_cast<std::uint32_t>(c.GetSourceType()) & ZO_PIXEL_PLANAR);
    const U64 L = r.sourceLineBytes;
    const U64 D = planes ? U64{a.sourceWidth}
                         : U64{c.GetDestinationByteSize()} * a.destinationWidth + a.padding;
    const U64 plane = U64{a.destinationWidth} * a.destinationHeight;
    const U64 step = interlaced ? 2 : r.linesPerCall;

    // The walk computes line sizes, pointer steps, plane offsets and the
    // second field's offset in 32 bits: an area beyond them cannot be
    // converted as described.
    if (L > kMax32 || D > kMax32 || r.readBytes > kMax32 || r.writeBytes > kMax32 ||
        (interlaced ? U64{a.sourceHeight} * L > kMax32 : step * L > kMax32) || step * D > kMax32 ||
        (planes && 2 * plane > kMax32))
        return false;

    out = {0, 0, 0};
    const U64 h = a.height;
    if (h == 0)
        return true;
    Checked k;
    // Index of the last source line and last destination line a call starts
    // at (in lines of the walk's stride), then the lines it reaches below.
    U64 lastSource, lastDestination, sourceBase = 0;
    if (interlaced) {
        // Each field pass converts its lines 0, 2, 4, ... below the height,
        // the second from half the source frame on.
        const U64 calls = (h + 1) / 2;
        sourceBase = (U64{a.sourceHeight} * L) / 2;
        lastSource = calls - 1;
        lastDestination = 2 * calls - 1;
    } else {
        lastSource = lastDestination = (h - 1) / step * step;
    }
    lastSource += r.linesPerCall - 1;
    lastDestination += r.linesPerCall - 1;

    if (r.readBytes) {
        if (r.dualLines) {
            // An even line reads its own source line; an odd line starts one
            // byte into the line before it and reads one byte further.
            const auto end = [&](U64 line) {
                return (line & 1) ? k.Add(k.Mul(line - 1, L), r.readBytes + 1)
                                  : k.Add(k.Mul(line, L), r.readBytes);
            };
            out.sourceBytes = end(h - 1);
            if (h >= 2 && end(h - 2) > out.sourceBytes)
                out.sourceBytes = end(h - 2);
        } else {
            out.sourceBytes = k.Add(k.Add(sourceBase, k.Mul(lastSource, L)), r.readBytes);
        }
    }
    if (r.writeBytes) {
        out.destinationBytes = k.Add(k.Add(planes ? 2 * plane : 0, k.Mul(lastDestination, D)), r.writeBytes);
        out.destinationBytesBefore = r.writeBefore;
    }
    return k.ok;
}

}  // namespace

uint32_t ZoPixelConverter_GetAreaBufferSizes(const ZoPixelConverter* converter, uint32_t sourceWidth,
                                             uint32_t sourceHeight, uint32_t destinationWidth,
                                             uint32_t destinationHeight, uint32_t width, uint32_t height,
                                             uint32_t flags, uint32_t destinationPadding, ZoAreaBufferSizes* sizes)
{
    if (!converter || !sizes)
        return ZO_ERR_BAD_ARGUMENT;
    const Area area{sourceWidth, sourceHeight, destinationWidth, destinationHeight, width, height, flags,
                    destinationPadding};
    ZoAreaBufferSizes result;
    if (!Sizes(*converter, area, result))
        return ZO_ERR_BAD_ARGUMENT;
    *sizes = result;
    return ZO_OK;
}
