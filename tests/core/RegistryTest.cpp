// The registry's operations and result codes. The IDs these tests register
// carry bits 32-63 (never used by the catalogue) so that they cannot collide
// with built-in types or converters, and the types registered here have
// attributes that the catalogue searches of the other tests do not ask for.
#include <gtest/gtest.h>

#include <memory>
#include <tuple>
#include <vector>

#include "ZoGenericConverters.h"
#include "ZoImgLibC.h"
#include "ZoPixelTypeFactory.h"
#include "core/ObservedAddress.h"

namespace {

constexpr std::int64_t kTestSpace = 0x5100000000LL;  // high bits of this file's IDs

std::int64_t TestId(std::int64_t low) { return kTestSpace | low; }

const ZoPixelConverter* Registered(std::int64_t source, std::int64_t destination)
{
    return ObservedAddress(ZoPixelTypeFactory::GetConverter(source, destination));
}

TEST(RegistryTypes, NamesOfDuplicateAndUnknownIds)
{
    const ZoRGB24 impostor(ZO_PT_RGB16);
    EXPECT_EQ(ZoPixelTypeFactory::RegisterPixelType(ZO_PT_RGB16, &impostor, "impostor"), 18u);
    EXPECT_STREQ(ZoPixelTypeFactory::GetPixelTypeName(ZO_PT_RGB16), "RGB 16-bits");
    EXPECT_EQ(ZoPixelTypeFactory::GetPixelType(ZO_PT_RGB16).GetPixelBitSize(), 16);
    // An explicit name wins over the rule and stays likewise.
    const std::int64_t id = TestId(0x00030001);  // unknown colour space: no search finds it
    const ZoGrayscale8 type(id);
    ASSERT_EQ(ZoPixelTypeFactory::RegisterPixelType(id, &type, "My gray"), 0u);
    EXPECT_STREQ(ZoPixelTypeFactory::GetPixelTypeName(id), "My gray");
    EXPECT_EQ(ZoPixelTypeFactory::RegisterPixelType(id, &type, "Other gray"), 18u);
    EXPECT_STREQ(ZoPixelTypeFactory::GetPixelTypeName(id), "My gray");

    // An unknown ID is named and recorded until it is registered.
    const std::int64_t unknown = TestId(0x00220044);
    EXPECT_FALSE(ZoPixelTypeFactory::HasPixelType(unknown));
    EXPECT_EQ(ObservedAddress(ZoPixelTypeFactory::GetPixelType(unknown)), nullptr);
    EXPECT_EQ(ZoPixelTypeFactory::CreatePixelType(unknown), nullptr);
    const char* first = ZoPixelTypeFactory::GetPixelTypeName(unknown);
    EXPECT_STREQ(first, "Unregistered pixel type");
    EXPECT_EQ(ZoPixelTypeFactory::GetPixelTypeName(unknown), first);  // the recorded entry
    EXPECT_FALSE(ZoPixelTypeFactory::HasPixelType(unknown));          // recording a name registers no type
    const ZoRGB32 rgb(unknown);
    EXPECT_EQ(ZoPixelTypeFactory::RegisterPixelType(unknown, &rgb, nullptr), 0u);
    EXPECT_STREQ(ZoPixelTypeFactory::GetPixelTypeName(unknown), "RGB 32-bits, Interlaced");
}

TEST(RegistryTypes, KeysTheCloneByTheGivenIdAndNamesItFromThatId)
{
    const std::int64_t id = TestId(0x01420011);
    const std::int64_t own = TestId(0x00B20011);
    const ZoBayerRGB10 type(own);
    ASSERT_EQ(ZoPixelTypeFactory::RegisterPixelType(id, &type, nullptr), 0u);
    EXPECT_STREQ(ZoPixelTypeFactory::GetPixelTypeName(id), "Bayer RGB 10-bits, Packed, Dual Left+Right output");
    const ZoPixelType& stored = ZoPixelTypeFactory::GetPixelType(id);
    std::unique_ptr<ZoPixelType> copy(ZoPixelTypeFactory::CreatePixelType(id));
    ASSERT_NE(ObservedAddress(stored), nullptr);
    ASSERT_NE(copy, nullptr);
    // Three objects: the caller's, the registered clone, and the copy made for the caller.
    EXPECT_NE(&stored, static_cast<const ZoPixelType*>(&type));
    EXPECT_NE(copy.get(), &stored);
    EXPECT_EQ(std::make_tuple(stored.GetTypeID(), stored.IsBayerPattern(), copy->GetTypeID()),
              std::make_tuple(own, true, own));
}

TEST(RegistryTypes, PixelTypeConverterLookupsGoThroughTheRegistry)
{
    const ZoGrayscale8 gray;
    const ZoRGB48 rgb48;
    const ZoPixelType& registeredGray = ZoPixelTypeFactory::GetPixelType(ZO_PT_GRAY8);
    EXPECT_EQ(std::make_tuple(gray.HasConverterTo(registeredGray), gray.HasConverterFrom(registeredGray),
                              gray.HasConverterTo(rgb48)),
              std::make_tuple(true, true, false));
    EXPECT_EQ(&gray.GetConverterTo(registeredGray), Registered(ZO_PT_GRAY8, ZO_PT_GRAY8));
    EXPECT_EQ(&gray.GetConverterFrom(registeredGray), Registered(ZO_PT_GRAY8, ZO_PT_GRAY8));
    // Nothing converts to 48-bit RGB from 8-bit gray: a null reference.
    EXPECT_EQ(ObservedAddress(gray.GetConverterTo(rgb48)), nullptr);
    EXPECT_EQ(ObservedAddress(rgb48.GetConverterFrom(gray)), nullptr);
    // The flat interface answers the same with a plain null pointer.
    EXPECT_EQ(ZoPixelType_GetConverterTo(&gray, &rgb48), nullptr);
    EXPECT_EQ(ZoPixelTypeFactory_GetConverter(ZO_PT_GRAY8, ZO_PT_RGB48), nullptr);
}

TEST(RegistryConverters, FirstConstructedWinsAndRegistrationNeedsNoTypes)
{
    const ZoPixelConverter* builtIn = Registered(ZO_PT_GRAY8, ZO_PT_GRAY8);
    ASSERT_NE(builtIn, nullptr);
    {
        const ZoIdentityConverter second(ZO_PT_GRAY8, ZO_PT_GRAY8, 1, 1);
        EXPECT_EQ(Registered(ZO_PT_GRAY8, ZO_PT_GRAY8), builtIn);
    }
    // A new pair between unregistered types is served at once.
    const std::int64_t a = TestId(0x00077001), b = TestId(0x00077002);
    ASSERT_FALSE(ZoPixelTypeFactory::HasPixelType(a));
    static const ZoIdentityConverter fresh(a, b, 1, 1);
    EXPECT_EQ(std::make_tuple(ZoPixelTypeFactory::HasConverter(a, b), Registered(a, b),
                              ZoPixelTypeFactory::HasConverter(b, a), Registered(b, a)),
              std::make_tuple(true, static_cast<const ZoPixelConverter*>(&fresh), false, nullptr));
    // Explicit registration of a taken pair: 18, nothing changes.
    EXPECT_EQ(ZoPixelTypeFactory::RegisterPixelConverter(a, b, builtIn), 18u);
    EXPECT_EQ(ZoPixelTypeFactory::RegisterPixelConverter(fresh), 18u);
    EXPECT_EQ(Registered(a, b), &fresh);
    // A free pair may be given any converter, whatever types it reports.
    const std::int64_t c = TestId(0x00077003);
    EXPECT_EQ(ZoPixelTypeFactory::RegisterPixelConverter(a, c, builtIn), 0u);
    EXPECT_EQ(Registered(a, c), builtIn);
}

// Constructed for one pair (where it registers itself), it reports another.
struct Relabelled : ZoIdentityConverter {
    Relabelled(std::int64_t built, std::int64_t source, std::int64_t destination)
        : ZoIdentityConverter(built, built, 1, 1), mSource(source), mDestination(destination) {}
    const std::int64_t& GetSourceType() const override { return mSource; }
    const std::int64_t& GetDestinationType() const override { return mDestination; }
    std::int64_t mSource, mDestination;
};

TEST(RegistryConverters, ReplaceReportsThePreviousConverterOrNullOnAFreePair)
{
    const std::int64_t s = TestId(0x00077101), d = TestId(0x00077102);
    static const ZoIdentityConverter first(s, d, 2, 2), second(s, d, 2, 2);
    ASSERT_EQ(Registered(s, d), &first);
    const ZoPixelConverter* previous = &second;  // must be overwritten
    EXPECT_EQ(ZoPixelTypeFactory::ReplacePixelConverter(second, &previous), 0u);
    EXPECT_EQ(previous, &first);
    EXPECT_EQ(Registered(s, d), &second);
    EXPECT_EQ(ZoPixelTypeFactory::ReplacePixelConverter(first, nullptr), 0u);
    EXPECT_EQ(Registered(s, d), &first);

    // Replacing and registering by object use the types the converter reports.
    const std::int64_t s1 = TestId(0x00077201), d1 = TestId(0x00077202);
    const std::int64_t s2 = TestId(0x00077203), d2 = TestId(0x00077204);
    static const Relabelled free(TestId(0x00077200), s1, d1), another(TestId(0x00077205), s2, d2);
    ASSERT_FALSE(ZoPixelTypeFactory::HasConverter(s1, d1));
    EXPECT_EQ(ZoPixelTypeFactory::ReplacePixelConverter(free, &previous), 0u);
    EXPECT_EQ(previous, nullptr);
    EXPECT_EQ(Registered(s1, d1), &free);
    EXPECT_EQ(ZoPixelTypeFactory::RegisterPixelConverter(another), 0u);
    EXPECT_EQ(Registered(s2, d2), &another);
}

TEST(RegistryConverters, CloneFillsOnlyMissingDestinations)
{
    const std::int64_t from = TestId(0x00078001), to = TestId(0x00078002);
    const std::int64_t d1 = TestId(0x00078010), d2 = TestId(0x00078011), d3 = TestId(0x00078012);
    static const ZoIdentityConverter fromD1(from, d1, 1, 1), fromD2(from, d2, 1, 1), fromD3(from, d3, 1, 1),
        toD2(to, d2, 1, 1);

    EXPECT_EQ(ZoPixelTypeFactory::ClonePixelConverters(from, to), 0u);
    EXPECT_EQ(Registered(to, d1), &fromD1);
    EXPECT_EQ(Registered(to, d2), &toD2);  // kept
    EXPECT_EQ(Registered(to, d3), &fromD3);
    EXPECT_EQ(Registered(to, d1)->GetSourceType(), from);  // the shared object keeps its source

    EXPECT_EQ(ZoPixelTypeFactory::ClonePixelConverters(from, to), 25u);  // nothing left to add
    EXPECT_EQ(ZoPixelTypeFactory::ClonePixelConverters(TestId(0x00078099), to), 25u);  // no converters
    EXPECT_EQ(ZoPixelTypeFactory::ClonePixelConverters(from, from), 25u);
}

TEST(RegistryConverters, EnumerationIsOrderedBySignedIds)
{
    const std::int64_t source = TestId(0x00079001);
    const std::int64_t negative = -0x5100000000LL | 0x20002;  // below every positive ID
    static std::vector<std::unique_ptr<ZoIdentityConverter>> keep;
    for (std::int64_t d : {TestId(0x00079030), negative, TestId(0x00079010)})
        keep.emplace_back(new ZoIdentityConverter(source, d, 1, 1));
    // Sources of one destination, ascending, likewise.
    const std::int64_t target = TestId(0x00079050);
    for (std::int64_t s : {TestId(0x00079042), std::int64_t{-0x5200000000LL}, TestId(0x00079041)})
        keep.emplace_back(new ZoIdentityConverter(s, target, 1, 1));

    const std::int64_t from[] = {negative, TestId(0x00079010), TestId(0x00079030)};
    const std::int64_t to[] = {-0x5200000000LL, TestId(0x00079041), TestId(0x00079042)};
    std::int64_t out = 0;
    for (std::uint32_t i = 0; i < 3; ++i) {
        ASSERT_TRUE(ZoPixelTypeFactory::EnumConverterFrom(i, source, out)) << i;
        EXPECT_EQ(out, from[i]) << i;
        ASSERT_TRUE(ZoPixelTypeFactory::EnumConverterTo(i, target, out)) << i;
        EXPECT_EQ(out, to[i]) << i;
    }
    out = 1234;  // left untouched past the end
    EXPECT_FALSE(ZoPixelTypeFactory::EnumConverterFrom(3, source, out));
    EXPECT_FALSE(ZoPixelTypeFactory::EnumConverterTo(3, target, out));
    EXPECT_EQ(out, 1234);
    EXPECT_FALSE(ZoPixelTypeFactory::EnumConverterFrom(0, TestId(0x00079002), out));
}

}  // namespace
