// The worker threads behind the global queues, the serial queues and the delayed work.
//
// A pool is one Asio io_context run by a set of threads that grows when workers block: code
// that is about to wait (a semaphore, a group, a sync() call, an operation queue) marks the
// wait with a BlockingRegion, and when too few of the pool's workers are left runnable the
// pool adds one, so work that would release the waiters always finds a thread.
//
// Each global-queue priority has a pool of its own, made on first use; shared() is the
// default-priority pool, which also runs serial queues and delayed work. A pool's threads run
// at the scheduling niceness it was made with (lower-priority pools yield the processor).
// Threads are never retired; pools are process-wide objects that are never destroyed.
#pragma once

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>

#include <cstddef>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace vn::concurrency_internal {

class WorkerPool {
  public:
    // niceness: the threads' scheduling niceness (0 normal, up to 19 lowest).
    explicit WorkerPool(int niceness);
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    static WorkerPool& shared();

    asio::io_context& context() { return context_; }

    template <typename Handler>
    void post(Handler&& handler) {
        asio::post(context_, std::forward<Handler>(handler));
    }

    // The pool whose worker the calling thread is; null on other threads.
    static WorkerPool* ofCurrentThread();

  private:
    friend class BlockingRegion;

    void startThreadLocked();
    void willBlock();
    void didUnblock();

    const int niceness_;
    asio::io_context context_;
    asio::executor_work_guard<asio::io_context::executor_type> keepRunning_;
    const std::size_t minimumRunnable_;
    const std::size_t maximumThreads_;
    std::mutex mutex_;
    std::vector<std::thread> threads_;
    std::size_t blocked_ = 0;
};

// Marks the calling thread as waiting for the region's lifetime (does nothing on threads
// that are not pool workers).
class BlockingRegion {
  public:
    BlockingRegion();
    ~BlockingRegion();
    BlockingRegion(const BlockingRegion&) = delete;
    BlockingRegion& operator=(const BlockingRegion&) = delete;

  private:
    WorkerPool* pool_;
};

}  // namespace vn::concurrency_internal
