// The choice of the RGB byte-shuffle paths for the active level, and the
// fast-path specialisations the converters call through it.
#include "rgb/RGBSimd.h"

#include "rgb/RGBPaths.h"
#include "simd/Cpu.h"
#include "simd/Lut.h"

namespace zo {
namespace simd {
namespace {

std::uint32_t NoPixels(const unsigned char*, unsigned char*, std::uint32_t) { return 0; }
std::uint32_t NoPixelsOrdered(const unsigned char*, unsigned char*, std::uint32_t, bool) { return 0; }
std::uint32_t NoRGB16(const unsigned char*, unsigned char*, std::uint32_t, unsigned) { return 0; }
std::uint32_t NoPlanes(const unsigned char*, unsigned char*, unsigned char*, unsigned char*, std::uint32_t)
{
    return 0;
}

const RGBPaths kRGBPathsScalar = {"scalar", NoPixelsOrdered, NoPixelsOrdered, NoPixelsOrdered, NoRGB16,
                                  NoPlanes, NoPixels,        NoPixels,        NoPixelsOrdered, NoRGB16, nullptr,
                                  nullptr, nullptr, nullptr, nullptr};

const RGBPaths* ChooseRGBPaths(CpuLevel level)
{
#if ZO_SIMD_X86
    if (level >= CpuLevel::kAVX512 && HostCpuFeatures().avx512vbmi)
        return &kRGBPathsAVX512;
    if (level >= CpuLevel::kAVX2)
        return &kRGBPathsAVX2;
    if (level >= CpuLevel::kSSSE3)
        return &kRGBPathsSSSE3;
#else
    (void)level;
#endif
    return &kRGBPathsScalar;
}

}  // namespace

const RGBPaths& RGBActivePaths()
{
    static const PathChoice<RGBPaths> choice("RGB", ChooseRGBPaths);
    return choice.Get();
}

bool HasByteShuffle() { return &RGBActivePaths() != &kRGBPathsScalar; }

std::uint32_t ThreeToFourTables(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                const unsigned char* const* tables, bool stream)
{
    const auto path = RGBActivePaths().threeToFourTables;
    return path ? path(s, d, n, blueFirst, tables, stream) : 0;
}

std::uint32_t BytesToRGB16Tables(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                 const unsigned char* const* tables, bool stream)
{
    const auto path = RGBActivePaths().bytesToRGB16Tables;
    return path ? path(s, d, n, group, tables, stream) : 0;
}

std::uint32_t BytesToRGB16Formed(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                 const LutTables8& tables, bool stream)
{
    const RGBPaths& paths = RGBActivePaths();
    if (paths.bytesToRGB16Unit)
        if (const LutRgb16Forms* forms = Rgb16Forms(tables))
            if (const std::uint32_t done = paths.bytesToRGB16Unit(s, d, n, group, *forms, stream))
                return done;
    const auto path = paths.bytesToRGB16Formed;
    const LutFormPlan8* plan = path ? FormPlan8(tables, 4) : nullptr;
    return plan ? path(s, d, n, group, *plan, stream) : 0;
}

std::uint32_t ThreeToFourFormed(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                const LutTables8& tables, bool stream)
{
    const auto path = RGBActivePaths().threeToFourFormed;
    const LutFormPlan8* plan = path ? FormPlan8(tables, 4) : nullptr;
    return plan ? path(s, d, n, blueFirst, *plan, stream) : 0;
}

template <>
std::uint32_t RepackBytesIdentity<Write32<0>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().threeToFour(s, d, n, false);
}
template <>
std::uint32_t RepackBytesIdentity<Write32<2>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().threeToFour(s, d, n, true);
}
template <>
std::uint32_t RepackBytesIdentity<Write24<2>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().swapThree(s, d, n);
}
template <>
std::uint32_t RepackBytesIdentity<WriteRGB16, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().bytesToRGB16(s, d, n, 3);
}
template <>
std::uint32_t RepackBytesIdentity<WriteRGB16, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().bytesToRGB16(s, d, n, 4);
}
template <>
std::uint32_t RepackBytesIdentityStream<Write32<0>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().threeToFourStream(s, d, n, false);
}
template <>
std::uint32_t RepackBytesIdentityStream<Write32<2>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().threeToFourStream(s, d, n, true);
}
template <>
std::uint32_t RepackBytesIdentityStream<WriteRGB16, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().bytesToRGB16Stream(s, d, n, 3);
}
template <>
std::uint32_t RepackBytesIdentityStream<WriteRGB16, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().bytesToRGB16Stream(s, d, n, 4);
}
template <>
std::uint32_t RepackBytesIdentity<Write32<0>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().fourToFour(s, d, n, false);
}
template <>
std::uint32_t RepackBytesIdentity<Write32<2>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().fourToFour(s, d, n, true);
}
template <>
std::uint32_t RepackBytesIdentity<Write24<0>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().fourToThree(s, d, n, false);
}
template <>
std::uint32_t RepackBytesIdentity<Write24<2>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().fourToThree(s, d, n, true);
}
template <>
std::uint32_t RepackKeepFourthIdentity<2>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    return RGBActivePaths().swapFour(s, d, n);
}

namespace {
bool Apart(const unsigned char* a, const unsigned char* b, std::uint32_t n)
{
    return a + n <= b || b + n <= a;
}
}  // namespace

std::uint32_t RepackPlanarIdentity(const unsigned char* s, unsigned char* red, unsigned char* green,
                                   unsigned char* blue, std::uint32_t n)
{
    if (!Apart(red, green, n) || !Apart(red, blue, n) || !Apart(green, blue, n))
        return 0;
    return RGBActivePaths().threeToPlanes(s, red, green, blue, n);
}

}  // namespace simd
}  // namespace zo
