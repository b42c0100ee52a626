// Where a two-tap line puts its pixels, shared by the 8-bit dual-tap and the
// packed references: pair i of the source holds A (left tap) then B (right
// tap); the tap mode of the source ID places them in the destination line.
#ifndef ZO_TESTS_TAP_PLACEMENT_H
#define ZO_TESTS_TAP_PLACEMENT_H

#include <cstdint>

namespace tap_test {

// Calls put(at, isA, i) for every pair i of a line of n pixels, in order, A
// then B, the odd last pixel's pair included (`at` may fall outside the line).
// Tap bits 0x1000000, 0x2000000, 0x4000000, 0x8000000: modes 1 to 4.
template <class Put>
void PlacePairs(std::int64_t source, std::uint32_t n, Put put)
{
    const int modes[16] = {0, 1, 2, 0, 3, 0, 0, 0, 4}, mode = modes[(source >> 24) & 0xF];
    const long h = n / 2, nn = n;
    for (long i = 0; i < (nn + 1) / 2; ++i) {
        const long a[] = {2 * i, i, i, h - 1 - i, h - 1 - i};
        const long b[] = {2 * i + 1, h + i, nn - 1 - i, h + i, nn - 1 - i};
        put(a[mode], true, i);
        put(b[mode], false, i);
    }
}

}  // namespace tap_test

#endif
