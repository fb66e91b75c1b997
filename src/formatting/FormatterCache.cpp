#include "formatting/FormatterCache.h"

#include <atomic>
#include <iterator>

#include <list>
#include <map>
#include <optional>
#include <unordered_map>

#include "vn/concurrency/DispatchQueue.h"
#include "vn/formatting/FormatterCacheLimit.h"
#include "vn/platform/Locale.h"
#include "vn/platform/NotificationCenter.h"

namespace vn::formatting_internal {

std::string& reusableKeyBuffer() {
    thread_local std::string buffer;
    buffer.clear();
    return buffer;
}

namespace {

// One family's keys on one thread, most recently requested first. The order is only kept
// while a limit is set; when one is set, the family's entries already in the dictionary join
// it as the least recently requested.
class RecentKeys {
  public:
    bool isTracking() const { return tracking_; }

    void startTracking(std::string_view prefix) {
        tracking_ = true;
        const Value::Dictionary& dictionary = Thread::threadDictionary();
        for (auto it = dictionary.lower_bound(prefix);
             it != dictionary.end() && std::string_view(it->first).starts_with(prefix); ++it) {
            order_.emplace_back(it->first);
            positions_.emplace(order_.back(), std::prev(order_.end()));
        }
    }

    void stopTracking() {
        clear();
        tracking_ = false;
    }

    // Moves key to the front, adding it when new.
    void use(std::string_view key) {
        if (const auto found = positions_.find(key); found != positions_.end()) {
            order_.splice(order_.begin(), order_, found->second);
            return;
        }
        order_.emplace_front(key);
        positions_.emplace(order_.front(), order_.begin());
    }

    // Forgets and answers the least recently requested key while there are more than limit.
    std::optional<std::string> popOldestBeyond(std::size_t limit) {
        if (order_.size() <= limit) return std::nullopt;
        positions_.erase(std::string_view(order_.back()));  // before its string moves away
        std::string oldest = std::move(order_.back());
        order_.pop_back();
        return oldest;
    }

    void clear() {
        positions_.clear();
        order_.clear();
    }

  private:
    bool tracking_ = false;
    std::list<std::string> order_;
    // Views of the strings in order_, whose nodes never move.
    std::unordered_map<std::string_view, std::list<std::string>::iterator> positions_;
};

std::atomic<std::size_t> limitPerThread{0};

using Families = std::map<std::string_view, RecentKeys>;  // prefixes are literals

Families& threadFamilies() {
    thread_local Families families;
    return families;
}

RecentKeys& recentKeysOf(std::string_view prefix) {
    return threadFamilies()[prefix];
}

}  // namespace

void noteThreadCacheUse(std::string_view prefix, std::string_view key) {
    // Without a limit (the default) a request costs nothing more than its lookup.
    thread_local bool anyTracking = false;
    const std::size_t limit = limitPerThread.load(std::memory_order_relaxed);
    if (limit == 0) {
        if (anyTracking) {
            for (auto& [familyPrefix, keys] : threadFamilies()) keys.stopTracking();
            anyTracking = false;
        }
        return;
    }
    RecentKeys& keys = recentKeysOf(prefix);
    if (!keys.isTracking()) keys.startTracking(prefix);
    anyTracking = true;
    keys.use(key);
    while (const std::optional<std::string> evicted = keys.popOldestBeyond(limit))
        Thread::threadDictionary().erase(*evicted);
}

void removeThreadCachedObjects(std::string_view prefix) {
    Value::Dictionary& dictionary = Thread::threadDictionary();
    auto it = dictionary.lower_bound(prefix);
    while (it != dictionary.end() && std::string_view(it->first).starts_with(prefix))
        it = dictionary.erase(it);
    recentKeysOf(prefix).clear();
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

namespace vn {

std::size_t cachedFormattersPerThreadLimit() {
    return formatting_internal::limitPerThread.load(std::memory_order_relaxed);
}

void setCachedFormattersPerThreadLimit(std::size_t limit) {
    formatting_internal::limitPerThread.store(limit, std::memory_order_relaxed);
}

}  // namespace vn
