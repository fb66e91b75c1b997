// The library's additions to vn::NotificationCenter: observers that go away with their
// owner, and observers that hear one notification only.
//
// The centre is given either as a shared pointer (then it is held weakly: if it is gone,
// removal does nothing) or by reference (then it must outlive the registration, as the
// process-wide vn::NotificationCenter::defaultCenter() does). queue may be null: the block
// then runs synchronously on the posting thread.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "vn/platform/Executor.h"
#include "vn/platform/NotificationCenter.h"
#include "vn/platform/Object.h"

namespace vn {

using OwnerNotificationBlock =
    std::function<void(const ObjectPtr& owner, const Notification& notification)>;

// Registers block for notifications named name (from sender, when not null) for as long as
// owner lives: the block receives the owner (held weakly; a notification that arrives after
// the owner is gone is dropped), and when the owner is destroyed the observer is removed from
// the centre. Several registrations on one owner are removed in registration order. Safe from
// any thread.
void vnAddObserverUntilDealloc(const std::shared_ptr<NotificationCenter>& center,
                               const ObjectPtr& owner, std::string_view name, const Object* sender,
                               ExecutorPtr queue, OwnerNotificationBlock block);
void vnAddObserverUntilDealloc(NotificationCenter& center, const ObjectPtr& owner,
                               std::string_view name, const Object* sender, ExecutorPtr queue,
                               OwnerNotificationBlock block);

// The same with a block that receives the owner with its own type.
template <typename Owner>
void vnAddObserverUntilDealloc(
    NotificationCenter& center, const std::shared_ptr<Owner>& owner, std::string_view name,
    const Object* sender, ExecutorPtr queue,
    std::function<void(Owner& owner, const Notification& notification)> block) {
    vnAddObserverUntilDealloc(
        center, ObjectPtr(owner), name, sender, std::move(queue),
        [block = std::move(block)](const ObjectPtr& object, const Notification& notification) {
            block(static_cast<Owner&>(*object), notification);
        });
}

// Registers block for the first matching notification only: it is called with that
// notification, then the observer removes itself (if the centre and the token are still
// there). Returns the observer token, with which the caller may remove the observer before it
// fires. Even notifications posted at the same moment from several threads reach the block
// only once.
ObjectPtr vnAddOnceObserver(const std::shared_ptr<NotificationCenter>& center,
                            std::string_view name, const Object* sender, ExecutorPtr queue,
                            NotificationCenter::Block block);
ObjectPtr vnAddOnceObserver(NotificationCenter& center, std::string_view name, const Object* sender,
                            ExecutorPtr queue, NotificationCenter::Block block);

}  // namespace vn
