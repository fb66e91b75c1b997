#include "vn/concurrency/DispatchSemaphore.h"

#include "concurrency/WorkerPool.h"
#include "vn/platform/FatalError.h"

namespace vn {

DispatchSemaphore::DispatchSemaphore(long value) : value_(value) {
    if (value < 0) fatalError("DispatchSemaphore needs a value of zero or more");
}

void DispatchSemaphore::signal() {
    std::lock_guard lock(mutex_);
    ++value_;
    available_.notify_one();
}

DispatchWaitResult DispatchSemaphore::wait(DispatchTime deadline) {
    std::unique_lock lock(mutex_);
    const auto isAvailable = [this] { return value_ > 0; };
    if (!isAvailable()) {
        if (deadline <= std::chrono::steady_clock::now()) return DispatchWaitResult::timedOut;
        concurrency_internal::BlockingRegion blocking;
        if (deadline == DispatchTimeForever) {
            available_.wait(lock, isAvailable);
        } else if (!available_.wait_until(lock, deadline, isAvailable)) {
            return DispatchWaitResult::timedOut;
        }
    }
    --value_;
    return DispatchWaitResult::success;
}

}  // namespace vn
