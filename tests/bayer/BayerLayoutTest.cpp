// The layout set-up: row phases by pattern and the neighbour offset table.
#include <gtest/gtest.h>

#include "bayer/BayerLayout.h"

TEST(BayerLayout, RowPhasesByFirstPatternFlag)
{
    struct Row { std::uint32_t flags; int even; };
    const Row rows[] = {
        {0, 0},  // none: GRBG
        {ZO_FLAG_BAYER_GRBG, 0}, {ZO_FLAG_BAYER_GBRG, 1}, {ZO_FLAG_BAYER_RGGB, 2}, {ZO_FLAG_BAYER_BGGR, 3},
        {ZO_FLAG_BAYER_BGGR | ZO_FLAG_BAYER_GBRG, 1}, {ZO_FLAG_BAYER_BGGR | ZO_FLAG_BAYER_RGGB, 2},
        {0xF0 | ZO_FLAG_BAYER_INTERPOLATE, 0},
    };
    for (const Row& r : rows) {
        const ZoBayerLayout l = zo::ComputeBayerLayout(10, r.flags);
        EXPECT_EQ(l.evenRowPhase, r.even) << r.flags;
        EXPECT_EQ(l.oddRowPhase, 3 - r.even) << r.flags;
    }
    EXPECT_EQ(zo::BayerPatternOf(0x100), -1);
}

TEST(BayerLayout, NeighbourOffsets)
{
    for (std::int32_t w : {1, 7, 1920}) {
        const ZoBayerLayout l = zo::ComputeBayerLayout(std::uint32_t(w), ZO_FLAG_BAYER_RGGB);
        const std::int32_t expected[9][4] = {
            {-w, 2 - w, 4 - w, 6 - w},       {-w - 1, 1 - w, 3 - w, 5 - w}, {1 - w, 3 - w, 5 - w, 7 - w},
            {0, 2, 4, 6},                    {-1, 1, 3, 5},                 {1, 3, 5, 7},
            {w, w + 2, w + 4, w + 6},        {w - 1, w + 1, w + 3, w + 5}, {w + 1, w + 3, w + 5, w + 7},
        };
        for (int r = 0; r < 9; ++r)
            for (int p = 0; p < 4; ++p)
                EXPECT_EQ(l.neighbourOffsets[r][p], expected[r][p]) << "w " << w << " row " << r << " p " << p;
    }
}
