#include "vn/platform/Number.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace vn {
namespace {

TEST(Number, KeepsTheKindItWasMadeWith) {
    EXPECT_EQ(Number(true).kind(), Number::Kind::boolean);
    EXPECT_EQ(Number(12).kind(), Number::Kind::signedInteger);
    EXPECT_EQ(Number(12u).kind(), Number::Kind::unsignedInteger);
    EXPECT_EQ(Number(1.5f).kind(), Number::Kind::floatingPoint);
    EXPECT_EQ(Number(1.5).kind(), Number::Kind::doublePrecision);
    EXPECT_EQ(Number(*Decimal::parse("1.5")).kind(), Number::Kind::decimal);
    EXPECT_FALSE(Number(true).isInteger());
}

TEST(Number, DescribesItselfInThePlatformsTextualForm) {
    EXPECT_EQ(Number(12).description(), "12");
    EXPECT_EQ(Number(12.0).description(), "12");
    EXPECT_EQ(Number(true).description(), "1");
    EXPECT_EQ(Number(false).description(), "0");
    EXPECT_EQ(Number(0.1).description(), "0.1");
    EXPECT_EQ(Number(0.1f).description(), "0.1");
    EXPECT_EQ(Number(-2.5).description(), "-2.5");
    EXPECT_EQ(Number(1e20).description(), "1e+20");
    EXPECT_EQ(Number(std::numeric_limits<double>::quiet_NaN()).description(), "nan");
    EXPECT_EQ(Number(std::numeric_limits<std::uint64_t>::max()).description(),
              "18446744073709551615");
}

TEST(Number, ConvertsBetweenKindsLikeThePlatform) {
    EXPECT_TRUE(Number(2).boolValue());
    EXPECT_TRUE(Number(0.001).boolValue());
    EXPECT_FALSE(Number(0.0).boolValue());
    EXPECT_EQ(Number(-7.9).integerValue(), -7);
    EXPECT_EQ(Number(1e300).integerValue(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(Number(-1e300).integerValue(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(Number(std::nan("")).integerValue(), 0);
    EXPECT_EQ(Number(true).integerValue(), 1);
    EXPECT_EQ(Number(-1).unsignedIntegerValue(), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(Number(0.1f).decimalValue().description(), "0.1");
    EXPECT_EQ(Number(true).decimalValue().description(), "1");
}

TEST(Number, ComparesByValueAcrossKinds) {
    EXPECT_EQ(Number(1), Number(true));
    EXPECT_EQ(Number(1), Number(1.0));
    EXPECT_EQ(Number(1u), Number(1));
    EXPECT_EQ(Number(0.1), Number(*Decimal::parse("0.1")));
    EXPECT_NE(Number(-1), Number(std::numeric_limits<std::uint64_t>::max()));
    EXPECT_EQ(Number(-1).compare(Number(0u)), std::partial_ordering::less);
    EXPECT_NE(Number(std::nan("")), Number(std::nan("")));
    EXPECT_EQ(Number(2).hash(), Number(2.0).hash());
    EXPECT_EQ(Number(1).hash(), Number(true).hash());
}

}  // namespace
}  // namespace vn
