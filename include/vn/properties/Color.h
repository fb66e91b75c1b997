// vn::Color: a colour as red, green, blue and alpha components, and its reading from the
// model's colour notations.
#pragma once

#include <optional>

#include "vn/platform/Value.h"

namespace vn {

struct Color {
    // Components from 0.0 to 1.0.
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    // A colour from its 8-bit components (0...255 each; larger values count as 255).
    static Color fromBytes(unsigned red, unsigned green, unsigned blue, unsigned alpha = 255);

    // The colour a model value denotes, or absent when it denotes none. Accepted:
    //   texts "#RGB", "#RRGGBB" and "#RRGGBBAA": a "#" followed by exactly 3, 6 or 8
    //     hexadecimal digits in either case, nothing before or after (no blanks). The "#" is
    //     required, so a text of bare digits ("123456") is never taken for a colour. In the
    //     three-digit form each digit stands for itself twice ("#F80" is "#FF8800"); the
    //     forms without alpha are opaque;
    //   integer numbers (signed or unsigned kinds) from 0 to 0xFFFFFF, read as 0xRRGGBB,
    //     opaque.
    // Everything else is absent: nil, the null marker, booleans, floating and decimal numbers,
    // negative or larger integers, other texts, data, dates, collections and objects.
    [[nodiscard]] static std::optional<Color> colorFromValue(const Value& value);

    bool operator==(const Color&) const = default;
};

}  // namespace vn
