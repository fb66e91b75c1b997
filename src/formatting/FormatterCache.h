// The per-thread formatter caches: formatters live in the calling thread's dictionary under
// string keys, and an observer registered once per process clears one family of keys from
// the main thread's dictionary when the current locale changes.
//
// Under a per-thread limit (see vn/formatting/FormatterCacheLimit.h) each family remembers the
// order in which its keys were last requested on the thread, and a request that leaves the
// family above the limit removes the least recently requested entries. Without one, nothing is
// tracked.
//
// Keys are built in a reusable thread-local buffer and looked up without allocating, so a
// cache hit costs one key build and two lookups (the entry and its place in the order).
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "vn/concurrency/ThreadVNFoundation.h"

namespace vn::formatting_internal {

// The calling thread's key buffer, emptied; valid until the next call on this thread.
std::string& reusableKeyBuffer();

// Records that key of the family with the given prefix was just requested on the calling
// thread; when a limit is set and the family then holds more keys, removes the least recently
// requested ones from the thread's dictionary.
void noteThreadCacheUse(std::string_view prefix, std::string_view key);

// Removes every entry whose key begins with prefix from the calling thread's dictionary, and
// forgets the family's order of use.
void removeThreadCachedObjects(std::string_view prefix);

// Called by every cached-formatter request: on the first one made on the main thread,
// registers (once per process, per family) an observer of NSCurrentLocaleDidChangeNotification
// delivered on the main queue, which removes the keys beginning with prefix from the
// dictionary of the thread it runs on. prefix must outlive the process (a literal).
class LocaleChangeCacheObserver {
  public:
    explicit constexpr LocaleChangeCacheObserver(std::string_view prefix) : prefix_(prefix) {}
    void registerOnMainThreadOnce();

    std::string_view prefix() const { return prefix_; }

  private:
    std::string_view prefix_;
    std::once_flag once_;
    std::atomic<bool> registered_{false};
};

// Starts a key in the thread's reusable buffer with head, after registering the family's
// locale observer when due.
std::string& beginKey(LocaleChangeCacheObserver& observer, std::string_view head);

// The cached object of type T under key in the calling thread's dictionary; on a miss (or
// when the entry holds something else) build() makes one, which is stored and returned. The
// family's limit is kept. key may be the reusable buffer: build must therefore not request
// cached formatters itself.
template <typename T, typename Builder>
std::shared_ptr<T> threadCachedObject(const LocaleChangeCacheObserver& family, std::string_view key,
                                      Builder&& build) {
    std::shared_ptr<T> object =
        threadDictionaryCachedObject<std::shared_ptr<T>>(key, std::forward<Builder>(build));
    noteThreadCacheUse(family.prefix(), key);
    return object;
}

}  // namespace vn::formatting_internal
