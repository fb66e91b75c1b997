#include "vn/coding/KeyedArchiver.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "coding/ArchiveFormat.h"
#include "coding/BinaryPlistWriter.h"
#include "coding/PlistNode.h"
#include "platform/internal/Utf8.h"
#include "vn/coding/Coding.h"
#include "vn/platform/FatalError.h"

namespace vn {

using namespace coding_internal;

namespace {

// Unsigned values above the signed 64-bit range take the format's 16-byte integer form (the
// platform's form of them); the writer is told which nodes those are.
bool needsSixteenBytes(const Number& number) {
    return number.kind() == Number::Kind::unsignedInteger &&
           number.unsignedIntegerValue() >
               static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
}

PlistPtr makeNumberNode(const Number& number) {
    switch (number.kind()) {
        case Number::Kind::boolean:
            return PlistPtr(plist_new_bool(number.boolValue() ? 1 : 0));
        case Number::Kind::signedInteger:
            // The setter is unsigned; the binary writer stores the two's complement in 8 bytes,
            // which is how the format writes negative integers.
            return PlistPtr(plist_new_uint(static_cast<std::uint64_t>(number.integerValue())));
        case Number::Kind::unsignedInteger:
            return PlistPtr(plist_new_uint(number.unsignedIntegerValue()));
        case Number::Kind::floatingPoint:
        case Number::Kind::doublePrecision:
        case Number::Kind::decimal:
            break;
    }
    return PlistPtr(plist_new_real(number.doubleValue()));
}

// Identifies a plain number for sharing: equal kind and equal bits.
struct NumberKey {
    Number::Kind kind;
    std::uint64_t bits;
    auto operator<=>(const NumberKey&) const = default;
};

NumberKey numberKey(const Number& number) {
    switch (number.kind()) {
        case Number::Kind::boolean:
            return {number.kind(), number.boolValue() ? 1u : 0u};
        case Number::Kind::signedInteger:
            return {number.kind(), static_cast<std::uint64_t>(number.integerValue())};
        case Number::Kind::unsignedInteger:
            return {number.kind(), number.unsignedIntegerValue()};
        default: {
            const double value = number.doubleValue();
            std::uint64_t bits = 0;
            std::memcpy(&bits, &value, sizeof bits);
            return {Number::Kind::doublePrecision, bits};
        }
    }
}

}  // namespace

struct KeyedArchiver::State {
    KeyedArchiver& archiver;        // handed to encodeWithCoder of nested objects
    std::vector<PlistPtr> objects;  // index = UID
    PlistPtr top{plist_new_dict()};
    std::vector<plist_t> scopes;  // where encode calls write: "$top", then nested object entries
    std::unordered_map<std::string, std::uint64_t> strings;
    std::map<NumberKey, std::uint64_t> numbers;
    std::unordered_map<std::string, std::uint64_t> classes;
    std::unordered_map<const Object*, std::uint64_t> encodedObjects;
    std::vector<ObjectPtr> keptObjects;  // keeps addresses of shared objects from being reused
    std::unordered_set<const Object*> objectsInProgress;
    std::unordered_set<plist_t> sixteenByteIntegers;
    std::optional<std::uint64_t> nullUid;
    int depth = 0;
    bool finished = false;
    ErrorPtr error;
    Data bytes;

    explicit State(KeyedArchiver& owner) : archiver(owner) {
        objects.emplace_back(plist_new_string(std::string(kNullEntry).c_str()));
        scopes.push_back(top.get());
    }

    void fail(std::string_view reason) {
        if (!error) error = Coder::makeCodingError(NSCoderInvalidValueError, reason);
    }

    std::uint64_t append(PlistPtr node) {
        objects.push_back(std::move(node));
        return objects.size() - 1;
    }

    std::uint64_t classUid(const std::string& name, const std::vector<std::string>& hierarchy) {
        if (const auto found = classes.find(name); found != classes.end()) return found->second;
        PlistPtr description(plist_new_dict());
        PlistPtr chain(plist_new_array());
        for (const std::string& className : hierarchy)
            plist_array_append_item(chain.get(), plist_new_string(className.c_str()));
        plist_dict_set_item(description.get(), std::string(kClassesKey).c_str(), chain.release());
        plist_dict_set_item(description.get(), std::string(kClassNameKey).c_str(),
                            plist_new_string(name.c_str()));
        const std::uint64_t uid = append(std::move(description));
        classes.emplace(name, uid);
        return uid;
    }

    // A new object entry with its "$class"; returns the entry's UID.
    std::uint64_t appendObjectEntry(const ClassDescription& description) {
        const std::uint64_t classReference = classUid(description.name, description.hierarchy);
        PlistPtr entry(plist_new_dict());
        plist_dict_set_item(entry.get(), std::string(kClassKey).c_str(),
                            plist_new_uid(classReference));
        return append(std::move(entry));
    }

    plist_t entry(std::uint64_t uid) const { return objects[uid].get(); }

    static void setField(plist_t entry, std::string_view key, plist_t node) {
        plist_dict_set_item(entry, std::string(key).c_str(), node);
    }

    std::uint64_t encodeString(const std::string& text) {
        if (text.find('\0') != std::string::npos) {
            fail("a text holding a NUL character cannot be archived");
            return 0;
        }
        // The property list stores texts as ASCII or UTF-16: nothing but well-formed UTF-8
        // survives.
        if (!platform_internal::isValidUtf8(text)) {
            fail("a text that is not valid UTF-8 cannot be archived");
            return 0;
        }
        if (const auto found = strings.find(text); found != strings.end()) return found->second;
        const std::uint64_t uid = append(PlistPtr(plist_new_string(text.c_str())));
        strings.emplace(text, uid);
        return uid;
    }

    std::uint64_t encodeNumber(const Number& number) {
        if (number.isDecimal()) return encodeDecimal(number.decimalValue());
        const NumberKey key = numberKey(number);
        if (const auto found = numbers.find(key); found != numbers.end()) return found->second;
        PlistPtr node = makeNumberNode(number);
        if (needsSixteenBytes(number)) sixteenByteIntegers.insert(node.get());
        const std::uint64_t uid = append(std::move(node));
        numbers.emplace(key, uid);
        return uid;
    }

    std::uint64_t encodeDecimal(const Decimal& decimal) {
        const ArchivedDecimal archived = archiveDecimal(decimal);
        const std::uint64_t uid = appendObjectEntry(decimalClass());
        plist_t fields = entry(uid);
        setField(fields, kDecimalExponentField,
                 plist_new_uint(static_cast<std::uint64_t>(archived.exponent)));
        setField(fields, kDecimalLengthField,
                 plist_new_uint(static_cast<std::uint64_t>(archived.length)));
        setField(fields, kDecimalNegativeField, plist_new_bool(archived.negative ? 1 : 0));
        setField(fields, kDecimalCompactField, plist_new_bool(1));
        setField(fields, kDecimalByteOrderField, plist_new_uint(kDecimalLittleEndian));
        setField(fields, kDecimalMantissaField,
                 plist_new_data(reinterpret_cast<const char*>(archived.mantissa.data()),
                                archived.mantissa.size()));
        return uid;
    }

    std::uint64_t encodeNull() {
        if (!nullUid) nullUid = appendObjectEntry(nullClass());
        return *nullUid;
    }

    std::uint64_t encodeDate(const Date& date) {
        const std::uint64_t uid = appendObjectEntry(dateClass());
        setField(entry(uid), kTimeField, plist_new_real(date.timeIntervalSinceReferenceDate));
        return uid;
    }

    std::uint64_t encodeData(const Data& data) {
        return append(
            PlistPtr(plist_new_data(reinterpret_cast<const char*>(data.data()), data.size())));
    }

    PlistPtr referenceArray(const Value::Array& elements) {
        PlistPtr references(plist_new_array());
        for (const Value& element : elements)
            plist_array_append_item(references.get(), plist_new_uid(encode(element)));
        return references;
    }

    std::uint64_t encodeArray(const Value::Array& array) {
        const std::uint64_t uid = appendObjectEntry(arrayClass());
        PlistPtr references = referenceArray(array);
        setField(entry(uid), kObjectsField, references.release());
        return uid;
    }

    std::uint64_t encodeDictionary(const Value::Dictionary& dictionary) {
        const std::uint64_t uid = appendObjectEntry(dictionaryClass());
        PlistPtr keys(plist_new_array());
        PlistPtr values(plist_new_array());
        for (const auto& [key, value] : dictionary) {
            plist_array_append_item(keys.get(), plist_new_uid(encodeString(key)));
            plist_array_append_item(values.get(), plist_new_uid(encode(value)));
        }
        setField(entry(uid), kKeysField, keys.release());
        setField(entry(uid), kObjectsField, values.release());
        return uid;
    }

    std::uint64_t encodeObject(const ObjectPtr& object) {
        const auto* coding = dynamic_cast<const Coding*>(object.get());
        if (!coding) {
            fail("an object of class " + object->className() + " does not support keyed coding");
            return 0;
        }
        if (const auto found = encodedObjects.find(object.get()); found != encodedObjects.end()) {
            if (objectsInProgress.count(object.get())) {
                fail("an object of class " + object->className() + " contains itself");
                return 0;
            }
            return found->second;
        }
        const std::uint64_t uid =
            appendObjectEntry({coding->classNameForCoder(), coding->classHierarchyForCoder()});
        encodedObjects.emplace(object.get(), uid);
        keptObjects.push_back(object);
        objectsInProgress.insert(object.get());
        scopes.push_back(entry(uid));
        coding->encodeWithCoder(archiver);
        scopes.pop_back();
        objectsInProgress.erase(object.get());
        return uid;
    }

    // Encodes value as an archive entry and answers its UID (0 for nil and after a failure).
    std::uint64_t encode(const Value& value) {
        if (error) return 0;
        if (depth >= kMaxNestingDepth) {
            fail("values are nested more than " + std::to_string(kMaxNestingDepth) +
                 " levels deep");
            return 0;
        }
        ++depth;
        const std::uint64_t uid = encodeKind(value);
        --depth;
        return error ? 0 : uid;
    }

    std::uint64_t encodeKind(const Value& value) {
        switch (value.kind()) {
            case Value::Kind::nil:
                return 0;
            case Value::Kind::null:
                return encodeNull();
            case Value::Kind::number:
                return encodeNumber(*value.number());
            case Value::Kind::string:
                return encodeString(*value.string());
            case Value::Kind::data:
                return encodeData(*value.data());
            case Value::Kind::date:
                return encodeDate(*value.date());
            case Value::Kind::array:
                return encodeArray(*value.array());
            case Value::Kind::dictionary:
                return encodeDictionary(*value.dictionary());
            case Value::Kind::object:
                return encodeObject(value.object());
        }
        return 0;
    }

    bool acceptsKey(std::string_view key) {
        if (finished) fatalError("KeyedArchiver: encoding after finishEncoding()");
        if (key.find('\0') != std::string_view::npos) {
            fail("a key holding a NUL character cannot be archived");
            return false;
        }
        if (!platform_internal::isValidUtf8(key)) {
            fail("a key that is not valid UTF-8 cannot be archived");
            return false;
        }
        return !error;
    }

    void setInScope(std::string_view key, plist_t node) {
        plist_dict_set_item(scopes.back(), escapedKey(key).c_str(), node);
    }

    void finish() {
        if (finished) return;
        finished = true;
        if (error) return;
        PlistPtr root(plist_new_dict());
        plist_dict_set_item(root.get(), std::string(kVersionKey).c_str(), plist_new_uint(kVersion));
        plist_dict_set_item(root.get(), std::string(kArchiverKey).c_str(),
                            plist_new_string(std::string(kArchiverName).c_str()));
        plist_dict_set_item(root.get(), std::string(kTopKey).c_str(), top.release());
        PlistPtr entries(plist_new_array());
        for (PlistPtr& object : objects) plist_array_append_item(entries.get(), object.release());
        objects.clear();
        plist_dict_set_item(root.get(), std::string(kObjectsKey).c_str(), entries.release());
        std::optional<Data> written = writeBinaryPropertyList(root.get(), sixteenByteIntegers);
        if (!written) {
            fail("the property list could not be written");
            return;
        }
        bytes = std::move(*written);
    }
};

KeyedArchiver::KeyedArchiver() : state_(std::make_unique<State>(*this)) {}

KeyedArchiver::~KeyedArchiver() = default;

std::optional<Data> KeyedArchiver::archivedDataWithRootObject(const Value& root, ErrorPtr* error) {
    KeyedArchiver archiver;
    archiver.encodeValue(root, kRootKey);
    Data bytes = archiver.encodedData();
    if (archiver.error()) {
        if (error) *error = archiver.error();
        return std::nullopt;
    }
    return bytes;
}

void KeyedArchiver::encodeValue(const Value& value, std::string_view key) {
    if (!state_->acceptsKey(key)) return;
    const std::uint64_t uid = state_->encode(value);
    if (!state_->error) state_->setInScope(key, plist_new_uid(uid));
}

void KeyedArchiver::encodeBool(bool value, std::string_view key) {
    if (state_->acceptsKey(key)) state_->setInScope(key, plist_new_bool(value ? 1 : 0));
}

void KeyedArchiver::encodeInteger(std::int64_t value, std::string_view key) {
    if (state_->acceptsKey(key))
        state_->setInScope(key, plist_new_uint(static_cast<std::uint64_t>(value)));
}

void KeyedArchiver::encodeDouble(double value, std::string_view key) {
    if (state_->acceptsKey(key)) state_->setInScope(key, plist_new_real(value));
}

void KeyedArchiver::finishEncoding() {
    state_->finish();
}

Data KeyedArchiver::encodedData() {
    state_->finish();
    return state_->error ? Data{} : state_->bytes;
}

bool KeyedArchiver::containsValueForKey(std::string_view) const {
    fatalError("KeyedArchiver: containsValueForKey called on an archiver");
}

Value KeyedArchiver::decodeValue(std::string_view) {
    fatalError("KeyedArchiver: decodeValue called on an archiver");
}

void KeyedArchiver::failWithError(ErrorPtr error) {
    if (!state_->error) state_->error = std::move(error);
}

ErrorPtr KeyedArchiver::error() const {
    return state_->error;
}

}  // namespace vn
