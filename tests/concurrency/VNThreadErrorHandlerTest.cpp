#include "vn/concurrency/VNThreadErrorHandler.h"

#include <gtest/gtest.h>

#include <thread>

#include "vn/platform/Thread.h"

namespace vn {
namespace {

TEST(VNThreadErrorHandler, EachThreadHasOneHandlerKeptInItsDictionary) {
    const auto handler = VNThreadErrorHandler::current();
    EXPECT_EQ(VNThreadErrorHandler::errorHandler(), handler);
    EXPECT_EQ(Thread::threadDictionary()["kVNThreadErrorHandlerDictionaryKey"].object(), handler);
    std::shared_ptr<VNThreadErrorHandler> other;
    std::thread([&] { other = VNThreadErrorHandler::current(); }).join();
    EXPECT_NE(other, handler);
}

TEST(VNThreadErrorHandler, CollectsErrorsInOrderAndRemovesByCodeWhateverTheDomain) {
    VNThreadErrorHandler handler;
    handler.removeErrorsWithCode(1);  // on an empty list
    EXPECT_FALSE(handler.hasError());
    handler.addErrorWithCode(1, "One went wrong");
    handler.addError(2, std::nullopt);
    const auto foreign = Error::make(NSURLErrorDomain, 1);
    handler.addError(foreign);
    handler.addError(Error::make("other", 3));
    handler.addError(foreign);
    handler.addError(nullptr);
    auto errors = handler.getErrors();
    ASSERT_EQ(errors.size(), 5u);
    EXPECT_EQ(errors[0]->domain(), "vn");
    EXPECT_EQ(errors[0]->userInfoLocalizedDescription(), "One went wrong");
    EXPECT_EQ(errors[1]->code(), 2);
    EXPECT_FALSE(errors[1]->hasUserInfoLocalizedDescription());

    handler.removeErrorsWithCode(1);
    errors = handler.getErrors();
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_EQ(errors[0]->code(), 2);
    EXPECT_EQ(errors[1]->domain(), "other");
    handler.clearErrors();
    EXPECT_FALSE(handler.hasError());
    EXPECT_EQ(errors.size(), 2u) << "getErrors returned a copy";
}

TEST(VNThreadErrorHandlerDeathTest, SomethingElseUnderTheKeyStopsTheProcess) {
    EXPECT_DEATH(
        {
            Thread::threadDictionary().insert_or_assign("kVNThreadErrorHandlerDictionaryKey",
                                                        Value("not a handler"));
            VNThreadErrorHandler::current();
        },
        "other than a VNThreadErrorHandler");
}

}  // namespace
}  // namespace vn
