// vn::RegularExpression: a compiled regular expression in the platform's syntax (the ICU
// syntax: "%([0-9]+)", "\\d{3}-\\d{4}", "(?i)abc"), matched against UTF-8 texts, with
// replacement templates that refer to capture groups as "$1" ("\\$" is a literal dollar).
//
// Ranges are byte offsets into the UTF-8 text. An expression is immutable once made and may
// be used from several threads at once.
//
// Matching is bounded, so that no pattern hangs or exhausts memory ("^+?b" on "ab" would loop
// in ICU): each operation (a first match, all matches, a count, a replacement) runs under a
// matching-time budget of kMatchTimeLimit units plus one per kMatchTimeLimitBytesPerUnit bytes
// of text (a unit is about ten thousand matching steps), counted over the whole operation
// however many matches it finds; within kMatchWallTimeLimitMilliseconds milliseconds plus one
// per kMatchTimeLimitBytesPerUnit bytes of text (steps cost more with larger patterns, so on a
// slow or busy machine a heavy but finite match may end there); and under a backtracking
// memory limit of kMatchStackLimit bytes. An operation that reaches a limit fails as "no
// match": no match, no matches (never a part of them), a count of 0, whole-text match false,
// replacement text unchanged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vn/formatting/StringUtilities.h"
#include "vn/platform/Error.h"
#include "vn/platform/Object.h"

namespace vn {

class RegularExpression;
using RegularExpressionPtr = std::shared_ptr<const RegularExpression>;

class RegularExpression final : public Object {
  public:
    // The platform's options with their raw values; combine with |.
    enum Options : std::uint32_t {
        caseInsensitive = 1 << 0,
        allowCommentsAndWhitespace = 1 << 1,
        ignoreMetacharacters = 1 << 2,  // the pattern is literal text
        dotMatchesLineSeparators = 1 << 3,
        anchorsMatchLines = 1 << 4,  // ^ and $ match at line starts and ends
        useUnixLineSeparators = 1 << 5,
        useUnicodeWordBoundaries = 1 << 6,
    };

    // One match: the whole match and each capture group (absent when the group took no part).
    struct Match {
        StringRange range;
        std::vector<std::optional<StringRange>> groups;  // groups[0] is range
    };

    static constexpr std::size_t kMatchTimeLimit = 100;
    static constexpr std::size_t kMatchTimeLimitBytesPerUnit = 1000;
    static constexpr std::int32_t kMatchStackLimit = 8 * 1024 * 1024;
    static constexpr std::size_t kMatchWallTimeLimitMilliseconds = 100;

    // Compiles pattern. A pattern that does not compile gives null and, through error, an
    // error of NSCocoaErrorDomain with code 2048 whose user information holds the pattern
    // under "NSInvalidValue".
    [[nodiscard]] static RegularExpressionPtr regularExpressionWithPattern(
        std::string_view pattern, std::uint32_t options = 0, ErrorPtr* error = nullptr);

    ~RegularExpression() override;

    const std::string& pattern() const { return pattern_; }
    std::uint32_t options() const { return options_; }
    std::size_t numberOfCaptureGroups() const;

    // Non-overlapping matches from the start of the text.
    std::vector<Match> matches(std::string_view text) const;
    std::optional<Match> firstMatch(std::string_view text) const;
    std::size_t numberOfMatches(std::string_view text) const;
    // Whether the whole text matches.
    bool matchesEntirely(std::string_view text) const;

    // Every match replaced by the template, in which "$n" stands for group n.
    std::string stringByReplacingMatches(std::string_view text,
                                         std::string_view replacementTemplate) const;

    // Text with every character that the pattern syntax, respectively the template syntax,
    // treats specially escaped, so that it matches / is inserted literally.
    static std::string escapedPatternForString(std::string_view text);
    static std::string escapedTemplateForString(std::string_view text);

    std::string description() const override;

    struct Impl;

  private:
    RegularExpression(std::string pattern, std::uint32_t options, std::unique_ptr<Impl> impl);

    std::string pattern_;
    std::uint32_t options_;
    std::unique_ptr<Impl> impl_;
};

}  // namespace vn
