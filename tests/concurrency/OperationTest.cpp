#include "vn/concurrency/Operation.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "vn/concurrency/DispatchSemaphore.h"
#include "vn/platform/Exception.h"

namespace vn {
namespace {

using Changes = std::vector<std::string>;

// Records every announced change of operation as "will isExecuting" / "did isFinished".
std::shared_ptr<Changes> recordChanges(Operation& operation) {
    auto changes = std::make_shared<Changes>();
    auto mutex = std::make_shared<std::mutex>();
    operation.addObserver("", [changes, mutex](Operation&, std::string_view key,
                                               Operation::KeyValueChange change) {
        std::lock_guard lock(*mutex);
        changes->push_back((change == Operation::KeyValueChange::willChange ? "will " : "did ") +
                           std::string(key));
    });
    return changes;
}

const Changes kRunToCompletion{"will isExecuting", "did isExecuting", "will isExecuting",
                               "will isFinished",  "did isExecuting", "did isFinished"};

class RecordingOperation : public Operation {
  public:
    bool executingInMain = false;
    int mainCalls = 0;
    void main() override {
        executingInMain = isExecuting();
        ++mainCalls;
    }
};

std::string startFailure(Operation& operation) {
    try {
        operation.start();
    } catch (const Exception& exception) {
        return exception.name() + ": " + exception.reason();
    }
    return "no exception";
}

TEST(Operation, StartRunsMainOnceAndAnnouncesEachChangeBeforeAndAfter) {
    auto operation = std::make_shared<RecordingOperation>();
    const auto changes = recordChanges(*operation);
    int completions = 0;
    operation->setCompletionBlock([&] { completions += operation->isFinished() ? 1 : 100; });
    operation->start();
    EXPECT_EQ(operation->mainCalls, 1);
    EXPECT_TRUE(operation->executingInMain);
    EXPECT_TRUE(operation->isFinished() && !operation->isExecuting());
    EXPECT_EQ(*changes, kRunToCompletion);
    EXPECT_EQ(completions, 1) << "once, after the operation finished";
    EXPECT_EQ(startFailure(*operation),
              "NSInvalidArgumentException: *** -[RecordingOperation start]: receiver has already "
              "been started");
}

TEST(Operation, ACancelledOperationFinishesWithoutRunningMain) {
    auto operation = std::make_shared<RecordingOperation>();
    const auto changes = recordChanges(*operation);
    operation->cancel();
    operation->cancel();
    operation->start();
    EXPECT_EQ(operation->mainCalls, 0);
    EXPECT_TRUE(operation->isCancelled() && operation->isFinished());
    EXPECT_EQ(*changes, (Changes{"will isCancelled", "did isCancelled", "will isFinished",
                                 "did isFinished"}));
}

TEST(Operation, ReadinessFollowsDependenciesAndCancellation) {
    auto a = std::make_shared<Operation>();
    auto b = std::make_shared<Operation>();
    auto operation = std::make_shared<RecordingOperation>();
    const auto changes = recordChanges(*operation);
    for (const auto& dependency : {a, a, OperationPtr(operation), OperationPtr(), b})
        operation->addDependency(dependency);
    EXPECT_EQ(operation->dependencies(), (std::vector<OperationPtr>{a, b}))
        << "duplicates, self and null ignored";
    EXPECT_EQ(startFailure(*operation),
              "NSInvalidArgumentException: *** -[RecordingOperation start]: receiver is not yet "
              "ready to execute");
    a->start();
    EXPECT_FALSE(operation->isReady()) << "b has not finished";
    operation->removeDependency(b);
    EXPECT_TRUE(operation->isReady());
    EXPECT_EQ(*changes, (Changes{"will isReady", "did isReady", "will isReady", "did isReady"}));

    auto blocked = std::make_shared<Operation>();
    blocked->addDependency(std::make_shared<Operation>());
    blocked->cancel();
    EXPECT_TRUE(blocked->isReady()) << "a cancelled operation is ready whatever its dependencies";
    auto afterFinished = std::make_shared<Operation>();
    afterFinished->addDependency(a);
    EXPECT_TRUE(afterFinished->isReady()) << "a finished dependency holds nothing back";
}

class AsynchronousOperation : public Operation {
  public:
    DispatchSemaphore mayFinish;
    std::thread worker;
    bool isAsynchronous() const override { return true; }
    void main() override {
        worker = std::thread([this] {
            mayFinish.wait();
            finish();
            finish();  // a second finish does nothing
        });
    }
};

TEST(Operation, AnAsynchronousOperationRunsUntilItFinishesItself) {
    auto operation = std::make_shared<AsynchronousOperation>();
    const auto changes = recordChanges(*operation);
    int finishedChanges = 0;
    const auto token = operation->addObserver(
        "isFinished",
        [&](Operation&, std::string_view, Operation::KeyValueChange) { ++finishedChanges; });
    operation->removeObserver(token);
    operation->start();
    EXPECT_TRUE(operation->isExecuting() && !operation->isFinished());
    operation->mayFinish.signal();
    operation->waitUntilFinished();
    operation->worker.join();
    EXPECT_TRUE(operation->isFinished() && !operation->isExecuting());
    EXPECT_EQ(*changes, kRunToCompletion);
    EXPECT_EQ(finishedChanges, 0) << "a removed observer hears nothing";
}

// An asynchronous operation whose finish() any thread may call.
class ExternallyFinishedOperation : public Operation {
  public:
    bool isAsynchronous() const override { return true; }
    using Operation::finish;
};

TEST(Operation, FinishFromASecondThreadDuringTheAnnouncementsDoesNotAnnounceAgain) {
    auto operation = std::make_shared<ExternallyFinishedOperation>();
    operation->start();
    const auto changes = recordChanges(*operation);
    bool secondFinishCalled = false;
    bool secondFinishReturned = false;
    bool finishedWhenSecondReturned = true;
    operation->addObserver(Operation::isFinishedKey, [&](Operation&, std::string_view,
                                                         Operation::KeyValueChange change) {
        if (change != Operation::KeyValueChange::willChange || secondFinishCalled) return;
        secondFinishCalled = true;
        // The first finish() is between its will- and did-announcements: a second thread
        // finishing now must neither announce nor complete the change a second time.
        std::thread second([&] { operation->finish(); });
        second.join();
        secondFinishReturned = true;
        finishedWhenSecondReturned = operation->isFinished();
    });
    operation->finish();
    EXPECT_TRUE(secondFinishReturned);
    EXPECT_FALSE(finishedWhenSecondReturned) << "the first finish() still owned the change";
    EXPECT_TRUE(operation->isFinished() && !operation->isExecuting());
    EXPECT_EQ(*changes, (Changes{"will isExecuting", "will isFinished", "did isExecuting",
                                 "did isFinished"}));
}

TEST(Operation, TwoThreadsFinishingAtOnceAnnounceEachChangeOnceAndCompleteOnce) {
    for (int round = 0; round < 300; ++round) {
        auto operation = std::make_shared<ExternallyFinishedOperation>();
        operation->start();
        const auto changes = recordChanges(*operation);
        std::atomic<int> completions = 0;
        operation->setCompletionBlock([&] { ++completions; });
        std::latch bothReady(2);
        auto finishTogether = [&] {
            bothReady.arrive_and_wait();
            operation->finish();
        };
        std::thread first(finishTogether);
        std::thread second(finishTogether);
        first.join();
        second.join();
        ASSERT_EQ(*changes, (Changes{"will isExecuting", "will isFinished", "did isExecuting",
                                     "did isFinished"}))
            << "round " << round;
        ASSERT_EQ(completions, 1) << "round " << round;
    }
}

TEST(Operation, AnOperationFinishedWhileItStartsNeverBecomesExecuting) {
    class CountingOperation : public ExternallyFinishedOperation {
      public:
        int mainCalls = 0;
        void main() override { ++mainCalls; }
    };
    auto operation = std::make_shared<CountingOperation>();
    const auto changes = recordChanges(*operation);
    operation->addObserver(Operation::isExecutingKey,
                           [&](Operation&, std::string_view, Operation::KeyValueChange change) {
                               if (change != Operation::KeyValueChange::willChange) return;
                               std::thread([&] { operation->finish(); }).join();
                           });
    operation->start();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_FALSE(operation->isExecuting());
    EXPECT_EQ(operation->mainCalls, 0);
    EXPECT_EQ(*changes,
              (Changes{"will isExecuting", "will isFinished", "did isFinished", "did isExecuting"}))
        << "each change announced before and after, once";
}

TEST(BlockOperation, RunsItsBlocksInOrderAndRefusesBlocksOnceStarted) {
    std::vector<int> order;
    auto operation = BlockOperation::blockOperationWithBlock([&] { order.push_back(1); });
    operation->addExecutionBlock([&] { order.push_back(2); });
    operation->start();
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
    EXPECT_THROW(operation->addExecutionBlock([] {}), Exception);
}

}  // namespace
}  // namespace vn
