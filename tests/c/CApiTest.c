/* The flat interface and its extension (ZoImgLibC.h, ZoImgLibExt.h) used
 * from C: compiled by the C compiler as strict C99 and linked against the
 * shared library only. Exits non-zero when a check fails. */
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"

static int failures = 0;

#define CHECK(condition) \
    do { if (!(condition)) { fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition); ++failures; } } while (0)

/* Names, whether the ID is a type, and buffer sizes (0: no type), from C
 * (every type's name and size: CatalogueTest and PixelTypeTest); searches by
 * attributes and clones. */
static void Types(void)
{
    static const struct {
        int64_t id;
        const char* name;
        uint32_t width, height, bytes;
    } kTypes[] = {
        {0x01420011, "Bayer RGB 10-bits, Packed, Dual Left+Right output", 0, 0, 0},
        {ZO_PT_YUV8_444, "Unregistered pixel type", 0, 0, 0}, /* registered only packed */
        {0x7700000001LL, "Unregistered pixel type", 0, 0, 0},
        {ZO_PT_BAYER_RGB12 | ZO_PIXEL_PACKED, "Bayer RGB 12-bits, Packed", 7, 1, 12},
        {ZO_PT_RGB24, "RGB 24-bits", 3, 1, 12}, /* unpacked 24-bit: 4 bytes a pixel */
    };
    const int64_t expected[] = {0x00020010, 0x00020013};
    ZoPixelType* type;
    ZoPixelType* copy;
    size_t i;
    for (i = 0; i < sizeof kTypes / sizeof kTypes[0]; ++i) {
        const char* name = ZoPixelTypeFactory_GetPixelTypeName(kTypes[i].id);
        type = ZoPixelTypeFactory_CreatePixelType(kTypes[i].id);
        const int registered = strcmp(kTypes[i].name, "Unregistered pixel type") != 0;
        CHECK(name != NULL && strcmp(name, kTypes[i].name) == 0);
        CHECK(ZoPixelTypeFactory_HasPixelType(kTypes[i].id) == registered && (type != NULL) == registered);
        CHECK(kTypes[i].bytes == 0 || ZoPixelType_GetBufferSizeFor(type, kTypes[i].width, kTypes[i].height) == kTypes[i].bytes);
        ZoPixelType_Destroy(type);
    }
    /* Search by attributes, 8-bit Bayer (any non-zero integer is true): the
     * current type, then its deprecated alias, then nothing. */
    for (i = 0; i < 3; ++i) {
        type = ZoPixelTypeFactory_CreatePixelType2(8, ZO_PIXEL_COLORSPACE_RGB, 0, 0, 0, 0, 0, -7, (uint32_t)i);
        CHECK(i == 2 ? type == NULL
                     : ZoPixelType_GetTypeID(type) == expected[i] && ZoPixelType_IsBayerPattern(type) &&
                           ZoPixelType_GetPixelBitSize(type) == 8 && ZoPixelType_GetPixelByteSize(type) == 1);
        ZoPixelType_Destroy(type);
    }
    /* Packed given as 2, interlaced as 0x100. */
    type = ZoPixelTypeFactory_CreatePixelType2(12, ZO_PIXEL_COLORSPACE_GRAY, 0, 2, 0x100, 0, ZO_PIXEL_TAP_DUAL_LINV_R, 0, 0);
    CHECK(type != NULL && ZoPixelType_GetTypeID(type) == 0x04610003 && !ZoPixelType_IsBayerPattern(type));
    /* A clone is a new handle of the same type. */
    copy = ZoPixelType_Clone(type);
    CHECK(copy != NULL && copy != type && ZoPixelType_GetTypeID(copy) == 0x04610003);
    ZoPixelType_Destroy(copy);
    ZoPixelType_Destroy(type);
}

static void NullHandles(void)
{
    ZoPixelType* gray = ZoPixelTypeFactory_CreatePixelType(ZO_PT_GRAY8);
    unsigned char byte = 0x5A;
    int64_t id = 99;
    CHECK(ZoPixelType_GetTypeID(NULL) == 4294967295LL); /* only the low 32 bits set, not -1 */
    CHECK(ZoPixelType_GetPixelBitSize(NULL) == 0 && ZoPixelType_GetPixelByteSize(NULL) == 0);
    CHECK(!ZoPixelType_IsBayerPattern(NULL) && ZoPixelType_GetBufferSizeFor(NULL, 640, 480) == 0);
    CHECK(ZoPixelType_Clone(NULL) == NULL);
    CHECK(!ZoPixelType_HasConverterTo(NULL, gray) && !ZoPixelType_HasConverterTo(gray, NULL));
    CHECK(!ZoPixelType_HasConverterFrom(NULL, gray) && !ZoPixelType_HasConverterFrom(gray, NULL));
    CHECK(ZoPixelType_GetConverterTo(NULL, gray) == NULL && ZoPixelType_GetConverterTo(gray, NULL) == NULL);
    CHECK(ZoPixelType_GetConverterFrom(NULL, gray) == NULL && ZoPixelType_GetConverterFrom(gray, NULL) == NULL);
    ZoPixelType_Destroy(NULL);
    CHECK(!ZoPixelTypeFactory_EnumConverterFrom(0, ZO_PT_GRAY8, NULL) && !ZoPixelTypeFactory_EnumConverterTo(0, ZO_PT_GRAY8, NULL));
    CHECK(!ZoPixelTypeFactory_EnumConverterFrom(0, 0x7700000002LL, &id) && id == 99);
    CHECK(ZoPixelTypeFactory_GetConverter(0x7700000002LL, ZO_PT_GRAY8) == NULL);
    CHECK(ZoPixelConverter_GetSourceType(NULL) == 0 && ZoPixelConverter_GetDestinationType(NULL) == 0);
    CHECK(ZoPixelConverter_GetSourceByteSize(NULL, 10) == 0 && ZoPixelConverter_GetDestinationByteSize(NULL, 10) == 0);
    CHECK(ZoPixelConverter_ConvertPixel(NULL, &byte, &byte) == ZO_ERR_BAD_ARGUMENT);
    CHECK(ZoPixelConverter_ConvertLine(NULL, &byte, &byte, 1) == ZO_ERR_BAD_ARGUMENT);
    CHECK(ZoPixelConverter_ConvertArea(NULL, &byte, 1, 1, &byte, 1, 1, 1, 1, 0, 0) == 18 && byte == 0x5A);
    CHECK(ZoRGBFilter_GetBitSize(NULL) == 0 && ZoRGBFilter_GetEntryCount(NULL) == 0 && ZoRGBFilter_GetRedValue8(NULL, 3) == 0);
    CHECK(ZoRGBFilter_SetMultipliers(NULL, 1, 1, 1, 0, 0, 0) == 18);
    ZoRGBFilter_Destroy(NULL);
    ZoPixelType_Destroy(gray);
}

static void Conversions(void)
{
    /* Identity 8-bit gray, looked up two ways. */
    ZoPixelType* gray = ZoPixelTypeFactory_CreatePixelType(ZO_PT_GRAY8);
    const ZoPixelConverter* identity = ZoPixelTypeFactory_GetConverter(ZO_PT_GRAY8, ZO_PT_GRAY8);
    const unsigned char line[7] = {1, 2, 3, 250, 251, 252, 253};
    unsigned char out[9];
    int64_t destination = 0;
    uint32_t n = 0;
    CHECK(identity != NULL && ZoPixelType_HasConverterTo(gray, gray));
    CHECK(ZoPixelType_GetConverterTo(gray, gray) == identity && ZoPixelType_GetConverterFrom(gray, gray) == identity);
    CHECK(ZoPixelConverter_GetSourceType(identity) == ZO_PT_GRAY8 && ZoPixelConverter_GetDestinationType(identity) == ZO_PT_GRAY8);
    CHECK(ZoPixelConverter_GetSourceByteSize(identity, 7) == 7 && ZoPixelConverter_GetDestinationByteSize(identity, 7) == 7);

    memset(out, 0xEE, sizeof out);
    CHECK(ZoPixelConverter_ConvertLine(identity, line, out, 7) == ZO_OK && memcmp(out, line, 7) == 0 && out[7] == 0xEE &&
          out[8] == 0xEE);

    /* A whole area through a filter that doubles red: the identity copy
     * ignores the filter. */
    ZoRGBFilter* filter = ZoRGBFilter_Init(8);
    unsigned char frame[6] = {10, 20, 30, 40, 50, 60}, copy[8];
    memset(copy, 0xEE, sizeof copy);
    CHECK(filter != NULL && ZoRGBFilter_GetEntryCount(filter) == 256 &&
          ZoRGBFilter_SetMultipliers(filter, 2.0, 1.0, 1.0, 0, 0, 0) == ZO_OK);
    CHECK(ZoRGBFilter_GetRedValue8(filter, 100) == 200 && ZoRGBFilter_GetRedValue8(filter, 200) == 255);
    CHECK(ZoPixelConverter_ConvertAreaFilter(identity, filter, frame, 3, 2, copy, 3, 2, 3, 2, 0, 0) == ZO_OK &&
          memcmp(copy, frame, 6) == 0 && copy[6] == 0xEE);
    ZoRGBFilter_Destroy(filter);

    /* Every destination enumerated from 8-bit gray is served. */
    for (n = 0; ZoPixelTypeFactory_EnumConverterFrom(n, ZO_PT_GRAY8, &destination); ++n)
        CHECK(ZoPixelTypeFactory_HasConverter(ZO_PT_GRAY8, destination));
    CHECK(n >= 1);
    CHECK(ZoPixelTypeFactory_EnumConverterTo(0, ZO_PT_GRAY8, &destination) && ZoPixelTypeFactory_HasConverter(destination, ZO_PT_GRAY8));
    /* Nothing converts 8-bit gray to 48-bit RGB: false and null, not an identity. */
    ZoPixelType* rgb48 = ZoPixelTypeFactory_CreatePixelType(ZO_PT_RGB48);
    CHECK(!ZoPixelType_HasConverterTo(gray, rgb48) && !ZoPixelType_HasConverterFrom(rgb48, gray));
    CHECK(ZoPixelType_GetConverterTo(gray, rgb48) == NULL && ZoPixelType_GetConverterFrom(rgb48, gray) == NULL);
    ZoPixelType_Destroy(rgb48);
    ZoPixelType_Destroy(gray);
}

/* The extension from C: the version; sizes through the C struct (the rules
 * of counting: BufferSizesTest), where a Left Inverted two-tap packed line
 * of odd width writes one pixel before the destination pointer; the PFNC
 * functions (every entry and rule: PfncTest). */
static void Extension(void)
{
    const ZoPixelConverter* packed =
        ZoPixelTypeFactory_GetConverter(ZO_PT_GRAY12 | ZO_PIXEL_PACKED | ZO_PIXEL_TAP_DUAL_LINV_RINV, ZO_PT_GRAY8);
    ZoAreaBufferSizes sizes = {0, 0, 0};
    int64_t type = 0;
    uint32_t flags = 0, code = 0;
    const char* name = ZoImgLib_GetVersion();
    CHECK(name != NULL && strcmp(name, ZO_TEST_PROJECT_VERSION) == 0);
    CHECK(ZoPixelConverter_GetAreaBufferSizes(packed, 9, 2, 9, 2, 9, 2, 0, 0, &sizes) == ZO_OK);
    CHECK(sizes.sourceBytes == 12 + 15 && sizes.destinationBytes == 18 && sizes.destinationBytesBefore == 1);
    CHECK(ZoPixelConverter_GetAreaBufferSizes(packed, 4, 4, 4, 4, 4, 4, 0, 0, NULL) == ZO_ERR_BAD_ARGUMENT);
    CHECK(ZoPfnc_FromName("BayerBG12p", &type, &flags) == ZO_OK && type == (ZO_PT_BAYER_RGB12 | ZO_PIXEL_PACKED) &&
          flags == ZO_FLAG_BAYER_BGGR);
    CHECK(ZoPfnc_FromPixelType(ZO_PT_BAYER_RGGB8, 0, &name, &code) == ZO_OK && strcmp(name, "BayerRG8") == 0 &&
          code == 0x01080009);
    CHECK(ZoPfnc_GetEntry(63, &name, &code, &type, &flags) && !ZoPfnc_GetEntry(64, &name, &code, &type, &flags));
}

int main(void)
{
    Types();
    NullHandles();
    Conversions();
    Extension();
    if (failures)
        fprintf(stderr, "%d checks failed\n", failures);
    else
        printf("all flat-interface checks passed\n");
    return failures ? 1 : 0;
}
