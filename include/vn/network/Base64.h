// Base64 text of bytes (RFC 4648: the standard alphabet "A-Z a-z 0-9 + /" with "=" padding,
// no line breaks), as HTTP headers, JSON payloads and the OAuth signature carry binary data.
//
// Decoding is strict, so that every byte sequence has exactly one text and a damaged text is
// never taken for a shorter or different one: white space, line breaks, characters outside the
// alphabet, a length that is not a multiple of four, padding anywhere but at the end, more than
// two padding characters and set bits in the unused low bits of the last character all make
// the text refused. Both directions are pure and safe from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "vn/platform/Value.h"

namespace vn {

// The padded Base64 text of the bytes: "" for no bytes, "Zg==" for "f", "Zm9vYg==" for
// "foob". Never fails.
[[nodiscard]] std::string base64EncodedString(std::span<const std::uint8_t> bytes);

// The bytes a padded Base64 text stands for; absent when the text is not canonical Base64 as
// described above. The empty text gives no bytes (present and empty).
[[nodiscard]] std::optional<Data> dataWithBase64EncodedString(std::string_view text);

}  // namespace vn
