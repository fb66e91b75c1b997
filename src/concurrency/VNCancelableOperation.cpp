#include "vn/concurrency/VNCancelableOperation.h"

#include <utility>

#include "vn/platform/FatalError.h"

namespace vn {

void VNCancelableOperationBase::cancel() {
    if (performCancelOnce_.load(std::memory_order_relaxed)) return;
    cancelled_.store(true, std::memory_order_relaxed);
    performCancel();
    performCancelOnce_.store(true, std::memory_order_relaxed);
}

void VNCancelableOperationBase::performCancel() {
    fatalError("performCancel must be overridden in a subclass.");
}

VNCancelableOperationComposite::VNCancelableOperationComposite(
    std::vector<VNCancelableOperationPtr> childOperations)
    : childOperations_(std::move(childOperations)) {}

void VNCancelableOperationComposite::performCancel() {
    for (const auto& child : childOperations_) {
        if (child) child->cancel();
    }
}

VNCancelableOperationWrapper::VNCancelableOperationWrapper(VNCancelableOperationPtr innerOperation)
    : innerOperation_(std::move(innerOperation)) {
    if (!innerOperation_) fatalError("VNCancelableOperationWrapper needs an inner operation");
}

void VNCancelableOperationWrapper::setInnerOperation(VNCancelableOperationPtr innerOperation) {
    if (!innerOperation) fatalError("VNCancelableOperationWrapper needs an inner operation");
    VNCancelableOperationPtr previous = std::exchange(innerOperation_, std::move(innerOperation));
    if (previous != innerOperation_) previous->cancel();
}

void VNCancelableOperationWrapper::performCancel() {
    innerOperation_->cancel();
}

VNCancelableOperationWithBlock::VNCancelableOperationWithBlock(std::function<void()> cancelblock)
    : cancelblock_(std::move(cancelblock)) {}

void VNCancelableOperationWithBlock::performCancel() {
    if (cancelblock_) cancelblock_();
}

}  // namespace vn
