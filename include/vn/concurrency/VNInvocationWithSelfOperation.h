// VNInvocationWithSelfOperation: an operation that, when run, performs a selector on a target
// with the operation itself as the one argument, so the performed method can read the
// operation's context and leave a result.
//
// A selector here is a typed callable together with the test of whether a target responds to
// it: Selector::method(&T::m) is understood by targets of class T (or a subclass); the empty
// Selector is understood by no target. A target that does not respond makes main() do
// nothing. There is no default constructor.
//
// hasReturnValue, result and context are safe to use from any thread.
#pragma once

#include <functional>
#include <mutex>
#include <utility>

#include "vn/concurrency/Operation.h"
#include "vn/platform/Object.h"
#include "vn/platform/Value.h"

namespace vn {

class VNInvocationWithSelfOperation : public Operation {
  public:
    class Selector {
      public:
        using RespondsTo = std::function<bool(const Object& target)>;
        using Perform =
            std::function<ObjectPtr(Object& target, VNInvocationWithSelfOperation& operation)>;

        // Understood by no target.
        Selector() = default;
        Selector(RespondsTo respondsTo, Perform perform)
            : respondsTo_(std::move(respondsTo)), perform_(std::move(perform)) {}

        // A method of T that returns an object (its return value) or nothing (a null result).
        template <typename T>
        static Selector method(ObjectPtr (T::*member)(VNInvocationWithSelfOperation&)) {
            return Selector(
                [](const Object& target) { return dynamic_cast<const T*>(&target) != nullptr; },
                [member](Object& target, VNInvocationWithSelfOperation& operation) {
                    return (dynamic_cast<T&>(target).*member)(operation);
                });
        }
        template <typename T>
        static Selector method(void (T::*member)(VNInvocationWithSelfOperation&)) {
            return Selector(
                [](const Object& target) { return dynamic_cast<const T*>(&target) != nullptr; },
                [member](Object& target, VNInvocationWithSelfOperation& operation) {
                    (dynamic_cast<T&>(target).*member)(operation);
                    return ObjectPtr();
                });
        }

        bool respondsTo(const Object* target) const {
            return target && respondsTo_ && perform_ && respondsTo_(*target);
        }
        ObjectPtr perform(Object& target, VNInvocationWithSelfOperation& operation) const {
            return perform_(target, operation);
        }

      private:
        RespondsTo respondsTo_;
        Perform perform_;
    };

    // target: held strongly, may be null (then nothing responds).
    VNInvocationWithSelfOperation(ObjectPtr target, Selector sel);

    const ObjectPtr& target() const { return target_; }
    const Selector& sel() const { return sel_; }

    // Whether main() stores the performed method's return value into result. Initially false;
    // storing a result that differs from the previous one sets it back to false.
    bool hasReturnValue() const;
    void setHasReturnValue(bool hasReturnValue);

    // Stores result; if it is not the very object held before (two nulls count as the same),
    // hasReturnValue becomes false.
    ObjectPtr result() const;
    void setResult(ObjectPtr result);

    // Any value the creator wants the performed method to see. Initially nil.
    Value context() const;
    void setContext(Value context);

    // If cancelled, or if the target does not respond to the selector, returns at once.
    // Otherwise reads hasReturnValue, performs the selector with this operation as its
    // argument, and, if hasReturnValue was true, stores the returned object with setResult().
    void main() override;

  private:
    const ObjectPtr target_;
    const Selector sel_;
    mutable std::mutex fieldsMutex_;
    bool hasReturnValue_ = false;
    ObjectPtr result_;
    Value context_;
};

}  // namespace vn
