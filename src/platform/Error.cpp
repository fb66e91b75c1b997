#include "vn/platform/Error.h"

#include <algorithm>
#include <array>
#include <functional>

namespace vn {

Error::Error(std::string domain, std::int64_t code, Value userInfo)
    : domain_(std::move(domain)),
      code_(code),
      userInfo_(userInfo.isDictionary() ? std::move(userInfo) : Value()) {}

ErrorPtr Error::make(std::string_view domain, std::int64_t code, Value userInfo) {
    return std::make_shared<const Error>(std::string(domain), code, std::move(userInfo));
}

const Value::Dictionary& Error::userInfo() const {
    static const Value::Dictionary empty;
    const Value::Dictionary* entries = userInfo_.dictionary();
    return entries ? *entries : empty;
}

std::string Error::localizedDescription() const {
    if (auto text = userInfoLocalizedDescription()) return *text;
    return "The operation couldn\u2019t be completed. (" + domain_ + " error " +
           std::to_string(code_) + ".)";
}

std::optional<std::string> Error::localizedRecoverySuggestion() const {
    const std::string* text = userInfoValue(NSLocalizedRecoverySuggestionErrorKey).string();
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::optional<std::vector<std::string>> Error::localizedRecoveryOptions() const {
    const Value::Array* options = userInfoValue(NSLocalizedRecoveryOptionsErrorKey).array();
    if (!options) return std::nullopt;
    std::vector<std::string> texts;
    for (const Value& option : *options) {
        const std::string* text = option.string();
        if (!text) return std::nullopt;
        texts.push_back(*text);
    }
    return texts;
}

ErrorPtr Error::underlyingError() const {
    return userInfoValue(NSUnderlyingErrorKey).objectAs<const Error>();
}

std::optional<std::string> Error::userInfoLocalizedDescription() const {
    const std::string* text = userInfoValue(NSLocalizedDescriptionKey).string();
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

bool Error::isUserCancelledError() const {
    return code_ == NSUserCancelledError && domain_ == NSCocoaErrorDomain;
}

bool Error::isLoopExitError() const {
    return code_ == VNErrorCodeLoopExit && domain_ == VNErrorDomain;
}

bool Error::isNotConnectedToInternetError() const {
    return code_ == NSURLErrorNotConnectedToInternet && domain_ == NSURLErrorDomain;
}

bool Error::isLoginCanceledError() const {
    if (!isUserCancelledError()) return false;
    const Value& flag = userInfoValue(VNLoginCanceledUserInfoKey);
    // Read as the value coercion reads booleans: an empty text keeps the default (false).
    return flag.boolValue().value_or(false);
}

bool Error::isNotAuthorizedError() const {
    return code_ == VNErrorCodeNotAuthorized && domain_ == VNErrorDomain;
}

bool Error::isNetworkPossibleError() const {
    static constexpr std::array kTransientCodes = {
        NSURLErrorTimedOut,
        NSURLErrorCannotFindHost,
        NSURLErrorCannotConnectToHost,
        NSURLErrorNetworkConnectionLost,
        NSURLErrorNotConnectedToInternet,
        NSURLErrorInternationalRoamingOff,
        NSURLErrorCallIsActive,
        NSURLErrorDataNotAllowed,
    };
    return std::find(kTransientCodes.begin(), kTransientCodes.end(), code_) !=
               kTransientCodes.end() &&
           domain_ == NSURLErrorDomain;
}

std::string Error::description() const {
    std::string text = "Error Domain=" + domain_ + " Code=" + std::to_string(code_) + " \"" +
                       localizedDescription() + "\"";
    if (!userInfo().empty()) text += " UserInfo=" + userInfo_.description();
    return text;
}

bool Error::isEqual(const Object& other) const {
    const auto* error = dynamic_cast<const Error*>(&other);
    return error && code_ == error->code_ && domain_ == error->domain_ &&
           userInfo() == error->userInfo();
}

std::size_t Error::hash() const {
    return std::hash<std::string>{}(domain_) ^ std::hash<std::int64_t>{}(code_);
}

}  // namespace vn
