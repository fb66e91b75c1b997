// The connections of the loopback HTTP server. The server lets the HTTP library parse
// requests and write responses, but reads and writes the connection itself: so it sees each
// request's header block exactly as sent (the library keeps fields sorted by name and
// percent-decodes their values), it knows every socket it serves (so stopping wakes every
// thread at once instead of waiting for time-outs), and its writes never raise SIGPIPE on
// plain connections. Internal to the loopback HTTP server (the header includes httplib.h).
#pragma once

#include <httplib.h>
#include <openssl/ssl.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <set>
#include <string>
#include <string_view>

namespace vn::testing {

// Every socket the server is serving, so that stopping can shut all of them down at once.
// Thread-safe.
class ConnectionRegistry {
  public:
    // Takes a socket in; once stopped, shuts it down at once instead.
    void add(int socket);
    // Forgets the socket and closes it. Both happen under the registry's lock, so stopAll()
    // never shuts down a descriptor number already reused by someone else.
    void close(int socket);
    // Shuts down (both directions) every registered socket and every one added later, which
    // ends every blocked read, write and wait on them. Irreversible.
    void stopAll();
    [[nodiscard]] bool stopping() const;

  private:
    mutable std::mutex mutex_;
    std::set<int> sockets_;
    bool stopping_ = false;
};

// One accepted connection, plain or TLS, seen by the HTTP library as its Stream. Reads are
// buffered (the library reads header lines a byte at a time) and the bytes of each request's
// header block are kept as they arrive. Waits give up after the given time-out. Used by one
// thread at a time.
class LoopbackConnection final : public httplib::Stream {
  public:
    // ssl: an SSL object whose handshake on socket has completed, or null for plain HTTP.
    // Neither the socket nor the SSL object is owned.
    LoopbackConnection(int socket, SSL* ssl, std::chrono::milliseconds timeout);

    // The connection the calling thread is serving (see CurrentConnectionScope), or null.
    [[nodiscard]] static LoopbackConnection* current();

    // Waits up to timeout for the first byte of a next request; false when nothing came.
    // A closed or failed connection counts as ready: the next read reports it.
    [[nodiscard]] bool waitForRequest(std::chrono::milliseconds timeout) const;
    // Starts keeping the bytes of a new request's header block.
    void beginRequest();
    // The request line and header fields read so far for the current request, up to and
    // including the empty line that ends them.
    [[nodiscard]] std::string_view requestHead() const { return head_; }
    // Shuts the socket down (both directions): the client sees the connection end, and
    // every later read or write here fails.
    void shutDown();

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* data, size_t size) override;
    ssize_t write(const char* data, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return socket_; }

  private:
    [[nodiscard]] bool waitFor(short events, std::chrono::milliseconds timeout) const;
    [[nodiscard]] bool hasBufferedBytes() const;
    ssize_t fill();
    void keepHeadBytes(const char* data, std::size_t size);

    int socket_;
    SSL* ssl_;
    std::chrono::milliseconds timeout_;
    std::array<char, 16 * 1024> buffer_;
    std::size_t bufferBegin_ = 0;
    std::size_t bufferEnd_ = 0;
    std::string head_;
    bool headComplete_ = true;
};

// Makes a connection LoopbackConnection::current() on this thread for its lifetime.
class CurrentConnectionScope {
  public:
    explicit CurrentConnectionScope(LoopbackConnection& connection);
    ~CurrentConnectionScope();
    CurrentConnectionScope(const CurrentConnectionScope&) = delete;
    CurrentConnectionScope& operator=(const CurrentConnectionScope&) = delete;

  private:
    LoopbackConnection* previous_;
};

}  // namespace vn::testing
