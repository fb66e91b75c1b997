// The model's cached number formatters (class members of vn::NumberFormatter).
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>

#include "formatting/FormatterCache.h"
#include "formatting/PictureTranslation.h"
#include "vn/formatting/NumberFormatter.h"

namespace vn {
namespace {

using formatting_internal::threadCachedObject;

formatting_internal::LocaleChangeCacheObserver& numberFormatterObserver() {
    static auto* observer = new formatting_internal::LocaleChangeCacheObserver(
        "VNNSNumberFormatter");  // process-wide, never destroyed
    return *observer;
}

void appendLocaleId(std::string& key, const std::optional<std::string>& localeId) {
    if (!localeId) return;
    key.append("LocaleId");
    key.append(*localeId);
}

void appendUnsigned(std::string& key, std::uint64_t value) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    key.append(digits, end);
}

int clampedDigits(std::uint64_t digits) {
    return static_cast<int>(
        std::min<std::uint64_t>(digits, std::numeric_limits<std::int32_t>::max()));
}

NumberFormatterPtr plainFormatter(const std::optional<std::string>& localeId) {
    auto formatter = std::make_shared<NumberFormatter>();
    if (localeId) formatter->setLocale(Locale(*localeId));
    return formatter;
}

}  // namespace

NumberFormatterPtr NumberFormatter::numberFormatterForVNPicture(
    std::string_view picture, const std::optional<std::string>& localeId, bool numberHasDecimals) {
    std::string& key = formatting_internal::beginKey(numberFormatterObserver(),
                                                     "VNNSNumberFormatterWithVNPicture");
    key.append(picture);
    appendLocaleId(key, localeId);
    return threadCachedObject<NumberFormatter>(numberFormatterObserver(), key, [&] {
        return formatting_internal::makeFormatterForPicture(
            formatting_internal::translateVNPicture(picture, numberHasDecimals), localeId);
    });
}

NumberFormatterPtr NumberFormatter::numberFormatterForNumberFormat(
    std::string_view pattern, const std::optional<std::string>& localeId) {
    return numberFormatterForNumberFormat(pattern, std::nullopt, localeId);
}

NumberFormatterPtr NumberFormatter::numberFormatterForNumberFormat(
    std::string_view pattern, const std::optional<std::string>& zeroSymbol,
    const std::optional<std::string>& localeId) {
    std::string& key = formatting_internal::beginKey(
        numberFormatterObserver(),
        zeroSymbol ? "VNNSNumberFormatterWith0Symbol" : "VNNSNumberFormatterWithFormat");
    if (zeroSymbol) {
        key.append(*zeroSymbol);
        key.append("Format");
    }
    key.append(pattern);
    appendLocaleId(key, localeId);
    return threadCachedObject<NumberFormatter>(numberFormatterObserver(), key, [&] {
        auto formatter = plainFormatter(localeId);
        formatter->setPositiveFormat(pattern);
        if (zeroSymbol) formatter->setZeroSymbol(zeroSymbol);
        return formatter;
    });
}

NumberFormatterPtr NumberFormatter::numberFormatterForMaximumFractionDigits(
    std::uint64_t fractionDigits, std::uint64_t integerDigits,
    const std::optional<std::string>& localeId) {
    std::string& key =
        formatting_internal::beginKey(numberFormatterObserver(), "VNNSNumberFormatterFraction");
    appendUnsigned(key, fractionDigits);
    key.append("Integer");
    appendUnsigned(key, integerDigits);
    appendLocaleId(key, localeId);
    return threadCachedObject<NumberFormatter>(numberFormatterObserver(), key, [&] {
        auto formatter = plainFormatter(localeId);
        std::uint64_t integers = integerDigits;
        if (fractionDigits != 0) {
            formatter->setNumberStyle(Style::decimal);
            // The integer count is the total length of the number: the fraction takes its share.
            if (fractionDigits < integers) integers -= fractionDigits;
            formatter->setMaximumFractionDigits(clampedDigits(fractionDigits));
            formatter->setGeneratesDecimalNumbers(true);
        }
        if (integers != 0) formatter->setMaximumIntegerDigits(clampedDigits(integers));
        return formatter;
    });
}

NumberFormatterPtr NumberFormatter::numberFormatterForLocale_en_US_POSIX() {
    std::string& key =
        formatting_internal::beginKey(numberFormatterObserver(), "VNNSNumberFormatter");
    return threadCachedObject<NumberFormatter>(numberFormatterObserver(), key,
                                               [] { return plainFormatter("en_US_POSIX"); });
}

NumberFormatterPtr NumberFormatter::decimalNumberFormatterForLocales_en_US_POSIX() {
    std::string& key =
        formatting_internal::beginKey(numberFormatterObserver(), "VNNSNumberFormatterDecimal");
    return threadCachedObject<NumberFormatter>(numberFormatterObserver(), key, [] {
        auto formatter = plainFormatter("en_US_POSIX");
        formatter->setGeneratesDecimalNumbers(true);
        return formatter;
    });
}

}  // namespace vn
