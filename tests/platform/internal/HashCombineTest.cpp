#include "platform/internal/HashCombine.h"

#include <gtest/gtest.h>

#include <set>

namespace vn::platform_internal {
namespace {

TEST(HashCombine, DistinguishesOrderAndNeighbouringValues) {
    // Every ordered pair of small values (the hashes of small integers are the integers
    // themselves) must give a hash of its own, so that {a, b} and {b, a} and near neighbours
    // land in different buckets.
    std::set<std::size_t> hashes;
    constexpr std::size_t kValues = 64;
    for (const std::size_t seed : {std::size_t{0}, std::size_t{12345}}) {
        hashes.clear();
        for (std::size_t a = 0; a < kValues; ++a) {
            for (std::size_t b = 0; b < kValues; ++b) {
                hashes.insert(hashCombine(hashCombine(seed, a), b));
            }
        }
        EXPECT_EQ(hashes.size(), kValues * kValues) << "seed " << seed;
    }
    static_assert(hashCombine(0, 0) != 0, "combining changes even a zero seed");
}

}  // namespace
}  // namespace vn::platform_internal
