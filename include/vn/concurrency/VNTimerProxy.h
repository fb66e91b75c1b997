// VNTimerProxy: turns a message sent once into a timer that sends it repeatedly (or once) to
// a target, at a fixed interval, on the run loop of the thread that sent it.
//
// The message is given explicitly: forwardInvocation(message) schedules a vn::Timer on the
// calling thread's run loop with the proxy's interval and repeat flag; the timer sends the
// message to the target. Each call makes a new timer and forgets the previous one without
// stopping it, so after two calls both timers run and invalidate() stops only the second.
// The proxy keeps its target alive (and each timer does, until invalidated).
// Safe from any thread.
#pragma once

#include <concepts>
#include <functional>
#include <memory>
#include <mutex>

#include "vn/concurrency/Timer.h"
#include "vn/platform/Object.h"

namespace vn {

class VNTimerProxy : public Object {
  public:
    using Message = std::function<void(Object& target)>;

    // Stores the target, interval (seconds) and repeat flag; schedules nothing.
    VNTimerProxy(ObjectPtr target, double timeInterval, bool repeats);
    // Despite its name schedules nothing either: a new proxy of class Proxy, VNTimerProxy unless
    // named, so that a subclass gets an instance of itself:
    // MyProxy::scheduledTimerProxyWithTarget<MyProxy>(target, 0.5, true). Proxy must derive
    // from VNTimerProxy and take the same three constructor arguments.
    template <typename Proxy = VNTimerProxy>
    requires std::derived_from<Proxy, VNTimerProxy> &&
        std::constructible_from<Proxy, ObjectPtr, double, bool>
    [[nodiscard]] static std::shared_ptr<Proxy> scheduledTimerProxyWithTarget(ObjectPtr target,
                                                                              double timeInterval,
                                                                              bool repeats) {
        return std::make_shared<Proxy>(std::move(target), timeInterval, repeats);
    }

    // Schedules a timer that sends message to the target (see above). A null message is
    // ignored.
    void forwardInvocation(Message message);
    // Invalidates the most recent timer, if any, and forgets it.
    void invalidate();

    const ObjectPtr& target() const { return target_; }

  private:
    const ObjectPtr target_;
    const double timeInterval_;
    const bool repeats_;
    std::mutex mutex_;
    TimerPtr timer_;
};

}  // namespace vn
