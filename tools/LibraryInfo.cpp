#include "LibraryInfo.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <typeinfo>

#include "ZoImgLib.h"

#if defined(__has_include)
#if __has_include(<cxxabi.h>)
#include <cxxabi.h>
#define ZOIMG_HAVE_CXXABI 1
#endif
#endif

namespace zoimg {

namespace {

// Every ID of the space the catalogue uses, ascending as signed 64-bit keys.
std::vector<std::int64_t> CandidateIds()
{
    static const std::uint32_t kColourSpaces[] = {ZO_PIXEL_COLORSPACE_GRAY, ZO_PIXEL_COLORSPACE_RGB,
                                                  ZO_PIXEL_COLORSPACE_YUV};
    static const std::uint32_t kTaps[] = {ZO_PIXEL_TAP_SINGLE,     ZO_PIXEL_TAP_DUAL_LR,
                                          ZO_PIXEL_TAP_DUAL_LR_INV, ZO_PIXEL_TAP_DUAL_LINV_R,
                                          ZO_PIXEL_TAP_DUAL_LINV_RINV, ZO_PIXEL_TAP_DUAL_LINES};
    const std::uint32_t flagBits[] = {ZO_PIXEL_NORMALIZED, ZO_PIXEL_INTERLACED, ZO_PIXEL_PACKED, ZO_PIXEL_PLANAR};
    std::vector<std::int64_t> ids;
    for (std::uint32_t space : kColourSpaces)
        for (std::uint32_t tap : kTaps)
            for (std::uint32_t combination = 0; combination < 16; ++combination) {
                std::uint32_t flags = 0;
                for (int bit = 0; bit < 4; ++bit)
                    if (combination & (1u << bit))
                        flags |= flagBits[bit];
                for (std::uint32_t format = 1; format <= 0xFF; ++format)
                    ids.push_back(static_cast<std::int64_t>(space | tap | flags | format));
            }
    std::sort(ids.begin(), ids.end());
    return ids;
}

std::string Lower(std::string s)
{
    for (char& c : s)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

bool ParseHex(const std::string& text, std::int64_t& id)
{
    std::string digits = text;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X'))
        digits = digits.substr(2);
    if (digits.empty() || digits.size() > 16)
        return false;
    for (char c : digits)
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            return false;
    id = static_cast<std::int64_t>(std::strtoull(digits.c_str(), nullptr, 16));
    return true;
}

// Class names of the pixel types and the IDs their default constructors use.
struct ClassId {
    const char* name;
    std::int64_t id;
};
const ClassId kClassIds[] = {
    {"Grayscale8", ZO_PT_GRAY8},         {"Grayscale10", ZO_PT_GRAY10},
    {"Grayscale12", ZO_PT_GRAY12},       {"Grayscale14", ZO_PT_GRAY14},
    {"Grayscale16", ZO_PT_GRAY16},       {"Gray8", ZO_PT_GRAY8},
    {"Gray10", ZO_PT_GRAY10},            {"Gray12", ZO_PT_GRAY12},
    {"Gray14", ZO_PT_GRAY14},            {"Gray16", ZO_PT_GRAY16},
    {"RGB16", ZO_PT_RGB16},              {"RGB24", ZO_PT_RGB24},
    {"RGB32", ZO_PT_RGB32},              {"RGB48", ZO_PT_RGB48},
    {"RGB64", ZO_PT_RGB64},              {"BGR24", ZO_PT_BGR24},
    {"BGR32", ZO_PT_BGR32},              {"RGB48_10Bits", ZO_PT_RGB48_10BITS},
    {"RGB64_10Bits", ZO_PT_RGB64_10BITS}, {"RGB8_3", ZO_PT_RGB8_3},
    {"RGB8_4", ZO_PT_RGB8_4},            {"RGB48_12Bits", ZO_PT_RGB48_12BITS},
    {"RGB64_12Bits", ZO_PT_RGB64_12BITS}, {"BayerRGB8", ZO_PT_BAYER_RGB8},
    {"BayerRGB10", ZO_PT_BAYER_RGB10},   {"BayerRGB12", ZO_PT_BAYER_RGB12},
    {"BayerRGGB8", ZO_PT_BAYER_RGGB8},   {"BayerRGGB10", ZO_PT_BAYER_RGGB10},
    {"BayerRGGB12", ZO_PT_BAYER_RGGB12}, {"YUV8", ZO_PT_YUV8},
    {"YUV10", ZO_PT_YUV10},              {"YUV8_444", ZO_PT_YUV8_444},
    {"YCrCb", ZO_PT_YCRCB},
};

}  // namespace

std::vector<std::int64_t> RegisteredTypes()
{
    std::vector<std::int64_t> ids;
    for (std::int64_t id : CandidateIds())
        if (ZoPixelTypeFactory::HasPixelType(id))
            ids.push_back(id);
    return ids;
}

std::vector<std::int64_t> ConverterSources()
{
    std::vector<std::int64_t> ids;
    for (std::int64_t id : CandidateIds()) {
        std::int64_t destination = 0;
        if (ZoPixelTypeFactory::EnumConverterFrom(0, id, destination))
            ids.push_back(id);
    }
    return ids;
}

std::vector<std::int64_t> ConverterDestinations(std::int64_t source)
{
    std::vector<std::int64_t> destinations;
    std::int64_t destination = 0;
    for (std::uint32_t i = 0; ZoPixelTypeFactory::EnumConverterFrom(i, source, destination); ++i)
        destinations.push_back(destination);
    return destinations;
}

std::string HexId(std::int64_t id)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%08llX", static_cast<unsigned long long>(id));
    return text;
}

std::string TypeName(std::int64_t id)
{
    // Asking the name of an unregistered ID would record it in the registry.
    if (!ZoPixelTypeFactory::HasPixelType(id))
        return "(not a registered type)";
    return ZoPixelTypeFactory::GetPixelTypeName(id);
}

std::string FlagWords(std::int64_t id)
{
    const std::uint32_t low = static_cast<std::uint32_t>(id);
    std::string words;
    auto add = [&](const char* word) {
        if (!words.empty())
            words += ',';
        words += word;
    };
    if (low & ZO_PIXEL_NORMALIZED)
        add("Normalized");
    if (low & ZO_PIXEL_INTERLACED)
        add("Interlaced");
    if (low & ZO_PIXEL_PACKED)
        add("Packed");
    if (low & ZO_PIXEL_PLANAR)
        add("Planar");
    switch (low & ZO_PIXEL_TAP_MASK) {
    case ZO_PIXEL_TAP_SINGLE: break;
    case ZO_PIXEL_TAP_DUAL_LR: add("Dual L+R"); break;
    case ZO_PIXEL_TAP_DUAL_LR_INV: add("Dual L+R-inv"); break;
    case ZO_PIXEL_TAP_DUAL_LINV_R: add("Dual L-inv+R"); break;
    case ZO_PIXEL_TAP_DUAL_LINV_RINV: add("Dual L-inv+R-inv"); break;
    case ZO_PIXEL_TAP_DUAL_LINES: add("Dual Lines"); break;
    default: add("Taps?"); break;
    }
    return words.empty() ? "-" : words;
}

bool ParseType(const std::string& text, std::int64_t& id, std::string& error)
{
    if (ParseHex(text, id))
        return true;
    const std::string wanted = Lower(text);
    std::vector<std::int64_t> matches;
    for (std::int64_t candidate : RegisteredTypes())
        if (Lower(ZoPixelTypeFactory::GetPixelTypeName(candidate)) == wanted)
            matches.push_back(candidate);
    if (matches.size() == 1) {
        id = matches[0];
        return true;
    }
    if (matches.size() > 1) {
        error = "type name '" + text + "' is ambiguous, it names";
        for (std::int64_t m : matches)
            error += " " + HexId(m);
        error += "; give the hex ID instead";
        return false;
    }
    std::string className = wanted;
    if (className.compare(0, 2, "zo") == 0)
        className = className.substr(2);
    for (const ClassId& c : kClassIds)
        if (Lower(c.name) == className) {
            id = c.id;
            return true;
        }
    error = "unknown pixel type '" + text +
            "': give a hex ID (0x20010), a name listed by 'zoimg types' or a class name (BayerRGB8, RGB24)";
    return false;
}

std::string ClassName(const ZoPixelConverter& converter)
{
    const char* mangled = typeid(converter).name();
#if defined(ZOIMG_HAVE_CXXABI)
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

std::string DescribeConverter(const ZoPixelConverter& converter)
{
    const ZoComplexConverter* chain = dynamic_cast<const ZoComplexConverter*>(&converter);
    if (!chain || !chain->GetFirst() || !chain->GetSecond())
        return ClassName(converter);
    auto stage = [](const ZoPixelConverter& c) {
        return ClassName(c) + " (" + HexId(c.GetSourceType()) + " -> " + HexId(c.GetDestinationType()) + ")";
    };
    return stage(*chain->GetFirst()) + " + " + stage(*chain->GetSecond());
}

}  // namespace zoimg
