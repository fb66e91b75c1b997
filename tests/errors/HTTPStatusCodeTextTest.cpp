#include "vn/errors/HTTPStatusCodeText.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(HTTPStatusCodeText, StandardCodesHaveThePlatformsTextsAndOthersTheirClassText) {
    const std::vector<std::pair<std::int64_t, std::string_view>> cases = {
        {100, "continue"},
        {200, "no error"},
        {304, "not modified"},
        {400, "bad request"},
        {401, "unauthorized"},
        {403, "forbidden"},
        {404, "not found"},
        {429, "too many requests"},
        {500, "internal server error"},
        {511, "network authentication required"},
        {199, "informational"},
        {299, "success"},
        {399, "redirected"},
        {420, "client error"},
        {599, "server error"},
        {600, "server error"},
        {0, "server error"},
        {-1, "server error"},
    };
    for (const auto& [code, text] : cases)
        EXPECT_EQ(localizedStringForStatusCode(code), text) << code;
}

}  // namespace
}  // namespace vn
