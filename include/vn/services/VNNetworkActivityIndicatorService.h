// VNNetworkActivityIndicatorService: the host's service for the network-activity indicator (the
// spinner that tells the user the application is using the network).
//
// The library calls startActivity() when a request begins to use the network and
// stopActivity() when it stops, in pairs, from any thread; how the activity is shown is the
// host's. VNNetworkActivityCounter is a ready implementation that only counts. Nothing is
// registered by default: with an empty slot the library simply makes no calls.
#pragma once

#include <mutex>

namespace vn {

class VNNetworkActivityIndicatorService {
  public:
    virtual ~VNNetworkActivityIndicatorService() = default;
    // Both do nothing by default. Implementations must be safe from any thread.
    virtual void startActivity() {}
    virtual void stopActivity() {}
};

// Counts the activities in progress. The count never goes below zero: an unmatched
// stopActivity() is ignored. Safe from any thread.
class VNNetworkActivityCounter : public VNNetworkActivityIndicatorService {
  public:
    void startActivity() override;
    void stopActivity() override;
    long activityCount() const;
    bool isActive() const { return activityCount() > 0; }

  private:
    mutable std::mutex mutex_;
    long count_ = 0;
};

}  // namespace vn
