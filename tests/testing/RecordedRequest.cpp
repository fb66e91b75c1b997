#include "testing/RecordedRequest.h"

#include <algorithm>

namespace vn::testing {
namespace {

char asciiLower(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalIgnoringASCIICase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return asciiLower(a) == asciiLower(b); });
}

}  // namespace

std::optional<std::string> RecordedRequest::header(std::string_view name) const {
    for (const auto& [fieldName, value] : headers) {
        if (equalIgnoringASCIICase(fieldName, name)) return value;
    }
    return std::nullopt;
}

std::vector<std::string> RecordedRequest::headerValues(std::string_view name) const {
    std::vector<std::string> values;
    for (const auto& [fieldName, value] : headers) {
        if (equalIgnoringASCIICase(fieldName, name)) values.push_back(value);
    }
    return values;
}

}  // namespace vn::testing
