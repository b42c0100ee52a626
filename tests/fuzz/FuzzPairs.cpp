#include "fuzz/FuzzPairs.h"

#include <cstdio>
#include <cstdlib>

#include "support/BuiltInPairs.h"

namespace zofuzz {

const std::vector<Pair>& RegisteredPairs()
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

}  // namespace zofuzz
