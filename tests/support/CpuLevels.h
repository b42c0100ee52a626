// Test support: the instruction-set levels this host runs, and a scope that
// sets the ceiling (choosing every family's paths again) and restores it.
#ifndef ZO_TEST_CPU_LEVELS_H
#define ZO_TEST_CPU_LEVELS_H

#include <vector>

#include "simd/Cpu.h"

namespace zotest {

// scalar, sse2, ... up to the host's level.
inline std::vector<zo::simd::CpuLevel> HostCpuLevels()
{
    std::vector<zo::simd::CpuLevel> levels;
    for (unsigned i = 0; i <= static_cast<unsigned>(zo::simd::HostCpuLevel()); ++i)
        levels.push_back(static_cast<zo::simd::CpuLevel>(i));
    return levels;
}

class CpuCeilingScope {
public:
    explicit CpuCeilingScope(zo::simd::CpuLevel level) : mSaved(zo::simd::CpuCeiling())
    {
        zo::simd::SetCpuCeiling(level);
    }
    ~CpuCeilingScope() { zo::simd::SetCpuCeiling(mSaved); }
    CpuCeilingScope(const CpuCeilingScope&) = delete;
    CpuCeilingScope& operator=(const CpuCeilingScope&) = delete;

private:
    zo::simd::CpuLevel mSaved;
};

}  // namespace zotest

#endif
