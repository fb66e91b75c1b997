// vn picture, vn date, vn mime: the model's number pictures, date conventions and MIME
// lookup on real inputs; and the tour's section on formatting and text.
#include <cstdio>
#include <string>
#include <vector>

#include "../Registry.h"
#include "vn/formatting/DateFormatter.h"
#include "vn/formatting/DateVN.h"
#include "vn/formatting/MessageFormat.h"
#include "vn/formatting/MimeType.h"
#include "vn/formatting/NumberFormatter.h"
#include "vn/formatting/NumberRounding.h"
#include "vn/formatting/StringUtilities.h"
#include "vn/formatting/VNNumberWithPictureFormatter.h"
#include "vn/formatting/VNTimeZone.h"
#include "vn/formatting/VersionString.h"

namespace {

using namespace vn;

// ---- vn picture ----------------------------------------------------------------------------

std::optional<Number> numberFromArgument(const std::string& text) {
    std::size_t consumed = 0;
    const auto decimal = Decimal::parse(text, ".", &consumed);
    if (!decimal || consumed != text.size()) return std::nullopt;
    return Number(*decimal);
}

std::string describeFormatter(const NumberFormatter& formatter) {
    if (const auto* mask = dynamic_cast<const VNNumberWithPictureFormatter*>(&formatter)) {
        return "mask formatter, mask \"" + mask->vnNumberFormat() + "\"";
    }
    std::string text = "platform formatter, pattern \"" + formatter.positiveFormat() +
                       "\", locale " + formatter.locale().identifier();
    text += ", affixes \"" + formatter.positivePrefix() + "\"/\"" + formatter.positiveSuffix() +
            "\" and \"" + formatter.negativePrefix() + "\"/\"" + formatter.negativeSuffix() + "\"";
    if (formatter.zeroSymbol()) text += ", zero shown as \"" + *formatter.zeroSymbol() + "\"";
    return text;
}

std::size_t countOf(std::string_view text, std::string_view characters) {
    std::size_t count = 0;
    for (const char c : text) count += characters.find(c) != std::string_view::npos;
    return count;
}

// A mask formatter stops the process on a text from which it collects no digit, or more
// digits than a signed 64-bit integer holds, so only texts sure to avoid both are read back
// through it: those of positive integers under a mask with digit positions, where the mask or
// the text limits the digits collected to 18.
bool canReadBack(const NumberFormatter& formatter, const Number& number, std::string_view shown) {
    const auto* mask = dynamic_cast<const VNNumberWithPictureFormatter*>(&formatter);
    if (!mask) return true;
    constexpr std::size_t kDigitsThatAlwaysFit = 18;
    const std::size_t positions = countOf(mask->vnNumberFormat(), "0#");
    const bool fits =
        positions <= kDigitsThatAlwaysFit || countOf(shown, "0123456789") <= kDigitsThatAlwaysFit;
    return positions > 0 && fits && number.decimalValue() >= Decimal::fromInteger(1) &&
           number.decimalValue() == number.decimalValue().rounded(0, RoundingMode::down);
}

int runPicture(const tool::Arguments& arguments);

const tool::Command kPicture{"picture", "picture MASK NUMBER... [--locale ID]",
                             "format numbers by a model picture and read the texts back",
                             "vn picture 'ZZZ,ZZ9.99' 1234.5 -7 --locale de_DE", runPicture};

int runPicture(const tool::Arguments& arguments) {
    std::optional<std::string> locale;
    std::vector<std::string> words;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--locale") {
            if (i + 1 == arguments.size()) return tool::usageError(kPicture);
            locale = arguments[++i];
        } else {
            words.push_back(arguments[i]);
        }
    }
    if (words.size() < 2) return tool::usageError(kPicture);
    const std::string& picture = words.front();
    const bool hasDecimals = picture.find('.') != std::string::npos;
    const auto formatter =
        NumberFormatter::numberFormatterForVNPicture(picture, locale, hasDecimals);
    std::printf("picture \"%s\": %s\n", picture.c_str(), describeFormatter(*formatter).c_str());
    int status = 0;
    for (auto it = words.begin() + 1; it != words.end(); ++it) {
        const auto number = numberFromArgument(*it);
        if (!number) {
            std::fprintf(stderr, "vn picture: \"%s\" is not a number\n", it->c_str());
            status = 1;
            continue;
        }
        const std::string shown = formatter->stringFromNumber(*number);
        std::string readBack =
            "(not read back: a mask formatter reads only texts of 1 to 18 digits)";
        if (canReadBack(*formatter, *number, shown)) {
            const auto read = formatter->numberFromString(shown);
            readBack = read ? read->description() : "(does not read back)";
        }
        std::printf("  %-24s -> \"%s\" -> %s\n", it->c_str(), shown.c_str(), readBack.c_str());
    }
    return status;
}

// ---- vn date -------------------------------------------------------------------------------

std::optional<Date> instantFromArgument(const std::string& text) {
    static const char* const kPatterns[] = {
        "yyyy-MM-dd'T'HH:mm:ss.SSSXXX", "yyyy-MM-dd'T'HH:mm:ssXXX", "yyyy-MM-dd'T'HH:mm:ss.SSS",
        "yyyy-MM-dd'T'HH:mm:ss",        "yyyy-MM-dd'T'HH:mm",       "yyyy-MM-dd",
    };
    for (const char* pattern : kPatterns) {
        const auto formatter =
            DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat(pattern);
        if (auto date = formatter->dateFromString(text)) return date;
    }
    return std::nullopt;
}

std::string isoText(const Date& date) {
    return DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat(
               "yyyy-MM-dd'T'HH:mm:ss.SSS'Z'")
        ->stringFromDate(date);
}

const char* yesNo(bool value) {
    return value ? "yes" : "no";
}

void printDateViews(const Date& date) {
    using namespace DateVN;
    std::printf("instant               %s (%.3f s since 2001-01-01)\n", isoText(date).c_str(),
                date.timeIntervalSinceReferenceDate);
    std::printf("empty / time-only     %s / %s\n", yesNo(isVnEmptyDate(date)),
                yesNo(isVnTimeOnly(date)));
    std::printf("has a time part       %s\n", yesNo(isVnDateTime(date)));
    std::printf("vnDate                %s\n", isoText(vnDate(date)).c_str());
    std::printf("vnDateTime            %s\n", isoText(vnDateTime(date)).c_str());
    std::printf("vnDateTimeMS          %s\n", isoText(vnDateTimeMS(date)).c_str());
    std::printf("vnTimeOnlyDateTime    %s\n", isoText(vnTimeOnlyDateTime(date)).c_str());
    std::printf("vnTimeOnlyDateTimeMS  %s\n", isoText(vnTimeOnlyDateTimeMS(date)).c_str());
    std::printf("json                  %s\n", json(date).c_str());
    const std::string local = TimeZone::system().identifier();
    const std::string current = VNTimeZone::currentTimeZoneName();
    std::printf("local zone %s, current zone %s (%.0f s from GMT)\n", local.c_str(),
                current.c_str(), currentTimeZoneSecondsFromGMT(date));
    std::printf("  local from GMT      %s\n", isoText(localTimeZoneDateFromGMT(date)).c_str());
    std::printf("  GMT from local      %s\n", isoText(gmtTimeZoneDateFromLocal(date)).c_str());
    std::printf("  current from GMT    %s\n", isoText(currentTimeZoneDateFromGMT(date)).c_str());
    std::printf("  GMT from current    %s\n", isoText(gmtTimeZoneDateFromCurrent(date)).c_str());
    std::printf("  current from local  %s\n", isoText(currentTimeZoneDateFromLocal(date)).c_str());
    std::printf("  local from current  %s\n", isoText(localTimeZoneDateFromCurrent(date)).c_str());
}

int runDate(const tool::Arguments& arguments);

const tool::Command kDate{"date", "date ISO-INSTANT [--zone ID]",
                          "the model's views of an instant (2020-03-01T10:20:30Z, 0001-01-01, ...)",
                          "vn date 2020-03-01T10:20:30Z --zone America/Montevideo", runDate};

int runDate(const tool::Arguments& arguments) {
    if (arguments.size() != 1 && !(arguments.size() == 3 && arguments[1] == "--zone"))
        return tool::usageError(kDate);
    if (arguments.size() == 3 && !VNTimeZone::setCurrentTimeZoneWithName(arguments[2])) {
        return tool::badData(kDate, "unknown time zone \"" + arguments[2] + "\"");
    }
    const auto date = instantFromArgument(arguments[0]);
    if (!date) return tool::badData(kDate, "\"" + arguments[0] + "\" is not an ISO 8601 instant");
    printDateViews(*date);
    return tool::kSuccess;
}

// ---- vn mime -------------------------------------------------------------------------------

int runMime(const tool::Arguments& arguments);

const tool::Command kMime{"mime", "mime EXTENSION...", "the MIME type of file extensions",
                          "vn mime png json", runMime};

int runMime(const tool::Arguments& arguments) {
    if (arguments.empty()) return tool::usageError(kMime);
    for (const std::string& extension : arguments) {
        std::printf("%-12s %s\n", extension.c_str(), mimeTypeForPathExtension(extension).c_str());
    }
    return tool::kSuccess;
}

// ---- tour ----------------------------------------------------------------------------------

void showFormatting() {
    std::printf("Pictures (the model's number masks), formatted and read back:\n");
    const struct {
        const char* picture;
        const char* locale;
        double number;
    } samples[] = {
        {"ZZZ,ZZ9.99", "en_US", 1234567.891},
        {"ZZZ,ZZ9.99", "de_DE", 1234567.891},
        {"ZZZ,ZZ9.99", "fr_FR", -42.5},
        {"(ZZ9.99)", "en_US", -5},
        {"ZZ9.99DB", "es_UY", -5},
        {"ZZ9.99DB", "es_UY", 5},
        {"+ZZ9", "en_US", 7},
        {"ZZZZ", "en_US", 0},
        {"999-9999", "en_US", 1234567},
        {"999-9999", "en_US", 123},
    };
    for (const auto& s : samples) {
        const auto formatter =
            NumberFormatter::numberFormatterForVNPicture(s.picture, s.locale, true);
        const std::string shown = formatter->stringFromNumber(Number(s.number));
        const auto read = formatter->numberFromString(shown);
        std::printf("  %-11s %-6s %14.3f -> %-16s -> %s\n", s.picture, s.locale, s.number,
                    ("\"" + shown + "\"").c_str(), read ? read->description().c_str() : "nil");
    }
    std::printf("Rounding 2.5: plain %s, half even %s; truncating -2.7: %s\n",
                vnNumberRoundedToDecimalsInt(Number(2.5), 0).description().c_str(),
                vnNumberRoundedToEvenDecimalsInt(Number(2.5), 0).description().c_str(),
                vnNumberTruncatedToDecimalsInt(Number(-2.7), 0).description().c_str());

    std::printf("\nDates (model calendar: Gregorian, GMT, proleptic):\n");
    const Date empty = DateVN::vnEmptyDate();
    std::printf("  empty date %s = %.0f s from 2001-01-01, JSON \"%s\"\n", isoText(empty).c_str(),
                empty.timeIntervalSinceReferenceDate, DateVN::json(empty).c_str());
    const Date landing = Date::fromTimeIntervalSince1970(-14182939.75);
    std::printf("  %s: vnDate %s, time-only %s, JSON \"%s\"\n", isoText(landing).c_str(),
                isoText(DateVN::vnDate(landing)).c_str(),
                isoText(DateVN::vnTimeOnlyDateTime(landing)).c_str(),
                DateVN::json(landing).c_str());

    std::printf("\nText:\n");
    std::printf("  xml escape   %s\n", xmlSimpleEscape("a<b & \"c\"").c_str());
    std::printf("  message      %s\n",
                VNUtilities::stringWithVNFormat("%1 of %2 (100%)", {"page 3", 12}).c_str());
    std::printf("  mime         png %s, ogg %s, qqq %s\n", mimeTypeForPathExtension("png").c_str(),
                mimeTypeForPathExtension("ogg").c_str(), mimeTypeForPathExtension("qqq").c_str());
    std::printf("  versions     1.9 vs 1.10: %d, packed 1.2.3 = 0x%016llx\n",
                static_cast<int>(VNUtilities::comparaVersionString("1.9", "1.10")),
                static_cast<unsigned long long>(
                    VNUtilities::numericRepresentationFromVersionString("1.2.3")));
}

const tool::CommandRegistration kPictureRegistration{kPicture};
const tool::CommandRegistration kDateRegistration{kDate};
const tool::CommandRegistration kMimeRegistration{kMime};
const tool::TourRegistration kFormattingTour{
    {40, "Formatting: pictures, dates and text", showFormatting}};

}  // namespace
