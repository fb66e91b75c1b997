#include "testing/ScopedProcessState.h"

#include <cstdlib>
#include <optional>
#include <string>

#include "vn/platform/Bundle.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/Locale.h"
#include "vn/platform/UserDefaults.h"
#include "vn/platform/Value.h"
#if VN_TESTING_HAS_SERVICES
#include "vn/services/VNFoundationServices.h"
#endif
#if VN_TESTING_HAS_LOG
#include "vn/log/VNLog.h"
#endif
#if VN_TESTING_HAS_FORMATTING
#include "vn/formatting/FormatterCacheLimit.h"
#include "vn/formatting/MimeType.h"
#include "vn/formatting/TimeZone.h"
#include "vn/formatting/VNTimeZone.h"
#endif
#if VN_TESTING_HAS_GEOMETRY
#include "vn/geometry/Screen.h"
#endif

namespace vn::testing {

namespace {

std::optional<std::string> environmentVariable(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

void setEnvironmentVariable(const char* name, const std::optional<std::string>& value) {
    if (value) {
        setenv(name, value->c_str(), 1);
    } else {
        unsetenv(name);
    }
}

}  // namespace

struct ScopedProcessState::Saved {
    // The host's source of the device's time zone.
    std::optional<std::string> tz = environmentVariable("TZ");
    bool showDeveloperInfo = VNUtilities::showDeveloperInfo();
    bool isTolvarApp = VNUtilities::isTolvarApp();
    UIApplicationState applicationState = VNExecutionEnvironmentHelper::applicationState();
    std::string locale = Locale::current().identifier();
    Value::Dictionary bundleInfo = Bundle::main().infoDictionary();
#if VN_TESTING_HAS_FORMATTING
    std::size_t formatterCacheLimit = cachedFormattersPerThreadLimit();
#endif
#if VN_TESTING_HAS_GEOMETRY
    std::optional<ScreenDescription> screen = Screen::main();
#endif
};

namespace {

// The settings that no getter can read back, as a fresh process has them.
void resetUnreadableSettings() {
    UserDefaults::standard().reset();
    VNExecutionEnvironmentHelper::setURLOpener(nullptr);
    Bundle::main().setLocalizedStrings({});
#if VN_TESTING_HAS_LOG
    VNLog::reset();
#endif
#if VN_TESTING_HAS_SERVICES
    VNFoundationServices::reset();
#endif
#if VN_TESTING_HAS_FORMATTING
    VNTimeZone::resetCurrentTimeZone();
    TimeZone::resetSystemTimeZone();
    setSystemMimeTypesPath("/etc/mime.types");
#endif
}

void restoreLocale(const std::string& identifier) {
    // Changing the locale posts a notification that clears formatter caches: only when needed.
    if (Locale::current().identifier() != identifier) Locale::setCurrent(identifier);
}

}  // namespace

ScopedProcessState::ScopedProcessState(Start start) : saved_(std::make_unique<Saved>()) {
    if (start == Start::fresh) resetToFresh();
}

ScopedProcessState::~ScopedProcessState() {
    setEnvironmentVariable("TZ", saved_->tz);  // before the device's zone is read again
    resetUnreadableSettings();
    VNUtilities::setShowDeveloperInfo(saved_->showDeveloperInfo);
    VNUtilities::setIsTolvarApp(saved_->isTolvarApp);
    VNExecutionEnvironmentHelper::setApplicationState(saved_->applicationState);
    restoreLocale(saved_->locale);
    Bundle::main().setInfoDictionary(saved_->bundleInfo);
#if VN_TESTING_HAS_FORMATTING
    setCachedFormattersPerThreadLimit(saved_->formatterCacheLimit);
#endif
#if VN_TESTING_HAS_GEOMETRY
    Screen::setMain(saved_->screen);
#endif
}

void ScopedProcessState::resetToFresh() {
    resetUnreadableSettings();
    VNUtilities::setShowDeveloperInfo(false);
    VNUtilities::setIsTolvarApp(false);
    VNExecutionEnvironmentHelper::setApplicationState(UIApplicationState::active);
    Bundle::main().setInfoDictionary({});
#if VN_TESTING_HAS_FORMATTING
    setCachedFormattersPerThreadLimit(0);
#endif
#if VN_TESTING_HAS_GEOMETRY
    Screen::setMain(std::nullopt);
#endif
}

void ScopedProcessState::turnLogFileOn() {
    VNUtilities::setIsTolvarApp(true);
#if VN_TESTING_HAS_LOG
    UserDefaults::standard().setBool(true, VNLog::logEnabledPreferenceKey);
#endif
}

}  // namespace vn::testing
