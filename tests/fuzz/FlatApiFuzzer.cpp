// Fuzzes every flat function that converts no pixels, of the core and of the
// extension interface, with hostile arguments: null handles and out
// pointers, huge indices, random IDs, attribute sets, names and codes, huge
// sizes, out-of-range and non-finite filter values. The conversion functions are
// called with null converters only (buffers are the conversion fuzzer's
// business). Each input is a sequence of operations on a few live handles,
// all released at the end, so LeakSanitizer sees what the library keeps.
//
// What the headers ask of callers is respected: 16-bit filter entries are
// read below max(entry count, 65536); filters of 2^17 to 2^31 entries (up
// to gigabytes of tables, filled entry by entry) are not created, to keep
// runs fast and small; names of unknown IDs are asked
// from a bounded pool, since the library records every unknown ID it is asked
// to name.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"
#include "fuzz/FuzzPairs.h"

namespace {

void Check(bool ok)
{
    if (!ok)
        std::abort();
}

// Functions of the extension answer one of three codes.
void CheckKnownResult(std::uint32_t r) { Check(r == ZO_OK || r == ZO_ERR_BAD_ARGUMENT || r == ZO_ERR_NOT_SUPPORTED); }

std::int64_t AnyId(FuzzedDataProvider& in)
{
    switch (in.ConsumeIntegralInRange(0, 3)) {
    case 0: {
        const zofuzz::Pair& p = zofuzz::AnyPair(in);
        return in.ConsumeBool() ? p.source : p.destination;
    }
    case 1:
        return in.PickValueInArray<std::int64_t>({0, -1, 1, std::numeric_limits<std::int64_t>::min(),
                                                  std::numeric_limits<std::int64_t>::max(), 0xFFFFFFFFLL,
                                                  0x100000000LL, ZO_PIXEL_TAP_MASK, 0x7FFFFFFF});
    case 2:  // a registered ID with random attribute bits flipped
        return zofuzz::AnyPair(in).source ^ (std::int64_t(in.ConsumeIntegral<std::uint32_t>()) & 0x1FF00000);
    default:
        return in.ConsumeIntegral<std::int64_t>();
    }
}

// IDs whose names may be asked: registered ones, or one of 4096 others.
std::int64_t NameableId(FuzzedDataProvider& in)
{
    const std::int64_t id = AnyId(in);
    return ZoPixelTypeFactory_HasPixelType(id) ? id : 0x7A5A000000000000LL | (id & 0xFFF);
}

std::uint32_t AnyCount(FuzzedDataProvider& in)
{
    return in.ConsumeBool() ? in.PickValueInArray<std::uint32_t>({0, 1, 2, 3, 255, 256, 65535, 65536, 0x7FFFFFFF,
                                                                  0x80000000, 0xFFFFFFFF})
                            : in.ConsumeIntegral<std::uint32_t>();
}

double AnyMultiplier(FuzzedDataProvider& in)
{
    const double extremes[] = {0.0, -0.0, 1.0, -1.0, 1e300, -1e300, std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::denorm_min()};
    return in.ConsumeBool() ? in.PickValueInArray(extremes) : in.ConsumeFloatingPoint<double>();
}

// 0 to 16 bits, or a size whose tables cannot exist (no filter is made).
std::uint32_t FilterBitSize(FuzzedDataProvider& in)
{
    return in.ConsumeIntegralInRange(0, 3) == 0
               ? in.PickValueInArray<std::uint32_t>({32, 33, 40, 63, 64, 1024, 0x7FFFFFFF, 0xFFFFFFFF})
               : in.ConsumeIntegralInRange<std::uint32_t>(0, 16);
}

constexpr int kSlots = 4;

struct Handles {
    ZoPixelType* types[kSlots] = {};
    ZoRGBFilter* filters[kSlots] = {};
    ~Handles()
    {
        for (int i = 0; i < kSlots; ++i)
            ZoPixelType_Destroy(types[i]), ZoRGBFilter_Destroy(filters[i]);
    }
};

void TypeOperation(FuzzedDataProvider& in, Handles& h)
{
    ZoPixelType*& slot = h.types[in.ConsumeIntegralInRange(0, kSlots - 1)];
    ZoPixelType* other = in.ConsumeBool() ? h.types[in.ConsumeIntegralInRange(0, kSlots - 1)] : nullptr;
    const auto replace = [&slot](ZoPixelType* type) { ZoPixelType_Destroy(slot), slot = type; };
    switch (in.ConsumeIntegralInRange(0, 7)) {
    case 0: {
        const std::int64_t id = AnyId(in);
        replace(ZoPixelTypeFactory_CreatePixelType(id));
        Check((slot != nullptr) == ZoPixelTypeFactory_HasPixelType(id));
        break;
    }
    case 1:
        replace(ZoPixelTypeFactory_CreatePixelType2(
            AnyCount(in) % 2 ? in.ConsumeIntegralInRange<std::uint32_t>(0, 72) : AnyCount(in),
            in.ConsumeBool() ? std::int64_t(0x10000) << in.ConsumeIntegralInRange(0, 2) : AnyId(in),
            in.ConsumeIntegral<std::int32_t>(), in.ConsumeIntegral<std::int32_t>(), in.ConsumeIntegral<std::int32_t>(),
            in.ConsumeIntegral<std::int32_t>(), in.ConsumeBool() ? 0 : AnyId(in) & ZO_PIXEL_TAP_MASK,
            in.ConsumeIntegral<std::int32_t>(), AnyCount(in) % 8));
        break;
    case 2: {
        ZoPixelType* copy = ZoPixelType_Clone(other);
        Check(copy ? other && ZoPixelType_GetTypeID(copy) == ZoPixelType_GetTypeID(other) : !other);
        replace(copy);
        break;
    }
    case 3:
        replace(nullptr);
        break;
    case 4:
        Check(slot || (ZoPixelType_GetTypeID(slot) == ZO_NO_PIXEL_TYPE_ID && !ZoPixelType_IsBayerPattern(slot) &&
                       ZoPixelType_GetPixelBitSize(slot) == 0 && ZoPixelType_GetPixelByteSize(slot) == 0));
        break;
    case 5:
        ZoPixelType_GetBufferSizeFor(slot, AnyCount(in), AnyCount(in));
        break;
    case 6: {
        const bool to = ZoPixelType_HasConverterTo(slot, other);
        Check(to == (ZoPixelType_GetConverterTo(slot, other) != nullptr) &&
              to == ZoPixelType_HasConverterFrom(other, slot) &&
              to == (ZoPixelType_GetConverterFrom(other, slot) != nullptr));
        break;
    }
    default: {  // registered IDs (a slot's among them) or a bounded pool of others; asks HasPixelType
        const char* name = ZoPixelTypeFactory_GetPixelTypeName(NameableId(in));
        Check(name != nullptr && std::strlen(name) < 4096);
        break;
    }
    }
}

void RegistryOperation(FuzzedDataProvider& in)
{
    const std::int64_t source = AnyId(in), destination = AnyId(in);
    const int operation = in.ConsumeIntegralInRange(0, 3);
    switch (operation) {
    case 0: {
        const ZoPixelConverter* c = ZoPixelTypeFactory_GetConverter(source, destination);
        Check((c != nullptr) == ZoPixelTypeFactory_HasConverter(source, destination));
        if (c) {
            const std::uint32_t n = AnyCount(in);
            ZoPixelConverter_GetSourceByteSize(c, n);  // 32-bit products, wrapping
            ZoPixelConverter_GetDestinationByteSize(c, n);
            ZoPixelConverter_GetSourceType(c);
        }
        break;
    }
    case 1:    // the destinations of a source
    case 2: {  // the sources of a destination
        const bool from = operation == 1;
        const auto enumerate = from ? ZoPixelTypeFactory_EnumConverterFrom : ZoPixelTypeFactory_EnumConverterTo;
        std::int64_t out = 0x5A5A;
        const std::uint32_t index = AnyCount(in);
        if (enumerate(index, from ? source : destination, &out))
            Check(from ? ZoPixelTypeFactory_HasConverter(source, out) : ZoPixelTypeFactory_HasConverter(out, destination));
        Check(!enumerate(index, from ? source : destination, nullptr));
        break;
    }
    default: {
        // Null converters everywhere, buffers included: nothing is touched.
        unsigned char byte = 0;
        const std::uint32_t n = AnyCount(in);
        Check(ZoPixelConverter_GetSourceType(nullptr) == 0 && ZoPixelConverter_GetDestinationType(nullptr) == 0 &&
              ZoPixelConverter_GetSourceByteSize(nullptr, n) == 0 &&
              ZoPixelConverter_GetDestinationByteSize(nullptr, n) == 0);
        const std::uint32_t results[] = {
            ZoPixelConverter_ConvertPixel(nullptr, &byte, &byte),
            ZoPixelConverter_ConvertLine(nullptr, nullptr, nullptr, n),
            ZoPixelConverter_ConvertArea(nullptr, nullptr, n, n, nullptr, n, n, n, n, n, n),
            ZoPixelConverter_ConvertAreaFilter(nullptr, nullptr, nullptr, n, n, nullptr, n, n, n, n, n, n),
            ZoPixelConverter_ConvertBand(nullptr, nullptr, nullptr, n, n, nullptr, n, n, n, n, n, n, n, n)};
        for (std::uint32_t r : results)
            Check(r == ZO_ERR_BAD_ARGUMENT);
        break;
    }
    }
}

void FilterOperation(FuzzedDataProvider& in, Handles& h)
{
    ZoRGBFilter*& slot = h.filters[in.ConsumeIntegralInRange(0, kSlots - 1)];
    const std::uint32_t entries = ZoRGBFilter_GetEntryCount(slot);
    const auto replace = [&slot](ZoRGBFilter* filter) { ZoRGBFilter_Destroy(slot), slot = filter; };
    switch (in.ConsumeIntegralInRange(0, 5)) {
    case 0: {
        const std::uint32_t bits = FilterBitSize(in);
        ZoRGBFilter* created = ZoRGBFilter_Init(bits);
        Check(bits >= 32 ? created == nullptr : created != nullptr);
        Check(!created ||
              (ZoRGBFilter_GetBitSize(created) == bits && ZoRGBFilter_GetEntryCount(created) == 1u << bits));
        replace(created);
        break;
    }
    case 1:
        replace(nullptr);
        break;
    case 2: {
        const double r = AnyMultiplier(in), g = AnyMultiplier(in), b = AnyMultiplier(in);
        const std::uint32_t result = ZoRGBFilter_SetMultipliers(slot, r, g, b, in.ConsumeIntegral<std::uint16_t>(),
                                                                in.ConsumeIntegral<std::uint16_t>(),
                                                                in.ConsumeIntegral<std::uint16_t>());
        Check(result == (slot && r >= 0 && g >= 0 && b >= 0 ? ZO_OK : ZO_ERR_BAD_ARGUMENT));
        break;
    }
    case 3: {
        const std::uint32_t index = AnyCount(in);
        const std::uint16_t value = in.ConsumeIntegral<std::uint16_t>();
        const std::uint32_t expected = slot && index < entries && value < entries ? ZO_OK : ZO_ERR_BAD_ARGUMENT;
        Check(ZoRGBFilter_SetRedValue(slot, index, value) == expected &&
              ZoRGBFilter_SetGreenValue(slot, index, value) == expected &&
              ZoRGBFilter_SetBlueValue(slot, index, value) == expected);
        Check(expected != ZO_OK || index >= 65536 || ZoRGBFilter_GetGreenValue16(slot, index) == value);
        break;
    }
    case 4: {
        const std::uint32_t index = AnyCount(in);
        Check(ZoRGBFilter_GetRedValue8(slot, index) == ZoRGBFilter_GetRedValue8(slot, index & 0xFF));
        ZoRGBFilter_GetGreenValue8(slot, index);
        ZoRGBFilter_GetBlueValue8(slot, index);
        break;
    }
    default: {
        const std::uint32_t limit = std::max<std::uint32_t>(entries, 65536);
        const std::uint32_t index = in.ConsumeIntegralInRange<std::uint32_t>(0, limit - 1);
        const std::uint16_t red = ZoRGBFilter_GetRedValue16(slot, index);
        ZoRGBFilter_GetGreenValue16(slot, index);
        ZoRGBFilter_GetBlueValue16(slot, index);
        // The 8-bit entry is the 16-bit one clamped.
        Check(index >= 256 || ZoRGBFilter_GetRedValue8(slot, index) == std::min<std::uint16_t>(red, 255));
        break;
    }
    }
}

// The extension functions that convert nothing: version, buffer sizes of
// hostile areas, PFNC look-ups with random names, codes, IDs and null out
// pointers.
void ExtensionOperation(FuzzedDataProvider& in)
{
    const char* name = nullptr;
    std::uint32_t code = 0, flags = 0;
    std::int64_t id = 0;
    switch (in.ConsumeIntegralInRange(0, 4)) {
    case 0:
        Check(ZoImgLib_GetVersion() != nullptr);
        break;
    case 1: {
        const ZoPixelConverter* c = in.ConsumeBool() ? nullptr : zofuzz::AnyPair(in).converter;
        ZoAreaBufferSizes sizes{1, 2, 3};
        const bool out = in.ConsumeBool();
        const std::uint32_t sw = AnyCount(in), sh = AnyCount(in), dw = AnyCount(in), dh = AnyCount(in);
        const std::uint32_t w = AnyCount(in), h = AnyCount(in), f = AnyCount(in), padding = AnyCount(in);
        const std::uint32_t r =
            ZoPixelConverter_GetAreaBufferSizes(c, sw, sh, dw, dh, w, h, f, padding, out ? &sizes : nullptr);
        Check(r == ZO_ERR_BAD_ARGUMENT || (r == ZO_OK && c && out));
        Check(r == ZO_OK || (sizes.sourceBytes == 1 && sizes.destinationBytes == 2 && sizes.destinationBytesBefore == 3));
        break;
    }
    case 2: {
        const std::string text = in.ConsumeRandomLengthString(40);
        CheckKnownResult(ZoPfnc_FromName(in.ConsumeBool() ? text.c_str() : nullptr, in.ConsumeBool() ? &id : nullptr,
                                         in.ConsumeBool() ? &flags : nullptr));
        break;
    }
    case 3:
        CheckKnownResult(
            ZoPfnc_FromCode(AnyCount(in), in.ConsumeBool() ? &id : nullptr, in.ConsumeBool() ? &flags : nullptr));
        break;
    default: {
        const std::uint32_t r = ZoPfnc_FromPixelType(AnyId(in), AnyCount(in), in.ConsumeBool() ? &name : nullptr,
                                                     in.ConsumeBool() ? &code : nullptr);
        CheckKnownResult(r);
        Check(r != ZO_OK || !name || std::strlen(name) < 256);
        Check(!ZoPfnc_GetEntry(AnyCount(in) % 4096, in.ConsumeBool() ? &name : nullptr, &code, &id, &flags) || !name ||
              std::strlen(name) < 256);
        break;
    }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider in(data, size);
    Handles handles;
    for (int steps = 0; steps < 64 && in.remaining_bytes() > 0; ++steps) {
        switch (in.ConsumeIntegralInRange(0, 3)) {
        case 0: TypeOperation(in, handles); break;
        case 1: RegistryOperation(in); break;
        case 2: ExtensionOperation(in); break;
        default: FilterOperation(in, handles); break;
        }
    }
    return 0;
}
