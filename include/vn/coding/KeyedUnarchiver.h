// vn::KeyedUnarchiver: reads keyed archives in the mobile platform's format (see
// KeyedArchiver.h for the layout), whether written here or by the platform.
//
// What is read back:
//   plain strings, booleans, reals, data          text, boolean number, double number, data
//   plain integers                                signed integer numbers; 16-byte integers
//                                                 above the signed 64-bit range as unsigned
//   plain dates (not written by archivers)        dates
//   NSString / NSMutableString ("NS.string")      text
//   NSData / NSMutableData ("NS.data")            data
//   NSDate ("NS.time")                            date
//   NSNull                                        the null marker
//   NSDecimalNumber                               decimal number
//   NSArray / NSMutableArray, NSSet / NSMutableSet, NSOrderedSet / NSMutableOrderedSet
//                                                 array (sets in their archived order)
//   NSDictionary / NSMutableDictionary            dictionary (keys must be texts)
//   any other "$classname"                        the decoder registered for it (see
//                                                 Coding.h, setClass()); when there is none,
//                                                 the first class of "$classes" that has one
// Float and double numbers both come back as doubles (the property list does not keep the
// difference), and a collection's mutability is not kept.
//
// Reading never crashes and never recurses without bound. Anything malformed makes the
// whole archive fail with an NSCocoaErrorDomain / NSCoderReadCorruptError error whose
// NSDebugDescription says what was wrong: bytes that are not a binary property list
// (truncated, corrupt, nested deeper than the reader allows, expanding beyond the size of the
// input, or holding texts with NUL characters or that do not convert to UTF-8), missing
// "$archiver"/"$top"/"$objects", UIDs out of range, objects that contain themselves, fields of the
// wrong type, unknown classes, nesting deeper than KeyedArchiver::kMaxNestingDepth. A decoder that
// answers no object fails the archive too.
//
// An unarchiver is used by one thread at a time.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vn/coding/Coder.h"
#include "vn/coding/Coding.h"
#include "vn/platform/Value.h"

namespace vn {

class KeyedUnarchiver final : public Coder {
  public:
    // Opens the archive. When the bytes are not a keyed archive, error() says why and every
    // decode answers nil.
    explicit KeyedUnarchiver(const Data& data);
    ~KeyedUnarchiver() override;

    // The value stored under "root"; absent (with *error set when error is given) when the
    // archive cannot be decoded. A root stored as nil gives a nil Value.
    [[nodiscard]] static std::optional<Value> unarchivedValue(const Data& data,
                                                              ErrorPtr* error = nullptr);

    // The root object as a T; null (with *error set) when the archive cannot be decoded or its
    // root is not a T.
    template <typename T>
    [[nodiscard]] static std::shared_ptr<T> unarchivedObjectOfClass(const Data& data,
                                                                    ErrorPtr* error = nullptr) {
        const std::optional<Value> root = unarchivedValue(data, error);
        if (!root) return nullptr;
        auto object = root->objectAs<T>();
        if (!object && error) *error = rootTypeMismatch(*root);
        return object;
    }

    // Decodes objects archived under className with decoder, for this unarchiver only; takes
    // precedence over the process-wide registry.
    void setClass(std::string className, CodingDecoder decoder);

    // At the top level these read "$top"; inside a decoder they read the fields of the object
    // being decoded. Each archived entry is decoded once: the same entry reached twice gives
    // the same value (and the same object).
    bool containsValueForKey(std::string_view key) const override;
    Value decodeValue(std::string_view key) override;

    void encodeValue(const Value& value, std::string_view key) override;
    void encodeBool(bool value, std::string_view key) override;
    void encodeInteger(std::int64_t value, std::string_view key) override;
    void encodeDouble(double value, std::string_view key) override;

    void failWithError(ErrorPtr error) override;
    ErrorPtr error() const override;

    // A readable, indented tree of an archive's contents: every "$top" key with its value,
    // objects as their class name with their fields, collections with their elements, and
    // nil/UID references resolved. It does not need the archived classes to be known. An
    // entry reached a second time is shown as a reference to its first showing ("#5, shown
    // above"), so the tree stays as small as the archive. Absent (with *error set) when the
    // bytes are not a keyed archive.
    static std::optional<std::string> describeArchive(const Data& data, ErrorPtr* error = nullptr);

  private:
    static ErrorPtr rootTypeMismatch(const Value& root);

    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace vn
