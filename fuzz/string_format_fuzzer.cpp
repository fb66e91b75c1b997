// libFuzzer target: any format with arguments of every kind formats without failing, and a
// valid UTF-8 format with valid UTF-8 arguments gives valid UTF-8.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzInput.h"
#include "vn/log/StringFormat.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto [format, text, numberBytes] = vn_fuzz::fields<3>(data, size);
    const double number = vn_fuzz::doubleFromBytes(numberBytes);
    const std::array<vn::Value, 6> arguments = {
        vn::Value(std::string(text)),
        vn::Value(vn::Number(number)),
        vn::Value(vn::Number(static_cast<std::int64_t>(numberBytes.size()) - 4)),
        vn::Value(),
        vn::Value(vn::Date{number}),
        vn::Value(std::string(format))};
    const std::string formatted = vn::stringWithFormatArguments(format, arguments);
    if (vn::platform_internal::isValidUtf8(format) && vn::platform_internal::isValidUtf8(text)) {
        vn_fuzz::checkUtf8(formatted, "formatted text");
    }
    return 0;
}
