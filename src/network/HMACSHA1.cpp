#include "network/HMACSHA1.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/sha.h>

#include <climits>

namespace vn::network_internal {

std::optional<SHA1Digest> hmacSHA1(std::string_view key, std::string_view message) {
    const auto* keyBytes = reinterpret_cast<const unsigned char*>(key.data());
    std::size_t keyLength = key.size();
    // OpenSSL takes the key's length as an int. HMAC replaces a key longer than the hash's
    // block by its hash anyway, so hashing a giant key here first gives the same result.
    std::array<unsigned char, SHA_DIGEST_LENGTH> hashedKey{};
    if (keyLength > static_cast<std::size_t>(INT_MAX)) {
        SHA1(keyBytes, keyLength, hashedKey.data());
        keyBytes = hashedKey.data();
        keyLength = hashedKey.size();
    }
    SHA1Digest digest{};
    unsigned int digestLength = 0;
    const unsigned char* result = HMAC(EVP_sha1(), keyBytes, static_cast<int>(keyLength),
                                       reinterpret_cast<const unsigned char*>(message.data()),
                                       message.size(), digest.data(), &digestLength);
    if (!result || digestLength != digest.size()) return std::nullopt;
    return digest;
}

}  // namespace vn::network_internal
