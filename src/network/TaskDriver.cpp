#include "network/TaskDriver.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "network/CallbackQueue.h"
#include "network/OnceAnswer.h"
#include "network/RedirectRules.h"
#include "network/TransportErrors.h"
#include "platform/internal/HTTPHeaderNames.h"
#include "vn/network/URLConnectionFailureInjection.h"
#include "vn/network/URLError.h"
#include "vn/platform/FileSystem.h"

namespace vn::network_internal {
namespace {

constexpr int maximumRedirects = 16;
constexpr auto firstConnectivityPause = std::chrono::milliseconds(50);
constexpr auto longestConnectivityPause = std::chrono::milliseconds(1000);

Clock::duration durationOr(std::chrono::duration<double> configured,
                           std::chrono::duration<double> fallback) {
    const auto seconds = configured.count() > 0 ? configured : fallback;
    return std::chrono::duration_cast<Clock::duration>(
        std::min(seconds, std::chrono::duration<double>(1e9)));
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r' ||
                             text.back() == '\n'))
        text.remove_suffix(1);
    return text;
}

// The status code of a status line ("HTTP/1.1 404 Not Found", "HTTP/2 200"); 0 when unreadable.
long statusOfLine(std::string_view line) {
    const auto space = line.find(' ');
    if (space == std::string_view::npos || line.size() < space + 4) return 0;
    long status = 0;
    for (std::size_t i = space + 1; i < space + 4; ++i) {
        if (line[i] < '0' || line[i] > '9') return 0;
        status = status * 10 + (line[i] - '0');
    }
    return status;
}

std::string slotKeyFor(const URLSession* session, const URL& url) {
    const std::string scheme = url.scheme().value_or("");
    const std::string port = url.port().value_or(scheme == "https" ? "443" : "80");
    return std::to_string(reinterpret_cast<std::uintptr_t>(session)) + ' ' + scheme + "://" +
           url.host().value_or("") + ':' + port;
}

bool isHTTPScheme(const URL& url) {
    const auto& scheme = url.scheme();
    if (!scheme) return false;
    std::string lowercased;
    for (const char c : *scheme) lowercased.push_back(platform_internal::asciiLowercase(c));
    return lowercased == "http" || lowercased == "https";
}

}  // namespace

TaskDriver::TaskDriver(URLSessionPtr session, std::shared_ptr<TaskBody> body,
                       URLSession::DataCompletion dataCompletion,
                       URLSession::DownloadCompletion downloadCompletion)
    : session_(std::move(session)),
      uploadBody_(std::move(body)),
      dataCompletion_(std::move(dataCompletion)),
      downloadCompletion_(std::move(downloadCompletion)) {}

TaskDriver::~TaskDriver() {
    if (headerList_) curl_slist_free_all(headerList_);
    if (uploadFd_ >= 0) close(uploadFd_);
    if (downloadFd_ >= 0) close(downloadFd_);
    if (!downloadPath_.empty()) unlink(downloadPath_.c_str());
}

void TaskDriver::resume(std::shared_ptr<URLSessionTask> task) {
    TransferEngine::shared().post([self = shared_from_this(), task = std::move(task)]() mutable {
        self->begin(std::move(task));
    });
}

void TaskDriver::cancel(std::shared_ptr<URLSessionTask> task) {
    TransferEngine::shared().post([self = shared_from_this(), task = std::move(task)] {
        if (!self->task_ && !self->finished_) self->task_ = task;
        self->finish(URLError(NSURLErrorCancelled, self->failingURL()));
    });
}

void TaskDriver::abandoned(std::uint64_t identifier) {
    session_->taskEnded(identifier);
}

std::shared_ptr<URLSessionTask> TaskDriver::currentTask() const {
    return task_ ? task_ : weakTask_.lock();
}

void TaskDriver::begin(std::shared_ptr<URLSessionTask> task) {
    if (finished_) return;
    task_ = std::move(task);
    request_ = task_->originalRequest();
    resumedAt_ = Clock::now();
    TransferEngine::shared().watch(shared_from_this());
    startAttempt();
}

std::optional<std::string> TaskDriver::failingURL() const {
    if (!hopURL_.empty()) return hopURL_;
    if (request_.url()) return request_.url()->absoluteString();
    const auto task = weakTask_.lock();
    if (task && task->originalRequest().url())
        return task->originalRequest().url()->absoluteString();
    return std::nullopt;
}

std::optional<Data> TaskDriver::attemptBody() const {
    if (uploadBody_ && !uploadBodyDropped_ && uploadBody_->bytes) return uploadBody_->bytes;
    return request_.httpBody();
}

void TaskDriver::startAttempt() {
    if (finished_) return;
    const std::optional<URL>& url = request_.url();
    if (!url || !url->scheme() || !url->host())
        return finish(URLError(NSURLErrorBadURL, failingURL()));
    if (!isHTTPScheme(*url)) return finish(URLError(NSURLErrorUnsupportedURL, failingURL()));
    hopURL_ = url->absoluteString();
    if (uploadBody_ && uploadBody_->filePath && !uploadBodyDropped_) {
        if (uploadFd_ >= 0) close(uploadFd_);
        uploadFd_ = open(uploadBody_->filePath->c_str(), O_RDONLY | O_CLOEXEC);
        struct stat info {};
        if (uploadFd_ < 0 || fstat(uploadFd_, &info) != 0 || !S_ISREG(info.st_mode))
            return finish(URLError(NSURLErrorFileDoesNotExist, failingURL()));
    }
    if (const auto injected =
            URLConnectionFailureInjection::interceptAttempt(session_.get(), request_))
        return attemptFailed(*injected, nullptr);
    TransferEngine::shared().enqueue(shared_from_this(), slotKeyFor(session_.get(), *url),
                                     session_->configuration().HTTPMaximumConnectionsPerHost);
}

void TaskDriver::connect(CURL* easy) {
    easy_ = easy;
    body_.clear();
    lastActivity_ = Clock::now();
    status_ = 0;
    headerFields_.clear();
    isRedirectHop_ = false;
    location_.reset();
    paused_ = false;
    abortCode_.reset();
    configure(easy);
}

void TaskDriver::configure(CURL* easy) {
    const URLSessionConfiguration& configuration = session_->configuration();
    curl_easy_setopt(easy, CURLOPT_PRIVATE, this);
    curl_easy_setopt(easy, CURLOPT_URL, hopURL_.c_str());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, errorBuffer_.data());
    errorBuffer_[0] = '\0';
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &TaskDriver::headerCallback);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &TaskDriver::writeCallback);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    const auto connectTimeout = std::chrono::duration_cast<std::chrono::milliseconds>(
        durationOr(configuration.timeoutIntervalForRequest, std::chrono::duration<double>(60)));
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(connectTimeout.count()));
    if (configuration.trustedCertificatesFile)
        curl_easy_setopt(easy, CURLOPT_CAINFO, configuration.trustedCertificatesFile->c_str());

    const std::string method = request_.httpMethod().value_or("GET");
    if (headerList_) curl_slist_free_all(headerList_);
    headerList_ = nullptr;
    const auto fields =
        request_.allHTTPHeaderFields().value_or(std::map<std::string, std::string>{});
    for (const auto& [name, value] : fields) {
        const std::string line = value.empty() ? name + ";" : name + ": " + value;
        headerList_ = curl_slist_append(headerList_, line.c_str());
    }
    for (const auto& [name, value] : configuration.HTTPAdditionalHeaders) {
        if (request_.valueForHTTPHeaderField(name)) continue;
        headerList_ = curl_slist_append(headerList_, (name + ": " + value).c_str());
    }
    headerList_ = curl_slist_append(headerList_, "Expect:");
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headerList_);

    if (method == "HEAD") {
        curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
        return;
    }
    const bool fromFile =
        uploadFd_ >= 0 && uploadBody_ && uploadBody_->filePath && !uploadBodyDropped_;
    std::optional<Data> bytes = fromFile ? std::nullopt : attemptBody();
    if (fromFile || bytes) {
        curl_off_t size = 0;
        if (fromFile) {
            struct stat info {};
            fstat(uploadFd_, &info);
            size = info.st_size;
            lseek(uploadFd_, 0, SEEK_SET);
        } else {
            sendBuffer_ = std::move(*bytes);
            size = static_cast<curl_off_t>(sendBuffer_.size());
        }
        sendOffset_ = 0;
        curl_easy_setopt(easy, CURLOPT_POST, 1L);
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, size);
        curl_easy_setopt(easy, CURLOPT_READFUNCTION, &TaskDriver::readCallback);
        curl_easy_setopt(easy, CURLOPT_READDATA, this);
        if (method != "POST") curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, method.c_str());
    } else if (method != "GET") {
        curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, method.c_str());
    }
}

size_t TaskDriver::headerCallback(char* data, size_t size, size_t count, void* self) {
    return static_cast<TaskDriver*>(self)->onHeaderLine(std::string_view(data, size * count));
}

size_t TaskDriver::writeCallback(char* data, size_t size, size_t count, void* self) {
    return static_cast<TaskDriver*>(self)->onBody(data, size * count);
}

size_t TaskDriver::readCallback(char* buffer, size_t size, size_t count, void* self) {
    return static_cast<TaskDriver*>(self)->onUploadRead(buffer, size * count);
}

size_t TaskDriver::onUploadRead(char* buffer, size_t size) {
    lastActivity_ = Clock::now();
    if (uploadFd_ >= 0 && uploadBody_ && uploadBody_->filePath && !uploadBodyDropped_) {
        const ssize_t got = read(uploadFd_, buffer, size);
        return got < 0 ? CURL_READFUNC_ABORT : static_cast<size_t>(got);
    }
    const size_t n = std::min(size, sendBuffer_.size() - sendOffset_);
    std::memcpy(buffer, sendBuffer_.data() + sendOffset_, n);
    sendOffset_ += n;
    return n;
}

size_t TaskDriver::onHeaderLine(std::string_view line) {
    lastActivity_ = Clock::now();
    if (line.starts_with("HTTP/")) {
        status_ = statusOfLine(line);
        headerFields_.clear();
        return line.size();
    }
    const std::string_view content = trimmed(line);
    if (content.empty()) {
        if (status_ >= 200 || status_ < 100) onHeadersComplete();
        return line.size();
    }
    const auto colon = content.find(':');
    if (colon == std::string_view::npos) return line.size();
    std::string name(trimmed(content.substr(0, colon)));
    std::string value(trimmed(content.substr(colon + 1)));
    const auto existing = std::find_if(
        headerFields_.begin(), headerFields_.end(),
        [&](const auto& field) { return platform_internal::headerNamesEqual(field.first, name); });
    if (existing == headerFields_.end()) {
        headerFields_.emplace(std::move(name), std::move(value));
    } else {
        existing->second += ", " + value;
    }
    return line.size();
}

void TaskDriver::onHeadersComplete() {
    const std::optional<URL> url = URL::URLWithString(hopURL_);
    auto response =
        std::make_shared<HTTPURLResponse>(url.value_or(*request_.url()), status_, headerFields_);
    location_ = response->valueForHTTPHeaderField("Location");
    isRedirectHop_ = isRedirectStatus(status_) && location_.has_value();
    if (isRedirectHop_) {
        hopResponse_ = std::move(response);
        body_.clear();
        return;
    }
    adoptFinalResponse(std::move(response));
    if (const auto length = response_->expectedContentLength();
        length > 0 && !reportsToDelegate() && task_->kind() != URLSessionTask::Kind::download)
        body_.reserve(static_cast<std::size_t>(std::min<std::int64_t>(length, 64 << 20)));
}

// The task's result is response; a data task that reports to a delegate waits for the
// delegate's disposition before taking any of the body.
void TaskDriver::adoptFinalResponse(URLResponsePtr response) {
    response_ = std::move(response);
    {
        std::lock_guard lock(task_->mutex_);
        task_->response_ = response_;
    }
    const bool asksDelegate = reportsToDelegate() &&
                              task_->kind() != URLSessionTask::Kind::download &&
                              session_->delegate() != nullptr;
    disposition_ = asksDelegate ? Disposition::undecided : Disposition::notNeeded;
}

size_t TaskDriver::onBody(const char* data, size_t size) {
    lastActivity_ = Clock::now();
    if (isRedirectHop_) {
        body_.insert(body_.end(), data, data + size);
        return size;
    }
    if (disposition_ == Disposition::undecided || disposition_ == Disposition::asked) {
        if (disposition_ == Disposition::undecided) askDisposition();
        paused_ = true;
        return CURL_WRITEFUNC_PAUSE;
    }
    return consumeBody(data, size) ? size : 0;
}

bool TaskDriver::consumeBody(const char* data, size_t size) {
    if (size == 0) return true;
    {
        std::lock_guard lock(task_->mutex_);
        task_->countOfBytesReceived_ += static_cast<std::int64_t>(size);
    }
    if (task_->kind() == URLSessionTask::Kind::download) {
        if (downloadFd_ < 0 && !openDownloadFile()) {
            abortCode_ = NSURLErrorCannotCreateFile;
            return false;
        }
        while (size > 0) {
            const ssize_t written = write(downloadFd_, data, size);
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) {
                abortCode_ = NSURLErrorCannotWriteToFile;
                return false;
            }
            data += written;
            size -= static_cast<size_t>(written);
        }
        return true;
    }
    if (!reportsToDelegate()) {
        body_.insert(body_.end(), data, data + size);
        return true;
    }
    auto chunk = std::make_shared<const Data>(data, data + size);
    auto dataTask = std::static_pointer_cast<URLSessionDataTask>(task_);
    session_->callbackQueue_->add([session = session_, dataTask, chunk] {
        if (const auto delegate = session->delegate())
            delegate->didReceiveData(session, dataTask, *chunk);
    });
    return true;
}

bool TaskDriver::openDownloadFile() {
    std::string pattern = temporaryDirectory() + "vn-download-XXXXXX";
    const int fd = mkostemp(pattern.data(), O_CLOEXEC);
    if (fd < 0) return false;
    downloadFd_ = fd;
    downloadPath_ = std::move(pattern);
    return true;
}

void TaskDriver::transferDone(CURLcode result) {
    CURL* easy = easy_;
    long osErrno = 0;
    curl_easy_getinfo(easy, CURLINFO_OS_ERRNO, &osErrno);
    const std::string detail(errorBuffer_.data());
    releaseTransfer();
    if (finished_) return;
    if (abortCode_) return finish(URLError(*abortCode_, failingURL()));
    if (result != CURLE_OK) {
        const ErrorPtr error = urlErrorForCurlResult(result, osErrno, detail, failingURL());
        return attemptFailed(error->code(), error->underlyingError());
    }
    if (isRedirectHop_) return followOrStop();
    if (!response_) return finish(URLError(NSURLErrorBadServerResponse, failingURL()));
    finalResponseComplete();
}

void TaskDriver::withdrawn() {
    releaseTransfer();
}

void TaskDriver::releaseTransfer() {
    if (!easy_) return;
    TransferEngine::shared().releaseEasyHandle(easy_);
    easy_ = nullptr;
    paused_ = false;
    if (uploadFd_ >= 0) {
        close(uploadFd_);
        uploadFd_ = -1;
    }
    sendBuffer_.clear();
}

void TaskDriver::attemptFailed(std::int64_t code, const ErrorPtr& underlying) {
    if (code == NSURLErrorNotConnectedToInternet &&
        session_->configuration().waitsForConnectivity) {
        const auto pause = std::min<Clock::duration>(
            firstConnectivityPause * (1 << std::min(connectivityAttempts_, 10)),
            longestConnectivityPause);
        ++connectivityAttempts_;
        TransferEngine::shared().scheduleAttempt(shared_from_this(), Clock::now() + pause);
        return;
    }
    finish(URLError(code, failingURL(), underlying));
}

void TaskDriver::followOrStop() {
    if (++redirects_ > maximumRedirects)
        return finish(URLError(NSURLErrorHTTPTooManyRedirects, failingURL()));
    const auto target = resolveLocation(hopURL_, *location_);
    const auto targetURL = target ? URL::URLWithString(*target) : std::nullopt;
    if (!targetURL) return finish(URLError(NSURLErrorBadServerResponse, failingURL()));
    URLRequest proposed = redirectedRequest(request_, status_, *targetURL);
    const bool dropsBody = redirectDropsBody(status_, request_.httpMethod().value_or("GET"));
    const auto delegate = session_->delegate();
    if (!delegate) {
        uploadBodyDropped_ = uploadBodyDropped_ || dropsBody;
        return redirectAnswered(std::move(proposed));
    }
    // Dropping the handler uncalled answers like the default: follow the proposal.
    auto answer = std::make_shared<OnceAnswer<std::optional<URLRequest>>>(
        [driver = shared_from_this(), dropsBody](std::optional<URLRequest> followed) {
            TransferEngine::shared().post([driver, dropsBody,
                                           followed = std::move(followed)]() mutable {
                driver->uploadBodyDropped_ = driver->uploadBodyDropped_ || (followed && dropsBody);
                driver->redirectAnswered(std::move(followed));
            });
        },
        proposed);
    session_->callbackQueue_->add([session = session_, task = task_, response = hopResponse_,
                                   proposed = std::move(proposed), answer]() mutable {
        auto completion = OnceAnswer<std::optional<URLRequest>>::handler(std::move(answer));
        if (const auto delegate = session->delegate())
            delegate->willPerformHTTPRedirection(session, task, response, proposed,
                                                 std::move(completion));
    });
}

void TaskDriver::redirectAnswered(std::optional<URLRequest> request) {
    if (finished_) return;
    if (request) {
        request_ = std::move(*request);
        {
            std::lock_guard lock(task_->mutex_);
            task_->currentRequest_ = request_;
        }
        return startAttempt();
    }
    // Refused: the redirect response, with its body, is the result.
    isRedirectHop_ = false;
    adoptFinalResponse(hopResponse_);
    Data hopBody = std::move(body_);
    body_.clear();
    if (disposition_ == Disposition::notNeeded) {
        if (!consumeBody(reinterpret_cast<const char*>(hopBody.data()), hopBody.size()))
            return finish(URLError(*abortCode_, failingURL()));
        return finalResponseComplete();
    }
    sendBuffer_ = std::move(hopBody);  // held until the delegate allows it
    completeWhenAllowed_ = true;
    askDisposition();
}

void TaskDriver::finalResponseComplete() {
    if (disposition_ == Disposition::undecided || disposition_ == Disposition::asked) {
        completeWhenAllowed_ = true;
        if (disposition_ == Disposition::undecided) askDisposition();
        return;
    }
    if (task_->kind() == URLSessionTask::Kind::download && downloadFd_ < 0 && !openDownloadFile())
        return finish(URLError(NSURLErrorCannotCreateFile, failingURL()));
    finish(nullptr);
}

void TaskDriver::askDisposition() {
    disposition_ = Disposition::asked;
    // Dropping the handler uncalled cancels the task.
    auto answer = std::make_shared<OnceAnswer<URLSessionResponseDisposition>>(
        [driver = shared_from_this()](URLSessionResponseDisposition disposition) {
            TransferEngine::shared().post(
                [driver, disposition] { driver->dispositionAnswered(disposition); });
        },
        URLSessionResponseDisposition::cancel);
    auto dataTask = std::static_pointer_cast<URLSessionDataTask>(task_);
    session_->callbackQueue_->add(
        [session = session_, dataTask, response = response_, answer]() mutable {
            auto completion = OnceAnswer<URLSessionResponseDisposition>::handler(std::move(answer));
            if (const auto delegate = session->delegate()) {
                delegate->didReceiveResponse(session, dataTask, response, std::move(completion));
            } else {
                completion(URLSessionResponseDisposition::allow);
            }
        });
}

void TaskDriver::dispositionAnswered(URLSessionResponseDisposition disposition) {
    if (finished_ || disposition_ != Disposition::asked) return;
    switch (disposition) {
        case URLSessionResponseDisposition::allow:
            break;
        case URLSessionResponseDisposition::becomeDownload:
            becomeDownload();
            break;
        default:
            return finish(URLError(NSURLErrorCancelled, failingURL()));
    }
    if (finished_) return;
    disposition_ = Disposition::allowed;
    if (completeWhenAllowed_) {
        if (!sendBuffer_.empty() && !easy_) {
            const Data held = std::move(sendBuffer_);
            sendBuffer_.clear();
            if (!consumeBody(reinterpret_cast<const char*>(held.data()), held.size()))
                return finish(URLError(*abortCode_, failingURL()));
        }
        return finalResponseComplete();
    }
    resumePausedTransfer();
}

void TaskDriver::becomeDownload() {
    if (!openDownloadFile()) return finish(URLError(NSURLErrorCannotCreateFile, failingURL()));
    const auto dataTask = std::static_pointer_cast<URLSessionDataTask>(task_);
    auto downloadTask = std::make_shared<URLSessionDownloadTask>(session_->nextTaskIdentifier(),
                                                                 dataTask->originalRequest());
    {
        std::scoped_lock lock(dataTask->mutex_, downloadTask->mutex_);
        downloadTask->currentRequest_ = dataTask->currentRequest_;
        downloadTask->response_ = dataTask->response_;
        downloadTask->state_ = URLSessionTask::State::running;
        downloadTask->driver_ = dataTask->driver_;
        dataTask->state_ = URLSessionTask::State::completed;
    }
    session_->adoptTask(downloadTask, dataTask->taskIdentifier());
    task_ = downloadTask;
    weakTask_ = downloadTask;
    session_->callbackQueue_->add([session = session_, dataTask, downloadTask] {
        if (const auto delegate = session->delegate())
            delegate->didBecomeDownloadTask(session, dataTask, downloadTask);
    });
}

void TaskDriver::resumePausedTransfer() {
    if (!easy_ || !paused_) return;
    paused_ = false;
    lastActivity_ = Clock::now();
    curl_easy_pause(easy_, CURLPAUSE_CONT);
}

Clock::time_point TaskDriver::nextDeadline() const {
    if (finished_) return Clock::time_point::max();
    const URLSessionConfiguration& configuration = session_->configuration();
    auto deadline = resumedAt_ + durationOr(configuration.timeoutIntervalForResource,
                                            std::chrono::duration<double>(7.0 * 24 * 3600));
    if (easy_ && !paused_)
        deadline =
            std::min(deadline, lastActivity_ + durationOr(configuration.timeoutIntervalForRequest,
                                                          std::chrono::duration<double>(60)));
    return deadline;
}

void TaskDriver::checkDeadlines(Clock::time_point now) {
    if (!finished_ && now >= nextDeadline()) finish(URLError(NSURLErrorTimedOut, failingURL()));
}

void TaskDriver::finish(ErrorPtr error) {
    if (finished_) return;
    finished_ = true;
    auto self = shared_from_this();
    TransferEngine& engine = TransferEngine::shared();
    engine.withdraw(*this, easy_);
    engine.unwatch(self);
    if (downloadFd_ >= 0) {
        close(downloadFd_);
        downloadFd_ = -1;
    }
    const std::shared_ptr<URLSessionTask> task = currentTask();
    task_.reset();
    if (!task) return;
    {
        std::lock_guard lock(task->mutex_);
        task->state_ = URLSessionTask::State::completed;
        task->error_ = error;
    }
    deliver(task, std::move(error));
}

void TaskDriver::deliver(const std::shared_ptr<URLSessionTask>& task, ErrorPtr error) {
    std::optional<std::string> location;
    if (!error && task->kind() == URLSessionTask::Kind::download)
        location = std::move(downloadPath_);
    if (error && !downloadPath_.empty()) unlink(downloadPath_.c_str());
    downloadPath_.clear();
    std::optional<Data> data;
    if (!error && task->kind() != URLSessionTask::Kind::download) data = std::move(body_);
    body_ = Data();
    session_->callbackQueue_->add([session = session_, task, error, location = std::move(location),
                                   data = std::move(data), response = response_,
                                   dataCompletion = std::move(dataCompletion_),
                                   downloadCompletion = std::move(downloadCompletion_)]() mutable {
        if (dataCompletion) {
            dataCompletion(std::move(data), response, error);
        } else if (downloadCompletion) {
            downloadCompletion(location, response, error);
        } else if (const auto delegate = session->delegate()) {
            if (location)
                delegate->didFinishDownloadingToURL(
                    session, std::static_pointer_cast<URLSessionDownloadTask>(task), *location);
        }
        if (location) unlink(location->c_str());
        if (!dataCompletion && !downloadCompletion) {
            if (const auto delegate = session->delegate())
                delegate->didCompleteWithError(session, task, error);
        }
        session->taskEnded(task->taskIdentifier());
    });
}

}  // namespace vn::network_internal
