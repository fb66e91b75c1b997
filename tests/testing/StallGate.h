// Where the loopback HTTP server's stalling routes wait. Requests are numbered in arrival
// order; releasing lets every request numbered so far go on, whether it is already waiting or
// reaches its stall later, so a test that releases right after seeing a request arrive never
// races the handler to its waiting point. Stopping lets every waiter go for good.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>

namespace vn::testing {

class StallGate {
  public:
    enum class Outcome { released, stopping, timedOut };
    using Deadline = std::chrono::steady_clock::time_point;

    // Blocks the handler of request number `request` until that request is released, the
    // gate stops, or the deadline (when given) passes. Thread-safe.
    Outcome wait(std::size_t request, std::optional<Deadline> deadline = {});
    // Releases every request numbered below `requestCount`. Never takes a release back.
    void releaseBelow(std::size_t requestCount);
    // Lets every present and future waiter go at once. Irreversible.
    void stop();

  private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t releasedBelow_ = 0;
    bool stopping_ = false;
};

}  // namespace vn::testing
