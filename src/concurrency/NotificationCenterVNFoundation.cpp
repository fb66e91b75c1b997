#include "vn/concurrency/NotificationCenterVNFoundation.h"

#include <mutex>

#include "vn/concurrency/ThreadVNFoundation.h"
#include "vn/concurrency/VNDeallocBlockExecution.h"

namespace vn {
namespace {

// The address that keys the removal actions attached to an owner.
const char kObserversUntilDeallocKey = 0;

// How a registration reaches its centre later: weakly, or through a reference whose lifetime
// the caller guarantees (an owner-less pointer then).
using CenterAccess = std::function<std::shared_ptr<NotificationCenter>()>;

CenterAccess weakAccess(const std::shared_ptr<NotificationCenter>& center) {
    return [weak = std::weak_ptr<NotificationCenter>(center)] { return weak.lock(); };
}

CenterAccess referenceAccess(NotificationCenter& center) {
    return [center = &center] {
        return std::shared_ptr<NotificationCenter>(std::shared_ptr<void>(), center);
    };
}

void removeIfPresent(const CenterAccess& access, const std::weak_ptr<Object>& weakToken) {
    const std::shared_ptr<NotificationCenter> center = access();
    const ObjectPtr token = weakToken.lock();
    if (center && token) center->removeObserver(token);
}

void addObserverUntilDealloc(NotificationCenter& center, const CenterAccess& access,
                             const ObjectPtr& owner, std::string_view name, const Object* sender,
                             ExecutorPtr queue, OwnerNotificationBlock block) {
    if (!owner || !block) return;
    const ObjectPtr token =
        center.addObserver(name, sender, std::move(queue),
                           [weakOwner = std::weak_ptr<Object>(owner),
                            block = std::move(block)](const Notification& notification) {
                               if (const ObjectPtr liveOwner = weakOwner.lock())
                                   block(liveOwner, notification);
                           });
    std::function<void()> removal = [access, weakToken = std::weak_ptr<Object>(token)] {
        removeIfPresent(access, weakToken);
    };
    // Registrations on one owner from several threads must chain, not replace each other.
    objcSync(owner, [&] {
        const auto existing = std::dynamic_pointer_cast<VNDeallocBlockExecution>(
            owner->associatedObject(&kObserversUntilDeallocKey));
        if (!existing) {
            owner->setAssociatedObject(
                &kObserversUntilDeallocKey,
                std::make_shared<VNDeallocBlockExecution>(std::move(removal)));
            return;
        }
        VNDeallocBlockExecution::Callback previous = existing->callbackBlock();
        if (!previous) {
            existing->setCallbackBlock(std::move(removal));
            return;
        }
        existing->setCallbackBlock([previous = std::move(previous), removal = std::move(removal)] {
            previous();
            removal();
        });
    });
}

// What a once-observer's block and its registering call share: the token arrives only after
// registration, and a notification may come first.
struct OnceState {
    std::mutex mutex;
    bool fired = false;
    bool registered = false;
    std::weak_ptr<Object> token;
};

ObjectPtr addOnceObserver(NotificationCenter& center, const CenterAccess& access,
                          std::string_view name, const Object* sender, ExecutorPtr queue,
                          NotificationCenter::Block block) {
    auto state = std::make_shared<OnceState>();
    const ObjectPtr token = center.addObserver(
        name, sender, std::move(queue),
        [state, access, block = std::move(block)](const Notification& notification) {
            bool removeNow = false;
            {
                std::lock_guard lock(state->mutex);
                if (state->fired) return;
                state->fired = true;
                removeNow = state->registered;
            }
            if (block) block(notification);
            if (removeNow) removeIfPresent(access, state->token);
        });
    bool firedBeforeRegistration = false;
    {
        std::lock_guard lock(state->mutex);
        state->token = token;
        state->registered = true;
        firedBeforeRegistration = state->fired;
    }
    if (firedBeforeRegistration) center.removeObserver(token);
    return token;
}

}  // namespace

void vnAddObserverUntilDealloc(const std::shared_ptr<NotificationCenter>& center,
                               const ObjectPtr& owner, std::string_view name, const Object* sender,
                               ExecutorPtr queue, OwnerNotificationBlock block) {
    if (center)
        addObserverUntilDealloc(*center, weakAccess(center), owner, name, sender, std::move(queue),
                                std::move(block));
}

void vnAddObserverUntilDealloc(NotificationCenter& center, const ObjectPtr& owner,
                               std::string_view name, const Object* sender, ExecutorPtr queue,
                               OwnerNotificationBlock block) {
    addObserverUntilDealloc(center, referenceAccess(center), owner, name, sender, std::move(queue),
                            std::move(block));
}

ObjectPtr vnAddOnceObserver(const std::shared_ptr<NotificationCenter>& center,
                            std::string_view name, const Object* sender, ExecutorPtr queue,
                            NotificationCenter::Block block) {
    return center ? addOnceObserver(*center, weakAccess(center), name, sender, std::move(queue),
                                    std::move(block))
                  : nullptr;
}

ObjectPtr vnAddOnceObserver(NotificationCenter& center, std::string_view name, const Object* sender,
                            ExecutorPtr queue, NotificationCenter::Block block) {
    return addOnceObserver(center, referenceAccess(center), name, sender, std::move(queue),
                           std::move(block));
}

}  // namespace vn
