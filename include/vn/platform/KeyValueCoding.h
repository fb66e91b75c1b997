// vn::KeyValueCoding: reading and writing an object's properties by name, the platform's
// key-value coding, for the few places that copy values between objects by key (the
// data-setter operation). An object answers for the keys it knows; the others raise.
#pragma once

#include <string>
#include <string_view>

#include "vn/platform/Exception.h"
#include "vn/platform/Value.h"

namespace vn {

inline constexpr std::string_view NSUnknownKeyException = "NSUnknownKeyException";

class KeyValueCoding {
  public:
    virtual ~KeyValueCoding() = default;

    // The property named key. Default: throws Exception NSUnknownKeyException.
    virtual Value valueForKey(std::string_view key) const {
        throw Exception(
            std::string(NSUnknownKeyException),
            "this class is not key value coding-compliant for the key " + std::string(key));
    }
    // Sets the property named key. Default: throws Exception NSUnknownKeyException.
    virtual void setValueForKey(const Value& value, std::string_view key) {
        (void)value;
        throw Exception(
            std::string(NSUnknownKeyException),
            "this class is not key value coding-compliant for the key " + std::string(key));
    }
};

}  // namespace vn
