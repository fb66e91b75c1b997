// vn::URLSessionTask and its kinds: one request loaded by a vn::URLSession.
//
// A task is made suspended by its session's factories and does nothing until resume(). Its
// kind is visible at run time both from kind() and from the class: URLSessionDataTask,
// URLSessionUploadTask (a data task whose body comes from bytes or a file) and
// URLSessionDownloadTask. A task ends exactly once, with or without an error; cancel() ends it
// with NSURLErrorDomain -999 unless it has ended already.
//
// Tasks are held by std::shared_ptr and keep their session alive until they end. Every member
// is safe from any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

#include "vn/concurrency/VNCancelableOperation.h"
#include "vn/platform/Error.h"
#include "vn/platform/Object.h"
#include "vn/platform/URLRequest.h"
#include "vn/platform/URLResponse.h"

namespace vn {

class URLSession;
namespace network_internal {
class TaskDriver;
}

class URLSessionTask : public Object, public VNCancelableOperation {
  public:
    enum class Kind { data, upload, download };
    // The platform's numbering.
    enum class State : long { running = 0, suspended = 1, canceling = 2, completed = 3 };

    ~URLSessionTask() override;

    Kind kind() const { return kind_; }
    // Unique among the tasks of the session that made it.
    std::uint64_t taskIdentifier() const { return identifier_; }
    // The request the task was made with.
    const URLRequest& originalRequest() const { return originalRequest_; }
    // The request being loaded now: the original one, or the last redirect the session took.
    URLRequest currentRequest() const;
    // The last response received; null until the headers of the final response arrived.
    URLResponsePtr response() const;
    // The error the task ended with; null while it runs and when it succeeded.
    ErrorPtr error() const;
    State state() const;
    // Body bytes received so far.
    std::int64_t countOfBytesReceived() const;

    // Starts a suspended task; does nothing in any other state.
    void resume();
    // Ends a task that has not ended yet with the error -999 (asynchronously: the completion
    // or the delegate hears it on the session's queue). Does nothing afterwards.
    void cancel() override;

    std::string description() const override;

  protected:
    URLSessionTask(Kind kind, std::uint64_t identifier, URLRequest request);

  private:
    friend class network_internal::TaskDriver;
    friend class URLSession;

    const Kind kind_;
    const std::uint64_t identifier_;
    const URLRequest originalRequest_;
    mutable std::mutex mutex_;
    URLRequest currentRequest_;
    URLResponsePtr response_;
    ErrorPtr error_;
    State state_ = State::suspended;
    std::int64_t countOfBytesReceived_ = 0;
    std::shared_ptr<network_internal::TaskDriver> driver_;
};

class URLSessionDataTask : public URLSessionTask {
  public:
    URLSessionDataTask(std::uint64_t identifier, URLRequest request)
        : URLSessionTask(Kind::data, identifier, std::move(request)) {}

  protected:
    URLSessionDataTask(Kind kind, std::uint64_t identifier, URLRequest request)
        : URLSessionTask(kind, identifier, std::move(request)) {}
};

class URLSessionUploadTask : public URLSessionDataTask {
  public:
    URLSessionUploadTask(std::uint64_t identifier, URLRequest request)
        : URLSessionDataTask(Kind::upload, identifier, std::move(request)) {}
};

class URLSessionDownloadTask : public URLSessionTask {
  public:
    URLSessionDownloadTask(std::uint64_t identifier, URLRequest request)
        : URLSessionTask(Kind::download, identifier, std::move(request)) {}
};

using URLSessionTaskPtr = std::shared_ptr<URLSessionTask>;
using URLSessionDataTaskPtr = std::shared_ptr<URLSessionDataTask>;
using URLSessionUploadTaskPtr = std::shared_ptr<URLSessionUploadTask>;
using URLSessionDownloadTaskPtr = std::shared_ptr<URLSessionDownloadTask>;

}  // namespace vn
