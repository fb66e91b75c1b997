// A raw-socket server on 127.0.0.1 for protocol faults an HTTP library cannot be made to
// produce: a reset in the middle of a body, a malformed status line, bytes that are not HTTP,
// a request never answered, a connection closed without an answer. One behaviour per
// instance, applied to every connection. Also closedLoopbackPort() for "cannot connect" tests.
// Only the standard library and POSIX.
//
// Each accepted connection gets a thread that first reads the request: the header block up to
// the empty line, then as many body bytes as its Content-Length says (a chunked request body is
// not read). Then the behaviour runs. A client that never finishes its request keeps its
// thread waiting until the server is destroyed.
//
// Thread safety: every member may be called from any thread at once, except the destructor.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace vn::testing {

class RawLoopbackServer {
  public:
    enum class Behaviour {
        // Answers "HTTP/1.1 200 OK" with Content-Length: 100000, sends the first 1000 body
        // bytes (byte i = 'a' + i % 26), waits until the client's system has acknowledged
        // them, then resets the connection (SO_LINGER 0, close). The client reads the 1000
        // bytes, then gets ECONNRESET.
        resetMidBody,
        // Answers "HTTP/1.1 abc OK\r\nContent-Length: 0\r\n\r\n", then closes.
        malformedStatus,
        // Answers "this is not HTTP\r\n" followed by bytes 0x01 0x02 0x03 and an empty line,
        // then closes.
        garbage,
        // Reads the request and keeps the connection open without a byte until the server is
        // destroyed (or the client closes).
        neverAnswer,
        // Reads the request and closes (FIN) without a byte.
        closeWithoutAnswer,
    };

    // Listening on 127.0.0.1 on a free port when it returns; throws std::runtime_error when
    // the system refuses a socket, port, pipe or thread.
    explicit RawLoopbackServer(Behaviour behaviour);
    // Stops accepting, shuts every open connection down, closes every socket and joins every
    // thread; returns without waiting for any time-out.
    ~RawLoopbackServer();
    RawLoopbackServer(const RawLoopbackServer&) = delete;
    RawLoopbackServer& operator=(const RawLoopbackServer&) = delete;

    [[nodiscard]] int port() const;
    // "http://127.0.0.1:PORT" + pathAndQuery.
    [[nodiscard]] std::string url(std::string_view pathAndQuery = "/") const;

    [[nodiscard]] std::size_t connectionsAccepted() const;
    // Waits until at least count connections have been accepted; false on timeout.
    [[nodiscard]] bool waitForConnections(std::size_t count,
                                          std::chrono::milliseconds timeout) const;
    // Requests read completely (the behaviour runs right after).
    [[nodiscard]] std::size_t requestsRead() const;
    // Waits until at least count requests have been read completely; false on timeout.
    [[nodiscard]] bool waitForRequestsRead(std::size_t count,
                                           std::chrono::milliseconds timeout) const;

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

// A port on 127.0.0.1 on which nothing listens (a socket bound to it, then closed), for
// "cannot connect" tests. Another program could take the port in between; tests on this
// machine do not. Throws std::runtime_error when no socket can be had.
[[nodiscard]] int closedLoopbackPort();

}  // namespace vn::testing
