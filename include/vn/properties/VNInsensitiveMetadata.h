// VNInsensitiveMetadata: a tolerant key lookup in model metadata, where one writer says
// "@Title", another "title" and a third "name" for "@name".
#pragma once

#include <string_view>

#include "vn/platform/Value.h"

namespace vn {

class VNInsensitiveMetadata {
  public:
    VNInsensitiveMetadata() = default;

    // At most four probes of metadata, the first hit winning:
    //   1. stripped: the key without its first character when that is "@", else the key;
    //   2. stripped in lower case;
    //   3. alternate: "@" + stripped when nothing was stripped, else the key itself;
    //   4. alternate in lower case.
    // Only the key is lower-cased (Unicode-aware); the dictionary's keys are compared exactly,
    // so a dictionary key with capitals is found only by an exact probe. An empty key is
    // probed as "" and then as "@". A nil metadata value, or one that is not a dictionary,
    // finds nothing. The result is nil when no probe hits. Safe from any thread.
    static Value metadataObjectForKey(std::string_view key, const Value& metadata);
    static Value metadataObjectForKey(std::string_view key, const Value::Dictionary& metadata);
};

}  // namespace vn
