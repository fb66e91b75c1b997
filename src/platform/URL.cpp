#include "vn/platform/URL.h"

#include <arpa/inet.h>

#include <algorithm>
#include <string>

namespace vn {
namespace {

bool isAlpha(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isUnreserved(char c) {
    return isAlpha(c) || isDigit(c) || c == '-' || c == '.' || c == '_' || c == '~';
}

bool isSubDelimiter(char c) {
    return std::string_view("!$&'()*+,;=").find(c) != std::string_view::npos;
}

bool isGenDelimiter(char c) {
    return std::string_view(":/?#[]@").find(c) != std::string_view::npos;
}

// Every character belongs to the URI alphabet and every "%" starts a complete escape.
bool hasOnlyURICharacters(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '%') {
            if (i + 2 >= text.size()) return false;
            if (!isHexDigit(text[i + 1]) || !isHexDigit(text[i + 2])) return false;
            i += 2;
        } else if (!isUnreserved(c) && !isSubDelimiter(c) && !isGenDelimiter(c)) {
            return false;
        }
    }
    return true;
}

bool containsAny(std::string_view text, std::string_view characters) {
    return text.find_first_of(characters) != std::string_view::npos;
}

bool isScheme(std::string_view text) {
    if (text.empty() || !isAlpha(text.front())) return false;
    return std::all_of(text.begin(), text.end(), [](char c) {
        return isAlpha(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
    });
}

bool isPort(std::string_view text) {
    return std::all_of(text.begin(), text.end(), isDigit);
}

// "v" 1*HEXDIG "." 1*( unreserved / sub-delims / ":" )
bool isIPvFuture(std::string_view text) {
    if (text.size() < 4 || (text.front() != 'v' && text.front() != 'V')) return false;
    const auto dot = text.find('.');
    if (dot == std::string_view::npos || dot < 2) return false;
    const std::string_view version = text.substr(1, dot - 1);
    const std::string_view address = text.substr(dot + 1);
    return std::all_of(version.begin(), version.end(), isHexDigit) && !address.empty() &&
           std::all_of(address.begin(), address.end(),
                       [](char c) { return isUnreserved(c) || isSubDelimiter(c) || c == ':'; });
}

bool isIPv6Address(std::string_view text) {
    in6_addr address{};
    return inet_pton(AF_INET6, std::string(text).c_str(), &address) == 1;
}

struct HostAndPort {
    std::string_view host;
    std::optional<std::string_view> port;
};

// authority = [ userinfo "@" ] host [ ":" port ]; absent when it breaks that grammar.
std::optional<HostAndPort> parseAuthority(std::string_view authority) {
    std::string_view hostAndPort = authority;
    if (const auto at = authority.find('@'); at != std::string_view::npos) {
        if (containsAny(authority.substr(0, at), "[]")) return std::nullopt;
        hostAndPort = authority.substr(at + 1);
        if (containsAny(hostAndPort, "@")) return std::nullopt;
    }
    HostAndPort result;
    std::string_view afterHost;
    if (hostAndPort.starts_with('[')) {
        const auto close = hostAndPort.find(']');
        if (close == std::string_view::npos) return std::nullopt;
        result.host = hostAndPort.substr(1, close - 1);
        if (!isIPv6Address(result.host) && !isIPvFuture(result.host)) return std::nullopt;
        afterHost = hostAndPort.substr(close + 1);
        if (!afterHost.empty() && !afterHost.starts_with(':')) return std::nullopt;
    } else {
        const auto colon = hostAndPort.find(':');
        result.host = hostAndPort.substr(0, colon);
        if (containsAny(result.host, "[]")) return std::nullopt;
        if (colon != std::string_view::npos) afterHost = hostAndPort.substr(colon);
    }
    if (!afterHost.empty()) {
        const std::string_view port = afterHost.substr(1);
        if (!isPort(port)) return std::nullopt;
        if (!port.empty()) result.port = port;
    }
    return result;
}

std::optional<std::string> nonEmpty(std::string_view text) {
    if (text.empty()) return std::nullopt;
    return std::string(text);
}

}  // namespace

std::optional<URL> URL::URLWithString(std::string_view text) {
    if (text.empty() || !hasOnlyURICharacters(text)) return std::nullopt;
    URL url;
    url.text_ = std::string(text);
    std::string_view rest = text;

    if (const auto hash = rest.find('#'); hash != std::string_view::npos) {
        const std::string_view fragment = rest.substr(hash + 1);
        if (containsAny(fragment, "#[]")) return std::nullopt;
        url.fragment_ = std::string(fragment);
        rest = rest.substr(0, hash);
    }
    if (const auto question = rest.find('?'); question != std::string_view::npos) {
        const std::string_view query = rest.substr(question + 1);
        if (containsAny(query, "[]")) return std::nullopt;
        url.query_ = std::string(query);
        rest = rest.substr(0, question);
    }
    // A ":" before any "/" ends a scheme; a relative reference cannot have one there, so text
    // such as "1a:b" is neither form.
    if (const auto colon = rest.find(':'); colon < rest.find('/')) {
        const std::string_view scheme = rest.substr(0, colon);
        if (!isScheme(scheme)) return std::nullopt;
        url.scheme_ = std::string(scheme);
        rest = rest.substr(colon + 1);
    }
    if (rest.starts_with("//")) {
        const auto pathStart = rest.find('/', 2);
        const auto authority = parseAuthority(rest.substr(2, pathStart - 2));
        if (!authority) return std::nullopt;
        url.host_ = nonEmpty(authority->host);
        if (authority->port) url.port_ = std::string(*authority->port);
        rest = pathStart == std::string_view::npos ? std::string_view() : rest.substr(pathStart);
    }
    if (containsAny(rest, "[]")) return std::nullopt;
    url.path_ = std::string(rest);
    return url;
}

}  // namespace vn
