// Things that can be cancelled, behind one handle: VNCancelableOperation is the interface
// (the platform's operations and session tasks conform to it: see vn::Operation), and
// VNCancelableOperationBase with its three subclasses covers groups of such things, a
// replaceable inner step of a multi-step job, and an arbitrary cancel block.
//
// cancel() on a VNCancelableOperationBase runs the subclass's performCancel() at most once.
// The classes take no lock: the cancelled flag and the run-once guard are single-byte atomics
// with relaxed ordering (no read-modify-write), so an object should be cancelled from one
// thread at a time; two simultaneous cancel() calls may both run performCancel(). Children,
// the inner operation and the cancel block are cancelled or called on the calling thread.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

#include "vn/platform/Object.h"

namespace vn {

class VNCancelableOperation {
  public:
    virtual ~VNCancelableOperation() = default;
    virtual void cancel() = 0;
};

using VNCancelableOperationPtr = std::shared_ptr<VNCancelableOperation>;

// The abstract base with a run-once cancellation. Subclasses override performCancel(); they
// never override cancel().
class VNCancelableOperationBase : public Object, public VNCancelableOperation {
  public:
    VNCancelableOperationBase() = default;

    bool isCancelled() const { return cancelled_.load(std::memory_order_relaxed); }

    // If cancellation has run already, does nothing. Otherwise sets the cancelled flag, calls
    // performCancel(), and only then marks cancellation as run: a cancel() of the same object
    // from inside its own performCancel() therefore runs performCancel() again.
    void cancel() final;

    // The subclass hook. This base version stops the process with the fatal error
    // "performCancel must be overridden in a subclass.".
    virtual void performCancel();

  private:
    std::atomic<bool> cancelled_{false};
    std::atomic<bool> performCancelOnce_{false};  // true once performCancel() has returned
};

// Cancels a fixed list of children, in list order. There is no default constructor.
class VNCancelableOperationComposite : public VNCancelableOperationBase {
  public:
    explicit VNCancelableOperationComposite(std::vector<VNCancelableOperationPtr> childOperations);

    const std::vector<VNCancelableOperationPtr>& childOperations() const {
        return childOperations_;
    }
    // Sends cancel() to every child in order; null entries are skipped.
    void performCancel() override;

  private:
    const std::vector<VNCancelableOperationPtr> childOperations_;
};

// Stands for the step of a multi-step job that is current now. There is no default
// constructor, and the inner operation is never null (a null one is a fatal error).
// Not synchronised: set and cancel it from one thread.
class VNCancelableOperationWrapper : public VNCancelableOperationBase {
  public:
    explicit VNCancelableOperationWrapper(VNCancelableOperationPtr innerOperation);

    const VNCancelableOperationPtr& innerOperation() const { return innerOperation_; }
    // Stores the new inner operation; if it is not the very object held before (identity,
    // not equality), the previous one is cancelled at once. The wrapper's own cancelled state
    // is not consulted: a cancelled wrapper takes a new inner operation and leaves it running.
    void setInnerOperation(VNCancelableOperationPtr innerOperation);
    // Cancels the current inner operation.
    void performCancel() override;

  private:
    VNCancelableOperationPtr innerOperation_;
};

// Calls a block when cancelled. A null block makes cancellation only set the flag. The block
// is kept after it was called.
class VNCancelableOperationWithBlock : public VNCancelableOperationBase {
  public:
    explicit VNCancelableOperationWithBlock(std::function<void()> cancelblock = nullptr);

    const std::function<void()>& cancelblock() const { return cancelblock_; }
    void performCancel() override;

  private:
    const std::function<void()> cancelblock_;
};

}  // namespace vn
