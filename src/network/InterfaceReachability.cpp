#include "network/InterfaceReachability.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace vn::network_internal {
namespace {

using Family = IPAddressLiteral::Family;

std::size_t byteCount(Family family) {
    return family == Family::ipv4 ? 4 : 16;
}

// The bytes of an AF_INET or AF_INET6 socket address; absent for any other family.
std::optional<std::array<std::uint8_t, 16>> bytesOf(const sockaddr* address) {
    std::array<std::uint8_t, 16> bytes{};
    if (!address) return std::nullopt;
    if (address->sa_family == AF_INET) {
        const auto* ipv4 = reinterpret_cast<const sockaddr_in*>(address);
        std::memcpy(bytes.data(), &ipv4->sin_addr, sizeof ipv4->sin_addr);
        return bytes;
    }
    if (address->sa_family == AF_INET6) {
        const auto* ipv6 = reinterpret_cast<const sockaddr_in6*>(address);
        std::memcpy(bytes.data(), &ipv6->sin6_addr, sizeof ipv6->sin6_addr);
        return bytes;
    }
    return std::nullopt;
}

std::optional<InterfaceAddress> interfaceAddressOf(const ifaddrs& entry) {
    const auto address = bytesOf(entry.ifa_addr);
    if (!address) return std::nullopt;
    InterfaceAddress result;
    result.name = entry.ifa_name ? entry.ifa_name : "";
    result.index = if_nametoindex(result.name.c_str());
    result.family = entry.ifa_addr->sa_family == AF_INET ? Family::ipv4 : Family::ipv6;
    result.address = *address;
    // Without a netmask the interface reaches its own address only.
    result.netmask.fill(0xff);
    if (const auto netmask = bytesOf(entry.ifa_netmask)) result.netmask = *netmask;
    result.upAndRunning = (entry.ifa_flags & IFF_UP) && (entry.ifa_flags & IFF_RUNNING);
    result.loopback = entry.ifa_flags & IFF_LOOPBACK;
    return result;
}

bool serves(const InterfaceAddress& interface, const IPAddressLiteral& host) {
    if (!interface.upAndRunning || interface.family != host.family) return false;
    if (!host.zone) return true;
    return interface.name == *host.zone || std::to_string(interface.index) == *host.zone;
}

bool isOwnAddress(const InterfaceAddress& interface, const IPAddressLiteral& host) {
    return std::equal(host.bytes.begin(), host.bytes.begin() + byteCount(host.family),
                      interface.address.begin());
}

bool isInSubnet(const InterfaceAddress& interface, const IPAddressLiteral& host) {
    for (std::size_t i = 0; i < byteCount(host.family); ++i) {
        if ((host.bytes[i] & interface.netmask[i]) != (interface.address[i] & interface.netmask[i]))
            return false;
    }
    return true;
}

bool allCellular(const std::vector<const InterfaceAddress*>& interfaces) {
    return std::all_of(interfaces.begin(), interfaces.end(), [](const InterfaceAddress* interface) {
        return isCellularInterfaceName(interface->name);
    });
}

}  // namespace

std::optional<std::vector<InterfaceAddress>> currentInterfaceAddresses() {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) return std::nullopt;
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> owner(list, &freeifaddrs);
    std::vector<InterfaceAddress> result;
    for (const ifaddrs* entry = list; entry; entry = entry->ifa_next) {
        if (auto address = interfaceAddressOf(*entry)) result.push_back(std::move(*address));
    }
    return result;
}

bool isCellularInterfaceName(std::string_view name) {
    static constexpr std::string_view prefixes[] = {"rmnet", "v4-rmnet", "wwan", "ccmni", "pdp_ip"};
    return std::any_of(std::begin(prefixes), std::end(prefixes),
                       [name](std::string_view prefix) { return name.starts_with(prefix); });
}

SCNetworkReachabilityFlags reachabilityFlags(const IPAddressLiteral& host,
                                             const std::vector<InterfaceAddress>& interfaces) {
    std::vector<const InterfaceAddress*> onLink;
    std::vector<const InterfaceAddress*> viaGateway;
    bool local = false;
    for (const InterfaceAddress& interface : interfaces) {
        if (!serves(interface, host)) continue;
        if (isInSubnet(interface, host)) {
            onLink.push_back(&interface);
            local = local || isOwnAddress(interface, host);
        } else if (!interface.loopback) {
            viaGateway.push_back(&interface);
        }
    }
    if (!onLink.empty()) {
        SCNetworkReachabilityFlags flags =
            kSCNetworkReachabilityFlagsReachable | kSCNetworkReachabilityFlagsIsDirect;
        if (local) flags |= kSCNetworkReachabilityFlagsIsLocalAddress;
        if (allCellular(onLink)) flags |= kSCNetworkReachabilityFlagsIsWWAN;
        return flags;
    }
    if (viaGateway.empty()) return 0;
    return kSCNetworkReachabilityFlagsReachable |
           (allCellular(viaGateway) ? kSCNetworkReachabilityFlagsIsWWAN : 0);
}

}  // namespace vn::network_internal
