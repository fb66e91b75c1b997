// VNThreadErrorHandler: a per-thread list of errors. Code running on a thread adds errors to
// VNThreadErrorHandler::current(); the thread's owner later reads, filters or clears them.
//
// The handler lives in the thread's dictionary under "kVNThreadErrorHandlerDictionaryKey",
// is made on first use and lives as long as the thread. Anything else stored under that key
// is a programming error: fatal error. A handler is not synchronised: used through current()
// each thread has its own; one handed to another thread is not protected.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "vn/platform/Error.h"
#include "vn/platform/Object.h"

namespace vn {

class VNThreadErrorHandler : public Object {
  public:
    static constexpr std::string_view dictionaryKey = "kVNThreadErrorHandlerDictionaryKey";

    // An unregistered handler with an empty list (clients normally use current()).
    VNThreadErrorHandler() = default;

    // The calling thread's handler, made and stored on first use.
    static std::shared_ptr<VNThreadErrorHandler> current();
    static std::shared_ptr<VNThreadErrorHandler> errorHandler() { return current(); }

    // Appends the library's default error ("vn" domain) with code and, when given, the
    // description as its localized description.
    void addErrorWithCode(std::int64_t code, std::optional<std::string_view> description);
    void addError(std::int64_t code, std::optional<std::string_view> description) {
        addErrorWithCode(code, description);
    }
    // Appends error as given (duplicates allowed). A null error is ignored.
    void addError(ErrorPtr error);

    bool hasError() const { return !errors_.empty(); }
    // A copy of the list, in insertion order.
    std::vector<ErrorPtr> getErrors() const { return errors_; }
    void clearErrors() { errors_.clear(); }
    // Removes every error whose code equals code, whatever its domain; the others keep their
    // order.
    void removeErrorsWithCode(std::int64_t code);
    void removeErrors(std::int64_t code) { removeErrorsWithCode(code); }

  private:
    std::vector<ErrorPtr> errors_;
};

}  // namespace vn
