// The user-interface framework's values that the model's choices map onto: keyboard
// appearance, return-key types, font text styles and font weights. They keep the platform's
// numeric values and strings, so a value computed here means the same on the device.
#pragma once

#include <cstdint>
#include <string_view>

namespace vn {

// The keyboard's look.
enum UIKeyboardAppearance : std::int64_t {
    UIKeyboardAppearanceDefault = 0,
    UIKeyboardAppearanceDark = 1,
    UIKeyboardAppearanceLight = 2,
    UIKeyboardAppearanceAlert = UIKeyboardAppearanceDark,  // the platform's older name for dark
};

// The title of the keyboard's return key.
enum UIReturnKeyType : std::int64_t {
    UIReturnKeyDefault = 0,
    UIReturnKeyGo = 1,
    UIReturnKeyGoogle = 2,
    UIReturnKeyJoin = 3,
    UIReturnKeyNext = 4,
    UIReturnKeyRoute = 5,
    UIReturnKeySearch = 6,
    UIReturnKeySend = 7,
    UIReturnKeyYahoo = 8,
    UIReturnKeyDone = 9,
    UIReturnKeyEmergencyCall = 10,
    UIReturnKeyContinue = 11,
};

// Dynamic-type text styles, identified by the platform's strings.
using UIFontTextStyle = std::string_view;
inline constexpr UIFontTextStyle UIFontTextStyleHeadline = "UICTFontTextStyleHeadline";
inline constexpr UIFontTextStyle UIFontTextStyleSubheadline = "UICTFontTextStyleSubhead";
inline constexpr UIFontTextStyle UIFontTextStyleBody = "UICTFontTextStyleBody";
inline constexpr UIFontTextStyle UIFontTextStyleFootnote = "UICTFontTextStyleFootnote";
inline constexpr UIFontTextStyle UIFontTextStyleCaption1 = "UICTFontTextStyleCaption1";
inline constexpr UIFontTextStyle UIFontTextStyleCaption2 = "UICTFontTextStyleCaption2";

// Font weights on the platform's scale, from -1 (lightest) through 0 (regular) to 1 (heaviest).
using UIFontWeight = double;
inline constexpr UIFontWeight UIFontWeightUltraLight = -0.8;
inline constexpr UIFontWeight UIFontWeightThin = -0.6;
inline constexpr UIFontWeight UIFontWeightLight = -0.4;
inline constexpr UIFontWeight UIFontWeightRegular = 0.0;
inline constexpr UIFontWeight UIFontWeightMedium = 0.23;
inline constexpr UIFontWeight UIFontWeightSemibold = 0.3;
inline constexpr UIFontWeight UIFontWeightBold = 0.4;
inline constexpr UIFontWeight UIFontWeightHeavy = 0.56;
inline constexpr UIFontWeight UIFontWeightBlack = 0.62;

}  // namespace vn
