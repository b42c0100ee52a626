// Per-channel lookup filter applied to colour output during conversion.
#ifndef ZO_RGB_FILTER_H
#define ZO_RGB_FILTER_H

#include <atomic>
#include <cstdint>

#include "ZoUtils.h"

// Three per-channel tables (red, green, blue), each in an 8-bit form of 256
// entries and a 16-bit form of 2^bitSize entries. Invariant: for every index
// below 256 the 8-bit entry is the 16-bit entry clamped to 255.
//
// Copies share one reference-counted table record: a change through one copy
// is seen through the other, and a copy may outlive the object it was copied
// from. Converters read the tables while converting, so a filter must not be
// changed while a conversion through it runs.
class ZO_API ZoRGBFilter : public ZoObject {
public:
    // The shared table record (public so that the readers below are inline).
    struct Data {
        std::atomic<std::uint32_t> refs;
        std::uint32_t bitSize;
        std::uint32_t entryCount;
        std::uint32_t tableSize;  // allocated 16-bit entries: max(entryCount, 65536)
        std::uint8_t red8[256];
        std::uint8_t green8[256];
        std::uint8_t blue8[256];
        std::uint16_t* red16;
        std::uint16_t* green16;
        std::uint16_t* blue16;
        std::uint32_t nonIdentity8;   // 8-bit entries i (all channels) not equal to i
        std::uint32_t nonIdentity16;  // 16-bit entries i (all channels) not equal to i
    };


    // An identity filter of 2^bitSize entries.
    explicit ZoRGBFilter(std::uint32_t bitSize);
    ZoRGBFilter(const ZoRGBFilter& other);
    ZoRGBFilter& operator=(const ZoRGBFilter& other);
    virtual ~ZoRGBFilter();

    virtual std::uint32_t GetBitSize() const;
    virtual std::uint32_t GetEntryCount() const;
    // Entry i of a channel becomes trunc(min(i * multiplier + offset,
    // entryCount - 1)), computed in double precision; 18 if a multiplier is
    // negative (nothing changes), else 0.
    virtual std::uint32_t SetMultipliers(double red, double green, double blue, std::uint16_t redOffset,
                                         std::uint16_t greenOffset, std::uint16_t blueOffset);
    virtual std::uint32_t SetMultipliers(double red, double green, double blue);
    // 18 if index or value is not below the entry count, else 0.
    virtual std::uint32_t SetRedValue(std::uint32_t index, std::uint16_t value);
    virtual std::uint32_t SetGreenValue(std::uint32_t index, std::uint16_t value);
    virtual std::uint32_t SetBlueValue(std::uint32_t index, std::uint16_t value);

    // 8-bit readers use the low 8 bits of the index.
    std::uint8_t GetRedValue8(std::uint32_t index) const { return mData->red8[index & 0xFF]; }
    std::uint8_t GetGreenValue8(std::uint32_t index) const { return mData->green8[index & 0xFF]; }
    std::uint8_t GetBlueValue8(std::uint32_t index) const { return mData->blue8[index & 0xFF]; }
    // 16-bit readers do not check the index beyond the table size below.
    std::uint16_t GetRedValue16(std::uint32_t index) const { return mData->red16[index]; }
    std::uint16_t GetGreenValue16(std::uint32_t index) const { return mData->green16[index]; }
    std::uint16_t GetBlueValue16(std::uint32_t index) const { return mData->blue16[index]; }

    // Direct table access for converters. The 8-bit tables have 256
    // entries. The 16-bit tables have max(entry count, 65536) entries, so
    // any 16-bit sample may index them; entries past the entry count hold
    // entry count - 1 and cannot be set.
    const std::uint8_t* RedTable8() const { return mData->red8; }
    const std::uint8_t* GreenTable8() const { return mData->green8; }
    const std::uint8_t* BlueTable8() const { return mData->blue8; }
    const std::uint16_t* RedTable16() const { return mData->red16; }
    const std::uint16_t* GreenTable16() const { return mData->green16; }
    const std::uint16_t* BlueTable16() const { return mData->blue16; }

    // True while every 8-bit entry i of the three channels is i: converters
    // may then skip the 8-bit lookups.
    bool IsIdentity8() const { return mData->nonIdentity8 == 0; }
    // True while every 16-bit entry i (of all 65536) of the three channels
    // is i: converters may then skip the 16-bit lookups.
    bool IsIdentity16() const { return mData->nonIdentity16 == 0; }

private:
    Data* mData;
};


#endif
