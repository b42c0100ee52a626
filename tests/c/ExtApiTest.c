/* The extension interface used from C: ZoImgLibExt.h compiled by the C
 * compiler, linked against the shared library only. Exits with the number
 * of failed checks. */
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"

static int failures = 0;

#define CHECK(condition)                                                     \
    do {                                                                     \
        if (!(condition)) {                                                  \
            fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, \
                    #condition);                                             \
            ++failures;                                                      \
        }                                                                    \
    } while (0)

static void Version(void)
{
    const char* version = ZoImgLib_GetVersion();
    CHECK(version != NULL && strcmp(version, ZO_TEST_PROJECT_VERSION) == 0);
}

/* Sizes through the C struct: a replicating Bayer frame of odd height
 * reaches one line past it; a Left Inverted two-tap packed line of odd
 * width writes one pixel before the destination pointer. */
static void Sizes(void)
{
    const ZoPixelConverter* bayer = ZoPixelTypeFactory_GetConverter(ZO_PT_BAYER_RGB8, ZO_PT_BGR32);
    const ZoPixelConverter* packed =
        ZoPixelTypeFactory_GetConverter(ZO_PT_GRAY12 | ZO_PIXEL_PACKED | ZO_PIXEL_TAP_DUAL_LINV_RINV, ZO_PT_GRAY8);
    ZoAreaBufferSizes sizes = {0, 0, 0};
    CHECK(bayer != NULL && packed != NULL);
    CHECK(ZoPixelConverter_GetAreaBufferSizes(bayer, 640, 481, 640, 481, 640, 481, 0, 4, &sizes) == ZO_OK);
    CHECK(sizes.sourceBytes == 640u * 482 && sizes.destinationBytes == 481u * (4 * 640 + 4) + 4 * 640 &&
          sizes.destinationBytesBefore == 0);
    CHECK(ZoPixelConverter_GetAreaBufferSizes(packed, 9, 2, 9, 2, 9, 2, 0, 0, &sizes) == ZO_OK);
    CHECK(sizes.sourceBytes == 12 + 15 && sizes.destinationBytes == 18 && sizes.destinationBytesBefore == 1);
    CHECK(ZoPixelConverter_GetAreaBufferSizes(bayer, 4, 4, 4, 4, 4, 4, 0, 0, NULL) == ZO_ERR_BAD_ARGUMENT);
}

static void Pfnc(void)
{
    int64_t type = 0;
    uint32_t flags = 0, code = 0, index = 0;
    const char* name = NULL;
    CHECK(ZoPfnc_FromName("BayerBG12p", &type, &flags) == ZO_OK);
    CHECK(type == (ZO_PT_BAYER_RGB12 | ZO_PIXEL_PACKED) && flags == ZO_FLAG_BAYER_BGGR);
    CHECK(ZoPfnc_FromCode(0x010C0006, &type, &flags) == ZO_ERR_NOT_SUPPORTED); /* Mono12Packed */
    CHECK(ZoPfnc_FromName("bayerbg12p", &type, &flags) == ZO_ERR_BAD_ARGUMENT);
    CHECK(ZoPfnc_FromPixelType(ZO_PT_BAYER_RGGB8, 0, &name, &code) == ZO_OK);
    CHECK(name != NULL && strcmp(name, "BayerRG8") == 0 && code == 0x01080009);
    while (ZoPfnc_GetEntry(index, &name, &code, &type, &flags))
        ++index;
    CHECK(index == 64);
}

/* A chain's stages and class names; plain converters have no stages. */
static void ClassNames(void)
{
    const ZoPixelConverter* chain = ZoPixelTypeFactory_GetConverter(ZO_PT_GRAY12, ZO_PT_RGB24 | ZO_PIXEL_PLANAR);
    const ZoPixelConverter* second = ZoPixelConverter_GetChainStage(chain, 1);
    CHECK(chain != NULL && strcmp(ZoPixelConverter_GetClassName(chain), "ZoComplexConverter") == 0);
    CHECK(second != NULL && ZoPixelConverter_GetChainStage(second, 0) == NULL);
    CHECK(ZoPixelConverter_GetClassName(NULL) == NULL);
}

int main(void)
{
    Version();
    Sizes();
    Pfnc();
    ClassNames();
    if (failures)
        fprintf(stderr, "%d check(s) failed\n", failures);
    return failures;
}
