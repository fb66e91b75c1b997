#include "vn/network/OAuthHelpers.h"

#include <uuid/uuid.h>

#include <array>
#include <utility>

#include "network/QueryParameters.h"
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
    network_internal::readURLQueryParameters(query, [&](std::string name, std::string value) {
        parameters.insert_or_assign(std::move(name), std::move(value));
    });
    return parameters;
}

}  // namespace vn
