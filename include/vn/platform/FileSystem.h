// File-system locations the library uses.
#pragma once

#include <string>

namespace vn {

// The temporary directory, with a trailing "/": $TMPDIR when set and not empty, else "/tmp/".
std::string temporaryDirectory();

}  // namespace vn
