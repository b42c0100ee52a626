// AVX2 path of the packed unpacking to 16-bit words (this file alone is
// compiled for AVX2; its table runs from the AVX2 level on, see
// PackedSimd.cpp). The other layouts keep the SSE2 paths.
#include "gray/PackedKernels.h"
#include "gray/PackedPaths.h"

#if defined(__AVX2__)
#include <immintrin.h>

namespace zo {

namespace {

// Within each 128-bit lane, four groups (12 bytes) to the words
// W0 W1 of group 0, W0 W1 of group 1, ... (bytes 3k, 3k + 1 and 3k + 1, 3k + 2).
inline __m256i GroupWords(const unsigned char* g)
{
    const __m256i x = _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(g))),
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(g + 12)), 1);
    const __m256i order = _mm256_setr_epi8(0, 1, 1, 2, 3, 4, 4, 5, 6, 7, 7, 8, 9, 10, 10, 11,  //
                                           0, 1, 1, 2, 3, 4, 4, 5, 6, 7, 7, 8, 9, 10, 10, 11);
    return _mm256_shuffle_epi8(x, order);
}

// Per lane: A words (even) forward or reversed into bytes 0..7, B words (odd)
// forward or reversed into bytes 8..15.
template <unsigned Mode>
inline __m256i SplitOrder()
{
    constexpr bool aReversed = DualTapRule<Mode>::kAStep < 0, bReversed = DualTapRule<Mode>::kBStep < 0;
    const __m128i o = _mm_setr_epi8(aReversed ? 12 : 0, aReversed ? 13 : 1, aReversed ? 8 : 4, aReversed ? 9 : 5,
                                    aReversed ? 4 : 8, aReversed ? 5 : 9, aReversed ? 0 : 12, aReversed ? 1 : 13,
                                    bReversed ? 14 : 2, bReversed ? 15 : 3, bReversed ? 10 : 6, bReversed ? 11 : 7,
                                    bReversed ? 6 : 10, bReversed ? 7 : 11, bReversed ? 2 : 14, bReversed ? 3 : 15);
    return _mm256_broadcastsi128_si256(o);
}

// Groups [0, pairs) in chunks of eight: each chunk's loads read the first
// four bytes after it. firstA and firstB: positions of pair 0's samples.
template <unsigned Mode>
void UnpackGray16Chunks(const unsigned char* source, unsigned char* destination, std::uint32_t pairs,
                        std::ptrdiff_t firstA, std::ptrdiff_t firstB, const PackedRules& rules)
{
    constexpr std::ptrdiff_t aStep = DualTapRule<Mode>::kAStep, bStep = DualTapRule<Mode>::kBStep;
    // Word lanes alternate A (even) and B (odd); 16-bit shifts of the rules'
    // counts (at most 16, one of each pair zero) give the rules' results.
    const __m128i la = _mm_cvtsi32_si128(static_cast<int>(rules.a.left));
    const __m128i ra = _mm_cvtsi32_si128(static_cast<int>(rules.a.right));
    const __m128i lb = _mm_cvtsi32_si128(static_cast<int>(rules.b.left));
    const __m128i rb = _mm_cvtsi32_si128(static_cast<int>(rules.b.right));
    const __m256i mask = _mm256_set1_epi32(static_cast<int>((rules.a.mask & 0xFFFF) | (rules.b.mask << 16)));
    for (std::uint32_t i = 0; i < pairs; i += 8) {
        const __m256i w = GroupWords(source + static_cast<std::size_t>(i) * 3);
        const __m256i a = _mm256_srl_epi16(_mm256_sll_epi16(w, la), ra);
        const __m256i b = _mm256_srl_epi16(_mm256_sll_epi16(w, lb), rb);
        const __m256i v = _mm256_and_si256(_mm256_blend_epi16(a, b, 0xAA), mask);
        const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(i);
        if constexpr (Mode == 0) {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(destination + 4 * at), v);
        } else {
            // Qwords: lane 0 A, lane 0 B, lane 1 A, lane 1 B; gather the A
            // run into the low half and the B run into the high half.
            constexpr int aOrder = aStep > 0 ? (0 | (2 << 2)) : (2 | (0 << 2));
            constexpr int bOrder = bStep > 0 ? ((1 << 4) | (3 << 6)) : ((3 << 4) | (1 << 6));
            const __m256i runs = _mm256_permute4x64_epi64(_mm256_shuffle_epi8(v, SplitOrder<Mode>()), aOrder | bOrder);
            const std::ptrdiff_t pa = firstA + at * aStep, pb = firstB + at * bStep;
            unsigned char* da = destination + 2 * (aStep > 0 ? pa : pa - 7);
            unsigned char* db = destination + 2 * (bStep > 0 ? pb : pb - 7);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(da), _mm256_castsi256_si128(runs));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(db), _mm256_extracti128_si256(runs, 1));
        }
    }
}

// Only types and constants of the shared headers are used here: an inline
// function emitted from this file would be compiled for AVX2 and might be
// the copy the linker keeps for every other caller.
bool UnpackToGray16Avx2(const unsigned char* source, unsigned char* destination, std::uint32_t,
                        std::uint32_t pairs, std::ptrdiff_t firstA, std::ptrdiff_t firstB, const PackedRules& rules,
                        unsigned mode)
{
    switch (mode) {
    case 1: UnpackGray16Chunks<1>(source, destination, pairs, firstA, firstB, rules); break;
    case 2: UnpackGray16Chunks<2>(source, destination, pairs, firstA, firstB, rules); break;
    case 3: UnpackGray16Chunks<3>(source, destination, pairs, firstA, firstB, rules); break;
    case 4: UnpackGray16Chunks<4>(source, destination, pairs, firstA, firstB, rules); break;
    default: UnpackGray16Chunks<0>(source, destination, pairs, firstA, firstB, rules); break;
    }
    return true;
}

}  // namespace

const PackedPaths kPackedPathsAVX2 = {"AVX2", UnpackToGray16Avx2, UnpackToGray8Sse2, UnpackToRGB16Sse2,
                                      UnpackToRGB32Sse2};

}  // namespace zo

#endif
