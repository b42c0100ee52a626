// Every registered pair converts small areas in buffers sized by
// ZoPixelConverter_GetAreaBufferSizes alone, each buffer placed against an
// inaccessible page right after its end and, in a second run, right before
// its start (the bytes before the destination pointer included): a read or
// write outside the counted bytes faults. The destination's first and last
// counted bytes must be written (poison check), so the count is not padded;
// the source count's exact value is pinned rule by rule by the hand-worked
// buffer sizes.
//
// Linux only (mmap, mprotect).
#include <gtest/gtest.h>

#if defined(__linux__)

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "ZoBayerConverters.h"
#include "ZoGenericConverters.h"
#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"
#include "ZoPixelTypeFactory.h"
#include "support/AreaSupport.h"
#include "support/ConvertSupport.h"
#include "support/BuiltInPairs.h"

namespace {

// Data pages with an inaccessible page on each side, mapped once and reused.
class GuardedRegion {
public:
    explicit GuardedRegion(std::size_t bytes) : mPage(static_cast<std::size_t>(sysconf(_SC_PAGESIZE)))
    {
        mData = (bytes + mPage - 1) / mPage * mPage;
        void* base = mmap(nullptr, mData + 2 * mPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        mBase = static_cast<unsigned char*>(base);
        if (base == MAP_FAILED || mprotect(mBase, mPage, PROT_NONE) != 0 ||
            mprotect(mBase + mPage + mData, mPage, PROT_NONE) != 0)
            throw std::runtime_error("cannot map guarded pages");
    }
    ~GuardedRegion() { munmap(mBase, mData + 2 * mPage); }
    GuardedRegion(const GuardedRegion&) = delete;
    GuardedRegion& operator=(const GuardedRegion&) = delete;

    std::size_t Capacity() const { return mData; }
    unsigned char* Start() const { return mBase + mPage; }
    // `size` bytes ending at the guard after the data, or starting at the
    // guard before it.
    unsigned char* Place(std::uint64_t size, bool againstEnd) const
    {
        return againstEnd ? Start() + mData - size : Start();
    }

private:
    std::size_t mPage, mData = 0;
    unsigned char* mBase = nullptr;
};

bool HasBayerStage(const ZoPixelConverter& c)
{
    if (const auto* chain = dynamic_cast<const ZoComplexConverter*>(&c))
        return HasBayerStage(*chain->GetFirst()) || HasBayerStage(*chain->GetSecond());
    return dynamic_cast<const ZoBayerRGB8ToRGB*>(&c) || dynamic_cast<const ZoBayerRGB16ToRGB*>(&c);
}

// The flag sets that change what a pair reads or writes: the four Bayer
// patterns in both modes, the field order of interlaced sources.
std::vector<std::uint32_t> FlagSets(const ZoPixelConverter& c)
{
    std::vector<std::uint32_t> sets;
    const std::uint32_t fields = (c.GetSourceType() & ZO_PIXEL_INTERLACED) ? 2 : 1;
    for (std::uint32_t pattern = HasBayerStage(c) ? 0 : 4; pattern < 5; ++pattern)
        for (std::uint32_t mode = 0; mode < (pattern < 4 ? 2u : 1u); ++mode)
            for (std::uint32_t field = 0; field < fields; ++field)
                sets.push_back((pattern < 4 ? ZO_FLAG_BAYER_GRBG << pattern : 0) |
                               (mode ? ZO_FLAG_BAYER_INTERPOLATE : 0) | (field ? ZO_FLAG_INVERT_DEINTERLACER : 0));
    return sets;
}

// Holds the calling thread's context record for its lifetime, so that the
// many conversions of the sweep find it at hand instead of entering the
// library-wide gate each time (what they read and write does not change).
class ContextPin : public ZoPixelConverter {
public:
    ContextPin() : ZoPixelConverter(zotest::FreshTestId(), zotest::FreshTestId(), 1, 1, 1, 1), mHold(*this) {}

private:
    ContextHold mHold;
};

constexpr std::uint32_t kShards = 4;


}  // namespace

// The pairs are split into shards, run as separate tests (in parallel under
// ctest -j).
class GuardPageSweep : public testing::TestWithParam<std::uint32_t> {};

TEST_P(GuardPageSweep, EveryPairStaysInsideTheCountedBytesAndWritesTheLastOne)
{
    const auto pairs = zotest::RegisteredBuiltInPairs();
    ASSERT_EQ(pairs.size(), 680u);
    const ContextPin pin;

    GuardedRegion source(64 * 1024), destination(64 * 1024);
    std::mt19937 random(12);
    const std::vector<unsigned char> bytes = zotest::RandomBytes(source.Capacity(), random);
    std::memcpy(source.Start(), bytes.data(), bytes.size());

    for (std::size_t index = GetParam(); index < pairs.size(); index += kShards) {
        const ZoPixelConverter* c = ZoPixelTypeFactory_GetConverter(pairs[index].first, pairs[index].second);
        ASSERT_NE(c, nullptr);
        for (std::uint32_t flags : FlagSets(*c))
            for (std::uint32_t w = 1; w <= 17; ++w)
                for (std::uint32_t h = 1; h <= 9; ++h)
                    for (std::uint32_t variant = 0; variant < 5; ++variant) {
                        // Paddings 0..3 over frames the size of the area, then
                        // an area inside larger frames.
                        const zotest::Area g = variant < 4 ? zotest::Area{w, h, w, h, w, h, flags, variant}
                                                           : zotest::Area{w + 3, h + 2, w + 1, h + 1, w, h, flags, 1};
                        ZoAreaBufferSizes sizes{};
                        ASSERT_EQ(ZoPixelConverter_GetAreaBufferSizes(c, g.sourceWidth, g.sourceHeight,
                                                                      g.destinationWidth, g.destinationHeight, w, h,
                                                                      flags, g.padding, &sizes),
                                  ZO_OK);
                        const std::uint64_t total = sizes.destinationBytesBefore + sizes.destinationBytes;
                        ASSERT_LE(sizes.sourceBytes, source.Capacity());
                        ASSERT_LE(total, destination.Capacity());
                        for (bool againstEnd : {true, false}) {
                            unsigned char* block = destination.Place(total, againstEnd);
                            // Two poisons: a counted byte that keeps the poison in
                            // both runs was not written.
                            bool firstKept = true, lastKept = true;
                            for (unsigned char poison : {0x5A, 0xA5}) {
                                std::memset(block, poison, total);
                                ASSERT_EQ(ZoPixelConverter_ConvertArea(
                                              c, source.Place(sizes.sourceBytes, againstEnd), g.sourceWidth,
                                              g.sourceHeight, block + sizes.destinationBytesBefore,
                                              g.destinationWidth, g.destinationHeight, g.width, g.height, flags,
                                              g.padding),
                                          ZO_OK);
                                firstKept = firstKept && total && block[0] == poison;
                                lastKept = lastKept && total && block[total - 1] == poison;
                                if (!againstEnd || (!firstKept && !lastKept))
                                    break;
                            }
                            // Frames the size of the area: the last counted byte is the
                            // last pixel of the last line reached, the first one the
                            // first written (before the pointer, if anything is).
                            ASSERT_FALSE(variant < 4 && againstEnd && (firstKept || lastKept))
                                << std::hex << pairs[index].first << " -> " << pairs[index].second << std::dec
                                << " w " << w << " h " << h << " flags " << flags << " padding " << g.padding
                                << ": counted bytes never written (first " << firstKept << ", last " << lastKept << ")";
                        }
                    }
    }
}

INSTANTIATE_TEST_SUITE_P(Shards, GuardPageSweep, testing::Range(0u, kShards));

#endif
