// Helpers shared by the network tests: loading a request and waiting for its one completion
// with a deadline, reading a response's status and body.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "vn/network/URLSession.h"

namespace vn::testing {

inline constexpr auto kDeadline = std::chrono::seconds(30);

struct LoadResult {
    std::optional<Data> data;
    URLResponsePtr response;
    ErrorPtr error;

    long status() const {
        const auto http = std::dynamic_pointer_cast<const HTTPURLResponse>(response);
        return http ? static_cast<long>(http->statusCode()) : 0;
    }
    std::string body() const {
        return data ? std::string(data->begin(), data->end()) : std::string();
    }
    std::int64_t errorCode() const { return error ? error->code() : 0; }
};

// Polls condition until it holds or timeout passes; returns whether it holds.
inline bool eventually(const std::function<bool()>& condition,
                       std::chrono::milliseconds timeout =
                           std::chrono::duration_cast<std::chrono::milliseconds>(kDeadline)) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

inline URLRequest requestFor(const std::string& url) {
    return URLRequest(*URL::URLWithString(url));
}

// Runs a data task for request on session and waits for its completion (which must come once).
inline LoadResult load(const URLSessionPtr& session, const URLRequest& request) {
    auto promise = std::make_shared<std::promise<LoadResult>>();
    auto future = promise->get_future();
    session
        ->dataTaskWithRequest(
            request,
            [promise](std::optional<Data> data, URLResponsePtr response, ErrorPtr error) {
                promise->set_value({std::move(data), std::move(response), std::move(error)});
            })
        ->resume();
    if (future.wait_for(kDeadline) != std::future_status::ready)
        return {std::nullopt, nullptr, nullptr};
    return future.get();
}

inline LoadResult load(const URLSessionPtr& session, const std::string& url) {
    return load(session, requestFor(url));
}

inline URLSessionPtr plainSession() {
    return URLSession::sessionWithConfiguration(
        URLSessionConfiguration::defaultSessionConfiguration());
}

}  // namespace vn::testing
