// The registry of pixel types, their display names and converters.
#ifndef ZO_PIXEL_TYPE_FACTORY_H
#define ZO_PIXEL_TYPE_FACTORY_H

#include <cstdint>

#include "ZoPixelType.h"

class ZoPixelConverter;

// Static interface to the one process-wide registry. Registration happens at
// library load; the registry has no lock, so lookups from several threads
// are safe only while nobody registers, replaces or clones converters, or
// asks the name of an unregistered ID (which records it).
class ZO_API ZoPixelTypeFactory {
public:
    // 0, 18 if the ID is taken (nothing changes), 24 if the registry could
    // not be allocated. A null name gives the generated display name.
    static std::uint32_t RegisterPixelType(const std::int64_t& id, const ZoPixelType* type, const char* name);
    static bool HasPixelType(const std::int64_t& id);
    // The registry's own object; a reference whose address is null if absent.
    // A C++ program may not test a reference for null: compilers assume its
    // address is never null and may fold `&GetPixelType(id) == nullptr` to
    // false. Ask HasPixelType first.
    static const ZoPixelType& GetPixelType(const std::int64_t& id);
    // A clone owned by the caller, or null.
    static ZoPixelType* CreatePixelType(const std::int64_t& id);
    // Search by attributes; colourSpace is the masked value (0x10000, 0x20000
    // or 0x40000), tapMode the masked tap value. Matches come in ascending ID
    // order, deprecated aliases included.
    static std::uint32_t CountPixelTypes(std::uint32_t bitSize, std::int64_t colourSpace, bool normalized,
                                         bool packed, bool interlaced, bool planar, std::int64_t tapMode,
                                         bool bayer);
    static ZoPixelType* CreatePixelType(std::uint32_t bitSize, std::int64_t colourSpace, bool normalized,
                                        bool packed, bool interlaced, bool planar, std::int64_t tapMode,
                                        bool bayer, std::uint32_t index);
    // "Unregistered pixel type" for an unknown ID (recorded under that ID).
    // Every distinct unknown ID asked about stays recorded until the library
    // is unloaded, about 128 bytes each: a million different unknown IDs grow
    // the process by over 100 MB. Do not ask names of untrusted or generated
    // IDs in a loop; check them with HasPixelType first.
    static const char* GetPixelTypeName(const std::int64_t& id);

    static std::uint32_t RegisterPixelConverter(const std::int64_t& source, const std::int64_t& destination,
                                                const ZoPixelConverter* converter);
    static std::uint32_t RegisterPixelConverter(const ZoPixelConverter& converter);
    // Makes `converter` the one registered for its pair; the previous one (or
    // null) is stored in *previous when previous is not null. Never destroys.
    static std::uint32_t ReplacePixelConverter(const ZoPixelConverter& converter,
                                               const ZoPixelConverter** previous);
    // Registers every converter out of `from` under `to` where `to` has none
    // for that destination; 25 if nothing was added.
    static std::uint32_t ClonePixelConverters(const std::int64_t& from, const std::int64_t& to);
    static bool HasConverter(const std::int64_t& source, const std::int64_t& destination);
    // A reference whose address is null for an unregistered pair. Test the
    // pair with HasConverter first, or use the flat
    // ZoPixelTypeFactory_GetConverter, which answers a plain null pointer:
    // compilers assume that no reference has a null address, so a program
    // that compares `&GetConverter(s, d)` with null may never see the null,
    // and calling through it crashes.
    static const ZoPixelConverter& GetConverter(const std::int64_t& source, const std::int64_t& destination);
    // index-th destination reachable from source, in ascending order.
    static bool EnumConverterFrom(std::uint32_t index, const std::int64_t& source, std::int64_t& destination);
    // index-th source that converts to destination, in ascending order.
    static bool EnumConverterTo(std::uint32_t index, const std::int64_t& destination, std::int64_t& source);
};

#endif
