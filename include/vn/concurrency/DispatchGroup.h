// vn::DispatchGroup: counts blocks of work in flight so that a caller can wait for all of
// them, or have a block run once they have all finished.
//
// The count goes up with enter() (or DispatchQueue::async(group, work)) and down with
// leave(). When it reaches zero every block registered with notify() is submitted to its
// queue, in registration order, and every waiter returns. A group can be reused after it
// emptied. Safe from any thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "vn/concurrency/DispatchQueue.h"
#include "vn/platform/Object.h"

namespace vn {

class DispatchGroup : public Object {
  public:
    DispatchGroup() = default;
    static DispatchGroupPtr create() { return std::make_shared<DispatchGroup>(); }

    void enter();
    // Leaving more often than entering is a programming error: fatal error.
    void leave();

    // Waits until the group is empty or the deadline passes. dispatchTimeNow() only tests;
    // DispatchTimeForever waits without limit.
    DispatchWaitResult wait(DispatchTime deadline = DispatchTimeForever);
    template <typename Rep, typename Period>
    DispatchWaitResult wait(std::chrono::duration<Rep, Period> timeout) {
        return wait(std::chrono::steady_clock::now() +
                    std::chrono::duration_cast<std::chrono::steady_clock::duration>(timeout));
    }

    // Submits work to queue once the group is empty: at once when it is empty now. A null
    // queue or block is ignored.
    void notify(DispatchQueuePtr queue, std::function<void()> work);

    // The number of blocks in flight, for diagnostics (it may change at any moment).
    std::size_t count() const;

  private:
    mutable std::mutex mutex_;
    std::condition_variable emptied_;
    std::size_t count_ = 0;
    std::vector<std::pair<DispatchQueuePtr, std::function<void()>>> notifications_;
};

}  // namespace vn
