#include "formatting/FormatterCache.h"

#include "vn/concurrency/DispatchQueue.h"
#include "vn/platform/Locale.h"
#include "vn/platform/NotificationCenter.h"

namespace vn::formatting_internal {

std::string& reusableKeyBuffer() {
    thread_local std::string buffer;
    buffer.clear();
    return buffer;
}

void removeThreadCachedObjects(std::string_view prefix) {
    Value::Dictionary& dictionary = Thread::threadDictionary();
    auto it = dictionary.lower_bound(prefix);
    while (it != dictionary.end() && std::string_view(it->first).starts_with(prefix))
        it = dictionary.erase(it);
}

void LocaleChangeCacheObserver::registerOnMainThreadOnce() {
    if (registered_.load(std::memory_order_acquire) || !Thread::isMainThread()) return;
    std::call_once(once_, [this] {
        const std::string_view prefix = prefix_;
        NotificationCenter::defaultCenter().addObserver(
            NSCurrentLocaleDidChangeNotification, nullptr, DispatchQueue::main(),
            [prefix](const Notification&) { removeThreadCachedObjects(prefix); });
        registered_.store(true, std::memory_order_release);
    });
}

std::string& beginKey(LocaleChangeCacheObserver& observer, std::string_view head) {
    observer.registerOnMainThreadOnce();
    std::string& key = reusableKeyBuffer();
    key.append(head);
    return key;
}

}  // namespace vn::formatting_internal
