#include "network/TransferEngine.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <future>

#include "network/TaskDriver.h"
#include "vn/platform/FatalError.h"

namespace vn::network_internal {
namespace {

constexpr std::size_t maximumSpareEasyHandles = 64;
constexpr auto longestPoll = std::chrono::milliseconds(1000);

}  // namespace

TransferEngine& TransferEngine::shared() {
    static TransferEngine* const engine = [] {
        curl_global_init(CURL_GLOBAL_DEFAULT);
        return new TransferEngine;  // NOLINT: lives until exit, used by tasks still running then
    }();
    return *engine;
}

TransferEngine::TransferEngine() : wakeFd_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (wakeFd_ < 0) fatalError("the URL transport could not make its wake-up descriptor");
    initMulti();
    thread_ = std::thread([this] { run(); });
    thread_.detach();
}

void TransferEngine::initMulti() {
    multi_ = curl_multi_init();
    if (!multi_) fatalError("libcurl could not make a multi handle");
    curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, 256L);
}

void TransferEngine::post(std::function<void()> command) {
    {
        std::lock_guard lock(commandsMutex_);
        commands_.push_back(std::move(command));
        if (awake_) return;
        awake_ = true;
    }
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(wakeFd_, &one, sizeof one);
}

void TransferEngine::run() {
    pthread_setname_np(pthread_self(), "vn.URLSession");
    for (;;) {
        runCommands();
        int stillRunning = 0;
        curl_multi_perform(multi_, &stillRunning);
        collectFinishedTransfers();
        const Clock::time_point now = Clock::now();
        runDueAttempts(now);
        checkDeadlines(now);
        waitForWork();
    }
}

// The wake-up descriptor is written only while the loop is marked asleep, so a burst of posts
// costs one write; the loop marks itself asleep just before it polls.
void TransferEngine::waitForWork() {
    {
        std::lock_guard lock(commandsMutex_);
        if (!commands_.empty()) return;
        awake_ = false;
    }
    curl_waitfd wake{wakeFd_, CURL_WAIT_POLLIN, 0};
    curl_multi_poll(multi_, &wake, 1, pollTimeoutMilliseconds(Clock::now()), nullptr);
    std::uint64_t count = 0;
    [[maybe_unused]] const auto drained = read(wakeFd_, &count, sizeof count);
    std::lock_guard lock(commandsMutex_);
    awake_ = true;
}

void TransferEngine::runCommands() {
    std::vector<std::function<void()>> commands;
    {
        std::lock_guard lock(commandsMutex_);
        commands.swap(commands_);
    }
    for (auto& command : commands) command();
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

int TransferEngine::pollTimeoutMilliseconds(Clock::time_point now) {
    auto until = now + longestPoll;
    long curlTimeout = -1;
    curl_multi_timeout(multi_, &curlTimeout);
    if (curlTimeout >= 0) until = std::min(until, now + std::chrono::milliseconds(curlTimeout));
    if (!scheduled_.empty()) until = std::min(until, scheduled_.begin()->first);
    if (deadlinesDirty_) return 0;
    until = std::min(until, nextDeadline_);
    if (until <= now) return 0;
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(until - now).count();
    return static_cast<int>(wait);
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

bool TransferEngine::closeIdleConnections() {
    std::promise<bool> closed;
    std::future<bool> result = closed.get_future();
    post([this, &closed] {
        if (!running_.empty()) {
            closed.set_value(false);
            return;
        }
        for (CURL* easy : spareEasyHandles_) curl_easy_cleanup(easy);
        spareEasyHandles_.clear();
        CURLM* old = multi_;
        initMulti();
        curl_multi_cleanup(old);
        closed.set_value(true);
    });
    return result.get();
}

}  // namespace vn::network_internal
