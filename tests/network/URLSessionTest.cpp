#include "vn/network/URLSession.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <thread>

#include "network/NetworkTesting.h"
#include "testing/Http2LoopbackServer.h"
#include "testing/LoopbackHTTPServer.h"
#include "testing/RawTestClient.h"
#include "vn/concurrency/DispatchSemaphore.h"
#include "vn/formatting/StringUtilities.h"
#include "vn/network/URLConnectionFailureInjection.h"
#include "vn/network/URLError.h"
#include "vn/platform/Exception.h"
#include "vn/platform/FileSystem.h"

namespace vn {
namespace {

using namespace std::chrono_literals;
using testing::load;
using testing::LoadResult;
using testing::LoopbackHTTPServer;
using testing::plainSession;
using testing::RawLoopbackServer;
using testing::requestFor;

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Records every delegate call in order, checks that none overlaps another, and answers
// redirects and responses as configured.
class RecordingDelegate : public URLSessionDelegate {
  public:
    std::optional<bool> followRedirects;  // absent: the default answer
    URLSessionResponseDisposition disposition = URLSessionResponseDisposition::allow;

    void willPerformHTTPRedirection(const std::shared_ptr<URLSession>& session,
                                    const std::shared_ptr<URLSessionTask>& task,
                                    const HTTPURLResponsePtr& response, URLRequest newRequest,
                                    RedirectCompletion completion) override {
        enter("redirect " + std::to_string(response->statusCode()));
        if (followRedirects && !*followRedirects) {
            completion(std::nullopt);
        } else {
            URLSessionDelegate::willPerformHTTPRedirection(session, task, response, newRequest,
                                                           completion);
        }
        leave();
    }
    void didReceiveResponse(const std::shared_ptr<URLSession>&,
                            const std::shared_ptr<URLSessionDataTask>&, const URLResponsePtr&,
                            ResponseCompletion completion) override {
        enter("response");
        completion(disposition);
        leave();
    }
    void didBecomeDownloadTask(
        const std::shared_ptr<URLSession>&, const std::shared_ptr<URLSessionDataTask>&,
        const std::shared_ptr<URLSessionDownloadTask>& downloadTask) override {
        enter("became download");
        std::lock_guard lock(mutex_);
        downloadTask_ = downloadTask;
        leave();
    }
    void didReceiveData(const std::shared_ptr<URLSession>&,
                        const std::shared_ptr<URLSessionDataTask>&, const Data& data) override {
        enter("");
        std::lock_guard lock(mutex_);
        received_.append(data.begin(), data.end());
        leave();
    }
    void didFinishDownloadingToURL(const std::shared_ptr<URLSession>&,
                                   const std::shared_ptr<URLSessionDownloadTask>&,
                                   const std::string& location) override {
        enter("downloaded");
        std::lock_guard lock(mutex_);
        downloaded_ = readFile(location);
        location_ = location;
        leave();
    }
    void didCompleteWithError(const std::shared_ptr<URLSession>&,
                              const std::shared_ptr<URLSessionTask>& task,
                              const ErrorPtr& error) override {
        enter("complete " + std::to_string(error ? error->code() : 0));
        std::lock_guard lock(mutex_);
        completedTask_ = task;
        ++completions_;
        changed_.notify_all();
        leave();
    }
    void didBecomeInvalidWithError(const std::shared_ptr<URLSession>&, const ErrorPtr&) override {
        enter("invalid");
        std::lock_guard lock(mutex_);
        invalid_ = true;
        changed_.notify_all();
        leave();
    }

    bool waitForCompletions(int count) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, testing::kDeadline, [&] { return completions_ >= count; });
    }
    bool waitUntilInvalid() {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, testing::kDeadline, [&] { return invalid_; });
    }
    std::vector<std::string> events() {
        std::lock_guard lock(mutex_);
        return events_;
    }
    std::string received() {
        std::lock_guard lock(mutex_);
        return received_;
    }
    std::string downloaded() {
        std::lock_guard lock(mutex_);
        return downloaded_;
    }
    std::string location() {
        std::lock_guard lock(mutex_);
        return location_;
    }
    URLSessionTaskPtr completedTask() {
        std::lock_guard lock(mutex_);
        return completedTask_;
    }
    URLSessionDownloadTaskPtr downloadTask() {
        std::lock_guard lock(mutex_);
        return downloadTask_;
    }
    bool overlapped() const { return overlapped_; }

  private:
    void enter(const std::string& event) {
        if (inside_.fetch_add(1) != 0) overlapped_ = true;
        if (event.empty()) return;
        std::lock_guard lock(mutex_);
        events_.push_back(event);
    }
    void leave() { inside_.fetch_sub(1); }

    std::atomic<int> inside_{0};
    std::atomic<bool> overlapped_{false};
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> events_;
    std::string received_;
    std::string downloaded_;
    std::string location_;
    URLSessionTaskPtr completedTask_;
    URLSessionDownloadTaskPtr downloadTask_;
    int completions_ = 0;
    bool invalid_ = false;
};

URLSessionPtr sessionWith(const std::shared_ptr<RecordingDelegate>& delegate,
                          URLSessionConfiguration configuration =
                              URLSessionConfiguration::defaultSessionConfiguration()) {
    return URLSession::sessionWithConfiguration(configuration, delegate, nullptr);
}

TEST(URLSession, DefaultConfigurationHasThePlatformValues) {
    const auto configuration = URLSessionConfiguration::defaultSessionConfiguration();
    EXPECT_EQ(configuration.timeoutIntervalForRequest.count(), 60.0);
    EXPECT_EQ(configuration.timeoutIntervalForResource.count(), 7.0 * 24 * 3600);
    EXPECT_FALSE(configuration.waitsForConnectivity);
    EXPECT_EQ(configuration.HTTPMaximumConnectionsPerHost, 6);
    auto changed = configuration;
    changed.waitsForConnectivity = true;
    const auto session = URLSession::sessionWithConfiguration(changed);
    changed.waitsForConnectivity = false;
    EXPECT_TRUE(session->configuration().waitsForConnectivity);
}

TEST(URLSession, DataTaskDeliversStatusHeadersCharsetAndBodyOnce) {
    LoopbackHTTPServer server;
    const auto session = plainSession();
    int calls = 0;
    std::promise<void> done;
    const auto task = session->dataTaskWithURL(
        *URL::URLWithString(
            server.url("/text?body=caf%C3%A9&type=text%2Fhtml%3B%20charset%3DISO-8859-1")),
        [&](std::optional<Data> data, URLResponsePtr response, ErrorPtr error) {
            ++calls;
            EXPECT_FALSE(error);
            ASSERT_TRUE(data);
            EXPECT_EQ(std::string(data->begin(), data->end()), "caf\xC3\xA9");
            EXPECT_EQ(response->mimeType(), "text/html");
            EXPECT_EQ(response->textEncodingName(), "ISO-8859-1");
            EXPECT_EQ(response->expectedContentLength(), 5);
            done.set_value();
        });
    EXPECT_EQ(task->state(), URLSessionTask::State::suspended);
    EXPECT_EQ(task->kind(), URLSessionTask::Kind::data);
    EXPECT_EQ(server.requestCount(), 0u) << "a task does nothing until resumed";
    task->resume();
    ASSERT_EQ(done.get_future().wait_for(testing::kDeadline), std::future_status::ready);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(task->state(), URLSessionTask::State::completed);
    EXPECT_EQ(task->countOfBytesReceived(), 5);
    EXPECT_NE(session->dataTaskWithURL(*URL::URLWithString(server.url("/")))->taskIdentifier(),
              task->taskIdentifier());
}

TEST(URLSession, HTTPStatusesOfEveryClassAreResponsesNotErrors) {
    LoopbackHTTPServer server;
    const auto session = plainSession();
    for (const long status : {200, 201, 204, 304, 404, 418, 500, 503}) {
        const LoadResult result = load(session, server.url("/status/" + std::to_string(status)));
        EXPECT_FALSE(result.error) << status;
        EXPECT_EQ(result.status(), status);
        const bool bodyless = status == 204 || status == 304;
        EXPECT_EQ(result.body(), bodyless ? "" : "status " + std::to_string(status));
    }
}

TEST(URLSession, SendsMethodHeadersAndBodyWithConfiguredAdditionalHeaders) {
    LoopbackHTTPServer server;
    auto configuration = URLSessionConfiguration::defaultSessionConfiguration();
    configuration.HTTPAdditionalHeaders = {{"X-Session", "s"}, {"X-Both", "session"}};
    const auto session = URLSession::sessionWithConfiguration(configuration);
    URLRequest request = requestFor(server.url("/echo?q=1"));
    request.setHTTPMethod("PUT");
    request.setValue("request", "x-both");
    request.setValue("text/plain", "Content-Type");
    request.setHTTPBody(Data{'a', 'b', 'c'});
    const LoadResult result = load(session, request);
    EXPECT_EQ(result.status(), 200);
    EXPECT_EQ(result.body(), "abc");
    const auto recorded = server.requests().back();
    EXPECT_EQ(recorded.method, "PUT");
    EXPECT_EQ(recorded.query, "q=1");
    EXPECT_EQ(recorded.body, "abc");
    EXPECT_EQ(recorded.header("X-Session"), "s");
    EXPECT_EQ(recorded.header("X-Both"), "request");
    EXPECT_FALSE(recorded.header("Expect"));

    URLRequest head = requestFor(server.url("/bytes?size=100"));
    head.setHTTPMethod("HEAD");
    const LoadResult headResult = load(session, head);
    EXPECT_EQ(headResult.status(), 200);
    EXPECT_EQ(headResult.body(), "");
}

TEST(URLSession, RedirectsFollowThePlatformMethodRules) {
    LoopbackHTTPServer server;
    const auto session = plainSession();
    struct Case {
        long status;
        std::string method;
        std::string expectedMethod;
        std::string expectedBody;
    };
    const Case cases[] = {
        {301, "POST", "GET", ""},    {302, "POST", "GET", ""},      {303, "POST", "GET", ""},
        {303, "PUT", "GET", ""},     {307, "POST", "POST", "data"}, {308, "PUT", "PUT", "data"},
        {301, "PUT", "PUT", "data"}, {302, "GET", "GET", ""},
    };
    for (const Case& c : cases) {
        URLRequest request =
            requestFor(server.url("/redirect/" + std::to_string(c.status) + "?to=%2Fecho"));
        request.setHTTPMethod(c.method);
        // A GET with a body would leave bytes the server does not read on a reused connection.
        if (c.method != "GET") request.setHTTPBody(Data{'d', 'a', 't', 'a'});
        const LoadResult result = load(session, request);
        SCOPED_TRACE(std::to_string(c.status) + " " + c.method);
        ASSERT_FALSE(result.error);
        EXPECT_EQ(result.status(), 200);
        EXPECT_EQ(result.response->url()->absoluteString(), server.url("/echo"));
        const auto last = server.requests().back();
        EXPECT_EQ(last.path, "/echo");
        EXPECT_EQ(last.method, c.expectedMethod);
        EXPECT_EQ(last.body, c.expectedBody);
    }
    const LoadResult absolute =
        load(session,
             server.url("/redirect/302?to=" + urlSimpleEscape(server.url("/redirect-chain/3"))));
    EXPECT_EQ(absolute.body(), "done");
    EXPECT_EQ(absolute.response->url()->absoluteString(), server.url("/redirect-chain/0"));
}

TEST(URLSession, SixteenRedirectsAreFollowedAndTheSeventeenthFailsWith1007) {
    LoopbackHTTPServer server;
    const auto session = plainSession();
    EXPECT_EQ(load(session, server.url("/redirect-chain/16")).body(), "done");
    const auto before = server.requestCount();
    const LoadResult loop = load(session, server.url("/loop"));
    EXPECT_EQ(loop.errorCode(), NSURLErrorHTTPTooManyRedirects);
    EXPECT_EQ(server.requestCount() - before, 17u);
    EXPECT_EQ(*loop.error->userInfoValue(NSErrorFailingURLStringErrorKey).string(),
              server.url("/loop"));
}

TEST(URLSession, DelegateThatRefusesARedirectGetsTheRedirectResponseAsResult) {
    LoopbackHTTPServer server;
    auto delegate = std::make_shared<RecordingDelegate>();
    delegate->followRedirects = false;
    const auto session = sessionWith(delegate);
    const LoadResult result = load(session, server.url("/redirect/301?to=%2Fecho"));
    EXPECT_FALSE(result.error);
    EXPECT_EQ(result.status(), 301);
    EXPECT_EQ(result.body(), "redirect");
    EXPECT_EQ(server.requestCount(), 1u);
    EXPECT_EQ(delegate->events(), std::vector<std::string>{"redirect 301"})
        << "tasks with a completion handler tell their delegate only of redirects";
}

TEST(URLSession, DelegateHearsResponseDataAndCompletionInOrderWithoutOverlap) {
    LoopbackHTTPServer server;
    auto delegate = std::make_shared<RecordingDelegate>();
    const auto session = sessionWith(delegate);
    session
        ->dataTaskWithURL(
            *URL::URLWithString(server.url("/redirect/302?to=%2Fbytes%3Fsize%3D300000")))
        ->resume();
    ASSERT_TRUE(delegate->waitForCompletions(1));
    EXPECT_EQ(delegate->events(),
              (std::vector<std::string>{"redirect 302", "response", "complete 0"}));
    const std::string body = delegate->received();
    ASSERT_EQ(body.size(), 300000u);
    EXPECT_EQ(body[0], 'a');
    EXPECT_EQ(body[299999], static_cast<char>('a' + 299999 % 26));
    EXPECT_FALSE(delegate->overlapped());
    session->finishTasksAndInvalidate();  // a session keeps its delegate until invalidated
}

TEST(URLSession, ResponseDispositionCancelOrBecomeDownload) {
    LoopbackHTTPServer server;
    auto cancelling = std::make_shared<RecordingDelegate>();
    cancelling->disposition = URLSessionResponseDisposition::cancel;
    const auto first = sessionWith(cancelling);
    first->dataTaskWithURL(*URL::URLWithString(server.url("/bytes?size=1000")))->resume();
    ASSERT_TRUE(cancelling->waitForCompletions(1));
    EXPECT_EQ(cancelling->events(), (std::vector<std::string>{"response", "complete -999"}));
    EXPECT_EQ(cancelling->received(), "");

    auto downloading = std::make_shared<RecordingDelegate>();
    downloading->disposition = URLSessionResponseDisposition::becomeDownload;
    const auto second = sessionWith(downloading);
    const auto dataTask =
        second->dataTaskWithURL(*URL::URLWithString(server.url("/bytes?size=70000")));
    dataTask->resume();
    ASSERT_TRUE(downloading->waitForCompletions(1));
    EXPECT_EQ(downloading->events(), (std::vector<std::string>{"response", "became download",
                                                               "downloaded", "complete 0"}));
    EXPECT_EQ(downloading->downloaded().size(), 70000u);
    EXPECT_EQ(downloading->completedTask(), downloading->downloadTask());
    EXPECT_EQ(downloading->downloadTask()->kind(), URLSessionTask::Kind::download);
    EXPECT_NE(downloading->downloadTask()->taskIdentifier(), dataTask->taskIdentifier());
    EXPECT_FALSE(std::filesystem::exists(downloading->location()))
        << "deleted after the delegate returned";
    first->finishTasksAndInvalidate();  // a session keeps its delegate until invalidated
    second->finishTasksAndInvalidate();
}

TEST(URLSession, DownloadTaskHandsOverATemporaryFileDeletedAfterTheHandler) {
    LoopbackHTTPServer server;
    const auto session = plainSession();
    std::promise<std::string> location;
    std::string content;
    const auto task = session->downloadTaskWithURL(
        *URL::URLWithString(server.url("/bytes?size=200000&chunked=1")),
        [&](std::optional<std::string> file, URLResponsePtr, ErrorPtr error) {
            EXPECT_FALSE(error);
            content = readFile(*file);
            location.set_value(*file);
        });
    EXPECT_EQ(task->kind(), URLSessionTask::Kind::download);
    task->resume();
    auto future = location.get_future();
    ASSERT_EQ(future.wait_for(testing::kDeadline), std::future_status::ready);
    const std::string path = future.get();
    EXPECT_EQ(content.size(), 200000u);
    EXPECT_EQ(content.substr(0, 3), "abc");
    // The file goes right after the handler returns, before the session's queue runs anything
    // else: once a later completion has run, it is gone.
    load(session, server.url("/status/200"));
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(task->state(), URLSessionTask::State::completed);
}

TEST(URLSession, UploadsBytesEmptyBytesAndFilesAndFailsForAMissingFile) {
    LoopbackHTTPServer server;
    const auto session = plainSession();
    URLRequest request = requestFor(server.url("/echo"));
    request.setHTTPMethod("POST");
    for (const std::string& body : {std::string("payload"), std::string()}) {
        std::promise<LoadResult> done;
        const auto task = session->uploadTaskWithRequest(
            request, Data(body.begin(), body.end()),
            [&](std::optional<Data> data, URLResponsePtr response, ErrorPtr error) {
                done.set_value({std::move(data), std::move(response), std::move(error)});
            });
        EXPECT_EQ(task->kind(), URLSessionTask::Kind::upload);
        task->resume();
        const LoadResult result = done.get_future().get();
        EXPECT_EQ(result.body(), body);
        EXPECT_EQ(server.requests().back().header("Content-Length"), std::to_string(body.size()));
    }
    const std::string path = temporaryDirectory() + "upload body.txt";
    std::ofstream(path) << "from a file";
    std::promise<LoadResult> fromFile;
    session
        ->uploadTaskWithRequest(
            request, *URL::URLWithString("file://" + temporaryDirectory() + "upload%20body.txt"),
            [&](std::optional<Data> data, URLResponsePtr response, ErrorPtr error) {
                fromFile.set_value({std::move(data), std::move(response), std::move(error)});
            })
        ->resume();
    EXPECT_EQ(fromFile.get_future().get().body(), "from a file");
    const auto before = server.requestCount();
    std::promise<LoadResult> missing;
    session
        ->uploadTaskWithRequest(
            request, *URL::URLWithString("file:///no/such/file"),
            [&](std::optional<Data> data, URLResponsePtr response, ErrorPtr error) {
                missing.set_value({std::move(data), std::move(response), std::move(error)});
            })
        ->resume();
    const LoadResult failed = missing.get_future().get();
    EXPECT_EQ(failed.errorCode(), NSURLErrorFileDoesNotExist);
    EXPECT_FALSE(failed.data);
    EXPECT_EQ(server.requestCount(), before);
}

TEST(URLSession, TransportFaultsEndWithThePlatformCodes) {
    const auto session = plainSession();
    {
        RawLoopbackServer reset(RawLoopbackServer::Behaviour::resetMidBody);
        EXPECT_EQ(load(session, reset.url()).errorCode(), NSURLErrorNetworkConnectionLost);
    }
    {
        RawLoopbackServer malformed(RawLoopbackServer::Behaviour::malformedStatus);
        const auto code = load(session, malformed.url()).errorCode();
        EXPECT_TRUE(code == NSURLErrorBadServerResponse || code == NSURLErrorCannotParseResponse)
            << code;
    }
    {
        RawLoopbackServer garbage(RawLoopbackServer::Behaviour::garbage);
        const auto code = load(session, garbage.url()).errorCode();
        EXPECT_TRUE(code == NSURLErrorBadServerResponse || code == NSURLErrorCannotParseResponse)
            << code;
    }
    {
        RawLoopbackServer silent(RawLoopbackServer::Behaviour::closeWithoutAnswer);
        EXPECT_EQ(load(session, silent.url()).errorCode(), NSURLErrorNetworkConnectionLost);
    }
    const std::string closed =
        "http://127.0.0.1:" + std::to_string(testing::closedLoopbackPort()) + "/";
    const LoadResult refused = load(session, closed);
    EXPECT_EQ(refused.errorCode(), NSURLErrorCannotConnectToHost);
    ASSERT_TRUE(refused.error->underlyingError());
    EXPECT_EQ(refused.error->underlyingError()->domain(), VNCurlErrorDomain);
    EXPECT_EQ(load(session, "http://no-such-host.invalid/").errorCode(), NSURLErrorCannotFindHost);
    EXPECT_EQ(load(session, "ftp://127.0.0.1/file").errorCode(), NSURLErrorUnsupportedURL);
    EXPECT_EQ(load(session, URLRequest()).errorCode(), NSURLErrorBadURL);
}

TEST(URLSession, RequestAndResourceTimeOutsEndWith1001) {
    LoopbackHTTPServer server;
    auto configuration = URLSessionConfiguration::defaultSessionConfiguration();
    configuration.timeoutIntervalForRequest = std::chrono::milliseconds(300);
    const auto impatient = URLSession::sessionWithConfiguration(configuration);
    EXPECT_EQ(load(impatient, server.url("/bytes?size=100000&stall_after=1000")).errorCode(),
              NSURLErrorTimedOut);
    EXPECT_EQ(load(impatient, server.url("/never")).errorCode(), NSURLErrorTimedOut);
    server.releaseStalls();

    auto bounded = URLSessionConfiguration::defaultSessionConfiguration();
    bounded.timeoutIntervalForResource = std::chrono::milliseconds(300);
    EXPECT_EQ(
        load(URLSession::sessionWithConfiguration(bounded), server.url("/slow-first-byte?ms=20000"))
            .errorCode(),
        NSURLErrorTimedOut);
    server.releaseStalls();
}

TEST(URLSession, CancelAtEveryStageEndsTheTaskOnceWith999) {
    LoopbackHTTPServer server;
    auto delegate = std::make_shared<RecordingDelegate>();
    const auto session = sessionWith(delegate);

    const auto unstarted = session->dataTaskWithURL(*URL::URLWithString(server.url("/status/200")));
    unstarted->cancel();
    EXPECT_NE(unstarted->state(), URLSessionTask::State::suspended);
    unstarted->resume();
    ASSERT_TRUE(delegate->waitForCompletions(1));
    EXPECT_EQ(unstarted->state(), URLSessionTask::State::completed);
    EXPECT_EQ(unstarted->error()->code(), NSURLErrorCancelled);

    const auto waitingForHeaders =
        session->dataTaskWithURL(*URL::URLWithString(server.url("/never")));
    waitingForHeaders->resume();
    ASSERT_TRUE(server.waitForRequest([](const auto& r) { return r.path == "/never"; },
                                      testing::kDeadline));
    waitingForHeaders->cancel();
    ASSERT_TRUE(delegate->waitForCompletions(2));

    const auto midHeaders =
        session->dataTaskWithURL(*URL::URLWithString(server.url("/headers-then-stall")));
    midHeaders->resume();
    ASSERT_TRUE(server.waitForRequest([](const auto& r) { return r.path == "/headers-then-stall"; },
                                      testing::kDeadline));
    midHeaders->cancel();
    ASSERT_TRUE(delegate->waitForCompletions(3));

    const auto midBody = session->dataTaskWithURL(
        *URL::URLWithString(server.url("/bytes?size=52428800&stall_after=1048576")));
    midBody->resume();
    ASSERT_TRUE(server.waitForBodyBytesSent(1048576, testing::kDeadline));
    midBody->cancel();
    midBody->cancel();
    ASSERT_TRUE(delegate->waitForCompletions(4));
    for (const auto& task : {waitingForHeaders, midHeaders, midBody})
        EXPECT_EQ(task->error()->code(), NSURLErrorCancelled);
    server.releaseStalls();

    const auto connecting = plainSession();
    RawLoopbackServer neverAnswers(RawLoopbackServer::Behaviour::neverAnswer);
    std::promise<ErrorPtr> cancelled;
    const auto task = connecting->dataTaskWithURL(
        *URL::URLWithString(neverAnswers.url()),
        [&](std::optional<Data>, URLResponsePtr, ErrorPtr error) { cancelled.set_value(error); });
    task->resume();
    task->cancel();
    EXPECT_EQ(cancelled.get_future().get()->code(), NSURLErrorCancelled);
    session->finishTasksAndInvalidate();
}

TEST(URLSession, FiftyMegabytesToMemoryAndToAFile) {
    LoopbackHTTPServer server;
    const auto session = plainSession();
    const LoadResult inMemory = load(session, server.url("/bytes?size=52428800"));
    ASSERT_TRUE(inMemory.data);
    EXPECT_EQ(inMemory.data->size(), 52428800u);
    EXPECT_EQ((*inMemory.data)[52428799], static_cast<std::uint8_t>('a' + 52428799 % 26));
    std::promise<std::uintmax_t> size;
    session
        ->downloadTaskWithURL(*URL::URLWithString(server.url("/bytes?size=52428800")),
                              [&](std::optional<std::string> file, URLResponsePtr, ErrorPtr) {
                                  size.set_value(file ? std::filesystem::file_size(*file) : 0);
                              })
        ->resume();
    EXPECT_EQ(size.get_future().get(), 52428800u);
}

TEST(URLSession, DownloadWithoutAUsableTemporaryFolderFailsWith3000) {
    LoopbackHTTPServer server;
    const std::string saved = getenv("TMPDIR") ? getenv("TMPDIR") : "";
    setenv("TMPDIR", (temporaryDirectory() + "missing-folder").c_str(), 1);
    std::promise<ErrorPtr> failed;
    plainSession()
        ->downloadTaskWithURL(*URL::URLWithString(server.url("/bytes?size=10")),
                              [&](std::optional<std::string> file, URLResponsePtr, ErrorPtr error) {
                                  EXPECT_FALSE(file);
                                  failed.set_value(error);
                              })
        ->resume();
    const ErrorPtr error = failed.get_future().get();
    setenv("TMPDIR", saved.c_str(), 1);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), NSURLErrorCannotCreateFile);
}

TEST(URLSession, InvalidationLetsTasksEndOrCancelsThemThenReleasesTheDelegate) {
    LoopbackHTTPServer server;
    auto delegate = std::make_shared<RecordingDelegate>();
    std::weak_ptr<RecordingDelegate> weakDelegate = delegate;
    auto session = sessionWith(delegate);
    session->dataTaskWithURL(*URL::URLWithString(server.url("/slow-first-byte?ms=100")))->resume();
    session->finishTasksAndInvalidate();
    EXPECT_THROW(session->dataTaskWithURL(*URL::URLWithString(server.url("/"))), Exception);
    ASSERT_TRUE(delegate->waitUntilInvalid());
    EXPECT_EQ(delegate->events(), (std::vector<std::string>{"response", "complete 0", "invalid"}));
    EXPECT_FALSE(session->delegate());

    auto cancelling = std::make_shared<RecordingDelegate>();
    auto second = sessionWith(cancelling);
    second->dataTaskWithURL(*URL::URLWithString(server.url("/never")))->resume();
    const auto neverResumed = second->dataTaskWithURL(*URL::URLWithString(server.url("/never")));
    ASSERT_TRUE(server.waitForRequestCount(2, testing::kDeadline));
    second->invalidateAndCancel();
    EXPECT_EQ(neverResumed->state() == URLSessionTask::State::suspended, false);
    ASSERT_TRUE(cancelling->waitUntilInvalid());
    EXPECT_EQ(cancelling->events(),
              (std::vector<std::string>{"complete -999", "complete -999", "invalid"}));
    delegate.reset();
    cancelling.reset();
    EXPECT_TRUE(weakDelegate.expired());
    server.releaseStalls();
}

TEST(URLSession, SharedSessionIsOneAndIgnoresInvalidation) {
    LoopbackHTTPServer server;
    const auto& shared = URLSession::sharedSession();
    EXPECT_EQ(shared, URLSession::sharedSession());
    shared->invalidateAndCancel();
    EXPECT_EQ(load(shared, server.url("/status/200")).status(), 200);
}

TEST(URLSession, ConnectionsPerHostAreLimitedAndTheRestWait) {
    LoopbackHTTPServer server;
    auto configuration = URLSessionConfiguration::defaultSessionConfiguration();
    configuration.HTTPMaximumConnectionsPerHost = 2;
    const auto session = URLSession::sessionWithConfiguration(configuration);
    std::atomic<int> completed{0};
    for (int i = 0; i < 5; ++i)
        session
            ->dataTaskWithURL(*URL::URLWithString(server.url("/slow-first-byte?ms=60000")),
                              [&](std::optional<Data>, URLResponsePtr, ErrorPtr) { ++completed; })
            ->resume();
    ASSERT_TRUE(server.waitForRequestCount(2, testing::kDeadline));
    EXPECT_FALSE(server.waitForRequestCount(3, 300ms));
    ASSERT_TRUE(testing::eventually([&] {
        server.releaseStalls();
        return completed == 5;
    }));
    EXPECT_EQ(server.requestCount(), 5u);
}

TEST(URLSession, HTTPSTrustsTheSystemStoreOrTheConfiguredAuthorities) {
    LoopbackHTTPServer server(LoopbackHTTPServer::Options{.https = true});
    EXPECT_EQ(load(plainSession(), server.url("/status/200")).errorCode(),
              NSURLErrorServerCertificateUntrusted);
    auto configuration = URLSessionConfiguration::defaultSessionConfiguration();
    configuration.trustedCertificatesFile = server.caCertificatePath();
    const LoadResult trusted =
        load(URLSession::sessionWithConfiguration(configuration), server.url("/status/200"));
    EXPECT_FALSE(trusted.error);
    EXPECT_EQ(trusted.status(), 200);
}

// nghttpd answers HTTP/2 only: an answer at all shows the session negotiated it over TLS.
TEST(URLSession, SpeaksHTTP2WithAServerThatOffersIt) {
    testing::Http2LoopbackServer server(/*echoUploads=*/true);
    server.addFile("greeting.txt", "hello over h2");
    auto configuration = URLSessionConfiguration::defaultSessionConfiguration();
    configuration.trustedCertificatesFile = server.caCertificatePath();
    const auto session = URLSession::sessionWithConfiguration(configuration);

    const LoadResult fetched = load(session, server.url("/greeting.txt"));
    ASSERT_FALSE(fetched.error) << fetched.error->localizedDescription();
    EXPECT_EQ(fetched.status(), 200);
    EXPECT_EQ(fetched.body(), "hello over h2");
    EXPECT_EQ(fetched.response->expectedContentLength(), 13);
    EXPECT_EQ(load(session, server.url("/missing")).status(), 404);

    URLRequest upload = requestFor(server.url("/greeting.txt"));
    upload.setHTTPMethod("POST");
    upload.setHTTPBody(Data{'p', 'o', 's', 't', 'e', 'd'});
    const LoadResult echoed = load(session, upload);
    EXPECT_FALSE(echoed.error);
    EXPECT_EQ(echoed.body(), "posted");
}

TEST(URLConnectionFailureInjection, FailsAttemptsInItsScopeAndCountsThem) {
    LoopbackHTTPServer server;
    const auto first = plainSession();
    const auto second = plainSession();
    {
        const auto injection =
            URLConnectionFailureInjection::inject(NSURLErrorNotConnectedToInternet, first);
        EXPECT_EQ(load(first, server.url("/status/200")).errorCode(),
                  NSURLErrorNotConnectedToInternet);
        EXPECT_EQ(load(second, server.url("/status/200")).status(), 200);
        EXPECT_EQ(injection->interceptedAttempts(), 1u);
        const auto everywhere = URLConnectionFailureInjection::inject(
            NSURLErrorCannotFindHost, nullptr,
            [](const URLRequest& request) { return request.url()->path() == "/status/201"; });
        EXPECT_EQ(load(second, server.url("/status/201")).errorCode(), NSURLErrorCannotFindHost);
        EXPECT_EQ(load(second, server.url("/status/202")).status(), 202);
        EXPECT_EQ(everywhere->interceptedAttempts(), 1u);
    }
    EXPECT_EQ(load(first, server.url("/status/200")).status(), 200);
    EXPECT_EQ(server.requestCount(), 3u);
}

TEST(URLConnectionFailureInjection, WaitingSessionRetriesUntilConnectedOrTheResourceTimeOut) {
    LoopbackHTTPServer server;
    auto configuration = URLSessionConfiguration::defaultSessionConfiguration();
    configuration.waitsForConnectivity = true;
    configuration.timeoutIntervalForResource = std::chrono::milliseconds(400);
    const auto giving = URLSession::sessionWithConfiguration(configuration);
    {
        const auto offline =
            URLConnectionFailureInjection::inject(NSURLErrorNotConnectedToInternet, giving);
        EXPECT_EQ(load(giving, server.url("/status/200")).errorCode(), NSURLErrorTimedOut);
        EXPECT_GE(offline->interceptedAttempts(), 2u);
    }
    configuration.timeoutIntervalForResource = std::chrono::seconds(30);
    const auto patient = URLSession::sessionWithConfiguration(configuration);
    auto offline = URLConnectionFailureInjection::inject(NSURLErrorNotConnectedToInternet, patient);
    std::promise<LoadResult> done;
    patient
        ->dataTaskWithURL(
            *URL::URLWithString(server.url("/status/200")),
            [&](std::optional<Data> data, URLResponsePtr response, ErrorPtr error) {
                done.set_value({std::move(data), std::move(response), std::move(error)});
            })
        ->resume();
    ASSERT_TRUE(testing::eventually([&] { return offline->interceptedAttempts() >= 2; }));
    offline.reset();
    const LoadResult result = done.get_future().get();
    EXPECT_EQ(result.status(), 200);
    EXPECT_EQ(server.requestCount(), 1u);
}

TEST(URLSession, LeavesNoFileOrSocketBehind) {
    LoopbackHTTPServer server;
    load(plainSession(),
         server.url("/status/200"));  // the transport's own descriptors exist from now on
    ASSERT_TRUE(URLSession::closeIdleConnections());
    const std::size_t before = testing::openDescriptorCount();
    {
        const auto session = plainSession();
        for (int i = 0; i < 20; ++i) {
            load(session, server.url("/bytes?size=1000"));
            std::promise<void> downloaded;
            session
                ->downloadTaskWithURL(*URL::URLWithString(server.url("/bytes?size=1000")),
                                      [&](std::optional<std::string>, URLResponsePtr, ErrorPtr) {
                                          downloaded.set_value();
                                      })
                ->resume();
            downloaded.get_future().wait();
        }
        RawLoopbackServer reset(RawLoopbackServer::Behaviour::resetMidBody);
        load(session, reset.url());
        session->finishTasksAndInvalidate();
    }
    ASSERT_TRUE(URLSession::closeIdleConnections());
    // The server's side of a closed connection goes when its thread notices.
    EXPECT_TRUE(testing::eventually([&] { return testing::openDescriptorCount() <= before; }))
        << testing::openDescriptorCount() << " open, " << before << " before";
}

TEST(URLSessionStress, ThousandTasksFromEightThreadsEachCompleteOnce) {
    LoopbackHTTPServer server(LoopbackHTTPServer::Options{.threads = 16});
    const auto session = plainSession();
    constexpr int threads = 8;
    constexpr int perThread = 125;
    std::vector<std::atomic<int>> calls(threads * perThread);
    std::atomic<int> finished{0};
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&, t] {
            for (int i = 0; i < perThread; ++i) {
                const int index = t * perThread + i;
                session
                    ->dataTaskWithURL(
                        *URL::URLWithString(server.url("/text?body=" + std::to_string(index))),
                        [&, index](std::optional<Data> data, URLResponsePtr, ErrorPtr error) {
                            EXPECT_FALSE(error);
                            EXPECT_EQ(std::string(data->begin(), data->end()),
                                      std::to_string(index));
                            ++calls[index];
                            ++finished;
                        })
                    ->resume();
            }
        });
    }
    for (auto& worker : workers) worker.join();
    ASSERT_TRUE(testing::eventually([&] { return finished == threads * perThread; }, 120s));
    ASSERT_EQ(finished.load(), threads * perThread);
    for (auto& count : calls) EXPECT_EQ(count.load(), 1);
}

// Handlers of sessions without a delegate queue may run on a transport thread: one that waits
// there for another task must not stall the transport, even nested deeper than the transport
// has threads (the deepest levels then run on the global queue, which grows for waiters on the
// library's semaphores).
TEST(URLSessionStress, HandlersThatWaitForOtherTasksDoNotStallTheTransport) {
    LoopbackHTTPServer server;
    constexpr int depth = 24;
    std::function<std::string(int)> loadNested = [&](int level) -> std::string {
        auto chain = std::make_shared<std::string>();
        const auto done = DispatchSemaphore::create();
        plainSession()
            ->dataTaskWithURL(
                *URL::URLWithString(server.url("/text?body=" + std::to_string(level))),
                [&, chain, done, level](std::optional<Data> data, URLResponsePtr, ErrorPtr error) {
                    *chain = error || !data ? "failed" : std::string(data->begin(), data->end());
                    if (level > 0) *chain += " " + loadNested(level - 1);
                    done->signal();
                })
            ->resume();
        if (done->wait(testing::kDeadline) != DispatchWaitResult::success) return "stalled";
        return *chain;
    };
    std::string expected = std::to_string(depth);
    for (int level = depth - 1; level >= 0; --level) expected += " " + std::to_string(level);
    EXPECT_EQ(loadNested(depth), expected);
}

TEST(URLSessionStress, SessionsMadeAndInvalidatedInALoop) {
    LoopbackHTTPServer server;
    for (int i = 0; i < 50; ++i) {
        auto delegate = std::make_shared<RecordingDelegate>();
        auto session = sessionWith(delegate);
        session->dataTaskWithURL(*URL::URLWithString(server.url("/status/200")))->resume();
        if (i % 2) {
            session->invalidateAndCancel();
        } else {
            session->finishTasksAndInvalidate();
        }
        ASSERT_TRUE(delegate->waitUntilInvalid());
        EXPECT_FALSE(delegate->overlapped());
    }
}

}  // namespace
}  // namespace vn
