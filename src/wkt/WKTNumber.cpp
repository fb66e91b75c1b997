#include "WKTNumber.h"

#include <charconv>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace vn::wkt_detail {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// The conversion of a number that std::from_chars found out of range (±infinity or ±0), by
// the C library in the "C" locale.
double outOfRangeValue(std::string_view number) {
    // Made once and kept for the life of the process.
    static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", locale_t{});
    const std::string text(number);
    return strtod_l(text.c_str(), nullptr, cLocale);
}

// The exact powers of ten a double holds.
constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// Plain decimals of at most 15 digits without exponent, the usual coordinates: the digits
// form an exact integer and the power of ten is exact, so one division rounds correctly.
// Absent for anything else.
bool readShortDecimal(std::string_view number, std::size_t& length, double& value) {
    constexpr int kMaximumDigits = 15;
    std::uint64_t digits = 0;
    int count = 0;
    int fractionDigits = 0;
    std::size_t at = 0;
    for (; at < number.size() && isDigit(number[at]); ++at, ++count) {
        digits = digits * 10 + static_cast<std::uint64_t>(number[at] - '0');
    }
    if (at < number.size() && number[at] == '.') {
        for (++at; at < number.size() && isDigit(number[at]); ++at, ++count, ++fractionDigits) {
            digits = digits * 10 + static_cast<std::uint64_t>(number[at] - '0');
        }
    }
    if (count > kMaximumDigits || (at < number.size() && (number[at] == 'e' || number[at] == 'E')))
        return false;
    value = static_cast<double>(digits) / kPowersOfTen[fractionDigits];
    length = at;
    return true;
}

}  // namespace

double readLenientDouble(std::string_view text, std::size_t& at) {
    std::size_t position = at;
    while (position < text.size() &&
           (text[position] == ' ' || (text[position] >= '\t' && text[position] <= '\r'))) {
        ++position;
    }
    bool negative = false;
    if (position < text.size() && (text[position] == '+' || text[position] == '-')) {
        negative = text[position++] == '-';
    }
    const std::string_view number = text.substr(position);
    const bool startsWithDigit =
        !number.empty() &&
        (isDigit(number[0]) || (number[0] == '.' && number.size() > 1 && isDigit(number[1])));
    if (!startsWithDigit) return 0;
    double value = 0;
    std::size_t length = 0;
    if (!readShortDecimal(number, length, value)) {
        const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
        if (result.ec == std::errc::result_out_of_range) value = outOfRangeValue(number);
        length = static_cast<std::size_t>(result.ptr - number.data());
    }
    at = position + length;
    return negative ? -value : value;
}

}  // namespace vn::wkt_detail
