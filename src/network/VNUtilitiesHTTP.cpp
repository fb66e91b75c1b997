#include "vn/network/VNUtilitiesHTTP.h"

#include <algorithm>
#include <cstdint>

#include "vn/errors/NSErrorVNFoundation.h"
#include "vn/network/OAuthHelpers.h"
#include "vn/platform/Scanner.h"
#include "vn/values/JSON.h"
#include "vn/values/ValueCoercion.h"

namespace vn::VNUtilities {
namespace {

// The pieces of a header value between the commas that stand outside quoted strings (inside
// one, a backslash escapes the next character); absent when a quoted string is not closed.
std::optional<std::vector<std::string_view>> entriesBetweenCommas(std::string_view value) {
    std::vector<std::string_view> entries;
    bool quoted = false;
    std::size_t start = 0;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char c = value[i];
        if (quoted && c == '\\') {
            ++i;
        } else if (c == '"') {
            quoted = !quoted;
        } else if (c == ',' && !quoted) {
            entries.push_back(value.substr(start, i - start));
            start = i + 1;
        }
    }
    if (quoted) return std::nullopt;
    entries.push_back(value.substr(start));
    return entries;
}

// The content of the quoted string that starts, after white space, at the scanner's location,
// with its backslash escapes removed; the scanner then stands after the closing quote. Absent
// (the scanner unmoved) when no closed quoted string starts there.
std::optional<std::string> scanQuotedString(Scanner& scanner) {
    const std::size_t before = scanner.scanLocation();
    if (!scanner.scanString("\"")) return std::nullopt;
    const std::string_view text = scanner.string();
    std::string content;
    for (std::size_t i = scanner.scanLocation(); i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            content += text[++i];
        } else if (text[i] == '"') {
            scanner.setScanLocation(i + 1);
            return content;
        } else {
            content += text[i];
        }
    }
    scanner.setScanLocation(before);
    return std::nullopt;
}

std::optional<std::int64_t> wholeInteger(const std::string& text) {
    Scanner scanner(text);
    const std::optional<std::int64_t> integer = scanner.scanInt64();
    if (!integer || !scanner.isAtEnd()) return std::nullopt;
    return integer;
}

// One entry (code, agent, quoted text, optional quoted date); null when it does not read so.
std::shared_ptr<VNHTTPWarningHeader> warningFromEntry(std::string_view entry) {
    const auto& blanks = Scanner::CharacterSet::whitespacesAndNewlines();
    Scanner scanner(entry);
    const std::optional<std::string> codeText = scanner.scanUpToCharacters(blanks);
    if (!codeText) return nullptr;
    const std::optional<std::int64_t> code = wholeInteger(*codeText);
    const std::optional<std::string> agent = scanner.scanUpToCharacters(blanks);
    if (!code || !agent || agent->find('"') != std::string::npos) return nullptr;
    std::optional<std::string> text = scanQuotedString(scanner);
    if (!text) return nullptr;
    const bool dateOrEnd = scanner.isAtEnd() || (scanQuotedString(scanner) && scanner.isAtEnd());
    if (!dateOrEnd) return nullptr;
    return std::make_shared<VNHTTPWarningHeader>(*code, *agent, std::move(*text));
}

bool isBlank(std::string_view entry) {
    return Scanner(entry).isAtEnd();
}

}  // namespace

std::optional<VNHTTPWarningHeaders> httpWarningsFromHeader(std::optional<std::string_view> value) {
    if (!value) return std::nullopt;
    const std::optional<std::vector<std::string_view>> entries = entriesBetweenCommas(*value);
    if (!entries) return std::nullopt;
    VNHTTPWarningHeaders warnings;
    for (const std::string_view entry : *entries) {
        if (isBlank(entry)) continue;
        std::shared_ptr<VNHTTPWarningHeader> warning = warningFromEntry(entry);
        if (!warning) return std::nullopt;
        warnings.push_back(std::move(warning));
    }
    if (warnings.empty()) return std::nullopt;
    return warnings;
}

std::string urlParametersStringFrom(
    const std::vector<std::pair<std::string, std::string>>& parameters, bool sorted) {
    std::vector<const std::pair<std::string, std::string>*> order;
    order.reserve(parameters.size());
    for (const auto& pair : parameters) order.push_back(&pair);
    if (sorted) {
        std::stable_sort(order.begin(), order.end(),
                         [](const auto* left, const auto* right) { return *left < *right; });
    }
    std::string text;
    for (const auto* pair : order) {
        if (!text.empty()) text += '&';
        text += ab_RFC3986EncodedString(pair->first);
        text += '=';
        text += ab_RFC3986EncodedString(pair->second);
    }
    return text;
}

std::string urlParametersStringFrom(const Value::Dictionary& parameters, bool sorted) {
    std::vector<std::pair<std::string, std::string>> pairs;
    pairs.reserve(parameters.size());
    for (const auto& [name, value] : parameters)
        pairs.emplace_back(name, stringFromObject(value).value_or(std::string()));
    return urlParametersStringFrom(pairs, sorted);
}

ErrorPtr errorFromResponseData(const std::optional<Data>& data) {
    if (!data) return defaultVNError();
    const Value body = jsonObject(*data, Value::Kind::dictionary);
    const std::string* message = body["message"].string();
    if (!message || message->empty()) return defaultVNError();
    return defaultVNErrorWithCode(integerFromValue(body["error"], 0), *message);
}

}  // namespace vn::VNUtilities
