#include "vn/concurrency/VNCancelableOperation.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "vn/concurrency/Operation.h"

namespace vn {
namespace {

// A cancelable that records each cancellation it receives.
class Recorder : public VNCancelableOperation {
  public:
    Recorder(std::string name, std::vector<std::string>& log) : name_(std::move(name)), log_(log) {}
    void cancel() override { log_.push_back(name_); }

  private:
    std::string name_;
    std::vector<std::string>& log_;
};

class CountingCancelable : public VNCancelableOperationBase {
  public:
    int performed = 0;
    bool flagSetBeforeHook = false;
    bool reenter = false;
    void performCancel() override {
        flagSetBeforeHook = isCancelled();
        if (++performed == 1 && reenter) cancel();
    }
};

TEST(VNCancelableOperationBase, CancelSetsTheFlagRunsTheHookAndOnlyThenMarksTheGuard) {
    CountingCancelable once, reentrant;
    once.cancel();
    once.cancel();
    EXPECT_TRUE(once.isCancelled());
    EXPECT_TRUE(once.flagSetBeforeHook);
    EXPECT_EQ(once.performed, 1);

    reentrant.reenter = true;
    reentrant.cancel();
    reentrant.cancel();
    EXPECT_EQ(reentrant.performed, 2) << "a cancel from inside the hook runs it again";
}

TEST(VNCancelableOperationBaseDeathTest, TheBaseHookMustBeOverridden) {
    EXPECT_DEATH(VNCancelableOperationBase().cancel(),
                 "Fatal error: performCancel must be overridden in a subclass\\.");
}

TEST(VNCancelableOperationComposite, CancelsEachChildOnceInOrder) {
    std::vector<std::string> log;
    auto base = std::make_shared<CountingCancelable>();
    auto operation = std::make_shared<Operation>();
    VNCancelableOperationComposite composite({std::make_shared<Recorder>("first", log), base,
                                              nullptr, operation,
                                              std::make_shared<Recorder>("last", log)});
    composite.cancel();
    composite.cancel();
    EXPECT_TRUE(composite.isCancelled());
    EXPECT_EQ(log, (std::vector<std::string>{"first", "last"}));
    EXPECT_EQ(base->performed, 1);
    EXPECT_TRUE(operation->isCancelled()) << "platform operations conform too";

    VNCancelableOperationComposite empty({});
    empty.cancel();
    EXPECT_TRUE(empty.isCancelled());
}

TEST(VNCancelableOperationWrapper,
     ReplacingTheInnerOperationCancelsTheReplacedOneUnlessItIsTheSameObject) {
    std::vector<std::string> log;
    auto first = std::make_shared<Recorder>("first", log);
    VNCancelableOperationWrapper wrapper(first);
    wrapper.setInnerOperation(first);
    EXPECT_TRUE(log.empty()) << "the same object is not cancelled";
    wrapper.setInnerOperation(std::make_shared<Recorder>("second", log));
    EXPECT_EQ(log, (std::vector<std::string>{"first"}))
        << "cancelled at once, although the wrapper is live";
    wrapper.cancel();
    EXPECT_EQ(log, (std::vector<std::string>{"first", "second"}));

    // Once cancelled, the wrapper takes a new inner operation and leaves it running.
    auto fresh = std::make_shared<CountingCancelable>();
    wrapper.setInnerOperation(fresh);
    EXPECT_EQ(log, (std::vector<std::string>{"first", "second", "second"}));
    wrapper.cancel();
    EXPECT_FALSE(fresh->isCancelled());
}

TEST(VNCancelableOperationWrapperDeathTest, TheInnerOperationIsNeverNull) {
    EXPECT_DEATH(VNCancelableOperationWrapper(nullptr), "needs an inner operation");
}

TEST(VNCancelableOperationWithBlock, CallsItsBlockOnceOnTheCallingThreadAndKeepsIt) {
    int calls = 0;
    std::thread::id calledOn;
    VNCancelableOperationWithBlock operation([&] {
        ++calls;
        calledOn = std::this_thread::get_id();
    });
    std::thread::id canceller;
    std::thread([&] {
        canceller = std::this_thread::get_id();
        operation.cancel();
        operation.cancel();
    }).join();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(calledOn, canceller);
    EXPECT_TRUE(operation.cancelblock() != nullptr);

    VNCancelableOperationWithBlock withoutBlock;
    withoutBlock.cancel();
    EXPECT_TRUE(withoutBlock.isCancelled());
}

}  // namespace
}  // namespace vn
