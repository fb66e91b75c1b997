// A serial queue on top of any executor: the blocks given to one CallbackQueue run one at a
// time, in the order they were added, whatever the executor does with concurrency. A session
// delivers its delegate calls and completion handlers through one.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "vn/platform/Executor.h"

namespace vn::network_internal {

class CallbackQueue : public std::enable_shared_from_this<CallbackQueue> {
  public:
    explicit CallbackQueue(ExecutorPtr executor);

    // Safe from any thread. Blocks must not throw.
    void add(std::function<void()> block);

  private:
    void drain();

    const ExecutorPtr executor_;
    std::mutex mutex_;
    std::deque<std::function<void()>> pending_;
    bool scheduled_ = false;
};

}  // namespace vn::network_internal
