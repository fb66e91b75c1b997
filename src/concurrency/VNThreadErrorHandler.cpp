#include "vn/concurrency/VNThreadErrorHandler.h"

#include <algorithm>
#include <string>

#include "vn/errors/NSErrorVNFoundation.h"
#include "vn/platform/FatalError.h"
#include "vn/platform/Thread.h"

namespace vn {

std::shared_ptr<VNThreadErrorHandler> VNThreadErrorHandler::current() {
    Value::Dictionary& dictionary = Thread::threadDictionary();
    const auto found = dictionary.find(dictionaryKey);
    if (found != dictionary.end() && !found->second.isNil()) {
        auto handler = found->second.objectAs<VNThreadErrorHandler>();
        if (!handler) {
            fatalError(
                "The thread dictionary holds something other than a VNThreadErrorHandler under "
                "kVNThreadErrorHandlerDictionaryKey");
        }
        return handler;
    }
    auto handler = std::make_shared<VNThreadErrorHandler>();
    dictionary.insert_or_assign(std::string(dictionaryKey), Value(handler));
    return handler;
}

void VNThreadErrorHandler::addErrorWithCode(std::int64_t code,
                                            std::optional<std::string_view> description) {
    addError(defaultVNErrorWithCode(code, description));
}

void VNThreadErrorHandler::addError(ErrorPtr error) {
    if (error) errors_.push_back(std::move(error));
}

void VNThreadErrorHandler::removeErrorsWithCode(std::int64_t code) {
    if (errors_.empty()) return;
    std::erase_if(errors_, [code](const ErrorPtr& error) { return error->code() == code; });
}

}  // namespace vn
