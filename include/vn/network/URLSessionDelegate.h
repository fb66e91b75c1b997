// vn::URLSessionDelegate: what a session tells the object that steers it. Every member has the
// platform's default, so a delegate overrides only what it needs. The members are named by
// the piece of the platform's selector that tells them apart (the platform names all of them
// "URLSession:...").
//
// A session calls its delegate on its delegate queue, one call at a time, never concurrently.
// Tasks made with a completion handler report their response, data, download and end to the
// handler instead: their delegate hears only redirects. A completion handler that a member
// receives may be called from any thread, at most once; dropping it uncalled answers as the
// default does for a redirect and cancels the task for a response.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "vn/platform/Error.h"
#include "vn/platform/URLRequest.h"
#include "vn/platform/URLResponse.h"
#include "vn/platform/Value.h"

namespace vn {

class URLSession;
class URLSessionTask;
class URLSessionDataTask;
class URLSessionDownloadTask;

// What to do with a data task's response. The platform's numbering.
enum class URLSessionResponseDisposition : long { cancel = 0, allow = 1, becomeDownload = 2 };

class URLSessionDelegate {
  public:
    using RedirectCompletion = std::function<void(std::optional<URLRequest> request)>;
    using ResponseCompletion = std::function<void(URLSessionResponseDisposition disposition)>;

    virtual ~URLSessionDelegate() = default;

    // A response redirects: answer with the request to follow (newRequest, a changed one) or
    // with none to stop, which makes the redirect response the task's result, body included.
    // Default: follow newRequest.
    virtual void willPerformHTTPRedirection(const std::shared_ptr<URLSession>& session,
                                            const std::shared_ptr<URLSessionTask>& task,
                                            const HTTPURLResponsePtr& response,
                                            URLRequest newRequest,
                                            RedirectCompletion completionHandler);
    // A data task's final response has arrived, before any of its body. Default: allow.
    virtual void didReceiveResponse(const std::shared_ptr<URLSession>& session,
                                    const std::shared_ptr<URLSessionDataTask>& dataTask,
                                    const URLResponsePtr& response,
                                    ResponseCompletion completionHandler);
    // The answer becomeDownload replaced dataTask by downloadTask, which receives the body
    // and ends; dataTask is retired without another call.
    virtual void didBecomeDownloadTask(const std::shared_ptr<URLSession>& session,
                                       const std::shared_ptr<URLSessionDataTask>& dataTask,
                                       const std::shared_ptr<URLSessionDownloadTask>& downloadTask);
    // The next bytes of a data task's body.
    virtual void didReceiveData(const std::shared_ptr<URLSession>& session,
                                const std::shared_ptr<URLSessionDataTask>& dataTask,
                                const Data& data);
    // A download's body is complete in the temporary file at location, which is deleted when
    // this member returns: move or copy it before.
    virtual void didFinishDownloadingToURL(const std::shared_ptr<URLSession>& session,
                                           const std::shared_ptr<URLSessionDownloadTask>& task,
                                           const std::string& location);
    // The task has ended; error is null on success.
    virtual void didCompleteWithError(const std::shared_ptr<URLSession>& session,
                                      const std::shared_ptr<URLSessionTask>& task,
                                      const ErrorPtr& error);
    // The session was invalidated and has no task left; the session releases its delegate
    // after this call.
    virtual void didBecomeInvalidWithError(const std::shared_ptr<URLSession>& session,
                                           const ErrorPtr& error);
};

using URLSessionDelegatePtr = std::shared_ptr<URLSessionDelegate>;

}  // namespace vn
