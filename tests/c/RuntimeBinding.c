/* Binds the flat interface at run time, the way C#, Python and other foreign
 * callers do: LoadLibrary on ZoImgLib64.dll, then GetProcAddress by each
 * function's plain name (dlopen and dlsym on the shared library elsewhere).
 * The program does not link the library and does not include the flat
 * headers; it declares the signatures itself.
 *
 * It resolves every flat function, then converts frames through
 * ZoPixelTypeFactory_GetConverter and ZoPixelConverter_ConvertArea (the 8-bit
 * gray copy and the interlaced 8-bit gray deinterlacer) and checks every
 * byte of the destination buffer, padding and guard bytes included; calls
 * the extension functions (buffer sizes, version, PFNC names); then it
 * unloads the library, three times over.
 *
 * Usage: zoimg_runtime_binding_test [path of the library]   (exit code 0: pass) */
#ifdef _WIN32
#include <windows.h>
typedef HMODULE Library;
#else
#include <dlfcn.h>
typedef void* Library;
#endif

#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "ZoPixelTypeIDs.h"

typedef const void* ConverterHandle;
typedef bool (*HasConverterFn)(int64_t source, int64_t destination);
typedef ConverterHandle (*GetConverterFn)(int64_t source, int64_t destination);
typedef int64_t (*ConverterTypeFn)(ConverterHandle converter);
typedef uint32_t (*ConvertAreaFn)(ConverterHandle converter, const unsigned char* source, uint32_t sourceWidth,
                                  uint32_t sourceHeight, unsigned char* destination, uint32_t destinationWidth,
                                  uint32_t destinationHeight, uint32_t width, uint32_t height, uint32_t flags,
                                  uint32_t destinationPadding);
typedef const char* (*GetNameFn)(int64_t id);
typedef int64_t (*GetTypeIdFn)(const void* type);
typedef struct {
    uint64_t sourceBytes, destinationBytes, destinationBytesBefore;
} AreaBufferSizes;
typedef uint32_t (*GetAreaBufferSizesFn)(ConverterHandle converter, uint32_t sourceWidth, uint32_t sourceHeight,
                                         uint32_t destinationWidth, uint32_t destinationHeight, uint32_t width,
                                         uint32_t height, uint32_t flags, uint32_t destinationPadding,
                                         AreaBufferSizes* sizes);
typedef const char* (*GetVersionFn)(void);
typedef const char* (*GetClassNameFn)(ConverterHandle);
typedef uint32_t (*PfncFromNameFn)(const char* name, int64_t* typeId, uint32_t* flags);
typedef uint32_t (*PfncFromPixelTypeFn)(int64_t typeId, uint32_t flags, const char** name, uint32_t* code);

/* Every flat function of the interface: each must be found under this name. */
static const char* const kFlatFunctions[] = {
    "ZoPixelType_Destroy",
    "ZoPixelType_Clone",
    "ZoPixelType_GetTypeID",
    "ZoPixelType_GetPixelBitSize",
    "ZoPixelType_GetPixelByteSize",
    "ZoPixelType_IsBayerPattern",
    "ZoPixelType_GetBufferSizeFor",
    "ZoPixelType_HasConverterTo",
    "ZoPixelType_HasConverterFrom",
    "ZoPixelType_GetConverterTo",
    "ZoPixelType_GetConverterFrom",
    "ZoPixelTypeFactory_HasPixelType",
    "ZoPixelTypeFactory_CreatePixelType",
    "ZoPixelTypeFactory_CreatePixelType2",
    "ZoPixelTypeFactory_GetPixelTypeName",
    "ZoPixelTypeFactory_HasConverter",
    "ZoPixelTypeFactory_GetConverter",
    "ZoPixelTypeFactory_EnumConverterFrom",
    "ZoPixelTypeFactory_EnumConverterTo",
    "ZoPixelConverter_GetSourceType",
    "ZoPixelConverter_GetDestinationType",
    "ZoPixelConverter_GetSourceByteSize",
    "ZoPixelConverter_GetDestinationByteSize",
    "ZoPixelConverter_ConvertPixel",
    "ZoPixelConverter_ConvertLine",
    "ZoPixelConverter_ConvertArea",
    "ZoPixelConverter_ConvertAreaFilter",
    "ZoRGBFilter_Init",
    "ZoRGBFilter_Destroy",
    "ZoRGBFilter_GetBitSize",
    "ZoRGBFilter_GetEntryCount",
    "ZoRGBFilter_GetRedValue8",
    "ZoRGBFilter_GetGreenValue8",
    "ZoRGBFilter_GetBlueValue8",
    "ZoRGBFilter_GetRedValue16",
    "ZoRGBFilter_GetGreenValue16",
    "ZoRGBFilter_GetBlueValue16",
    "ZoRGBFilter_SetRedValue",
    "ZoRGBFilter_SetGreenValue",
    "ZoRGBFilter_SetBlueValue",
    "ZoRGBFilter_SetMultipliers",
    /* Extension interface (ZoImgLibExt.h). */
    "ZoImgLib_GetVersion",
    "ZoPixelConverter_GetAreaBufferSizes",
    "ZoPixelConverter_ConvertBand",
    "ZoPfnc_FromName",
    "ZoPfnc_FromCode",
    "ZoPfnc_FromPixelType",
    "ZoPfnc_GetEntry",
    "ZoPixelConverter_GetClassName",
    "ZoPixelConverter_GetChainStage",
};

static int gFailures = 0;

#define CHECK(condition)                                                         \
    do {                                                                         \
        if (!(condition)) {                                                      \
            fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition); \
            ++gFailures;                                                         \
        }                                                                        \
    } while (0)

static Library gLibrary;

/* GetProcAddress's (or dlsym's) pointer, converted to the generic function
 * pointer type so that the cast to the real signature is well defined. */
typedef void (*AnyFn)(void);
static AnyFn Bind(const char* name)
{
    AnyFn fn = NULL;
#ifdef _WIN32
    FARPROC p = GetProcAddress(gLibrary, name);
    fn = (AnyFn)p;
#else
    void* p = dlsym(gLibrary, name);
    memcpy(&fn, &p, sizeof fn);
#endif
    if (!p) {
        fprintf(stderr, "not exported under its plain name: %s\n", name);
        ++gFailures;
    }
    return fn;
}

enum { kPoison = 0xA5, kGuard = 64 };

/* A destination buffer: the image plus guard bytes, all poisoned. */
typedef struct {
    unsigned char bytes[4096];
    size_t imageBytes;
} Frame;

static void Poison(Frame* frame, size_t imageBytes)
{
    memset(frame->bytes, kPoison, sizeof frame->bytes);
    frame->imageBytes = imageBytes;
}

/* Source bytes that differ from line to line and from the poison value. */
static void FillSource(unsigned char* source, size_t bytes)
{
    size_t i;
    for (i = 0; i < bytes; ++i) {
        unsigned char v = (unsigned char)(i * 7u + 3u);
        source[i] = v == kPoison ? 0 : v;
    }
}

/* Compares the whole destination (image and guard) with the expected bytes. */
static void CheckFrame(const char* what, const Frame* actual, const Frame* expected)
{
    size_t i;
    for (i = 0; i < actual->imageBytes + kGuard; ++i) {
        if (actual->bytes[i] != expected->bytes[i]) {
            fprintf(stderr, "%s: byte %u is 0x%02X, expected 0x%02X\n", what, (unsigned)i, actual->bytes[i],
                    expected->bytes[i]);
            ++gFailures;
            return;
        }
    }
}

/* One load of the library: bind, convert, check, unload. */
static void LoadConvertUnload(const char* path)
{
    size_t i;

#ifdef _WIN32
    gLibrary = LoadLibraryA(path);
    if (!gLibrary) {
        fprintf(stderr, "LoadLibrary(%s) failed: error %lu\n", path, (unsigned long)GetLastError());
        ++gFailures;
        return;
    }
#else
    gLibrary = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!gLibrary) {
        fprintf(stderr, "dlopen(%s) failed: %s\n", path, dlerror());
        ++gFailures;
        return;
    }
#endif
    for (i = 0; i < sizeof kFlatFunctions / sizeof kFlatFunctions[0]; ++i)
        Bind(kFlatFunctions[i]);
    if (gFailures)
        return;

    HasConverterFn hasConverter = (HasConverterFn)Bind("ZoPixelTypeFactory_HasConverter");
    GetConverterFn getConverter = (GetConverterFn)Bind("ZoPixelTypeFactory_GetConverter");
    ConverterTypeFn sourceType = (ConverterTypeFn)Bind("ZoPixelConverter_GetSourceType");
    ConverterTypeFn destinationType = (ConverterTypeFn)Bind("ZoPixelConverter_GetDestinationType");
    ConvertAreaFn convertArea = (ConvertAreaFn)Bind("ZoPixelConverter_ConvertArea");
    GetNameFn typeName = (GetNameFn)Bind("ZoPixelTypeFactory_GetPixelTypeName");
    GetTypeIdFn typeId = (GetTypeIdFn)Bind("ZoPixelType_GetTypeID");

    /* 64-bit arguments and results cross the boundary intact. */
    CHECK(typeId(NULL) == ZO_NO_PIXEL_TYPE_ID);
    CHECK(strcmp(typeName(0x7777), "Unregistered pixel type") == 0);
    CHECK(getConverter(ZO_PT_GRAY8, 0x7777) == NULL);
    CHECK(convertArea(NULL, NULL, 1, 1, NULL, 1, 1, 1, 1, 0, 0) == ZO_ERR_BAD_ARGUMENT);

    /* The 8-bit gray copy: a 7-pixel window of 9-pixel lines into lines of
     * 9 pixels plus 3 padding bytes. Only the window's bytes are written. */
    {
        enum { W = 9, H = 5, Width = 7, Padding = 3, Line = W + Padding };
        unsigned char source[W * H];
        Frame actual, expected;
        ConverterHandle copy;
        uint32_t x, y;

        CHECK(hasConverter(ZO_PT_GRAY8, ZO_PT_GRAY8));
        copy = getConverter(ZO_PT_GRAY8, ZO_PT_GRAY8);
        CHECK(copy != NULL);
        if (copy) {
            CHECK(sourceType(copy) == ZO_PT_GRAY8 && destinationType(copy) == ZO_PT_GRAY8);
            FillSource(source, sizeof source);
            Poison(&actual, Line * H);
            Poison(&expected, Line * H);
            for (y = 0; y < H; ++y)
                for (x = 0; x < Width; ++x)
                    expected.bytes[y * Line + x] = source[y * W + x];
            CHECK(convertArea(copy, source, W, H, actual.bytes, W, H, Width, H, 0, Padding) == ZO_OK);
            CheckFrame("gray copy", &actual, &expected);
        }
    }

    /* The interlaced 8-bit gray deinterlacer: the source holds two fields one
     * after the other; the first goes to the even lines, the second to the
     * odd ones, swapped by ZO_FLAG_INVERT_DEINTERLACER. */
    {
        enum { W = 7, H = 6, Padding = 1, Line = W + Padding };
        unsigned char source[W * H];
        Frame actual, expected;
        ConverterHandle deinterlace;
        uint32_t invert, x, y;

        deinterlace = getConverter(ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, ZO_PT_GRAY8);
        CHECK(deinterlace != NULL);
        if (deinterlace) {
            FillSource(source, sizeof source);
            for (invert = 0; invert < 2; ++invert) {
                Poison(&actual, Line * H);
                Poison(&expected, Line * H);
                for (y = 0; y < H; ++y) {
                    const uint32_t field = (y % 2) ^ invert;
                    const uint32_t sourceLine = field * (H / 2) + y / 2;
                    for (x = 0; x < W; ++x)
                        expected.bytes[y * Line + x] = source[sourceLine * W + x];
                }
                CHECK(convertArea(deinterlace, source, W, H, actual.bytes, W, H, W, H,
                                  invert ? ZO_FLAG_INVERT_DEINTERLACER : 0, Padding) == ZO_OK);
                CheckFrame(invert ? "deinterlace, inverted" : "deinterlace", &actual, &expected);
            }
        }
    }

    /* The extension functions: exact buffer sizes (a 640 x 481 replicating
     * Bayer frame reaches line 481), the version, PFNC names. */
    {
        GetAreaBufferSizesFn sizesOf = (GetAreaBufferSizesFn)Bind("ZoPixelConverter_GetAreaBufferSizes");
        GetVersionFn version = (GetVersionFn)Bind("ZoImgLib_GetVersion");
        PfncFromNameFn fromName = (PfncFromNameFn)Bind("ZoPfnc_FromName");
        PfncFromPixelTypeFn fromPixelType = (PfncFromPixelTypeFn)Bind("ZoPfnc_FromPixelType");
        ConverterHandle bayer = getConverter(ZO_PT_BAYER_RGB8, ZO_PT_RGB24);
        AreaBufferSizes sizes = {0, 0, 0};
        int64_t type = 0;
        uint32_t flags = 0, code = 0;
        const char* name = NULL;

        CHECK(bayer != NULL);
        CHECK(sizesOf(bayer, 640, 481, 640, 481, 640, 481, ZO_FLAG_BAYER_RGGB, 0, &sizes) == ZO_OK);
        CHECK(sizes.sourceBytes == 640u * 482 && sizes.destinationBytes == 3u * 640 * 482 &&
              sizes.destinationBytesBefore == 0);
        CHECK(sizesOf(NULL, 1, 1, 1, 1, 1, 1, 0, 0, &sizes) == ZO_ERR_BAD_ARGUMENT);
        CHECK(strcmp(((GetClassNameFn)Bind("ZoPixelConverter_GetClassName"))(bayer), "ZoBayerRGB8ToRGB24") == 0);
        CHECK(version() != NULL && strchr(version(), '.') != NULL);
        CHECK(fromName("BayerRG8", &type, &flags) == ZO_OK && type == ZO_PT_BAYER_RGB8 &&
              flags == ZO_FLAG_BAYER_RGGB);
        CHECK(fromName("Mono10p", &type, &flags) == ZO_ERR_NOT_SUPPORTED);
        CHECK(fromPixelType(ZO_PT_GRAY8, 0, &name, &code) == ZO_OK && strcmp(name, "Mono8") == 0 &&
              code == 0x01080001);
    }

    /* Unloading runs the library's teardown; the module is then gone, so the
     * next load runs the start-up again. */
#ifdef _WIN32
    CHECK(FreeLibrary(gLibrary));
    CHECK(GetModuleHandleA("ZoImgLib64.dll") == NULL);
#else
    CHECK(dlclose(gLibrary) == 0);
    {
        void* still = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
        CHECK(still == NULL);
        if (still)
            dlclose(still);
    }
#endif
    gLibrary = NULL;
}

int main(int argc, char** argv)
{
    const char* path = argc > 1 ? argv[1] : "ZoImgLib64.dll";
    int load;

    /* Several loads in one process: every start-up must register everything
     * again and every teardown must leave nothing behind that breaks it. */
    for (load = 0; load < 3 && gFailures == 0; ++load)
        LoadConvertUnload(path);

    if (gFailures) {
        fprintf(stderr, "%d check(s) failed\n", gFailures);
        return 1;
    }
    printf("runtime binding: all checks passed\n");
    return 0;
}
