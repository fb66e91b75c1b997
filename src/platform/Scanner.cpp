#include "vn/platform/Scanner.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <type_traits>

#include "platform/internal/DecimalReading.h"
#include "platform/internal/Utf8.h"
#include "vn/platform/Exception.h"

namespace vn {
namespace {

constexpr char32_t kReplacementCharacter = 0xFFFD;

struct DecodedCharacter {
    char32_t codePoint;
    std::size_t length;
};

// The character at text[i]; a byte that starts no well-formed sequence stands for U+FFFD, so
// a scan always moves on.
DecodedCharacter decodeAt(std::string_view text, std::size_t i) {
    const platform_internal::Utf8Step step = platform_internal::decodeUtf8(text, i);
    return {step.wellFormed ? step.codePoint : kReplacementCharacter, step.length};
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

char asciiLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::size_t digitsEnd(std::string_view text, std::size_t from) {
    while (from < text.size() && isDigit(text[from])) ++from;
    return from;
}

Scanner::CharacterSet makeSet(std::u32string_view members) {
    std::string utf8;
    for (const char32_t c : members) platform_internal::appendUtf8(utf8, c);
    return Scanner::CharacterSet(utf8);
}

constexpr std::u32string_view kSpaces =
    U" \t\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A\u202F\u205F"
    U"\u3000";
constexpr std::u32string_view kNewlines = U"\n\v\f\r\u0085\u2028\u2029";

}  // namespace

Scanner::CharacterSet::CharacterSet(std::string_view members) {
    for (std::size_t i = 0; i < members.size();) {
        const DecodedCharacter decoded = decodeAt(members, i);
        if (decoded.codePoint < 0x80) {
            ascii_.set(decoded.codePoint);
        } else {
            others_.push_back(decoded.codePoint);
        }
        i += decoded.length;
    }
    std::sort(others_.begin(), others_.end());
    others_.erase(std::unique(others_.begin(), others_.end()), others_.end());
}

const Scanner::CharacterSet& Scanner::CharacterSet::whitespaces() {
    static const CharacterSet set = makeSet(kSpaces);
    return set;
}

const Scanner::CharacterSet& Scanner::CharacterSet::whitespacesAndNewlines() {
    static const CharacterSet set = makeSet(std::u32string(kSpaces) + std::u32string(kNewlines));
    return set;
}

bool Scanner::CharacterSet::contains(char32_t codePoint) const {
    if (codePoint < 0x80) return ascii_[codePoint];
    return std::binary_search(others_.begin(), others_.end(), codePoint);
}

Scanner Scanner::localizedScanner(std::string_view text) {
    Scanner scanner(text);
    scanner.decimalSeparator_ = Locale::currentDecimalSeparator();
    return scanner;
}

void Scanner::setScanLocation(std::size_t location) {
    if (location > text_.size()) {
        throw Exception(std::string(NSRangeException), "Scanner location " +
                                                           std::to_string(location) +
                                                           " is beyond the end of a text of " +
                                                           std::to_string(text_.size()) + " bytes");
    }
    location_ = location;
}

void Scanner::setCharactersToBeSkipped(CharacterSet characters) {
    ownedSkipped_ = std::make_shared<const CharacterSet>(std::move(characters));
    skipped_ = ownedSkipped_.get();
}

std::size_t Scanner::skippedFromAnySet(std::size_t from) const {
    while (from < text_.size()) {
        const auto byte = static_cast<unsigned char>(text_[from]);
        if (byte < 0x80) {
            const bool skip =
                skipped_ ? skipped_->contains(byte) : byte == ' ' || (byte >= '\t' && byte <= '\r');
            if (!skip) break;
            ++from;
            continue;
        }
        const DecodedCharacter decoded = decodeAt(text_, from);
        if (!charactersToBeSkipped().contains(decoded.codePoint)) break;
        from += decoded.length;
    }
    return from;
}

bool Scanner::isAtEnd() const {
    return skippedFrom(location_) == text_.size();
}

bool Scanner::scanLongLong(std::int64_t* result) {
    std::size_t i = skippedFrom(location_);
    bool negative = false;
    if (i < text_.size() && (text_[i] == '+' || text_[i] == '-')) negative = text_[i++] == '-';
    const std::size_t end = digitsEnd(text_, i);
    if (end == i) return false;
    // Accumulated as a negative number, whose range is one larger.
    constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
    std::int64_t value = 0;
    bool saturated = false;
    for (; i < end; ++i) {
        const int digit = text_[i] - '0';
        if (value < (kMin + digit) / 10) {
            saturated = true;
            break;
        }
        value = value * 10 - digit;
    }
    if (result) {
        if (saturated) {
            *result = negative ? kMin : std::numeric_limits<std::int64_t>::max();
        } else if (negative) {
            *result = value;
        } else {
            *result = value == kMin ? std::numeric_limits<std::int64_t>::max() : -value;
        }
    }
    location_ = end;
    return true;
}

std::optional<std::int64_t> Scanner::scanInt64() {
    std::int64_t value = 0;
    return scanLongLong(&value) ? std::optional(value) : std::nullopt;
}

bool Scanner::scanUnsignedLongLong(std::uint64_t* result) {
    std::size_t i = skippedFrom(location_);
    if (i < text_.size() && text_[i] == '+') ++i;
    const std::size_t end = digitsEnd(text_, i);
    if (end == i) return false;
    constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t value = 0;
    for (; i < end; ++i) {
        const auto digit = static_cast<std::uint64_t>(text_[i] - '0');
        if (value > (kMax - digit) / 10) {
            value = kMax;
            break;
        }
        value = value * 10 + digit;
    }
    if (result) *result = value;
    location_ = end;
    return true;
}

std::optional<std::uint64_t> Scanner::scanUInt64() {
    std::uint64_t value = 0;
    return scanUnsignedLongLong(&value) ? std::optional(value) : std::nullopt;
}

std::size_t Scanner::floatingSyntaxEnd(std::size_t start) const {
    std::size_t i = start;
    if (i < text_.size() && (text_[i] == '+' || text_[i] == '-')) ++i;
    const std::size_t integerEnd = digitsEnd(text_, i);
    bool anyDigit = integerEnd > i;
    i = integerEnd;
    const std::string_view separator = decimalSeparator_;
    if (!separator.empty() && text_.substr(i, separator.size()) == separator) {
        const std::size_t fractionStart = i + separator.size();
        const std::size_t fractionEnd = digitsEnd(text_, fractionStart);
        if (anyDigit || fractionEnd > fractionStart) {
            anyDigit = true;
            i = fractionEnd;
        }
    }
    if (!anyDigit) return start;
    if (i < text_.size() && (text_[i] == 'e' || text_[i] == 'E')) {
        std::size_t exponent = i + 1;
        if (exponent < text_.size() && (text_[exponent] == '+' || text_[exponent] == '-'))
            ++exponent;
        const std::size_t exponentEnd = digitsEnd(text_, exponent);
        if (exponentEnd > exponent) i = exponentEnd;
    }
    return i;
}

namespace {

template <typename Floating>
void scanWithSeparator(std::string_view syntax, std::string_view separator, Floating* result) {
    // std::from_chars knows only "." and no "+": rewrite the number for it.
    std::string rewritten(syntax);
    if (rewritten.front() == '+') rewritten.erase(0, 1);
    const std::size_t at = rewritten.find(separator);
    if (at != std::string::npos) rewritten.replace(at, separator.size(), ".");
    Floating value = 0;
    const auto [ignored, error] =
        std::from_chars(rewritten.data(), rewritten.data() + rewritten.size(), value);
    if (error == std::errc::result_out_of_range) {
        if constexpr (std::is_same_v<Floating, float>) {
            value = platform_internal::strtofInCLocale(rewritten);
        } else {
            value = platform_internal::strtodInCLocale(rewritten);
        }
    }
    if (result) *result = value;
}

}  // namespace

bool Scanner::scanFloatingWithSeparator(std::size_t start, double* result) {
    const std::size_t end = floatingSyntaxEnd(start);
    if (end == start) return false;
    scanWithSeparator(text_.substr(start, end - start), decimalSeparator_, result);
    location_ = end;
    return true;
}

bool Scanner::scanFloatingWithSeparator(std::size_t start, float* result) {
    const std::size_t end = floatingSyntaxEnd(start);
    if (end == start) return false;
    scanWithSeparator(text_.substr(start, end - start), decimalSeparator_, result);
    location_ = end;
    return true;
}

std::size_t Scanner::readDoubleWithPoint(std::string_view text, std::size_t at, double* result) {
    return platform_internal::readDecimalWithPoint(text, at, result);
}

std::size_t Scanner::readFloatWithPoint(std::string_view text, std::size_t at, float* result) {
    return platform_internal::readDecimalWithPoint(text, at, result);
}

bool Scanner::scanFloatingWithPoint(std::size_t start, double* result) {
    return moveAfterNumber(start, platform_internal::readDecimalWithPoint(text_, start, result));
}

bool Scanner::scanFloatingWithPoint(std::size_t start, float* result) {
    return moveAfterNumber(start, platform_internal::readDecimalWithPoint(text_, start, result));
}

bool Scanner::moveAfterNumber(std::size_t start, std::size_t end) {
    if (end == start) return false;
    location_ = end;
    return true;
}

std::optional<double> Scanner::scanDouble() {
    double value = 0;
    if (!scanFloating(&value)) return std::nullopt;
    return value;
}

std::optional<float> Scanner::scanFloat() {
    float value = 0;
    return scanFloating(&value) ? std::optional(value) : std::nullopt;
}

bool Scanner::scanDecimal(Decimal* result) {
    const std::size_t start = skippedFrom(location_);
    const std::size_t end = floatingSyntaxEnd(start);
    if (end == start) return false;
    std::size_t consumed = 0;
    const std::optional<Decimal> value =
        Decimal::parse(text_.substr(start, end - start), decimalSeparator_, &consumed);
    if (!value) return false;
    if (result) *result = *value;
    location_ = start + consumed;
    return true;
}

std::optional<Decimal> Scanner::scanDecimal() {
    Decimal value;
    return scanDecimal(&value) ? std::optional(value) : std::nullopt;
}

bool Scanner::scanCharactersFromSet(const CharacterSet& characters, std::string* into) {
    const std::size_t start = skippedFrom(location_);
    std::size_t i = start;
    while (i < text_.size()) {
        const DecodedCharacter decoded = decodeAt(text_, i);
        if (!characters.contains(decoded.codePoint)) break;
        i += decoded.length;
    }
    if (i == start) return false;
    if (into) into->assign(text_.substr(start, i - start));
    location_ = i;
    return true;
}

std::optional<std::string> Scanner::scanCharacters(const CharacterSet& characters) {
    std::string text;
    return scanCharactersFromSet(characters, &text) ? std::optional(std::move(text)) : std::nullopt;
}

bool Scanner::matchesAt(std::size_t at, std::string_view string) const {
    if (string.empty() || text_.size() - at < string.size()) return false;
    const std::string_view candidate = text_.substr(at, string.size());
    if (caseSensitive_) return candidate == string;
    return std::equal(candidate.begin(), candidate.end(), string.begin(),
                      [](char a, char b) { return asciiLower(a) == asciiLower(b); });
}

bool Scanner::scanString(std::string_view string, std::string* into) {
    const std::size_t start = skippedFrom(location_);
    if (!matchesAt(start, string)) return false;
    if (into) into->assign(text_.substr(start, string.size()));
    location_ = start + string.size();
    return true;
}

std::optional<std::string> Scanner::scanString(std::string_view string) {
    std::string text;
    return scanString(string, &text) ? std::optional(std::move(text)) : std::nullopt;
}

bool Scanner::scanUpToString(std::string_view string, std::string* into) {
    const std::size_t start = skippedFrom(location_);
    std::size_t end = start;
    while (end < text_.size() && !matchesAt(end, string)) ++end;
    if (end == start) return false;
    if (into) into->assign(text_.substr(start, end - start));
    location_ = end;
    return true;
}

std::optional<std::string> Scanner::scanUpToString(std::string_view string) {
    std::string text;
    return scanUpToString(string, &text) ? std::optional(std::move(text)) : std::nullopt;
}

bool Scanner::scanUpToCharactersFromSet(const CharacterSet& characters, std::string* into) {
    const std::size_t start = skippedFrom(location_);
    std::size_t i = start;
    while (i < text_.size()) {
        const DecodedCharacter decoded = decodeAt(text_, i);
        if (characters.contains(decoded.codePoint)) break;
        i += decoded.length;
    }
    if (i == start) return false;
    if (into) into->assign(text_.substr(start, i - start));
    location_ = i;
    return true;
}

std::optional<std::string> Scanner::scanUpToCharacters(const CharacterSet& characters) {
    std::string text;
    return scanUpToCharactersFromSet(characters, &text) ? std::optional(std::move(text))
                                                        : std::nullopt;
}

}  // namespace vn
