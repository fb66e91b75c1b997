// WKTString: the splitters that cut Well-Known Text into its parts.
//
// Each splitter replaces every match of its regular expression by the marker "[SPLIT]",
// splits the result at "[SPLIT]" and keeps the non-empty pieces in order (so a literal
// "[SPLIT]" in the text splits as well). \s stands for any Unicode white-space character.
//
//   splitSpacesNSString               \s+                  a point into its coordinates
//   splitCommasNSString               \s*,\s*              a list at every comma
//   splitParentCommasNSString         \)(\s*,\s*)*\(       parenthesised groups
//   splitDoubleParentCommasNSString   \)\)(\s*,\s*)*\(\(   doubly parenthesised groups
//
// The four run by hand in one pass over the text. splitString takes any ICU regular
// expression. A missing input (std::nullopt) is a programming error and raises vn::Exception
// with the reason "Parameter input is nil". Texts are UTF-8. Safe from any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vn {

class WKTString {
  public:
    // The expressions as the splitters use them.
    static constexpr std::string_view spacesExpression = "\\s+";
    static constexpr std::string_view commasExpression = "\\s*,\\s*";
    static constexpr std::string_view parentCommasExpression = "\\)(\\s*,\\s*)*\\(";
    static constexpr std::string_view doubleParentCommasExpression = "\\)\\)(\\s*,\\s*)*\\(\\(";

    // Raise "WKTString [splitString]" for a missing input.
    static std::vector<std::string> splitSpacesNSString(std::optional<std::string_view> input);
    static std::vector<std::string> splitCommasNSString(std::optional<std::string_view> input);
    // Raises "WKTString [splitParentCommasNSString]" for a missing input.
    static std::vector<std::string> splitParentCommasNSString(
        std::optional<std::string_view> input);
    // Raises "WKTString [splitDoubleParentCommasNSString]" for a missing input.
    static std::vector<std::string> splitDoubleParentCommasNSString(
        std::optional<std::string_view> input);

    // The common worker with any regular expression (ICU syntax, the platform's); the four
    // expressions above take the hand-written path. Raises "WKTString [splitString]" with
    // "Parameter input is nil" for a missing input and with "Parameter regExp is invalid" for
    // an expression that does not compile, or whose matching on this input reaches the
    // library's limits for regular expressions (the time and backtracking limits that
    // RegularExpression documents), so that no expression hangs. Other expressions read text that
    // is not valid UTF-8 with each bad sequence as U+FFFD; the four splitters pass such bytes
    // through unchanged.
    static std::vector<std::string> splitString(std::optional<std::string_view> input,
                                                std::string_view regExp);
};

}  // namespace vn
