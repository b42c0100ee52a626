// Arithmetic table passes with AVX2 (the lookups stay scalar: dword gathers
// measured slower than plain lookups).
#include <immintrin.h>

#include "simd/LutArith.h"
#include "simd/LutV256.h"

namespace zo {
namespace simd {
namespace {

using A = LutArith<V256>;
constexpr LutPaths kAvx2 = {"AVX2", false, LutBytes3Scalar, LutBytes4Scalar, A::Form3, A::Form4, A::Words3,
                            A::Verify16, A::VerifyExact16, A::VerifyCorrected16, true};

}  // namespace

const LutPaths* Avx2LutPaths() { return HostCpuLevel() >= CpuLevel::kAVX2 ? &kAvx2 : nullptr; }

}  // namespace simd
}  // namespace zo
