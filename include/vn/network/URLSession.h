// vn::URLSession: loads URLs. A session makes tasks (data, upload, download), runs them on the
// library's transport (libcurl's multi interface: one transport thread for the process, no
// thread per task, one connection cache shared by every session) and reports to its delegate
// or to each task's completion handler.
//
// Redirects are performed by the session, so that the delegate decides each one: a relative
// Location is resolved against the URL that answered; 303 turns any method but HEAD into GET
// without a body, 301 and 302 turn POST into GET without a body, 307 and 308 keep method and
// body; the 17th redirect in a row ends the task with -1007. The final response carries the
// URL of the last hop.
//
// Failures end tasks with NSURLErrorDomain errors (vn/network/URLError.h). HTTP statuses are
// not failures: a 404 is a response like any other.
//
// Threads: every member is safe from any thread. Delegate calls and completion handlers of
// one session run one at a time, in order, on the session's delegate queue: the executor given
// at creation (calls are handed to it one at a time, so even a concurrent executor never runs
// two at once), or else a serial queue of the session's own.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

#include "vn/network/URLSessionConfiguration.h"
#include "vn/network/URLSessionDelegate.h"
#include "vn/network/URLSessionTask.h"
#include "vn/platform/Executor.h"
#include "vn/platform/URL.h"
#include "vn/platform/URLRequest.h"
#include "vn/platform/Value.h"

namespace vn {

namespace network_internal {
class CallbackQueue;
class TaskDriver;
struct TaskBody;
}  // namespace network_internal

class URLSession;
using URLSessionPtr = std::shared_ptr<URLSession>;

class URLSession : public Object {
  public:
    // data: the body (absent on failure); response: null when none arrived.
    using DataCompletion =
        std::function<void(std::optional<Data> data, URLResponsePtr response, ErrorPtr error)>;
    // location: the downloaded body's temporary file, deleted when the handler returns
    // (absent on failure).
    using DownloadCompletion = std::function<void(std::optional<std::string> location,
                                                  URLResponsePtr response, ErrorPtr error)>;

    // A session with a copy of configuration. The session keeps delegate (may be null) until
    // it has been invalidated and has told the delegate so; delegateQueue null gives the
    // session a serial queue of its own.
    [[nodiscard]] static URLSessionPtr sessionWithConfiguration(
        const URLSessionConfiguration& configuration, URLSessionDelegatePtr delegate,
        ExecutorPtr delegateQueue);
    // No delegate, a queue of its own.
    [[nodiscard]] static URLSessionPtr sessionWithConfiguration(
        const URLSessionConfiguration& configuration);
    // The process's session with the default configuration; made on first use, never
    // invalidated (invalidating it does nothing).
    static const URLSessionPtr& sharedSession();

    ~URLSession() override;

    // Task factories. Each returns a suspended task (resume() starts it). With a completion
    // handler, the task reports its outcome to the handler; without one, to the delegate.
    // Making a task in an invalidated session throws an Exception named
    // NSGenericException.
    URLSessionDataTaskPtr dataTaskWithRequest(const URLRequest& request,
                                              DataCompletion completionHandler = nullptr);
    URLSessionDataTaskPtr dataTaskWithURL(const URL& url,
                                          DataCompletion completionHandler = nullptr);
    // The body is read from the file at fileURL ("file:" URL) when the task starts: a missing
    // or unreadable file ends the task with -1100. The request's own body is ignored.
    URLSessionUploadTaskPtr uploadTaskWithRequest(const URLRequest& request, const URL& fileURL,
                                                  DataCompletion completionHandler = nullptr);
    // The body is bodyData, which may be empty (a body of length zero is sent).
    URLSessionUploadTaskPtr uploadTaskWithRequest(const URLRequest& request, Data bodyData,
                                                  DataCompletion completionHandler = nullptr);
    URLSessionDownloadTaskPtr downloadTaskWithRequest(
        const URLRequest& request, DownloadCompletion completionHandler = nullptr);
    URLSessionDownloadTaskPtr downloadTaskWithURL(const URL& url,
                                                  DownloadCompletion completionHandler = nullptr);

    // No new task may be made; the tasks already made run to their end; then the delegate
    // hears didBecomeInvalidWithError (null) and is released.
    void finishTasksAndInvalidate();
    // The same, cancelling every task that has not ended.
    void invalidateAndCancel();

    // The session's own copy.
    const URLSessionConfiguration& configuration() const { return configuration_; }
    // Null once the session has released it.
    URLSessionDelegatePtr delegate() const;

    // ---- The library's session factories -------------------------------------------------
    // Every session the library makes for itself is made through vnSessionWithConfiguration,
    // so that a host can replace or decorate session creation in one place.
    using SessionFactory =
        std::function<URLSessionPtr(const URLSessionConfiguration& configuration,
                                    URLSessionDelegatePtr delegate, ExecutorPtr delegateQueue)>;

    // Calls the current factory; by default sessionWithConfiguration(configuration, delegate,
    // delegateQueue) unchanged.
    [[nodiscard]] static URLSessionPtr vnSessionWithConfiguration(
        const URLSessionConfiguration& configuration, URLSessionDelegatePtr delegate,
        ExecutorPtr delegateQueue);
    // The same with no delegate and no delegate queue, through the current factory.
    [[nodiscard]] static URLSessionPtr vnSessionWithConfiguration(
        const URLSessionConfiguration& configuration);
    // Made once, thread-safely, on first use, as vnSessionWithConfiguration(default
    // configuration); kept for the life of the process.
    static const URLSessionPtr& vnSharedSession();
    // Installs factory (null: back to the default) and returns the one it replaces, so that a
    // decorator can call through to it. Safe from any thread; sessions being made meanwhile
    // use either.
    static SessionFactory setVNSessionFactory(SessionFactory factory);

    // Closes the connections that the transport keeps open for reuse, once no transfer is in
    // flight; returns whether it did. For hosts that go to the background, and for tests that
    // count open files.
    static bool closeIdleConnections();

  private:
    struct Private {};

  public:
    URLSession(Private, const URLSessionConfiguration& configuration,
               URLSessionDelegatePtr delegate, ExecutorPtr delegateQueue, bool shared);

  private:
    friend class network_internal::TaskDriver;

    template <typename Task>
    std::shared_ptr<Task> makeTask(const URLRequest& request,
                                   std::shared_ptr<network_internal::TaskBody> body,
                                   DataCompletion dataCompletion,
                                   DownloadCompletion downloadCompletion);
    // A data task became downloadTask: the session counts the new one instead.
    void adoptTask(const std::shared_ptr<URLSessionTask>& downloadTask, std::uint64_t replaced);
    // A task ended (or was destroyed unstarted); called once per task.
    void taskEnded(std::uint64_t identifier);
    void becomeInvalidIfDone(std::unique_lock<std::mutex>& lock);
    std::uint64_t nextTaskIdentifier();

    const URLSessionConfiguration configuration_;
    const bool shared_;
    const std::shared_ptr<network_internal::CallbackQueue> callbackQueue_;
    mutable std::mutex mutex_;
    URLSessionDelegatePtr delegate_;
    bool invalidated_ = false;
    bool toldInvalid_ = false;
    std::uint64_t lastTaskIdentifier_ = 0;
    std::unordered_map<std::uint64_t, std::weak_ptr<URLSessionTask>> outstanding_;
};

}  // namespace vn
