#include "vn/concurrency/ThreadVNFoundation.h"

#include <array>
#include <functional>
#include <mutex>
#include <unordered_map>

#include "concurrency/ObjectMonitor.h"
#include "concurrency/WorkerPool.h"

namespace vn {
namespace {

struct Monitor {
    std::recursive_mutex mutex;
    std::size_t users = 0;  // threads holding or waiting for the monitor
};

// Monitors live in a table striped by identity, so that unrelated objects rarely share a
// table lock. An entry is removed when its last user leaves.
class MonitorTable {
  public:
    Monitor& acquireEntry(const void* identity) {
        Stripe& stripe = stripeOf(identity);
        std::lock_guard lock(stripe.mutex);
        Monitor& monitor = stripe.monitors[identity];
        ++monitor.users;
        return monitor;
    }

    void releaseEntry(const void* identity) {
        Stripe& stripe = stripeOf(identity);
        std::lock_guard lock(stripe.mutex);
        const auto it = stripe.monitors.find(identity);
        if (--it->second.users == 0) stripe.monitors.erase(it);
    }

    std::size_t size() {
        std::size_t total = 0;
        for (Stripe& stripe : stripes_) {
            std::lock_guard lock(stripe.mutex);
            total += stripe.monitors.size();
        }
        return total;
    }

  private:
    struct Stripe {
        std::mutex mutex;
        std::unordered_map<const void*, Monitor> monitors;
    };

    Stripe& stripeOf(const void* identity) {
        return stripes_[std::hash<const void*>{}(identity) % stripes_.size()];
    }

    std::array<Stripe, 16> stripes_;
};

MonitorTable& monitors() {
    static auto* table = new MonitorTable();  // deliberately leaked: used until the process ends
    return *table;
}

}  // namespace

namespace concurrency_internal {

ObjectMonitorLock::ObjectMonitorLock(const void* identity)
    : identity_(identity), monitor_(nullptr) {
    if (!identity_) return;
    Monitor& monitor = monitors().acquireEntry(identity_);
    if (!monitor.mutex.try_lock()) {
        concurrency_internal::BlockingRegion blocking;
        monitor.mutex.lock();
    }
    monitor_ = &monitor;
}

ObjectMonitorLock::~ObjectMonitorLock() {
    if (!monitor_) return;
    static_cast<Monitor*>(monitor_)->mutex.unlock();
    monitors().releaseEntry(identity_);
}

}  // namespace concurrency_internal

namespace concurrency_internal {

std::size_t liveObjectMonitorCount() {
    return monitors().size();
}

}  // namespace concurrency_internal
}  // namespace vn
