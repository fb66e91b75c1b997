#include "vn/concurrency/NotificationCenterVNFoundation.h"

#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <thread>
#include <vector>

namespace vn {
namespace {

// An executor that keeps blocks until told to run them.
class HeldExecutor : public Executor {
  public:
    void execute(std::function<void()> block) override { blocks.push_back(std::move(block)); }
    std::deque<std::function<void()>> blocks;
};

TEST(NotificationCenterVNFoundation,
     AnObserverUntilDeallocHearsNotificationsOnlyWhileItsOwnerLives) {
    NotificationCenter center;
    auto owner = std::make_shared<Object>();
    std::vector<std::string> heard;
    vnAddObserverUntilDealloc(
        center, owner, "vn.test.changed", nullptr, nullptr,
        [&](const ObjectPtr& receivedOwner, const Notification& notification) {
            EXPECT_EQ(receivedOwner, owner);
            heard.push_back(notification.name);
        });
    EXPECT_EQ(owner.use_count(), 1) << "the owner is held weakly";
    center.postNotificationName("vn.test.changed");
    center.postNotificationName("vn.test.other");
    EXPECT_EQ(heard, (std::vector<std::string>{"vn.test.changed"}));

    // A notification queued before the owner died is dropped when it arrives.
    auto executor = std::make_shared<HeldExecutor>();
    int late = 0;
    vnAddObserverUntilDealloc(center, owner, "vn.test.late", nullptr, executor,
                              [&](const ObjectPtr&, const Notification&) { ++late; });
    center.postNotificationName("vn.test.late");
    owner.reset();
    EXPECT_EQ(center.observerCount(), 0u);
    for (auto& block : executor->blocks) block();
    EXPECT_EQ(late, 0);
}

TEST(NotificationCenterVNFoundation, RegistrationsOnOneOwnerAreRemovedInRegistrationOrder) {
    NotificationCenter center;
    std::vector<std::string> released;
    // Each block holds a sentinel that reports when the centre releases the registration.
    struct Sentinel {
        std::string name;
        std::vector<std::string>& log;
        ~Sentinel() { log.push_back(name); }
    };
    auto owner = std::make_shared<Object>();
    for (const char* name : {"first", "second", "third"}) {
        auto sentinel = std::make_shared<Sentinel>(name, released);
        vnAddObserverUntilDealloc(center, owner, name, nullptr, nullptr,
                                  [sentinel](const ObjectPtr&, const Notification&) {});
    }
    owner.reset();
    EXPECT_EQ(released, (std::vector<std::string>{"first", "second", "third"}));
    EXPECT_EQ(center.observerCount(), 0u);
}

TEST(NotificationCenterVNFoundation, RegistrationsFromManyThreadsAreAllRemovedWithTheOwner) {
    NotificationCenter center;
    auto owner = std::make_shared<Object>();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 25; ++i) {
                vnAddObserverUntilDealloc(center, owner, "vn.test.many", nullptr, nullptr,
                                          [](const ObjectPtr&, const Notification&) {});
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(center.observerCount(), 100u);
    owner.reset();
    EXPECT_EQ(center.observerCount(), 0u);
}

TEST(NotificationCenterVNFoundation,
     TheTypedFormHandsTheOwnerWithItsTypeAndAGoneCentreIsLeftAlone) {
    struct Screen : Object {
        int refreshes = 0;
    };
    auto screen = std::make_shared<Screen>();
    NotificationCenter& center = NotificationCenter::defaultCenter();
    const auto before = center.observerCount();
    vnAddObserverUntilDealloc<Screen>(
        center, screen, "vn.test.typed", nullptr, nullptr,
        [](Screen& owner, const Notification&) { ++owner.refreshes; });
    center.postNotificationName("vn.test.typed");
    EXPECT_EQ(screen->refreshes, 1);
    screen.reset();
    EXPECT_EQ(center.observerCount(), before);

    auto owner = std::make_shared<Object>();
    auto shortLived = std::make_shared<NotificationCenter>();
    vnAddObserverUntilDealloc(shortLived, owner, "vn.test.gone", nullptr, nullptr,
                              [](const ObjectPtr&, const Notification&) {});
    shortLived.reset();
    owner.reset();  // the centre is gone: removal does nothing
}

TEST(NotificationCenterVNFoundation, AOnceObserverHearsOneNotificationThenRemovesItself) {
    auto center = std::make_shared<NotificationCenter>();
    std::vector<std::string> heard;
    vnAddOnceObserver(center, "", nullptr, nullptr, [&](const Notification& notification) {
        heard.push_back(notification.name);
    });
    center->postNotificationName("vn.test.first");
    center->postNotificationName("vn.test.second");
    EXPECT_EQ(heard, (std::vector<std::string>{"vn.test.first"}));
    EXPECT_EQ(center->observerCount(), 0u);

    // The token lets the caller remove it before it fires.
    const auto early = vnAddOnceObserver(*center, "vn.test.never", nullptr, nullptr,
                                         [&](const Notification&) { FAIL(); });
    center->removeObserver(early);
    center->postNotificationName("vn.test.never");

    // Concurrent posts reach the block only once.
    std::atomic<int> calls{0};
    vnAddOnceObserver(*center, "vn.test.race", nullptr, nullptr,
                      [&](const Notification&) { ++calls; });
    std::vector<std::thread> posters;
    for (int t = 0; t < 4; ++t) {
        posters.emplace_back([&] {
            for (int i = 0; i < 50; ++i) center->postNotificationName("vn.test.race");
        });
    }
    for (auto& poster : posters) poster.join();
    EXPECT_EQ(calls.load(), 1);
    EXPECT_EQ(center->observerCount(), 0u);
}

}  // namespace
}  // namespace vn
