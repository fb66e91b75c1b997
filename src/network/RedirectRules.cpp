#include "network/RedirectRules.h"

#include <curl/curl.h>

#include <memory>

namespace vn::network_internal {
namespace {

struct CurlUrlDeleter {
    void operator()(CURLU* handle) const { curl_url_cleanup(handle); }
};
struct CurlTextDeleter {
    void operator()(char* text) const { curl_free(text); }
};

}  // namespace

bool isRedirectStatus(long status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

std::optional<std::string> resolveLocation(std::string_view base, std::string_view location) {
    const std::unique_ptr<CURLU, CurlUrlDeleter> handle(curl_url());
    if (!handle) return std::nullopt;
    const std::string baseText(base);
    const std::string locationText(location);
    if (curl_url_set(handle.get(), CURLUPART_URL, baseText.c_str(), 0) != CURLUE_OK)
        return std::nullopt;
    if (curl_url_set(handle.get(), CURLUPART_URL, locationText.c_str(), 0) != CURLUE_OK)
        return std::nullopt;
    char* resolved = nullptr;
    if (curl_url_get(handle.get(), CURLUPART_URL, &resolved, 0) != CURLUE_OK) return std::nullopt;
    const std::unique_ptr<char, CurlTextDeleter> owned(resolved);
    return std::string(resolved);
}

bool redirectDropsBody(long status, std::string_view method) {
    if (status == 303) return method != "HEAD";
    return (status == 301 || status == 302) && method == "POST";
}

URLRequest redirectedRequest(const URLRequest& current, long status, const URL& target) {
    URLRequest next = current;
    next.setURL(target);
    if (redirectDropsBody(status, current.httpMethod().value_or("GET"))) {
        next.setHTTPMethod("GET");
        next.setHTTPBody(std::nullopt);
        next.setValue(std::nullopt, "Content-Type");
        next.setValue(std::nullopt, "Content-Length");
    }
    return next;
}

}  // namespace vn::network_internal
