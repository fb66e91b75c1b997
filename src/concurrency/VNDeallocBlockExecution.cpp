#include "vn/concurrency/VNDeallocBlockExecution.h"

#include <utility>

namespace vn {

VNDeallocBlockExecution::VNDeallocBlockExecution(Callback callbackBlock)
    : callbackBlock_(std::move(callbackBlock)) {}

VNDeallocBlockExecution::~VNDeallocBlockExecution() {
    const Callback callback = callbackBlock();
    if (callback) {
        callback();
        setCallbackBlock(nullptr);
    }
}

VNDeallocBlockExecution::Callback VNDeallocBlockExecution::callbackBlock() const {
    std::lock_guard lock(mutex_);
    return callbackBlock_;
}

void VNDeallocBlockExecution::setCallbackBlock(Callback callbackBlock) {
    Callback previous;  // destroyed outside the lock
    std::lock_guard lock(mutex_);
    previous = std::exchange(callbackBlock_, std::move(callbackBlock));
}

}  // namespace vn
