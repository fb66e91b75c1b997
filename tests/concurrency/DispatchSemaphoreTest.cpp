#include "vn/concurrency/DispatchSemaphore.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace vn {
namespace {

using namespace std::chrono_literals;

TEST(DispatchSemaphore, CountsSignalsAndTimesOutWhenNoneIsLeft) {
    DispatchSemaphore semaphore(2);
    EXPECT_EQ(semaphore.wait(dispatchTimeNow()), DispatchWaitResult::success);
    EXPECT_EQ(semaphore.wait(dispatchTimeNow()), DispatchWaitResult::success);
    EXPECT_EQ(semaphore.wait(dispatchTimeNow()), DispatchWaitResult::timedOut);
    EXPECT_EQ(semaphore.wait(2ms), DispatchWaitResult::timedOut);
    semaphore.signal();
    EXPECT_EQ(semaphore.wait(1h), DispatchWaitResult::success);
}

TEST(DispatchSemaphore, EachSignalReleasesExactlyOneWaiter) {
    constexpr int kWaiters = 8;
    DispatchSemaphore semaphore;
    std::atomic<int> released{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < kWaiters; ++i) {
        waiters.emplace_back([&] {
            semaphore.wait();
            ++released;
        });
    }
    for (int i = 0; i < kWaiters; ++i) semaphore.signal();
    for (auto& waiter : waiters) waiter.join();
    EXPECT_EQ(released.load(), kWaiters);
    EXPECT_EQ(semaphore.wait(dispatchTimeNow()), DispatchWaitResult::timedOut)
        << "no count left over";
}

TEST(DispatchSemaphoreDeathTest, ANegativeStartValueStopsTheProcess) {
    EXPECT_DEATH(DispatchSemaphore(-1), "zero or more");
}

}  // namespace
}  // namespace vn
