// Bayer layout set-up and the last-layout store of the converters.
#include "bayer/BayerLayout.h"

#include "ZoBayerConverters.h"

namespace zo {

int BayerPatternOf(std::uint32_t flags)
{
    if (flags & ZO_FLAG_BAYER_GRBG)
        return kGRBG;
    if (flags & ZO_FLAG_BAYER_GBRG)
        return kGBRG;
    if (flags & ZO_FLAG_BAYER_RGGB)
        return kRGGB;
    if (flags & ZO_FLAG_BAYER_BGGR)
        return kBGGR;
    return -1;
}

ZoBayerLayout ComputeBayerLayout(std::uint32_t width, std::uint32_t flags)
{
    // Even-row phase of each pattern: GRBG starts G R, GBRG G B, RGGB R G,
    // BGGR B G; the odd rows carry the complementary phase.
    static const std::int32_t kEvenPhase[4] = {kGreenRed, kGreenBlue, kRedGreen, kBlueGreen};
    const int pattern = BayerPatternOf(flags);

    ZoBayerLayout layout{};
    layout.evenRowPhase = kEvenPhase[pattern < 0 ? kGRBG : pattern];
    layout.oddRowPhase = 3 - layout.evenRowPhase;

    const std::int32_t w = static_cast<std::int32_t>(width);
    static const std::int32_t kRow[9] = {-1, -1, -1, 0, 0, 0, 1, 1, 1};  // line offset
    static const std::int32_t kColumn[9] = {0, -1, 1, 0, -1, 1, 0, -1, 1};  // pixel offset
    for (int r = 0; r < 9; ++r)
        for (int p = 0; p < 4; ++p)
            layout.neighbourOffsets[r][p] = kRow[r] * w + 2 * p + kColumn[r];
    return layout;
}

}  // namespace zo

void ZoBayerLastLayout::Store(const ZoBayerLayout& layout)
{
    std::lock_guard<std::mutex> lock(mLock);
    mLayout = layout;
}

ZoBayerLayout ZoBayerLastLayout::Load() const
{
    std::lock_guard<std::mutex> lock(mLock);
    return mLayout;
}

const ZoBayerLayout& ZoBayerLastLayout::ForLine(const ZoPixelConverterContext& context, ZoBayerLayout& local) const
{
    if (context.hasBayerLayout)
        return context.bayerLayout;
    local = Load();
    return local;
}
