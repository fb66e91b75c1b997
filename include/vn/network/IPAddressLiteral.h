// vn::IPAddressLiteral: tells an IP address written as a host ("192.168.1.20", "::1",
// "[fe80::1%25en0]") from a host name ("localhost", "printer.local"), and gives the address's
// bytes. Used where the library must know whether a request goes to a literal address, such as
// deciding whether a failure may come from the local-network permission.
//
// Addresses are read with inet_pton, so exactly its forms are accepted: IPv4 as four decimal
// parts ("127.0.0.1"; not "127.1", not hexadecimal), IPv6 in every RFC 4291 text form,
// embedded IPv4 included ("::ffff:10.0.0.1").
//
// Plain functions of their arguments; safe from any thread.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vn {

struct IPAddressLiteral {
    enum class Family { ipv4, ipv6 };

    Family family = Family::ipv4;
    // The address as written, without brackets and without zone: "127.0.0.1", "fe80::1".
    std::string address;
    // The zone (scope) of an IPv6 address: "en0" for "fe80::1%en0"; absent when none is given.
    std::optional<std::string> zone;
    // The address in network byte order; an IPv4 address fills the first four bytes and leaves
    // the rest zero.
    std::array<std::uint8_t, 16> bytes{};

    // The literal host, or absent when host is not one. Accepted, beside the plain forms:
    // - an IPv6 address in brackets, as URLs write it: "[::1]";
    // - an IPv6 zone after "%": "fe80::1%en0"; inside a URL the "%" is written "%25"
    //   ("[fe80::1%25en0]", RFC 6874), so "%25" followed by a zone is read as that escaped
    //   "%" (a raw zone that itself begins with "25" must therefore be written "%25" + zone).
    //   A zone is one or more letters, digits, "-", ".", "_" or "~".
    // Refused: the empty text, a name, an IPv4 address in brackets, unbalanced brackets, a zone
    // on an IPv4 address, an empty zone, surrounding blanks.
    [[nodiscard]] static std::optional<IPAddressLiteral> parse(std::string_view host);

    // The host as a name-based lookup takes it: the address, then "%" and the zone when there
    // is one ("fe80::1%en0"); never brackets.
    [[nodiscard]] std::string hostText() const;
};

// Whether host is an IPv4 or IPv6 literal as IPAddressLiteral::parse accepts it.
[[nodiscard]] bool isIPAddressLiteral(std::string_view host);

}  // namespace vn
