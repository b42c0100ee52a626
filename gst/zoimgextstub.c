/* Stand-ins for the library's band conversion and buffer sizes while those
 * are not in the library yet: whole-area conversion only, generous sizes.
 * Removed once the library provides them. */
#include <stddef.h>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"

uint32_t
ZoPixelConverter_GetAreaBufferSizes (const ZoPixelConverter * c, uint32_t sourceWidth, uint32_t sourceHeight,
    uint32_t destinationWidth, uint32_t destinationHeight, uint32_t width, uint32_t height, uint32_t flags,
    uint32_t destinationPadding, ZoAreaBufferSizes * sizes)
{
  uint64_t dline;
  (void) sourceHeight; (void) destinationHeight; (void) width; (void) flags;
  if (c == NULL || sizes == NULL)
    return ZO_ERR_BAD_ARGUMENT;
  dline = ZoPixelConverter_GetDestinationByteSize (c, destinationWidth) + (uint64_t) destinationPadding;
  sizes->sourceBytes = (uint64_t) ZoPixelConverter_GetSourceByteSize (c, sourceWidth) * (height + 1) + 64;
  sizes->destinationBytes = dline * (height + 1) + 64;
  sizes->destinationBytesBefore = 16;
  return ZO_OK;
}

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
