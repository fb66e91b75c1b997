// vn::Executor: anything that can run a block later (a dispatch queue, an operation queue).
// Platform services that deliver work "on a queue" take one, so they need not know the
// concurrency area's types.
//
// Contract for every implementation: execute() may be called from any thread, also from a
// block the executor is running, and returns without waiting for the block. Each block runs
// at most once: it may never run when the executor drops it (an operation queue whose
// operations are cancelled, a main queue whose run loop is never driven); it is destroyed
// either way. Whether blocks run one at a time, and in which order, is the executor's own: a
// serial queue or the main queue runs them one after the other in submission order, a global
// queue may run several at once on different threads, so a block handed to an unknown
// executor must be safe to run concurrently with others.
#pragma once

#include <functional>
#include <memory>

namespace vn {

class Executor {
  public:
    virtual ~Executor() = default;
    // Runs block once, asynchronously, in the executor's context (see above).
    virtual void execute(std::function<void()> block) = 0;
};

using ExecutorPtr = std::shared_ptr<Executor>;

}  // namespace vn
