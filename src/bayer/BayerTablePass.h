// Filtered Bayer lines as the identity line followed by a table pass.
//
// Both Bayer families apply the filter to the final red, green and blue of a
// pixel just before the writer stores it (Filtered8, Filtered48), and their
// identity outputs store exactly the value the filtered outputs index with:
//   8-bit samples        the channel value itself (at most 255);
//   16-bit to 8 bits     (v >> shift) truncated to 8 bits, which is the
//                        filtered index (v >> shift) & 0xFF.
// The fourth byte of the 32-bit layouts is 0 either way. So a filtered line
// of a 24- or 32-bit layout is the identity line (with its vector path) with
// every stored channel then looked up in its table, while the line is still
// in the first-level cache. The filtered kernels have no vector path, so
// this pays from the AVX2 level up even with the scalar pass (the AVX2
// identity line saves more than the pass costs); below, the identity line
// gains too little and the lookups stay inside the kernel. RGB16 packs the
// looked-up values and keeps the lookups inside the kernel, as RGB48 does
// (see Bayer16Converters.cpp).
#ifndef ZO_BAYER_TABLE_PASS_H
#define ZO_BAYER_TABLE_PASS_H

#include <cstring>

#include "ZoRGBFilter.h"
#include "bayer/BayerKernels.h"
#include "simd/Lut.h"

namespace zo {

template <class Writer>
struct TablePassLayout {
    static constexpr bool kUses = false;
};
template <unsigned RedIndex>
struct TablePassLayout<Write24<RedIndex>> {
    static constexpr bool kUses = true;
    static constexpr unsigned kPixelBytes = 3, kRedIndex = RedIndex;
};
template <unsigned RedIndex>
struct TablePassLayout<Write32<RedIndex>> {
    static constexpr bool kUses = true;
    static constexpr unsigned kPixelBytes = 4, kRedIndex = RedIndex;
};

// Whether a filtered line of this layout goes through the table pass.
template <class Writer>
bool UsesTablePass(const ZoRGBFilter& filter)
{
    return TablePassLayout<Writer>::kUses && !filter.IsIdentity8() &&
           simd::ActiveCpuLevel() >= simd::CpuLevel::kAVX2;
}

// `count` pixels of a destination line through the filter's 8-bit tables.
template <class Writer>
void TablePass(unsigned char* line, std::uint32_t count, const ZoRGBFilter& filter)
{
    using L = TablePassLayout<Writer>;
    if constexpr (L::kUses)
        simd::ApplyLut8(line, count, L::kPixelBytes,
                        simd::LutTablesInByteOrder(filter.RedTable8(), filter.GreenTable8(), filter.BlueTable8(),
                                                   L::kRedIndex));
}

// Replicating: the first line of the pair is converted through the identity
// output, given to pass(line, count), and then copied to the second (as
// ReplicateCall does).
template <class Src, class Out, class Pass>
void ReplicateThenPass(const BayerLineCall& call, bool redQuirk, const Out& identity, Pass pass)
{
    ReplicateByPattern<Src>(call.pattern, redQuirk, call.source, call.source + call.sourceLineBytes,
                            call.destination, call.count, identity);
    pass(call.destination, call.count);
    std::memmove(call.destination + call.destinationLineBytes, call.destination,
                 static_cast<std::size_t>(call.count) * Out::kBytes);
}

}  // namespace zo

#endif
