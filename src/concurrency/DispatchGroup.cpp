#include "vn/concurrency/DispatchGroup.h"

#include "concurrency/WorkerPool.h"
#include "vn/platform/FatalError.h"

namespace vn {

void DispatchGroup::enter() {
    std::lock_guard lock(mutex_);
    ++count_;
}

void DispatchGroup::leave() {
    std::vector<std::pair<DispatchQueuePtr, std::function<void()>>> due;
    {
        std::lock_guard lock(mutex_);
        if (count_ == 0) fatalError("DispatchGroup::leave() called more often than enter()");
        if (--count_ > 0) return;
        due.swap(notifications_);
        emptied_.notify_all();
    }
    for (auto& [queue, work] : due) queue->async(std::move(work));
}

DispatchWaitResult DispatchGroup::wait(DispatchTime deadline) {
    std::unique_lock lock(mutex_);
    if (count_ == 0) return DispatchWaitResult::success;
    if (deadline <= std::chrono::steady_clock::now()) return DispatchWaitResult::timedOut;
    concurrency_internal::BlockingRegion blocking;
    const auto isEmpty = [this] { return count_ == 0; };
    if (deadline == DispatchTimeForever) {
        emptied_.wait(lock, isEmpty);
        return DispatchWaitResult::success;
    }
    return emptied_.wait_until(lock, deadline, isEmpty) ? DispatchWaitResult::success
                                                        : DispatchWaitResult::timedOut;
}

void DispatchGroup::notify(DispatchQueuePtr queue, std::function<void()> work) {
    if (!queue || !work) return;
    {
        std::lock_guard lock(mutex_);
        if (count_ > 0) {
            notifications_.emplace_back(std::move(queue), std::move(work));
            return;
        }
    }
    queue->async(std::move(work));
}

std::size_t DispatchGroup::count() const {
    std::lock_guard lock(mutex_);
    return count_;
}

}  // namespace vn
