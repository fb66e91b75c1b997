#include "network/TransportErrors.h"

#include <cerrno>

#include "vn/network/URLError.h"

namespace vn::network_internal {

std::int64_t urlErrorCodeForCurlResult(CURLcode result, long osErrno) {
    switch (result) {
        case CURLE_OK:
            return 0;
        case CURLE_URL_MALFORMAT:
            return NSURLErrorBadURL;
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY:
            return NSURLErrorCannotFindHost;
        case CURLE_COULDNT_CONNECT:
            return osErrno == ENETUNREACH || osErrno == ENETDOWN ? NSURLErrorNotConnectedToInternet
                                                                 : NSURLErrorCannotConnectToHost;
        case CURLE_OPERATION_TIMEDOUT:
            return NSURLErrorTimedOut;
        case CURLE_GOT_NOTHING:
        case CURLE_PARTIAL_FILE:
        case CURLE_RECV_ERROR:
        case CURLE_SEND_ERROR:
        case CURLE_HTTP2:
        case CURLE_HTTP2_STREAM:
            return NSURLErrorNetworkConnectionLost;
        // Only http and https URLs reach libcurl, so an unsupported protocol is a reply that is
        // not HTTP (libcurl takes it for HTTP/0.9 and refuses it).
        case CURLE_UNSUPPORTED_PROTOCOL:
        case CURLE_WEIRD_SERVER_REPLY:
            return NSURLErrorBadServerResponse;
        case CURLE_BAD_CONTENT_ENCODING:
            return NSURLErrorCannotParseResponse;
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_ISSUER_ERROR:
        case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
            return NSURLErrorServerCertificateUntrusted;
        case CURLE_SSL_CONNECT_ERROR:
            return NSURLErrorSecureConnectionFailed;
        case CURLE_READ_ERROR:
            return NSURLErrorFileDoesNotExist;
        case CURLE_ABORTED_BY_CALLBACK:
            return NSURLErrorCancelled;
        default:
            return NSURLErrorUnknown;
    }
}

ErrorPtr urlErrorForCurlResult(CURLcode result, long osErrno, std::string_view detail,
                               const std::optional<std::string>& failingURL) {
    Value::Dictionary causeInfo;
    causeInfo.emplace(
        std::string(NSLocalizedDescriptionKey),
        Value(detail.empty() ? std::string(curl_easy_strerror(result)) : std::string(detail)));
    if (osErrno != 0) causeInfo.emplace("errno", Value(static_cast<std::int64_t>(osErrno)));
    const ErrorPtr cause = Error::make(VNCurlErrorDomain, static_cast<std::int64_t>(result),
                                       Value(std::move(causeInfo)));
    return URLError(urlErrorCodeForCurlResult(result, osErrno), failingURL, cause);
}

}  // namespace vn::network_internal
