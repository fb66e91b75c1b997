#include "platform/internal/DecimalReading.h"

#include <cstdlib>
#include <string>

#include "platform/internal/CLocale.h"

namespace vn::platform_internal {

DecimalExponent readExponent(std::string_view text, std::size_t at) {
    constexpr int kMaxMagnitude = 10000;
    const bool negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
    if (at >= text.size() || !isAsciiDigit(text[at])) return {0, 0};
    int magnitude = 0;
    for (; at < text.size() && isAsciiDigit(text[at]); ++at) {
        if (magnitude < kMaxMagnitude) magnitude = magnitude * 10 + (text[at] - '0');
    }
    if (magnitude > kMaxMagnitude) magnitude = kMaxMagnitude;
    return {negative ? -magnitude : magnitude, at};
}

bool readExactDecimal(std::string_view text, std::size_t body, bool negative, double* result,
                      std::size_t& end) {
    return computeExactDecimal(text, body, negative, result, end);
}

bool readExactDecimal(std::string_view text, std::size_t body, bool negative, float* result,
                      std::size_t& end) {
    return computeExactDecimal(text, body, negative, result, end);
}

double strtodInCLocale(std::string_view number) {
    const std::string text(number);
    return strtod_l(text.c_str(), nullptr, cLocale());
}

float strtofInCLocale(std::string_view number) {
    const std::string text(number);
    return strtof_l(text.c_str(), nullptr, cLocale());
}

}  // namespace vn::platform_internal
