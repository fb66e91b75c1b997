// The task factories that repeat a request once in the waiting session when the local-network
// permission may be pending. The loopback interface is always connected, so the first
// attempt's -1009 comes from the connection-failure injection; the loopback server then
// answers the retry.
#include <gtest/gtest.h>

#include <condition_variable>
#include <fstream>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include "network/NetworkTesting.h"
#include "testing/LoopbackHTTPServer.h"
#include "vn/network/URLConnectionFailureInjection.h"
#include "vn/network/URLError.h"
#include "vn/network/URLSession.h"
#include "vn/network/VNNetworkReachability.h"
#include "vn/network/VNPlatformVersion.h"
#include "vn/network/VNUndocumentedConfig.h"
#include "vn/platform/Bundle.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/FileSystem.h"

namespace vn {
namespace {

using namespace std::chrono_literals;
using testing::kDeadline;
using testing::load;
using testing::LoopbackHTTPServer;
using testing::plainSession;
using testing::requestFor;
using Seconds = std::chrono::duration<double>;

constexpr SCNetworkReachabilityFlags kReachableDirect =
    kSCNetworkReachabilityFlagsReachable | kSCNetworkReachabilityFlagsIsDirect;

// What one completion handler heard.
struct Outcome {
    int calls = 0;
    long status = 0;
    std::string body;  // the data, or the downloaded file's content
    std::int64_t errorCode = 0;
};

// Hands out completion handlers that record their calls; outlives every call it handed out.
class Recorder {
  public:
    URLSession::DataCompletion dataHandler() const {
        return [state = state_](std::optional<Data> data, URLResponsePtr response, ErrorPtr error) {
            state->record(data ? std::string(data->begin(), data->end()) : std::string(), response,
                          error);
        };
    }
    URLSession::DownloadCompletion downloadHandler() const {
        return [state = state_](std::optional<std::string> location, URLResponsePtr response,
                                ErrorPtr error) {
            std::string body;
            if (location) {
                std::ifstream in(*location, std::ios::binary);
                body.assign(std::istreambuf_iterator<char>(in), {});
            }
            state->record(std::move(body), response, error);
        };
    }
    // Waits until the handlers were called at least calls times; false on timeout.
    bool waitForCalls(int calls) const {
        std::unique_lock lock(state_->mutex);
        return state_->changed.wait_for(lock, kDeadline,
                                        [&] { return state_->outcome.calls >= calls; });
    }
    Outcome outcome() const {
        std::lock_guard lock(state_->mutex);
        return state_->outcome;
    }

  private:
    struct State {
        std::mutex mutex;
        std::condition_variable changed;
        Outcome outcome;

        void record(std::string body, const URLResponsePtr& response, const ErrorPtr& error) {
            std::lock_guard lock(mutex);
            ++outcome.calls;
            const auto http = std::dynamic_pointer_cast<const HTTPURLResponse>(response);
            outcome.status = http ? static_cast<long>(http->statusCode()) : 0;
            outcome.body = std::move(body);
            outcome.errorCode = error ? error->code() : 0;
            changed.notify_all();
        }
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

// Counts the classifier's calls while answering as the built-in one does.
class ClassifierRecorder {
  public:
    ClassifierRecorder() {
        URLSession::setVNLocalNetworkPermissionErrorClassifier(
            [calls = calls_](const ErrorPtr& error, const std::optional<URL>& url) {
                ++*calls;
                return URLSession::vnMayBeLocalNetworkPermissionErrorDefault(error, url);
            });
    }
    ~ClassifierRecorder() { URLSession::setVNLocalNetworkPermissionErrorClassifier(nullptr); }
    int calls() const { return calls_->load(); }

  private:
    std::shared_ptr<std::atomic<int>> calls_ = std::make_shared<std::atomic<int>>(0);
};

// Records the hosts the reachability provider is asked for; answers with answer, or with the
// built-in provider when answer is null.
class ReachabilityRecorder {
  public:
    explicit ReachabilityRecorder(VNNetworkReachability::FlagsProvider answer = nullptr) {
        auto builtIn = VNNetworkReachability::setFlagsProvider(nullptr);
        VNNetworkReachability::setFlagsProvider(
            [state = state_, answer = answer ? answer : builtIn](std::string_view host) {
                {
                    std::lock_guard lock(state->mutex);
                    state->hosts.emplace_back(host);
                }
                return answer(host);
            });
    }
    ~ReachabilityRecorder() { VNNetworkReachability::setFlagsProvider(nullptr); }
    std::vector<std::string> hosts() const {
        std::lock_guard lock(state_->mutex);
        return state_->hosts;
    }

  private:
    struct State {
        std::mutex mutex;
        std::vector<std::string> hosts;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

// Counts the sessions made through the library's session factory and keeps their
// configurations.
class SessionFactoryRecorder {
  public:
    SessionFactoryRecorder() {
        URLSession::setVNSessionFactory([state = state_](const URLSessionConfiguration& c,
                                                         URLSessionDelegatePtr delegate,
                                                         ExecutorPtr queue) {
            {
                std::lock_guard lock(state->mutex);
                state->configurations.push_back(c);
                state->delegates.push_back(delegate != nullptr);
            }
            return URLSession::sessionWithConfiguration(c, std::move(delegate), std::move(queue));
        });
    }
    ~SessionFactoryRecorder() { URLSession::setVNSessionFactory(nullptr); }
    std::vector<URLSessionConfiguration> configurations() const {
        std::lock_guard lock(state_->mutex);
        return state_->configurations;
    }
    bool anyDelegate() const {
        std::lock_guard lock(state_->mutex);
        return std::find(state_->delegates.begin(), state_->delegates.end(), true) !=
               state_->delegates.end();
    }

  private:
    struct State {
        std::mutex mutex;
        std::vector<URLSessionConfiguration> configurations;
        std::vector<bool> delegates;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

constexpr std::string_view kSettlePath = "/status/204";

class PermissionWaitingTasks : public ::testing::Test {
  protected:
    void SetUp() override {
        savedInfo_ = Bundle::main().infoDictionary();
        resetProcessState();
    }
    void TearDown() override {
        Bundle::main().setInfoDictionary(savedInfo_);
        resetProcessState();
    }

    static void resetProcessState() {
        VNExecutionEnvironmentHelper::setApplicationState(UIApplicationState::active);
        VNPlatformVersion::reset();
        VNNetworkReachability::setFlagsProvider(nullptr);
        URLSession::setVNLocalNetworkPermissionErrorClassifier(nullptr);
        VNUndocumentedConfig::reset();
        URLSession::vnResetPermissionWaitingSession();
    }

    static void setTimeoutInfo(Value value) {
        Value::Dictionary info = Bundle::main().infoDictionary();
        info.erase(std::string(VNUndocumentedConfig::localNetworkPermissionTimeoutKey));
        if (!value.isNil())
            info[std::string(VNUndocumentedConfig::localNetworkPermissionTimeoutKey)] = value;
        Bundle::main().setInfoDictionary(std::move(info));
        VNUndocumentedConfig::reset();
        URLSession::vnResetPermissionWaitingSession();
    }

    // Fails every attempt of target (every session when null) with code, except the requests
    // that settle() makes.
    static std::shared_ptr<URLConnectionFailureInjection> failing(std::int64_t code,
                                                                  const URLSessionPtr& target) {
        return URLConnectionFailureInjection::inject(code, target, [](const URLRequest& request) {
            return request.url()->path() != kSettlePath;
        });
    }
    std::shared_ptr<URLConnectionFailureInjection> offline() const {
        return failing(NSURLErrorNotConnectedToInternet, session);
    }

    // A later request through the first session and one through the waiting session, each
    // awaited: a handler call still queued on either session's queue has run by then.
    void settle() const {
        EXPECT_EQ(load(session, server.url(kSettlePath)).status(), 204);
        EXPECT_EQ(load(URLSession::vnPermissionWaitingSession(), server.url(kSettlePath)).status(),
                  204);
    }

    URL url(std::string_view pathAndQuery) const {
        return *URL::URLWithString(server.url(pathAndQuery));
    }

    LoopbackHTTPServer server;
    URLSessionPtr session = plainSession();

  private:
    Value::Dictionary savedInfo_;
};

TEST_F(PermissionWaitingTasks, HostNameFailingWithNotConnectedIsPassedOnWithoutRetry) {
    const ClassifierRecorder classifier;
    const ReachabilityRecorder reachability;
    const auto injection = offline();
    const Recorder recorder;
    const URL byName =
        *URL::URLWithString("http://localhost:" + std::to_string(server.port()) + "/text?body=x");
    session->vnDataTaskWaitingForPermissionWithURL(byName, recorder.dataHandler())->resume();
    ASSERT_TRUE(recorder.waitForCalls(1));
    EXPECT_EQ(recorder.outcome().errorCode, NSURLErrorNotConnectedToInternet);
    EXPECT_EQ(classifier.calls(), 1);
    EXPECT_TRUE(reachability.hosts().empty());
    EXPECT_EQ(server.requestCount(), 0u);
    settle();
    EXPECT_EQ(recorder.outcome().calls, 1);
}

TEST_F(PermissionWaitingTasks, LocalIPv4LiteralIsRetriedOnceAndTheHandlerHearsTheRetry) {
    const ReachabilityRecorder reachability;  // answers with the built-in provider
    const auto injection = offline();
    const Recorder recorder;
    session
        ->vnDataTaskWaitingForPermissionWithRequest(requestFor(server.url("/text?body=second")),
                                                    recorder.dataHandler())
        ->resume();
    ASSERT_TRUE(recorder.waitForCalls(1));
    const Outcome outcome = recorder.outcome();
    EXPECT_EQ(outcome.errorCode, 0);
    EXPECT_EQ(outcome.status, 200);
    EXPECT_EQ(outcome.body, "second");
    // The first session never connects while the injection lives: the one request the server
    // saw is the retry, made in another session.
    EXPECT_EQ(injection->interceptedAttempts(), 1u);
    EXPECT_EQ(server.requestCount(), 1u);
    EXPECT_EQ(reachability.hosts(), std::vector<std::string>{"127.0.0.1"});
    settle();
    EXPECT_EQ(recorder.outcome().calls, 1);
    EXPECT_EQ(injection->interceptedAttempts(), 1u);
}

// Nothing may connect to ::1 in these tests, so the retry is failed by an injection of its
// own (-1004): the handler hears the retry's error, not the first attempt's -1009. The
// reachability of ::1 is given, as this machine's interfaces are not part of the test.
TEST_F(PermissionWaitingTasks, LocalIPv6LiteralIsRetriedOnceAndTheHandlerHearsTheRetry) {
    const ReachabilityRecorder reachability([](std::string_view host) {
        return host == "::1" ? std::optional(kReachableDirect) : std::nullopt;
    });
    const auto firstOffline = offline();
    const auto retryRefused =
        failing(NSURLErrorCannotConnectToHost, URLSession::vnPermissionWaitingSession());
    const Recorder recorder;
    const URL ipv6 =
        *URL::URLWithString("http://[::1]:" + std::to_string(server.port()) + "/text?body=x");
    session->vnDataTaskWaitingForPermissionWithURL(ipv6, recorder.dataHandler())->resume();
    ASSERT_TRUE(recorder.waitForCalls(1));
    EXPECT_EQ(recorder.outcome().errorCode, NSURLErrorCannotConnectToHost);
    EXPECT_EQ(firstOffline->interceptedAttempts(), 1u);
    EXPECT_EQ(retryRefused->interceptedAttempts(), 1u);
    EXPECT_EQ(reachability.hosts(), std::vector<std::string>{"::1"});
    settle();
    EXPECT_EQ(recorder.outcome().calls, 1);
}

TEST_F(PermissionWaitingTasks, EveryFactoryRetriesWithTheSameRequestAndBody) {
    const std::string filePath = temporaryDirectory() + "permission upload.txt";
    std::ofstream(filePath) << "from a file";
    const URL fileURL =
        *URL::URLWithString("file://" + temporaryDirectory() + "permission%20upload.txt");
    URLRequest post = requestFor(server.url("/echo?kind=upload"));
    post.setHTTPMethod("PUT");
    post.setValue("application/x-test", "Content-Type");
    const URLRequest get = requestFor(server.url("/text?body=downloaded"));

    using Make = std::function<URLSessionTaskPtr(URLSession&, const Recorder&)>;
    const struct {
        const char* factory;
        Make make;
        std::string method;
        std::string sentBody;
        std::string heardBody;
    } cases[] = {
        {"data with request",
         [&](URLSession& s, const Recorder& r) {
             return s.vnDataTaskWaitingForPermissionWithRequest(get, r.dataHandler());
         },
         "GET", "", "downloaded"},
        {"data with URL (labelled)",
         [&](URLSession& s, const Recorder& r) {
             return s.vnDataTaskWaitingForPermission(*get.url(), r.dataHandler());
         },
         "GET", "", "downloaded"},
        {"upload from a file",
         [&](URLSession& s, const Recorder& r) {
             return s.vnUploadTaskWaitingForPermissionWithRequest(post, fileURL, r.dataHandler());
         },
         "PUT", "from a file", "from a file"},
        {"upload from bytes (labelled)",
         [&](URLSession& s, const Recorder& r) {
             return s.vnUploadTaskWaitingForPermission(post, Data{'b', 'y', 't', 'e', 's'},
                                                       r.dataHandler());
         },
         "PUT", "bytes", "bytes"},
        {"upload from empty bytes",
         [&](URLSession& s, const Recorder& r) {
             return s.vnUploadTaskWaitingForPermissionWithRequest(post, Data{}, r.dataHandler());
         },
         "PUT", "", ""},
        {"download with request (labelled)",
         [&](URLSession& s, const Recorder& r) {
             return s.vnDownloadTaskWaitingForPermission(get, r.downloadHandler());
         },
         "GET", "", "downloaded"},
        {"download with URL",
         [&](URLSession& s, const Recorder& r) {
             return s.vnDownloadTaskWaitingForPermissionWithURL(*get.url(), r.downloadHandler());
         },
         "GET", "", "downloaded"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.factory);
        const auto injection = offline();
        const Recorder recorder;
        const std::size_t before = server.requestCount();
        c.make(*session, recorder)->resume();
        ASSERT_TRUE(recorder.waitForCalls(1));
        const Outcome outcome = recorder.outcome();
        EXPECT_EQ(outcome.errorCode, 0);
        EXPECT_EQ(outcome.status, 200);
        EXPECT_EQ(outcome.body, c.heardBody);
        EXPECT_EQ(injection->interceptedAttempts(), 1u);
        ASSERT_EQ(server.requestCount(), before + 1);
        const auto retried = server.requests().back();
        EXPECT_EQ(retried.method, c.method);
        EXPECT_EQ(retried.body, c.sentBody);
        if (c.method == "PUT") {
            EXPECT_EQ(retried.query, "kind=upload");
            EXPECT_EQ(retried.header("Content-Type"), "application/x-test");
            EXPECT_EQ(retried.header("Content-Length"), std::to_string(c.sentBody.size()));
        }
        settle();
        EXPECT_EQ(recorder.outcome().calls, 1);
    }
}

TEST_F(PermissionWaitingTasks, NoRetryIsArmedInTheBackgroundOnAWaitingSessionOrWithoutAHandler) {
    const ClassifierRecorder classifier;
    {
        SCOPED_TRACE("background when the task is made");
        VNExecutionEnvironmentHelper::setApplicationState(UIApplicationState::background);
        const auto injection = offline();
        const Recorder recorder;
        session->vnDataTaskWaitingForPermissionWithURL(url("/text"), recorder.dataHandler())
            ->resume();
        ASSERT_TRUE(recorder.waitForCalls(1));
        EXPECT_EQ(recorder.outcome().errorCode, NSURLErrorNotConnectedToInternet);
        VNExecutionEnvironmentHelper::setApplicationState(UIApplicationState::active);
    }
    {
        SCOPED_TRACE("session that waits for connectivity");
        auto configuration = URLSessionConfiguration::defaultSessionConfiguration();
        configuration.waitsForConnectivity = true;
        configuration.timeoutIntervalForResource = 300ms;
        const auto waiting = URLSession::sessionWithConfiguration(configuration);
        const auto injection = failing(NSURLErrorNotConnectedToInternet, waiting);
        const Recorder recorder;
        waiting->vnDownloadTaskWaitingForPermissionWithURL(url("/text"), recorder.downloadHandler())
            ->resume();
        ASSERT_TRUE(recorder.waitForCalls(1));
        EXPECT_EQ(recorder.outcome().errorCode, NSURLErrorTimedOut);
    }
    {
        SCOPED_TRACE("no completion handler");
        const auto injection = offline();
        const auto task = session->vnDataTaskWaitingForPermissionWithURL(url("/text"), nullptr);
        task->resume();
        ASSERT_TRUE(
            testing::eventually([&] { return task->state() == URLSessionTask::State::completed; }));
        ASSERT_TRUE(task->error());
        EXPECT_EQ(task->error()->code(), NSURLErrorNotConnectedToInternet);
    }
    EXPECT_EQ(classifier.calls(), 0);
    EXPECT_EQ(server.requestCount(), 0u);
}

TEST_F(PermissionWaitingTasks, GoingToTheBackgroundBeforeTheFailurePassesTheErrorOn) {
    const ClassifierRecorder classifier;
    const SessionFactoryRecorder factory;
    const auto injection = offline();
    const Recorder recorder;
    const auto task =
        session->vnDataTaskWaitingForPermissionWithURL(url("/text"), recorder.dataHandler());
    VNExecutionEnvironmentHelper::setApplicationState(UIApplicationState::background);
    task->resume();
    ASSERT_TRUE(recorder.waitForCalls(1));
    EXPECT_EQ(recorder.outcome().errorCode, NSURLErrorNotConnectedToInternet);
    EXPECT_EQ(classifier.calls(), 1);  // it may be the permission, but nobody can answer now
    EXPECT_TRUE(factory.configurations().empty());  // no waiting session was needed
    EXPECT_EQ(server.requestCount(), 0u);
}

TEST_F(PermissionWaitingTasks, HandedOverRetryDoesNotStartUntilResumed) {
    const auto injection = offline();
    const Recorder recorder;
    std::promise<URLSessionUploadTaskPtr> handedOver;
    URLRequest post = requestFor(server.url("/echo"));
    post.setHTTPMethod("POST");
    const auto first = session->vnUploadTaskWaitingForPermissionWithRequest(
        post, Data{'o', 'n', 'c', 'e'}, recorder.dataHandler(),
        [&](const URLSessionUploadTaskPtr& retry) { handedOver.set_value(retry); });
    first->resume();
    auto future = handedOver.get_future();
    ASSERT_EQ(future.wait_for(kDeadline), std::future_status::ready);
    const URLSessionUploadTaskPtr retry = future.get();
    ASSERT_TRUE(retry);
    EXPECT_NE(retry, first);
    EXPECT_EQ(retry->kind(), URLSessionTask::Kind::upload);
    EXPECT_EQ(retry->originalRequest().url(), post.url());
    EXPECT_EQ(retry->state(), URLSessionTask::State::suspended);

    // A later request through the waiting session gets through; the retry still has not.
    EXPECT_EQ(load(URLSession::vnPermissionWaitingSession(), server.url(kSettlePath)).status(),
              204);
    EXPECT_EQ(server.requestCount(), 1u);
    EXPECT_EQ(server.requests().front().path, kSettlePath);
    EXPECT_EQ(recorder.outcome().calls, 0);
    EXPECT_EQ(retry->state(), URLSessionTask::State::suspended);

    retry->resume();
    ASSERT_TRUE(recorder.waitForCalls(1));
    EXPECT_EQ(recorder.outcome().body, "once");
    EXPECT_EQ(server.requestCount(), 2u);
    EXPECT_EQ(server.requests().back().path, "/echo");
    settle();
    EXPECT_EQ(recorder.outcome().calls, 1);
}

TEST_F(PermissionWaitingTasks, WithoutAUsableWaitingSessionTheFirstResultIsPassedOn) {
    const auto injection = offline();
    const auto expectFirstResult = [&] {
        const Recorder recorder;
        session->vnDataTaskWaitingForPermissionWithURL(url("/text"), recorder.dataHandler())
            ->resume();
        ASSERT_TRUE(recorder.waitForCalls(1));
        EXPECT_EQ(recorder.outcome().errorCode, NSURLErrorNotConnectedToInternet);
        EXPECT_EQ(load(session, server.url(kSettlePath)).status(), 204);
        EXPECT_EQ(recorder.outcome().calls, 1);
    };
    {
        SCOPED_TRACE("the waiting session was invalidated");
        URLSession::vnPermissionWaitingSession()->finishTasksAndInvalidate();
        expectFirstResult();
        URLSession::vnResetPermissionWaitingSession();
    }
    {
        SCOPED_TRACE("the session factory makes none");
        const auto previous = URLSession::setVNSessionFactory(
            [](const URLSessionConfiguration&, URLSessionDelegatePtr, ExecutorPtr) {
                return URLSessionPtr();
            });
        expectFirstResult();
        URLSession::setVNSessionFactory(previous);
        EXPECT_TRUE(URLSession::vnPermissionWaitingSession());
    }
    EXPECT_EQ(server.requestCount(), 2u);  // the two settling requests
}

TEST_F(PermissionWaitingTasks, WaitingSessionIsMadeOnceThroughTheSessionFactory) {
    const SessionFactoryRecorder factory;
    std::vector<URLSessionPtr> seen(8);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < seen.size(); ++i)
        threads.emplace_back([&seen, i] { seen[i] = URLSession::vnPermissionWaitingSession(); });
    for (auto& thread : threads) thread.join();
    ASSERT_TRUE(seen.front());
    for (const auto& one : seen) EXPECT_EQ(one, seen.front());
    const auto configurations = factory.configurations();
    ASSERT_EQ(configurations.size(), 1u);
    EXPECT_TRUE(configurations.front().waitsForConnectivity);
    EXPECT_EQ(configurations.front().timeoutIntervalForResource, Seconds(30));
    EXPECT_FALSE(factory.anyDelegate());
    EXPECT_FALSE(seen.front()->delegate());
    EXPECT_TRUE(seen.front()->configuration().waitsForConnectivity);
}

TEST_F(PermissionWaitingTasks, WaitingSessionTimeOutComesFromTheMainBundle) {
    const struct {
        const char* what;
        Value info;
        double seconds;
    } cases[] = {
        {"absent", Value(), 30}, {"zero", 0, 30},    {"negative", -2, 30},
        {"positive", 4.5, 4.5},  {"text", "12", 12},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        setTimeoutInfo(c.info);
        const auto waiting = URLSession::vnPermissionWaitingSession();
        EXPECT_EQ(waiting->configuration().timeoutIntervalForResource, Seconds(c.seconds));
        // Made once: a later change of the dictionary does not reach it.
        Bundle::main().setInfoDictionary(
            {{std::string(VNUndocumentedConfig::localNetworkPermissionTimeoutKey), Value(77)}});
        EXPECT_EQ(URLSession::vnPermissionWaitingSession(), waiting);
    }
}

TEST_F(PermissionWaitingTasks, WaitingSessionTimeOutEndsARetryThatCannotConnectWith1001) {
    setTimeoutInfo(0.5);
    const auto everywhere = failing(NSURLErrorNotConnectedToInternet, nullptr);
    const Recorder recorder;
    const auto started = std::chrono::steady_clock::now();
    session->vnDataTaskWaitingForPermissionWithURL(url("/text"), recorder.dataHandler())->resume();
    ASSERT_TRUE(recorder.waitForCalls(1));
    const Seconds waited = std::chrono::steady_clock::now() - started;
    EXPECT_EQ(recorder.outcome().errorCode, NSURLErrorTimedOut);
    EXPECT_EQ(URLSession::vnPermissionWaitingSession()->configuration().timeoutIntervalForResource,
              Seconds(0.5));
    // The first attempt, then the waiting session's attempts until its time-out.
    EXPECT_GE(everywhere->interceptedAttempts(), 3u);
    EXPECT_GE(waited, Seconds(0.5));
    EXPECT_EQ(server.requestCount(), 0u);
    settle();
    EXPECT_EQ(recorder.outcome().calls, 1);
}

ErrorPtr urlError(std::int64_t code) {
    return Error::make(NSURLErrorDomain, code);
}

TEST_F(PermissionWaitingTasks, ClassificationTestsItsConditionsInOrderAndStopsAtTheFirstFailure) {
    const ErrorPtr notConnected = urlError(NSURLErrorNotConnectedToInternet);
    const auto literal = URL::URLWithString("http://127.0.0.1:8080/a");
    const struct {
        const char* what;
        VNOperatingSystemVersion version;
        ErrorPtr error;
        std::optional<URL> url;
        std::optional<SCNetworkReachabilityFlags> flags;  // what reachability answers
        bool answer;
        std::vector<std::string> asked;  // hosts reachability was asked for
    } cases[] = {
        {"1: platform before 14.0", {13, 7}, notConnected, literal, kReachableDirect, false, {}},
        {"2: another domain",
         {14, 0},
         Error::make(NSPOSIXErrorDomain, NSURLErrorNotConnectedToInternet),
         literal,
         kReachableDirect,
         false,
         {}},
        {"2: no error", {14, 0}, nullptr, literal, kReachableDirect, false, {}},
        {"3: another code",
         {14, 0},
         urlError(NSURLErrorTimedOut),
         literal,
         kReachableDirect,
         false,
         {}},
        {"4: no URL", {14, 0}, notConnected, std::nullopt, kReachableDirect, false, {}},
        {"4: no host",
         {14, 0},
         notConnected,
         URL::URLWithString("file:///tmp/a"),
         kReachableDirect,
         false,
         {}},
        {"4: host name",
         {14, 0},
         notConnected,
         URL::URLWithString("http://printer.local/"),
         kReachableDirect,
         false,
         {}},
        {"5: no flags", {14, 0}, notConnected, literal, std::nullopt, false, {"127.0.0.1"}},
        {"6: reachable only",
         {14, 0},
         notConnected,
         literal,
         kSCNetworkReachabilityFlagsReachable,
         false,
         {"127.0.0.1"}},
        {"6: direct but not reachable",
         {14, 0},
         notConnected,
         literal,
         kSCNetworkReachabilityFlagsIsDirect,
         false,
         {"127.0.0.1"}},
        {"6: cellular",
         {14, 0},
         notConnected,
         literal,
         kReachableDirect | kSCNetworkReachabilityFlagsIsWWAN,
         false,
         {"127.0.0.1"}},
        {"all hold: direct", {14, 0}, notConnected, literal, kReachableDirect, true, {"127.0.0.1"}},
        {"all hold: local address",
         {15, 2},
         notConnected,
         literal,
         kSCNetworkReachabilityFlagsReachable | kSCNetworkReachabilityFlagsIsLocalAddress,
         true,
         {"127.0.0.1"}},
        {"all hold: unknown bits ignored",
         {14, 0},
         notConnected,
         literal,
         kReachableDirect | 0x4 | 0x80000000u,
         true,
         {"127.0.0.1"}},
        {"all hold: IPv6 without brackets",
         {14, 0},
         notConnected,
         URL::URLWithString("http://[fe80::1]:8080/"),
         kReachableDirect,
         true,
         {"fe80::1"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        VNPlatformVersion::setCurrent(c.version);
        const ReachabilityRecorder reachability(
            [flags = c.flags](std::string_view) { return flags; });
        EXPECT_EQ(URLSession::vnMayBeLocalNetworkPermissionError(c.error, c.url), c.answer);
        EXPECT_EQ(URLSession::vnMayBeLocalNetworkPermissionErrorDefault(c.error, c.url), c.answer);
        std::vector<std::string> askedTwice = c.asked;
        askedTwice.insert(askedTwice.end(), c.asked.begin(), c.asked.end());
        EXPECT_EQ(reachability.hosts(), askedTwice);
    }
}

TEST_F(PermissionWaitingTasks, ReplacementClassifierDecoratesTheBuiltInOneAndIsAskedByTasks) {
    const ErrorPtr notConnected = urlError(NSURLErrorNotConnectedToInternet);
    std::atomic<int> asked{0};
    const auto builtIn = URLSession::setVNLocalNetworkPermissionErrorClassifier(nullptr);
    ASSERT_TRUE(builtIn);
    EXPECT_TRUE(builtIn(notConnected, url("/")));
    // Decorates the built-in classification: the loopback server's address is never a
    // permission case for this host.
    URLSession::setVNLocalNetworkPermissionErrorClassifier(
        [&](const ErrorPtr& error, const std::optional<URL>& target) {
            ++asked;
            return target->host() != "127.0.0.1" && builtIn(error, target);
        });
    EXPECT_FALSE(URLSession::vnMayBeLocalNetworkPermissionError(notConnected, url("/")));
    EXPECT_TRUE(URLSession::vnMayBeLocalNetworkPermissionErrorDefault(notConnected, url("/")));

    const auto injection = offline();
    const Recorder recorder;
    session->vnDataTaskWaitingForPermissionWithURL(url("/text"), recorder.dataHandler())->resume();
    ASSERT_TRUE(recorder.waitForCalls(1));
    EXPECT_EQ(recorder.outcome().errorCode, NSURLErrorNotConnectedToInternet);
    EXPECT_EQ(asked.load(), 2);
    EXPECT_EQ(server.requestCount(), 0u);

    const auto replaced = URLSession::setVNLocalNetworkPermissionErrorClassifier(nullptr);
    EXPECT_FALSE(replaced(notConnected, url("/")));
    EXPECT_EQ(asked.load(), 3);
    EXPECT_TRUE(URLSession::vnMayBeLocalNetworkPermissionError(notConnected, url("/")));
}

TEST_F(PermissionWaitingTasks, TwoHundredRequestsFromEightThreadsHalfRetriedEachHeardOnce) {
    constexpr int kThreads = 8;
    constexpr int kPerThread = 25;
    constexpr int kRequests = kThreads * kPerThread;
    const auto injection = URLConnectionFailureInjection::inject(
        NSURLErrorNotConnectedToInternet, session, [](const URLRequest& request) {
            return request.url()->query().value_or("").ends_with("&fail=1");
        });
    std::vector<Recorder> recorders(kRequests);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = t * kPerThread; i < (t + 1) * kPerThread; ++i) {
                const std::string query =
                    "/text?body=" + std::to_string(i) + (i % 2 ? "&fail=1" : "&fail=0");
                if (i % 3 == 0) {
                    session
                        ->vnDownloadTaskWaitingForPermissionWithURL(url(query),
                                                                    recorders[i].downloadHandler())
                        ->resume();
                } else {
                    session
                        ->vnDataTaskWaitingForPermissionWithRequest(requestFor(server.url(query)),
                                                                    recorders[i].dataHandler())
                        ->resume();
                }
            }
        });
    }
    for (auto& thread : threads) thread.join();
    for (int i = 0; i < kRequests; ++i) ASSERT_TRUE(recorders[i].waitForCalls(1)) << i;
    settle();
    for (int i = 0; i < kRequests; ++i) {
        const Outcome outcome = recorders[i].outcome();
        EXPECT_EQ(outcome.calls, 1) << i;
        EXPECT_EQ(outcome.status, 200) << i;
        EXPECT_EQ(outcome.body, std::to_string(i)) << i;
    }
    EXPECT_EQ(injection->interceptedAttempts(), static_cast<std::uint64_t>(kRequests / 2));
    EXPECT_EQ(server.requestCount(), static_cast<std::size_t>(kRequests + 2));
}

}  // namespace
}  // namespace vn
