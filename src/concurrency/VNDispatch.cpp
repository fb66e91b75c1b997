#include "vn/concurrency/VNDispatch.h"

#include "vn/platform/Thread.h"

namespace vn {
namespace {

void runIfPresent(const std::function<void()>& block) {
    if (block) block();
}

// Work on a global queue, then the completion (if any) on the main queue.
void submitFromMainThread(const DispatchQueuePtr& queue, std::function<void()> work,
                          std::function<void()> completion) {
    if (!completion) {
        queue->async(work ? std::move(work) : [] {});
        return;
    }
    queue->async([work = std::move(work), completion = std::move(completion)]() mutable {
        runIfPresent(work);
        DispatchQueue::main()->async(std::move(completion));
    });
}

}  // namespace

DispatchQueuePtr vn_dispatch_get_main_or_global_with_priority_queue(long priority) {
    return Thread::isMainThread() ? DispatchQueue::main() : DispatchQueue::global(priority);
}

DispatchQueuePtr vn_dispatch_get_main_or_global_default_priority_queue() {
    return vn_dispatch_get_main_or_global_with_priority_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT);
}

void vn_dispatch_on_background(std::function<void()> work, std::function<void()> completion) {
    vn_dispatch_on_background_with_priority(std::move(work), DISPATCH_QUEUE_PRIORITY_DEFAULT,
                                            std::move(completion));
}

void vn_dispatch_on_background_with_priority(std::function<void()> work, long priority,
                                             std::function<void()> completion) {
    if (Thread::isMainThread()) {
        submitFromMainThread(DispatchQueue::global(priority), std::move(work),
                             std::move(completion));
        return;
    }
    runIfPresent(work);
    runIfPresent(completion);
}

void vn_dispatch_on_global_queue_with_priority(std::function<void()> work, long priority,
                                               std::function<void()> completion) {
    const DispatchQueuePtr& queue = DispatchQueue::global(priority);
    if (Thread::isMainThread()) {
        submitFromMainThread(queue, std::move(work), std::move(completion));
        return;
    }
    if (work) queue->sync(work);
    runIfPresent(completion);
}

void vn_dispatch_sync_on_main_queue(const std::function<void()>& work) {
    if (Thread::isMainThread()) {
        runIfPresent(work);
    } else {
        DispatchQueue::main()->sync(work);
    }
}

void vn_dispatch_on_main_queue(std::function<void()> work) {
    if (Thread::isMainThread()) {
        runIfPresent(work);
    } else {
        DispatchQueue::main()->async(std::move(work));
    }
}

void vn_dispatch_group_notify_on_main_or_global_default_priority_queue(
    const DispatchGroupPtr& group, std::function<void()> work) {
    if (!group || group->wait(dispatchTimeNow()) == DispatchWaitResult::success) {
        runIfPresent(work);
        return;
    }
    group->notify(vn_dispatch_get_main_or_global_default_priority_queue(), std::move(work));
}

}  // namespace vn
