// vn::NotificationCenter: named notifications delivered to registered observer blocks.
//
// An observer is registered for a name (empty: every name) and optionally one sender object
// (compared by identity), and optionally an executor. post() calls the blocks of observers
// without an executor synchronously, on the posting thread, in registration order; observers
// with an executor get their block handed to it. Blocks may add or remove observers (also
// themselves) while being notified. Safe from any thread.
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

    // Returns the observer token. The centre keeps the token (and the block) until
    // removeObserver() is called with it; a caller may hold it weakly.
    ObjectPtr addObserver(std::string_view name, const Object* sender, ExecutorPtr executor, Block block);
    void removeObserver(const ObjectPtr& token);

    void post(const Notification& notification);
    void postNotificationName(std::string_view name, ObjectPtr sender = nullptr, Value::Dictionary userInfo = {});

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
