// vn get: loads a URL through a VNURLRequestOperation (or, with --json, the request → data →
// JSON chain) and prints the status, the header
// fields and the body (or where --save put it), or the error; and the tour's section on URL
// loading, against a loopback server that the tour runs itself.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <string>
#include <thread>

#include "../Registry.h"
#include "vn/concurrency/OperationQueue.h"
#include "vn/concurrency/RunLoop.h"
#include "vn/log/VNLog.h"
#include "vn/network/OperationQueueVNFoundation.h"
#include "vn/network/URLSession.h"
#include "vn/network/VNURLRequestOperation.h"
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
    runGet};

struct GetOptions {
    URLRequest request;
    std::optional<std::string> savePath;
    bool follow = true;
    bool trace = false;
    bool json = false;
};

std::optional<Data> readWholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    return Data(std::istreambuf_iterator<char>(in), {});
}

// Applies one option with its value to options; false when the option is unknown or the value
// unusable.
bool applyGetOption(const std::string& flag, const std::string& value, GetOptions& options) {
    if (flag == "--method") {
        options.request.setHTTPMethod(value);
    } else if (flag == "--header") {
        const auto colon = value.find(':');
        if (colon == std::string::npos || colon == 0) return false;
        const auto start = value.find_first_not_of(' ', colon + 1);
        options.request.setValue(start == std::string::npos ? "" : value.substr(start),
                                 value.substr(0, colon));
    } else if (flag == "--data" || flag == "--data-file") {
        const auto body = flag == "--data" ? std::optional<Data>(Data(value.begin(), value.end()))
                                           : readWholeFile(value);
        if (!body) {
            std::fprintf(stderr, "vn get: cannot read %s\n", value.c_str());
            return false;
        }
        options.request.setHTTPBody(*body);
        if (options.request.httpMethod() == "GET") options.request.setHTTPMethod("POST");
    } else if (flag == "--save") {
        options.savePath = value;
    } else {
        return false;
    }
    return true;
}

// Reads the command line into options; false on a mistake.
bool parseGetArguments(const tool::Arguments& arguments, GetOptions& options) {
    if (arguments.empty() || arguments.front() == "--help") return false;
    const auto url = URL::URLWithString(arguments.front());
    if (!url) {
        std::fprintf(stderr, "vn get: not a URL: %s\n", arguments.front().c_str());
        return false;
    }
    options.request = URLRequest(*url);
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& flag = arguments[i];
        if (flag == "--no-follow") {
            options.follow = false;
        } else if (flag == "--trace") {
            options.trace = true;
        } else if (flag == "--json") {
            options.json = true;
        } else if (i + 1 >= arguments.size() || !applyGetOption(flag, arguments[++i], options)) {
            return false;
        }
    }
    return !(options.json && options.savePath);
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
    return 1;
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
    return 0;
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
    return 0;
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
    if (!parseGetArguments(arguments, options)) return tool::usageError(kGet);
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
