#include "vn/concurrency/ThreadVNFoundation.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "concurrency/ObjectMonitor.h"

namespace vn {
namespace {

class Account : public Object {
  public:
    long balance = 0;  // guarded by the object's monitor only
};
class Tagged {
  public:
    virtual ~Tagged() = default;
};
class TaggedAccount : public Tagged, public Account {};

TEST(ThreadVNFoundation, ObjcSyncIsARecursiveMonitorThatReleasesOnThrowAndLeavesNothingBehind) {
    auto account = std::make_shared<Account>();
    EXPECT_EQ(objcSync(account, [&] { return objcSync(*account, [] { return 42; }); }), 42);
    EXPECT_THROW(objcSync(account, [] { throw std::runtime_error("inside"); }), std::runtime_error);
    bool tookIt = false;
    std::thread([&] { objcSync(account, [&] { tookIt = true; }); }).join();
    EXPECT_TRUE(tookIt) << "the throw released the monitor";
    objcSync(account, [] { EXPECT_EQ(concurrency_internal::liveObjectMonitorCount(), 1u); });
    for (int i = 0; i < 100; ++i) objcSync(std::make_shared<Account>(), [] {});
    EXPECT_EQ(concurrency_internal::liveObjectMonitorCount(), 0u) << "no entry outlives its use";
}

TEST(ThreadVNFoundation, ObjcSyncExcludesOtherThreadsForTheSameObjectWhateverTheView) {
    auto account = std::make_shared<TaggedAccount>();
    std::shared_ptr<Tagged> asTagged = account;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 5000; ++i) {
                if (t % 2) {
                    objcSync(asTagged, [&] { ++account->balance; });
                } else {
                    objcSync(static_cast<const Object&>(*account), [&] { ++account->balance; });
                }
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(account->balance, 20000);
}

class Formatter : public Object {
  public:
    explicit Formatter(std::string pattern) : pattern(std::move(pattern)) {}
    std::string pattern;
};

TEST(ThreadVNFoundation, TheThreadCacheBuildsOncePerThreadAndKey) {
    Thread::threadDictionary().erase("vn.test.formatter");
    int builds = 0;
    const auto cached = [&] {
        return threadDictionaryCachedObject<std::shared_ptr<Formatter>>("vn.test.formatter", [&] {
            ++builds;
            return std::make_shared<Formatter>("#,##0");
        });
    };
    const auto first = cached();
    EXPECT_EQ(cached(), first);
    EXPECT_EQ(builds, 1);
    EXPECT_EQ(Thread::threadDictionary()["vn.test.formatter"].object(), first);
    std::shared_ptr<Formatter> onOtherThread;
    std::thread([&] { onOtherThread = cached(); }).join();
    EXPECT_EQ(builds, 2);
    EXPECT_NE(onOtherThread, first);
}

TEST(ThreadVNFoundation, TheThreadCacheReplacesAValueOfAnotherType) {
    Thread::threadDictionary().insert_or_assign("vn.test.mixed",
                                                Value("a string, not a formatter"));
    const auto formatter = threadDictionaryCachedObject<std::shared_ptr<Formatter>>(
        "vn.test.mixed", [] { return std::make_shared<Formatter>("0.00"); });
    EXPECT_EQ(formatter->pattern, "0.00");
    EXPECT_EQ(Thread::threadDictionary()["vn.test.mixed"].object(), formatter);

    // Plain C++ values are boxed; asking for another type rebuilds and replaces.
    int builds = 0;
    const auto text = [&](const char* built) {
        return threadDictionaryCachedObject<std::string>(
            "vn.test.mixed", [&] { return ++builds, std::string(built); });
    };
    EXPECT_EQ(text("text"), "text");
    EXPECT_EQ(text("other"), "text");
    EXPECT_EQ(threadDictionaryCachedObject<int>("vn.test.mixed", [&] { return ++builds, 7; }), 7);
    EXPECT_EQ(text("again"), "again");
    EXPECT_EQ(builds, 3);
}

}  // namespace
}  // namespace vn
