/* Stand-in for the library's band conversion while it is not in the library
 * yet: whole-area conversion only. Removed once the library provides it. */
#include <stddef.h>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"

uint32_t
ZoPixelConverter_ConvertBand (const ZoPixelConverter * c, const ZoRGBFilter * filter,
    const unsigned char *source, uint32_t sourceWidth, uint32_t sourceHeight, unsigned char *destination,
    uint32_t destinationWidth, uint32_t destinationHeight, uint32_t width, uint32_t height, uint32_t flags,
    uint32_t destinationPadding, uint32_t firstLine, uint32_t lineCount)
{
  if (firstLine != 0 || lineCount != height)
    return ZO_ERR_BAD_ARGUMENT;
  return ZoPixelConverter_ConvertAreaFilter (c, filter, source, sourceWidth, sourceHeight, destination,
      destinationWidth, destinationHeight, width, height, flags, destinationPadding);
}
