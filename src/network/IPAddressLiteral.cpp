#include "vn/network/IPAddressLiteral.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cstring>

namespace vn {
namespace {

bool isZoneCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

// The zone after the "%" that ends an IPv6 address; "25" + zone is the URL-escaped form.
std::optional<std::string> zoneFrom(std::string_view afterPercent) {
    if (afterPercent.size() > 2 && afterPercent.starts_with("25")) afterPercent.remove_prefix(2);
    if (afterPercent.empty() ||
        !std::all_of(afterPercent.begin(), afterPercent.end(), isZoneCharacter))
        return std::nullopt;
    return std::string(afterPercent);
}

std::optional<IPAddressLiteral> parseIPv4(std::string_view text) {
    IPAddressLiteral literal;
    literal.family = IPAddressLiteral::Family::ipv4;
    literal.address = std::string(text);
    in_addr address{};
    if (inet_pton(AF_INET, literal.address.c_str(), &address) != 1) return std::nullopt;
    std::memcpy(literal.bytes.data(), &address, sizeof address);
    return literal;
}

std::optional<IPAddressLiteral> parseIPv6(std::string_view text) {
    IPAddressLiteral literal;
    literal.family = IPAddressLiteral::Family::ipv6;
    if (const auto percent = text.find('%'); percent != std::string_view::npos) {
        literal.zone = zoneFrom(text.substr(percent + 1));
        if (!literal.zone) return std::nullopt;
        text = text.substr(0, percent);
    }
    literal.address = std::string(text);
    in6_addr address{};
    if (inet_pton(AF_INET6, literal.address.c_str(), &address) != 1) return std::nullopt;
    std::memcpy(literal.bytes.data(), &address, sizeof address);
    return literal;
}

}  // namespace

std::optional<IPAddressLiteral> IPAddressLiteral::parse(std::string_view host) {
    if (host.starts_with('[')) {
        if (host.size() < 2 || !host.ends_with(']')) return std::nullopt;
        return parseIPv6(host.substr(1, host.size() - 2));
    }
    if (host.find_first_of("[]") != std::string_view::npos) return std::nullopt;
    if (host.find(':') != std::string_view::npos) return parseIPv6(host);
    return parseIPv4(host);
}

std::string IPAddressLiteral::hostText() const {
    return zone ? address + "%" + *zone : address;
}

bool isIPAddressLiteral(std::string_view host) {
    return IPAddressLiteral::parse(host).has_value();
}

}  // namespace vn
