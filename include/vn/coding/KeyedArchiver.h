// vn::KeyedArchiver: writes values and archivable objects as a keyed archive in the mobile
// platform's own format, so archives written here read there and the other way round.
//
// The archive is a binary property list:
//   "$archiver" = "NSKeyedArchiver", "$version" = 100000,
//   "$top"      = { key: UID, ... }   (archivedDataWithRootObject uses the key "root"),
//   "$objects"  = [ "$null", entries... ]   (a UID is an index into this array; UID 0 is nil).
// Values are stored as the platform stores the matching objects:
//   text            plain string                 number (boolean)    plain boolean
//   number (signed / unsigned integer)           plain integer (unsigned values above the
//                                                signed 64-bit range as 16-byte integers)
//   number (float, double)                       plain real
//   number (decimal) NSDecimalNumber object: "NS.exponent" (integer), "NS.length" (count of
//                    16-bit mantissa words in use, 0...8), "NS.negative" and "NS.compact"
//                    (booleans), "NS.mantissa.bo" = 1 (little-endian words) and "NS.mantissa"
//                    (16 bytes: the mantissa as eight 16-bit little-endian words, least
//                    significant first). NaN is length 0 with NS.negative true.
//   data            plain data                   date        NSDate object, "NS.time" =
//                                                            seconds since 2001-01-01 (real)
//   null marker     NSNull object (no fields)    nil         UID 0
//   array           NSArray object, "NS.objects" = [UID...]
//   dictionary      NSDictionary object, "NS.keys" = [UID...], "NS.objects" = [UID...]
//   vn::Coding      its own "$classname" object with the fields it encodes
// Object entries carry "$class", a UID to {"$classname": name, "$classes": [name, supers...]}.
// Equal texts and numbers, the null marker, class descriptions and the same object (by
// identity) are stored once and shared by reference.
//
// What cannot be archived, reported as an NSCocoaErrorDomain / NSCoderInvalidValueError
// error: objects that do not implement vn::Coding, an object that (through its fields)
// contains itself, nesting deeper than kMaxNestingDepth, texts or keys that are not valid
// UTF-8, and texts or keys holding a NUL character (the property-list library keeps texts
// NUL-terminated, so the rest would be lost silently).
//
// An archiver is used by one thread at a time.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "vn/coding/Coder.h"
#include "vn/platform/Value.h"

namespace vn {

class KeyedArchiver final : public Coder {
  public:
    // The deepest nesting of collections and objects that is written (and read back).
    static constexpr int kMaxNestingDepth = 256;

    KeyedArchiver();
    ~KeyedArchiver() override;

    // The archive of root under the key "root"; absent (with *error set when error is given)
    // when something in it cannot be archived.
    [[nodiscard]] static std::optional<Data> archivedDataWithRootObject(const Value& root,
                                                                        ErrorPtr* error = nullptr);

    // Encoding at the top level writes into "$top"; inside encodeWithCoder it writes the
    // fields of the object being encoded.
    void encodeValue(const Value& value, std::string_view key) override;
    void encodeBool(bool value, std::string_view key) override;
    void encodeInteger(std::int64_t value, std::string_view key) override;
    void encodeDouble(double value, std::string_view key) override;

    // Ends encoding; later encode calls are programming mistakes. Called by encodedData().
    void finishEncoding();
    // The archive's bytes (finishing encoding first). Empty when error() is set.
    Data encodedData();

    bool containsValueForKey(std::string_view key) const override;
    Value decodeValue(std::string_view key) override;

    void failWithError(ErrorPtr error) override;
    ErrorPtr error() const override;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace vn
