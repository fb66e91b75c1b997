#include "vn/concurrency/VNReadWriteLock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace vn {
namespace {

TEST(VNReadWriteLock, ReadersShareTheLockAndWritersExcludeEveryone) {
    VNReadWriteLock lock;
    lock.acquireReadLock();
    bool secondReaderIn = false;
    std::thread([&] {
        lock.acquireReadLock();  // would block for ever if readers excluded each other
        secondReaderIn = true;
        lock.unlock();
    }).join();
    EXPECT_TRUE(secondReaderIn);
    lock.unlock();

    // State guarded only by the lock stays consistent (and race-free under TSan).
    long counter = 0;
    std::atomic<bool> readerSawHalfWrite{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 2000; ++i) {
                if (t % 2) {
                    lock.acquireWriteLock();
                    counter += 1;
                    counter += 1;
                } else {
                    lock.acquireReadLock();
                    if (counter % 2) readerSawHalfWrite = true;
                }
                lock.unlock();
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(counter, 8000);
    EXPECT_FALSE(readerSawHalfWrite);
}

}  // namespace
}  // namespace vn
