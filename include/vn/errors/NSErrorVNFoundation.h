// The factories that make the library's errors, and the one error operation that writes to
// the log. Every part of the library reports failures with errors made here; the error type
// itself, its domains, codes, keys and classifying predicates are in vn/platform/Error.h.
//
// Two rules decide where a text goes:
// - Developer-description rule (factories taking a developerDescription): a developer's text
//   is never meant for end users. In developer mode (VNUtilities::showDeveloperInfo()) it
//   becomes the error's localized description: a non-empty userInfo is copied with its
//   NSLocalizedDescriptionKey replaced by the text; an absent or empty userInfo gives
//   {NSLocalizedDescriptionKey: text}. Otherwise the log receives "ERROR: " + text (see VNLog)
//   and the error keeps the given userInfo unchanged (absent stays absent).
// - Localized-description rule (factories taking a localizedDescription): the user info is
//   {NSLocalizedDescriptionKey: description} when a description is given, none otherwise.
//
// A userInfo parameter of std::nullopt means "no user information", which differs from an
// empty dictionary. All functions are safe from any thread and never fail.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "vn/platform/Error.h"

namespace vn {

using OptionalUserInfo = std::optional<Value::Dictionary>;

// NSCocoaErrorDomain / 3072 (the platform's user-cancelled code), no user info.
ErrorPtr userCancelledError();
// The same with {NSUnderlyingErrorKey: underlyingError}, or no user info when it is null.
ErrorPtr userCancelledError(const ErrorPtr& underlyingError);
[[nodiscard]] ErrorPtr userCancelledErrorWithUnderlyingError(const ErrorPtr& underlyingError);

// "vn" / 99991, no user info: a signal to leave a loop in the caller, not a failure.
ErrorPtr loopExitError();

// "vn" / 0, no user info.
ErrorPtr defaultVNError();
// "vn" / 0 by the developer-description rule.
[[nodiscard]] ErrorPtr defaultVNErrorWithDeveloperDescription(
    std::string_view developerDescription);
[[nodiscard]] ErrorPtr defaultVNErrorWithDeveloperDescription(std::string_view developerDescription,
                                                              const OptionalUserInfo& userInfo);
// "vn.fatal" / 0 by the developer-description rule, no user info given.
[[nodiscard]] ErrorPtr fatalVNErrorWithDeveloperDescription(std::string_view developerDescription);
// Any domain and code by the developer-description rule.
[[nodiscard]] ErrorPtr errorWithDomain(std::string_view domain, std::int64_t code,
                                       std::string_view developerDescription);
[[nodiscard]] ErrorPtr errorWithDomain(std::string_view domain, std::int64_t code,
                                       std::string_view developerDescription,
                                       const OptionalUserInfo& userInfo);

// "vn" / 0 by the localized-description rule.
[[nodiscard]] ErrorPtr defaultVNErrorWithLocalizedDescription(
    std::optional<std::string_view> localizedDescription);
// "vn" / code by the localized-description rule.
[[nodiscard]] ErrorPtr defaultVNErrorWithCode(std::int64_t code,
                                              std::optional<std::string_view> localizedDescription);
// Any domain and code by the localized-description rule. It has its own name because
// errorWithDomain(domain, code, text) already means the developer-description rule, and two
// overloads told apart only by an optional text would make every call with a literal
// ambiguous.
[[nodiscard]] ErrorPtr errorWithDomainLocalizedDescription(
    std::string_view domain, std::int64_t code,
    std::optional<std::string_view> localizedDescription);

// "vn.httpStatusCode" / statusCode, localized description = localizedStringForStatusCode().
ErrorPtr errorForHTTPURLResponseStatusCode(std::int64_t statusCode);

// NSCocoaErrorDomain / 3072 with {"vn.loginCanceled": true}: both isUserCancelledError() and
// isLoginCanceledError() hold.
ErrorPtr loginCanceledError();

// "vn" / 403139 by the localized-description rule (the name's spelling is the interface's).
[[nodiscard]] ErrorPtr notAutorizedErrorWithDescription(
    std::optional<std::string_view> description);

// "vn" / 0 qualified by {"VNErr": VNErrCodeInvalidParameter}, by the developer-description
// rule with the text "Wrong number of parameters calling <method>".
ErrorPtr wrongNumberOfParametersDeveloperErrorForMethod(std::string_view method);
// The same with the text "Wrong number of parameters calling <method>: received <received>,
// expected: <expected>". A negative count is a programming fault: the process stops
// (vn::fatalError).
ErrorPtr wrongNumberOfParametersDeveloperErrorForMethod(std::string_view method,
                                                        std::int64_t received,
                                                        std::int64_t expected);

// "vn" / 550 carrying a go-to-Settings recovery: NSLocalizedDescriptionKey = description,
// NSLocalizedRecoverySuggestionErrorKey = suggestion, NSLocalizedRecoveryOptionsErrorKey =
// [option title], NSRecoveryAttempterErrorKey = a VNRecoveryAttempter. Each missing text is
// the application's injected text (vn/errors/ErrorClassTextProviders.h) when it provides one,
// else the main bundle's localized string for the default key "Settings", "Permission denied"
// and "Enable permission in Settings" respectively.
//
// The attempter's recovery, given (error, option index): false unless the error is "vn"/550
// with recovery options and the option at the index is this error's title; then it asks
// VNExecutionEnvironmentHelper::openURL to open UIApplicationOpenSettingsURLString (no options,
// no completion) and returns true. An index outside the error's options stops the process.
[[nodiscard]] ErrorPtr permissionDeniedErrorWithGoToSettingsRecoveryAttempter();
[[nodiscard]] ErrorPtr permissionDeniedErrorWithGoToSettingsRecoveryAttempter(
    std::optional<std::string_view> localizedRecoveryOption,
    std::optional<std::string_view> localizedDescription,
    std::optional<std::string_view> localizedRecoverySuggestion);

// NSPOSIXErrorDomain / code, localized description = the system's message for the calling
// thread's errno at the time of the call, not for code (the two agree when code is errno).
ErrorPtr posixError(std::int32_t code);

// In developer mode, writes "ERROR: " + the user-info localized description (when there is
// one) to the log and returns true, also when there was nothing to write. Outside developer
// mode it does nothing and returns false.
bool logLocalizedDescriptionIfShowDeveloperInfoIsEnabled(const Error& error);

}  // namespace vn
