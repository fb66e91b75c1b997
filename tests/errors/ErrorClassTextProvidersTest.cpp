#include "vn/errors/ErrorClassTextProviders.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(ErrorClassTextProviders, RegisteringReplacesAndAnEmptyProviderRemoves) {
    constexpr std::string_view name = "vnSomeInjectedText";
    EXPECT_EQ(errorClassText(name), std::nullopt);
    registerErrorClassTextProvider(name, [] { return std::string("first"); });
    registerErrorClassTextProvider(name, [] { return std::string("second"); });
    EXPECT_EQ(errorClassText(name), "second");
    EXPECT_EQ(errorClassText("vnsomeinjectedtext"), std::nullopt) << "names are exact";
    // A provider runs without the registry locked, so it may register providers itself.
    registerErrorClassTextProvider(name, [&] {
        registerErrorClassTextProvider("vnInnerText", [] { return std::string("inner"); });
        return std::string("outer");
    });
    EXPECT_EQ(errorClassText(name), "outer");
    EXPECT_EQ(errorClassText("vnInnerText"), "inner");
    registerErrorClassTextProvider(name, nullptr);
    registerErrorClassTextProvider(name, nullptr);  // removing twice is harmless
    EXPECT_EQ(errorClassText(name), std::nullopt);
}

}  // namespace
}  // namespace vn
