#include "vn/services/VNLoggerService.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(VNLoggerService, RawValuesOutsideTheCasesGiveNoValue) {
    for (std::int64_t raw = -2; raw <= 8; ++raw) {
        const auto type = fromRawValue<VNLoggerType>(raw);
        const auto level = fromRawValue<VNLoggerLevel>(raw);
        EXPECT_EQ(type.has_value(), raw >= 0 && raw <= 3) << raw;
        EXPECT_EQ(level.has_value(), raw >= 0 && raw <= 6) << raw;
        if (type) {
            EXPECT_EQ(rawValue(*type), raw);
        }
        if (level) {
            EXPECT_EQ(rawValue(*level), raw);
        }
    }
    EXPECT_EQ(fromRawValue<VNLoggerType>(INT64_MIN), std::nullopt);
    EXPECT_EQ(fromRawValue<VNLoggerLevel>(INT64_MAX), std::nullopt);
    static_assert(rawValue(VNLoggerType::network) == 1);
    static_assert(rawValue(VNLoggerLevel::off) == 0 && rawValue(VNLoggerLevel::debug) == 5);
}

}  // namespace
}  // namespace vn
