// The reachability flags of an IP literal computed from an interface table: the rules of
// VNNetworkReachability's default provider, kept apart from getifaddrs so that they can be
// checked against tables that this machine does not have.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vn/network/IPAddressLiteral.h"
#include "vn/network/VNNetworkReachability.h"

namespace vn::network_internal {

// One address of one interface, as getifaddrs lists it.
struct InterfaceAddress {
    std::string name;    // "lo", "wlan0", "rmnet_data0"
    unsigned index = 0;  // the interface's number (if_nametoindex)
    IPAddressLiteral::Family family = IPAddressLiteral::Family::ipv4;
    std::array<std::uint8_t, 16> address{};  // network order; IPv4 in the first four bytes
    std::array<std::uint8_t, 16> netmask{};
    bool upAndRunning = false;
    bool loopback = false;
};

// The IPv4 and IPv6 addresses of this machine's interfaces; absent when the table cannot be
// read.
std::optional<std::vector<InterfaceAddress>> currentInterfaceAddresses();

// Whether name is one that cellular (mobile data) interfaces carry.
bool isCellularInterfaceName(std::string_view name);

// The flags for host on interfaces, by the rules in VNNetworkReachability.h.
SCNetworkReachabilityFlags reachabilityFlags(const IPAddressLiteral& host,
                                             const std::vector<InterfaceAddress>& interfaces);

}  // namespace vn::network_internal
