#include "vn/wkt/WKTString.h"

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <memory>

#include "WKTMembers.h"
#include "WKTSplit.h"
#include "platform/internal/RegexLimits.h"

namespace vn {
namespace {

constexpr std::string_view kNilReason = "Parameter input is nil";

std::vector<std::string> owned(std::string_view text, wkt_internal::Splitter splitter) {
    std::vector<std::string> pieces;
    wkt_internal::forEachPiece(text, splitter, [&](std::string_view piece) {
        pieces.emplace_back(piece);
        return true;
    });
    return pieces;
}

std::string_view required(std::optional<std::string_view> input, std::string_view exceptionName) {
    if (!input) wkt_internal::raise(exceptionName, kNilReason);
    return *input;
}

std::optional<wkt_internal::Splitter> handWrittenSplitter(std::string_view regExp) {
    if (regExp == WKTString::spacesExpression) return wkt_internal::Splitter::spaces;
    if (regExp == WKTString::commasExpression) return wkt_internal::Splitter::commas;
    if (regExp == WKTString::parentCommasExpression) return wkt_internal::Splitter::parentCommas;
    if (regExp == WKTString::doubleParentCommasExpression)
        return wkt_internal::Splitter::doubleParentCommas;
    return std::nullopt;
}

std::vector<std::string> splitWithICU(std::string_view text, std::string_view regExp) {
    constexpr std::string_view kExceptionName = "WKTString [splitString]";
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString pattern =
        icu::UnicodeString::fromUTF8(icu::StringPiece(regExp.data(), regExp.size()));
    std::unique_ptr<icu::RegexPattern> compiled(icu::RegexPattern::compile(pattern, 0, status));
    if (U_FAILURE(status)) wkt_internal::raise(kExceptionName, "Parameter regExp is invalid");
    const icu::UnicodeString input =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), text.size()));
    const platform_internal::LimitedRegexMatcher matcher(
        std::unique_ptr<icu::RegexMatcher>(compiled->matcher(input, status)),
        static_cast<std::size_t>(input.length()));
    if (U_FAILURE(status) || !matcher)
        wkt_internal::raise(kExceptionName, "Parameter regExp is invalid");
    // A replacement that reaches a matching limit fails like an expression that is invalid.
    const std::optional<icu::UnicodeString> replaced =
        platform_internal::replacingAllMatches(*matcher, icu::UnicodeString(u"[SPLIT]"));
    if (!replaced) wkt_internal::raise(kExceptionName, "Parameter regExp is invalid");
    const icu::UnicodeString& marked = *replaced;

    std::vector<std::string> pieces;
    const icu::UnicodeString marker(u"[SPLIT]");
    int32_t start = 0;
    while (start <= marked.length()) {
        int32_t end = marked.indexOf(marker, start);
        if (end < 0) end = marked.length();
        if (end > start) {
            std::string piece;
            marked.tempSubStringBetween(start, end).toUTF8String(piece);
            pieces.push_back(std::move(piece));
        }
        start = end + marker.length();
    }
    return pieces;
}

}  // namespace

std::vector<std::string> WKTString::splitSpacesNSString(std::optional<std::string_view> input) {
    return owned(required(input, "WKTString [splitString]"), wkt_internal::Splitter::spaces);
}

std::vector<std::string> WKTString::splitCommasNSString(std::optional<std::string_view> input) {
    return owned(required(input, "WKTString [splitString]"), wkt_internal::Splitter::commas);
}

std::vector<std::string> WKTString::splitParentCommasNSString(
    std::optional<std::string_view> input) {
    return owned(required(input, "WKTString [splitParentCommasNSString]"),
                 wkt_internal::Splitter::parentCommas);
}

std::vector<std::string> WKTString::splitDoubleParentCommasNSString(
    std::optional<std::string_view> input) {
    return owned(required(input, "WKTString [splitDoubleParentCommasNSString]"),
                 wkt_internal::Splitter::doubleParentCommas);
}

std::vector<std::string> WKTString::splitString(std::optional<std::string_view> input,
                                                std::string_view regExp) {
    const std::string_view text = required(input, "WKTString [splitString]");
    if (const auto splitter = handWrittenSplitter(regExp)) return owned(text, *splitter);
    return splitWithICU(text, regExp);
}

}  // namespace vn
