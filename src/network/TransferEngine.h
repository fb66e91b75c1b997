// The process's transport: one thread running libcurl's multi interface for every session, so
// that no task needs a thread of its own and all sessions share one connection cache.
//
// post() is the only member callable from any thread; everything else runs on the transport
// thread (from posted commands and from the drivers' callbacks).
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace vn::network_internal {

class TaskDriver;
using Clock = std::chrono::steady_clock;

class TransferEngine {
  public:
    // Made on first use, with its thread; never destroyed (tasks may still run at exit).
    static TransferEngine& shared();

    // Runs command on the transport thread, after the commands posted before it.
    void post(std::function<void()> command);

    // Transport thread only.
    // Runs driver's transfer once a connection slot for slotKey is free.
    void enqueue(const std::shared_ptr<TaskDriver>& driver, const std::string& slotKey,
                 long slotLimit);
    // Stops driver's transfer: the one running on easy, or, with easy null, the one waiting for
    // a slot (nothing happens when there is neither).
    void withdraw(TaskDriver& driver, CURL* easy);
    // Calls driver->startAttempt() at when (or at once if it has passed).
    void scheduleAttempt(const std::shared_ptr<TaskDriver>& driver, Clock::time_point when);
    // Drivers whose deadlines the loop checks.
    void watch(const std::shared_ptr<TaskDriver>& driver);
    void unwatch(const std::shared_ptr<TaskDriver>& driver);
    // A driver's deadline may have moved earlier.
    void deadlinesChanged() { deadlinesDirty_ = true; }
    CURL* acquireEasyHandle();
    void releaseEasyHandle(CURL* easy);

    // Any thread but the transport's: closes the cached connections once nothing is in flight.
    bool closeIdleConnections();

  private:
    struct Slot {
        long active = 0;
        std::deque<std::weak_ptr<TaskDriver>> waiting;
    };
    struct Running {
        std::shared_ptr<TaskDriver> driver;
        std::string slotKey;
    };

    TransferEngine();
    void run();
    void runCommands();
    void waitForWork();
    void collectFinishedTransfers();
    void runDueAttempts(Clock::time_point now);
    void checkDeadlines(Clock::time_point now);
    int pollTimeoutMilliseconds(Clock::time_point now);
    void start(const std::shared_ptr<TaskDriver>& driver, const std::string& slotKey);
    void releaseSlot(const std::string& slotKey);
    void initMulti();

    const int wakeFd_;
    CURLM* multi_ = nullptr;
    std::mutex commandsMutex_;
    std::vector<std::function<void()>> commands_;
    bool awake_ = true;  // guarded by commandsMutex_

    std::map<CURL*, Running> running_;
    std::map<std::string, Slot> slots_;
    std::multimap<Clock::time_point, std::weak_ptr<TaskDriver>> scheduled_;
    std::set<std::shared_ptr<TaskDriver>> watched_;
    bool deadlinesDirty_ = true;
    Clock::time_point nextDeadline_ = Clock::time_point::max();
    std::vector<CURL*> spareEasyHandles_;
    std::thread thread_;
};

}  // namespace vn::network_internal
