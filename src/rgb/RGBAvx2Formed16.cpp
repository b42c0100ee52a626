// RGB16 packing through 8-bit tables that have an arithmetic form
// (simd/LutForm.h), at the AVX2 level (this file alone is compiled for
// AVX2; RGBSimd.cpp calls it where the AVX2 or AVX-512 paths are active and
// the tables have a plan). The table pass cannot run over RGB16 (the
// packing keeps fewer bits than the tables index with), and the AVX2 level
// has no byte lookups: without this path a line is copied into a scratch
// buffer, the pass runs there and the identity line repacks it.
#include "rgb/RGBPaths.h"

#if defined(__AVX2__)

#include <immintrin.h>

#include <cstddef>

#include "core/StreamGroups.h"
#include "simd/LutArith.h"
#include "simd/LutV256.h"

namespace zo {
namespace simd {
namespace {

constexpr char Z = -128;  // shuffle index that writes 0

inline __m128i Load(const unsigned char* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline void Store(unsigned char* p, __m256i v, OrdinaryStores) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
inline void Store(unsigned char* p, __m256i v, StreamingStores) { _mm256_stream_si256(reinterpret_cast<__m256i*>(p), v); }

// In-lane shuffles that gather, from 32 loaded bytes (lo: bytes 0-15, hi:
// 16-31 of each 128-bit lane) holding eight pixels of `group` bytes, one
// 16-bit lane per pixel holding channel `channel` (high byte zero).
struct ChannelMasks {
    __m256i lo, hi;
};

ChannelMasks MakeChannelMasks(unsigned group, unsigned channel)
{
    alignas(16) char lo[16], hi[16];
    for (unsigned j = 0; j < 8; ++j) {
        const unsigned at = j * group + channel;
        lo[2 * j] = at < 16 ? static_cast<char>(at) : Z;
        hi[2 * j] = at >= 16 ? static_cast<char>(at - 16) : Z;
        lo[2 * j + 1] = hi[2 * j + 1] = Z;
    }
    return {_mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(lo))),
            _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(hi)))};
}

inline __m256i Gather(__m256i lo, __m256i hi, const ChannelMasks& m)
{
    return _mm256_or_si256(_mm256_shuffle_epi8(lo, m.lo), _mm256_shuffle_epi8(hi, m.hi));
}

using Arith = LutArith<V256>;

// Form `Mode` (Arith::EvalFixed) on 16-bit lanes holding bytes; a
// saturating form leaves lanes past 255, which are clamped to 255 (the
// entry every such table ends with).
template <int Mode>
inline __m256i EvalBytes(__m256i x, const Arith::Params& forms)
{
    const __m256i r = Arith::EvalFixed<Mode>(x, forms);
    if constexpr (Mode == 4 || Mode == 5)
        return _mm256_min_epu16(r, _mm256_set1_epi16(255));
    else
        return r;
}

// Sixteen pixels a step (lane 0 pixels 0-7, lane 1 pixels 8-15, each lane
// from its own 32 source bytes): red, green and blue gathered into a
// register each, one 16-bit lane a pixel, their forms evaluated there
// (green skipped when its table is the identity), then packed as
// ((r >> 3) << 11) | ((g & 0xFC) << 3) | (b >> 3): the looked-up bytes
// exactly, truncated only by the packing. The loads of lane 1 end at byte
// 8 x group + 32 of the step: the loop stops while that lies inside the n
// pixels, and the caller's lookups finish the line.
template <int Mode, bool Green>
std::uint32_t BytesToRGB16FormedRun(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                    const LutFormPlan8& plan, bool stream)
{
    struct Masks {
        ChannelMasks red, green, blue;
    };
    static const Masks kMasks[2] = {{MakeChannelMasks(3, 0), MakeChannelMasks(3, 1), MakeChannelMasks(3, 2)},
                                    {MakeChannelMasks(4, 0), MakeChannelMasks(4, 1), MakeChannelMasks(4, 2)}};
    const Masks& m = kMasks[group == 4];
    const Arith::Channels forms = Arith::ChannelsOf(plan, 0);
    const __m256i redBits = _mm256_set1_epi16(static_cast<short>(0xF800)), greenBits = _mm256_set1_epi16(0xFC);
    const std::uint64_t inEnd = std::uint64_t(n) * group;
    auto fits = [&](std::uint32_t i) { return std::uint64_t(i) * group + 8 * group + 32 <= inEnd; };
    auto step = [&](std::uint32_t i, auto streaming) {
        const unsigned char* p = s + std::size_t(i) * group;
        const unsigned char* q = p + 8 * group;
        const __m256i lo = _mm256_inserti128_si256(_mm256_castsi128_si256(Load(p)), Load(q), 1);
        const __m256i hi = _mm256_inserti128_si256(_mm256_castsi128_si256(Load(p + 16)), Load(q + 16), 1);
        const __m256i r = EvalBytes<Mode>(Gather(lo, hi, m.red), forms.red);
        __m256i g = Gather(lo, hi, m.green);
        if constexpr (Green)
            g = EvalBytes<Mode>(g, forms.green);
        const __m256i b = EvalBytes<Mode>(Gather(lo, hi, m.blue), forms.blue);
        const __m256i word = _mm256_or_si256(_mm256_or_si256(_mm256_and_si256(_mm256_slli_epi16(r, 8), redBits),
                                                             _mm256_slli_epi16(_mm256_and_si256(g, greenBits), 3)),
                                             _mm256_srli_epi16(b, 3));
        Store(d + std::size_t(i) * 2, word, streaming);
    };
    return RunGroups<16, 2>(d, stream, fits, step);
}

}  // namespace

std::uint32_t BytesToRGB16FormedAvx2(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                     const LutFormPlan8& plan, bool stream)
{
    if (plan.pixelBytes != 4 || (group != 3 && group != 4))
        return 0;
    std::uint32_t done = 0;
    Arith::WithModeAndGreen(plan, [&](auto mode, auto green) {
        done = BytesToRGB16FormedRun<decltype(mode)::value, decltype(green)::value>(s, d, n, group, plan, stream);
    });
    return done;
}

}  // namespace simd
}  // namespace zo

#endif
