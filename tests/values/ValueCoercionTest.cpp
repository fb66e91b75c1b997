#include "vn/values/ValueCoercion.h"

#include <gtest/gtest.h>

#include <locale.h>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "testing/HostileValues.h"
#include "testing/ScopedProcessState.h"
#include "vn/platform/Error.h"
#include "vn/platform/Locale.h"

namespace vn {
namespace {

using namespace VNUtilities;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class Switch final : public Object {
  public:
    explicit Switch(std::optional<bool> state) : state_(state) {}
    std::optional<bool> boolValue() const override { return state_; }

  private:
    std::optional<bool> state_;
};

TEST(ValueCoercion, BoolFromValueAppliesItsRulesInOrder) {
    struct Case {
        Value value;
        bool defaultValue;
        bool expected;
    };
    const Case cases[] = {
        {Value(), true, true},
        {Value(), false, false},
        {Value(true), false, true},
        {Value(false), true, false},
        {Value(2), false, true},
        {Value(0.0), true, false},
        {Value(-0.25), false, true},
        {Value(""), true, true},  // the empty text takes the default
        {Value(" "), true, false},
        {Value("true"), false, true},
        {Value("Yes"), false, true},
        {Value("1"), false, true},
        {Value("007"), false, true},
        {Value("  -0y"), false, true},
        {Value("false"), true, false},
        {Value("no"), true, false},
        {Value("0"), true, false},
        {Value("abc"), true, false},
        {Value::null(), true, true},
        {Value::null(), false, false},
        {Value(Data{1}), true, true},
        {Value(Value::Array{Value(true)}), false, false},
        {Value(std::make_shared<Switch>(true)), false, true},
        {Value(std::make_shared<Switch>(false)), true, false},
        {Value(std::make_shared<Switch>(std::nullopt)), true, true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(boolFromValue(c.value, c.defaultValue), c.expected) << c.value.description();
    }
    EXPECT_FALSE(boolFromValue(Value()));
    EXPECT_FALSE(boolFromValue(Value::null()));
}

TEST(ValueCoercion, NumberWithBoolIfTrueNeverAnswersFalse) {
    EXPECT_EQ(numberWithBoolIfTrueFromValue(Value("no")), std::nullopt);
    EXPECT_EQ(numberWithBoolIfTrue(Value(0)), std::nullopt);
    EXPECT_EQ(numberWithBoolIfTrue(Value()), std::nullopt);
    const std::optional<Number> yes = numberWithBoolIfTrueFromValue(Value("YES"));
    ASSERT_TRUE(yes.has_value());
    EXPECT_TRUE(yes->isBoolean());
    EXPECT_TRUE(yes->boolValue());
}

TEST(ValueCoercion, StringFromObjectDescribesEverythingButNilAndNull) {
    EXPECT_EQ(stringFromObject(Value()), std::nullopt);
    EXPECT_EQ(stringFromObject(Value::null()), std::nullopt);
    EXPECT_EQ(stringFromObject(Value("abc")), "abc");
    EXPECT_EQ(stringFromObject(Value("")), "");
    EXPECT_EQ(stringFromObject(Value(12)), "12");
    EXPECT_EQ(stringFromObject(Value(true)), "1");
    EXPECT_EQ(stringFromObject(Value(1.5)), "1.5");
    EXPECT_EQ(stringFromObject(Value(Value::Array{1, "two"})), "(\n    1,\n    two\n)");

    EXPECT_EQ(nonEmptyStringFromObject(Value("")), std::nullopt);
    EXPECT_EQ(nonEmptyString(Value(" ")), " ");
    EXPECT_EQ(nonEmptyString(Value(0)), "0");
    EXPECT_EQ(nonEmptyString(Value::null()), std::nullopt);
}

TEST(ValueCoercion, IsStringNullOrEmptyTakesTextsAndValues) {
    EXPECT_TRUE(isStringNullOrEmpty(std::nullopt));
    EXPECT_TRUE(isStringNullOrEmpty(""));
    EXPECT_TRUE(isStringNullOrEmpty(std::string()));
    EXPECT_FALSE(isStringNullOrEmpty(" "));
    EXPECT_FALSE(isStringNullOrEmpty(std::optional<std::string_view>("x")));

    EXPECT_TRUE(isStringNullOrEmpty(Value()));
    EXPECT_TRUE(isStringNullOrEmpty(Value::null()));
    EXPECT_TRUE(isStringNullOrEmpty(Value("")));
    EXPECT_FALSE(isStringNullOrEmpty(Value("  ")));
    EXPECT_FALSE(isStringNullOrEmpty(Value(0)));
    EXPECT_FALSE(isStringNullOrEmpty(Value(Value::Array{})));
}

TEST(ValueCoercion, ArraysWrapSingleValuesAndKeepArrays) {
    const Value list(Value::Array{1, 2});
    EXPECT_EQ(arrayFromObject(list), list);
    EXPECT_EQ(arrayFromObject(list).array(), list.array());  // the same array, not a copy
    EXPECT_EQ(arrayFromObject(Value("x")), Value(Value::Array{"x"}));
    EXPECT_EQ(arrayFromObject(Value::null()), Value(Value::Array{Value::null()}));
    EXPECT_EQ(arrayFromObject(Value()), Value(Value::Array{}));
    EXPECT_TRUE(array(Value()).isNil());
    EXPECT_EQ(array(Value(3)), Value(Value::Array{3}));
    EXPECT_EQ(array(list), list);

    EXPECT_TRUE(lastObjectIfArrayFromObject(Value()).isNil());
    EXPECT_TRUE(lastObjectIfArray(Value(Value::Array{})).isNil());
    EXPECT_EQ(lastObjectIfArray(list), Value(2));
    EXPECT_EQ(lastObjectIfArray(Value("text")), Value("text"));
    EXPECT_TRUE(lastObjectIfArray(Value::null()).isNull());
}

TEST(ValueCoercion, IntegerFormsScanTextsAndConvertNumbers) {
    struct Case {
        Value value;
        std::optional<std::int64_t> integer;
        std::optional<std::uint64_t> unsignedInteger;
    };
    constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
    constexpr auto kMin = std::numeric_limits<std::int64_t>::min();
    constexpr auto kUMax = std::numeric_limits<std::uint64_t>::max();
    const Case cases[] = {
        {Value("  42abc"), 42, 42u},
        {Value("-5"), -5, std::nullopt},
        {Value("abc"), std::nullopt, std::nullopt},
        {Value(""), std::nullopt, std::nullopt},
        {Value("3.9"), 3, 3u},
        {Value("99999999999999999999"), kMax, static_cast<std::uint64_t>(kMax)},
        {Value("-99999999999999999999"), kMin, std::nullopt},
        {Value(3.9), 3, 3u},
        {Value(-3.9), -3, std::nullopt},
        {Value(-0.5), 0, 0u},
        {Value(kNaN), 0, 0u},
        {Value(1e300), kMax, kUMax},
        {Value(-kInfinity), kMin, std::nullopt},
        {Value(kUMax), -1, kUMax},  // an unsigned number keeps its full value
        {Value(true), 1, 1u},
        {Value(Decimal::parse("-7.5").value()), -7, std::nullopt},
        {Value(), std::nullopt, std::nullopt},
        {Value::null(), std::nullopt, std::nullopt},
        {Value(Date{}), std::nullopt, std::nullopt},
    };
    for (const Case& c : cases) {
        const std::optional<Number> integer = integerNumberFromValue(c.value);
        const std::optional<Number> unsignedInteger = unsignedIntegerNumberFromValue(c.value);
        EXPECT_EQ(integer.has_value(), c.integer.has_value()) << c.value.description();
        EXPECT_EQ(unsignedInteger.has_value(), c.unsignedInteger.has_value())
            << c.value.description();
        if (integer && c.integer) {
            EXPECT_EQ(integer->kind(), Number::Kind::signedInteger);
            EXPECT_EQ(integer->integerValue(), *c.integer) << c.value.description();
        }
        if (unsignedInteger && c.unsignedInteger) {
            EXPECT_EQ(unsignedInteger->kind(), Number::Kind::unsignedInteger);
            EXPECT_EQ(unsignedInteger->unsignedIntegerValue(), *c.unsignedInteger)
                << c.value.description();
        }
        EXPECT_EQ(integerFromValue(c.value, 77), c.integer.value_or(77));
        EXPECT_EQ(unsignedIntegerFromValue(c.value, 77u), c.unsignedInteger.value_or(77u));
    }
}

TEST(ValueCoercion, FloatingFormsReadTextsAndPassNumbersThrough) {
    const std::optional<Number> asDouble = doubleNumberFromValue(Value(" 1.5kg"));
    ASSERT_TRUE(asDouble.has_value());
    EXPECT_EQ(asDouble->kind(), Number::Kind::doublePrecision);
    EXPECT_EQ(asDouble->doubleValue(), 1.5);

    const std::optional<Number> asFloat = floatNumberFromValue(Value("0.1"));
    ASSERT_TRUE(asFloat.has_value());
    EXPECT_EQ(asFloat->kind(), Number::Kind::floatingPoint);
    EXPECT_EQ(asFloat->floatValue(), 0.1f);

    const std::optional<Number> asDecimal = decimalNumberFromValue(Value("0.1"));
    ASSERT_TRUE(asDecimal.has_value());
    EXPECT_TRUE(asDecimal->isDecimal());
    EXPECT_EQ(asDecimal->description(), "0.1");

    // Numbers are answered as they are by the float and double forms...
    EXPECT_EQ(doubleNumberFromValue(Value(5))->kind(), Number::Kind::signedInteger);
    EXPECT_EQ(floatNumberFromValue(Value(true))->kind(), Number::Kind::boolean);
    // ...and through their decimal value by the decimal form.
    EXPECT_EQ(decimalNumberFromValue(Value(0.1))->description(), "0.1");
    EXPECT_EQ(decimalNumberFromValue(Value(Decimal::parse("2.50").value()))->description(), "2.5");
    EXPECT_TRUE(decimalNumberFromValue(Value(kNaN))->decimalValue().isNaN());
    EXPECT_TRUE(decimalNumberFromValue(Value(kInfinity))->decimalValue().isNaN());

    for (const Value& none : {Value(), Value::null(), Value("abc"), Value("."), Value(Data{}),
                              Value(Value::Array{1})}) {
        EXPECT_EQ(doubleNumberFromValue(none), std::nullopt) << none.description();
        EXPECT_EQ(floatNumberFromValue(none), std::nullopt) << none.description();
        EXPECT_EQ(decimalNumberFromValue(none), std::nullopt) << none.description();
    }
}

TEST(ValueCoercion, PointTextsIgnoreTheLocaleAndOtherTextsUseIt) {
    {
        const testing::ScopedProcessState state;
        Locale::setCurrent("de_DE");
        EXPECT_EQ(doubleNumberFromValue(Value("1,5"))->doubleValue(), 1.5);
        EXPECT_EQ(doubleNumberFromValue(Value("1.5"))->doubleValue(), 1.5);
        EXPECT_EQ(doubleNumberFromValue(Value("1.234,5"))->doubleValue(), 1.234);
        EXPECT_EQ(decimalNumberFromValue(Value("-2,25"))->description(), "-2.25");
        EXPECT_EQ(floatNumberFromValue(Value("0,5"))->floatValue(), 0.5f);
        EXPECT_EQ(doubleNumberFromValue(Value(",5"))->doubleValue(), 0.5);
        EXPECT_EQ(doubleNumberFromValue(Value(" -,5"))->doubleValue(), -0.5);
        EXPECT_EQ(doubleNumberFromValue(Value("1,5 kg."))->doubleValue(),
                  1.0);  // a "." anywhere decides
        EXPECT_EQ(doubleNumberFromValue(Value("12kg"))->doubleValue(), 12.0);
        EXPECT_EQ(doubleNumberFromValue(Value("2e1,5"))->doubleValue(), 20.0);
        EXPECT_EQ(doubleNumberFromValue(Value(",")), std::nullopt);
    }
    const testing::ScopedProcessState state;
    Locale::setCurrent("en_US");
    EXPECT_EQ(doubleNumberFromValue(Value("1,5"))->doubleValue(), 1.0);
    EXPECT_EQ(doubleNumberFromValue(Value("1.5"))->doubleValue(), 1.5);
}

// ---- doubleNumberFromValue against strtod on generated numeric texts

std::string generatedNumericText(std::mt19937_64& random) {
    const auto pick = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    const auto digits = [&](std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) text += static_cast<char>('0' + pick(10));
        return text;
    };
    static const char* const kBlanks[] = {"", "", "", " ", "  ", "\t", "\n ", "\r\v\f"};
    static const char* const kSigns[] = {"", "", "-", "+"};
    static const char* const kGarbage[] = {"",    "",   "",  "abc", "e",  "E+",  ".",
                                           "..5", ",5", "-", "%",   " 7", "e-x", "\xC3\xA9"};
    std::string text = kBlanks[pick(std::size(kBlanks))];
    text += kSigns[pick(std::size(kSigns))];
    const std::size_t shape = pick(10);
    const std::size_t integerDigits = shape == 0 ? 0 : shape == 1 ? 300 + pick(500) : pick(25);
    if (pick(6) == 0) text += std::string(pick(5) + 1, '0');
    text += digits(integerDigits);
    if (pick(2) == 0) text += "." + digits(shape == 2 ? 400 + pick(400) : pick(25));
    if (pick(2) == 0) {
        text += pick(2) == 0 ? "e" : "E";
        text += kSigns[pick(std::size(kSigns))];
        text += std::to_string(pick(3) == 0 ? pick(700) : pick(40));
    }
    text += kGarbage[pick(std::size(kGarbage))];
    return text;
}

TEST(ValueCoercion, FloatingFormsReadExactlyWhatStrtodAndStrtofRead) {
    const testing::ScopedProcessState state;
    Locale::setCurrent("en_US");
    const locale_t cLocale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    ASSERT_NE(cLocale, static_cast<locale_t>(nullptr));
    std::mt19937_64 random(20240611);
    std::size_t compared = 0;
    for (int i = 0; i < 200000; ++i) {
        const std::string text = generatedNumericText(random);
        char* end = nullptr;
        const double expected = strtod_l(text.c_str(), &end, cLocale);
        const std::optional<Number> actual = doubleNumberFromValue(Value(text));
        ASSERT_EQ(actual.has_value(), end != text.c_str()) << '"' << text << '"';
        if (!actual) continue;
        const double value = actual->doubleValue();
        ASSERT_EQ(std::memcmp(&value, &expected, sizeof value), 0)
            << '"' << text << "\" gives " << value << ", strtod " << expected;
        if (i % 4 == 0) {
            const float expectedFloat = strtof_l(text.c_str(), nullptr, cLocale);
            const float actualFloat = floatNumberFromValue(Value(text))->floatValue();
            ASSERT_EQ(std::memcmp(&actualFloat, &expectedFloat, sizeof actualFloat), 0)
                << '"' << text << '"';
        }
        ++compared;
    }
    freelocale(cLocale);
    EXPECT_GT(compared, 150000u);  // the generator mostly makes numbers
}

// ---- Every coercion answers its fallback for hostile values

TEST(ValueCoercion, EveryCoercionAnswersItsFallbackForHostileValues) {
    for (const Value& value : testing::hostileValues()) {
        SCOPED_TRACE(testing::describeBriefly(value));
        const Value::Kind kind = value.kind();
        const bool scalarText = kind == Value::Kind::string;
        const bool number = kind == Value::Kind::number;
        const bool answersBool = number || scalarText || kind == Value::Kind::object;

        if (!answersBool) {
            EXPECT_TRUE(boolFromValue(value, true));
            EXPECT_FALSE(boolFromValue(value, false));
        }
        if (scalarText && value.string()->empty()) {
            EXPECT_TRUE(boolFromValue(value, true));
        }
        const std::optional<Number> truth = numberWithBoolIfTrue(value);
        EXPECT_TRUE(!truth || (truth->isBoolean() && truth->boolValue()));

        EXPECT_EQ(stringFromObject(value).has_value(), !value.isNil() && !value.isNull());
        const std::optional<std::string> nonEmpty = nonEmptyString(value);
        EXPECT_TRUE(!nonEmpty || !nonEmpty->empty());
        EXPECT_EQ(isStringNullOrEmpty(value),
                  value.isNil() || value.isNull() || (scalarText && value.string()->empty()));

        EXPECT_TRUE(arrayFromObject(value).isArray());
        EXPECT_EQ(array(value).isNil(), value.isNil());
        if (!value.isArray()) {
            EXPECT_EQ(lastObjectIfArray(value).description(), value.description());
        }

        const std::optional<Number> integer = integerNumberFromValue(value);
        const std::optional<Number> unsignedInteger = unsignedIntegerNumberFromValue(value);
        if (number) {
            EXPECT_TRUE(integer.has_value());
        }
        if (!number && !scalarText) {
            EXPECT_EQ(integer, std::nullopt);
            EXPECT_EQ(unsignedInteger, std::nullopt);
            EXPECT_EQ(integerFromValue(value, -9), -9);
            EXPECT_EQ(unsignedIntegerFromValue(value, 9u), 9u);
        }
        if (unsignedInteger && integer && integer->integerValue() >= 0 && !value.number()) {
            EXPECT_EQ(unsignedInteger->unsignedIntegerValue(),
                      static_cast<std::uint64_t>(integer->integerValue()));
        }

        const std::optional<Number> asDouble = doubleNumberFromValue(value);
        const std::optional<Number> asFloat = floatNumberFromValue(value);
        const std::optional<Number> asDecimal = decimalNumberFromValue(value);
        if (number) {
            EXPECT_EQ(asDouble->kind(), value.number()->kind());
            EXPECT_EQ(asFloat->kind(), value.number()->kind());
        }
        if (!number && !scalarText) {
            EXPECT_EQ(asDouble, std::nullopt);
            EXPECT_EQ(asFloat, std::nullopt);
            EXPECT_EQ(asDecimal, std::nullopt);
        }
        if (asDecimal) {
            EXPECT_TRUE(asDecimal->isDecimal());
        }
        // A text without a leading number gives no number of any kind, with a leading one all.
        if (scalarText) {
            EXPECT_EQ(asDouble.has_value(), asDecimal.has_value());
            EXPECT_EQ(asDouble.has_value(), asFloat.has_value());
        }
    }
}

}  // namespace
}  // namespace vn
