// vn log: writes a message through the library's log with the file sink on and shows the log
// file; and the tour's section on the log (switches, sinks, listeners, formatting).
#include <cstdio>
#include <string>

#include "../Registry.h"
#include "vn/log/StringFormat.h"
#include "vn/log/VNLog.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/URLRequest.h"
#include "vn/platform/URLResponse.h"
#include "vn/platform/UserDefaults.h"

namespace {

using namespace vn;

int runLog(const tool::Arguments& arguments);

const tool::Command kLog{
    "log", "log MESSAGE...",
    "write MESSAGE to the log with the file on; print the log file's path and content",
    "vn log 'hello from the tool'", runLog};

void turnFileLogOn() {
    VNUtilities::setShowDeveloperInfo(false);
    VNUtilities::setIsTolvarApp(true);
    UserDefaults::standard().setBool(true, VNLog::logEnabledPreferenceKey);
}

int runLog(const tool::Arguments& arguments) {
    if (arguments.empty()) return tool::usageError(kLog);
    std::string message = arguments.front();
    for (std::size_t i = 1; i < arguments.size(); ++i) message += " " + arguments[i];
    turnFileLogOn();
    VNLog::logMessage(message);
    std::printf("log file: %s\n", VNLog::sharedInstance()->logFilePath().c_str());
    const auto content = VNLog::logString();
    if (content) std::printf("content:\n%s", content->c_str());
    // The file is started anew by this run's first message, so it holds that message alone.
    if (content != message + "\n")
        return tool::badData(kLog,
                             "the message did not reach the log file (it takes UTF-8 "
                             "text only; see above for a file that cannot be made)");
    return tool::kSuccess;
}

class PrintingListener final : public VNLogListener {
  public:
    void logListenerNotifyMessage(const std::string& message) override {
        std::printf("  listener heard: %s", message.c_str());
    }
};

const char* onOff(bool on) {
    return on ? "on" : "off";
}

void showSwitches(const char* situation) {
    std::printf(
        "%-44s enabled %-3s console %-3s file %-3s requests %-3s responses %-3s bodies %s\n",
        situation, onOff(VNLog::isLogEnabled()), onOff(VNLog::logInConsole()),
        onOff(VNLog::logInFileEnabled()), onOff(VNLog::isLogRequestsEnabled()),
        onOff(VNLog::isLogResponsesEnabled()), onOff(VNLog::isLogResponsesBodyEnabled()));
}

// A traced exchange: the request, then an HTTP response whose Latin-1 body is decoded by the
// charset its Content-Type names.
void showNetworkTracing() {
    std::printf("\nnetwork tracing (file on, response bodies on), as a listener hears it:\n");
    turnFileLogOn();
    UserDefaults::standard().setBool(true, VNLog::logResponsesBodyPreferenceKey);
    const auto listener = std::make_shared<PrintingListener>();
    VNLog::addListener(listener);
    URLRequest request(URL::URLWithString("https://example.com/items?page=2").value());
    request.setValue("application/json", "Accept");
    VNLog::logURLRequestIfEnabled(request);
    const HTTPURLResponse response(request.url().value(), 200,
                                   {{"Content-Type", "text/plain; charset=iso-8859-1"}});
    VNLog::logURLResponseIfEnabled(response, request, Data{'c', 'a', 'f', 0xe9});
    VNLog::removeListener(listener);
    UserDefaults::standard().removeObjectForKey(VNLog::logResponsesBodyPreferenceKey);
}

void showLog() {
    VNLog::reset();
    showSwitches("fresh process:");
    VNUtilities::setIsTolvarApp(true);
    showSwitches("Tolvar app:");
    UserDefaults::standard().setBool(true, VNLog::logEnabledPreferenceKey);
    showSwitches("Tolvar app, log_enabled_preference true:");
    VNUtilities::setIsTolvarApp(false);
    VNUtilities::setShowDeveloperInfo(true);
    showSwitches("developer mode:");
    VNUtilities::setShowDeveloperInfo(false);

    std::printf("\n");
    const auto listener = std::make_shared<PrintingListener>();
    VNLog::addListener(listener);
    VNLog::addListener(listener);
    std::printf("a listener (added twice, kept once) hears every message with its line end:\n");
    VNLog::log("request %d took %.1f ms for %@", 7, 12.25, "https://example.com/items");

    turnFileLogOn();
    VNLog::logMessage("first line of this run");
    VNLog::logMessage("second line");
    VNLog::removeListener(listener);
    std::printf("file %s now holds:\n%s", VNLog::sharedInstance()->logFilePath().c_str(),
                VNLog::logString().value_or("(no file)\n").c_str());
    VNLog::clearLog();
    std::printf("after clearLog the file is %s\n", VNLog::logString() ? "still there" : "gone");

    std::printf("\nformatting: %s\n", stringWithFormat("[%5d] [%-6s] [%05.1f] [%x] [%@] [%2$@]", 42,
                                                       "ab", 3.14159, 255, Value::null())
                                          .c_str());
    showNetworkTracing();
    VNLog::reset();
    VNUtilities::setIsTolvarApp(false);
}

const tool::CommandRegistration kLogRegistration{kLog};
const tool::TourRegistration kLogTour{{20, "Log: switches, sinks and listeners", showLog}};

}  // namespace
