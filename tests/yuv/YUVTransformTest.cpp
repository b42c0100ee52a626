// The BT.601 transform (scalar and 16-bit split form) over its whole domain
// (the vector paths are held to the scalar level by the SIMD level tests),
// and the vector paths' coverage.
#include <gtest/gtest.h>

#include <vector>

#include "yuv/YUVReference.h"
#include "yuv/YUVKernels.h"
#include "yuv/YUVSimd.h"

namespace {

// Every (Y, U, V) triple: the library's transform, its clamp and the 16-bit
// lane form the vector paths use, against the reference formula.
TEST(YUVTransform, EveryTripleMatchesReference)
{
    long mismatches = 0;
    for (int y = 0; y < 256; ++y)
        for (int u = 0; u < 256; ++u)
            for (int v = 0; v < 256; ++v) {
                const yuvref::RGB x = yuvref::Unclamped(y, u, v);
                const zo::RGB8 c = zo::YUVToRGB8(y, u, v);
                mismatches += zo::bt601::RedLanes(y, u, v) != x.r;
                mismatches += zo::bt601::RedBytePairLanes(y, u, v) != x.r;
                mismatches += zo::bt601::GreenLanes(y, u, v) != x.g;
                mismatches += zo::bt601::BlueLanes(y, u, v) != x.b;
                mismatches += c.r != yuvref::Clamp(x.r) || c.g != yuvref::Clamp(x.g) || c.b != yuvref::Clamp(x.b);
            }
    EXPECT_EQ(mismatches, 0);
}

// The vector paths cover the registered shapes (so the speed-critical forms
// do not silently fall back to scalar code).
TEST(YUVVectorPaths, CoverRegisteredShapes)
{
    std::uint32_t n = 0;
    const zo::YUVVectorPaths* const* paths = zo::YUVAvailableVectorPaths(n);
    if (n == 0)
        GTEST_SKIP() << "no vector paths on this architecture";
    std::vector<unsigned char> src(1024), dst(2048);
    for (std::uint32_t i = 0; i < n; ++i) {
        EXPECT_EQ(paths[i]->pairs8(src.data(), dst.data(), 64, 1, 4, 2, false), 64u) << paths[i]->name;
        EXPECT_EQ(paths[i]->pairs8(src.data(), dst.data(), 64, 2, 3, 0, false), 64u) << paths[i]->name;
        EXPECT_EQ(paths[i]->pairs10(src.data(), dst.data(), 64, 2, 2, 0), 64u) << paths[i]->name;
        EXPECT_EQ(paths[i]->pixels444(src.data(), dst.data(), 128, 3, 0, 2, 1, 4, 0), 128u) << paths[i]->name;
    }
}

}  // namespace
