// VNUnretainedWrapper: remembers an object without keeping it alive, two ways at once: its
// address (unretainedObject(), which keeps the address after the object is gone and must then
// not be dereferenced) and a weak reference (weakObject(), null once the object is gone).
// Both are fixed at construction. Safe from any thread.
#pragma once

#include <memory>

#include "vn/platform/Object.h"

namespace vn {

class VNUnretainedWrapper : public Object {
  public:
    explicit VNUnretainedWrapper(const ObjectPtr& object)
        : unretainedObject_(object.get()), weakObject_(object) {}

    Object* unretainedObject() const { return unretainedObject_; }
    ObjectPtr weakObject() const { return weakObject_.lock(); }

  private:
    Object* const unretainedObject_;
    const std::weak_ptr<Object> weakObject_;
};

}  // namespace vn
