// The CPU's instruction sets, read once, and the ceiling every family's
// choice of vector paths obeys.
//
// Levels, lowest first: scalar (no hand-written vector path; the compiler
// may still use the SSE2 baseline inside the scalar kernels), SSE2, SSSE3,
// AVX2, AVX-512. The active level is the lower of the host's level and the
// ceiling; the ceiling starts as the environment variable ZOIMG_CPU
// (`scalar`, `sse2`, `ssse3`, `avx2`, `avx512`; read once, unset or unknown
// values leave it open) and tests may change it with SetCpuCeiling.
//
// Every family keeps a PathChoice: the family's paths for the active level,
// chosen on first use and chosen again whenever the ceiling changes, so that
// a line call reads one pointer and never asks the CPU anything.
#ifndef ZO_SIMD_CPU_H
#define ZO_SIMD_CPU_H

#include <atomic>
#include <cstdint>

#if defined(__x86_64__) || defined(_M_X64)
#define ZO_SIMD_X86 1
#else
#define ZO_SIMD_X86 0
#endif

namespace zo {
namespace simd {

enum class CpuLevel : unsigned { kScalar = 0, kSSE2, kSSSE3, kAVX2, kAVX512 };
constexpr unsigned kCpuLevelCount = 5;

// What the processor and the operating system support (registers saved on
// task switches), read once.
struct CpuFeatures {
    bool sse2, ssse3, sse41, avx2, avx512f, avx512bw, avx512vl, avx512vbmi;
};
const CpuFeatures& HostCpuFeatures();

// The highest level the host runs: AVX2 needs SSSE3 and SSE4.1 too; AVX-512
// needs AVX2 and F, BW and VL (VBMI is a feature a family may ask for on top).
CpuLevel HostCpuLevel();

// The ceiling (ZOIMG_CPU, or the last SetCpuCeiling) and the level in force:
// min(host, ceiling).
CpuLevel CpuCeiling();
CpuLevel ActiveCpuLevel();

// Sets the ceiling and chooses every family's paths again. For tests and
// tools: call it while no conversion runs (the families' pointers change
// under running line calls otherwise).
void SetCpuCeiling(CpuLevel ceiling);

// "scalar", "sse2", "ssse3", "avx2", "avx512".
const char* CpuLevelName(CpuLevel level);
// Reads one of those names (case-insensitive); false for anything else.
bool ParseCpuLevel(const char* text, CpuLevel& level);

// A family's choice of paths. Choose(level) returns the family's paths for a
// level (never null; a family without a vector path at some level returns a
// table of the scalar kind). The choice is made on first use and again on
// every SetCpuCeiling; Get() is one atomic load.
template <class Paths>
class PathChoice {
public:
    using Chooser = const Paths* (*)(CpuLevel level);
    PathChoice(const char* family, Chooser choose);
    const Paths& Get() const { return *mActive.load(std::memory_order_acquire); }

private:
    static void Reselect(void* self);
    Chooser mChoose;
    std::atomic<const Paths*> mActive;
};

// A family's entry in the list SetCpuCeiling walks (every PathChoice adds
// itself; the list is also read by tests to name the chosen paths).
struct PathFamily {
    const char* family;
    void* choice;
    void (*reselect)(void* choice);
    const char* (*activeName)(void* choice);  // the name of the chosen paths
};
void RegisterPathFamily(const PathFamily& entry);
// Copies up to `capacity` entries, returns how many there are.
unsigned PathFamilies(PathFamily* out, unsigned capacity);

template <class Paths>
PathChoice<Paths>::PathChoice(const char* family, Chooser choose) : mChoose(choose), mActive(choose(ActiveCpuLevel()))
{
    RegisterPathFamily(PathFamily{family, this, &PathChoice::Reselect,
                                  [](void* self) { return static_cast<PathChoice*>(self)->Get().name; }});
}

template <class Paths>
void PathChoice<Paths>::Reselect(void* self)
{
    auto* choice = static_cast<PathChoice*>(self);
    choice->mActive.store(choice->mChoose(ActiveCpuLevel()), std::memory_order_release);
}

}  // namespace simd
}  // namespace zo

#endif
