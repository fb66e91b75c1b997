#include "vn/model/VNOptionalBoolean.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(VNOptionalBoolean, ConvertsFromAndToAnOptionalBool) {
    static_assert(VNOptionalBooleanFromBool(std::nullopt) == VNOptionalBooleanNotSet);
    EXPECT_EQ(VNOptionalBooleanFromBool(true), 1);
    EXPECT_EQ(VNOptionalBooleanFromBool(false), 2);
    for (const std::optional<bool> value :
         {std::optional<bool>(), std::optional(true), std::optional(false)}) {
        EXPECT_EQ(asBool(VNOptionalBooleanFromBool(value)), value);
    }
}

TEST(VNOptionalBooleanDeathTest, RawValueAbove2StopsTheProcess) {
    EXPECT_DEATH(static_cast<void>(asBool(static_cast<VNOptionalBoolean>(3))),
                 "Fatal error: VNOptionalBoolean 3");
}

}  // namespace
}  // namespace vn
