// vn::NumberFormatter: converts numbers to locale-aware text and back, driven by a number
// pattern ("#,##0.00": "#" optional digit, "0" mandatory digit, "." decimal separator, ","
// grouping separator, text between single quotes literal), with settable affixes and a
// zero symbol. It is the formatter the model's pictures are translated into.
//
// The class also carries the model's cached formatters (numberFormatterForVNPicture and its
// siblings): formatters are costly to build and the same pictures recur on every row of a
// list, so each thread keeps its own formatters in its thread dictionary, keyed by strings
// that begin with "VNNSNumberFormatter", for the life of the thread unless a host bounds
// them (vn/formatting/FormatterCacheLimit.h).
//
// Thread safety: a formatter is not synchronised. Configure it and use it from one thread at
// a time; the cached formatters are per thread for exactly this reason. Never share a cached
// formatter with another thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/Locale.h"
#include "vn/platform/Number.h"
#include "vn/platform/Object.h"
#include "vn/platform/Value.h"

namespace vn {

class NumberFormatter;
using NumberFormatterPtr = std::shared_ptr<NumberFormatter>;

class NumberFormatter : public Object {
  public:
    // The platform's number styles with their raw values.
    enum class Style : std::uint8_t {
        none = 0,     // integers only, no grouping: pattern "#"
        decimal = 1,  // the locale's decimal pattern ("#,##0.###" for en_US)
        currency = 2,
        percent = 3,
        scientific = 4,
    };

    // A formatter in the user's current locale (vn::Locale::current() at construction) with
    // the style none.
    NumberFormatter();
    ~NumberFormatter() override;

    // The locale's number symbols (decimal and grouping separators, minus sign) are used for
    // output and input. Changing the locale keeps the pattern, the affixes and the limits
    // that were set; a style's pattern is recomputed for the new locale.
    Locale locale() const;
    void setLocale(const Locale& locale);

    // Setting a style replaces the pattern by the style's pattern for the locale and clears
    // the affixes and digit limits that were set before.
    Style numberStyle() const;
    void setNumberStyle(Style style);

    // The longest pattern (in UTF-8 bytes) the formatter reads. ICU compiles digit runs in
    // time that grows with the square of their length and shows at most 999 digits anyway, so
    // a longer pattern is refused like any other pattern the formatter cannot read.
    static constexpr std::size_t kMaximumPatternLength = 1024;
    // The longest text (in UTF-8 bytes) numberFromString reads; a longer text reads as no
    // number. It is well above what any pattern within kMaximumPatternLength writes, and
    // keeps ICU's reading (quadratic in the length of a digit run) short.
    static constexpr std::size_t kMaximumTextLength = 4096;

    // The pattern for positive numbers; negative numbers use it with the negative affixes.
    // Setting it clears the affixes and digit limits set before (the pattern defines them).
    // A pattern the formatter cannot read (also one longer than kMaximumPatternLength)
    // changes nothing. A mandatory digit to the left of optional ones ("0##", "#.#0") is read
    // as forcing those positions too. "~" is literal text, quoted or not.
    std::string positiveFormat() const;
    void setPositiveFormat(std::string_view pattern);

    // Literal texts around the digits; by default those the pattern gives (negative prefix
    // "-" when the pattern has no negative part). Every character is shown and read as
    // written, also those that patterns give a meaning ("-", "+", "%", "‰", "¤", "~", "'").
    std::string positivePrefix() const;
    void setPositivePrefix(std::string_view prefix);
    std::string positiveSuffix() const;
    void setPositiveSuffix(std::string_view suffix);
    std::string negativePrefix() const;
    void setNegativePrefix(std::string_view prefix);
    std::string negativeSuffix() const;
    void setNegativeSuffix(std::string_view suffix);

    // The text shown for a number that is exactly zero, and read back as zero. Absent (the
    // default): zero is formatted like any other number.
    const std::optional<std::string>& zeroSymbol() const;
    void setZeroSymbol(std::optional<std::string> symbol);

    // When set, numberFromString gives decimal numbers (exact digits) instead of integers
    // and doubles.
    bool generatesDecimalNumbers() const;
    void setGeneratesDecimalNumbers(bool generates);

    // Digit limits. Integer digits beyond the maximum are dropped from the left (as the
    // platform does); fraction digits beyond the maximum are rounded half to even.
    int maximumFractionDigits() const;
    void setMaximumFractionDigits(int digits);
    int minimumFractionDigits() const;
    void setMinimumFractionDigits(int digits);
    int maximumIntegerDigits() const;
    void setMaximumIntegerDigits(int digits);
    int minimumIntegerDigits() const;
    void setMinimumIntegerDigits(int digits);

    // The number as text; never fails (NaN gives "NaN", infinities "∞" with their sign).
    [[nodiscard]] virtual std::string stringFromNumber(const Number& number) const;
    // Reads the whole text as a number: absent when the text (apart from its affixes) is not
    // a number in this formatter's pattern and locale, when text is left over, or when the
    // text is longer than kMaximumTextLength (the zero symbol is always read). The result
    // is a decimal number when generatesDecimalNumbers is set, else an integer when the value
    // is integral, else a double.
    [[nodiscard]] virtual std::optional<Number> numberFromString(std::string_view text) const;
    // The text of a number value; absent for any other kind of value.
    virtual std::optional<std::string> stringForObjectValue(const Value& value) const;

    std::string description() const override;

    // ---- The model's cached formatters (per thread; see the top of this header) ----------
    //
    // A locale identifier that is absent means that no locale is set: the formatter keeps the
    // user's current locale. The first request made on the main thread registers, once per
    // process, an observer of NSCurrentLocaleDidChangeNotification delivered on the main
    // queue; it removes every "VNNSNumberFormatter…" entry of the thread dictionary of the
    // thread it runs on (the main thread). Other threads keep their caches.

    // The formatter for a model picture ("ZZZ,ZZ9.99", "(ZZ9.99)", "+ZZ9", "ZZ9.99DB",
    // "999-9999"): a platform formatter, or a VNNumberWithPictureFormatter when the picture
    // has literal text between digit positions. A platform formatter whose translated
    // pattern exceeds kMaximumPatternLength keeps the default pattern (style none) with the
    // picture's affixes, as one with a pattern ICU cannot read does. numberHasDecimals says
    // whether Z positions after the period become mandatory digits; it is not part of the
    // cache key, so the first request for a picture decides it for the thread.
    // Key: "VNNSNumberFormatterWithVNPicture" + picture [+ "LocaleId" + identifier].
    static NumberFormatterPtr numberFormatterForVNPicture(
        std::string_view picture, const std::optional<std::string>& localeId,
        bool numberHasDecimals);

    // A platform formatter for a pattern, optionally with a zero symbol. A pattern it cannot
    // read (also one longer than kMaximumPatternLength) leaves the default pattern (style none).
    // Keys: "VNNSNumberFormatterWithFormat" + pattern [+ "LocaleId" + identifier], and with a
    // zero symbol "VNNSNumberFormatterWith0Symbol" + symbol + "Format" + pattern
    // [+ "LocaleId" + identifier].
    static NumberFormatterPtr numberFormatterForNumberFormat(
        std::string_view pattern, const std::optional<std::string>& localeId);
    static NumberFormatterPtr numberFormatterForNumberFormat(
        std::string_view pattern, const std::optional<std::string>& zeroSymbol,
        const std::optional<std::string>& localeId);

    // A formatter limited in digits. With fractionDigits F not 0: style decimal, and when F
    // is less than integerDigits I, I is taken as the total length of the number and reduced
    // by F; the maximum fraction digits are F and numbers are read as decimals. Finally, when
    // I (after the reduction) is not 0, it limits the integer digits. F = I = 0 sets no limits.
    // Key: "VNNSNumberFormatterFraction<F>Integer<I>" [+ "LocaleId" + identifier].
    static NumberFormatterPtr numberFormatterForMaximumFractionDigits(
        std::uint64_t fractionDigits, std::uint64_t integerDigits,
        const std::optional<std::string>& localeId);

    // A plain formatter in the "en_US_POSIX" locale. Key: "VNNSNumberFormatter".
    static NumberFormatterPtr numberFormatterForLocale_en_US_POSIX();
    // The same, generating decimal numbers. Key: "VNNSNumberFormatterDecimal".
    static NumberFormatterPtr decimalNumberFormatterForLocales_en_US_POSIX();

  private:
    struct State;
    void rebuild();
    void setAffix(std::size_t which);

    std::unique_ptr<State> state_;
};

}  // namespace vn
