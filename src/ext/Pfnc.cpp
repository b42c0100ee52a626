// GenICam PFNC names and codes of the core's pixel types.
//
// One table, in the order of the PFNC list the library knows: every format
// with its code and, where the core has a type whose every byte means
// exactly the same, that type and the Bayer pattern flag it implies.
// docs/pfnc.md documents each row, and a test holds the two together.
#include <cstdint>
#include <cstring>
#include <initializer_list>

#include "ZoImgLibExt.h"

namespace {

struct PfncEntry {
    const char* name;
    std::uint32_t code;
    std::int64_t typeId;  // ZO_NO_PIXEL_TYPE_ID: no exact counterpart
    std::uint32_t flags;  // the Bayer pattern a Bayer format implies
};

constexpr std::int64_t kNone = ZO_NO_PIXEL_TYPE_ID;
constexpr std::int64_t kGray12Packed = ZO_PT_GRAY12 | ZO_PIXEL_PACKED;        // A in bits 0-11, B in 12-23
constexpr std::int64_t kBayer12Packed = ZO_PT_BAYER_RGB12 | ZO_PIXEL_PACKED;  // as kGray12Packed
constexpr std::int64_t kRGB24Packed = ZO_PT_RGB24 | ZO_PIXEL_PACKED;          // read as 3 bytes R G B
constexpr std::int64_t kRGB24Planar = ZO_PT_RGB24 | ZO_PIXEL_PLANAR;
constexpr std::uint32_t GR = ZO_FLAG_BAYER_GRBG, RG = ZO_FLAG_BAYER_RGGB, GB = ZO_FLAG_BAYER_GBRG,
                        BG = ZO_FLAG_BAYER_BGGR;

const PfncEntry kTable[] = {
    {"Mono8", 0x01080001, ZO_PT_GRAY8, 0},
    {"Mono10", 0x01100003, ZO_PT_GRAY10, 0},
    {"Mono12", 0x01100005, ZO_PT_GRAY12, 0},
    {"Mono14", 0x01100025, ZO_PT_GRAY14, 0},
    {"Mono16", 0x01100007, ZO_PT_GRAY16, 0},
    {"Mono10p", 0x010A0046, kNone, 0},
    {"Mono12p", 0x010C0047, kGray12Packed, 0},
    {"Mono10Packed", 0x010C0004, kNone, 0},
    {"Mono12Packed", 0x010C0006, kNone, 0},
    {"BayerGR8", 0x01080008, ZO_PT_BAYER_RGB8, GR},
    {"BayerRG8", 0x01080009, ZO_PT_BAYER_RGB8, RG},
    {"BayerGB8", 0x0108000A, ZO_PT_BAYER_RGB8, GB},
    {"BayerBG8", 0x0108000B, ZO_PT_BAYER_RGB8, BG},
    {"BayerGR10", 0x0110000C, ZO_PT_BAYER_RGB10, GR},
    {"BayerRG10", 0x0110000D, ZO_PT_BAYER_RGB10, RG},
    {"BayerGB10", 0x0110000E, ZO_PT_BAYER_RGB10, GB},
    {"BayerBG10", 0x0110000F, ZO_PT_BAYER_RGB10, BG},
    {"BayerGR12", 0x01100010, ZO_PT_BAYER_RGB12, GR},
    {"BayerRG12", 0x01100011, ZO_PT_BAYER_RGB12, RG},
    {"BayerGB12", 0x01100012, ZO_PT_BAYER_RGB12, GB},
    {"BayerBG12", 0x01100013, ZO_PT_BAYER_RGB12, BG},
    {"BayerGR16", 0x0110002E, kNone, 0},
    {"BayerRG16", 0x0110002F, kNone, 0},
    {"BayerGB16", 0x01100030, kNone, 0},
    {"BayerBG16", 0x01100031, kNone, 0},
    {"BayerGR10p", 0x010A0056, kNone, 0},
    {"BayerRG10p", 0x010A0058, kNone, 0},
    {"BayerGB10p", 0x010A0054, kNone, 0},
    {"BayerBG10p", 0x010A0052, kNone, 0},
    {"BayerGR12p", 0x010C0057, kBayer12Packed, GR},
    {"BayerRG12p", 0x010C0059, kBayer12Packed, RG},
    {"BayerGB12p", 0x010C0055, kBayer12Packed, GB},
    {"BayerBG12p", 0x010C0053, kBayer12Packed, BG},
    {"BayerGR10Packed", 0x010C0026, kNone, 0},
    {"BayerRG10Packed", 0x010C0027, kNone, 0},
    {"BayerGB10Packed", 0x010C0028, kNone, 0},
    {"BayerBG10Packed", 0x010C0029, kNone, 0},
    {"BayerGR12Packed", 0x010C002A, kNone, 0},
    {"BayerRG12Packed", 0x010C002B, kNone, 0},
    {"BayerGB12Packed", 0x010C002C, kNone, 0},
    {"BayerBG12Packed", 0x010C002D, kNone, 0},
    {"RGB8", 0x02180014, kRGB24Packed, 0},
    {"BGR8", 0x02180015, ZO_PT_BGR24, 0},
    {"RGBa8", 0x02200016, kNone, 0},
    {"BGRa8", 0x02200017, kNone, 0},
    {"RGB8_Planar", 0x02180021, kRGB24Planar, 0},
    {"RGB10", 0x02300018, ZO_PT_RGB48_10BITS, 0},
    {"RGB12", 0x0230001A, ZO_PT_RGB48_12BITS, 0},
    {"RGB16", 0x02300033, kNone, 0},
    {"BGR10", 0x02300019, kNone, 0},
    {"BGR12", 0x0230001B, kNone, 0},
    {"BGR16", 0x0230004B, kNone, 0},
    {"RGBa16", 0x02400064, kNone, 0},
    {"YUV422_8", 0x02100032, kNone, 0},
    {"YUV422_8_UYVY", 0x0210001F, kNone, 0},
    {"YCbCr422_8", 0x0210003B, kNone, 0},
    {"YCbCr601_422_8", 0x0210003E, ZO_PT_YUV8, 0},
    {"YCbCr709_422_8", 0x02100041, kNone, 0},
    {"YCbCr422_8_CbYCrY", 0x02100043, kNone, 0},
    {"YCbCr601_422_8_CbYCrY", 0x02100044, kNone, 0},
    {"YUV8_UYV", 0x02180020, kNone, 0},
    {"YCbCr8", 0x0218005B, kNone, 0},
    {"YCbCr8_CbYCr", 0x0218003A, kNone, 0},
    {"YCbCr601_8_CbYCr", 0x0218003D, kNone, 0},
};
constexpr std::uint32_t kCount = sizeof kTable / sizeof kTable[0];

// Core types whose bytes mean the same as a type of the table: found by
// ZoPfnc_FromPixelType, never given by the name or code look-ups.
const struct {
    std::int64_t typeId, sameAs;
} kAliases[] = {
    {ZO_PT_GRAY16 | ZO_PIXEL_NORMALIZED, ZO_PT_GRAY16},  // all 16 bits significant either way
    {ZO_PT_BAYER_RGGB8, ZO_PT_BAYER_RGB8},               // deprecated aliases
    {ZO_PT_BAYER_RGGB10, ZO_PT_BAYER_RGB10},
    {ZO_PT_BAYER_RGGB12, ZO_PT_BAYER_RGB12},
    {ZO_PT_BAYER_RGGB12 | ZO_PIXEL_PACKED, kBayer12Packed},
    {ZO_PT_RGB8_3, kRGB24Packed},  // read as 3 bytes R G B, like kRGB24Packed
    {ZO_PT_RGB8_3 | ZO_PIXEL_PACKED, kRGB24Packed},
    // As the converters write it: 3 bytes R G B (the converters from RGB24
    // read 4 bytes a pixel, so the name look-ups give kRGB24Packed).
    {ZO_PT_RGB24, kRGB24Packed},
    {ZO_PT_BGR24 | ZO_PIXEL_PACKED, ZO_PT_BGR24},
};

bool IsBayer(std::int64_t typeId)
{
    return typeId == ZO_PT_BAYER_RGB8 || typeId == ZO_PT_BAYER_RGB10 || typeId == ZO_PT_BAYER_RGB12 ||
           typeId == kBayer12Packed;
}

// The pattern an area conversion of a Bayer type uses: the first flag set
// in the order GRBG, GBRG, RGGB, BGGR; with none, the type's default
// (RGGB for the deprecated 8-bit alias, whose converters default to it;
// GRBG for every other type).
std::uint32_t PatternOf(std::int64_t typeId, std::uint32_t flags)
{
    for (std::uint32_t pattern : {GR, GB, RG, BG})
        if (flags & pattern)
            return pattern;
    return typeId == ZO_PT_BAYER_RGGB8 ? RG : GR;
}

uint32_t Answer(const PfncEntry& entry, int64_t* typeId, uint32_t* flags)
{
    if (entry.typeId == kNone)
        return ZO_ERR_NOT_SUPPORTED;
    *typeId = entry.typeId;
    *flags = entry.flags;
    return ZO_OK;
}

}  // namespace

uint32_t ZoPfnc_FromName(const char* name, int64_t* typeId, uint32_t* flags)
{
    if (!name || !typeId || !flags)
        return ZO_ERR_BAD_ARGUMENT;
    for (const PfncEntry& entry : kTable)
        if (std::strcmp(entry.name, name) == 0)
            return Answer(entry, typeId, flags);
    return ZO_ERR_BAD_ARGUMENT;
}

uint32_t ZoPfnc_FromCode(uint32_t code, int64_t* typeId, uint32_t* flags)
{
    if (!typeId || !flags)
        return ZO_ERR_BAD_ARGUMENT;
    for (const PfncEntry& entry : kTable)
        if (entry.code == code)
            return Answer(entry, typeId, flags);
    return ZO_ERR_BAD_ARGUMENT;
}

uint32_t ZoPfnc_FromPixelType(int64_t typeId, uint32_t flags, const char** name, uint32_t* code)
{
    if (!name || !code)
        return ZO_ERR_BAD_ARGUMENT;
    std::int64_t id = typeId;
    for (const auto& alias : kAliases)
        if (alias.typeId == typeId)
            id = alias.sameAs;
    const std::uint32_t pattern = IsBayer(id) ? PatternOf(typeId, flags) : 0;
    for (const PfncEntry& entry : kTable)
        if (entry.typeId != kNone && entry.typeId == id && entry.flags == pattern) {
            *name = entry.name;
            *code = entry.code;
            return ZO_OK;
        }
    return ZO_ERR_NOT_SUPPORTED;
}

bool ZoPfnc_GetEntry(uint32_t index, const char** name, uint32_t* code, int64_t* typeId, uint32_t* flags)
{
    if (index >= kCount || !name || !code || !typeId || !flags)
        return false;
    const PfncEntry& entry = kTable[index];
    *name = entry.name;
    *code = entry.code;
    *typeId = entry.typeId;
    *flags = entry.flags;
    return true;
}
