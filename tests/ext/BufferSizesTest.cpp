// ZoPixelConverter_GetAreaBufferSizes on hand-worked cases, one per rule of
// counting (tests/data/ext-buffer-sizes.csv); the guard-page sweep checks
// every pair against the converters; null arguments are the C API test's
// and the flat-API fuzzer's.
#include <gtest/gtest.h>

#include <cstdint>
#include <tuple>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"
#include "support/ConvertSupport.h"

TEST(BufferSizes, HandWorkedCases)
{
    const std::string path = std::string(__FILE__).substr(0, std::string(__FILE__).rfind("/ext/")) +
                             "/data/ext-buffer-sizes.csv";
    const auto rows = zotest::CsvRows(path.c_str(), 14);
    ASSERT_EQ(rows.size(), 21u) << path;
    for (const auto& row : rows) {
        SCOPED_TRACE(row[13]);
        std::uint64_t v[13];
        for (int i = 0; i < 13; ++i)
            v[i] = std::stoull(row[i], nullptr, 0);
        const ZoPixelConverter* c = ZoPixelTypeFactory_GetConverter(std::int64_t(v[0]), std::int64_t(v[1]));
        ASSERT_NE(c, nullptr);
        ZoAreaBufferSizes sizes{1, 1, 1};
        ASSERT_EQ(ZoPixelConverter_GetAreaBufferSizes(c, std::uint32_t(v[2]), std::uint32_t(v[3]), std::uint32_t(v[4]),
                                                      std::uint32_t(v[5]), std::uint32_t(v[6]), std::uint32_t(v[7]),
                                                      std::uint32_t(v[8]), std::uint32_t(v[9]), &sizes),
                  ZO_OK);
        EXPECT_EQ(std::make_tuple(sizes.sourceBytes, sizes.destinationBytes, sizes.destinationBytesBefore),
                  std::make_tuple(v[10], v[11], v[12]));
    }
}

TEST(BufferSizes, RefusesAreasBeyondTheThirtyTwoBitWalk)
{
    const ZoPixelConverter* rgb = ZoPixelTypeFactory_GetConverter(ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_RGB32);
    const ZoPixelConverter* interlaced =
        ZoPixelTypeFactory_GetConverter(ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, ZO_PT_GRAY8);
    const ZoPixelConverter* bayer = ZoPixelTypeFactory_GetConverter(ZO_PT_BAYER_RGB8, ZO_PT_RGB32);
    ASSERT_TRUE(rgb && interlaced && bayer);
    ZoAreaBufferSizes sizes{7, 7, 7};
    // A source line of 3 x 2^31 bytes, a destination line of 4 x 2^30 bytes
    // plus padding, the second field of a 2^16 x 2^16 frame, and a
    // Bayer pair step of 2 x 2^31: none fits the walk's 32-bit arithmetic.
    EXPECT_EQ(ZoPixelConverter_GetAreaBufferSizes(rgb, 1u << 31, 1, 4, 1, 4, 1, 0, 0, &sizes), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPixelConverter_GetAreaBufferSizes(rgb, 4, 1, 1u << 30, 1, 4, 1, 0, 1, &sizes), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPixelConverter_GetAreaBufferSizes(interlaced, 1u << 16, 1u << 16, 4, 4, 4, 4, 0, 0, &sizes),
              ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPixelConverter_GetAreaBufferSizes(bayer, 1u << 31, 2, 4, 2, 4, 2, 0, 0, &sizes),
              ZO_ERR_BAD_ARGUMENT);
    // A chain's area beyond its source frame, and its intermediate frame
    // (RGB24 lines, one more than the source's) beyond 4 GiB - 1:
    // 3 x 65536 x 21846 bytes.
    const ZoPixelConverter* chain = ZoPixelTypeFactory_GetConverter(ZO_PT_BAYER_RGB8, ZO_PT_RGB24 | ZO_PIXEL_PLANAR);
    ASSERT_NE(chain, nullptr);
    EXPECT_EQ(ZoPixelConverter_GetAreaBufferSizes(chain, 4, 4, 4, 5, 4, 5, 0, 0, &sizes), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPixelConverter_GetAreaBufferSizes(chain, 1u << 16, 21845, 4, 4, 4, 4, 0, 0, &sizes),
              ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(sizes.sourceBytes, 7u);  // untouched on refusal
    EXPECT_EQ(ZoPixelConverter_GetAreaBufferSizes(chain, 1u << 16, 21844, 4, 4, 4, 4, 0, 0, &sizes), ZO_OK);
    // Just inside: 4 x (2^30 - 1) destination bytes a line.
    ASSERT_EQ(ZoPixelConverter_GetAreaBufferSizes(rgb, (1u << 30) - 1, 2, (1u << 30) - 1, 2, (1u << 30) - 1, 2, 0,
                                                  0, &sizes),
              ZO_OK);
    EXPECT_EQ(sizes.destinationBytes, 2 * 4 * std::uint64_t{(1u << 30) - 1});
}
