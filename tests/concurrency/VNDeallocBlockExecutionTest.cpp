#include "vn/concurrency/VNDeallocBlockExecution.h"

#include <gtest/gtest.h>

#include <thread>

namespace vn {
namespace {

TEST(VNDeallocBlockExecution, RunsTheLastCallbackOnceOnTheReleasingThread) {
    std::vector<std::string> ran;
    std::thread::id ranOn;
    auto execution = std::make_shared<VNDeallocBlockExecution>([&] { ran.push_back("initial"); });
    execution->setCallbackBlock([&] {
        ran.push_back("replacement");
        ranOn = std::this_thread::get_id();
    });
    std::thread releaser([execution = std::move(execution)]() mutable { execution.reset(); });
    const auto releaserId = releaser.get_id();
    releaser.join();
    EXPECT_EQ(ran, (std::vector<std::string>{"replacement"}));
    EXPECT_EQ(ranOn, releaserId);

    {
        VNDeallocBlockExecution cleared([&] { ran.push_back("cleared"); });
        cleared.setCallbackBlock(nullptr);
    }
    EXPECT_EQ(ran.size(), 1u);
}

TEST(VNDeallocBlockExecution, RunsWhenTheObjectItIsAttachedToGoesAway) {
    static const char key = 0;
    int runs = 0;
    auto owner = std::make_shared<Object>();
    owner->setAssociatedObject(&key, std::make_shared<VNDeallocBlockExecution>([&] { ++runs; }));
    EXPECT_EQ(runs, 0);
    owner.reset();
    EXPECT_EQ(runs, 1);
}

}  // namespace
}  // namespace vn
