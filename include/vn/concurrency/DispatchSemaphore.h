// vn::DispatchSemaphore: a counting semaphore with time-outs, the platform's dispatch
// semaphore. Safe from any thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "vn/concurrency/DispatchQueue.h"
#include "vn/platform/Object.h"

namespace vn {

class DispatchSemaphore : public Object {
  public:
    // value: the number of wait() calls that pass before the first signal(). A negative value
    // is a programming error: fatal error.
    explicit DispatchSemaphore(long value = 0);
    [[nodiscard]] static std::shared_ptr<DispatchSemaphore> create(long value = 0) {
        return std::make_shared<DispatchSemaphore>(value);
    }

    // Adds one to the count and wakes one waiter, if any.
    void signal();
    // Takes one from the count, waiting until that is possible or the deadline passes.
    // dispatchTimeNow() only tests; DispatchTimeForever waits without limit.
    DispatchWaitResult wait(DispatchTime deadline = DispatchTimeForever);
    template <typename Rep, typename Period>
    DispatchWaitResult wait(std::chrono::duration<Rep, Period> timeout) {
        return wait(std::chrono::steady_clock::now() +
                    std::chrono::duration_cast<std::chrono::steady_clock::duration>(timeout));
    }

  private:
    std::mutex mutex_;
    std::condition_variable available_;
    long value_;
};

}  // namespace vn
