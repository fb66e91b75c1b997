#include "vn/network/VNUndocumentedConfig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <thread>
#include <vector>

#include "vn/platform/Bundle.h"

namespace vn {
namespace {

using Seconds = std::chrono::duration<double>;

// Puts the main bundle's dictionary back and forgets what was read, whatever the test did.
class BundleRestorer {
  public:
    BundleRestorer() : saved_(Bundle::main().infoDictionary()) { VNUndocumentedConfig::reset(); }
    ~BundleRestorer() {
        Bundle::main().setInfoDictionary(saved_);
        VNUndocumentedConfig::reset();
    }

  private:
    Value::Dictionary saved_;
};

void setTimeoutInfo(Value value) {
    Value::Dictionary info = Bundle::main().infoDictionary();
    info.erase(std::string(VNUndocumentedConfig::localNetworkPermissionTimeoutKey));
    if (!value.isNil())
        info[std::string(VNUndocumentedConfig::localNetworkPermissionTimeoutKey)] = value;
    Bundle::main().setInfoDictionary(std::move(info));
}

TEST(VNUndocumentedConfig, TimeOutIsAPositiveFiniteNumberOrThirtySeconds) {
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        const char* what;
        Value value;
        double seconds;
    } cases[] = {
        {"absent", Value(), 30},
        {"null marker", Value::null(), 30},
        {"zero", 0, 30},
        {"zero double", 0.0, 30},
        {"negative", -5, 30},
        {"negative fraction", -0.25, 30},
        {"positive integer", 12, 12},
        {"positive fraction", 0.5, 0.5},
        {"unsigned", 7u, 7},
        {"infinite", infinity, 30},
        {"not a number", std::nan(""), 30},
        {"boolean", true, 30},
        {"numeric text", "45", 45},
        {"fraction text", "2.5", 2.5},
        {"exponent text", "1e1", 10},
        {"zero text", "0", 30},
        {"negative text", "-3", 30},
        {"word", "soon", 30},
        {"number then word", "5s", 30},
        {"blank around", " 5", 30},
        {"empty text", "", 30},
        {"infinity text", "inf", 30},
        {"data", Data{'5'}, 30},
        {"array", Value::Array{Value(5)}, 30},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(VNUndocumentedConfig::localNetworkPermissionTimeoutFromInfo(c.value),
                  Seconds(c.seconds));
    }
}

TEST(VNUndocumentedConfig, MainBundleValueIsReadOnceUntilReset) {
    const BundleRestorer restorer;
    const struct {
        Value info;
        double seconds;
    } cases[] = {{Value(), 30}, {0, 30}, {-1, 30}, {2.5, 2.5}, {"8", 8}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.info.description());
        setTimeoutInfo(c.info);
        VNUndocumentedConfig::reset();
        EXPECT_EQ(VNUndocumentedConfig::localNetworkPermissionTimeout(), Seconds(c.seconds));
        setTimeoutInfo(99);
        EXPECT_EQ(VNUndocumentedConfig::localNetworkPermissionTimeout(), Seconds(c.seconds));
    }
}

TEST(VNUndocumentedConfig, ConcurrentFirstReadsAgree) {
    const BundleRestorer restorer;
    setTimeoutInfo(3);
    std::vector<double> seen(8);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < seen.size(); ++i) {
        threads.emplace_back([&seen, i] {
            seen[i] = VNUndocumentedConfig::localNetworkPermissionTimeout().count();
        });
    }
    setTimeoutInfo(4);
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(std::set<double>(seen.begin(), seen.end()).size(), 1u);
    EXPECT_EQ(VNUndocumentedConfig::localNetworkPermissionTimeout().count(), seen.front());
}

}  // namespace
}  // namespace vn
