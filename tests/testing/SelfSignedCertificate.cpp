#include "testing/SelfSignedCertificate.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

extern char** environ;

namespace vn::testing {
namespace {

std::filesystem::path makeTemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vn-tls-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) {
        throw std::runtime_error("cannot make a folder for the TLS certificate: " +
                                 std::string(std::strerror(errno)));
    }
    return pattern;
}

std::string fileText(const std::filesystem::path& path) {
    std::ifstream stream(path);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// Runs a command with its standard output and error going to `log`; returns its exit status,
// or -1 when it could not be started or did not exit normally.
int runCommand(std::vector<std::string> arguments, const std::filesystem::path& log) {
    std::vector<char*> argv;
    for (auto& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, log.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    pid_t child = -1;
    const int spawned = ::posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) return -1;

    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

SelfSignedCertificate::SelfSignedCertificate()
    : folder_(makeTemporaryFolder()),
      certificate_(folder_ / "certificate.pem"),
      key_(folder_ / "key.pem") {
    const auto log = folder_ / "openssl.log";
    const int status =
        runCommand({"openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2",
                    "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout",
                    key_.string(), "-out", certificate_.string()},
                   log);
    if (status != 0) {
        const std::string output = fileText(log);
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
        throw std::runtime_error("openssl could not make the test certificate (exit status " +
                                 std::to_string(status) + "): " + output);
    }
}

SelfSignedCertificate::~SelfSignedCertificate() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

}  // namespace vn::testing
