// The choice between streaming and ordinary destination stores.
#include "core/StreamStores.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstdlib>
#include <cstring>

#include "convert/BandWindow.h"

#if (defined(__x86_64__) || defined(_M_X64)) && defined(__GNUC__)
#include <cpuid.h>
#define ZO_STREAM_CPUID 1
#else
#define ZO_STREAM_CPUID 0
#endif

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define ZO_STREAM_SSE2 1
#else
#define ZO_STREAM_SSE2 0
#endif

namespace zo {
namespace {

constexpr std::uint64_t kUnknownCacheBytes = std::uint64_t(8) << 20;

// The size of the largest data or unified cache of the deterministic cache
// leaf (4 on Intel, 0x8000001D on AMD; both describe a cache the same way).
std::uint64_t ReadLastLevelCacheBytes()
{
#if ZO_STREAM_CPUID
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (!__get_cpuid(0, &a, &b, &c, &d))
        return kUnknownCacheBytes;
    const bool amd = b == 0x68747541;  // "Auth" of "AuthenticAMD"
    unsigned leaf = 4;
    if (amd) {
        leaf = 0x8000001D;
        if (__get_cpuid_max(0x80000000, nullptr) < leaf)
            return kUnknownCacheBytes;
    } else if (a < 4) {
        return kUnknownCacheBytes;
    }
    std::uint64_t largest = 0;
    for (unsigned index = 0; index < 16; ++index) {
        __cpuid_count(leaf, index, a, b, c, d);
        const unsigned type = a & 0x1F;  // 0: no more caches; 1 data, 2 instruction, 3 unified
        if (type == 0)
            break;
        if (type == 2)
            continue;
        const std::uint64_t ways = (b >> 22) + 1, partitions = ((b >> 12) & 0x3FF) + 1, line = (b & 0xFFF) + 1;
        const std::uint64_t bytes = ways * partitions * line * (std::uint64_t(c) + 1);
        if (bytes > largest)
            largest = bytes;
    }
    if (largest)
        return largest;
#endif
    return kUnknownCacheBytes;
}

constexpr std::uint64_t kUnset = ~std::uint64_t(0);
constexpr std::uint64_t kNever = kUnset - 1;  // no footprint reaches it
std::atomic<std::uint64_t> gThreshold{kUnset};

// ZOIMG_STREAMING's threshold, kUnset where it says neither `off` nor `on`.
std::uint64_t SettingThreshold()
{
    static const std::uint64_t setting = ThresholdFromSetting(std::getenv("ZOIMG_STREAMING"), kUnset);
    return setting;
}

// The thread's last four area destinations, and the choice of the area
// conversion in progress on it.
struct ThreadStores {
    const unsigned char* recent[4] = {};
    unsigned next = 0;
    bool stream = false;
};
thread_local ThreadStores tStores;

}  // namespace

std::uint64_t LastLevelCacheBytes()
{
    static const std::uint64_t bytes = ReadLastLevelCacheBytes();
    return bytes;
}

std::uint64_t StreamingThreshold()
{
    const std::uint64_t set = gThreshold.load(std::memory_order_relaxed);
    if (set != kUnset)
        return set;
    return SettingThreshold() != kUnset ? SettingThreshold() : LastLevelCacheBytes() / 2;
}

std::uint64_t NewDestinationThreshold()
{
    if (gThreshold.load(std::memory_order_relaxed) != kUnset || SettingThreshold() != kUnset)
        return StreamingThreshold();
    return LastLevelCacheBytes() / 8;
}

bool StreamingRule(std::uint64_t footprint, bool recent)
{
    return footprint >= (recent ? StreamingThreshold() : NewDestinationThreshold());
}

std::uint64_t ThresholdFromSetting(const char* value, std::uint64_t cacheRule)
{
    auto is = [value](const char* word) {
        std::size_t i = 0;
        for (; word[i]; ++i)
            if (std::tolower(static_cast<unsigned char>(value[i])) != word[i])
                return false;
        return value[i] == '\0';
    };
    if (value && is("off"))
        return kNever;
    if (value && is("on"))
        return 0;
    return cacheRule;
}

void SetStreamingThreshold(std::uint64_t bytes) { gThreshold.store(bytes == kUnset ? kNever : bytes); }
void ResetStreamingThreshold() { gThreshold.store(kUnset); }

bool StreamDestination(const ZoPixelConverterContext& context)
{
    return context.filter && tStores.stream && !ThreadBandWindow().active;
}

AreaStores::AreaStores(const ZoPixelConverterContext& context, const unsigned char* destination)
    : mOuter(tStores.stream)
{
    ThreadStores& t = tStores;
    bool recent = false;
    for (const unsigned char* d : t.recent)
        recent = recent || d == destination;
    if (!recent) {
        t.recent[t.next] = destination;
        t.next = (t.next + 1) % 4;
    }
    const std::uint64_t footprint =
        std::uint64_t(context.areaHeight) * (std::uint64_t(context.sourceLineBytes) + context.destinationLineBytes);
    t.stream = StreamingRule(footprint, recent);
}

// The fence is unconditional: with no streamed store pending it costs a
// few cycles.
AreaStores::~AreaStores()
{
    StreamFence();
    tStores.stream = mOuter;
}

void StreamCopy(unsigned char* d, const unsigned char* s, std::size_t bytes)
{
#if ZO_STREAM_SSE2
    const std::size_t head = std::min<std::size_t>(-reinterpret_cast<std::uintptr_t>(d) & 63, bytes);
    std::memcpy(d, s, head);
    std::size_t i = head;
    for (; i + 64 <= bytes; i += 64) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 16));
        const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 32));
        const __m128i e = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 48));
        _mm_stream_si128(reinterpret_cast<__m128i*>(d + i), a);
        _mm_stream_si128(reinterpret_cast<__m128i*>(d + i + 16), b);
        _mm_stream_si128(reinterpret_cast<__m128i*>(d + i + 32), c);
        _mm_stream_si128(reinterpret_cast<__m128i*>(d + i + 48), e);
    }
    std::memcpy(d + i, s + i, bytes - i);
#else
    std::memcpy(d, s, bytes);
#endif
}

void StreamFence()
{
#if ZO_STREAM_SSE2
    _mm_sfence();
#endif
}

}  // namespace zo
