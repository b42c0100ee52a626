/* Extensions of ZoImgLib beside the core interface: band conversion for
 * callers that split a frame across threads, exact buffer sizes, GenICam
 * PFNC names and the library version. Plain functions with C linkage and
 * undecorated names, like those of ZoImgLibC.h; compiles as C and as C++.
 *
 * Nothing here registers a type or a converter or changes what the core
 * writes: a band conversion writes exactly the bytes the whole-area
 * conversion writes in the same lines.
 *
 * Result codes are the core's: ZO_OK (0), ZO_ERR_BAD_ARGUMENT (18) for a null
 * handle or out pointer, an area or band the converter cannot take, or a
 * size that does not fit; ZO_ERR_NOT_SUPPORTED (26) where a name is known
 * but has no exact counterpart. A function that answers other than ZO_OK
 * writes nothing to the caller's buffers. */
#ifndef ZO_IMGLIB_EXT_H
#define ZO_IMGLIB_EXT_H

#include <stdint.h>
#ifndef __cplusplus
#include <stdbool.h>
#endif

#include "ZoExport.h"
#include "ZoPixelTypeIDs.h"
/* The handle types are the flat interface's: declaring them here again
 * would redefine its typedefs, which C99 does not allow. */
#include "ZoImgLibC.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Version ---- */

/* The library's version, "major.minor.patch". Never null. */
ZO_API const char* ZoImgLib_GetVersion(void);

/* ---- Converter classes ---- */

/* The converter's C++ class name, demangled (as `zoimg converters` prints
 * it, e.g. "ZoBayerRGB8ToRGB"); null for a null handle. The string belongs
 * to the library and stays valid while it is loaded: one per class, made on
 * the first call for that class. Thread-safe. */
ZO_API const char* ZoPixelConverter_GetClassName(const ZoPixelConverter* converter);

/* A stage of a chained converter (ZoComplexConverter): index 0 the first
 * stage, 1 the second. Null for any other converter, a null handle or
 * another index. */
ZO_API const ZoPixelConverter* ZoPixelConverter_GetChainStage(const ZoPixelConverter* converter, uint32_t index);

/* ---- Buffer sizes ---- */

/* What the buffers of one area conversion must hold, in bytes, every
 * documented over-read and over-write included. sourceBytes and
 * destinationBytes count from the pointers passed to the conversion;
 * destinationBytesBefore counts the bytes just before the destination
 * pointer that the conversion may also write (some dual-tap and packed
 * layouts), so the caller allocates destinationBytesBefore +
 * destinationBytes and passes the buffer start + destinationBytesBefore.
 *
 * How the bytes are counted. Each count runs from the pointer to the end of
 * the last byte the conversion reads (source) or writes (destination), in
 * whole pixels (whole three-byte groups for packed sources): nothing outside
 * is touched, and nothing beyond that end is asked for. So the count stops
 * inside the last line reached: a last line narrower than the frame, and
 * the padding after the last destination line, are not counted (a caller
 * that keeps whole frames in the buffers allocates the larger of its frame
 * size and the count). Lines lie
 * GetSourceByteSize(sourceWidth) bytes apart in the source and
 * GetDestinationByteSize(destinationWidth) + destinationPadding in the
 * destination (sourceWidth bytes for a planar destination, whose three
 * planes start destinationWidth x destinationHeight bytes apart). Beyond
 * the area, the count includes:
 *  - replicating Bayer (FLAG_BAYER_INTERPOLATE clear) at an odd height: one
 *    more source and destination line (lines are converted in pairs);
 *  - 4:2:2 YUV at an odd width: one more source and destination pixel per
 *    line (whole pairs);
 *  - packed 10/12-bit sources at an odd width: the whole last group (three
 *    bytes) is read, and the odd pixel's partner is written: pixel `width`
 *    in stream order, pixel -1 (destinationBytesBefore, one destination
 *    pixel) for the Left Inverted two-tap layouts;
 *  - 8-bit two-tap (Dual Left/Right) sources: lines of sourceWidth pixels
 *    whatever `width` says; an odd sourceWidth reads one byte past each line
 *    and writes byte -1 (destinationBytesBefore 1) for Left Inverted layouts;
 *  - Dual Lines sources at an odd height: the last line reads its even bytes
 *    up to 2 x width - 1 bytes from its start, up to width - 1 bytes past
 *    the frame;
 *  - interlaced sources: the second field starts (sourceHeight x source
 *    line) / 2 bytes in, and each field converts ceil(height / 2) lines, so
 *    at an odd height the walk reads up to half a source line past the
 *    frame and writes height + 1 destination lines;
 *  - the group-of-four RGB repackers (to 24 bits from 24, 32, 48 and 64-bit
 *    sources, and 32 to 32 bits): up to three pixels past each line, read
 *    and written;
 *  - chains: the first stage reads the whole sourceWidth x sourceHeight
 *    source frame (with its own over-reads above) whatever the area; the
 *    second stage's writes are counted as for a converter of its class.
 * A converter of a class of the caller's own is counted from its byte sizes
 * and lines per call alone (exactly `width` pixels a line). */
typedef struct ZoAreaBufferSizes {
    uint64_t sourceBytes;
    uint64_t destinationBytes;
    uint64_t destinationBytesBefore;
} ZoAreaBufferSizes;

/* Fills *sizes for ZoPixelConverter_ConvertArea (or ConvertBand over the
 * whole area) with these arguments. 18 (and *sizes untouched) for a null
 * converter or sizes pointer, for sizes that do not fit in 64 bits, for an
 * area whose line sizes, line steps, plane offsets or second-field offset do
 * not fit the 32 bits in which the conversion computes them, or for an area
 * a chain refuses (beyond its source frame, or an intermediate frame beyond
 * 4 GiB - 1).
 *
 * The line after an odd-height frame. A replicating Bayer conversion
 * (FLAG_BAYER_INTERPOLATE clear) with an odd height pairs the last line
 * (height - 1) with the line after the frame, which sourceBytes counts. A
 * caller that supplies that line should fill it with a copy of line
 * height - 2 (line 0 for a one-line frame): the last line of the same colour
 * row as the missing line, so the last output row takes the colours of the
 * row above it. Chained converters fill their intermediate frame's extra
 * line this way themselves. */
ZO_API uint32_t ZoPixelConverter_GetAreaBufferSizes(const ZoPixelConverter* converter, uint32_t sourceWidth,
                                                    uint32_t sourceHeight, uint32_t destinationWidth,
                                                    uint32_t destinationHeight, uint32_t width, uint32_t height,
                                                    uint32_t flags, uint32_t destinationPadding,
                                                    ZoAreaBufferSizes* sizes);

/* ---- Band conversion ---- */

/* Converts destination lines [firstLine, firstLine + lineCount) of the
 * width x height area described by the other arguments (as for
 * ZoPixelConverter_ConvertAreaFilter; a null filter is the default identity
 * filter), writing exactly the bytes the whole-area conversion writes in
 * those lines and nothing in any other line. Bands that together cover the
 * area may run concurrently from different threads on the same buffers and
 * give the whole-area result.
 *
 * Answers 18 and writes nothing for a null converter, a band that ends
 * beyond the area, or a boundary the converter cannot split at (see the
 * line boundary rules below). lineCount 0 converts nothing and answers 0.
 *
 * Line boundaries, by converter family. A band may start and end on any
 * line, except in one family:
 *  - Bayer demosaicing in replicating mode (FLAG_BAYER_INTERPOLATE clear),
 *    by a Bayer converter or by a chain whose second stage is one (packed,
 *    interlaced and dual-tap Bayer sources to RGB16/24/32/48): lines go in
 *    pairs (2k, 2k + 1), so a band starts on an even line and ends after an
 *    odd one or with the area. Other boundaries answer 18. With an odd
 *    height the last pair is (height - 1, height): the last band writes
 *    line `height`, as the whole-area conversion does.
 *  - Any line: interpolating Bayer demosaicing (a band reads the lines above
 *    and below it inside the area and treats only the area's first and last
 *    lines as edges), grayscale depth changes, packed unpacking, dual-tap and
 *    Dual Lines recombination, RGB repacking and the planar split, YUV and
 *    YCrCb, identity copies and deinterlacing (band lines are destination
 *    lines: each field's pass converts only the band's lines of that field),
 *    and chains whose second stage is one of these (Bayer to RGB 24 Planar
 *    included: its first stage is converted on even lines internally).
 *
 * Over-writes. The documented writes of a line outside its pixels (a 4:2:2
 * pixel or up to three RGB pixels after it, a packed or dual-tap pixel
 * before or after it, replicating Bayer's and the interlaced walk's line
 * `height` at odd heights) are written by a band only where they fall in its
 * own lines; the first band also writes what the area writes before its
 * first line, the last band what it writes after its last line. Every byte
 * of a band's lines comes out as the whole-area conversion leaves it, also
 * where a neighbouring line's over-write lands in it.
 *
 * Buffers are those of the whole-area conversion: a band reads source lines
 * outside its own (neighbours of its lines; for a chain, the source lines
 * of the intermediate lines its second stage reads). A chain answers what
 * its area form answers (18 for an area beyond the source frame or an
 * intermediate frame beyond 4 GiB - 1) and converts into a few intermediate
 * lines of its own for each call, so bands never share them. Bands of one
 * area may run at the same time through one converter. */
ZO_API uint32_t ZoPixelConverter_ConvertBand(const ZoPixelConverter* converter, const ZoRGBFilter* filter,
                                             const unsigned char* source, uint32_t sourceWidth,
                                             uint32_t sourceHeight, unsigned char* destination,
                                             uint32_t destinationWidth, uint32_t destinationHeight,
                                             uint32_t width, uint32_t height, uint32_t flags,
                                             uint32_t destinationPadding, uint32_t firstLine,
                                             uint32_t lineCount);

/* ---- GenICam PFNC names ---- */

/* The core pixel type ID and conversion flags (the Bayer pattern) that mean
 * exactly the same bytes as a PFNC format, by its name (case-sensitive, as
 * PFNC spells it) or its 32-bit code. 0 when mapped; 26 for a PFNC format
 * the library knows but has no exact counterpart of (for instance Mono10p,
 * Mono12Packed); 18 for a null argument or an unknown name or code. */
ZO_API uint32_t ZoPfnc_FromName(const char* name, int64_t* typeId, uint32_t* flags);
ZO_API uint32_t ZoPfnc_FromCode(uint32_t code, int64_t* typeId, uint32_t* flags);

/* The PFNC format that means exactly the same bytes as a core type with
 * these flags (only the Bayer pattern bits count; none means the type's
 * default pattern), as name and code. 0 when mapped; 26 when none exists;
 * 18 for null out pointers. */
ZO_API uint32_t ZoPfnc_FromPixelType(int64_t typeId, uint32_t flags, const char** name, uint32_t* code);

/* The index-th entry of the library's PFNC table (every PFNC format it
 * knows, mapped or not): false past the end or for a null out pointer. For
 * an entry without a counterpart, *typeId is ZO_NO_PIXEL_TYPE_ID and *flags 0. */
ZO_API bool ZoPfnc_GetEntry(uint32_t index, const char** name, uint32_t* code, int64_t* typeId,
                            uint32_t* flags);

#ifdef __cplusplus
}
#endif

#endif
