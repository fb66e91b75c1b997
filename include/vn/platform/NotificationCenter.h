// vn::NotificationCenter: named notifications delivered to registered observer blocks.
//
// An observer is registered for a name (empty: every name) and optionally one sender object,
// and optionally an executor. Safe from any thread.
//
// Matching: a notification reaches an observer when the names are equal (or the observer's
// name is empty) and the observer has no sender or its sender is the notification's object.
// Senders are compared by identity (address), never by isEqual(), and are not retained: remove
// the observer before its sender is destroyed, or a later object at the same address matches.
//
// Delivery: post() takes the list of matching observers when it starts, then calls the blocks
// of observers without an executor synchronously, on the posting thread, in registration
// order, with no lock held; observers with an executor get a call of their block (with a copy
// of the notification) handed to the executor's execute(). Blocks may add or remove observers
// (also themselves) while being notified: an observer added during a post hears only later
// posts; an observer removed during a post (by its block, another block or another thread)
// still receives that post, since the list was taken.
//
// Errors: an exception thrown by a block called synchronously leaves post() at once and
// reaches the poster; the observers after it do not receive that post, and the centre stays
// usable. Exceptions thrown by blocks run on an executor are the executor's to handle.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "vn/platform/Executor.h"
#include "vn/platform/Object.h"
#include "vn/platform/Value.h"

namespace vn {

struct Notification {
    std::string name;
    ObjectPtr object;
    Value::Dictionary userInfo;
};

class NotificationCenter {
  public:
    using Block = std::function<void(const Notification&)>;

    NotificationCenter() = default;
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    // The process-wide centre; never destroyed.
    static NotificationCenter& defaultCenter();

    // Registers block (which must not be empty) for name and sender, delivered through executor
    // when one is given. Returns the observer token. The centre keeps the token (and the block)
    // until removeObserver() is called with it; a caller may hold it weakly.
    ObjectPtr addObserver(std::string_view name, const Object* sender, ExecutorPtr executor,
                          Block block);
    // Removes the observer of token; an unknown or null token is ignored. Does not wait for a
    // post in progress on another thread (that post may still deliver to the observer).
    void removeObserver(const ObjectPtr& token);

    // Delivers notification as described above.
    void post(const Notification& notification);
    void postNotificationName(std::string_view name, ObjectPtr sender = nullptr,
                              Value::Dictionary userInfo = {});

    // The number of registered observers.
    std::size_t observerCount() const;

  private:
    struct Registration {
        ObjectPtr token;
        std::string name;
        const Object* sender;
        ExecutorPtr executor;
        std::shared_ptr<Block> block;
    };

    mutable std::mutex mutex_;
    std::vector<Registration> registrations_;
};

}  // namespace vn
