#include "vn/platform/Locale.h"

#include <unicode/dcfmtsym.h>
#include <unicode/locid.h>

#include <mutex>
#include <optional>

#include "vn/platform/NotificationCenter.h"

namespace vn {
namespace {

struct CurrentLocale {
    std::mutex mutex;
    std::optional<std::string> identifier;
    std::optional<std::string> decimalSeparator;
};

CurrentLocale& currentLocale() {
    static auto* state = new CurrentLocale();  // never destroyed
    return *state;
}

std::string numberSymbol(const std::string& identifier,
                         icu::DecimalFormatSymbols::ENumberFormatSymbol symbol,
                         const char* fallback) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::DecimalFormatSymbols symbols(icu::Locale::createCanonical(identifier.c_str()),
                                            status);
    if (U_FAILURE(status)) return fallback;
    std::string text;
    symbols.getSymbol(symbol).toUTF8String(text);
    return text.empty() ? fallback : text;
}

}  // namespace

Locale Locale::current() {
    CurrentLocale& state = currentLocale();
    std::lock_guard lock(state.mutex);
    if (state.identifier) return Locale(*state.identifier);
    return Locale(icu::Locale::getDefault().getName());
}

void Locale::setCurrent(std::string_view identifier) {
    {
        CurrentLocale& state = currentLocale();
        std::lock_guard lock(state.mutex);
        state.identifier = std::string(identifier);
        state.decimalSeparator.reset();
    }
    NotificationCenter::defaultCenter().postNotificationName(NSCurrentLocaleDidChangeNotification);
}

std::string Locale::decimalSeparator() const {
    return numberSymbol(identifier_, icu::DecimalFormatSymbols::kDecimalSeparatorSymbol, ".");
}

std::string Locale::groupingSeparator() const {
    return numberSymbol(identifier_, icu::DecimalFormatSymbols::kGroupingSeparatorSymbol, ",");
}

std::string Locale::currentDecimalSeparator() {
    CurrentLocale& state = currentLocale();
    {
        std::lock_guard lock(state.mutex);
        if (state.decimalSeparator) return *state.decimalSeparator;
    }
    std::string separator = current().decimalSeparator();
    std::lock_guard lock(state.mutex);
    if (!state.decimalSeparator) state.decimalSeparator = separator;
    return *state.decimalSeparator;
}

}  // namespace vn
