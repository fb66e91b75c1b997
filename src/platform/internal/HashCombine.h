// Mixing several hashes into one, for the hash() of composite values (values, decimals,
// geometries). Internal to the library: never installed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vn::platform_internal {

// The seed with value's hash mixed in. Order matters: combining a then b differs from b then
// a. The sum goes through a full 64-bit mix (two multiply-xorshift rounds) rather than the
// classic "seed ^ (value + 0x9e3779b9 + (seed << 6) + (seed >> 2))", which collides on pairs
// of small values (the hashes of small integers are the integers themselves).
[[nodiscard]] constexpr std::size_t hashCombine(std::size_t seed, std::size_t value) {
    std::uint64_t x = static_cast<std::uint64_t>(seed) + 0x9e3779b97f4a7c15ULL + value;
    x ^= x >> 32;
    x *= 0xe9846af9b1a615dULL;
    x ^= x >> 32;
    x *= 0xe9846af9b1a615dULL;
    x ^= x >> 28;
    return static_cast<std::size_t>(x);
}

}  // namespace vn::platform_internal
