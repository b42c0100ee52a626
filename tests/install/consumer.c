/* Uses the installed C header and library, built with pkg-config's flags. */
#include <ZoImgLibC.h>

#include <stdio.h>
#include <string.h>

int main(void)
{
    ZoPixelType* type = ZoPixelTypeFactory_CreatePixelType(ZO_PT_GRAY10 | ZO_PIXEL_PACKED);
    int ok = type != NULL && ZoPixelType_GetBufferSizeFor(type, 3, 1) == 6 &&
             strcmp(ZoPixelTypeFactory_GetPixelTypeName(0x00010001), "Grayscale 8-bits") == 0 &&
             ZoPixelType_GetTypeID(NULL) == 4294967295LL;
    ZoPixelType_Destroy(type);
    puts(ok ? "C consumer: ok" : "C consumer: FAILED");
    return ok ? 0 : 1;
}
