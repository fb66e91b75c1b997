#include "vn/network/VNNetworkReachability.h"

#include "network/InterfaceReachability.h"
#include "network/ProcessWideSetting.h"
#include "vn/network/IPAddressLiteral.h"

namespace vn {
namespace {

// Null: the built-in provider.
network_internal::ProcessWideSetting<VNNetworkReachability::FlagsProvider>& providerSetting() {
    static auto* const setting =
        new network_internal::ProcessWideSetting<VNNetworkReachability::FlagsProvider>;
    return *setting;
}

}  // namespace

std::optional<SCNetworkReachabilityFlags> VNNetworkReachability::flagsForHost(
    std::string_view host) {
    const FlagsProvider provider = providerSetting().get();
    return provider ? provider(host) : defaultFlagsForHost(host);
}

std::optional<SCNetworkReachabilityFlags> VNNetworkReachability::defaultFlagsForHost(
    std::string_view host) {
    const auto literal = IPAddressLiteral::parse(host);
    if (!literal) return std::nullopt;
    const auto interfaces = network_internal::currentInterfaceAddresses();
    if (!interfaces) return std::nullopt;
    return network_internal::reachabilityFlags(*literal, *interfaces);
}

VNNetworkReachability::FlagsProvider VNNetworkReachability::setFlagsProvider(
    FlagsProvider provider) {
    if (FlagsProvider replaced = providerSetting().exchange(std::move(provider))) return replaced;
    return [](std::string_view host) { return defaultFlagsForHost(host); };
}

}  // namespace vn
