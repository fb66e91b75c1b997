// vn::Locale: a locale by its identifier ("en_US", "de_DE", "en_US_POSIX"), with the number
// symbols the library reads from it, and the user's current locale, which the host may change.
#pragma once

#include <string>
#include <string_view>

namespace vn {

inline constexpr std::string_view NSCurrentLocaleDidChangeNotification =
    "NSCurrentLocaleDidChangeNotification";

class Locale {
  public:
    explicit Locale(std::string identifier) : identifier_(std::move(identifier)) {}

    // The user's current locale: the one the host set, else the process's default locale.
    static Locale current();
    // Changes the current locale and posts NSCurrentLocaleDidChangeNotification on the
    // default notification centre.
    static void setCurrent(std::string_view identifier);

    const std::string& identifier() const { return identifier_; }
    // Number symbols of the locale as UTF-8 ("." and "," for en_US; "," and "." for de_DE).
    std::string decimalSeparator() const;
    std::string groupingSeparator() const;

    // The current locale's decimal separator, cached until the current locale changes.
    static std::string currentDecimalSeparator();

  private:
    std::string identifier_;
};

}  // namespace vn
