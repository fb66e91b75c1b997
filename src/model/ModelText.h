// Case handling for the model's words: type names and identifiers compare case-insensitively.
#pragma once

#include <string>
#include <string_view>

namespace vn::model_internal {

// The text lower-cased: ASCII letters directly, any other text by Unicode's root-locale rules.
std::string lowercased(std::string_view text);

// Whether the text equals the lower-case ASCII word when case is ignored (Unicode case folding,
// so that every spelling the platform's case-insensitive comparison accepts matches).
bool equalsIgnoringCase(std::string_view text, std::string_view lowerCaseWord);

}  // namespace vn::model_internal
