// A host logger service for tests: records what it is sent, safe from any thread.
#pragma once

#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "vn/platform/Exception.h"
#include "vn/services/VNLoggerService.h"

namespace vn::testing {

// A host logger: enabled, every kind at verbose except the network kind, which is at debug
// until configured. endLogging() says on standard error that it ran (so a death test can see
// it) and throws when asked to fail.
class RecordingLoggerService final : public VNLoggerService {
  public:
    struct Entry {
        std::string message;
        VNLoggerType type;
        VNLoggerLevel level;
        bool logToConsole;
    };

    void startLogging() override {}
    void endLogging() override {
        std::fputs("logger service: endLogging\n", stderr);
        if (failOnEnd_) throw Exception("Flush", "could not flush");
    }
    bool isLogEnabled() const override {
        std::lock_guard lock(mutex_);
        return enabled_;
    }
    VNLoggerLevel logLevelForType(VNLoggerType type) const override {
        std::lock_guard lock(mutex_);
        return type == VNLoggerType::network ? networkLevel_ : VNLoggerLevel::verbose;
    }
    void logMessage(std::string_view message, VNLoggerType type, VNLoggerLevel level,
                    bool logToConsole) override {
        std::lock_guard lock(mutex_);
        entries_.push_back({std::string(message), type, level, logToConsole});
    }

    void configure(bool enabled, VNLoggerLevel networkLevel) {
        std::lock_guard lock(mutex_);
        enabled_ = enabled;
        networkLevel_ = networkLevel;
    }
    void setFailOnEnd(bool fail) { failOnEnd_ = fail; }
    std::vector<Entry> entries() const {
        std::lock_guard lock(mutex_);
        return entries_;
    }

  private:
    mutable std::mutex mutex_;
    bool enabled_ = true;
    VNLoggerLevel networkLevel_ = VNLoggerLevel::debug;
    bool failOnEnd_ = false;
    std::vector<Entry> entries_;
};

}  // namespace vn::testing
