// The C locale as a POSIX locale handle, for the *_l functions and uselocale(), so that
// numbers read and written inside the library use "." whatever locale the process has set.
// Internal to the library: never installed.
#pragma once

#include <locale.h>

namespace vn::platform_internal {

// The "C" locale, created on first use and kept for the life of the process (never freed, so
// it stays valid during static destruction). Null only if the C library could not create it.
// Safe from any thread.
[[nodiscard]] locale_t cLocale();

}  // namespace vn::platform_internal
