// The raw-socket fault server: each behaviour as seen on the wire and by an HTTP client, its
// connection counts, and the closed port.
#include "testing/RawLoopbackServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <future>
#include <string>
#include <vector>

#include "testing/RawTestClient.h"

namespace vn::testing {
namespace {

using Behaviour = RawLoopbackServer::Behaviour;
using ::testing::StartsWith;

constexpr auto kDeadline = std::chrono::seconds(30);

// The HTTP library's client writes without MSG_NOSIGNAL; a connection the server ended must
// fail that write, not kill the test program.
const auto previousSIGPIPEHandler = std::signal(SIGPIPE, SIG_IGN);

std::string resetHead() {
    return "HTTP/1.1 200 OK\r\nContent-Type: application/octet-stream\r\n"
           "Content-Length: 100000\r\n\r\n";
}

std::string patternText(std::size_t length) {
    std::string text;
    for (std::size_t i = 0; i < length; ++i) text.push_back(patternByte(i));
    return text;
}

TEST(RawLoopbackServer, AnswersEachBehaviourOnTheWire) {
    struct Case {
        const char* name;
        Behaviour behaviour;
        std::string answer;
        int endError;
    };
    const std::vector<Case> cases = {
        {"resetMidBody", Behaviour::resetMidBody, resetHead() + patternText(1000), ECONNRESET},
        {"malformedStatus", Behaviour::malformedStatus,
         "HTTP/1.1 abc OK\r\nContent-Length: 0\r\n\r\n", 0},
        {"garbage", Behaviour::garbage, "this is not HTTP\r\n\x01\x02\x03\r\n\r\n", 0},
        {"closeWithoutAnswer", Behaviour::closeWithoutAnswer, "", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        RawLoopbackServer server(c.behaviour);
        EXPECT_EQ(server.url("/x?y=1"),
                  "http://127.0.0.1:" + std::to_string(server.port()) + "/x?y=1");
        RawTestClient wire(server.port());
        // The body is read before the answer, so the close carries no unread byte (no reset).
        wire.send("POST /upload HTTP/1.1\r\nHost: 127.0.0.1\r\ncontent-length: 5\r\n\r\nhel");
        wire.send("lo");
        const auto ending = wire.readToEnd();
        EXPECT_EQ(ending.received, c.answer);
        EXPECT_EQ(ending.error, c.endError) << std::strerror(ending.error);
        EXPECT_EQ(server.connectionsAccepted(), 1u);
        EXPECT_EQ(server.requestsRead(), 1u);
    }
}

TEST(RawLoopbackServer, FaultsFailAnHTTPClient) {
    struct Case {
        const char* name;
        Behaviour behaviour;
        httplib::Error error;
        std::size_t bodyBytes;
    };
    const std::vector<Case> cases = {
        {"resetMidBody", Behaviour::resetMidBody, httplib::Error::Read, 1000},
        {"malformedStatus", Behaviour::malformedStatus, httplib::Error::Read, 0},
        {"garbage", Behaviour::garbage, httplib::Error::Read, 0},
        {"closeWithoutAnswer", Behaviour::closeWithoutAnswer, httplib::Error::Read, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        RawLoopbackServer server(c.behaviour);
        httplib::Client client("127.0.0.1", server.port());
        client.set_read_timeout(kDeadline);
        std::size_t received = 0;
        const auto result = client.Get("/", [&](const char*, std::size_t length) {
            received += length;
            return true;
        });
        EXPECT_EQ(result.error(), c.error);
        EXPECT_EQ(received, c.bodyBytes);
    }
}

TEST(RawLoopbackServer, NeverAnswerHoldsEveryConnectionUntilDestroyed) {
    auto server = std::make_unique<RawLoopbackServer>(Behaviour::neverAnswer);
    const int port = server->port();
    std::vector<RawTestClient> clients;
    for (int i = 0; i < 3; ++i) {
        clients.emplace_back(port);
        clients.back().send("GET / HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    }
    EXPECT_TRUE(server->waitForConnections(3, kDeadline));
    EXPECT_TRUE(server->waitForRequestsRead(3, kDeadline));
    EXPECT_EQ(server->connectionsAccepted(), 3u);
    EXPECT_FALSE(server->waitForConnections(4, std::chrono::milliseconds(20)));

    auto destruction = std::async(std::launch::async, [&server] { server.reset(); });
    EXPECT_EQ(destruction.wait_for(kDeadline), std::future_status::ready);
    for (auto& client : clients) {
        const auto ending = client.readToEnd();
        EXPECT_EQ(ending.received, "");
        EXPECT_EQ(ending.error, 0) << std::strerror(ending.error);
    }
    EXPECT_EQ(connectErrorTo(port), ECONNREFUSED);
}

TEST(RawLoopbackServer, DestructionEndsConnectionsThatNeverSentARequest) {
    auto server = std::make_unique<RawLoopbackServer>(Behaviour::closeWithoutAnswer);
    RawTestClient silent(server->port());
    silent.send("GET / HTTP/1.1\r\n");  // never finishes its header block
    ASSERT_TRUE(server->waitForConnections(1, kDeadline));
    auto destruction = std::async(std::launch::async, [&server] { server.reset(); });
    EXPECT_EQ(destruction.wait_for(kDeadline), std::future_status::ready);
    EXPECT_NE(silent.readToEnd().error, EAGAIN);
}

TEST(RawLoopbackServer, ClosedLoopbackPortRefusesConnections) {
    const int port = closedLoopbackPort();
    EXPECT_GT(port, 0);
    EXPECT_EQ(connectErrorTo(port), ECONNREFUSED);
    httplib::Client client("127.0.0.1", port);
    EXPECT_EQ(client.Get("/").error(), httplib::Error::Connection);
}

}  // namespace
}  // namespace vn::testing
