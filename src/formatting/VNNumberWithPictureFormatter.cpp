#include "vn/formatting/VNNumberWithPictureFormatter.h"

#include <charconv>
#include <cstdint>
#include <string>

#include "formatting/Utf8Slices.h"
#include "vn/platform/FatalError.h"

namespace vn {
namespace {

using formatting_internal::codePointSlices;

bool isDigit(std::string_view slice) {
    return slice.size() == 1 && slice[0] >= '0' && slice[0] <= '9';
}

std::string joinedInReverse(const std::vector<std::string_view>& slices) {
    std::string result;
    for (auto it = slices.rbegin(); it != slices.rend(); ++it) result.append(*it);
    return result;
}

}  // namespace

VNNumberWithPictureFormatter::VNNumberWithPictureFormatter(std::string_view numberFormat)
    : numberFormat_(numberFormat) {}

std::shared_ptr<VNNumberWithPictureFormatter> VNNumberWithPictureFormatter::initWithNumberFormat(
    std::string_view numberFormat) {
    return std::make_shared<VNNumberWithPictureFormatter>(numberFormat);
}

VNNumberWithPictureFormatter::VNNumberWithPictureFormatter() {
    unimplementedInitializer("VNFoundation.VNNumberWithPictureFormatter", "init()");
}

std::string VNNumberWithPictureFormatter::stringFromNumber(const Number& number) const {
    const std::string digits = number.description();
    const bool singleZero = digits == "0";
    const std::vector<std::string_view> mask = codePointSlices(numberFormat_);
    std::vector<std::string_view> written;
    written.reserve(mask.size());
    std::size_t remaining = digits.size();  // the number's characters not yet used, from the right
    const std::string_view space = " ";
    for (auto it = mask.rbegin(); it != mask.rend(); ++it) {
        const std::string_view position = *it;
        if (position == "0") {
            written.push_back(remaining > 0 ? std::string_view(digits).substr(--remaining, 1)
                                            : position);
        } else if (position == "#") {
            if (remaining == 0) continue;
            --remaining;
            written.push_back(singleZero ? space : std::string_view(digits).substr(remaining, 1));
        } else {
            written.push_back(position);
        }
    }
    return joinedInReverse(written);
}

std::optional<Number> VNNumberWithPictureFormatter::numberFromString(std::string_view text) const {
    const std::vector<std::string_view> mask = codePointSlices(numberFormat_);
    const std::vector<std::string_view> input = codePointSlices(text);
    std::vector<std::string_view> collected;
    auto next = input.rbegin();
    for (auto it = mask.rbegin(); it != mask.rend(); ++it) {
        const std::string_view position = *it;
        const bool available = next != input.rend();
        if (position == "0") {
            if (!available || !isDigit(*next)) return std::nullopt;
            collected.push_back(*next++);
        } else if (position == "#") {
            if (available && isDigit(*next)) collected.push_back(*next++);
        } else {
            if (!available || *next != position) return std::nullopt;
            ++next;
        }
    }
    const std::string digits = joinedInReverse(collected);
    if (digits.empty()) {
        fatalError("VNNumberWithPictureFormatter: no digit in \"" + std::string(text) +
                   "\" for the mask \"" + numberFormat_ + "\"");
    }
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size()) {
        fatalError("VNNumberWithPictureFormatter: \"" + digits +
                   "\" does not fit a 64-bit integer");
    }
    return Number(value);
}

std::optional<std::string> VNNumberWithPictureFormatter::stringForObjectValue(
    const Value& value) const {
    if (const Number* number = value.number()) return stringFromNumber(*number);
    return std::nullopt;
}

std::string VNNumberWithPictureFormatter::description() const {
    return "<VNNumberWithPictureFormatter: mask \"" + numberFormat_ + "\">";
}

}  // namespace vn

namespace vn {
namespace {

const bool kRegisteredForCoding = Coding::registerClass(
    std::string(VNNumberWithPictureFormatter::codingClassName),
    [](Coder& coder) -> ObjectPtr { return VNNumberWithPictureFormatter::initWithCoder(coder); });

}  // namespace

void VNNumberWithPictureFormatter::encodeWithCoder(Coder& coder) const {
    coder.encodeString(numberFormat_, numberFormatCodingKey);
}

std::shared_ptr<VNNumberWithPictureFormatter> VNNumberWithPictureFormatter::initWithCoder(
    Coder& coder) {
    const std::optional<std::string> mask = coder.decodeString(numberFormatCodingKey);
    if (!mask) {
        coder.failWithError(Coder::makeCodingError(
            NSCoderReadCorruptError,
            "VNNumberWithPictureFormatter: no mask under \"vn.numberFormat\""));
        return nullptr;
    }
    return initWithNumberFormat(*mask);
}

std::string VNNumberWithPictureFormatter::classNameForCoder() const {
    return std::string(codingClassName);
}

std::vector<std::string> VNNumberWithPictureFormatter::classHierarchyForCoder() const {
    return {std::string(codingClassName), "NSNumberFormatter", "NSFormatter", "NSObject"};
}

}  // namespace vn
