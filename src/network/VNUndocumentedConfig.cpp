#include "vn/network/VNUndocumentedConfig.h"

#include <charconv>
#include <cmath>
#include <mutex>
#include <optional>

#include "vn/platform/Bundle.h"

namespace vn {
namespace {

using Seconds = std::chrono::duration<double>;

struct ReadOnce {
    std::mutex mutex;
    std::optional<Seconds> localNetworkPermissionTimeout;
};

ReadOnce& readOnce() {
    static ReadOnce* const values = new ReadOnce;  // read by sessions made during exit
    return *values;
}

std::optional<double> numberIn(const Value& value) {
    if (const Number* number = value.number()) {
        if (number->isBoolean()) return std::nullopt;
        return number->doubleValue();
    }
    if (const std::string* text = value.string()) {
        double parsed = 0;
        const char* end = text->data() + text->size();
        const auto [stop, error] = std::from_chars(text->data(), end, parsed);
        if (error != std::errc() || stop != end) return std::nullopt;
        return parsed;
    }
    return std::nullopt;
}

}  // namespace

Seconds VNUndocumentedConfig::localNetworkPermissionTimeoutFromInfo(const Value& value) {
    const std::optional<double> seconds = numberIn(value);
    if (!seconds || !std::isfinite(*seconds) || *seconds <= 0)
        return defaultLocalNetworkPermissionTimeout;
    return Seconds(*seconds);
}

Seconds VNUndocumentedConfig::localNetworkPermissionTimeout() {
    ReadOnce& values = readOnce();
    std::lock_guard lock(values.mutex);
    if (!values.localNetworkPermissionTimeout) {
        values.localNetworkPermissionTimeout = localNetworkPermissionTimeoutFromInfo(
            Bundle::main().objectForInfoDictionaryKey(localNetworkPermissionTimeoutKey));
    }
    return *values.localNetworkPermissionTimeout;
}

void VNUndocumentedConfig::reset() {
    ReadOnce& values = readOnce();
    std::lock_guard lock(values.mutex);
    values.localNetworkPermissionTimeout.reset();
}

}  // namespace vn
