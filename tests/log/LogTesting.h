// Helpers for tests that watch the log: a listener that keeps what it hears, and a scope that
// puts the log's process-wide state (switches, defaults, listeners, file, services) back to a
// fresh process's on entry and on exit.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "vn/log/VNLog.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/UserDefaults.h"
#include "vn/services/VNFoundationServices.h"

namespace vn::testing {

class CapturingLogListener final : public VNLogListener {
  public:
    void logListenerNotifyMessage(const std::string& message) override {
        std::lock_guard lock(mutex_);
        messages_.push_back(message);
    }
    std::vector<std::string> messages() const {
        std::lock_guard lock(mutex_);
        return messages_;
    }

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> messages_;
};

inline void resetLogState() {
    VNUtilities::setShowDeveloperInfo(false);
    VNUtilities::setIsTolvarApp(false);
    UserDefaults::standard().reset();
    VNLog::reset();
    VNFoundationServices::reset();
}

class ScopedLogState {
  public:
    ScopedLogState() { resetLogState(); }
    ~ScopedLogState() { resetLogState(); }
    ScopedLogState(const ScopedLogState&) = delete;
    ScopedLogState& operator=(const ScopedLogState&) = delete;

    // Console off, file on.
    static void turnFileOn() {
        VNUtilities::setIsTolvarApp(true);
        UserDefaults::standard().setBool(true, VNLog::logEnabledPreferenceKey);
    }
};

}  // namespace vn::testing
