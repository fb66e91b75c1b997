// VNTargetAction: a target held weakly together with the action to send it, handed to a
// repeating timer (or display link) in place of the real target, so that the timer does not
// keep the target alive. A typed callable stands for the selector.
//
// onTick() sends the action while the target lives; once the target is gone or invalidate()
// was called, every onTick() does nothing. Safe from any thread.
#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "vn/platform/Object.h"

namespace vn {

class VNTargetAction : public Object {
  public:
    using Action = std::function<void(Object& target)>;

    VNTargetAction(const ObjectPtr& target, Action selector);
    // An action that is a member function of the target's class.
    template <typename T>
    static std::shared_ptr<VNTargetAction> make(const std::shared_ptr<T>& target,
                                                void (T::*member)()) {
        return std::make_shared<VNTargetAction>(
            target, [member](Object& object) { (static_cast<T&>(object).*member)(); });
    }

    void onTick();
    // Forgets the target and the action.
    void invalidate();

  private:
    std::mutex mutex_;
    std::weak_ptr<Object> target_;
    std::shared_ptr<Action> selector_;
};

}  // namespace vn
