#include "vn/network/VNNetworkReachability.h"

#include <mutex>

#include "network/InterfaceReachability.h"
#include "vn/network/IPAddressLiteral.h"

namespace vn {
namespace {

struct ProviderSlot {
    std::mutex mutex;
    VNNetworkReachability::FlagsProvider provider;  // null: the built-in one
};

ProviderSlot& providerSlot() {
    static ProviderSlot* const slot = new ProviderSlot;  // read by tasks ending during exit
    return *slot;
}

}  // namespace

std::optional<SCNetworkReachabilityFlags> VNNetworkReachability::flagsForHost(
    std::string_view host) {
    FlagsProvider provider;
    {
        std::lock_guard lock(providerSlot().mutex);
        provider = providerSlot().provider;
    }
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
    {
        std::lock_guard lock(providerSlot().mutex);
        std::swap(providerSlot().provider, provider);
    }
    if (provider) return provider;
    return [](std::string_view host) { return defaultFlagsForHost(host); };
}

}  // namespace vn
