#include "vn/concurrency/RunLoop.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>

#include <cmath>
#include <deque>
#include <mutex>
#include <thread>

#include "concurrency/QueueContext.h"
#include "vn/concurrency/Timer.h"
#include "vn/platform/FatalError.h"
#include "vn/platform/Thread.h"

namespace vn {

using Clock = std::chrono::steady_clock;

// The loop's queued work lives in a deque of its own, so that a pass can run exactly the work
// queued before it began. The io_context carries the timers and wakes a waiting loop: queuing
// work posts one wake-up handler, unless one is queued already.
class RunLoop::Impl {
  public:
    explicit Impl(bool isMain) : isMain_(isMain), owner_(std::this_thread::get_id()) {}

    bool isOwnedByCaller() const {
        return isMain_ ? Thread::isMainThread() : owner_ == std::this_thread::get_id();
    }

    void requireOwner() const {
        if (!isOwnedByCaller()) {
            fatalError(isMain_ ? "The main run loop can only be run on the main thread"
                               : "A run loop can only be run on its own thread");
        }
    }

    // The wake-up is posted after the lock is let go: the loop's thread, once woken, takes that
    // lock at once, and would otherwise sleep again until this thread lets it go.
    void perform(std::function<void()> work) {
        {
            std::lock_guard lock(mutex_);
            pending_.push_back(std::move(work));
            if (wakeUpQueued_) return;
            wakeUpQueued_ = true;
        }
        asio::post(io_, [this] {
            std::lock_guard lock(mutex_);
            wakeUpQueued_ = false;
        });
    }

    bool hasPendingWork() {
        std::lock_guard lock(mutex_);
        return !pending_.empty();
    }

    void runPass() {
        io_.poll();  // due timers (and wake-ups)
        std::deque<std::function<void()>> batch;
        {
            std::lock_guard lock(mutex_);
            batch.swap(pending_);
        }
        for (const auto& work : batch) concurrency_internal::runWork(work);
    }

    void waitUntil(Clock::time_point until) { io_.run_one_until(until); }

    asio::io_context& io() { return io_; }

  private:
    const bool isMain_;
    const std::thread::id owner_;
    asio::io_context io_{1};
    asio::executor_work_guard<asio::io_context::executor_type> keepWaiting_{
        asio::make_work_guard(io_)};
    std::mutex mutex_;
    std::deque<std::function<void()>> pending_;
    bool wakeUpQueued_ = false;
};

namespace {

constexpr auto kConditionPollInterval = std::chrono::milliseconds(5);

Clock::duration secondsToDuration(double seconds) {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

Clock::time_point saturatingAdd(Clock::time_point start, std::chrono::milliseconds delta) {
    if (delta >=
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::time_point::max() - start)) {
        return Clock::time_point::max();
    }
    return start + delta;
}

// The first planned fire date after now: missed fire dates are skipped, not fired in a burst.
Clock::time_point nextFireDate(Clock::time_point planned, double interval) {
    const auto now = Clock::now();
    const auto step = secondsToDuration(interval);
    auto next = planned + step;
    if (next <= now) {
        const auto missed = (now - planned) / step;
        next = planned + step * (missed + 1);
    }
    return next;
}

// Timer blocks follow the rule for loop work: an escaping exception ends the process.
void fireScheduled(Timer& timer) noexcept {
    timer.fire();
}

struct ScheduledTimer {
    ScheduledTimer(asio::io_context& io, TimerPtr timer) : wait(io), timer(std::move(timer)) {}
    asio::steady_timer wait;
    TimerPtr timer;
};

void arm(const std::shared_ptr<ScheduledTimer>& scheduled, Clock::time_point fireDate) {
    scheduled->wait.expires_at(fireDate);
    scheduled->wait.async_wait([scheduled, fireDate](const asio::error_code& error) {
        Timer& timer = *scheduled->timer;
        if (error || !timer.isValid()) return;
        fireScheduled(timer);
        if (timer.repeats() && timer.isValid())
            arm(scheduled, nextFireDate(fireDate, timer.timeInterval()));
    });
}

}  // namespace

RunLoop::RunLoop(bool isMain) : impl_(std::make_shared<Impl>(isMain)) {}

RunLoop::~RunLoop() = default;

RunLoop& RunLoop::main() {
    // Deliberately leaked: main-queue work may be submitted until the process ends.
    static auto* loop = new RunLoop(true);
    return *loop;
}

RunLoop& RunLoop::current() {
    if (Thread::isMainThread()) return main();
    thread_local RunLoop loop(false);
    return loop;
}

bool RunLoop::isCurrent() const {
    return impl_->isOwnedByCaller();
}

void RunLoop::runOnce() {
    impl_->requireOwner();
    impl_->runPass();
}

void RunLoop::waitForActivity(Clock::time_point until) {
    if (!impl_->hasPendingWork()) impl_->waitUntil(until);
}

void RunLoop::runUntil(Clock::time_point deadline) {
    impl_->requireOwner();
    for (;;) {
        impl_->runPass();
        if (Clock::now() >= deadline) return;
        waitForActivity(deadline);
    }
}

bool RunLoop::runUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout) {
    impl_->requireOwner();
    const auto deadline = saturatingAdd(Clock::now(), timeout);
    if (condition()) return true;
    for (;;) {
        impl_->runPass();
        if (condition()) return true;
        const auto now = Clock::now();
        if (now >= deadline) return false;
        waitForActivity(std::min(deadline, now + kConditionPollInterval));
    }
}

void RunLoop::perform(std::function<void()> work) {
    if (work) impl_->perform(std::move(work));
}

void RunLoop::addTimer(const TimerPtr& timer) {
    if (!timer) return;
    auto scheduled = std::make_shared<ScheduledTimer>(impl_->io(), timer);
    {
        std::lock_guard lock(timer->mutex_);
        if (!timer->valid_ || timer->scheduled_) return;
        timer->scheduled_ = true;
        // Cancelling the wait happens on the loop's thread, the only one that touches it.
        timer->unschedule_ = [loop = std::weak_ptr<Impl>(impl_),
                              weakScheduled = std::weak_ptr(scheduled)] {
            if (const auto impl = loop.lock()) {
                asio::post(impl->io(), [weakScheduled] {
                    if (const auto scheduled = weakScheduled.lock()) scheduled->wait.cancel();
                });
            }
        };
    }
    asio::post(impl_->io(),
               [scheduled, fireDate = timer->firstFireDate_] { arm(scheduled, fireDate); });
}

}  // namespace vn
