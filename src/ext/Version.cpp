// The library's version, as the build configured it.
#include "ZoImgLibExt.h"

#ifndef ZO_IMGLIB_VERSION
#error "ZO_IMGLIB_VERSION must be defined by the build (the CMake project version)"
#endif

const char* ZoImgLib_GetVersion(void)
{
    return ZO_IMGLIB_VERSION;
}
