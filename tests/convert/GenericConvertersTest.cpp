// Identity converters (copies and deinterlacing, through the class and the
// flat functions), and chained converters built from test stages (sizes, line
// and pixel forms, errors; the area form is checked on every registered chain
// against the chain table).
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <tuple>
#include <vector>

#include "ZoImgLibC.h"
#include "ZoPixelTypeFactory.h"
#include "support/AreaSupport.h"
#include "support/ConvertSupport.h"
#include "support/FamilyTables.h"

using zotest::FilterStage;
using zotest::FreshTestId;
using zotest::kPoison;
using zotest::RecordingConverter;

namespace {

// Reference copy: each line of the walk (see AreaLines) is copied.
std::vector<unsigned char> ReferenceCopy(const std::vector<unsigned char>& source, const zotest::Area& a,
                                         std::uint32_t pixel, bool interlaced, std::size_t size)
{
    std::vector<unsigned char> out(size, kPoison);
    for (const zotest::LinePlace& l : zotest::AreaLines(a, pixel, pixel, interlaced, false))
        std::memcpy(&out[l.destination], &source[l.source], std::size_t(a.width) * pixel);
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
    std::mt19937 rng(1);
    const ZoIdentityConverter wide(FreshTestId(), FreshTestId(), 2, 4);  // destination size unused
    const auto source = zotest::RandomBytes(32, rng);
    std::vector<unsigned char> d(32, kPoison);
    EXPECT_EQ(wide.Convert(source.data(), d.data(), 10), ZO_OK);
    EXPECT_TRUE(std::equal(d.begin(), d.begin() + 20, source.begin()));
    EXPECT_EQ(d[20], kPoison);
    std::vector<unsigned char> p(4, kPoison);
    EXPECT_EQ(wide.Convert(source.data() + 6, p.data()), ZO_OK);
    EXPECT_EQ(p, (std::vector<unsigned char>{source[6], source[7], kPoison, kPoison}));
    // An empty line touches no buffer, null ones included (clean under UBSan).
    EXPECT_EQ(wide.Convert(nullptr, nullptr, 0), ZO_OK);
}

TEST(IdentityConverter, EveryRegisteredInstanceCopiesOrDeinterlacesThroughEveryAreaForm)
{
    ZoRGBFilter filter(16);
    std::mt19937 rng(2);
    int k = 0, instances = 0;
    for (const zotest::RegistryRow& r : zotest::RegistryTable()) {
        if (r.className != "ZoIdentityConverter")
            continue;
        ++instances;
        const ZoPixelConverter* c = zotest::Registered(r.source, r.destination);
        const bool interlaced = (r.source & ZO_PIXEL_INTERLACED) != 0;
        const std::uint32_t pixel = r.sourceBytes;
        for (std::uint32_t w : {1u, 3u, 7u, 33u})
            for (std::uint32_t h : {2u, 4u, 5u, 6u})
                for (std::uint32_t flags : {0u, std::uint32_t{ZO_FLAG_INVERT_DEINTERLACER}}) {
                    // The class, the flat area form, and the flat filtered
                    // form with a null filter (none) and with one, in turn.
                    const int form = k++ % 4;
                    SCOPED_TRACE(testing::Message() << std::hex << r.source << std::dec << " " << w << "x" << h
                                                    << " flags " << flags << " form " << form);
                    // An odd height writes one line more and reads the second
                    // field from inside a line; callers allow for it.
                    const auto source = zotest::RandomBytes(w * pixel * (h + 1), rng);
                    std::vector<unsigned char> d((w * pixel + 3) * (h + 2), kPoison);
                    const unsigned char* in = source.data();
                    unsigned char* out = d.data();
                    EXPECT_EQ(form == 0   ? c->Convert(in, w, h, out, w, h, w, h, flags, 3)
                              : form == 1 ? ZoPixelConverter_ConvertArea(c, in, w, h, out, w, h, w, h, flags, 3)
                                          : ZoPixelConverter_ConvertAreaFilter(c, form == 2 ? nullptr : &filter, in,
                                                                               w, h, out, w, h, w, h, flags, 3),
                              ZO_OK);
                    EXPECT_EQ(d, ReferenceCopy(source, {w, h, w, h, w, h, flags, 3}, pixel, interlaced, d.size()));
                }
    }
    EXPECT_EQ(instances, 18);
    std::vector<unsigned char> s(64, 1), d(64, kPoison);
    EXPECT_EQ(ZoPixelConverter_ConvertAreaFilter(nullptr, &filter, s.data(), 4, 4, d.data(), 4, 4, 4, 4, 0, 0),
              ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(d, std::vector<unsigned char>(64, kPoison));
}

TEST(ComplexConverter, SizesComeFromTheStagesAndCombineIsNotTheLeastCommonMultiple)
{
    const std::uint32_t cases[][3] = {{1, 2, 2}, {2, 2, 2}, {4, 6, 24}, {6, 4, 24}, {3, 1, 3},
                                      {2, 8, 8}, {8, 2, 8}, {4, 8, 8}, {3, 5, 15}, {0, 4, 0}};
    for (const auto& c : cases)
        EXPECT_EQ(ZoComplexConverter::Combine(c[0], c[1]), c[2]) << c[0] << ", " << c[1];

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
    EXPECT_EQ(std::make_tuple(chain.GetSourceType(), chain.GetDestinationType(), chain.GetDestinationByteSize(),
                              chain.GetSourceByteSize(5), chain.GetDestinationByteSize(5), chain.GetLinesPerConvert(),
                              chain.GetPipeliningSize()),
              std::make_tuple(x, z, 3u, 6u, 15u, 24u, 8u));
    EXPECT_EQ(&ZoPixelTypeFactory::GetConverter(x, z), &chain);
}

TEST(ComplexConverter, LineAndPixelForms)
{
    const std::int64_t y = FreshTestId(), z = FreshTestId();
    FilterStage a(FreshTestId(), y, 1, 0x11), b(y, z, 2, 0x05);
    ZoComplexConverter chain(&a, &b);
    std::mt19937 rng(5);
    const auto source = zotest::RandomBytes(9, rng);
    // Direct calls: no filter and line 0 in a fresh record, so each stage
    // gives out[k] = in ^ (k * 0x3B).
    std::vector<unsigned char> d(20, kPoison), expected(20, kPoison);
    FilterStage::Apply(ZoPixelConverter::DefaultFilter(1).RedTable8(), 0, 0, 2, source.data(), expected.data(), 9);
    EXPECT_EQ(chain.Convert(source.data(), d.data(), 9), ZO_OK);
    EXPECT_EQ(d, expected);
    std::vector<unsigned char> p(3, kPoison);
    EXPECT_EQ(chain.Convert(source.data() + 4, p.data()), ZO_OK);
    EXPECT_EQ(p, (std::vector<unsigned char>{source[4], static_cast<unsigned char>(source[4] ^ 0x3B), kPoison}));

    // The line form points both stages at the intermediate line sizes.
    RecordingConverter first(FreshTestId(), FreshTestId(), 3, 2), second(first.GetDestinationType(), z, 4, 1);
    ZoComplexConverter recorded(&first, &second);
    std::vector<unsigned char> s(64);
    recorded.Convert(s.data(), d.data(), 5);
    ASSERT_EQ(first.calls.size() + second.calls.size(), 2u);
    const ZoPixelConverterContext& x = first.calls[0].context;
    EXPECT_EQ(std::make_tuple(x.sourceLineBytes, x.destinationLineBytes, x.referenceCount, second.calls[0].count),
              std::make_tuple(20u, 10u, 4u, 5u));
}

TEST(ComplexConverter, StageErrorStopsTheChain)
{
    const std::int64_t y = FreshTestId();
    struct Failing : RecordingConverter {
        using RecordingConverter::RecordingConverter;
        using RecordingConverter::Convert;
        std::uint32_t Convert(const unsigned char*, std::uint32_t, std::uint32_t, unsigned char*, std::uint32_t,
                              std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                              std::uint32_t) const override
        {
            return ZO_ERR_INTERPOLATION;
        }
    } failing(FreshTestId(), y, 1, 1);
    failing.lineResult = ZO_ERR_NOT_SUPPORTED;
    FilterStage second(y, FreshTestId(), 2);
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
