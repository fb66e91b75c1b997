#include "vn/platform/URLRequest.h"

#include <algorithm>

#include "platform/internal/HTTPHeaderNames.h"

namespace vn {

using platform_internal::headerNamesEqual;

void URLRequest::setValue(std::optional<std::string> value, std::string_view forHTTPHeaderField) {
    const std::string_view name = forHTTPHeaderField;
    if (!headerFields_) {
        if (!value) return;
        headerFields_.emplace();
    }
    const auto field =
        std::find_if(headerFields_->begin(), headerFields_->end(),
                     [&](const auto& entry) { return headerNamesEqual(entry.first, name); });
    if (!value) {
        if (field != headerFields_->end()) headerFields_->erase(field);
    } else if (field != headerFields_->end()) {
        *field = {std::string(name), std::move(*value)};
    } else {
        headerFields_->emplace_back(std::string(name), std::move(*value));
    }
}

std::optional<std::string> URLRequest::valueForHTTPHeaderField(std::string_view name) const {
    if (!headerFields_) return std::nullopt;
    const auto value = platform_internal::headerFieldValue(*headerFields_, name);
    if (!value) return std::nullopt;
    return std::string(*value);
}

std::optional<std::map<std::string, std::string>> URLRequest::allHTTPHeaderFields() const {
    if (!headerFields_) return std::nullopt;
    return std::map<std::string, std::string>(headerFields_->begin(), headerFields_->end());
}

void URLRequest::setAllHTTPHeaderFields(
    const std::optional<std::map<std::string, std::string>>& fields) {
    headerFields_.reset();
    if (!fields) return;
    headerFields_.emplace();
    for (const auto& [name, value] : *fields) setValue(value, name);
}

}  // namespace vn
