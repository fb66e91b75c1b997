#include "vn/geometry/Screen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>

#include "testing/ScopedProcessState.h"
#include "vn/platform/Exception.h"

namespace vn {
namespace {

class ScreenTest : public ::testing::Test {
  protected:
    testing::ScopedProcessState state;
};

TEST_F(ScreenTest, HostDescribesAndRemovesItsScreen) {
    EXPECT_EQ(VNMainScreenScale(), 1);  // headless
    EXPECT_EQ(VNMainScreenSize(), CGSizeZero);
    Screen::setMain(ScreenDescription{3, {390, 844}});
    EXPECT_EQ(VNMainScreenScale(), 3);
    EXPECT_EQ(VNMainScreenSize(), CGSizeMake(390, 844));
    Screen::setMain(std::nullopt);
    EXPECT_EQ(VNMainScreenScale(), 1);
    EXPECT_EQ(VNMainScreenSize(), CGSizeZero);
}

TEST_F(ScreenTest, RejectsScalesThatAreNotPositive) {
    Screen::setMain(ScreenDescription{2, {1, 1}});
    for (const CGFloat scale : {0.0, -1.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
        try {
            Screen::setMain(ScreenDescription{scale, {}});
            ADD_FAILURE() << "accepted scale " << scale;
        } catch (const Exception& exception) {
            EXPECT_EQ(exception.name(), NSInvalidArgumentException);
            EXPECT_EQ(exception.reason(), "Screen scale must be a positive finite number");
        }
    }
    EXPECT_EQ(VNMainScreenScale(), 2);  // the earlier description stays
}

TEST_F(ScreenTest, ReadersNeverSeeHalfADescription) {
    std::thread writer([] {
        for (int i = 0; i < 2000; ++i)
            Screen::setMain(ScreenDescription{i % 2 ? 2.0 : 3.0, {i % 2 ? 100.0 : 300.0, 1}});
    });
    int halfDescriptions = 0;
    for (int i = 0; i < 2000; ++i) {
        const auto screen = Screen::main();
        if (screen && screen->fixedCoordinateSpaceSize.width != (screen->scale == 2 ? 100 : 300))
            ++halfDescriptions;
    }
    writer.join();
    EXPECT_EQ(halfDescriptions, 0);
}

}  // namespace
}  // namespace vn
