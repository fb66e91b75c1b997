#include "vn/concurrency/VNWeakWrapper.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(VNWeakWrapper, DoesNotKeepItsObjectAliveAndFilteringKeepsTheLiveOnesInOrder) {
    auto a = std::make_shared<Object>();
    auto b = std::make_shared<Object>();
    auto c = std::make_shared<Object>();
    std::vector<std::shared_ptr<VNWeakWrapper>> wrappers{
        VNWeakWrapper::weakWrapperWithInnerObject(a), VNWeakWrapper::weakWrapperWithInnerObject(b),
        nullptr, VNWeakWrapper::weakWrapperWithInnerObject(c), std::make_shared<VNWeakWrapper>()};
    EXPECT_EQ(a.use_count(), 1);
    b.reset();
    EXPECT_EQ(wrappers[1]->innerObject(), nullptr);
    EXPECT_EQ(VNWeakWrapper::arrayFilteringWeakReferences(wrappers),
              (std::vector<ObjectPtr>{a, c}));
    a.reset();
    c.reset();
    EXPECT_TRUE(VNWeakWrapper::arrayFilteringWeakReferences(wrappers).empty());
    wrappers[4]->setInnerObject(a = std::make_shared<Object>());
    EXPECT_EQ(VNWeakWrapper::arrayFilteringWeakReferences(wrappers), (std::vector<ObjectPtr>{a}));
}

}  // namespace
}  // namespace vn
