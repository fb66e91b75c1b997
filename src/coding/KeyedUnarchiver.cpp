#include "vn/coding/KeyedUnarchiver.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "coding/ArchiveDocument.h"
#include "coding/ArchiveFormat.h"
#include "vn/coding/KeyedArchiver.h"
#include "vn/platform/FatalError.h"

namespace vn {

using namespace coding_internal;

namespace {

// The collections the unarchiver rebuilds itself, by archived class name.
enum class BuiltIn { none, array, dictionary, date, null, string, data, decimal };

BuiltIn builtInFor(std::string_view className) {
    static const std::map<std::string_view, BuiltIn> kClasses = {
        {"NSArray", BuiltIn::array},
        {"NSMutableArray", BuiltIn::array},
        {"NSSet", BuiltIn::array},
        {"NSMutableSet", BuiltIn::array},
        {"NSDictionary", BuiltIn::dictionary},
        {"NSMutableDictionary", BuiltIn::dictionary},
        {"NSDate", BuiltIn::date},
        {"NSNull", BuiltIn::null},
        {"NSString", BuiltIn::string},
        {"NSMutableString", BuiltIn::string},
        {"NSData", BuiltIn::data},
        {"NSMutableData", BuiltIn::data},
        {"NSDecimalNumber", BuiltIn::decimal},
    };
    const auto found = kClasses.find(className);
    return found == kClasses.end() ? BuiltIn::none : found->second;
}

}  // namespace

struct KeyedUnarchiver::State {
    enum class Progress : std::uint8_t { pending, decoding, decoded };
    struct Slot {
        Progress progress = Progress::pending;
        Value value;
    };

    KeyedUnarchiver& unarchiver;  // handed to the decoders of archived classes
    std::optional<ArchiveDocument> document;
    std::vector<Slot> slots;      // index = UID
    std::vector<plist_t> scopes;  // where decode calls read: "$top", then nested object entries
    std::map<std::string, CodingDecoder, std::less<>> classes;
    int depth = 0;
    ErrorPtr error;

    State(KeyedUnarchiver& owner, const Data& bytes) : unarchiver(owner) {
        std::string reason;
        document = ArchiveDocument::open(bytes, reason);
        if (!document) {
            fail(reason);
            return;
        }
        slots.resize(static_cast<std::size_t>(document->objectCount()));
        scopes.push_back(document->top());
    }

    void fail(std::string_view reason) {
        if (!error) error = Coder::makeCodingError(NSCoderReadCorruptError, reason);
    }

    plist_t field(std::string_view key) const {
        return scopes.empty() ? nullptr : dictItem(scopes.back(), escapedKey(key));
    }

    // A field's node: a UID to an entry, an inline plain value, or an inline array of either.
    Value decodeField(plist_t node) {
        if (error) return {};
        if (const auto uid = uidOf(node)) return decodeUid(*uid);
        if (auto plain = plainValueOf(node)) return *std::move(plain);
        if (isType(node, PLIST_ARRAY)) return decodeInlineArray(node);
        fail("a field holds a dictionary where a value or reference was expected");
        return {};
    }

    Value decodeInlineArray(plist_t node) {
        Value::Array elements;
        const std::vector<plist_t> items = arrayItems(node);
        elements.reserve(items.size());
        for (std::size_t i = 0; i < items.size() && !error; ++i)
            elements.push_back(decodeField(items[i]));
        return error ? Value{} : Value(std::move(elements));
    }

    Value decodeUid(std::uint64_t uid) {
        if (uid == 0) return {};
        if (uid >= slots.size()) {
            fail("UID " + std::to_string(uid) + " is outside \"$objects\"");
            return {};
        }
        Slot& slot = slots[static_cast<std::size_t>(uid)];
        if (slot.progress == Progress::decoded) return slot.value;
        if (slot.progress == Progress::decoding) {
            fail("object " + std::to_string(uid) + " contains itself");
            return {};
        }
        if (depth >= KeyedArchiver::kMaxNestingDepth) {
            fail("objects are nested more than " + std::to_string(KeyedArchiver::kMaxNestingDepth) +
                 " levels deep");
            return {};
        }
        slot.progress = Progress::decoding;
        ++depth;
        Value value = decodeEntry(uid, document->object(uid));
        --depth;
        // The slot vector never grows after opening, so the reference is still valid.
        slot.value = error ? Value{} : value;
        slot.progress = Progress::decoded;
        return slot.value;
    }

    Value decodeEntry(std::uint64_t uid, plist_t entry) {
        if (auto plain = plainValueOf(entry)) return *std::move(plain);
        if (!isType(entry, PLIST_DICT)) {
            fail("object " + std::to_string(uid) + " is neither a value nor an object");
            return {};
        }
        const auto classUid = uidOf(dictItem(entry, std::string(kClassKey)));
        if (!classUid) {
            fail("object " + std::to_string(uid) + " has no \"$class\" reference");
            return {};
        }
        const auto description = classDescription(*classUid);
        if (!description) return {};
        return decodeObjectOfClass(*description, entry);
    }

    std::optional<ClassDescription> classDescription(std::uint64_t uid) {
        if (uid == 0 || uid >= slots.size()) {
            fail("\"$class\" reference " + std::to_string(uid) + " is outside \"$objects\"");
            return std::nullopt;
        }
        plist_t node = document->object(uid);
        ClassDescription description;
        const auto name = textOf(dictItem(node, std::string(kClassNameKey)));
        if (!name) {
            fail("class description " + std::to_string(uid) + " has no \"$classname\"");
            return std::nullopt;
        }
        description.name = *name;
        plist_t chain = dictItem(node, std::string(kClassesKey));
        if (chain && !isType(chain, PLIST_ARRAY)) {
            fail("\"$classes\" of class " + description.name + " is not an array");
            return std::nullopt;
        }
        for (plist_t item : arrayItems(chain)) {
            auto className = textOf(item);
            if (!className) {
                fail("\"$classes\" of class " + description.name +
                     " holds something other than a name");
                return std::nullopt;
            }
            description.hierarchy.push_back(std::move(*className));
        }
        return description;
    }

    CodingDecoder registeredDecoder(std::string_view className) const {
        if (const auto found = classes.find(className); found != classes.end())
            return found->second;
        return Coding::decoderForClassName(className);
    }

    Value decodeObjectOfClass(const ClassDescription& description, plist_t entry) {
        std::vector<std::string_view> candidates{description.name};
        for (const std::string& className : description.hierarchy) candidates.push_back(className);
        for (const std::string_view className : candidates) {
            if (const CodingDecoder decoder = registeredDecoder(className)) {
                return decodeRegistered(description.name, decoder, entry);
            }
            if (const BuiltIn builtIn = builtInFor(className); builtIn != BuiltIn::none) {
                return decodeBuiltIn(builtIn, description.name, entry);
            }
        }
        fail("cannot decode object of class (" + description.name +
             "); no decoder is registered for it");
        return {};
    }

    Value decodeRegistered(const std::string& className, const CodingDecoder& decoder,
                           plist_t entry) {
        // Popped even when the decoder throws, so the unarchiver stays usable.
        struct ScopeGuard {
            std::vector<plist_t>& scopes;
            ~ScopeGuard() { scopes.pop_back(); }
        };
        scopes.push_back(entry);
        const ScopeGuard guard{scopes};
        ObjectPtr object = decoder(unarchiver);
        if (!object && !error) fail("the decoder of class (" + className + ") answered no object");
        return error ? Value{} : Value(std::move(object));
    }

    // A required field of a built-in class, with a failure naming the class when it is missing.
    plist_t requiredField(plist_t entry, std::string_view key, const std::string& className) {
        plist_t node = dictItem(entry, std::string(key));
        if (!node) fail(className + " has no \"" + std::string(key) + "\"");
        return node;
    }

    Value decodeBuiltIn(BuiltIn builtIn, const std::string& className, plist_t entry) {
        switch (builtIn) {
            case BuiltIn::array:
                return decodeArray(className, entry);
            case BuiltIn::dictionary:
                return decodeDictionary(className, entry);
            case BuiltIn::date:
                return decodeDate(className, entry);
            case BuiltIn::null:
                return Value::null();
            case BuiltIn::string:
                return decodeWrapped(className, entry, kStringField, Value::Kind::string);
            case BuiltIn::data:
                return decodeWrapped(className, entry, kDataField, Value::Kind::data);
            case BuiltIn::decimal:
                return decodeDecimal(className, entry);
            case BuiltIn::none:
                break;
        }
        return {};
    }

    // The UIDs/values of an array field as decoded values.
    std::optional<Value::Array> decodeElements(plist_t entry, std::string_view key,
                                               const std::string& className) {
        plist_t node = requiredField(entry, key, className);
        if (!node) return std::nullopt;
        if (!isType(node, PLIST_ARRAY)) {
            fail("\"" + std::string(key) + "\" of " + className + " is not an array");
            return std::nullopt;
        }
        Value decoded = decodeInlineArray(node);
        if (error) return std::nullopt;
        return *decoded.array();
    }

    Value decodeArray(const std::string& className, plist_t entry) {
        auto elements = decodeElements(entry, kObjectsField, className);
        return elements ? Value(std::move(*elements)) : Value{};
    }

    Value decodeDictionary(const std::string& className, plist_t entry) {
        auto keys = decodeElements(entry, kKeysField, className);
        if (!keys) return {};
        auto values = decodeElements(entry, kObjectsField, className);
        if (!values) return {};
        if (keys->size() != values->size()) {
            fail(className + " has " + std::to_string(keys->size()) + " keys but " +
                 std::to_string(values->size()) + " values");
            return {};
        }
        Value::Dictionary dictionary;
        for (std::size_t i = 0; i < keys->size(); ++i) {
            const std::string* key = (*keys)[i].string();
            if (!key) {
                fail(className + " has a key that is not a text");
                return {};
            }
            dictionary.insert_or_assign(*key, std::move((*values)[i]));
        }
        return Value(std::move(dictionary));
    }

    Value decodeDate(const std::string& className, plist_t entry) {
        plist_t node = requiredField(entry, kTimeField, className);
        if (!node) return {};
        const auto time = plainValueOf(node);
        if (!time || !time->isNumber()) {
            fail("\"NS.time\" of " + className + " is not a number");
            return {};
        }
        return Value(Date{time->number()->doubleValue()});
    }

    Value decodeWrapped(const std::string& className, plist_t entry, std::string_view key,
                        Value::Kind kind) {
        plist_t node = requiredField(entry, key, className);
        if (!node) return {};
        Value wrapped = decodeField(node);
        if (error) return {};
        if (wrapped.kind() != kind) {
            fail("\"" + std::string(key) + "\" of " + className +
                 " holds a value of the wrong kind");
            return {};
        }
        return wrapped;
    }

    Value decodeDecimal(const std::string& className, plist_t entry) {
        const auto decimal = decimalOf(entry);
        if (!decimal) {
            fail(className + " does not hold a valid decimal value");
            return {};
        }
        return Value(Number::fromDecimal(*decimal));
    }
};

KeyedUnarchiver::KeyedUnarchiver(const Data& data) : state_(std::make_unique<State>(*this, data)) {}

KeyedUnarchiver::~KeyedUnarchiver() = default;

std::optional<Value> KeyedUnarchiver::unarchivedValue(const Data& data, ErrorPtr* error) {
    KeyedUnarchiver unarchiver(data);
    if (!unarchiver.error() && !unarchiver.containsValueForKey(kRootKey)) {
        unarchiver.failWithError(
            makeCodingError(NSCoderValueNotFoundError, "the archive has no \"root\" entry"));
    }
    Value root = unarchiver.decodeValue(kRootKey);
    if (unarchiver.error()) {
        if (error) *error = unarchiver.error();
        return std::nullopt;
    }
    return root;
}

ErrorPtr KeyedUnarchiver::rootTypeMismatch(const Value& root) {
    const std::string found = root.isObject() ? "an object of class " + root.object()->className()
                                              : "a value that is not an object";
    return makeCodingError(NSCoderReadCorruptError,
                           "the archive's root is " + found + ", not of the requested class");
}

void KeyedUnarchiver::setClass(std::string className, CodingDecoder decoder) {
    state_->classes.insert_or_assign(std::move(className), std::move(decoder));
}

bool KeyedUnarchiver::containsValueForKey(std::string_view key) const {
    return state_->field(key) != nullptr;
}

Value KeyedUnarchiver::decodeValue(std::string_view key) {
    if (state_->error) return {};
    plist_t node = state_->field(key);
    return node ? state_->decodeField(node) : Value{};
}

void KeyedUnarchiver::encodeValue(const Value&, std::string_view) {
    fatalError("KeyedUnarchiver: encodeValue called on an unarchiver");
}

void KeyedUnarchiver::encodeBool(bool, std::string_view) {
    fatalError("KeyedUnarchiver: encodeBool called on an unarchiver");
}

void KeyedUnarchiver::encodeInteger(std::int64_t, std::string_view) {
    fatalError("KeyedUnarchiver: encodeInteger called on an unarchiver");
}

void KeyedUnarchiver::encodeDouble(double, std::string_view) {
    fatalError("KeyedUnarchiver: encodeDouble called on an unarchiver");
}

void KeyedUnarchiver::failWithError(ErrorPtr error) {
    if (!state_->error) state_->error = std::move(error);
}

ErrorPtr KeyedUnarchiver::error() const {
    return state_->error;
}

}  // namespace vn
