// One request as the loopback HTTP server received it, kept so that tests can check what a
// client sent (method, target, header fields, body) and in which order.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vn::testing {

struct RecordedRequest {
    std::string method;  // "GET"
    std::string path;    // "/bytes": the target before any "?", as sent (not percent-decoded)
    std::string query;   // "size=10": the target after the first "?", as sent; empty when none
    // Header fields exactly as sent, in wire order: name as written, value without the
    // blanks around it, nothing decoded, repeated fields kept.
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;     // empty when the method carries none (see LoopbackHTTPServer)
    int remotePort = -1;  // the client's port: equal ports mean one reused connection

    // The first value of the named field, the name compared case-insensitively (ASCII).
    [[nodiscard]] std::optional<std::string> header(std::string_view name) const;
    // Every value of the named field, in wire order (name compared as in header()).
    [[nodiscard]] std::vector<std::string> headerValues(std::string_view name) const;
};

}  // namespace vn::testing
