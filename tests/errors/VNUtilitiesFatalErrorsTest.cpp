#include "vn/errors/VNUtilitiesFatalErrors.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <thread>

#include "testing/CapturingLogListener.h"
#include "testing/ExpectRaises.h"
#include "testing/RecordingAlertService.h"
#include "testing/RecordingLoggerService.h"
#include "testing/ScopedProcessState.h"
#include "vn/log/VNLog.h"
#include "vn/platform/Exception.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/services/VNFoundationServices.h"

// External linkage and out of line, so that the caller's frame is named in the stack part. The
// empty barrier after the call keeps the call from being a tail call, which optimised builds
// would make a jump that leaves no frame of this function on the stack.
[[gnu::noinline]] void recoverFromANamedCaller(std::string_view message) {
    vn::VNUtilities::tryRecoverFatalError(message);
    asm volatile("" ::: "memory");
}

namespace vn {
namespace {

using testing::CapturingLogListener;
using testing::RecordingAlertService;
using testing::RecordingLoggerService;
using testing::ScopedProcessState;

class VNUtilitiesFatalErrorsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        VNLog::addListener(log);
        VNFoundationServices::registerAlertMessageService(alerts);
        VNFoundationServices::registerLoggerService(logger);
    }

    // Expects fn to throw a vn::Exception with the given name and reason and no user info.
    template <typename Fn>
    void expectException(Fn fn, std::string_view name, std::string_view reason) {
        if (const auto raised = testing::expectRaises(fn, name, reason)) {
            EXPECT_TRUE(raised->userInfo().empty());
        }
    }

    ScopedProcessState state;
    std::shared_ptr<CapturingLogListener> log = std::make_shared<CapturingLogListener>();
    std::shared_ptr<RecordingAlertService> alerts = std::make_shared<RecordingAlertService>();
    std::shared_ptr<RecordingLoggerService> logger = std::make_shared<RecordingLoggerService>();
};

TEST_F(VNUtilitiesFatalErrorsTest, ProductionModeRaisesAfterTellingTheLoggerService) {
    using namespace VNUtilities;
    bool blockCalled = false;
    const auto block = [&] { return blockCalled = true; };
    const std::string internal(NSInternalInconsistencyException);
    expectException([] { tryRecoverFatalError("r1"); }, internal, "r1");
    expectException([] { tryRecoverFatalError("r2", "CustomName"); }, "CustomName", "r2");
    expectException([&] { tryRecoverFatalError("r3", block); }, internal, "r3");
    expectException([&] { tryRecoverFatalError("r4", std::nullopt, block); }, internal, "r4");
    expectException([] { tryHandleFatalError("h1"); }, internal, "h1");
    expectException([] { tryHandleFatalError("h2", "Other"); }, "Other", "h2");
    expectException([&] { tryHandleFatalError("h3", block); }, internal, "h3");
    expectException([&] { tryHandleFatalError("h4", "Named", block); }, "Named", "h4");
    EXPECT_FALSE(blockCalled) << "the recovery block is only asked in developer mode";

    const auto entries = logger->entries();
    ASSERT_EQ(entries.size(), 8u);
    EXPECT_EQ(entries[0].message, "ERROR: r1");
    EXPECT_EQ(entries[7].message, "ERROR: h4");
    for (const auto& entry : entries) {
        EXPECT_EQ(entry.type, VNLoggerType::general);
        EXPECT_EQ(entry.level, VNLoggerLevel::error);
        EXPECT_FALSE(entry.logToConsole);
    }
    EXPECT_TRUE(log->messages().empty());
    EXPECT_TRUE(alerts->errors.empty());

    VNFoundationServices::registerLoggerService(nullptr);
    expectException([] { tryRecoverFatalError("without a logger service"); }, internal,
                    "without a logger service");
}

TEST_F(VNUtilitiesFatalErrorsTest, DeveloperModeLogsWithTheCallersStackAndAlertsOnlyForRecover) {
    VNUtilities::setShowDeveloperInfo(true);
    ::testing::internal::CaptureStdout();
    recoverFromANamedCaller("recoverable");
    const ErrorPtr handled = VNUtilities::tryHandleFatalError("handled");
    ::testing::internal::GetCapturedStdout();

    const std::vector<std::string> messages = log->messages();
    ASSERT_EQ(messages.size(), 2u);
    const std::string prefix = "ERROR: recoverableStack Trace:\n\t2 ";
    EXPECT_EQ(messages[0].rfind(prefix, 0), 0u) << messages[0];
    const std::string firstFrame = messages[0].substr(
        prefix.size() - 2, messages[0].find('\n', prefix.size()) - prefix.size() + 2);
    EXPECT_NE(firstFrame.find("recoverFromANamedCaller"), std::string::npos)
        << "the core's and the helper's frames are left out: " << firstFrame;
    EXPECT_EQ(messages[0].substr(messages[0].size() - 2), "\n\n")
        << "the stack part ends with a line feed";
    EXPECT_EQ(messages[1].rfind("ERROR: handledStack Trace:\n\t", 0), 0u);

    ASSERT_EQ(alerts->errors.size(), 1u) << "only the tryRecover family alerts";
    EXPECT_EQ(alerts->errors[0]->domain(), VNFatalErrorDomain);
    EXPECT_EQ(alerts->errors[0]->localizedDescription(), "recoverable");
    EXPECT_EQ(handled->domain(), VNFatalErrorDomain);
    EXPECT_EQ(handled->code(), 0);
    EXPECT_EQ(handled->localizedDescription(), "handled");
    EXPECT_TRUE(logger->entries().empty());
}

TEST_F(VNUtilitiesFatalErrorsTest, DeveloperModeRecoveryBlockDecides) {
    using namespace VNUtilities;
    setShowDeveloperInfo(true);
    ::testing::internal::CaptureStdout();
    int asked = 0;
    tryRecoverFatalError("accepted", [&] { return ++asked > 0; });
    EXPECT_EQ(tryHandleFatalError("accepted too", "Unused", [&] { return ++asked > 0; })
                  ->localizedDescription(),
              "accepted too");
    expectException(
        [&] { tryRecoverFatalError("refused", "Refused", [&] { return ++asked < 0; }); }, "Refused",
        "refused");
    expectException([&] { tryHandleFatalError("refused too", [&] { return ++asked < 0; }); },
                    NSInternalInconsistencyException, "refused too");
    ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(asked, 4);
    EXPECT_EQ(alerts->errors.size(), 1u);
    const auto entries = logger->entries();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].message, "ERROR: refused");
}

TEST_F(VNUtilitiesFatalErrorsTest, TheFallbackAlertServicePrintsTheRecoverableError) {
    VNFoundationServices::reset();  // nothing registered: the log alert service answers
    VNUtilities::setShowDeveloperInfo(true);
    ::testing::internal::CaptureStdout();
    VNUtilities::tryRecoverFatalError("shown on the console");
    const std::string printed = ::testing::internal::GetCapturedStdout();
    EXPECT_NE(printed.find("ERROR: shown on the consoleStack Trace:\n\t"), std::string::npos);
    EXPECT_EQ(printed.substr(printed.size() - std::string("\nshown on the console\n").size()),
              "\nshown on the console\n");
}

// The crash logger prints to standard output; death tests read standard error, so each child
// sends its standard output there first.
void throwOnAThread(std::function<void()> thrower) {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    std::thread(std::move(thrower)).join();
}

TEST_F(VNUtilitiesFatalErrorsTest, UncaughtExceptionsAreLoggedThenPassedOn) {
    EXPECT_DEATH(
        {
            VNUtilities::installUncaughtExceptionsHandler();
            throwOnAThread([] { throw Exception("Boom", "it broke"); });
        },
        "CRASH: it broke\nStack Trace:\n\t.*logger service: endLogging.*terminate called after "
        "throwing an instance "
        "of 'vn::Exception'");
    EXPECT_DEATH(
        {
            VNUtilities::installUncaughtExceptionsHandler();
            throwOnAThread([] { throw std::runtime_error("plain failure"); });
        },
        "CRASH: plain failure\nStack Trace:\n\t");
}

TEST_F(VNUtilitiesFatalErrorsTest, FailingToEndLoggingIsReportedAndTheChainGoesOn) {
    EXPECT_DEATH(
        {
            std::set_terminate([] {
                std::fputs("previous handler ran\n", stderr);
                std::abort();
            });
            VNUtilities::installUncaughtExceptionsHandler();
            VNUtilities::installUncaughtExceptionsHandler();  // must not chain to itself
            logger->setFailOnEnd(true);
            throwOnAThread([] { throw Exception("Boom", "first failure"); });
        },
        "CRASH: first failure\n.*Unexpected exception: could not flush\nStack Trace:\n\t.*previous "
        "handler ran");
}

}  // namespace
}  // namespace vn
