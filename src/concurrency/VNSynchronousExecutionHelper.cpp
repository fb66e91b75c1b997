#include "vn/concurrency/VNSynchronousExecutionHelper.h"

#include "vn/concurrency/DispatchQueue.h"
#include "vn/platform/FatalError.h"

namespace vn {

void VNSynchronousExecutionHelper::start() {
    isCanceled_.store(false, std::memory_order_release);
    if (!hasSemaphore_.exchange(true, std::memory_order_acq_rel)) return;  // made now, closed
    dSemaphore_.wait();
}

void VNSynchronousExecutionHelper::startWithBlock(std::function<void()> block, bool async) {
    start();
    if (!block) return;
    if (async) {
        DispatchQueue::main()->async(std::move(block));
    } else {
        DispatchQueue::main()->sync(block);
    }
}

void VNSynchronousExecutionHelper::requireStarted() const {
    if (!hasSemaphore_.load(std::memory_order_acquire)) {
        fatalError("VNSynchronousExecutionHelper: the gate was used before start");
    }
}

void VNSynchronousExecutionHelper::signal() {
    requireStarted();
    dSemaphore_.signal();
}

void VNSynchronousExecutionHelper::wait() {
    requireStarted();
    dSemaphore_.wait();
    dSemaphore_.signal();
}

void VNSynchronousExecutionHelper::executeWaitingBlock(const std::function<void()>& block) {
    requireStarted();
    dSemaphore_.wait();
    if (block && !isCanceled()) block();
    dSemaphore_.signal();
}

void VNSynchronousExecutionHelper::cancel() {
    if (!hasSemaphore_.load(std::memory_order_acquire)) return;
    isCanceled_.store(true, std::memory_order_release);
    dSemaphore_.signal();
}

}  // namespace vn
