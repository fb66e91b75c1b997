#include "vn/errors/VNRecoveryAttempter.h"

#include <cstring>

namespace vn {

VNRecoveryAttempter::AttemptRecoverBlock VNRecoveryAttempter::attemptRecoverBlock() const {
    std::lock_guard lock(mutex_);
    return attemptRecoverBlock_;
}

void VNRecoveryAttempter::setAttemptRecoverBlock(AttemptRecoverBlock block) {
    std::lock_guard lock(mutex_);
    std::swap(attemptRecoverBlock_, block);
}

VNRecoveryAttempter::AsyncAttemptRecoverBlock VNRecoveryAttempter::asyncAttemptRecoverBlock()
    const {
    std::lock_guard lock(mutex_);
    return asyncAttemptRecoverBlock_;
}

void VNRecoveryAttempter::setAsyncAttemptRecoverBlock(AsyncAttemptRecoverBlock block) {
    std::lock_guard lock(mutex_);
    std::swap(asyncAttemptRecoverBlock_, block);
}

bool VNRecoveryAttempter::attemptRecoveryFromError(const ErrorPtr& error,
                                                   std::int64_t optionIndex) const {
    const AttemptRecoverBlock block = attemptRecoverBlock();
    return block ? block(error, optionIndex) : false;
}

void VNRecoveryAttempter::attemptRecoveryFromError(const ErrorPtr& error, std::int64_t optionIndex,
                                                   const ObjectPtr& delegate,
                                                   const DidRecoverSelector& didRecoverSelector,
                                                   void* contextInfo) const {
    if (const AsyncAttemptRecoverBlock block = asyncAttemptRecoverBlock()) {
        block(error, optionIndex, delegate, didRecoverSelector, contextInfo);
        return;
    }
    if (!delegate || !didRecoverSelector) return;
    // The context is the buffer the argument is read from, as the platform's invocation reads
    // an argument it is handed; callers rely on this.
    void* argument = nullptr;
    if (contextInfo) std::memcpy(&argument, contextInfo, sizeof argument);
    didRecoverSelector(delegate, false, argument);
}

}  // namespace vn
