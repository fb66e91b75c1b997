#include "testing/LoopbackConnection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <utility>

namespace vn::testing {
namespace {

// Longer header blocks are cut here; the HTTP library refuses lines beyond 8 KiB anyway.
constexpr std::size_t kMaximumHeadBytes = 64 * 1024;

thread_local LoopbackConnection* currentConnection = nullptr;

void describeAddress(const sockaddr_in& address, std::string& ip, int& port) {
    std::array<char, INET_ADDRSTRLEN> text{};
    ip = ::inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size()) ? text.data() : "";
    port = ntohs(address.sin_port);
}

void describeEnd(int socket, bool peer, std::string& ip, int& port) {
    sockaddr_in address{};
    socklen_t length = sizeof(address);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    const int result =
        peer ? ::getpeername(socket, generic, &length) : ::getsockname(socket, generic, &length);
    if (result != 0 || address.sin_family != AF_INET) {
        ip.clear();
        port = -1;
        return;
    }
    describeAddress(address, ip, port);
}

// Where the empty line ending a header block ends, accepting bare LF line ends as the HTTP
// library does.
std::size_t headEnd(std::string_view head) {
    const auto crlf = head.find("\r\n\r\n");
    const auto lf = head.find("\n\n");
    if (crlf == std::string_view::npos && lf == std::string_view::npos)
        return std::string_view::npos;
    if (lf == std::string_view::npos || (crlf != std::string_view::npos && crlf < lf)) {
        return crlf + 4;
    }
    return lf + 2;
}

}  // namespace

void ConnectionRegistry::add(int socket) {
    std::lock_guard lock(mutex_);
    sockets_.insert(socket);
    if (stopping_) ::shutdown(socket, SHUT_RDWR);
}

void ConnectionRegistry::close(int socket) {
    std::lock_guard lock(mutex_);
    sockets_.erase(socket);
    ::close(socket);
}

void ConnectionRegistry::stopAll() {
    std::lock_guard lock(mutex_);
    stopping_ = true;
    for (const int socket : sockets_) ::shutdown(socket, SHUT_RDWR);
}

bool ConnectionRegistry::stopping() const {
    std::lock_guard lock(mutex_);
    return stopping_;
}

LoopbackConnection::LoopbackConnection(int socket, SSL* ssl, std::chrono::milliseconds timeout)
    : socket_(socket), ssl_(ssl), timeout_(timeout) {}

LoopbackConnection* LoopbackConnection::current() {
    return currentConnection;
}

bool LoopbackConnection::waitForRequest(std::chrono::milliseconds timeout) const {
    return hasBufferedBytes() || waitFor(POLLIN, timeout);
}

void LoopbackConnection::beginRequest() {
    head_.clear();
    headComplete_ = false;
}

void LoopbackConnection::shutDown() {
    ::shutdown(socket_, SHUT_RDWR);
}

bool LoopbackConnection::is_readable() const {
    return hasBufferedBytes() || waitFor(POLLIN, timeout_);
}

bool LoopbackConnection::is_writable() const {
    return waitFor(POLLOUT, timeout_);
}

ssize_t LoopbackConnection::read(char* data, size_t size) {
    if (bufferBegin_ == bufferEnd_) {
        const ssize_t filled = fill();
        if (filled <= 0) return filled;
    }
    const std::size_t count = std::min(size, bufferEnd_ - bufferBegin_);
    std::memcpy(data, buffer_.data() + bufferBegin_, count);
    bufferBegin_ += count;
    keepHeadBytes(data, count);
    return static_cast<ssize_t>(count);
}

ssize_t LoopbackConnection::write(const char* data, size_t size) {
    if (ssl_) {
        const int written =
            SSL_write(ssl_, data, static_cast<int>(std::min<size_t>(size, INT_MAX)));
        return written > 0 ? written : -1;
    }
    if (!waitFor(POLLOUT, timeout_)) return -1;
    ssize_t sent = 0;
    do {
        sent = ::send(socket_, data, size, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent;
}

void LoopbackConnection::get_remote_ip_and_port(std::string& ip, int& port) const {
    describeEnd(socket_, true, ip, port);
}

void LoopbackConnection::get_local_ip_and_port(std::string& ip, int& port) const {
    describeEnd(socket_, false, ip, port);
}

bool LoopbackConnection::waitFor(short events, std::chrono::milliseconds timeout) const {
    pollfd watched{socket_, events, 0};
    int result = 0;
    do {
        result = ::poll(&watched, 1, static_cast<int>(timeout.count()));
    } while (result < 0 && errno == EINTR);
    return result > 0;
}

bool LoopbackConnection::hasBufferedBytes() const {
    return bufferBegin_ < bufferEnd_ || (ssl_ && SSL_pending(ssl_) > 0);
}

// Returns what the socket or TLS layer returned: bytes read, 0 at the end, -1 on failure.
ssize_t LoopbackConnection::fill() {
    bufferBegin_ = bufferEnd_ = 0;
    if (ssl_) {
        if (SSL_pending(ssl_) == 0 && !waitFor(POLLIN, timeout_)) return -1;
        const int count = SSL_read(ssl_, buffer_.data(), static_cast<int>(buffer_.size()));
        if (count > 0) bufferEnd_ = static_cast<std::size_t>(count);
        if (count > 0) return count;
        return SSL_get_error(ssl_, count) == SSL_ERROR_ZERO_RETURN ? 0 : -1;
    }
    if (!waitFor(POLLIN, timeout_)) return -1;
    ssize_t count = 0;
    do {
        count = ::recv(socket_, buffer_.data(), buffer_.size(), 0);
    } while (count < 0 && errno == EINTR);
    if (count > 0) bufferEnd_ = static_cast<std::size_t>(count);
    return count;
}

void LoopbackConnection::keepHeadBytes(const char* data, std::size_t size) {
    if (headComplete_) return;
    // The end marker may straddle the previous read: look back three bytes.
    const std::size_t searchFrom = head_.size() < 3 ? 0 : head_.size() - 3;
    head_.append(data, size);
    const std::size_t end = headEnd(std::string_view(head_).substr(searchFrom));
    if (end != std::string_view::npos) {
        head_.resize(searchFrom + end);
        headComplete_ = true;
    } else if (head_.size() > kMaximumHeadBytes) {
        headComplete_ = true;
    }
}

CurrentConnectionScope::CurrentConnectionScope(LoopbackConnection& connection)
    : previous_(std::exchange(currentConnection, &connection)) {}

CurrentConnectionScope::~CurrentConnectionScope() {
    currentConnection = previous_;
}

}  // namespace vn::testing
