#include "vn/model/VNUIKitMappings.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(VNUIKitMappings, InputViewAppearanceGivesTheKeyboardAppearance) {
    EXPECT_EQ(UIKeyboardAppearanceFromVNInputViewAppearance(VNInputViewAppearanceDefault), 0);
    EXPECT_EQ(UIKeyboardAppearanceFromVNInputViewAppearance(VNInputViewAppearanceLight), 2);
    EXPECT_EQ(UIKeyboardAppearanceFromVNInputViewAppearance(VNInputViewAppearanceDark), 1);
    EXPECT_EQ(UIKeyboardAppearanceFromVNInputViewAppearance(static_cast<VNInputViewAppearance>(3)),
              0);
    EXPECT_EQ(UIKeyboardAppearanceAlert, UIKeyboardAppearanceDark);
}

TEST(VNUIKitMappings, EnterKeyTypesGiveThePlatformsReturnKeyNumbers) {
    const std::int64_t expected[] = {0, 1, 6, 7, 9, 4, 3, 0, 0};
    for (int raw = 0; raw < 9; ++raw) {
        EXPECT_EQ(UIReturnKeyTypeFromVNEnterTypeKeyType(static_cast<VNEnterTypeKeyType>(raw)),
                  expected[raw])
            << raw;
    }
    EXPECT_EQ(UIReturnKeyTypeFromVNEnterTypeKeyType(static_cast<VNEnterTypeKeyType>(255)),
              UIReturnKeyDefault);
    EXPECT_EQ(UIReturnKeyContinue, 11);
    EXPECT_EQ(UIReturnKeyEmergencyCall, 10);
}

TEST(VNUIKitMappings, FontCategoriesGiveThePlatformsTextStyleNames) {
    const char* const expected[] = {nullptr,
                                    "UICTFontTextStyleHeadline",
                                    "UICTFontTextStyleSubhead",
                                    "UICTFontTextStyleBody",
                                    "UICTFontTextStyleFootnote",
                                    "UICTFontTextStyleCaption1",
                                    "UICTFontTextStyleCaption2",
                                    nullptr,
                                    nullptr};
    for (int raw = 0; raw < 9; ++raw) {
        const std::optional<UIFontTextStyle> style =
            UIFontTextStyleFromVNFontCategory(static_cast<VNFontCategory>(raw));
        if (expected[raw]) {
            EXPECT_EQ(style, expected[raw]) << raw;
        } else {
            EXPECT_EQ(style, std::nullopt) << raw;
        }
    }
}

TEST(VNUIKitMappings, FontWeightsFollowTheModelsOrder) {
    const double expected[] = {-0.6, -0.8, -0.4, 0.0, 0.23, 0.3, 0.4, 0.56, 0.62, 0.0, 0.0};
    const int raws[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 255};
    for (int i = 0; i < 11; ++i) {
        EXPECT_DOUBLE_EQ(UIFontWeightFromVNFontTypeWeight(static_cast<VNFontTypeWeight>(raws[i])),
                         expected[i])
            << raws[i];
    }
}

}  // namespace
}  // namespace vn
