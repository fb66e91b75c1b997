// vn::URLSessionConfiguration: the settings a URL session loads with. A plain value: a session
// copies it when it is created, so changing a configuration afterwards changes no session.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

namespace vn {

class URLSessionConfiguration {
  public:
    // The platform's defaults: request time-out 60 s, resource time-out 7 days, no waiting
    // for connectivity, no additional header fields, 6 connections per host.
    static URLSessionConfiguration defaultSessionConfiguration() { return {}; }

    // The longest a task may wait for the next bytes (connecting included) before it fails
    // with -1001. Zero or negative means the default.
    std::chrono::duration<double> timeoutIntervalForRequest{60.0};
    // The longest a whole task may take, redirects and waiting for connectivity included,
    // before it fails with -1001. Zero or negative means the default.
    std::chrono::duration<double> timeoutIntervalForResource{7.0 * 24 * 3600};
    // When true, a connection attempt that fails for lack of connectivity (-1009) is tried
    // again, with a growing pause between attempts, until it succeeds or the resource
    // time-out passes.
    bool waitsForConnectivity = false;
    // Header fields added to every request that does not set the same field itself (names
    // compare without regard to case).
    std::map<std::string, std::string> HTTPAdditionalHeaders;
    // Connections a session opens at once to one host and port; further tasks for it wait.
    // Values below 1 count as 1.
    long HTTPMaximumConnectionsPerHost = 6;
    // A PEM file of certificate authorities to trust instead of the system's trust store (for
    // hosts with private certificates and for tests). Absent: the system's store.
    std::optional<std::string> trustedCertificatesFile;
};

}  // namespace vn
