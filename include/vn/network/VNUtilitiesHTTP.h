// The HTTP members of VNUtilities: the warnings of a "Warning" response header, query strings
// written from parameters, and the error a web service describes in a JSON response body.
//
// Every function keeps no state and is safe from any thread.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vn/network/VNHTTPWarningHeader.h"
#include "vn/platform/Error.h"
#include "vn/platform/Value.h"

namespace vn::VNUtilities {

using VNHTTPWarningHeaders = std::vector<std::shared_ptr<VNHTTPWarningHeader>>;

// The warnings of a "Warning" header value, in their order, read as RFC 7234 writes them:
// - entries are separated by commas outside double quotes, so a comma inside a quoted text
//   or date does not separate; empty entries are skipped;
// - each entry, trimmed of white space and line ends, is a code, white space, an agent,
//   white space and a quoted text, optionally followed by white space and a quoted date,
//   which is not checked and is ignored;
// - the code is everything up to the first white space, and must read whole as an integer
//   with vn::Scanner (an optional sign and digits: "199", not "19x" or "1.5");
// - the agent is everything up to the next white space, and must hold no '"';
// - a quoted text or date runs from '"' to the next '"' not escaped by a backslash;
//   backslash escapes in the text are removed ("\"" gives '"').
// Absent, never a partial list, for an absent value, a value without any entry (empty or
// blank) and a value with any entry that does not read so (unterminated quote, missing
// agent or text, anything after the date).
[[nodiscard]] std::optional<VNHTTPWarningHeaders> httpWarningsFromHeader(
    std::optional<std::string_view> value);

// A query string ("a=1&b=x%20y", without "?") of the pairs, names and values RFC 3986-encoded
// as ab_RFC3986EncodedString() does. sorted: in byte order of the names, equal names by
// value; otherwise in the given order. No pairs give "".
[[nodiscard]] std::string urlParametersStringFrom(
    const std::vector<std::pair<std::string, std::string>>& parameters, bool sorted);
// The same for a dictionary, whose values are written as VNUtilities::stringFromObject()
// writes them (texts as they are, numbers by their description); nil and the null marker give
// the empty value. A dictionary keeps its entries in name order, so both values of sorted
// give the same text.
[[nodiscard]] std::string urlParametersStringFrom(const Value::Dictionary& parameters, bool sorted);

// The error a web service reports in a JSON response body such as
// {"error": 401, "message": "Token expired"}: when the body is a JSON object whose "message"
// is a non-empty text, an error of domain "vn" whose localized description is that text and
// whose code is the integer that VNUtilities::integerNumberFromValue() reads from "error"
// (0 when it reads none: a text such as "invalid_token", a missing member). Any other body
// (no data, not JSON, not an object, no usable message) gives the default error, "vn" / 0
// without user information.
[[nodiscard]] ErrorPtr errorFromResponseData(const std::optional<Data>& data);

}  // namespace vn::VNUtilities
