// POSIX socket helpers shared by the loopback test servers and their test client: an owning
// descriptor, a listening socket on 127.0.0.1, a send without SIGPIPE, and the byte pattern of
// generated bodies. Only the standard library and POSIX; nothing here touches any address
// other than 127.0.0.1.
#pragma once

#include <cstddef>
#include <string_view>

namespace vn::testing {

// Owns one file descriptor and closes it on destruction. Movable, not copyable.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept;
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor();

    [[nodiscard]] int get() const { return descriptor_; }
    [[nodiscard]] bool valid() const { return descriptor_ >= 0; }
    // Closes the descriptor now (idempotent).
    void reset();

  private:
    int descriptor_ = -1;
};

// Listen backlog of every loopback server: enough for every connection a test opens at once,
// so a burst never waits for SYN retries.
inline constexpr int kLoopbackListenBacklog = 128;

// A TCP socket bound to 127.0.0.1 on a port the system picks, listening with
// kLoopbackListenBacklog. Throws std::runtime_error (with errno's text) when
// the system refuses.
[[nodiscard]] FileDescriptor listenOnLoopback();

// The local port a socket is bound to. Throws std::runtime_error when it has none.
[[nodiscard]] int localPortOf(int socket);

// Writes all of data to a socket without raising SIGPIPE. Returns false when the peer is gone
// or the socket fails.
[[nodiscard]] bool sendAll(int socket, std::string_view data);

// The byte at offset i of every generated test body: 'a' + i % 26.
[[nodiscard]] constexpr char patternByte(unsigned long long offset) {
    return static_cast<char>('a' + offset % 26);
}

}  // namespace vn::testing
