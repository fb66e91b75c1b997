// A throw-away TLS identity for the loopback HTTPS server: an RSA key and a self-signed
// certificate for 127.0.0.1 (common name and subjectAltName IP:127.0.0.1), made by the
// `openssl` command in a temporary folder of its own that is removed with the object. The
// certificate is its own CA: clients trust the server by loading certificatePath() as CA file.
#pragma once

#include <filesystem>

namespace vn::testing {

class SelfSignedCertificate {
  public:
    // Runs `openssl req -x509 ...` (found through PATH). Throws std::runtime_error with the
    // command's output when the folder cannot be made or the command fails.
    SelfSignedCertificate();
    ~SelfSignedCertificate();
    SelfSignedCertificate(const SelfSignedCertificate&) = delete;
    SelfSignedCertificate& operator=(const SelfSignedCertificate&) = delete;

    // PEM certificate (also the CA file clients should trust).
    [[nodiscard]] const std::filesystem::path& certificatePath() const { return certificate_; }
    // PEM private key, unencrypted.
    [[nodiscard]] const std::filesystem::path& keyPath() const { return key_; }

  private:
    std::filesystem::path folder_;
    std::filesystem::path certificate_;
    std::filesystem::path key_;
};

}  // namespace vn::testing
