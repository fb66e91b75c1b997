#include "vn/network/VNURLRequestOperation.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>

#include "network/NetworkTesting.h"
#include "testing/CapturingLogListener.h"
#include "testing/LoopbackHTTPServer.h"
#include "testing/ScopedProcessState.h"
#include "vn/concurrency/OperationQueue.h"
#include "vn/concurrency/RunLoop.h"
#include "vn/log/VNLog.h"
#include "vn/network/OperationQueueVNFoundation.h"
#include "vn/network/URLError.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/FileSystem.h"
#include "vn/platform/Thread.h"
#include "vn/services/VNFoundationServices.h"

namespace vn {
namespace {

using namespace std::chrono_literals;
using testing::LoopbackHTTPServer;
using testing::requestFor;

bool pumpMainUntil(const std::function<bool()>& condition,
                   std::chrono::milliseconds timeout = 30s) {
    return RunLoop::main().runUntil(condition, timeout);
}

class RecordingOperationDelegate : public VNURLRequestAndParseJsonDelegate {
  public:
    void urlRequestOperationDidFinishLoading(
        const std::shared_ptr<VNURLRequestOperation>&) override {
        record("finished");
    }
    void urlRequestOperationDidFailLoading(const std::shared_ptr<VNURLRequestOperation>&) override {
        record("failed");
    }
    void parseJsonOperationDidParse(const std::shared_ptr<VNParseJsonOperation>&,
                                    const Value& value) override {
        record("parsed");
        std::lock_guard lock(mutex_);
        parsed_.push_back(value);
    }
    void parseJsonOperationDidFail(const std::shared_ptr<VNParseJsonOperation>&,
                                   const ErrorPtr&) override {
        record("parse failed");
    }
    std::vector<std::string> calls() const {
        std::lock_guard lock(mutex_);
        return calls_;
    }
    std::size_t count() const {
        std::lock_guard lock(mutex_);
        return calls_.size();
    }
    std::vector<Value> parsed() const {
        std::lock_guard lock(mutex_);
        return parsed_;
    }
    bool offMainThread() const { return offMain_; }

  private:
    void record(const std::string& call) {
        if (!Thread::isMainThread()) offMain_ = true;
        std::lock_guard lock(mutex_);
        calls_.push_back(call);
    }
    mutable std::mutex mutex_;
    std::vector<std::string> calls_;
    std::vector<Value> parsed_;
    std::atomic<bool> offMain_{false};
};

// Registers a network-activity counter for the test and removes it afterwards.
class ActivityCounterScope {
  public:
    ActivityCounterScope() {
        VNFoundationServices::registerNetworkActivityIndicatorService(counter_);
    }
    ~ActivityCounterScope() {
        VNFoundationServices::registerNetworkActivityIndicatorService(nullptr);
    }
    long count() const { return counter_->activityCount(); }

  private:
    std::shared_ptr<VNNetworkActivityCounter> counter_ =
        std::make_shared<VNNetworkActivityCounter>();
};

struct OperationRun {
    VNURLRequestOperationPtr operation;
    std::shared_ptr<RecordingOperationDelegate> delegate;
};

OperationRun makeOperation(const std::optional<std::string>& url) {
    OperationRun run{std::make_shared<VNURLRequestOperation>(),
                     std::make_shared<RecordingOperationDelegate>()};
    if (url) run.operation->setRequest(requestFor(*url));
    run.operation->setDelegate(run.delegate);
    return run;
}

void startAndWait(const OperationRun& run) {
    run.operation->start();
    ASSERT_TRUE(pumpMainUntil([&] { return run.operation->isFinished(); }));
}

TEST(VNURLRequestOperation, WithoutARequestFinishesAtOnceWithTheDefaultError) {
    const OperationRun run = makeOperation(std::nullopt);
    EXPECT_TRUE(run.operation->isAsynchronous());
    EXPECT_TRUE(run.operation->isConcurrent());
    EXPECT_TRUE(run.operation->followRedirects());
    run.operation->start();
    EXPECT_TRUE(run.operation->isFinished());
    EXPECT_FALSE(run.operation->isExecuting());
    ASSERT_TRUE(run.operation->error());
    EXPECT_EQ(run.operation->error()->domain(), VNErrorDomain);
    EXPECT_EQ(run.operation->error()->code(), 0);
    EXPECT_EQ(run.delegate->calls(), std::vector<std::string>{"failed"});
}

TEST(VNURLRequestOperation, HTTPErrorStatusesFinishWithSuccessAndTheBody) {
    LoopbackHTTPServer server;
    ActivityCounterScope activity;
    const OperationRun run = makeOperation(server.url("/status/404"));
    startAndWait(run);
    EXPECT_EQ(run.delegate->calls(), std::vector<std::string>{"finished"});
    EXPECT_FALSE(run.operation->error());
    EXPECT_EQ(
        std::dynamic_pointer_cast<const HTTPURLResponse>(run.operation->response())->statusCode(),
        404);
    const auto data = run.operation->data();
    ASSERT_TRUE(data);
    EXPECT_EQ(std::string(data->begin(), data->end()), "status 404");
    EXPECT_FALSE(run.delegate->offMainThread());
    EXPECT_EQ(activity.count(), 0);
    EXPECT_FALSE(run.operation->urlSession());
    EXPECT_FALSE(run.operation->sessionTask());
}

TEST(VNURLRequestOperation, FileModeFallsBackToMemoryOutside2xx) {
    LoopbackHTTPServer server;
    const OperationRun run = makeOperation(server.url("/status/500"));
    const std::string path = temporaryDirectory() + "never-written.bin";
    run.operation->setSaveToFilePath(path);
    startAndWait(run);
    EXPECT_EQ(run.delegate->calls(), std::vector<std::string>{"finished"});
    EXPECT_FALSE(run.operation->saveToFilePath());
    const auto data = run.operation->data();
    ASSERT_TRUE(data);
    EXPECT_EQ(std::string(data->begin(), data->end()), "status 500");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(VNURLRequestOperation, DownloadReplacesAnExistingFile) {
    LoopbackHTTPServer server;
    const std::string path = temporaryDirectory() + "download.bin";
    std::ofstream(path) << "old content that is longer than the new one";
    const OperationRun run = makeOperation(server.url("/bytes?size=26"));
    run.operation->setSaveToFilePath(path);
    startAndWait(run);
    EXPECT_EQ(run.delegate->calls(), std::vector<std::string>{"finished"});
    EXPECT_FALSE(run.operation->data());
    std::ifstream in(path);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "abcdefghijklmnopqrstuvwxyz");
}

TEST(VNURLRequestOperation, RemovalAndMoveFailuresCarryTheirTextsWithThePaths) {
    LoopbackHTTPServer server;
    testing::ScopedProcessState state;
    VNUtilities::setShowDeveloperInfo(true);
    const std::string blocked = temporaryDirectory() + "occupied";
    std::filesystem::create_directories(blocked + "/child");
    const OperationRun removal = makeOperation(server.url("/bytes?size=10"));
    removal.operation->setSaveToFilePath(blocked);
    startAndWait(removal);
    EXPECT_EQ(removal.delegate->calls(), std::vector<std::string>{"failed"});
    EXPECT_EQ(removal.operation->error()->localizedDescription(),
              "URL request operation could not remove file path: '" + blocked + "'");

    const std::string unreachable = temporaryDirectory() + "no-folder/file.bin";
    const OperationRun move = makeOperation(server.url("/bytes?size=10"));
    move.operation->setSaveToFilePath(unreachable);
    startAndWait(move);
    const std::string text = move.operation->error()->localizedDescription();
    EXPECT_TRUE(text.starts_with("URL request operation could not move downloaded file '")) << text;
    EXPECT_TRUE(text.ends_with("' to '" + unreachable + "'")) << text;
    ASSERT_TRUE(move.operation->error()->underlyingError());
    EXPECT_EQ(move.operation->error()->underlyingError()->domain(), NSPOSIXErrorDomain);

    const OperationRun emptyPath = makeOperation(server.url("/bytes?size=10"));
    emptyPath.operation->setSaveToFilePath("");
    startAndWait(emptyPath);
    EXPECT_EQ(emptyPath.operation->error()->localizedDescription(),
              "Invalid URL request operation save file path: ''");
}

TEST(VNURLRequestOperation, WithoutFollowingOnly301And303AreStopped) {
    LoopbackHTTPServer server;
    for (const long status : {301, 302, 303, 307, 308}) {
        const OperationRun run = makeOperation(
            server.url("/redirect/" + std::to_string(status) + "?to=%2Fstatus%2F200"));
        run.operation->setFollowRedirects(false);
        startAndWait(run);
        SCOPED_TRACE(status);
        EXPECT_EQ(run.delegate->calls(), std::vector<std::string>{"finished"});
        const auto response =
            std::dynamic_pointer_cast<const HTTPURLResponse>(run.operation->response());
        const bool stopped = status == 301 || status == 303;
        EXPECT_EQ(response->statusCode(), stopped ? status : 200);
        if (stopped) {
            EXPECT_FALSE(run.operation->data());
        }
    }
}

TEST(VNURLRequestOperation, CancelWhileExecutingStaysExecutingAndCallsNoDelegate) {
    LoopbackHTTPServer server;
    ActivityCounterScope activity;
    const OperationRun run = makeOperation(server.url("/never"));
    run.operation->start();
    ASSERT_TRUE(server.waitForRequestCount(1, 30s));
    EXPECT_EQ(activity.count(), 1);
    run.operation->cancel();
    EXPECT_EQ(activity.count(), 0);
    server.releaseStalls();
    // Later session callbacks are foreign and ignored: the main loop turns, nothing happens.
    EXPECT_FALSE(pumpMainUntil(
        [&] { return run.operation->isFinished() || run.delegate->count() > 0; }, 300ms));
    EXPECT_TRUE(run.operation->isExecuting());
    EXPECT_TRUE(run.operation->isCancelled());
}

TEST(VNURLRequestOperation, CancelledBeforeStartFinishesWithoutNetwork) {
    LoopbackHTTPServer server;
    ActivityCounterScope activity;
    const OperationRun run = makeOperation(server.url("/status/200"));
    run.operation->cancel();
    run.operation->start();
    EXPECT_TRUE(run.operation->isFinished());
    EXPECT_TRUE(run.delegate->calls().empty());
    EXPECT_EQ(server.requestCount(), 0u);
    EXPECT_EQ(activity.count(), 0);
}

TEST(VNURLRequestOperation, ActivityCountReturnsToZeroAfterFailureAndDestruction) {
    ActivityCounterScope activity;
    const OperationRun failing =
        makeOperation("http://127.0.0.1:" + std::to_string(testing::closedLoopbackPort()) + "/");
    startAndWait(failing);
    EXPECT_EQ(failing.delegate->calls(), std::vector<std::string>{"failed"});
    EXPECT_EQ(failing.operation->error()->code(), NSURLErrorCannotConnectToHost);
    EXPECT_EQ(activity.count(), 0);

    LoopbackHTTPServer server;
    auto unfinished = std::make_shared<VNURLRequestOperation>();
    const auto session = testing::plainSession();
    unfinished->setSessionTask(session->dataTaskWithURL(*URL::URLWithString(server.url("/never"))));
    EXPECT_EQ(activity.count(), 1);
    unfinished->setSessionTask(session->dataTaskWithURL(*URL::URLWithString(server.url("/never"))));
    EXPECT_EQ(activity.count(), 1) << "a task replaced by another leaves the count alone";
    unfinished.reset();
    EXPECT_EQ(activity.count(), 0);
}

TEST(VNURLRequestOperation, FinishAnnouncesBothWillsBeforeBothDidsEveryTime) {
    LoopbackHTTPServer server;
    const OperationRun run = makeOperation(server.url("/status/200"));
    std::vector<std::string> heard;
    std::mutex heardMutex;
    run.operation->addObserver(
        "", [&](Operation&, std::string_view key, Operation::KeyValueChange change) {
            if (key != Operation::isExecutingKey && key != Operation::isFinishedKey) return;
            std::lock_guard lock(heardMutex);
            heard.push_back(
                std::string(change == Operation::KeyValueChange::willChange ? "will " : "did ") +
                std::string(key));
        });
    startAndWait(run);
    const std::vector<std::string> once = {"will isExecuting", "did isExecuting",
                                           "will isExecuting", "will isFinished",
                                           "did isExecuting",  "did isFinished"};
    {
        std::lock_guard lock(heardMutex);
        EXPECT_EQ(heard, once);
        heard.clear();
    }
    run.operation->finish();
    EXPECT_EQ(heard, (std::vector<std::string>{"will isExecuting", "will isFinished",
                                               "did isExecuting", "did isFinished"}));
}

TEST(VNURLRequestOperation, ForeignSessionsAndTasksAreRefused) {
    LoopbackHTTPServer server;
    const OperationRun run = makeOperation(server.url("/never"));
    run.operation->start();
    const auto foreignSession = testing::plainSession();
    const auto foreignTask =
        foreignSession->dataTaskWithURL(*URL::URLWithString(server.url("/status/200")));
    std::optional<URLSessionResponseDisposition> disposition;
    run.operation->didReceiveResponse(
        foreignSession, foreignTask, nullptr,
        [&](URLSessionResponseDisposition answer) { disposition = answer; });
    EXPECT_EQ(disposition, URLSessionResponseDisposition::cancel);
    std::optional<std::optional<URLRequest>> redirect;
    run.operation->willPerformHTTPRedirection(
        run.operation->urlSession(), foreignTask,
        std::make_shared<HTTPURLResponse>(*URL::URLWithString(server.url("/")), 302,
                                          HTTPURLResponse::HeaderFields{}),
        requestFor(server.url("/status/200")),
        [&](std::optional<URLRequest> answer) { redirect = answer; });
    ASSERT_TRUE(redirect);
    EXPECT_FALSE(*redirect);
    run.operation->didReceiveData(foreignSession, foreignTask, Data{'x'});
    // Cancelled: the session may already have completed the cancellation on its own queue.
    const URLSessionTask::State state = foreignTask->state();
    EXPECT_TRUE(state == URLSessionTask::State::canceling ||
                state == URLSessionTask::State::completed);
    run.operation->didCompleteWithError(foreignSession, foreignTask, nullptr);
    EXPECT_TRUE(run.operation->isExecuting());
    run.operation->cancel();
    server.releaseStalls();
}

class ChallengeAnsweringOperation : public VNURLRequestOperation {
  public:
    std::optional<bool> canGetAuthenticationChallengeErrorFromHTTPResonse(
        const HTTPURLResponse& response) override {
        return response.statusCode() == 401;
    }
};

TEST(VNURLRequestOperation, AChallengeAnswerEndsWithTheResponseAndNoBody) {
    LoopbackHTTPServer server;
    auto operation = std::make_shared<ChallengeAnsweringOperation>();
    auto delegate = std::make_shared<RecordingOperationDelegate>();
    operation->setDelegate(delegate);
    operation->setRequest(requestFor(server.url("/status/401")));
    startAndWait({operation, delegate});
    EXPECT_EQ(delegate->calls(), std::vector<std::string>{"finished"});
    EXPECT_EQ(std::dynamic_pointer_cast<const HTTPURLResponse>(operation->response())->statusCode(),
              401);
    EXPECT_FALSE(operation->data());
}

TEST(VNURLRequestOperation, FailureIsTracedAsARequestFailRecord) {
    testing::ScopedProcessState state;
    testing::ScopedProcessState::turnLogFileOn();
    auto listener = std::make_shared<testing::CapturingLogListener>();
    VNLog::addListener(listener);
    const std::string url =
        "http://127.0.0.1:" + std::to_string(testing::closedLoopbackPort()) + "/";
    const OperationRun run = makeOperation(url);
    startAndWait(run);
    VNLog::removeListener(listener);
    bool found = false;
    for (const auto& message : listener->messages()) {
        if (message.find("requestFail") == std::string::npos) continue;
        found = true;
        EXPECT_NE(message.find(url), std::string::npos) << message;
        EXPECT_NE(message.find("-1004"), std::string::npos) << message;
        EXPECT_NE(message.find("NSURLErrorDomain"), std::string::npos) << message;
    }
    EXPECT_TRUE(found);
}

TEST(URLSessionFactories, ReplacingTheFactoryReachesEveryLibrarySession) {
    LoopbackHTTPServer server;
    std::atomic<int> made{0};
    auto previous = URLSession::setVNSessionFactory(nullptr);
    URLSession::setVNSessionFactory([&, previous](const URLSessionConfiguration& configuration,
                                                  URLSessionDelegatePtr delegate,
                                                  ExecutorPtr queue) {
        ++made;
        return previous(configuration, std::move(delegate), std::move(queue));
    });
    EXPECT_TRUE(URLSession::vnSessionWithConfiguration(
        URLSessionConfiguration::defaultSessionConfiguration()));
    EXPECT_EQ(made, 1);
    const OperationRun run = makeOperation(server.url("/status/200"));
    startAndWait(run);
    EXPECT_EQ(made, 2);
    URLSession::setVNSessionFactory(nullptr);
    EXPECT_EQ(URLSession::vnSharedSession(), URLSession::vnSharedSession());
}

TEST(VNURLRequestOperationChain, RequestSetterAndParserRunInOrder) {
    LoopbackHTTPServer server;
    auto queue = std::make_shared<OperationQueue>();
    auto delegate = std::make_shared<RecordingOperationDelegate>();
    const auto operations = addURLRequestAndParseJSONOperationsForRequest(
        *queue,
        requestFor(server.url("/text?body=%7B%22a%22%3A%5B1%2C2%5D%7D&type=application%2Fjson")),
        delegate);
    ASSERT_TRUE(pumpMainUntil([&] { return delegate->count() == 2; }));
    EXPECT_EQ(delegate->calls(), (std::vector<std::string>{"finished", "parsed"}));
    EXPECT_EQ(operations.parser->value()["a"], Value(Value::Array{Value(1), Value(2)}));
    EXPECT_EQ(operations.setter->dataKeys(), (VNDataSetterOperation::DataKeys{{"data", "data"}}));

    auto failing = std::make_shared<RecordingOperationDelegate>();
    addURLRequestAndParseJSONOperationsForRequest(
        *queue, requestFor(server.url("/text?body=not%20json")), failing);
    ASSERT_TRUE(pumpMainUntil([&] { return failing->count() == 2; }));
    EXPECT_EQ(failing->calls(), (std::vector<std::string>{"finished", "parse failed"}));
}

TEST(VNURLRequestOperationStress, TwoHundredChainsOnAQueueOfEightEachCompleteOnce) {
    LoopbackHTTPServer server(LoopbackHTTPServer::Options{.threads = 16});
    auto queue = std::make_shared<OperationQueue>();
    queue->setMaxConcurrentOperationCount(8);
    std::vector<std::shared_ptr<RecordingOperationDelegate>> delegates;
    for (int i = 0; i < 200; ++i) {
        delegates.push_back(std::make_shared<RecordingOperationDelegate>());
        addURLRequestAndParseJSONOperationsForRequest(
            *queue, requestFor(server.url("/text?body=" + std::to_string(i))), delegates.back());
    }
    ASSERT_TRUE(pumpMainUntil(
        [&] {
            for (const auto& delegate : delegates)
                if (delegate->count() < 2) return false;
            return true;
        },
        120s));
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(delegates[i]->calls(), (std::vector<std::string>{"finished", "parsed"}));
        EXPECT_EQ(delegates[i]->parsed().front(), Value(i));
    }
}

}  // namespace
}  // namespace vn
