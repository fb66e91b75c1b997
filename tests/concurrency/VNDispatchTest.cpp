#include "vn/concurrency/VNDispatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "vn/concurrency/DispatchSemaphore.h"
#include "vn/concurrency/RunLoop.h"
#include "vn/platform/Thread.h"

namespace vn {
namespace {

using namespace std::chrono_literals;

bool pumpMainUntil(const std::function<bool()>& condition) {
    return RunLoop::main().runUntil(condition, 30s);
}

// Where a step ran: its name, its thread and the queue whose work it was.
struct Step {
    std::string name;
    std::thread::id thread;
    DispatchQueuePtr queue;
};

class Trace {
  public:
    std::function<void()> step(std::string name) {
        return [this, name] {
            std::lock_guard lock(mutex_);
            steps_.push_back({name, std::this_thread::get_id(), DispatchQueue::current()});
        };
    }
    std::vector<Step> steps() const {
        std::lock_guard lock(mutex_);
        return steps_;
    }
    std::size_t size() const { return steps().size(); }

  private:
    mutable std::mutex mutex_;
    std::vector<Step> steps_;
};

TEST(VNDispatch, QueueGettersAnswerByTheCallingThread) {
    EXPECT_EQ(vn_dispatch_get_main_or_global_with_priority_queue(DISPATCH_QUEUE_PRIORITY_HIGH),
              DispatchQueue::main());
    EXPECT_EQ(vn_dispatch_get_main_or_global_default_priority_queue(), DispatchQueue::main());
    std::thread([] {
        for (const long priority :
             {DISPATCH_QUEUE_PRIORITY_HIGH, DISPATCH_QUEUE_PRIORITY_BACKGROUND, 99L}) {
            EXPECT_EQ(vn_dispatch_get_main_or_global_with_priority_queue(priority),
                      DispatchQueue::global(priority));
        }
        EXPECT_EQ(vn_dispatch_get_main_or_global_default_priority_queue(),
                  DispatchQueue::global(0));
    }).join();
}

TEST(VNDispatch, MainQueueFunctionsRunInlineOnTheMainThreadAndGoThroughTheMainQueueElsewhere) {
    int inlineRuns = 0;
    vn_dispatch_on_main_queue([&] { ++inlineRuns; });
    vn_dispatch_sync_on_main_queue([&] { ++inlineRuns; });
    EXPECT_EQ(inlineRuns, 2);

    std::atomic<bool> asyncRan{false}, asyncRanBeforeReturn{false}, done{false};
    bool syncRanOnMain = false, callerSawSyncWork = false;
    std::thread([&] {
        vn_dispatch_on_main_queue([&] { asyncRan = Thread::isMainThread(); });
        asyncRanBeforeReturn = asyncRan.load();
    }).join();
    EXPECT_FALSE(asyncRanBeforeReturn) << "from a background thread it returns at once";
    std::thread caller([&] {
        vn_dispatch_sync_on_main_queue([&] { syncRanOnMain = Thread::isMainThread(); });
        callerSawSyncWork = syncRanOnMain;
        done = true;
    });
    ASSERT_TRUE(pumpMainUntil([&] { return done && asyncRan; }));
    caller.join();
    EXPECT_TRUE(callerSawSyncWork) << "the sync form waits for the main thread";
}

TEST(VNDispatch, FromABackgroundThreadOnBackgroundRunsInlineAndOnGlobalQueueSyncsOntoTheQueue) {
    Trace trace;
    std::thread::id caller;
    std::size_t stepsBeforeReturn = 0;
    std::thread([&] {
        caller = std::this_thread::get_id();
        vn_dispatch_on_background(trace.step("work"), trace.step("completion"));
        vn_dispatch_on_background_with_priority(trace.step("high work"),
                                                DISPATCH_QUEUE_PRIORITY_HIGH, nullptr);
        vn_dispatch_on_global_queue_with_priority(trace.step("global work"),
                                                  DISPATCH_QUEUE_PRIORITY_LOW,
                                                  trace.step("global completion"));
        stepsBeforeReturn = trace.size();
    }).join();
    const auto steps = trace.steps();
    ASSERT_EQ(stepsBeforeReturn, 5u);
    const struct {
        const char* name;
        DispatchQueuePtr queue;
    } expected[] = {{"work", nullptr},
                    {"completion", nullptr},
                    {"high work", nullptr},
                    {"global work", DispatchQueue::global(DISPATCH_QUEUE_PRIORITY_LOW)},
                    {"global completion", nullptr}};
    for (std::size_t i = 0; i < steps.size(); ++i) {
        EXPECT_EQ(steps[i].name, expected[i].name);
        EXPECT_EQ(steps[i].queue, expected[i].queue) << steps[i].name;
        EXPECT_EQ(steps[i].thread, caller) << steps[i].name;
    }
}

TEST(VNDispatch, FromTheMainThreadWorkGoesToTheGlobalQueueAndTheCompletionToTheMainQueue) {
    // Work waits for the call to have returned: it cannot have run inline.
    DispatchSemaphore returned;
    std::atomic<bool> workSawReturn{false};
    vn_dispatch_on_background_with_priority(
        [&] { workSawReturn = returned.wait(10s) == DispatchWaitResult::success; },
        DISPATCH_QUEUE_PRIORITY_LOW, nullptr);
    returned.signal();

    Trace trace;
    vn_dispatch_on_background(trace.step("work"), trace.step("completion"));
    vn_dispatch_on_global_queue_with_priority(
        trace.step("global work"), DISPATCH_QUEUE_PRIORITY_HIGH, trace.step("global completion"));
    ASSERT_TRUE(pumpMainUntil([&] { return trace.size() == 4 && workSawReturn; }));
    for (const Step& step : trace.steps()) {
        const bool isCompletion = step.name.find("completion") != std::string::npos;
        EXPECT_EQ(step.thread == std::this_thread::get_id(), isCompletion) << step.name;
        if (isCompletion) {
            EXPECT_EQ(step.queue, DispatchQueue::main());
        }
    }
    const auto steps = trace.steps();
    const auto indexOf = [&](const std::string& name) {
        return std::find_if(steps.begin(), steps.end(),
                            [&](const Step& s) { return s.name == name; }) -
               steps.begin();
    };
    EXPECT_LT(indexOf("work"), indexOf("completion"));
    EXPECT_LT(indexOf("global work"), indexOf("global completion"));
    EXPECT_EQ(steps[indexOf("global work")].queue,
              DispatchQueue::global(DISPATCH_QUEUE_PRIORITY_HIGH));
}

TEST(VNDispatch, GroupNotifyRunsAtOnceForAnEmptyGroupAndOtherwiseOnTheQueueOfTheCallingThread) {
    bool ranInline = false;
    vn_dispatch_group_notify_on_main_or_global_default_priority_queue(DispatchGroup::create(),
                                                                      [&] { ranInline = true; });
    EXPECT_TRUE(ranInline);

    const auto group = DispatchGroup::create();
    group->enter();
    group->enter();
    Trace trace;
    std::thread([&] {
        vn_dispatch_group_notify_on_main_or_global_default_priority_queue(
            group, trace.step("from background"));
    }).join();
    vn_dispatch_group_notify_on_main_or_global_default_priority_queue(group,
                                                                      trace.step("from main"));
    group->leave();
    EXPECT_EQ(trace.size(), 0u) << "nothing runs before the group is empty";
    std::thread([&] { group->leave(); }).join();
    ASSERT_TRUE(pumpMainUntil([&] { return trace.size() == 2; }));
    for (const Step& step : trace.steps()) {
        EXPECT_EQ(step.queue,
                  step.name == "from main" ? DispatchQueue::main() : DispatchQueue::global())
            << step.name;
    }
}

}  // namespace
}  // namespace vn
