#include "vn/concurrency/VNTimerProxy.h"

#include <gtest/gtest.h>

#include <thread>
#include <type_traits>

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

// A subclass that counts the messages it forwards.
class CountingTimerProxy : public VNTimerProxy {
  public:
    using VNTimerProxy::VNTimerProxy;
    void forwardCounted(Message message) {
        ++forwarded;
        forwardInvocation(std::move(message));
    }
    int forwarded = 0;
};

TEST(VNTimerProxy, TheFactoryMakesAnInstanceOfTheClassItIsAskedFor) {
    static_assert(
        std::is_same_v<decltype(VNTimerProxy::scheduledTimerProxyWithTarget(nullptr, 1, false)),
                       std::shared_ptr<VNTimerProxy>>,
        "the base class by default");
    std::thread([] {
        auto counter = std::make_shared<Counter>();
        const std::shared_ptr<CountingTimerProxy> proxy =
            CountingTimerProxy::scheduledTimerProxyWithTarget<CountingTimerProxy>(counter, 0.001,
                                                                                  false);
        EXPECT_EQ(proxy->className(), "CountingTimerProxy");
        EXPECT_EQ(proxy->target(), counter);
        proxy->forwardCounted([](Object& target) { ++static_cast<Counter&>(target).first; });
        ASSERT_TRUE(RunLoop::current().runUntil([&] { return counter->first == 1; }, 30s))
            << "the subclass's proxy schedules like the base's";
        EXPECT_EQ(proxy->forwarded, 1);
    }).join();
}

}  // namespace
}  // namespace vn
