// The library's additions to vn::Thread: a per-object recursive monitor (objcSync) and a
// typed per-thread object cache (threadDictionaryCachedObject).
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "vn/platform/Object.h"
#include "vn/platform/Thread.h"
#include "vn/platform/Value.h"

namespace vn {

namespace concurrency_internal {

// Holds the monitor of one object identity for its lifetime. A monitor exists only while some
// thread holds or waits for it, so identities of objects that are gone leave nothing behind.
class ObjectMonitorLock {
  public:
    explicit ObjectMonitorLock(const void* identity);
    ~ObjectMonitorLock();
    ObjectMonitorLock(const ObjectMonitorLock&) = delete;
    ObjectMonitorLock& operator=(const ObjectMonitorLock&) = delete;

  private:
    const void* identity_;
    void* monitor_;
};

// The identity of an object: the address of its most-derived object, so that every base-class
// view of one object names the same monitor.
template <typename T>
const void* monitorIdentity(const T* object) {
    if constexpr (std::is_polymorphic_v<T>) {
        return dynamic_cast<const void*>(object);
    } else {
        return object;
    }
}

// The box that stores a value of a type that is not an Object in a thread dictionary.
template <typename T>
class ThreadCachedValue final : public Object {
  public:
    explicit ThreadCachedValue(T value) : value(std::move(value)) {}
    T value;
};

template <typename T>
struct IsObjectPointer : std::false_type {};
template <typename U>
struct IsObjectPointer<std::shared_ptr<U>> : std::bool_constant<std::is_base_of_v<Object, U>> {};

}  // namespace concurrency_internal

// Runs body while holding the recursive monitor of object (keyed by its identity, shared with
// every other objcSync on the same object), and releases it whether body returns or throws.
// Returns body's result and passes on its exception. A null object means no monitor: body
// simply runs. Safe from any thread.
template <typename F>
decltype(auto) objcSync(const void* identity, F&& body) {
    concurrency_internal::ObjectMonitorLock lock(identity);
    return std::forward<F>(body)();
}
template <typename F>
decltype(auto) objcSync(const Object& object, F&& body) {
    return objcSync(concurrency_internal::monitorIdentity(&object), std::forward<F>(body));
}
template <typename T, typename F>
decltype(auto) objcSync(const std::shared_ptr<T>& object, F&& body) {
    return objcSync(concurrency_internal::monitorIdentity(object.get()), std::forward<F>(body));
}

// The calling thread's cached object of type T under key: the value stored in
// vn::Thread::threadDictionary() under key if it has type T; otherwise notFoundBuilder() is
// called once and its result is stored under key (replacing a value of another type) and
// returned. T is either a std::shared_ptr to an Object subclass (stored as that object) or
// any copyable type (stored in a small Object box). There is no eviction: the cache lives as
// long as the thread. Needs no lock: each thread sees only its own dictionary.
template <typename T, typename Builder>
T threadDictionaryCachedObject(std::string_view key, Builder&& notFoundBuilder) {
    Value::Dictionary& dictionary = Thread::threadDictionary();
    const auto found = dictionary.find(key);
    if constexpr (concurrency_internal::IsObjectPointer<T>::value) {
        using Element = typename T::element_type;
        if (found != dictionary.end()) {
            if (auto cached = found->second.template objectAs<Element>()) return cached;
        }
        T built = std::forward<Builder>(notFoundBuilder)();
        dictionary.insert_or_assign(std::string(key), Value(built));
        return built;
    } else {
        using Box = concurrency_internal::ThreadCachedValue<T>;
        if (found != dictionary.end()) {
            if (auto box = found->second.template objectAs<Box>()) return box->value;
        }
        T built = std::forward<Builder>(notFoundBuilder)();
        dictionary.insert_or_assign(std::string(key), Value(std::make_shared<Box>(built)));
        return built;
    }
}

}  // namespace vn
