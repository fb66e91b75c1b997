#include "vn/concurrency/VNSynchronousExecutionHelper.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "vn/concurrency/RunLoop.h"
#include "vn/platform/Thread.h"

namespace vn {
namespace {

using namespace std::chrono_literals;

TEST(VNSynchronousExecutionHelper, ABackgroundThreadWaitsForMainThreadWorkToSignal) {
    for (const bool async : {true, false}) {
        VNSynchronousExecutionHelper helper;
        std::atomic<bool> done{false};
        bool mainWorkRanOnMain = false, mainWorkDone = false, waiterSawMainWork = false,
             blockRanOnWaiter = false;
        std::thread waiter([&] {
            const auto waiterId = std::this_thread::get_id();
            helper.startWithBlock(
                [&] {
                    mainWorkRanOnMain = Thread::isMainThread();
                    mainWorkDone = true;
                    helper.signal();
                },
                async);
            helper.executeWaitingBlock([&] {
                waiterSawMainWork = mainWorkDone;
                blockRanOnWaiter = std::this_thread::get_id() == waiterId;
            });
            done = true;
        });
        ASSERT_TRUE(RunLoop::main().runUntil([&] { return done.load(); }, 30s));
        waiter.join();
        EXPECT_TRUE(mainWorkRanOnMain);
        EXPECT_TRUE(waiterSawMainWork);
        EXPECT_TRUE(blockRanOnWaiter);
    }
}

TEST(VNSynchronousExecutionHelper, AnOpenGateLetsEveryLaterWaiterThroughAndExtraSignalsAccumulate) {
    VNSynchronousExecutionHelper helper;
    helper.start();
    helper.signal();
    for (int i = 0; i < 5; ++i) helper.wait();
    int ran = 0;
    helper.executeWaitingBlock([&] { ++ran; });
    std::thread([&] { helper.wait(); }).join();
    EXPECT_EQ(ran, 1);
    helper.signal();  // value 2: the next start takes one and leaves the gate open
    helper.start();
    helper.wait();
}

TEST(VNSynchronousExecutionHelper,
     CancelBeforeStartDoesNothingAndACancelledCycleSkipsTheWaitingBlock) {
    VNSynchronousExecutionHelper helper;
    helper.cancel();
    EXPECT_FALSE(helper.isCanceled());
    helper.start();
    helper.cancel();
    EXPECT_TRUE(helper.isCanceled());
    int ran = 0;
    helper.executeWaitingBlock([&] { ++ran; });
    EXPECT_EQ(ran, 0);
    helper.wait();  // the gate was left open
    helper.startWithAsyncBlock(nullptr);
    EXPECT_FALSE(helper.isCanceled()) << "a new cycle starts uncancelled";
}

TEST(VNSynchronousExecutionHelper, AStartWhileThePreviousCycleIsClosedWaitsForItsSignal) {
    VNSynchronousExecutionHelper helper;
    helper.start();
    std::atomic<bool> signalled{false};
    bool secondStartReturnedAfterSignal = false;
    std::thread second([&] {
        helper.start();
        secondStartReturnedAfterSignal = signalled.load();
    });
    signalled = true;
    helper.signal();
    second.join();
    EXPECT_TRUE(secondStartReturnedAfterSignal);
}

TEST(VNSynchronousExecutionHelperDeathTest,
     UsingTheGateBeforeStartOrASyncStartOnMainStopsTheProcess) {
    EXPECT_DEATH(VNSynchronousExecutionHelper().signal(), "the gate was used before start");
    EXPECT_DEATH(VNSynchronousExecutionHelper().wait(), "the gate was used before start");
    EXPECT_DEATH(VNSynchronousExecutionHelper().executeWaitingBlock([] {}),
                 "the gate was used before start");
    EXPECT_DEATH(VNSynchronousExecutionHelper().startWithSyncBlock([] {}), "would deadlock");
}

}  // namespace
}  // namespace vn
