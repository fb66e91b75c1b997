#include "vn/log/VNLog.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "platform/internal/Utf8.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/FileSystem.h"
#include "vn/platform/NotificationCenter.h"
#include "vn/platform/UserDefaults.h"
#include "vn/services/VNFoundationServices.h"

namespace vn {
namespace {

void printToConsole(std::string_view message) {
    flockfile(stdout);
    std::fwrite(message.data(), 1, message.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
    funlockfile(stdout);
}

void writeFully(int descriptor, std::string_view data) {
    while (!data.empty()) {
        const ssize_t written = ::write(descriptor, data.data(), data.size());
        if (written < 0) {
            if (errno == EINTR) continue;
            return;  // a full disk or a vanished file: the message is lost, the caller is not told
        }
        data.remove_prefix(static_cast<std::size_t>(written));
    }
}

}  // namespace

VNLog::VNLog(ConstructionKey)
    : logFilePath_(temporaryDirectory() + std::string(logFileName)),
      terminationNotificationName_(
          VNExecutionEnvironmentHelper::currentContextWillTerminateNotification()),
      snapshot_(std::make_shared<const ListenerList>()) {}

VNLog::~VNLog() {
    if (logFile_ >= 0) ::close(logFile_);
}

const std::shared_ptr<VNLog>& VNLog::sharedInstance() {
    // Deliberately leaked: the logger must outlive every static destructor that may log.
    static const auto* instance = [] {
        registerDefaultSettings();
        return new std::shared_ptr<VNLog>(std::make_shared<VNLog>(ConstructionKey{}));
    }();
    return *instance;
}

void VNLog::registerDefaultSettings() {
    UserDefaults::standard().registerDefaults({
        {std::string(logEnabledPreferenceKey), false},
        {std::string(logRequestsPreferenceKey), true},
        {std::string(logResponsesPreferenceKey), true},
        {std::string(logResponsesBodyPreferenceKey), false},
    });
}

std::shared_ptr<VNLoggerService> VNLog::loggerService() {
    return VNFoundationServices::loggerService();
}

bool VNLog::fileSwitchIsOn() {
    sharedInstance();  // the switches' defaults are registered with it
    return readFileSwitch();
}

bool VNLog::readFileSwitch() {
    return VNUtilities::isTolvarApp() &&
           UserDefaults::standard().boolForKey(logEnabledPreferenceKey);
}

bool VNLog::kindSwitch(std::string_view key) {
    if (VNUtilities::showDeveloperInfo()) return true;
    return fileSwitchIsOn() && UserDefaults::standard().boolForKey(key);
}

bool VNLog::isLogEnabled() {
    return VNUtilities::showDeveloperInfo() || fileSwitchIsOn();
}

bool VNLog::logInConsole() {
    return VNUtilities::showDeveloperInfo();
}

bool VNLog::logInFileEnabled() {
    return fileSwitchIsOn();
}

bool VNLog::isLogRequestsEnabled() {
    return kindSwitch(logRequestsPreferenceKey);
}

bool VNLog::isLogResponsesEnabled() {
    return kindSwitch(logResponsesPreferenceKey);
}

bool VNLog::isLogResponsesBodyEnabled() {
    return kindSwitch(logResponsesBodyPreferenceKey);
}

bool VNLog::hasActiveSink() {
    return VNUtilities::showDeveloperInfo() || fileSwitchIsOn() ||
           sharedInstance()->listenerCount_.load(std::memory_order_relaxed) > 0;
}

void VNLog::logMessage(std::string_view message) {
    writeMessage(message, true);
}

void VNLog::writeMessage(std::string_view message, bool appendLineEnd) {
    VNLog& log = *sharedInstance();
    const bool console = VNUtilities::showDeveloperInfo();
    const bool file = readFileSwitch();
    if (!console && !file && log.listenerCount_.load(std::memory_order_relaxed) == 0) return;

    if (console) printToConsole(message);
    const std::shared_ptr<const ListenerList> listeners = log.listenersSnapshot();
    if (!file && listeners->empty()) return;

    std::string line;
    line.reserve(message.size() + 1);
    line.append(message);
    if (appendLineEnd) line.push_back('\n');
    if (file && platform_internal::isValidUtf8(line)) log.writeToFile(line);
    for (const VNLogListenerPtr& listener : *listeners) listener->logListenerNotifyMessage(line);
}

void VNLog::writeToFile(std::string_view line) {
    std::lock_guard section(privateQueue_);
    const int descriptor = openFileIfNeeded();
    if (descriptor < 0) return;
    writeFully(descriptor, line);
    ::fdatasync(descriptor);
}

int VNLog::openFileIfNeeded() {
    if (logFile_ >= 0) return logFile_;
    // The file has a fixed name in a folder other local users may write to. Whatever is there
    // is removed, and the file is made anew and exclusively: a link or a file someone else
    // planted (or plants after the removal) is never followed, truncated or written into.
    ::unlink(logFilePath_.c_str());
    logFile_ = ::open(logFilePath_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                      S_IRUSR | S_IWUSR);
    if (logFile_ < 0) {
        reportOpenFailureOnce(errno);
        return logFile_;
    }
    openFailureReported_ = false;
    addTerminationObserverIfNeeded();
    return logFile_;
}

void VNLog::reportOpenFailureOnce(int error) {
    if (openFailureReported_) return;
    openFailureReported_ = true;
    std::fprintf(stderr,
                 "VNLog: cannot create the log file %s (%s); messages are not written to a file. "
                 "A file or link another user left at that name is never reused or followed.\n",
                 logFilePath_.c_str(), std::strerror(error));
}

void VNLog::addTerminationObserverIfNeeded() {
    if (terminationObserverAdded_) return;
    terminationObserverAdded_ = true;
    std::weak_ptr<VNLog> weakLog = std::static_pointer_cast<VNLog>(shared_from_this());
    NotificationCenter::defaultCenter().addObserver(
        terminationNotificationName_, nullptr, nullptr, [weakLog](const Notification&) {
            if (const auto log = weakLog.lock()) {
                std::lock_guard section(log->privateQueue_);
                log->closeAndDeleteFile();
            }
        });
}

void VNLog::closeAndDeleteFile() {
    if (logFile_ >= 0) {
        ::close(logFile_);
        logFile_ = -1;
    }
    ::unlink(logFilePath_.c_str());
}

void VNLog::clearLog() {
    VNLog& log = *sharedInstance();
    std::lock_guard section(log.privateQueue_);
    log.closeAndDeleteFile();
}

std::optional<std::string> VNLog::logString() {
    // Never through a link: what another user planted at the name is not this log.
    const int descriptor =
        ::open(sharedInstance()->logFilePath_.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) return std::nullopt;
    std::string content;
    char buffer[16384];
    ssize_t count = 0;
    while ((count = ::read(descriptor, buffer, sizeof buffer)) != 0) {
        if (count < 0) {
            if (errno == EINTR) continue;
            break;
        }
        content.append(buffer, static_cast<std::size_t>(count));
    }
    ::close(descriptor);
    if (count < 0 || !platform_internal::isValidUtf8(content)) return std::nullopt;
    return content;
}

std::shared_ptr<const VNLog::ListenerList> VNLog::listenersSnapshot() const {
    std::lock_guard lock(snapshotMutex_);
    return snapshot_;
}

std::shared_ptr<const VNLog::ListenerList> VNLog::publishListeners(
    std::shared_ptr<const ListenerList> listeners) {
    listenerCount_.store(listeners->size(), std::memory_order_relaxed);
    std::lock_guard lock(snapshotMutex_);
    std::swap(snapshot_, listeners);
    return listeners;
}

void VNLog::addListener(const VNLogListenerPtr& listener) {
    if (!listener) return;
    VNLog& log = *sharedInstance();
    std::shared_ptr<const ListenerList> previous;  // released after the section
    std::lock_guard section(log.privateQueue_);
    for (const VNLogListenerPtr& registered : log.listeners_) {
        if (registered == listener) return;
    }
    log.listeners_.push_back(listener);
    previous = log.publishListeners(std::make_shared<const ListenerList>(log.listeners_));
}

// A listener's destructor may log, so the last references to removed listeners are dropped
// only after the serial section is left.
void VNLog::removeListener(const VNLogListenerPtr& listener) {
    VNLog& log = *sharedInstance();
    std::shared_ptr<const ListenerList> previous;
    VNLogListenerPtr removed;
    std::lock_guard section(log.privateQueue_);
    for (auto it = log.listeners_.begin(); it != log.listeners_.end(); ++it) {
        if (*it == listener) {
            removed = std::move(*it);
            log.listeners_.erase(it);
            previous = log.publishListeners(std::make_shared<const ListenerList>(log.listeners_));
            return;
        }
    }
}

void VNLog::reset() {
    VNLog& log = *sharedInstance();
    registerDefaultSettings();
    std::shared_ptr<const ListenerList> previous;
    ListenerList removed;
    std::lock_guard section(log.privateQueue_);
    log.closeAndDeleteFile();
    removed.swap(log.listeners_);
    previous = log.publishListeners(std::make_shared<const ListenerList>());
}

}  // namespace vn
