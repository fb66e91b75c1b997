#include "vn/platform/FileSystem.h"

#include <cstdlib>

namespace vn {

std::string temporaryDirectory() {
    const char* fromEnvironment = std::getenv("TMPDIR");
    std::string directory = fromEnvironment && *fromEnvironment ? fromEnvironment : "/tmp";
    if (directory.back() != '/') directory += '/';
    return directory;
}

}  // namespace vn
