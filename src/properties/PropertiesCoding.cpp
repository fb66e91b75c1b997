#include "properties/PropertiesCoding.h"

#include <string>

#include "vn/coding/Coding.h"
#include "vn/coding/KeyedArchiver.h"
#include "vn/platform/FatalError.h"
#include "vn/properties/VNCodingPropertiesObject.h"
#include "vn/properties/VNMutableCodingPropertiesObject.h"

namespace vn::properties_internal {
namespace {

// The class name the platform's runtime gives the classes of this module.
constexpr std::string_view kModulePrefix = "VNFoundation.";

// The first object inside value (itself or nested) that is not keyed-codable.
const Value* firstNonCodable(const Value& value, int depth = 1) {
    if (depth > KeyedArchiver::kMaxNestingDepth) return nullptr;
    if (value.isObject()) return isKeyedCodable(value) ? nullptr : &value;
    if (const Value::Array* array = value.array()) {
        for (const Value& element : *array) {
            if (const Value* found = firstNonCodable(element, depth + 1)) return found;
        }
    }
    if (const Value::Dictionary* dictionary = value.dictionary()) {
        for (const auto& [key, element] : *dictionary) {
            if (const Value* found = firstNonCodable(element, depth + 1)) return found;
        }
    }
    return nullptr;
}

std::string offenderName(const Value& value) {
    const Value* offender = firstNonCodable(value);
    if (offender) return "an object of class " + offender->object()->className();
    return "values nested too deeply";
}

}  // namespace

const Value& requireKeyedCodable(const Value& value, std::string_view className,
                                 std::string_view name) {
    if (isKeyedCodable(value)) return value;
    fatalError(std::string(className) + ": the value of property '" + std::string(name) +
               "' does not support keyed coding (" + offenderName(value) + ")");
}

std::optional<Value::Dictionary> decodePropertiesDictionary(Coder& coder,
                                                            std::string_view className) {
    const Value stored = coder.decodeValue(VNPropertiesObjectArchiveKey);
    if (stored.isNil())
        return coder.error() ? std::nullopt : std::optional<Value::Dictionary>(Value::Dictionary{});
    if (const Value::Dictionary* dictionary = stored.dictionary()) return *dictionary;
    coder.failWithError(Coder::makeCodingError(NSCoderReadCorruptError,
                                               std::string(className) + ": the value under \"" +
                                                   std::string(VNPropertiesObjectArchiveKey) +
                                                   "\" is not a dictionary"));
    return std::nullopt;
}

bool registerPropertiesCodingClasses() {
    const CodingDecoder plain = [](Coder& coder) -> ObjectPtr {
        return VNCodingPropertiesObject::initWithCoder(coder);
    };
    const CodingDecoder mutableBag = [](Coder& coder) -> ObjectPtr {
        return VNMutableCodingPropertiesObject::initWithCoder(coder);
    };
    for (const std::string_view prefix : {std::string_view(), kModulePrefix}) {
        Coding::registerClass(std::string(prefix) + "VNCodingPropertiesObject", plain);
        Coding::registerClass(std::string(prefix) + "VNMutableCodingPropertiesObject", mutableBag);
    }
    return true;
}

}  // namespace vn::properties_internal
