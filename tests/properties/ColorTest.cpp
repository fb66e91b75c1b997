#include "vn/properties/Color.h"

#include <gtest/gtest.h>

#include <limits>

namespace vn {
namespace {

TEST(Color, ReadsHexTextsAndRgbIntegers) {
    const std::vector<std::pair<Value, Color>> accepted = {
        {"#FF0000", {1, 0, 0, 1}},
        {"#00ff00", {0, 1, 0, 1}},
        {"#0000Ff", {0, 0, 1, 1}},
        {"#F80", Color::fromBytes(0xFF, 0x88, 0x00)},
        {"#abc", Color::fromBytes(0xAA, 0xBB, 0xCC)},
        {"#12345678", Color::fromBytes(0x12, 0x34, 0x56, 0x78)},
        {"#00000000", {0, 0, 0, 0}},
        {"#ffffff", {1, 1, 1, 1}},
        {0x336699, Color::fromBytes(0x33, 0x66, 0x99)},
        {0, {0, 0, 0, 1}},
        {0xFFFFFF, {1, 1, 1, 1}},
        {std::uint64_t{0x0000FF}, {0, 0, 1, 1}},
    };
    for (const auto& [value, color] : accepted) {
        EXPECT_EQ(Color::colorFromValue(value), color) << value.description();
    }
}

TEST(Color, AnswersAbsentForAnythingElse) {
    const std::vector<Value> rejected = {
        Value{},
        Value::null(),
        "FF0000",  // the "#" is required
        "#",
        "#FF00",     // 4 digits
        "#FF000",    // 5 digits
        "#FF00000",  // 7 digits
        "#FF0000FF00",
        "#GG0000",
        " #FF0000",
        "#FF0000 ",
        "red",
        "",
        0x1000000,  // beyond 0xFFFFFF
        -1,
        std::numeric_limits<std::uint64_t>::max(),
        true,   // a boolean is not a colour
        255.0,  // only integer kinds
        Decimal::parse("255").value(),
        Data{0xFF, 0, 0},
        Date{0},
        Value::Array{255, 0, 0},
    };
    for (const Value& value : rejected) {
        EXPECT_EQ(Color::colorFromValue(value), std::nullopt) << value.description();
    }
}

TEST(Color, ComponentsFromBytesAreFractionsOf255) {
    const Color color = Color::fromBytes(51, 102, 255, 300);
    EXPECT_DOUBLE_EQ(color.red, 0.2);
    EXPECT_DOUBLE_EQ(color.green, 0.4);
    EXPECT_DOUBLE_EQ(color.blue, 1.0);
    EXPECT_DOUBLE_EQ(color.alpha, 1.0) << "values above 255 count as 255";
}

}  // namespace
}  // namespace vn
