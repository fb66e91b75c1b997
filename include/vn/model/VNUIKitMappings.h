// The model's keyboard and font choices and their mapping onto the user-interface framework's
// values (vn/platform/UIKitConstants.h). Every function is a pure lookup, safe from any thread.
#pragma once

#include <cstdint>
#include <optional>

#include "vn/platform/UIKitConstants.h"

namespace vn {

enum VNInputViewAppearance : std::uint8_t {
    VNInputViewAppearanceDefault = 0,
    VNInputViewAppearanceLight = 1,
    VNInputViewAppearanceDark = 2,
};

// The model's return-key choices.
enum VNEnterTypeKeyType : std::uint8_t {
    VNEnterTypeKeyTypeDefault = 0,
    VNEnterTypeKeyTypeGo = 1,
    VNEnterTypeKeyTypeSearch = 2,
    VNEnterTypeKeyTypeSend = 3,
    VNEnterTypeKeyTypeDone = 4,
    VNEnterTypeKeyTypeNext = 5,
    VNEnterTypeKeyTypeJoin = 6,
};

enum VNFontCategory : std::uint8_t {
    VNFontCategoryNone = 0,
    VNFontCategoryHeadline = 1,
    VNFontCategorySubheadline = 2,
    VNFontCategoryBody = 3,
    VNFontCategoryFootnote = 4,
    VNFontCategoryCaption1 = 5,
    VNFontCategoryCaption2 = 6,
};

// The model's weight scale, in this order (thin before ultra-light, as the model numbers them).
enum VNFontTypeWeight : std::uint8_t {
    VNFontTypeWeightThin = 0,
    VNFontTypeWeightUltraLight = 1,
    VNFontTypeWeightLight = 2,
    VNFontTypeWeightRegular = 3,
    VNFontTypeWeightMedium = 4,
    VNFontTypeWeightSemibold = 5,
    VNFontTypeWeightBold = 6,
    VNFontTypeWeightHeavy = 7,
    VNFontTypeWeightBlack = 8,
};

// Light gives the light keyboard, dark the dark keyboard, any other value the default one.
[[nodiscard]] UIKeyboardAppearance UIKeyboardAppearanceFromVNInputViewAppearance(
    VNInputViewAppearance appearance);

// Go, Search, Send, Done, Next and Join give the platform's return keys of those names
// (numeric values 1, 6, 7, 9, 4, 3); any other value the default return key (0).
[[nodiscard]] UIReturnKeyType UIReturnKeyTypeFromVNEnterTypeKeyType(VNEnterTypeKeyType type);

// The platform's text style of a category (headline, subheadline, body, footnote, caption 1,
// caption 2); absent for VNFontCategoryNone and every value above 6.
[[nodiscard]] std::optional<UIFontTextStyle> UIFontTextStyleFromVNFontCategory(
    VNFontCategory category);

// The platform's weight for 0 to 8: thin -0.6, ultra-light -0.8, light -0.4, regular 0,
// medium 0.23, semibold 0.3, bold 0.4, heavy 0.56, black 0.62. A value above 8, which the model
// never writes, gives the regular weight (0).
[[nodiscard]] UIFontWeight UIFontWeightFromVNFontTypeWeight(VNFontTypeWeight weight);

}  // namespace vn
