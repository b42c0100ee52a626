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
    const std::int64_t rgb = ZO_PT_RGB24 | ZO_PIXEL_PACKED, chain = ZO_PT_RGB24 | ZO_PIXEL_PLANAR;
    const struct {
        std::int64_t source, destination;
        std::uint32_t area[7];  // frame widths and heights, area, padding
    } refused[] = {
        {rgb, ZO_PT_RGB32, {1u << 31, 1, 4, 1, 4, 1, 0}},  // a source line of 3 x 2^31 bytes
        {rgb, ZO_PT_RGB32, {4, 1, 1u << 30, 1, 4, 1, 1}},  // a destination line of 4 x 2^30 bytes plus padding
        {ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, ZO_PT_GRAY8, {1u << 16, 1u << 16, 4, 4, 4, 4, 0}},  // its second field
        {ZO_PT_BAYER_RGB8, ZO_PT_RGB32, {1u << 31, 2, 4, 2, 4, 2, 0}},  // a Bayer pair step of 2 x 2^31
        {ZO_PT_BAYER_RGB8, chain, {4, 4, 4, 5, 4, 5, 0}},  // a chain's area beyond its source frame
        // The chain's intermediate RGB24 frame (one line more than the
        // source's) beyond 4 GiB - 1: 3 x 65536 x 21846 bytes.
        {ZO_PT_BAYER_RGB8, chain, {1u << 16, 21845, 4, 4, 4, 4, 0}},
    };
    ZoAreaBufferSizes sizes{7, 7, 7};
    for (const auto& r : refused) {
        const std::uint32_t* g = r.area;
        EXPECT_EQ(ZoPixelConverter_GetAreaBufferSizes(ZoPixelTypeFactory_GetConverter(r.source, r.destination), g[0],
                                                      g[1], g[2], g[3], g[4], g[5], 0, g[6], &sizes),
                  ZO_ERR_BAD_ARGUMENT)
            << std::hex << r.source << " " << g[0] << " x " << g[1];
    }
    EXPECT_EQ(sizes.sourceBytes, 7u);  // untouched on refusal
    const ZoPixelConverter* c = ZoPixelTypeFactory_GetConverter(ZO_PT_BAYER_RGB8, chain);
    EXPECT_EQ(ZoPixelConverter_GetAreaBufferSizes(c, 1u << 16, 21844, 4, 4, 4, 4, 0, 0, &sizes), ZO_OK);
    // Just inside: 4 x (2^30 - 1) destination bytes a line.
    const std::uint32_t most = (1u << 30) - 1;
    c = ZoPixelTypeFactory_GetConverter(rgb, ZO_PT_RGB32);
    ASSERT_EQ(ZoPixelConverter_GetAreaBufferSizes(c, most, 2, most, 2, most, 2, 0, 0, &sizes), ZO_OK);
    EXPECT_EQ(sizes.destinationBytes, 2 * 4 * std::uint64_t{most});
}
