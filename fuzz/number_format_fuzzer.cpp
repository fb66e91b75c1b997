// libFuzzer target: model pictures and number patterns, with any number and any text to read.
// Formatting gives valid UTF-8 for valid UTF-8 pictures and affixes. The mask formatter's reading
// is left out: a text that yields no digit through the mask is a documented fatal error of that
// formatter.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "FuzzInput.h"
#include "vn/formatting/FormatterCacheLimit.h"
#include "vn/formatting/NumberFormatter.h"
#include "vn/formatting/VNNumberWithPictureFormatter.h"

namespace {

const std::optional<std::string> kPosix = std::string("en_US_POSIX");

void exercise(const vn::NumberFormatterPtr& formatter, double number, std::string_view text,
              bool validInput) {
    if (!formatter) return;
    const std::string written = formatter->stringFromNumber(vn::Number(number));
    if (validInput) vn_fuzz::checkUtf8(written, "formatted number");
    if (dynamic_cast<const vn::VNNumberWithPictureFormatter*>(formatter.get()) != nullptr) return;
    (void)formatter->numberFromString(text);
    (void)formatter->numberFromString(written);
}

}  // namespace

// Every input brings new patterns: the caches are bounded as a host with ever new patterns
// bounds them, or memory would grow for the whole run.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    vn::setCachedFormattersPerThreadLimit(vn::kSuggestedCachedFormattersPerThread);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto [picture, text, numberBytes] = vn_fuzz::fields<3>(data, size);
    const double number = vn_fuzz::doubleFromBytes(numberBytes);
    const bool valid =
        vn::platform_internal::isValidUtf8(picture) && vn::platform_internal::isValidUtf8(text);
    using vn::NumberFormatter;
    exercise(NumberFormatter::numberFormatterForVNPicture(picture, kPosix, true), number, text,
             valid);
    exercise(NumberFormatter::numberFormatterForVNPicture(picture, std::nullopt, false), number,
             text, valid);
    exercise(NumberFormatter::numberFormatterForNumberFormat(picture, kPosix), number, text, valid);
    exercise(NumberFormatter::numberFormatterForNumberFormat(picture, std::string(text), kPosix),
             number, text, valid);

    vn::NumberFormatter affixes;
    affixes.setPositivePrefix(text);
    affixes.setNegativeSuffix(text);
    const std::string written = affixes.stringFromNumber(vn::Number(std::int64_t{42}));
    if (valid) vn_fuzz::checkUtf8(written, "number with affixes");
    (void)affixes.numberFromString(written);
    return 0;
}
