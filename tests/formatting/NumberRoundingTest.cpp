// Rounding the model's numbers to a number of decimals, and the 32-bit integer test.
#include "vn/formatting/NumberRounding.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vn {
namespace {

Decimal decimal(const char* text) {
    return *Decimal::parse(text);
}

struct RoundingCase {
    double value;
    std::int64_t decimals;
    const char* plain;
    const char* even;
    const char* truncated;
};

TEST(NumberRounding, RoundsEvenAndTruncatesThroughTheDecimalValue) {
    const RoundingCase cases[] = {
        {2.5, 0, "3", "2", "2"},
        {3.5, 0, "4", "4", "3"},
        {-2.5, 0, "-3", "-2", "-2"},
        {-2.7, 0, "-3", "-3", "-2"},
        {2.7, 0, "3", "3", "2"},
        {1.005, 2, "1.01", "1", "1"},  // the double's shortest digits, 1.005, not 1.00499999...
        {2.675, 2, "2.68", "2.68", "2.67"},
        {1234.5, -1, "1230", "1230", "1230"},
        {1250, -2, "1300", "1200", "1200"},
        {-0.125, 2, "-0.13", "-0.12", "-0.12"},
        {0.1, 5, "0.1", "0.1", "0.1"},
    };
    for (const RoundingCase& c : cases) {
        SCOPED_TRACE(std::to_string(c.value) + " to " + std::to_string(c.decimals));
        const Number number(c.value);
        const Number plain = vnNumberRoundedToDecimalsInt(number, c.decimals);
        EXPECT_TRUE(plain.isDecimal());
        EXPECT_EQ(plain.decimalValue(), decimal(c.plain));
        EXPECT_EQ(vnNumberRoundedToEvenDecimalsInt(number, c.decimals).decimalValue(),
                  decimal(c.even));
        EXPECT_EQ(vnNumberTruncatedToDecimalsInt(number, c.decimals).decimalValue(),
                  decimal(c.truncated));
        EXPECT_EQ(vnRoundedToDecimals(decimal(std::to_string(c.value).c_str()), c.decimals),
                  decimal(c.plain));
        EXPECT_EQ(vnRoundedToEvenDecimals(number.decimalValue(), c.decimals), decimal(c.even));
    }
}

TEST(NumberRounding, DecimalsGivenAsNumbersUseTheirIntegerValueAndDefaultToZero) {
    const Number value(2.345);
    EXPECT_EQ(vnNumberRoundedToDecimals(value, std::nullopt).decimalValue(), decimal("2"));
    EXPECT_EQ(vnNumberRoundedToDecimals(value, Number(2.9)).decimalValue(), decimal("2.35"));
    EXPECT_EQ(vnNumberRoundedToEvenDecimals(value, Number(2)).decimalValue(), decimal("2.34"));
    EXPECT_EQ(vnNumberTruncatedToDecimals(Number(-2.345), Number(1)).decimalValue(),
              decimal("-2.3"));
    EXPECT_EQ(vnNumberTruncatedToDecimals(value, std::nullopt).decimalValue(), decimal("2"));
}

TEST(NumberRounding, ExtremeCountsAndNaNDoNotBreak) {
    EXPECT_EQ(vnNumberRoundedToDecimalsInt(Number(1.5), std::numeric_limits<std::int64_t>::max())
                  .decimalValue(),
              decimal("1.5"));
    EXPECT_TRUE(vnNumberRoundedToDecimalsInt(Number(1.5), std::numeric_limits<std::int64_t>::min())
                    .decimalValue()
                    .isZero());
    EXPECT_TRUE(vnNumberRoundedToDecimalsInt(Number(std::nan("")), 2).decimalValue().isNaN());
}

TEST(NumberRounding, IsIntegerComparesWithTheThirtyTwoBitIntegerValue) {
    EXPECT_TRUE(vnIsInteger(Number(3.0)));
    EXPECT_TRUE(vnIsInteger(Number(-2147483648LL)));
    EXPECT_TRUE(vnIsInteger(Number(*Decimal::parse("12.000"))));
    EXPECT_FALSE(vnIsInteger(Number(2.5)));
    EXPECT_FALSE(vnIsInteger(Number(-0.5)));
    EXPECT_FALSE(vnIsInteger(Number(std::nan(""))));
}

TEST(NumberRoundingDeathTest, IsIntegerOutsideThirtyTwoBitsIsFatal) {
    EXPECT_DEATH(vnIsInteger(Number(2147483648LL)), "does not fit a 32-bit integer");
    EXPECT_DEATH(vnIsInteger(Number(-5e9)), "does not fit a 32-bit integer");
}

}  // namespace
}  // namespace vn
