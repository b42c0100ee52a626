// Flat functions for converters and filters.
#include "ZoImgLibC.h"
#include "ZoPixelConverter.h"
#include "ZoRGBFilter.h"

namespace {

// Runs a conversion for a flat caller: no exception crosses into C. The only
// one a conversion raises is a failed allocation of a chain's intermediate
// buffer (a frame too large for memory), reported as a bad argument.
template <class F>
std::uint32_t Guarded(F&& convert)
{
    try {
        return convert();
    } catch (...) {
        return ZO_ERR_BAD_ARGUMENT;
    }
}

}  // namespace

extern "C" {

int64_t ZoPixelConverter_GetSourceType(const ZoPixelConverter* converter)
{
    return converter ? converter->GetSourceType() : 0;
}

int64_t ZoPixelConverter_GetDestinationType(const ZoPixelConverter* converter)
{
    return converter ? converter->GetDestinationType() : 0;
}

uint32_t ZoPixelConverter_GetSourceByteSize(const ZoPixelConverter* converter, uint32_t pixelCount)
{
    return converter ? converter->GetSourceByteSize(pixelCount) : 0;
}

uint32_t ZoPixelConverter_GetDestinationByteSize(const ZoPixelConverter* converter, uint32_t pixelCount)
{
    return converter ? converter->GetDestinationByteSize(pixelCount) : 0;
}

uint32_t ZoPixelConverter_ConvertPixel(const ZoPixelConverter* converter, const unsigned char* source,
                                       unsigned char* destination)
{
    if (!converter)
        return ZO_ERR_BAD_ARGUMENT;
    return Guarded([&] { return converter->Convert(source, destination); });
}

uint32_t ZoPixelConverter_ConvertLine(const ZoPixelConverter* converter, const unsigned char* source,
                                      unsigned char* destination, uint32_t count)
{
    if (!converter)
        return ZO_ERR_BAD_ARGUMENT;
    return Guarded([&] { return converter->Convert(source, destination, count); });
}

uint32_t ZoPixelConverter_ConvertArea(const ZoPixelConverter* converter, const unsigned char* source,
                                      uint32_t sourceWidth, uint32_t sourceHeight, unsigned char* destination,
                                      uint32_t destinationWidth, uint32_t destinationHeight, uint32_t width,
                                      uint32_t height, uint32_t flags, uint32_t destinationPadding)
{
    if (!converter)
        return ZO_ERR_BAD_ARGUMENT;
    return Guarded([&] {
        return converter->Convert(source, sourceWidth, sourceHeight, destination, destinationWidth,
                                  destinationHeight, width, height, flags, destinationPadding);
    });
}

uint32_t ZoPixelConverter_ConvertAreaFilter(const ZoPixelConverter* converter, const ZoRGBFilter* filter,
                                            const unsigned char* source, uint32_t sourceWidth,
                                            uint32_t sourceHeight, unsigned char* destination,
                                            uint32_t destinationWidth, uint32_t destinationHeight, uint32_t width,
                                            uint32_t height, uint32_t flags, uint32_t destinationPadding)
{
    if (!converter)
        return ZO_ERR_BAD_ARGUMENT;
    // A null filter means no filter: the converter's default identity filter.
    if (!filter)
        return ZoPixelConverter_ConvertArea(converter, source, sourceWidth, sourceHeight, destination,
                                            destinationWidth, destinationHeight, width, height, flags,
                                            destinationPadding);
    return Guarded([&] {
        return converter->Convert(*filter, source, sourceWidth, sourceHeight, destination, destinationWidth,
                                  destinationHeight, width, height, flags, destinationPadding);
    });
}

ZoRGBFilter* ZoRGBFilter_Init(uint32_t bitSize)
{
    ZoRGBFilter* filter = new ZoRGBFilter(bitSize);
    if (filter && !filter->RedTable16()) {
        delete filter;  // the tables could not be allocated
        return nullptr;
    }
    return filter;
}

void ZoRGBFilter_Destroy(ZoRGBFilter* filter) { delete filter; }

uint32_t ZoRGBFilter_GetBitSize(const ZoRGBFilter* filter) { return filter ? filter->GetBitSize() : 0; }
uint32_t ZoRGBFilter_GetEntryCount(const ZoRGBFilter* filter) { return filter ? filter->GetEntryCount() : 0; }

uint8_t ZoRGBFilter_GetRedValue8(const ZoRGBFilter* filter, uint32_t index)
{
    return filter ? filter->GetRedValue8(index) : 0;
}
uint8_t ZoRGBFilter_GetGreenValue8(const ZoRGBFilter* filter, uint32_t index)
{
    return filter ? filter->GetGreenValue8(index) : 0;
}
uint8_t ZoRGBFilter_GetBlueValue8(const ZoRGBFilter* filter, uint32_t index)
{
    return filter ? filter->GetBlueValue8(index) : 0;
}
uint16_t ZoRGBFilter_GetRedValue16(const ZoRGBFilter* filter, uint32_t index)
{
    return filter ? filter->GetRedValue16(index) : 0;
}
uint16_t ZoRGBFilter_GetGreenValue16(const ZoRGBFilter* filter, uint32_t index)
{
    return filter ? filter->GetGreenValue16(index) : 0;
}
uint16_t ZoRGBFilter_GetBlueValue16(const ZoRGBFilter* filter, uint32_t index)
{
    return filter ? filter->GetBlueValue16(index) : 0;
}

uint32_t ZoRGBFilter_SetRedValue(ZoRGBFilter* filter, uint32_t index, uint16_t value)
{
    return filter ? filter->SetRedValue(index, value) : ZO_ERR_BAD_ARGUMENT;
}
uint32_t ZoRGBFilter_SetGreenValue(ZoRGBFilter* filter, uint32_t index, uint16_t value)
{
    return filter ? filter->SetGreenValue(index, value) : ZO_ERR_BAD_ARGUMENT;
}
uint32_t ZoRGBFilter_SetBlueValue(ZoRGBFilter* filter, uint32_t index, uint16_t value)
{
    return filter ? filter->SetBlueValue(index, value) : ZO_ERR_BAD_ARGUMENT;
}

uint32_t ZoRGBFilter_SetMultipliers(ZoRGBFilter* filter, double red, double green, double blue,
                                    uint16_t redOffset, uint16_t greenOffset, uint16_t blueOffset)
{
    return filter ? filter->SetMultipliers(red, green, blue, redOffset, greenOffset, blueOffset)
                  : ZO_ERR_BAD_ARGUMENT;
}

}  // extern "C"
