#include "vn/errors/VNRecoveryAttempter.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

const ErrorPtr kError = Error::make(VNErrorDomain, 1);

TEST(VNRecoveryAttempter, SynchronousRecoveryAnswersWithTheBlock) {
    VNRecoveryAttempter attempter;
    EXPECT_FALSE(attempter.attemptRecoveryFromError(kError, 0)) << "no block: no recovery";
    std::vector<std::int64_t> asked;
    attempter.setAttemptRecoverBlock([&](const ErrorPtr& error, std::int64_t index) {
        EXPECT_EQ(error, kError);
        asked.push_back(index);
        return index == 3;
    });
    EXPECT_TRUE(attempter.attemptRecoveryFromError(kError, 3));
    EXPECT_FALSE(attempter.attemptRecoveryFromError(kError, 2));
    EXPECT_EQ(asked, (std::vector<std::int64_t>{3, 2}));
}

TEST(VNRecoveryAttempter, DelegateFormUsesTheAsyncBlockOrReportsNotRecovered) {
    VNRecoveryAttempter attempter;
    attempter.setAttemptRecoverBlock([](const ErrorPtr&, std::int64_t) -> bool {
        ADD_FAILURE() << "the synchronous block is never consulted by the delegate form";
        return true;
    });
    const auto delegate = std::make_shared<Object>();
    std::vector<std::tuple<ObjectPtr, bool, void*>> reports;
    const VNRecoveryAttempter::DidRecoverSelector selector = [&](const ObjectPtr& d, bool recovered,
                                                                 void* argument) {
        reports.emplace_back(d, recovered, argument);
    };

    // Without an async block: "not recovered", with the argument read from the context buffer.
    int payload = 42;
    void* contextBuffer = &payload;
    attempter.attemptRecoveryFromError(kError, 0, delegate, selector, &contextBuffer);
    attempter.attemptRecoveryFromError(kError, 0, delegate, selector, nullptr);
    attempter.attemptRecoveryFromError(kError, 0, nullptr, selector,
                                       &contextBuffer);  // no delegate
    attempter.attemptRecoveryFromError(kError, 0, delegate, nullptr,
                                       &contextBuffer);  // no selector
    EXPECT_EQ(reports, (std::vector<std::tuple<ObjectPtr, bool, void*>>{
                           {delegate, false, &payload}, {delegate, false, nullptr}}));

    // With one: it gets all five arguments and does the reporting itself.
    reports.clear();
    attempter.setAsyncAttemptRecoverBlock(
        [&](const ErrorPtr& error, std::int64_t index, const ObjectPtr& d,
            const VNRecoveryAttempter::DidRecoverSelector& s, void* context) {
            EXPECT_EQ(error, kError);
            EXPECT_EQ(index, 5);
            EXPECT_EQ(context, &contextBuffer);
            s(d, true, context);
            return true;
        });
    attempter.attemptRecoveryFromError(kError, 5, delegate, selector, &contextBuffer);
    EXPECT_EQ(reports,
              (std::vector<std::tuple<ObjectPtr, bool, void*>>{{delegate, true, &contextBuffer}}));
}

}  // namespace
}  // namespace vn
