// The flat functions for pixel types and the registry: bool arguments given
// as integers and forwarding to the class interface. (Null handles are
// checked by the C program in tests/c.)
#include <gtest/gtest.h>

#include "ZoImgLibC.h"
#include "ZoPixelTypeFactory.h"

namespace {

TEST(FlatTypes, ForwardToTheClassInterface)
{
    ZoPixelType* packed = ZoPixelTypeFactory_CreatePixelType(ZO_PT_GRAY10 | ZO_PIXEL_PACKED);
    ASSERT_NE(packed, nullptr);
    EXPECT_EQ(ZoPixelType_GetTypeID(packed), 0x00410002);
    EXPECT_EQ(ZoPixelType_GetPixelBitSize(packed), 10);
    EXPECT_EQ(ZoPixelType_GetPixelByteSize(packed), 2);
    EXPECT_FALSE(ZoPixelType_IsBayerPattern(packed));
    EXPECT_EQ(ZoPixelType_GetBufferSizeFor(packed, 3, 1), 6u);

    ZoPixelType* copy = ZoPixelType_Clone(packed);
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, packed);
    EXPECT_EQ(ZoPixelType_GetTypeID(copy), 0x00410002);
    ZoPixelType_Destroy(copy);

    ZoPixelType* gray16 = ZoPixelTypeFactory_CreatePixelType(ZO_PT_GRAY16);
    ASSERT_NE(gray16, nullptr);
    const bool served = ZoPixelTypeFactory::HasConverter(0x00410002, ZO_PT_GRAY16);
    EXPECT_EQ(ZoPixelType_HasConverterTo(packed, gray16), served);
    EXPECT_EQ(ZoPixelType_HasConverterFrom(gray16, packed), served);
    EXPECT_EQ(ZoPixelType_GetConverterTo(packed, gray16), ZoPixelTypeFactory_GetConverter(0x00410002, ZO_PT_GRAY16));
    EXPECT_EQ(ZoPixelType_GetConverterFrom(gray16, packed), ZoPixelType_GetConverterTo(packed, gray16));
    // The reverse direction has no converter: null, not an identity.
    EXPECT_FALSE(ZoPixelType_HasConverterTo(gray16, packed));
    EXPECT_EQ(ZoPixelType_GetConverterTo(gray16, packed), nullptr);
    ZoPixelType_Destroy(gray16);
    ZoPixelType_Destroy(packed);
}

TEST(FlatTypes, RegistryFunctions)
{
    EXPECT_TRUE(ZoPixelTypeFactory_HasPixelType(0x01020013));
    EXPECT_FALSE(ZoPixelTypeFactory_HasPixelType(0x00040003));
    EXPECT_EQ(ZoPixelTypeFactory_CreatePixelType(0x00040003), nullptr);
    EXPECT_STREQ(ZoPixelTypeFactory_GetPixelTypeName(0x01020013),
                 "Bayer RGGB, 8-bits, Dual Left+Right Output (deprecated)");
    EXPECT_STREQ(ZoPixelTypeFactory_GetPixelTypeName(0x6600040003LL), "Unregistered pixel type");
    EXPECT_TRUE(ZoPixelTypeFactory_HasConverter(ZO_PT_GRAY8, ZO_PT_GRAY8));
    EXPECT_EQ(ZoPixelTypeFactory_GetConverter(ZO_PT_GRAY8, ZO_PT_GRAY8),
              &ZoPixelTypeFactory::GetConverter(ZO_PT_GRAY8, ZO_PT_GRAY8));
    EXPECT_EQ(ZoPixelTypeFactory_GetConverter(0x6600000001LL, ZO_PT_GRAY8), nullptr);

    int64_t destination = 0;
    ASSERT_TRUE(ZoPixelTypeFactory_EnumConverterFrom(0, ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, &destination));
    std::int64_t expected = 0;
    ASSERT_TRUE(ZoPixelTypeFactory::EnumConverterFrom(0, ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, expected));
    EXPECT_EQ(destination, expected);
    int64_t source = 0;
    ASSERT_TRUE(ZoPixelTypeFactory_EnumConverterTo(0, ZO_PT_GRAY8, &source));
    ASSERT_TRUE(ZoPixelTypeFactory::EnumConverterTo(0, ZO_PT_GRAY8, expected));
    EXPECT_EQ(source, expected);
}

TEST(FlatTypes, SearchTakesIntegerFlagsAsBools)
{
    // Any non-zero value is true.
    ZoPixelType* alias = ZoPixelTypeFactory_CreatePixelType2(8, 0x20000, 0, 0, 0, 0, 0, -7, 1);
    ASSERT_NE(alias, nullptr);
    EXPECT_EQ(ZoPixelType_GetTypeID(alias), 0x00020013);
    ZoPixelType_Destroy(alias);

    ZoPixelType* packed = ZoPixelTypeFactory_CreatePixelType2(12, 0x10000, 0, 2, 0x100, 0, 0x4000000, 0, 0);
    ASSERT_NE(packed, nullptr);
    EXPECT_EQ(ZoPixelType_GetTypeID(packed), 0x04610003);
    ZoPixelType_Destroy(packed);

    // Counting the flat way: rising indexes until null.
    uint32_t count = 0;
    for (ZoPixelType* t; (t = ZoPixelTypeFactory_CreatePixelType2(10, 0x20000, 0, 1, 0, 0, 0x2000000, 1, count));
         ++count)
        ZoPixelType_Destroy(t);
    EXPECT_EQ(count, 2u);  // 0x02420011 and its deprecated alias 0x02420014
}

}  // namespace
