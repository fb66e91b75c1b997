// How transport failures become the platform's URL error codes.
#pragma once

#include <curl/curl.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/Error.h"

namespace vn::network_internal {

// The NSURLErrorDomain code for a failed libcurl transfer; osErrno is CURLINFO_OS_ERRNO (0 when
// unknown), which tells "no route to the network" (-1009) from "nothing listens" (-1004).
[[nodiscard]] std::int64_t urlErrorCodeForCurlResult(CURLcode result, long osErrno);

// The URL error for a failed transfer, with libcurl's cause as its underlying error (domain
// "vn.curl", code = the CURLcode, description = detail when not empty, else libcurl's text).
[[nodiscard]] ErrorPtr urlErrorForCurlResult(CURLcode result, long osErrno, std::string_view detail,
                                             const std::optional<std::string>& failingURL);

}  // namespace vn::network_internal
