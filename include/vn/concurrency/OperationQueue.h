// vn::OperationQueue: runs operations when they are ready, at most
// maxConcurrentOperationCount at a time, on an underlying dispatch queue (by default the
// default-priority global queue; the main operation queue uses the main queue).
//
// Ready operations start in the order they became ready (for independent operations: the
// order they were added). A queue keeps itself and its operations alive until they have
// finished, even when its owner lets go of it. OperationQueue is also a vn::Executor:
// execute() adds a block operation. Every member is safe from any thread.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vn/concurrency/DispatchQueue.h"
#include "vn/concurrency/Operation.h"
#include "vn/platform/Executor.h"
#include "vn/platform/Object.h"

namespace vn {

class OperationQueue;
using OperationQueuePtr = std::shared_ptr<OperationQueue>;

class OperationQueue : public Object, public Executor {
  public:
    // The platform's "let the system decide" count: as many as the worker pool allows.
    static constexpr long defaultMaxConcurrentOperationCount = -1;

    OperationQueue();
    ~OperationQueue() override;

    // The queue that runs operations on the main thread, one at a time (when the host pumps
    // the main run loop). Never destroyed.
    static const OperationQueuePtr& mainQueue();

    // Adds an operation. Adding one that is already in a queue, executing or finished throws
    // an Exception named NSInvalidArgumentException. Null is ignored.
    void addOperation(const OperationPtr& operation);
    void addOperations(const std::vector<OperationPtr>& operations, bool waitUntilFinished);
    void addOperationWithBlock(std::function<void()> block);
    void execute(std::function<void()> block) override { addOperationWithBlock(std::move(block)); }

    // The operations added and not yet finished, in the order they were added.
    std::vector<OperationPtr> operations() const;
    std::size_t operationCount() const;

    // Negative values mean defaultMaxConcurrentOperationCount; 0 starts nothing.
    long maxConcurrentOperationCount() const;
    void setMaxConcurrentOperationCount(long count);

    // A suspended queue starts no further operations (running ones go on).
    bool isSuspended() const;
    void setSuspended(bool suspended);

    // Cancels every operation in the queue; they finish as they are reached.
    void cancelAllOperations();
    // Blocks until the queue has no operation left.
    void waitUntilAllOperationsAreFinished();

    // The dispatch queue that runs the operations. Null restores the default.
    DispatchQueuePtr underlyingQueue() const;
    void setUnderlyingQueue(DispatchQueuePtr queue);

    std::string name() const;
    void setName(std::string name);

    class Core;

  private:
    std::shared_ptr<Core> core_;
};

}  // namespace vn
