// The library's eight thread-aware dispatch functions.
//
// Each function asks once, on entry, whether the caller is the main thread
// (vn::Thread::isMainThread()) and then either runs the work inline or hands it to a queue.
// The rule differs from function to function, on purpose; read each contract. "Background"
// means "not the main thread": called from any other thread, work runs on that thread.
//
// Work and completion are parameterless blocks; a null completion is skipped, a null work
// block counts as a block that does nothing. Priorities are the platform's global-queue
// priorities (DISPATCH_QUEUE_PRIORITY_*); unknown values select the default queue.
// Main-queue work runs only when the host pumps vn::RunLoop::main().
#pragma once

#include <functional>

#include "vn/concurrency/DispatchGroup.h"
#include "vn/concurrency/DispatchQueue.h"

namespace vn {

// The main queue when called on the main thread, else the global queue of priority.
DispatchQueuePtr vn_dispatch_get_main_or_global_with_priority_queue(long priority);
// The same with the default priority.
DispatchQueuePtr vn_dispatch_get_main_or_global_default_priority_queue();

// vn_dispatch_on_background_with_priority with the default priority.
void vn_dispatch_on_background(std::function<void()> work,
                               std::function<void()> completion = nullptr);
// On the main thread: work runs asynchronously on the global queue of priority; completion,
// if any, is then submitted asynchronously to the main queue. Returns at once.
// On any other thread: work and then completion run inline on the calling thread, before
// returning; no queue is used and the priority is ignored.
void vn_dispatch_on_background_with_priority(std::function<void()> work, long priority,
                                             std::function<void()> completion = nullptr);
// On the main thread: as vn_dispatch_on_background_with_priority from the main thread.
// On any other thread: work runs through the global queue's sync() (the caller waits for
// it), then completion runs inline on the calling thread.
void vn_dispatch_on_global_queue_with_priority(std::function<void()> work, long priority,
                                               std::function<void()> completion = nullptr);

// On the main thread: runs work inline. Elsewhere: runs it on the main queue and waits for
// it (the main run loop must be pumped meanwhile).
void vn_dispatch_sync_on_main_queue(const std::function<void()>& work);
// On the main thread: runs work inline, before returning. Elsewhere: submits it
// asynchronously to the main queue and returns at once.
void vn_dispatch_on_main_queue(std::function<void()> work);

// If group is empty now, runs work inline at once. Otherwise work is submitted, when the
// group empties, to the queue that vn_dispatch_get_main_or_global_default_priority_queue()
// gives at the time of this call (the main queue from the main thread, otherwise the default
// global queue). A null group counts as empty.
void vn_dispatch_group_notify_on_main_or_global_default_priority_queue(
    const DispatchGroupPtr& group, std::function<void()> work);

}  // namespace vn
