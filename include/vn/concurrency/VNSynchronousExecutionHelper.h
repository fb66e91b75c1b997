// VNSynchronousExecutionHelper: lets a background thread start work on the main queue and
// then block until that work declares itself finished (signal()) or is cancelled, using one
// counting semaphore as a reusable gate.
//
// The gate: start (any variant) closes it; signal() or cancel() opens it; wait() and
// executeWaitingBlock() block until it is open and leave it open for later waiters. A helper
// is meant to be started again only after its previous cycle ended: a start while the
// previous cycle is still closed blocks until that cycle is signalled or cancelled. Extra
// signals accumulate (a later start then leaves the gate open). There are no time-outs.
//
// Meant for two sides: the waiting thread (start, then wait or executeWaitingBlock) and the
// main-thread work (signal), plus any thread that cancels. Using signal(), wait() or
// executeWaitingBlock() before the first start is a programming error: fatal error.
#pragma once

#include <atomic>
#include <functional>

#include "vn/concurrency/DispatchSemaphore.h"
#include "vn/platform/Object.h"

namespace vn {

class VNSynchronousExecutionHelper : public Object {
  public:
    VNSynchronousExecutionHelper() = default;

    // Arms the gate: clears the cancelled flag, then closes the gate (the first start makes
    // the semaphore; later ones take one count from it, waiting if there is none).
    void start();
    // Arms the gate, then submits block (if any) to the main queue: asynchronously when async
    // is true, otherwise through the main queue's sync(), returning after block ran. The
    // synchronous form must not be called on the main thread: it would deadlock, and here
    // stops the process with a fatal error instead.
    void startWithBlock(std::function<void()> block, bool async);
    void start(std::function<void()> block, bool async) { startWithBlock(std::move(block), async); }
    void startWithAsyncBlock(std::function<void()> block) {
        startWithBlock(std::move(block), true);
    }
    void startWithSyncBlock(std::function<void()> block) {
        startWithBlock(std::move(block), false);
    }

    // Opens the gate: one semaphore signal.
    void signal();
    // Blocks until the gate is open, and leaves it open.
    void wait();
    // Blocks until the gate is open; then runs block on the calling thread unless the cycle
    // was cancelled; leaves the gate open.
    void executeWaitingBlock(const std::function<void()>& block);
    // Before any start: does nothing at all. Otherwise marks the cycle cancelled and opens the
    // gate once.
    void cancel();

    bool isCanceled() const { return isCanceled_.load(std::memory_order_acquire); }

  private:
    void requireStarted() const;

    DispatchSemaphore dSemaphore_{0};
    std::atomic<bool> hasSemaphore_{false};  // the semaphore counts as made by the first start
    std::atomic<bool> isCanceled_{false};
};

}  // namespace vn
