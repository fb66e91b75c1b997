#include "vn/network/OAuth.h"

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

#include "network/HMACSHA1.h"
#include "network/QueryParameters.h"
#include "platform/internal/PercentEncoding.h"
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

using ParameterList = std::vector<std::pair<std::string, std::string>>;

// The query's parameters, then the body's when it is UTF-8 text, duplicates included.
ParameterList receivedParameters(const URL& url, const std::optional<Data>& body) {
    ParameterList parameters;
    const auto add = [&](std::string name, std::string value) {
        parameters.emplace_back(std::move(name), std::move(value));
    };
    if (url.query()) network_internal::readURLQueryParameters(*url.query(), add);
    if (body) {
        if (const std::optional<std::string> text = stringFromData(*body, NSUTF8StringEncoding))
            network_internal::readURLQueryParameters(*text, add);
    }
    return parameters;
}

// One parameter taking part in the signature; `order` ranks its source (protocol, query,
// body) and its place in it, so that the last of equal names is the one that counts.
struct SignedParameter {
    std::string_view name;
    std::string_view value;
    std::size_t order;
};

// The protocol and received parameters in byte order of their names, a later parameter
// replacing an earlier one of the same name (one value per name, so ordering by name alone is
// the full order by name and then value). The signature is computed on every request: views
// sorted in place spare copying and moving the texts themselves.
std::vector<SignedParameter> signedParameters(const URLQueryDictionary& protocol,
                                              const ParameterList& received) {
    std::vector<SignedParameter> parameters;
    parameters.reserve(protocol.size() + received.size());
    for (const auto& [name, value] : protocol)
        parameters.push_back({name, value, parameters.size()});
    for (const auto& [name, value] : received)
        parameters.push_back({name, value, parameters.size()});
    std::sort(parameters.begin(), parameters.end(), [](const auto& left, const auto& right) {
        const int byName = left.name.compare(right.name);
        return byName != 0 ? byName < 0 : left.order < right.order;
    });
    const auto replaced = std::unique(
        parameters.rbegin(), parameters.rend(),
        [](const auto& later, const auto& earlier) { return later.name == earlier.name; });
    parameters.erase(parameters.begin(), replaced.base());
    return parameters;
}

// Appends the parameter string ("name=encoded value" joined by "&") encoded once more, as the
// signature base string holds it, in one pass: each value is encoded twice in place, and the
// separators are written encoded.
void appendEncodedParameterString(std::string& baseString,
                                  const std::vector<SignedParameter>& parameters) {
    bool first = true;
    for (const SignedParameter& parameter : parameters) {
        if (!first) baseString += "%26";
        first = false;
        platform_internal::appendPercentEncoded(baseString, parameter.name);
        baseString += "%3D";
        platform_internal::appendPercentEncoded(baseString, parameter.value, 2);
    }
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
        platform_internal::appendPercentEncoded(header, value);
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
    std::string& baseString = request.signatureBaseString;
    platform_internal::appendPercentEncoded(baseString, method);
    baseString += '&';
    platform_internal::appendPercentEncoded(baseString, *base);
    baseString += '&';
    appendEncodedParameterString(
        baseString, signedParameters(request.protocolParameters, receivedParameters(url, body)));
    request.signingKey = ab_RFC3986EncodedString(consumerSecret) + '&' +
                         ab_RFC3986EncodedString(tokenSecret.value_or(std::string_view()));

    const std::optional<network_internal::SHA1Digest> digest =
        network_internal::hmacSHA1(request.signingKey, request.signatureBaseString);
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
