#include "vn/concurrency/VNTimerProxy.h"

namespace vn {

VNTimerProxy::VNTimerProxy(ObjectPtr target, double timeInterval, bool repeats)
    : target_(std::move(target)), timeInterval_(timeInterval), repeats_(repeats) {}

void VNTimerProxy::forwardInvocation(Message message) {
    if (!message) return;
    // The timer holds the target strongly, as a scheduled invocation retains its target.
    auto timer = Timer::scheduledTimer(timeInterval_, repeats_,
                                       [target = target_, message = std::move(message)](Timer&) {
                                           if (target) message(*target);
                                       });
    std::lock_guard lock(mutex_);
    timer_ = std::move(timer);  // the previous timer is forgotten, not invalidated
}

void VNTimerProxy::invalidate() {
    TimerPtr timer;
    {
        std::lock_guard lock(mutex_);
        timer = std::move(timer_);
    }
    if (timer) timer->invalidate();
}

}  // namespace vn
