// The host application's structured logger, as the library sees it: the kinds of message it
// sorts by (VNLoggerType), the levels it records at (VNLoggerLevel) and the interface a host
// implements and registers in VNFoundationServices.
//
// The library only ever asks the service whether it is enabled, at which level it wants a
// kind of message, and hands it messages; starting and ending the recording is the host's.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vn {

// Kinds of message. Raw values 0 to 3; network traffic is recorded as `network` (1).
enum class VNLoggerType : std::int64_t {
    general = 0,  // the general log, where "ERROR: " entries go
    network = 1,
    database = 2,
    userInterface = 3,
};

// Severity levels. Raw values 0 to 6; a kind whose configured level is `off` (0) is not
// logged. Network traffic is recorded at `debug` (5).
enum class VNLoggerLevel : std::int64_t {
    off = 0,
    fatal = 1,
    error = 2,
    warning = 3,
    info = 4,
    debug = 5,
    verbose = 6,
};

constexpr std::int64_t rawValue(VNLoggerType type) {
    return static_cast<std::int64_t>(type);
}
constexpr std::int64_t rawValue(VNLoggerLevel level) {
    return static_cast<std::int64_t>(level);
}

// The case with the given raw value, or std::nullopt when no case has it:
// fromRawValue<VNLoggerType>(1) is network, fromRawValue<VNLoggerLevel>(7) is nullopt.
template <typename Enumeration>
[[nodiscard]] constexpr std::optional<Enumeration> fromRawValue(std::int64_t raw) = delete;

template <>
[[nodiscard]] constexpr std::optional<VNLoggerType> fromRawValue<VNLoggerType>(std::int64_t raw) {
    if (raw < rawValue(VNLoggerType::general) || raw > rawValue(VNLoggerType::userInterface))
        return std::nullopt;
    return static_cast<VNLoggerType>(raw);
}

template <>
[[nodiscard]] constexpr std::optional<VNLoggerLevel> fromRawValue<VNLoggerLevel>(std::int64_t raw) {
    if (raw < rawValue(VNLoggerLevel::off) || raw > rawValue(VNLoggerLevel::verbose))
        return std::nullopt;
    return static_cast<VNLoggerLevel>(raw);
}

// Implemented by the host and registered with VNFoundationServices::registerLoggerService.
// The library may call every member from any thread, including during process exit and from
// a crashing thread (endLogging), so implementations must be thread-safe.
class VNLoggerService {
  public:
    virtual ~VNLoggerService() = default;

    // The service starts recording. Called by the host, never by the library.
    virtual void startLogging() = 0;
    // The service stops recording and flushes what it buffered. The host calls it; the library
    // calls it only from the uncaught-exception handler, so that a crash's log reaches storage.
    virtual void endLogging() = 0;
    // Master switch: when false the library sends nothing.
    virtual bool isLogEnabled() const = 0;
    // The level configured for one kind of message; VNLoggerLevel::off means that kind is off.
    virtual VNLoggerLevel logLevelForType(VNLoggerType type) const = 0;
    // Records one message of the given kind at the given level; logToConsole asks the service
    // to echo it on its console as well.
    virtual void logMessage(std::string_view message, VNLoggerType type, VNLoggerLevel level,
                            bool logToConsole) = 0;
};

}  // namespace vn
