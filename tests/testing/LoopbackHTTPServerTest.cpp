// The loopback HTTP server the network tests stand on: every route over a real client, the
// request record and its waits, stalls and their release, concurrency, TLS, and a clean
// shutdown that leaves no thread waiting and no descriptor open.
#include "testing/LoopbackHTTPServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <future>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "testing/RawTestClient.h"

namespace vn::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr auto kDeadline = std::chrono::seconds(30);
// Far below the server's 60-second connection time-outs: a destructor that beats it shut the
// connections down itself rather than waiting for them to time out.
constexpr auto kDestructionDeadline = std::chrono::seconds(20);

// The HTTP library's client writes without MSG_NOSIGNAL; a connection the server ended must
// fail that write, not kill the test program.
const auto previousSIGPIPEHandler = std::signal(SIGPIPE, SIG_IGN);

httplib::Client clientFor(const std::string& baseURL, const std::string& caCertificatePath) {
    httplib::Client client(baseURL);
    client.set_connection_timeout(kDeadline);
    client.set_read_timeout(kDeadline);
    client.set_write_timeout(kDeadline);
    if (!caCertificatePath.empty()) {
        client.set_ca_cert_path(caCertificatePath);
        client.enable_server_certificate_verification(true);
    }
    return client;
}

httplib::Client clientFor(const LoopbackHTTPServer& server) {
    return clientFor(server.baseURL(), server.caCertificatePath());
}

// Checks streamed bytes against the generated pattern without keeping them.
class PatternChecker {
  public:
    bool consume(const char* data, std::size_t length) {
        for (std::size_t i = 0; i < length; ++i) {
            if (data[i] != patternByte(received_ + i) && !firstMismatch_) {
                firstMismatch_ = received_ + i;
            }
        }
        received_ += length;
        return true;
    }
    [[nodiscard]] std::uint64_t received() const { return received_; }
    [[nodiscard]] std::optional<std::uint64_t> firstMismatch() const { return firstMismatch_; }

  private:
    std::uint64_t received_ = 0;
    std::optional<std::uint64_t> firstMismatch_;
};

std::string patternText(std::size_t length) {
    std::string text;
    for (std::size_t i = 0; i < length; ++i) text.push_back(patternByte(i));
    return text;
}

std::string getRequest(std::string_view target, std::string_view extraFields = "") {
    return "GET " + std::string(target) + " HTTP/1.1\r\nHost: 127.0.0.1\r\n" +
           std::string(extraFields) + "\r\n";
}

// A response as it came over the wire, for what the HTTP library's client would alter (it
// percent-decodes header values).
struct WireResponse {
    std::string head;
    std::string body;

    [[nodiscard]] std::optional<std::string> field(std::string_view name) const {
        const std::string marker = "\r\n" + std::string(name) + ": ";
        const auto start = head.find(marker);
        if (start == std::string::npos) return std::nullopt;
        const auto valueStart = start + marker.size();
        return head.substr(valueStart, head.find("\r\n", valueStart) - valueStart);
    }
};

// Sends one request on a connection of its own and reads the answer to the end.
WireResponse exchangeOnTheWire(int port, std::string_view request) {
    RawTestClient wire(port);
    wire.send(request);
    WireResponse response;
    response.head = wire.readThrough("\r\n\r\n");
    response.body = wire.readToEnd().received;
    return response;
}

void destroyWithin(std::unique_ptr<LoopbackHTTPServer> server,
                   std::chrono::seconds deadline = kDestructionDeadline) {
    auto destruction = std::async(std::launch::async, [&server] { server.reset(); });
    EXPECT_EQ(destruction.wait_for(deadline), std::future_status::ready)
        << "the destructor waited on a connection or a stalled handler";
}

TEST(LoopbackHTTPServer, ListensOnLoopbackWithItsURLs) {
    LoopbackHTTPServer server;
    EXPECT_GT(server.port(), 0);
    EXPECT_EQ(server.baseURL(), "http://127.0.0.1:" + std::to_string(server.port()));
    EXPECT_EQ(server.url("/bytes?size=1"), server.baseURL() + "/bytes?size=1");
    EXPECT_EQ(server.caCertificatePath(), "");
}

TEST(LoopbackHTTPServer, RejectsFewerThanOneThread) {
    try {
        LoopbackHTTPServer server(LoopbackHTTPServer::Options{.threads = 0});
        FAIL() << "a server without threads was made";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "LoopbackHTTPServer needs at least one thread");
    }
}

TEST(LoopbackHTTPServer, StatusRouteAnswersEveryCodeWithItsText) {
    struct Case {
        std::string method;
        std::string path;
        int status;
        std::string body;
    };
    const std::vector<Case> cases = {
        {"GET", "/status/200", 200, "status 200"},
        {"POST", "/status/201", 201, "status 201"},
        {"GET", "/status/204", 204, ""},
        {"GET", "/status/304", 304, ""},
        {"PUT", "/status/404", 404, "status 404"},
        {"DELETE", "/status/418", 418, "status 418"},
        {"PATCH", "/status/500", 500, "status 500"},
        {"OPTIONS", "/status/503", 503, "status 503"},
        {"GET", "/status/199", 400, "bad request: status must be 200 to 599"},
        {"GET", "/status/600", 400, "bad request: status must be 200 to 599"},
        {"GET", "/status/abc", 400, "bad request: status must be 200 to 599"},
        {"GET", "/no/such/route", 404, "no route for /no/such/route"},
    };
    LoopbackHTTPServer server;
    auto client = clientFor(server);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.method + " " + c.path);
        httplib::Request request;
        request.method = c.method;
        request.path = c.path;
        const auto result = client.send(request);
        ASSERT_TRUE(result) << result.error();
        EXPECT_EQ(result->status, c.status);
        EXPECT_EQ(result->body, c.body);
        EXPECT_EQ(result->get_header_value("Content-Length"), std::to_string(c.body.size()));
        if (!c.body.empty()) {
            EXPECT_EQ(result->get_header_value("Content-Type"), "text/plain");
        }
    }
}

TEST(LoopbackHTTPServer, RedirectRoutesSetTheirLocationVerbatim) {
    struct Case {
        std::string target;
        std::string statusLine;
        std::optional<std::string> location;
        std::string body;
    };
    const std::string badRedirect = "bad request: use /redirect/<300-399>?to=<location>";
    const std::vector<Case> cases = {
        {"/redirect/301?to=%2Fsomewhere%3Fa%3D1%26b%3D%252F", "HTTP/1.1 301 Moved Permanently",
         "/somewhere?a=1&b=%2F", "redirect"},
        {"/redirect/307?to=http%3A%2F%2F127.0.0.1%3A1%2Fpath", "HTTP/1.1 307 Temporary Redirect",
         "http://127.0.0.1:1/path", "redirect"},
        {"/redirect/308?to=relative%2Fpath", "HTTP/1.1 308 Permanent Redirect", "relative/path",
         "redirect"},
        {"/redirect/303?to=%2Fplus%2Bsign", "HTTP/1.1 303 See Other", "/plus+sign", "redirect"},
        {"/redirect-chain/2", "HTTP/1.1 302 Found", "/redirect-chain/1", "redirect"},
        {"/redirect-chain/0", "HTTP/1.1 200 OK", std::nullopt, "done"},
        {"/loop", "HTTP/1.1 302 Found", "/loop", "redirect"},
        {"/redirect/200?to=%2Fx", "HTTP/1.1 400 Bad Request", std::nullopt, badRedirect},
        {"/redirect/302", "HTTP/1.1 400 Bad Request", std::nullopt, badRedirect},
        {"/redirect-chain/x", "HTTP/1.1 400 Bad Request", std::nullopt,
         "bad request: use /redirect-chain/<n>"},
    };
    LoopbackHTTPServer server;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.target);
        const auto response =
            exchangeOnTheWire(server.port(), getRequest(c.target, "Connection: close\r\n"));
        EXPECT_THAT(response.head, StartsWith(c.statusLine + "\r\n"));
        EXPECT_EQ(response.field("Location"), c.location);
        EXPECT_EQ(response.body, c.body);
    }
}

TEST(LoopbackHTTPServer, RedirectChainEndsAfterItsLengthWhenFollowed) {
    LoopbackHTTPServer server;
    auto client = clientFor(server);
    client.set_follow_location(true);
    const auto result = client.Get("/redirect-chain/3");
    ASSERT_TRUE(result) << result.error();
    EXPECT_EQ(result->status, 200);
    EXPECT_EQ(result->body, "done");
    std::vector<std::string> paths;
    for (const auto& request : server.requests()) paths.push_back(request.path);
    EXPECT_EQ(paths, (std::vector<std::string>{"/redirect-chain/3", "/redirect-chain/2",
                                               "/redirect-chain/1", "/redirect-chain/0"}));
}

TEST(LoopbackHTTPServer, BytesRouteStreamsFiftyMegabytesOfThePattern) {
    constexpr std::uint64_t kSize = 52428800;
    LoopbackHTTPServer server;
    auto client = clientFor(server);
    PatternChecker checker;
    const auto result = client.Get(
        "/bytes?size=" + std::to_string(kSize),
        [&](const char* data, std::size_t length) { return checker.consume(data, length); });
    ASSERT_TRUE(result) << result.error();
    EXPECT_EQ(result->status, 200);
    EXPECT_EQ(result->get_header_value("Content-Length"), std::to_string(kSize));
    EXPECT_EQ(result->get_header_value("Content-Type"), "application/octet-stream");
    EXPECT_EQ(checker.received(), kSize);
    EXPECT_EQ(checker.firstMismatch(), std::nullopt);
    EXPECT_TRUE(server.waitForBodyBytesSent(kSize, kDeadline));
    EXPECT_EQ(server.bodyBytesSent(), kSize);
}

TEST(LoopbackHTTPServer, BytesRouteFramesItsBodyAsAsked) {
    struct Case {
        std::string target;
        bool chunked;
        std::size_t size;
        std::string type;
    };
    const std::vector<Case> cases = {
        {"/bytes?size=200000&chunked=1", true, 200000, "application/octet-stream"},
        {"/bytes?size=0&chunked=1", true, 0, "application/octet-stream"},
        {"/bytes?size=0", false, 0, "application/octet-stream"},
        {"/bytes?size=70000&type=text%2Fcsv", false, 70000, "text/csv"},
        {"/bytes?size=10&stall_after=10", false, 10, "application/octet-stream"},
    };
    LoopbackHTTPServer server;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.target);
        RawTestClient wire(server.port());
        wire.send(getRequest(c.target, "Connection: close\r\n"));
        const std::string head = wire.readThrough("\r\n\r\n");
        EXPECT_THAT(head, StartsWith("HTTP/1.1 200 OK\r\n"));
        EXPECT_THAT(head, HasSubstr("Content-Type: " + c.type + "\r\n"));
        const auto ending = wire.readToEnd();
        EXPECT_EQ(ending.error, 0);
        if (c.chunked) {
            EXPECT_THAT(head, HasSubstr("Transfer-Encoding: chunked\r\n"));
            EXPECT_THAT(head, Not(HasSubstr("Content-Length")));
            EXPECT_THAT(ending.received, EndsWith("0\r\n\r\n"));
        } else {
            EXPECT_THAT(head, HasSubstr("Content-Length: " + std::to_string(c.size) + "\r\n"));
            EXPECT_EQ(ending.received, patternText(c.size));
        }
    }
    auto client = clientFor(server);
    const auto chunked = client.Get("/bytes?size=200000&chunked=1");
    ASSERT_TRUE(chunked) << chunked.error();
    EXPECT_EQ(chunked->body, patternText(200000));
}

TEST(LoopbackHTTPServer, BytesRouteRejectsBadParameters) {
    LoopbackHTTPServer server;
    auto client = clientFor(server);
    for (const std::string target : {"/bytes", "/bytes?size=", "/bytes?size=-1",
                                     "/bytes?size=12abc", "/bytes?size=5&stall_after=x"}) {
        SCOPED_TRACE(target);
        const auto result = client.Get(target);
        ASSERT_TRUE(result) << result.error();
        EXPECT_EQ(result->status, 400);
        EXPECT_EQ(result->body, "bad request: use /bytes?size=N[&chunked=1][&stall_after=M]");
    }
}

TEST(LoopbackHTTPServer, HeadGetsTheHeadersOfABodyItDoesNotSend) {
    LoopbackHTTPServer server;
    auto client = clientFor(server);
    const auto result = client.Head("/bytes?size=1000");
    ASSERT_TRUE(result) << result.error();
    EXPECT_EQ(result->status, 200);
    EXPECT_EQ(result->get_header_value("Content-Length"), "1000");
    EXPECT_EQ(result->body, "");
    EXPECT_EQ(server.bodyBytesSent(), 0u);
    EXPECT_EQ(server.requests().at(0).method, "HEAD");
}

TEST(LoopbackHTTPServer, StalledBodyStopsAtItsMarkAndEndsTheConnectionWhenReleased) {
    for (const std::string chunked : {"0", "1"}) {
        SCOPED_TRACE("chunked=" + chunked);
        LoopbackHTTPServer server;
        PatternChecker checker;
        auto transfer = std::async(std::launch::async, [&] {
            auto client = clientFor(server);
            return client
                .Get("/bytes?size=1000000&stall_after=300000&chunked=" + chunked,
                     [&](const char* data, std::size_t length) {
                         return checker.consume(data, length);
                     })
                .error();
        });
        ASSERT_TRUE(server.waitForBodyBytesSent(300000, kDeadline));
        EXPECT_EQ(server.bodyBytesSent(), 300000u);
        server.releaseStalls();
        EXPECT_EQ(transfer.get(), httplib::Error::Read);
        EXPECT_EQ(checker.received(), 300000u);
        EXPECT_EQ(checker.firstMismatch(), std::nullopt);
        EXPECT_EQ(server.bodyBytesSent(), 300000u);
    }
}

TEST(LoopbackHTTPServer, TextRouteAnswersItsBodyWithTheDeclaredType) {
    struct Case {
        std::string target;
        std::string type;
        std::string body;
    };
    const std::vector<Case> cases = {
        {"/text?body=caf%C3%A9", "text/plain; charset=utf-8", "caf\xC3\xA9"},
        {"/text?body=caf%E9&type=text%2Fhtml%3B%20charset%3DISO-8859-1",
         "text/html; charset=ISO-8859-1", "caf\xE9"},
        {"/text?body=%7B%22a%22%3A%5B1%2C2%5D%7D&type=application%2Fjson", "application/json",
         R"({"a":[1,2]})"},
        {"/text", "text/plain; charset=utf-8", ""},
    };
    LoopbackHTTPServer server;
    auto client = clientFor(server);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.target);
        const auto result = client.Get(c.target);
        ASSERT_TRUE(result) << result.error();
        EXPECT_EQ(result->status, 200);
        EXPECT_EQ(result->get_header_value("Content-Type"), c.type);
        EXPECT_EQ(result->body, c.body);
    }
}

TEST(LoopbackHTTPServer, EchoRouteReturnsTheBodyTypeMethodAndQuery) {
    LoopbackHTTPServer server;
    const auto posted = exchangeOnTheWire(
        server.port(),
        "POST /echo?x=1&y=%20 HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/json\r\n"
        "Content-Length: 9\r\nConnection: close\r\n\r\n{\"k\":\"v\"}");
    EXPECT_THAT(posted.head, StartsWith("HTTP/1.1 200 OK\r\n"));
    EXPECT_EQ(posted.body, R"({"k":"v"})");
    EXPECT_EQ(posted.field("Content-Type"), "application/json");
    EXPECT_EQ(posted.field("X-Echo-Method"), "POST");
    EXPECT_EQ(posted.field("X-Echo-Query"), "x=1&y=%20");

    const std::string binary("\x00\x01\xFFzero\x00", 8);
    const auto put =
        exchangeOnTheWire(server.port(),
                          "PUT /echo HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 8\r\n"
                          "Connection: close\r\n\r\n" +
                              binary);
    EXPECT_EQ(put.body, binary);
    EXPECT_EQ(put.field("Content-Type"), "application/octet-stream");
    EXPECT_EQ(put.field("X-Echo-Method"), "PUT");
    EXPECT_EQ(put.field("X-Echo-Query"), "");

    auto client = clientFor(server);
    const auto chunkedUpload = client.Post(
        "/echo",
        [](std::size_t offset, httplib::DataSink& sink) {
            if (offset < 6) return sink.write("abc", 3);
            sink.done();
            return true;
        },
        "text/plain");
    ASSERT_TRUE(chunkedUpload) << chunkedUpload.error();
    EXPECT_EQ(chunkedUpload->body, "abcabc");
    EXPECT_EQ(server.requests().back().header("Transfer-Encoding"), "chunked");

    const auto got = client.Get("/echo");
    ASSERT_TRUE(got) << got.error();
    EXPECT_EQ(got->body, "");
    EXPECT_EQ(got->get_header_value("X-Echo-Method"), "GET");
}

TEST(LoopbackHTTPServer, AnswersExpectContinueBeforeTheBody) {
    LoopbackHTTPServer server;
    RawTestClient wire(server.port());
    wire.send(
        "PUT /echo HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 4\r\n"
        "Expect: 100-continue\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(wire.readThrough("\r\n\r\n"), "HTTP/1.1 100 Continue\r\n\r\n");
    wire.send("data");
    EXPECT_THAT(wire.readThrough("\r\n\r\n"), StartsWith("HTTP/1.1 200 OK\r\n"));
    EXPECT_EQ(wire.readToEnd().received, "data");
    EXPECT_EQ(server.requests().at(0).body, "data");
}

TEST(LoopbackHTTPServer, RecordsEveryRequestInArrivalOrder) {
    LoopbackHTTPServer server;
    auto client = clientFor(server);
    client.set_keep_alive(true);
    ASSERT_TRUE(client.Get("/status/200?a=1&b=%2F", {{"X-Custom", "first"}}));
    ASSERT_TRUE(client.Post("/echo", {{"x-custom", "second"}}, "payload", "text/plain"));
    ASSERT_TRUE(client.Delete("/no/route"));

    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_EQ(server.requestCount(), 3u);

    EXPECT_EQ(requests[0].method, "GET");
    EXPECT_EQ(requests[0].path, "/status/200");
    EXPECT_EQ(requests[0].query, "a=1&b=%2F");
    EXPECT_EQ(requests[0].header("x-CUSTOM"), "first");
    EXPECT_EQ(requests[0].header("Host"), "127.0.0.1:" + std::to_string(server.port()));
    EXPECT_EQ(requests[0].body, "");

    EXPECT_EQ(requests[1].method, "POST");
    EXPECT_EQ(requests[1].path, "/echo");
    EXPECT_EQ(requests[1].query, "");
    EXPECT_EQ(requests[1].header("X-Custom"), "second");
    EXPECT_EQ(requests[1].header("content-type"), "text/plain");
    EXPECT_EQ(requests[1].body, "payload");

    EXPECT_EQ(requests[2].method, "DELETE");
    EXPECT_EQ(requests[2].path, "/no/route");
    EXPECT_EQ(requests[2].header("X-Custom"), std::nullopt);

    for (const auto& request : requests) {
        for (const char* added : {"REMOTE_ADDR", "REMOTE_PORT", "LOCAL_ADDR", "LOCAL_PORT"}) {
            EXPECT_EQ(request.header(added), std::nullopt) << added;
        }
    }
    // One kept-alive connection served all three.
    EXPECT_GT(requests[0].remotePort, 0);
    EXPECT_EQ(requests[1].remotePort, requests[0].remotePort);
    EXPECT_EQ(requests[2].remotePort, requests[0].remotePort);
}

TEST(LoopbackHTTPServer, RecordsFieldsAndTargetsExactlyAsSent) {
    LoopbackHTTPServer server;
    RawTestClient wire(server.port());
    wire.send(
        "GET /a%20b/c?q=%41+x HTTP/1.1\r\nX-Twice: one\r\nHost: 127.0.0.1\r\n"
        "Authorization: OAuth oauth_signature=\"a%2Bb%3D\"\r\nx-twice:   two \r\n"
        "Connection: close\r\n\r\n");
    EXPECT_EQ(wire.readToEnd().error, 0);
    const auto request = server.requests().at(0);
    EXPECT_EQ(request.path, "/a%20b/c");
    EXPECT_EQ(request.query, "q=%41+x");
    const std::vector<std::pair<std::string, std::string>> fields = {
        {"X-Twice", "one"},
        {"Host", "127.0.0.1"},
        {"Authorization", "OAuth oauth_signature=\"a%2Bb%3D\""},
        {"x-twice", "two"},
        {"Connection", "close"},
    };
    EXPECT_EQ(request.headers, fields);
    EXPECT_EQ(request.headerValues("X-TWICE"), (std::vector<std::string>{"one", "two"}));
}

TEST(LoopbackHTTPServer, WaitsEndAtTheirDeadlineOrOnceSatisfied) {
    LoopbackHTTPServer server;
    const auto never = [](const RecordedRequest&) { return false; };
    EXPECT_FALSE(server.waitForRequestCount(1, std::chrono::milliseconds(20)));
    EXPECT_FALSE(server.waitForRequest(never, std::chrono::milliseconds(20)));
    EXPECT_FALSE(server.waitForBodyBytesSent(1, std::chrono::milliseconds(20)));

    auto requests = std::async(std::launch::async, [&] {
        auto client = clientFor(server);
        const bool first = static_cast<bool>(client.Get("/text?body=one"));
        const bool second = static_cast<bool>(client.Get("/bytes?size=5000"));
        return first && second;
    });
    EXPECT_TRUE(server.waitForRequest(
        [](const RecordedRequest& request) { return request.path == "/bytes"; }, kDeadline));
    EXPECT_TRUE(server.waitForRequestCount(2, kDeadline));
    EXPECT_TRUE(server.waitForBodyBytesSent(5000, kDeadline));
    EXPECT_TRUE(requests.get());
    // A request recorded before the wait began satisfies it too.
    EXPECT_TRUE(server.waitForRequest(
        [](const RecordedRequest& request) { return request.query == "body=one"; },
        std::chrono::milliseconds(0)));

    server.resetCounters();
    EXPECT_EQ(server.bodyBytesSent(), 0u);
    EXPECT_EQ(server.requestCount(), 2u);
}

TEST(LoopbackHTTPServer, SlowFirstByteAnswersAfterItsDelayOrOnRelease) {
    LoopbackHTTPServer server;
    auto client = clientFor(server);
    const auto quick = client.Get("/slow-first-byte?ms=1");
    ASSERT_TRUE(quick) << quick.error();
    EXPECT_EQ(quick->body, "slow");

    auto slow = std::async(std::launch::async, [&] {
        auto client = clientFor(server);
        return client.Get("/slow-first-byte?ms=600000");
    });
    ASSERT_TRUE(server.waitForRequestCount(2, kDeadline));
    server.releaseStalls();
    const auto released = slow.get();
    ASSERT_TRUE(released) << released.error();
    EXPECT_EQ(released->status, 200);
    EXPECT_EQ(released->body, "slow");

    const auto bad = client.Get("/slow-first-byte");
    ASSERT_TRUE(bad) << bad.error();
    EXPECT_EQ(bad->status, 400);
}

TEST(LoopbackHTTPServer, NeverRouteEndsTheConnectionWithoutAByteWhenReleased) {
    LoopbackHTTPServer server;
    RawTestClient wire(server.port());
    wire.send(getRequest("/never"));
    ASSERT_TRUE(server.waitForRequestCount(1, kDeadline));
    server.releaseStalls();
    const auto ending = wire.readToEnd();
    EXPECT_EQ(ending.received, "");
    EXPECT_EQ(ending.error, 0) << std::strerror(ending.error);
}

TEST(LoopbackHTTPServer, HeadersThenStallHoldsTheWholeBodyUntilReleased) {
    LoopbackHTTPServer server;
    RawTestClient wire(server.port());
    wire.send(getRequest("/headers-then-stall"));
    const std::string head = wire.readThrough("\r\n\r\n");
    EXPECT_THAT(head, StartsWith("HTTP/1.1 200 OK\r\n"));
    EXPECT_THAT(head, HasSubstr("Content-Length: 10\r\n"));
    EXPECT_EQ(server.bodyBytesSent(), 0u);
    server.releaseStalls();
    EXPECT_EQ(wire.readExactly(10), "abcdefghij");
    EXPECT_TRUE(server.waitForBodyBytesSent(10, kDeadline));
}

TEST(LoopbackHTTPServer, ReleasingLeavesLaterRequestsStalled) {
    LoopbackHTTPServer server;
    RawTestClient first(server.port());
    first.send(getRequest("/headers-then-stall"));
    ASSERT_TRUE(server.waitForRequestCount(1, kDeadline));
    server.releaseStalls();
    EXPECT_EQ(first.readThrough("abcdefghij").substr(0, 15), "HTTP/1.1 200 OK");
    // Bytes count once written, which may be just after the client read them.
    ASSERT_TRUE(server.waitForBodyBytesSent(10, kDeadline));

    RawTestClient second(server.port());
    second.send(getRequest("/headers-then-stall"));
    second.readThrough("\r\n\r\n");
    // The second body was not released: the only body bytes sent are the first's.
    EXPECT_EQ(server.bodyBytesSent(), 10u);
    server.releaseStalls();
    EXPECT_EQ(second.readExactly(10), "abcdefghij");
}

TEST(LoopbackHTTPServer, ServesSixteenStalledConnectionsAtOnce) {
    constexpr std::size_t kClients = 16;
    LoopbackHTTPServer server;
    std::vector<std::future<int>> statuses;
    for (std::size_t i = 0; i < kClients; ++i) {
        statuses.push_back(std::async(std::launch::async, [&server] {
            auto client = clientFor(server);
            const auto result = client.Get("/slow-first-byte?ms=600000");
            return result ? result->status : -1;
        }));
    }
    // Each handler holds its connection until released: sixteen recorded means sixteen
    // handlers running side by side.
    EXPECT_TRUE(server.waitForRequestCount(kClients, kDeadline));
    server.releaseStalls();
    for (auto& status : statuses) EXPECT_EQ(status.get(), 200);
}

TEST(LoopbackHTTPServer, ServesTheRoutesOverTLSToClientsTrustingItsCertificate) {
    std::filesystem::path certificate;
    {
        LoopbackHTTPServer server(LoopbackHTTPServer::Options{.https = true});
        EXPECT_EQ(server.baseURL(), "https://127.0.0.1:" + std::to_string(server.port()));
        certificate = server.caCertificatePath();
        std::ifstream pem(certificate);
        std::string firstLine;
        std::getline(pem, firstLine);
        EXPECT_EQ(firstLine, "-----BEGIN CERTIFICATE-----");

        auto client = clientFor(server);
        const auto status = client.Get("/status/201");
        ASSERT_TRUE(status) << status.error();
        EXPECT_EQ(status->status, 201);
        PatternChecker checker;
        const auto bytes = client.Get("/bytes?size=1000000", [&](const char* data, std::size_t n) {
            return checker.consume(data, n);
        });
        ASSERT_TRUE(bytes) << bytes.error();
        EXPECT_EQ(checker.received(), 1000000u);
        EXPECT_EQ(checker.firstMismatch(), std::nullopt);

        // Only the system's CAs: the self-signed certificate must be refused.
        httplib::Client untrusting(server.baseURL());
        untrusting.enable_server_certificate_verification(true);
        const auto refused = untrusting.Get("/status/200");
        EXPECT_EQ(refused.error(), httplib::Error::SSLServerVerification);
        EXPECT_EQ(server.requestCount(), 2u);
    }
    EXPECT_FALSE(std::filesystem::exists(certificate.parent_path()));
}

TEST(LoopbackHTTPServer, CompressesTextOnlyWhenAsked) {
    for (const bool compression : {false, true}) {
        SCOPED_TRACE(compression ? "compression" : "no compression");
        LoopbackHTTPServer server(LoopbackHTTPServer::Options{.compression = compression});
        RawTestClient wire(server.port());
        wire.send(getRequest("/text?body=hello", "Accept-Encoding: gzip\r\nConnection: close\r\n"));
        const std::string head = wire.readThrough("\r\n\r\n");
        if (compression) {
            EXPECT_THAT(head, HasSubstr("Content-Encoding: gzip\r\n"));
        } else {
            EXPECT_THAT(head, Not(HasSubstr("Content-Encoding")));
            EXPECT_EQ(wire.readToEnd().received, "hello");
        }
        EXPECT_EQ(server.requests().at(0).header("Accept-Encoding"), "gzip");
    }
}

TEST(LoopbackHTTPServer, DestructionReleasesStallsAndClosesEveryConnection) {
    auto server = std::make_unique<LoopbackHTTPServer>();
    const int port = server->port();
    RawTestClient idle(port);  // connected, never sends a byte
    RawTestClient kept(port);  // one answered request, then idle on a kept-alive connection
    kept.send(getRequest("/status/200"));
    kept.readThrough("status 200");
    std::vector<RawTestClient> stalled;
    for (const std::string target : {"/never", "/headers-then-stall", "/slow-first-byte?ms=600000",
                                     "/bytes?size=100000000&stall_after=1000"}) {
        stalled.emplace_back(port);
        stalled.back().send(getRequest(target));
    }
    // A client that stopped reading a large body leaves the server blocked in a write.
    RawTestClient notReading(port);
    notReading.send(getRequest("/bytes?size=100000000"));
    ASSERT_TRUE(server->waitForRequestCount(6, kDeadline));
    ASSERT_TRUE(server->waitForBodyBytesSent(1000, kDeadline));

    destroyWithin(std::move(server));

    for (auto* client : {&idle, &kept}) EXPECT_EQ(client->readToEnd().error, 0);
    for (auto& client : stalled) EXPECT_NE(client.readToEnd().error, EAGAIN);
    EXPECT_EQ(connectErrorTo(port), ECONNREFUSED);
}

TEST(LoopbackHTTPServer, LeavesNoDescriptorOpen) {
    const std::size_t before = openDescriptorCount();
    for (const bool https : {false, true}) {
        SCOPED_TRACE(https ? "https" : "http");
        auto server =
            std::make_unique<LoopbackHTTPServer>(LoopbackHTTPServer::Options{.https = https});
        auto client = clientFor(*server);
        client.set_keep_alive(true);
        ASSERT_TRUE(client.Get("/bytes?size=100000"));
        // The client thread must not touch the server, which is destroyed while it waits.
        auto stalled = std::async(std::launch::async,
                                  [url = server->baseURL(), ca = server->caCertificatePath()] {
                                      auto client = clientFor(url, ca);
                                      return client.Get("/never").error();
                                  });
        ASSERT_TRUE(server->waitForRequestCount(2, kDeadline));
        destroyWithin(std::move(server));
        EXPECT_NE(stalled.get(), httplib::Error::Success);
    }
    {
        RawLoopbackServer raw(RawLoopbackServer::Behaviour::neverAnswer);
        RawTestClient wire(raw.port());
        wire.send(getRequest("/"));
        ASSERT_TRUE(raw.waitForRequestsRead(1, kDeadline));
    }
    EXPECT_EQ(openDescriptorCount(), before);
}

}  // namespace
}  // namespace vn::testing
