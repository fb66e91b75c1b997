#include "network/CallbackQueue.h"

#include <utility>

namespace vn::network_internal {

CallbackQueue::CallbackQueue(ExecutorPtr executor) : executor_(std::move(executor)) {}

void CallbackQueue::add(std::function<void()> block) {
    {
        std::lock_guard lock(mutex_);
        pending_.push_back(std::move(block));
        if (scheduled_) return;
        scheduled_ = true;
    }
    executor_->execute([self = shared_from_this()] { self->drain(); });
}

// Runs what is pending, a bounded batch at a time, so that one busy session does not keep an
// executor thread to itself for ever.
void CallbackQueue::drain() {
    constexpr int batch = 64;
    for (int ran = 0; ran < batch; ++ran) {
        std::function<void()> block;
        {
            std::lock_guard lock(mutex_);
            if (pending_.empty()) {
                scheduled_ = false;
                return;
            }
            block = std::move(pending_.front());
            pending_.pop_front();
        }
        block();
    }
    executor_->execute([self = shared_from_this()] { self->drain(); });
}

}  // namespace vn::network_internal
