// Recombination of 8-bit dual-tap lines (monochrome and raw Bayer data).
//
// Left/right taps: a two-tap source line holds pairs (A, B), byte 2i the
// first tap's i-th pixel and byte 2i + 1 the second tap's. With n pixels
// and h = n >> 1, pair i goes to
//
//   single tap (no dual bit)            A -> 2i         B -> 2i + 1   (copy)
//   Dual Left+Right                     A -> i          B -> h + i
//   Dual Left+Right Inverted            A -> i          B -> n - 1 - i
//   Dual Left Inverted+Right            A -> h - 1 - i  B -> h + i
//   Dual Left Inverted+Right Inverted   A -> h - 1 - i  B -> n - 1 - i
//
//   n = 8, source a0 b0 a1 b1 a2 b2 a3 b3, Left+Right Inverted:
//   a0 a1 a2 a3 b3 b2 b1 b0
//
// Widths: callers give even widths. With an odd n the last pair (i = h) is
// still converted whole: it reads source byte n, one past the line, and
// writes both its bytes by the table above. So a single tap writes byte n,
// one past the line; Left Inverted taps write byte -1, one before the line;
// on Dual Left+Right the last A replaces the first B on byte h, and on Dual
// Left+Right Inverted both last bytes go to byte h, B last. Allow one byte
// on each side of a destination line and one byte after a source line when
// the width may be odd.
#ifndef ZO_DUAL_TAP_CONVERTERS_H
#define ZO_DUAL_TAP_CONVERTERS_H

#include <cstdint>

#include "ZoPixelConverter.h"

// Left/right dual-tap 8-bit lines to ordinary lines. The tap layout is taken
// from the source ID's dual bits (none of them, or a destination that is
// itself dual-tap: plain copy).
class ZO_API ZoDualGrayscale8ToGrayscale8 : public ZoPixelConverter {
public:
    ZoDualGrayscale8ToGrayscale8(const std::int64_t& sourceType, const std::int64_t& destinationType);
    ~ZoDualGrayscale8ToGrayscale8() override;

    using ZoPixelConverter::Convert;
    // Area conversion as the base's, except that with a dual-tap layout the
    // lines are converted sourceWidth pixels wide whatever `width` says
    // (deliberate: the two taps span the whole source line, so a narrower
    // width would recombine the wrong pixels). Each destination line then
    // receives sourceWidth pixels: with a width below sourceWidth the
    // conversion writes past the area on every line, and an odd sourceWidth
    // adds the byte before or after the line described above.
    std::uint32_t Convert(const unsigned char* source, std::uint32_t sourceWidth, std::uint32_t sourceHeight,
                          unsigned char* destination, std::uint32_t destinationWidth,
                          std::uint32_t destinationHeight, std::uint32_t width, std::uint32_t height,
                          std::uint32_t flags, std::uint32_t destinationPadding) const override;
    // One line of `count` pixels. Returns 0.
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;

private:
    std::uint32_t mDualTapMode;
};

// Dual-lines 8-bit source (0x10010001) to 8-bit gray (0x10001): two image
// lines travel interleaved byte by byte in one source line, the even bytes
// carrying one line and the odd bytes the next.
//
// An even destination line (by the current line of the calling thread's area
// conversion) takes the even bytes 0, 2, ... 2(n - 1) from the start of its
// own source line; an odd destination line takes the odd bytes 1, 3, ...
// from the start of the source line before its own (source pointer + 1 -
// source line bytes). With sourceWidth = width, source lines 2k and 2k + 1
// (2n bytes) thus carry destination lines 2k and 2k + 1 interleaved, and,
// for an even height, the source frame has the size of the destination
// frame. An odd height breaks that: the last destination line is even and
// reads 2n - 1 bytes from the start of the last source line, that is up to
// n - 1 bytes (width - 1) past the end of a frame of sourceWidth = width.
// Allow (height - 1) x sourceWidth + 2 x width - 1 source bytes for an odd
// height, height x sourceWidth for an even one. A line conversion called
// directly, outside an area conversion, converts as an even line (2n - 1
// source bytes read).
class ZO_API ZoDualLinesGrayscale8ToGrayscale8 : public ZoPixelConverter {
public:
    ZoDualLinesGrayscale8ToGrayscale8();
    ~ZoDualLinesGrayscale8ToGrayscale8() override;

    using ZoPixelConverter::Convert;
    // One line of `count` pixels. Returns 0.
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;

private:
    std::uint32_t mReserved;  // always 0; keeps the object layout of this class
};

#endif
