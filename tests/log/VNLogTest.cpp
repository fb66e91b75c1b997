#include "vn/log/VNLog.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <thread>

#include "testing/CapturingLogListener.h"
#include "testing/ScopedProcessState.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/FileSystem.h"
#include "vn/platform/UserDefaults.h"
#include "vn/services/VNFoundationServices.h"

namespace vn {
namespace {

using testing::CapturingLogListener;
using testing::ScopedProcessState;

// A listener that runs an action on each notification, so tests can act from inside one.
class ActingListener final : public VNLogListener {
  public:
    explicit ActingListener(std::function<void(const std::string&)> action)
        : action_(std::move(action)) {}
    void logListenerNotifyMessage(const std::string& message) override { action_(message); }

  private:
    std::function<void(const std::string&)> action_;
};

const std::string& logFilePath() {
    return VNLog::sharedInstance()->logFilePath();
}

// Logs message and returns what reached the console.
std::string consoleOutputOf(std::string_view message) {
    ::testing::internal::CaptureStdout();
    VNLog::logMessage(message);
    return ::testing::internal::GetCapturedStdout();
}

class VNLogTest : public ::testing::Test {
  protected:
    ScopedProcessState state;
    std::shared_ptr<CapturingLogListener> listener = std::make_shared<CapturingLogListener>();
};

TEST_F(VNLogTest, SwitchesFollowDeveloperModeTolvarAppAndTheDefaults) {
    struct Case {
        bool developer, tolvar, enabled, requests, responses, body;
        bool logEnabled, file, requestsOn, responsesOn, bodyOn;
    };
    const std::vector<Case> cases = {
        // Neither developer mode nor the Tolvar app: everything off, whatever the defaults say.
        {false, false, true, true, true, true, false, false, false, false, false},
        // Developer mode: every kind switch on even with the master preference off; no file.
        {true, false, false, false, false, false, true, false, true, true, true},
        {true, true, true, false, false, false, true, true, true, true, true},
        // Tolvar app: the master preference gates the file and every kind.
        {false, true, false, true, true, true, false, false, false, false, false},
        {false, true, true, true, false, false, true, true, true, false, false},
        {false, true, true, false, true, true, true, true, false, true, true},
    };
    auto& defaults = UserDefaults::standard();
    for (const Case& c : cases) {
        VNUtilities::setShowDeveloperInfo(c.developer);
        VNUtilities::setIsTolvarApp(c.tolvar);
        defaults.setBool(c.enabled, VNLog::logEnabledPreferenceKey);
        defaults.setBool(c.requests, VNLog::logRequestsPreferenceKey);
        defaults.setBool(c.responses, VNLog::logResponsesPreferenceKey);
        defaults.setBool(c.body, VNLog::logResponsesBodyPreferenceKey);
        const auto label = ::testing::PrintToString(
            std::vector<bool>{c.developer, c.tolvar, c.enabled, c.requests, c.responses, c.body});
        EXPECT_EQ(VNLog::isLogEnabled(), c.logEnabled) << label;
        EXPECT_EQ(VNLog::logInConsole(), c.developer) << label;
        EXPECT_EQ(VNLog::logInFileEnabled(), c.file) << label;
        EXPECT_EQ(VNLog::isLogRequestsEnabled(), c.requestsOn) << label;
        EXPECT_EQ(VNLog::isLogResponsesEnabled(), c.responsesOn) << label;
        EXPECT_EQ(VNLog::isLogResponsesBodyEnabled(), c.bodyOn) << label;
    }
}

TEST_F(VNLogTest, FreshDefaultsAndSettingChangesAreReadOnEveryCall) {
    VNUtilities::setIsTolvarApp(true);
    auto& defaults = UserDefaults::standard();
    EXPECT_EQ(defaults.objectForKey(VNLog::logEnabledPreferenceKey), Value(false));
    EXPECT_EQ(defaults.objectForKey(VNLog::logRequestsPreferenceKey), Value(true));
    EXPECT_EQ(defaults.objectForKey(VNLog::logResponsesPreferenceKey), Value(true));
    EXPECT_EQ(defaults.objectForKey(VNLog::logResponsesBodyPreferenceKey), Value(false));
    EXPECT_FALSE(VNLog::isLogRequestsEnabled());
    defaults.setBool(true, VNLog::logEnabledPreferenceKey);
    EXPECT_TRUE(VNLog::isLogRequestsEnabled());
    EXPECT_FALSE(VNLog::isLogResponsesBodyEnabled());
    defaults.setObject("YES",
                       VNLog::logResponsesBodyPreferenceKey);  // the platform's boolean reading
    EXPECT_TRUE(VNLog::isLogResponsesBodyEnabled());
}

TEST_F(VNLogTest, EachSinkGetsTheMessageInItsFormUnderItsOwnSwitch) {
    VNLog::addListener(listener);
    EXPECT_EQ(consoleOutputOf("listeners only"), "");
    EXPECT_FALSE(std::filesystem::exists(logFilePath()));

    VNUtilities::setShowDeveloperInfo(true);  // the console; the file still needs the Tolvar app
    UserDefaults::standard().setBool(true, VNLog::logEnabledPreferenceKey);
    EXPECT_EQ(consoleOutputOf("abc"), "abc\n");
    EXPECT_FALSE(std::filesystem::exists(logFilePath()));

    VNUtilities::setIsTolvarApp(true);
    EXPECT_EQ(consoleOutputOf("abc"), "abc\n");
    EXPECT_EQ(VNLog::logString(), "abc\n");
    EXPECT_EQ(std::filesystem::file_size(logFilePath()), 4u);
    EXPECT_EQ(listener->messages(),
              (std::vector<std::string>{"listeners only\n", "abc\n", "abc\n"}));

    ::testing::internal::CaptureStdout();
    VNLog::writeMessage("raw", false);  // writers that pass no line end
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "raw\n");
    EXPECT_EQ(VNLog::logString(), "abc\nraw");
    EXPECT_EQ(listener->messages().back(), "raw");
}

TEST_F(VNLogTest, ClearingDeletesFileUntilNextMessage) {
    std::ofstream(logFilePath()) << "an earlier run's lines\n";
    ScopedProcessState::turnLogFileOn();
    VNLog::logMessage("one");
    VNLog::log("%@ and %d", "two", 3);
    EXPECT_EQ(VNLog::logString(), "one\ntwo and 3\n") << "the first message replaces an older file";
    VNLog::clearLog();
    EXPECT_FALSE(std::filesystem::exists(logFilePath()));
    EXPECT_EQ(VNLog::logString(), std::nullopt);
    VNLog::clear();  // clearing without a file is harmless
    VNLog::logMessage("after");
    EXPECT_EQ(VNLog::logString(), "after\n");

    VNExecutionEnvironmentHelper::postCurrentContextWillTerminate();
    EXPECT_FALSE(std::filesystem::exists(logFilePath())) << "termination clears the log too";
    VNLog::logMessage("again");
    EXPECT_EQ(VNLog::logString(), "again\n");
}

TEST_F(VNLogTest, FileProblemsOnlyCostTheFile) {
    ScopedProcessState::turnLogFileOn();
    VNLog::addListener(listener);
    const std::string invalid = "bad \xC3\x28 byte";
    VNLog::logMessage("caf\u00e9");
    VNLog::logMessage(invalid);
    EXPECT_EQ(VNLog::logString(), "caf\u00e9\n") << "text that is not UTF-8 skips the file";
    std::ofstream(logFilePath(), std::ios::app) << "\xFF\n";
    EXPECT_EQ(VNLog::logString(), std::nullopt) << "a file that is not UTF-8 reads as absent";

    VNLog::clearLog();
    ASSERT_TRUE(std::filesystem::create_directory(logFilePath()));  // the file cannot be created
    VNLog::logMessage("not in a file");
    EXPECT_EQ(VNLog::logString(), std::nullopt);
    EXPECT_EQ(listener->messages(),
              (std::vector<std::string>{"caf\u00e9\n", invalid + "\n", "not in a file\n"}));
    VNLog::clearLog();
    std::filesystem::remove(logFilePath());
    VNLog::logMessage("kept");
    EXPECT_EQ(VNLog::logString(), "kept\n");
}

TEST_F(VNLogTest, ListenersAreNotifiedInOrderOnceEachAndRemovedByIdentity) {
    std::vector<std::string> calls;
    const auto named = [&calls](std::string name) {
        return std::make_shared<ActingListener>(
            [&calls, name](const std::string& m) { calls.push_back(name + m); });
    };
    const auto a = named("a:");
    const auto b = named("b:");
    const auto c = named("c:");
    VNLog::addListener(a);
    VNLog::add(b);
    VNLog::addListener(a);  // already there
    VNLog::addListener(c);
    VNLog::addListener(nullptr);
    VNLog::logMessage("1");
    VNLog::removeListener(named("a:"));  // another object with the same behaviour
    VNLog::remove(b);
    VNLog::removeListener(b);  // no longer there
    VNLog::logMessage("2");
    EXPECT_EQ(calls, (std::vector<std::string>{"a:1\n", "b:1\n", "c:1\n", "a:2\n", "c:2\n"}));
    VNLog::removeListener(a);
    EXPECT_EQ(a.use_count(), 1) << "a removed listener is released";
}

TEST_F(VNLogTest, ListenerMayChangeTheListenersAndLogFromInsideItsNotification) {
    std::vector<std::string> calls;
    const auto late = std::make_shared<ActingListener>(
        [&](const std::string& m) { calls.push_back("late:" + m); });
    std::shared_ptr<ActingListener> self;
    self = std::make_shared<ActingListener>([&](const std::string& m) {
        calls.push_back("self:" + m);
        VNLog::addListener(late);
        VNLog::removeListener(self);
        VNLog::logMessage("nested");
    });
    VNLog::addListener(self);
    VNLog::logMessage("first");
    VNLog::logMessage("second");
    // The first loop keeps the list it started with; the nested message sees the new one.
    EXPECT_EQ(calls, (std::vector<std::string>{"self:first\n", "late:nested\n", "late:second\n"}));
}

TEST_F(VNLogTest, ListenerReleasedByTheLogMayLogFromItsDestructor) {
    struct LogsWhenDestroyed final : VNLogListener {
        void logListenerNotifyMessage(const std::string&) override {}
        ~LogsWhenDestroyed() override { VNLog::logMessage("listener gone"); }
    };
    auto dying = std::make_shared<LogsWhenDestroyed>();
    const std::weak_ptr<VNLogListener> weak = dying;
    VNLog::addListener(dying);
    dying.reset();
    VNLog::reset();  // drops the last reference; must not deadlock
    EXPECT_TRUE(weak.expired());
}

TEST_F(VNLogTest, NothingIsFormattedWhenNoSinkWouldReceiveIt) {
    struct DescriptionCounter final : Object {
        std::string description() const override {
            ++calls;
            return "counted";
        }
        mutable std::atomic<int> calls{0};
    };
    const auto counter = std::make_shared<DescriptionCounter>();
    EXPECT_FALSE(VNLog::hasActiveSink());
    VNLog::log("value: %@", counter);
    EXPECT_EQ(counter->calls, 0);
    VNLog::addListener(listener);
    EXPECT_TRUE(VNLog::hasActiveSink());
    VNLog::log("value: %@", counter);
    EXPECT_EQ(counter->calls, 1);
    EXPECT_EQ(listener->messages(), std::vector<std::string>{"value: counted\n"});
}

// Eight threads log at once with the file and a listener on; returns what went wrong, if
// anything: every message must reach the file exactly once as a whole line, and the listener
// must hear every one.
std::string logConcurrentlyAndCheck() {
    constexpr int kThreads = 8;
    constexpr int kPerThread = 10000;
    const std::string padding(40, '.');
    const auto parse = [&padding](const std::string& line) {
        int thread = -1;
        int index = -1;
        char rest[64] = {};
        const bool whole =
            std::sscanf(line.c_str(), "thread %d message %d %63s", &thread, &index, rest) == 3 &&
            rest == padding && thread >= 0 && thread < kThreads && index >= 0 && index < kPerThread;
        return whole ? thread * kPerThread + index : -1;
    };
    std::vector<std::atomic<int>> heard(kThreads * kPerThread);
    VNLog::addListener(std::make_shared<ActingListener>([&](const std::string& m) {
        if (const int slot = parse(m.substr(0, m.size() - 1)); slot >= 0)
            ++heard[static_cast<std::size_t>(slot)];
    }));
    ScopedProcessState::turnLogFileOn();
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &padding] {
            for (int i = 0; i < kPerThread; ++i) {
                VNLog::logMessage("thread " + std::to_string(t) + " message " + std::to_string(i) +
                                  " " + padding);
            }
        });
    }
    for (auto& thread : threads) thread.join();

    const std::optional<std::string> content = VNLog::logString();
    if (!content || content->empty() || content->back() != '\n')
        return "the file is missing or ends mid-line";
    std::vector<int> written(kThreads * kPerThread, 0);
    std::istringstream lines(*content);
    int torn = 0;
    for (std::string line; std::getline(lines, line);) {
        const int slot = parse(line);
        slot >= 0 ? ++written[static_cast<std::size_t>(slot)] : ++torn;
    }
    int notOnceInFile = 0;
    int notOnceHeard = 0;
    for (std::size_t i = 0; i < written.size(); ++i) {
        notOnceInFile += written[i] != 1;
        notOnceHeard += heard[i] != 1;
    }
    if (torn == 0 && notOnceInFile == 0 && notOnceHeard == 0) return {};
    return std::to_string(torn) + " torn lines, " + std::to_string(notOnceInFile) +
           " not once in the file, " + std::to_string(notOnceHeard) + " not heard once";
}

// In a child process whose log file lives on /dev/shm (a tmpfs, where fdatasync costs nothing),
// so that the test exercises the log and not a busy disk. The logger is first created there.
TEST(VNLogDeathTest, ConcurrentMessagesAreNeitherLostNorTorn) {
    EXPECT_EXIT(
        {
            std::string pattern = "/dev/shm/vn-log-test-XXXXXX";
            const char* directory = mkdtemp(pattern.data());
            if (directory) setenv("TMPDIR", directory, 1);
            const std::string problem = logConcurrentlyAndCheck();
            VNLog::clearLog();
            if (directory) rmdir(directory);
            std::fprintf(stderr, "%s\n",
                         problem.empty() ? "all messages arrived" : problem.c_str());
            std::exit(problem.empty() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "all messages arrived");
}

// A process that first uses the logger from a static object's destructor: the line must still
// reach the file.
TEST(VNLogDeathTest, StaticDestructorsCanStillLog) {
    // The child runs this body again with a temporary directory of its own, so the directory to
    // log into is handed down through the environment.
    constexpr const char* kDirectoryVariable = "VN_LOG_TEST_EXITING_PROCESS_DIRECTORY";
    const char* inherited = std::getenv(kDirectoryVariable);
    const std::string directory = inherited ? inherited : temporaryDirectory() + "exiting-process/";
    setenv(kDirectoryVariable, directory.c_str(), 1);
    std::filesystem::create_directories(directory);
    EXPECT_EXIT(
        {
            setenv("TMPDIR", directory.c_str(), 1);
            ScopedProcessState::turnLogFileOn();
            struct LogsWhenDestroyed {
                ~LogsWhenDestroyed() { VNLog::log("logged from a %@ destructor", "static"); }
            };
            static LogsWhenDestroyed object;
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
    std::stringstream content;
    content << std::ifstream(directory + "vnlog.log").rdbuf();
    EXPECT_EQ(content.str(), "logged from a static destructor\n");
    unsetenv(kDirectoryVariable);
}

}  // namespace
}  // namespace vn
