// Library load and unload. Everything the registry holds at load is put there
// here, in one visible order:
//   1. lookup tables that converters use,
//   2. the RGB16 type (before any converter),
//   3. each converter family next to the pixel types it serves,
//   4. the identity (copy and deinterlace) converters,
//   5. the chained converters, whose stages must already exist.
// A converter registers itself when it is the first constructed for its pair,
// so this order also decides which converter serves a contested pair.
// Unload destroys the converters in reverse order, then the registry.
#include "core/StaticConverters.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace {

class ZoLibrary {
public:
    ZoLibrary()
    {
        ZoInitGrayscaleTables();
        ZoInitRGBTables();

        ZoRegisterRGB16Types();

        ZoRegisterRGB24Types();
        ZoRegisterRGB32Types();
        ZoRegisterRGB48Types();
        ZoRegisterRGB64Types();
        ZoAddRGBConverters(mConverters);

        ZoRegisterGrayscale8Types();
        ZoRegisterGrayscale10Types();
        ZoRegisterGrayscale12Types();
        ZoRegisterGrayscale14Types();
        ZoRegisterGrayscale16Types();
        ZoAddGrayscaleConverters(mConverters);

        ZoRegisterBayer8Types();
        ZoRegisterBayer10Types();
        ZoRegisterBayer12Types();
        ZoAddBayerConverters(mConverters);

        ZoRegisterYUV8Types();
        ZoRegisterYUV10Types();
        ZoAddYUVConverters(mConverters);

        ZoAddPackedConverters(mConverters);
        ZoAddDualTapConverters(mConverters);

        ZoAddIdentityConverters(mConverters);
        ZoAddChainedConverters(mConverters);
    }

    ~ZoLibrary()
    {
        // Converters never unregister and the registry never dereferences them.
        mConverters.Clear();
        ZoDestroyRegistry();
    }

private:
    ZoStaticConverters mConverters;
};

ZoLibrary gLibrary;

}  // namespace

#if defined(_WIN32)
// The process entry routine: thread notifications are not needed. It always
// reports success (the static objects above are built by the runtime before
// it runs and destroyed after process detach).
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_ATTACH)
        ::DisableThreadLibraryCalls(instance);
    return TRUE;
}
#endif
