#include "network/TransferEngine.h"

#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <thread>

#include "network/TaskDriver.h"
#include "vn/concurrency/DispatchQueue.h"
#include "vn/platform/FatalError.h"

namespace vn::network_internal {
namespace {

constexpr std::size_t maximumSpareEasyHandles = 64;
constexpr auto longestPoll = std::chrono::milliseconds(1000);
// Rounds of libcurl's immediate timers one settling runs before leaving the rest to the poller.
constexpr int maximumSettlingRounds = 64;
// Transport threads, those running delivered blocks included. One is always left free to poll,
// so a block that waits for another task cannot stall the transport.
constexpr int maximumTransportThreads = 16;

// True while this thread runs the transport, so that a command posted from that work waits
// for it instead of taking the lock again.
thread_local bool runsTransport = false;
// True while the poller runs the transport (not while it runs a delivered block).
thread_local bool defersDeliveries = false;

}  // namespace

class TransferEngine::DeliveryExecutor : public Executor {
  public:
    explicit DeliveryExecutor(TransferEngine& engine) : engine_(engine) {}
    void execute(std::function<void()> block) override { engine_.deliver(std::move(block)); }

  private:
    TransferEngine& engine_;
};

TransferEngine& TransferEngine::shared() {
    static TransferEngine* const engine = [] {
        curl_global_init(CURL_GLOBAL_DEFAULT);
        return new TransferEngine;  // NOLINT: lives until exit, used by tasks still running then
    }();
    return *engine;
}

TransferEngine::TransferEngine()
    : wakeFd_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
      epollFd_(epoll_create1(EPOLL_CLOEXEC)),
      deliveryExecutor_(std::make_shared<DeliveryExecutor>(*this)) {
    if (wakeFd_ < 0 || epollFd_ < 0)
        fatalError("the URL transport could not make its wake-up descriptors");
    epoll_event wake{};
    wake.events = EPOLLIN;
    wake.data.fd = wakeFd_;
    epoll_ctl(epollFd_, EPOLL_CTL_ADD, wakeFd_, &wake);
    initMulti();
}

void TransferEngine::initMulti() {
    multi_ = curl_multi_init();
    if (!multi_) fatalError("libcurl could not make a multi handle");
    curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, 256L);
    curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, &TransferEngine::onSocket);
    curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, &TransferEngine::onTimer);
    curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
}

// libcurl keeps a pointer per socket it watches (curl_multi_assign); a non-null one marks a
// socket already in the epoll set. A number that was closed without a removal is gone from the
// set, so a change to it is added afresh.
int TransferEngine::onSocket(CURL*, curl_socket_t socket, int what, void* engine, void* known) {
    auto& self = *static_cast<TransferEngine*>(engine);
    if (what == CURL_POLL_REMOVE) {
        epoll_ctl(self.epollFd_, EPOLL_CTL_DEL, socket, nullptr);
        return 0;
    }
    epoll_event event{};
    event.events =
        ((what & CURL_POLL_IN) ? EPOLLIN : 0u) | ((what & CURL_POLL_OUT) ? EPOLLOUT : 0u);
    event.data.fd = socket;
    if (!known || epoll_ctl(self.epollFd_, EPOLL_CTL_MOD, socket, &event) != 0)
        epoll_ctl(self.epollFd_, EPOLL_CTL_ADD, socket, &event);
    if (!known) curl_multi_assign(self.multi_, socket, &self);
    return 0;
}

int TransferEngine::onTimer(CURLM*, long milliseconds, void* engine) {
    auto& self = *static_cast<TransferEngine*>(engine);
    self.curlTimer_ = milliseconds < 0 ? Clock::time_point::max()
                                       : Clock::now() + std::chrono::milliseconds(milliseconds);
    return 0;
}

void TransferEngine::deliver(Block block) {
    if (defersDeliveries) {
        deferred_.push_back(std::move(block));
        return;
    }
    DispatchQueue::global()->execute(std::move(block));
}

void TransferEngine::post(Block command) {
    if (runsTransport) {
        commands_.push_back(std::move(command));
        return;
    }
    runAsTransport(command);
}

bool TransferEngine::closeIdleConnections() {
    bool closed = false;
    runAsTransport([this, &closed] {
        if (!running_.empty()) return;
        for (CURL* easy : spareEasyHandles_) curl_easy_cleanup(easy);
        spareEasyHandles_.clear();
        CURLM* old = multi_;
        initMulti();
        curl_multi_cleanup(old);
        closed = true;
    });
    return closed;
}

// Runs work as the transport under mutex_. An idle thread called to poll is notified once the
// lock is let go, lest it wake only to sleep again on the lock this thread still holds.
void TransferEngine::runAsTransport(const Block& work) {
    bool notifyIdleThread = false;
    {
        std::lock_guard lock(mutex_);
        notifyIdleThread = runLocked(work);
    }
    if (notifyIdleThread) pollerWanted_.notify_one();
}

// With mutex_ held: runs work as the transport on the calling thread, then makes sure the poller
// will look at what the work left in flight: it is called when there is none, and woken early only
// when something is due before its planned wake. Returns whether an idle thread must be notified.
bool TransferEngine::runLocked(const Block& work) {
    runsTransport = true;
    work();
    settle();
    runsTransport = false;
    if (!pollerActive_) return needsPolling() && callPoller();
    if (wakeWritten_ || nextWake(Clock::now()) >= pollerWakesAt_) return false;
    wakeWritten_ = true;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(wakeFd_, &one, sizeof one);
    return false;
}

// Runs what is due now: posted commands, libcurl's expired timers, finished transfers, due
// attempts and deadlines, until nothing more is due at once.
void TransferEngine::settle() {
    for (int round = 0; round < maximumSettlingRounds; ++round) {
        runCommands();
        if (curlTimer_ <= Clock::now()) {
            curlTimer_ = Clock::time_point::max();
            int stillRunning = 0;
            curl_multi_socket_action(multi_, CURL_SOCKET_TIMEOUT, 0, &stillRunning);
        }
        collectFinishedTransfers();
        const Clock::time_point now = Clock::now();
        runDueAttempts(now);
        checkDeadlines(now);
        if (commands_.empty() && curlTimer_ > Clock::now()) return;
    }
}

void TransferEngine::runCommands() {
    while (!commands_.empty()) {
        std::vector<Block> commands;
        commands.swap(commands_);
        for (auto& command : commands) command();
    }
}

bool TransferEngine::needsPolling() const {
    return !running_.empty() || !scheduled_.empty() || !watched_.empty();
}

// A transfer paused for its delegate's answer waits for a block being delivered, not for the
// network, so it does not keep the poller from running that block.
bool TransferEngine::hasMovingTransfers() const {
    if (!scheduled_.empty()) return true;
    return std::any_of(running_.begin(), running_.end(),
                       [](const auto& entry) { return !entry.second.driver->isPaused(); });
}

Clock::time_point TransferEngine::nextWake(Clock::time_point now) const {
    if (deadlinesDirty_ || !commands_.empty()) return now;
    auto wake = std::min(now + longestPoll, curlTimer_);
    if (!scheduled_.empty()) wake = std::min(wake, scheduled_.begin()->first);
    return std::min(wake, nextDeadline_);
}

// With mutex_ held and no poller active: calls an idle transport thread, or starts one, unless
// one has been called already. Returns whether an idle thread is to be notified.
bool TransferEngine::callPoller() {
    if (pollerCalled_) return false;
    pollerCalled_ = true;
    if (idleThreads_ > 0) return true;
    if (threads_ < maximumTransportThreads) {
        ++threads_;
        std::thread([this] { pollerThread(); }).detach();
    }
    return false;
}

// A transport thread polls until a round delivers blocks while no transfer is moving; it then
// runs the first of them itself and afterwards polls again, unless a caller has had another
// thread take over meanwhile. Threads that find a poller in place wait until one is called.
void TransferEngine::pollerThread() {
    pthread_setname_np(pthread_self(), "vn.URLSession");
    Lock lock(mutex_);
    for (;;) {
        if (pollerActive_) {
            ++idleThreads_;
            pollerWanted_.wait(lock, [this] { return pollerCalled_ && !pollerActive_; });
            --idleThreads_;
        }
        pollerActive_ = true;
        pollerCalled_ = false;
        std::vector<Block> delivered = pollUntilDelivering(lock);
        ++threadsDelivering_;
        lock.unlock();
        runDelivered(std::move(delivered));
        lock.lock();
        --threadsDelivering_;
    }
}

std::vector<TransferEngine::Block> TransferEngine::pollUntilDelivering(Lock& lock) {
    for (;;) {
        const Clock::time_point now = Clock::now();
        pollerWakesAt_ = nextWake(now);
        const auto timeout =
            std::chrono::ceil<std::chrono::milliseconds>(pollerWakesAt_ - now).count();
        lock.unlock();
        std::array<epoll_event, 64> events{};
        const int count = epoll_wait(epollFd_, events.data(), static_cast<int>(events.size()),
                                     static_cast<int>(std::max<long>(0, timeout)));
        lock.lock();
        pollerWakesAt_ = Clock::time_point::min();
        runsTransport = defersDeliveries = true;
        for (int i = 0; i < count; ++i) handleSocketEvent(events[i]);
        settle();
        runsTransport = defersDeliveries = false;
        if (deferred_.empty()) continue;
        std::vector<Block> delivered;
        delivered.swap(deferred_);
        if (!hasMovingTransfers() && threadsDelivering_ < maximumTransportThreads - 1) {
            pollerActive_ = false;
            return delivered;
        }
        for (Block& block : delivered) DispatchQueue::global()->execute(std::move(block));
    }
}

void TransferEngine::handleSocketEvent(const epoll_event& event) {
    if (event.data.fd == wakeFd_) {
        wakeWritten_ = false;
        std::uint64_t count = 0;
        [[maybe_unused]] const auto drained = read(wakeFd_, &count, sizeof count);
        return;
    }
    int mask = 0;
    if (event.events & EPOLLIN) mask |= CURL_CSELECT_IN;
    if (event.events & EPOLLOUT) mask |= CURL_CSELECT_OUT;
    if (event.events & (EPOLLERR | EPOLLHUP)) mask |= CURL_CSELECT_ERR;
    int stillRunning = 0;
    curl_multi_socket_action(multi_, event.data.fd, mask, &stillRunning);
}

void TransferEngine::runDelivered(std::vector<Block> delivered) {
    for (auto next = delivered.begin() + 1; next != delivered.end(); ++next)
        DispatchQueue::global()->execute(std::move(*next));
    delivered.front()();
}

void TransferEngine::collectFinishedTransfers() {
    int queued = 0;
    while (CURLMsg* message = curl_multi_info_read(multi_, &queued)) {
        if (message->msg != CURLMSG_DONE) continue;
        CURL* easy = message->easy_handle;
        const CURLcode result = message->data.result;
        const auto found = running_.find(easy);
        if (found == running_.end()) continue;
        Running running = std::move(found->second);
        running_.erase(found);
        curl_multi_remove_handle(multi_, easy);
        releaseSlot(running.slotKey);
        running.driver->transferDone(result);
    }
}

void TransferEngine::enqueue(const std::shared_ptr<TaskDriver>& driver, const std::string& slotKey,
                             long slotLimit) {
    Slot& slot = slots_[slotKey];
    if (slot.active < std::max(1L, slotLimit)) {
        ++slot.active;
        start(driver, slotKey);
    } else {
        slot.waiting.push_back(driver);
    }
}

void TransferEngine::start(const std::shared_ptr<TaskDriver>& driver, const std::string& slotKey) {
    CURL* easy = acquireEasyHandle();
    driver->connect(easy);
    running_.emplace(easy, Running{driver, slotKey});
    curl_multi_add_handle(multi_, easy);
}

void TransferEngine::releaseSlot(const std::string& slotKey) {
    const auto found = slots_.find(slotKey);
    if (found == slots_.end()) return;
    Slot& slot = found->second;
    --slot.active;
    while (!slot.waiting.empty()) {
        const std::shared_ptr<TaskDriver> next = slot.waiting.front().lock();
        slot.waiting.pop_front();
        if (!next) continue;
        ++slot.active;
        start(next, slotKey);
        return;
    }
    if (slot.active == 0) slots_.erase(found);
}

void TransferEngine::withdraw(TaskDriver& driver, CURL* easy) {
    if (const auto found = easy ? running_.find(easy) : running_.end(); found != running_.end()) {
        const std::string slotKey = std::move(found->second.slotKey);
        const std::shared_ptr<TaskDriver> keep = std::move(found->second.driver);
        running_.erase(found);
        curl_multi_remove_handle(multi_, easy);
        keep->withdrawn();
        releaseSlot(slotKey);
        return;
    }
    for (auto& [key, slot] : slots_) {
        std::erase_if(slot.waiting, [&](const std::weak_ptr<TaskDriver>& waiting) {
            const auto locked = waiting.lock();
            return !locked || locked.get() == &driver;
        });
    }
}

void TransferEngine::scheduleAttempt(const std::shared_ptr<TaskDriver>& driver,
                                     Clock::time_point when) {
    scheduled_.emplace(when, driver);
}

void TransferEngine::runDueAttempts(Clock::time_point now) {
    while (!scheduled_.empty() && scheduled_.begin()->first <= now) {
        const std::shared_ptr<TaskDriver> driver = scheduled_.begin()->second.lock();
        scheduled_.erase(scheduled_.begin());
        if (driver) driver->startAttempt();
    }
}

void TransferEngine::watch(const std::shared_ptr<TaskDriver>& driver) {
    watched_.insert(driver);
    deadlinesDirty_ = true;
}

void TransferEngine::unwatch(const std::shared_ptr<TaskDriver>& driver) {
    watched_.erase(driver);
}

// Deadlines only move later with activity, so the earliest one found by the last scan is a safe
// time for the next: drivers are scanned again only when it has come or a new one appeared.
void TransferEngine::checkDeadlines(Clock::time_point now) {
    if (!deadlinesDirty_ && now < nextDeadline_) return;
    deadlinesDirty_ = false;
    const std::vector<std::shared_ptr<TaskDriver>> drivers(watched_.begin(), watched_.end());
    for (const auto& driver : drivers) driver->checkDeadlines(now);
    nextDeadline_ = Clock::time_point::max();
    for (const auto& driver : watched_)
        nextDeadline_ = std::min(nextDeadline_, driver->nextDeadline());
}

CURL* TransferEngine::acquireEasyHandle() {
    if (spareEasyHandles_.empty()) {
        CURL* easy = curl_easy_init();
        if (!easy) fatalError("libcurl could not make an easy handle");
        return easy;
    }
    CURL* easy = spareEasyHandles_.back();
    spareEasyHandles_.pop_back();
    return easy;
}

void TransferEngine::releaseEasyHandle(CURL* easy) {
    if (spareEasyHandles_.size() >= maximumSpareEasyHandles) {
        curl_easy_cleanup(easy);
        return;
    }
    curl_easy_reset(easy);
    spareEasyHandles_.push_back(easy);
}

}  // namespace vn::network_internal
