// Literal texts of the model arrive with their quotes: "Hello" or 'Hello', and a translatable
// literal carries a "!" in front of its opening quote: !"Hello". This function gives the text
// inside the quotes and says what it found. It keeps no state and is safe from any thread.
#pragma once

#include <string>
#include <string_view>

namespace vn::VNUtilities {

// When the text is a quoted literal, at least two characters that begin and end with the same
// quote character (the double quote " or the single quote '), optionally preceded by one "!":
// answers the characters between the quotes exactly as they are (inner quotes, doubled or not,
// and blanks are kept), sets *hasQuotes to true and *isTranslatable to whether the "!" was there.
// Any other text (no quotes, mismatched quotes, a lone quote, surrounding blanks, a "!" before
// an unquoted text) is answered unchanged with both flags false. Either pointer may be null.
//   "Hello"  -> Hello   (quotes, not translatable)
//   !'Hola'  -> Hola    (quotes, translatable)
//   ""       -> (empty) (quotes)
//   "Hello'  -> "Hello' (unchanged)
[[nodiscard]] std::string stringByRemovingEnclosingQuotes(std::string_view text,
                                                          bool* hasQuotes = nullptr,
                                                          bool* isTranslatable = nullptr);

}  // namespace vn::VNUtilities
