// HMAC-SHA1 (RFC 2104) on OpenSSL, for the OAuth signature and its benchmark.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vn::network_internal {

inline constexpr std::size_t kSHA1DigestLength = 20;
using SHA1Digest = std::array<std::uint8_t, kSHA1DigestLength>;

// The 20-byte HMAC-SHA1 of the message's bytes under the key's bytes; absent only when
// OpenSSL refuses to compute it (SHA-1 disabled by its configuration).
std::optional<SHA1Digest> hmacSHA1(std::string_view key, std::string_view message);

}  // namespace vn::network_internal
