// VNDataSetterOperation: copies values from one object to another by key when it runs, so that
// the result of one operation becomes the input of the next (a request's body becoming a
// parser's data). It usually depends on its source operation.
//
// Keys are read with the source's valueForKey and written with the destination's
// setValueForKey, in the map's key order; a key either side does not know raises
// NSUnknownKeyException from the operation's main() (a programming mistake). A source or
// destination that is gone by then (both are held weakly) makes the copy do nothing.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "vn/concurrency/Operation.h"
#include "vn/platform/KeyValueCoding.h"

namespace vn {

class VNDataSetterOperation : public Operation {
  public:
    using DataKeys = std::map<std::string, std::string>;  // source key → destination key

    VNDataSetterOperation(std::weak_ptr<const KeyValueCoding> source,
                          std::weak_ptr<KeyValueCoding> destination, DataKeys dataKeys);

    std::shared_ptr<const KeyValueCoding> source() const { return source_.lock(); }
    std::shared_ptr<KeyValueCoding> destination() const { return destination_.lock(); }
    const DataKeys& dataKeys() const { return dataKeys_; }

    void main() override;

  private:
    const std::weak_ptr<const KeyValueCoding> source_;
    const std::weak_ptr<KeyValueCoding> destination_;
    const DataKeys dataKeys_;
};

}  // namespace vn
