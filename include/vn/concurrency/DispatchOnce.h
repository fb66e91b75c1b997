// vn::DispatchOnce: runs a block exactly once per token, however many threads ask at once;
// callers that arrive while the block runs wait for it to finish. The block must not ask the
// same token again (that deadlocks, as on the platform).
#pragma once

#include <mutex>
#include <utility>

namespace vn {

class DispatchOnce {
  public:
    DispatchOnce() = default;
    DispatchOnce(const DispatchOnce&) = delete;
    DispatchOnce& operator=(const DispatchOnce&) = delete;

    template <typename F>
    void operator()(F&& block) {
        std::call_once(flag_, std::forward<F>(block));
    }

  private:
    std::once_flag flag_;
};

// dispatch_once: dispatchOnce(token, [] { ... }).
template <typename F>
void dispatchOnce(DispatchOnce& token, F&& block) {
    token(std::forward<F>(block));
}

}  // namespace vn
