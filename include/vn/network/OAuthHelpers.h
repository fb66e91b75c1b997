// The text and URL helpers that OAuth 1.0 signing is built on, under the ab_ names they have
// always had: RFC 3986 percent-encoding, new unique identifiers for nonces, and the reading of
// a URL query (or a form-encoded body) into a dictionary.
//
// All three keep no state and are safe from any thread.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace vn {

// Names and values of a query string, by name.
using URLQueryDictionary = std::map<std::string, std::string, std::less<>>;

// RFC 3986 percent-encoding of the text's bytes: each byte that is an ASCII letter, a digit,
// "-", ".", "_" or "~" stays as it is; every other byte, "/" and "%" included, becomes "%"
// and two upper-case hexadecimal digits. Non-ASCII characters are encoded byte by byte from
// their UTF-8 form ("é" gives "%C3%A9"); bytes that are not UTF-8 are encoded all the same.
[[nodiscard]] std::string ab_RFC3986EncodedString(std::string_view text);

// A new random (version 4) UUID in its canonical upper-case form,
// "XXXXXXXX-XXXX-4XXX-YXXX-XXXXXXXXXXXX" (36 characters, Y one of 8, 9, A, B).
[[nodiscard]] std::string ab_GUID();

// The parameters of a query string ("a=1&b=x%20y", without the leading "?"):
// - the text is split at every "&"; empty pieces are ignored;
// - a piece is split at its first "=": name before, value after ("k=a=b" gives "a=b"); a
//   piece without "=" is a name with the empty value;
// - name and value are percent-decoded ("+" stays "+"); a piece whose name or value holds a
//   "%" not followed by two hexadecimal digits, or decodes to bytes that are not UTF-8, is
//   ignored, as is a piece whose name is empty;
// - a later piece with the same name replaces the earlier one.
[[nodiscard]] URLQueryDictionary ab_parseURLQueryString(std::string_view query);

}  // namespace vn
