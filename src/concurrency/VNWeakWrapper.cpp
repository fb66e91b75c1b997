#include "vn/concurrency/VNWeakWrapper.h"

namespace vn {

VNWeakWrapper::VNWeakWrapper(const ObjectPtr& innerObject) : innerObject_(innerObject) {}

ObjectPtr VNWeakWrapper::innerObject() const {
    std::lock_guard lock(mutex_);
    return innerObject_.lock();
}

void VNWeakWrapper::setInnerObject(const ObjectPtr& innerObject) {
    std::lock_guard lock(mutex_);
    innerObject_ = innerObject;
}

std::vector<ObjectPtr> VNWeakWrapper::arrayFilteringWeakReferences(
    const std::vector<std::shared_ptr<VNWeakWrapper>>& wrappers) {
    std::vector<ObjectPtr> objects;
    objects.reserve(wrappers.size());
    for (const auto& wrapper : wrappers) {
        if (!wrapper) continue;
        if (ObjectPtr object = wrapper->innerObject()) objects.push_back(std::move(object));
    }
    return objects;
}

}  // namespace vn
