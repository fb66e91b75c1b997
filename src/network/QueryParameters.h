// The reading of a query string that ab_parseURLQueryString() and the OAuth signature share.
// The signature gathers its parameters in a list rather than a dictionary (fewer allocations
// on its hot path), so the reader hands each parameter to the caller.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "network/PercentDecoding.h"

namespace vn::network_internal {

// Calls add(std::string name, std::string value) for each parameter of query, in order, by
// the rules of ab_parseURLQueryString() (duplicates included: the caller decides which wins).
template <typename Add>
void readURLQueryParameters(std::string_view query, Add&& add) {
    std::size_t start = 0;
    while (start <= query.size()) {
        std::size_t ampersand = query.find('&', start);
        if (ampersand == std::string_view::npos) ampersand = query.size();
        const std::string_view piece = query.substr(start, ampersand - start);
        start = ampersand + 1;
        if (piece.empty()) continue;
        const std::size_t equals = piece.find('=');
        std::optional<std::string> name = removingPercentEncoding(piece.substr(0, equals));
        std::optional<std::string> value = equals == std::string_view::npos
                                               ? std::string()
                                               : removingPercentEncoding(piece.substr(equals + 1));
        if (!name || name->empty() || !value) continue;
        add(std::move(*name), std::move(*value));
    }
}

}  // namespace vn::network_internal
