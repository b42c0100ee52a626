// The choice of the YUV vector paths for the active level, and the entry
// points the kernels call.
#include "yuv/YUVSimd.h"

#include <cstring>

#include "simd/Cpu.h"
#include "simd/Lut.h"
#include "simd/LutScaled.h"
#include "yuv/YUVKernels.h"

namespace zo {
namespace {

std::uint32_t NoPairs8(const unsigned char*, unsigned char*, std::uint32_t, std::uint32_t, std::uint32_t,
                       std::uint32_t, bool)
{
    return 0;
}
std::uint32_t NoPairs10(const unsigned char*, unsigned char*, std::uint32_t, std::uint32_t, std::uint32_t,
                        std::uint32_t)
{
    return 0;
}
std::uint32_t NoPixels444(const unsigned char*, unsigned char*, std::uint32_t, std::uint32_t, std::uint32_t,
                          std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t)
{
    return 0;
}

const YUVVectorPaths kYUVPathsScalar = {"scalar", NoPairs8, NoPairs10, NoPixels444, nullptr, nullptr, nullptr, nullptr};

const YUVVectorPaths* ChooseYUVPaths(simd::CpuLevel level)
{
#if ZO_SIMD_X86
    using simd::CpuLevel;
    if (level >= CpuLevel::kAVX512 && simd::HostCpuFeatures().avx512vbmi)
        return &kYUVPathsAVX512;
    if (level >= CpuLevel::kAVX2)
        return &kYUVPathsAVX2;
    if (level >= CpuLevel::kSSE2)
        return &kYUVPathsSSE2;
#else
    (void)level;
#endif
    return &kYUVPathsScalar;
}

}  // namespace

const YUVVectorPaths& YUVActivePaths()
{
    static const simd::PathChoice<YUVVectorPaths> choice("YUV", ChooseYUVPaths);
    return choice.Get();
}

const YUVVectorPaths* const* YUVAvailableVectorPaths(std::uint32_t& count)
{
#if ZO_SIMD_X86
    static const YUVVectorPaths* const kPaths[] = {&kYUVPathsSSE2, &kYUVPathsAVX2, &kYUVPathsAVX512};
    const simd::CpuLevel host = simd::HostCpuLevel();
    count = host >= simd::CpuLevel::kAVX512 && simd::HostCpuFeatures().avx512vbmi ? 3
            : host >= simd::CpuLevel::kAVX2                                         ? 2
            : host >= simd::CpuLevel::kSSE2                                         ? 1
                                                                                    : 0;
    return kPaths;
#else
    count = 0;
    return nullptr;
#endif
}

std::uint32_t YUV8PairsToRGBVector(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                   std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex,
                                   bool stream)
{
    return YUVActivePaths().pairs8(src, dst, pairs, sampleBytes, dstBytes, redIndex, stream);
}

bool YUV8PairsFormedVector(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                           std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex,
                           const simd::LutFormPlan8& plan, bool stream, std::uint32_t& done)
{
    const YUVVectorPaths& paths = YUVActivePaths();
    const bool scaled = paths.pairs8Scaled && simd::HasScaledForms(plan);
    const auto formed = scaled ? paths.pairs8Scaled : paths.pairs8Formed;
    if (!formed || sampleBytes != 1 || (!scaled && dstBytes != 4))
        return false;
    done = formed(src, dst, pairs, sampleBytes, dstBytes, redIndex, plan, stream);
    return true;
}

bool YUV8PairsLutVector(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                        std::uint32_t sampleBytes, std::uint32_t dstBytes, std::uint32_t redIndex,
                        const simd::LutTables8& tables, bool stream, std::uint32_t& done)
{
    const auto lookup = YUVActivePaths().pairs8Lut;
    if (!lookup || sampleBytes != 1 || dstBytes != 4)
        return false;
    const std::uint8_t* const bytes[3] = {tables.byte0, tables.byte1, tables.byte2};
    done = lookup(src, dst, pairs, sampleBytes, dstBytes, redIndex, bytes, !simd::IsIdentityTable8(tables.byte1),
                  stream);
    return true;
}

bool YUV10PairsScaledVector(const unsigned char* src, unsigned char* dst, std::uint32_t pairs, std::uint32_t shift,
                            std::uint32_t dstBytes, std::uint32_t redIndex, const simd::LutFormPlan8& plan,
                            std::uint32_t& done)
{
    const auto scaled = YUVActivePaths().pairs10Scaled;
    if (!scaled || shift > 15 || !simd::HasScaledForms(plan))
        return false;
    done = scaled(src, dst, pairs, shift, dstBytes, redIndex, plan);
    return true;
}

std::uint32_t YUV10PairsToRGBVector(const unsigned char* src, unsigned char* dst, std::uint32_t pairs,
                                    std::uint32_t shift, std::uint32_t dstBytes, std::uint32_t redIndex)
{
    return YUVActivePaths().pairs10(src, dst, pairs, shift, dstBytes, redIndex);
}

std::uint32_t YUV444ToRGBVector(const unsigned char* src, unsigned char* dst, std::uint32_t count,
                                std::uint32_t pixelBytes, std::uint32_t yOffset, std::uint32_t uOffset,
                                std::uint32_t vOffset, std::uint32_t dstBytes, std::uint32_t redIndex)
{
    return YUVActivePaths().pixels444(src, dst, count, pixelBytes, yOffset, uOffset, vOffset, dstBytes, redIndex);
}

}  // namespace zo
