// The tour's section on errors: the factories, the predicates, the go-to-Settings recovery and
// the fatal-error helpers, in developer mode and in production mode.
#include <cerrno>
#include <cstdio>
#include <string>

#include "../Registry.h"
#include "vn/errors/HTTPStatusCodeText.h"
#include "vn/errors/NSErrorVNFoundation.h"
#include "vn/errors/VNRecoveryAttempter.h"
#include "vn/errors/VNUtilitiesFatalErrors.h"
#include "vn/log/VNLog.h"
#include "vn/platform/Exception.h"
#include "vn/platform/ExecutionEnvironment.h"

namespace {

using namespace vn;

class PrintingListener final : public VNLogListener {
  public:
    void logListenerNotifyMessage(const std::string& message) override {
        std::printf("  log: %s", message.c_str());
    }
};

void printError(const char* label, const ErrorPtr& error) {
    std::printf("%-36s %s/%lld \"%s\"\n", label, error->domain().c_str(),
                static_cast<long long>(error->code()), error->localizedDescription().c_str());
}

void showFactories() {
    printError("userCancelledError", userCancelledError());
    printError("loopExitError", loopExitError());
    printError("notAutorizedErrorWithDescription",
               notAutorizedErrorWithDescription("Sign in first"));
    for (const std::int64_t status : {200, 404, 418, 503, 299}) {
        printError(("errorForHTTPURLResponseStatusCode " + std::to_string(status)).c_str(),
                   errorForHTTPURLResponseStatusCode(status));
    }
    errno = ENOENT;
    printError("posixError(ENOENT)", posixError(ENOENT));
}

void showPredicates() {
    struct Row {
        const char* label;
        ErrorPtr error;
    };
    const Row rows[] = {
        {"loginCanceledError", loginCanceledError()},
        {"userCancelledError", userCancelledError()},
        {"vn/2 (library's own cancel code)",
         defaultVNErrorWithCode(VNErrCodeUserCancelled, std::nullopt)},
        {"NSURLErrorDomain/-1009", Error::make(NSURLErrorDomain, -1009)},
        {"NSURLErrorDomain/-1002", Error::make(NSURLErrorDomain, -1002)},
    };
    std::printf("\n%-36s cancelled login  offline network-possible\n", "");
    for (const Row& row : rows) {
        std::printf("%-36s %-9s %-6s %-7s %s\n", row.label,
                    row.error->isUserCancelledError() ? "yes" : "-",
                    row.error->isLoginCanceledError() ? "yes" : "-",
                    row.error->isNotConnectedToInternetError() ? "yes" : "-",
                    row.error->isNetworkPossibleError() ? "yes" : "-");
    }
}

void showDeveloperTexts() {
    std::printf("\ndeveloper texts go into the error in developer mode, into the log otherwise:\n");
    VNUtilities::setShowDeveloperInfo(true);
    const ErrorPtr developer = wrongNumberOfParametersDeveloperErrorForMethod("Foo", 1, 2);
    printError("developer mode", developer);
    VNUtilities::setShowDeveloperInfo(false);
    const auto listener = std::make_shared<PrintingListener>();
    VNLog::addListener(listener);
    const ErrorPtr production = wrongNumberOfParametersDeveloperErrorForMethod("Foo", 1, 2);
    printError("production", production);
    std::printf("%-36s VNErr = %s\n", "",
                production->userInfoValue(VNErrUserInfoKey).description().c_str());
    try {
        VNUtilities::tryHandleFatalError("the model has no main object");
    } catch (const Exception& exception) {
        std::printf("tryHandleFatalError in production raises %s: %s\n", exception.name().c_str(),
                    exception.reason().c_str());
    }
    VNLog::removeListener(listener);
}

void showRecovery() {
    VNExecutionEnvironmentHelper::setURLOpener([](const std::string& url, const Value::Dictionary&,
                                                  VNExecutionEnvironmentHelper::Completion) {
        std::printf("  the host is asked to open %s\n", url.c_str());
    });
    const ErrorPtr denied = permissionDeniedErrorWithGoToSettingsRecoveryAttempter();
    std::printf("\n");
    printError("permission denied", denied);
    std::printf("%-36s suggestion \"%s\", options [%s]\n", "",
                denied->localizedRecoverySuggestion()->c_str(),
                denied->localizedRecoveryOptions()->front().c_str());
    const auto attempter =
        std::dynamic_pointer_cast<VNRecoveryAttempter>(denied->recoveryAttempter());
    const bool recovered = attempter->attemptRecoveryFromError(denied, 0);
    std::printf("  recovery with option 0: %s; with another error: %s\n",
                recovered ? "true" : "false",
                attempter->attemptRecoveryFromError(defaultVNError(), 0) ? "true" : "false");
    VNExecutionEnvironmentHelper::setURLOpener(nullptr);
}

void showErrors() {
    showFactories();
    showPredicates();
    showDeveloperTexts();
    showRecovery();
}

const tool::TourRegistration kErrorsTour{
    {25, "Errors: factories, predicates, recovery", showErrors}};

}  // namespace
