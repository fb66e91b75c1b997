#include "vn/network/OAuth.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

namespace vn {
namespace {

// The expected base strings, keys and signatures below were computed outside the library:
// the base strings by a separate script following the same rules (Python's urllib.parse.quote
// with safe='' and a plain dictionary), the signatures over them with
//   printf '%s' "$BASE" | openssl dgst -sha1 -hmac "$KEY" -binary | base64

URL urlOf(std::string_view text) {
    std::optional<URL> url = URL::URLWithString(text);
    EXPECT_TRUE(url) << text;
    return url ? *url : *URL::URLWithString("http://invalid.test/");
}

Data bytesOf(std::string_view text) {
    return Data(text.begin(), text.end());
}

// The name="value" pairs of an "OAuth ..." header value, values still encoded.
std::map<std::string, std::string> headerParameters(const std::string& header) {
    EXPECT_TRUE(header.starts_with("OAuth ")) << header;
    std::map<std::string, std::string> parameters;
    const std::regex pair("([a-z_]+)=\"([^\"]*)\"(, |$)");
    const std::string list = header.substr(6);
    for (std::sregex_iterator it(list.begin(), list.end(), pair), end; it != end; ++it)
        parameters[(*it)[1]] = (*it)[2];
    return parameters;
}

// Twitter's published worked example of signing a request ("Creating a signature" in its
// developer documentation): a query, a form body and a token, no duplicate names.
TEST(OAuthSignRequest, MatchesThePublishedTwitterExampleByteForByte) {
    const auto signed_ = OAuthSignRequest(
        urlOf("https://api.twitter.com/1/statuses/update.json?include_entities=true"), "POST",
        bytesOf("status=Hello%20Ladies%20%2B%20Gentlemen%2C%20a%20signed%20OAuth%20request%21"),
        "xvz1evFS4wEEPTGEFPHBog", "kAcSOqF21Fu85e7zjz7ZN2U4ZRhfV3WpwPAoE3Z7kBw",
        "370773112-GmHxMAgYyLbNEtIKZeRNFsMKPR9EyMZeS9weJAEb",
        "LswwdoUaIvS8ltyTt5jkRh4J50vUPVVHtR2YPi5kE", "kYjzVBB8Y0ZFabxSWbWovY3uYSQ2pTgmZeNu2VS4cg",
        1318622958);
    ASSERT_TRUE(signed_);
    EXPECT_EQ(signed_->signatureBaseString,
              "POST&https%3A%2F%2Fapi.twitter.com%2F1%2Fstatuses%2Fupdate.json&include_entities%"
              "3Dtrue%26oauth_consumer_key%3Dxvz1evFS4wEEPTGEFPHBog%26oauth_nonce%"
              "3DkYjzVBB8Y0ZFabxSWbWovY3uYSQ2pTgmZeNu2VS4cg%26oauth_signature_method%3DHMAC-"
              "SHA1%26oauth_timestamp%3D1318622958%26oauth_token%3D370773112-"
              "GmHxMAgYyLbNEtIKZeRNFsMKPR9EyMZeS9weJAEb%26oauth_version%3D1.0%26status%"
              "3DHello%2520Ladies%2520%252B%2520Gentlemen%252C%2520a%2520signed%2520OAuth%"
              "2520request%2521");
    EXPECT_EQ(signed_->signingKey,
              "kAcSOqF21Fu85e7zjz7ZN2U4ZRhfV3WpwPAoE3Z7kBw&"
              "LswwdoUaIvS8ltyTt5jkRh4J50vUPVVHtR2YPi5kE");
    EXPECT_EQ(signed_->signature, "tnnArxj06cWHq44gCs1OSKk/jLY=");
    EXPECT_EQ(signed_->authorizationHeader,
              "OAuth oauth_consumer_key=\"xvz1evFS4wEEPTGEFPHBog\", "
              "oauth_nonce=\"kYjzVBB8Y0ZFabxSWbWovY3uYSQ2pTgmZeNu2VS4cg\", "
              "oauth_signature=\"tnnArxj06cWHq44gCs1OSKk%2FjLY%3D\", "
              "oauth_signature_method=\"HMAC-SHA1\", oauth_timestamp=\"1318622958\", "
              "oauth_token=\"370773112-GmHxMAgYyLbNEtIKZeRNFsMKPR9EyMZeS9weJAEb\", "
              "oauth_version=\"1.0\"");
}

// A query, a body overriding one of its names, raw and encoded non-ASCII text, a port, an
// escaped path and no token.
TEST(OAuthSignRequest, MatchesIndependentValuesForNonASCIITextWithoutToken) {
    const auto signed_ = OAuthSignRequest(
        urlOf("https://api.example.com:8443/v1/caf%C3%A9/items?q=z%C3%BCrich&limit=10&lang=de-"
              "CH#top"),
        "POST", bytesOf("city=Köln&greeting=Grüße%20aus%20Zürich%21&q=body+text"), "clé-client",
        "sëcret&/", std::nullopt, std::nullopt, "0F6AB1B4-4F34-4C5B-9E8D-0C1E2A3B4C5D", 1700000000);
    ASSERT_TRUE(signed_);
    EXPECT_EQ(signed_->signatureBaseString,
              "POST&https%3A%2F%2Fapi.example.com%2Fv1%2Fcaf%25C3%25A9%2Fitems&city%3DK%25C3%"
              "25B6ln%26greeting%3DGr%25C3%25BC%25C3%259Fe%2520aus%2520Z%25C3%25BCrich%2521%"
              "26lang%3Dde-CH%26limit%3D10%26oauth_consumer_key%3Dcl%25C3%25A9-client%26oauth_"
              "nonce%3D0F6AB1B4-4F34-4C5B-9E8D-0C1E2A3B4C5D%26oauth_signature_method%3DHMAC-"
              "SHA1%26oauth_timestamp%3D1700000000%26oauth_version%3D1.0%26q%3Dbody%252Btext");
    EXPECT_EQ(signed_->signingKey, "s%C3%ABcret%26%2F&");
    EXPECT_EQ(signed_->signature, "Yx2DVJlsQbzXe3Zet00KTe1PFrY=");
    EXPECT_EQ(signed_->authorizationHeader,
              "OAuth oauth_consumer_key=\"cl%C3%A9-client\", "
              "oauth_nonce=\"0F6AB1B4-4F34-4C5B-9E8D-0C1E2A3B4C5D\", "
              "oauth_signature=\"Yx2DVJlsQbzXe3Zet00KTe1PFrY%3D\", "
              "oauth_signature_method=\"HMAC-SHA1\", oauth_timestamp=\"1700000000\", "
              "oauth_version=\"1.0\"");
}

// RFC 5849's example (section 3.4.1.1) sends a3 twice, once in the query and once in the body.
// A dictionary keeps one value per name, so the body's a3 replaces the query's, and names are
// not encoded a second time ("c@" stays one level encoded). The RFC's own base string keeps
// both a3 pairs, "c%2540" and reads "+" as a space; this base string deliberately differs.
TEST(OAuthSignRequest, KeepsOnlyTheLaterOfRFC5849sRepeatedParameter) {
    const auto signed_ =
        OAuthSignRequest(urlOf("http://example.com/request?b5=%3D%253D&a3=a&c%40=&a2=r%20b"),
                         "POST", bytesOf("c2&a3=2+q"), "9djdj82h48djs9d2", "j49sk3j29djd",
                         "kkk9d7dh3k39sjv7", "dh893hdasih9", "7d8f3e4a", 137131201);
    ASSERT_TRUE(signed_);
    EXPECT_EQ(signed_->signatureBaseString,
              "POST&http%3A%2F%2Fexample.com%2Frequest&a2%3Dr%2520b%26a3%3D2%252Bq%26b5%3D%"
              "253D%25253D%26c2%3D%26c%40%3D%26oauth_consumer_key%3D9djdj82h48djs9d2%26oauth_"
              "nonce%3D7d8f3e4a%26oauth_signature_method%3DHMAC-SHA1%26oauth_timestamp%"
              "3D137131201%26oauth_token%3Dkkk9d7dh3k39sjv7%26oauth_version%3D1.0");
    EXPECT_EQ(signed_->signature, "C1QZsT+c1woQaCGbTIdQeqYIJ/A=");
}

TEST(OAuthSignRequest, QueryEntersTheSignatureButNotTheBaseURLOrTheHeader) {
    const URL bare = urlOf("http://example.com/photos");
    const URL withQuery = urlOf("http://example.com/photos?zoom=3&size=original");
    const auto plain = OAuthSignRequest(bare, "GET", std::nullopt, "ck", "cs", "tk", "ts", "n", 1);
    const auto queried =
        OAuthSignRequest(withQuery, "GET", std::nullopt, "ck", "cs", "tk", "ts", "n", 1);
    ASSERT_TRUE(plain && queried);
    const std::string base = "GET&http%3A%2F%2Fexample.com%2Fphotos&";
    EXPECT_TRUE(plain->signatureBaseString.starts_with(base));
    EXPECT_TRUE(queried->signatureBaseString.starts_with(base));
    EXPECT_NE(queried->signatureBaseString.find("%26zoom%3D3"), std::string::npos);
    EXPECT_NE(queried->signature, plain->signature);
    EXPECT_EQ(headerParameters(queried->authorizationHeader).count("zoom"), 0u);
    EXPECT_EQ(headerParameters(queried->authorizationHeader).size(), 7u);
}

TEST(OAuthSignRequest, WithoutTokenTheKeyEndsWithAmpersandAndTheHeaderHasNoToken) {
    const auto signed_ = OAuthSignRequest(urlOf("https://h.test/p"), "GET", std::nullopt, "ck",
                                          "secret", std::nullopt, std::nullopt, "n", 5);
    ASSERT_TRUE(signed_);
    EXPECT_EQ(signed_->signingKey, "secret&");
    EXPECT_EQ(signed_->authorizationHeader.find("oauth_token"), std::string::npos);
    EXPECT_EQ(signed_->protocolParameters.count("oauth_token"), 0u);
}

TEST(OAuthSignRequest, AnEmptyTokenIsStillSentAndATokenWithoutSecretSignsWithAnEmptyOne) {
    const auto signed_ = OAuthSignRequest(urlOf("https://h.test/p"), "GET", std::nullopt, "ck",
                                          "cs", "", std::nullopt, "n", 5);
    ASSERT_TRUE(signed_);
    EXPECT_EQ(headerParameters(signed_->authorizationHeader).at("oauth_token"), "");
    EXPECT_EQ(signed_->signingKey, "cs&");
}

TEST(OAuthSignRequest, QueryAndBodyReplaceProtocolParametersInTheSignatureOnly) {
    const auto signed_ = OAuthSignRequest(urlOf("https://h.test/p?oauth_version=2.0"), "POST",
                                          bytesOf("oauth_nonce=fromBody"), "ck", "cs", std::nullopt,
                                          std::nullopt, "real-nonce", 5);
    ASSERT_TRUE(signed_);
    EXPECT_NE(signed_->signatureBaseString.find("oauth_version%3D2.0"), std::string::npos);
    EXPECT_NE(signed_->signatureBaseString.find("oauth_nonce%3DfromBody"), std::string::npos);
    const auto header = headerParameters(signed_->authorizationHeader);
    EXPECT_EQ(header.at("oauth_version"), "1.0");
    EXPECT_EQ(header.at("oauth_nonce"), "real-nonce");
}

TEST(OAuthSignRequest, ABodyThatIsNotUTF8AddsNoParameters) {
    const URL url = urlOf("https://h.test/p");
    const auto none = OAuthSignRequest(url, "POST", std::nullopt, "ck", "cs", "t", "s", "n", 9);
    const auto binary = OAuthSignRequest(url, "POST", Data{'a', '=', 0xFF, '&', 'b', '=', '1'},
                                         "ck", "cs", "t", "s", "n", 9);
    const auto empty = OAuthSignRequest(url, "POST", Data{}, "ck", "cs", "t", "s", "n", 9);
    ASSERT_TRUE(none && binary && empty);
    EXPECT_EQ(binary->signatureBaseString, none->signatureBaseString);
    EXPECT_EQ(empty->signatureBaseString, none->signatureBaseString);
}

TEST(OAuthSignRequest, BaseURLDropsPortQueryAndFragmentAndBracketsAnIPv6Host) {
    const std::vector<std::pair<std::string_view, std::string_view>> cases = {
        {"http://example.com", "http%3A%2F%2Fexample.com"},
        {"http://example.com:8080/a/b/?x=1#f", "http%3A%2F%2Fexample.com%2Fa%2Fb%2F"},
        {"HTTP://Example.COM/P", "HTTP%3A%2F%2FExample.COM%2FP"},  // as written
        {"http://[::1]:8080/p", "http%3A%2F%2F%5B%3A%3A1%5D%2Fp"},
        {"http://user:pw@h.test/p", "http%3A%2F%2Fh.test%2Fp"},
    };
    for (const auto& [text, encodedBase] : cases) {
        const auto signed_ =
            OAuthSignRequest(urlOf(text), "GET", std::nullopt, "ck", "cs", "t", "s", "n", 1);
        ASSERT_TRUE(signed_) << text;
        EXPECT_TRUE(
            signed_->signatureBaseString.starts_with("GET&" + std::string(encodedBase) + "&"))
            << signed_->signatureBaseString;
    }
}

TEST(OAuthSignRequest, IsAbsentForAURLWithoutSchemeOrHost) {
    for (const std::string_view text :
         {"/photos?x=1", "?x=1", "//h.test/p", "file:///tmp/a", "mailto:someone@example.com"}) {
        EXPECT_FALSE(
            OAuthSignRequest(urlOf(text), "GET", std::nullopt, "ck", "cs", "t", "s", "n", 1))
            << text;
        EXPECT_FALSE(OAuthorizationHeader(urlOf(text), "GET", std::nullopt, "ck", "cs")) << text;
    }
}

TEST(OAuthorizationHeader, WithNonceAndTimestampIsTheSignedRequestsHeader) {
    const URL url = urlOf("https://h.test/p?a=1");
    const auto signed_ =
        OAuthSignRequest(url, "PUT", bytesOf("b=2"), "ck", "cs", "t", "s", "nonce", -5);
    const auto header =
        OAuthorizationHeader(url, "PUT", bytesOf("b=2"), "ck", "cs", "t", "s", "nonce", -5);
    ASSERT_TRUE(signed_ && header);
    EXPECT_EQ(*header, signed_->authorizationHeader);
    EXPECT_EQ(headerParameters(*header).at("oauth_timestamp"), "-5");
}

std::int64_t secondsNow() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

TEST(OAuthorizationHeader, TwoRequestsInTheSameSecondDifferOnlyInNonceAndSignature) {
    const URL url = urlOf("https://h.test/p?a=1");
    std::map<std::string, std::string> first;
    std::map<std::string, std::string> second;
    std::int64_t before = 0;
    std::int64_t after = 0;
    // Both headers must fall within one second; a rare pair on either side of a second's
    // boundary is made again, a bounded number of times.
    for (int attempt = 0; attempt < 10; ++attempt) {
        before = secondsNow();
        first =
            headerParameters(*OAuthorizationHeader(url, "GET", std::nullopt, "ck", "cs", "t", "s"));
        second =
            headerParameters(*OAuthorizationHeader(url, "GET", std::nullopt, "ck", "cs", "t", "s"));
        after = secondsNow();
        if (first.at("oauth_timestamp") == second.at("oauth_timestamp")) break;
    }
    ASSERT_EQ(first.at("oauth_timestamp"), second.at("oauth_timestamp"));
    const std::int64_t timestamp = std::stoll(first.at("oauth_timestamp"));
    EXPECT_GE(timestamp, before);
    EXPECT_LE(timestamp, after);
    EXPECT_TRUE(
        std::regex_match(first.at("oauth_nonce"),
                         std::regex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-"
                                    "[0-9A-F]{12}")));
    EXPECT_NE(first.at("oauth_nonce"), second.at("oauth_nonce"));
    EXPECT_NE(first.at("oauth_signature"), second.at("oauth_signature"));
    first.erase("oauth_nonce");
    first.erase("oauth_signature");
    second.erase("oauth_nonce");
    second.erase("oauth_signature");
    EXPECT_EQ(first, second);
    EXPECT_EQ(first.size(), 5u);
}

}  // namespace
}  // namespace vn
