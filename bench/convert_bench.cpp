// The conversion framework: the area walk around the identity copy and
// deinterlacer, and chained conversions against their direct second stage.
// Compare with BM_MemcpyDestination at the same frame size and bytes
// per pixel.
#include "BenchCommon.h"

namespace {

// Gray 8 to itself: the area walk and one memcpy per line.
void BM_IdentityGray8(benchmark::State& state) { zobench::ConvertFrames(state, ZO_PT_GRAY8, ZO_PT_GRAY8); }

// Interlaced to progressive (two field passes).
void BM_DeinterlaceGray8(benchmark::State& state)
{
    zobench::ConvertFrames(state, ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, ZO_PT_GRAY8);
}
void BM_DeinterlaceBayer10(benchmark::State& state)
{
    zobench::ConvertFrames(state, ZO_PT_BAYER_RGB10 | ZO_PIXEL_INTERLACED, ZO_PT_BAYER_RGB10, 10);
}

// A chain (deinterlacer, then Bayer to RGB24) and its second stage alone.
void BM_ChainInterlacedBayer10ToRGB24(benchmark::State& state)
{
    zobench::ConvertFrames(state, ZO_PT_BAYER_RGB10 | ZO_PIXEL_INTERLACED, ZO_PT_RGB24, 10);
}
void BM_Bayer10ToRGB24(benchmark::State& state) { zobench::ConvertFrames(state, ZO_PT_BAYER_RGB10, ZO_PT_RGB24, 10); }

// Three stages: deinterlacer, Bayer to RGB24, planar split.
void BM_ChainInterlacedBayer10ToRGB24Planar(benchmark::State& state)
{
    zobench::ConvertFrames(state, ZO_PT_BAYER_RGB10 | ZO_PIXEL_INTERLACED, ZO_PT_RGB24 | ZO_PIXEL_PLANAR, 10);
}

// A filtered chain: the filter acts on the first stage.
void BM_ChainGray8DualTapToRGB32Filtered(benchmark::State& state)
{
    static ZoRGBFilter gains(8);
    gains.SetMultipliers(1.2, 1.0, 0.8);
    zobench::ConvertFrames(state, ZO_PT_GRAY8 | ZO_PIXEL_TAP_DUAL_LR, ZO_PT_RGB32, 8, &gains);
}

}  // namespace

BENCHMARK(BM_IdentityGray8)->Apply(zobench::FrameSizes);
BENCHMARK(BM_DeinterlaceGray8)->Apply(zobench::FrameSizes);
BENCHMARK(BM_DeinterlaceBayer10)->Apply(zobench::FrameSizes);
BENCHMARK(BM_ChainInterlacedBayer10ToRGB24)->Apply(zobench::FrameSizes);
BENCHMARK(BM_Bayer10ToRGB24)->Apply(zobench::FrameSizes);
BENCHMARK(BM_ChainInterlacedBayer10ToRGB24Planar)->Apply(zobench::FrameSizes);
BENCHMARK(BM_ChainGray8DualTapToRGB32Filtered)->Apply(zobench::FrameSizes);
