// The worker threads behind the global queues, the serial queues and the delayed work.
//
// One Asio io_context run by a set of threads that grows when workers block: code that is
// about to wait (a semaphore, a group, a sync() call, an operation queue) marks the wait with
// a BlockingRegion, and when too few workers are left runnable the pool adds one, so work
// that would release the waiters always finds a thread. Threads are never retired; the pool
// is a process-wide object that is never destroyed.
#pragma once

#include <asio/io_context.hpp>
#include <asio/post.hpp>

#include <cstddef>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace vn::concurrency {

class WorkerPool {
  public:
    static WorkerPool& shared();

    asio::io_context& context() { return context_; }

    template <typename Handler>
    void post(Handler&& handler) {
        asio::post(context_, std::forward<Handler>(handler));
    }

    static bool isWorkerThread();

    std::size_t threadCount() const;

  private:
    friend class BlockingRegion;

    WorkerPool();
    void startThreadLocked();
    void willBlock();
    void didUnblock();

    asio::io_context context_;
    asio::executor_work_guard<asio::io_context::executor_type> keepRunning_;
    const std::size_t minimumRunnable_;
    const std::size_t maximumThreads_;
    mutable std::mutex mutex_;
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
    bool active_;
};

}  // namespace vn::concurrency
