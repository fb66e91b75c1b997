#include "vn/platform/FatalError.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace vn {

void fatalError(std::string_view message) {
    std::fprintf(stderr, "Fatal error: %.*s\n", static_cast<int>(message.size()), message.data());
    std::fflush(stderr);
    std::abort();
}

void unimplementedInitializer(std::string_view className, std::string_view initializer) {
    fatalError("Use of unimplemented initializer '" + std::string(initializer) + "' for class '" +
               std::string(className) + "'");
}

}  // namespace vn
