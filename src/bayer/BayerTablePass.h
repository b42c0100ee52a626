// Filtered Bayer lines in one pass where the vector kernel can evaluate the
// tables, else as the identity line followed by a table pass.
//
// One pass (WithFusedLine here; RGB48 in Bayer16Converters.cpp): at the
// AVX-512 level on CPUs with VBMI (the Bayer paths' bytesLookup),
// interpolated lines of 8-bit samples into 24/32-bit layouts look each
// channel's packed bytes up in its table inside the block (any table, form
// or not); otherwise, at the AVX2 level and up (the Bayer paths'
// bytesScaled, bytesFormed and words48Formed), interpolated lines of 8-bit
// samples into 24/32-bit layouts, and of 16-bit samples into RGB48, whose
// tables have an arithmetic form (simd/LutForm.h: 8-bit tables checked
// through the per-thread cache on every line, 16-bit ones once per area
// conversion) evaluate it on the 16-bit channel lanes just before the kernel
// packs and stores them; the scalar edges and the last pixels of the line
// look the channels up (the same bytes). At the SSE2 and SSSE3 levels 8-bit
// lines do the same where every table has a scaled form (bytesScaled,
// simd/LutScaled.h), as do 8-bit lines into RGB16 at every vector level
// (Bayer 8 -> RGB16 through gains 1.8, 1.0, 1.4, 1920 x 32 in the cache:
// 4.4 -> 1.20 times the identity at avx2, 2.0 at sse2, whose RGB16
// identity line is the compiler's), and below AVX-512 VBMI so do
// interpolated lines of 16-bit samples into 24/32-bit layouts (wordsScaled,
// WithFusedWordsLine; 12-bit Bayer -> BGRA through gains 1.8, 1.0, 1.4 at
// avx2, 1920 x 32 in the cache: 1.52 -> 1.29 times the identity, at sse2
// 2.85 -> 1.31). Measured
// against the identity line plus the pass (wb/id, 1080p / 4096 x 3000,
// gains 1.8, 1.0, 1.4, one run each, load about 6.5): host Bayer 8 -> RGB24
// 1.32 / 1.34 -> 1.24 / 1.26, -> BGRA 1.31 / 1.39 -> 1.16 / 1.23, 12-bit ->
// RGB48 1.53 / 1.25 -> 1.33 / 1.18; at ZOIMG_CPU=avx2 1.70 / 1.63 -> 1.34 /
// 1.31, 1.77 / 1.63 -> 1.26 / 1.24 and 1.49 / 1.33 -> 1.22 / 1.07 (more in
// simd/Lut.h). Everything else below keeps the identity line and the pass:
// replicating lines, 16-bit samples into 8-bit layouts at AVX-512 VBMI or
// through tables without scaled forms, the upper bytes of 16-bit
// containers, tables without a form (below VBMI), and below AVX2 RGB48 and
// tables without scaled forms.
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
// gains too little and the lookups stay inside the kernel, unless the pass
// is a vector one (tables with an arithmetic form, or VBMI). RGB16 packs the
// looked-up values and keeps the lookups inside the kernel; RGB48 takes the
// 16-bit arithmetic pass where the tables have a form (see
// Bayer16Converters.cpp).
#ifndef ZO_BAYER_TABLE_PASS_H
#define ZO_BAYER_TABLE_PASS_H

#include <cstring>
#include <type_traits>

#include "ZoRGBFilter.h"
#include "bayer/BayerKernels.h"
#include "simd/Lut.h"
#include "simd/LutScaled.h"

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

// Runs run(pass) with the table pass for a filtered line of this layout
// and returns true; false (nothing run) for the identity filter, a layout
// without a pass, or where the kernel's own lookups are faster: below AVX2
// unless the pass is a vector one (the arithmetic pass of tables that have
// a form, simd/LutForm.h, or VBMI lookups).
template <class Writer, class Run>
bool WithTablePass(const ZoRGBFilter& filter, Run run)
{
    using L = TablePassLayout<Writer>;
    if constexpr (L::kUses) {
        if (filter.IsIdentity8())
            return false;
        const simd::LutPass8 pass(
            simd::LutTablesInByteOrder(filter.RedTable8(), filter.GreenTable8(), filter.BlueTable8(), L::kRedIndex),
            L::kPixelBytes);
        if (!pass.Vector() && simd::ActiveCpuLevel() < simd::CpuLevel::kAVX2)
            return false;
        run(pass);
        return true;
    } else {
        (void)filter;
        (void)run;
        return false;
    }
}

// The plan of the filter's 8-bit tables for this layout (byte order of a
// 24/32-bit layout; RGB16: red, green, blue, made for 4-byte pixels) where
// every table has a scaled form (simd/LutScaled.h), else null.
template <class Writer>
const simd::LutFormPlan8* ScaledPlan8(const ZoRGBFilter& filter)
{
    unsigned redIndex = 0, pixelBytes = 4;
    if constexpr (!std::is_same<Writer, WriteRGB16>::value) {
        redIndex = TablePassLayout<Writer>::kRedIndex;
        pixelBytes = TablePassLayout<Writer>::kPixelBytes;
    }
    const simd::LutFormPlan8* plan = simd::FormPlan8(
        simd::LutTablesInByteOrder(filter.RedTable8(), filter.GreenTable8(), filter.BlueTable8(), redIndex),
        pixelBytes);
    return plan && simd::HasScaledForms(*plan) ? plan : nullptr;
}

// Runs run(out) with the output of one pass for an interpolated line of
// 8-bit samples through `filter` and returns true; false (nothing run) for
// the identity filter, a layout without a pass, a level without a fused
// vector path, or (below VBMI) tables without an arithmetic form (below
// AVX2, without scaled forms). With the
// lookup path (AVX-512 VBMI) every table takes it, Looked8: the lookups beat
// the forms even for plain gains, whose form is the cheapest (wb/id, 1080p /
// 4096 x 3000, one run, load about 8: gains 1.6 1.04 / 1.00 against
// 1.09 / 1.11 through the form). Otherwise the tables' form, Formed8,
// checked as the table pass checks it (simd::FormPlan8's per-thread cache,
// compared with the tables on every line).
template <class Writer, class Run>
bool WithFusedLine(const ZoRGBFilter& filter, Run run)
{
    using L = TablePassLayout<Writer>;
    if constexpr (std::is_same<Writer, WriteRGB16>::value) {
        // RGB16: the scaled forms only, at every level that has them; no
        // level looks RGB16 up.
        if (filter.IsIdentity8() || !BayerActivePaths().bytesScaled)
            return false;
        const simd::LutFormPlan8* plan = ScaledPlan8<Writer>(filter);
        if (!plan)
            return false;
        run(Formed8<Writer>{{filter.RedTable8(), filter.GreenTable8(), filter.BlueTable8(), 0}, plan});
        return true;
    } else if constexpr (L::kUses) {
        if (filter.IsIdentity8())
            return false;
        const BayerPaths& paths = BayerActivePaths();
        const std::uint8_t* const red = filter.RedTable8();
        const std::uint8_t* const green = filter.GreenTable8();
        const std::uint8_t* const blue = filter.BlueTable8();
        if (paths.bytesLookup) {
            run(Looked8<Writer>{{red, green, blue, 0}});
            return true;
        }
        if (!paths.bytesFormed && !paths.bytesScaled)
            return false;
        const simd::LutFormPlan8* plan =
            simd::FormPlan8(simd::LutTablesInByteOrder(red, green, blue, L::kRedIndex), L::kPixelBytes);
        if (!plan || (!paths.bytesFormed && !simd::HasScaledForms(*plan)))
            return false;  // SSE2: no path for this plan
        run(Formed8<Writer>{{red, green, blue, 0}, plan});
        return true;
    } else {
        (void)filter;
        (void)run;
        return false;
    }
}

// Runs run(out) with the output of one pass for an interpolated line of
// 16-bit samples (values (v >> shift) & 0xFF) into a 24- or 32-bit layout
// through `filter` and returns true; false (nothing run) for the identity
// filter, a layout without a pass, a level without the path (AVX-512
// VBMI's table pass looks the tables up), or tables that do not all have
// scaled forms (simd/LutScaled.h).
template <class Writer, class Run>
bool WithFusedWordsLine(const ZoRGBFilter& filter, unsigned shift, Run run)
{
    if constexpr (TablePassLayout<Writer>::kUses) {
        if (filter.IsIdentity8() || !BayerActivePaths().wordsScaled)
            return false;
        const simd::LutFormPlan8* plan = ScaledPlan8<Writer>(filter);
        if (!plan)
            return false;
        run(ScaledWords8<Writer>{{filter.RedTable8(), filter.GreenTable8(), filter.BlueTable8(), shift}, plan});
        return true;
    } else {
        (void)filter, (void)shift, (void)run;
        return false;
    }
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
