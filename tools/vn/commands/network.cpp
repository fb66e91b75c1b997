// The network commands and tour sections. vn get loads a URL through a VNURLRequestOperation
// (or, with --json, the request → data → JSON chain) and prints the status, the header
// fields and the body (or where --save put it), or the error; vn oauth and vn warning show
// OAuth 1.0 authorization headers and the warnings of HTTP "Warning" headers; the tour shows
// both, URL loading against a loopback server that the tour runs itself.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <future>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "../FileReading.h"
#include "../Registry.h"
#include "vn/concurrency/OperationQueue.h"
#include "vn/concurrency/RunLoop.h"
#include "vn/log/VNLog.h"
#include "vn/network/OAuth.h"
#include "vn/network/OperationQueueVNFoundation.h"
#include "vn/network/URLSession.h"
#include "vn/network/VNURLRequestOperation.h"
#include "vn/network/VNUtilitiesHTTP.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/UserDefaults.h"
#include "vn/values/JSON.h"

namespace {

using namespace vn;

int runGet(const tool::Arguments& arguments);

const tool::Command kGet{
    "get",
    "get URL [--method M] [--header \"Name: value\"]... [--data TEXT | --data-file PATH] "
    "[--save PATH] [--no-follow] [--trace] [--json]",
    "load URL with a request operation; print status, header fields and body (or the saved "
    "path, or the parsed JSON), or the error",
    "vn get http://127.0.0.1:8080/items --header 'Accept: application/json' --json", runGet};

struct GetOptions {
    URLRequest request;
    std::optional<std::string> savePath;
    bool follow = true;
    bool trace = false;
    bool json = false;
};

// Applies one option with its value to options; returns the exit status of a mistake
// (kUsage for an unknown option, kBadData for an unusable value), or kSuccess.
int applyGetOption(const std::string& flag, const std::string& value, GetOptions& options) {
    if (flag == "--method") {
        if (value.empty()) return tool::badData(kGet, "the method is empty");
        options.request.setHTTPMethod(value);
    } else if (flag == "--header") {
        const auto colon = value.find(':');
        if (colon == std::string::npos || colon == 0)
            return tool::badData(kGet, "a header is \"Name: value\", not \"" + value + "\"");
        const auto start = value.find_first_not_of(' ', colon + 1);
        options.request.setValue(start == std::string::npos ? "" : value.substr(start),
                                 value.substr(0, colon));
    } else if (flag == "--data" || flag == "--data-file") {
        std::string problem;
        const auto body = flag == "--data" ? std::optional<Data>(Data(value.begin(), value.end()))
                                           : tool::readRegularFile(value, &problem);
        if (!body) return tool::badData(kGet, problem);
        options.request.setHTTPBody(*body);
        if (options.request.httpMethod() == "GET") options.request.setHTTPMethod("POST");
    } else if (flag == "--save") {
        if (value.empty()) return tool::badData(kGet, "the path to save to is empty");
        options.savePath = value;
    } else {
        return tool::usageError(kGet);
    }
    return tool::kSuccess;
}

// Reads the command line into options; returns the exit status of a mistake, or kSuccess.
int parseGetArguments(const tool::Arguments& arguments, GetOptions& options) {
    if (arguments.empty()) return tool::usageError(kGet);
    const auto url = URL::URLWithString(arguments.front());
    // Only absolute URLs: a bare word must not become a guessed host name.
    if (!url || !url->scheme() || !url->host() || url->host()->empty())
        return tool::badData(kGet, "not an absolute URL: " + arguments.front());
    options.request = URLRequest(*url);
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& flag = arguments[i];
        if (flag == "--no-follow") {
            options.follow = false;
        } else if (flag == "--trace") {
            options.trace = true;
        } else if (flag == "--json") {
            options.json = true;
        } else if (i + 1 >= arguments.size()) {
            return tool::usageError(kGet);
        } else if (const int status = applyGetOption(flag, arguments[++i], options)) {
            return status;
        }
    }
    return options.json && options.savePath ? tool::usageError(kGet) : tool::kSuccess;
}

// Traces requests, responses and bodies to the console.
void turnTracingOn() {
    VNUtilities::setShowDeveloperInfo(true);
    UserDefaults& defaults = UserDefaults::standard();
    for (const auto key : {VNLog::logEnabledPreferenceKey, VNLog::logRequestsPreferenceKey,
                           VNLog::logResponsesPreferenceKey, VNLog::logResponsesBodyPreferenceKey})
        defaults.setBool(true, key);
}

// Hears both operations of a request → JSON chain, on the main thread.
class GetDelegate final : public VNURLRequestAndParseJsonDelegate {
  public:
    void urlRequestOperationDidFinishLoading(
        const std::shared_ptr<VNURLRequestOperation>&) override {
        loaded = true;
    }
    void urlRequestOperationDidFailLoading(const std::shared_ptr<VNURLRequestOperation>&) override {
        loaded = true;
    }
    void parseJsonOperationDidParse(const std::shared_ptr<VNParseJsonOperation>&,
                                    const Value& value) override {
        parsed = value;
        parseDone = true;
    }
    void parseJsonOperationDidFail(const std::shared_ptr<VNParseJsonOperation>&,
                                   const ErrorPtr& error) override {
        parseError = error;
        parseDone = true;
    }
    bool loaded = false;
    bool parseDone = false;
    Value parsed;
    ErrorPtr parseError;
};

void showProgress(const URLSessionTask& task) {
    const auto response = task.response();
    const std::int64_t received = task.countOfBytesReceived();
    const std::int64_t expected = response ? response->expectedContentLength() : -1;
    if (expected > 0) {
        const int filled = static_cast<int>(received * 40 / expected);
        std::fprintf(stderr, "\r[%-40s] %3d%%", std::string(filled, '#').c_str(),
                     static_cast<int>(received * 100 / expected));
    } else {
        std::fprintf(stderr, "\r%lld bytes", static_cast<long long>(received));
    }
}

// Turns the main run loop until done() holds, showing the download's progress on a terminal.
void pumpUntil(const std::function<bool()>& done, const VNURLRequestOperation& operation,
               bool showsProgress) {
    while (!RunLoop::main().runUntil(done, std::chrono::milliseconds(100))) {
        if (!showsProgress) continue;
        if (const auto task = operation.sessionTask()) showProgress(*task);
    }
    if (showsProgress) std::fprintf(stderr, "\n");
}

int printError(const ErrorPtr& error) {
    std::printf("error: domain %s code %lld: %s\n", error->domain().c_str(),
                static_cast<long long>(error->code()), error->localizedDescription().c_str());
    return tool::kBadData;
}

void printResponseHead(const URLResponsePtr& response) {
    const auto http = std::dynamic_pointer_cast<const HTTPURLResponse>(response);
    if (!http) return;
    std::printf("status %lld\n", static_cast<long long>(http->statusCode()));
    for (const auto& [name, value] : http->allHeaderFields())
        std::printf("%s: %s\n", name.c_str(), value.c_str());
    std::printf("\n");
}

int printOutcome(const VNURLRequestOperation& operation) {
    if (const ErrorPtr error = operation.error()) return printError(error);
    printResponseHead(operation.response());
    if (const auto path = operation.saveToFilePath()) {
        std::printf("saved to %s\n", path->c_str());
    } else if (const auto data = operation.data()) {
        std::fwrite(data->data(), 1, data->size(), stdout);
        if (!data->empty() && data->back() != '\n') std::printf("\n");
    }
    return tool::kSuccess;
}

int runJSONChain(const GetOptions& options) {
    auto queue = std::make_shared<OperationQueue>();
    auto delegate = std::make_shared<GetDelegate>();
    const auto chain =
        addURLRequestAndParseJSONOperationsForRequest(*queue, options.request, delegate);
    chain.request->setFollowRedirects(options.follow);
    pumpUntil([&] { return delegate->parseDone; }, *chain.request, false);
    if (const ErrorPtr error = chain.request->error()) return printError(error);
    printResponseHead(chain.request->response());
    if (delegate->parseError) return printError(delegate->parseError);
    std::printf("%s\n", jsonString(delegate->parsed, JSONWritingStyle::pretty).c_str());
    return tool::kSuccess;
}

// Runs a request operation for options to its end, on this (the main) thread's run loop.
VNURLRequestOperationPtr performRequest(const GetOptions& options) {
    auto operation = std::make_shared<VNURLRequestOperation>();
    auto delegate = std::make_shared<GetDelegate>();
    operation->setRequest(options.request);
    operation->setFollowRedirects(options.follow);
    operation->setDelegate(delegate);
    if (options.savePath)
        operation->setSaveToFilePath(std::filesystem::absolute(*options.savePath).string());
    operation->start();
    pumpUntil([&] { return delegate->loaded; }, *operation,
              options.savePath && isatty(STDERR_FILENO));
    return operation;
}

int runGet(const tool::Arguments& arguments) {
    GetOptions options;
    if (const int status = parseGetArguments(arguments, options)) return status;
    if (options.trace) turnTracingOn();
    if (options.json) return runJSONChain(options);
    return printOutcome(*performRequest(options));
}

// A one-request HTTP server on 127.0.0.1, for the tour: answers the first request it gets
// with a small JSON body.
class TourServer {
  public:
    TourServer() {
        listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (listener_ < 0 || bind(listener_, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
            listen(listener_, 1) != 0 ||
            getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0)
            return;
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { serveOne(); });
    }
    ~TourServer() {
        if (listener_ >= 0) shutdown(listener_, SHUT_RDWR);
        if (thread_.joinable()) thread_.join();
        if (listener_ >= 0) close(listener_);
    }
    int port() const { return port_; }

  private:
    void serveOne() {
        const int connection = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) return;
        std::string request;
        char buffer[4096];
        while (request.find("\r\n\r\n") == std::string::npos) {
            const ssize_t got = read(connection, buffer, sizeof buffer);
            if (got <= 0) break;
            request.append(buffer, static_cast<std::size_t>(got));
        }
        const std::string body = "{\"greeting\":\"hello from 127.0.0.1\"}";
        const std::string response =
            "HTTP/1.1 200 OK\r\nContent-Type: application/json; charset=utf-8\r\nContent-Length: " +
            std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
        [[maybe_unused]] const auto sent = write(connection, response.data(), response.size());
        close(connection);
    }

    int listener_ = -1;
    int port_ = 0;
    std::thread thread_;
};

void printTourOutcome(const VNURLRequestOperation& operation) {
    if (const ErrorPtr error = operation.error()) {
        std::printf("  error %s %lld: %s\n", error->domain().c_str(),
                    static_cast<long long>(error->code()), error->localizedDescription().c_str());
        return;
    }
    if (const auto http = std::dynamic_pointer_cast<const HTTPURLResponse>(operation.response())) {
        std::printf(
            "  status %lld, MIME type %s, charset %s\n", static_cast<long long>(http->statusCode()),
            http->mimeType().value_or("?").c_str(), http->textEncodingName().value_or("?").c_str());
    }
    if (const auto data = operation.data())
        std::printf("  body %.*s\n", static_cast<int>(data->size()),
                    reinterpret_cast<const char*>(data->data()));
}

void showNetworkTour() {
    GetOptions options;
    {
        TourServer server;
        if (server.port() == 0) {
            std::printf("(no loopback server could be started)\n");
            return;
        }
        options.request = URLRequest(
            *URL::URLWithString("http://127.0.0.1:" + std::to_string(server.port()) + "/hello"));
        std::printf("GET %s (a server the tour runs)\n",
                    options.request.url()->absoluteString().c_str());
        printTourOutcome(*performRequest(options));
    }
    std::printf("GET %s again, now that the server has stopped\n",
                options.request.url()->absoluteString().c_str());
    printTourOutcome(*performRequest(options));
}

const tool::CommandRegistration kGetRegistration{kGet};
const tool::TourRegistration kNetworkTour{{95, "URL loading", showNetworkTour}};

}  // namespace

namespace {

using namespace vn;

using Options = std::map<std::string, std::string, std::less<>>;

// "--name value" pairs; absent when an argument is not such a pair or a name repeats.
std::optional<Options> optionsFrom(const tool::Arguments& arguments) {
    Options options;
    if (arguments.size() % 2 != 0) return std::nullopt;
    for (std::size_t i = 0; i < arguments.size(); i += 2) {
        if (!arguments[i].starts_with("--")) return std::nullopt;
        if (!options.emplace(arguments[i].substr(2), arguments[i + 1]).second) return std::nullopt;
    }
    return options;
}

std::optional<std::string_view> option(const Options& options, std::string_view name) {
    const auto found = options.find(name);
    if (found == options.end()) return std::nullopt;
    return found->second;
}

// A whole number in the 64-bit range, written in decimal digits with an optional "-".
std::optional<std::int64_t> wholeInteger(std::string_view text) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

extern const tool::Command kOAuth;

int runOAuth(const tool::Arguments& arguments) {
    const std::optional<Options> options = optionsFrom(arguments);
    if (!options) return tool::usageError(kOAuth);
    for (const auto& [name, value] : *options) {
        static const Options known = {
            {"url", ""},          {"method", ""},          {"body", ""},
            {"consumer-key", ""}, {"consumer-secret", ""}, {"token", ""},
            {"token-secret", ""}, {"nonce", ""},           {"timestamp", ""}};
        if (!known.contains(name)) return tool::usageError(kOAuth);
    }
    const auto urlText = option(*options, "url");
    const auto method = option(*options, "method");
    const auto consumerKey = option(*options, "consumer-key");
    const auto consumerSecret = option(*options, "consumer-secret");
    const auto nonce = option(*options, "nonce");
    const auto timestampText = option(*options, "timestamp");
    if (!urlText || !method || !consumerKey || !consumerSecret ||
        nonce.has_value() != timestampText.has_value())
        return tool::usageError(kOAuth);

    const std::optional<URL> url = URL::URLWithString(*urlText);
    if (!url) return tool::badData(kOAuth, "not a URL: " + std::string(*urlText));
    std::optional<Data> body;
    if (const auto text = option(*options, "body")) body = Data(text->begin(), text->end());
    const auto token = option(*options, "token");
    const auto tokenSecret = option(*options, "token-secret");

    std::optional<std::string> header;
    if (nonce) {
        const std::optional<std::int64_t> timestamp = wholeInteger(*timestampText);
        if (!timestamp)
            return tool::badData(kOAuth, "the timestamp is not a whole number of seconds");
        header = OAuthorizationHeader(*url, *method, body, *consumerKey, *consumerSecret, token,
                                      tokenSecret, *nonce, *timestamp);
    } else {
        header = OAuthorizationHeader(*url, *method, body, *consumerKey, *consumerSecret, token,
                                      tokenSecret);
    }
    if (!header) return tool::badData(kOAuth, "the URL needs a scheme and a host to be signed");
    std::printf("%s\n", header->c_str());
    return tool::kSuccess;
}

const tool::Command kOAuth{
    "oauth",
    "oauth --url U --method M [--body B] --consumer-key K --consumer-secret S [--token T "
    "--token-secret TS] [--nonce N --timestamp T]",
    "the OAuth 1.0 (HMAC-SHA1) Authorization header value of a request",
    "vn oauth --url https://api.example.com/photos --method GET --consumer-key key "
    "--consumer-secret secret --nonce n1 --timestamp 1700000000",
    runOAuth,
};

// Prints each warning of the header value; returns the exit status.
int describeWarnings(std::string_view value) {
    const auto warnings = VNUtilities::httpWarningsFromHeader(value);
    if (!warnings) {
        std::printf("no warnings: the value is empty or cannot be read\n");
        return tool::kBadData;
    }
    for (const auto& warning : *warnings) {
        std::printf("code %lld  agent %s  text \"%s\"\n", static_cast<long long>(warning->code()),
                    warning->agent().c_str(), warning->text().c_str());
        std::printf("  user %s  system %s  encoded %s  message \"%s\"\n",
                    warning->isUserWarning() ? "yes" : "no",
                    warning->isSystemWarning() ? "yes" : "no",
                    warning->isWarningEncoded() ? "yes" : "no", warning->warningText().c_str());
    }
    return tool::kSuccess;
}

extern const tool::Command kWarning;

int runWarning(const tool::Arguments& arguments) {
    if (arguments.size() != 1) return tool::usageError(kWarning);
    return describeWarnings(arguments.front());
}

const tool::Command kWarning{
    "warning",
    "warning 'VALUE'",
    "the warnings of an HTTP Warning header value: code, agent, text and their classification",
    "vn warning '199 api.example.com \"Disk almost full\"'",
    runWarning,
};

void showHTTP() {
    const auto url = URL::URLWithString("https://api.example.com/photos?size=original");
    const auto signed_ =
        OAuthSignRequest(*url, "GET", std::nullopt, "consumer-key", "consumer-secret", "token",
                         "token-secret", "F00DCAFE-0000-4000-8000-000000000001", 1700000000);
    std::printf("OAuth 1.0 signing of GET %s\n", url->absoluteString().c_str());
    std::printf("base string  %s\n", signed_->signatureBaseString.c_str());
    std::printf("key          %s\n", signed_->signingKey.c_str());
    std::printf("header       %s\n\n", signed_->authorizationHeader.c_str());

    const char* value =
        R"(199 api.example.com "Encoded:User:Disk%20almost%20full", )"
        R"(299 cache:8080 "System:stale, revalidate" "Sat, 25 Aug 2012 23:34:45 GMT")";
    std::printf("Warning: %s\n", value);
    describeWarnings(value);
}

const tool::CommandRegistration kOAuthRegistration{kOAuth};
const tool::CommandRegistration kWarningRegistration{kWarning};
const tool::TourRegistration kHTTPTour{{55, "Network: OAuth headers and HTTP warnings", showHTTP}};

}  // namespace
