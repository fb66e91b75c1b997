// The platform's short, lower-case texts for HTTP status codes ("not found", "bad request",
// "internal server error"; 200 is "no error"), as errors made from an HTTP status carry them.
#pragma once

#include <cstdint>
#include <string_view>

namespace vn {

// The text of a standard status code from 100 to 511. Any other code gets the text of its
// class: 1xx "informational", 2xx "success", 3xx "redirected", 4xx "client error", and
// "server error" for 5xx and for codes outside 100-599. Safe from any thread.
std::string_view localizedStringForStatusCode(std::int64_t statusCode);

}  // namespace vn
