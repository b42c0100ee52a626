// Per-channel lookup filter with shared, reference-counted tables.
#include "ZoRGBFilter.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "ZoPixelTypeIDs.h"

namespace {

constexpr std::uint32_t kFullRange16 = 65536;

using Data = ZoRGBFilter::Data;

Data* NewData(std::uint32_t bitSize)
{
    Data* d = new (std::nothrow) Data();
    if (!d)
        return nullptr;
    d->refs = 1;
    d->bitSize = bitSize;
    // 2^bitSize, computed in floating point and truncated. A count that does
    // not fit in 32 bits cannot be indexed: such a filter gets no tables, as
    // if they could not be allocated.
    const double entries = std::pow(2.0, static_cast<double>(bitSize));
    if (entries <= 4294967295.0) {
        d->entryCount = static_cast<std::uint32_t>(entries);
        d->tableSize = std::max(d->entryCount, kFullRange16);
        d->red16 = new (std::nothrow) std::uint16_t[d->tableSize];
        d->green16 = new (std::nothrow) std::uint16_t[d->tableSize];
        d->blue16 = new (std::nothrow) std::uint16_t[d->tableSize];
    }
    if (!d->red16 || !d->green16 || !d->blue16) {
        delete[] d->red16;
        delete[] d->green16;
        delete[] d->blue16;
        d->red16 = d->green16 = d->blue16 = nullptr;
        d->entryCount = d->tableSize = 0;
        // The zeroed 8-bit tables are not the identity.
        d->nonIdentity8 = d->nonIdentity16 = 1;
        return d;
    }
    // Every entry starts at min(i, entryCount - 1): the identity within the
    // table, clamped beyond it (entries past the count cannot be set).
    const std::uint32_t last = d->entryCount - 1;
    for (std::uint16_t* table : {d->red16, d->green16, d->blue16})
        for (std::uint32_t i = 0; i < d->tableSize; ++i)
            table[i] = static_cast<std::uint16_t>(std::min(i, last));
    for (std::uint8_t* table : {d->red8, d->green8, d->blue8})
        for (std::uint32_t i = 0; i < 256; ++i)
            table[i] = static_cast<std::uint8_t>(std::min({i, last, 255u}));
    d->nonIdentity8 = 0;
    d->nonIdentity16 = 0;
    for (int c = 0; c < 3; ++c) {
        const std::uint8_t* t8 = c == 0 ? d->red8 : c == 1 ? d->green8 : d->blue8;
        const std::uint16_t* t16 = c == 0 ? d->red16 : c == 1 ? d->green16 : d->blue16;
        for (std::uint32_t i = 0; i < 256; ++i)
            d->nonIdentity8 += t8[i] != i;
        for (std::uint32_t i = 0; i < kFullRange16; ++i)
            d->nonIdentity16 += t16[i] != i;
    }
    return d;
}

void Release(Data* d)
{
    if (d && --d->refs == 0) {
        delete[] d->red16;
        delete[] d->green16;
        delete[] d->blue16;
        delete d;
    }
}

// Stores one entry of a channel, keeping the 8-bit copy and the identity
// counts in step.
std::uint32_t SetEntry(Data* d, std::uint8_t* t8, std::uint16_t* t16, std::uint32_t index, std::uint16_t value)
{
    if (index >= d->entryCount || value >= d->entryCount)
        return ZO_ERR_BAD_ARGUMENT;
    if (index < kFullRange16)
        d->nonIdentity16 += (value != index) - (t16[index] != index);
    t16[index] = value;
    if (index < 256) {
        const std::uint8_t v8 = static_cast<std::uint8_t>(std::min<std::uint16_t>(value, 255));
        d->nonIdentity8 += (v8 != index) - (t8[index] != index);
        t8[index] = v8;
    }
    return ZO_OK;
}

}  // namespace

ZoRGBFilter::ZoRGBFilter(std::uint32_t bitSize) : mData(NewData(bitSize))
{
    if (mData && mData->red16)
        SetMultipliers(1.0, 1.0, 1.0);
}

ZoRGBFilter::ZoRGBFilter(const ZoRGBFilter& other) : ZoObject(other), mData(other.mData)
{
    if (mData)
        ++mData->refs;
}

ZoRGBFilter& ZoRGBFilter::operator=(const ZoRGBFilter& other)
{
    if (other.mData)
        ++other.mData->refs;
    Release(mData);
    mData = other.mData;
    return *this;
}

ZoRGBFilter::~ZoRGBFilter() { Release(mData); }

std::uint32_t ZoRGBFilter::GetBitSize() const { return mData->bitSize; }
std::uint32_t ZoRGBFilter::GetEntryCount() const { return mData->entryCount; }

std::uint32_t ZoRGBFilter::SetMultipliers(double red, double green, double blue, std::uint16_t redOffset,
                                          std::uint16_t greenOffset, std::uint16_t blueOffset)
{
    // Written so that a NaN multiplier is refused as well.
    if (!(red >= 0.0) || !(green >= 0.0) || !(blue >= 0.0))
        return ZO_ERR_BAD_ARGUMENT;
    const std::uint32_t count = GetEntryCount();
    const double limit = static_cast<double>(count);
    // No rounding: the value is clamped to the last entry, then truncated
    // toward zero and its low 16 bits kept. Entry 0 is the offset even for an
    // infinite multiplier.
    auto entry = [limit](std::uint32_t i, double multiplier, std::uint16_t offset) {
        double v = (i == 0 ? 0.0 : static_cast<double>(i) * multiplier) + offset;
        if (v >= limit)
            v = limit - 1.0;
        return static_cast<std::uint16_t>(static_cast<std::int64_t>(v));
    };
    // Entry by entry, red then green then blue, through the virtual setters.
    for (std::uint32_t i = 0; i < count; ++i) {
        SetRedValue(i, entry(i, red, redOffset));
        SetGreenValue(i, entry(i, green, greenOffset));
        SetBlueValue(i, entry(i, blue, blueOffset));
    }
    return ZO_OK;
}

std::uint32_t ZoRGBFilter::SetMultipliers(double red, double green, double blue)
{
    return SetMultipliers(red, green, blue, 0, 0, 0);
}

std::uint32_t ZoRGBFilter::SetRedValue(std::uint32_t index, std::uint16_t value)
{
    return SetEntry(mData, mData->red8, mData->red16, index, value);
}

std::uint32_t ZoRGBFilter::SetGreenValue(std::uint32_t index, std::uint16_t value)
{
    return SetEntry(mData, mData->green8, mData->green16, index, value);
}

std::uint32_t ZoRGBFilter::SetBlueValue(std::uint32_t index, std::uint16_t value)
{
    return SetEntry(mData, mData->blue8, mData->blue16, index, value);
}
