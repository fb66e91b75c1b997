// Network tracing: the request and response records, their two destinations (the local log
// and the host's logger service) and the gates in front of each.
#include <gtest/gtest.h>

#include <atomic>

#include "testing/CapturingLogListener.h"
#include "testing/RecordingLoggerService.h"
#include "testing/ScopedProcessState.h"
#include "vn/log/VNLog.h"
#include "vn/platform/UserDefaults.h"
#include "vn/services/VNFoundationServices.h"
#include "vn/values/JSON.h"

namespace vn {
namespace {

using testing::CapturingLogListener;
using testing::RecordingLoggerService;
using testing::ScopedProcessState;

// An HTTP response that counts how often the log reads it, to show when a record is built.
class CountingHTTPResponse final : public HTTPURLResponse {
  public:
    using HTTPURLResponse::HTTPURLResponse;
    std::int64_t statusCode() const override {
        ++reads;
        return HTTPURLResponse::statusCode();
    }
    const HeaderFields& allHeaderFields() const override {
        ++reads;
        return HTTPURLResponse::allHeaderFields();
    }
    const std::optional<std::string>& textEncodingName() const override {
        ++reads;
        return HTTPURLResponse::textEncodingName();
    }
    mutable std::atomic<int> reads{0};
};

URL url(const char* text) {
    return URL::URLWithString(text).value();
}

Data bytes(std::string_view text) {
    return Data(text.begin(), text.end());
}

// The local log's output for one call: one tab-indented JSON text with its line end, parsed.
Value onlyLocalRecord(const CapturingLogListener& listener, std::string_view title) {
    const std::vector<std::string> messages = listener.messages();
    EXPECT_EQ(messages.size(), 1u);
    if (messages.size() != 1) return {};
    EXPECT_TRUE(messages[0].ends_with("}\n\n")) << messages[0];
    EXPECT_NE(messages[0].find("\n\t\""), std::string::npos) << messages[0];
    const Value parsed = VNUtilities::jsonObject(messages[0]);
    EXPECT_EQ(parsed.dictionary() ? parsed.dictionary()->size() : 0u, 1u) << messages[0];
    return parsed[title];
}

// The service's entry for one call: compact JSON, network traffic at debug level, not echoed.
Value onlyServiceRecord(const RecordingLoggerService& service, std::string_view title) {
    const auto entries = service.entries();
    EXPECT_EQ(entries.size(), 1u);
    if (entries.size() != 1) return {};
    const auto& entry = entries[0];
    EXPECT_EQ(entry.type, VNLoggerType::network);
    EXPECT_EQ(entry.level, VNLoggerLevel::debug);
    EXPECT_FALSE(entry.logToConsole);
    EXPECT_EQ(entry.message.find_first_of("\n\t"), std::string::npos) << entry.message;
    const Value parsed = VNUtilities::jsonObject(entry.message);
    EXPECT_EQ(parsed.dictionary() ? parsed.dictionary()->size() : 0u, 1u) << entry.message;
    return parsed[title];
}

class VNLogNetworkTest : public ::testing::Test {
  protected:
    void SetUp() override { VNLog::addListener(listener); }

    static void turnLocalLogOn(bool withBodies = false) {
        ScopedProcessState::turnLogFileOn();
        UserDefaults::standard().setBool(withBodies, VNLog::logResponsesBodyPreferenceKey);
    }
    void registerService(bool enabled, VNLoggerLevel networkLevel) {
        service->configure(enabled, networkLevel);
        VNFoundationServices::registerLoggerService(service);
    }

    ScopedProcessState state;
    std::shared_ptr<CapturingLogListener> listener = std::make_shared<CapturingLogListener>();
    std::shared_ptr<RecordingLoggerService> service = std::make_shared<RecordingLoggerService>();
};

TEST_F(VNLogNetworkTest, RequestRecordReachesEveryLocalSinkAndTheService) {
    turnLocalLogOn();
    registerService(true, VNLoggerLevel::debug);
    URLRequest request(url("https://api.example.com/items?page=2"));
    request.setHTTPMethod("POST");
    request.setValue("application/json", "Content-Type");
    request.setValue("Bearer t", "Authorization");
    request.setHTTPBody(bytes("{\"name\":\"caf\u00e9\"}"));

    VNLog::logURLRequestIfEnabled(request);

    const Value expected(Value::Dictionary{
        {"url", "https://api.example.com/items?page=2"},
        {"method", "POST"},
        {"headers",
         Value::Dictionary{{"Content-Type", "application/json"}, {"Authorization", "Bearer t"}}},
        {"body", "{\"name\":\"caf\u00e9\"}"},
    });
    EXPECT_EQ(onlyLocalRecord(*listener, "request"), expected);
    EXPECT_EQ(onlyServiceRecord(*service, "request"), expected);
    const auto file = VNLog::logString();
    ASSERT_TRUE(file.has_value());
    EXPECT_EQ(*file, listener->messages().at(0));
}

TEST_F(VNLogNetworkTest, MissingPartsOfARequestBecomeNullAndUndecodableBodiesEmpty) {
    URLRequest get(url("http://h.example/"));
    URLRequest post(url("http://h.example/upload"));
    post.setHTTPMethod("POST");
    post.setHTTPBody(Data{0x66, 0xff, 0xfe, 0x6f});
    URLRequest bare;
    bare.setHTTPMethod(std::nullopt);
    bare.setValue("x", "X-Removed");
    bare.setValue(std::nullopt, "X-Removed");
    bare.setHTTPBody(Data{});

    const struct {
        const char* name;
        const URLRequest& request;
        Value expected;
    } cases[] = {
        {"GET without body", get,
         Value::Dictionary{{"url", "http://h.example/"},
                           {"method", "GET"},
                           {"headers", Value::null()},
                           {"body", Value::null()}}},
        {"POST with invalid UTF-8", post,
         Value::Dictionary{{"url", "http://h.example/upload"},
                           {"method", "POST"},
                           {"headers", Value::null()},
                           {"body", ""}}},
        {"no URL, no method, emptied fields, empty body", bare,
         Value::Dictionary{{"url", Value::null()},
                           {"method", Value::null()},
                           {"headers", Value::Dictionary{}},
                           {"body", ""}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        service = std::make_shared<RecordingLoggerService>();
        registerService(true, VNLoggerLevel::debug);
        VNLog::logURLRequestIfEnabled(c.request);
        EXPECT_EQ(onlyServiceRecord(*service, "request"), c.expected);
    }
}

TEST_F(VNLogNetworkTest, RequestWriterFollowsTheResponsesSwitchNotTheRequestsSwitch) {
    const URLRequest request(url("https://example.com/"));
    turnLocalLogOn();
    UserDefaults::standard().setBool(true, VNLog::logRequestsPreferenceKey);
    UserDefaults::standard().setBool(false, VNLog::logResponsesPreferenceKey);
    VNLog::logURLRequestIfEnabled(request);
    EXPECT_TRUE(listener->messages().empty());
    EXPECT_EQ(VNLog::logString(), std::nullopt);

    UserDefaults::standard().setBool(false, VNLog::logRequestsPreferenceKey);
    UserDefaults::standard().setBool(true, VNLog::logResponsesPreferenceKey);
    VNLog::logURLRequestIfEnabled(request);
    EXPECT_EQ(onlyLocalRecord(*listener, "request")["url"], Value("https://example.com/"));
}

TEST_F(VNLogNetworkTest, ServiceGetsNetworkTrafficOnlyWhenEnabledAndItsNetworkLevelIsNotOff) {
    const URLRequest request(url("https://example.com/"));
    const HTTPURLResponse response(url("https://example.com/"), 200, {});
    const struct {
        bool enabled;
        VNLoggerLevel level;
        std::size_t expectedEntries;
    } cases[] = {
        {true, VNLoggerLevel::off, 0},
        {false, VNLoggerLevel::debug, 0},
        {true, VNLoggerLevel::error, 2},  // any level but off: traffic is sent at debug
        {true, VNLoggerLevel::verbose, 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(rawValue(c.level));
        service = std::make_shared<RecordingLoggerService>();
        registerService(c.enabled, c.level);
        VNLog::logURLRequestIfEnabled(request);
        VNLog::logURLResponseIfEnabled(response, request, bytes("ok"));
        const auto entries = service->entries();
        ASSERT_EQ(entries.size(), c.expectedEntries);
        for (const auto& entry : entries) EXPECT_EQ(entry.level, VNLoggerLevel::debug);
    }
    EXPECT_TRUE(listener->messages().empty());
}

TEST_F(VNLogNetworkTest, NothingIsBuiltWhenBothDestinationsAreClosed) {
    const URLRequest request(url("https://example.com/"));
    const CountingHTTPResponse response(url("https://example.com/"), 200,
                                        {{"Content-Type", "text/plain; charset=utf-8"}});
    UserDefaults::standard().setBool(true, VNLog::logResponsesBodyPreferenceKey);
    registerService(true, VNLoggerLevel::off);
    VNLog::logURLResponseIfEnabled(response, request, bytes("body"));
    VNLog::logURLResponseIfEnabled(response, request, "/tmp/body");
    EXPECT_EQ(response.reads, 0);
    EXPECT_TRUE(service->entries().empty());
    EXPECT_TRUE(listener->messages().empty());

    registerService(true, VNLoggerLevel::debug);
    VNLog::logURLResponseIfEnabled(response, request, bytes("body"));
    EXPECT_GT(response.reads, 0);
    EXPECT_EQ(service->entries().size(), 1u);
}

TEST_F(VNLogNetworkTest, HTTPResponseRecordCarriesTheRequestsURLStatusAndHeaders) {
    turnLocalLogOn();
    registerService(true, VNLoggerLevel::debug);
    URLRequest request(url("https://example.com/start"));
    const HTTPURLResponse response(url("https://example.com/after-redirect"), 201,
                                   {{"Content-Type", "application/json"}, {"ETag", "\"v1\""}});

    VNLog::logURLResponseIfEnabled(response, request, bytes(R"({"id":1})"));

    const Value expected(Value::Dictionary{
        {"url", "https://example.com/start"},
        {"bytes", 8},
        {"statusCode", 201},
        {"headers", Value::Dictionary{{"Content-Type", "application/json"}, {"ETag", "\"v1\""}}},
    });
    EXPECT_EQ(onlyLocalRecord(*listener, "response"), expected);
    EXPECT_EQ(onlyServiceRecord(*service, "response"), expected);
}

TEST_F(VNLogNetworkTest, NonHTTPResponseRecordHoldsOnlyURLAndBytesAndTheBodyWhenSwitchedOn) {
    URLRequest request(url("file:///tmp/in.txt"));
    const URLResponse response(url("file:///tmp/in.txt"), "text/plain", 5, std::nullopt);

    turnLocalLogOn(false);
    VNLog::logURLResponseIfEnabled(response, request, bytes("hello"));
    EXPECT_EQ(onlyLocalRecord(*listener, "response"),
              Value(Value::Dictionary{{"url", "file:///tmp/in.txt"}, {"bytes", 5}}));

    VNLog::reset();
    const auto withBodies = std::make_shared<CapturingLogListener>();
    VNLog::addListener(withBodies);
    turnLocalLogOn(true);
    VNLog::logURLResponseIfEnabled(response, request, bytes("hello"));
    EXPECT_EQ(
        onlyLocalRecord(*withBodies, "response"),
        Value(Value::Dictionary{{"url", "file:///tmp/in.txt"}, {"bytes", 5}, {"data", "hello"}}));
}

TEST_F(VNLogNetworkTest, ResponseDataIsDecodedWithTheResponsesEncodingOrUTF8) {
    registerService(true, VNLoggerLevel::debug);
    UserDefaults::standard().setBool(true, VNLog::logResponsesBodyPreferenceKey);
    ScopedProcessState::turnLogFileOn();  // the body switch needs the log on
    VNLog::removeListener(listener);
    const URLRequest request(url("https://example.com/"));
    const auto responseIn = [](const char* contentType) {
        return std::make_shared<const HTTPURLResponse>(
            url("https://example.com/"), 200,
            HTTPURLResponse::HeaderFields{{"Content-Type", contentType}});
    };
    const struct {
        const char* name;
        std::shared_ptr<const HTTPURLResponse> response;
        std::optional<Data> data;
        Value expectedData;
        int expectedBytes;
    } cases[] = {
        {"latin-1", responseIn("text/plain; charset=iso-8859-1"), Data{'c', 'a', 'f', 0xe9},
         "caf\u00e9", 4},
        {"latin-1 bytes without a charset are not UTF-8", responseIn("text/plain"),
         Data{'c', 'a', 'f', 0xe9}, Value::null(), 4},
        {"UTF-8 without a charset", responseIn("text/plain"), bytes("caf\u00e9"), "caf\u00e9", 5},
        {"unknown charset falls back to UTF-8", responseIn("text/plain; charset=x-unknown"),
         bytes("ok"), "ok", 2},
        {"UTF-16LE", responseIn("text/plain; charset=utf-16le"), Data{'h', 0, 'i', 0}, "hi", 4},
        {"invalid in its charset", responseIn("text/plain; charset=us-ascii"), Data{0x80},
         Value::null(), 1},
        {"no data", responseIn("text/plain"), std::nullopt, Value::null(), 0},
        {"empty data", responseIn("text/plain"), Data{}, "", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        service = std::make_shared<RecordingLoggerService>();
        VNFoundationServices::registerLoggerService(service);
        VNLog::logURLResponseIfEnabled(*c.response, request, c.data);
        const Value record = onlyServiceRecord(*service, "response");
        EXPECT_EQ(record["data"], c.expectedData);
        EXPECT_EQ(record["bytes"], Value(c.expectedBytes));
    }
}

TEST_F(VNLogNetworkTest, DownloadedBodiesAreLoggedByTheirPath) {
    registerService(true, VNLoggerLevel::debug);
    const URLRequest request(url("https://example.com/file.zip"));
    const HTTPURLResponse response(url("https://example.com/file.zip"), 200,
                                   {{"Content-Length", "1048576"}});
    const Value withoutData(
        Value::Dictionary{{"url", "https://example.com/file.zip"},
                          {"bytes", 0},
                          {"statusCode", 200},
                          {"headers", Value::Dictionary{{"Content-Length", "1048576"}}}});

    VNLog::logURLResponseIfEnabled(response, request, "/var/downloads/file.zip");
    EXPECT_EQ(onlyServiceRecord(*service, "response"), withoutData);

    turnLocalLogOn(true);
    VNFoundationServices::registerLoggerService(nullptr);
    const std::string path = "/var/downloads/file.zip";
    VNLog::logURLResponseIfEnabled(response, request, path);
    Value::Dictionary withData = *withoutData.dictionary();
    withData["data"] = "Downloaded data saved to path /var/downloads/file.zip";
    EXPECT_EQ(onlyLocalRecord(*listener, "response"), Value(withData));

    // Without a path or data the data form is chosen: no body at all, not a file.
    VNLog::reset();
    const auto noBody = std::make_shared<CapturingLogListener>();
    VNLog::addListener(noBody);
    VNLog::logURLResponseIfEnabled(response, request, std::nullopt);
    withData["data"] = Value::null();
    EXPECT_EQ(onlyLocalRecord(*noBody, "response"), Value(withData));
}

}  // namespace
}  // namespace vn
