#include "vn/platform/NotificationCenter.h"

#include <gtest/gtest.h>

#include <deque>
#include <stdexcept>
#include <string>
#include <vector>

namespace vn {
namespace {

class DeferredExecutor final : public Executor {
  public:
    void execute(std::function<void()> block) override { pending.push_back(std::move(block)); }
    void drain() {
        while (!pending.empty()) {
            auto block = std::move(pending.front());
            pending.pop_front();
            block();
        }
    }
    std::deque<std::function<void()>> pending;
};

TEST(NotificationCenter, DeliversByNameAndSenderInRegistrationOrder) {
    NotificationCenter center;
    const auto sender = std::make_shared<Object>();
    const auto other = std::make_shared<Object>();
    std::vector<std::string> heard;
    center.addObserver("A", nullptr, nullptr,
                       [&](const Notification& n) { heard.push_back("any-sender " + n.name); });
    center.addObserver("A", sender.get(), nullptr,
                       [&](const Notification&) { heard.push_back("sender only"); });
    center.addObserver("", nullptr, nullptr,
                       [&](const Notification& n) { heard.push_back("every name " + n.name); });

    center.postNotificationName("A", sender);
    center.postNotificationName("A", other);
    center.postNotificationName("B");
    EXPECT_EQ(heard, (std::vector<std::string>{"any-sender A", "sender only", "every name A",
                                               "any-sender A", "every name A", "every name B"}));
}

TEST(NotificationCenter, ObserversMayRemoveThemselvesAndAddOthersWhileNotified) {
    NotificationCenter center;
    int onceCalls = 0;
    int lateCalls = 0;
    ObjectPtr onceToken;
    onceToken = center.addObserver("N", nullptr, nullptr, [&](const Notification&) {
        ++onceCalls;
        center.removeObserver(onceToken);
        center.addObserver("N", nullptr, nullptr, [&](const Notification&) { ++lateCalls; });
    });
    center.postNotificationName("N");
    center.postNotificationName("N");
    EXPECT_EQ(onceCalls, 1);
    EXPECT_EQ(lateCalls, 1);  // added during the first post, so heard only the second
    EXPECT_EQ(center.observerCount(), 1u);
}

TEST(NotificationCenter, QueuedObserversRunOnTheirExecutorWithTheNotificationCopied) {
    NotificationCenter center;
    const auto executor = std::make_shared<DeferredExecutor>();
    std::vector<std::string> heard;
    center.addObserver("N", nullptr, executor, [&](const Notification& n) {
        heard.push_back(n.name + ":" + n.userInfo.at("k").description());
    });
    center.post(Notification{"N", nullptr, {{"k", "v"}}});
    EXPECT_TRUE(heard.empty());
    ASSERT_EQ(executor->pending.size(), 1u);
    executor->drain();
    EXPECT_EQ(heard, std::vector<std::string>{"N:v"});
}

TEST(NotificationCenter, AnObserverRemovedDuringAPostStillReceivesThatPost) {
    NotificationCenter center;
    std::vector<std::string> heard;
    ObjectPtr second;
    center.addObserver("N", nullptr, nullptr, [&](const Notification&) {
        heard.push_back("first");
        center.removeObserver(second);
    });
    second = center.addObserver("N", nullptr, nullptr,
                                [&](const Notification&) { heard.push_back("second"); });
    center.postNotificationName("N");
    center.postNotificationName("N");
    EXPECT_EQ(heard, (std::vector<std::string>{"first", "second", "first"}));
}

TEST(NotificationCenter, AThrowingBlockReachesThePosterAndStopsOnlyThatPost) {
    NotificationCenter center;
    std::vector<std::string> heard;
    bool fail = true;
    center.addObserver("N", nullptr, nullptr, [&](const Notification&) {
        heard.push_back("first");
        if (fail) throw std::runtime_error("observer failed");
    });
    center.addObserver("N", nullptr, nullptr,
                       [&](const Notification&) { heard.push_back("second"); });
    try {
        center.postNotificationName("N");
        ADD_FAILURE() << "the exception did not reach the poster";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "observer failed");
    }
    fail = false;
    center.postNotificationName("N");
    EXPECT_EQ(heard, (std::vector<std::string>{"first", "first", "second"}));
    EXPECT_EQ(center.observerCount(), 2u);
}

TEST(NotificationCenter, SendersMatchByIdentityNotByEquality) {
    class AlwaysEqual final : public Object {
      public:
        bool isEqual(const Object&) const override { return true; }
    };
    NotificationCenter center;
    const auto sender = std::make_shared<AlwaysEqual>();
    const auto twin = std::make_shared<AlwaysEqual>();
    int heard = 0;
    center.addObserver("N", sender.get(), nullptr, [&](const Notification&) { ++heard; });
    center.postNotificationName("N", twin);
    center.postNotificationName("N");
    EXPECT_EQ(heard, 0) << "an equal object and no object are not the sender";
    center.postNotificationName("N", sender);
    EXPECT_EQ(heard, 1);
}

}  // namespace
}  // namespace vn
