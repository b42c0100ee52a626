// Declarations of the Bayer vector paths chosen at run time. Kept free of
// inline code so that the AVX2 file, compiled for AVX2, shares no inline
// function with the rest of the library.
#ifndef ZO_BAYER_SIMD_DISPATCH_H
#define ZO_BAYER_SIMD_DISPATCH_H

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__) && (defined(__x86_64__) || defined(_M_X64))
#define ZO_BAYER_SSE2 1
#endif

namespace zo {

// True when the CPU runs AVX2 (read once).
bool BayerHasAvx2();

#if ZO_BAYER_SSE2
// The inside of an interpolating inner line, 8-bit samples through an
// identity filter into a 3- or 4-byte layout (red first or blue first), 32
// pixels per pass from `from` (even) while a whole block fits before `to`
// (`to` at most count - 1); a 24-bit block writes four bytes past its last
// pixel and keeps two pixels of room before `to`. Returns where it stopped.
// Call only when BayerHasAvx2().
std::uint32_t InterpolateBlocksAvx2(unsigned bytes, bool blueFirst, const unsigned char* line, std::ptrdiff_t above,
                                    std::ptrdiff_t below, unsigned char* dst, std::uint32_t from, std::uint32_t to,
                                    int phase);
#endif

}  // namespace zo

#endif
