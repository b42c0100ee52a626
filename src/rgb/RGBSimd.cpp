// Run-time choice of the RGB byte-shuffle paths: SSSE3 where the CPU has it
// (checked once), else none (the scalar kernels do the whole line).
#include "rgb/RGBSimd.h"

#include "rgb/RGBSimdSSSE3.h"

namespace zo {
namespace simd {

bool HasByteShuffle()
{
#if ZO_RGB_HAVE_SSSE3
    static const bool has = __builtin_cpu_supports("ssse3");
    return has;
#else
    return false;
#endif
}

#if ZO_RGB_HAVE_SSSE3
#define ZO_SHUFFLE(call) return HasByteShuffle() ? ssse3::call : 0
#else
#define ZO_SHUFFLE(call) return 0
#endif

template <>
std::uint32_t RepackBytesIdentity<Write32<0>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    ZO_SHUFFLE(ThreeToFour(s, d, n, false));
}
template <>
std::uint32_t RepackBytesIdentity<Write32<2>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    ZO_SHUFFLE(ThreeToFour(s, d, n, true));
}
template <>
std::uint32_t RepackBytesIdentity<Write24<2>, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    ZO_SHUFFLE(SwapThree(s, d, n));
}
template <>
std::uint32_t RepackBytesIdentity<WriteRGB16, 3>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    ZO_SHUFFLE(BytesToRGB16(s, d, n, 3));
}
template <>
std::uint32_t RepackBytesIdentity<WriteRGB16, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    ZO_SHUFFLE(BytesToRGB16(s, d, n, 4));
}
template <>
std::uint32_t RepackBytesIdentity<Write32<0>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    ZO_SHUFFLE(FourToFour(s, d, n, false));
}
template <>
std::uint32_t RepackBytesIdentity<Write32<2>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    ZO_SHUFFLE(FourToFour(s, d, n, true));
}
template <>
std::uint32_t RepackBytesIdentity<Write24<0>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    ZO_SHUFFLE(FourToThree(s, d, n, false));
}
template <>
std::uint32_t RepackBytesIdentity<Write24<2>, 4>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    ZO_SHUFFLE(FourToThree(s, d, n, true));
}
template <>
std::uint32_t RepackKeepFourthIdentity<2>(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    ZO_SHUFFLE(SwapFour(s, d, n));
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
    ZO_SHUFFLE(ThreeToPlanes(s, red, green, blue, n));
}

std::uint32_t GrayBytesToRGB24(const unsigned char* s, unsigned char* d, std::uint32_t n)
{
    ZO_SHUFFLE(GrayBytesToThree(s, d, n));
}
std::uint32_t GrayWordsToRGB24(const unsigned char* s, unsigned char* d, std::uint32_t n, std::uint32_t shift)
{
    ZO_SHUFFLE(GrayWordsToThree(s, d, n, shift));
}

#undef ZO_SHUFFLE

}  // namespace simd
}  // namespace zo
