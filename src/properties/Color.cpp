#include "vn/properties/Color.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace vn {
namespace {

constexpr std::int64_t kLargestRgb = 0xFFFFFF;

std::optional<unsigned> hexDigit(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
    return std::nullopt;
}

std::optional<Color> colorFromText(std::string_view text) {
    if (text.empty() || text.front() != '#') return std::nullopt;
    const std::string_view digits = text.substr(1);
    if (digits.size() != 3 && digits.size() != 6 && digits.size() != 8) return std::nullopt;
    unsigned components[4] = {0, 0, 0, 255};
    const bool shortForm = digits.size() == 3;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const auto digit = hexDigit(digits[i]);
        if (!digit) return std::nullopt;
        if (shortForm) {
            components[i] = *digit * 17;  // 0xF -> 0xFF
        } else {
            unsigned& component = components[i / 2];
            component = i % 2 == 0 ? *digit << 4 : component | *digit;
        }
    }
    return Color::fromBytes(components[0], components[1], components[2], components[3]);
}

std::optional<Color> colorFromNumber(const Number& number) {
    if (!number.isInteger()) return std::nullopt;
    if (number.kind() == Number::Kind::unsignedInteger &&
        number.unsignedIntegerValue() > kLargestRgb) {
        return std::nullopt;
    }
    const std::int64_t rgb = number.integerValue();
    if (rgb < 0 || rgb > kLargestRgb) return std::nullopt;
    return Color::fromBytes(static_cast<unsigned>((rgb >> 16) & 0xFF),
                            static_cast<unsigned>((rgb >> 8) & 0xFF),
                            static_cast<unsigned>(rgb & 0xFF));
}

}  // namespace

Color Color::fromBytes(unsigned red, unsigned green, unsigned blue, unsigned alpha) {
    auto component = [](unsigned byte) { return std::min(byte, 255u) / 255.0; };
    return Color{component(red), component(green), component(blue), component(alpha)};
}

std::optional<Color> Color::colorFromValue(const Value& value) {
    if (const std::string* text = value.string()) return colorFromText(*text);
    if (const Number* number = value.number()) return colorFromNumber(*number);
    return std::nullopt;
}

}  // namespace vn
