// Several threads converting through one shared RGB converter, each with its
// own filter: the filter travels in each thread's context, so every thread
// sees exactly its own tables.
#include <gtest/gtest.h>

#include <random>
#include <thread>
#include <vector>

#include "ZoPixelTypeFactory.h"
#include "ZoRGBFilter.h"
#include "support/AreaSupport.h"

TEST(RGBConcurrency, SharedInstanceWithPerThreadFilters)
{
    const std::int64_t source = ZO_PT_RGB24 | ZO_PIXEL_PACKED;
    ASSERT_TRUE(ZoPixelTypeFactory::HasConverter(source, ZO_PT_BGR32));
    const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(source, ZO_PT_BGR32);
    constexpr std::uint32_t kWidth = 37, kHeight = 9, kThreads = 4;
    std::mt19937 rng(5);
    const std::vector<unsigned char> frame = zotest::RandomBytes(kWidth * 3 * kHeight, rng);

    // Thread t scales red by (t + 1) / 4 (thread 3: identity, the fast path).
    std::vector<ZoRGBFilter> filters;
    for (std::uint32_t t = 0; t < kThreads; ++t) {
        filters.emplace_back(8);
        ASSERT_EQ(filters.back().SetMultipliers((t + 1) / 4.0, 1.0, 1.0), ZO_OK);
    }
    std::vector<int> failures(kThreads, 0);
    std::vector<std::thread> threads;
    for (std::uint32_t t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            std::vector<unsigned char> d(kWidth * 4 * kHeight);
            for (int round = 0; round < 200; ++round) {
                c.Convert(filters[t], frame.data(), kWidth, kHeight, d.data(), kWidth, kHeight, kWidth, kHeight, 0, 0);
                for (std::size_t p = 0; p < std::size_t(kWidth) * kHeight; ++p) {
                    const unsigned char* s = &frame[3 * p];
                    const unsigned char expected[4] = {s[2], s[1], filters[t].GetRedValue8(s[0]), 0};
                    for (int b = 0; b < 4; ++b)
                        failures[t] += d[4 * p + b] != expected[b];
                }
            }
        });
    for (std::thread& th : threads)
        th.join();
    for (std::uint32_t t = 0; t < kThreads; ++t)
        EXPECT_EQ(failures[t], 0) << "thread " << t;
}
