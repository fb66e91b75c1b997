// A log listener for tests: keeps every message it hears, safe from any thread.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "vn/log/VNLogListener.h"

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

}  // namespace vn::testing
