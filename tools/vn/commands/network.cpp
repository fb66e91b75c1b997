// The vn tool's oauth and warning commands and the tour's section on HTTP helpers: OAuth 1.0
// authorization headers signed with HMAC-SHA1, and the warnings of HTTP "Warning" headers.
#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "../Registry.h"
#include "vn/network/OAuth.h"
#include "vn/network/VNUtilitiesHTTP.h"
#include "vn/platform/Scanner.h"

namespace {

using namespace vn;

using Options = std::map<std::string, std::string, std::less<>>;

// "--name value" pairs; absent when an argument is not such a pair or a name repeats.
std::optional<Options> optionsFrom(const tool::Arguments& arguments) {
    Options options;
    if (arguments.size() % 2 != 0) return std::nullopt;
    for (std::size_t i = 0; i < arguments.size(); i += 2) {
        if (!arguments[i].starts_with("--")) return std::nullopt;
        if (!options.emplace(arguments[i].substr(2), arguments[i + 1]).second) return std::nullopt;
    }
    return options;
}

std::optional<std::string_view> option(const Options& options, std::string_view name) {
    const auto found = options.find(name);
    if (found == options.end()) return std::nullopt;
    return found->second;
}

std::optional<std::int64_t> wholeInteger(std::string_view text) {
    Scanner scanner(text);
    const std::optional<std::int64_t> value = scanner.scanInt64();
    if (!value || !scanner.isAtEnd()) return std::nullopt;
    return value;
}

extern const tool::Command kOAuth;

int runOAuth(const tool::Arguments& arguments) {
    const std::optional<Options> options = optionsFrom(arguments);
    if (!options) return tool::usageError(kOAuth);
    for (const auto& [name, value] : *options) {
        static const Options known = {
            {"url", ""},          {"method", ""},          {"body", ""},
            {"consumer-key", ""}, {"consumer-secret", ""}, {"token", ""},
            {"token-secret", ""}, {"nonce", ""},           {"timestamp", ""}};
        if (!known.contains(name)) return tool::usageError(kOAuth);
    }
    const auto urlText = option(*options, "url");
    const auto method = option(*options, "method");
    const auto consumerKey = option(*options, "consumer-key");
    const auto consumerSecret = option(*options, "consumer-secret");
    const auto nonce = option(*options, "nonce");
    const auto timestampText = option(*options, "timestamp");
    if (!urlText || !method || !consumerKey || !consumerSecret ||
        nonce.has_value() != timestampText.has_value())
        return tool::usageError(kOAuth);

    const std::optional<URL> url = URL::URLWithString(*urlText);
    if (!url) {
        std::fprintf(stderr, "vn oauth: not a URL: %s\n", std::string(*urlText).c_str());
        return 1;
    }
    std::optional<Data> body;
    if (const auto text = option(*options, "body")) body = Data(text->begin(), text->end());
    const auto token = option(*options, "token");
    const auto tokenSecret = option(*options, "token-secret");

    std::optional<std::string> header;
    if (nonce) {
        const std::optional<std::int64_t> timestamp = wholeInteger(*timestampText);
        if (!timestamp) {
            std::fprintf(stderr, "vn oauth: the timestamp is not a whole number of seconds\n");
            return 1;
        }
        header = OAuthorizationHeader(*url, *method, body, *consumerKey, *consumerSecret, token,
                                      tokenSecret, *nonce, *timestamp);
    } else {
        header = OAuthorizationHeader(*url, *method, body, *consumerKey, *consumerSecret, token,
                                      tokenSecret);
    }
    if (!header) {
        std::fprintf(stderr, "vn oauth: the URL needs a scheme and a host to be signed\n");
        return 1;
    }
    std::printf("%s\n", header->c_str());
    return 0;
}

const tool::Command kOAuth{
    "oauth",
    "oauth --url U --method M [--body B] --consumer-key K --consumer-secret S [--token T "
    "--token-secret TS] [--nonce N --timestamp T]",
    "the OAuth 1.0 (HMAC-SHA1) Authorization header value of a request",
    runOAuth,
};

// Prints each warning of the header value; returns the exit status.
int describeWarnings(std::string_view value) {
    const auto warnings = VNUtilities::httpWarningsFromHeader(value);
    if (!warnings) {
        std::printf("no warnings: the value is empty or cannot be read\n");
        return 1;
    }
    for (const auto& warning : *warnings) {
        std::printf("code %lld  agent %s  text \"%s\"\n", static_cast<long long>(warning->code()),
                    warning->agent().c_str(), warning->text().c_str());
        std::printf("  user %s  system %s  encoded %s  message \"%s\"\n",
                    warning->isUserWarning() ? "yes" : "no",
                    warning->isSystemWarning() ? "yes" : "no",
                    warning->isWarningEncoded() ? "yes" : "no", warning->warningText().c_str());
    }
    return 0;
}

extern const tool::Command kWarning;

int runWarning(const tool::Arguments& arguments) {
    if (arguments.size() != 1) return tool::usageError(kWarning);
    return describeWarnings(arguments.front());
}

const tool::Command kWarning{
    "warning",
    "warning 'VALUE'",
    "the warnings of an HTTP Warning header value: code, agent, text and their classification",
    runWarning,
};

void showHTTP() {
    const auto url = URL::URLWithString("https://api.example.com/photos?size=original");
    const auto signed_ =
        OAuthSignRequest(*url, "GET", std::nullopt, "consumer-key", "consumer-secret", "token",
                         "token-secret", "F00DCAFE-0000-4000-8000-000000000001", 1700000000);
    std::printf("OAuth 1.0 signing of GET %s\n", url->absoluteString().c_str());
    std::printf("base string  %s\n", signed_->signatureBaseString.c_str());
    std::printf("key          %s\n", signed_->signingKey.c_str());
    std::printf("header       %s\n\n", signed_->authorizationHeader.c_str());

    const char* value =
        R"(199 api.example.com "Encoded:User:Disk%20almost%20full", )"
        R"(299 cache:8080 "System:stale, revalidate" "Sat, 25 Aug 2012 23:34:45 GMT")";
    std::printf("Warning: %s\n", value);
    describeWarnings(value);
}

const tool::CommandRegistration kOAuthRegistration{kOAuth};
const tool::CommandRegistration kWarningRegistration{kWarning};
const tool::TourRegistration kHTTPTour{{55, "Network: OAuth headers and HTTP warnings", showHTTP}};

}  // namespace
