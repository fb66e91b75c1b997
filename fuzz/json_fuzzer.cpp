// libFuzzer target: JSON text decodes to a value or to an error, never both or neither; what
// decodes is valid UTF-8 throughout, and writing it gives JSON that decodes. Writing and
// reading again may normalise once (-0 is written as "-0", which reads as the integer 0), and
// from then on the text is stable, in both styles.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "FuzzInput.h"
#include "vn/platform/Error.h"
#include "vn/values/JSON.h"

namespace {

void checkTexts(const vn::Value& value) {
    if (const std::string* text = value.string()) vn_fuzz::checkUtf8(*text, "a decoded text");
    if (const vn::Value::Array* array = value.array()) {
        for (const vn::Value& element : *array) checkTexts(element);
    }
    if (const vn::Value::Dictionary* dictionary = value.dictionary()) {
        for (const auto& [key, element] : *dictionary) {
            vn_fuzz::checkUtf8(key, "a decoded key");
            checkTexts(element);
        }
    }
}

// The value written and read back.
vn::Value rewritten(const vn::Value& value, vn::JSONWritingStyle style) {
    const std::string written = vn::jsonString(value, style);
    vn_fuzz::checkUtf8(written, "written JSON");
    vn::ErrorPtr error;
    vn::Value reread = vn::VNUtilities::jsonObject(written, std::nullopt, &error);
    vn_fuzz::check(error == nullptr, "written JSON that does not decode");
    return reread;
}

void checkRewrite(const vn::Value& value, vn::JSONWritingStyle style) {
    const vn::Value normalised = rewritten(value, style);
    const std::string written = vn::jsonString(normalised, style);
    vn_fuzz::check(vn::jsonString(rewritten(normalised, style), style) == written,
                   "JSON that does not write back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    vn::ErrorPtr error;
    const vn::Value value = vn::VNUtilities::jsonObject(text, std::nullopt, &error);
    vn_fuzz::check(value.isNil() == (error != nullptr), "a result and an error disagree");
    if (error) {
        vn_fuzz::check(error->code() == vn::kJSONReadCorruptErrorCode, "an unexpected error code");
        return 0;
    }
    checkTexts(value);
    checkRewrite(value, vn::JSONWritingStyle::compact);
    checkRewrite(value, vn::JSONWritingStyle::pretty);
    return 0;
}
