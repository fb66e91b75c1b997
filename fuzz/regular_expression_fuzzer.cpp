// libFuzzer target: any pattern compiles to an expression or to an error, never both or
// neither; matching any text gives ranges inside the text, and replacing gives valid UTF-8
// for valid UTF-8 inputs.
#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzInput.h"
#include "vn/formatting/RegularExpression.h"

namespace {

void checkRange(const vn::StringRange& range, std::size_t textSize) {
    vn_fuzz::check(range.location <= textSize && range.length <= textSize - range.location,
                   "a match outside the text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto [pattern, text, replacement] = vn_fuzz::fields<3>(data, size);
    const std::uint32_t options =
        replacement.empty() ? 0 : static_cast<std::uint8_t>(replacement[0]) & 0x7f;
    vn::ErrorPtr error;
    const auto expression =
        vn::RegularExpression::regularExpressionWithPattern(pattern, options, &error);
    vn_fuzz::check((expression == nullptr) == (error != nullptr), "a result and an error disagree");
    if (!expression) return 0;
    for (const auto& match : expression->matches(text)) {
        checkRange(match.range, text.size());
        for (const auto& group : match.groups) {
            if (group) checkRange(*group, text.size());
        }
    }
    (void)expression->matchesEntirely(text);
    const std::string replaced = expression->stringByReplacingMatches(text, replacement);
    const bool valid =
        vn::platform_internal::isValidUtf8(text) && vn::platform_internal::isValidUtf8(replacement);
    if (valid) vn_fuzz::checkUtf8(replaced, "replaced text");
    const std::string escaped = vn::RegularExpression::escapedPatternForString(text);
    const auto literal = vn::RegularExpression::regularExpressionWithPattern(escaped);
    if (valid)
        vn_fuzz::check(literal && literal->matchesEntirely(text),
                       "an escaped text that does not match itself");
    return 0;
}
