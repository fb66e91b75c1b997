// The model's positional message format: "%1 of %2" filled with values.
//
// Every "%" followed by decimal digits is first rewritten to the placeholder form "#{n}"
// (%2 becomes #{2}; %12 is one placeholder, not %1 followed by 2); then every placeholder
// "#{n}" (also one written that way in the format) is replaced by value n. Placeholders count
// from 1, as the upper layers write them: %1 is the first value. A placeholder without a value
// (#{0}, or a number beyond the values) stays as "#{n}", so the gap shows. A "%" not followed
// by a digit stays as it is. Values are turned into text as stringFromObject does (nil and
// the null marker give the empty text; numbers their description); text coming from a value
// is never searched for placeholders again. Pure; safe from any thread.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "vn/platform/Value.h"

namespace vn::VNUtilities {

std::string stringWithVNFormat(std::string_view format, std::span<const Value> values);
inline std::string stringWithVNFormat(std::string_view format,
                                      std::initializer_list<Value> arguments) {
    return stringWithVNFormat(format, std::span<const Value>(arguments.begin(), arguments.size()));
}
// Only the rewriting of %n to #{n}.
inline std::string stringWithVNFormat(std::string_view format) {
    return stringWithVNFormat(format, {});
}

}  // namespace vn::VNUtilities
