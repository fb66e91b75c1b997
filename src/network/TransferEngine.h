// The process's transport: libcurl's multi interface, driven through its socket interface, for
// every session, so that no task needs a thread of its own and all sessions share one
// connection cache.
//
// Any thread may run the transport, one at a time under its lock: a thread that posts a command
// runs it at once, so a resumed task's request leaves from the caller's thread. One transport
// thread, the poller, sleeps in epoll on the transfers' sockets without the lock; a socket that
// a caller added is watched from that moment, so starting a transfer wakes no other thread.
//
// post(), deliveryExecutor() and closeIdleConnections() may be used from any thread; every other
// member only by the thread running the transport (from posted commands and from the drivers'
// callbacks).
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "vn/platform/Executor.h"

struct epoll_event;

namespace vn::network_internal {

class TaskDriver;
using Clock = std::chrono::steady_clock;

class TransferEngine {
  public:
    // Made on first use; never destroyed (tasks may still run at exit).
    static TransferEngine& shared();

    // Runs command as the transport: at once on the calling thread, or, when called by the
    // thread running the transport, as soon as the work in hand is done.
    void post(std::function<void()> command);

    // The delegate queue of sessions made without one. Blocks handed to it by the poller wait
    // for the end of its round; when no transfer is then moving (paused ones wait for these very
    // blocks), the first runs on the poller's thread, so a callback reaches its handler without
    // waking a queue thread, and a caller that starts a transfer meanwhile calls another thread
    // to poll. Every other block goes to the default global queue.
    const ExecutorPtr& deliveryExecutor() const { return deliveryExecutor_; }

    // Closes the cached connections once nothing is in flight. Not from the transport's own
    // work (a posted command or a driver's callback).
    bool closeIdleConnections();

    // The transport's runner only.
    // Runs driver's transfer once a connection slot for slotKey is free.
    void enqueue(const std::shared_ptr<TaskDriver>& driver, const std::string& slotKey,
                 long slotLimit);
    // Stops driver's transfer: the one running on easy, or, with easy null, the one waiting for
    // a slot (nothing happens when there is neither).
    void withdraw(TaskDriver& driver, CURL* easy);
    // Calls driver->startAttempt() at when (or at once if it has passed).
    void scheduleAttempt(const std::shared_ptr<TaskDriver>& driver, Clock::time_point when);
    // Drivers whose deadlines the transport checks.
    void watch(const std::shared_ptr<TaskDriver>& driver);
    void unwatch(const std::shared_ptr<TaskDriver>& driver);
    // A driver's deadline may have moved earlier.
    void deadlinesChanged() { deadlinesDirty_ = true; }
    CURL* acquireEasyHandle();
    void releaseEasyHandle(CURL* easy);

  private:
    class DeliveryExecutor;
    using Block = std::function<void()>;
    using Lock = std::unique_lock<std::mutex>;

    struct Slot {
        long active = 0;
        std::deque<std::weak_ptr<TaskDriver>> waiting;
    };
    struct Running {
        std::shared_ptr<TaskDriver> driver;
        std::string slotKey;
    };

    TransferEngine();
    static int onSocket(CURL* easy, curl_socket_t socket, int what, void* engine, void* known);
    static int onTimer(CURLM* multi, long milliseconds, void* engine);
    void initMulti();
    void deliver(Block block);

    void runAsTransport(const Block& work);
    [[nodiscard]] bool runLocked(const Block& work);
    void settle();
    void runCommands();
    void collectFinishedTransfers();
    void runDueAttempts(Clock::time_point now);
    void checkDeadlines(Clock::time_point now);
    bool needsPolling() const;
    bool hasMovingTransfers() const;
    Clock::time_point nextWake(Clock::time_point now) const;

    void pollerThread();
    std::vector<Block> pollUntilDelivering(Lock& lock);
    void handleSocketEvent(const epoll_event& event);
    [[nodiscard]] bool callPoller();
    static void runDelivered(std::vector<Block> delivered);

    void start(const std::shared_ptr<TaskDriver>& driver, const std::string& slotKey);
    void releaseSlot(const std::string& slotKey);

    const int wakeFd_;
    const int epollFd_;
    const ExecutorPtr deliveryExecutor_;

    // Everything below is guarded by mutex_, held by whoever runs the transport.
    std::mutex mutex_;
    std::condition_variable pollerWanted_;
    bool pollerActive_ = false;
    bool pollerCalled_ = false;
    Clock::time_point pollerWakesAt_ = Clock::time_point::max();
    bool wakeWritten_ = false;
    int threads_ = 0;
    int idleThreads_ = 0;
    int threadsDelivering_ = 0;

    CURLM* multi_ = nullptr;
    Clock::time_point curlTimer_ = Clock::time_point::max();
    std::vector<Block> commands_;
    std::vector<Block> deferred_;
    std::map<CURL*, Running> running_;
    std::map<std::string, Slot> slots_;
    std::multimap<Clock::time_point, std::weak_ptr<TaskDriver>> scheduled_;
    std::set<std::shared_ptr<TaskDriver>> watched_;
    bool deadlinesDirty_ = true;
    Clock::time_point nextDeadline_ = Clock::time_point::max();
    std::vector<CURL*> spareEasyHandles_;
};

}  // namespace vn::network_internal
