// Every registered (source, destination) pair of the library, found through
// the flat interface, for the fuzzers to pick from by index.
#ifndef ZO_FUZZ_PAIRS_H
#define ZO_FUZZ_PAIRS_H

#include <cstdint>
#include <vector>

#include "ZoImgLibC.h"

namespace zofuzz {

struct Pair {
    std::int64_t source;
    std::int64_t destination;
    const ZoPixelConverter* converter;
};

// In ascending order; the library registers 680 (checked: any other count
// stops the fuzzer, as the registry is frozen).
const std::vector<Pair>& RegisteredPairs();

}  // namespace zofuzz

#endif
