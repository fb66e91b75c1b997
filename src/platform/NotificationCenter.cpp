#include "vn/platform/NotificationCenter.h"

#include <algorithm>

namespace vn {
namespace {

class ObserverToken final : public Object {};

}  // namespace

NotificationCenter& NotificationCenter::defaultCenter() {
    static auto* center =
        new NotificationCenter();  // never destroyed: used from static destructors
    return *center;
}

ObjectPtr NotificationCenter::addObserver(std::string_view name, const Object* sender,
                                          ExecutorPtr executor, Block block) {
    auto token = std::make_shared<ObserverToken>();
    std::lock_guard lock(mutex_);
    registrations_.push_back({token, std::string(name), sender, std::move(executor),
                              std::make_shared<Block>(std::move(block))});
    return token;
}

void NotificationCenter::removeObserver(const ObjectPtr& token) {
    std::vector<Registration> removed;  // released outside the lock
    std::lock_guard lock(mutex_);
    const auto firstRemoved =
        std::stable_partition(registrations_.begin(), registrations_.end(),
                              [&](const Registration& r) { return r.token != token; });
    std::move(firstRemoved, registrations_.end(), std::back_inserter(removed));
    registrations_.erase(firstRemoved, registrations_.end());
}

void NotificationCenter::post(const Notification& notification) {
    std::vector<Registration> matching;
    {
        std::lock_guard lock(mutex_);
        for (const Registration& r : registrations_) {
            const bool nameMatches = r.name.empty() || r.name == notification.name;
            const bool senderMatches = !r.sender || r.sender == notification.object.get();
            if (nameMatches && senderMatches) matching.push_back(r);
        }
    }
    for (const Registration& r : matching) {
        if (r.executor) {
            r.executor->execute([block = r.block, notification] { (*block)(notification); });
        } else {
            (*r.block)(notification);
        }
    }
}

void NotificationCenter::postNotificationName(std::string_view name, ObjectPtr sender,
                                              Value::Dictionary userInfo) {
    post(Notification{std::string(name), std::move(sender), std::move(userInfo)});
}

std::size_t NotificationCenter::observerCount() const {
    std::lock_guard lock(mutex_);
    return registrations_.size();
}

}  // namespace vn
