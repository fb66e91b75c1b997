#include "vn/platform/Decimal.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace vn {
namespace {

TEST(Decimal, ParsesLeadingNumberAndDescribesItCompactly) {
    struct Case {
        const char* text;
        const char* description;
        std::size_t consumed;
    };
    const Case cases[] = {
        {"1.50", "1.5", 4},
        {"  -0.025xyz", "-0.025", 8},
        {"1500", "1500", 4},
        {"1.5e3", "1500", 5},
        {"2E-2", "0.02", 4},
        {"+7", "7", 2},
        {"0000", "0", 4},
        {".5", "0.5", 2},
        {"5.", "5", 2},
        {"12e", "12", 2},
        {"-0", "0", 2},
        {"123456789012345678901234567890123456789", "123456789012345678901234567890123456780", 39},
    };
    for (const Case& c : cases) {
        std::size_t consumed = 0;
        const auto value = Decimal::parse(c.text, ".", &consumed);
        ASSERT_TRUE(value) << c.text;
        EXPECT_EQ(value->description(), c.description) << c.text;
        EXPECT_EQ(consumed, c.consumed) << c.text;
    }
    EXPECT_FALSE(Decimal::parse(""));
    EXPECT_FALSE(Decimal::parse("abc"));
    EXPECT_FALSE(Decimal::parse("-"));
    EXPECT_FALSE(Decimal::parse("."));
    EXPECT_EQ(Decimal::parse("1,25", ",")->description(), "1.25");
    EXPECT_TRUE(Decimal::parse("1e999999")->isNaN());
    EXPECT_TRUE(Decimal::parse("1e-999999")->isZero());
}

TEST(Decimal, RoundsWithTheFourModes) {
    struct Case {
        const char* value;
        int scale;
        RoundingMode mode;
        const char* expected;
    };
    const Case cases[] = {
        {"2.5", 0, RoundingMode::plain, "3"},        {"2.5", 0, RoundingMode::bankers, "2"},
        {"3.5", 0, RoundingMode::bankers, "4"},      {"-2.5", 0, RoundingMode::plain, "-3"},
        {"-2.7", 0, RoundingMode::up, "-2"},         {"-2.7", 0, RoundingMode::down, "-3"},
        {"2.7", 0, RoundingMode::down, "2"},         {"2.1", 0, RoundingMode::up, "3"},
        {"1.005", 2, RoundingMode::plain, "1.01"},   {"1.2345", 2, RoundingMode::bankers, "1.23"},
        {"1250", -2, RoundingMode::bankers, "1200"}, {"1250", -2, RoundingMode::plain, "1300"},
        {"0.0001", 2, RoundingMode::plain, "0"},     {"0.0001", 2, RoundingMode::up, "0.01"},
        {"9.99", 1, RoundingMode::plain, "10"},      {"1.5", 3, RoundingMode::plain, "1.5"},
        {"1e-100", 0, RoundingMode::up, "1"},        {"-1e-100", 0, RoundingMode::down, "-1"},
    };
    for (const Case& c : cases) {
        const Decimal value = *Decimal::parse(c.value);
        EXPECT_EQ(value.rounded(c.scale, c.mode).description(), c.expected)
            << c.value << " scale " << c.scale << " mode " << static_cast<int>(c.mode);
    }
    EXPECT_EQ(
        Decimal::parse("1.234")->rounded(Decimal::kNoScale, RoundingMode::plain).description(),
        "1.234");
}

TEST(Decimal, OrdersAcrossSignsExponentsAndNaN) {
    const auto d = [](const char* text) { return *Decimal::parse(text); };
    EXPECT_LT(d("-10"), d("-9.99"));
    EXPECT_LT(d("0.001"), d("0.01"));
    EXPECT_LT(d("99"), d("1e2"));
    EXPECT_EQ(d("1.50"), d("1.5"));
    EXPECT_EQ(d("0"), d("-0"));
    EXPECT_LT(d("-1"), d("0"));
    EXPECT_LT(Decimal::notANumber(), d("-1e100"));
    EXPECT_EQ(Decimal::notANumber(), Decimal::notANumber());
    EXPECT_EQ(d("1.50").hash(), d("1.5").hash());
}

TEST(Decimal, ConvertsFromAndToMachineNumbers) {
    EXPECT_EQ(Decimal::fromDouble(0.1).description(), "0.1");
    EXPECT_EQ(Decimal::fromDouble(-1234.5).description(), "-1234.5");
    EXPECT_EQ(Decimal::fromDouble(1e20).description(), "100000000000000000000");
    EXPECT_TRUE(Decimal::fromDouble(std::numeric_limits<double>::quiet_NaN()).isNaN());
    EXPECT_TRUE(Decimal::fromDouble(std::numeric_limits<double>::infinity()).isNaN());
    EXPECT_EQ(Decimal::fromInteger(std::numeric_limits<std::int64_t>::min()).description(),
              "-9223372036854775808");
    EXPECT_EQ(Decimal::fromUnsigned(std::numeric_limits<std::uint64_t>::max()).description(),
              "18446744073709551615");
    EXPECT_DOUBLE_EQ(Decimal::parse("-0.025")->doubleValue(), -0.025);
    EXPECT_EQ(Decimal::parse("-7.9")->integerValue(), -7);
    EXPECT_EQ(Decimal::parse("1e30")->integerValue(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(Decimal::parse("-1e30")->integerValue(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(Decimal::notANumber().integerValue(), 0);
}

}  // namespace
}  // namespace vn
