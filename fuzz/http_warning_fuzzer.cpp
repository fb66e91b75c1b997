// libFuzzer target: any bytes read as a "Warning" header value give no warnings or a non-empty
// list, and the list written back in header form reads as the same warnings.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "vn/network/VNUtilitiesHTTP.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view value(reinterpret_cast<const char*>(data), size);
    const auto warnings = vn::VNUtilities::httpWarningsFromHeader(value);
    if (!warnings) return 0;
    if (warnings->empty()) std::abort();
    std::string written;
    for (const auto& warning : *warnings) {
        (void)warning->warningText();
        if (!written.empty()) written += ", ";
        written += warning->description();
    }
    const auto reread = vn::VNUtilities::httpWarningsFromHeader(written);
    if (!reread || reread->size() != warnings->size()) std::abort();
    for (std::size_t i = 0; i < warnings->size(); ++i) {
        if (!(*reread)[i]->isEqual(*(*warnings)[i])) std::abort();
    }
    return 0;
}
