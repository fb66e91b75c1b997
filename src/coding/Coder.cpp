#include "vn/coding/Coder.h"

#include <string>

namespace vn {

Coder::~Coder() = default;

ErrorPtr Coder::makeCodingError(std::int64_t code, std::string_view reason) {
    Value::Dictionary userInfo;
    userInfo.emplace(std::string(NSDebugDescriptionErrorKey), Value(reason));
    return Error::make(NSCocoaErrorDomain, code, Value(std::move(userInfo)));
}

std::optional<Number> Coder::decodeNumber(std::string_view key) {
    const Value value = decodeValue(key);
    if (value.isNil()) return std::nullopt;
    if (const Number* number = value.number()) return *number;
    failWithError(makeCodingError(NSCoderReadCorruptError,
                                  "the value for key (" + std::string(key) + ") is not a number"));
    return std::nullopt;
}

bool Coder::decodeBool(std::string_view key) {
    const auto number = decodeNumber(key);
    return number ? number->boolValue() : false;
}

std::int64_t Coder::decodeInteger(std::string_view key) {
    const auto number = decodeNumber(key);
    return number ? number->integerValue() : 0;
}

double Coder::decodeDouble(std::string_view key) {
    const auto number = decodeNumber(key);
    return number ? number->doubleValue() : 0.0;
}

std::optional<std::string> Coder::decodeString(std::string_view key) {
    const Value value = decodeValue(key);
    if (value.isNil()) return std::nullopt;
    if (const std::string* text = value.string()) return *text;
    failWithError(makeCodingError(NSCoderReadCorruptError,
                                  "the value for key (" + std::string(key) + ") is not a text"));
    return std::nullopt;
}

}  // namespace vn
