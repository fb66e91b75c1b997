// Diagnostics of the object monitors behind objcSync.
#pragma once

#include <cstddef>

namespace vn::concurrency_internal {

// The number of object identities whose monitor is held or awaited right now.
std::size_t liveObjectMonitorCount();

}  // namespace vn::concurrency_internal
