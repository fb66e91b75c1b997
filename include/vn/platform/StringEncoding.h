// Text encodings: the platform's string-encoding values, the encoding named by a charset
// (as HTTP and XML declare them: "iso-8859-1", "Shift_JIS", "windows-1252", "utf-16le"), and
// conversion of UTF-8 text to and from an encoding's bytes.
//
// StringEncoding values are the platform's raw values, so they can be stored and exchanged
// with the mobile platform. Encodings the platform names only through its lower-level
// encodings (the rest of the ISO 8859 family, some Windows code pages) have the value
// 0x80000000 + that encoding's number, as the platform computes them.
// Every function is pure and safe from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/Value.h"

namespace vn {

using StringEncoding = std::uint64_t;

inline constexpr StringEncoding NSASCIIStringEncoding = 1;
inline constexpr StringEncoding NSNEXTSTEPStringEncoding = 2;
inline constexpr StringEncoding NSJapaneseEUCStringEncoding = 3;
inline constexpr StringEncoding NSUTF8StringEncoding = 4;
inline constexpr StringEncoding NSISOLatin1StringEncoding = 5;
inline constexpr StringEncoding NSSymbolStringEncoding = 6;
inline constexpr StringEncoding NSNonLossyASCIIStringEncoding = 7;
inline constexpr StringEncoding NSShiftJISStringEncoding = 8;
inline constexpr StringEncoding NSISOLatin2StringEncoding = 9;
inline constexpr StringEncoding NSUnicodeStringEncoding = 10;
inline constexpr StringEncoding NSUTF16StringEncoding = NSUnicodeStringEncoding;
inline constexpr StringEncoding NSWindowsCP1251StringEncoding = 11;
inline constexpr StringEncoding NSWindowsCP1252StringEncoding = 12;
inline constexpr StringEncoding NSWindowsCP1253StringEncoding = 13;
inline constexpr StringEncoding NSWindowsCP1254StringEncoding = 14;
inline constexpr StringEncoding NSWindowsCP1250StringEncoding = 15;
inline constexpr StringEncoding NSISO2022JPStringEncoding = 21;
inline constexpr StringEncoding NSMacOSRomanStringEncoding = 30;
inline constexpr StringEncoding NSUTF16BigEndianStringEncoding = 0x90000100;
inline constexpr StringEncoding NSUTF16LittleEndianStringEncoding = 0x94000100;
inline constexpr StringEncoding NSUTF32StringEncoding = 0x8c000100;
inline constexpr StringEncoding NSUTF32BigEndianStringEncoding = 0x98000100;
inline constexpr StringEncoding NSUTF32LittleEndianStringEncoding = 0x9c000100;

// The text's bytes in the encoding; absent when a character cannot be represented in it,
// when the text is not UTF-8, or for an encoding that cannot be converted here (unknown
// values, and ISO 8859-16 where the ICU data lacks it, as Debian's does). UTF-16 and UTF-32
// without an endianness start with a byte-order mark and use the host's byte order, as the
// platform writes them.
[[nodiscard]] std::optional<Data> dataUsingEncoding(std::string_view text, StringEncoding encoding);

// The bytes read in the encoding, as UTF-8; absent when they are not valid in the encoding
// or for an encoding that cannot be converted here. UTF-16 and UTF-32 without an endianness
// honour a leading byte-order mark (big-endian without one).
[[nodiscard]] std::optional<std::string> stringFromData(const Data& data, StringEncoding encoding);

// The preferred charset name of an encoding ("utf-8", "iso-8859-1", "windows-1252",
// "shift_jis", ...); absent for an unknown encoding.
[[nodiscard]] std::optional<std::string> charsetNameForEncoding(StringEncoding encoding);

namespace VNUtilities {

// The encoding a charset names, compared without regard to case and surrounding blanks:
// "us-ascii"/"ascii", "utf-8"/"utf8", "iso-8859-1" to "iso-8859-16" (also "latin1"),
// "euc-jp", "shift_jis"/"sjis", "iso-2022-jp", the "windows-" code pages 874 and 1250 to
// 1258 (also "cp1252"), "macintosh", "utf-16", "utf-16be", "utf-16le", "utf-32", "utf-32be",
// "utf-32le" (the UTF names also with a " bom" suffix). Absent for any other name.
[[nodiscard]] std::optional<StringEncoding> stringEncoding(std::string_view charset);
[[nodiscard]] std::optional<StringEncoding> stringEncodingFromCharsetString(
    std::string_view charset);

}  // namespace VNUtilities
}  // namespace vn
