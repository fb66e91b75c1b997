#include "testing/RawTestClient.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace vn::testing {
namespace {

[[noreturn]] void throwSystemError(const std::string& what, int error) {
    throw std::runtime_error(what + ": " + std::strerror(error));
}

sockaddr_in loopbackAddress(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    return address;
}

int connectSocket(int socket, int port) {
    const sockaddr_in address = loopbackAddress(port);
    while (::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        if (errno != EINTR) return errno;
    }
    return 0;
}

}  // namespace

RawTestClient::RawTestClient(int port, std::chrono::milliseconds receiveTimeout)
    : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    if (!socket_.valid()) throwSystemError("cannot create a socket", errno);
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(receiveTimeout);
    const timeval timeout{static_cast<time_t>(seconds.count()),
                          static_cast<suseconds_t>((receiveTimeout - seconds).count() * 1000)};
    ::setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof(timeout));
    if (const int error = connectSocket(socket_.get(), port); error != 0) {
        throwSystemError("cannot connect to 127.0.0.1:" + std::to_string(port), error);
    }
}

void RawTestClient::send(std::string_view data) {
    if (!sendAll(socket_.get(), data)) throwSystemError("cannot send", errno);
}

long RawTestClient::receiveSome() {
    std::array<char, 64 * 1024> buffer;
    long count = 0;
    do {
        count = ::recv(socket_.get(), buffer.data(), buffer.size(), 0);
    } while (count < 0 && errno == EINTR);
    if (count > 0) pending_.append(buffer.data(), static_cast<std::size_t>(count));
    return count;
}

std::string RawTestClient::readThrough(std::string_view marker) {
    std::size_t found = pending_.find(marker);
    while (found == std::string::npos) {
        const long count = receiveSome();
        if (count == 0) throw std::runtime_error("connection ended before the awaited bytes");
        if (count < 0) throwSystemError("receive failed before the awaited bytes", errno);
        found = pending_.find(marker);
    }
    std::string result = pending_.substr(0, found + marker.size());
    pending_.erase(0, found + marker.size());
    return result;
}

std::string RawTestClient::readExactly(std::size_t count) {
    while (pending_.size() < count) {
        const long received = receiveSome();
        if (received == 0) throw std::runtime_error("connection ended before the awaited bytes");
        if (received < 0) throwSystemError("receive failed before the awaited bytes", errno);
    }
    std::string result = pending_.substr(0, count);
    pending_.erase(0, count);
    return result;
}

RawTestClient::Ending RawTestClient::readToEnd() {
    for (;;) {
        const long count = receiveSome();
        const int error = count < 0 ? errno : 0;
        if (count <= 0) return {std::exchange(pending_, {}), error};
    }
}

int connectErrorTo(int port) {
    FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!socket.valid()) throwSystemError("cannot create a socket", errno);
    return connectSocket(socket.get(), port);
}

std::size_t openDescriptorCount() {
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    // The iterator's own descriptor is among the entries; it is the same for every count.
    return static_cast<std::size_t>(std::distance(entries, std::filesystem::directory_iterator{}));
}

}  // namespace vn::testing
