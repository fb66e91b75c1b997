// vn::RunLoop: a thread's loop of queued work and timers.
//
// Every thread has one, made on first use (RunLoop::current()). Nothing runs a loop by
// itself: its thread runs it with runOnce() or runUntil(). The main run loop belongs to the
// main thread and is driven by the host application; it is what runs the main queue's work
// (vn::DispatchQueue::main(), vn_dispatch_on_main_queue()). Tests that wait for main-queue
// work pump it with runUntil(condition, timeout).
//
// perform() and addTimer() are safe from any thread; running the loop is reserved to its own
// thread (for the main loop: the thread for which vn::Thread::isMainThread() is true), and
// calling runOnce()/runUntil() elsewhere is a fatal error. Runs may nest: work running inside
// a pass may run the loop again.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace vn {

class Timer;

class RunLoop {
  public:
    // The main thread's loop (never destroyed).
    static RunLoop& main();
    // The calling thread's loop: the main loop on the main thread, otherwise one made for the
    // thread on first use and destroyed with it.
    static RunLoop& current();

    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;
    ~RunLoop();

    // One pass: fires the timers that are due, then runs the work that was queued when the
    // pass began (work queued by that work waits for the next pass). Never blocks.
    void runOnce();
    // Runs passes, waiting for work and timers in between, until deadline.
    void runUntil(std::chrono::steady_clock::time_point deadline);
    // Runs passes until condition() holds or timeout has passed; returns whether it holds.
    // condition is evaluated before the first pass, after every pass, and at least every few
    // milliseconds while waiting, so it may also watch state that other threads change.
    bool runUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout);

    // Queues work to run in a later pass of this loop, after the work queued before it.
    // A null block is ignored. Work must not throw (an escaping exception ends the process).
    void perform(std::function<void()> work);
    // Schedules timer on this loop; it fires during passes once its fire date has come. A
    // timer that is invalid, or already scheduled on a loop, is left alone.
    void addTimer(const std::shared_ptr<Timer>& timer);

    // Whether the calling thread is this loop's thread.
    bool isCurrent() const;

    class Impl;

  private:
    explicit RunLoop(bool isMain);
    void waitForActivity(std::chrono::steady_clock::time_point until);

    std::shared_ptr<Impl> impl_;
};

}  // namespace vn
