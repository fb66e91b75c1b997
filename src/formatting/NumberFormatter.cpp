#include "vn/formatting/NumberFormatter.h"

#include <unicode/decimfmt.h>
#include <unicode/fmtable.h>
#include <unicode/numfmt.h>
#include <unicode/parsepos.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <utility>

#include "formatting/IcuSupport.h"
#include "vn/platform/FatalError.h"

namespace vn {
namespace {

using formatting_internal::icuLocale;
using formatting_internal::toUnicode;
using formatting_internal::toUtf8;

enum Affix : std::size_t {
    kPositivePrefix,
    kPositiveSuffix,
    kNegativePrefix,
    kNegativeSuffix,
    kAffixCount
};

UNumberFormatStyle icuStyle(NumberFormatter::Style style) {
    switch (style) {
        case NumberFormatter::Style::currency:
            return UNUM_CURRENCY;
        case NumberFormatter::Style::percent:
            return UNUM_PERCENT;
        case NumberFormatter::Style::scientific:
            return UNUM_SCIENTIFIC;
        case NumberFormatter::Style::none:
        case NumberFormatter::Style::decimal:
            break;
    }
    return UNUM_DECIMAL;
}

// Every call gets a fresh status: a failed UErrorCode makes later ICU calls do nothing.
std::unique_ptr<icu::DecimalFormat> makeDecimalFormat(const std::string& localeId,
                                                      NumberFormatter::Style style) {
    for (const icu::Locale& locale : {icuLocale(localeId), icu::Locale::getRoot()}) {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::NumberFormat> format(
            icu::NumberFormat::createInstance(locale, icuStyle(style), status));
        if (U_FAILURE(status) || !format) continue;
        if (auto* decimal = dynamic_cast<icu::DecimalFormat*>(format.get())) {
            format.release();
            std::unique_ptr<icu::DecimalFormat> result(decimal);
            if (style == NumberFormatter::Style::none) {
                UErrorCode patternStatus = U_ZERO_ERROR;
                result->applyPattern(icu::UnicodeString(u"#"), patternStatus);
            }
            return result;
        }
    }
    fatalError("NumberFormatter: the ICU number data is not available");
}

bool isPatternDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isNumberCharacter(char c) {
    return isPatternDigit(c) || c == '#' || c == ',' || c == '.';
}

// Where the first unquoted run of number characters ("#,##0.00") of a pattern lies.
std::pair<std::size_t, std::size_t> firstNumberRun(std::string_view pattern) {
    bool quoted = false;
    std::size_t begin = pattern.size();
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char c = pattern[i];
        const bool inRun = !quoted && c != '\'' && isNumberCharacter(c);
        if (inRun && begin == pattern.size()) begin = i;
        if (!inRun && begin != pattern.size()) return {begin, i};
        if (c == '\'') quoted = !quoted;
    }
    return {begin, pattern.size()};
}

// ICU refuses an optional digit after a mandatory one in the integer part ("0##") and before
// one in the fraction ("#.#0"). Such a pattern means that those positions are always shown,
// so they are written as mandatory digits. Quoted text and the negative part stay as they are.
std::string icuReadablePattern(std::string_view pattern) {
    std::string result(pattern);
    const auto [begin, end] = firstNumberRun(result);
    const std::size_t point = std::min(result.find('.', begin), end);
    bool mandatorySeen = false;
    for (std::size_t i = begin; i < point; ++i) {
        if (result[i] == '#' && mandatorySeen) result[i] = '0';
        mandatorySeen = mandatorySeen || isPatternDigit(result[i]);
    }
    std::size_t lastMandatory = point;
    for (std::size_t i = point + 1; i < end; ++i) {
        if (isPatternDigit(result[i])) lastMandatory = i;
    }
    for (std::size_t i = point + 1; i < lastMandatory; ++i) {
        if (result[i] == '#') result[i] = '0';
    }
    return result;
}

// ICU 72 reads an unquoted "~" as its approximately sign: it shows "≈" for it, and its parser
// aborts the process on an affix that holds one. The library's patterns know no such sign, so
// every unquoted "~" is handed over quoted, as the literal text it is.
std::string quotingApproximatelySigns(std::string_view pattern) {
    std::string result;
    result.reserve(pattern.size());
    bool quoted = false;
    for (const char c : pattern) {
        if (c == '\'') quoted = !quoted;
        if (c == '~' && !quoted) {
            result += "'~'";
        } else {
            result += c;
        }
    }
    return result;
}

bool applyPattern(icu::DecimalFormat& format, std::string_view pattern) {
    if (pattern.size() > NumberFormatter::kMaximumPatternLength) return false;
    UErrorCode status = U_ZERO_ERROR;
    format.applyPattern(toUnicode(quotingApproximatelySigns(icuReadablePattern(pattern))), status);
    return U_SUCCESS(status);
}

using Affixes = std::array<std::optional<std::string>, kAffixCount>;

bool hasApproximatelySign(const Affixes& affixes) {
    return std::any_of(affixes.begin(), affixes.end(), [](const auto& affix) {
        return affix && affix->find('~') != std::string::npos;
    });
}

void setLiteralAffix(icu::DecimalFormat& format, std::size_t which,
                     const icu::UnicodeString& text) {
    switch (which) {
        case kPositivePrefix:
            format.setPositivePrefix(text);
            break;
        case kPositiveSuffix:
            format.setPositiveSuffix(text);
            break;
        case kNegativePrefix:
            format.setNegativePrefix(text);
            break;
        default:
            format.setNegativeSuffix(text);
            break;
    }
}

// A noncharacter that occurs neither in the pattern nor in the affixes, nor among taken.
UChar unusedNoncharacter(const icu::UnicodeString& pattern, const Affixes& affixes,
                         const icu::UnicodeString& taken) {
    for (UChar candidate = 0xFDD0; candidate < 0xFDEF; ++candidate) {
        const icu::UnicodeString text(candidate);
        bool used = pattern.indexOf(text) >= 0 || taken.indexOf(text) >= 0;
        for (const auto& affix : affixes)
            used = used || (affix && toUnicode(*affix).indexOf(text) >= 0);
        if (!used) return candidate;
    }
    return 0xFDEF;
}

// The text quoted as one literal run of a pattern: "'" doubled inside "'...'".
icu::UnicodeString quotedLiteral(const std::string& text) {
    if (text.empty()) return {};
    icu::UnicodeString quoted = toUnicode(text);
    quoted.findAndReplace(icu::UnicodeString(u'\''), icu::UnicodeString(u"''"));
    return icu::UnicodeString(u'\'') + quoted + icu::UnicodeString(u'\'');
}

void setAffixes(icu::DecimalFormat& format, const Affixes& affixes) {
    for (std::size_t which = 0; which < kAffixCount; ++which) {
        if (affixes[which]) setLiteralAffix(format, which, toUnicode(*affixes[which]));
    }
}

// ICU quotes the characters of its affix syntax in a literal affix ("-", "+", "%", "‰", "¤",
// "'"), but not the approximately sign (see quotingApproximatelySigns). Affixes holding one
// reach ICU through a pattern instead: a copy of the format gets one stand-in character per
// affix, ICU writes its pattern, and every stand-in in it becomes its affix, quoted whole.
icu::UnicodeString patternQuotingAffixes(const icu::DecimalFormat& format, const Affixes& affixes) {
    icu::UnicodeString pattern;
    format.toPattern(pattern);
    icu::UnicodeString standIns;
    for (std::size_t which = 0; which < kAffixCount; ++which)
        standIns.append(unusedNoncharacter(pattern, affixes, standIns));
    std::unique_ptr<icu::DecimalFormat> copy(format.clone());
    for (std::size_t which = 0; which < kAffixCount; ++which) {
        if (affixes[which]) setLiteralAffix(*copy, which, icu::UnicodeString(standIns[which]));
    }
    copy->toPattern(pattern);
    for (std::size_t which = 0; which < kAffixCount; ++which) {
        if (affixes[which]) {
            pattern.findAndReplace(icu::UnicodeString(standIns[which]),
                                   quotedLiteral(*affixes[which]));
        }
    }
    return pattern;
}

bool isZero(const Number& number) {
    return number.compare(Number(std::int64_t{0})) == std::partial_ordering::equivalent;
}

void formatDecimalText(const icu::DecimalFormat& format, const std::string& digits, double fallback,
                       icu::UnicodeString& out) {
    UErrorCode status = U_ZERO_ERROR;
    format.format(icu::StringPiece(digits), out, nullptr, status);
    if (U_FAILURE(status)) {
        out.remove();
        format.format(fallback, out);
    }
}

void formatNumber(const icu::DecimalFormat& format, const Number& number, icu::UnicodeString& out) {
    switch (number.kind()) {
        case Number::Kind::boolean:
        case Number::Kind::signedInteger:
            format.format(number.integerValue(), out);
            return;
        case Number::Kind::unsignedInteger: {
            const std::uint64_t value = number.unsignedIntegerValue();
            if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
                format.format(static_cast<std::int64_t>(value), out);
            } else {
                formatDecimalText(format, std::to_string(value), number.doubleValue(), out);
            }
            return;
        }
        case Number::Kind::doublePrecision:
            format.format(number.doubleValue(), out);
            return;
        case Number::Kind::floatingPoint:  // a float's own shortest digits, not its double
                                           // expansion
        case Number::Kind::decimal: {
            const Decimal decimal = number.decimalValue();
            if (decimal.isNaN()) {
                format.format(number.doubleValue(), out);
            } else {
                formatDecimalText(format, decimal.description(), number.doubleValue(), out);
            }
            return;
        }
    }
}

std::optional<Number> numberFromFormattable(icu::Formattable& parsed, bool decimal) {
    UErrorCode status = U_ZERO_ERROR;
    if (decimal) {
        const icu::StringPiece digits = parsed.getDecimalNumber(status);
        if (U_SUCCESS(status)) {
            if (auto value = Decimal::parse(
                    std::string_view(digits.data(), static_cast<std::size_t>(digits.size())))) {
                return Number(*value);
            }
        }
        status = U_ZERO_ERROR;
    }
    switch (parsed.getType()) {
        case icu::Formattable::kLong:
        case icu::Formattable::kInt64:
            return Number(static_cast<std::int64_t>(parsed.getInt64(status)));
        case icu::Formattable::kDouble:
            return Number(parsed.getDouble(status));
        default:
            return std::nullopt;
    }
}

}  // namespace

struct NumberFormatter::State {
    std::string localeId;
    Style style = Style::none;
    std::optional<std::string> pattern;  // set explicitly (and accepted); else the style's
    std::array<std::optional<std::string>, kAffixCount> affixes;
    std::optional<int> maximumFractionDigits;
    std::optional<int> minimumFractionDigits;
    std::optional<int> maximumIntegerDigits;
    std::optional<int> minimumIntegerDigits;
    std::optional<std::string> zeroSymbol;
    bool generatesDecimalNumbers = false;
    std::unique_ptr<icu::DecimalFormat> icu;
};

NumberFormatter::NumberFormatter() : state_(std::make_unique<State>()) {
    state_->localeId = Locale::current().identifier();
    rebuild();
}

NumberFormatter::~NumberFormatter() = default;

// Builds the ICU formatter from scratch out of the recorded settings, so that the result
// never depends on the order in which ICU applies them.
void NumberFormatter::rebuild() {
    State& s = *state_;
    auto format = makeDecimalFormat(s.localeId, s.style);
    if (s.pattern) applyPattern(*format, *s.pattern);
    if (hasApproximatelySign(s.affixes)) {
        // A literal affix outranks the pattern's in ICU, so the pattern goes to a fresh format.
        const icu::UnicodeString pattern = patternQuotingAffixes(*format, s.affixes);
        format = makeDecimalFormat(s.localeId, s.style);
        UErrorCode status = U_ZERO_ERROR;
        format->applyPattern(pattern, status);
    } else {
        setAffixes(*format, s.affixes);
    }
    if (s.maximumIntegerDigits) format->setMaximumIntegerDigits(*s.maximumIntegerDigits);
    if (s.minimumIntegerDigits) format->setMinimumIntegerDigits(*s.minimumIntegerDigits);
    if (s.maximumFractionDigits) format->setMaximumFractionDigits(*s.maximumFractionDigits);
    if (s.minimumFractionDigits) format->setMinimumFractionDigits(*s.minimumFractionDigits);
    s.icu = std::move(format);
}

Locale NumberFormatter::locale() const {
    return Locale(state_->localeId);
}

void NumberFormatter::setLocale(const Locale& locale) {
    state_->localeId = locale.identifier();
    rebuild();
}

NumberFormatter::Style NumberFormatter::numberStyle() const {
    return state_->style;
}

void NumberFormatter::setNumberStyle(Style style) {
    State& s = *state_;
    s.style = style;
    s.pattern.reset();
    s.affixes = {};
    s.maximumFractionDigits.reset();
    s.minimumFractionDigits.reset();
    s.maximumIntegerDigits.reset();
    s.minimumIntegerDigits.reset();
    rebuild();
}

std::string NumberFormatter::positiveFormat() const {
    if (state_->pattern) return *state_->pattern;
    icu::UnicodeString pattern;
    state_->icu->toPattern(pattern);
    return toUtf8(pattern);
}

void NumberFormatter::setPositiveFormat(std::string_view pattern) {
    auto trial = makeDecimalFormat(state_->localeId, state_->style);
    if (!applyPattern(*trial, pattern)) return;
    State& s = *state_;
    s.pattern = std::string(pattern);
    s.affixes = {};
    s.maximumFractionDigits.reset();
    s.minimumFractionDigits.reset();
    s.maximumIntegerDigits.reset();
    s.minimumIntegerDigits.reset();
    s.icu = std::move(trial);
}

// A literal affix goes straight to ICU; one with an approximately sign needs the whole format
// rebuilt (see patternQuotingAffixes).
void NumberFormatter::setAffix(std::size_t which) {
    const std::string& text = *state_->affixes[which];
    if (text.find('~') != std::string::npos) {
        rebuild();
        return;
    }
    setLiteralAffix(*state_->icu, which, toUnicode(text));
}

std::string NumberFormatter::positivePrefix() const {
    icu::UnicodeString text;
    return toUtf8(state_->icu->getPositivePrefix(text));
}

void NumberFormatter::setPositivePrefix(std::string_view prefix) {
    state_->affixes[kPositivePrefix] = std::string(prefix);
    setAffix(kPositivePrefix);
}

std::string NumberFormatter::positiveSuffix() const {
    icu::UnicodeString text;
    return toUtf8(state_->icu->getPositiveSuffix(text));
}

void NumberFormatter::setPositiveSuffix(std::string_view suffix) {
    state_->affixes[kPositiveSuffix] = std::string(suffix);
    setAffix(kPositiveSuffix);
}

std::string NumberFormatter::negativePrefix() const {
    icu::UnicodeString text;
    return toUtf8(state_->icu->getNegativePrefix(text));
}

void NumberFormatter::setNegativePrefix(std::string_view prefix) {
    state_->affixes[kNegativePrefix] = std::string(prefix);
    setAffix(kNegativePrefix);
}

std::string NumberFormatter::negativeSuffix() const {
    icu::UnicodeString text;
    return toUtf8(state_->icu->getNegativeSuffix(text));
}

void NumberFormatter::setNegativeSuffix(std::string_view suffix) {
    state_->affixes[kNegativeSuffix] = std::string(suffix);
    setAffix(kNegativeSuffix);
}

const std::optional<std::string>& NumberFormatter::zeroSymbol() const {
    return state_->zeroSymbol;
}

void NumberFormatter::setZeroSymbol(std::optional<std::string> symbol) {
    state_->zeroSymbol = std::move(symbol);
}

bool NumberFormatter::generatesDecimalNumbers() const {
    return state_->generatesDecimalNumbers;
}

void NumberFormatter::setGeneratesDecimalNumbers(bool generates) {
    state_->generatesDecimalNumbers = generates;
}

int NumberFormatter::maximumFractionDigits() const {
    return state_->icu->getMaximumFractionDigits();
}

void NumberFormatter::setMaximumFractionDigits(int digits) {
    state_->maximumFractionDigits = digits;
    state_->icu->setMaximumFractionDigits(digits);
}

int NumberFormatter::minimumFractionDigits() const {
    return state_->icu->getMinimumFractionDigits();
}

void NumberFormatter::setMinimumFractionDigits(int digits) {
    state_->minimumFractionDigits = digits;
    state_->icu->setMinimumFractionDigits(digits);
}

int NumberFormatter::maximumIntegerDigits() const {
    return state_->icu->getMaximumIntegerDigits();
}

void NumberFormatter::setMaximumIntegerDigits(int digits) {
    state_->maximumIntegerDigits = digits;
    state_->icu->setMaximumIntegerDigits(digits);
}

int NumberFormatter::minimumIntegerDigits() const {
    return state_->icu->getMinimumIntegerDigits();
}

void NumberFormatter::setMinimumIntegerDigits(int digits) {
    state_->minimumIntegerDigits = digits;
    state_->icu->setMinimumIntegerDigits(digits);
}

std::string NumberFormatter::stringFromNumber(const Number& number) const {
    if (state_->zeroSymbol && isZero(number)) return *state_->zeroSymbol;
    icu::UnicodeString text;
    formatNumber(*state_->icu, number, text);
    std::string result;
    text.toUTF8String(result);
    return result;
}

std::optional<Number> NumberFormatter::numberFromString(std::string_view text) const {
    if (state_->zeroSymbol && text == *state_->zeroSymbol) {
        return state_->generatesDecimalNumbers ? Number(Decimal()) : Number(std::int64_t{0});
    }
    if (text.size() > kMaximumTextLength) return std::nullopt;
    const icu::UnicodeString input = toUnicode(text);
    icu::Formattable parsed;
    icu::ParsePosition position(0);
    state_->icu->parse(input, parsed, position);
    if (position.getIndex() == 0 || position.getIndex() != input.length()) return std::nullopt;
    return numberFromFormattable(parsed, state_->generatesDecimalNumbers);
}

std::optional<std::string> NumberFormatter::stringForObjectValue(const Value& value) const {
    if (const Number* number = value.number()) return stringFromNumber(*number);
    return std::nullopt;
}

std::string NumberFormatter::description() const {
    return "<" + className() + ": locale " + state_->localeId + ", format \"" + positiveFormat() +
           "\">";
}

}  // namespace vn
