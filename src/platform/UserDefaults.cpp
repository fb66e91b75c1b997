#include "vn/platform/UserDefaults.h"

#include <cstdlib>
#include <mutex>
#include <utility>

namespace vn {

UserDefaults& UserDefaults::standard() {
    static auto* defaults = new UserDefaults();  // never destroyed: read from static destructors
    return *defaults;
}

void UserDefaults::registerDefaults(const Value::Dictionary& defaults) {
    std::unique_lock lock(mutex_);
    for (const auto& [key, value] : defaults) registered_.insert_or_assign(key, value);
}

Value UserDefaults::objectForKey(std::string_view key) const {
    std::shared_lock lock(mutex_);
    if (const auto found = values_.find(key); found != values_.end()) return found->second;
    if (const auto found = registered_.find(key); found != registered_.end()) return found->second;
    return Value();
}

void UserDefaults::setObject(Value value, std::string_view key) {
    Value replaced;  // released outside the lock
    std::unique_lock lock(mutex_);
    const auto found = values_.find(key);
    if (value.isNil()) {
        if (found != values_.end()) {
            replaced = std::move(found->second);
            values_.erase(found);
        }
    } else if (found != values_.end()) {
        replaced = std::exchange(found->second, std::move(value));
    } else {
        values_.emplace(std::string(key), std::move(value));
    }
}

bool UserDefaults::boolForKey(std::string_view key) const {
    const Value value = objectForKey(key);
    if (!value.isNumber() && !value.isString()) return false;
    return value.boolValue().value_or(false);
}

std::int64_t UserDefaults::integerForKey(std::string_view key) const {
    const Value value = objectForKey(key);
    if (const Number* number = value.number()) return number->integerValue();
    if (const std::string* text = value.string()) return std::strtoll(text->c_str(), nullptr, 10);
    return 0;
}

std::optional<std::string> UserDefaults::stringForKey(std::string_view key) const {
    const Value value = objectForKey(key);
    if (const std::string* text = value.string()) return *text;
    if (const Number* number = value.number()) return number->description();
    return std::nullopt;
}

void UserDefaults::reset() {
    Value::Dictionary values;
    Value::Dictionary registered;
    std::unique_lock lock(mutex_);
    values.swap(values_);
    registered.swap(registered_);
}

}  // namespace vn
