#include "vn/network/VNURLRequestOperation.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "vn/concurrency/DispatchQueue.h"
#include "vn/concurrency/ThreadVNFoundation.h"
#include "vn/errors/NSErrorVNFoundation.h"
#include "vn/log/StringFormat.h"
#include "vn/log/VNLog.h"
#include "vn/services/VNFoundationServices.h"

namespace vn {
namespace {

namespace fs = std::filesystem;

// The library's file operations give error codes, not error objects: the developer text
// carries the paths and the system's reason travels as the underlying error.
ErrorPtr fileError(const std::string& developerText, const std::error_code& cause) {
    Value::Dictionary underlyingInfo{
        {std::string(NSLocalizedDescriptionKey), Value(cause.message())}};
    const ErrorPtr underlying =
        Error::make(NSPOSIXErrorDomain, cause.value(), Value(std::move(underlyingInfo)));
    return defaultVNErrorWithDeveloperDescription(
        developerText, Value::Dictionary{{std::string(NSUnderlyingErrorKey), Value(underlying)}});
}

// Moves a file, copying it when the destination is on another file system.
std::error_code moveFile(const std::string& from, const std::string& to) {
    std::error_code failed;
    fs::rename(from, to, failed);
    if (failed != std::errc::cross_device_link) return failed;
    failed.clear();
    fs::copy_file(from, to, fs::copy_options::overwrite_existing, failed);
    if (!failed) fs::remove(from, failed);
    return failed;
}

void startNetworkActivity() {
    if (const auto service = VNFoundationServices::networkActivityIndicatorService())
        service->startActivity();
}

void stopNetworkActivity() {
    if (const auto service = VNFoundationServices::networkActivityIndicatorService())
        service->stopActivity();
}

}  // namespace

void VNURLRequestOperationDelegate::urlRequestOperationDidFinishLoading(
    const std::shared_ptr<VNURLRequestOperation>&) {}

void VNURLRequestOperationDelegate::urlRequestOperationDidFailLoading(
    const std::shared_ptr<VNURLRequestOperation>&) {}

VNURLRequestOperation::~VNURLRequestOperation() {
    if (!sessionTask_) return;
    sessionTask_->cancel();
    sessionTask_.reset();
    stopNetworkActivity();
}

std::shared_ptr<VNURLRequestOperation> VNURLRequestOperation::self() {
    return std::static_pointer_cast<VNURLRequestOperation>(Operation::shared_from_this());
}

std::optional<URLRequest> VNURLRequestOperation::request() const {
    std::lock_guard lock(mutex_);
    return request_;
}

void VNURLRequestOperation::setRequest(std::optional<URLRequest> request) {
    std::lock_guard lock(mutex_);
    request_ = std::move(request);
}

bool VNURLRequestOperation::followRedirects() const {
    std::lock_guard lock(mutex_);
    return followRedirects_;
}

void VNURLRequestOperation::setFollowRedirects(bool followRedirects) {
    std::lock_guard lock(mutex_);
    followRedirects_ = followRedirects;
}

std::optional<std::string> VNURLRequestOperation::saveToFilePath() const {
    std::lock_guard lock(mutex_);
    return saveToFilePath_;
}

void VNURLRequestOperation::setSaveToFilePath(std::optional<std::string> path) {
    std::lock_guard lock(mutex_);
    saveToFilePath_ = std::move(path);
}

void VNURLRequestOperation::setLogEnabled(bool logEnabled) {
    std::lock_guard lock(mutex_);
    logEnabled_ = logEnabled;
}

URLResponsePtr VNURLRequestOperation::response() const {
    std::lock_guard lock(mutex_);
    return response_;
}

std::optional<Data> VNURLRequestOperation::data() const {
    std::lock_guard lock(mutex_);
    return data_;
}

ErrorPtr VNURLRequestOperation::error() const {
    std::lock_guard lock(mutex_);
    return error_;
}

void VNURLRequestOperation::setDelegate(
    const std::shared_ptr<VNURLRequestOperationDelegate>& delegate) {
    std::lock_guard lock(mutex_);
    delegate_ = delegate;
}

URLSessionPtr VNURLRequestOperation::urlSession() const {
    std::lock_guard lock(mutex_);
    return urlSession_;
}

URLSessionTaskPtr VNURLRequestOperation::sessionTask() const {
    std::lock_guard lock(mutex_);
    return sessionTask_;
}

Value VNURLRequestOperation::valueForKey(std::string_view key) const {
    if (key == "data") {
        const auto body = data();
        return body ? Value(*body) : Value();
    }
    if (key == "error") return Value(error());
    if (key == "request") {
        const auto current = request();
        return current && current->url() ? Value(current->url()->absoluteString()) : Value();
    }
    return KeyValueCoding::valueForKey(key);
}

void VNURLRequestOperation::main() {
    const std::optional<URLRequest> request = this->request();
    URLSessionTaskPtr task;
    if (request) {
        URLSessionPtr session = urlSession();
        if (!session) {
            session = URLSession::vnSessionWithConfiguration(
                URLSessionConfiguration::defaultSessionConfiguration(),
                std::static_pointer_cast<URLSessionDelegate>(self()), nullptr);
            std::lock_guard lock(mutex_);
            urlSession_ = session;
        }
        task = session->dataTaskWithRequest(*request);
        if (isLogEnabled()) VNLog::logURLRequestIfEnabled(*request);
        setSessionTask(task);
        if (task) {
            task->resume();
            return;
        }
    } else {
        setSessionTask(nullptr);
    }
    const ErrorPtr stored = error();
    finishWithError(stored ? stored : defaultVNError());
}

void VNURLRequestOperation::setSessionTask(const URLSessionTaskPtr& task) {
    setSessionTask(task, true);
}

void VNURLRequestOperation::setSessionTask(const URLSessionTaskPtr& task, bool cancelCurrentTask) {
    objcSync(static_cast<const Object&>(*this), [&] {
        URLSessionTaskPtr old;
        {
            std::lock_guard lock(mutex_);
            if (task == sessionTask_) return;
            old = sessionTask_;
        }
        if (!old != !task) {
            if (old) stopNetworkActivity();
            if (task) startNetworkActivity();
        }
        if (cancelCurrentTask && old) old->cancel();
        std::lock_guard lock(mutex_);
        sessionTask_ = task;
    });
}

bool VNURLRequestOperation::isCurrent(const std::shared_ptr<URLSession>& session,
                                      const std::shared_ptr<URLSessionTask>& task) const {
    std::lock_guard lock(mutex_);
    return session && session == urlSession_ && task && task == sessionTask_;
}

void VNURLRequestOperation::cancelAndFinish(const std::shared_ptr<URLSessionTask>& task) {
    task->cancel();
    finish();
}

std::optional<bool> VNURLRequestOperation::canGetAuthenticationChallengeErrorFromHTTPResonse(
    const HTTPURLResponse&) {
    return std::nullopt;
}

bool VNURLRequestOperation::isLogEnabled() const {
    std::lock_guard lock(mutex_);
    return logEnabled_;
}

void VNURLRequestOperation::logResponse(const URLResponse& response,
                                        const std::optional<Data>& data) const {
    if (isLogEnabled())
        VNLog::logURLResponseIfEnabled(response, request().value_or(URLRequest()), data);
}

void VNURLRequestOperation::logResponse(const URLResponse& response,
                                        std::string_view dataPath) const {
    if (isLogEnabled())
        VNLog::logURLResponseIfEnabled(response, request().value_or(URLRequest()), dataPath);
}

void VNURLRequestOperation::didReceiveResponse(const std::shared_ptr<URLSession>& session,
                                               const std::shared_ptr<URLSessionDataTask>& dataTask,
                                               const URLResponsePtr& response,
                                               ResponseCompletion completionHandler) {
    if (!isCurrent(session, dataTask))
        return completionHandler(URLSessionResponseDisposition::cancel);
    if (isCancelled()) return cancelAndFinish(dataTask);
    const auto http = std::dynamic_pointer_cast<const HTTPURLResponse>(response);
    if (http && http->statusCode() >= 400 &&
        canGetAuthenticationChallengeErrorFromHTTPResonse(*http).value_or(false)) {
        {
            std::lock_guard lock(mutex_);
            response_ = response;
        }
        logResponse(*response, std::nullopt);
        finishWithSuccess();
        return completionHandler(URLSessionResponseDisposition::cancel);
    }
    std::optional<std::string> path;
    {
        std::lock_guard lock(mutex_);
        if (http && saveToFilePath_ && (http->statusCode() < 200 || http->statusCode() > 299))
            saveToFilePath_.reset();
        path = saveToFilePath_;
    }
    if (path) {
        if (!path->empty()) return completionHandler(URLSessionResponseDisposition::becomeDownload);
        finishWithError(defaultVNErrorWithDeveloperDescription(
            stringWithFormat("Invalid URL request operation save file path: '%@'", *path)));
        return completionHandler(URLSessionResponseDisposition::cancel);
    }
    {
        std::lock_guard lock(mutex_);
        mutableData_ = Data();
    }
    completionHandler(URLSessionResponseDisposition::allow);
}

void VNURLRequestOperation::willPerformHTTPRedirection(const std::shared_ptr<URLSession>& session,
                                                       const std::shared_ptr<URLSessionTask>& task,
                                                       const HTTPURLResponsePtr& response,
                                                       URLRequest newRequest,
                                                       RedirectCompletion completionHandler) {
    if (!isCurrent(session, task)) return completionHandler(std::nullopt);
    const long status = static_cast<long>(response->statusCode());
    if (followRedirects() || (status != 301 && status != 303))
        return completionHandler(std::move(newRequest));
    {
        std::lock_guard lock(mutex_);
        response_ = response;
    }
    logResponse(*response, std::nullopt);
    finishWithSuccess();
    completionHandler(std::nullopt);
}

void VNURLRequestOperation::didBecomeDownloadTask(
    const std::shared_ptr<URLSession>& session, const std::shared_ptr<URLSessionDataTask>& dataTask,
    const std::shared_ptr<URLSessionDownloadTask>& downloadTask) {
    if (!isCurrent(session, dataTask)) {
        dataTask->cancel();
        downloadTask->cancel();
        return;
    }
    if (isCancelled()) {
        dataTask->cancel();
        downloadTask->cancel();
        return finish();
    }
    if (!saveToFilePath())
        return finishWithError(
            defaultVNErrorWithDeveloperDescription("Invalid URL request operation save file path"));
    setSessionTask(downloadTask, false);
}

void VNURLRequestOperation::didReceiveData(const std::shared_ptr<URLSession>& session,
                                           const std::shared_ptr<URLSessionDataTask>& dataTask,
                                           const Data& data) {
    if (!isCurrent(session, dataTask)) return dataTask->cancel();
    if (isCancelled()) return cancelAndFinish(dataTask);
    if (data.empty()) return;
    std::lock_guard lock(mutex_);
    if (!mutableData_) mutableData_ = Data();
    mutableData_->insert(mutableData_->end(), data.begin(), data.end());
}

ErrorPtr VNURLRequestOperation::saveDownload(const std::string& location, const std::string& path) {
    std::error_code failed;
    if (fs::exists(fs::symlink_status(path, failed))) {
        if (!fs::remove(path, failed) || failed)
            return fileError(
                stringWithFormat("URL request operation could not remove file path: '%@'", path),
                failed ? failed : std::make_error_code(std::errc::io_error));
    }
    if (const std::error_code moveFailed = moveFile(location, path)) {
        return fileError(
            stringWithFormat("URL request operation could not move downloaded file '%@' to '%@'",
                             location, path),
            moveFailed);
    }
    return nullptr;
}

void VNURLRequestOperation::didFinishDownloadingToURL(
    const std::shared_ptr<URLSession>& session, const std::shared_ptr<URLSessionDownloadTask>& task,
    const std::string& location) {
    if (!isCurrent(session, task)) return task->cancel();
    if (isCancelled()) return cancelAndFinish(task);
    const std::optional<std::string> path = saveToFilePath();
    if (!path || path->empty())
        return finishWithError(defaultVNErrorWithDeveloperDescription(stringWithFormat(
            "Invalid URL request operation save file path: '%@'", path.value_or(""))));
    if (const ErrorPtr failed = saveDownload(location, *path)) finishWithError(failed);
}

void VNURLRequestOperation::didCompleteWithError(const std::shared_ptr<URLSession>& session,
                                                 const std::shared_ptr<URLSessionTask>& task,
                                                 const ErrorPtr& error) {
    if (!isCurrent(session, task)) return;
    if (isCancelled()) return finish();
    if (error) return finishWithError(error);
    const URLResponsePtr response = task->response();
    std::optional<std::string> path;
    std::optional<Data> body;
    {
        std::lock_guard lock(mutex_);
        response_ = response;
        data_.reset();
        path = saveToFilePath_;
        body = std::move(mutableData_);
        mutableData_.reset();
    }
    ErrorPtr outcome;
    const bool isDownload = task->kind() == URLSessionTask::Kind::download;
    if (path) {
        if (!isDownload) {
            outcome = defaultVNError();
        } else if (response) {
            logResponse(*response, *path);
        }
    } else if (isDownload) {
        outcome = defaultVNError();
    } else {
        if (!body) body = Data();
        {
            std::lock_guard lock(mutex_);
            data_ = body;
        }
        if (response) logResponse(*response, body);
    }
    if (outcome) return finishWithError(outcome);
    finishWithSuccess();
}

void VNURLRequestOperation::cancel() {
    Operation::cancel();
    tearDownSession(true);
}

// The session is dropped before its tasks are cancelled, so that every callback the
// cancellation causes finds a foreign session and is ignored.
void VNURLRequestOperation::tearDownSession(bool cancelTasks) {
    URLSessionPtr session;
    {
        std::lock_guard lock(mutex_);
        session = std::move(urlSession_);
        urlSession_.reset();
    }
    setSessionTask(nullptr);
    if (!session) return;
    if (cancelTasks) {
        session->invalidateAndCancel();
    } else {
        session->finishTasksAndInvalidate();
    }
}

void VNURLRequestOperation::finish() {
    tearDownSession(false);
    if (!isFinished()) return Operation::finish();
    announce(isExecutingKey, KeyValueChange::willChange);
    announce(isFinishedKey, KeyValueChange::willChange);
    announce(isExecutingKey, KeyValueChange::didChange);
    announce(isFinishedKey, KeyValueChange::didChange);
}

void VNURLRequestOperation::finishWithSuccess() {
    auto operation = self();
    DispatchQueue::vnSyncOnMain([operation] { operation->finishWithSuccessOnMain(); });
}

void VNURLRequestOperation::finishWithError(const ErrorPtr& error) {
    auto operation = self();
    DispatchQueue::vnSyncOnMain([operation, error] { operation->finishWithErrorOnMain(error); });
}

void VNURLRequestOperation::finishWithSuccessOnMain() {
    if (!isCancelled()) {
        if (const auto delegate = this->delegate())
            delegate->urlRequestOperationDidFinishLoading(self());
    }
    finish();
}

void VNURLRequestOperation::finishWithErrorOnMain(const ErrorPtr& error) {
    if (isLogEnabled() && VNLog::isLogResponsesEnabled()) {
        const std::optional<URLRequest> request = this->request();
        Value::Dictionary record;
        record.emplace("url", request && request->url() ? Value(request->url()->absoluteString())
                                                        : Value::null());
        if (error) {
            record.emplace("error",
                           Value(Value::Dictionary{
                               {"code", Value(error->code())},
                               {"domain", Value(error->domain())},
                               {"localizedDescription", Value(error->localizedDescription())}}));
        } else {
            record.emplace("error", Value::null());
        }
        VNLog::logJSONObject(Value(std::move(record)), "requestFail");
    }
    {
        std::lock_guard lock(mutex_);
        error_ = error;
    }
    if (!isCancelled()) {
        if (const auto delegate = this->delegate())
            delegate->urlRequestOperationDidFailLoading(self());
    }
    finish();
}

}  // namespace vn
