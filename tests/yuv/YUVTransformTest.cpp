// The BT.601 transform (scalar and 16-bit split form) over its whole domain,
// directly and through the converters, and the vector paths' coverage.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "ZoPixelTypeFactory.h"
#include "ZoYUVConverters.h"
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

// Every triple through the registered converters (vector paths included),
// to a 32-bit and a 24-bit layout: 4:4:4 as one line of all (U, V) for each
// Y; 4:2:2 as pairs whose two pixels, Y and Y + 128, share each (U, V).
TEST(YUVTransform, EveryTripleThroughConverters)
{
    for (const bool is444 : {true, false})
        for (std::int64_t dest : {ZO_PT_BGR32, ZO_PT_RGB24}) {
            const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(is444 ? ZO_PT_YUV8_444 : ZO_PT_YUV8, dest);
            const int db = yuvref::DestBytes(dest), perUV = is444 ? 1 : 2;  // pixels sharing one (U, V)
            std::vector<unsigned char> src(65536 * (is444 ? 3 : 4)), dst(65536 * perUV * db);
            long mismatches = 0;
            for (int y = 0; y < 256 / perUV; ++y) {
                for (int j = 0; j < 65536; ++j) {
                    unsigned char* p = &src[j * (is444 ? 3 : 4)];
                    const unsigned char u = static_cast<unsigned char>(j >> 8), v = static_cast<unsigned char>(j);
                    const unsigned char yb = static_cast<unsigned char>(y), y2 = static_cast<unsigned char>(y + 128);
                    if (is444) {
                        p[0] = yb, p[1] = u, p[2] = v;
                    } else {
                        p[0] = yb, p[1] = u, p[2] = y2, p[3] = v;
                    }
                }
                c.Convert(src.data(), dst.data(), 65536 * perUV);
                for (int i = 0; i < 65536 * perUV; ++i) {
                    const int j = i / perUV;
                    const yuvref::RGB want = yuvref::Convert(y + (i % perUV) * 128, j >> 8, j & 0xFF);
                    unsigned char expect[4];
                    yuvref::WritePixel(dest, expect, want.r, want.g, want.b);
                    mismatches += std::memcmp(expect, dst.data() + i * db, db) != 0;
                }
            }
            EXPECT_EQ(mismatches, 0) << std::hex << dest << (is444 ? " 4:4:4" : " 4:2:2");
        }
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
        EXPECT_EQ(paths[i]->pairs8(src.data(), dst.data(), 64, 1, 4, 2), 64u) << paths[i]->name;
        EXPECT_EQ(paths[i]->pairs8(src.data(), dst.data(), 64, 2, 3, 0), 64u) << paths[i]->name;
        EXPECT_EQ(paths[i]->pairs10(src.data(), dst.data(), 64, 2, 2, 0), 64u) << paths[i]->name;
        EXPECT_EQ(paths[i]->pixels444(src.data(), dst.data(), 128, 3, 0, 2, 1, 4, 0), 128u) << paths[i]->name;
    }
}

}  // namespace
