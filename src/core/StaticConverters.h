// The library's built-in converter objects, constructed in one fixed order at
// load and destroyed in reverse order at unload.
#ifndef ZO_STATIC_CONVERTERS_H
#define ZO_STATIC_CONVERTERS_H

#include <cstdint>
#include <utility>
#include <vector>

#include "ZoPixelConverter.h"

class ZoStaticConverters {
public:
    ZoStaticConverters() = default;
    ~ZoStaticConverters() { Clear(); }
    ZoStaticConverters(const ZoStaticConverters&) = delete;
    ZoStaticConverters& operator=(const ZoStaticConverters&) = delete;

    // Constructs one converter (which registers itself if it is the first for
    // its pair) and keeps it until unload.
    template <class T, class... Args>
    T* Add(Args&&... args)
    {
        T* converter = new T(std::forward<Args>(args)...);
        if (converter)
            mItems.push_back(converter);
        return converter;
    }

    // The first converter of this store for the pair, or null.
    ZoPixelConverter* Find(std::int64_t source, std::int64_t destination) const
    {
        for (ZoPixelConverter* c : mItems)
            if (c->GetSourceType() == source && c->GetDestinationType() == destination)
                return c;
        return nullptr;
    }

    const std::vector<ZoPixelConverter*>& Items() const { return mItems; }

    // Destroys the converters in reverse order of construction.
    void Clear()
    {
        while (!mItems.empty()) {
            delete mItems.back();
            mItems.pop_back();
        }
    }

private:
    std::vector<ZoPixelConverter*> mItems;
};

// Start-up steps, called in this order by the library's load routine.
// Lookup tables that are not constant-initialised are filled first.
void ZoInitGrayscaleTables();
void ZoInitRGBTables();
// Pixel type registrars (one per group of the catalogue).
void ZoRegisterRGB16Types();
void ZoRegisterBayer8Types();
void ZoRegisterBayer10Types();
void ZoRegisterBayer12Types();
void ZoRegisterGrayscale10Types();
void ZoRegisterGrayscale12Types();
void ZoRegisterGrayscale14Types();
void ZoRegisterGrayscale16Types();
void ZoRegisterGrayscale8Types();
void ZoRegisterRGB24Types();
void ZoRegisterRGB32Types();
void ZoRegisterRGB48Types();
void ZoRegisterRGB64Types();
void ZoRegisterYUV10Types();
void ZoRegisterYUV8Types();
// Converter families.
void ZoAddRGBConverters(ZoStaticConverters& store);
void ZoAddGrayscaleConverters(ZoStaticConverters& store);
void ZoAddBayerConverters(ZoStaticConverters& store);
void ZoAddYUVConverters(ZoStaticConverters& store);
void ZoAddPackedConverters(ZoStaticConverters& store);
void ZoAddDualTapConverters(ZoStaticConverters& store);
void ZoAddIdentityConverters(ZoStaticConverters& store);
void ZoAddChainedConverters(ZoStaticConverters& store);

// Destroys the registry (owned types and names) and clears its pointer.
void ZoDestroyRegistry();

#endif
