// Which variant of a scaled-form loop (simd/LutForm.h) converts a line
// through a plan: each channel left as it is (-1), through the fast form
// (0) or through the corrected one (1), fixed at compile time so that a
// loop does only its channels' work. Shared by the SSE2 and AVX2 4:2:2
// paths; local to the including file.
#ifndef ZO_YUV_SCALED_MODES_H
#define ZO_YUV_SCALED_MODES_H

#include <type_traits>

#include "simd/LutForm.h"

namespace zo {
namespace {

// Calls run(red, green, blue) with std::integral_constant<int, mode> for
// each channel and returns its result: green left as it is where its table
// is the identity (white balance mostly), red and blue each fast or
// corrected; else all three through the corrected form (a fast form has
// cross = 0, so the corrected one never picks its g). Every table of the
// plan must have a scaled form; the plan is in byte order of the layout,
// red at byte `redIndex`.
template <class Run>
inline auto WithScaledModes(const simd::LutFormPlan8& plan, unsigned redIndex, Run run)
{
    using Skip = std::integral_constant<int, -1>;
    using Fast = std::integral_constant<int, 0>;
    using Corrected = std::integral_constant<int, 1>;
    const bool red = plan.scaled[redIndex].corrected, blue = plan.scaled[2 - redIndex].corrected;
    if (!plan.identity[1])
        return run(Corrected{}, Corrected{}, Corrected{});
    if (red)
        return blue ? run(Corrected{}, Skip{}, Corrected{}) : run(Corrected{}, Skip{}, Fast{});
    return blue ? run(Fast{}, Skip{}, Corrected{}) : run(Fast{}, Skip{}, Fast{});
}

// Whether every table of the plan has a scaled form.
inline bool HasScaledForms(const simd::LutFormPlan8& plan)
{
    return plan.scaled[0].valid && plan.scaled[1].valid && plan.scaled[2].valid;
}

}  // namespace
}  // namespace zo

#endif
