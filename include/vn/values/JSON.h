// JSON text and vn::Value: decoding JSON with a check of the result's kind, and writing a Value
// as compact or pretty (tab-indented) JSON for network traces and the log.
//
// Decoding maps objects to dictionaries, arrays to arrays, null to the null marker, true and
// false to boolean numbers, integers to signed-integer numbers (unsigned above INT64_MAX, double
// beyond UINT64_MAX) and every other number to a double. Both directions are safe from any
// thread and keep no state.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/Error.h"
#include "vn/platform/Value.h"

namespace vn {

// The platform's error code for text that is not in the expected format, used with
// NSCocoaErrorDomain for JSON that does not parse.
inline constexpr std::int64_t kJSONReadCorruptErrorCode = 3840;
// The user-information key ("NSDebugDescription", the platform's key for developer-facing
// detail) under which a JSON error carries what went wrong.
inline constexpr std::string_view kJSONErrorDetailKey = "NSDebugDescription";
// Documents nested deeper than this (arrays and objects inside each other) are refused when
// decoding, so that no input can exhaust the stack.
inline constexpr std::size_t kJSONMaximumDepth = 512;

enum class JSONWritingStyle : std::uint8_t {
    compact,  // no white space at all
    pretty,   // one member per line, indented by one tab per level, ending with a line end
};

// The JSON text of any value; never fails. Dictionaries are written with their keys in the
// dictionary's (sorted) order. Numbers are written exactly: booleans as true/false, integers in
// full, floating values with the shortest digits that read back as the same value ("0.1",
// "1e+20"), decimals in plain notation. What JSON cannot hold is written as follows: nil and
// non-finite numbers (NaN, infinities, the decimal NaN) as null; data, dates and objects as the
// string of their standard description; invalid UTF-8 in texts and keys as U+FFFD. Containers
// nested beyond the generator's depth limit (127 levels) are written as a string holding their
// own complete compact JSON (however deep they go: no strings within strings), so the text
// grows in proportion to the value whatever its depth.
[[nodiscard]] std::string jsonString(const Value& value,
                                     JSONWritingStyle style = JSONWritingStyle::compact);

namespace VNUtilities {

// Decodes one JSON value from UTF-8 text (a leading byte-order mark is skipped; top-level
// scalars are accepted; for duplicate keys in an object the last one wins) and checks its kind.
// ofClass absent accepts any kind; otherwise the result must be of that kind (Kind::number
// includes booleans). On failure answers nil and, when error is not null, sets *error:
// - text that is not JSON (also the empty text, text that is not well-formed UTF-8 anywhere:
//   overlong forms and encoded surrogates included, a string escaping half of a surrogate pair
//   alone ("\ud800", "\udc00", "\ud800\u0041"), trailing content, nesting beyond
//   kJSONMaximumDepth): NSCocoaErrorDomain / kJSONReadCorruptErrorCode, with the
//   platform's localized description and the parser's message under kJSONErrorDetailKey;
// - a value of another kind: VNErrorDomain / 0 with VNErrUserInfoKey = VNErrCodeInvalidParameter
//   and a kJSONErrorDetailKey naming both kinds.
// On success *error is set to null.
[[nodiscard]] Value jsonObject(std::string_view text,
                               std::optional<Value::Kind> ofClass = std::nullopt,
                               ErrorPtr* error = nullptr);
[[nodiscard]] Value jsonObject(const Data& data, std::optional<Value::Kind> ofClass = std::nullopt,
                               ErrorPtr* error = nullptr);

}  // namespace VNUtilities
}  // namespace vn
