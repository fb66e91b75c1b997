#include "vn/concurrency/DispatchQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <thread>
#include <vector>

#include "vn/concurrency/DispatchGroup.h"
#include "vn/concurrency/DispatchSemaphore.h"
#include "vn/concurrency/RunLoop.h"
#include "vn/platform/NotificationCenter.h"

namespace vn {
namespace {

using namespace std::chrono_literals;

bool pumpMainUntil(const std::function<bool()>& condition) {
    return RunLoop::main().runUntil(condition, 30s);
}

TEST(DispatchQueue, GlobalQueuesAreSelectedByThePlatformPriorities) {
    const std::pair<long, const char*> cases[] = {
        {2, "vn.global.high"},    {0, "vn.global.default"},
        {-2, "vn.global.low"},    {-32768, "vn.global.background"},
        {1, "vn.global.default"}, {12345, "vn.global.default"}};
    for (const auto& [priority, label] : cases) {
        EXPECT_EQ(DispatchQueue::global(priority)->label(), label) << priority;
        EXPECT_EQ(DispatchQueue::global(priority), DispatchQueue::global(priority))
            << "one queue per priority";
    }
}

TEST(DispatchQueue, MainQueueWorkRunsOnTheMainThreadOnlyWhenTheMainRunLoopIsPumped) {
    std::atomic<int> runs{0};
    std::atomic<bool> onMainQueue{false};
    std::thread([&] {
        DispatchQueue::main()->async([&] {
            onMainQueue =
                Thread::isMainThread() && DispatchQueue::current() == DispatchQueue::main();
            ++runs;
        });
    }).join();
    EXPECT_EQ(runs.load(), 0);
    ASSERT_TRUE(pumpMainUntil([&] { return runs == 1; }));
    EXPECT_TRUE(onMainQueue);

    // The main queue is also an executor, for queued notification delivery.
    NotificationCenter center;
    const auto token =
        center.addObserver("vn.test.note", nullptr, DispatchQueue::main(),
                           [&](const Notification&) { runs += Thread::isMainThread() ? 10 : 100; });
    std::thread([&] { center.postNotificationName("vn.test.note"); }).join();
    EXPECT_TRUE(pumpMainUntil([&] { return runs == 11; }));
    center.removeObserver(token);
}

TEST(DispatchQueue, SerialQueueRunsOneBlockAtATimeInOrderAndNamesItselfCurrent) {
    const auto queue = DispatchQueue::serial("vn.test.order");
    std::vector<int> order;  // touched only by the queue's blocks: no lock, checked by TSan
    std::atomic<bool> overlapped{false}, alwaysCurrent{true};
    std::atomic<int> inFlight{0};
    for (int i = 0; i < 2000; ++i) {
        queue->async([&, i] {
            if (inFlight.fetch_add(1) != 0) overlapped = true;
            if (DispatchQueue::current() != queue) alwaysCurrent = false;
            order.push_back(i);
            inFlight.fetch_sub(1);
        });
    }
    const auto seen = queue->sync([&] { return order; });
    ASSERT_EQ(seen.size(), 2000u);
    for (int i = 0; i < 2000; ++i) ASSERT_EQ(seen[i], i);
    EXPECT_FALSE(overlapped);
    EXPECT_TRUE(alwaysCurrent);
    EXPECT_EQ(DispatchQueue::current(), nullptr);
}

TEST(DispatchQueue, SyncWaitsForEarlierWorkNestsAndPassesOnResultsAndExceptions) {
    const auto queue = DispatchQueue::serial("vn.test.sync");
    DispatchSemaphore gate;
    bool earlierWorkDone = false;  // ordered by the queue
    queue->async([&] {
        gate.wait();
        earlierWorkDone = true;
    });
    bool sawEarlierWork = false;
    std::thread syncCaller([&] { sawEarlierWork = queue->sync([&] { return earlierWorkDone; }); });
    gate.signal();
    syncCaller.join();
    EXPECT_TRUE(sawEarlierWork);

    const auto& low = DispatchQueue::global(DISPATCH_QUEUE_PRIORITY_LOW);
    const auto nested = queue->sync([&] {
        const auto inner = low->sync([] { return DispatchQueue::current(); });
        return std::make_pair(inner, DispatchQueue::current());
    });
    EXPECT_EQ(nested.first, low);
    EXPECT_EQ(nested.second, queue);

    for (const DispatchQueuePtr& target : {queue, DispatchQueue::global()}) {
        EXPECT_THROW(target->sync([] { throw std::runtime_error("from work"); }),
                     std::runtime_error);
        EXPECT_EQ(target->sync([] { return 7; }), 7) << "the queue still works after an exception";
    }

    // Onto the main queue from a background thread: runs on the main thread once it is pumped.
    std::atomic<bool> done{false};
    bool ranOnMain = false, threw = false;
    std::thread background([&] {
        ranOnMain = DispatchQueue::main()->sync([] { return Thread::isMainThread(); });
        try {
            DispatchQueue::main()->sync([] { throw std::logic_error("on main"); });
        } catch (const std::logic_error&) {
            threw = true;
        }
        done = true;
    });
    ASSERT_TRUE(pumpMainUntil([&] { return done.load(); }));
    background.join();
    EXPECT_TRUE(ranOnMain);
    EXPECT_TRUE(threw);
}

TEST(DispatchQueueDeathTest, SyncThatWouldDeadlockStopsTheProcess) {
    EXPECT_DEATH(DispatchQueue::main()->sync([] {}),
                 "main queue from the main thread would deadlock");
    EXPECT_DEATH(
        {
            const auto queue = DispatchQueue::serial("vn.test.self");
            queue->sync([&] { queue->sync([] {}); });
        },
        "serial queue 'vn.test.self' from its own work would deadlock");
}

TEST(DispatchQueue, VnOnMainAndVnSyncOnMainRunInlineOnMainAndGoThroughTheMainQueueElsewhere) {
    bool ranInline = false;
    DispatchQueue::vnOnMain([&] { ranInline = true; });
    EXPECT_TRUE(ranInline);
    EXPECT_EQ(DispatchQueue::vnSyncOnMain([] { return 5; }), 5);

    std::atomic<bool> done{false}, asyncRanOnMain{false};
    bool syncRanOnMain = false, threw = false;
    std::thread background([&] {
        DispatchQueue::vnOnMain([&] { asyncRanOnMain = Thread::isMainThread(); });
        syncRanOnMain = DispatchQueue::vnSyncOnMain([] { return Thread::isMainThread(); });
        try {
            DispatchQueue::vnSyncOnMain([]() -> int { throw std::invalid_argument("on main"); });
        } catch (const std::invalid_argument&) {
            threw = true;
        }
        done = true;
    });
    ASSERT_TRUE(pumpMainUntil([&] { return done && asyncRanOnMain; }));
    background.join();
    EXPECT_TRUE(syncRanOnMain);
    EXPECT_TRUE(threw);
}

TEST(DispatchQueue, AfterRunsWorkOnItsQueueOnceTheDeadlineHasPassed) {
    const auto queue = DispatchQueue::serial("vn.test.after");
    const auto deadline = std::chrono::steady_clock::now() + 20ms;
    std::atomic<bool> notBeforeDeadline{false}, onQueue{false}, pastDeadlineRan{false},
        mainRan{false};
    queue->after(deadline, [&] {
        notBeforeDeadline = std::chrono::steady_clock::now() >= deadline;
        onQueue = queue->isCurrent();
    });
    DispatchQueue::global()->after(std::chrono::steady_clock::now() - 1s,
                                   [&] { pastDeadlineRan = true; });
    DispatchQueue::main()->after(1ms, [&] { mainRan = Thread::isMainThread(); });
    ASSERT_TRUE(pumpMainUntil([&] { return onQueue && pastDeadlineRan && mainRan; }));
    EXPECT_TRUE(notBeforeDeadline);
}

// Blocks that wait for a later block must not starve the pool: it grows while workers wait.
TEST(DispatchQueue, WorkersBlockedInWaitsDoNotStarveLaterWork) {
    constexpr int kWaiters = 40;
    DispatchSemaphore release;
    const auto group = DispatchGroup::create();
    for (int i = 0; i < kWaiters; ++i)
        DispatchQueue::global()->async(group, [&] { release.wait(); });
    DispatchQueue::global()->async([&] {
        for (int i = 0; i < kWaiters; ++i) release.signal();
    });
    EXPECT_EQ(group->wait(30s), DispatchWaitResult::success);
}

// Default-priority workers all blocked outside the library (so their pool does not grow):
// high-priority work still runs, on threads of its own.
TEST(DispatchQueue, HighPriorityWorkDoesNotQueueBehindABusyDefaultQueue) {
    auto release = std::make_shared<std::promise<void>>();
    std::shared_future<void> released = release->get_future().share();
    const auto group = DispatchGroup::create();
    for (int i = 0; i < 100; ++i)
        DispatchQueue::global()->async(group, [released] { released.wait(); });
    DispatchQueue::global(DISPATCH_QUEUE_PRIORITY_HIGH)->async([release] { release->set_value(); });
    EXPECT_EQ(group->wait(30s), DispatchWaitResult::success);
}

// 100,000 blocks from four threads: each runs exactly once, and each thread's blocks run in
// the order that thread submitted them.
TEST(DispatchQueueStress, SerialQueueKeepsEverySubmittersOrder) {
    constexpr int kThreads = 4, kPerThread = 25000;
    const auto queue = DispatchQueue::serial("vn.test.stress");
    std::vector<std::vector<int>> seen(kThreads);  // written only by the queue's blocks
    std::vector<std::thread> submitters;
    for (int t = 0; t < kThreads; ++t) {
        submitters.emplace_back([&, t] {
            for (int i = 0; i < kPerThread; ++i)
                queue->async([&seen, t, i] { seen[t].push_back(i); });
        });
    }
    for (auto& submitter : submitters) submitter.join();
    queue->sync([] {});  // every block submitted before this one has run
    for (int t = 0; t < kThreads; ++t) {
        ASSERT_EQ(seen[t].size(), static_cast<std::size_t>(kPerThread)) << "thread " << t;
        for (int i = 0; i < kPerThread; ++i) ASSERT_EQ(seen[t][i], i) << "thread " << t;
    }
}

}  // namespace
}  // namespace vn
