// Stopping the process on a programming mistake (a precondition, an abstract member called,
// an unavailable initialiser). The message goes to standard error, then std::abort() runs.
#pragma once

#include <string_view>

namespace vn {

// Writes "Fatal error: <message>" and a line end to standard error, then aborts.
[[noreturn]] void fatalError(std::string_view message);

// The platform's failure for an initialiser a class does not offer:
// "Fatal error: Use of unimplemented initializer '<initializer>' for class '<className>'".
[[noreturn]] void unimplementedInitializer(std::string_view className,
                                           std::string_view initializer);

}  // namespace vn
