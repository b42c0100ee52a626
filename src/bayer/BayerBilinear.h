// The bilinear neighbourhood of a Bayer block, written once for every lane
// type the vector paths use (SSE2 words and dwords, AVX2 and AVX-512 words).
// Per pixel of a block, lane i = pixel x + i (x even):
//   C  own sample             V  above + below
//   H  left + right           D  sum of the four diagonals
// A green site takes (H >> 1) for its row's colour and (V >> 1) for its
// column's; a red or blue site takes (V + H) >> 2 for green and D >> 2 for
// the opposite colour. Even lanes and odd lanes are then picked by phase
// (0: green then red, 1: green then blue, 2: red then green, 3: blue then
// green).
//
// L, the lanes: type T; Add(a, b); Shift<N>(a), a logical right shift;
// Pick(evenValue, oddValue), even lanes from the first, odd ones from the
// second. The sums must not wrap in the lanes (the callers bound the
// samples). Include only from files compiled for the instruction sets L
// uses: everything here is local to the including file.
#ifndef ZO_BAYER_BILINEAR_H
#define ZO_BAYER_BILINEAR_H

namespace zo {
namespace {

// Red, green and blue of the pixels whose neighbours a0..b2 hold: a above,
// c the line itself, b below; 0 one pixel left, 1 the pixel, 2 one right.
// Always inlined into its callers, which choose their own inlining.
template <class L, class T = typename L::T>
inline __attribute__((always_inline)) void Bilinear(T a0, T a1, T a2, T c0, T c1, T c2, T b0, T b1, T b2, int phase,
                                                    T& r, T& g, T& b)
{
    const T v = L::Add(a1, b1);
    const T h = L::Add(c0, c2);
    const T d = L::Add(L::Add(a0, a2), L::Add(b0, b2));
    const T rowAverage = L::template Shift<1>(h);
    const T columnAverage = L::template Shift<1>(v);
    const T cross = L::template Shift<2>(L::Add(v, h));
    const T diagonal = L::template Shift<2>(d);
    if (phase < 2) {
        // Even: green; odd: red (phase 0) or blue (phase 1).
        const T rowColour = L::Pick(rowAverage, c1);
        const T columnColour = L::Pick(columnAverage, diagonal);
        g = L::Pick(c1, cross);
        r = phase == 0 ? rowColour : columnColour;
        b = phase == 0 ? columnColour : rowColour;
    } else {
        // Even: red (phase 2) or blue (phase 3); odd: green.
        const T own = L::Pick(c1, rowAverage);
        const T other = L::Pick(diagonal, columnAverage);
        g = L::Pick(cross, c1);
        r = phase == 2 ? own : other;
        b = phase == 2 ? other : own;
    }
}

}  // namespace
}  // namespace zo

#endif
