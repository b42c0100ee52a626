// Class names and chain stages through the flat interface.
#include <gtest/gtest.h>

#include <cxxabi.h>
#include <cstdlib>
#include <string>

#include "ZoGenericConverters.h"
#include "ZoImgLibExt.h"
#include "ZoPixelTypeFactory.h"
#include "support/BuiltInPairs.h"

namespace {

std::string TypeidName(const ZoPixelConverter& c)
{
    int status = 0;
    char* name = abi::__cxa_demangle(typeid(c).name(), nullptr, nullptr, &status);
    std::string result = status == 0 && name ? name : "";
    std::free(name);
    return result;
}

TEST(ClassName, EveryPairNamesItsClassAndChainsGiveTheirStages)
{
    int chains = 0;
    for (const auto& pair : zotest::RegisteredBuiltInPairs()) {
        const ZoPixelConverter& c = ZoPixelTypeFactory::GetConverter(pair.first, pair.second);
        const char* name = ZoPixelConverter_GetClassName(&c);
        ASSERT_NE(name, nullptr);
        EXPECT_NE(std::string(name), "");
        EXPECT_EQ(name, TypeidName(c)) << std::hex << pair.first << " " << pair.second;
        EXPECT_EQ(ZoPixelConverter_GetClassName(&c), name);  // the same cached string
        const auto* chain = dynamic_cast<const ZoComplexConverter*>(&c);
        EXPECT_EQ(ZoPixelConverter_GetChainStage(&c, 0), chain ? chain->GetFirst() : nullptr);
        EXPECT_EQ(ZoPixelConverter_GetChainStage(&c, 1), chain ? chain->GetSecond() : nullptr);
        EXPECT_EQ(ZoPixelConverter_GetChainStage(&c, 2), nullptr);
        chains += chain != nullptr;
    }
    EXPECT_GT(chains, 100);
    EXPECT_EQ(ZoPixelConverter_GetClassName(nullptr), nullptr);
    EXPECT_EQ(ZoPixelConverter_GetChainStage(nullptr, 0), nullptr);
}

}  // namespace
