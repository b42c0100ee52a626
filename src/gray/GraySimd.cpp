// The choice of the grayscale vector paths for the active level.
#include "gray/GraySimd.h"

#include "simd/Cpu.h"

namespace zo {
namespace gray {
namespace {

const GrayPaths kGrayPathsScalar = {"scalar",    GrayNoBytes, GrayNoWords, GrayNoBytes, GrayNoBytes,
                                    GrayNoWords, GrayNoBytes, GrayNoBytes, GrayNoWords};

const GrayPaths* ChooseGrayPaths(simd::CpuLevel level)
{
#if ZO_SIMD_X86
    if (level >= simd::CpuLevel::kAVX2)
        return &kGrayPathsAVX2;
    if (level >= simd::CpuLevel::kSSSE3)
        return &kGrayPathsSSSE3;
#else
    (void)level;
#endif
    return &kGrayPathsScalar;
}

}  // namespace

std::uint32_t GrayNoBytes(const unsigned char*, unsigned char*, std::uint32_t) { return 0; }
std::uint32_t GrayNoWords(const unsigned char*, unsigned char*, std::uint32_t, std::uint32_t) { return 0; }

const GrayPaths& GrayActivePaths()
{
    static const simd::PathChoice<GrayPaths> choice("gray", ChooseGrayPaths);
    return choice.Get();
}

}  // namespace gray
}  // namespace zo
