// vn::Coder: the keyed coder that archivable classes write themselves to and read themselves
// from.
//
// A coder works in one direction. The archiver (vn::KeyedArchiver) takes the encode members;
// the unarchiver (vn::KeyedUnarchiver) takes the decode members. Calling a member of the other
// direction is a programming mistake and stops the process (vn::fatalError).
//
// Keys are UTF-8 texts scoped to the object being encoded or decoded: the same key in two
// objects names two different entries. Keys that begin with "$" are stored with one more "$"
// in front, so they can never collide with the archive's own bookkeeping keys; decoding undoes
// that, so a caller never sees the escaping.
//
// Decoding never throws and never stops the process for bad input: a malformed archive or a
// value of an unexpected kind records an error (see error()) and the decode member answers nil
// or its documented default. Once an error is recorded the coder is failed: later decode calls
// answer nil/defaults and the archive as a whole is reported as not decodable.
//
// A coder is used by one thread at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/Error.h"
#include "vn/platform/Object.h"
#include "vn/platform/Value.h"

namespace vn {

// The error code of an archive that cannot be read (the platform's NSCoderReadCorruptError),
// in NSCocoaErrorDomain.
inline constexpr std::int64_t NSCoderReadCorruptError = 4864;
// The error code of a value that an archive lacks (the platform's NSCoderValueNotFoundError),
// in NSCocoaErrorDomain.
inline constexpr std::int64_t NSCoderValueNotFoundError = 4865;
// The error code of a value that cannot be archived (the platform's NSCoderInvalidValueError),
// in NSCocoaErrorDomain.
inline constexpr std::int64_t NSCoderInvalidValueError = 4866;
// The user-information key under which coding errors carry their detailed, English reason.
inline constexpr std::string_view NSDebugDescriptionErrorKey = "NSDebugDescription";

class Coder {
  public:
    Coder() = default;
    Coder(const Coder&) = delete;
    Coder& operator=(const Coder&) = delete;
    virtual ~Coder();

    // Always true: every coder of the library is keyed.
    bool allowsKeyedCoding() const { return true; }

    // ---- Encoding (archivers only) ----

    // Stores value under key, as an object entry of the archive: nil is stored as the
    // archive's nil reference, objects must implement vn::Coding (see Coding.h). A value that
    // cannot be archived records an encoding error on the archiver (see error()).
    // Encoding the same key twice in one object keeps the last value.
    virtual void encodeValue(const Value& value, std::string_view key) = 0;
    // encodeValue with an object; a null pointer stores nil.
    void encodeObject(const ObjectPtr& object, std::string_view key) {
        encodeValue(Value(object), key);
    }
    // Scalars stored inline in the object's entry (not as separate archive objects), the way
    // the platform stores its scalar encodings.
    virtual void encodeBool(bool value, std::string_view key) = 0;
    virtual void encodeInteger(std::int64_t value, std::string_view key) = 0;
    virtual void encodeDouble(double value, std::string_view key) = 0;
    // A text as an object entry (the platform's string objects are plain archive strings).
    void encodeString(std::string_view value, std::string_view key) {
        encodeValue(Value(value), key);
    }

    // ---- Decoding (unarchivers only) ----

    // Whether the object being decoded has an entry under key (a stored nil counts).
    virtual bool containsValueForKey(std::string_view key) const = 0;
    // The value stored under key: nil when there is none or when the coder has failed.
    virtual Value decodeValue(std::string_view key) = 0;
    // The object stored under key; null when the entry is missing or is not an object
    // (texts, numbers and collections are values, not objects).
    ObjectPtr decodeObject(std::string_view key) { return decodeValue(key).object(); }
    // Scalars: false / 0 / 0.0 when the key is missing; any stored number converts (booleans
    // and integers to double, doubles truncate toward zero). A stored value that is not a
    // number records an error and answers the default.
    bool decodeBool(std::string_view key);
    std::int64_t decodeInteger(std::string_view key);
    double decodeDouble(std::string_view key);
    // The text under key; absent when missing. A stored value that is not a text records an
    // error and answers absent.
    std::optional<std::string> decodeString(std::string_view key);

    // ---- Failure ----

    // Records error as the reason the coding failed; the first recorded error wins. A class
    // that cannot decode itself calls this before answering "no object".
    virtual void failWithError(ErrorPtr error) = 0;
    // The first recorded error, or null while coding has not failed.
    virtual ErrorPtr error() const = 0;

    // An NSCocoaErrorDomain error with the given code; reason goes under NSDebugDescription.
    [[nodiscard]] static ErrorPtr makeCodingError(std::int64_t code, std::string_view reason);

  private:
    // The number under key, recording an error for any other kind.
    std::optional<Number> decodeNumber(std::string_view key);
};

}  // namespace vn
