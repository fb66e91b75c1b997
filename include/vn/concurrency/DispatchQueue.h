// vn::DispatchQueue: queues that run blocks of work, the library's counterpart of the
// platform's dispatch queues.
//
// Three kinds exist:
// - the main queue, a serial queue whose work runs only on the main thread, when the host
//   drives vn::RunLoop::main() (nothing runs it otherwise);
// - four global concurrent queues, one per platform priority (high 2, default 0, low -2,
//   background -32768). Each priority has a pool of worker threads of its own (made on first
//   use, growing while its workers wait), so high-priority work never queues behind other
//   priorities' backlog; the low and background pools run at a lower scheduling priority;
// - serial queues with a label, created by the caller, that run one block at a time, in the
//   order the blocks were submitted (per submitting thread; submissions from different
//   threads interleave in the order they reach the queue).
//
// Work must not throw: an exception escaping a block submitted with async() ends the process
// like any uncaught exception. sync() passes the block's exception on to its caller.
// Every member is safe from any thread.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "vn/platform/Executor.h"
#include "vn/platform/Object.h"
#include "vn/platform/Thread.h"

namespace vn {

// A point in time for dispatch time-outs, on the monotonic clock.
using DispatchTime = std::chrono::steady_clock::time_point;
// "Do not wait": a wait with this time-out only tests the state.
inline DispatchTime dispatchTimeNow() {
    return std::chrono::steady_clock::now();
}
// "Wait for ever".
inline constexpr DispatchTime DispatchTimeForever = DispatchTime::max();

// The outcome of a wait with a time-out.
enum class DispatchWaitResult { success, timedOut };

// The platform's global-queue priorities. Any other value selects the default queue.
inline constexpr long DISPATCH_QUEUE_PRIORITY_HIGH = 2;
inline constexpr long DISPATCH_QUEUE_PRIORITY_DEFAULT = 0;
inline constexpr long DISPATCH_QUEUE_PRIORITY_LOW = -2;
inline constexpr long DISPATCH_QUEUE_PRIORITY_BACKGROUND = -32768;

class DispatchGroup;
class DispatchQueue;
using DispatchQueuePtr = std::shared_ptr<DispatchQueue>;
using DispatchGroupPtr = std::shared_ptr<DispatchGroup>;

class DispatchQueue : public Object, public Executor {
  public:
    enum class Kind { main, global, serial };

    // The main queue (also usable as a vn::Executor for queued notification delivery).
    static const DispatchQueuePtr& main();
    // The global queue of a priority; unknown priorities give the default-priority queue.
    static const DispatchQueuePtr& global(long priority = DISPATCH_QUEUE_PRIORITY_DEFAULT);
    // A new serial queue. The queue stays alive while it has work pending.
    static DispatchQueuePtr serial(std::string label);

    // The queue whose work is running on the calling thread (the innermost one when sync()
    // calls nest); null on a thread that is not running queue work.
    static DispatchQueuePtr current();

    Kind kind() const { return kind_; }
    // "vn.main", "vn.global.high" / ".default" / ".low" / ".background", or the caller's
    // label for serial queues.
    const std::string& label() const { return label_; }
    // For global queues the priority they were selected by (normalised); 0 otherwise.
    long priority() const { return priority_; }
    // Whether the calling thread is running work of this queue (directly or through sync()).
    bool isCurrent() const;

    // Submits work and returns at once. A null block is ignored.
    virtual void async(std::function<void()> work) = 0;
    // Submits work as a member of group: the group is entered now and left after work ran.
    void async(const DispatchGroupPtr& group, std::function<void()> work);
    // Runs work on this queue and returns when it has run, passing on its exception.
    // Serial and global queues run the block on the calling thread (a serial queue first
    // waits until its earlier work is done); the main queue runs it on the main thread, so
    // the caller waits until the host pumps the main run loop.
    // sync() onto the main queue from the main thread, or onto a serial queue from work that
    // this queue is running, would deadlock on the platform; here it stops the process with a
    // fatal error instead.
    void sync(const std::function<void()>& work);
    // sync() for a block with a result, which is returned to the caller.
    template <typename F>
    requires(!std::is_void_v<std::invoke_result_t<F&>>) std::invoke_result_t<F&> sync(F&& body);
    // Submits work once deadline has passed (at once when it has passed already).
    void after(DispatchTime deadline, std::function<void()> work);
    template <typename Rep, typename Period>
    void after(std::chrono::duration<Rep, Period> delay, std::function<void()> work) {
        after(std::chrono::steady_clock::now() +
                  std::chrono::duration_cast<std::chrono::steady_clock::duration>(delay),
              std::move(work));
    }

    // vn::Executor: same as async().
    void execute(std::function<void()> block) override { async(std::move(block)); }

    // On the main thread runs work inline; elsewhere submits it asynchronously to the main queue.
    static void vnOnMain(std::function<void()> work);
    // On the main thread runs body inline; elsewhere runs it through the main queue's sync().
    // Returns body's result and passes on its exception.
    template <typename F>
    static std::invoke_result_t<F&> vnSyncOnMain(F&& body);

    std::string description() const override;

  protected:
    DispatchQueue(Kind kind, std::string label, long priority);
    // Runs work on this queue for sync(); the caller has already checked for deadlocks.
    virtual void syncInvoke(const std::function<void()>& work) = 0;

  private:
    Kind kind_;
    std::string label_;
    long priority_;
};

template <typename F>
requires(!std::is_void_v<std::invoke_result_t<F&>>) std::invoke_result_t<F&> DispatchQueue::sync(
    F&& body) {
    using Result = std::invoke_result_t<F&>;
    static_assert(!std::is_reference_v<Result>, "sync() returns results by value");
    std::optional<Result> result;
    sync([&] { result.emplace(body()); });
    return std::move(*result);
}

template <typename F>
std::invoke_result_t<F&> DispatchQueue::vnSyncOnMain(F&& body) {
    if (Thread::isMainThread()) return body();
    if constexpr (std::is_void_v<std::invoke_result_t<F&>>) {
        main()->sync(std::function<void()>(std::ref(body)));
    } else {
        return main()->sync(body);
    }
}

}  // namespace vn
