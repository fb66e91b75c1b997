// VNRecoveryAttempter: the object an error carries under NSRecoveryAttempterErrorKey to offer
// recovery options (the permission-denied error's "Settings" option). The recovery itself is
// a pair of replaceable blocks; without them the attempter recovers nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>

#include "vn/platform/Error.h"
#include "vn/platform/Object.h"

namespace vn {

class VNRecoveryAttempter final : public Object {
  public:
    // Tries the recovery option at optionIndex of error's options; true when it succeeded.
    using AttemptRecoverBlock =
        std::function<bool(const ErrorPtr& error, std::int64_t optionIndex)>;
    // Stands for a "did recover" selector sent to a delegate: called with the delegate, whether
    // recovery succeeded, and the context argument.
    using DidRecoverSelector =
        std::function<void(const ObjectPtr& delegate, bool didRecover, void* contextInfo)>;
    // The asynchronous form: receives everything the five-argument attemptRecoveryFromError
    // received and reports through the selector when it is done. Its result is ignored.
    using AsyncAttemptRecoverBlock = std::function<bool(
        const ErrorPtr& error, std::int64_t optionIndex, const ObjectPtr& delegate,
        const DidRecoverSelector& didRecoverSelector, void* contextInfo)>;

    // Both blocks are empty after construction. The accessors are safe from any thread.
    AttemptRecoverBlock attemptRecoverBlock() const;
    void setAttemptRecoverBlock(AttemptRecoverBlock block);
    AsyncAttemptRecoverBlock asyncAttemptRecoverBlock() const;
    void setAsyncAttemptRecoverBlock(AsyncAttemptRecoverBlock block);

    // The synchronous recovery: attemptRecoverBlock's answer, false when there is none.
    bool attemptRecoveryFromError(const ErrorPtr& error, std::int64_t optionIndex) const;

    // The delegate form. With an asyncAttemptRecoverBlock it hands all five arguments to it and
    // does nothing else. Without one, when both delegate and didRecoverSelector are present, it
    // reports "not recovered": didRecoverSelector(delegate, false, argument), where argument is
    // null when contextInfo is null and otherwise the pointer stored at contextInfo, which is
    // read as the buffer holding the argument (so pass the address of a void* variable).
    // Otherwise nothing happens. attemptRecoverBlock is never consulted here.
    void attemptRecoveryFromError(const ErrorPtr& error, std::int64_t optionIndex,
                                  const ObjectPtr& delegate,
                                  const DidRecoverSelector& didRecoverSelector,
                                  void* contextInfo) const;

  private:
    mutable std::mutex mutex_;
    AttemptRecoverBlock attemptRecoverBlock_;
    AsyncAttemptRecoverBlock asyncAttemptRecoverBlock_;
};

}  // namespace vn
