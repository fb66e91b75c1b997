#include "vn/concurrency/Timer.h"

#include <algorithm>

#include "vn/concurrency/RunLoop.h"

namespace vn {
namespace {

constexpr double kMinimumInterval = 0.0001;

std::chrono::steady_clock::time_point fireDateAfter(double seconds) {
    return std::chrono::steady_clock::now() +
           std::chrono::duration_cast<std::chrono::steady_clock::duration>(
               std::chrono::duration<double>(seconds));
}

}  // namespace

Timer::Timer(double interval, bool repeats, Block block)
    : interval_(std::max(interval, kMinimumInterval)),
      repeats_(repeats),
      firstFireDate_(fireDateAfter(interval_)),
      block_(block ? std::make_shared<Block>(std::move(block)) : nullptr) {}

TimerPtr Timer::scheduledTimer(double interval, bool repeats, Block block) {
    auto timer = std::make_shared<Timer>(interval, repeats, std::move(block));
    RunLoop::current().addTimer(timer);
    return timer;
}

void Timer::fire() {
    std::shared_ptr<Block> block;
    {
        std::lock_guard lock(mutex_);
        if (!valid_) return;
        block = block_;
    }
    if (block) (*block)(*this);
    if (!repeats_) invalidate();
}

void Timer::invalidate() {
    std::shared_ptr<Block> released;  // destroyed outside the lock: the block may own anything
    std::function<void()> unschedule;
    {
        std::lock_guard lock(mutex_);
        if (!valid_) return;
        valid_ = false;
        released = std::move(block_);
        unschedule = std::move(unschedule_);
    }
    if (unschedule) unschedule();
}

bool Timer::isValid() const {
    std::lock_guard lock(mutex_);
    return valid_;
}

}  // namespace vn
