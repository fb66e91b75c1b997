#include "vn/platform/URLResponse.h"

#include <algorithm>
#include <charconv>

#include "platform/internal/HTTPHeaderNames.h"

namespace vn {
namespace {

using platform_internal::asciiLowercase;
using platform_internal::headerFieldValue;
using platform_internal::headerNamesEqual;

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string_view unquoted(std::string_view text) {
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        return text.substr(1, text.size() - 2);
    }
    return text;
}

// "text/html; charset=utf-8": the media type, lowercased, before the first ";".
std::optional<std::string> mimeTypeFrom(const HTTPURLResponse::HeaderFields& fields) {
    const auto contentType = headerFieldValue(fields, "Content-Type");
    if (!contentType) return std::nullopt;
    std::string type(trimmed(contentType->substr(0, contentType->find(';'))));
    if (type.empty()) return std::nullopt;
    std::transform(type.begin(), type.end(), type.begin(), asciiLowercase);
    return type;
}

// The "charset" parameter of the Content-Type field, quotes removed.
std::optional<std::string> charsetFrom(const HTTPURLResponse::HeaderFields& fields) {
    const auto contentType = headerFieldValue(fields, "Content-Type");
    if (!contentType) return std::nullopt;
    std::string_view parameters = *contentType;
    for (auto separator = parameters.find(';'); separator != std::string_view::npos;
         separator = parameters.find(';')) {
        parameters.remove_prefix(separator + 1);
        const std::string_view parameter = parameters.substr(0, parameters.find(';'));
        const auto equals = parameter.find('=');
        if (equals == std::string_view::npos) continue;
        if (!headerNamesEqual(trimmed(parameter.substr(0, equals)), "charset")) continue;
        const std::string_view charset = unquoted(trimmed(parameter.substr(equals + 1)));
        if (!charset.empty()) return std::string(charset);
    }
    return std::nullopt;
}

std::int64_t contentLengthFrom(const HTTPURLResponse::HeaderFields& fields) {
    const auto field = headerFieldValue(fields, "Content-Length");
    if (!field) return -1;
    const std::string_view digits = trimmed(*field);
    std::int64_t length = -1;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), length);
    if (digits.empty() || digits.front() == '-' || error != std::errc() ||
        end != digits.data() + digits.size()) {
        return -1;
    }
    return length;
}

}  // namespace

URLResponse::URLResponse(std::optional<URL> url, std::optional<std::string> mimeType,
                         std::int64_t expectedContentLength,
                         std::optional<std::string> textEncodingName)
    : url_(std::move(url)),
      mimeType_(std::move(mimeType)),
      expectedContentLength_(expectedContentLength),
      textEncodingName_(std::move(textEncodingName)) {}

std::optional<StringEncoding> URLResponse::vnStringEncoding() const {
    const auto& name = textEncodingName();
    if (!name) return std::nullopt;
    return VNUtilities::stringEncoding(*name);
}

HTTPURLResponse::HTTPURLResponse(URL url, std::int64_t statusCode, HeaderFields headerFields)
    : URLResponse(std::move(url), mimeTypeFrom(headerFields), contentLengthFrom(headerFields),
                  charsetFrom(headerFields)),
      statusCode_(statusCode),
      headerFields_(std::move(headerFields)) {}

std::optional<std::string> HTTPURLResponse::valueForHTTPHeaderField(std::string_view name) const {
    const auto value = headerFieldValue(allHeaderFields(), name);
    if (!value) return std::nullopt;
    return std::string(*value);
}

}  // namespace vn
