// A blocking TCP client on 127.0.0.1 for tests that must see the bytes on the wire (framing,
// headers before a body, a reset) rather than what an HTTP library makes of them. Every read
// gives up after a receive time-out, so a server that never answers fails the test instead of
// hanging it.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "testing/LoopbackSocket.h"

namespace vn::testing {

class RawTestClient {
  public:
    // How a read to the end finished: what arrived, then 0 for an orderly close (EOF) or the
    // errno of the failure (ECONNRESET for a reset, EAGAIN for the receive time-out).
    struct Ending {
        std::string received;
        int error = 0;
    };

    // Connects to 127.0.0.1:port. Throws std::runtime_error with errno's text on failure.
    explicit RawTestClient(int port,
                           std::chrono::milliseconds receiveTimeout = std::chrono::seconds(30));

    // Sends all of data; throws std::runtime_error when the connection fails.
    void send(std::string_view data);
    // Reads until `marker` has arrived and returns everything up to and including it; what
    // arrived after the marker stays for the next read. Throws std::runtime_error when the
    // connection ends or times out first.
    std::string readThrough(std::string_view marker);
    // Reads exactly count bytes (after anything left over); throws like readThrough.
    std::string readExactly(std::size_t count);
    // Reads until the connection ends, fails or times out.
    Ending readToEnd();
    // Closes the connection now.
    void close() { socket_.reset(); }

  private:
    // One recv into pending_; returns its result (errno kept on failure).
    long receiveSome();

    FileDescriptor socket_;
    std::string pending_;
};

// Tries to connect to 127.0.0.1:port; returns 0 on success, else the connect errno.
[[nodiscard]] int connectErrorTo(int port);

// Number of descriptors this process has open (entries of /proc/self/fd).
[[nodiscard]] std::size_t openDescriptorCount();

}  // namespace vn::testing
