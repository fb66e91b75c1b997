#include "vn/platform/Object.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace vn {
namespace {

class Probe final : public Object {
  public:
    explicit Probe(std::atomic<int>* deaths = nullptr) : deaths_(deaths) {}
    ~Probe() override {
        if (deaths_) ++*deaths_;
    }

  private:
    std::atomic<int>* deaths_;
};

TEST(Object, DescribesItselfByClassAndAddress) {
    const auto probe = std::make_shared<Probe>();
    EXPECT_EQ(probe->className(), "Probe");
    EXPECT_EQ(probe->description().rfind("<Probe: 0x", 0), 0u);
    EXPECT_TRUE(probe->isEqual(*probe));
    EXPECT_FALSE(probe->isEqual(Probe()));
    EXPECT_EQ(probe->boolValue(), std::nullopt);
}

TEST(Object, AssociatedObjectsAreReplacedRemovedAndReleasedWithTheirOwner) {
    static const char keyA = 0;
    static const char keyB = 0;
    std::atomic<int> deaths{0};
    auto owner = std::make_shared<Probe>();
    owner->setAssociatedObject(&keyA, std::make_shared<Probe>(&deaths));
    owner->setAssociatedObject(&keyB, std::make_shared<Probe>(&deaths));
    EXPECT_NE(owner->associatedObject(&keyA), owner->associatedObject(&keyB));

    owner->setAssociatedObject(&keyA,
                               std::make_shared<Probe>(&deaths));  // replaces: the first dies
    EXPECT_EQ(deaths, 1);
    owner->setAssociatedObject(&keyB, nullptr);
    EXPECT_EQ(deaths, 2);
    EXPECT_EQ(owner->associatedObject(&keyB), nullptr);

    owner.reset();
    EXPECT_EQ(deaths, 3);
}

TEST(Object, AssociatedObjectsSurviveConcurrentUse) {
    const auto owner = std::make_shared<Probe>();
    static const char keys[4] = {};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 2000; ++i) {
                owner->setAssociatedObject(&keys[t], std::make_shared<Probe>());
                ASSERT_NE(owner->associatedObject(&keys[t]), nullptr);
            }
        });
    }
    for (auto& thread : threads) thread.join();
    for (const char& key : keys) EXPECT_NE(owner->associatedObject(&key), nullptr);
}

}  // namespace
}  // namespace vn
