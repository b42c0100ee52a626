// The choice of the packed-unpacking and dual-tap vector paths for the
// active level.
#include "gray/PackedPaths.h"

#include "simd/Cpu.h"

namespace zo {
namespace {

bool NoUnpack(const unsigned char*, unsigned char*, std::uint32_t, std::uint32_t, std::ptrdiff_t, std::ptrdiff_t,
              const PackedRules&, unsigned)
{
    return false;
}
bool NoRecombine(const unsigned char*, unsigned char*, std::uint32_t, std::uint32_t, unsigned) { return false; }

const PackedPaths kPackedPathsScalar = {"scalar", NoUnpack, NoUnpack, NoUnpack, NoUnpack};
const DualTapPaths kDualTapPathsScalar = {"scalar", NoRecombine};

const PackedPaths* ChoosePackedPaths(simd::CpuLevel level)
{
#if ZO_SIMD_X86
    if (level >= simd::CpuLevel::kAVX2)
        return &kPackedPathsAVX2;
    if (level >= simd::CpuLevel::kSSE2)
        return &kPackedPathsSSE2;
#else
    (void)level;
#endif
    return &kPackedPathsScalar;
}

const DualTapPaths* ChooseDualTapPaths(simd::CpuLevel level)
{
#if ZO_SIMD_X86
    if (level >= simd::CpuLevel::kSSE2)
        return &kDualTapPathsSSE2;
#else
    (void)level;
#endif
    return &kDualTapPathsScalar;
}

}  // namespace

const PackedPaths& PackedActivePaths()
{
    static const simd::PathChoice<PackedPaths> choice("packed", ChoosePackedPaths);
    return choice.Get();
}

const DualTapPaths& DualTapActivePaths()
{
    static const simd::PathChoice<DualTapPaths> choice("dual-tap", ChooseDualTapPaths);
    return choice.Get();
}

}  // namespace zo
