#include "vn/concurrency/DispatchGroup.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "vn/concurrency/RunLoop.h"

namespace vn {
namespace {

using namespace std::chrono_literals;

TEST(DispatchGroup, WaitReportsSuccessOnlyOnceEveryMemberHasLeft) {
    const auto group = DispatchGroup::create();
    EXPECT_EQ(group->wait(dispatchTimeNow()), DispatchWaitResult::success) << "an empty group";
    group->enter();
    group->enter();
    EXPECT_EQ(group->wait(dispatchTimeNow()), DispatchWaitResult::timedOut);
    group->leave();
    EXPECT_EQ(group->wait(1ms), DispatchWaitResult::timedOut);
    std::thread([&] { group->leave(); }).join();
    EXPECT_EQ(group->wait(dispatchTimeNow()), DispatchWaitResult::success);

    std::atomic<int> done{0};
    for (int i = 0; i < 200; ++i)
        DispatchQueue::global(i % 2 ? 2 : -2)->async(group, [&] { ++done; });
    ASSERT_EQ(group->wait(), DispatchWaitResult::success);
    EXPECT_EQ(done.load(), 200);
}

TEST(DispatchGroup, NotifyRunsEveryRegisteredBlockOnItsQueueWhenTheGroupEmpties) {
    const auto group = DispatchGroup::create();
    const auto serial = DispatchQueue::serial("vn.test.notify");
    group->enter();
    std::vector<int> order;  // written on the serial queue only
    std::atomic<bool> mainNotified{false};
    group->notify(serial, [&] { order.push_back(1); });
    group->notify(serial, [&] { order.push_back(2); });
    group->notify(DispatchQueue::main(), [&] { mainNotified = Thread::isMainThread(); });
    EXPECT_EQ(serial->sync([&] { return order.size(); }), 0u) << "nothing before the group empties";
    group->leave();
    ASSERT_TRUE(RunLoop::main().runUntil([&] { return mainNotified.load(); }, 30s));
    EXPECT_EQ(serial->sync([&] { return order; }), (std::vector<int>{1, 2}));

    // An empty group notifies at once, and a reused group notifies again.
    std::atomic<int> later{0};
    group->notify(DispatchQueue::global(), [&] { ++later; });
    group->enter();
    group->notify(DispatchQueue::global(), [&] { ++later; });
    group->leave();
    EXPECT_TRUE(RunLoop::main().runUntil([&] { return later == 2; }, 30s));
}

TEST(DispatchGroupDeathTest, LeavingMoreOftenThanEnteringStopsTheProcess) {
    EXPECT_DEATH(DispatchGroup().leave(), "leave\\(\\) called more often than enter\\(\\)");
}

}  // namespace
}  // namespace vn
