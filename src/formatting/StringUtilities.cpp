#include "vn/formatting/StringUtilities.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <functional>
#include <span>
#include <utility>

#include "formatting/IcuSupport.h"
#include "platform/internal/PercentEncoding.h"
#include "platform/internal/Utf8.h"

namespace vn {
namespace {

using formatting_internal::toUnicode;
using formatting_internal::toUtf8;

using Replacement = std::pair<std::string_view, std::string_view>;

std::string replacingAll(std::string_view text, std::span<const Replacement> replacements) {
    std::string result(text);
    for (const auto& [from, to] : replacements) {
        std::string next;
        next.reserve(result.size());
        std::size_t start = 0;
        for (std::size_t at = result.find(from); at != std::string::npos;
             at = result.find(from, start)) {
            next.append(result, start, at - start);
            next.append(to);
            start = at + from.size();
        }
        next.append(result, start);
        result = std::move(next);
    }
    return result;
}

// One code point of a text, with where it lies. Malformed bytes are code points of their own.
struct CodePoint {
    UChar32 value;
    std::size_t offset;
    std::size_t length;
};

std::vector<CodePoint> decode(std::string_view text) {
    std::vector<CodePoint> points;
    points.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        const platform_internal::Utf8Step step = platform_internal::decodeUtf8(text, offset);
        // A malformed byte never equals a real character: keep it apart by its byte value.
        const UChar32 value = step.wellFormed ? static_cast<UChar32>(step.codePoint)
                                              : -1 - static_cast<UChar32>(step.codePoint);
        points.push_back({value, offset, step.length});
        offset += step.length;
    }
    return points;
}

UChar32 folded(UChar32 c, bool caseInsensitive) {
    return caseInsensitive && c >= 0 ? u_foldCase(c, U_FOLD_CASE_DEFAULT) : c;
}

bool matchesAt(const std::vector<CodePoint>& text, std::size_t at,
               const std::vector<CodePoint>& target, bool caseInsensitive) {
    for (std::size_t i = 0; i < target.size(); ++i) {
        if (folded(text[at + i].value, caseInsensitive) != folded(target[i].value, caseInsensitive))
            return false;
    }
    return true;
}

StringRange rangeOf(const std::vector<CodePoint>& text, std::size_t at, std::size_t count) {
    const CodePoint& last = text[at + count - 1];
    return {text[at].offset, last.offset + last.length - text[at].offset};
}

bool isWhiteSpace(const CodePoint& point) {
    return point.value >= 0 && u_isUWhiteSpace(point.value);
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

StringSplit splitAround(std::string_view text, const StringRange& range) {
    return {std::string(text.substr(0, range.location)),
            std::string(text.substr(range.location + range.length))};
}

bool deliverSplit(const std::optional<StringSplit>& split, std::string* left, std::string* right) {
    if (!split) return false;
    if (left) *left = split->left;
    if (right) *right = split->right;
    return true;
}

}  // namespace

std::string xmlSimpleEscapeString(std::string_view text) {
    static constexpr std::array<Replacement, 5> kEscapes{{
        {"&", "&amp;"},
        {"\"", "&quot;"},
        {"'", "&#x27;"},
        {">", "&gt;"},
        {"<", "&lt;"},
    }};
    return replacingAll(text, kEscapes);
}

std::string xmlSimpleEscape(std::string_view text) {
    return xmlSimpleEscapeString(text);
}

std::string xmlSimpleUnescapeString(std::string_view text) {
    static constexpr std::array<Replacement, 8> kUnescapes{{
        {"&amp;", "&"},
        {"&quot;", "\""},
        {"&#x27;", "'"},
        {"&#x39;", "'"},
        {"&#x92;", "'"},
        {"&#x96;", "'"},
        {"&gt;", ">"},
        {"&lt;", "<"},
    }};
    return replacingAll(text, kUnescapes);
}

std::string xmlSimpleUnescape(std::string_view text) {
    return xmlSimpleUnescapeString(text);
}

std::string urlSimpleEscape(std::string_view text) {
    std::string result;
    platform_internal::appendPercentEncoded(result, text);
    return result;
}

std::optional<std::string> urlSimpleUnescape(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && hexValue(text[i + 1]) >= 0 &&
            hexValue(text[i + 2]) >= 0) {
            result += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
            i += 2;
        } else {
            result += text[i];
        }
    }
    if (!platform_internal::isValidUtf8(result)) return std::nullopt;
    return result;
}

std::string ltrim(std::string_view text) {
    for (const CodePoint& point : decode(text)) {
        if (!isWhiteSpace(point)) return std::string(text.substr(point.offset));
    }
    return {};
}

std::string rtrim(std::string_view text) {
    const std::vector<CodePoint> points = decode(text);
    for (auto it = points.rbegin(); it != points.rend(); ++it) {
        if (!isWhiteSpace(*it)) return std::string(text.substr(0, it->offset + it->length));
    }
    return {};
}

std::string vnStringWithOnlyFirstLetterCapitalized(std::string_view text) {
    const std::vector<CodePoint> points = decode(text);
    if (points.empty()) return {};
    icu::UnicodeString first = toUnicode(text.substr(0, points.front().length));
    icu::UnicodeString rest = toUnicode(text.substr(points.front().length));
    first.toUpper(icu::Locale::getRoot());
    rest.toLower(icu::Locale::getRoot());
    return toUtf8(first) + toUtf8(rest);
}

std::string vnOnlyFirstLetterCapitalized(std::string_view text) {
    return vnStringWithOnlyFirstLetterCapitalized(text);
}

bool vnCaseInsensitiveEquals(std::string_view text, std::string_view other) {
    return toUnicode(text).caseCompare(toUnicode(other), U_FOLD_CASE_DEFAULT) == 0;
}

std::optional<StringRange> vnRangeOfString(std::string_view text, std::string_view target,
                                           std::uint32_t options) {
    if (target.empty()) return std::nullopt;
    const bool caseInsensitive = (options & NSCaseInsensitiveSearch) != 0;
    const bool backwards = (options & NSBackwardsSearch) != 0;
    const bool anchored = (options & NSAnchoredSearch) != 0;
    if (!caseInsensitive) {
        if (anchored) {
            if (backwards ? text.ends_with(target) : text.starts_with(target)) {
                return StringRange{backwards ? text.size() - target.size() : 0, target.size()};
            }
            return std::nullopt;
        }
        const std::size_t at = backwards ? text.rfind(target) : text.find(target);
        if (at == std::string_view::npos) return std::nullopt;
        return StringRange{at, target.size()};
    }
    const std::vector<CodePoint> haystack = decode(text);
    const std::vector<CodePoint> needle = decode(target);
    if (needle.size() > haystack.size()) return std::nullopt;
    const std::size_t lastStart = haystack.size() - needle.size();
    for (std::size_t step = 0; step <= lastStart; ++step) {
        const std::size_t at = backwards ? lastStart - step : step;
        if (matchesAt(haystack, at, needle, true)) return rangeOf(haystack, at, needle.size());
        if (anchored) break;
    }
    return std::nullopt;
}

std::string vnStringUpToFirstOccurrenceOfString(std::string_view text, std::string_view target) {
    const auto range = vnRangeOfString(text, target);
    return std::string(range ? text.substr(0, range->location) : text);
}

std::size_t vnNumberOfOccurrencesOfString(std::string_view text, std::string_view target) {
    if (target.empty()) return 0;
    std::size_t count = 0;
    for (std::size_t at = text.find(target); at != std::string_view::npos;
         at = text.find(target, at + target.size())) {
        ++count;
    }
    return count;
}

std::optional<StringSplit> vnSplitString(std::string_view text, std::string_view separator,
                                         std::uint32_t options) {
    const auto range = vnRangeOfString(text, separator, options);
    if (!range) return std::nullopt;
    return splitAround(text, *range);
}

std::optional<StringSplit> vnSplit(std::string_view text, std::string_view separator,
                                   std::uint32_t options) {
    return vnSplitString(text, separator, options);
}

std::optional<StringSplit> vnSplitStringByFirstOccurrenceOfString(std::string_view text,
                                                                  std::string_view separator,
                                                                  std::uint32_t options) {
    return vnSplitString(text, separator, options & ~static_cast<std::uint32_t>(NSBackwardsSearch));
}

std::optional<StringSplit> vnSplitStringByLastOccurrenceOfString(std::string_view text,
                                                                 std::string_view separator,
                                                                 std::uint32_t options) {
    return vnSplitString(text, separator, options | NSBackwardsSearch);
}

std::vector<std::string> vnSeparateStringWithSeparator(std::string_view text,
                                                       std::string_view separator,
                                                       std::string_view escapeString) {
    std::vector<std::string> parts;
    if (separator.empty()) {
        parts.emplace_back(text);
        return parts;
    }
    std::string current;
    std::size_t start = 0;
    for (std::size_t at = text.find(separator); at != std::string_view::npos;
         at = text.find(separator, start)) {
        std::string_view before = text.substr(start, at - start);
        const bool escaped = !escapeString.empty() && text.substr(0, at).ends_with(escapeString) &&
                             at - start >= escapeString.size();
        if (escaped) {
            before.remove_suffix(escapeString.size());
            current.append(before);
            current.append(separator);
        } else {
            current.append(before);
            parts.push_back(std::move(current));
            current.clear();
        }
        start = at + separator.size();
    }
    current.append(text.substr(start));
    parts.push_back(std::move(current));
    return parts;
}

namespace VNUtilities {

bool splitString(std::string_view text, std::string_view byFirstOcurrenceOfString,
                 std::string* toLeft, std::string* andRigth) {
    return deliverSplit(vnSplitStringByFirstOccurrenceOfString(text, byFirstOcurrenceOfString),
                        toLeft, andRigth);
}

bool splitStringByFirstOcurrenceOfString(std::string_view text, std::string_view separator,
                                         std::string* toLeft, std::string* andRigth) {
    return splitString(text, separator, toLeft, andRigth);
}

bool splitStringByLastOcurrenceOfString(std::string_view text, std::string_view separator,
                                        std::string* toLeft, std::string* andRigth) {
    return deliverSplit(vnSplitStringByLastOccurrenceOfString(text, separator), toLeft, andRigth);
}

bool splitString(std::string_view text, std::string_view separator, std::uint32_t withOptions,
                 std::string* toLeft, std::string* andRigth) {
    return deliverSplit(vnSplitString(text, separator, withOptions), toLeft, andRigth);
}

}  // namespace VNUtilities
}  // namespace vn
