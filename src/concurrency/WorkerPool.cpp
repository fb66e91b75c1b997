#include "concurrency/WorkerPool.h"

#include <algorithm>

namespace vn::concurrency {
namespace {

thread_local bool tIsWorker = false;

}  // namespace

WorkerPool& WorkerPool::shared() {
    // Deliberately leaked: worker threads run until the process ends, and work may still be
    // submitted from static destructors.
    static auto* pool = new WorkerPool();
    return *pool;
}

WorkerPool::WorkerPool()
    : keepRunning_(asio::make_work_guard(context_)),
      minimumRunnable_(std::max<std::size_t>(4, std::thread::hardware_concurrency())),
      maximumThreads_(minimumRunnable_ + 64) {
    std::lock_guard lock(mutex_);
    for (std::size_t i = 0; i < minimumRunnable_; ++i) startThreadLocked();
}

void WorkerPool::startThreadLocked() {
    threads_.emplace_back([this] {
        tIsWorker = true;
        context_.run();
    });
}

bool WorkerPool::isWorkerThread() {
    return tIsWorker;
}

std::size_t WorkerPool::threadCount() const {
    std::lock_guard lock(mutex_);
    return threads_.size();
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

BlockingRegion::BlockingRegion() : active_(WorkerPool::isWorkerThread()) {
    if (active_) WorkerPool::shared().willBlock();
}

BlockingRegion::~BlockingRegion() {
    if (active_) WorkerPool::shared().didUnblock();
}

}  // namespace vn::concurrency
