// Converter class names and chain stages through the flat interface.
#include <cstdlib>
#include <mutex>
#include <string>
#include <typeindex>
#include <unordered_map>

#include "ZoGenericConverters.h"
#include "ZoImgLibExt.h"
#include "ZoPixelConverter.h"

#if defined(__has_include)
#if __has_include(<cxxabi.h>)
#include <cxxabi.h>
#define ZO_HAVE_CXXABI 1
#endif
#endif

namespace {

std::string Demangle(const char* mangled)
{
#if defined(ZO_HAVE_CXXABI)
    int status = 0;
    char* demangled = abi::__cxa_demangle(mangled, nullptr, nullptr, &status);
    if (status == 0 && demangled) {
        std::string name = demangled;
        std::free(demangled);
        return name;
    }
    std::free(demangled);
#endif
    return mangled;
}

}  // namespace

const char* ZoPixelConverter_GetClassName(const ZoPixelConverter* converter)
{
    if (!converter)
        return nullptr;
    // One string per class, made once: the map's nodes never move, so the
    // pointers handed out stay valid.
    static std::mutex lock;
    static std::unordered_map<std::type_index, std::string> names;
    const std::type_index type(typeid(*converter));
    try {
        std::lock_guard<std::mutex> hold(lock);
        auto found = names.find(type);
        if (found == names.end())
            found = names.emplace(type, Demangle(type.name())).first;
        return found->second.c_str();
    } catch (...) {
        return nullptr;
    }
}

const ZoPixelConverter* ZoPixelConverter_GetChainStage(const ZoPixelConverter* converter, std::uint32_t index)
{
    const auto* chain = dynamic_cast<const ZoComplexConverter*>(converter);
    if (!chain || index > 1)
        return nullptr;
    return index == 0 ? chain->GetFirst() : chain->GetSecond();
}
