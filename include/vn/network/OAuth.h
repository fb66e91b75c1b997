// OAuth 1.0 request signing with HMAC-SHA1: the value of the "Authorization" header that a
// web service expecting OAuth 1.0 checks, made from the request and the client's credentials.
//
// How a request is signed:
// 1. Protocol parameters: oauth_nonce (a new ab_GUID(), or the given nonce), oauth_timestamp
//    (the current time, or the given one, in whole seconds since 1970, as a decimal integer),
//    oauth_signature_method "HMAC-SHA1", oauth_version "1.0", oauth_consumer_key, and
//    oauth_token only when a token is given (an empty token is still a token).
// 2. Signed parameters: the protocol parameters, then the URL's query parameters, then, when
//    the body is UTF-8 text, the body's parameters (both read by ab_parseURLQueryString());
//    a later source replaces an earlier parameter of the same name. A body that is not UTF-8
//    adds nothing.
// 3. Parameter string: each value RFC 3986-encoded (ab_RFC3986EncodedString()), the pairs
//    "name=value" in byte order of the names, joined by "&". Names are written as they were
//    read (decoded): only values are encoded here.
// 4. Base URL: scheme "://" host path, as they are written in the URL (no port, no query, no
//    fragment; the path keeps its percent-escapes; an IPv6 host gets its brackets).
// 5. Signature base string: method "&" encoded base URL "&" encoded parameter string, the
//    method as given.
// 6. Key: encoded consumer secret "&" encoded token secret (nothing after the "&" without one).
// 7. oauth_signature: the Base64 text of HMAC-SHA1 of the base string with the key.
// 8. Header value: "OAuth " and the protocol parameters with the signature, in byte order of
//    their names, each written name="encoded value" and joined by ", ". Query and body
//    parameters do not appear in the header.
//
// Every function is safe from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vn/network/OAuthHelpers.h"
#include "vn/platform/URL.h"
#include "vn/platform/Value.h"

namespace vn {

// Every intermediate of one signature, for callers that must show why a server refused it.
struct OAuthSignedRequest {
    // The protocol parameters of step 1 with oauth_signature added: what the header carries.
    URLQueryDictionary protocolParameters;
    std::string signatureBaseString;  // step 5
    std::string signingKey;           // step 6
    std::string signature;            // step 7, Base64
    std::string authorizationHeader;  // step 8
};

// Signs the request with the given nonce and timestamp (seconds since 1970), so that the
// result can be reproduced. Absent when the URL has no scheme or no host (a relative
// reference, "file:///a"), since its base URL cannot be formed, or when the cryptographic
// library cannot compute HMAC-SHA1 (never with a working OpenSSL).
[[nodiscard]] std::optional<OAuthSignedRequest> OAuthSignRequest(
    const URL& url, std::string_view method, const std::optional<Data>& body,
    std::string_view consumerKey, std::string_view consumerSecret,
    std::optional<std::string_view> token, std::optional<std::string_view> tokenSecret,
    std::string_view nonce, std::int64_t timestamp);

// The "Authorization" header value ("OAuth oauth_consumer_key=\"...\", ...") for the request,
// with a fresh nonce and the current time; absent as OAuthSignRequest() describes. Two calls in
// the same second differ in nonce and signature only.
[[nodiscard]] std::optional<std::string> OAuthorizationHeader(
    const URL& url, std::string_view method, const std::optional<Data>& body,
    std::string_view consumerKey, std::string_view consumerSecret,
    std::optional<std::string_view> token = std::nullopt,
    std::optional<std::string_view> tokenSecret = std::nullopt);

// The same with the given nonce and timestamp instead of fresh ones.
[[nodiscard]] std::optional<std::string> OAuthorizationHeader(
    const URL& url, std::string_view method, const std::optional<Data>& body,
    std::string_view consumerKey, std::string_view consumerSecret,
    std::optional<std::string_view> token, std::optional<std::string_view> tokenSecret,
    std::string_view nonce, std::int64_t timestamp);

}  // namespace vn
