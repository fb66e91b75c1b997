#include "testing/RawLoopbackServer.h"

#include <fcntl.h>
#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include "testing/LoopbackSocket.h"

namespace vn::testing {
namespace {

constexpr std::size_t kMaximumHeaderBytes = 64 * 1024;
constexpr std::size_t kResetBodyLength = 100000;
constexpr std::size_t kResetBodyBytesSent = 1000;
// How long a reset waits for the client's system to acknowledge the bytes sent before it.
constexpr auto kAcknowledgementDeadline = std::chrono::seconds(5);
constexpr int kAcknowledgementPollMilliseconds = 1;

constexpr std::string_view kMalformedStatusAnswer = "HTTP/1.1 abc OK\r\nContent-Length: 0\r\n\r\n";
constexpr std::string_view kGarbageAnswer = "this is not HTTP\r\n\x01\x02\x03\r\n\r\n";

std::string lowercased(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

// The Content-Length of a header block (request line included), 0 when absent or unreadable.
std::size_t contentLength(std::string_view headerBlock) {
    const std::string lower = lowercased(headerBlock);
    constexpr std::string_view kField = "\r\ncontent-length:";
    const auto field = lower.find(kField);
    if (field == std::string::npos) return 0;
    std::size_t position = field + kField.size();
    while (position < lower.size() && (lower[position] == ' ' || lower[position] == '\t')) {
        ++position;
    }
    std::size_t length = 0;
    std::from_chars(lower.data() + position, lower.data() + lower.size(), length);
    return length;
}

std::string resetMidBodyAnswer() {
    std::string answer =
        "HTTP/1.1 200 OK\r\nContent-Type: application/octet-stream\r\n"
        "Content-Length: " +
        std::to_string(kResetBodyLength) + "\r\n\r\n";
    for (std::size_t i = 0; i < kResetBodyBytesSent; ++i) answer.push_back(patternByte(i));
    return answer;
}

}  // namespace

class RawLoopbackServer::Impl {
  public:
    explicit Impl(Behaviour behaviour);
    ~Impl();

    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] std::size_t connectionsAccepted() const;
    [[nodiscard]] bool waitForConnections(std::size_t count,
                                          std::chrono::milliseconds timeout) const;
    [[nodiscard]] std::size_t requestsRead() const;
    [[nodiscard]] bool waitForRequestsRead(std::size_t count,
                                           std::chrono::milliseconds timeout) const;

  private:
    enum class Wait { ready, woken, failed };

    void acceptConnections();
    void serve(int connection);
    // Waits until the socket has the given events or the server is being destroyed.
    Wait waitFor(int socket, short events, int timeoutMilliseconds = -1) const;
    bool readRequest(int connection);
    bool sendAnswer(int connection, std::string_view answer);
    void waitUntilAcknowledged(int connection);
    void waitForPeerCloseOrDestruction(int connection);
    void closeConnection(int connection, bool reset);
    void countRequestRead();

    const Behaviour behaviour_;
    const FileDescriptor listener_;
    const int port_;
    // Written once by the destructor and never drained, so every poll on it wakes for good.
    FileDescriptor wakeRead_;
    FileDescriptor wakeWrite_;

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::size_t accepted_ = 0;
    std::size_t requestsRead_ = 0;
    std::set<int> openConnections_;
    std::vector<std::thread> connectionThreads_;
    std::thread acceptor_;
};

RawLoopbackServer::Impl::Impl(Behaviour behaviour)
    : behaviour_(behaviour), listener_(listenOnLoopback()), port_(localPortOf(listener_.get())) {
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("cannot make a pipe: " + std::string(std::strerror(errno)));
    }
    wakeRead_ = FileDescriptor(pipe[0]);
    wakeWrite_ = FileDescriptor(pipe[1]);
    acceptor_ = std::thread([this] { acceptConnections(); });
}

RawLoopbackServer::Impl::~Impl() {
    const char wake = 'w';
    while (::write(wakeWrite_.get(), &wake, 1) < 0 && errno == EINTR) {
    }
    acceptor_.join();
    std::vector<std::thread> threads;
    {
        std::lock_guard lock(mutex_);
        for (const int connection : openConnections_) ::shutdown(connection, SHUT_RDWR);
        threads.swap(connectionThreads_);
    }
    for (auto& thread : threads) thread.join();
}

void RawLoopbackServer::Impl::acceptConnections() {
    while (waitFor(listener_.get(), POLLIN) == Wait::ready) {
        const int connection = ::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) continue;
        {
            std::lock_guard lock(mutex_);
            ++accepted_;
            openConnections_.insert(connection);
            connectionThreads_.emplace_back([this, connection] { serve(connection); });
        }
        changed_.notify_all();
    }
}

void RawLoopbackServer::Impl::serve(int connection) {
    if (!readRequest(connection)) return closeConnection(connection, false);
    countRequestRead();
    switch (behaviour_) {
        case Behaviour::resetMidBody:
            if (sendAnswer(connection, resetMidBodyAnswer())) waitUntilAcknowledged(connection);
            return closeConnection(connection, true);
        case Behaviour::malformedStatus:
            sendAnswer(connection, kMalformedStatusAnswer);
            return closeConnection(connection, false);
        case Behaviour::garbage:
            sendAnswer(connection, kGarbageAnswer);
            return closeConnection(connection, false);
        case Behaviour::neverAnswer:
            waitForPeerCloseOrDestruction(connection);
            return closeConnection(connection, false);
        case Behaviour::closeWithoutAnswer:
            return closeConnection(connection, false);
    }
}

RawLoopbackServer::Impl::Wait RawLoopbackServer::Impl::waitFor(int socket, short events,
                                                               int timeoutMilliseconds) const {
    std::array<pollfd, 2> watched{{{socket, events, 0}, {wakeRead_.get(), POLLIN, 0}}};
    for (;;) {
        const int result = ::poll(watched.data(), watched.size(), timeoutMilliseconds);
        if (result < 0 && errno == EINTR) continue;
        if (result < 0) return Wait::failed;
        if (watched[1].revents != 0) return Wait::woken;
        // A time-out counts as ready: the caller looks at the socket again itself.
        return Wait::ready;
    }
}

bool RawLoopbackServer::Impl::readRequest(int connection) {
    std::string received;
    std::optional<std::size_t> requestLength;
    while (!requestLength || received.size() < *requestLength) {
        if (waitFor(connection, POLLIN) != Wait::ready) return false;
        std::array<char, 16 * 1024> buffer{};
        const ssize_t count = ::recv(connection, buffer.data(), buffer.size(), 0);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        received.append(buffer.data(), static_cast<std::size_t>(count));
        if (!requestLength) {
            const auto headerEnd = received.find("\r\n\r\n");
            if (headerEnd == std::string::npos) {
                if (received.size() > kMaximumHeaderBytes) return false;
                continue;
            }
            requestLength =
                headerEnd + 4 + contentLength(std::string_view(received).substr(0, headerEnd));
        }
    }
    return true;
}

bool RawLoopbackServer::Impl::sendAnswer(int connection, std::string_view answer) {
    // Answers are a few kilobytes at most: they fit the socket buffer, so send never blocks
    // for long, and the destructor's shutdown ends any wait anyway.
    return sendAll(connection, answer);
}

void RawLoopbackServer::Impl::waitUntilAcknowledged(int connection) {
    // A reset makes the client's system drop whatever it has not received yet; waiting for the
    // acknowledgement guarantees the client sees the bytes sent before the reset.
    const auto deadline = std::chrono::steady_clock::now() + kAcknowledgementDeadline;
    int unacknowledged = 0;
    while (::ioctl(connection, SIOCOUTQ, &unacknowledged) == 0 && unacknowledged > 0 &&
           std::chrono::steady_clock::now() < deadline) {
        if (waitFor(wakeRead_.get(), POLLIN, kAcknowledgementPollMilliseconds) == Wait::woken) {
            return;
        }
    }
}

void RawLoopbackServer::Impl::waitForPeerCloseOrDestruction(int connection) {
    while (waitFor(connection, POLLIN) == Wait::ready) {
        std::array<char, 4096> discarded{};
        const ssize_t count = ::recv(connection, discarded.data(), discarded.size(), 0);
        if (count == 0 || (count < 0 && errno != EINTR)) return;
    }
}

void RawLoopbackServer::Impl::closeConnection(int connection, bool reset) {
    // Closing under the lock keeps the destructor from shutting down a descriptor number
    // that has already been reused.
    std::lock_guard lock(mutex_);
    openConnections_.erase(connection);
    if (reset) {
        const linger immediately{1, 0};
        ::setsockopt(connection, SOL_SOCKET, SO_LINGER, &immediately, sizeof(immediately));
    }
    ::close(connection);
}

void RawLoopbackServer::Impl::countRequestRead() {
    {
        std::lock_guard lock(mutex_);
        ++requestsRead_;
    }
    changed_.notify_all();
}

std::size_t RawLoopbackServer::Impl::connectionsAccepted() const {
    std::lock_guard lock(mutex_);
    return accepted_;
}

bool RawLoopbackServer::Impl::waitForConnections(std::size_t count,
                                                 std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, timeout, [&] { return accepted_ >= count; });
}

std::size_t RawLoopbackServer::Impl::requestsRead() const {
    std::lock_guard lock(mutex_);
    return requestsRead_;
}

bool RawLoopbackServer::Impl::waitForRequestsRead(std::size_t count,
                                                  std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, timeout, [&] { return requestsRead_ >= count; });
}

RawLoopbackServer::RawLoopbackServer(Behaviour behaviour)
    : impl_(std::make_unique<Impl>(behaviour)) {}

RawLoopbackServer::~RawLoopbackServer() = default;

int RawLoopbackServer::port() const {
    return impl_->port();
}

std::string RawLoopbackServer::url(std::string_view pathAndQuery) const {
    return "http://127.0.0.1:" + std::to_string(impl_->port()) + std::string(pathAndQuery);
}

std::size_t RawLoopbackServer::connectionsAccepted() const {
    return impl_->connectionsAccepted();
}

bool RawLoopbackServer::waitForConnections(std::size_t count,
                                           std::chrono::milliseconds timeout) const {
    return impl_->waitForConnections(count, timeout);
}

std::size_t RawLoopbackServer::requestsRead() const {
    return impl_->requestsRead();
}

bool RawLoopbackServer::waitForRequestsRead(std::size_t count,
                                            std::chrono::milliseconds timeout) const {
    return impl_->waitForRequestsRead(count, timeout);
}

int closedLoopbackPort() {
    FileDescriptor socket = listenOnLoopback();
    return localPortOf(socket.get());
}

}  // namespace vn::testing
