/* Flat interface of ZoImgLib: plain functions with C linkage and
 * undecorated names, for C, Python (ctypes), C# and other callers.
 * Compiles as C and as C++.
 *
 * Handles are opaque pointers. Every function checks its first argument and
 * answers a null handle with a neutral value (0, false, null) or 18, unless
 * its comment says the handle is not checked. Pixel type handles returned by
 * the Clone/Create functions belong to the caller and are freed with
 * ZoPixelType_Destroy; converter handles belong to the library; filters
 * from ZoRGBFilter_Init are freed with ZoRGBFilter_Destroy.
 *
 * Types: IDs are signed 64-bit; counts, sizes, flags and result codes are
 * unsigned 32-bit; bool is the C99 one-byte bool.
 *
 * Buffers passed to the conversion functions are the caller's concern: they
 * are not checked. Several conversions read or write beyond the area they
 * are given (interlaced sources with an odd height, replicating Bayer with
 * an odd height, dual-tap and Dual Lines sources, packed sources and 4:2:2
 * at odd widths, RGB converters working in groups of four pixels, chains):
 * the list and each rule are in ZoPixelConverter.h and the converter family
 * headers.
 *
 * The converter pointers answered here are null for a missing pair; from
 * C++, prefer them (or HasConverter) to the class interface's references,
 * whose null address C++ cannot reliably test. */
#ifndef ZO_IMGLIB_C_H
#define ZO_IMGLIB_C_H

#include <stdint.h>
#ifndef __cplusplus
#include <stdbool.h>
#endif

#include "ZoExport.h"
#include "ZoPixelTypeIDs.h"

#ifdef __cplusplus
class ZoPixelType;
class ZoPixelConverter;
class ZoRGBFilter;
extern "C" {
#else
typedef struct ZoPixelType ZoPixelType;
typedef struct ZoPixelConverter ZoPixelConverter;
typedef struct ZoRGBFilter ZoRGBFilter;
#endif

/* ---- Pixel types ---- */
ZO_API void ZoPixelType_Destroy(ZoPixelType* type);
ZO_API ZoPixelType* ZoPixelType_Clone(const ZoPixelType* type);
/* ZO_NO_PIXEL_TYPE_ID (4294967295) for a null handle. */
ZO_API int64_t ZoPixelType_GetTypeID(const ZoPixelType* type);
ZO_API uint16_t ZoPixelType_GetPixelBitSize(const ZoPixelType* type);
ZO_API uint16_t ZoPixelType_GetPixelByteSize(const ZoPixelType* type);
ZO_API bool ZoPixelType_IsBayerPattern(const ZoPixelType* type);
ZO_API uint32_t ZoPixelType_GetBufferSizeFor(const ZoPixelType* type, uint32_t width, uint32_t height);
/* False when either handle is null. */
ZO_API bool ZoPixelType_HasConverterTo(const ZoPixelType* type, const ZoPixelType* destination);
ZO_API bool ZoPixelType_HasConverterFrom(const ZoPixelType* type, const ZoPixelType* source);
/* Null for a missing pair or when either handle is null. */
ZO_API const ZoPixelConverter* ZoPixelType_GetConverterTo(const ZoPixelType* type,
                                                          const ZoPixelType* destination);
ZO_API const ZoPixelConverter* ZoPixelType_GetConverterFrom(const ZoPixelType* type, const ZoPixelType* source);

/* ---- Registry ---- */
ZO_API bool ZoPixelTypeFactory_HasPixelType(int64_t id);
/* A new type owned by the caller, or null for an unregistered ID. */
ZO_API ZoPixelType* ZoPixelTypeFactory_CreatePixelType(int64_t id);
/* The index-th registered type (ascending ID) with these attributes, or null.
 * colourSpace and tapMode are masked values (0x10000/0x20000/0x40000; 0 or
 * one ZO_PIXEL_TAP_* value). Each int flag is true when non-zero. Count by
 * raising index until null is returned. */
ZO_API ZoPixelType* ZoPixelTypeFactory_CreatePixelType2(uint32_t bitSize, int64_t colourSpace, int32_t normalized,
                                                        int32_t packed, int32_t interlaced, int32_t planar,
                                                        int64_t tapMode, int32_t bayer, uint32_t index);
/* "Unregistered pixel type" for an unknown ID. The library records every
 * distinct unknown ID asked about until it is unloaded, about 128 bytes
 * each: do not feed it untrusted or generated IDs in a loop (check them with
 * ZoPixelTypeFactory_HasPixelType first). */
ZO_API const char* ZoPixelTypeFactory_GetPixelTypeName(int64_t id);
ZO_API bool ZoPixelTypeFactory_HasConverter(int64_t source, int64_t destination);
/* Null for a pair without converter. */
ZO_API const ZoPixelConverter* ZoPixelTypeFactory_GetConverter(int64_t source, int64_t destination);
/* False at once when the out pointer is null. */
ZO_API bool ZoPixelTypeFactory_EnumConverterFrom(uint32_t index, int64_t source, int64_t* destination);
ZO_API bool ZoPixelTypeFactory_EnumConverterTo(uint32_t index, int64_t destination, int64_t* source);

/* ---- Converters (0 or 18 for a null converter) ---- */
ZO_API int64_t ZoPixelConverter_GetSourceType(const ZoPixelConverter* converter);
ZO_API int64_t ZoPixelConverter_GetDestinationType(const ZoPixelConverter* converter);
ZO_API uint32_t ZoPixelConverter_GetSourceByteSize(const ZoPixelConverter* converter, uint32_t pixelCount);
ZO_API uint32_t ZoPixelConverter_GetDestinationByteSize(const ZoPixelConverter* converter, uint32_t pixelCount);
ZO_API uint32_t ZoPixelConverter_ConvertPixel(const ZoPixelConverter* converter, const unsigned char* source,
                                              unsigned char* destination);
ZO_API uint32_t ZoPixelConverter_ConvertLine(const ZoPixelConverter* converter, const unsigned char* source,
                                             unsigned char* destination, uint32_t count);
ZO_API uint32_t ZoPixelConverter_ConvertArea(const ZoPixelConverter* converter, const unsigned char* source,
                                             uint32_t sourceWidth, uint32_t sourceHeight,
                                             unsigned char* destination, uint32_t destinationWidth,
                                             uint32_t destinationHeight, uint32_t width, uint32_t height,
                                             uint32_t flags, uint32_t destinationPadding);
/* A null filter converts as ZoPixelConverter_ConvertArea does (default identity filter). */
ZO_API uint32_t ZoPixelConverter_ConvertAreaFilter(const ZoPixelConverter* converter, const ZoRGBFilter* filter,
                                                   const unsigned char* source, uint32_t sourceWidth,
                                                   uint32_t sourceHeight, unsigned char* destination,
                                                   uint32_t destinationWidth, uint32_t destinationHeight,
                                                   uint32_t width, uint32_t height, uint32_t flags,
                                                   uint32_t destinationPadding);

/* ---- Filters (0 or 18 for a null filter) ---- */
/* A new identity filter of 2^bitSize entries, or null when allocation fails. */
ZO_API ZoRGBFilter* ZoRGBFilter_Init(uint32_t bitSize);
ZO_API void ZoRGBFilter_Destroy(ZoRGBFilter* filter);
ZO_API uint32_t ZoRGBFilter_GetBitSize(const ZoRGBFilter* filter);
ZO_API uint32_t ZoRGBFilter_GetEntryCount(const ZoRGBFilter* filter);
/* Index modulo 256. */
ZO_API uint8_t ZoRGBFilter_GetRedValue8(const ZoRGBFilter* filter, uint32_t index);
ZO_API uint8_t ZoRGBFilter_GetGreenValue8(const ZoRGBFilter* filter, uint32_t index);
ZO_API uint8_t ZoRGBFilter_GetBlueValue8(const ZoRGBFilter* filter, uint32_t index);
/* Index unchecked: keep it below max(entry count, 65536). */
ZO_API uint16_t ZoRGBFilter_GetRedValue16(const ZoRGBFilter* filter, uint32_t index);
ZO_API uint16_t ZoRGBFilter_GetGreenValue16(const ZoRGBFilter* filter, uint32_t index);
ZO_API uint16_t ZoRGBFilter_GetBlueValue16(const ZoRGBFilter* filter, uint32_t index);
ZO_API uint32_t ZoRGBFilter_SetRedValue(ZoRGBFilter* filter, uint32_t index, uint16_t value);
ZO_API uint32_t ZoRGBFilter_SetGreenValue(ZoRGBFilter* filter, uint32_t index, uint16_t value);
ZO_API uint32_t ZoRGBFilter_SetBlueValue(ZoRGBFilter* filter, uint32_t index, uint16_t value);
ZO_API uint32_t ZoRGBFilter_SetMultipliers(ZoRGBFilter* filter, double red, double green, double blue,
                                           uint16_t redOffset, uint16_t greenOffset, uint16_t blueOffset);

#ifdef __cplusplus
}
#endif

#endif
