// ProcessWideSetting: a value the host or a test may replace at any time (a factory, a
// classifier, a provider, a version), read and replaced under one lock. Instances are made once
// and never destroyed, since tasks may still read them while the process exits.
#pragma once

#include <mutex>
#include <utility>

namespace vn::network_internal {

template <typename T>
class ProcessWideSetting {
  public:
    explicit ProcessWideSetting(T initial = T()) : value_(std::move(initial)) {}

    T get() const {
        std::lock_guard lock(mutex_);
        return value_;
    }
    // Stores value and returns the one it replaces.
    T exchange(T value) {
        std::lock_guard lock(mutex_);
        std::swap(value_, value);
        return value;
    }

  private:
    mutable std::mutex mutex_;
    T value_;
};

}  // namespace vn::network_internal
