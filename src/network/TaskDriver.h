// TaskDriver: the life of one task on the transport, from resume() to the one report of its
// end: attempts (with redirects and connectivity retries), the delegate's decisions, the body
// in memory or in a temporary file, deadlines, and delivery on the session's queue.
//
// resume() and cancel() may be called from any thread; every other member runs as the transport
// (under its lock, on whichever thread runs it).
#pragma once

#include <curl/curl.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "network/TransferEngine.h"
#include "vn/network/URLSession.h"

namespace vn::network_internal {

// What an upload sends instead of the request's own body.
struct TaskBody {
    std::optional<Data> bytes;
    std::optional<std::string> filePath;
};

class TaskDriver : public std::enable_shared_from_this<TaskDriver> {
  public:
    TaskDriver(URLSessionPtr session, std::shared_ptr<TaskBody> body,
               URLSession::DataCompletion dataCompletion,
               URLSession::DownloadCompletion downloadCompletion);
    ~TaskDriver();

    void attach(const std::shared_ptr<URLSessionTask>& task) { weakTask_ = task; }
    void resume(std::shared_ptr<URLSessionTask> task);
    void cancel(std::shared_ptr<URLSessionTask> task);
    // The task was destroyed without being resumed.
    void abandoned(std::uint64_t identifier);

    // As the transport.
    void startAttempt();
    void connect(CURL* easy);
    void transferDone(CURLcode result);
    void withdrawn();
    void checkDeadlines(Clock::time_point now);
    Clock::time_point nextDeadline() const;
    // Waiting for the delegate's response disposition.
    bool isPaused() const { return paused_; }

  private:
    enum class Disposition { notNeeded, undecided, asked, allowed };

    static size_t headerCallback(char* data, size_t size, size_t count, void* self);
    static size_t writeCallback(char* data, size_t size, size_t count, void* self);
    static size_t readCallback(char* buffer, size_t size, size_t count, void* self);

    void begin(std::shared_ptr<URLSessionTask> task);
    void configure(CURL* easy);
    size_t onHeaderLine(std::string_view line);
    void onHeadersComplete();
    void adoptFinalResponse(URLResponsePtr response);
    size_t onBody(const char* data, size_t size);
    bool consumeBody(const char* data, size_t size);
    size_t onUploadRead(char* buffer, size_t size);
    void attemptFailed(std::int64_t code, const ErrorPtr& underlying);
    void followOrStop();
    void redirectAnswered(std::optional<URLRequest> request);
    void finalResponseComplete();
    void askDisposition();
    void dispositionAnswered(URLSessionResponseDisposition disposition);
    void becomeDownload();
    bool openDownloadFile();
    void resumePausedTransfer();
    void finish(ErrorPtr error);
    void deliver(const std::shared_ptr<URLSessionTask>& task, ErrorPtr error);
    void releaseTransfer();
    std::optional<Data> attemptBody() const;
    std::optional<std::string> failingURL() const;
    std::shared_ptr<URLSessionTask> currentTask() const;
    bool reportsToDelegate() const { return !dataCompletion_ && !downloadCompletion_; }

    const URLSessionPtr session_;
    const std::shared_ptr<TaskBody> uploadBody_;
    URLSession::DataCompletion dataCompletion_;
    URLSession::DownloadCompletion downloadCompletion_;
    std::weak_ptr<URLSessionTask> weakTask_;

    // The transport only, from here on.
    std::shared_ptr<URLSessionTask> task_;  // held while the task runs
    bool finished_ = false;
    URLRequest request_;
    bool uploadBodyDropped_ = false;
    int redirects_ = 0;
    int connectivityAttempts_ = 0;
    Clock::time_point resumedAt_;
    Clock::time_point lastActivity_;

    CURL* easy_ = nullptr;
    curl_slist* headerList_ = nullptr;
    std::array<char, CURL_ERROR_SIZE> errorBuffer_{};
    std::string hopURL_;
    Data sendBuffer_;
    std::size_t sendOffset_ = 0;
    int uploadFd_ = -1;
    std::optional<std::int64_t> abortCode_;
    bool paused_ = false;

    long status_ = 0;
    HTTPURLResponse::HeaderFields headerFields_;
    bool isRedirectHop_ = false;
    std::optional<std::string> location_;
    HTTPURLResponsePtr hopResponse_;
    URLResponsePtr response_;
    Disposition disposition_ = Disposition::notNeeded;
    bool completeWhenAllowed_ = false;

    Data body_;
    int downloadFd_ = -1;
    std::string downloadPath_;
};

}  // namespace vn::network_internal
