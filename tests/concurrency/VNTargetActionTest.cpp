#include "vn/concurrency/VNTargetAction.h"

#include <gtest/gtest.h>

#include "vn/concurrency/RunLoop.h"
#include "vn/concurrency/Timer.h"

namespace vn {
namespace {

using namespace std::chrono_literals;

class Ticking : public Object {
  public:
    int ticks = 0;
    void tick() { ++ticks; }
};

TEST(VNTargetAction, LetsARepeatingTimerDriveATargetWithoutOwningIt) {
    auto target = std::make_shared<Ticking>();
    const auto action = VNTargetAction::make(target, &Ticking::tick);
    const auto timer = Timer::scheduledTimer(0.001, true, [action](Timer&) { action->onTick(); });
    ASSERT_TRUE(RunLoop::main().runUntil([&] { return target->ticks >= 3; }, 30s));
    std::weak_ptr<Ticking> watch = target;
    target.reset();
    EXPECT_TRUE(watch.expired()) << "neither the action nor the timer kept the target alive";
    action->onTick();  // the target is gone: nothing happens
    timer->invalidate();
}

TEST(VNTargetAction, DoesNothingOnceInvalidated) {
    auto target = std::make_shared<Ticking>();
    VNTargetAction action(target, [](Object& object) { static_cast<Ticking&>(object).tick(); });
    action.onTick();
    action.invalidate();
    action.onTick();
    EXPECT_EQ(target->ticks, 1);
}

}  // namespace
}  // namespace vn
