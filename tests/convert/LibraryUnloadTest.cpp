// Loading and unloading the shared library several times in one process.
#include <gtest/gtest.h>

#if defined(__linux__)
#include <dlfcn.h>
#include <malloc.h>

#include <cstdint>
#include <string>
#include <vector>

#include "ZoImgLibC.h"

#ifndef ZO_LIBRARY_FILE
#define ZO_LIBRARY_FILE "libZoImgLib64.so"
#endif

namespace {

// Looks a function up with the type of its declaration: a call through a
// pointer of any other type (even one naming look-alike handle structs) is
// undefined, and UndefinedBehaviorSanitizer's function check stops on it.
#define ZO_SYMBOL(library, name) reinterpret_cast<decltype(&name)>(dlsym(library, #name))

// One load: start-up registers everything, a chained conversion runs through
// the flat functions (context records, default filters, chain buffer), and
// the library is unloaded again. Returns the conversion's checksum.
std::uint64_t LoadConvertUnload(const char* path)
{
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(library, nullptr) << dlerror();
    if (!library)
        return 0;
    auto getConverter = ZO_SYMBOL(library, ZoPixelTypeFactory_GetConverter);
    auto filterInit = ZO_SYMBOL(library, ZoRGBFilter_Init);
    auto filterDestroy = ZO_SYMBOL(library, ZoRGBFilter_Destroy);
    auto filterSet = ZO_SYMBOL(library, ZoRGBFilter_SetMultipliers);
    auto convert = ZO_SYMBOL(library, ZoPixelConverter_ConvertAreaFilter);
    std::uint64_t sum = 0;
    EXPECT_TRUE(getConverter && filterInit && filterDestroy && filterSet && convert);
    if (getConverter && filterInit && filterDestroy && filterSet && convert) {
        const int64_t source = ZO_PT_BAYER_RGB10 | ZO_PIXEL_INTERLACED, destination = ZO_PT_RGB24 | ZO_PIXEL_PLANAR;
        ZoRGBFilter* filter = filterInit(16);
        filterSet(filter, 0.9, 1.1, 0.7, 0, 0, 0);
        std::vector<unsigned char> in(32 * 8 * 2 + 64), out(32 * 8 * 3 + 64);
        for (std::size_t i = 0; i < in.size(); ++i)
            in[i] = static_cast<unsigned char>(i * 7);
        EXPECT_EQ(convert(getConverter(source, destination), filter, in.data(), 32, 8, out.data(), 32, 8, 32, 8, 0, 0),
                  0u);
        filterDestroy(filter);
        for (unsigned char b : out)
            sum = sum * 31 + b;
    }
    EXPECT_EQ(dlclose(library), 0) << dlerror();
    return sum;
}

}  // namespace

// Under the sanitizers' runtimes an unloaded library stays mapped and the
// heap is theirs: there, only repeated loading itself is checked.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr bool kUnloadObservable = false;
#else
constexpr bool kUnloadObservable = true;
#endif

TEST(LibraryUnload, LoadAndUnloadSeveralTimes)
{
    const std::string path = ZO_LIBRARY_FILE;
    ASSERT_EQ(dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr) << "loaded before the test";
    const std::uint64_t first = LoadConvertUnload(path.c_str());
    // Further loads give the same results without growing the heap. The
    // loader keeps bookkeeping of its own, in steps, over the first hundred
    // or so loads of a library with thread-local data; after that a hundred
    // loads leave the heap as it was, unless the library leaks (a leaked
    // object, even a small one, would add 3 KB or more).
    std::size_t before = 0;
    for (int i = 0; i < (kUnloadObservable ? 250 : 3); ++i) {
        if (i == 150)
            before = mallinfo2().uordblks;
        EXPECT_EQ(LoadConvertUnload(path.c_str()), first) << "load " << i + 2;
    }
    if (!kUnloadObservable)
        return;
    const std::size_t after = mallinfo2().uordblks;
    EXPECT_LE(after, before + 1024) << "the heap grew by " << after - before << " bytes over 100 loads";
    // Nothing left behind: the library is unloaded, not pinned.
    void* pinned = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    EXPECT_EQ(pinned, nullptr) << "still loaded after the last dlclose";
    if (pinned)
        dlclose(pinned);
}

#endif
