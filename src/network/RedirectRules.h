// The platform's rules for following a redirect: which statuses redirect, where a Location
// leads, and what becomes of the method and the body.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/URLRequest.h"

namespace vn::network_internal {

// 301, 302, 303, 307 and 308.
[[nodiscard]] bool isRedirectStatus(long status);

// location resolved against base (RFC 3986 reference resolution); absent when either cannot
// be read.
[[nodiscard]] std::optional<std::string> resolveLocation(std::string_view base,
                                                         std::string_view location);

// The request that follows a redirect of status from current to target: 303 makes every
// method but HEAD a GET, and 301 and 302 make POST a GET; such a GET carries no body and no
// Content-Type or Content-Length field. 307 and 308 keep method and body.
[[nodiscard]] URLRequest redirectedRequest(const URLRequest& current, long status,
                                           const URL& target);

// Whether redirectedRequest() drops the body for this status and method.
[[nodiscard]] bool redirectDropsBody(long status, std::string_view method);

}  // namespace vn::network_internal
