#include "testing/LoopbackHTTPServer.h"

#include <netinet/in.h>
#include <netinet/tcp.h>

#include <httplib.h>
#include <pthread.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <utility>

#include "testing/LoopbackConnection.h"
#include "testing/LoopbackSocket.h"
#include "testing/SelfSignedCertificate.h"
#include "testing/StallGate.h"

// cpp-httplib is a shared library built without the thread sanitizer, which therefore misses
// its synchronisation (a function-local static one worker initialises and others then read)
// yet sees its memcpy and memcmp calls, and reports races that do not exist. Ignoring what the
// sanitizer intercepts from inside that library keeps every access of this program's own code,
// handlers included, checked. Read only by the thread sanitizer's runtime.
extern "C" const char* __tsan_default_suppressions() {
    return "called_from_lib:libcpp-httplib.so\n";
}

namespace vn::testing {
namespace {

constexpr std::size_t kPieceSize = 64 * 1024;
constexpr std::size_t kPatternPeriod = 26;
constexpr char kDefaultBytesType[] = "application/octet-stream";
constexpr char kDefaultTextType[] = "text/plain; charset=utf-8";
constexpr char kHeadersThenStallBody[] = "abcdefghij";
// Far beyond any test: the destructor shuts connections down itself, so no test ever waits
// for these, and a slow (sanitized) client never loses its connection to them.
constexpr auto kConnectionTimeout = std::chrono::seconds(60);
constexpr std::size_t kRequestsPerConnection = 10000;

// One period more than a piece, so the piece starting at offset o is the slice at o % 26.
const std::string& patternBuffer() {
    static const std::string buffer = [] {
        std::string bytes(kPieceSize + kPatternPeriod, '\0');
        for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = patternByte(i);
        return bytes;
    }();
    return buffer;
}

const char* patternAt(std::uint64_t offset) {
    return patternBuffer().data() + offset % kPatternPeriod;
}

std::optional<std::uint64_t> parseUnsigned(std::string_view text) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

std::optional<int> statusCodeWithin(std::string_view text, int lowest, int highest) {
    const auto value = parseUnsigned(text);
    if (!value || *value < static_cast<std::uint64_t>(lowest) ||
        *value > static_cast<std::uint64_t>(highest)) {
        return std::nullopt;
    }
    return static_cast<int>(*value);
}

std::optional<std::string> parameter(const httplib::Request& request, const char* name) {
    if (!request.has_param(name)) return std::nullopt;
    return request.get_param_value(name);
}

std::string_view rawQuery(const httplib::Request& request) {
    const std::string_view target = request.target;
    const auto question = target.find('?');
    return question == std::string_view::npos ? std::string_view{} : target.substr(question + 1);
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// The fields of a header block as sent: its lines after the request line, each split at its
// first colon, the value without surrounding blanks.
std::vector<std::pair<std::string, std::string>> headerFields(std::string_view head) {
    std::vector<std::pair<std::string, std::string>> fields;
    bool requestLine = true;
    while (!head.empty()) {
        const auto lineEnd = head.find('\n');
        std::string_view line = head.substr(0, lineEnd);
        head.remove_prefix(lineEnd == std::string_view::npos ? head.size() : lineEnd + 1);
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (std::exchange(requestLine, false)) continue;
        if (line.empty()) break;
        const auto colon = line.find(':');
        if (colon == std::string_view::npos) continue;
        fields.emplace_back(std::string(line.substr(0, colon)),
                            std::string(trimmed(line.substr(colon + 1))));
    }
    return fields;
}

RecordedRequest recordOf(const httplib::Request& request, std::string_view head) {
    RecordedRequest recorded;
    recorded.method = request.method;
    const std::string_view target = request.target;
    recorded.path = std::string(target.substr(0, target.find('?')));
    recorded.query = std::string(rawQuery(request));
    recorded.headers = headerFields(head);
    recorded.body = request.body;
    recorded.remotePort = request.remote_port;
    return recorded;
}

void respondText(httplib::Response& response, int status, const std::string& body) {
    response.status = status;
    response.set_content(body, "text/plain");
}

void respondBadRequest(httplib::Response& response, const std::string& reason) {
    respondText(response, 400, "bad request: " + reason);
}

// Worker threads inherit the mask of the thread that creates them, so blocking SIGPIPE in the
// listening thread covers every write of the server (TLS writes use plain write(), which
// raises it) without touching the process's handlers.
void blockSIGPIPEInThisThread() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

struct SSLDeleter {
    void operator()(SSL* ssl) const { SSL_free(ssl); }
};

// The HTTP library's server with the connections served by LoopbackConnection (see there
// why) and a listen backlog for bursts of test connections (the library's is 5: a burst would
// wait a second for SYN retries). Base is httplib::Server or httplib::SSLServer.
template <class Base>
class LoopbackLibraryServer final : public Base {
  public:
    template <class... Arguments>
    explicit LoopbackLibraryServer(ConnectionRegistry& registry, Arguments&&... arguments)
        : Base(std::forward<Arguments>(arguments)...), registry_(registry) {}

    // Binds to 127.0.0.1 on a free port and listens; -1 when the system refuses.
    int bindToLoopback() {
        const int port = this->bind_to_any_port("127.0.0.1");
        if (port >= 0) ::listen(this->svr_sock_, kLoopbackListenBacklog);
        return port;
    }

  private:
    static constexpr bool kTLS = std::is_base_of_v<httplib::SSLServer, Base>;

    // Called by the library on a worker thread for every accepted socket.
    bool process_and_close_socket(socket_t socket) override {
        registry_.add(socket);
        // Headers and body leave in separate writes: without this, Nagle's algorithm holds the
        // second until the client's delayed acknowledgement, 40 ms per response on loopback.
        const int on = 1;
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        if constexpr (kTLS) {
            const std::unique_ptr<SSL, SSLDeleter> ssl(SSL_new(this->ssl_context()));
            if (ssl && SSL_set_fd(ssl.get(), socket) == 1 && SSL_accept(ssl.get()) == 1) {
                serve(socket, ssl.get());
                SSL_shutdown(ssl.get());
            }
        } else {
            serve(socket, nullptr);
        }
        registry_.close(socket);
        return true;
    }

    void serve(int socket, SSL* ssl) {
        LoopbackConnection connection(socket, ssl, kConnectionTimeout);
        const CurrentConnectionScope scope(connection);
        const auto setUp = [ssl](httplib::Request& request) { request.ssl = ssl; };
        for (std::size_t served = 1; served <= kRequestsPerConnection; ++served) {
            if (registry_.stopping() || !connection.waitForRequest(kConnectionTimeout)) return;
            connection.beginRequest();
            bool clientClosed = false;
            const bool lastRequest = served == kRequestsPerConnection;
            if (!this->process_request(connection, lastRequest, clientClosed, setUp) ||
                clientClosed) {
                return;
            }
        }
    }

    ConnectionRegistry& registry_;
};

struct BoundLibraryServer {
    std::unique_ptr<httplib::Server> server;
    int port = -1;
};

template <class Base, class... Arguments>
BoundLibraryServer bindLibraryServer(ConnectionRegistry& registry, Arguments... arguments) {
    auto server = std::make_unique<LoopbackLibraryServer<Base>>(registry, arguments...);
    if (!server->is_valid()) {
        throw std::runtime_error("the HTTP library cannot serve with the test certificate");
    }
    const int port = server->bindToLoopback();
    if (port < 0) throw std::runtime_error("cannot bind an HTTP server to 127.0.0.1");
    return {std::move(server), port};
}

// What /bytes sends: size pattern bytes, stopping for a release after stallAfter of them.
struct PatternBody {
    std::uint64_t size = 0;
    std::optional<std::uint64_t> stallAfter;
    bool chunked = false;
    std::size_t request = 0;
};

}  // namespace

class LoopbackHTTPServer::Impl {
  public:
    explicit Impl(Options options);
    ~Impl();

    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] bool https() const { return options_.https; }
    [[nodiscard]] std::string caCertificatePath() const {
        return certificate_ ? certificate_->certificatePath().string() : std::string();
    }
    [[nodiscard]] std::vector<RecordedRequest> requests() const;
    [[nodiscard]] std::size_t requestCount() const;
    [[nodiscard]] bool waitForRequest(const std::function<bool(const RecordedRequest&)>& predicate,
                                      std::chrono::milliseconds timeout) const;
    [[nodiscard]] bool waitForRequestCount(std::size_t count,
                                           std::chrono::milliseconds timeout) const;
    [[nodiscard]] std::uint64_t bodyBytesSent() const;
    [[nodiscard]] bool waitForBodyBytesSent(std::uint64_t bytes,
                                            std::chrono::milliseconds timeout) const;
    void resetCounters();
    void releaseStalls() { gate_.releaseBelow(requestCount()); }

  private:
    // One request on its way through a route; argument is the path after the route's prefix.
    struct Exchange {
        std::size_t number;
        const httplib::Request& request;
        httplib::Response& response;
        std::string_view argument;
    };
    struct Route {
        std::string_view path;
        bool isPrefix;
        void (Impl::*serve)(const Exchange&);
    };

    static Options validated(Options options);
    static BoundLibraryServer makeLibraryServer(ConnectionRegistry& registry,
                                                const SelfSignedCertificate* certificate);
    void configureLibraryServer();
    void startListening();
    void handle(const httplib::Request& request, httplib::Response& response);
    std::size_t record(const httplib::Request& request);
    void countBodyBytes(std::size_t count);
    bool writePatternPiece(const PatternBody& body, std::uint64_t offset, httplib::DataSink& sink);

    void serveStatus(const Exchange& exchange);
    void serveRedirect(const Exchange& exchange);
    void serveRedirectChain(const Exchange& exchange);
    void serveLoop(const Exchange& exchange);
    void serveBytes(const Exchange& exchange);
    void serveText(const Exchange& exchange);
    void serveEcho(const Exchange& exchange);
    void serveSlowFirstByte(const Exchange& exchange);
    void serveNever(const Exchange& exchange);
    void serveHeadersThenStall(const Exchange& exchange);

    static constexpr std::array<Route, 10> kRoutes{{
        {"/status/", true, &Impl::serveStatus},
        {"/redirect/", true, &Impl::serveRedirect},
        {"/redirect-chain/", true, &Impl::serveRedirectChain},
        {"/loop", false, &Impl::serveLoop},
        {"/bytes", false, &Impl::serveBytes},
        {"/text", false, &Impl::serveText},
        {"/echo", false, &Impl::serveEcho},
        {"/slow-first-byte", false, &Impl::serveSlowFirstByte},
        {"/never", false, &Impl::serveNever},
        {"/headers-then-stall", false, &Impl::serveHeadersThenStall},
    }};

    const Options options_;
    const std::unique_ptr<SelfSignedCertificate> certificate_;
    ConnectionRegistry connections_;
    BoundLibraryServer library_;
    const int port_;
    StallGate gate_;

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::vector<RecordedRequest> requests_;
    std::uint64_t bodyBytesSent_ = 0;
    bool listening_ = false;
    bool listenerFinished_ = false;
    std::string listenerFailure_;
    std::thread listener_;
};

LoopbackHTTPServer::Impl::Impl(Options options)
    : options_(validated(options)),
      certificate_(options.https ? std::make_unique<SelfSignedCertificate>() : nullptr),
      library_(makeLibraryServer(connections_, certificate_.get())),
      port_(library_.port) {
    configureLibraryServer();
    startListening();
}

LoopbackHTTPServer::Impl::~Impl() {
    gate_.stop();
    // Ends every keep-alive wait, blocked read or blocked write at once; the library's
    // workers then finish and its listener, stopped next, joins them.
    connections_.stopAll();
    library_.server->stop();
    listener_.join();
}

BoundLibraryServer LoopbackHTTPServer::Impl::makeLibraryServer(
    ConnectionRegistry& registry, const SelfSignedCertificate* certificate) {
    if (!certificate) return bindLibraryServer<httplib::Server>(registry);
    return bindLibraryServer<httplib::SSLServer>(registry, certificate->certificatePath().c_str(),
                                                 certificate->keyPath().c_str());
}

LoopbackHTTPServer::Options LoopbackHTTPServer::Impl::validated(Options options) {
    if (options.threads < 1) {
        throw std::invalid_argument("LoopbackHTTPServer needs at least one thread");
    }
    return options;
}

void LoopbackHTTPServer::Impl::configureLibraryServer() {
    auto& server = *library_.server;
    // The library applies these to accepted sockets (SO_RCVTIMEO, SO_SNDTIMEO) and announces
    // the keep-alive ones in responses; the connections themselves keep to the same values.
    server.set_read_timeout(kConnectionTimeout);
    server.set_write_timeout(kConnectionTimeout);
    server.set_keep_alive_timeout(kConnectionTimeout.count());
    server.set_keep_alive_max_count(kRequestsPerConnection);
    const httplib::Server::Handler handler = [this](const httplib::Request& request,
                                                    httplib::Response& response) {
        handle(request, response);
    };
    server.Get(".*", handler)
        .Post(".*", handler)
        .Put(".*", handler)
        .Patch(".*", handler)
        .Delete(".*", handler)
        .Options(".*", handler);
    // The library makes its task queue once it runs, so this says the server is serving.
    server.new_task_queue = [this] {
        auto pool =
            std::make_unique<httplib::ThreadPool>(static_cast<std::size_t>(options_.threads));
        {
            std::lock_guard lock(mutex_);
            listening_ = true;
        }
        changed_.notify_all();
        return pool.release();  // the library owns its task queue
    };
}

void LoopbackHTTPServer::Impl::startListening() {
    listener_ = std::thread([this] {
        blockSIGPIPEInThisThread();
        std::string failure;
        try {
            library_.server->listen_after_bind();
        } catch (const std::exception& error) {
            failure = error.what();
        }
        {
            std::lock_guard lock(mutex_);
            listenerFinished_ = true;
            listenerFailure_ = std::move(failure);
        }
        changed_.notify_all();
    });
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return listening_ || listenerFinished_; });
    if (listening_) return;
    const std::string failure = listenerFailure_;
    lock.unlock();
    listener_.join();
    throw std::runtime_error("the HTTP server could not start serving: " + failure);
}

void LoopbackHTTPServer::Impl::handle(const httplib::Request& request,
                                      httplib::Response& response) {
    const std::size_t number = record(request);
    const std::string_view path = request.path;
    const auto route = std::find_if(kRoutes.begin(), kRoutes.end(), [&](const Route& candidate) {
        return candidate.isPrefix ? path.starts_with(candidate.path) : path == candidate.path;
    });
    if (route == kRoutes.end()) {
        respondText(response, 404, "no route for " + request.path);
    } else {
        (this->*(route->serve))({number, request, response, path.substr(route->path.size())});
    }
    if (!options_.compression) {
        // The library chooses the response's encoding from the request's Accept-Encoding
        // after the handler returns. The request is the library's own non-const object,
        // handed to handlers as const; dropping the field keeps bodies as the routes wrote them.
        const_cast<httplib::Request&>(request).headers.erase("Accept-Encoding");
    }
}

std::size_t LoopbackHTTPServer::Impl::record(const httplib::Request& request) {
    const LoopbackConnection* connection = LoopbackConnection::current();
    RecordedRequest recorded = recordOf(request, connection ? connection->requestHead() : "");
    std::size_t number = 0;
    {
        std::lock_guard lock(mutex_);
        number = requests_.size();
        requests_.push_back(std::move(recorded));
    }
    changed_.notify_all();
    return number;
}

void LoopbackHTTPServer::Impl::countBodyBytes(std::size_t count) {
    {
        std::lock_guard lock(mutex_);
        bodyBytesSent_ += count;
    }
    changed_.notify_all();
}

// Returning false makes the library end the connection without the rest of the body.
bool LoopbackHTTPServer::Impl::writePatternPiece(const PatternBody& body, std::uint64_t offset,
                                                 httplib::DataSink& sink) {
    if (body.stallAfter && offset >= *body.stallAfter) {
        gate_.wait(body.request);
        return false;
    }
    if (offset >= body.size) {
        sink.done();
        return true;
    }
    const std::uint64_t end = body.stallAfter.value_or(body.size);
    const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(kPieceSize, end - offset));
    if (!sink.write(patternAt(offset), length)) return false;
    countBodyBytes(length);
    if (body.chunked && offset + length == body.size) sink.done();
    return true;
}

void LoopbackHTTPServer::Impl::serveStatus(const Exchange& exchange) {
    const auto status = statusCodeWithin(exchange.argument, 200, 599);
    if (!status) return respondBadRequest(exchange.response, "status must be 200 to 599");
    if (*status == 204 || *status == 304) {
        exchange.response.status = *status;
        return;
    }
    respondText(exchange.response, *status, "status " + std::to_string(*status));
}

void LoopbackHTTPServer::Impl::serveRedirect(const Exchange& exchange) {
    const auto status = statusCodeWithin(exchange.argument, 300, 399);
    const auto location = parameter(exchange.request, "to");
    if (!status || !location) {
        return respondBadRequest(exchange.response, "use /redirect/<300-399>?to=<location>");
    }
    respondText(exchange.response, *status, "redirect");
    exchange.response.set_header("Location", *location);
}

void LoopbackHTTPServer::Impl::serveRedirectChain(const Exchange& exchange) {
    const auto remaining = parseUnsigned(exchange.argument);
    if (!remaining) return respondBadRequest(exchange.response, "use /redirect-chain/<n>");
    if (*remaining == 0) return respondText(exchange.response, 200, "done");
    respondText(exchange.response, 302, "redirect");
    exchange.response.set_header("Location", "/redirect-chain/" + std::to_string(*remaining - 1));
}

void LoopbackHTTPServer::Impl::serveLoop(const Exchange& exchange) {
    respondText(exchange.response, 302, "redirect");
    exchange.response.set_header("Location", "/loop");
}

void LoopbackHTTPServer::Impl::serveBytes(const Exchange& exchange) {
    const auto size = parseUnsigned(parameter(exchange.request, "size").value_or(""));
    const auto stallParameter = parameter(exchange.request, "stall_after");
    const auto stallAfter = stallParameter ? parseUnsigned(*stallParameter) : std::nullopt;
    if (!size || (stallParameter && !stallAfter)) {
        return respondBadRequest(exchange.response,
                                 "use /bytes?size=N[&chunked=1][&stall_after=M]");
    }
    PatternBody body;
    body.size = *size;
    body.stallAfter = (stallAfter && *stallAfter < *size) ? stallAfter : std::nullopt;
    body.chunked = parameter(exchange.request, "chunked") == "1";
    body.request = exchange.number;
    const std::string type = parameter(exchange.request, "type").value_or(kDefaultBytesType);
    auto& response = exchange.response;
    response.status = 200;
    if (body.chunked) {
        response.set_chunked_content_provider(
            type, [this, body](std::size_t offset, httplib::DataSink& sink) {
                return writePatternPiece(body, offset, sink);
            });
    } else if (body.size == 0) {
        response.set_content("", type);
    } else {
        response.set_content_provider(
            body.size, type,
            [this, body](std::size_t offset, std::size_t, httplib::DataSink& sink) {
                return writePatternPiece(body, offset, sink);
            });
    }
}

void LoopbackHTTPServer::Impl::serveText(const Exchange& exchange) {
    exchange.response.status = 200;
    exchange.response.set_content(parameter(exchange.request, "body").value_or(""),
                                  parameter(exchange.request, "type").value_or(kDefaultTextType));
}

void LoopbackHTTPServer::Impl::serveEcho(const Exchange& exchange) {
    const auto& request = exchange.request;
    auto& response = exchange.response;
    response.status = 200;
    response.set_header("X-Echo-Method", request.method);
    response.set_header("X-Echo-Query", std::string(rawQuery(request)));
    response.set_content(request.body, request.has_header("Content-Type")
                                           ? request.get_header_value("Content-Type")
                                           : std::string(kDefaultBytesType));
}

void LoopbackHTTPServer::Impl::serveSlowFirstByte(const Exchange& exchange) {
    const auto milliseconds = parseUnsigned(parameter(exchange.request, "ms").value_or(""));
    if (!milliseconds) return respondBadRequest(exchange.response, "use /slow-first-byte?ms=N");
    gate_.wait(exchange.number,
               std::chrono::steady_clock::now() + std::chrono::milliseconds(*milliseconds));
    respondText(exchange.response, 200, "slow");
}

void LoopbackHTTPServer::Impl::serveNever(const Exchange& exchange) {
    gate_.wait(exchange.number);
    // The library writes whatever the handler leaves; with the socket shut down first that
    // write fails and the client sees the connection end without a byte.
    if (auto* connection = LoopbackConnection::current()) connection->shutDown();
    exchange.response.status = 503;
}

void LoopbackHTTPServer::Impl::serveHeadersThenStall(const Exchange& exchange) {
    exchange.response.status = 200;
    const std::size_t number = exchange.number;
    // The library writes the status line and headers before it first asks the provider for
    // body bytes, so stalling inside the provider holds back the whole body.
    exchange.response.set_content_provider(
        sizeof(kHeadersThenStallBody) - 1, "text/plain",
        [this, number](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
            if (offset == 0 && gate_.wait(number) != StallGate::Outcome::released) return false;
            if (!sink.write(kHeadersThenStallBody + offset, length)) return false;
            countBodyBytes(length);
            return true;
        });
}

std::vector<RecordedRequest> LoopbackHTTPServer::Impl::requests() const {
    std::lock_guard lock(mutex_);
    return requests_;
}

std::size_t LoopbackHTTPServer::Impl::requestCount() const {
    std::lock_guard lock(mutex_);
    return requests_.size();
}

bool LoopbackHTTPServer::Impl::waitForRequest(
    const std::function<bool(const RecordedRequest&)>& predicate,
    std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    std::size_t checked = 0;
    return changed_.wait_for(lock, timeout, [&] {
        for (; checked < requests_.size(); ++checked) {
            if (predicate(requests_[checked])) return true;
        }
        return false;
    });
}

bool LoopbackHTTPServer::Impl::waitForRequestCount(std::size_t count,
                                                   std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, timeout, [&] { return requests_.size() >= count; });
}

std::uint64_t LoopbackHTTPServer::Impl::bodyBytesSent() const {
    std::lock_guard lock(mutex_);
    return bodyBytesSent_;
}

bool LoopbackHTTPServer::Impl::waitForBodyBytesSent(std::uint64_t bytes,
                                                    std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, timeout, [&] { return bodyBytesSent_ >= bytes; });
}

void LoopbackHTTPServer::Impl::resetCounters() {
    std::lock_guard lock(mutex_);
    bodyBytesSent_ = 0;
}

LoopbackHTTPServer::LoopbackHTTPServer() : LoopbackHTTPServer(Options{}) {}

LoopbackHTTPServer::LoopbackHTTPServer(Options options) : impl_(std::make_unique<Impl>(options)) {}

LoopbackHTTPServer::~LoopbackHTTPServer() = default;

int LoopbackHTTPServer::port() const {
    return impl_->port();
}

std::string LoopbackHTTPServer::baseURL() const {
    return std::string(impl_->https() ? "https" : "http") +
           "://127.0.0.1:" + std::to_string(impl_->port());
}

std::string LoopbackHTTPServer::url(std::string_view pathAndQuery) const {
    return baseURL() + std::string(pathAndQuery);
}

std::string LoopbackHTTPServer::caCertificatePath() const {
    return impl_->caCertificatePath();
}

std::vector<RecordedRequest> LoopbackHTTPServer::requests() const {
    return impl_->requests();
}

std::size_t LoopbackHTTPServer::requestCount() const {
    return impl_->requestCount();
}

bool LoopbackHTTPServer::waitForRequest(
    const std::function<bool(const RecordedRequest&)>& predicate,
    std::chrono::milliseconds timeout) const {
    return impl_->waitForRequest(predicate, timeout);
}

bool LoopbackHTTPServer::waitForRequestCount(std::size_t count,
                                             std::chrono::milliseconds timeout) const {
    return impl_->waitForRequestCount(count, timeout);
}

std::uint64_t LoopbackHTTPServer::bodyBytesSent() const {
    return impl_->bodyBytesSent();
}

bool LoopbackHTTPServer::waitForBodyBytesSent(std::uint64_t bytes,
                                              std::chrono::milliseconds timeout) const {
    return impl_->waitForBodyBytesSent(bytes, timeout);
}

void LoopbackHTTPServer::resetCounters() {
    impl_->resetCounters();
}

void LoopbackHTTPServer::releaseStalls() {
    impl_->releaseStalls();
}

}  // namespace vn::testing
