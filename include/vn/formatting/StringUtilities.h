// Small text operations the upper layers build messages, XML and file names with: XML entity
// escaping, URL component escaping, trimming, case, searching and splitting.
//
// Texts are UTF-8; positions and lengths are in bytes and always fall on character
// boundaries. Malformed UTF-8 is tolerated (a stray byte counts as one character) and never
// read past its end. Every function is pure and safe from any thread.
//
// Where the model gives an operation two names both are offered. The forms with
// out-parameters live in vn::VNUtilities, with the model's own spelling
// (splitString(byFirstOcurrenceOfString:toLeft:andRigth:)).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vn {

// The platform's compare options with their raw values. Only these take part in searches;
// other bits are ignored.
enum StringCompareOptions : std::uint32_t {
    NSCaseInsensitiveSearch = 1,  // compare with simple case folding ("A" matches "a")
    NSLiteralSearch = 2,          // exact code points (always the case here)
    NSBackwardsSearch = 4,        // the last occurrence instead of the first
    NSAnchoredSearch = 8,         // only at the start (with backwards: only at the end)
};

// ---- XML -------------------------------------------------------------------------------
// Replaces, in this order and literally: "&" → "&amp;", '"' → "&quot;", "'" → "&#x27;",
// ">" → "&gt;", "<" → "&lt;". Escaping "&" first keeps the later entities from being
// escaped twice.
std::string xmlSimpleEscapeString(std::string_view text);
std::string xmlSimpleEscape(std::string_view text);
// Replaces, in this order: "&amp;" → "&", "&quot;" → '"', "&#x27;", "&#x39;", "&#x92;" and
// "&#x96;" → "'", "&gt;" → ">", "&lt;" → "<". "&amp;" goes first, so a text escaped twice
// (&amp;lt;) comes back fully unescaped (<). The three odd entities are what some servers emit
// for quote marks; they are read back as a plain apostrophe.
std::string xmlSimpleUnescapeString(std::string_view text);
std::string xmlSimpleUnescape(std::string_view text);

// ---- URL components --------------------------------------------------------------------
// Percent-encodes every byte except the unreserved characters A-Z a-z 0-9 "-" "." "_" "~"
// (upper-case hex digits: "a b&c" → "a%20b%26c").
std::string urlSimpleEscape(std::string_view text);
// Decodes every "%" followed by two hex digits; a "%" not followed by two hex digits is kept
// as it is, and "+" stays "+". Absent when the decoded bytes are not UTF-8.
std::optional<std::string> urlSimpleUnescape(std::string_view text);

// ---- Trimming and case -------------------------------------------------------------------
// Remove the white space (Unicode White_Space: blanks, tabs, line ends, no-break spaces, ...)
// at the start, respectively at the end.
std::string ltrim(std::string_view text);
std::string rtrim(std::string_view text);

// The first character in upper case and the rest in lower case ("hELLO wORLD" →
// "Hello world"), with the full Unicode mappings ("ßx" → "SSx").
std::string vnStringWithOnlyFirstLetterCapitalized(std::string_view text);
std::string vnOnlyFirstLetterCapitalized(std::string_view text);

// Equality under full Unicode case folding ("Straße" equals "STRASSE").
bool vnCaseInsensitiveEquals(std::string_view text, std::string_view other);

// ---- Searching and splitting -------------------------------------------------------------
// A found range, in bytes.
struct StringRange {
    std::size_t location = 0;
    std::size_t length = 0;
    bool operator==(const StringRange&) const = default;
};

// The range of the first occurrence of target (the last one with NSBackwardsSearch);
// absent when there is none or when target is empty.
std::optional<StringRange> vnRangeOfString(std::string_view text, std::string_view target,
                                           std::uint32_t options = 0);

// The text before the first occurrence of target; the whole text when there is none.
std::string vnStringUpToFirstOccurrenceOfString(std::string_view text, std::string_view target);

// The number of non-overlapping occurrences, counted from the start ("aaa" holds "aa" once);
// 0 for an empty target.
std::size_t vnNumberOfOccurrencesOfString(std::string_view text, std::string_view target);

// The parts before and after one occurrence of a separator.
struct StringSplit {
    std::string left;
    std::string right;
    bool operator==(const StringSplit&) const = default;
};

// Splits at the occurrence the options select (the first one; the last one with
// NSBackwardsSearch). Absent when the separator does not occur (or is empty).
std::optional<StringSplit> vnSplitString(std::string_view text, std::string_view separator,
                                         std::uint32_t options = 0);
std::optional<StringSplit> vnSplit(std::string_view text, std::string_view separator,
                                   std::uint32_t options = 0);
std::optional<StringSplit> vnSplitStringByFirstOccurrenceOfString(std::string_view text,
                                                                  std::string_view separator,
                                                                  std::uint32_t options = 0);
std::optional<StringSplit> vnSplitStringByLastOccurrenceOfString(std::string_view text,
                                                                 std::string_view separator,
                                                                 std::uint32_t options = 0);

// Splits at every separator that is not preceded by the escape text; an escape that
// precedes a separator is removed, so "a,b\,c" with "," and "\" gives "a" and "b,c". An
// escape elsewhere stays. An empty separator gives the whole text as the one part; an empty
// escape escapes nothing.
std::vector<std::string> vnSeparateStringWithSeparator(std::string_view text,
                                                       std::string_view separator,
                                                       std::string_view escapeString);

namespace VNUtilities {

// Splits text at the first occurrence of separator: true and the two parts through the
// out-parameters (each may be null); false and the out-parameters untouched when the
// separator does not occur.
bool splitString(std::string_view text, std::string_view byFirstOcurrenceOfString,
                 std::string* toLeft, std::string* andRigth);
bool splitStringByFirstOcurrenceOfString(std::string_view text, std::string_view separator,
                                         std::string* toLeft, std::string* andRigth);
// The same at the last occurrence.
bool splitStringByLastOcurrenceOfString(std::string_view text, std::string_view separator,
                                        std::string* toLeft, std::string* andRigth);
// The same at the occurrence that the compare options select.
bool splitString(std::string_view text, std::string_view separator, std::uint32_t withOptions,
                 std::string* toLeft, std::string* andRigth);

}  // namespace VNUtilities
}  // namespace vn
