// vn::Error: the error value every failure of the library is reported as (a domain, a signed
// code and a user-information dictionary), its well-known domains and keys, and the
// predicates that classify errors received from elsewhere.
//
// Errors are immutable and shared as vn::ErrorPtr; a null ErrorPtr means "no error". An error
// out-parameter is an `ErrorPtr*` that may itself be null. Making errors with the library's
// rules (developer texts, recovery options) is the job of vn/errors/NSErrorVNFoundation.h.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vn/platform/Object.h"
#include "vn/platform/Value.h"

namespace vn {

// The library's error domains.
inline constexpr std::string_view VNErrorDomain = "vn";
inline constexpr std::string_view VNModelErrorDomain = "vn.model";
inline constexpr std::string_view VNFatalErrorDomain = "vn.fatal";
inline constexpr std::string_view VNHTTPURLResponseErrorDomain = "vn.httpStatusCode";
inline constexpr std::string_view VNKeyChainStoreErrorDomain = "vn.keychainstore";

// The platform's domains, kept with their platform values so errors bridge one to one.
inline constexpr std::string_view NSCocoaErrorDomain = "NSCocoaErrorDomain";
inline constexpr std::string_view NSURLErrorDomain = "NSURLErrorDomain";
inline constexpr std::string_view NSPOSIXErrorDomain = "NSPOSIXErrorDomain";

// User-information keys.
inline constexpr std::string_view VNErrUserInfoKey = "VNErr";
inline constexpr std::string_view VNLoginCanceledUserInfoKey = "vn.loginCanceled";
inline constexpr std::string_view NSLocalizedDescriptionKey = "NSLocalizedDescription";
inline constexpr std::string_view NSUnderlyingErrorKey = "NSUnderlyingError";
inline constexpr std::string_view NSLocalizedRecoverySuggestionErrorKey =
    "NSLocalizedRecoverySuggestion";
inline constexpr std::string_view NSLocalizedRecoveryOptionsErrorKey = "NSLocalizedRecoveryOptions";
inline constexpr std::string_view NSRecoveryAttempterErrorKey = "NSRecoveryAttempter";

// VNErrCode: an open set of signed codes (other values are allowed).
using VNErrCode = std::int64_t;
inline constexpr VNErrCode VNErrCodeNoError = 0;
inline constexpr VNErrCode VNErrCodeGenericError = 1;
inline constexpr VNErrCode VNErrCodeUserCancelled = 2;
inline constexpr VNErrCode VNErrCodeInvalidParameter = 3;

// Fixed codes of the library's errors and of the platform errors it recognises.
inline constexpr std::int64_t VNErrorCodeLoopExit = 99991;
inline constexpr std::int64_t VNErrorCodeNotAuthorized = 403139;
inline constexpr std::int64_t VNErrorCodePermissionDenied = 550;
inline constexpr std::int64_t NSUserCancelledError = 3072;
inline constexpr std::int64_t NSURLErrorTimedOut = -1001;
inline constexpr std::int64_t NSURLErrorUnsupportedURL = -1002;
inline constexpr std::int64_t NSURLErrorCannotFindHost = -1003;
inline constexpr std::int64_t NSURLErrorCannotConnectToHost = -1004;
inline constexpr std::int64_t NSURLErrorNetworkConnectionLost = -1005;
inline constexpr std::int64_t NSURLErrorNotConnectedToInternet = -1009;
inline constexpr std::int64_t NSURLErrorInternationalRoamingOff = -1018;
inline constexpr std::int64_t NSURLErrorCallIsActive = -1019;
inline constexpr std::int64_t NSURLErrorDataNotAllowed = -1020;

class Error;
using ErrorPtr = std::shared_ptr<const Error>;

class Error final : public Object {
  public:
    // userInfo nil means "no user information"; it reads as an empty dictionary.
    Error(std::string domain, std::int64_t code, Value userInfo = {});
    [[nodiscard]] static ErrorPtr make(std::string_view domain, std::int64_t code,
                                       Value userInfo = {});

    const std::string& domain() const { return domain_; }
    std::int64_t code() const { return code_; }
    const Value::Dictionary& userInfo() const;
    bool hasUserInfo() const { return userInfo_.isDictionary(); }
    const Value& userInfoValue(std::string_view key) const { return userInfo_[key]; }

    // The description under NSLocalizedDescriptionKey, else the platform's generic text
    // "The operation couldn’t be completed. (<domain> error <code>.)".
    std::string localizedDescription() const;
    std::optional<std::string> localizedRecoverySuggestion() const;
    // The texts under NSLocalizedRecoveryOptionsErrorKey; absent unless it holds an array of texts.
    std::optional<std::vector<std::string>> localizedRecoveryOptions() const;
    ObjectPtr recoveryAttempter() const {
        return userInfoValue(NSRecoveryAttempterErrorKey).object();
    }
    ErrorPtr underlyingError() const;

    // The value under NSLocalizedDescriptionKey when it is a text; absent otherwise.
    std::optional<std::string> userInfoLocalizedDescription() const;
    bool hasUserInfoLocalizedDescription() const {
        return userInfoLocalizedDescription().has_value();
    }

    // Classification. Domains compare exactly; the library's own VNErrCodeUserCancelled is
    // not a user-cancelled error.
    bool isUserCancelledError() const;           // NSCocoaErrorDomain / 3072
    bool isLoopExitError() const;                // "vn" / 99991
    bool isNotConnectedToInternetError() const;  // NSURLErrorDomain / -1009
    bool isLoginCanceledError() const;           // user cancelled and "vn.loginCanceled" reads true
    bool isNotAuthorizedError() const;           // "vn" / 403139
    // NSURLErrorDomain with a code that may go away when the network comes back:
    // -1001, -1003, -1004, -1005, -1009, -1018, -1019, -1020.
    bool isNetworkPossibleError() const;

    // "Error Domain=<domain> Code=<code> \"<localized description>\" UserInfo={...}"
    std::string description() const override;
    bool isEqual(const Object& other) const override;
    std::size_t hash() const override;

  private:
    std::string domain_;
    std::int64_t code_;
    Value userInfo_;
};

}  // namespace vn
