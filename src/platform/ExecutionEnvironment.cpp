#include "vn/platform/ExecutionEnvironment.h"

#include <atomic>
#include <mutex>

#include "vn/platform/NotificationCenter.h"

namespace vn {
namespace {

std::atomic<bool> gShowDeveloperInfo{false};
std::atomic<bool> gIsTolvarApp{false};
std::atomic<UIApplicationState> gApplicationState{UIApplicationState::active};

struct OpenerSlot {
    std::mutex mutex;
    VNExecutionEnvironmentHelper::URLOpener opener;
};

OpenerSlot& openerSlot() {
    static auto* slot = new OpenerSlot();  // never destroyed
    return *slot;
}

}  // namespace

bool VNUtilities::showDeveloperInfo() {
    return gShowDeveloperInfo.load(std::memory_order_relaxed);
}
void VNUtilities::setShowDeveloperInfo(bool on) {
    gShowDeveloperInfo.store(on, std::memory_order_relaxed);
}
bool VNUtilities::isTolvarApp() {
    return gIsTolvarApp.load(std::memory_order_relaxed);
}
void VNUtilities::setIsTolvarApp(bool on) {
    gIsTolvarApp.store(on, std::memory_order_relaxed);
}

const std::string& VNExecutionEnvironmentHelper::currentContextWillTerminateNotification() {
    static const std::string name = "VNExecutionEnvironmentCurrentContextWillTerminateNotification";
    return name;
}

void VNExecutionEnvironmentHelper::postCurrentContextWillTerminate() {
    NotificationCenter::defaultCenter().postNotificationName(
        currentContextWillTerminateNotification());
}

UIApplicationState VNExecutionEnvironmentHelper::applicationState() {
    return gApplicationState.load();
}

void VNExecutionEnvironmentHelper::setApplicationState(UIApplicationState state) {
    gApplicationState.store(state);
}

void VNExecutionEnvironmentHelper::openURL(const std::string& url, const Value::Dictionary& options,
                                           Completion completion) {
    URLOpener opener;
    {
        std::lock_guard lock(openerSlot().mutex);
        opener = openerSlot().opener;
    }
    if (opener) {
        opener(url, options, std::move(completion));
    } else if (completion) {
        completion(false);
    }
}

void VNExecutionEnvironmentHelper::setURLOpener(URLOpener opener) {
    std::lock_guard lock(openerSlot().mutex);
    openerSlot().opener = std::move(opener);
}

}  // namespace vn
