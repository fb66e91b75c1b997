#include "vn/model/VNUIKitMappings.h"

#include <array>

namespace vn {

UIKeyboardAppearance UIKeyboardAppearanceFromVNInputViewAppearance(
    VNInputViewAppearance appearance) {
    switch (appearance) {
        case VNInputViewAppearanceLight:
            return UIKeyboardAppearanceLight;
        case VNInputViewAppearanceDark:
            return UIKeyboardAppearanceDark;
        default:
            return UIKeyboardAppearanceDefault;
    }
}

UIReturnKeyType UIReturnKeyTypeFromVNEnterTypeKeyType(VNEnterTypeKeyType type) {
    switch (type) {
        case VNEnterTypeKeyTypeGo:
            return UIReturnKeyGo;
        case VNEnterTypeKeyTypeSearch:
            return UIReturnKeySearch;
        case VNEnterTypeKeyTypeSend:
            return UIReturnKeySend;
        case VNEnterTypeKeyTypeDone:
            return UIReturnKeyDone;
        case VNEnterTypeKeyTypeNext:
            return UIReturnKeyNext;
        case VNEnterTypeKeyTypeJoin:
            return UIReturnKeyJoin;
        default:
            return UIReturnKeyDefault;
    }
}

std::optional<UIFontTextStyle> UIFontTextStyleFromVNFontCategory(VNFontCategory category) {
    switch (category) {
        case VNFontCategoryHeadline:
            return UIFontTextStyleHeadline;
        case VNFontCategorySubheadline:
            return UIFontTextStyleSubheadline;
        case VNFontCategoryBody:
            return UIFontTextStyleBody;
        case VNFontCategoryFootnote:
            return UIFontTextStyleFootnote;
        case VNFontCategoryCaption1:
            return UIFontTextStyleCaption1;
        case VNFontCategoryCaption2:
            return UIFontTextStyleCaption2;
        default:
            return std::nullopt;
    }
}

UIFontWeight UIFontWeightFromVNFontTypeWeight(VNFontTypeWeight weight) {
    constexpr std::array<UIFontWeight, 9> kWeights{
        UIFontWeightThin,    UIFontWeightUltraLight, UIFontWeightLight,
        UIFontWeightRegular, UIFontWeightMedium,     UIFontWeightSemibold,
        UIFontWeightBold,    UIFontWeightHeavy,      UIFontWeightBlack,
    };
    const auto index = static_cast<std::size_t>(weight);
    return index < kWeights.size() ? kWeights[index] : UIFontWeightRegular;
}

}  // namespace vn
