// libFuzzer target: any bytes read as a query string give parameters with non-empty names,
// and those parameters written as a query string read back unchanged.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vn/network/OAuthHelpers.h"
#include "vn/network/VNUtilitiesHTTP.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view query(reinterpret_cast<const char*>(data), size);
    const vn::URLQueryDictionary parameters = vn::ab_parseURLQueryString(query);
    std::vector<std::pair<std::string, std::string>> pairs;
    for (const auto& [name, value] : parameters) {
        if (name.empty()) std::abort();
        pairs.emplace_back(name, value);
    }
    const std::string written = vn::VNUtilities::urlParametersStringFrom(pairs, true);
    if (vn::ab_parseURLQueryString(written) != parameters) std::abort();
    return 0;
}
