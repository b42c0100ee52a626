// The BT.601 transform (scalar and 16-bit split form) over its whole domain,
// and every vector path of the YUV kernels against the scalar kernels.
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

// --- vector paths against the scalar kernels --------------------------------

const unsigned kAwkwardCounts[] = {0, 1, 2, 3, 7, 15, 16, 17, 31, 32, 33, 47, 48, 49, 63, 64, 65, 100, 255, 1000};

template <class Writer>
void CheckPaths422(const zo::YUVVectorPaths& path, std::mt19937& rng)
{
    const zo::YUVChannelTables identity{nullptr, nullptr, nullptr, true};
    for (unsigned count : kAwkwardCounts) {
        const std::uint32_t pairs = zo::YUV422PairCount(count);
        for (std::uint32_t sampleBytes : {1u, 2u, 3u}) {
            SCOPED_TRACE(std::string(path.name) + " 8-bit sample bytes " + std::to_string(sampleBytes) + " count " +
                         std::to_string(count) + " layout " + std::to_string(Writer::kBytes));
            const auto src = yuvref::RandomBytes(pairs * 4 * sampleBytes + 64, rng);
            std::vector<unsigned char> want(pairs * 2 * Writer::kBytes + 64, 0xA5), got = want;
            const zo::YUV8PairReader reader{sampleBytes};
            zo::YUV422PairsToRGB<Writer, false>(src.data(), want.data(), 0, pairs, reader, identity);
            const std::uint32_t done = path.pairs8(src.data(), got.data(), pairs, sampleBytes, Writer::kBytes,
                                                   zo::WriterShape<Writer>::kRedIndex);
            ASSERT_LE(done, pairs);
            zo::YUV422PairsToRGB<Writer, false>(src.data(), got.data(), done, pairs, reader, identity);
            ASSERT_EQ(got, want);
        }
        for (std::uint32_t shift : {0u, 1u, 2u, 4u, 6u, 8u}) {
            SCOPED_TRACE(std::string(path.name) + " 10-bit shift " + std::to_string(shift) + " count " +
                         std::to_string(count) + " layout " + std::to_string(Writer::kBytes));
            const auto src = yuvref::RandomBytes(pairs * 8 + 64, rng);
            std::vector<unsigned char> want(pairs * 2 * Writer::kBytes + 64, 0xA5), got = want;
            const zo::YUV10PairReader reader{shift};
            zo::YUV422PairsToRGB<Writer, false>(src.data(), want.data(), 0, pairs, reader, identity);
            const std::uint32_t done =
                path.pairs10(src.data(), got.data(), pairs, shift, Writer::kBytes, zo::WriterShape<Writer>::kRedIndex);
            ASSERT_LE(done, pairs);
            zo::YUV422PairsToRGB<Writer, false>(src.data(), got.data(), done, pairs, reader, identity);
            ASSERT_EQ(got, want);
        }
    }
}

template <class Writer>
void CheckPaths444(const zo::YUVVectorPaths& path, std::mt19937& rng)
{
    const zo::YUVChannelTables identity{nullptr, nullptr, nullptr, true};
    struct Shape {
        std::uint32_t pixelBytes, y, u, v;
    };
    const Shape shapes[] = {{3, 0, 1, 2}, {3, 0, 2, 1}, {3, 2, 1, 2}, {6, 1, 3, 5}, {4, 3, 0, 1}};
    for (unsigned count : kAwkwardCounts)
        for (const Shape& s : shapes) {
            SCOPED_TRACE(std::string(path.name) + " 4:4:4 pixel bytes " + std::to_string(s.pixelBytes) + " count " +
                         std::to_string(count) + " layout " + std::to_string(Writer::kBytes));
            const auto src = yuvref::RandomBytes(count * s.pixelBytes + 64, rng);
            std::vector<unsigned char> want(count * Writer::kBytes + 64, 0xA5), got = want;
            zo::YUV444PixelsToRGB<Writer, false>(src.data(), want.data(), 0, count, s.pixelBytes, 0, s.y, s.u, s.v,
                                                 identity);
            const std::uint32_t done = path.pixels444(src.data(), got.data(), count, s.pixelBytes, s.y, s.u, s.v,
                                                      Writer::kBytes, zo::WriterShape<Writer>::kRedIndex);
            ASSERT_LE(done, count);
            zo::YUV444PixelsToRGB<Writer, false>(src.data(), got.data(), done, count, s.pixelBytes, 0, s.y, s.u, s.v,
                                                 identity);
            ASSERT_EQ(got, want);
        }
}

template <class Writer>
void CheckAll(const zo::YUVVectorPaths& path, std::mt19937& rng)
{
    CheckPaths422<Writer>(path, rng);
    CheckPaths444<Writer>(path, rng);
}

TEST(YUVVectorPaths, MatchScalarKernelsOnAwkwardWidths)
{
    std::uint32_t n = 0;
    const zo::YUVVectorPaths* const* paths = zo::YUVAvailableVectorPaths(n);
    std::mt19937 rng(3);
    for (std::uint32_t i = 0; i < n; ++i) {
        CheckAll<zo::WriteRGB16>(*paths[i], rng);
        CheckAll<zo::WriteRGB24>(*paths[i], rng);
        CheckAll<zo::WriteBGR24>(*paths[i], rng);
        CheckAll<zo::WriteRGB32>(*paths[i], rng);
        CheckAll<zo::WriteBGR32>(*paths[i], rng);
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
