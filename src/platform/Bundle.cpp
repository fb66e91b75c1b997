#include "vn/platform/Bundle.h"

#include <mutex>

namespace vn {

Bundle& Bundle::main() {
    static auto* bundle = new Bundle();  // never destroyed: read from static destructors
    return *bundle;
}

void Bundle::setInfoDictionary(Value::Dictionary info) {
    std::unique_lock lock(mutex_);
    info_.swap(info);
}

Value::Dictionary Bundle::infoDictionary() const {
    std::shared_lock lock(mutex_);
    return info_;
}

Value Bundle::objectForInfoDictionaryKey(std::string_view key) const {
    std::shared_lock lock(mutex_);
    const auto found = info_.find(key);
    return found == info_.end() ? Value() : found->second;
}

void Bundle::setLocalizedStrings(std::map<std::string, std::string, std::less<>> strings) {
    std::unique_lock lock(mutex_);
    strings_.swap(strings);
}

std::string Bundle::localizedString(std::string_view key,
                                    std::optional<std::string_view> value) const {
    std::shared_lock lock(mutex_);
    if (const auto found = strings_.find(key); found != strings_.end()) return found->second;
    if (value && !value->empty()) return std::string(*value);
    return std::string(key);
}

}  // namespace vn
