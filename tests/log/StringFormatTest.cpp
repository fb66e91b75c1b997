#include "vn/log/StringFormat.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "vn/platform/Error.h"

namespace vn {
namespace {

struct Case {
    const char* format;
    std::vector<Value> arguments;
    const char* expected;
};

void expectFormats(const std::vector<Case>& cases) {
    for (const Case& c : cases)
        EXPECT_EQ(stringWithFormatArguments(c.format, c.arguments), c.expected) << c.format;
}

TEST(StringFormat, NumbersFormatAsPrintfWithTheSizeTheLengthModifierNames) {
    expectFormats({
        {"%d|%5d|%-5d|%05d|%+d|%.3d", {-7, 42, 42, 42, 42, 5}, "-7|   42|42   |00042|+42|005"},
        {"%ld %llu %zu %x %#X %o",
         {INT64_MIN, UINT64_MAX, 12, 255, 255, 8},
         "-9223372036854775808 18446744073709551615 12 ff 0XFF 10"},
        {"%.2f|%8.3f|%e|%g|%G",
         {3.14159, 2.0, 12345.678, 0.0001, 1e-5},
         "3.14|   2.000|1.234568e+04|0.0001|1E-05"},
        {"%c%c %d %d %d",
         {'o', 'k', Number::fromBool(true), -2.9, Decimal::parse("12.9").value()},
         "ok 1 -2 12"},
        // Integers are cut to the argument size the C function would read.
        {"%d %ld", {int64_t{4294967297}, int64_t{4294967297}}, "1 4294967297"},
        {"%u %lu %x", {-1, -1, -1}, "4294967295 18446744073709551615 ffffffff"},
        {"%hd %hhd %hu %hhu %ld", {65537, 257, -1, -1, UINT64_MAX}, "1 1 65535 255 -1"},
        {"%%|100%%", {}, "%|100%"},
    });
}

TEST(StringFormat, ObjectPlaceholdersUseDescriptionsAndCountCharacters) {
    class Named final : public Object {
      public:
        std::string description() const override { return "<named>"; }
    };
    expectFormats({
        {"calling %@: received %lu, expected: %lu",
         {"Foo", 1, 2},
         "calling Foo: received 1, expected: 2"},
        {"%@ %@ %@ [%@] %@",
         {12, 1.5, Value::null(), Value(), std::make_shared<Named>()},
         "12 1.5 <null> [(null)] <named>"},
        {"%@", {Value::Array{1, "two"}}, "(\n    1,\n    two\n)"},
        {"%@",
         {Error::make(VNErrorDomain, 3)},
         "Error Domain=vn Code=3 \"The operation couldn\u2019t be completed. (vn error 3.)\""},
        {"%s and %s", {"text", 5}, "text and 5"},
        {"[%8@][%-6s][%.2@]", {"abc", "de", "xyz"}, "[     abc][de    ][xy]"},
        {"[%4@][%.1s] %C",
         {"\u00e9t\u00e9", "\u00e9t\u00e9", 0x20AC},
         "[ \u00e9t\u00e9][\u00e9] \u20ac"},
        {"%p", {255}, "0xff"},
    });
    const auto object = std::make_shared<Named>();
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void*>(object.get()));
    EXPECT_EQ(stringWithFormat("%p", object), address);
}

TEST(StringFormat, StarsPositionsAndMisuseNeverFail) {
    expectFormats({
        {"[%*d][%-*d][%.*f][%*d]", {4, 7, 3, 7, 2, 1.0, -3, 7}, "[   7][7  ][1.00][7  ]"},
        {"%2$@ %1$@ %1$@ %@", {"world", "hello"}, "hello world world hello"},
        {"%@ and %d", {}, "(null) and 0"},  // missing arguments read as nil
        {"%d", {1, 2, 3}, "1"},             // extra arguments are ignored
        {"%d", {"12"}, "0"},                // not a number
        {"%y %k|%n|", {1}, "%y %k||"},  // unknown conversions stay as written; %n writes nothing
        {"ends with %-0", {}, "ends with %-0"},
    });
}

TEST(StringFormat, WidthsAndPrecisionsBeyondTheLimitFailTheirConversionOnly) {
    expectFormats({
        {"%9999999999d|%d", {1, 2}, "%9999999999d|2"},
        {"%.2147483647f|%@", {1.5, "next"}, "%.2147483647f|next"},
        {"[%*d][%d]", {kStringFormatMaximumWidth + 1, 7, 8}, "[%*d][8]"},
        {"[%.*s][%d]", {-1000000000, "ab", 8}, "[ab][8]"},  // a negative precision is none
        {"[%-*d][%d]", {-2147483647 - 1, 7, 8}, "[%-*d][8]"},
        {"%2$4097@ %1$@", {"a", "b"}, "%2$4097@ a"},
        {"%4097%", {}, "%"},
    });
    const std::string widest = stringWithFormat("%4096d", 5);
    EXPECT_EQ(widest.size(), 4096u);
    EXPECT_EQ(widest.back(), '5');
    EXPECT_EQ(stringWithFormat("%.4096f", 1.0).size(), 4098u);
}

TEST(StringFormat, VariadicFormConvertsArgumentsToValues) {
    const std::string name = "Foo";
    const std::string_view view = "bar";
    EXPECT_EQ(stringWithFormat("%@ %s %@ %d %lu %.1f %c", name, view, "lit", -3, std::size_t{9},
                               2.25f, 'z'),
              "Foo bar lit -3 9 2.2 z");
    EXPECT_EQ(stringWithFormat("plain"), "plain");
}

}  // namespace
}  // namespace vn
