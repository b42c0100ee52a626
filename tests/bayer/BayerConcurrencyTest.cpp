// Threads converting through the same Bayer instances at once, each with its
// own width, pattern and mode: every result must match the reference (the
// per-call layout must not leak between threads).
#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>
#include <vector>

#include "bayer/BayerReference.h"

using namespace bayer_test;

TEST(BayerConcurrency, DifferentWidthsAndPatternsThroughOneInstance)
{
    const std::vector<Instance> all = AllInstances();
    auto find = [&](std::int64_t source, std::int64_t destination) {
        for (const Instance& in : all)
            if (in.source == source && in.destination == destination)
                return in;
        return all.front();
    };
    const Instance eight = find(ZO_PT_BAYER_RGB8, ZO_PT_RGB24);
    const Instance twelve = find(ZO_PT_BAYER_RGB12, ZO_PT_RGB48);
    const std::uint32_t I = ZO_FLAG_BAYER_INTERPOLATE;
    struct Job {
        Instance in;
        Case c;
    };
    const Job jobs[] = {
        {eight, {37, 37, 9, ZO_FLAG_BAYER_GRBG | I, nullptr, 0}},
        {eight, {20, 20, 6, ZO_FLAG_BAYER_BGGR | I, nullptr, 2}},
        {eight, {13, 11, 7, ZO_FLAG_BAYER_GBRG, nullptr, 0}},
        {eight, {64, 64, 5, ZO_FLAG_BAYER_RGGB | I, &RandomFilter(), 0}},
        {twelve, {29, 29, 8, ZO_FLAG_BAYER_RGGB | I, nullptr, 0}},
        {twelve, {18, 15, 5, ZO_FLAG_BAYER_GRBG | I, &RandomFilter(), 4}},
    };
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < sizeof jobs / sizeof jobs[0]; ++t)
        threads.emplace_back([&, t] {
            std::mt19937 rng(static_cast<std::uint32_t>(100 + t));
            const Job& job = jobs[t];
            const ZoPixelConverter& conv = ZoPixelTypeFactory::GetConverter(job.in.source, job.in.destination);
            for (int i = 0; i < 60; ++i) {
                const Outcome o = RunCase(conv, job.in, job.c, rng);
                if (o.actual != o.expected || o.result != ZO_OK)
                    ++failures;
            }
        });
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(failures.load(), 0);
}
