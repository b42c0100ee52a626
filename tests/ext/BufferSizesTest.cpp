// ZoPixelConverter_GetAreaBufferSizes on hand-worked cases, one per rule of
// counting; the guard-page sweep checks every pair against the converters.
#include <gtest/gtest.h>

#include <cstdint>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"

namespace {

struct Case {
    const char* what;
    std::int64_t source, destination;
    std::uint32_t sourceWidth, sourceHeight, destinationWidth, destinationHeight, width, height, flags, padding;
    std::uint64_t sourceBytes, destinationBytes, destinationBytesBefore;
};

constexpr std::int64_t kGray8Interlaced = ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED;
constexpr std::int64_t kGray12Packed = ZO_PT_GRAY12 | ZO_PIXEL_PACKED;
constexpr std::int64_t kRGB24Planar = ZO_PT_RGB24 | ZO_PIXEL_PLANAR;
constexpr std::uint32_t kInterpolate = ZO_FLAG_BAYER_INTERPOLATE;

const Case kCases[] = {
    // Whole lines of the source's stride, the last line only up to the area's width.
    {"gray 8 to RGB24", ZO_PT_GRAY8, ZO_PT_RGB24, 4, 3, 4, 3, 4, 3, 0, 0, 12, 36, 0},
    {"area inside larger frames", ZO_PT_GRAY8, ZO_PT_RGB24, 10, 5, 6, 4, 3, 2, 0, 0, 13, 27, 0},
    {"padding between lines, none after the last", ZO_PT_GRAY8, ZO_PT_RGB24, 4, 3, 4, 3, 4, 3, 0, 2, 12, 40, 0},
    {"height 0 touches nothing", ZO_PT_GRAY8, ZO_PT_RGB24, 4, 3, 4, 3, 4, 0, 0, 0, 0, 0, 0},
    // Replicating Bayer converts pairs of lines: 640 x 481 reaches line 481.
    {"Bayer replicating, odd height", ZO_PT_BAYER_RGB8, ZO_PT_RGB24, 640, 481, 640, 481, 640, 481, 0, 0,
     640 * 482, 640 * 3 * 482, 0},
    {"Bayer interpolating, odd height", ZO_PT_BAYER_RGB8, ZO_PT_RGB24, 640, 481, 640, 481, 640, 481, kInterpolate,
     0, 640 * 481, 640 * 3 * 481, 0},
    // 4:2:2 converts whole pairs: 5 pixels read and write 6.
    {"YUV 4:2:2 odd width", ZO_PT_YUV8, ZO_PT_RGB24, 5, 2, 5, 2, 5, 2, 0, 0, 10 + 12, 15 + 18, 0},
    // Packed sources: lines of (w >> 1) x 3 bytes, an odd pixel reads its
    // whole group and writes pixel w.
    {"packed 12-bit odd width", kGray12Packed, ZO_PT_GRAY16, 5, 2, 5, 2, 5, 2, 0, 0, 6 + 9, 10 + 12, 0},
    {"packed Left Inverted writes pixel -1", kGray12Packed | ZO_PIXEL_TAP_DUAL_LINV_R, ZO_PT_GRAY16, 5, 1, 5, 1, 5,
     1, 0, 0, 9, 10, 2},
    {"packed Left+Right keeps the odd pixel inside", kGray12Packed | ZO_PIXEL_TAP_DUAL_LR, ZO_PT_GRAY16, 5, 1, 5,
     1, 5, 1, 0, 0, 9, 10, 0},
    // 8-bit two-tap lines span the source width whatever the area's width.
    {"dual tap over the source width", ZO_PT_GRAY8 | ZO_PIXEL_TAP_DUAL_LINV_RINV, ZO_PT_GRAY8, 7, 2, 7, 2, 3, 2,
     0, 0, 7 + 8, 7 + 7, 1},
    // Dual Lines: an odd height's last line reads its even bytes, up to
    // width - 1 bytes past the frame.
    {"dual lines, odd height", ZO_PT_GRAY8 | ZO_PIXEL_TAP_DUAL_LINES, ZO_PT_GRAY8, 4, 3, 4, 3, 4, 3, 0, 0,
     2 * 4 + 7, 12, 0},
    {"dual lines, even height", ZO_PT_GRAY8 | ZO_PIXEL_TAP_DUAL_LINES, ZO_PT_GRAY8, 4, 4, 4, 4, 4, 4, 0, 0, 16, 16,
     0},
    // Interlaced: the second field starts at (sourceHeight x line) / 2; an
    // odd height writes height + 1 lines.
    {"interlaced, odd height", kGray8Interlaced, ZO_PT_GRAY8, 4, 3, 4, 3, 4, 3, 0, 0, 6 + 4 + 4, 16, 0},
    {"interlaced, odd height, fields swapped", kGray8Interlaced, ZO_PT_GRAY8, 4, 3, 4, 3, 4, 3,
     ZO_FLAG_INVERT_DEINTERLACER, 1, 6 + 4 + 4, 3 * 5 + 4, 0},
    {"interlaced, even height", kGray8Interlaced, ZO_PT_GRAY8, 4, 4, 4, 4, 4, 4, 0, 0, 16, 16, 0},
    // Groups of four: 5 pixels read and write 8.
    {"RGB24 to BGR24 groups of four", ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_BGR24, 5, 2, 5, 2, 5, 2, 0, 0,
     15 + 24, 15 + 24, 0},
    // Planar: three planes of destinationWidth x destinationHeight, lines
    // sourceWidth apart, padding ignored.
    {"planar destination", ZO_PT_RGB24, kRGB24Planar, 3, 2, 3, 2, 3, 2, 0, 3, 18, 2 * 6 + 3 + 3, 0},
    // Chains: the first stage reads the whole source frame whatever the area
    // (here in replicating mode: one line past an odd height).
    {"chain reads the whole source", ZO_PT_BAYER_RGB8, kRGB24Planar, 8, 5, 8, 5, 2, 1, 0, 0, 48, 2 * 40 + 2, 0},
    {"chain after an interlaced identity", ZO_PT_BAYER_RGB10 | ZO_PIXEL_INTERLACED, ZO_PT_RGB24, 4, 3, 4, 3, 4, 3,
     0, 0, 12 + 8 + 8, 4 * 12, 0},
    {"interlaced gray to RGB24, odd height", kGray8Interlaced, ZO_PT_RGB24, 4, 3, 4, 3, 4, 3, 0, 0, 14, 48, 0},
};

}  // namespace

TEST(BufferSizes, HandWorkedCases)
{
    for (const Case& t : kCases) {
        SCOPED_TRACE(t.what);
        const ZoPixelConverter* c = ZoPixelTypeFactory_GetConverter(t.source, t.destination);
        ASSERT_NE(c, nullptr);
        ZoAreaBufferSizes sizes{1, 1, 1};
        ASSERT_EQ(ZoPixelConverter_GetAreaBufferSizes(c, t.sourceWidth, t.sourceHeight, t.destinationWidth,
                                                      t.destinationHeight, t.width, t.height, t.flags, t.padding,
                                                      &sizes),
                  ZO_OK);
        EXPECT_EQ(sizes.sourceBytes, t.sourceBytes);
        EXPECT_EQ(sizes.destinationBytes, t.destinationBytes);
        EXPECT_EQ(sizes.destinationBytesBefore, t.destinationBytesBefore);
    }
}

TEST(BufferSizes, RefusesNullArgumentsAndAreasBeyondTheThirtyTwoBitWalk)
{
    const ZoPixelConverter* rgb = ZoPixelTypeFactory_GetConverter(ZO_PT_RGB24 | ZO_PIXEL_PACKED, ZO_PT_RGB32);
    const ZoPixelConverter* interlaced = ZoPixelTypeFactory_GetConverter(kGray8Interlaced, ZO_PT_GRAY8);
    const ZoPixelConverter* bayer = ZoPixelTypeFactory_GetConverter(ZO_PT_BAYER_RGB8, ZO_PT_RGB32);
    ASSERT_TRUE(rgb && interlaced && bayer);
    ZoAreaBufferSizes sizes{7, 7, 7};
    EXPECT_EQ(ZoPixelConverter_GetAreaBufferSizes(nullptr, 4, 4, 4, 4, 4, 4, 0, 0, &sizes), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPixelConverter_GetAreaBufferSizes(rgb, 4, 4, 4, 4, 4, 4, 0, 0, nullptr), ZO_ERR_BAD_ARGUMENT);
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
    const ZoPixelConverter* chain = ZoPixelTypeFactory_GetConverter(ZO_PT_BAYER_RGB8, kRGB24Planar);
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
