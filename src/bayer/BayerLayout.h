// Per-call layout of a Bayer area conversion: row phases and the neighbour
// offset table, computed from the source width and the pattern flags.
#ifndef ZO_BAYER_LAYOUT_H
#define ZO_BAYER_LAYOUT_H

#include <cstdint>

#include "ZoPixelConverter.h"

namespace zo {

// Patterns in the order their flags are tested; the first set flag wins.
enum BayerPattern : int { kGRBG = 0, kGBRG = 1, kRGGB = 2, kBGGR = 3 };

// The pattern named by `flags`, or -1 when no pattern flag is set.
int BayerPatternOf(std::uint32_t flags);

// Row phases: the colours of a row's even and odd pixels.
enum BayerPhase : int { kGreenRed = 0, kGreenBlue = 1, kRedGreen = 2, kBlueGreen = 3 };

// Rows of the neighbour offset table.
enum BayerNeighbour : int {
    kAbove = 0, kAboveLeft = 1, kAboveRight = 2, kSame = 3, kLeft = 4, kRight = 5,
    kBelow = 6, kBelowLeft = 7, kBelowRight = 8
};

// The layout for a source `width` samples wide and the pattern of `flags`
// (GRBG when none is set): the even-row phase by pattern, the odd-row phase
// 3 minus it, and for pixels 0, 2, 4, 6 of an eight-pixel group the offsets
// of their 3x3 neighbours from the group's first sample, in samples
// (consecutive source lines `width` samples apart).
ZoBayerLayout ComputeBayerLayout(std::uint32_t width, std::uint32_t flags);

// Puts a layout into the thread's context for the span of one area call and
// restores what was there before (normally nothing) when the call returns.
class BayerLayoutScope {
public:
    BayerLayoutScope(ZoPixelConverterContext& context, const ZoBayerLayout& layout)
        : mContext(context), mHad(context.hasBayerLayout), mSaved(context.bayerLayout)
    {
        context.bayerLayout = layout;
        context.hasBayerLayout = true;
    }
    ~BayerLayoutScope()
    {
        mContext.bayerLayout = mSaved;
        mContext.hasBayerLayout = mHad;
    }
    BayerLayoutScope(const BayerLayoutScope&) = delete;
    BayerLayoutScope& operator=(const BayerLayoutScope&) = delete;

private:
    ZoPixelConverterContext& mContext;
    bool mHad;
    ZoBayerLayout mSaved;
};

}  // namespace zo

#endif
