#include "vn/network/VNNetworkReachability.h"

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

#include "network/InterfaceReachability.h"

namespace vn {
namespace {

using network_internal::InterfaceAddress;
using Family = IPAddressLiteral::Family;

constexpr SCNetworkReachabilityFlags R = kSCNetworkReachabilityFlagsReachable;
constexpr SCNetworkReachabilityFlags L = kSCNetworkReachabilityFlagsIsLocalAddress;
constexpr SCNetworkReachabilityFlags D = kSCNetworkReachabilityFlagsIsDirect;
constexpr SCNetworkReachabilityFlags W = kSCNetworkReachabilityFlagsIsWWAN;

InterfaceAddress interface(std::string name, unsigned index, std::string_view address,
                           std::string_view netmask, bool up = true) {
    const auto parsedAddress = IPAddressLiteral::parse(address);
    const auto parsedNetmask = IPAddressLiteral::parse(netmask);
    InterfaceAddress result;
    result.name = std::move(name);
    result.index = index;
    result.family = parsedAddress->family;
    result.address = parsedAddress->bytes;
    result.netmask = parsedNetmask->bytes;
    result.upAndRunning = up;
    result.loopback = result.name == "lo";
    return result;
}

SCNetworkReachabilityFlags flagsOn(const std::vector<InterfaceAddress>& interfaces,
                                   std::string_view host) {
    return network_internal::reachabilityFlags(*IPAddressLiteral::parse(host), interfaces);
}

// Restores the built-in provider when a test ends, whatever it installed.
struct ProviderRestorer {
    ~ProviderRestorer() { VNNetworkReachability::setFlagsProvider(nullptr); }
};

TEST(VNNetworkReachability, FlagsFollowTheInterfaceTable) {
    const std::vector<InterfaceAddress> phone = {
        interface("lo", 1, "127.0.0.1", "255.0.0.0"),
        interface("lo", 1, "::1", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"),
        interface("wlan0", 3, "192.168.1.10", "255.255.255.0"),
        interface("wlan0", 3, "fe80::10", "ffff:ffff:ffff:ffff::"),
        interface("rmnet_data0", 7, "10.20.30.40", "255.0.0.0"),
        interface("eth1", 9, "172.16.0.1", "255.255.0.0", /*up=*/false),
    };
    const struct {
        std::string host;
        SCNetworkReachabilityFlags flags;
    } cases[] = {
        {"127.0.0.1", R | L | D},
        {"127.0.0.9", R | D},
        {"::1", R | L | D},
        {"192.168.1.10", R | L | D},
        {"192.168.1.77", R | D},
        {"10.1.2.3", R | D | W},
        {"172.16.0.9", R},  // its interface is down: through a gateway
        {"8.8.8.8", R},
        {"fe80::2", R | D},
        {"fe80::2%wlan0", R | D},
        {"fe80::2%3", R | D},
        {"fe80::2%eth7", 0},
        {"fe80::2%1", 0},  // the loopback interface has no such subnet and no gateway
        {"2001:db8::1", R},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.host);
        EXPECT_EQ(flagsOn(phone, c.host), c.flags);
    }
}

TEST(VNNetworkReachability, CellularOnlyOrLoopbackOnlyMachines) {
    const std::vector<InterfaceAddress> cellularOnly = {
        interface("lo", 1, "127.0.0.1", "255.0.0.0"),
        interface("ccmni0", 4, "10.0.0.5", "255.255.255.0"),
    };
    EXPECT_EQ(flagsOn(cellularOnly, "8.8.8.8"), R | W);
    EXPECT_EQ(flagsOn(cellularOnly, "10.0.0.9"), R | D | W);
    EXPECT_EQ(flagsOn(cellularOnly, "127.0.0.1"), R | L | D);

    const std::vector<InterfaceAddress> sharedSubnet = {
        interface("wwan0", 2, "10.0.0.5", "255.255.255.0"),
        interface("wlan0", 3, "10.0.0.6", "255.255.255.0"),
    };
    EXPECT_EQ(flagsOn(sharedSubnet, "10.0.0.9"), R | D);

    const std::vector<InterfaceAddress> loopbackOnly = {
        interface("lo", 1, "127.0.0.1", "255.0.0.0"),
    };
    EXPECT_EQ(flagsOn(loopbackOnly, "8.8.8.8"), 0u);
    EXPECT_EQ(flagsOn(loopbackOnly, "::1"), 0u);
    EXPECT_EQ(flagsOn({}, "127.0.0.1"), 0u);
}

TEST(VNNetworkReachability, CellularInterfacesAreKnownByName) {
    for (const std::string_view name :
         {"rmnet0", "rmnet_data3", "v4-rmnet_data0", "wwan0", "ccmni1", "pdp_ip0"})
        EXPECT_TRUE(network_internal::isCellularInterfaceName(name)) << name;
    for (const std::string_view name : {"lo", "wlan0", "eth0", "en0", "v4-wlan0", "", "rmne"})
        EXPECT_FALSE(network_internal::isCellularInterfaceName(name)) << name;
}

TEST(VNNetworkReachability, DefaultProviderReadsThisMachinesLoopbackAndResolvesNoName) {
    const ProviderRestorer restorer;
    const auto loopback = VNNetworkReachability::defaultFlagsForHost("127.0.0.1");
    ASSERT_TRUE(loopback);
    EXPECT_EQ(*loopback & (R | L | D | W), R | L | D);
    EXPECT_EQ(VNNetworkReachability::flagsForHost("127.0.0.1"), loopback);
    for (const std::string_view host : {"localhost", "", "[::1", "example.invalid"})
        EXPECT_FALSE(VNNetworkReachability::defaultFlagsForHost(host)) << host;
}

TEST(VNNetworkReachability, ReplacedProviderIsAskedAndItsBitsPassThrough) {
    const ProviderRestorer restorer;
    std::mutex mutex;
    std::vector<std::string> asked;
    const auto builtIn = VNNetworkReachability::setFlagsProvider(
        [&](std::string_view host) -> std::optional<SCNetworkReachabilityFlags> {
            std::lock_guard lock(mutex);
            asked.emplace_back(host);
            if (host == "10.0.0.1") return std::nullopt;
            return R | D | 0x4 | 0x80000000u;
        });
    ASSERT_TRUE(builtIn);
    EXPECT_EQ(builtIn("127.0.0.1"), VNNetworkReachability::defaultFlagsForHost("127.0.0.1"));
    EXPECT_EQ(VNNetworkReachability::flagsForHost("fe80::1%en0"), R | D | 0x4 | 0x80000000u);
    EXPECT_FALSE(VNNetworkReachability::flagsForHost("10.0.0.1"));
    EXPECT_EQ(asked, (std::vector<std::string>{"fe80::1%en0", "10.0.0.1"}));

    const auto replaced = VNNetworkReachability::setFlagsProvider(nullptr);
    EXPECT_EQ(replaced("printer"), R | D | 0x4 | 0x80000000u);
    EXPECT_EQ(VNNetworkReachability::flagsForHost("localhost"), std::nullopt);
    EXPECT_EQ(asked.size(), 3u);
}

}  // namespace
}  // namespace vn
