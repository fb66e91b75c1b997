#include "vn/concurrency/VNTargetAction.h"

namespace vn {

VNTargetAction::VNTargetAction(const ObjectPtr& target, Action selector)
    : target_(target),
      selector_(selector ? std::make_shared<Action>(std::move(selector)) : nullptr) {}

void VNTargetAction::onTick() {
    ObjectPtr target;
    std::shared_ptr<Action> selector;
    {
        std::lock_guard lock(mutex_);
        target = target_.lock();
        selector = selector_;
    }
    if (target && selector) (*selector)(*target);
}

void VNTargetAction::invalidate() {
    std::shared_ptr<Action> released;  // destroyed outside the lock
    std::lock_guard lock(mutex_);
    target_.reset();
    released = std::move(selector_);
}

}  // namespace vn
