#include "vn/services/VNNetworkActivityIndicatorService.h"

namespace vn {

void VNNetworkActivityCounter::startActivity() {
    std::lock_guard lock(mutex_);
    ++count_;
}

void VNNetworkActivityCounter::stopActivity() {
    std::lock_guard lock(mutex_);
    if (count_ > 0) --count_;
}

long VNNetworkActivityCounter::activityCount() const {
    std::lock_guard lock(mutex_);
    return count_;
}

}  // namespace vn
