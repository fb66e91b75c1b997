#include "vn/network/OAuthHelpers.h"

#include <uuid/uuid.h>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "network/PercentDecoding.h"
#include "vn/formatting/StringUtilities.h"

namespace vn {

std::string ab_RFC3986EncodedString(std::string_view text) {
    // The formatting area's URL component escaping is exactly RFC 3986's unreserved rule.
    return urlSimpleEscape(text);
}

std::string ab_GUID() {
    uuid_t uuid;
    uuid_generate_random(uuid);
    std::array<char, 37> text{};  // 36 characters and the terminating NUL
    uuid_unparse_upper(uuid, text.data());
    return std::string(text.data(), 36);
}

URLQueryDictionary ab_parseURLQueryString(std::string_view query) {
    URLQueryDictionary parameters;
    std::size_t start = 0;
    while (start <= query.size()) {
        const std::size_t ampersand = std::min(query.find('&', start), query.size());
        const std::string_view piece = query.substr(start, ampersand - start);
        start = ampersand + 1;
        if (piece.empty()) continue;
        const std::size_t equals = piece.find('=');
        std::optional<std::string> name =
            network_detail::removingPercentEncoding(piece.substr(0, equals));
        std::optional<std::string> value =
            equals == std::string_view::npos
                ? std::string()
                : network_detail::removingPercentEncoding(piece.substr(equals + 1));
        if (!name || name->empty() || !value) continue;
        parameters.insert_or_assign(std::move(*name), std::move(*value));
    }
    return parameters;
}

}  // namespace vn
