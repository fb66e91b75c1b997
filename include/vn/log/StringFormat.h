// printf-style formatting with object placeholders, as the platform formats strings:
// stringWithFormat("Wrong number of parameters calling %@: received %lu, expected: %lu",
//                  method, received, expected).
//
// Arguments are vn::Value (anything a Value can be made from may be passed directly: numbers,
// texts, errors and other objects). Conversions:
//   %@         the argument's description (Value::description(); a nil argument as "(null)")
//   %s         a text argument as it is (other kinds by their description, nil as "(null)")
//   %d %i      signed integer        %u %o %x %X   unsigned integer (octal, hexadecimal)
//   %c %C      one character whose code is the argument (%c the low 8 bits, %C 16 bits)
//   %f %F %e %E %g %G %a %A        floating point
//   %p         an object's address, or a number in hexadecimal, with "0x"
//   %%         a percent sign
// with the flags - + space # 0 ', a width and a precision (digits or *, taken from the
// arguments), the length modifiers hh h l ll q j z t L, and positional arguments (%2$@).
//
// Rules where C leaves things undefined, chosen so that formatting never fails:
// - Integers are read from the argument's numeric value, then cut to the size the length
//   modifier names (none: 32 bits, h: 16, hh: 8, otherwise 64), as the C function would read
//   them; floating values are truncated toward zero. Arguments that are not numbers format
//   as 0 in numeric conversions.
// - A conversion with no argument left formats a nil argument ("(null)" or 0); extra
//   arguments are ignored; an unknown conversion is copied as it stands; %n writes nothing.
// - A width or precision above kStringFormatMaximumWidth (digits or *) makes the conversion
//   fail: it is copied as it stands, like an unknown one, and its argument is passed over.
// - Widths and precisions of %@, %s, %c and %C count characters (Unicode code points), so
//   UTF-8 text is neither cut inside a character nor padded short.
// - Numbers always use "." as decimal point, whatever the process's C locale is.
// Safe from any thread.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "vn/platform/Value.h"

namespace vn {

// The widest width and the largest precision a conversion may have (see above).
inline constexpr int kStringFormatMaximumWidth = 4096;

// Formats with an argument list that is already made of Values.
std::string stringWithFormatArguments(std::string_view format, std::span<const Value> arguments);

template <typename... Arguments>
std::string stringWithFormat(std::string_view format, const Arguments&... arguments) {
    if constexpr (sizeof...(Arguments) == 0) {
        return stringWithFormatArguments(format, {});
    } else {
        const std::array<Value, sizeof...(Arguments)> values{Value(arguments)...};
        return stringWithFormatArguments(format, values);
    }
}

}  // namespace vn
