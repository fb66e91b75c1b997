// VNWeakWrapper: holds an object weakly, so that collections of wrappers do not keep their
// objects alive. innerObject() becomes null once the object is gone. Safe from any thread.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "vn/platform/Object.h"

namespace vn {

class VNWeakWrapper : public Object {
  public:
    explicit VNWeakWrapper(const ObjectPtr& innerObject = nullptr);
    [[nodiscard]] static std::shared_ptr<VNWeakWrapper> weakWrapperWithInnerObject(
        const ObjectPtr& innerObject) {
        return std::make_shared<VNWeakWrapper>(innerObject);
    }

    ObjectPtr innerObject() const;
    void setInnerObject(const ObjectPtr& innerObject);

    // The live inner objects of wrappers, in input order, without the ones that are gone
    // (and without null wrappers).
    static std::vector<ObjectPtr> arrayFilteringWeakReferences(
        const std::vector<std::shared_ptr<VNWeakWrapper>>& wrappers);

  private:
    mutable std::mutex mutex_;
    std::weak_ptr<Object> innerObject_;
};

}  // namespace vn
