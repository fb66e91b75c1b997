// VNURLRequestOperation: an asynchronous operation that performs one HTTP request with a URL
// session of its own, collecting the body in memory or saving it to a file, and reports the
// outcome to a weak delegate on the main thread.
//
// The operation is the delegate of the session it makes at start (through
// URLSession::vnSessionWithConfiguration), so it decides redirects, response dispositions and
// downloads itself; the six session-delegate members are public so that their answers can be
// observed. HTTP statuses are not failures: a 404 with a body finishes with success and the
// delegate decides. Transport failures finish with the session's error.
//
// Life cycle: ready → executing (start) → finished (finish). cancel() sets the cancelled flag,
// tears the session down and leaves an executing operation executing, with no delegate call;
// an operation cancelled before it starts finishes at start without touching the network.
// finish() may run more than once and announces "isExecuting" and "isFinished" each time
// (both will-announcements before both did-announcements).
//
// Threads: the members may be called from any thread. Delegate calls and the failure record
// happen on the main thread; finishWithSuccess()/finishWithError() called elsewhere wait until
// the main thread has run them, so completion needs a main run loop that turns.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "vn/concurrency/Operation.h"
#include "vn/network/URLSession.h"
#include "vn/network/URLSessionDelegate.h"
#include "vn/platform/KeyValueCoding.h"

namespace vn {

class VNURLRequestOperation;

// Both members are optional; each does nothing by default. Called on the main thread.
class VNURLRequestOperationDelegate {
  public:
    virtual ~VNURLRequestOperationDelegate() = default;
    virtual void urlRequestOperationDidFinishLoading(
        const std::shared_ptr<VNURLRequestOperation>& operation);
    virtual void urlRequestOperationDidFailLoading(
        const std::shared_ptr<VNURLRequestOperation>& operation);
};

class VNURLRequestOperation : public Operation, public URLSessionDelegate, public KeyValueCoding {
  public:
    VNURLRequestOperation() = default;
    ~VNURLRequestOperation() override;

    bool isAsynchronous() const override { return true; }

    std::optional<URLRequest> request() const;
    void setRequest(std::optional<URLRequest> request);
    // True until set: every redirect is followed. When false, only 301 and 303 are stopped
    // (their response becomes the result); 302, 307, 308 and the rest are still followed.
    bool followRedirects() const;
    void setFollowRedirects(bool followRedirects);
    // When set, a 2xx body is saved to this file (replacing a file there) instead of memory.
    // A response outside 2xx clears it, and that body is collected in memory.
    std::optional<std::string> saveToFilePath() const;
    void setSaveToFilePath(std::optional<std::string> path);
    // Whether this operation traces its request, response and failure (true until set).
    void setLogEnabled(bool logEnabled);

    URLResponsePtr response() const;
    // The body on success in memory mode; absent otherwise.
    std::optional<Data> data() const;
    ErrorPtr error() const;

    std::shared_ptr<VNURLRequestOperationDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(const std::shared_ptr<VNURLRequestOperationDelegate>& delegate);

    // The session and task of the current run; null outside a run.
    URLSessionPtr urlSession() const;
    URLSessionTaskPtr sessionTask() const;

    // Makes task the current task under the operation's object monitor. Replacing none by a
    // task starts a network activity and a task by none stops one (a task by another leaves
    // the count alone); the old task is cancelled when cancelCurrentTask is true.
    void setSessionTask(const URLSessionTaskPtr& task);
    void setSessionTask(const URLSessionTaskPtr& task, bool cancelCurrentTask);

    // Ends the run: invalidates the session after its tasks, drops the task and the session,
    // and moves to finished, announcing it. May run more than once.
    void finish();
    // On the main thread: tells the delegate of success unless cancelled, then finish().
    void finishWithSuccess();
    // On the main thread: writes the "requestFail" record when tracing is on, stores error,
    // tells the delegate of the failure unless cancelled, then finish().
    void finishWithError(const ErrorPtr& error);

    // Sets the cancelled flag, cancels the session and its task, drops the session. Does not
    // finish the operation and calls no delegate.
    void cancel() override;

    // The extension point asked about every HTTP response of status 400 or above: true makes
    // the operation finish with success with that response and no body. Absent means "does
    // not respond" (the default); a subclass may answer.
    virtual std::optional<bool> canGetAuthenticationChallengeErrorFromHTTPResonse(
        const HTTPURLResponse& response);

    // Session delegate. Calls for a session or task that is not the current one are answered
    // as refusals (no redirect, cancel) or cancel that task, and are otherwise ignored.
    void willPerformHTTPRedirection(const std::shared_ptr<URLSession>& session,
                                    const std::shared_ptr<URLSessionTask>& task,
                                    const HTTPURLResponsePtr& response, URLRequest newRequest,
                                    RedirectCompletion completionHandler) override;
    void didReceiveResponse(const std::shared_ptr<URLSession>& session,
                            const std::shared_ptr<URLSessionDataTask>& dataTask,
                            const URLResponsePtr& response,
                            ResponseCompletion completionHandler) override;
    void didBecomeDownloadTask(
        const std::shared_ptr<URLSession>& session,
        const std::shared_ptr<URLSessionDataTask>& dataTask,
        const std::shared_ptr<URLSessionDownloadTask>& downloadTask) override;
    void didReceiveData(const std::shared_ptr<URLSession>& session,
                        const std::shared_ptr<URLSessionDataTask>& dataTask,
                        const Data& data) override;
    void didFinishDownloadingToURL(const std::shared_ptr<URLSession>& session,
                                   const std::shared_ptr<URLSessionDownloadTask>& task,
                                   const std::string& location) override;
    void didCompleteWithError(const std::shared_ptr<URLSession>& session,
                              const std::shared_ptr<URLSessionTask>& task,
                              const ErrorPtr& error) override;

    // Key-value access: "data" (the body as data, or nil), "error", "request" are readable.
    Value valueForKey(std::string_view key) const override;

  protected:
    void main() override;

  private:
    bool isCurrent(const std::shared_ptr<URLSession>& session,
                   const std::shared_ptr<URLSessionTask>& task) const;
    void cancelAndFinish(const std::shared_ptr<URLSessionTask>& task);
    void tearDownSession(bool cancelTasks);
    void finishWithErrorOnMain(const ErrorPtr& error);
    void finishWithSuccessOnMain();
    bool isLogEnabled() const;
    void logResponse(const URLResponse& response, const std::optional<Data>& data) const;
    void logResponse(const URLResponse& response, std::string_view dataPath) const;
    std::shared_ptr<VNURLRequestOperation> self();
    ErrorPtr saveDownload(const std::string& location, const std::string& path);

    mutable std::mutex mutex_;
    URLSessionPtr urlSession_;
    URLSessionTaskPtr sessionTask_;
    std::optional<Data> mutableData_;
    bool logEnabled_ = true;
    bool followRedirects_ = true;
    std::optional<URLRequest> request_;
    URLResponsePtr response_;
    std::optional<Data> data_;
    ErrorPtr error_;
    std::weak_ptr<VNURLRequestOperationDelegate> delegate_;
    std::optional<std::string> saveToFilePath_;
};

using VNURLRequestOperationPtr = std::shared_ptr<VNURLRequestOperation>;

}  // namespace vn
