#include "vn/formatting/MessageFormat.h"

#include <charconv>

#include "vn/formatting/RegularExpression.h"
#include "vn/values/ValueCoercion.h"

namespace vn::VNUtilities {
namespace {

const RegularExpression& percentPlaceholders() {
    static const RegularExpressionPtr* expression =  // process-wide, never destroyed
        new RegularExpressionPtr(RegularExpression::regularExpressionWithPattern(
            "%([0-9]+)", RegularExpression::caseInsensitive));
    return **expression;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Replaces every "#{n}" that has a value, in one pass over the format.
std::string filledPlaceholders(std::string_view format, std::span<const Value> values) {
    std::string result;
    result.reserve(format.size());
    std::size_t i = 0;
    while (i < format.size()) {
        std::size_t digitsEnd = i + 2;
        if (format.compare(i, 2, "#{") == 0) {
            while (digitsEnd < format.size() && isDigit(format[digitsEnd])) ++digitsEnd;
        }
        const bool placeholder =
            digitsEnd > i + 2 && digitsEnd < format.size() && format[digitsEnd] == '}';
        std::size_t number = 0;
        if (placeholder) {
            const auto [end, error] =
                std::from_chars(format.data() + i + 2, format.data() + digitsEnd, number);
            if (error == std::errc() && number >= 1 && number <= values.size()) {
                result += stringFromObject(values[number - 1]).value_or("");
                i = digitsEnd + 1;
                continue;
            }
        }
        result += format[i++];
    }
    return result;
}

}  // namespace

std::string stringWithVNFormat(std::string_view format, std::span<const Value> values) {
    const std::string rewritten = percentPlaceholders().stringByReplacingMatches(format, "#{$1}");
    return filledPlaceholders(rewritten, values);
}

}  // namespace vn::VNUtilities
