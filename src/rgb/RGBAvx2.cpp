// AVX2 paths of the RGB kernels (this file alone is compiled for AVX2; its
// table runs from the AVX2 level on, see RGBSimd.cpp). RGB16 packing and
// three- to four-byte pixels have their own paths here (with ordinary and
// with streaming stores); the other shuffles keep the SSSE3 ones. Filtered
// three- to four-byte pixels and RGB16 packing whose 8-bit tables have an
// arithmetic form (simd/LutForm.h) evaluate it before they store.
#include "rgb/RGBPaths.h"

#if defined(__AVX2__)

#include <immintrin.h>

#include <cstddef>
#include <cstring>

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

// In-lane shuffle masks that gather, from 32 loaded bytes (lo, hi) holding
// eight pixels of `group` bytes, one 16-bit lane per pixel whose low byte
// is channel `low` and high byte channel `high` (-1: zero). Both lanes alike.
struct WordMasks {
    __m256i lo, hi;
};

WordMasks MakeWordMasks(unsigned group, int low, int high)
{
    alignas(16) char lo[16], hi[16];
    for (unsigned j = 0; j < 8; ++j)
        for (unsigned k = 0; k < 2; ++k) {
            const int channel = k == 0 ? low : high;
            const unsigned at = j * group + static_cast<unsigned>(channel);
            lo[2 * j + k] = channel >= 0 && at < 16 ? static_cast<char>(at) : Z;
            hi[2 * j + k] = channel >= 0 && at >= 16 ? static_cast<char>(at - 16) : Z;
        }
    return {_mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(lo))),
            _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(hi)))};
}

// Sixteen pixels of `group` bytes at p for Gather: lane 0 from the 32 bytes
// at p (pixels 0..7), lane 1 from the 32 at pixel 8; lo: bytes 0..15 of
// each, hi: bytes 16..31.
inline void LoadSixteen(const unsigned char* p, unsigned group, __m256i& lo, __m256i& hi)
{
    const unsigned char* q = p + 8 * group;
    lo = _mm256_inserti128_si256(_mm256_castsi128_si256(Load(p)), Load(q), 1);
    hi = _mm256_inserti128_si256(_mm256_castsi128_si256(Load(p + 16)), Load(q + 16), 1);
}

inline __m256i Gather(__m256i lo, __m256i hi, const WordMasks& m)
{
    return _mm256_or_si256(_mm256_shuffle_epi8(lo, m.lo), _mm256_shuffle_epi8(hi, m.hi));
}

// Sixteen pixels a step, lane 0 pixels 0..7 and lane 1 pixels 8..15, each
// lane from its own 32 source bytes. Per pixel the words x = g | r << 8 and
// y = b give ((r >> 3) << 11) | ((g & 0xFC) << 3) | (b >> 3) as
// (x & 0xF800) | ((x & 0xFC) << 3) | (y >> 3). The loads of lane 1 end at
// byte 8 x group + 32 of the step: the loop stops while that lies inside
// the n pixels, and the SSSE3 path takes what is left.
// The masks that gather x = g | r << 8 and y = b from pixels of `group`
// bytes (3 or 4), made once (making them costs as much as converting a
// hundred pixels).
struct PackMasks {
    WordMasks greenRed, blue;
};

const PackMasks& PackMasksOf(unsigned group)
{
    static const PackMasks kMasks[2] = {{MakeWordMasks(3, 1, 0), MakeWordMasks(3, 2, -1)},
                                        {MakeWordMasks(4, 1, 0), MakeWordMasks(4, 2, -1)}};
    return kMasks[group == 4];
}

std::uint32_t BytesToRGB16Run(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group, bool stream)
{
    const WordMasks greenRed = PackMasksOf(group).greenRed, blue = PackMasksOf(group).blue;
    const __m256i redBits = _mm256_set1_epi16(static_cast<short>(0xF800)), greenBits = _mm256_set1_epi16(0xFC);
    const std::uint64_t inEnd = std::uint64_t(n) * group;
    auto fits = [&](std::uint32_t i) { return std::uint64_t(i) * group + 8 * group + 32 <= inEnd; };
    auto step = [&](std::uint32_t i, auto streaming) {
        __m256i lo, hi;
        LoadSixteen(s + std::size_t(i) * group, group, lo, hi);
        const __m256i x = Gather(lo, hi, greenRed), y = Gather(lo, hi, blue);
        const __m256i word = _mm256_or_si256(
            _mm256_or_si256(_mm256_and_si256(x, redBits), _mm256_slli_epi16(_mm256_and_si256(x, greenBits), 3)),
            _mm256_srli_epi16(y, 3));
        Store(d + std::size_t(i) * 2, word, streaming);
    };
    const std::uint32_t i = RunGroups<16, 2>(d, n, stream, fits, step);
    return i + BytesToRGB16Ssse3(s + std::size_t(i) * group, d + std::size_t(i) * 2, n - i, group);
}

std::uint32_t BytesToRGB16Avx2(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group)
{
    return BytesToRGB16Run(s, d, n, group, false);
}
std::uint32_t BytesToRGB16StreamAvx2(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group)
{
    return BytesToRGB16Run(s, d, n, group, true);
}

// Eight pixels a step: the 32 bytes loaded at the step's first pixel hold
// its 24 bytes; a dword permute gives lane 0 bytes 0..15 and lane 1 bytes
// 12..27, so that each lane holds four pixels at its start, which one
// in-lane shuffle spreads to r g b 0 (or b g r 0). The load ends 8 bytes
// past the step: the loop stops while that lies inside the n pixels, and
// the SSSE3 path takes what is left.
std::uint32_t ThreeToFourRun(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst, bool stream)
{
    const __m256i lanes = _mm256_setr_epi32(0, 1, 2, 3, 3, 4, 5, 6);
    const __m256i spread = blueFirst ? _mm256_setr_epi8(2, 1, 0, Z, 5, 4, 3, Z, 8, 7, 6, Z, 11, 10, 9, Z,  //
                                                        2, 1, 0, Z, 5, 4, 3, Z, 8, 7, 6, Z, 11, 10, 9, Z)
                                     : _mm256_setr_epi8(0, 1, 2, Z, 3, 4, 5, Z, 6, 7, 8, Z, 9, 10, 11, Z,  //
                                                        0, 1, 2, Z, 3, 4, 5, Z, 6, 7, 8, Z, 9, 10, 11, Z);
    const std::uint64_t inEnd = std::uint64_t(n) * 3;
    auto fits = [&](std::uint32_t i) { return std::uint64_t(i) * 3 + 32 <= inEnd; };
    auto step = [&](std::uint32_t i, auto streaming) {
        const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + std::size_t(i) * 3));
        Store(d + std::size_t(i) * 4, _mm256_shuffle_epi8(_mm256_permutevar8x32_epi32(v, lanes), spread), streaming);
    };
    const std::uint32_t i = RunGroups<8, 4>(d, n, stream, fits, step);
    return i + ThreeToFourSsse3(s + std::size_t(i) * 3, d + std::size_t(i) * 4, n - i, blueFirst);
}

using Arith = LutArith<V256>;

// The forms of the bytes at positions `even` and `odd` of a 4-byte pixel on
// the 16-bit lanes of whole pixels: even lanes `even`, odd lanes `odd`.
Arith::Params PairForms(const LutFormPlan8& plan, unsigned even, unsigned odd)
{
    Arith::Params r;
    for (unsigned q = 0; q < kLutParamCount; ++q)
        r.p[q] = _mm256_set1_epi32(static_cast<int>(plan.lanes[0][0][q][even] | (plan.lanes[0][0][q][odd] << 16)));
    return r;
}

// Form `Mode` (Arith::EvalFixed) on 16-bit lanes holding bytes; a
// saturating form leaves lanes past 255, which are clamped to 255 (the
// entry every such table ends with); the unit forms (6, 7) saturate
// themselves.
template <int Mode>
inline __m256i EvalBytes(__m256i x, const Arith::Params& forms)
{
    const __m256i r = Arith::EvalFixed<Mode>(x, forms);
    if constexpr (Mode == 4 || Mode == 5)
        return _mm256_min_epu16(r, _mm256_set1_epi16(255));
    else
        return r;
}

// ThreeToFourRun's eight pixels a step, each spread pixel's bytes mapped by
// the plan's forms before the store: masked as 16-bit lanes, bytes 0 and 2
// (and 1 and 3 unless byte 1's table is the identity, as white balance
// usually leaves green) go through the forms in one register each. The
// bytes the identity line and a table pass give, in one pass over the line;
// the fourth byte is 0, which its identity form keeps. Lines of 19 pixels
// or more are converted whole; shorter ones where ThreeToFourRun's loop
// stops (the caller's lookups finish them).
template <int Mode, bool Middle>
std::uint32_t ThreeToFourFormedRun(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                   const LutFormPlan8& plan, bool stream)
{
    const __m256i lanes = _mm256_setr_epi32(0, 1, 2, 3, 3, 4, 5, 6);
    const __m256i spread = blueFirst ? _mm256_setr_epi8(2, 1, 0, Z, 5, 4, 3, Z, 8, 7, 6, Z, 11, 10, 9, Z,  //
                                                        2, 1, 0, Z, 5, 4, 3, Z, 8, 7, 6, Z, 11, 10, 9, Z)
                                     : _mm256_setr_epi8(0, 1, 2, Z, 3, 4, 5, Z, 6, 7, 8, Z, 9, 10, 11, Z,  //
                                                        0, 1, 2, Z, 3, 4, 5, Z, 6, 7, 8, Z, 9, 10, 11, Z);
    const __m256i lowBytes = _mm256_set1_epi16(0x00FF);
    const Arith::Params outer = PairForms(plan, 0, 2), middle = PairForms(plan, 1, 3);
    const std::uint64_t inEnd = std::uint64_t(n) * 3;
    auto fits = [&](std::uint32_t i) { return std::uint64_t(i) * 3 + 32 <= inEnd; };
    // Eight pixels from 32 loaded bytes whose dwords `from` hold them.
    auto convert = [&](const unsigned char* p, __m256i from) {
        const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
        const __m256i w = _mm256_shuffle_epi8(_mm256_permutevar8x32_epi32(v, from), spread);
        const __m256i a = EvalBytes<Mode>(_mm256_and_si256(w, lowBytes), outer);
        const __m256i b = Middle ? _mm256_slli_epi16(EvalBytes<Mode>(_mm256_srli_epi16(w, 8), middle), 8)
                                 : _mm256_andnot_si256(lowBytes, w);
        return _mm256_or_si256(a, b);
    };
    auto step = [&](std::uint32_t i, auto streaming) {
        Store(d + std::size_t(i) * 4, convert(s + std::size_t(i) * 3, lanes), streaming);
    };
    std::uint32_t done = RunGroups<8, 4>(d, n, stream, fits, step);
    if (done == 0 || done == n)
        return done;
    // The last pixels, eight at a time from the 32 bytes that end at the
    // eighth (its first pixel at dword 2), of which those not yet written
    // are copied out of a buffer: no store may reach a cache line the
    // streaming stores wrote (measured: such a line waits for memory, even
    // under a masked store).
    const __m256i shifted = _mm256_setr_epi32(2, 3, 4, 5, 5, 6, 7, 7);
    auto finish = [&](std::uint32_t at) {
        alignas(32) unsigned char buffer[32];
        _mm256_store_si256(reinterpret_cast<__m256i*>(buffer), convert(s + std::size_t(at) * 3 - 8, shifted));
        std::memcpy(d + std::size_t(done) * 4, buffer + std::size_t(done - at) * 4, std::size_t(at + 8 - done) * 4);
        done = at + 8;
    };
    if (done + 8 < n) {
        if (n < 19)
            return done;
        finish(n - 16);
    }
    finish(n - 8);
    return n;
}

// Byte shuffles of ThreeToFourUnitRun, from a register whose lanes each
// hold four pixels at their start (ThreeToFourRun's dword permute): source
// byte `at` of each pixel to 16-bit lane j (j < 4, the first register of a
// step) or 4 + j (the second), the high bytes zero; and source byte 1 to
// byte 1 of each 32-bit pixel.
__m256i ChannelWords(unsigned at, bool second)
{
    alignas(16) char m[16];
    for (unsigned j = 0; j < 8; ++j) {
        const bool mine = (j >= 4) == second;
        m[2 * j] = mine ? static_cast<char>(3 * (j % 4) + at) : Z;
        m[2 * j + 1] = Z;
    }
    return _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(m)));
}

// Sixteen pixels a step for plans whose bytes 0 and 2 take unit forms
// (modes First and Third, EvalFixed 6 or 7) and byte 1 the identity: the
// channels at destination bytes 0 and 2 of sixteen pixels gathered in one
// register each, so that each is evaluated in its own form once (a fast
// channel costs two operations, the corrected one nine), then interleaved
// back with the middle bytes. The loads end 8 bytes past the step; the
// caller finishes the line (ThreeToFourFormedRun).
template <int First, int Third>
std::uint32_t ThreeToFourUnitRun(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                 const LutFormPlan8& plan, bool stream)
{
    const __m256i lanes = _mm256_setr_epi32(0, 1, 2, 3, 3, 4, 5, 6);
    const unsigned firstAt = blueFirst ? 2 : 0, thirdAt = 2 - firstAt;
    const __m256i first0 = ChannelWords(firstAt, false), first1 = ChannelWords(firstAt, true);
    const __m256i third0 = ChannelWords(thirdAt, false), third1 = ChannelWords(thirdAt, true);
    const __m256i middle = _mm256_setr_epi8(Z, 1, Z, Z, Z, 4, Z, Z, Z, 7, Z, Z, Z, 10, Z, Z,  //
                                            Z, 1, Z, Z, Z, 4, Z, Z, Z, 7, Z, Z, Z, 10, Z, Z);
    const Arith::Params firstForm = Arith::Channel(plan, 0), thirdForm = Arith::Channel(plan, 2);
    const std::uint64_t inEnd = std::uint64_t(n) * 3;
    auto fits = [&](std::uint32_t i) { return std::uint64_t(i) * 3 + 56 <= inEnd; };
    auto step = [&](std::uint32_t i, auto streaming) {
        const unsigned char* p = s + std::size_t(i) * 3;
        const __m256i a = _mm256_permutevar8x32_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)), lanes);
        const __m256i b =
            _mm256_permutevar8x32_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 24)), lanes);
        // Lane 0: pixels 0-3 and 8-11, lane 1: 4-7 and 12-15.
        const __m256i x = Arith::EvalFixed<First>(
            _mm256_or_si256(_mm256_shuffle_epi8(a, first0), _mm256_shuffle_epi8(b, first1)), firstForm);
        const __m256i y = Arith::EvalFixed<Third>(
            _mm256_or_si256(_mm256_shuffle_epi8(a, third0), _mm256_shuffle_epi8(b, third1)), thirdForm);
        unsigned char* q = d + std::size_t(i) * 4;
        Store(q, _mm256_or_si256(_mm256_unpacklo_epi16(x, y), _mm256_shuffle_epi8(a, middle)), streaming);
        Store(q + 32, _mm256_or_si256(_mm256_unpackhi_epi16(x, y), _mm256_shuffle_epi8(b, middle)), streaming);
    };
    return RunGroups<16, 4>(d, n, stream, fits, step);
}

std::uint32_t ThreeToFourFormedAvx2(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst,
                                    const LutFormPlan8& plan, bool stream)
{
    if (plan.pixelBytes != 4)
        return 0;
    std::uint32_t done = 0;
    // Unit forms: sixteen pixels a step, each channel in its own form; the
    // rest of the line eight pixels a step with bytes 0 and 2 in one
    // register, through the corrected unit form where either needs it (it
    // gives a fast channel's bytes too).
    Arith::WithChannelModes(plan, 0, [&](auto first, auto middle, auto third) {
        constexpr int kOuter = decltype(first)::value > decltype(third)::value ? decltype(first)::value
                                                                               : decltype(third)::value;
        if constexpr (decltype(first)::value >= 6)
            done = ThreeToFourUnitRun<decltype(first)::value, decltype(third)::value>(s, d, n, blueFirst, plan,
                                                                                    stream);
        done += ThreeToFourFormedRun<kOuter, (decltype(middle)::value >= 0)>(
            s + std::size_t(done) * 3, d + std::size_t(done) * 4, n - done, blueFirst, plan, stream);
    });
    return done;
}

// BytesToRGB16Run's sixteen pixels a step through the forms of an 8-bit
// plan: red, green and blue gathered into a register each, one 16-bit lane
// a pixel, each channel's form evaluated there (Arith::WithChannelModes:
// green skipped where its table is the identity), then packed as ((r >> 3) << 11) | ((g & 0xFC) << 3) |
// (b >> 3): the tables' bytes exactly, truncated only by the packing (no
// table pass can run over RGB16, whose words keep fewer bits than the
// tables index with). The caller's lookups finish the line.
template <int Red, int Green, int Blue>
std::uint32_t BytesToRGB16FormedRun(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                    const LutFormPlan8& plan, bool stream)
{
    struct Masks {
        WordMasks red, green, blue;
    };
    static const Masks kMasks[2] = {{MakeWordMasks(3, 0, -1), MakeWordMasks(3, 1, -1), MakeWordMasks(3, 2, -1)},
                                    {MakeWordMasks(4, 0, -1), MakeWordMasks(4, 1, -1), MakeWordMasks(4, 2, -1)}};
    const Masks& m = kMasks[group == 4];
    const Arith::Channels forms = Arith::ChannelsOf(plan, 0);
    const __m256i redBits = _mm256_set1_epi16(static_cast<short>(0xF800)), greenBits = _mm256_set1_epi16(0xFC);
    const std::uint64_t inEnd = std::uint64_t(n) * group;
    auto fits = [&](std::uint32_t i) { return std::uint64_t(i) * group + 8 * group + 32 <= inEnd; };
    auto step = [&](std::uint32_t i, auto streaming) {
        __m256i lo, hi;
        LoadSixteen(s + std::size_t(i) * group, group, lo, hi);
        const __m256i r = EvalBytes<Red>(Gather(lo, hi, m.red), forms.red);
        __m256i g = Gather(lo, hi, m.green);
        if constexpr (Green >= 0)
            g = EvalBytes<Green>(g, forms.green);
        const __m256i b = EvalBytes<Blue>(Gather(lo, hi, m.blue), forms.blue);
        const __m256i word = _mm256_or_si256(_mm256_or_si256(_mm256_and_si256(_mm256_slli_epi16(r, 8), redBits),
                                                             _mm256_slli_epi16(_mm256_and_si256(g, greenBits), 3)),
                                             _mm256_srli_epi16(b, 3));
        Store(d + std::size_t(i) * 2, word, streaming);
    };
    return RunGroups<16, 2>(d, n, stream, fits, step);
}

// BytesToRGB16Run's sixteen pixels a step through the unit forms of
// LutRgb16Forms: red (taken from x's high bytes), green (unless its table is
// the identity) and blue each become min(255, v + MulHi(v, fraction)) in
// their 16-bit lanes (a saturating byte sum: both terms are below 256),
// which the packing then truncates to the bits where the form matches the
// table. Two operations a channel, where the tables' own forms take up to
// nine (a gain of 1.4 needs the corrected form, whose packed bits the fast
// one gives). The caller's lookups finish the line.
template <bool Green>
std::uint32_t BytesToRGB16UnitRun(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                  const LutRgb16Forms& forms, bool stream)
{
    const PackMasks& m = PackMasksOf(group);
    const __m256i red = _mm256_set1_epi16(static_cast<short>(forms.fraction[0]));
    const __m256i green = _mm256_set1_epi16(static_cast<short>(forms.fraction[1]));
    const __m256i blue = _mm256_set1_epi16(static_cast<short>(forms.fraction[2]));
    const __m256i redBits = _mm256_set1_epi16(static_cast<short>(0xF800)), greenBits = _mm256_set1_epi16(0xFC);
    const __m256i lowBytes = _mm256_set1_epi16(0xFF);
    auto unit = [](__m256i v, __m256i fraction) { return _mm256_adds_epu8(v, _mm256_mulhi_epu16(v, fraction)); };
    const std::uint64_t inEnd = std::uint64_t(n) * group;
    auto fits = [&](std::uint32_t i) { return std::uint64_t(i) * group + 8 * group + 32 <= inEnd; };
    auto step = [&](std::uint32_t i, auto streaming) {
        __m256i lo, hi;
        LoadSixteen(s + std::size_t(i) * group, group, lo, hi);
        const __m256i x = Gather(lo, hi, m.greenRed);
        const __m256i r = unit(_mm256_srli_epi16(x, 8), red);
        const __m256i g = Green ? unit(_mm256_and_si256(x, lowBytes), green) : x;
        const __m256i b = unit(Gather(lo, hi, m.blue), blue);
        const __m256i word = _mm256_or_si256(_mm256_or_si256(_mm256_and_si256(_mm256_slli_epi16(r, 8), redBits),
                                                             _mm256_slli_epi16(_mm256_and_si256(g, greenBits), 3)),
                                             _mm256_srli_epi16(b, 3));
        Store(d + std::size_t(i) * 2, word, streaming);
    };
    return RunGroups<16, 2>(d, n, stream, fits, step);
}

std::uint32_t BytesToRGB16UnitAvx2(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                   const LutRgb16Forms& forms, bool stream)
{
    if (group != 3 && group != 4)
        return 0;
    return forms.identity[1] ? BytesToRGB16UnitRun<false>(s, d, n, group, forms, stream)
                             : BytesToRGB16UnitRun<true>(s, d, n, group, forms, stream);
}

std::uint32_t BytesToRGB16FormedAvx2(const unsigned char* s, unsigned char* d, std::uint32_t n, unsigned group,
                                     const LutFormPlan8& plan, bool stream)
{
    if (plan.pixelBytes != 4 || (group != 3 && group != 4))
        return 0;
    std::uint32_t done = 0;
    Arith::WithChannelModes(plan, 0, [&](auto red, auto green, auto blue) {
        done = BytesToRGB16FormedRun<decltype(red)::value, decltype(green)::value, decltype(blue)::value>(
            s, d, n, group, plan, stream);
    });
    return done;
}

}  // namespace

std::uint32_t ThreeToFourAvx2(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst)
{
    return ThreeToFourRun(s, d, n, blueFirst, false);
}
std::uint32_t ThreeToFourStreamAvx2(const unsigned char* s, unsigned char* d, std::uint32_t n, bool blueFirst)
{
    return ThreeToFourRun(s, d, n, blueFirst, true);
}

const RGBPaths kRGBPathsAVX2 = {"AVX2",           ThreeToFourAvx2,    FourToThreeSsse3,      FourToFourSsse3,
                                BytesToRGB16Avx2, ThreeToPlanesSsse3, SwapThreeSsse3,        SwapFourSsse3,
                                ThreeToFourStreamAvx2, BytesToRGB16StreamAvx2, nullptr,
                                ThreeToFourFormedAvx2, nullptr,
                                BytesToRGB16FormedAvx2, BytesToRGB16UnitAvx2};

}  // namespace simd
}  // namespace zo

#endif
