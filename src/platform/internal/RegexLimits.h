// The bounds under which every ICU regular-expression matcher of the library runs, so that no
// pattern hangs or exhausts memory ("^+?b" on "ab" loops in ICU; nested repetitions backtrack
// without end). Internal to the library: never installed.
//
// The time budget covers a whole operation (all the matches of a search, a replacement) and
// grows with the text: a scan through a long text takes steps in proportion to its length, a
// runaway backtrack takes them without end. A unit is about ten thousand matching steps. A
// matcher that reaches a limit fails with U_REGEX_STOPPED_BY_CALLER or U_REGEX_STACK_OVERFLOW.
#pragma once

#include <unicode/regex.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace vn::platform_internal {

inline constexpr std::size_t kRegexTimeLimit = 100;                // units for any text
inline constexpr std::size_t kRegexTimeLimitBytesPerUnit = 1000;   // one more unit per so many
inline constexpr std::int32_t kRegexStackLimit = 8 * 1024 * 1024;  // bytes of backtracking
// A matching step costs more the larger the pattern's backtracking frame, so the steps alone do
// not bound the time: an operation also ends after this many milliseconds, plus one per
// kRegexTimeLimitBytesPerUnit bytes of text.
inline constexpr std::size_t kRegexWallTimeLimitMilliseconds = 100;

// A matcher under the limits. ICU's own time limit counts each find() apart, so a search
// through a text with many matches (an empty match at every position) could take the limit
// once per position; the budget here is counted over everything the matcher does, through
// ICU's match callback, which ICU calls once per unit of matching time, and the clock is read
// there too.
class LimitedRegexMatcher {
  public:
    // Limits matcher for a text of textLength bytes (or code units); matcher may be null. The
    // clock starts now.
    LimitedRegexMatcher(std::unique_ptr<icu::RegexMatcher> matcher, std::size_t textLength)
        : matcher_(std::move(matcher)), budget_(std::make_unique<Budget>(textLength)) {
        if (!matcher_) return;
        UErrorCode status = U_ZERO_ERROR;
        matcher_->setMatchCallback(&spendUnit, budget_.get(), status);
        matcher_->setStackLimit(kRegexStackLimit, status);
    }

    explicit operator bool() const { return matcher_ != nullptr; }
    icu::RegexMatcher& operator*() const { return *matcher_; }
    icu::RegexMatcher* operator->() const { return matcher_.get(); }

  private:
    struct Budget {
        explicit Budget(std::size_t textLength)
            : unitsLeft(kRegexTimeLimit + textLength / kRegexTimeLimitBytesPerUnit),
              deadline(std::chrono::steady_clock::now() +
                       std::chrono::milliseconds(kRegexWallTimeLimitMilliseconds +
                                                 textLength / kRegexTimeLimitBytesPerUnit)) {}
        std::size_t unitsLeft;
        std::chrono::steady_clock::time_point deadline;
    };

    // Answering false fails the operation with U_REGEX_STOPPED_BY_CALLER.
    static UBool spendUnit(const void* context, int32_t) {
        auto* budget = static_cast<Budget*>(const_cast<void*>(context));
        if (budget->unitsLeft == 0 || std::chrono::steady_clock::now() >= budget->deadline)
            return false;
        --budget->unitsLeft;
        return true;
    }

    std::unique_ptr<icu::RegexMatcher> matcher_;
    std::unique_ptr<Budget> budget_;  // apart, so that ICU's context survives a move
};

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
