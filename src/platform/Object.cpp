#include "vn/platform/Object.h"

#include <cxxabi.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <typeinfo>

namespace vn {

Object::~Object() {
    // Associated objects may run arbitrary code when released (dealloc blocks), so they are
    // moved out of the lock before they die.
    std::vector<std::pair<const void*, std::shared_ptr<Object>>> released;
    {
        std::lock_guard lock(associatedMutex_);
        released.swap(associated_);
    }
}

std::string Object::description() const {
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<const void*>(this));
    return "<" + className() + ": " + address + ">";
}

bool Object::isEqual(const Object& other) const { return this == &other; }

std::size_t Object::hash() const { return std::hash<const void*>{}(this); }

std::string Object::className() const { return unqualifiedTypeName(typeid(*this)); }

std::optional<bool> Object::boolValue() const { return std::nullopt; }

void Object::setAssociatedObject(const void* key, std::shared_ptr<Object> value) {
    std::shared_ptr<Object> replaced;
    std::lock_guard lock(associatedMutex_);
    for (auto it = associated_.begin(); it != associated_.end(); ++it) {
        if (it->first != key) continue;
        replaced = std::move(it->second);
        if (value) {
            it->second = std::move(value);
        } else {
            associated_.erase(it);
        }
        return;
    }
    if (value) associated_.emplace_back(key, std::move(value));
}

std::shared_ptr<Object> Object::associatedObject(const void* key) const {
    std::lock_guard lock(associatedMutex_);
    for (const auto& [entryKey, value] : associated_) {
        if (entryKey == key) return value;
    }
    return nullptr;
}

std::string unqualifiedTypeName(const std::type_info& type) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> demangled(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    std::string name = status == 0 && demangled ? demangled.get() : type.name();
    const auto templateStart = name.find('<');
    const auto scopeEnd = name.rfind("::", templateStart);
    return scopeEnd == std::string::npos ? name : name.substr(scopeEnd + 2);
}

}  // namespace vn
