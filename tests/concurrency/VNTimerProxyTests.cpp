#include "vn/concurrency/VNTimerProxy.h"

#include <gtest/gtest.h>

#include <thread>

#include "vn/concurrency/RunLoop.h"

namespace vn {
namespace {

using namespace std::chrono_literals;

class Counter : public Object {
  public:
    int first = 0;
    int second = 0;
};

// Runs on a thread of its own, whose run loop (and with it the timer left running) ends with
// the thread.
TEST(VNTimerProxy, ASecondMessageLeavesTheFirstTimerRunningAndInvalidateStopsOnlyTheNewest) {
    std::thread([] {
        auto counter = std::make_shared<Counter>();
        const auto proxy = VNTimerProxy::scheduledTimerProxyWithTarget(counter, 0.001, true);
        std::weak_ptr<Counter> watch = counter;
        counter.reset();
        ASSERT_FALSE(watch.expired()) << "the proxy keeps its target alive";
        Counter& count = *watch.lock();
        RunLoop& loop = RunLoop::current();
        EXPECT_FALSE(loop.runUntil([&] { return count.first + count.second > 0; }, 5ms))
            << "nothing is scheduled before a message is forwarded";

        proxy->forwardInvocation([](Object& target) { ++static_cast<Counter&>(target).first; });
        proxy->forwardInvocation([](Object& target) { ++static_cast<Counter&>(target).second; });
        ASSERT_TRUE(loop.runUntil([&] { return count.first >= 2 && count.second >= 2; }, 30s));
        proxy->invalidate();
        const int secondWhenInvalidated = count.second;
        const int firstWhenInvalidated = count.first;
        ASSERT_TRUE(loop.runUntil([&] { return count.first >= firstWhenInvalidated + 3; }, 30s))
            << "the first timer keeps running";
        EXPECT_EQ(count.second, secondWhenInvalidated);
    }).join();
}

}  // namespace
}  // namespace vn
