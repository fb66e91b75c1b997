// A real HTTP/1.1 (or HTTPS) server on 127.0.0.1 for the network tests, with fixed routes for
// statuses, redirects, large and stalled bodies, echoes and never-answered requests. It
// records every request and lets tests wait, with deadlines, for requests and for body bytes
// to have left it. cpp-httplib parses the requests and writes the responses on a pool of
// worker threads, one connection per worker at a time; the server reads and writes the
// connections itself, so it records header fields exactly as sent and its destructor never
// waits for a time-out. It depends only on the standard library, cpp-httplib, OpenSSL and
// POSIX, so any test program may link it (target vn_testing_http).
//
// Routes (same behaviour for GET, HEAD, POST, PUT, PATCH, DELETE and OPTIONS; HEAD gets the
// GET headers without the body; every response carries Content-Length unless it is chunked):
//   /status/<code>             that status (200-599), body "status <code>", text/plain;
//                              204 and 304 have no body.
//   /redirect/<code>?to=<loc>  status <code> (300-399), Location = the percent-decoded `to`
//                              verbatim (absolute or relative), body "redirect". Encode "+" in
//                              `to` as %2B: a bare "+" decodes to a space.
//   /redirect-chain/<n>        n > 0: 302 to "/redirect-chain/<n-1>"; n == 0: 200 "done".
//   /loop                      302 to "/loop".
//   /bytes?size=N[&chunked=1][&stall_after=M][&type=T]
//                              N bytes, byte i being 'a' + i % 26, written in 64 KiB pieces
//                              as they are sent (never N bytes in memory), Content-Type T
//                              (default application/octet-stream); chunked transfer when
//                              chunked=1. With stall_after=M < N it sends M bytes, then waits
//                              until released (or the server is destroyed) and then ends the
//                              connection without sending the rest.
//   /text?body=<b>&type=<t>    body b with Content-Type t (default text/plain; charset=utf-8).
//   /echo                      200, Content-Type = the request's (default
//                              application/octet-stream), body = the request body,
//                              "X-Echo-Method: <method>", "X-Echo-Query: <raw query>".
//   /slow-first-byte?ms=N      answers 200 "slow" after N ms, or sooner when released.
//   /never                     answers nothing; when released, the server shuts the
//                              connection down without a byte.
//   /headers-then-stall        sends status 200 and headers with Content-Length 10, then no
//                              body byte until released; then sends "abcdefghij". On
//                              destruction it ends the connection without the body.
//   anything else              404 "no route for <path>"; bad parameters give 400.
// Bytes written by /bytes and /headers-then-stall count towards bodyBytesSent().
// Request bodies (with Content-Length or chunked) are read for POST, PUT, PATCH and for DELETE
// with Content-Length: the HTTP library takes no body on other methods. "Expect: 100-continue"
// is answered with "100 Continue". Responses are never compressed unless
// Options::compression is set; then text and JSON responses are gzip- or brotli-encoded when
// the client accepts it.
//
// Releasing: releaseStalls() lets every request that has arrived so far go past its stall,
// whether it is already waiting or reaches the stall later; requests arriving afterwards stall
// again. So `waitForRequest(...)` then `releaseStalls()` never races the handler.
//
// Side effect: the server's threads block SIGPIPE (a write to a closed connection fails with
// EPIPE instead of killing the process); the process's signal disposition is left alone.
//
// Note for tests that use cpp-httplib's own client: it percent-decodes the values of response
// header fields ("%2F" in a Location reads as "/"); RawTestClient shows them as sent.
//
// Thread safety: every member may be called from any thread at once, except the destructor.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The raw fault server and closedLoopbackPort() come with this header, so that one include
// gives a network test every loopback server.
#include "testing/RawLoopbackServer.h"
#include "testing/RecordedRequest.h"

namespace vn::testing {

class LoopbackHTTPServer {
  public:
    struct Options {
        bool https = false;        // serve TLS with a fresh self-signed certificate
        int threads = 32;          // connections served at once (each stalled handler holds one)
        bool compression = false;  // let the HTTP library compress text responses
    };

    // Listening on 127.0.0.1 on a free port when it returns. Throws std::invalid_argument when
    // threads < 1, std::runtime_error when the port, the certificate or the threads cannot be
    // had. (Two constructors rather than a default argument: a nested struct's member
    // initialisers cannot serve as a default argument inside the enclosing class.)
    LoopbackHTTPServer();
    explicit LoopbackHTTPServer(Options options);
    // Releases every stalled or never-answered handler, shuts every open connection down,
    // stops accepting and joins all threads; returns without waiting for any time-out. With
    // https, removes the certificate's folder.
    ~LoopbackHTTPServer();
    LoopbackHTTPServer(const LoopbackHTTPServer&) = delete;
    LoopbackHTTPServer& operator=(const LoopbackHTTPServer&) = delete;

    [[nodiscard]] int port() const;
    // "http://127.0.0.1:PORT", or "https://127.0.0.1:PORT" with Options::https.
    [[nodiscard]] std::string baseURL() const;
    // baseURL() + pathAndQuery (which should start with "/").
    [[nodiscard]] std::string url(std::string_view pathAndQuery) const;
    // With https: the PEM certificate clients must trust (CA file). Empty without https.
    [[nodiscard]] std::string caCertificatePath() const;

    // Every request in arrival order; a request is recorded once its body has been read and
    // before its route runs.
    [[nodiscard]] std::vector<RecordedRequest> requests() const;
    [[nodiscard]] std::size_t requestCount() const;
    // Waits until some recorded request (including earlier ones) satisfies predicate; false
    // when the timeout passes first. The predicate runs under the server's lock: keep it short
    // and do not call the server from it.
    [[nodiscard]] bool waitForRequest(const std::function<bool(const RecordedRequest&)>& predicate,
                                      std::chrono::milliseconds timeout) const;
    // Waits until at least count requests have been recorded; false on timeout.
    [[nodiscard]] bool waitForRequestCount(std::size_t count,
                                           std::chrono::milliseconds timeout) const;

    // Body bytes written to clients by /bytes and /headers-then-stall since construction or
    // the last resetCounters(). A byte counts once the socket (or TLS layer) accepted it.
    [[nodiscard]] std::uint64_t bodyBytesSent() const;
    // Waits until bodyBytesSent() >= bytes; false on timeout.
    [[nodiscard]] bool waitForBodyBytesSent(std::uint64_t bytes,
                                            std::chrono::milliseconds timeout) const;
    // Sets bodyBytesSent() back to zero; recorded requests are kept.
    void resetCounters();

    // Lets every request recorded so far go past its stall (/bytes with stall_after, /never,
    // /slow-first-byte, /headers-then-stall), now or when it reaches it.
    void releaseStalls();

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace vn::testing
