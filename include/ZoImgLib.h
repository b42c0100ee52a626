// ZoImgLib: pixel types, their registry and converters between them.
// Umbrella header for C++ users; C callers include ZoImgLibC.h.
#ifndef ZO_IMGLIB_H
#define ZO_IMGLIB_H

#include "ZoExport.h"
#include "ZoPixelTypeIDs.h"
#include "ZoUtils.h"
#include "ZoPixelType.h"
#include "ZoPixelTypeFactory.h"
#include "ZoRGBFilter.h"
#include "ZoPixelConverter.h"
#include "ZoGenericConverters.h"
#include "ZoBayerConverters.h"
#include "ZoRGBConverters.h"
#include "ZoGrayscaleConverters.h"
#include "ZoYUVConverters.h"
#include "ZoPackedConverters.h"
#include "ZoDualTapConverters.h"
#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"

#endif
