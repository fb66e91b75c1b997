// VNDeallocBlockExecution: runs a callback when it is destroyed, exactly once, on the thread
// that releases the last reference. Attached to another object as an associated object, it
// runs code when that object goes away.
//
// callbackBlock is an atomic property: reads and writes from different threads see whole
// values. A callback replaced before destruction never runs.
#pragma once

#include <functional>
#include <mutex>

#include "vn/platform/Object.h"

namespace vn {

class VNDeallocBlockExecution : public Object {
  public:
    using Callback = std::function<void()>;

    explicit VNDeallocBlockExecution(Callback callbackBlock = nullptr);
    // Calls the callback, if one is set, then clears it.
    ~VNDeallocBlockExecution() override;

    Callback callbackBlock() const;
    void setCallbackBlock(Callback callbackBlock);

  private:
    mutable std::mutex mutex_;
    Callback callbackBlock_;
};

}  // namespace vn
