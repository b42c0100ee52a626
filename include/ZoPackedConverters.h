// Unpacking of packed 10- and 12-bit monochrome (and raw Bayer) pixels.
//
// A packed source carries two samples in three bytes b0 b1 b2. The
// converters read two overlapping little-endian words of each group,
// W0 = b0 | b1 << 8 for the first sample A and W1 = b1 | b2 << 8 for the
// second sample B, and take each sample with its own shift and mask.
//
// The packed monochrome layouts in bits, counting in the 24-bit
// little-endian value g = b0 | b1 << 8 | b2 << 16 of a group:
//
//   12-bit packed (0x00410003, and the 12-bit packed Bayer types):
//     A = g bits 0..11, B = g bits 12..23; so b0 = A[7:0],
//     b1 = B[3:0] << 4 | A[11:8], b2 = B[11:4]. This is GenICam PFNC Mono12p.
//   10-bit packed (0x00410002): the same slots, each with its top two bits
//     unused: A = g bits 0..9, B = g bits 12..21. No PFNC format has this
//     layout (Mono10p packs 10-bit samples without gaps, Mono10Packed puts
//     the low bits in the middle byte).
//
// The packed 10-bit Bayer types unpacked to 16-bit words take B from g bits
// 14..23, and the two-tap packed 12-bit Bayer ones from g bits 10..21: those
// are their registered parameters (docs/converters.md lists every
// conversion's caveats).
//
// Two-tap sources (one of the Dual Left/Right bits in the source ID) deliver
// the two taps interleaved: A of group i is the first tap's i-th pixel and B
// the second's. The converters put each sample in its place in the line:
// with n pixels and h = n >> 1,
//
//   Dual Left+Right                     A -> i          B -> h + i
//   Dual Left+Right Inverted            A -> i          B -> n - 1 - i
//   Dual Left Inverted+Right            A -> h - 1 - i  B -> h + i
//   Dual Left Inverted+Right Inverted   A -> h - 1 - i  B -> n - 1 - i
//   single tap                          A -> 2i         B -> 2i + 1
//
// Widths: callers give even widths. A line of n pixels reads (n >> 1) x 3
// source bytes (GetSourceByteSize; an odd last pixel is not counted). With
// an odd n the last group (i = h) is still converted whole: it reads three
// bytes past those and writes both its samples by the table above. So a
// single-tap source writes pixel n, one past the line; Left Inverted
// sources write pixel -1, one before the line; on Dual Left+Right the last
// A replaces the first B on pixel h, and on Dual Left+Right Inverted both
// last samples go to pixel h, B last. Allow one destination pixel on each
// side of a line and three source bytes after it when the width may be odd.
//
// Only the line form converts: a lone pixel of a packed pair cannot be
// converted, so the single-pixel form returns 26. No form applies a filter.
#ifndef ZO_PACKED_CONVERTERS_H
#define ZO_PACKED_CONVERTERS_H

#include <cstdint>

#include "ZoPixelConverter.h"

// Packed samples to 16-bit words (LSB-aligned or normalized, by the
// parameters): A = (W0 << aShift) truncated to 16 bits, & mask;
// B = (W1 >> bShift) & mask, or, for a negative bShift, (W1 << -bShift)
// truncated to 16 bits, & mask. A negative aShift shifts right.
class ZO_API ZoGrayscale16PackedToGrayscale16 : public ZoPixelConverter {
public:
    ZoGrayscale16PackedToGrayscale16(const std::int64_t& sourceType, const std::int64_t& destinationType,
                                     std::int16_t bShift, std::uint16_t mask, std::int16_t aShift);
    ~ZoGrayscale16PackedToGrayscale16() override;

    // (pixelCount >> 1) x 3 bytes.
    std::uint32_t GetSourceByteSize(std::uint32_t pixelCount) const override;
    using ZoPixelConverter::GetSourceByteSize;

    using ZoPixelConverter::Convert;
    // One line of `count` pixels, two bytes each. Returns 0.
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;

private:
    std::uint32_t mDualTapMode;
    std::int16_t mBShift;
    std::uint16_t mMask;
    std::int16_t mAShift;
};

// Packed samples to 8-bit gray (destination 0x10001): A = low byte of
// W0 >> aShift, B = low byte of W1 >> bShift.
class ZO_API ZoGrayscale16PackedToGrayscale8 : public ZoPixelConverter {
public:
    ZoGrayscale16PackedToGrayscale8(const std::int64_t& sourceType, std::uint16_t aShift, std::uint16_t bShift);
    ~ZoGrayscale16PackedToGrayscale8() override;

    // (pixelCount >> 1) x 3 bytes.
    std::uint32_t GetSourceByteSize(std::uint32_t pixelCount) const override;
    using ZoPixelConverter::GetSourceByteSize;

    using ZoPixelConverter::Convert;
    // One line of `count` pixels, one byte each. Returns 0.
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;

private:
    std::uint32_t mDualTapMode;
    std::uint16_t mAShift;
    std::uint16_t mBShift;
};

// Packed samples to an RGB layout with all channels equal to the gray value
// g = low byte of W0 >> aShift (A) or W1 >> bShift (B). The layout follows
// the destination pixel size: 2 bytes RGB16 (5-6-5), 3 bytes RGB24/BGR24
// (g g g), 4 bytes RGB32/BGR32 (g g g g: the fourth byte carries g as well).
class ZO_API ZoGrayscale16PackedToRGB : public ZoPixelConverter {
public:
    // A line is converted in blocks of four groups over (n / P) x P pixels,
    // P the pipelining size, that count taken up to a multiple of eight,
    // then group by group: give a multiple of 8 (the subclasses use 8), or
    // the blocks may run past the end of the line.
    ZoGrayscale16PackedToRGB(const std::int64_t& sourceType, const std::int64_t& destinationType,
                             std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize,
                             std::uint32_t pipeliningSize, std::uint32_t aShift, std::uint32_t bShift);
    ~ZoGrayscale16PackedToRGB() override;

    // (pixelCount >> 1) x 3 bytes.
    std::uint32_t GetSourceByteSize(std::uint32_t pixelCount) const override;
    using ZoPixelConverter::GetSourceByteSize;

    using ZoPixelConverter::Convert;
    // One line of `count` pixels in the layout of the destination pixel
    // size. Returns 0, or 26 (nothing written) for another pixel size.
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;

private:
    std::uint32_t mDualTapMode;
    std::uint32_t mAShift;
    std::uint32_t mBShift;
};

// RGB16 destination (0x20001).
class ZO_API ZoGrayscale16PackedToRGB16 : public ZoGrayscale16PackedToRGB {
public:
    ZoGrayscale16PackedToRGB16(const std::int64_t& sourceType, std::uint32_t aShift, std::uint32_t bShift);
    ~ZoGrayscale16PackedToRGB16() override;
};

// RGB24 destination (0x20002), or BGR24 (0x20006) when blueFirst is set;
// the bytes are the same.
class ZO_API ZoGrayscale16PackedToRGB24 : public ZoGrayscale16PackedToRGB {
public:
    ZoGrayscale16PackedToRGB24(const std::int64_t& sourceType, bool blueFirst, std::uint32_t aShift,
                               std::uint32_t bShift);
    ~ZoGrayscale16PackedToRGB24() override;
};

// RGB32 destination (0x20003), or BGR32 (0x20007) when blueFirst is set;
// four bytes g g g g.
class ZO_API ZoGrayscale16PackedToRGB32 : public ZoGrayscale16PackedToRGB {
public:
    ZoGrayscale16PackedToRGB32(const std::int64_t& sourceType, bool blueFirst, std::uint32_t aShift,
                               std::uint32_t bShift);
    ~ZoGrayscale16PackedToRGB32() override;
};

#endif
