#include "vn/concurrency/Timer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "vn/concurrency/RunLoop.h"

namespace vn {
namespace {

using namespace std::chrono_literals;

// Pumps the main loop until a one-shot timer set after the test's own timers has fired: by
// then the others had their chance.
void pumpPast(double seconds) {
    bool fired = false;
    Timer::scheduledTimer(seconds, false, [&](Timer&) { fired = true; });
    ASSERT_TRUE(RunLoop::main().runUntil([&] { return fired; }, 30s));
}

TEST(Timer, ANonRepeatingTimerFiresOnceAndARepeatingOneUntilInvalidated) {
    int once = 0, repeating = 0, selfStopping = 0;
    const auto oneShot = Timer::scheduledTimer(0.001, false, [&](Timer&) { ++once; });
    const auto timer = Timer::scheduledTimer(0.001, true, [&](Timer&) { ++repeating; });
    Timer::scheduledTimer(0.001, true, [&](Timer& self) {
        if (++selfStopping == 2) self.invalidate();
    });
    EXPECT_EQ(once + repeating, 0) << "timers fire only while the loop runs";
    ASSERT_TRUE(RunLoop::main().runUntil([&] { return repeating >= 3; }, 30s));
    timer->invalidate();
    const int repeatingWhenInvalidated = repeating;
    pumpPast(0.02);
    EXPECT_EQ(once, 1);
    EXPECT_FALSE(oneShot->isValid());
    EXPECT_EQ(repeating, repeatingWhenInvalidated);
    EXPECT_EQ(selfStopping, 2);
}

TEST(Timer, InvalidateFromAnotherThreadReleasesTheBlockAtOnce) {
    const auto captured = std::make_shared<int>(0);
    const auto timer = Timer::scheduledTimer(3600, true, [captured](Timer&) { ++*captured; });
    std::thread([&] { timer->invalidate(); }).join();
    EXPECT_FALSE(timer->isValid());
    EXPECT_EQ(captured.use_count(), 1) << "the timer no longer holds what its block captured";
}

TEST(Timer, FireRunsTheBlockNowAndEndsOnlyANonRepeatingTimer) {
    int fired = 0;
    Timer once(3600, false, [&](Timer&) { ++fired; });
    Timer repeating(3600, true, [&](Timer&) { ++fired; });
    once.fire();
    repeating.fire();
    once.fire();
    EXPECT_EQ(fired, 2) << "an invalid timer does not fire";
    EXPECT_FALSE(once.isValid());
    EXPECT_TRUE(repeating.isValid());
}

TEST(Timer, FiresOnTheThreadOfTheLoopItWasScheduledOnAndOnlyOnce) {
    std::thread::id firedOn, loopThread;
    bool fired = false;
    std::thread([&] {
        loopThread = std::this_thread::get_id();
        Timer::scheduledTimer(0.001, false, [&](Timer&) {
            firedOn = std::this_thread::get_id();
            fired = true;
        });
        RunLoop::current().runUntil([&] { return fired; }, 30s);
    }).join();
    EXPECT_EQ(firedOn, loopThread);

    // Added to the main loop from another thread, twice: scheduled once.
    std::atomic<int> count{0};
    const auto timer = std::make_shared<Timer>(0.001, false, [&](Timer&) { ++count; });
    std::thread([&] {
        RunLoop::main().addTimer(timer);
        RunLoop::main().addTimer(timer);
    }).join();
    pumpPast(0.02);
    EXPECT_EQ(count.load(), 1);
}

}  // namespace
}  // namespace vn
