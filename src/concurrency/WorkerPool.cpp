#include "concurrency/WorkerPool.h"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>

namespace vn::concurrency_internal {
namespace {

thread_local WorkerPool* tPool = nullptr;

// On Linux a thread id names one thread for setpriority(): only the calling thread changes.
// Lowering priority needs no privilege; a failure just leaves the thread at normal priority.
void applyNiceness(int niceness) {
    if (niceness != 0) setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), niceness);
}

}  // namespace

WorkerPool& WorkerPool::shared() {
    // Deliberately leaked: worker threads run until the process ends, and work may still be
    // submitted from static destructors.
    static auto* pool = new WorkerPool(0);
    return *pool;
}

WorkerPool::WorkerPool(int niceness)
    : niceness_(niceness),
      keepRunning_(asio::make_work_guard(context_)),
      minimumRunnable_(std::max<std::size_t>(4, std::thread::hardware_concurrency())),
      maximumThreads_(minimumRunnable_ + 64) {
    std::lock_guard lock(mutex_);
    for (std::size_t i = 0; i < minimumRunnable_; ++i) startThreadLocked();
}

void WorkerPool::startThreadLocked() {
    threads_.emplace_back([this] {
        tPool = this;
        applyNiceness(niceness_);
        context_.run();
    });
}

WorkerPool* WorkerPool::ofCurrentThread() {
    return tPool;
}

void WorkerPool::willBlock() {
    std::lock_guard lock(mutex_);
    ++blocked_;
    if (threads_.size() - blocked_ < minimumRunnable_ && threads_.size() < maximumThreads_) {
        startThreadLocked();
    }
}

void WorkerPool::didUnblock() {
    std::lock_guard lock(mutex_);
    --blocked_;
}

BlockingRegion::BlockingRegion() : pool_(WorkerPool::ofCurrentThread()) {
    if (pool_) pool_->willBlock();
}

BlockingRegion::~BlockingRegion() {
    if (pool_) pool_->didUnblock();
}

}  // namespace vn::concurrency_internal
