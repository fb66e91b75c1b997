#include "vn/network/OAuth.h"

#include <chrono>
#include <utility>

#include "network/HMACSHA1.h"
#include "vn/network/Base64.h"
#include "vn/platform/StringEncoding.h"

namespace vn {
namespace {

URLQueryDictionary protocolParameters(std::string_view consumerKey,
                                      std::optional<std::string_view> token, std::string_view nonce,
                                      std::int64_t timestamp) {
    URLQueryDictionary parameters{
        {"oauth_nonce", std::string(nonce)},
        {"oauth_timestamp", std::to_string(timestamp)},
        {"oauth_signature_method", "HMAC-SHA1"},
        {"oauth_version", "1.0"},
        {"oauth_consumer_key", std::string(consumerKey)},
    };
    if (token) parameters.insert_or_assign("oauth_token", std::string(*token));
    return parameters;
}

void overwrite(URLQueryDictionary& parameters, URLQueryDictionary&& later) {
    for (auto& [name, value] : later) parameters.insert_or_assign(name, std::move(value));
}

URLQueryDictionary signedParameters(const URLQueryDictionary& protocol, const URL& url,
                                    const std::optional<Data>& body) {
    URLQueryDictionary parameters = protocol;
    if (url.query()) overwrite(parameters, ab_parseURLQueryString(*url.query()));
    if (body) {
        if (const std::optional<std::string> text = stringFromData(*body, NSUTF8StringEncoding))
            overwrite(parameters, ab_parseURLQueryString(*text));
    }
    return parameters;
}

// A dictionary has one value per name, so ordering by name alone is the full order by name
// and then value.
std::string parameterString(const URLQueryDictionary& parameters) {
    std::string text;
    for (const auto& [name, value] : parameters) {
        if (!text.empty()) text += '&';
        text += name;
        text += '=';
        text += ab_RFC3986EncodedString(value);
    }
    return text;
}

std::optional<std::string> baseURL(const URL& url) {
    if (!url.scheme() || !url.host()) return std::nullopt;
    const std::string& host = *url.host();
    const bool ipLiteral = host.find(':') != std::string::npos;
    return *url.scheme() + "://" + (ipLiteral ? "[" + host + "]" : host) + url.path();
}

std::string authorizationHeader(const URLQueryDictionary& protocol) {
    std::string header = "OAuth ";
    bool first = true;
    for (const auto& [name, value] : protocol) {
        if (!first) header += ", ";
        first = false;
        header += name;
        header += "=\"";
        header += ab_RFC3986EncodedString(value);
        header += '"';
    }
    return header;
}

std::int64_t secondsSince1970() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

}  // namespace

std::optional<OAuthSignedRequest> OAuthSignRequest(const URL& url, std::string_view method,
                                                   const std::optional<Data>& body,
                                                   std::string_view consumerKey,
                                                   std::string_view consumerSecret,
                                                   std::optional<std::string_view> token,
                                                   std::optional<std::string_view> tokenSecret,
                                                   std::string_view nonce, std::int64_t timestamp) {
    const std::optional<std::string> base = baseURL(url);
    if (!base) return std::nullopt;

    OAuthSignedRequest request;
    request.protocolParameters = protocolParameters(consumerKey, token, nonce, timestamp);
    request.signatureBaseString =
        ab_RFC3986EncodedString(method) + '&' + ab_RFC3986EncodedString(*base) + '&' +
        ab_RFC3986EncodedString(
            parameterString(signedParameters(request.protocolParameters, url, body)));
    request.signingKey = ab_RFC3986EncodedString(consumerSecret) + '&' +
                         ab_RFC3986EncodedString(tokenSecret.value_or(std::string_view()));

    const std::optional<network_detail::SHA1Digest> digest =
        network_detail::hmacSHA1(request.signingKey, request.signatureBaseString);
    if (!digest) return std::nullopt;
    request.signature = base64EncodedString(*digest);
    request.protocolParameters.insert_or_assign("oauth_signature", request.signature);
    request.authorizationHeader = authorizationHeader(request.protocolParameters);
    return request;
}

std::optional<std::string> OAuthorizationHeader(const URL& url, std::string_view method,
                                                const std::optional<Data>& body,
                                                std::string_view consumerKey,
                                                std::string_view consumerSecret,
                                                std::optional<std::string_view> token,
                                                std::optional<std::string_view> tokenSecret,
                                                std::string_view nonce, std::int64_t timestamp) {
    std::optional<OAuthSignedRequest> request = OAuthSignRequest(
        url, method, body, consumerKey, consumerSecret, token, tokenSecret, nonce, timestamp);
    if (!request) return std::nullopt;
    return std::move(request->authorizationHeader);
}

std::optional<std::string> OAuthorizationHeader(const URL& url, std::string_view method,
                                                const std::optional<Data>& body,
                                                std::string_view consumerKey,
                                                std::string_view consumerSecret,
                                                std::optional<std::string_view> token,
                                                std::optional<std::string_view> tokenSecret) {
    return OAuthorizationHeader(url, method, body, consumerKey, consumerSecret, token, tokenSecret,
                                ab_GUID(), secondsSince1970());
}

}  // namespace vn
