#include "testing/LoopbackSocket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace vn::testing {
namespace {

[[noreturn]] void throwSystemError(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

std::optional<sockaddr_in> localAddress(int socket) {
    sockaddr_in address{};
    socklen_t length = sizeof(address);
    if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0 ||
        address.sin_family != AF_INET) {
        return std::nullopt;
    }
    return address;
}

}  // namespace

FileDescriptor::FileDescriptor(FileDescriptor&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)) {}

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
        reset();
        descriptor_ = std::exchange(other.descriptor_, -1);
    }
    return *this;
}

FileDescriptor::~FileDescriptor() {
    reset();
}

void FileDescriptor::reset() {
    if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
}

FileDescriptor listenOnLoopback() {
    FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!socket.valid()) throwSystemError("cannot create a loopback socket");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        throwSystemError("cannot bind to 127.0.0.1");
    }
    if (::listen(socket.get(), kLoopbackListenBacklog) != 0)
        throwSystemError("cannot listen on 127.0.0.1");
    return socket;
}

int localPortOf(int socket) {
    const auto address = localAddress(socket);
    if (!address) throwSystemError("socket has no local IPv4 address");
    return ntohs(address->sin_port);
}

bool sendAll(int socket, std::string_view data) {
    while (!data.empty()) {
        const ssize_t sent = ::send(socket, data.data(), data.size(), MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) continue;
        if (sent <= 0) return false;
        data.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

}  // namespace vn::testing
