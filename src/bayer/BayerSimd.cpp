// Run-time choice of the Bayer vector paths.
#include "bayer/BayerSimdDispatch.h"

namespace zo {

bool BayerHasAvx2()
{
#if ZO_BAYER_SSE2 && defined(__GNUC__)
    static const bool avx2 = __builtin_cpu_supports("avx2");
    return avx2;
#else
    return false;
#endif
}

}  // namespace zo
