#include "vn/concurrency/RunLoop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "vn/concurrency/Timer.h"
#include "vn/platform/Thread.h"

namespace vn {
namespace {

using namespace std::chrono_literals;

TEST(RunLoop, APassRunsOnlyTheWorkQueuedBeforeItBeganAndRunsMayNest) {
    RunLoop& loop = RunLoop::main();
    std::vector<std::string> ran;
    loop.perform([&] {
        ran.push_back("first");
        loop.perform([&] { ran.push_back("queued by first"); });
    });
    loop.perform([&] { ran.push_back("second"); });
    loop.runOnce();
    EXPECT_EQ(ran, (std::vector<std::string>{"first", "second"}));
    loop.runOnce();
    EXPECT_EQ(ran.back(), "queued by first");

    bool innerRan = false, timerSawInnerWork = false;
    Timer::scheduledTimer(0.001, false, [&](Timer&) {
        loop.perform([&] { innerRan = true; });
        timerSawInnerWork = loop.runUntil([&] { return innerRan; }, 30s);
    });
    EXPECT_TRUE(loop.runUntil([&] { return timerSawInnerWork; }, 30s));
}

TEST(RunLoop, WorkFromOtherThreadsRunsOnTheLoopThreadInEachThreadsOrder) {
    constexpr int kThreads = 3, kPerThread = 300;
    std::vector<std::vector<int>> seen(kThreads);  // touched on the main thread only
    std::atomic<int> total{0};
    std::atomic<bool> allOnMain{true};
    std::vector<std::thread> producers;
    for (int t = 0; t < kThreads; ++t) {
        producers.emplace_back([&, t] {
            for (int i = 0; i < kPerThread; ++i) {
                RunLoop::main().perform([&, t, i] {
                    allOnMain = allOnMain && Thread::isMainThread();
                    seen[t].push_back(i);
                    ++total;
                });
            }
        });
    }
    ASSERT_TRUE(RunLoop::main().runUntil([&] { return total == kThreads * kPerThread; }, 30s));
    for (auto& producer : producers) producer.join();
    EXPECT_TRUE(allOnMain);
    for (int t = 0; t < kThreads; ++t) {
        for (int i = 0; i < kPerThread; ++i) ASSERT_EQ(seen[t][i], i);
    }
}

TEST(RunLoop, RunUntilStopsAtTheConditionOrTheDeadline) {
    EXPECT_TRUE(RunLoop::main().runUntil([] { return true; }, 0ms))
        << "checked before the first pass";
    EXPECT_FALSE(RunLoop::main().runUntil([] { return false; }, 5ms));

    // State changed by another thread without any work for the loop is noticed too.
    std::atomic<bool> flag{false};
    std::thread setter([&] { flag = true; });
    EXPECT_TRUE(RunLoop::main().runUntil([&] { return flag.load(); }, 30s));
    setter.join();

    std::atomic<bool> ran{false};
    std::thread([&] { RunLoop::main().perform([&] { ran = true; }); }).join();
    const auto deadline = std::chrono::steady_clock::now() + 10ms;
    RunLoop::main().runUntil(deadline);
    EXPECT_TRUE(std::chrono::steady_clock::now() >= deadline);
    EXPECT_TRUE(ran);
}

TEST(RunLoop, EveryThreadHasALoopOfItsOwn) {
    EXPECT_EQ(&RunLoop::current(), &RunLoop::main());
    RunLoop* first = nullptr;
    RunLoop* second = nullptr;
    bool mainIsCurrentThere = true, ranOwnWork = false;
    std::thread([&] {
        first = &RunLoop::current();
        second = &RunLoop::current();
        mainIsCurrentThere = RunLoop::main().isCurrent();
        first->perform([&] { ranOwnWork = true; });
        first->runOnce();
    }).join();
    EXPECT_NE(first, &RunLoop::main());
    EXPECT_EQ(first, second);
    EXPECT_FALSE(mainIsCurrentThere);
    EXPECT_TRUE(ranOwnWork);
}

TEST(RunLoopDeathTest, OnlyALoopsOwnThreadMayRunIt) {
    EXPECT_DEATH(std::thread([] { RunLoop::main().runOnce(); }).join(),
                 "main run loop can only be run on the main thread");
    EXPECT_DEATH(std::thread([] {
                     RunLoop* own = &RunLoop::current();
                     std::thread([own] { own->runOnce(); }).join();
                 }).join(),
                 "can only be run on its own thread");
}

}  // namespace
}  // namespace vn
