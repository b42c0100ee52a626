// Band conversion: the ordinary area conversion with the thread's band
// window set to the caller's lines.
#include "ZoImgLibExt.h"

#include "ZoPixelConverter.h"
#include "convert/BandWindow.h"

uint32_t ZoPixelConverter_ConvertBand(const ZoPixelConverter* converter, const ZoRGBFilter* filter,
                                      const unsigned char* source, uint32_t sourceWidth, uint32_t sourceHeight,
                                      unsigned char* destination, uint32_t destinationWidth,
                                      uint32_t destinationHeight, uint32_t width, uint32_t height, uint32_t flags,
                                      uint32_t destinationPadding, uint32_t firstLine, uint32_t lineCount)
{
    if (!converter || std::uint64_t{firstLine} + lineCount > height)
        return ZO_ERR_BAD_ARGUMENT;
    if (lineCount == 0)
        return ZO_OK;
    try {
        const zo::BandWindowScope scope({true, firstLine, firstLine + lineCount});
        if (filter)
            return converter->Convert(*filter, source, sourceWidth, sourceHeight, destination, destinationWidth,
                                      destinationHeight, width, height, flags, destinationPadding);
        return converter->Convert(source, sourceWidth, sourceHeight, destination, destinationWidth,
                                  destinationHeight, width, height, flags, destinationPadding);
    } catch (...) {
        return ZO_ERR_BAD_ARGUMENT;
    }
}
