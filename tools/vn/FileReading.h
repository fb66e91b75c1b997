// Reading a file named on the command line, for the vn tool's commands.
#pragma once

#include <optional>
#include <string>

#include "vn/platform/Value.h"

namespace vn::tool {

// The whole content of the regular file at path, or absent with *problem set to why not
// (missing, a folder or another non-regular file, unreadable, larger than maxBytes). Never
// throws for an I/O error.
[[nodiscard]] std::optional<Data> readRegularFile(const std::string& path, std::string* problem,
                                                  std::size_t maxBytes = 64u << 20);

}  // namespace vn::tool
