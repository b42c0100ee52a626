// Fuzzes area conversions through the flat interface: any registered pair,
// areas up to 64 x 16 inside frames a little larger, any flags, destination
// padding, with or without a filter (random multipliers, offsets and single
// entries), over random source bytes. Each buffer is allocated exactly as
// large as ZoPixelConverter_GetAreaBufferSizes says the conversion may touch
// (every over-read and over-write the headers document), so
// AddressSanitizer reports any byte read or written beyond those rules.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"
#include "fuzz/FuzzPairs.h"

namespace {

[[noreturn]] void Fail(const zofuzz::Pair& pair, const char* what, std::uint32_t result)
{
    std::fprintf(stderr, "0x%llx -> 0x%llx: %s %u\n", static_cast<unsigned long long>(pair.source),
                 static_cast<unsigned long long>(pair.destination), what, result);
    std::abort();
}

ZoRGBFilter* MakeFilter(FuzzedDataProvider& in)
{
    ZoRGBFilter* filter = ZoRGBFilter_Init(in.PickValueInArray<std::uint32_t>({8, 10, 12, 16}));
    if (!filter)
        std::abort();
    const double red = in.ConsumeFloatingPointInRange(-0.5, 4.0), green = in.ConsumeFloatingPointInRange(0.0, 4.0),
                 blue = in.ConsumeFloatingPointInRange(0.0, 4.0);
    const std::uint32_t r = ZoRGBFilter_SetMultipliers(filter, red, green, blue, in.ConsumeIntegral<std::uint16_t>(),
                                                       in.ConsumeIntegral<std::uint16_t>(),
                                                       in.ConsumeIntegral<std::uint16_t>());
    if (r != (red < 0 ? ZO_ERR_BAD_ARGUMENT : ZO_OK))
        std::abort();
    const std::uint32_t entries = ZoRGBFilter_GetEntryCount(filter);
    for (int writes = in.ConsumeIntegralInRange(0, 8); writes > 0; --writes) {
        const std::uint32_t index = in.ConsumeIntegralInRange<std::uint32_t>(0, 2 * entries);
        const std::uint16_t value = in.ConsumeIntegral<std::uint16_t>();
        const std::uint32_t expected = index < entries && value < entries ? ZO_OK : ZO_ERR_BAD_ARGUMENT;
        const int channel = in.ConsumeIntegralInRange(0, 2);
        const auto set = channel == 0 ? ZoRGBFilter_SetRedValue
                         : channel == 1 ? ZoRGBFilter_SetGreenValue
                                        : ZoRGBFilter_SetBlueValue;
        if (set(filter, index, value) != expected)
            std::abort();
    }
    return filter;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider in(data, size);
    const zofuzz::Pair& pair = zofuzz::AnyPair(in);
    const std::uint32_t width = in.ConsumeIntegralInRange<std::uint32_t>(0, 64);
    const std::uint32_t height = in.ConsumeIntegralInRange<std::uint32_t>(0, 16);
    const std::uint32_t sourceWidth = width + in.ConsumeIntegralInRange<std::uint32_t>(0, 3);
    const std::uint32_t sourceHeight = height + in.ConsumeIntegralInRange<std::uint32_t>(0, 3);
    const std::uint32_t destinationWidth = width + in.ConsumeIntegralInRange<std::uint32_t>(0, 3);
    const std::uint32_t destinationHeight = height + in.ConsumeIntegralInRange<std::uint32_t>(0, 3);
    const std::uint32_t flags = in.ConsumeIntegral<std::uint16_t>();
    const std::uint32_t padding = in.ConsumeIntegralInRange<std::uint32_t>(0, 7);
    ZoRGBFilter* filter = in.ConsumeBool() ? MakeFilter(in) : nullptr;
    const bool plainForm = !filter && in.ConsumeBool();  // ConvertArea rather than a null filter

    const ZoPixelConverter* const converter = pair.converter;
    ZoAreaBufferSizes sizes{};
    if (const std::uint32_t r = ZoPixelConverter_GetAreaBufferSizes(converter, sourceWidth, sourceHeight,
                                                                     destinationWidth, destinationHeight, width,
                                                                     height, flags, padding, &sizes))
        Fail(pair, "buffer sizes answered", r);
    // Separate exact allocations: a byte beyond either is a redzone. new[]
    // gives a distinct pointer even for 0 bytes, as callers' buffers are.
    const std::unique_ptr<unsigned char[]> source(new unsigned char[sizes.sourceBytes]);
    const std::vector<std::uint8_t> bytes = in.ConsumeRemainingBytes<std::uint8_t>();
    for (std::uint64_t i = 0; i < sizes.sourceBytes; ++i)
        source[i] = bytes.empty() ? static_cast<unsigned char>(i * 13) : bytes[i % bytes.size()];
    const std::uint64_t destinationBytes = sizes.destinationBytesBefore + sizes.destinationBytes;
    const std::unique_ptr<unsigned char[]> destination(new unsigned char[destinationBytes]);
    std::memset(destination.get(), 0xA5, destinationBytes);

    unsigned char* const out = destination.get() + sizes.destinationBytesBefore;
    const std::uint32_t result =
        plainForm ? ZoPixelConverter_ConvertArea(converter, source.get(), sourceWidth, sourceHeight, out,
                                                 destinationWidth, destinationHeight, width, height, flags, padding)
                  : ZoPixelConverter_ConvertAreaFilter(converter, filter, source.get(), sourceWidth, sourceHeight,
                                                       out, destinationWidth, destinationHeight, width, height,
                                                       flags, padding);
    ZoRGBFilter_Destroy(filter);
    if (result != ZO_OK)
        Fail(pair, "conversion answered", result);
    return 0;
}
