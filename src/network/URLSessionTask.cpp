#include "vn/network/URLSessionTask.h"

#include "network/TaskDriver.h"

namespace vn {

URLSessionTask::URLSessionTask(Kind kind, std::uint64_t identifier, URLRequest request)
    : kind_(kind),
      identifier_(identifier),
      originalRequest_(request),
      currentRequest_(std::move(request)) {}

URLSessionTask::~URLSessionTask() {
    if (driver_ && state_ == State::suspended) driver_->abandoned(identifier_);
}

URLRequest URLSessionTask::currentRequest() const {
    std::lock_guard lock(mutex_);
    return currentRequest_;
}

URLResponsePtr URLSessionTask::response() const {
    std::lock_guard lock(mutex_);
    return response_;
}

ErrorPtr URLSessionTask::error() const {
    std::lock_guard lock(mutex_);
    return error_;
}

URLSessionTask::State URLSessionTask::state() const {
    std::lock_guard lock(mutex_);
    return state_;
}

std::int64_t URLSessionTask::countOfBytesReceived() const {
    std::lock_guard lock(mutex_);
    return countOfBytesReceived_;
}

void URLSessionTask::resume() {
    std::shared_ptr<network_internal::TaskDriver> driver;
    {
        std::lock_guard lock(mutex_);
        if (state_ != State::suspended) return;
        state_ = State::running;
        driver = driver_;
    }
    driver->resume(std::static_pointer_cast<URLSessionTask>(shared_from_this()));
}

void URLSessionTask::cancel() {
    std::shared_ptr<network_internal::TaskDriver> driver;
    {
        std::lock_guard lock(mutex_);
        if (state_ == State::canceling || state_ == State::completed) return;
        state_ = State::canceling;
        driver = driver_;
    }
    driver->cancel(std::static_pointer_cast<URLSessionTask>(shared_from_this()));
}

std::string URLSessionTask::description() const {
    static constexpr const char* kinds[] = {"data", "upload", "download"};
    const auto& url = originalRequest_.url();
    return std::string("<URLSessionTask ") + kinds[static_cast<int>(kind_)] + " " +
           std::to_string(identifier_) + " " + (url ? url->absoluteString() : "(no URL)") + ">";
}

}  // namespace vn
