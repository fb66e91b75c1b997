// A real HTTP/2 server on 127.0.0.1 for the network tests: nghttp2's `nghttpd` (Debian's
// nghttp2-server, found through PATH) serving a folder of files over TLS with a certificate the
// object makes, in a child process that the destructor ends. nghttpd speaks HTTP/2 only, so a
// client that gets an answer from it has spoken HTTP/2. With echoUploads, a request with a body
// gets that body back.
#pragma once

#include <sys/types.h>
#include <filesystem>
#include <string>

#include "testing/SelfSignedCertificate.h"

namespace vn::testing {

class Http2LoopbackServer {
  public:
    // Starts nghttpd and returns once it accepts connections. Throws std::runtime_error when
    // nghttpd cannot be started or does not listen within the tests' deadline.
    explicit Http2LoopbackServer(bool echoUploads = false);
    ~Http2LoopbackServer();
    Http2LoopbackServer(const Http2LoopbackServer&) = delete;
    Http2LoopbackServer& operator=(const Http2LoopbackServer&) = delete;

    // Writes a file the server then serves at "/<name>".
    void addFile(const std::string& name, const std::string& contents) const;
    // "https://127.0.0.1:<port><path>".
    [[nodiscard]] std::string url(const std::string& path) const;
    // The CA file a client must trust to accept the server's certificate.
    [[nodiscard]] std::filesystem::path caCertificatePath() const {
        return certificate_.certificatePath();
    }

  private:
    [[nodiscard]] bool startOn(int port, bool echoUploads);
    void stop();

    SelfSignedCertificate certificate_;
    std::filesystem::path documents_;
    pid_t child_ = -1;
    int port_ = 0;
};

}  // namespace vn::testing
