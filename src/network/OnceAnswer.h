// OnceAnswer: the object behind a completion handler given to a delegate. The first call
// delivers its value; later calls do nothing; if every copy of the handler is dropped
// uncalled, the fallback is delivered, so that a careless delegate cannot strand a task.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

namespace vn::network_internal {

template <typename T>
class OnceAnswer {
  public:
    OnceAnswer(std::function<void(T)> deliver, T fallback)
        : deliver_(std::move(deliver)), fallback_(std::move(fallback)) {}
    ~OnceAnswer() { answer(std::move(fallback_)); }
    OnceAnswer(const OnceAnswer&) = delete;
    OnceAnswer& operator=(const OnceAnswer&) = delete;

    void answer(T value) {
        if (!answered_.exchange(true)) deliver_(std::move(value));
    }

    // A copyable handler that answers through answer.
    static std::function<void(T)> handler(std::shared_ptr<OnceAnswer> answer) {
        return [answer = std::move(answer)](T value) { answer->answer(std::move(value)); };
    }

  private:
    std::function<void(T)> deliver_;
    T fallback_;
    std::atomic<bool> answered_{false};
};

}  // namespace vn::network_internal
