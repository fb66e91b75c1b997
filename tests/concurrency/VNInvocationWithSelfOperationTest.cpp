#include "vn/concurrency/VNInvocationWithSelfOperation.h"

#include <gtest/gtest.h>

#include "vn/concurrency/OperationQueue.h"

namespace vn {
namespace {

using Selector = VNInvocationWithSelfOperation::Selector;

class Loader : public Object {
  public:
    int calls = 0;
    Value seenContext;
    const VNInvocationWithSelfOperation* seenOperation = nullptr;
    ObjectPtr nextReturn = std::make_shared<Object>();

    ObjectPtr load(VNInvocationWithSelfOperation& operation) {
        ++calls;
        seenContext = operation.context();
        seenOperation = &operation;
        return nextReturn;
    }
    void touch(VNInvocationWithSelfOperation&) { ++calls; }
};

std::shared_ptr<VNInvocationWithSelfOperation> invocation(ObjectPtr target, Selector sel) {
    return std::make_shared<VNInvocationWithSelfOperation>(std::move(target), std::move(sel));
}

TEST(VNInvocationWithSelfOperation, PerformsTheSelectorWithItselfAndStoresTheResultOnlyWhenAsked) {
    auto loader = std::make_shared<Loader>();
    auto discarding = invocation(loader, Selector::method(&Loader::load));
    discarding->setContext(Value("from the creator"));
    OperationQueue queue;
    queue.addOperation(discarding);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(loader->seenOperation, discarding.get());
    EXPECT_EQ(loader->seenContext, Value("from the creator"));
    EXPECT_EQ(discarding->result(), nullptr)
        << "hasReturnValue was false: the return value is discarded";

    auto storing = invocation(loader, Selector::method(&Loader::load));
    storing->setHasReturnValue(true);
    storing->start();
    EXPECT_EQ(storing->result(), loader->nextReturn);
    EXPECT_FALSE(storing->hasReturnValue()) << "storing a new result consumes the flag";

    auto same = invocation(loader, Selector::method(&Loader::load));
    same->setResult(loader->nextReturn);
    same->setHasReturnValue(true);
    same->start();
    EXPECT_TRUE(same->hasReturnValue()) << "the object already held does not reset the flag";
    EXPECT_EQ(loader->calls, 3);
}

TEST(VNInvocationWithSelfOperation, SettingAResultResetsTheFlagOnlyWhenTheObjectChanges) {
    const auto a = std::make_shared<Object>();
    const auto b = std::make_shared<Object>();
    const struct {
        ObjectPtr before, after;
        bool flagAfter;
    } cases[] = {{nullptr, nullptr, true},
                 {nullptr, a, false},
                 {a, a, true},
                 {a, b, false},
                 {a, nullptr, false}};
    for (const auto& c : cases) {
        auto operation = invocation(nullptr, {});
        operation->setResult(c.before);
        operation->setHasReturnValue(true);
        operation->setResult(c.after);
        EXPECT_EQ(operation->hasReturnValue(), c.flagAfter);
    }
}

TEST(VNInvocationWithSelfOperation, DoesNothingWhenTheTargetDoesNotRespondOrWhenCancelled) {
    auto loader = std::make_shared<Loader>();
    auto cancelled = invocation(loader, Selector::method(&Loader::load));
    cancelled->cancel();
    const std::shared_ptr<VNInvocationWithSelfOperation> silent[] = {
        invocation(std::make_shared<Object>(), Selector::method(&Loader::load)),  // another class
        invocation(loader, Selector()),                                           // no method
        invocation(nullptr, Selector::method(&Loader::touch)),                    // no target
        cancelled,
    };
    for (const auto& operation : silent) {
        operation->setHasReturnValue(true);
        operation->start();
        EXPECT_TRUE(operation->isFinished());
        EXPECT_EQ(operation->result(), nullptr);
    }
    cancelled->main();  // main() itself checks the flag too
    EXPECT_EQ(loader->calls, 0);

    invocation(loader, Selector::method(&Loader::touch))->start();
    EXPECT_EQ(loader->calls, 1) << "a method without a result is understood too";
}

}  // namespace
}  // namespace vn
