// vn::Timer: a block fired by a run loop after an interval, once or repeatedly (the
// platform's timer).
//
// A repeating timer is rescheduled from its planned fire date, not from the moment it
// actually fired; fire dates that passed while the loop was not running are skipped, so a
// late timer fires once, not once per missed interval. Intervals below 0.1 ms count as 0.1 ms.
// invalidate() may be called from any thread; the block runs on the loop's thread and must not
// throw when the loop fires it (an escaping exception ends the process).
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>

#include "vn/platform/Object.h"

namespace vn {

class Timer;
using TimerPtr = std::shared_ptr<Timer>;

class Timer : public Object {
  public:
    using Block = std::function<void(Timer& timer)>;

    // An unscheduled timer whose first fire date is interval seconds from now; schedule it
    // with RunLoop::addTimer().
    Timer(double interval, bool repeats, Block block);
    // Makes a timer and schedules it on the calling thread's run loop.
    static TimerPtr scheduledTimer(double interval, bool repeats, Block block);

    // Runs the block now, on the calling thread, if the timer is valid. A non-repeating timer
    // is invalidated afterwards; a repeating one keeps its schedule.
    void fire();
    // Stops the timer for good and releases its block (after a firing in progress ends).
    void invalidate();
    bool isValid() const;

    double timeInterval() const { return interval_; }
    bool repeats() const { return repeats_; }
    std::chrono::steady_clock::time_point fireDate() const { return firstFireDate_; }

  private:
    friend class RunLoop;

    const double interval_;
    const bool repeats_;
    const std::chrono::steady_clock::time_point firstFireDate_;
    mutable std::mutex mutex_;
    std::shared_ptr<Block> block_;
    bool valid_ = true;
    bool scheduled_ = false;
    std::function<void()> unschedule_;
};

}  // namespace vn
