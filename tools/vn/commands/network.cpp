// vn get: loads a URL through the library's URL session and prints the status, the header
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
#include "vn/network/URLError.h"
#include "vn/network/URLSession.h"

namespace {

using namespace vn;

int runGet(const tool::Arguments& arguments);

const tool::Command kGet{
    "get",
    "get URL [--method M] [--header \"Name: value\"]... [--data TEXT | --data-file PATH] "
    "[--save PATH] [--no-follow]",
    "load URL; print status, header fields and body (or the saved path), or the error", runGet};

struct GetOptions {
    URLRequest request;
    std::optional<std::string> dataFile;
    std::optional<std::string> savePath;
    bool follow = true;
};

// Reads the command line into options; false on a mistake.
bool parseGetArguments(const tool::Arguments& arguments, GetOptions& options) {
    if (arguments.empty()) return false;
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
            continue;
        }
        if (i + 1 >= arguments.size()) return false;
        const std::string& value = arguments[++i];
        if (flag == "--method") {
            options.request.setHTTPMethod(value);
        } else if (flag == "--header") {
            const auto colon = value.find(':');
            if (colon == std::string::npos) return false;
            const auto start = value.find_first_not_of(' ', colon + 1);
            options.request.setValue(start == std::string::npos ? "" : value.substr(start),
                                     value.substr(0, colon));
        } else if (flag == "--data") {
            options.request.setHTTPBody(Data(value.begin(), value.end()));
            if (options.request.httpMethod() == "GET") options.request.setHTTPMethod("POST");
        } else if (flag == "--data-file") {
            options.dataFile = value;
            if (options.request.httpMethod() == "GET") options.request.setHTTPMethod("POST");
        } else if (flag == "--save") {
            options.savePath = value;
        } else {
            return false;
        }
    }
    return true;
}

// Stops every redirect when --no-follow is given.
class RedirectPolicy final : public URLSessionDelegate {
  public:
    explicit RedirectPolicy(bool follow) : follow_(follow) {}
    void willPerformHTTPRedirection(const std::shared_ptr<URLSession>&,
                                    const std::shared_ptr<URLSessionTask>&,
                                    const HTTPURLResponsePtr&, URLRequest newRequest,
                                    RedirectCompletion completionHandler) override {
        completionHandler(follow_ ? std::optional<URLRequest>(std::move(newRequest))
                                  : std::nullopt);
    }

  private:
    bool follow_;
};

struct Outcome {
    std::optional<Data> data;
    std::optional<std::string> savedTo;
    URLResponsePtr response;
    ErrorPtr error;
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

Outcome load(const GetOptions& options) {
    auto session = URLSession::sessionWithConfiguration(
        URLSessionConfiguration::defaultSessionConfiguration(),
        std::make_shared<RedirectPolicy>(options.follow), nullptr);
    std::promise<Outcome> promise;
    URLSessionTaskPtr task;
    if (options.savePath) {
        task = session->downloadTaskWithRequest(
            options.request,
            [&](std::optional<std::string> location, URLResponsePtr response, ErrorPtr error) {
                Outcome outcome{std::nullopt, std::nullopt, std::move(response), std::move(error)};
                std::error_code failed;
                if (location)
                    std::filesystem::copy_file(*location, *options.savePath,
                                               std::filesystem::copy_options::overwrite_existing,
                                               failed);
                if (location && !failed) outcome.savedTo = options.savePath;
                if (location && failed && !outcome.error)
                    outcome.error = URLError(NSURLErrorCannotCreateFile, *options.savePath);
                promise.set_value(std::move(outcome));
            });
    } else {
        auto completion = [&](std::optional<Data> data, URLResponsePtr response, ErrorPtr error) {
            promise.set_value(
                Outcome{std::move(data), std::nullopt, std::move(response), std::move(error)});
        };
        task = options.dataFile
                   ? URLSessionTaskPtr(session->uploadTaskWithRequest(
                         options.request, *URL::URLWithString("file://" + *options.dataFile),
                         completion))
                   : URLSessionTaskPtr(session->dataTaskWithRequest(options.request, completion));
    }
    task->resume();
    auto future = promise.get_future();
    const bool progress = options.savePath && isatty(STDERR_FILENO);
    while (future.wait_for(std::chrono::milliseconds(100)) != std::future_status::ready) {
        if (progress) showProgress(*task);
    }
    if (progress) std::fprintf(stderr, "\n");
    session->finishTasksAndInvalidate();
    return future.get();
}

int printOutcome(const Outcome& outcome) {
    if (outcome.error) {
        std::printf("error: domain %s code %lld: %s\n", outcome.error->domain().c_str(),
                    static_cast<long long>(outcome.error->code()),
                    outcome.error->localizedDescription().c_str());
        return 1;
    }
    if (const auto http = std::dynamic_pointer_cast<const HTTPURLResponse>(outcome.response)) {
        std::printf("status %lld\n", static_cast<long long>(http->statusCode()));
        for (const auto& [name, value] : http->allHeaderFields())
            std::printf("%s: %s\n", name.c_str(), value.c_str());
        std::printf("\n");
    }
    if (outcome.savedTo) {
        std::printf("saved to %s\n", outcome.savedTo->c_str());
    } else if (outcome.data) {
        std::fwrite(outcome.data->data(), 1, outcome.data->size(), stdout);
        if (!outcome.data->empty() && outcome.data->back() != '\n') std::printf("\n");
    }
    return 0;
}

int runGet(const tool::Arguments& arguments) {
    GetOptions options;
    if (!parseGetArguments(arguments, options)) return tool::usageError(kGet);
    if (options.dataFile) {
        options.dataFile = std::filesystem::absolute(*options.dataFile).string();
    }
    return printOutcome(load(options));
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

void printTourOutcome(const Outcome& outcome) {
    if (outcome.error) {
        std::printf("  error %s %lld: %s\n", outcome.error->domain().c_str(),
                    static_cast<long long>(outcome.error->code()),
                    outcome.error->localizedDescription().c_str());
        return;
    }
    if (const auto http = std::dynamic_pointer_cast<const HTTPURLResponse>(outcome.response)) {
        std::printf(
            "  status %lld, MIME type %s, charset %s\n", static_cast<long long>(http->statusCode()),
            http->mimeType().value_or("?").c_str(), http->textEncodingName().value_or("?").c_str());
    }
    if (outcome.data)
        std::printf("  body %.*s\n", static_cast<int>(outcome.data->size()),
                    reinterpret_cast<const char*>(outcome.data->data()));
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
        printTourOutcome(load(options));
    }
    std::printf("GET %s again, now that the server has stopped\n",
                options.request.url()->absoluteString().c_str());
    printTourOutcome(load(options));
}

const tool::CommandRegistration kGetRegistration{kGet};
const tool::TourRegistration kNetworkTour{{95, "URL loading", showNetworkTour}};

}  // namespace
