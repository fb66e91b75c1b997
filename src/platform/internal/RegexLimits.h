// The bounds under which every ICU regular-expression matcher of the library runs, so that no
// pattern hangs or exhausts memory ("^+?b" on "ab" loops in ICU; nested repetitions backtrack
// without end). Internal to the library: never installed.
//
// ICU counts a matcher's time over everything it does until it is reset, so the limit covers
// a whole operation (all the matches of a search, a replacement) and grows with the text: a
// scan through a long text takes steps in proportion to its length, a runaway backtrack takes
// them without end. A unit of ICU's time limit is about ten thousand matching steps. A matcher
// that reaches a limit fails with U_REGEX_TIME_OUT or U_REGEX_STACK_OVERFLOW.
#pragma once

#include <unicode/regex.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace vn::platform_internal {

inline constexpr std::size_t kRegexTimeLimit = 100;                // units for any text
inline constexpr std::size_t kRegexTimeLimitBytesPerUnit = 1000;   // one more unit per so many
inline constexpr std::int32_t kRegexStackLimit = 8 * 1024 * 1024;  // bytes of backtracking

// Sets the limits on matcher for a text of textLength bytes (or code units).
inline void limitRegexMatching(icu::RegexMatcher& matcher, std::size_t textLength) {
    const std::size_t limit = kRegexTimeLimit + textLength / kRegexTimeLimitBytesPerUnit;
    UErrorCode status = U_ZERO_ERROR;
    matcher.setTimeLimit(static_cast<int32_t>(std::min<std::size_t>(limit, INT32_MAX)), status);
    matcher.setStackLimit(kRegexStackLimit, status);
}

// Every match replaced by the template ("$1" names a group), or absent when the matching fails:
// a limit reached, a template that names a group the pattern lacks. ICU's own replaceAll is
// not used: it keeps quiet about a limit reached after some matches and answers a text that
// is only partly replaced.
inline std::optional<icu::UnicodeString> replacingAllMatches(
    icu::RegexMatcher& matcher, const icu::UnicodeString& replacement) {
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString result;
    matcher.reset();
    while (matcher.find(status) && U_SUCCESS(status)) {
        matcher.appendReplacement(result, replacement, status);
        if (U_FAILURE(status)) return std::nullopt;
    }
    if (U_FAILURE(status)) return std::nullopt;
    matcher.appendTail(result);
    return result;
}

}  // namespace vn::platform_internal
