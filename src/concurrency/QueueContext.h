// Which dispatch queue the calling thread is running work for: a per-thread stack of frames,
// one per queue block being run (sync() nests them).
#pragma once

#include <functional>

#include "vn/concurrency/DispatchQueue.h"

namespace vn::concurrency_internal {

class CurrentQueueScope {
  public:
    explicit CurrentQueueScope(DispatchQueue& queue);
    ~CurrentQueueScope();
    CurrentQueueScope(const CurrentQueueScope&) = delete;
    CurrentQueueScope& operator=(const CurrentQueueScope&) = delete;

    static DispatchQueue* innermost();
    static bool isRunning(const DispatchQueue& queue);

  private:
    DispatchQueue* queue_;
    CurrentQueueScope* previous_;
};

// Runs a block of queue work. Work must not throw; an escaping exception ends the process.
inline void runWork(const std::function<void()>& work) noexcept {
    work();
}

}  // namespace vn::concurrency_internal
