#include "LibraryInfo.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <typeinfo>

#include "ZoImgLib.h"
#include "ZoImgLibExt.h"


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

std::string TypeClass(std::int64_t id)
{
    // The catalogue's objects are plain ZoPixelType; the class is the one
    // whose default ID has the same colour space and format number.
    if (!ZoPixelTypeFactory::HasPixelType(id))
        return "";
    const std::int64_t base = id & (ZO_PIXEL_COLORSPACE_MASK | ZO_PIXEL_FORMAT_MASK);
    for (const ClassId& c : kClassIds)
        if (c.id == base)
            return c.name;
    return "";
}

bool IsConverterSource(std::int64_t id)
{
    std::int64_t destination = 0;
    return ZoPixelTypeFactory::EnumConverterFrom(0, id, destination);
}

std::vector<std::int64_t> NearestSources(std::int64_t id, std::size_t count)
{
    const std::uint32_t low = static_cast<std::uint32_t>(id);
    const std::uint32_t kind = ZO_PIXEL_COLORSPACE_MASK | ZO_PIXEL_FORMAT_MASK;
    std::vector<std::pair<int, std::int64_t>> ranked;
    for (std::int64_t source : ConverterSources()) {
        const std::uint32_t other = static_cast<std::uint32_t>(source);
        if (source != id && (other & kind) == (low & kind))
            ranked.push_back({__builtin_popcount(other ^ low), source});
    }
    std::sort(ranked.begin(), ranked.end());
    std::vector<std::int64_t> nearest;
    for (std::size_t i = 0; i < ranked.size() && i < count; ++i)
        nearest.push_back(ranked[i].second);
    return nearest;
}

std::string PatternWords(std::uint32_t flags)
{
    static const struct {
        std::uint32_t flag;
        const char* word;
    } kPatterns[] = {{ZO_FLAG_BAYER_GRBG, "bayer-grbg"},
                     {ZO_FLAG_BAYER_GBRG, "bayer-gbrg"},
                     {ZO_FLAG_BAYER_RGGB, "bayer-rggb"},
                     {ZO_FLAG_BAYER_BGGR, "bayer-bggr"}};
    std::string words;
    for (const auto& p : kPatterns)
        if (flags & p.flag)
            words += (words.empty() ? "" : ",") + std::string(p.word);
    return words;
}

bool ParseType(const std::string& text, std::int64_t& id, std::uint32_t& patternFlags, std::string& error)
{
    patternFlags = 0;
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
        for (std::size_t i = 0; i < matches.size(); ++i)
            error += (i == 0 ? " " : i + 1 == matches.size() ? " and " : ", ") + HexId(matches[i]) + " (class " +
                     TypeClass(matches[i]) + ")";
        error += "; give the hex ID instead";
        return false;
    }

    // Class names (any case, optional "Zo") and PFNC names (exact case).
    bool haveClass = false;
    std::int64_t classId = 0;
    std::string className = wanted;
    if (className.compare(0, 2, "zo") == 0)
        className = className.substr(2);
    for (const ClassId& c : kClassIds)
        if (Lower(c.name) == className) {
            classId = c.id;
            haveClass = true;
            break;
        }
    std::int64_t pfncId = 0;
    std::uint32_t pfncFlags = 0;
    const std::uint32_t pfnc = ZoPfnc_FromName(text.c_str(), &pfncId, &pfncFlags);
    if (pfnc == ZO_OK) {
        if (haveClass && classId != pfncId) {
            error = "'" + text + "' is ambiguous: the class " + text + " is " + HexId(classId) + " (" +
                    TypeName(classId) + ") and the PFNC format " + text + " is " + HexId(pfncId) + " (" +
                    TypeName(pfncId) + "); give the hex ID instead";
            return false;
        }
        id = pfncId;
        patternFlags = pfncFlags & (ZO_FLAG_BAYER_GRBG | ZO_FLAG_BAYER_GBRG | ZO_FLAG_BAYER_RGGB | ZO_FLAG_BAYER_BGGR);
        return true;
    }
    if (haveClass) {
        id = classId;
        return true;
    }
    if (pfnc == ZO_ERR_NOT_SUPPORTED) {
        error = "the PFNC format '" + text +
                "' has no pixel type of the same bytes in this library ('zoimg types --pfnc' lists those that do)";
        return false;
    }
    error = "unknown pixel type '" + text +
            "': give a hex ID (0x20010), a name listed by 'zoimg types', a class name (BayerRGB8, RGB24) or a PFNC "
            "name (BayerRG8, Mono12p; 'zoimg types --pfnc')";
    return false;
}

std::string ClassName(const ZoPixelConverter& converter)
{
    const char* name = ZoPixelConverter_GetClassName(&converter);
    return name ? name : "";
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
