// The process-wide registry: types, display names and converters.
#include "ZoPixelTypeFactory.h"

#include <map>
#include <utility>

#include "ZoPixelConverter.h"
#include "core/PixelTypeId.h"
#include "core/RegistryInternal.h"
#include "core/StaticConverters.h"

namespace {

struct Registry : public ZoObject {
    std::map<std::pair<std::int64_t, std::int64_t>, const ZoPixelConverter*> converters;
    std::map<std::int64_t, ZoPixelType*> types;  // owned clones
    std::map<std::int64_t, ZoString> names;

    ~Registry()
    {
        for (auto& entry : types)
            delete entry.second;
    }
};

Registry* gRegistry = nullptr;

// The registry, created on first use; null only if it cannot be allocated.
Registry* Create()
{
    if (!gRegistry)
        gRegistry = new Registry();
    return gRegistry;
}

// Lookups that never create: the registry always exists once the library is
// loaded, but a lookup after unload must not resurrect it.
Registry* Existing() { return gRegistry; }

// The "reference whose address is null" that the class interface returns for
// a missing entry. The pointer is read through a volatile so that the
// compiler cannot reason about the null reference it makes.
template <class T>
__attribute__((noinline, no_sanitize("null"))) const T& NullReference()
{
    static const T* volatile kNull = nullptr;
    return *kNull;
}

}  // namespace

void ZoDestroyRegistry()
{
    delete gRegistry;
    gRegistry = nullptr;
}

std::uint32_t ZoPixelTypeFactory::RegisterPixelType(const std::int64_t& id, const ZoPixelType* type,
                                                    const char* name)
{
    Registry* r = Create();
    if (!r)
        return ZO_ERR_NO_REGISTRY;
    if (r->types.count(id))
        return ZO_ERR_ALREADY_REGISTERED;
    r->types[id] = type->Clone();
    ZoString& entry = r->names[id];
    if (name)
        entry = name;
    else
        ZoGeneratePixelTypeName(id, type->GetPixelBitSize(), type->IsBayerPattern(), entry);
    return ZO_OK;
}

bool ZoPixelTypeFactory::HasPixelType(const std::int64_t& id)
{
    Registry* r = Create();
    return r && r->types.count(id) != 0;
}

const ZoPixelType* ZoFindPixelType(std::int64_t id)
{
    Registry* r = Existing();
    if (!r)
        return nullptr;
    auto it = r->types.find(id);
    return it == r->types.end() ? nullptr : it->second;
}

const ZoPixelType& ZoPixelTypeFactory::GetPixelType(const std::int64_t& id)
{
    const ZoPixelType* type = ZoFindPixelType(id);
    return type ? *type : NullReference<ZoPixelType>();
}

ZoPixelType* ZoPixelTypeFactory::CreatePixelType(const std::int64_t& id)
{
    Registry* r = Existing();
    if (!r)
        return nullptr;
    auto it = r->types.find(id);
    return it == r->types.end() ? nullptr : it->second->Clone();
}

namespace {

// Visits the types that have the attributes, in ascending ID order, until
// `visit` returns false.
template <class Visit>
void ForEachMatch(std::uint32_t bitSize, std::int64_t colourSpace, bool normalized, bool packed, bool interlaced,
                  bool planar, std::int64_t tapMode, bool bayer, Visit visit)
{
    Registry* r = Create();
    if (!r)
        return;
    for (const auto& entry : r->types) {
        const ZoPixelType& type = *entry.second;
        if (ZoPixelTypeMatches(type, bitSize, colourSpace, normalized, packed, interlaced, planar, tapMode) &&
            type.IsBayerPattern() == bayer && !visit(type))
            return;
    }
}

}  // namespace

std::uint32_t ZoPixelTypeFactory::CountPixelTypes(std::uint32_t bitSize, std::int64_t colourSpace,
                                                  bool normalized, bool packed, bool interlaced, bool planar,
                                                  std::int64_t tapMode, bool bayer)
{
    std::uint32_t count = 0;
    ForEachMatch(bitSize, colourSpace, normalized, packed, interlaced, planar, tapMode, bayer,
                 [&](const ZoPixelType&) {
                     ++count;
                     return true;
                 });
    return count;
}

ZoPixelType* ZoPixelTypeFactory::CreatePixelType(std::uint32_t bitSize, std::int64_t colourSpace,
                                                 bool normalized, bool packed, bool interlaced, bool planar,
                                                 std::int64_t tapMode, bool bayer, std::uint32_t index)
{
    ZoPixelType* result = nullptr;
    std::uint32_t number = 0;
    ForEachMatch(bitSize, colourSpace, normalized, packed, interlaced, planar, tapMode, bayer,
                 [&](const ZoPixelType& type) {
                     if (number++ != index)
                         return true;
                     result = type.Clone();
                     return false;
                 });
    return result;
}

const char* ZoPixelTypeFactory::GetPixelTypeName(const std::int64_t& id)
{
    Registry* r = Create();
    if (!r)
        return "Unregistered pixel type";
    auto it = r->names.find(id);
    if (it != r->names.end())
        return it->second.c_str_ascii();
    // Deliberately recorded: the returned text lives as long as the entry.
    ZoString& entry = r->names[id];
    entry = "Unregistered pixel type";
    return entry.c_str_ascii();
}

std::uint32_t ZoPixelTypeFactory::RegisterPixelConverter(const std::int64_t& source,
                                                         const std::int64_t& destination,
                                                         const ZoPixelConverter* converter)
{
    Registry* r = Create();
    if (!r)
        return ZO_ERR_NO_REGISTRY;
    return r->converters.emplace(std::make_pair(source, destination), converter).second
               ? ZO_OK
               : ZO_ERR_ALREADY_REGISTERED;
}

std::uint32_t ZoPixelTypeFactory::RegisterPixelConverter(const ZoPixelConverter& converter)
{
    return RegisterPixelConverter(converter.GetSourceType(), converter.GetDestinationType(), &converter);
}

std::uint32_t ZoPixelTypeFactory::ReplacePixelConverter(const ZoPixelConverter& converter,
                                                        const ZoPixelConverter** previous)
{
    const auto key = std::make_pair(converter.GetSourceType(), converter.GetDestinationType());
    Registry* r = Create();
    if (!r)
        return ZO_ERR_NO_REGISTRY;
    const ZoPixelConverter*& slot = r->converters[key];  // null if new
    if (previous)
        *previous = slot;
    slot = &converter;
    return ZO_OK;
}

std::uint32_t ZoPixelTypeFactory::ClonePixelConverters(const std::int64_t& from, const std::int64_t& to)
{
    std::uint32_t result = ZO_ERR_NOTHING_CLONED;
    Registry* r = Existing();
    if (!r)
        return result;
    const std::int64_t source = from, target = to;  // the arguments may alias map keys
    for (auto it = r->converters.lower_bound({source, INT64_MIN});
         it != r->converters.end() && it->first.first == source; ++it) {
        const std::int64_t destination = it->first.second;
        if (!HasConverter(target, destination)) {
            RegisterPixelConverter(target, destination, it->second);
            result = ZO_OK;
        }
    }
    return result;
}

bool ZoPixelTypeFactory::HasConverter(const std::int64_t& source, const std::int64_t& destination)
{
    Registry* r = Create();
    return r && r->converters.count({source, destination}) != 0;
}

const ZoPixelConverter* ZoFindConverter(std::int64_t source, std::int64_t destination)
{
    Registry* r = Existing();
    if (!r)
        return nullptr;
    auto it = r->converters.find({source, destination});
    return it == r->converters.end() ? nullptr : it->second;
}

const ZoPixelConverter& ZoPixelTypeFactory::GetConverter(const std::int64_t& source,
                                                         const std::int64_t& destination)
{
    const ZoPixelConverter* converter = ZoFindConverter(source, destination);
    return converter ? *converter : NullReference<ZoPixelConverter>();
}

bool ZoPixelTypeFactory::EnumConverterFrom(std::uint32_t index, const std::int64_t& source,
                                           std::int64_t& destination)
{
    Registry* r = Existing();
    if (!r)
        return false;
    std::uint32_t number = 0;
    for (auto it = r->converters.lower_bound({source, INT64_MIN});
         it != r->converters.end() && it->first.first == source; ++it)
        if (number++ == index) {
            destination = it->first.second;
            return true;
        }
    return false;
}

bool ZoPixelTypeFactory::EnumConverterTo(std::uint32_t index, const std::int64_t& destination,
                                         std::int64_t& source)
{
    Registry* r = Existing();
    if (!r)
        return false;
    std::uint32_t number = 0;
    for (const auto& entry : r->converters)
        if (entry.first.second == destination && number++ == index) {
            source = entry.first.first;
            return true;
        }
    return false;
}
