// Uses the installed headers and library: a name and a conversion.
#include <ZoImgLib.h>

#include <cstdio>
#include <cstring>

int main()
{
    if (std::strcmp(ZoPixelTypeFactory::GetPixelTypeName(ZO_PT_BAYER_RGB8), "Bayer RGB 8-bits") != 0)
        return 1;
    const ZoPixelConverter& copy = ZoPixelTypeFactory::GetConverter(ZO_PT_GRAY8, ZO_PT_GRAY8);
    const unsigned char in[3] = {7, 8, 9};
    unsigned char out[3] = {0, 0, 0};
    if (copy.Convert(in, out, 3) != ZO_OK || std::memcmp(in, out, 3) != 0)
        return 2;
    std::puts("C++ consumer: ok");
    return 0;
}
