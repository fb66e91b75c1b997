#include "vn/network/URLConnectionFailureInjection.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <vector>

namespace vn {
namespace {

struct Registry {
    std::mutex mutex;
    std::vector<URLConnectionFailureInjection*> injections;  // oldest first
};

Registry& registry() {
    static Registry* const instance = new Registry;  // used by the transport until exit
    return *instance;
}

}  // namespace

URLConnectionFailureInjection::URLConnectionFailureInjection(Private, std::int64_t code,
                                                             const URLSession* session,
                                                             RequestMatcher matches)
    : code_(code), session_(session), matches_(std::move(matches)) {}

std::shared_ptr<URLConnectionFailureInjection> URLConnectionFailureInjection::inject(
    std::int64_t code, const std::shared_ptr<const URLSession>& session, RequestMatcher matches) {
    auto injection = std::make_shared<URLConnectionFailureInjection>(Private{}, code, session.get(),
                                                                     std::move(matches));
    std::lock_guard lock(registry().mutex);
    registry().injections.push_back(injection.get());
    return injection;
}

URLConnectionFailureInjection::~URLConnectionFailureInjection() {
    std::lock_guard lock(registry().mutex);
    std::erase(registry().injections, this);
}

std::optional<std::int64_t> URLConnectionFailureInjection::interceptAttempt(
    const URLSession* session, const URLRequest& request) {
    std::lock_guard lock(registry().mutex);
    auto& injections = registry().injections;
    for (auto it = injections.rbegin(); it != injections.rend(); ++it) {
        URLConnectionFailureInjection& injection = **it;
        if (injection.session_ && injection.session_ != session) continue;
        if (injection.matches_ && !injection.matches_(request)) continue;
        ++injection.intercepted_;
        return injection.code_;
    }
    return std::nullopt;
}

}  // namespace vn
