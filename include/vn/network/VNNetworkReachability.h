// vn::VNNetworkReachability: the reachability flags of a host, as the platform's reachability
// service reports them, through one replaceable provider.
//
// The flags keep the platform's bit values so that they bridge one to one; only the four
// below are given a meaning here. A provider may answer other bits as well: they are passed
// through unchanged and ignored by the library.
//
// The default provider computes the flags from this machine's interface table (getifaddrs),
// for IP literals only (it never resolves a name). For an address A and the interfaces that
// are up and running, of A's family (and, when A has a zone, named by it or numbered by it):
// - A is an address of one of them: reachable, is-local-address and is-direct;
// - A lies in the subnet of one of them (same bits under its netmask): reachable, is-direct;
// - otherwise, when one of them is not a loopback interface (the traffic would go through a
//   gateway): reachable only;
// - otherwise: no flag (0).
// is-WWAN is added when every interface that made A reachable is a cellular one, known by its
// name ("rmnet*", "v4-rmnet*", "wwan*", "ccmni*", "pdp_ip*"). So 127.0.0.1 is reachable, a
// local address and direct (it is the loopback interface's own address).
//
// Safe from any thread; the provider is called on the caller's thread, outside any lock of
// this class, and must itself be safe from any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace vn {

using SCNetworkReachabilityFlags = std::uint32_t;

inline constexpr SCNetworkReachabilityFlags kSCNetworkReachabilityFlagsReachable = 0x2;
inline constexpr SCNetworkReachabilityFlags kSCNetworkReachabilityFlagsIsLocalAddress = 0x10000;
inline constexpr SCNetworkReachabilityFlags kSCNetworkReachabilityFlagsIsDirect = 0x20000;
inline constexpr SCNetworkReachabilityFlags kSCNetworkReachabilityFlagsIsWWAN = 0x40000;

class VNNetworkReachability {
  public:
    // Answers the flags for a host, given as an IP literal without brackets ("::1",
    // "fe80::1%en0") or as a name; absent when no flags can be had for it (the platform could
    // not make a reachability object or read its flags).
    using FlagsProvider =
        std::function<std::optional<SCNetworkReachabilityFlags>(std::string_view host)>;

    // The flags the current provider answers for host.
    [[nodiscard]] static std::optional<SCNetworkReachabilityFlags> flagsForHost(
        std::string_view host);

    // The built-in provider described above: absent for a host that is not an IP literal
    // (names are not resolved) and when the interface table cannot be read.
    [[nodiscard]] static std::optional<SCNetworkReachabilityFlags> defaultFlagsForHost(
        std::string_view host);

    // Installs provider (null: back to the built-in one) and returns the one it replaces
    // (the built-in one as a callable when no other was installed), so that a replacement can
    // decorate it or a test can put it back.
    static FlagsProvider setFlagsProvider(FlagsProvider provider);
};

}  // namespace vn
