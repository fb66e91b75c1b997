// vn::URLSession: loads URLs. A session makes tasks (data, upload, download), runs them on the
// library's transport (libcurl's multi interface for the whole process: no thread per task, one
// connection cache shared by every session) and reports to its delegate or to each task's
// completion handler. resume() sends the request from the calling thread when it can; one
// transport thread waits for every transfer's answer.
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
// two at once), or else a serial queue of the session's own, whose calls may run on the
// transport thread that saw the answer arrive (a handler that blocks there does not stall the
// transport).
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

    // ---- Tasks that wait for the local-network permission ----------------------------------
    // The first connection of an application to a device on the local network makes the
    // mobile system ask the user for the local-network permission, and the attempt that
    // triggered the question fails at once with -1009 (not connected). These factories make
    // the same tasks as the plain ones above, returned suspended, but such a failure does not
    // reach the completion handler: the request is repeated once in the waiting session
    // (vnPermissionWaitingSession), which waits for connectivity until the user has answered
    // or its resource time-out passes. The completion handler is called exactly once: with
    // the first attempt's result, or with the retry's result (its error included, such as
    // -1001 when the waiting session times out), never both.
    //
    // When the task is made:
    // - with a null completion handler, or while the application is in the background (no
    //   question can be shown), or on a session whose configuration already waits for
    //   connectivity, the plain factory is used unchanged and no retry is armed;
    // - otherwise, when the first attempt fails with an error for which
    //   vnMayBeLocalNetworkPermissionError(error, URL of the request) answers true and the
    //   application is not in the background by then, a task of the same kind with the same
    //   request (or URL) and the same body (file or bytes) is made in the waiting session,
    //   with the caller's completion handler, and the first result is dropped. When there is
    //   no waiting session (the session factory made none) or it refuses the task (it has
    //   been invalidated), the first result is passed on instead.
    // The retry is made on this session's delegate queue; its completion runs on the waiting
    // session's queue. With onRetryWaitingTaskCreated, the retry task is handed to it
    // unresumed and the caller owns it (to cancel it, follow it, and resume it: it does
    // nothing until resumed); without it, the retry is resumed at once and only the first
    // task is cancelable by the caller. This session's delegate and configuration do not
    // apply to the retry.
    //
    // Names: the interface names each factory twice, by selector
    // (vnDataTaskWaitingForPermissionWithRequest:completionHandler:onRetryWaitingTaskCreated:)
    // and with labels (vnDataTaskWaitingForPermission(with:completionHandler:
    // onRetryWaitingTaskCreated:)). Both are here; the upload factories from a file and from
    // bytes (fromFile: and from:) become one C++ name with two overloads in each form.
    using DataRetryTaskHandler = std::function<void(const URLSessionDataTaskPtr& retryTask)>;
    using UploadRetryTaskHandler = std::function<void(const URLSessionUploadTaskPtr& retryTask)>;
    using DownloadRetryTaskHandler =
        std::function<void(const URLSessionDownloadTaskPtr& retryTask)>;

    URLSessionDataTaskPtr vnDataTaskWaitingForPermissionWithRequest(
        const URLRequest& request, DataCompletion completionHandler,
        DataRetryTaskHandler onRetryWaitingTaskCreated = nullptr);
    URLSessionDataTaskPtr vnDataTaskWaitingForPermissionWithURL(
        const URL& url, DataCompletion completionHandler,
        DataRetryTaskHandler onRetryWaitingTaskCreated = nullptr);
    // The body is read from the file at fileURL, by the first attempt and again by the retry.
    URLSessionUploadTaskPtr vnUploadTaskWaitingForPermissionWithRequest(
        const URLRequest& request, const URL& fileURL, DataCompletion completionHandler,
        UploadRetryTaskHandler onRetryWaitingTaskCreated = nullptr);
    // The body is bodyData (may be empty); the retry sends the same bytes.
    URLSessionUploadTaskPtr vnUploadTaskWaitingForPermissionWithRequest(
        const URLRequest& request, Data bodyData, DataCompletion completionHandler,
        UploadRetryTaskHandler onRetryWaitingTaskCreated = nullptr);
    URLSessionDownloadTaskPtr vnDownloadTaskWaitingForPermissionWithRequest(
        const URLRequest& request, DownloadCompletion completionHandler,
        DownloadRetryTaskHandler onRetryWaitingTaskCreated = nullptr);
    URLSessionDownloadTaskPtr vnDownloadTaskWaitingForPermissionWithURL(
        const URL& url, DownloadCompletion completionHandler,
        DownloadRetryTaskHandler onRetryWaitingTaskCreated = nullptr);

    // The labelled forms, the same factories.
    URLSessionDataTaskPtr vnDataTaskWaitingForPermission(
        const URLRequest& request, DataCompletion completionHandler,
        DataRetryTaskHandler onRetryWaitingTaskCreated = nullptr) {
        return vnDataTaskWaitingForPermissionWithRequest(request, std::move(completionHandler),
                                                         std::move(onRetryWaitingTaskCreated));
    }
    URLSessionDataTaskPtr vnDataTaskWaitingForPermission(
        const URL& url, DataCompletion completionHandler,
        DataRetryTaskHandler onRetryWaitingTaskCreated = nullptr) {
        return vnDataTaskWaitingForPermissionWithURL(url, std::move(completionHandler),
                                                     std::move(onRetryWaitingTaskCreated));
    }
    URLSessionUploadTaskPtr vnUploadTaskWaitingForPermission(
        const URLRequest& request, const URL& fileURL, DataCompletion completionHandler,
        UploadRetryTaskHandler onRetryWaitingTaskCreated = nullptr) {
        return vnUploadTaskWaitingForPermissionWithRequest(
            request, fileURL, std::move(completionHandler), std::move(onRetryWaitingTaskCreated));
    }
    URLSessionUploadTaskPtr vnUploadTaskWaitingForPermission(
        const URLRequest& request, Data bodyData, DataCompletion completionHandler,
        UploadRetryTaskHandler onRetryWaitingTaskCreated = nullptr) {
        return vnUploadTaskWaitingForPermissionWithRequest(request, std::move(bodyData),
                                                           std::move(completionHandler),
                                                           std::move(onRetryWaitingTaskCreated));
    }
    URLSessionDownloadTaskPtr vnDownloadTaskWaitingForPermission(
        const URLRequest& request, DownloadCompletion completionHandler,
        DownloadRetryTaskHandler onRetryWaitingTaskCreated = nullptr) {
        return vnDownloadTaskWaitingForPermissionWithRequest(request, std::move(completionHandler),
                                                             std::move(onRetryWaitingTaskCreated));
    }
    URLSessionDownloadTaskPtr vnDownloadTaskWaitingForPermission(
        const URL& url, DownloadCompletion completionHandler,
        DownloadRetryTaskHandler onRetryWaitingTaskCreated = nullptr) {
        return vnDownloadTaskWaitingForPermissionWithURL(url, std::move(completionHandler),
                                                         std::move(onRetryWaitingTaskCreated));
    }

    // Whether error, met while loading url, may come from the pending local-network
    // permission. The factories above ask through this function, which calls the classifier
    // installed with setVNLocalNetworkPermissionErrorClassifier, or else the built-in one.
    // (The selector form vnMayBeLocalNetworkPermissionError:forURL: and the labelled form
    // vnMayBeLocalNetworkPermissionError(_:forURL:) are the same C++ name.)
    using LocalNetworkPermissionErrorClassifier =
        std::function<bool(const ErrorPtr& error, const std::optional<URL>& url)>;
    [[nodiscard]] static bool vnMayBeLocalNetworkPermissionError(const ErrorPtr& error,
                                                                 const std::optional<URL>& url);
    // The built-in classification, callable by a replacement that decorates it. True only
    // when all of these hold, tested in this order; the first that fails answers false and
    // nothing after it is consulted:
    // 1. VNPlatformVersion is at least 14.0;
    // 2. error is not null and its domain is NSURLErrorDomain;
    // 3. its code is -1009 (NSURLErrorNotConnectedToInternet);
    // 4. url has a host that is an IPv4 or IPv6 literal (IPAddressLiteral), not a name;
    // 5. VNNetworkReachability answers flags for that host (IPv6 without brackets);
    // 6. the flags include reachable and at least one of is-local-address and is-direct, and
    //    not is-WWAN (other bits are ignored).
    [[nodiscard]] static bool vnMayBeLocalNetworkPermissionErrorDefault(
        const ErrorPtr& error, const std::optional<URL>& url);
    // Installs classifier (null: back to the built-in one) and returns the one it replaces
    // (the built-in one as a callable when no other was installed). The classifier runs on
    // sessions' delegate queues, outside any lock, and must be safe from any thread.
    static LocalNetworkPermissionErrorClassifier setVNLocalNetworkPermissionErrorClassifier(
        LocalNetworkPermissionErrorClassifier classifier);

    // The waiting session: made on first need (thread-safely, once) with
    // vnSessionWithConfiguration from the default configuration with waitsForConnectivity
    // true and timeoutIntervalForResource VNUndocumentedConfig::localNetworkPermissionTimeout(),
    // no delegate and a queue of its own; kept for the life of the process. Null when the
    // session factory made none (nothing is kept then; the next call asks again). The session
    // factory is called under this function's lock and must not call it.
    [[nodiscard]] static URLSessionPtr vnPermissionWaitingSession();
    // Forgets the waiting session, so that the next one is made anew (with the time-out read
    // then). For hosts whose settings changed and for tests; retries already made run to their
    // end in the session that was forgotten.
    static void vnResetPermissionWaitingSession();

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
