#include "vn/network/VNDataSetterOperation.h"

namespace vn {

VNDataSetterOperation::VNDataSetterOperation(std::weak_ptr<const KeyValueCoding> source,
                                             std::weak_ptr<KeyValueCoding> destination,
                                             DataKeys dataKeys)
    : source_(std::move(source)),
      destination_(std::move(destination)),
      dataKeys_(std::move(dataKeys)) {}

void VNDataSetterOperation::main() {
    const auto source = source_.lock();
    const auto destination = destination_.lock();
    if (!source || !destination) return;
    for (const auto& [sourceKey, destinationKey] : dataKeys_)
        destination->setValueForKey(source->valueForKey(sourceKey), destinationKey);
}

}  // namespace vn
