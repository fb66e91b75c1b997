// vn::URLConnectionFailureInjection: makes connection attempts fail with a chosen URL error
// without connecting, for what a test machine cannot produce (a device that is not connected,
// -1009, while the loopback interface always is).
//
// While an injection lives, every connection attempt in its scope (one session, or every
// session including the library's own process-wide ones) whose request it matches fails at
// once with NSURLErrorDomain and its code, exactly as a transport failure of that code would:
// a session that waits for connectivity tries -1009 again. Redirect hops and connectivity
// retries are attempts of their own. The injection counts the attempts it failed. Destroying
// it ends the injection; attempts already failed stay failed. Several injections may live at
// once; the newest that matches decides.
//
// Safe from any thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

#include "vn/platform/URLRequest.h"

namespace vn {

class URLSession;

class URLConnectionFailureInjection {
  public:
    using RequestMatcher = std::function<bool(const URLRequest& request)>;

    // Fails the attempts of session (every session when null) whose request satisfies matches
    // (every request when null) with code. matches runs on the transport's thread and must
    // not make or destroy injections.
    [[nodiscard]] static std::shared_ptr<URLConnectionFailureInjection> inject(
        std::int64_t code, const std::shared_ptr<const URLSession>& session = nullptr,
        RequestMatcher matches = nullptr);

    ~URLConnectionFailureInjection();
    URLConnectionFailureInjection(const URLConnectionFailureInjection&) = delete;
    URLConnectionFailureInjection& operator=(const URLConnectionFailureInjection&) = delete;

    std::int64_t code() const { return code_; }
    // How many attempts this injection failed so far.
    std::uint64_t interceptedAttempts() const { return intercepted_.load(); }

    // The code to fail an attempt of session for request with, when an injection applies
    // (and counts it); for the transport.
    static std::optional<std::int64_t> interceptAttempt(const URLSession* session,
                                                        const URLRequest& request);

  private:
    struct Private {};

  public:
    URLConnectionFailureInjection(Private, std::int64_t code, const URLSession* session,
                                  RequestMatcher matches);

  private:
    const std::int64_t code_;
    const URLSession* const session_;  // identity only, never dereferenced
    const RequestMatcher matches_;
    std::atomic<std::uint64_t> intercepted_{0};
};

}  // namespace vn
