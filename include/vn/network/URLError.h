// The platform's URL-loading error codes (domain NSURLErrorDomain) and the factory that makes
// the errors the URL session reports, so that they bridge one to one to the mobile platform.
//
// Every transport error carries in its user info:
// - "NSLocalizedDescription": the platform's text for the code;
// - "NSErrorFailingURLStringErrorKey" and "NSErrorFailingURLKey": the URL being loaded, as its
//   absolute text (there is no URL object kind in vn::Value), when one is known;
// - "NSUnderlyingError": when the failure came from the transport, an error of domain
//   "vn.curl" whose code is libcurl's result code and whose description is libcurl's message,
//   for developers; its text is not stable across libcurl versions.
// All functions are safe from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/Error.h"

namespace vn {

inline constexpr std::int64_t NSURLErrorUnknown = -1;
inline constexpr std::int64_t NSURLErrorCancelled = -999;
inline constexpr std::int64_t NSURLErrorBadURL = -1000;
inline constexpr std::int64_t NSURLErrorHTTPTooManyRedirects = -1007;
inline constexpr std::int64_t NSURLErrorBadServerResponse = -1011;
inline constexpr std::int64_t NSURLErrorCannotParseResponse = -1017;
inline constexpr std::int64_t NSURLErrorSecureConnectionFailed = -1200;
inline constexpr std::int64_t NSURLErrorFileDoesNotExist = -1100;
inline constexpr std::int64_t NSURLErrorServerCertificateUntrusted = -1202;
inline constexpr std::int64_t NSURLErrorCannotCreateFile = -3000;
inline constexpr std::int64_t NSURLErrorCannotWriteToFile = -3003;

inline constexpr std::string_view NSErrorFailingURLStringErrorKey =
    "NSErrorFailingURLStringErrorKey";
inline constexpr std::string_view NSErrorFailingURLKey = "NSErrorFailingURLKey";

// The domain of the developer-facing errors that explain a transport failure.
inline constexpr std::string_view VNCurlErrorDomain = "vn.curl";

// The platform's description of a URL error code ("The request timed out." for -1001); a
// generic text for codes it does not know.
[[nodiscard]] std::string URLErrorLocalizedDescription(std::int64_t code);

// An NSURLErrorDomain error of code with the user info described above. failingURL absent:
// no URL keys. underlying null: no "NSUnderlyingError".
[[nodiscard]] ErrorPtr URLError(std::int64_t code, const std::optional<std::string>& failingURL,
                                const ErrorPtr& underlying = nullptr);

}  // namespace vn
