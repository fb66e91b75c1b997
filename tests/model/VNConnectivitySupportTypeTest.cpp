#include "vn/model/VNConnectivitySupportType.h"

#include <gtest/gtest.h>

#include "testing/HostileValues.h"

namespace vn {
namespace {

using VNUtilities::connectivitySupportFromValue;

TEST(VNConnectivitySupportType, ReadsWordsAndBoxedValues) {
    struct Case {
        Value value;
        VNConnectivitySupportType expected;
    };
    const auto fallback = VNConnectivitySupportTypeInherit;
    const Case cases[] = {
        {Value("idOnline"), VNConnectivitySupportTypeOnline},
        {Value("idOffline"), VNConnectivitySupportTypeOffline},
        {Value("idInherit"), VNConnectivitySupportTypeInherit},
        {Value(0), VNConnectivitySupportTypeOnline},
        {Value(1), VNConnectivitySupportTypeOffline},
        {Value(std::uint64_t{2}), VNConnectivitySupportTypeInherit},
        {Value("idoffline"), fallback},
        {Value(" idOffline"), fallback},
        {Value("1"), fallback},
        {Value(3), fallback},
        {Value(-1), fallback},
        {Value(1.0), fallback},
        {Value(true), fallback},
        {Value(std::uint64_t{1} << 63), fallback},
        {Value(), fallback},
        {Value::null(), fallback},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(connectivitySupportFromValue(c.value, fallback), c.expected)
            << c.value.description();
    }
    EXPECT_EQ(connectivitySupportFromValue(Value()), VNConnectivitySupportTypeOnline);
    EXPECT_EQ(connectivitySupportFromValue(Value("idOffline")), VNConnectivitySupportTypeOffline);
    for (const Value& value : testing::hostileValues()) {
        EXPECT_LE(connectivitySupportFromValue(value, VNConnectivitySupportTypeOffline),
                  VNConnectivitySupportTypeInherit);
    }
}

}  // namespace
}  // namespace vn
