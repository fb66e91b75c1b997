// vn::VNUndocumentedConfig: settings that an application may put in its main bundle's
// information dictionary to tune the library, without a place in the documented interface.
//
// Each setting is read once, on first use, and kept for the life of the process; reset()
// forgets what was read, for hosts that change the dictionary and for tests.
//
// Safe from any thread.
#pragma once

#include <chrono>
#include <string_view>

#include "vn/platform/Value.h"

namespace vn {

class VNUndocumentedConfig {
  public:
    // The information-dictionary key of localNetworkPermissionTimeout, in seconds.
    static constexpr std::string_view localNetworkPermissionTimeoutKey =
        "VNLocalNetworkPermissionTimeout";
    static constexpr std::chrono::duration<double> defaultLocalNetworkPermissionTimeout{30.0};

    // How long a request repeated while the local-network permission may be pending waits for
    // connectivity before it fails: the main bundle's value under
    // localNetworkPermissionTimeoutKey, read on the first call (concurrent first calls read it
    // once and agree), as localNetworkPermissionTimeoutFromInfo gives it.
    [[nodiscard]] static std::chrono::duration<double> localNetworkPermissionTimeout();

    // The time-out that value (the dictionary's entry, nil when absent) stands for: a number
    // (any kind but a boolean) or a text that is wholly a decimal number ("12", "0.5", "1e1")
    // gives that many seconds when it is finite and greater than zero; anything else (nil,
    // zero, negative, infinite, NaN, a boolean, a text that is not a number, another kind)
    // gives defaultLocalNetworkPermissionTimeout.
    [[nodiscard]] static std::chrono::duration<double> localNetworkPermissionTimeoutFromInfo(
        const Value& value);

    // Forgets every value read, so that the next call reads the dictionary again. Objects made
    // with an earlier value (the waiting session of URLSession) keep it.
    static void reset();
};

}  // namespace vn
