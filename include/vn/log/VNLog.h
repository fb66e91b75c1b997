// VNLog: the library's diagnostic log. A message goes to up to three sinks at once:
// - the console (standard output) when VNUtilities::showDeveloperInfo() is on;
// - the log file "vnlog.log" in vn::temporaryDirectory() when VNUtilities::isTolvarApp() is on
//   and the user default "log_enabled_preference" is true;
// - every registered VNLogListener, always.
// The switches are read afresh on every call, so a change takes effect with the next message.
//
// The log file is started anew by the first message written in a process run (an older file
// is deleted first), is never appended across runs, and is deleted again by clearLog() or when
// the execution environment posts VNExecutionEnvironmentHelper::
// currentContextWillTerminateNotification(). Each message is written and synchronised to
// storage (fdatasync) before the call returns. The temporary directory ($TMPDIR, else /tmp) may
// be shared with other local users, so the file is created exclusively, readable and writable by
// its owner only (0600), and never through a symbolic link: when something another user
// left at its name cannot be deleted, the file is not written and standard error says why
// (once, until the file can be made again).
//
// All members are static and act on one shared logger, created on first use together with the
// registered defaults of its four user-default switches:
//   "log_enabled_preference" false, "log_requests_preference" true,
//   "log_responses_preference" true, "log_responsesbody_preference" false.
// The shared logger is never destroyed, so it may be used from static destructors and from
// other threads while the process exits.
//
// Threads: any member may be called from any thread. File operations and changes of the
// listener list run in one serial section (a mutex: the synchronous work the log does on its
// private serial queue is exactly a critical section). Console output and listener
// notification run on the caller's thread, outside that section. Nothing here reports an
// error to the caller: failures to delete, create or write the file are swallowed (a failure
// to create it is told on standard error).
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vn/log/StringFormat.h"
#include "vn/log/VNLogListener.h"
#include "vn/platform/Object.h"
#include "vn/platform/URLRequest.h"
#include "vn/platform/URLResponse.h"
#include "vn/platform/Value.h"
#include "vn/services/VNLoggerService.h"

namespace vn {

class VNLog final : public Object {
    struct ConstructionKey {};  // only sharedInstance() makes a logger

  public:
    // The user-default keys of the log's switches.
    static constexpr std::string_view logEnabledPreferenceKey = "log_enabled_preference";
    static constexpr std::string_view logRequestsPreferenceKey = "log_requests_preference";
    static constexpr std::string_view logResponsesPreferenceKey = "log_responses_preference";
    static constexpr std::string_view logResponsesBodyPreferenceKey =
        "log_responsesbody_preference";
    // The log file's name inside the temporary directory.
    static constexpr std::string_view logFileName = "vnlog.log";

    // showDeveloperInfo OR (isTolvarApp AND "log_enabled_preference").
    static bool isLogEnabled();
    // Whether messages reach the console: showDeveloperInfo.
    static bool logInConsole();
    // Whether messages reach the file: isTolvarApp AND "log_enabled_preference".
    static bool logInFileEnabled();
    // Kind switches: true in developer mode; otherwise isTolvarApp AND "log_enabled_preference"
    // AND the kind's own key ("log_requests_preference", "log_responses_preference",
    // "log_responsesbody_preference").
    static bool isLogRequestsEnabled();
    static bool isLogResponsesEnabled();
    static bool isLogResponsesBodyEnabled();

    // Writes message: to the console unchanged (the console adds its own line end), to the
    // file and to the listeners followed by "\n". When neither console nor file is on and no
    // listener is registered it returns after the switch checks, touching nothing else.
    // Text that is not valid UTF-8 is not written to the file (console and listeners still
    // get it).
    static void logMessage(std::string_view message);

    // Formats with vn::stringWithFormat, then writes as logMessage. When no sink would receive
    // the message the arguments are not even converted.
    template <typename... Arguments>
    static void log(std::string_view format, const Arguments&... arguments) {
        if (!hasActiveSink()) return;
        writeMessage(stringWithFormat(format, arguments...), true);
    }

    // Writes the pretty JSON (tab indentation) of the one-entry dictionary {title: object}, as
    // logMessage does. The JSON text is built only when a sink will receive it.
    static void logJSONObject(const Value& object, std::string_view title);

    // Writes "JSON Parser: " followed by the element's standard textual form, when developer
    // mode is on, or isTolvarApp AND "log_enabled_preference" AND "log_responses_preference".
    // Otherwise nothing happens; the closure form does not even evaluate the element.
    static void logJSONParserElementIfEnabled(const Value& element);
    static void logJSONParserElementIfEnabled(const std::function<Value()>& element);

    // Network tracing. Each writer sends a record of the exchange, as JSON, to two
    // destinations with their own gates:
    // - the local log when isLogResponsesEnabled() (the responses switch, deliberately also for
    //   requests): pretty JSON (tab indentation) of {"request": record} or {"response": record},
    //   written as logJSONObject writes it;
    // - the host's loggerService(), when one is registered, its isLogEnabled() is true and its
    //   logLevelForType(VNLoggerType::network) is not off: the compact JSON of the same
    //   dictionary as VNLoggerType::network at VNLoggerLevel::debug, logToConsole false, on
    //   the caller's thread.
    // When both are closed the record is not built at all.
    //
    // The request record: "url" (the URL's absoluteString), "method", "headers" (every header
    // field) and "body" (the body as UTF-8 text, "" when it is not valid UTF-8), each JSON null
    // when the request has none.
    static void logURLRequestIfEnabled(const URLRequest& request);

    // The response record: "url" (the absoluteString of the request's URL, not the
    // response's; null when it has none) and "bytes" (data's size, 0 without data); for an
    // HTTPURLResponse also "statusCode" and "headers" (all header fields). When
    // isLogResponsesBodyEnabled(), also "data": data as text in the response's
    // vnStringEncoding(), UTF-8 when it names none; null when there is no data or it does not
    // decode.
    static void logURLResponseIfEnabled(const URLResponse& response, const URLRequest& request,
                                        const std::optional<Data>& data);
    // The same for a body downloaded into the file at dataPath: "bytes" is 0 and "data" (when
    // isLogResponsesBodyEnabled()) is "Downloaded data saved to path " followed by dataPath.
    static void logURLResponseIfEnabled(const URLResponse& response, const URLRequest& request,
                                        std::string_view dataPath);

    // Closes and deletes the log file; the next message starts a new one.
    static void clearLog();
    static void clear() { clearLog(); }

    // The whole current content of the log file, read directly from storage; absent when
    // there is no file or it cannot be read as UTF-8.
    static std::optional<std::string> logString();

    // Registers a listener; one already registered (same object) is not added twice.
    // A null listener is ignored.
    static void addListener(const VNLogListenerPtr& listener);
    static void add(const VNLogListenerPtr& listener) { addListener(listener); }
    // Unregisters the listener (by identity); a listener not registered changes nothing.
    static void removeListener(const VNLogListenerPtr& listener);
    static void remove(const VNLogListenerPtr& listener) { removeListener(listener); }

    // The shared logger, created on first use.
    static const std::shared_ptr<VNLog>& sharedInstance();
    // The host's structured logger: VNFoundationServices::loggerService().
    static std::shared_ptr<VNLoggerService> loggerService();

    // For writers that build their text from structured data (network and JSON tracing):
    // whether a message written now would reach any sink (console or file on, or at least one
    // listener). Check it before preparing an expensive text.
    static bool hasActiveSink();
    // The common writing path of every writer: like logMessage, where appendLineEnd decides
    // whether the file and the listeners get "\n" after the message.
    static void writeMessage(std::string_view message, bool appendLineEnd);

    // Back to the state of a new process: removes every listener, clears the log file and
    // registers the switches' defaults again (UserDefaults::reset() forgets them). For tests
    // and host resets.
    static void reset();

    // Where the log file is (or will be): the temporary directory at the logger's creation
    // followed by "vnlog.log".
    const std::string& logFilePath() const { return logFilePath_; }

    explicit VNLog(ConstructionKey);
    ~VNLog() override;

  private:
    using ListenerList = std::vector<VNLogListenerPtr>;

    static void registerDefaultSettings();
    static bool fileSwitchIsOn();
    static bool readFileSwitch();  // fileSwitchIsOn once the shared logger exists
    static bool kindSwitch(std::string_view key);

    std::shared_ptr<const ListenerList> listenersSnapshot() const;
    // Makes listeners the list notification loops see; returns the previous one.
    std::shared_ptr<const ListenerList> publishListeners(
        std::shared_ptr<const ListenerList> listeners);
    void writeToFile(std::string_view line);
    int openFileIfNeeded();
    // Tells the console (standard error) once, until the file is made again, why it cannot be.
    void reportOpenFailureOnce(int error);
    void addTerminationObserverIfNeeded();
    void closeAndDeleteFile();

    const std::string logFilePath_;
    const std::string terminationNotificationName_;

    // The serial section: file operations and listener changes.
    std::mutex privateQueue_;
    int logFile_ = -1;  // open descriptor, or -1 before the first write and after a clear
    bool openFailureReported_ = false;
    bool terminationObserverAdded_ = false;
    ListenerList listeners_;

    // What notification loops read: the list as it was at its last change, published under
    // its own small lock so that readers never wait for a file synchronisation.
    mutable std::mutex snapshotMutex_;
    std::shared_ptr<const ListenerList> snapshot_;
    std::atomic<std::size_t> listenerCount_{0};
};

}  // namespace vn
