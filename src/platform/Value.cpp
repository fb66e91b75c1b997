#include "vn/platform/Value.h"

#include <cstdio>
#include <functional>

#include "platform/internal/HashCombine.h"
#include "platform/internal/Utf8.h"

namespace vn {
namespace {

using platform_internal::hashCombine;

const ObjectPtr kNoObject;
const Value kNil;

bool isPlainWord(std::string_view text) {
    if (text.empty()) return false;
    for (const unsigned char c : text) {
        const bool alphanumeric =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (!alphanumeric && c != '_' && c != '$' && c != '.' && c != '/' && c != ':' && c != '-' &&
            c != '+') {
            return false;
        }
    }
    return true;
}

// The code point at text[i]; a byte that starts no well-formed sequence is taken as itself
// (Latin-1), so that nothing of a malformed text is lost from its description.
char32_t nextCodePoint(std::string_view text, std::size_t& i) {
    const platform_internal::Utf8Step step = platform_internal::decodeUtf8(text, i);
    i += step.length;
    return step.codePoint;
}

// A string inside a collection's description: bare when it is a plain word, otherwise quoted
// with C escapes and non-ASCII characters as \Uxxxx UTF-16 units.
void appendQuotedIfNeeded(std::string& out, std::string_view text) {
    if (isPlainWord(text)) {
        out += text;
        return;
    }
    out += '"';
    for (std::size_t i = 0; i < text.size();) {
        const char32_t c = nextCodePoint(text, i);
        char buffer[16];
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\t':
                out += "\\t";
                break;
            case '\r':
                out += "\\r";
                break;
            default:
                if (c < 0x80) {
                    out += static_cast<char>(c);
                } else if (c < 0x10000) {
                    std::snprintf(buffer, sizeof buffer, "\\U%04x", static_cast<unsigned>(c));
                    out += buffer;
                } else {
                    const char32_t offset = c - 0x10000;
                    std::snprintf(buffer, sizeof buffer, "\\U%04x\\U%04x",
                                  static_cast<unsigned>(0xD800 + (offset >> 10)),
                                  static_cast<unsigned>(0xDC00 + (offset & 0x3FF)));
                    out += buffer;
                }
        }
    }
    out += '"';
}

void appendDataDescription(std::string& out, const Data& data) {
    out += "{length = " + std::to_string(data.size()) + ", bytes = 0x";
    char hex[3];
    const bool abbreviated = data.size() > 24;
    for (std::size_t i = 0; i < data.size(); ++i) {
        if (abbreviated && i == 16) {
            out += " ... ";
            i = data.size() - 8;
        }
        std::snprintf(hex, sizeof hex, "%02x", data[i]);
        out += hex;
    }
    out += '}';
}

}  // namespace

Value Value::null() {
    Value value;
    value.storage_ = NullMarker{};
    return value;
}

Value::Value(std::string text) : storage_(std::make_shared<const std::string>(std::move(text))) {}
Value::Value(Data data) : storage_(std::make_shared<const Data>(std::move(data))) {}
Value::Value(Array array) : storage_(std::make_shared<const Array>(std::move(array))) {}
Value::Value(Dictionary dictionary)
    : storage_(std::make_shared<const Dictionary>(std::move(dictionary))) {}

const ObjectPtr& Value::object() const {
    const auto* object = std::get_if<ObjectPtr>(&storage_);
    return object ? *object : kNoObject;
}

const Value& Value::operator[](std::string_view key) const {
    const Dictionary* entries = dictionary();
    if (!entries) return kNil;
    const auto found = entries->find(key);
    return found == entries->end() ? kNil : found->second;
}

std::optional<bool> Value::boolValue() const {
    if (const Number* n = number()) return n->boolValue();
    if (const std::string* text = string()) return textBoolValue(*text);
    if (const ObjectPtr& o = object()) return o->boolValue();
    return std::nullopt;
}

std::string Value::description() const {
    std::string out;
    describe(out, 0);
    return out;
}

void Value::describe(std::string& out, int indent) const {
    const std::string innerIndent(static_cast<std::size_t>(indent + 4), ' ');
    const std::string closingIndent(static_cast<std::size_t>(indent), ' ');
    const auto describeElement = [&](const Value& element) {
        if (const std::string* text = element.string()) {
            appendQuotedIfNeeded(out, *text);
        } else if (element.isNull()) {
            appendQuotedIfNeeded(out, "<null>");
        } else {
            element.describe(out, indent + 4);
        }
    };
    switch (kind()) {
        case Kind::nil:
            out += "nil";
            break;
        case Kind::null:
            out += "<null>";
            break;
        case Kind::number:
            out += number()->description();
            break;
        case Kind::string:
            out += *string();
            break;
        case Kind::data:
            appendDataDescription(out, *data());
            break;
        case Kind::date:
            out += date()->description();
            break;
        case Kind::object:
            out += object()->description();
            break;
        case Kind::array: {
            out += "(\n";
            const Array& elements = *array();
            for (std::size_t i = 0; i < elements.size(); ++i) {
                out += innerIndent;
                describeElement(elements[i]);
                out += i + 1 < elements.size() ? ",\n" : "\n";
            }
            out += closingIndent + ")";
            break;
        }
        case Kind::dictionary: {
            out += "{\n";
            for (const auto& [key, element] : *dictionary()) {
                out += innerIndent;
                appendQuotedIfNeeded(out, key);
                out += " = ";
                describeElement(element);
                out += ";\n";
            }
            out += closingIndent + "}";
            break;
        }
    }
}

bool Value::operator==(const Value& other) const {
    if (kind() != other.kind()) return false;
    switch (kind()) {
        case Kind::nil:
        case Kind::null:
            return true;
        case Kind::number:
            return *number() == *other.number();
        case Kind::string:
            return *string() == *other.string();
        case Kind::data:
            return *data() == *other.data();
        case Kind::date:
            return *date() == *other.date();
        case Kind::array:
            return *array() == *other.array();
        case Kind::dictionary:
            return *dictionary() == *other.dictionary();
        case Kind::object:
            return object()->isEqual(*other.object());
    }
    return false;
}

std::size_t Value::hash() const {
    switch (kind()) {
        case Kind::nil:
            return 0;
        case Kind::null:
            return 1;
        case Kind::number:
            return number()->hash();
        case Kind::string:
            return std::hash<std::string>{}(*string());
        case Kind::data:
            return std::hash<std::string_view>{}(
                std::string_view(reinterpret_cast<const char*>(data()->data()), data()->size()));
        case Kind::date:
            return std::hash<double>{}(date()->timeIntervalSinceReferenceDate);
        case Kind::array: {
            std::size_t seed = array()->size();
            for (const Value& element : *array()) seed = hashCombine(seed, element.hash());
            return seed;
        }
        case Kind::dictionary: {
            std::size_t seed = dictionary()->size();
            for (const auto& [key, element] : *dictionary()) {
                seed = hashCombine(seed, std::hash<std::string>{}(key));
                seed = hashCombine(seed, element.hash());
            }
            return seed;
        }
        case Kind::object:
            return object()->hash();
    }
    return 0;
}

bool textBoolValue(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\n' ||
                               text[i] == '\r' || text[i] == '\f' || text[i] == '\v')) {
        ++i;
    }
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
    while (i < text.size() && text[i] == '0') ++i;
    if (i == text.size()) return false;
    const char c = text[i];
    return c == 'Y' || c == 'y' || c == 'T' || c == 't' || (c >= '1' && c <= '9');
}

}  // namespace vn
