#include "testing/Http2LoopbackServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include "testing/LoopbackSocket.h"

extern char** environ;

namespace vn::testing {
namespace {

constexpr auto kStartDeadline = std::chrono::seconds(30);
constexpr int kPortAttempts = 5;

// A port that was free a moment ago. nghttpd takes a port number rather than a socket, so the
// port can be taken by someone else before nghttpd binds it: the caller retries.
int probablyFreePort() {
    const FileDescriptor probe = listenOnLoopback();
    return localPortOf(probe.get());
}

bool acceptsConnections(int port) {
    const FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!socket.valid()) return false;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool hasExited(pid_t child) {
    int status = 0;
    return waitpid(child, &status, WNOHANG) == child;
}

}  // namespace

Http2LoopbackServer::Http2LoopbackServer(bool echoUploads)
    : documents_(certificate_.certificatePath().parent_path() / "htdocs") {
    std::filesystem::create_directory(documents_);
    for (int attempt = 0; attempt < kPortAttempts; ++attempt) {
        if (startOn(probablyFreePort(), echoUploads)) return;
    }
    throw std::runtime_error(
        "nghttpd did not start listening on 127.0.0.1 (is nghttp2-server "
        "installed?)");
}

Http2LoopbackServer::~Http2LoopbackServer() {
    stop();
}

bool Http2LoopbackServer::startOn(int port, bool echoUploads) {
    std::vector<std::string> arguments{"nghttpd",
                                       "--address=127.0.0.1",
                                       "--htdocs=" + documents_.string(),
                                       std::to_string(port),
                                       certificate_.keyPath().string(),
                                       certificate_.certificatePath().string()};
    if (echoUploads) arguments.insert(arguments.begin() + 1, "--echo-upload");
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    if (posix_spawnp(&child_, "nghttpd", nullptr, nullptr, argv.data(), environ) != 0) {
        child_ = -1;
        return false;
    }
    const auto deadline = std::chrono::steady_clock::now() + kStartDeadline;
    while (std::chrono::steady_clock::now() < deadline) {
        if (acceptsConnections(port)) {
            port_ = port;
            return true;
        }
        if (hasExited(child_)) {
            child_ = -1;
            return false;
        }
        std::this_thread::yield();
    }
    stop();
    return false;
}

void Http2LoopbackServer::stop() {
    if (child_ < 0) return;
    kill(child_, SIGTERM);
    int status = 0;
    waitpid(child_, &status, 0);
    child_ = -1;
}

void Http2LoopbackServer::addFile(const std::string& name, const std::string& contents) const {
    std::ofstream(documents_ / name, std::ios::binary) << contents;
}

std::string Http2LoopbackServer::url(const std::string& path) const {
    return "https://127.0.0.1:" + std::to_string(port_) + path;
}

}  // namespace vn::testing
