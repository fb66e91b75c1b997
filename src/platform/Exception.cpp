#include "vn/platform/Exception.h"

#include "vn/platform/Thread.h"

namespace vn {

Exception::Exception(std::string name, std::string reason, Value::Dictionary userInfo)
    : name_(std::move(name)),
      reason_(std::move(reason)),
      userInfo_(std::move(userInfo)),
      callStackSymbols_(Thread::callStackSymbols()) {}

}  // namespace vn
