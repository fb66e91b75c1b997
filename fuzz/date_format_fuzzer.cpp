// libFuzzer target: date patterns and date texts. Any instant (NaN and the infinities included)
// formats as valid UTF-8 through a pattern, the model's styles and JSON; a date read from text
// formats again without failing.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "FuzzInput.h"
#include "vn/formatting/DateFormatter.h"
#include "vn/formatting/DateVN.h"
#include "vn/formatting/FormatterCacheLimit.h"

namespace {

using Style = vn::DateFormatter::Style;

Style styleFromBits(unsigned bits) {
    return static_cast<Style>(bits % 5);
}

void formatWithStyles(const vn::Date& date, unsigned choice) {
    static const std::optional<std::string> kLocales[] = {std::nullopt, "en_US_POSIX", "fr_FR",
                                                          "ja_JP", "ar_EG"};
    const auto formatter =
        vn::DateFormatter::dateFormatterWithTimeZone_UTC_ForDateFormatterDateStyle(
            styleFromBits(choice), styleFromBits(choice / 5), (choice & 0x40) != 0,
            kLocales[(choice / 25) % 5], (choice & 0x80) != 0);
    const std::string text = formatter->stringFromDate(date);
    vn_fuzz::checkUtf8(text, "a date in a model style");
    (void)formatter->dateFromString(text);
}

}  // namespace

// Every input brings new patterns: the caches are bounded as a host with ever new patterns
// bounds them, or memory would grow for the whole run.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    vn::setCachedFormattersPerThreadLimit(vn::kSuggestedCachedFormattersPerThread);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto [pattern, text, dateBytes] = vn_fuzz::fields<3>(data, size);
    const vn::Date date{vn_fuzz::doubleFromBytes(dateBytes)};
    const bool valid = vn::platform_internal::isValidUtf8(pattern);

    const auto formatter =
        vn::DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat(pattern);
    const std::string formatted = formatter->stringFromDate(date);
    if (valid) vn_fuzz::checkUtf8(formatted, "a date through a pattern");
    if (const auto read = formatter->dateFromString(text)) {
        (void)formatter->stringFromDate(*read);
        vn_fuzz::checkUtf8(vn::DateVN::json(*read), "a read date as JSON");
    }
    vn_fuzz::checkUtf8(vn::DateVN::json(date), "a date as JSON");
    vn_fuzz::checkUtf8(vn::DateVN::JSON(date), "a date as JSON with milliseconds");
    const unsigned choice = dateBytes.size() > 8 ? static_cast<std::uint8_t>(dateBytes[8]) : 0;
    formatWithStyles(date, choice);
    return 0;
}
