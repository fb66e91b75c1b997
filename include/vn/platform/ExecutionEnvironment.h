// The execution environment as the library sees it: switches and hooks that the host
// application sets (developer mode, the Tolvar app flag, the application state, opening
// URLs) and the notification it posts when the running context is about to end.
// All members are safe from any thread.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "vn/platform/Value.h"

namespace vn {

namespace VNUtilities {
// Developer mode: developer-facing texts go into errors and alerts, and the log reaches the
// console. Off until the host turns it on.
bool showDeveloperInfo();
void setShowDeveloperInfo(bool on);
// Whether the running application is the Tolvar shell, which may keep a log file.
bool isTolvarApp();
void setIsTolvarApp(bool on);
}  // namespace VNUtilities

// The URL that opens the application's page in the system settings.
inline constexpr std::string_view UIApplicationOpenSettingsURLString = "app-settings:";

enum class UIApplicationState : long { active = 0, inactive = 1, background = 2 };

class VNExecutionEnvironmentHelper {
  public:
    // Posted (on the default centre) when the running application context is about to end.
    static const std::string& currentContextWillTerminateNotification();
    static void postCurrentContextWillTerminate();

    static UIApplicationState applicationState();
    static void setApplicationState(UIApplicationState state);

    using Completion = std::function<void(bool success)>;
    using URLOpener =
        std::function<void(const std::string& url, const Value::Dictionary& options, Completion)>;
    // Hands the URL to the host's opener; without one the request is dropped and the
    // completion, if any, hears false.
    static void openURL(const std::string& url, const Value::Dictionary& options = {},
                        Completion completion = nullptr);
    static void setURLOpener(URLOpener opener);
};

}  // namespace vn
