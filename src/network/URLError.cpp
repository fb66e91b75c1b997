#include "vn/network/URLError.h"

#include <utility>

namespace vn {

std::string URLErrorLocalizedDescription(std::int64_t code) {
    switch (code) {
        case NSURLErrorCancelled:
            return "cancelled";
        case NSURLErrorBadURL:
            return "unsupported URL";
        case NSURLErrorTimedOut:
            return "The request timed out.";
        case NSURLErrorUnsupportedURL:
            return "unsupported URL";
        case NSURLErrorCannotFindHost:
            return "A server with the specified hostname could not be found.";
        case NSURLErrorCannotConnectToHost:
            return "Could not connect to the server.";
        case NSURLErrorNetworkConnectionLost:
            return "The network connection was lost.";
        case NSURLErrorHTTPTooManyRedirects:
            return "too many HTTP redirects";
        case NSURLErrorNotConnectedToInternet:
            return "The Internet connection appears to be offline.";
        case NSURLErrorBadServerResponse:
            return "The server returned a bad response.";
        case NSURLErrorCannotParseResponse:
            return "cannot parse response";
        case NSURLErrorFileDoesNotExist:
            return "The requested URL was not found on this server.";
        case NSURLErrorServerCertificateUntrusted:
            return "The certificate for this server is invalid.";
        case NSURLErrorCannotCreateFile:
            return "cannot create file";
        default:
            return "An unknown error occurred.";
    }
}

ErrorPtr URLError(std::int64_t code, const std::optional<std::string>& failingURL,
                  const ErrorPtr& underlying) {
    Value::Dictionary userInfo;
    userInfo.emplace(std::string(NSLocalizedDescriptionKey),
                     Value(URLErrorLocalizedDescription(code)));
    if (failingURL) {
        userInfo.emplace(std::string(NSErrorFailingURLStringErrorKey), Value(*failingURL));
        userInfo.emplace(std::string(NSErrorFailingURLKey), Value(*failingURL));
    }
    if (underlying) userInfo.emplace(std::string(NSUnderlyingErrorKey), Value(underlying));
    return Error::make(NSURLErrorDomain, code, Value(std::move(userInfo)));
}

}  // namespace vn
