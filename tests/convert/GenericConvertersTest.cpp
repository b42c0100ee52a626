// Identity converters (copies and deinterlacing), chained converters and the
// flat converter functions.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "ZoImgLibC.h"
#include "ZoPixelTypeFactory.h"
#include "support/ConvertSupport.h"
#include "core/ObservedAddress.h"

using zotest::FilterStage;
using zotest::FreshTestId;
using zotest::RecordingConverter;

namespace {

constexpr unsigned char kPoison = 0xA5;

std::vector<unsigned char> RandomBytes(std::size_t n, std::uint32_t seed)
{
    std::mt19937 rng(seed);
    std::vector<unsigned char> v(n);
    for (auto& b : v)
        b = static_cast<unsigned char>(rng());
    return v;
}

// Reference deinterlacing: destination line 2k comes from line k of the
// first field, line 2k + 1 from line k of the second; the second field starts
// at (sourceHeight x line bytes) / 2. Lines not written keep the poison.
std::vector<unsigned char> ReferenceDeinterlace(const std::vector<unsigned char>& source, std::uint32_t lineBytes,
                                                std::uint32_t sourceHeight, std::uint32_t height,
                                                std::uint32_t destinationStride, std::size_t destinationSize,
                                                bool invert)
{
    std::vector<unsigned char> out(destinationSize, kPoison);
    const std::size_t half = (static_cast<std::size_t>(sourceHeight) * lineBytes) / 2;
    const std::size_t even = invert ? half : 0, odd = invert ? 0 : half;
    for (std::uint32_t k = 0; 2 * k < height; ++k) {
        std::memcpy(&out[2 * k * destinationStride], &source[even + k * lineBytes], lineBytes);
        std::memcpy(&out[(2 * k + 1) * destinationStride], &source[odd + k * lineBytes], lineBytes);
    }
    return out;
}

// Reference of the test chain A (X -> Y, one byte, salt a) then B (Y -> Z,
// two bytes, salt b) over an area: the caller's filter acts on A only.
std::vector<unsigned char> ReferenceChain(const std::vector<unsigned char>& source, std::uint32_t sourceWidth,
                                          std::uint32_t width, std::uint32_t height,
                                          std::uint32_t destinationStride, std::size_t destinationSize,
                                          const std::uint8_t* red, std::uint32_t a, std::uint32_t b)
{
    std::vector<unsigned char> out(destinationSize, kPoison);
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x) {
            const unsigned char intermediate = static_cast<unsigned char>(red[source[y * sourceWidth + x]] ^ (y * a));
            for (std::uint32_t k = 0; k < 2; ++k)
                out[y * destinationStride + 2 * x + k] = static_cast<unsigned char>(intermediate ^ (k * 0x3B) ^ (y * b));
        }
    return out;
}

struct ChainPeek : ZoComplexConverter {
    using ZoComplexConverter::ZoComplexConverter;
    using ZoPixelConverter::GetLinesPerConvert;
    using ZoPixelConverter::GetPipeliningSize;
};

}  // namespace

TEST(IdentityConverter, CopiesSourceSizedPixels)
{
    ZoIdentityConverter two(FreshTestId(), FreshTestId(), 2, 2);
    ZoIdentityConverter wide(FreshTestId(), FreshTestId(), 2, 4);  // destination size unused
    const auto source = RandomBytes(32, 1);
    for (ZoIdentityConverter* c : {&two, &wide}) {
        std::vector<unsigned char> d(32, kPoison);
        EXPECT_EQ(c->Convert(source.data(), d.data(), 10), ZO_OK);
        EXPECT_TRUE(std::equal(d.begin(), d.begin() + 20, source.begin()));
        EXPECT_EQ(d[20], kPoison);
        std::vector<unsigned char> p(4, kPoison);
        EXPECT_EQ(c->Convert(source.data() + 6, p.data()), ZO_OK);
        EXPECT_EQ(p, (std::vector<unsigned char>{source[6], source[7], kPoison, kPoison}));
        // An empty line touches no buffer, null ones included (clean under UBSan).
        EXPECT_EQ(c->Convert(nullptr, nullptr, 0), ZO_OK);
    }
}

TEST(IdentityConverter, TheEighteenRegisteredInstances)
{
    const struct {
        std::int64_t source, destination;
        std::uint32_t size;
    } table[] = {
        {0x20001, 0x20001, 2},   {0x10001, 0x10001, 1},   {0x210001, 0x10001, 1},  {0x210002, 0x10002, 2},
        {0x310002, 0x110002, 2}, {0x210003, 0x10003, 2},  {0x310003, 0x110003, 2}, {0x210004, 0x10004, 2},
        {0x310004, 0x110004, 2}, {0x210005, 0x10005, 2},  {0x310005, 0x110005, 2}, {0x220011, 0x20011, 2},
        {0x320011, 0x120011, 2}, {0x220014, 0x20014, 2},  {0x320014, 0x120014, 2}, {0x240002, 0x40002, 2},
        {0x340002, 0x140002, 2}, {0x240001, 0x40001, 2},
    };
    for (const auto& e : table) {
        SCOPED_TRACE(testing::Message() << std::hex << e.source << " -> " << e.destination);
        const auto* c = dynamic_cast<const ZoIdentityConverter*>(
            &ZoPixelTypeFactory::GetConverter(e.source, e.destination));
        ASSERT_NE(c, nullptr);
        EXPECT_EQ(c->GetSourceByteSize(3), 3 * e.size);
        EXPECT_EQ(c->GetDestinationByteSize(), e.size);
    }
}

TEST(IdentityConverter, DeinterlacesTwoFields)
{
    const struct {
        std::int64_t source, destination;
        std::uint32_t pixel;
    } pairs[] = {{ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, ZO_PT_GRAY8, 1},
                 {ZO_PT_BAYER_RGB10 | ZO_PIXEL_INTERLACED, ZO_PT_BAYER_RGB10, 2},
                 {ZO_PT_YUV8 | ZO_PIXEL_INTERLACED, ZO_PT_YUV8, 2}};
    for (const auto& p : pairs) {
        const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(p.source, p.destination);
        ASSERT_NE(ObservedAddress(c), nullptr);
        for (std::uint32_t width : {1u, 3u, 7u, 33u})
            for (std::uint32_t height : {2u, 4u, 5u, 6u})
                for (bool invert : {false, true}) {
                    SCOPED_TRACE(testing::Message() << std::hex << p.source << std::dec << " " << width << "x"
                                                    << height << (invert ? " inverted" : ""));
                    const std::uint32_t padding = 3, lineBytes = width * p.pixel;
                    const std::uint32_t stride = lineBytes + padding;
                    // An odd height writes one line more (each field pass runs
                    // over i = 0, 2, 4 for height 5) and reads the second
                    // field from inside a line; callers allow for it.
                    const auto source = RandomBytes(lineBytes * (height + 1), width * 31 + height);
                    std::vector<unsigned char> d(stride * (height + 2), kPoison);
                    const std::uint32_t flags = invert ? ZO_FLAG_INVERT_DEINTERLACER : 0;
                    EXPECT_EQ(c.Convert(source.data(), width, height, d.data(), width, height, width, height,
                                        flags, padding),
                              ZO_OK);
                    EXPECT_EQ(d, ReferenceDeinterlace(source, lineBytes, height, height, stride, d.size(), invert));
                }
    }
}

TEST(ComplexConverter, CombineIsNotTheLeastCommonMultiple)
{
    const std::uint32_t cases[][3] = {{1, 2, 2}, {2, 2, 2}, {4, 6, 24}, {6, 4, 24}, {3, 1, 3},
                                      {2, 8, 8}, {8, 2, 8}, {4, 8, 8}, {3, 5, 15}, {0, 4, 0}};
    for (const auto& c : cases)
        EXPECT_EQ(ZoComplexConverter::Combine(c[0], c[1]), c[2]) << c[0] << ", " << c[1];
}

TEST(ComplexConverter, TakesItsSizesFromTheStages)
{
    // A packed-style first stage: three bytes per two pixels.
    struct Packed : RecordingConverter {
        using RecordingConverter::RecordingConverter;
        std::uint32_t GetSourceByteSize(std::uint32_t n) const override { return (n >> 1) * 3; }
        using RecordingConverter::GetSourceByteSize;
    };
    const std::int64_t x = FreshTestId(), y = FreshTestId(), z = FreshTestId();
    Packed first(x, y, 2, 2, /*lines=*/4, /*pipelining=*/8);
    RecordingConverter second(y, z, 2, 3, /*lines=*/6, /*pipelining=*/4);
    ChainPeek chain(&first, &second);
    EXPECT_EQ(chain.GetSourceType(), x);
    EXPECT_EQ(chain.GetDestinationType(), z);
    EXPECT_EQ(chain.GetDestinationByteSize(), 3u);
    EXPECT_EQ(chain.GetSourceByteSize(5), 6u);
    EXPECT_EQ(chain.GetDestinationByteSize(5), 15u);
    EXPECT_EQ(chain.GetLinesPerConvert(), 24u);
    EXPECT_EQ(chain.GetPipeliningSize(), 8u);
    EXPECT_EQ(&ZoPixelTypeFactory::GetConverter(x, z), &chain);
}

TEST(ComplexConverter, AreaFilterActsOnTheFirstStageOnly)
{
    const std::int64_t x = FreshTestId(), y = FreshTestId(), z = FreshTestId();
    FilterStage a(x, y, 1, 0x11), b(y, z, 2, 0x05);
    ZoComplexConverter chain(&a, &b);
    ZoRGBFilter filter(8);
    filter.SetMultipliers(0.5, 1.0, 1.0, 3, 0, 0);
    const std::uint8_t* identity = ZoPixelConverter::DefaultFilter(1).RedTable8();

    const struct {
        std::uint32_t sourceWidth, sourceHeight, width, height, destinationWidth, padding;
    } cases[] = {{7, 5, 7, 5, 7, 0}, {9, 6, 4, 3, 5, 3}, {1, 1, 1, 1, 1, 1}, {33, 4, 33, 4, 40, 0}};
    for (const auto& tc : cases) {
        for (bool filtered : {false, true}) {
            SCOPED_TRACE(testing::Message() << tc.sourceWidth << "x" << tc.sourceHeight << " area " << tc.width
                                            << "x" << tc.height << (filtered ? " filtered" : ""));
            const auto source = RandomBytes(tc.sourceWidth * tc.sourceHeight, tc.sourceWidth + 100 * tc.height);
            const std::uint32_t stride = tc.destinationWidth * 2 + tc.padding;
            std::vector<unsigned char> d(stride * tc.sourceHeight + 8, kPoison);
            a.lineCalls = 0;
            const std::uint32_t r =
                filtered ? chain.Convert(filter, source.data(), tc.sourceWidth, tc.sourceHeight, d.data(),
                                         tc.destinationWidth, tc.sourceHeight, tc.width, tc.height, 0, tc.padding)
                         : chain.Convert(source.data(), tc.sourceWidth, tc.sourceHeight, d.data(),
                                         tc.destinationWidth, tc.sourceHeight, tc.width, tc.height, 0, tc.padding);
            EXPECT_EQ(r, ZO_OK);
            // The first stage converts the whole source frame.
            EXPECT_EQ(a.lineCalls.load(), tc.sourceHeight);
            EXPECT_EQ(d, ReferenceChain(source, tc.sourceWidth, tc.width, tc.height, stride, d.size(),
                                        filtered ? filter.RedTable8() : identity, 0x11, 0x05));
        }
    }
}

TEST(ComplexConverter, FirstStageSeesTheWholeFrameAndTheCallersFlags)
{
    const std::int64_t x = FreshTestId(), y = FreshTestId(), z = FreshTestId();
    RecordingConverter first(x, y, 1, 2), second(y, z, 2, 3);
    ZoComplexConverter chain(&first, &second);
    std::vector<unsigned char> s(64), d(256);
    first.sourceBase = s.data();
    second.destinationBase = d.data();
    ZoRGBFilter filter(16);
    chain.Convert(filter, s.data(), 6, 4, d.data(), 8, 4, 3, 2, ZO_FLAG_BAYER_BGGR | ZO_FLAG_BAYER_INTERPOLATE, 5);

    ASSERT_EQ(first.calls.size(), 4u);
    for (std::uint32_t k = 0; k < 4; ++k) {
        const auto& call = first.calls[k];
        EXPECT_EQ(call.source, std::ptrdiff_t(6 * k));
        EXPECT_EQ(call.count, 6u);
        EXPECT_EQ(call.context.destinationLineBytes, 12u);  // no padding in the intermediate frame
        EXPECT_EQ(call.context.flags, ZO_FLAG_BAYER_BGGR | ZO_FLAG_BAYER_INTERPOLATE);
        EXPECT_EQ(call.context.filter, &filter);
        EXPECT_EQ(call.context.referenceCount, 6u);  // filtered form, chain x3, walk, line
    }
    ASSERT_EQ(second.calls.size(), 2u);
    for (std::uint32_t k = 0; k < 2; ++k) {
        const auto& call = second.calls[k];
        EXPECT_EQ(call.destination, std::ptrdiff_t(k * (8 * 3 + 5)));
        EXPECT_EQ(call.count, 3u);
        EXPECT_EQ(call.context.sourceLineBytes, 12u);
        EXPECT_EQ(call.context.areaHeight, 2u);
        EXPECT_EQ(call.context.filter, &ZoPixelConverter::DefaultFilter(2));
    }
    EXPECT_EQ(second.calls[1].source - second.calls[0].source, 12);
    EXPECT_EQ(first.Probe().referenceCount, 1u);  // everything released
}

TEST(ComplexConverter, LineAndPixelForms)
{
    const std::int64_t x = FreshTestId(), y = FreshTestId(), z = FreshTestId();
    FilterStage a(x, y, 1, 0x11), b(y, z, 2, 0x05);
    ZoComplexConverter chain(&a, &b);
    const auto source = RandomBytes(9, 5);
    std::vector<unsigned char> d(20, kPoison);
    // Direct calls: no filter and line 0 in a fresh record.
    EXPECT_EQ(chain.Convert(source.data(), d.data(), 9), ZO_OK);
    const std::uint8_t* identity = ZoPixelConverter::DefaultFilter(1).RedTable8();
    EXPECT_EQ(d, ReferenceChain(source, 9, 9, 1, 18, 20, identity, 0, 0));
    std::vector<unsigned char> p(3, kPoison);
    EXPECT_EQ(chain.Convert(source.data() + 4, p.data()), ZO_OK);
    EXPECT_EQ(p, (std::vector<unsigned char>{source[4], static_cast<unsigned char>(source[4] ^ 0x3B), kPoison}));

    // The line form points both stages at the intermediate line sizes.
    RecordingConverter first(FreshTestId(), FreshTestId(), 3, 2), second(first.GetDestinationType(), z, 4, 1);
    ZoComplexConverter recorded(&first, &second);
    std::vector<unsigned char> s(64);
    recorded.Convert(s.data(), d.data(), 5);
    ASSERT_EQ(first.calls.size(), 1u);
    EXPECT_EQ(first.calls[0].context.destinationLineBytes, 10u);
    EXPECT_EQ(first.calls[0].context.sourceLineBytes, 20u);
    EXPECT_EQ(first.calls[0].context.referenceCount, 4u);
    ASSERT_EQ(second.calls.size(), 1u);
    EXPECT_EQ(second.calls[0].count, 5u);
}

TEST(ComplexConverter, StageErrorStopsTheChain)
{
    const std::int64_t x = FreshTestId(), y = FreshTestId(), z = FreshTestId();
    struct Failing : RecordingConverter {
        using RecordingConverter::RecordingConverter;
        using RecordingConverter::Convert;
        std::uint32_t Convert(const unsigned char*, std::uint32_t, std::uint32_t, unsigned char*, std::uint32_t,
                              std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                              std::uint32_t) const override
        {
            return ZO_ERR_INTERPOLATION;
        }
    } failing(x, y, 1, 1);
    failing.lineResult = ZO_ERR_NOT_SUPPORTED;
    FilterStage second(y, z, 2);
    ZoComplexConverter chain(&failing, &second);
    std::vector<unsigned char> s(16), d(64, kPoison);
    ZoRGBFilter filter(8);
    EXPECT_EQ(chain.Convert(s.data(), 4, 4, d.data(), 4, 4, 4, 4, 0, 0), ZO_ERR_INTERPOLATION);
    EXPECT_EQ(chain.Convert(filter, s.data(), 4, 4, d.data(), 4, 4, 4, 4, 0, 0), ZO_ERR_INTERPOLATION);
    EXPECT_EQ(chain.Convert(s.data(), d.data(), 4), ZO_ERR_NOT_SUPPORTED);
    EXPECT_EQ(chain.Convert(s.data(), d.data()), ZO_ERR_NOT_SUPPORTED);  // base pixel form
    EXPECT_EQ(second.lineCalls.load(), 0u);
    EXPECT_EQ(d, std::vector<unsigned char>(64, kPoison));
    EXPECT_EQ(failing.Probe().referenceCount, 1u);
    EXPECT_EQ(failing.Probe().filter, nullptr);

    // A second stage's error comes back unchanged from the line form.
    FilterStage first(FreshTestId(), y, 1);
    RecordingConverter refusing(y, FreshTestId(), 1, 1);
    refusing.lineResult = ZO_ERR_NOT_SUPPORTED;
    ZoComplexConverter late(&first, &refusing);
    EXPECT_EQ(late.Convert(s.data(), d.data(), 4), ZO_ERR_NOT_SUPPORTED);
}

TEST(FlatConverter, NullHandles)
{
    std::vector<unsigned char> s(64, 1), d(64, kPoison);
    ZoRGBFilter filter(8);
    EXPECT_EQ(ZoPixelConverter_GetSourceType(nullptr), 0);
    EXPECT_EQ(ZoPixelConverter_GetDestinationType(nullptr), 0);
    EXPECT_EQ(ZoPixelConverter_GetSourceByteSize(nullptr, 10), 0u);
    EXPECT_EQ(ZoPixelConverter_GetDestinationByteSize(nullptr, 10), 0u);
    EXPECT_EQ(ZoPixelConverter_ConvertPixel(nullptr, s.data(), d.data()), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPixelConverter_ConvertLine(nullptr, s.data(), d.data(), 4), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPixelConverter_ConvertArea(nullptr, s.data(), 4, 4, d.data(), 4, 4, 4, 4, 0, 0),
              ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPixelConverter_ConvertAreaFilter(nullptr, &filter, s.data(), 4, 4, d.data(), 4, 4, 4, 4, 0, 0),
              ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(d, std::vector<unsigned char>(64, kPoison));
}

TEST(FlatConverter, ForwardsToTheConverter)
{
    const ZoPixelConverter* c = &ZoPixelTypeFactory::GetConverter(ZO_PT_GRAY10 | ZO_PIXEL_INTERLACED, ZO_PT_GRAY10);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(ZoPixelConverter_GetSourceType(c), ZO_PT_GRAY10 | ZO_PIXEL_INTERLACED);
    EXPECT_EQ(ZoPixelConverter_GetDestinationType(c), ZO_PT_GRAY10);
    EXPECT_EQ(ZoPixelConverter_GetSourceByteSize(c, 7), 14u);
    EXPECT_EQ(ZoPixelConverter_GetDestinationByteSize(c, 7), 14u);
    const auto s = RandomBytes(3 * 4 * 2, 3);
    std::vector<unsigned char> d(s.size(), kPoison), p(2, kPoison);
    EXPECT_EQ(ZoPixelConverter_ConvertPixel(c, s.data(), p.data()), ZO_OK);
    EXPECT_EQ(p[1], s[1]);
    EXPECT_EQ(ZoPixelConverter_ConvertLine(c, s.data(), d.data(), 3), ZO_OK);
    EXPECT_TRUE(std::equal(s.begin(), s.begin() + 6, d.begin()));
    ZoRGBFilter filter(16);
    EXPECT_EQ(ZoPixelConverter_ConvertAreaFilter(c, &filter, s.data(), 3, 4, d.data(), 3, 4, 3, 4,
                                                 ZO_FLAG_INVERT_DEINTERLACER, 0),
              ZO_OK);
    EXPECT_EQ(d, ReferenceDeinterlace(s, 6, 4, 4, 6, d.size(), true));
    // A null filter is no filter: the same bytes as the unfiltered area form.
    for (bool viaFilterForm : {false, true}) {
        std::fill(d.begin(), d.end(), kPoison);
        EXPECT_EQ(viaFilterForm ? ZoPixelConverter_ConvertAreaFilter(c, nullptr, s.data(), 3, 4, d.data(), 3, 4, 3, 4, 0, 0)
                                : ZoPixelConverter_ConvertArea(c, s.data(), 3, 4, d.data(), 3, 4, 3, 4, 0, 0),
                  ZO_OK);
        EXPECT_EQ(d, ReferenceDeinterlace(s, 6, 4, 4, 6, d.size(), false));
    }
}
