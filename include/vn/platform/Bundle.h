// vn::Bundle: the application's main bundle as the library reads it: the information
// dictionary and the localized-strings table, both supplied by the host application.
// Safe from any thread.
#pragma once

#include <map>
#include <optional>
#include <shared_mutex>
#include <string>
#include <string_view>

#include "vn/platform/Value.h"

namespace vn {

class Bundle {
  public:
    Bundle() = default;
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;

    static Bundle& main();

    void setInfoDictionary(Value::Dictionary info);
    Value::Dictionary infoDictionary() const;
    Value objectForInfoDictionaryKey(std::string_view key) const;

    // Localized texts by key. The table is set by the host; without one every key reads as
    // itself.
    void setLocalizedStrings(std::map<std::string, std::string, std::less<>> strings);
    // The text for key; when there is none, value if given and not empty, else the key.
    std::string localizedString(std::string_view key,
                                std::optional<std::string_view> value = std::nullopt) const;

  private:
    mutable std::shared_mutex mutex_;
    Value::Dictionary info_;
    std::map<std::string, std::string, std::less<>> strings_;
};

}  // namespace vn
