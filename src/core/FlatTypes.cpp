// Flat functions for pixel types and the registry.
#include "ZoImgLibC.h"
#include "ZoPixelTypeFactory.h"
#include "core/RegistryInternal.h"

extern "C" {

void ZoPixelType_Destroy(ZoPixelType* type) { delete type; }

ZoPixelType* ZoPixelType_Clone(const ZoPixelType* type) { return type ? type->Clone() : nullptr; }

int64_t ZoPixelType_GetTypeID(const ZoPixelType* type)
{
    return type ? type->GetTypeID() : static_cast<int64_t>(ZO_NO_PIXEL_TYPE_ID);
}

uint16_t ZoPixelType_GetPixelBitSize(const ZoPixelType* type) { return type ? type->GetPixelBitSize() : 0; }
uint16_t ZoPixelType_GetPixelByteSize(const ZoPixelType* type) { return type ? type->GetPixelByteSize() : 0; }
bool ZoPixelType_IsBayerPattern(const ZoPixelType* type) { return type && type->IsBayerPattern(); }

uint32_t ZoPixelType_GetBufferSizeFor(const ZoPixelType* type, uint32_t width, uint32_t height)
{
    return type ? type->GetBufferSizeFor(width, height) : 0;
}

bool ZoPixelType_HasConverterTo(const ZoPixelType* type, const ZoPixelType* destination)
{
    return type && destination && type->HasConverterTo(*destination);
}

bool ZoPixelType_HasConverterFrom(const ZoPixelType* type, const ZoPixelType* source)
{
    return type && source && source->HasConverterTo(*type);
}

const ZoPixelConverter* ZoPixelType_GetConverterTo(const ZoPixelType* type, const ZoPixelType* destination)
{
    return type && destination ? ZoFindConverter(type->GetTypeID(), destination->GetTypeID()) : nullptr;
}

const ZoPixelConverter* ZoPixelType_GetConverterFrom(const ZoPixelType* type, const ZoPixelType* source)
{
    return type && source ? ZoFindConverter(source->GetTypeID(), type->GetTypeID()) : nullptr;
}

bool ZoPixelTypeFactory_HasPixelType(int64_t id) { return ZoPixelTypeFactory::HasPixelType(id); }

ZoPixelType* ZoPixelTypeFactory_CreatePixelType(int64_t id) { return ZoPixelTypeFactory::CreatePixelType(id); }

ZoPixelType* ZoPixelTypeFactory_CreatePixelType2(uint32_t bitSize, int64_t colourSpace, int32_t normalized,
                                                 int32_t packed, int32_t interlaced, int32_t planar,
                                                 int64_t tapMode, int32_t bayer, uint32_t index)
{
    return ZoPixelTypeFactory::CreatePixelType(bitSize, colourSpace, normalized != 0, packed != 0,
                                               interlaced != 0, planar != 0, tapMode, bayer != 0, index);
}

const char* ZoPixelTypeFactory_GetPixelTypeName(int64_t id) { return ZoPixelTypeFactory::GetPixelTypeName(id); }

bool ZoPixelTypeFactory_HasConverter(int64_t source, int64_t destination)
{
    return ZoPixelTypeFactory::HasConverter(source, destination);
}

const ZoPixelConverter* ZoPixelTypeFactory_GetConverter(int64_t source, int64_t destination)
{
    return ZoFindConverter(source, destination);
}

bool ZoPixelTypeFactory_EnumConverterFrom(uint32_t index, int64_t source, int64_t* destination)
{
    if (!destination)
        return false;
    std::int64_t d = 0;
    if (!ZoPixelTypeFactory::EnumConverterFrom(index, source, d))
        return false;
    *destination = d;
    return true;
}

bool ZoPixelTypeFactory_EnumConverterTo(uint32_t index, int64_t destination, int64_t* source)
{
    if (!source)
        return false;
    std::int64_t s = 0;
    if (!ZoPixelTypeFactory::EnumConverterTo(index, destination, s))
        return false;
    *source = s;
    return true;
}

}  // extern "C"
