#include "vn/concurrency/VNUnretainedWrapper.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(VNUnretainedWrapper, KeepsTheAddressButLosesTheWeakReferenceWhenTheObjectDies) {
    auto object = std::make_shared<Object>();
    Object* const address = object.get();
    VNUnretainedWrapper wrapper(object);
    EXPECT_EQ(object.use_count(), 1) << "not retained";
    EXPECT_EQ(wrapper.unretainedObject(), address);
    EXPECT_EQ(wrapper.weakObject(), object);
    object.reset();
    EXPECT_EQ(wrapper.unretainedObject(), address);
    EXPECT_EQ(wrapper.weakObject(), nullptr);

    VNUnretainedWrapper ofNothing(nullptr);
    EXPECT_EQ(ofNothing.unretainedObject(), nullptr);
    EXPECT_EQ(ofNothing.weakObject(), nullptr);
}

}  // namespace
}  // namespace vn
