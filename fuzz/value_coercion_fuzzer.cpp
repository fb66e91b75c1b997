// libFuzzer target: the coercions of a text value (and of the value a JSON text decodes to)
// never fail, and what they answer agrees with itself: a text reads back as the same text, a
// number that reads as an integer also reads as a double.
#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzInput.h"
#include "vn/values/JSON.h"
#include "vn/values/ValueCoercion.h"

namespace {

void coerce(const vn::Value& value) {
    (void)vn::VNUtilities::boolFromValue(value, true);
    (void)vn::VNUtilities::numberWithBoolIfTrueFromValue(value);
    (void)vn::VNUtilities::arrayFromObject(value);
    (void)vn::VNUtilities::lastObjectIfArrayFromObject(value);
    (void)vn::VNUtilities::unsignedIntegerNumberFromValue(value);
    (void)vn::VNUtilities::floatNumberFromValue(value);
    (void)vn::VNUtilities::decimalNumberFromValue(value);
    if (vn::VNUtilities::integerNumberFromValue(value)) {
        vn_fuzz::check(vn::VNUtilities::doubleNumberFromValue(value).has_value(),
                       "an integer that does not read as a double");
    }
    if (const auto text = vn::VNUtilities::stringFromObject(value)) {
        const auto nonEmpty = vn::VNUtilities::nonEmptyStringFromObject(value);
        vn_fuzz::check(nonEmpty.has_value() == !text->empty(), "nonEmptyString disagrees");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const vn::Value value(text);
    const auto again = vn::VNUtilities::stringFromObject(value);
    vn_fuzz::check(again && *again == text, "a text does not coerce to itself");
    coerce(value);
    const vn::Value decoded = vn::VNUtilities::jsonObject(text);
    coerce(decoded);
    return 0;
}
