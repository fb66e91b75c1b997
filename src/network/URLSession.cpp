#include "vn/network/URLSession.h"

#include "network/CallbackQueue.h"
#include "network/TaskDriver.h"
#include "network/TransferEngine.h"
#include "vn/formatting/StringUtilities.h"
#include "vn/platform/Exception.h"

namespace vn {

using network_internal::CallbackQueue;
using network_internal::TaskBody;
using network_internal::TaskDriver;

namespace {

// The file a "file:" URL names; absent for any other URL.
std::optional<std::string> filePathOf(const URL& url) {
    if (!url.scheme() || *url.scheme() != "file") return std::nullopt;
    return urlSimpleUnescape(url.path()).value_or(url.path());
}

}  // namespace

URLSession::URLSession(Private, const URLSessionConfiguration& configuration,
                       URLSessionDelegatePtr delegate, ExecutorPtr delegateQueue, bool shared)
    : configuration_(configuration),
      shared_(shared),
      callbackQueue_(std::make_shared<CallbackQueue>(
          delegateQueue ? std::move(delegateQueue)
                        : network_internal::TransferEngine::shared().deliveryExecutor())),
      delegate_(std::move(delegate)) {}

URLSession::~URLSession() = default;

URLSessionPtr URLSession::sessionWithConfiguration(const URLSessionConfiguration& configuration,
                                                   URLSessionDelegatePtr delegate,
                                                   ExecutorPtr delegateQueue) {
    return std::make_shared<URLSession>(Private{}, configuration, std::move(delegate),
                                        std::move(delegateQueue), false);
}

URLSessionPtr URLSession::sessionWithConfiguration(const URLSessionConfiguration& configuration) {
    return sessionWithConfiguration(configuration, nullptr, nullptr);
}

const URLSessionPtr& URLSession::sharedSession() {
    static const URLSessionPtr* const session = new URLSessionPtr(std::make_shared<URLSession>(
        Private{}, URLSessionConfiguration::defaultSessionConfiguration(), nullptr, nullptr, true));
    return *session;
}

URLSessionDelegatePtr URLSession::delegate() const {
    std::lock_guard lock(mutex_);
    return delegate_;
}

std::uint64_t URLSession::nextTaskIdentifier() {
    std::lock_guard lock(mutex_);
    return ++lastTaskIdentifier_;
}

template <typename Task>
std::shared_ptr<Task> URLSession::makeTask(const URLRequest& request,
                                           std::shared_ptr<TaskBody> body,
                                           DataCompletion dataCompletion,
                                           DownloadCompletion downloadCompletion) {
    auto driver = std::make_shared<TaskDriver>(
        std::static_pointer_cast<URLSession>(shared_from_this()), std::move(body),
        std::move(dataCompletion), std::move(downloadCompletion));
    std::shared_ptr<Task> task;
    {
        std::lock_guard lock(mutex_);
        if (invalidated_)
            throw Exception("NSGenericException",
                            "Task created in a session that has been invalidated");
        task = std::make_shared<Task>(++lastTaskIdentifier_, request);
        outstanding_.emplace(task->taskIdentifier(), task);
    }
    task->driver_ = driver;
    driver->attach(task);
    return task;
}

URLSessionDataTaskPtr URLSession::dataTaskWithRequest(const URLRequest& request,
                                                      DataCompletion completionHandler) {
    return makeTask<URLSessionDataTask>(request, nullptr, std::move(completionHandler), nullptr);
}

URLSessionDataTaskPtr URLSession::dataTaskWithURL(const URL& url,
                                                  DataCompletion completionHandler) {
    return dataTaskWithRequest(URLRequest(url), std::move(completionHandler));
}

URLSessionUploadTaskPtr URLSession::uploadTaskWithRequest(const URLRequest& request,
                                                          const URL& fileURL,
                                                          DataCompletion completionHandler) {
    auto body = std::make_shared<TaskBody>();
    body->filePath = filePathOf(fileURL).value_or(std::string());
    return makeTask<URLSessionUploadTask>(request, std::move(body), std::move(completionHandler),
                                          nullptr);
}

URLSessionUploadTaskPtr URLSession::uploadTaskWithRequest(const URLRequest& request, Data bodyData,
                                                          DataCompletion completionHandler) {
    auto body = std::make_shared<TaskBody>();
    body->bytes = std::move(bodyData);
    return makeTask<URLSessionUploadTask>(request, std::move(body), std::move(completionHandler),
                                          nullptr);
}

URLSessionDownloadTaskPtr URLSession::downloadTaskWithRequest(
    const URLRequest& request, DownloadCompletion completionHandler) {
    return makeTask<URLSessionDownloadTask>(request, nullptr, nullptr,
                                            std::move(completionHandler));
}

URLSessionDownloadTaskPtr URLSession::downloadTaskWithURL(const URL& url,
                                                          DownloadCompletion completionHandler) {
    return downloadTaskWithRequest(URLRequest(url), std::move(completionHandler));
}

void URLSession::adoptTask(const std::shared_ptr<URLSessionTask>& task, std::uint64_t replaced) {
    std::lock_guard lock(mutex_);
    outstanding_.erase(replaced);
    outstanding_.emplace(task->taskIdentifier(), task);
}

void URLSession::taskEnded(std::uint64_t identifier) {
    std::unique_lock lock(mutex_);
    outstanding_.erase(identifier);
    becomeInvalidIfDone(lock);
}

void URLSession::becomeInvalidIfDone(std::unique_lock<std::mutex>& lock) {
    if (!invalidated_ || toldInvalid_ || !outstanding_.empty()) return;
    toldInvalid_ = true;
    // With no delegate there is nobody to tell, and nothing to release on the queue.
    if (!delegate_) return;
    lock.unlock();
    callbackQueue_->add([self = std::static_pointer_cast<URLSession>(shared_from_this())] {
        URLSessionDelegatePtr delegate;
        {
            std::lock_guard lock(self->mutex_);
            delegate = std::move(self->delegate_);
        }
        if (delegate) delegate->didBecomeInvalidWithError(self, nullptr);
    });
}

void URLSession::finishTasksAndInvalidate() {
    if (shared_) return;
    std::unique_lock lock(mutex_);
    invalidated_ = true;
    becomeInvalidIfDone(lock);
}

void URLSession::invalidateAndCancel() {
    if (shared_) return;
    std::vector<std::shared_ptr<URLSessionTask>> running;
    {
        std::lock_guard lock(mutex_);
        invalidated_ = true;
        for (const auto& [identifier, weakTask] : outstanding_) {
            if (auto task = weakTask.lock()) running.push_back(std::move(task));
        }
    }
    for (const auto& task : running) task->cancel();
    std::unique_lock lock(mutex_);
    becomeInvalidIfDone(lock);
}

bool URLSession::closeIdleConnections() {
    return network_internal::TransferEngine::shared().closeIdleConnections();
}

}  // namespace vn
