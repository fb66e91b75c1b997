#include "vn/concurrency/DispatchOnce.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace vn {
namespace {

TEST(DispatchOnce, RunsTheBlockOnceAndLetsLateCallersSeeItsEffect) {
    DispatchOnce token;
    std::atomic<int> runs{0};
    int value = 0;  // written by the one block, read by every caller after dispatchOnce
    std::atomic<int> callersThatSawValue{0};
    std::vector<std::thread> callers;
    for (int i = 0; i < 8; ++i) {
        callers.emplace_back([&] {
            dispatchOnce(token, [&] {
                ++runs;
                value = 42;
            });
            if (value == 42) ++callersThatSawValue;
        });
    }
    for (auto& caller : callers) caller.join();
    EXPECT_EQ(runs.load(), 1);
    EXPECT_EQ(callersThatSawValue.load(), 8);
}

}  // namespace
}  // namespace vn
