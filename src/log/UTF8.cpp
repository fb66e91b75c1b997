#include "log/UTF8.h"

#include <cstdint>

namespace vn::log_detail {

bool isValidUTF8(std::string_view text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const std::size_t size = text.size();
    std::size_t i = 0;
    while (i < size) {
        const std::uint8_t lead = bytes[i];
        if (lead < 0x80) {
            ++i;
            continue;
        }
        std::size_t length = 0;
        // The valid range of the second byte narrows for the leads that could otherwise start
        // an overlong form, a surrogate or a code point above U+10FFFF.
        std::uint8_t secondLow = 0x80;
        std::uint8_t secondHigh = 0xBF;
        if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            if (lead == 0xE0) secondLow = 0xA0;
            if (lead == 0xED) secondHigh = 0x9F;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            if (lead == 0xF0) secondLow = 0x90;
            if (lead == 0xF4) secondHigh = 0x8F;
        } else {
            return false;
        }
        if (size - i < length) return false;
        if (bytes[i + 1] < secondLow || bytes[i + 1] > secondHigh) return false;
        for (std::size_t k = 2; k < length; ++k) {
            if ((bytes[i + k] & 0xC0) != 0x80) return false;
        }
        i += length;
    }
    return true;
}

}  // namespace vn::log_detail
