// Texts the application layer injects into the library's errors. The application registers a
// provider under the name of the class method it would define on the platform's error class;
// the permission-denied factory asks for these names:
//   "vnGoToSettingsRecoveryAttempterDefaultSettingsLocalizedRecoveryOption"  (option title)
//   "vnGoToSettingsRecoveryAttempterDefaultLocalizedDescription"              (description)
//   "vnGoToSettingsRecoveryAttempterSefaultLocalizedRecoverySuggestion"       (suggestion)
// The third name is spelled "Sefault" because the application layer defines it so.
// Safe from any thread; providers are called without any lock held.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vn {

inline constexpr std::string_view VNGoToSettingsRecoveryOptionTextName =
    "vnGoToSettingsRecoveryAttempterDefaultSettingsLocalizedRecoveryOption";
inline constexpr std::string_view VNGoToSettingsDescriptionTextName =
    "vnGoToSettingsRecoveryAttempterDefaultLocalizedDescription";
inline constexpr std::string_view VNGoToSettingsRecoverySuggestionTextName =
    "vnGoToSettingsRecoveryAttempterSefaultLocalizedRecoverySuggestion";

// Answers the text, or std::nullopt to leave the library's default in place.
using ErrorClassTextProvider = std::function<std::optional<std::string>()>;

// Registers (or, with an empty provider, removes) the provider for one name; a later
// registration replaces an earlier one.
void registerErrorClassTextProvider(std::string_view name, ErrorClassTextProvider provider);

// The registered provider's answer; std::nullopt when none is registered or it answers none.
std::optional<std::string> errorClassText(std::string_view name);

}  // namespace vn
