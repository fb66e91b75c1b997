// vn::Exception: a named exception with a reason and user information, the counterpart of
// the platform's raised exceptions. It records the call stack where it was made.
#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "vn/platform/Value.h"

namespace vn {

inline constexpr std::string_view NSInternalInconsistencyException =
    "NSInternalInconsistencyException";
inline constexpr std::string_view NSInvalidArgumentException = "NSInvalidArgumentException";
inline constexpr std::string_view NSRangeException = "NSRangeException";

class Exception : public std::exception {
  public:
    Exception(std::string name, std::string reason, Value::Dictionary userInfo = {});

    const std::string& name() const { return name_; }
    const std::string& reason() const { return reason_; }
    const Value::Dictionary& userInfo() const { return userInfo_; }
    // The call stack at construction, innermost frame first.
    const std::vector<std::string>& callStackSymbols() const { return callStackSymbols_; }
    // The platform's description of an exception: its reason.
    const std::string& description() const { return reason_; }
    const char* what() const noexcept override { return reason_.c_str(); }

  private:
    std::string name_;
    std::string reason_;
    Value::Dictionary userInfo_;
    std::vector<std::string> callStackSymbols_;
};

}  // namespace vn
