#include "vn/formatting/RegularExpression.h"

#include <unicode/regex.h>
#include <unicode/utext.h>

#include "formatting/IcuSupport.h"
#include "platform/internal/RegexLimits.h"

namespace vn {
namespace {

using formatting_internal::toUnicode;
using formatting_internal::toUtf8;

constexpr std::int64_t kInvalidPatternErrorCode = 2048;  // the platform's formatting error

uint32_t icuFlags(std::uint32_t options) {
    uint32_t flags = 0;
    if (options & RegularExpression::caseInsensitive) flags |= UREGEX_CASE_INSENSITIVE;
    if (options & RegularExpression::allowCommentsAndWhitespace) flags |= UREGEX_COMMENTS;
    if (options & RegularExpression::ignoreMetacharacters) flags |= UREGEX_LITERAL;
    if (options & RegularExpression::dotMatchesLineSeparators) flags |= UREGEX_DOTALL;
    if (options & RegularExpression::anchorsMatchLines) flags |= UREGEX_MULTILINE;
    if (options & RegularExpression::useUnixLineSeparators) flags |= UREGEX_UNIX_LINES;
    if (options & RegularExpression::useUnicodeWordBoundaries) flags |= UREGEX_UWORD;
    return flags;
}

// A UTF-8 view of text for ICU, whose native indexes are the text's byte offsets.
class Utf8Text {
  public:
    explicit Utf8Text(std::string_view text) {
        UErrorCode status = U_ZERO_ERROR;
        text_ = utext_openUTF8(nullptr, text.data(), static_cast<int64_t>(text.size()), &status);
    }
    Utf8Text(const Utf8Text&) = delete;
    Utf8Text& operator=(const Utf8Text&) = delete;
    ~Utf8Text() { utext_close(text_); }
    UText* get() const { return text_; }

  private:
    UText* text_ = nullptr;
};

std::optional<StringRange> groupRange(icu::RegexMatcher& matcher, int32_t group) {
    UErrorCode status = U_ZERO_ERROR;
    const int64_t start = matcher.start64(group, status);
    const int64_t end = matcher.end64(group, status);
    if (U_FAILURE(status) || start < 0) return std::nullopt;
    return StringRange{static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)};
}

std::string escaped(std::string_view text, std::string_view specials) {
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        if (specials.find(c) != std::string_view::npos) result += '\\';
        result += c;
    }
    return result;
}

static_assert(RegularExpression::kMatchTimeLimit == platform_internal::kRegexTimeLimit);
static_assert(RegularExpression::kMatchTimeLimitBytesPerUnit ==
              platform_internal::kRegexTimeLimitBytesPerUnit);
static_assert(RegularExpression::kMatchStackLimit == platform_internal::kRegexStackLimit);
static_assert(RegularExpression::kMatchWallTimeLimitMilliseconds ==
              platform_internal::kRegexWallTimeLimitMilliseconds);

}  // namespace

struct RegularExpression::Impl {
    std::unique_ptr<icu::RegexPattern> pattern;

    platform_internal::LimitedRegexMatcher matcherFor(const Utf8Text& text,
                                                      std::size_t textLength) const {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::RegexMatcher> matcher(pattern->matcher(status));
        if (U_FAILURE(status)) matcher.reset();
        if (matcher) matcher->reset(text.get());
        return platform_internal::LimitedRegexMatcher(std::move(matcher), textLength);
    }
};

RegularExpression::RegularExpression(std::string pattern, std::uint32_t options,
                                     std::unique_ptr<Impl> impl)
    : pattern_(std::move(pattern)), options_(options), impl_(std::move(impl)) {}

RegularExpression::~RegularExpression() = default;

RegularExpressionPtr RegularExpression::regularExpressionWithPattern(std::string_view pattern,
                                                                     std::uint32_t options,
                                                                     ErrorPtr* error) {
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError;
    std::unique_ptr<icu::RegexPattern> compiled(
        icu::RegexPattern::compile(toUnicode(pattern), icuFlags(options), parseError, status));
    if (U_FAILURE(status) || !compiled) {
        if (error) {
            *error =
                Error::make(NSCocoaErrorDomain, kInvalidPatternErrorCode,
                            Value::Dictionary{{"NSInvalidValue", Value(std::string(pattern))}});
        }
        return nullptr;
    }
    auto impl = std::make_unique<Impl>();
    impl->pattern = std::move(compiled);
    return RegularExpressionPtr(
        new RegularExpression(std::string(pattern), options, std::move(impl)));
}

std::size_t RegularExpression::numberOfCaptureGroups() const {
    const Utf8Text empty("");
    const auto matcher = impl_->matcherFor(empty, 0);
    return matcher ? static_cast<std::size_t>(matcher->groupCount()) : 0;
}

std::vector<RegularExpression::Match> RegularExpression::matches(std::string_view text) const {
    std::vector<Match> result;
    const Utf8Text input(text);
    const auto matcher = impl_->matcherFor(input, text.size());
    if (!matcher) return result;
    UErrorCode status = U_ZERO_ERROR;
    while (matcher->find(status) && U_SUCCESS(status)) {
        Match match;
        for (int32_t group = 0; group <= matcher->groupCount(); ++group)
            match.groups.push_back(groupRange(*matcher, group));
        match.range = match.groups.front().value_or(StringRange{});
        result.push_back(std::move(match));
    }
    if (U_FAILURE(status)) result.clear();  // a search cut short is no result, not a partial one
    return result;
}

std::optional<RegularExpression::Match> RegularExpression::firstMatch(std::string_view text) const {
    const Utf8Text input(text);
    const auto matcher = impl_->matcherFor(input, text.size());
    UErrorCode status = U_ZERO_ERROR;
    if (!matcher || !matcher->find(status) || U_FAILURE(status)) return std::nullopt;
    Match match;
    for (int32_t group = 0; group <= matcher->groupCount(); ++group)
        match.groups.push_back(groupRange(*matcher, group));
    match.range = match.groups.front().value_or(StringRange{});
    return match;
}

std::size_t RegularExpression::numberOfMatches(std::string_view text) const {
    const Utf8Text input(text);
    const auto matcher = impl_->matcherFor(input, text.size());
    if (!matcher) return 0;
    std::size_t count = 0;
    UErrorCode status = U_ZERO_ERROR;
    while (matcher->find(status) && U_SUCCESS(status)) ++count;
    return U_FAILURE(status) ? 0 : count;
}

bool RegularExpression::matchesEntirely(std::string_view text) const {
    const Utf8Text input(text);
    const auto matcher = impl_->matcherFor(input, text.size());
    UErrorCode status = U_ZERO_ERROR;
    return matcher && matcher->matches(status) && !U_FAILURE(status);
}

std::string RegularExpression::stringByReplacingMatches(
    std::string_view text, std::string_view replacementTemplate) const {
    const icu::UnicodeString input = toUnicode(text);
    UErrorCode status = U_ZERO_ERROR;
    const platform_internal::LimitedRegexMatcher matcher(
        std::unique_ptr<icu::RegexMatcher>(impl_->pattern->matcher(input, status)), text.size());
    if (U_FAILURE(status) || !matcher) return std::string(text);
    // A template that refers to a group the pattern does not have replaces nothing, and so
    // does a replacement that reaches a matching limit.
    const std::optional<icu::UnicodeString> replaced =
        platform_internal::replacingAllMatches(*matcher, toUnicode(replacementTemplate));
    return replaced ? toUtf8(*replaced) : std::string(text);
}

std::string RegularExpression::escapedPatternForString(std::string_view text) {
    return escaped(text, "\\*?+[(){}^$|./");
}

std::string RegularExpression::escapedTemplateForString(std::string_view text) {
    return escaped(text, "\\$");
}

std::string RegularExpression::description() const {
    return "<RegularExpression: " + pattern_ + ">";
}

}  // namespace vn
