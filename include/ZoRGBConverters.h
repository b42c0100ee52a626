// RGB repacking converters: between RGB layouts and depths (16-bit 5-6-5,
// 24, 32, 48 and 64-bit sources; 16, 24 and 32-bit destinations, red- or
// blue-first) and from 24-bit into three planes.
//
// Every output channel passes through the filter of the area conversion (the
// 8-bit tables for 8-bit channels, the 16-bit tables then a right shift for
// 16-bit samples). Line and single-pixel forms called directly use the
// default identity filter for the source size.
//
// Buffers: ZoRGB24ToRGB24, ZoRGB32ToRGB24, ZoRGB48ToRGB24, ZoRGB64ToRGB24 and
// ZoRGB32ToRGB32 convert whole groups of four pixels: a line of `count`
// pixels reads and writes up to three pixels past `count`. Size source and
// destination buffers for it. The other classes convert exactly `count`.
#ifndef ZO_RGB_CONVERTERS_H
#define ZO_RGB_CONVERTERS_H

#include <cstdint>

#include "ZoPixelConverter.h"

// Common base: the destination byte order and how source channels are found.
class ZO_API ZoRGBtoRGB : public ZoPixelConverter {
public:
    ~ZoRGBtoRGB() override;

protected:
    // sourcePixelSize is the size of one channel group of an 8-bit-channel
    // source (3 or 4) or the full pixel of a 16-bit one; the base is given
    // (skip + 1) x sourcePixelSize. skip: extra bytes after each 8-bit channel
    // (1 for sources holding each channel in a 16-bit word). shift: right
    // shift from 16-bit samples to 8 bits.
    ZoRGBtoRGB(const std::int64_t& sourceType, const std::int64_t& destinationType, std::uint32_t sourcePixelSize,
               std::uint32_t destinationPixelSize, std::uint32_t pipeliningSize, bool blueFirst, std::uint32_t skip,
               std::uint32_t shift, std::uint32_t linesPerConvert);

    // Number of pixels a line form converts for `count` requested pixels:
    // exactly `count`, or `count` rounded up to whole groups of four.
    static std::uint32_t WholeGroupsOfFour(std::uint32_t count) { return count ? ((count - 1) / 4 + 1) * 4 : 0; }

    bool mBlueFirst;
    std::uint32_t mChannelStep;  // bytes between the channels of an 8-bit-channel source pixel
    std::uint32_t mShift;
    std::uint32_t mRedIndex;     // destination byte of red: 2 when blue first, else 0
    std::uint32_t mGreenIndex;   // always 1
    std::uint32_t mBlueIndex;    // 0 when blue first, else 2
};

// Declares one concrete class: constructor, destructor and the two forms.
#define ZO_RGB_CONVERTER_CLASS(Name, ...)                                                                   \
    class ZO_API Name : public ZoRGBtoRGB {                                                                \
    public:                                                                                                \
        Name(const std::int64_t& sourceType, __VA_ARGS__);                                                 \
        ~Name() override;                                                                                  \
        using ZoPixelConverter::Convert;                                                                   \
        std::uint32_t Convert(const unsigned char* source, unsigned char* destination,                     \
                              std::uint32_t count) const override;                                         \
        std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;     \
    }

// 8-bit channels (3 or 4 bytes a pixel, each byte followed by `skip` more) to
// RGB16. The line form reads the last byte of each (skip + 1)-byte channel,
// the single-pixel form the first.
ZO_RGB_CONVERTER_CLASS(ZoRGB24ToRGB16, std::uint32_t skip);
ZO_RGB_CONVERTER_CLASS(ZoRGB32ToRGB16, std::uint32_t skip);
// 16-bit samples (three or four words a pixel) shifted right by `shift`.
ZO_RGB_CONVERTER_CLASS(ZoRGB48ToRGB16, unsigned int shift);
ZO_RGB_CONVERTER_CLASS(ZoRGB64ToRGB16, unsigned int shift);
// RGB16 to 24 bits. Red (and, in the single-pixel form, blue) comes out as
// the filter's entry 0 whatever the source; see the implementation.
ZO_RGB_CONVERTER_CLASS(ZoRGB16ToRGB24, bool blueFirst);
ZO_RGB_CONVERTER_CLASS(ZoRGB24ToRGB24, bool blueFirst, std::uint32_t skip);  // groups of four
ZO_RGB_CONVERTER_CLASS(ZoRGB32ToRGB24, bool blueFirst, std::uint32_t skip);  // groups of four
ZO_RGB_CONVERTER_CLASS(ZoRGB48ToRGB24, unsigned int shift, bool blueFirst);   // groups of four
ZO_RGB_CONVERTER_CLASS(ZoRGB64ToRGB24, unsigned int shift, bool blueFirst);   // groups of four
// 24-bit to three planes (red, green, blue) at the context's plane offsets.
ZO_RGB_CONVERTER_CLASS(ZoRGB24ToRGB24Planar, std::uint32_t skip);
// RGB16 to 32 bits: red and blue come out as the filter's entry 0.
ZO_RGB_CONVERTER_CLASS(ZoRGB16ToRGB32, bool blueFirst);
ZO_RGB_CONVERTER_CLASS(ZoRGB24ToRGB32, bool blueFirst, std::uint32_t skip);
// Groups of four; the fourth byte is copied from the source.
ZO_RGB_CONVERTER_CLASS(ZoRGB32ToRGB32, bool blueFirst, std::uint32_t skip);
ZO_RGB_CONVERTER_CLASS(ZoRGB48ToRGB32, unsigned int shift, bool blueFirst);
ZO_RGB_CONVERTER_CLASS(ZoRGB64ToRGB32, unsigned int shift, bool blueFirst);

#undef ZO_RGB_CONVERTER_CLASS

#endif
