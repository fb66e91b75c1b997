#include "vn/concurrency/OperationQueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include "vn/concurrency/DispatchSemaphore.h"
#include "vn/concurrency/RunLoop.h"
#include "vn/platform/Exception.h"
#include "vn/platform/NotificationCenter.h"

namespace vn {
namespace {

using namespace std::chrono_literals;

// Keeps the highest number of blocks seen inside at once.
struct Concurrency {
    std::atomic<int> inside{0}, maximum{0};
    void enter() {
        const int now = ++inside;
        for (int seen = maximum; now > seen && !maximum.compare_exchange_weak(seen, now);) {
        }
    }
    void leave() { --inside; }
};

class AsynchronousOperation : public Operation {
  public:
    explicit AsynchronousOperation(Concurrency& concurrency) : concurrency_(concurrency) {}
    bool isAsynchronous() const override { return true; }
    void main() override {
        concurrency_.enter();
        DispatchQueue::global()->async(
            [self = std::static_pointer_cast<AsynchronousOperation>(shared_from_this())] {
                self->concurrency_.leave();
                self->finish();
            });
    }

  private:
    Concurrency& concurrency_;
};

TEST(OperationQueue, RunsEveryOperationOnceWithinTheConcurrencyLimit) {
    for (const long maximum : {1L, 3L, OperationQueue::defaultMaxConcurrentOperationCount}) {
        OperationQueue queue;
        queue.setMaxConcurrentOperationCount(maximum);
        Concurrency concurrency;
        std::vector<int> order;
        std::mutex orderMutex;
        std::vector<OperationPtr> asynchronous;
        for (int i = 0; i < 60; ++i) {
            queue.addOperationWithBlock([&, i] {
                concurrency.enter();
                {
                    std::lock_guard lock(orderMutex);
                    order.push_back(i);
                }
                std::this_thread::yield();
                concurrency.leave();
            });
            asynchronous.push_back(std::make_shared<AsynchronousOperation>(concurrency));
        }
        queue.addOperations(asynchronous, true);
        queue.waitUntilAllOperationsAreFinished();
        EXPECT_EQ(queue.operationCount(), 0u);
        EXPECT_EQ(order.size(), 60u);
        if (maximum > 0) {
            EXPECT_LE(concurrency.maximum, maximum)
                << "asynchronous ones hold a slot until they finish";
        }
        if (maximum == 1) {
            EXPECT_TRUE(std::is_sorted(order.begin(), order.end()))
                << "one at a time, in added order";
        }
        for (const auto& operation : asynchronous) EXPECT_TRUE(operation->isFinished());
    }
}

TEST(OperationQueue,
     WaitsForDependenciesInOtherQueuesAndFinishesCancelledOperationsWithoutRunning) {
    OperationQueue first, second;
    first.setSuspended(true);
    std::atomic<bool> dependencyDone{false}, sawDependencyDone{false};
    auto dependency = BlockOperation::blockOperationWithBlock([&] { dependencyDone = true; });
    auto dependent =
        BlockOperation::blockOperationWithBlock([&] { sawDependencyDone = dependencyDone.load(); });
    dependent->addDependency(dependency);
    second.addOperation(dependent);
    first.addOperation(dependency);
    EXPECT_FALSE(dependent->isExecuting() || dependent->isFinished())
        << "held back by a suspended queue";
    first.setSuspended(false);
    second.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(sawDependencyDone);

    first.setSuspended(true);
    std::atomic<int> runs{0};
    auto neverRun = std::make_shared<Operation>();
    for (int i = 0; i < 20; ++i) {
        auto operation = BlockOperation::blockOperationWithBlock([&] { ++runs; });
        if (i % 2) operation->addDependency(neverRun);
        first.addOperation(operation);
    }
    const auto operations = first.operations();
    first.cancelAllOperations();
    first.setSuspended(false);
    first.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(runs.load(), 0);
    for (const auto& operation : operations)
        EXPECT_TRUE(operation->isFinished() && operation->isCancelled());
}

TEST(OperationQueue, RefusesOperationsThatAreQueuedExecutingOrFinished) {
    OperationQueue queue, other;
    queue.setSuspended(true);
    auto operation = std::make_shared<Operation>();
    queue.addOperation(operation);
    EXPECT_THROW(queue.addOperation(operation), Exception);
    EXPECT_THROW(other.addOperation(operation), Exception);
    EXPECT_THROW(operation->start(), Exception)
        << "an operation in a queue is started by the queue";
    auto finished = std::make_shared<Operation>();
    finished->start();
    EXPECT_THROW(other.addOperation(finished), Exception);
    queue.setSuspended(false);
    queue.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueue, TheMainQueueRunsOperationsOnTheMainThreadWhenItIsPumped) {
    std::atomic<int> onMain{0};
    std::thread([&] {
        for (int i = 0; i < 3; ++i)
            OperationQueue::mainQueue()->addOperationWithBlock(
                [&] { onMain += Thread::isMainThread(); });
    }).join();
    EXPECT_EQ(onMain.load(), 0);
    EXPECT_TRUE(RunLoop::main().runUntil([&] { return onMain == 3; }, 30s));
}

TEST(OperationQueue, ServesAsAnExecutorAndOutlivesItsOwnerUntilItsWorkIsDone) {
    NotificationCenter center;
    auto queue = std::make_shared<OperationQueue>();
    std::atomic<int> delivered{0};
    DispatchSemaphore proceed;
    const auto token =
        center.addObserver("vn.test.queued", nullptr, queue, [&](const Notification&) {
            proceed.wait();
            ++delivered;
        });
    center.postNotificationName("vn.test.queued");
    center.removeObserver(token);
    queue.reset();
    proceed.signal();
    EXPECT_TRUE(RunLoop::main().runUntil([&] { return delivered == 1; }, 30s));
}

// The dependency finishes on another thread while the dependent is being added: the queue
// must neither lose the dependent nor keep it on record after it ran.
TEST(OperationQueue, AnOperationWhoseDependencyFinishesWhileItIsAddedIsNeverLost) {
    OperationQueue queue;
    std::atomic<int> runs{0};
    for (int round = 0; round < 500; ++round) {
        auto dependency = std::make_shared<Operation>();
        auto dependent = BlockOperation::blockOperationWithBlock([&] { ++runs; });
        dependent->addDependency(dependency);
        std::thread finisher([&] { dependency->start(); });
        queue.addOperation(dependent);
        finisher.join();
    }
    ASSERT_TRUE(RunLoop::main().runUntil([&] { return queue.operationCount() == 0; }, 30s));
    EXPECT_EQ(runs.load(), 500);
}

// 10,000 operations with random dependencies on earlier ones (so no cycle), added in a
// shuffled order: each runs exactly once and never before all of its dependencies ran.
TEST(OperationQueueStress, RandomDependenciesAreRespected) {
    constexpr int kOperations = 10000;
    std::mt19937 random(20240611);
    std::vector<std::atomic<int>> runs(kOperations);
    std::atomic<int> violations{0};
    std::vector<OperationPtr> operations;
    for (int i = 0; i < kOperations; ++i) {
        std::vector<int> dependencies(i == 0 ? 0
                                             : std::uniform_int_distribution<int>(0, 3)(random));
        for (int& d : dependencies) d = std::uniform_int_distribution<int>(0, i - 1)(random);
        operations.push_back(BlockOperation::blockOperationWithBlock([&, i, dependencies] {
            for (const int d : dependencies) violations += runs[d].load() != 1;
            ++runs[i];
        }));
        for (const int d : dependencies) operations[i]->addDependency(operations[d]);
    }
    std::shuffle(operations.begin(), operations.end(), random);
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(8);
    queue.addOperations(operations, false);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(violations.load(), 0);
    for (int i = 0; i < kOperations; ++i) ASSERT_EQ(runs[i].load(), 1) << "operation " << i;
}

}  // namespace
}  // namespace vn
