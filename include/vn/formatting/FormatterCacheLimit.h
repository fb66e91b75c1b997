// The bound on the model's cached formatters (NumberFormatter's and DateFormatter's class
// members), per thread and per family (number formatters, date formatters).
//
// By default there is none: a formatter, once made, stays in its thread's dictionary for the
// life of the thread, so every later request for the same picture or pattern is a lookup. A
// host whose threads meet ever new pictures or patterns (each formatter holds several
// kilobytes) sets a limit, for example kSuggestedCachedFormattersPerThread: a request that
// leaves a family above it removes that family's least recently requested formatters from the
// thread's dictionary; they are made anew when requested again. A new limit takes effect on
// each thread at its next request for a cached formatter, the formatters it made before
// counting as the least recently requested. Safe from any thread.
#pragma once

#include <cstddef>

namespace vn {

// Large enough for every picture and pattern of a real application's screens.
inline constexpr std::size_t kSuggestedCachedFormattersPerThread = 256;

// The formatters one family keeps per thread at most; 0 (the default) means no limit.
[[nodiscard]] std::size_t cachedFormattersPerThreadLimit();
void setCachedFormattersPerThreadLimit(std::size_t limit);

}  // namespace vn
