// vn::UserDefaults: the application's settings: values set at run time over registered
// (fallback) defaults. Safe from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <shared_mutex>
#include <string>
#include <string_view>

#include "vn/platform/Value.h"

namespace vn {

class UserDefaults {
  public:
    UserDefaults() = default;
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;

    // The process-wide defaults; never destroyed.
    static UserDefaults& standard();

    // Adds (or replaces) fallback values; values already set are not touched.
    void registerDefaults(const Value::Dictionary& defaults);

    // The value set for key, else the registered default, else nil.
    Value objectForKey(std::string_view key) const;
    // A nil value removes the key.
    void setObject(Value value, std::string_view key);
    void removeObjectForKey(std::string_view key) { setObject(Value(), key); }

    // The platform's boolean reading of a key: numbers and texts by their boolean value
    // (texts by the text-to-boolean rule), anything else and an absent key false.
    bool boolForKey(std::string_view key) const;
    void setBool(bool value, std::string_view key) { setObject(Value(value), key); }
    // Numbers by their integer value, texts by their leading integer; otherwise 0.
    std::int64_t integerForKey(std::string_view key) const;
    std::optional<std::string> stringForKey(std::string_view key) const;

    // Forgets every value and every registered default (for tests and host resets).
    void reset();

  private:
    mutable std::shared_mutex mutex_;
    Value::Dictionary values_;
    Value::Dictionary registered_;
};

}  // namespace vn
