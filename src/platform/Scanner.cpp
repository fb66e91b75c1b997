#include "vn/platform/Scanner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <limits>

#include <locale.h>

#include "vn/platform/Exception.h"

namespace vn {
namespace {

constexpr char32_t kReplacementCharacter = 0xFFFD;

struct DecodedCharacter {
    char32_t codePoint;
    std::size_t length;
};

// Decodes the UTF-8 sequence at text[i]; a malformed or truncated sequence is one byte that
// stands for U+FFFD, so a scan always moves on.
DecodedCharacter decodeAt(std::string_view text, std::size_t i) {
    const auto lead = static_cast<unsigned char>(text[i]);
    if (lead < 0x80) return {lead, 1};
    std::size_t length = 0;
    char32_t codePoint = 0;
    if ((lead & 0xE0) == 0xC0) {
        length = 2;
        codePoint = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3;
        codePoint = lead & 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4;
        codePoint = lead & 0x07;
    } else {
        return {kReplacementCharacter, 1};
    }
    if (i + length > text.size()) return {kReplacementCharacter, 1};
    for (std::size_t k = 1; k < length; ++k) {
        const auto continuation = static_cast<unsigned char>(text[i + k]);
        if ((continuation & 0xC0) != 0x80) return {kReplacementCharacter, 1};
        codePoint = (codePoint << 6) | (continuation & 0x3F);
    }
    static constexpr std::array<char32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};
    const bool overlong = codePoint < kSmallest[length];
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (overlong || surrogate || codePoint > 0x10FFFF) return {kReplacementCharacter, 1};
    return {codePoint, length};
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
    for (const char32_t c : members) {
        if (c < 0x80) {
            utf8 += static_cast<char>(c);
        } else if (c < 0x800) {
            utf8 += static_cast<char>(0xC0 | (c >> 6));
            utf8 += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            utf8 += static_cast<char>(0xE0 | (c >> 12));
            utf8 += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            utf8 += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return Scanner::CharacterSet(utf8);
}

constexpr std::u32string_view kSpaces =
    U" \t\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A\u202F\u205F"
    U"\u3000";
constexpr std::u32string_view kNewlines = U"\n\v\f\r\u0085\u2028\u2029";

// strtod()/strtof() in the C locale whatever the process's locale is; used only for values
// beyond the floating type's range, which std::from_chars does not produce.
locale_t cLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return locale;
}

template <typename Floating>
Floating strtoInCLocale(const std::string& text) {
    if constexpr (std::is_same_v<Floating, float>) {
        return strtof_l(text.c_str(), nullptr, cLocale());
    } else {
        return strtod_l(text.c_str(), nullptr, cLocale());
    }
}

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
    if (error == std::errc::result_out_of_range) value = strtoInCLocale<Floating>(rewritten);
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

namespace {

// The mantissas and powers of ten a floating type holds exactly. A number whose decimal
// mantissa and power of ten both fit is the correctly rounded result of one multiplication or
// division of the two, which is what strtod returns for its text (Clinger's fast path).
// A mantissa of more significant digits than maxDigits is beyond maxMantissa.
template <typename Floating>
struct ExactRange;
template <>
struct ExactRange<double> {
    static constexpr std::uint64_t maxMantissa = std::uint64_t{1} << 53;
    static constexpr int maxDigits = 16;
    static constexpr int maxPowerOfTen = 22;
};
template <>
struct ExactRange<float> {
    static constexpr std::uint64_t maxMantissa = std::uint64_t{1} << 24;
    static constexpr int maxDigits = 8;
    static constexpr int maxPowerOfTen = 10;
};

template <typename Floating>
constexpr std::array<Floating, ExactRange<Floating>::maxPowerOfTen + 1> exactPowersOfTen() {
    std::array<Floating, ExactRange<Floating>::maxPowerOfTen + 1> powers{};
    Floating power = 1;
    for (Floating& entry : powers) {
        entry = power;
        power *= 10;
    }
    return powers;
}

struct DecimalDigits {
    std::uint64_t mantissa = 0;
    int powerOfTen = 0;
    std::size_t end = 0;
};

// Reads digits at i into the mantissa; false as soon as the significant digits outnumber
// maxDigits. Leading zeros are not significant.
template <int maxDigits>
bool readDigits(std::string_view text, std::size_t& i, DecimalDigits& digits, int& significant,
                int powerStep) {
    for (; i < text.size() && isDigit(text[i]); ++i) {
        const auto digit = static_cast<std::uint64_t>(text[i] - '0');
        digits.powerOfTen += powerStep;
        if (digits.mantissa == 0 && digit == 0) continue;
        if (++significant > maxDigits) return false;
        digits.mantissa = digits.mantissa * 10 + digit;
    }
    return true;
}

// Reads [digits][.digits][(e|E)[sign]digits] at `at` when the mantissa has few enough digits
// to be exact; false otherwise, and for no digit at all, leaving such texts to the general
// reader. (Results travel through an out parameter: an optional returned from here costs a
// store-forwarding stall per call.)
template <typename Floating>
[[gnu::always_inline]] inline bool readSmallDecimal(std::string_view text, std::size_t at,
                                                    DecimalDigits& digits) {
    constexpr int kMaxDigits = ExactRange<Floating>::maxDigits;
    constexpr int kMaxExponentMagnitude = 9999;
    int significant = 0;
    std::size_t i = at;
    if (!readDigits<kMaxDigits>(text, i, digits, significant, 0)) return false;
    bool anyDigit = i > at;
    if (i < text.size() && text[i] == '.') {
        const std::size_t fraction = ++i;
        if (!readDigits<kMaxDigits>(text, i, digits, significant, -1)) return false;
        anyDigit = anyDigit || i > fraction;
    }
    if (!anyDigit) return false;
    digits.end = i;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        std::size_t j = i + 1;
        const bool negative = j < text.size() && text[j] == '-';
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) ++j;
        if (j < text.size() && isDigit(text[j])) {
            int exponent = 0;
            for (; j < text.size() && isDigit(text[j]); ++j) {
                exponent = exponent * 10 + (text[j] - '0');
                if (exponent > kMaxExponentMagnitude) return false;
            }
            digits.powerOfTen += negative ? -exponent : exponent;
            digits.end = j;
        }
    }
    return true;
}

template <typename Floating>
bool readExactValue(const DecimalDigits& digits, Floating& value) {
    using Range = ExactRange<Floating>;
    static constexpr auto kPowers = exactPowersOfTen<Floating>();
    if (digits.mantissa > Range::maxMantissa) return false;
    if (digits.powerOfTen < -Range::maxPowerOfTen || digits.powerOfTen > Range::maxPowerOfTen)
        return false;
    const auto mantissa = static_cast<Floating>(digits.mantissa);
    value = digits.powerOfTen < 0 ? mantissa / kPowers[static_cast<std::size_t>(-digits.powerOfTen)]
                                  : mantissa * kPowers[static_cast<std::size_t>(digits.powerOfTen)];
    return true;
}

template <typename Floating>
bool computeExactly(std::string_view text, std::size_t body, bool negative, Floating* result,
                    std::size_t& end) {
    DecimalDigits digits;
    Floating exact = 0;
    if (!readSmallDecimal<Floating>(text, body, digits) || !readExactValue(digits, exact))
        return false;
    if (result) *result = negative ? -exact : exact;
    end = digits.end;
    return true;
}

}  // namespace

bool Scanner::readExactly(std::string_view text, std::size_t body, bool negative, double* result,
                          std::size_t& end) {
    return computeExactly(text, body, negative, result, end);
}

bool Scanner::readExactly(std::string_view text, std::size_t body, bool negative, float* result,
                          std::size_t& end) {
    return computeExactly(text, body, negative, result, end);
}

double Scanner::beyondRange(const char* begin, const char* end, double) {
    return strtoInCLocale<double>(std::string(begin, end));
}

float Scanner::beyondRange(const char* begin, const char* end, float) {
    return strtoInCLocale<float>(std::string(begin, end));
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
