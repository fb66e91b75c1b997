// URL loading against a loopback server in the same process, each beside its libcurl anchor:
// - a data task round trip with a new session per request (as the request operation makes
//   one per run) beside a reused libcurl easy handle fetching the same URL;
// - a complete VNURLRequestOperation (start to the delegate's call on the main thread) beside
//   the same anchor;
// - 1,000 concurrent small requests through one session beside raw libcurl multi;
// - a 50 MB download to a file beside libcurl writing the same file.
#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <future>
#include <memory>
#include <string>

#include "testing/LoopbackHTTPServer.h"
#include "vn/concurrency/RunLoop.h"
#include "vn/network/URLSession.h"
#include "vn/network/VNURLRequestOperation.h"
#include "vn/platform/FileSystem.h"

namespace {

using vn::testing::LoopbackHTTPServer;

constexpr int kConcurrent = 1000;
const std::string kBigBody = "/bytes?size=52428800";

LoopbackHTTPServer& server() {
    static LoopbackHTTPServer* const instance = [] {
        LoopbackHTTPServer::Options options;
        options.threads = 64;
        return new LoopbackHTTPServer(options);
    }();
    return *instance;
}

vn::URL urlOf(const std::string& pathAndQuery) {
    return *vn::URL::URLWithString(server().url(pathAndQuery));
}

size_t discard(char*, size_t size, size_t count, void*) {
    return size * count;
}

size_t writeToFile(char* data, size_t size, size_t count, void* file) {
    return std::fwrite(data, size, count, static_cast<std::FILE*>(file)) * size;
}

void BM_CurlReusedEasyHandle(benchmark::State& state) {
    CURL* easy = curl_easy_init();
    const std::string url = server().url("/status/200");
    curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &discard);
    for (auto _ : state) {
        if (curl_easy_perform(easy) != CURLE_OK) state.SkipWithError("libcurl failed");
    }
    curl_easy_cleanup(easy);
}
BENCHMARK(BM_CurlReusedEasyHandle)->UseRealTime();

void BM_DataTaskNewSessionPerRequest(benchmark::State& state) {
    const vn::URL url = urlOf("/status/200");
    for (auto _ : state) {
        auto session = vn::URLSession::sessionWithConfiguration(
            vn::URLSessionConfiguration::defaultSessionConfiguration());
        std::promise<bool> done;
        session
            ->dataTaskWithURL(url, [&](std::optional<vn::Data>, vn::URLResponsePtr,
                                       vn::ErrorPtr error) { done.set_value(!error); })
            ->resume();
        if (!done.get_future().get()) state.SkipWithError("task failed");
        session->finishTasksAndInvalidate();
    }
}
BENCHMARK(BM_DataTaskNewSessionPerRequest)->UseRealTime();

class FinishedFlag : public vn::VNURLRequestOperationDelegate {
  public:
    void urlRequestOperationDidFinishLoading(
        const std::shared_ptr<vn::VNURLRequestOperation>&) override {
        done = true;
    }
    void urlRequestOperationDidFailLoading(
        const std::shared_ptr<vn::VNURLRequestOperation>&) override {
        done = failed = true;
    }
    bool done = false;
    bool failed = false;
};

// The benchmark thread is the program's main thread, so it drives the main run loop.
void BM_RequestOperationToDelegateOnMain(benchmark::State& state) {
    const vn::URLRequest request(urlOf("/status/200"));
    auto delegate = std::make_shared<FinishedFlag>();
    for (auto _ : state) {
        delegate->done = false;
        auto operation = std::make_shared<vn::VNURLRequestOperation>();
        operation->setRequest(request);
        operation->setDelegate(delegate);
        operation->start();
        vn::RunLoop::main().runUntil([&] { return delegate->done; }, std::chrono::seconds(30));
        if (delegate->failed || !delegate->done) state.SkipWithError("operation failed");
    }
}
BENCHMARK(BM_RequestOperationToDelegateOnMain)->UseRealTime();

void BM_CurlMultiThousandConcurrent(benchmark::State& state) {
    const std::string url = server().url("/status/200");
    CURLM* multi = curl_multi_init();
    curl_multi_setopt(multi, CURLMOPT_MAX_HOST_CONNECTIONS, 6L);
    std::vector<CURL*> handles(kConcurrent);
    for (auto& easy : handles) {
        easy = curl_easy_init();
        curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
        curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &discard);
    }
    for (auto _ : state) {
        for (CURL* easy : handles) curl_multi_add_handle(multi, easy);
        int running = 1;
        while (running) {
            curl_multi_perform(multi, &running);
            if (running) curl_multi_poll(multi, nullptr, 0, 1000, nullptr);
        }
        int queued = 0;
        while (CURLMsg* message = curl_multi_info_read(multi, &queued)) {
            if (message->data.result != CURLE_OK) state.SkipWithError("libcurl failed");
        }
        for (CURL* easy : handles) curl_multi_remove_handle(multi, easy);
    }
    for (CURL* easy : handles) curl_easy_cleanup(easy);
    curl_multi_cleanup(multi);
}
BENCHMARK(BM_CurlMultiThousandConcurrent)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_SessionThousandConcurrent(benchmark::State& state) {
    const vn::URL url = urlOf("/status/200");
    auto session = vn::URLSession::sessionWithConfiguration(
        vn::URLSessionConfiguration::defaultSessionConfiguration());
    for (auto _ : state) {
        std::atomic<int> pending{kConcurrent};
        std::atomic<bool> failed{false};
        std::promise<void> done;
        for (int i = 0; i < kConcurrent; ++i) {
            session
                ->dataTaskWithURL(
                    url,
                    [&](std::optional<vn::Data>, vn::URLResponsePtr, vn::ErrorPtr error) {
                        if (error) failed = true;
                        if (--pending == 0) done.set_value();
                    })
                ->resume();
        }
        done.get_future().wait();
        if (failed) state.SkipWithError("a task failed");
    }
}
BENCHMARK(BM_SessionThousandConcurrent)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_CurlDownloadFiftyMegabytesToFile(benchmark::State& state) {
    CURL* easy = curl_easy_init();
    const std::string url = server().url(kBigBody);
    const std::string path = vn::temporaryDirectory() + "vn-bench-curl.bin";
    curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &writeToFile);
    for (auto _ : state) {
        std::FILE* file = std::fopen(path.c_str(), "wb");
        curl_easy_setopt(easy, CURLOPT_WRITEDATA, file);
        if (curl_easy_perform(easy) != CURLE_OK) state.SkipWithError("libcurl failed");
        std::fclose(file);
    }
    unlink(path.c_str());
    curl_easy_cleanup(easy);
    state.SetBytesProcessed(state.iterations() * 52428800);
}
BENCHMARK(BM_CurlDownloadFiftyMegabytesToFile)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_DownloadTaskFiftyMegabytesToFile(benchmark::State& state) {
    const vn::URL url = urlOf(kBigBody);
    auto session = vn::URLSession::sessionWithConfiguration(
        vn::URLSessionConfiguration::defaultSessionConfiguration());
    for (auto _ : state) {
        std::promise<bool> done;
        session
            ->downloadTaskWithURL(url, [&](std::optional<std::string> location, vn::URLResponsePtr,
                                           vn::ErrorPtr) { done.set_value(location.has_value()); })
            ->resume();
        if (!done.get_future().get()) state.SkipWithError("download failed");
    }
    state.SetBytesProcessed(state.iterations() * 52428800);
}
BENCHMARK(BM_DownloadTaskFiftyMegabytesToFile)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
