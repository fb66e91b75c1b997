#include "testing/StallGate.h"

#include <algorithm>

namespace vn::testing {

StallGate::Outcome StallGate::wait(std::size_t request, std::optional<Deadline> deadline) {
    std::unique_lock lock(mutex_);
    const auto mayGo = [&] { return stopping_ || request < releasedBelow_; };
    if (deadline) {
        if (!changed_.wait_until(lock, *deadline, mayGo)) return Outcome::timedOut;
    } else {
        changed_.wait(lock, mayGo);
    }
    return stopping_ ? Outcome::stopping : Outcome::released;
}

void StallGate::releaseBelow(std::size_t requestCount) {
    {
        std::lock_guard lock(mutex_);
        releasedBelow_ = std::max(releasedBelow_, requestCount);
    }
    changed_.notify_all();
}

void StallGate::stop() {
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_all();
}

}  // namespace vn::testing
