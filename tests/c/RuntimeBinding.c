/* Binds the flat interface at run time, the way C#, Python and other foreign
 * callers do: LoadLibrary on ZoImgLib64.dll, then GetProcAddress by plain
 * name (dlopen and dlsym on the shared library elsewhere). The program does
 * not link the library and does not include the flat headers; it declares
 * the signatures itself. (That every flat function is exported under its
 * plain name is the export check's business: .ci/check-exports.sh.)
 *
 * Per load: 64-bit arguments and results across the boundary; one conversion
 * through the core functions (a window of an interlaced gray frame into
 * padded lines, both field orders: every argument of ConvertArea matters),
 * every byte of the destination checked, padding and guard included; then
 * the library is unloaded, three times over. (The extension functions are
 * CApiTest.c's; repeated loads in depth are LibraryUnloadTest's.)
 *
 * Usage: zoimg_runtime_binding_test [path of the library]   (exit code 0: pass) */
#ifdef _WIN32
#include <windows.h>
typedef HMODULE Library;
#define OpenLibrary(path) LoadLibraryA(path)
#else
#include <dlfcn.h>
typedef void* Library;
#define OpenLibrary(path) dlopen(path, RTLD_NOW | RTLD_LOCAL)
#endif

#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "ZoPixelTypeIDs.h"

typedef const void* ConverterHandle;
typedef ConverterHandle (*GetConverterFn)(int64_t source, int64_t destination);
typedef uint32_t (*ConvertAreaFn)(ConverterHandle converter, const unsigned char* source, uint32_t sourceWidth,
                                  uint32_t sourceHeight, unsigned char* destination, uint32_t destinationWidth,
                                  uint32_t destinationHeight, uint32_t width, uint32_t height, uint32_t flags,
                                  uint32_t destinationPadding);
typedef const char* (*GetNameFn)(int64_t id);
typedef int64_t (*GetTypeIdFn)(const void* type);

static int gFailures = 0;

#define CHECK(condition) \
    do { if (!(condition)) { fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition); ++gFailures; } } while (0)

/* GetProcAddress's (or dlsym's) pointer, converted to the generic function
 * pointer type so that the cast to the real signature is well defined. */
typedef void (*AnyFn)(void);
static AnyFn Bind(Library library, const char* name)
{
    AnyFn fn = NULL;
#ifdef _WIN32
    FARPROC p = GetProcAddress(library, name);
    fn = (AnyFn)p;
#else
    void* p = dlsym(library, name);
    memcpy(&fn, &p, sizeof fn);
#endif
    if (!p) {
        fprintf(stderr, "not exported under its plain name: %s\n", name);
        ++gFailures;
    }
    return fn;
}

/* The interlaced 8-bit gray deinterlacer: the source holds two fields one
 * after the other; the first goes to the even lines, the second to the odd
 * ones, swapped by ZO_FLAG_INVERT_DEINTERLACER. A 7-pixel window of 9-pixel
 * lines goes into lines of 9 pixels and 3 padding bytes: only the window's
 * bytes are written (a guard line after the frame stays poisoned too). */
static void Deinterlace(GetConverterFn getConverter, ConvertAreaFn convertArea)
{
    enum { W = 9, H = 6, Width = 7, Padding = 3, Line = W + Padding, kPoison = 0xA5 };
    unsigned char source[W * H], actual[Line * (H + 1)], expected[Line * (H + 1)];
    const ConverterHandle deinterlace = getConverter(ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, ZO_PT_GRAY8);
    uint32_t invert, i, x, y;

    CHECK(deinterlace != NULL);
    for (i = 0; i < sizeof source; ++i)  /* bytes that differ from line to line and from the poison */
        source[i] = (unsigned char)(i * 7u + 3u) == kPoison ? 0 : (unsigned char)(i * 7u + 3u);
    for (invert = 0; invert < 2 && deinterlace; ++invert) {
        memset(actual, kPoison, sizeof actual);
        memset(expected, kPoison, sizeof expected);
        for (y = 0; y < H; ++y)
            for (x = 0; x < Width; ++x)
                expected[y * Line + x] = source[(((y % 2) ^ invert) * (H / 2) + y / 2) * W + x];
        CHECK(convertArea(deinterlace, source, W, H, actual, W, H, Width, H, invert ? ZO_FLAG_INVERT_DEINTERLACER : 0,
                          Padding) == ZO_OK);
        CHECK(memcmp(actual, expected, sizeof actual) == 0);
    }
}

/* One load of the library: bind, convert, check, unload. */
static void LoadConvertUnload(const char* path)
{
    Library library = OpenLibrary(path);
    if (!library) {
        fprintf(stderr, "cannot load %s\n", path);
        ++gFailures;
        return;
    }
    GetConverterFn getConverter = (GetConverterFn)Bind(library, "ZoPixelTypeFactory_GetConverter");
    ConvertAreaFn convertArea = (ConvertAreaFn)Bind(library, "ZoPixelConverter_ConvertArea");
    GetNameFn typeName = (GetNameFn)Bind(library, "ZoPixelTypeFactory_GetPixelTypeName");
    GetTypeIdFn typeId = (GetTypeIdFn)Bind(library, "ZoPixelType_GetTypeID");
    if (gFailures)
        return;
    /* 64-bit arguments and results cross the boundary intact. */
    CHECK(typeId(NULL) == ZO_NO_PIXEL_TYPE_ID && strcmp(typeName(0x7777), "Unregistered pixel type") == 0);
    CHECK(getConverter(ZO_PT_GRAY8, 0x7777) == NULL &&
          convertArea(NULL, NULL, 1, 1, NULL, 1, 1, 1, 1, 0, 0) == ZO_ERR_BAD_ARGUMENT);
    Deinterlace(getConverter, convertArea);

    /* Unloading runs the library's teardown; the module is then gone, so the
     * next load runs the start-up again. */
#ifdef _WIN32
    CHECK(FreeLibrary(library));
    CHECK(GetModuleHandleA("ZoImgLib64.dll") == NULL);
#else
    CHECK(dlclose(library) == 0);
    library = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    CHECK(library == NULL);
    if (library)
        dlclose(library);
#endif
}

int main(int argc, char** argv)
{
    const char* path = argc > 1 ? argv[1] : "ZoImgLib64.dll";
    /* Several loads in one process: every start-up must register everything
     * again and every teardown must leave nothing behind that breaks it. */
    for (int load = 0; load < 3 && gFailures == 0; ++load)
        LoadConvertUnload(path);
    if (gFailures) {
        fprintf(stderr, "%d check(s) failed\n", gFailures);
        return 1;
    }
    printf("runtime binding: all checks passed\n");
    return 0;
}
