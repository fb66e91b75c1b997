#include "vn/errors/NSErrorVNFoundation.h"

#include <cerrno>
#include <cstring>
#include <string>

#include "vn/errors/ErrorClassTextProviders.h"
#include "vn/errors/HTTPStatusCodeText.h"
#include "vn/errors/VNRecoveryAttempter.h"
#include "vn/log/StringFormat.h"
#include "vn/log/VNLog.h"
#include "vn/platform/Bundle.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/FatalError.h"

namespace vn {
namespace {

Value::Dictionary descriptionDictionary(std::string_view description) {
    return Value::Dictionary{{std::string(NSLocalizedDescriptionKey), std::string(description)}};
}

ErrorPtr withLocalizedDescription(std::string_view domain, std::int64_t code,
                                  std::optional<std::string_view> description) {
    return Error::make(domain, code,
                       description ? Value(descriptionDictionary(*description)) : Value());
}

void logErrorLine(std::string_view text) {
    if (!VNLog::hasActiveSink()) return;
    VNLog::logMessage("ERROR: " + std::string(text));
}

std::string resolvedText(std::optional<std::string_view> given, std::string_view injectedTextName,
                         std::string_view defaultKey) {
    if (given) return std::string(*given);
    if (std::optional<std::string> injected = errorClassText(injectedTextName)) return *injected;
    return Bundle::main().localizedString(defaultKey);
}

bool openSettingsIfChosen(const std::string& settingsOption, const ErrorPtr& error,
                          std::int64_t optionIndex) {
    if (!error || error->code() != VNErrorCodePermissionDenied || error->domain() != VNErrorDomain)
        return false;
    const std::optional<std::vector<std::string>> options = error->localizedRecoveryOptions();
    if (!options) return false;
    if (optionIndex < 0 || static_cast<std::uint64_t>(optionIndex) >= options->size()) {
        fatalError("Recovery option index " + std::to_string(optionIndex) +
                   " is outside the error's " + std::to_string(options->size()) +
                   " recovery options");
    }
    if ((*options)[static_cast<std::size_t>(optionIndex)] != settingsOption) return false;
    VNExecutionEnvironmentHelper::openURL(std::string(UIApplicationOpenSettingsURLString), {},
                                          nullptr);
    return true;
}

ErrorPtr wrongNumberOfParametersError(std::string_view developerDescription) {
    return defaultVNErrorWithDeveloperDescription(
        developerDescription,
        Value::Dictionary{{std::string(VNErrUserInfoKey), VNErrCodeInvalidParameter}});
}

}  // namespace

ErrorPtr userCancelledError() {
    return Error::make(NSCocoaErrorDomain, NSUserCancelledError);
}

ErrorPtr userCancelledError(const ErrorPtr& underlyingError) {
    if (!underlyingError) return userCancelledError();
    return Error::make(NSCocoaErrorDomain, NSUserCancelledError,
                       Value::Dictionary{{std::string(NSUnderlyingErrorKey), underlyingError}});
}

ErrorPtr userCancelledErrorWithUnderlyingError(const ErrorPtr& underlyingError) {
    return userCancelledError(underlyingError);
}

ErrorPtr loopExitError() {
    return Error::make(VNErrorDomain, VNErrorCodeLoopExit);
}

ErrorPtr defaultVNError() {
    return Error::make(VNErrorDomain, 0);
}

ErrorPtr defaultVNErrorWithDeveloperDescription(std::string_view developerDescription) {
    return errorWithDomain(VNErrorDomain, 0, developerDescription, std::nullopt);
}

ErrorPtr defaultVNErrorWithDeveloperDescription(std::string_view developerDescription,
                                                const OptionalUserInfo& userInfo) {
    return errorWithDomain(VNErrorDomain, 0, developerDescription, userInfo);
}

ErrorPtr fatalVNErrorWithDeveloperDescription(std::string_view developerDescription) {
    return errorWithDomain(VNFatalErrorDomain, 0, developerDescription, std::nullopt);
}

ErrorPtr errorWithDomain(std::string_view domain, std::int64_t code,
                         std::string_view developerDescription) {
    return errorWithDomain(domain, code, developerDescription, std::nullopt);
}

ErrorPtr errorWithDomain(std::string_view domain, std::int64_t code,
                         std::string_view developerDescription, const OptionalUserInfo& userInfo) {
    if (VNUtilities::showDeveloperInfo()) {
        if (userInfo && !userInfo->empty()) {
            Value::Dictionary described = *userInfo;
            described.insert_or_assign(std::string(NSLocalizedDescriptionKey),
                                       std::string(developerDescription));
            return Error::make(domain, code, std::move(described));
        }
        return withLocalizedDescription(domain, code, developerDescription);
    }
    logErrorLine(developerDescription);
    return Error::make(domain, code, userInfo ? Value(*userInfo) : Value());
}

ErrorPtr defaultVNErrorWithLocalizedDescription(
    std::optional<std::string_view> localizedDescription) {
    return withLocalizedDescription(VNErrorDomain, 0, localizedDescription);
}

ErrorPtr defaultVNErrorWithCode(std::int64_t code,
                                std::optional<std::string_view> localizedDescription) {
    return withLocalizedDescription(VNErrorDomain, code, localizedDescription);
}

ErrorPtr errorWithDomainLocalizedDescription(std::string_view domain, std::int64_t code,
                                             std::optional<std::string_view> localizedDescription) {
    return withLocalizedDescription(domain, code, localizedDescription);
}

ErrorPtr errorForHTTPURLResponseStatusCode(std::int64_t statusCode) {
    return withLocalizedDescription(VNHTTPURLResponseErrorDomain, statusCode,
                                    localizedStringForStatusCode(statusCode));
}

ErrorPtr loginCanceledError() {
    return Error::make(NSCocoaErrorDomain, NSUserCancelledError,
                       Value::Dictionary{{std::string(VNLoginCanceledUserInfoKey), true}});
}

ErrorPtr notAutorizedErrorWithDescription(std::optional<std::string_view> description) {
    return withLocalizedDescription(VNErrorDomain, VNErrorCodeNotAuthorized, description);
}

ErrorPtr wrongNumberOfParametersDeveloperErrorForMethod(std::string_view method) {
    return wrongNumberOfParametersError("Wrong number of parameters calling " +
                                        std::string(method));
}

ErrorPtr wrongNumberOfParametersDeveloperErrorForMethod(std::string_view method,
                                                        std::int64_t received,
                                                        std::int64_t expected) {
    if (received < 0 || expected < 0) {
        fatalError("Negative parameter count for " + std::string(method) + ": received " +
                   std::to_string(received) + ", expected " + std::to_string(expected));
    }
    return wrongNumberOfParametersError(
        stringWithFormat("Wrong number of parameters calling %@: received %lu, expected: %lu",
                         method, received, expected));
}

ErrorPtr permissionDeniedErrorWithGoToSettingsRecoveryAttempter() {
    return permissionDeniedErrorWithGoToSettingsRecoveryAttempter(std::nullopt, std::nullopt,
                                                                  std::nullopt);
}

ErrorPtr permissionDeniedErrorWithGoToSettingsRecoveryAttempter(
    std::optional<std::string_view> localizedRecoveryOption,
    std::optional<std::string_view> localizedDescription,
    std::optional<std::string_view> localizedRecoverySuggestion) {
    const std::string option =
        resolvedText(localizedRecoveryOption, VNGoToSettingsRecoveryOptionTextName, "Settings");
    const std::string description =
        resolvedText(localizedDescription, VNGoToSettingsDescriptionTextName, "Permission denied");
    const std::string suggestion =
        resolvedText(localizedRecoverySuggestion, VNGoToSettingsRecoverySuggestionTextName,
                     "Enable permission in Settings");

    auto attempter = std::make_shared<VNRecoveryAttempter>();
    attempter->setAttemptRecoverBlock([option](const ErrorPtr& error, std::int64_t optionIndex) {
        return openSettingsIfChosen(option, error, optionIndex);
    });
    return Error::make(VNErrorDomain, VNErrorCodePermissionDenied,
                       Value::Dictionary{
                           {std::string(NSLocalizedDescriptionKey), description},
                           {std::string(NSLocalizedRecoverySuggestionErrorKey), suggestion},
                           {std::string(NSLocalizedRecoveryOptionsErrorKey), Value::Array{option}},
                           {std::string(NSRecoveryAttempterErrorKey), attempter},
                       });
}

ErrorPtr posixError(std::int32_t code) {
    const int current = errno;  // read before anything here can change it
    char buffer[256];
    const char* message = strerror_r(current, buffer, sizeof buffer);
    return withLocalizedDescription(NSPOSIXErrorDomain, code, std::string_view(message));
}

bool logLocalizedDescriptionIfShowDeveloperInfoIsEnabled(const Error& error) {
    if (!VNUtilities::showDeveloperInfo()) return false;
    if (const std::optional<std::string> description = error.userInfoLocalizedDescription()) {
        logErrorLine(*description);
    }
    return true;
}

}  // namespace vn
