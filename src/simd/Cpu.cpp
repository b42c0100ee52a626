// CPU features read once (CPUID and XGETBV), the ZOIMG_CPU ceiling and the
// list of families whose paths follow it.
#include "simd/Cpu.h"

#include <cstdlib>
#include <mutex>

#if ZO_SIMD_X86 && defined(__GNUC__)
#include <cpuid.h>
#endif

namespace zo {
namespace simd {
namespace {

#if ZO_SIMD_X86 && defined(__GNUC__)
// XCR0: which register states the operating system saves.
std::uint64_t ReadXcr0()
{
    std::uint32_t eax = 0, edx = 0;
    __asm__ volatile("xgetbv" : "=a"(eax), "=d"(edx) : "c"(0));
    return (static_cast<std::uint64_t>(edx) << 32) | eax;
}

CpuFeatures ReadFeatures()
{
    CpuFeatures f{};
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (!__get_cpuid(1, &a, &b, &c, &d))
        return f;
    f.sse2 = (d >> 26) & 1;
    f.ssse3 = (c >> 9) & 1;
    f.sse41 = (c >> 19) & 1;
    const bool osxsave = (c >> 27) & 1, avx = (c >> 28) & 1;
    const std::uint64_t xcr0 = osxsave ? ReadXcr0() : 0;
    const bool ymm = (xcr0 & 0x6) == 0x6;     // SSE and AVX state
    const bool zmm = (xcr0 & 0xE6) == 0xE6;   // and opmask, upper ZMM, high ZMM
    if (__get_cpuid_max(0, nullptr) < 7)
        return f;
    __cpuid_count(7, 0, a, b, c, d);
    f.avx2 = avx && ymm && ((b >> 5) & 1);
    f.avx512f = f.avx2 && zmm && ((b >> 16) & 1);
    f.avx512bw = f.avx512f && ((b >> 30) & 1);
    f.avx512vl = f.avx512f && ((b >> 31) & 1);
    f.avx512vbmi = f.avx512f && ((c >> 1) & 1);
    return f;
}
#else
CpuFeatures ReadFeatures() { return CpuFeatures{}; }
#endif

const char* const kNames[kCpuLevelCount] = {"scalar", "sse2", "ssse3", "avx2", "avx512"};

CpuLevel LevelOf(const CpuFeatures& f)
{
    if (!f.sse2)
        return CpuLevel::kScalar;
    if (!f.ssse3)
        return CpuLevel::kSSE2;
    if (!f.sse41 || !f.avx2)
        return CpuLevel::kSSSE3;
    if (!f.avx512f || !f.avx512bw || !f.avx512vl)
        return CpuLevel::kAVX2;
    return CpuLevel::kAVX512;
}

CpuLevel CeilingFromEnvironment()
{
    CpuLevel level = CpuLevel::kAVX512;
    const char* text = std::getenv("ZOIMG_CPU");
    if (text && !ParseCpuLevel(text, level))
        level = CpuLevel::kAVX512;
    return level;
}

std::atomic<unsigned>& CeilingValue()
{
    static std::atomic<unsigned> ceiling{static_cast<unsigned>(CeilingFromEnvironment())};
    return ceiling;
}

// Families are few (one per kernel family); the list never shrinks.
constexpr unsigned kMaxFamilies = 16;
struct FamilyList {
    std::mutex mutex;
    PathFamily entries[kMaxFamilies];
    unsigned count = 0;
};
FamilyList& Families()
{
    static FamilyList list;
    return list;
}

}  // namespace

const CpuFeatures& HostCpuFeatures()
{
    static const CpuFeatures features = ReadFeatures();
    return features;
}

CpuLevel HostCpuLevel()
{
    static const CpuLevel level = LevelOf(HostCpuFeatures());
    return level;
}

CpuLevel CpuCeiling() { return static_cast<CpuLevel>(CeilingValue().load(std::memory_order_acquire)); }

CpuLevel ActiveCpuLevel()
{
    const CpuLevel host = HostCpuLevel(), ceiling = CpuCeiling();
    return static_cast<unsigned>(ceiling) < static_cast<unsigned>(host) ? ceiling : host;
}

void SetCpuCeiling(CpuLevel ceiling)
{
    FamilyList& list = Families();
    std::lock_guard<std::mutex> lock(list.mutex);
    CeilingValue().store(static_cast<unsigned>(ceiling), std::memory_order_release);
    for (unsigned i = 0; i < list.count; ++i)
        list.entries[i].reselect(list.entries[i].choice);
}

const char* CpuLevelName(CpuLevel level)
{
    const unsigned i = static_cast<unsigned>(level);
    return i < kCpuLevelCount ? kNames[i] : "unknown";
}

bool ParseCpuLevel(const char* text, CpuLevel& level)
{
    if (!text)
        return false;
    for (unsigned i = 0; i < kCpuLevelCount; ++i) {
        const char* a = text;
        const char* b = kNames[i];
        while (*a && *b && (*a | 0x20) == *b) {
            ++a;
            ++b;
        }
        if (!*a && !*b) {
            level = static_cast<CpuLevel>(i);
            return true;
        }
    }
    return false;
}

void RegisterPathFamily(const PathFamily& entry)
{
    FamilyList& list = Families();
    std::lock_guard<std::mutex> lock(list.mutex);
    // Chosen again under the lock: a ceiling set since the choice was made
    // applies to this family too.
    entry.reselect(entry.choice);
    if (list.count < kMaxFamilies)
        list.entries[list.count++] = entry;
}

unsigned PathFamilies(PathFamily* out, unsigned capacity)
{
    FamilyList& list = Families();
    std::lock_guard<std::mutex> lock(list.mutex);
    for (unsigned i = 0; i < list.count && i < capacity; ++i)
        out[i] = list.entries[i];
    return list.count;
}

}  // namespace simd
}  // namespace zo
