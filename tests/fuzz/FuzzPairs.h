// Every registered (source, destination) pair of the library, found through
// the flat interface, for the fuzzers to pick from by index.
#ifndef ZO_FUZZ_PAIRS_H
#define ZO_FUZZ_PAIRS_H

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "ZoImgLibC.h"
#include "support/BuiltInPairs.h"

namespace zofuzz {

struct Pair {
    std::int64_t source, destination;
    const ZoPixelConverter* converter;
};

// In ascending order; the library registers 680 (any other count stops the
// fuzzer, as the registry is frozen).
inline const std::vector<Pair>& RegisteredPairs()
{
    static const std::vector<Pair> pairs = [] {
        std::vector<Pair> found;
        for (const auto& pair : zotest::RegisteredBuiltInPairs())
            found.push_back({pair.first, pair.second, ZoPixelTypeFactory_GetConverter(pair.first, pair.second)});
        if (found.size() != 680) {
            std::fprintf(stderr, "found %zu registered pairs, expected 680\n", found.size());
            std::abort();
        }
        return found;
    }();
    return pairs;
}

// Any registered pair, chosen by the input.
template <class Provider>
const Pair& AnyPair(Provider& in)
{
    return RegisteredPairs()[in.template ConsumeIntegralInRange<std::size_t>(0, RegisteredPairs().size() - 1)];
}

}  // namespace zofuzz

#endif
