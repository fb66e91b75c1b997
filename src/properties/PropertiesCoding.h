// What the two archivable properties classes share: the keyed-codable check, reading the
// archived dictionary, and their registration with the coding registry.
#pragma once

#include <optional>
#include <string_view>

#include "vn/coding/Coder.h"
#include "vn/platform/Value.h"

namespace vn::properties_internal {

// value itself when it is keyed-codable (nil included); otherwise stops the process with a
// message naming the class, the property and the offending value's class.
const Value& requireKeyedCodable(const Value& value, std::string_view className,
                                 std::string_view name);

// The dictionary stored under the archive key: an empty one when nothing is stored, absent
// (after recording the reason on coder) when something other than a dictionary is.
std::optional<Value::Dictionary> decodePropertiesDictionary(Coder& coder,
                                                            std::string_view className);

// Registers both archivable classes under their plain and module-qualified names. Called
// from both classes' source files, so whichever one the program links registers both.
bool registerPropertiesCodingClasses();

}  // namespace vn::properties_internal
