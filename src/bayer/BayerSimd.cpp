// The choice of the Bayer vector paths for the active level.
#include "bayer/BayerPaths.h"

#include "simd/Cpu.h"

namespace zo {
namespace {

std::uint32_t NoBytes(unsigned, bool, const unsigned char*, std::ptrdiff_t, std::ptrdiff_t, unsigned char*,
                      std::uint32_t from, std::uint32_t, int)
{
    return from;
}
std::uint32_t NoWords(unsigned, bool, const unsigned char*, std::ptrdiff_t, std::ptrdiff_t, unsigned char*,
                      std::uint32_t from, std::uint32_t, int, unsigned)
{
    return from;
}
std::uint32_t NoWords48(const unsigned char*, std::ptrdiff_t, std::ptrdiff_t, unsigned char*, std::uint32_t from,
                        std::uint32_t, int)
{
    return from;
}

const BayerPaths kBayerPathsScalar = {"scalar", NoBytes, NoWords, NoWords48, nullptr, nullptr, nullptr, nullptr, nullptr};

#if ZO_SIMD_X86
// AVX2's paths with the VBMI lookups inside the 8-bit block and the
// 32-pixel RGB48 block (AVX-512 BW).
const BayerPaths* Avx512Paths()
{
    static const BayerPaths paths = [] {
        BayerPaths p = kBayerPathsAVX2;
        p.name = "AVX-512 VBMI";
        p.bytesLookup = BayerBytesLookupAvx512;
        p.words48 = BayerWords48Avx512;
        p.words48Formed = BayerWords48FormedAvx512;
        p.wordsScaled = nullptr;  // the table pass looks the tables up
        return p;
    }();
    return &paths;
}
#endif

const BayerPaths* ChooseBayerPaths(simd::CpuLevel level)
{
#if ZO_SIMD_X86
    if (level >= simd::CpuLevel::kAVX512 && simd::HostCpuFeatures().avx512vbmi)
        return Avx512Paths();
    if (level >= simd::CpuLevel::kAVX2)
        return &kBayerPathsAVX2;
    if (level >= simd::CpuLevel::kSSE2)
        return &kBayerPathsSSE2;
#else
    (void)level;
#endif
    return &kBayerPathsScalar;
}

}  // namespace

const BayerPaths& BayerActivePaths()
{
    static const simd::PathChoice<BayerPaths> choice("Bayer", ChooseBayerPaths);
    return choice.Get();
}

}  // namespace zo
