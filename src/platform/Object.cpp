#include "vn/platform/Object.h"

#include <cxxabi.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <typeinfo>
#include <utility>
#include <vector>

namespace vn {

struct Object::AssociatedObjects {
    std::mutex mutex;
    std::vector<std::pair<const void*, std::shared_ptr<Object>>> entries;
};

Object::~Object() {
    std::unique_ptr<AssociatedObjects> associated(associated_.load(std::memory_order_acquire));
    if (!associated) return;
    // Associated objects may run arbitrary code when released (dealloc blocks), so they are
    // moved out of the lock before they die.
    std::vector<std::pair<const void*, std::shared_ptr<Object>>> released;
    {
        std::lock_guard lock(associated->mutex);
        released.swap(associated->entries);
    }
}

Object::AssociatedObjects& Object::associatedObjects() const {
    if (AssociatedObjects* existing = associated_.load(std::memory_order_acquire)) return *existing;
    auto created = std::make_unique<AssociatedObjects>();
    AssociatedObjects* expected = nullptr;
    if (associated_.compare_exchange_strong(expected, created.get(), std::memory_order_acq_rel)) {
        return *created.release();  // owned by associated_ from now on, freed by the destructor
    }
    return *expected;
}

std::string Object::description() const {
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<const void*>(this));
    return "<" + className() + ": " + address + ">";
}

bool Object::isEqual(const Object& other) const {
    return this == &other;
}

std::size_t Object::hash() const {
    return std::hash<const void*>{}(this);
}

std::string Object::className() const {
    return unqualifiedTypeName(typeid(*this));
}

std::optional<bool> Object::boolValue() const {
    return std::nullopt;
}

void Object::setAssociatedObject(const void* key, std::shared_ptr<Object> value) {
    if (!value && !associated_.load(std::memory_order_acquire)) return;
    AssociatedObjects& associated = associatedObjects();
    std::shared_ptr<Object> replaced;  // released after the lock
    std::lock_guard lock(associated.mutex);
    auto& entries = associated.entries;
    for (auto it = entries.begin(); it != entries.end(); ++it) {
        if (it->first != key) continue;
        replaced = std::move(it->second);
        if (value) {
            it->second = std::move(value);
        } else {
            entries.erase(it);
        }
        return;
    }
    if (value) entries.emplace_back(key, std::move(value));
}

std::shared_ptr<Object> Object::associatedObject(const void* key) const {
    AssociatedObjects* associated = associated_.load(std::memory_order_acquire);
    if (!associated) return nullptr;
    std::lock_guard lock(associated->mutex);
    for (const auto& [entryKey, value] : associated->entries) {
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
