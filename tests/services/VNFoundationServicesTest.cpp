#include "vn/services/VNFoundationServices.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "testing/RecordingAlertService.h"
#include "testing/ScopedProcessState.h"
#include "vn/services/VNLogAlertMessageService.h"

namespace vn {
namespace {

using testing::RecordingAlertService;

class QuietLogger final : public VNLoggerService {
  public:
    void startLogging() override {}
    void endLogging() override {}
    bool isLogEnabled() const override { return true; }
    VNLoggerLevel logLevelForType(VNLoggerType) const override { return VNLoggerLevel::off; }
    void logMessage(std::string_view, VNLoggerType, VNLoggerLevel, bool) override {}
};

class VNFoundationServicesTest : public ::testing::Test {
  protected:
    testing::ScopedProcessState state;
};

TEST_F(VNFoundationServicesTest, OptionalSlotsAnswerTheirCurrentContentAndRegisteringReplaces) {
    EXPECT_EQ(VNFoundationServices::loggerService(), nullptr);
    auto first = std::make_shared<QuietLogger>();
    auto second = std::make_shared<QuietLogger>();
    VNFoundationServices::registerLoggerService(first);
    EXPECT_EQ(VNFoundationServices::loggerService(), first);
    VNFoundationServices::registerLoggerService(second);
    EXPECT_EQ(VNFoundationServices::loggerService(), second);
    EXPECT_EQ(first.use_count(), 1) << "the replaced service is released";

    // The indicator and watch slots behave alike.
    struct Watch final : VNWatchConnectivityService {};
    auto watch = std::make_shared<Watch>();
    EXPECT_EQ(VNFoundationServices::watchConnectivityService(), nullptr);
    VNFoundationServices::registerWatchConnectivityService(watch);
    EXPECT_EQ(VNFoundationServices::watchConnectivityService(), watch);
    EXPECT_EQ(VNFoundationServices::networkActivityIndicatorService(), nullptr);
    EXPECT_EQ(VNFoundationServices::progressActivityIndicatorService(), nullptr);

    VNFoundationServices::reset();
    EXPECT_EQ(VNFoundationServices::loggerService(), nullptr);
    EXPECT_EQ(VNFoundationServices::watchConnectivityService(), nullptr);
    EXPECT_EQ(watch.use_count(), 1);
}

TEST_F(VNFoundationServicesTest, AlertServiceIsFrozenOnFirstRead) {
    const auto registered = std::make_shared<RecordingAlertService>();
    VNFoundationServices::registerAlertMessageService(registered);
    EXPECT_EQ(VNFoundationServices::alertMessageService(), registered);
    VNFoundationServices::registerAlertMessageService(std::make_shared<RecordingAlertService>());
    EXPECT_EQ(VNFoundationServices::alertMessageService(), registered)
        << "a later registration has no effect";

    VNFoundationServices::reset();  // unfreezes; nothing registered now
    const auto fallback = VNFoundationServices::alertMessageService();
    EXPECT_NE(std::dynamic_pointer_cast<VNLogAlertMessageService>(fallback), nullptr);
    VNFoundationServices::registerAlertMessageService(registered);
    EXPECT_EQ(VNFoundationServices::alertMessageService(), fallback);
}

TEST_F(VNFoundationServicesTest, ConcurrentFirstReadsAgreeOnOneAlertService) {
    std::vector<std::shared_ptr<VNAlertMessageService>> seen(8);
    std::vector<std::thread> threads;
    for (auto& slot : seen)
        threads.emplace_back([&slot] { slot = VNFoundationServices::alertMessageService(); });
    for (auto& thread : threads) thread.join();
    for (const auto& service : seen) EXPECT_EQ(service, seen.front());
    EXPECT_NE(seen.front(), nullptr);
}

}  // namespace
}  // namespace vn

namespace vn {
namespace {

TEST(VNNetworkActivityCounter, CountsPairsFromManyThreadsAndNeverGoesBelowZero) {
    VNNetworkActivityCounter counter;
    counter.stopActivity();
    EXPECT_EQ(counter.activityCount(), 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&counter] {
            for (int i = 0; i < 1000; ++i) counter.startActivity();
            for (int i = 0; i < 999; ++i) counter.stopActivity();
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(counter.activityCount(), 8);
    EXPECT_TRUE(counter.isActive());
    for (int i = 0; i < 20; ++i) counter.stopActivity();
    EXPECT_EQ(counter.activityCount(), 0);
    EXPECT_FALSE(counter.isActive());
}

}  // namespace
}  // namespace vn
