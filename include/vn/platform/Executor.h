// vn::Executor: anything that can run a block later (a dispatch queue, an operation queue).
// Platform services that deliver work "on a queue" take one, so they need not know the
// concurrency area's types.
#pragma once

#include <functional>
#include <memory>

namespace vn {

class Executor {
public:
    virtual ~Executor() = default;
    // Runs block once, asynchronously, in the executor's context.
    virtual void execute(std::function<void()> block) = 0;
};

using ExecutorPtr = std::shared_ptr<Executor>;

}  // namespace vn
