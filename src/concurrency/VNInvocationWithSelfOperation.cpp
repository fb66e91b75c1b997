#include "vn/concurrency/VNInvocationWithSelfOperation.h"

#include <utility>

namespace vn {

VNInvocationWithSelfOperation::VNInvocationWithSelfOperation(ObjectPtr target, Selector sel)
    : target_(std::move(target)), sel_(std::move(sel)) {}

bool VNInvocationWithSelfOperation::hasReturnValue() const {
    std::lock_guard lock(fieldsMutex_);
    return hasReturnValue_;
}

void VNInvocationWithSelfOperation::setHasReturnValue(bool hasReturnValue) {
    std::lock_guard lock(fieldsMutex_);
    hasReturnValue_ = hasReturnValue;
}

ObjectPtr VNInvocationWithSelfOperation::result() const {
    std::lock_guard lock(fieldsMutex_);
    return result_;
}

void VNInvocationWithSelfOperation::setResult(ObjectPtr result) {
    ObjectPtr previous;  // released outside the lock
    std::lock_guard lock(fieldsMutex_);
    if (result != result_) hasReturnValue_ = false;
    previous = std::exchange(result_, std::move(result));
}

Value VNInvocationWithSelfOperation::context() const {
    std::lock_guard lock(fieldsMutex_);
    return context_;
}

void VNInvocationWithSelfOperation::setContext(Value context) {
    std::lock_guard lock(fieldsMutex_);
    context_ = std::move(context);
}

void VNInvocationWithSelfOperation::main() {
    if (isCancelled()) return;
    if (!sel_.respondsTo(target_.get())) return;
    const bool storeReturnValue = hasReturnValue();
    ObjectPtr returned = sel_.perform(*target_, *this);
    if (storeReturnValue) setResult(std::move(returned));
}

}  // namespace vn
