// vn::Operation: a unit of work with a life cycle (ready, executing, finished, cancelled),
// dependencies on other operations, and observers of its state changes: the platform's
// operation. Operations usually run on a vn::OperationQueue; start() runs one directly.
//
// Subclasses put their work in main(). An asynchronous operation (isAsynchronous() true)
// starts its work in main() and calls finish() when the work is done, from any thread; a
// synchronous one is finished when main() returns. A cancelled operation that is started
// finishes at once without calling main(); cancelling an executing operation only sets the
// flag (the work decides when to stop). An asynchronous operation that finish() ends while it
// is starting (from another thread) never becomes executing, and main() is not called.
//
// State changes are announced to observers of the keys "isExecuting", "isFinished" and
// "isCancelled": observers hear willChange before and didChange after each change,
// synchronously, on the thread that makes the change, with no lock held (they may call back
// into the operation). "isReady" changes are announced too, as willChange and didChange once
// the new readiness is in place.
//
// Operations are held by std::shared_ptr (dependencies and queues need it). Every member is
// safe from any thread. Operation conforms to VNCancelableOperation through its own cancel().
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "vn/concurrency/VNCancelableOperation.h"
#include "vn/platform/Object.h"

namespace vn {

class Operation;
using OperationPtr = std::shared_ptr<Operation>;

namespace concurrency_internal {
// What an operation tells the queue it belongs to.
class OperationOwner {
  public:
    virtual ~OperationOwner() = default;
    virtual void operationBecameReady(const OperationPtr& operation) = 0;
    // startedByQueue: whether the queue had started it (and counts it as running).
    virtual void operationFinished(const OperationPtr& operation, bool startedByQueue) = 0;
};
}  // namespace concurrency_internal

class Operation : public Object, public VNCancelableOperation {
  public:
    enum class KeyValueChange { willChange, didChange };
    using KeyObserver =
        std::function<void(Operation& operation, std::string_view key, KeyValueChange change)>;
    using ObserverToken = std::uint64_t;

    static constexpr std::string_view isExecutingKey = "isExecuting";
    static constexpr std::string_view isFinishedKey = "isFinished";
    static constexpr std::string_view isCancelledKey = "isCancelled";
    static constexpr std::string_view isReadyKey = "isReady";

    Operation() = default;
    ~Operation() override;

    // Runs the operation on the calling thread: finishes at once if cancelled, otherwise marks
    // it executing and calls main() (and, for a synchronous operation, finishes it afterwards).
    // Starting an operation that was started already, that is not ready (a dependency has not
    // finished) or that is in a queue throws an Exception named NSInvalidArgumentException.
    void start();
    // The work. The default does nothing.
    virtual void main();
    virtual bool isAsynchronous() const { return false; }
    bool isConcurrent() const { return isAsynchronous(); }

    // Sets the cancelled flag (once; later calls do nothing). A cancelled operation is ready
    // whatever its dependencies, so that its queue can finish it.
    void cancel() override;

    bool isCancelled() const;
    bool isExecuting() const;
    bool isFinished() const;
    // True when cancelled or when every dependency has finished.
    bool isReady() const;

    // This operation will not be ready before dependency has finished. Adding the same
    // operation twice, null, or the operation itself is ignored; dependencies added after the
    // operation started have no effect. Cycles are the caller's mistake (nothing runs).
    void addDependency(const OperationPtr& dependency);
    void removeDependency(const OperationPtr& dependency);
    std::vector<OperationPtr> dependencies() const;

    // Runs once, on the finishing thread, after the operation finished (observers of
    // "isFinished" have heard didChange) and before its queue counts it as done.
    void setCompletionBlock(std::function<void()> block);
    std::function<void()> completionBlock() const;

    // Blocks until the operation has finished.
    void waitUntilFinished();

    std::string name() const;
    void setName(std::string name);

    // Registers an observer of one key ("isExecuting", "isFinished", "isCancelled",
    // "isReady") or, with an empty key, of all of them. Returns a token for removeObserver().
    ObserverToken addObserver(std::string_view key, KeyObserver observer);
    void removeObserver(ObserverToken token);

  protected:
    // Ends an asynchronous operation: "isExecuting" becomes false and "isFinished" true.
    // Safe from any thread: when several threads call it at once, exactly one announces and
    // performs the change (each willChange followed by its didChange) and the others return
    // at once, possibly before the change is complete. Later calls do nothing. Synchronous
    // operations are finished by start().
    void finish();

    // Tells the observers of key of a change (synchronously, on the calling thread, with no
    // lock held). For subclasses whose own state changes must be announced like the base's.
    void announce(std::string_view key, KeyValueChange change);

  private:
    friend class OperationQueue;

    struct Dependency {
        OperationPtr operation;
        bool pending;  // counted in pendingDependencies_ until it finishes
    };
    struct Observer {
        ObserverToken token;
        std::string key;
        std::shared_ptr<KeyObserver> block;
    };

    bool isReadyLocked() const { return cancelled_ || pendingDependencies_ == 0; }
    bool isWaitingToStartLocked() const { return !started_ && !finished_; }
    void announceReadyChange();
    void run();
    // Claims the transition to finished for the caller; false when another call claimed it.
    [[nodiscard]] bool claimFinish(bool& wasExecuting);
    // Registers dependent to hear of this operation's end; false when it has ended already.
    bool registerDependent(const std::weak_ptr<Object>& dependent);
    void dependencyFinished(const Operation& dependency);
    // For OperationQueue.
    bool attach(std::shared_ptr<concurrency_internal::OperationOwner> owner);
    bool claimForQueue();
    void startFromQueue();

    mutable std::mutex mutex_;
    std::condition_variable finishedCondition_;
    bool cancelled_ = false;
    bool started_ = false;
    bool startedByQueue_ = false;
    bool executing_ = false;
    bool finishing_ = false;  // claimed by one finish(), set before its announcements
    bool finished_ = false;
    int pendingDependencies_ = 0;
    std::vector<Dependency> dependencies_;
    std::vector<std::weak_ptr<Object>> dependents_;
    std::function<void()> completionBlock_;
    std::string name_;
    std::shared_ptr<concurrency_internal::OperationOwner> owner_;

    mutable std::mutex observersMutex_;
    std::vector<Observer> observers_;
    ObserverToken nextObserverToken_ = 1;
};

// An operation that runs blocks, in the order they were added, on one thread.
class BlockOperation : public Operation {
  public:
    explicit BlockOperation(std::function<void()> block = nullptr);
    [[nodiscard]] static std::shared_ptr<BlockOperation> blockOperationWithBlock(
        std::function<void()> block) {
        return std::make_shared<BlockOperation>(std::move(block));
    }
    // Adding a block after the operation started throws an NSInvalidArgumentException.
    void addExecutionBlock(std::function<void()> block);
    std::vector<std::function<void()>> executionBlocks() const;
    void main() override;

  private:
    mutable std::mutex blocksMutex_;
    std::vector<std::function<void()>> blocks_;
};

}  // namespace vn
