#include "vn/values/JSON.h"

#include <yajl/yajl_gen.h>
#include <yajl/yajl_parse.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/internal/Utf8.h"
#include "vn/platform/FatalError.h"
#include "vn/platform/Scanner.h"

namespace vn {
namespace {

// ---- Reading

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kNotInCorrectFormat =
    "The data couldn’t be read because it isn’t in the correct format.";

std::string_view kindName(Value::Kind kind) {
    switch (kind) {
        case Value::Kind::nil:
            return "nil";
        case Value::Kind::null:
            return "null";
        case Value::Kind::number:
            return "number";
        case Value::Kind::string:
            return "string";
        case Value::Kind::data:
            return "data";
        case Value::Kind::date:
            return "date";
        case Value::Kind::array:
            return "array";
        case Value::Kind::dictionary:
            return "dictionary";
        case Value::Kind::object:
            return "object";
    }
    return "value";
}

// A JSON number, already checked by the parser's grammar: integers stay exact as long as a
// 64-bit integer holds them, everything else reads as the nearest double.
Value numberFromJSON(std::string_view text) {
    const char* first = text.data();
    const char* last = first + text.size();
    if (text.find_first_of(".eE") == std::string_view::npos) {
        std::int64_t integer = 0;
        if (std::from_chars(first, last, integer).ec == std::errc())
            return Number::fromInteger(integer);
        std::uint64_t unsignedInteger = 0;
        if (text.front() != '-' &&
            std::from_chars(first, last, unsignedInteger).ec == std::errc()) {
            return Number::fromUnsigned(unsignedInteger);
        }
    }
    // The scanner reads exactly like strtod, out-of-range values included (±inf, ±0).
    Scanner scanner(text);
    return Number::fromDouble(scanner.scanDouble().value_or(0.0));
}

// Builds the Value while the parser reports the document's elements.
class ValueBuilder {
  public:
    Value& root() { return root_; }
    bool hasRoot() const { return hasRoot_; }
    const std::string& failure() const { return failure_; }

    bool add(Value value) {
        if (frames_.empty()) {
            root_ = std::move(value);
            hasRoot_ = true;
        } else if (Frame& top = frames_.back(); top.isDictionary) {
            top.dictionary.insert_or_assign(std::move(top.key), std::move(value));
        } else {
            top.array.push_back(std::move(value));
        }
        return true;
    }

    bool open(bool isDictionary) {
        if (frames_.size() >= kJSONMaximumDepth) {
            failure_ = "JSON nested deeper than " + std::to_string(kJSONMaximumDepth) + " levels";
            return false;
        }
        frames_.emplace_back();
        frames_.back().isDictionary = isDictionary;
        return true;
    }

    bool key(std::string key) {
        frames_.back().key = std::move(key);
        return true;
    }

    bool close() {
        Frame frame = std::move(frames_.back());
        frames_.pop_back();
        return frame.isDictionary ? add(Value(std::move(frame.dictionary)))
                                  : add(Value(std::move(frame.array)));
    }

  private:
    struct Frame {
        bool isDictionary = false;
        Value::Array array;
        Value::Dictionary dictionary;
        std::string key;
    };

    std::vector<Frame> frames_;
    Value root_;
    bool hasRoot_ = false;
    std::string failure_;
};

ValueBuilder& builderOf(void* context) {
    return *static_cast<ValueBuilder*>(context);
}

std::string textOf(const unsigned char* text, std::size_t length) {
    return std::string(reinterpret_cast<const char*>(text), length);
}

const yajl_callbacks kBuilderCallbacks = {
    [](void* context) { return int(builderOf(context).add(Value::null())); },
    [](void* context, int boolean) {
        return int(builderOf(context).add(Number::fromBool(boolean != 0)));
    },
    nullptr,
    nullptr,
    [](void* context, const char* number, std::size_t length) {
        return int(builderOf(context).add(numberFromJSON(std::string_view(number, length))));
    },
    [](void* context, const unsigned char* text, std::size_t length) {
        return int(builderOf(context).add(Value(textOf(text, length))));
    },
    [](void* context) { return int(builderOf(context).open(true)); },
    [](void* context, const unsigned char* key, std::size_t length) {
        return int(builderOf(context).key(textOf(key, length)));
    },
    [](void* context) { return int(builderOf(context).close()); },
    [](void* context) { return int(builderOf(context).open(false)); },
    [](void* context) { return int(builderOf(context).close()); },
};

struct ParserDeleter {
    void operator()(yajl_handle handle) const { yajl_free(handle); }
};

std::string parserMessage(yajl_handle handle, std::string_view text) {
    unsigned char* message =
        yajl_get_error(handle, 0, reinterpret_cast<const unsigned char*>(text.data()), text.size());
    std::string result = message ? reinterpret_cast<const char*>(message) : "invalid JSON";
    if (message) yajl_free_error(handle, message);
    while (!result.empty() && (result.back() == '\n' || result.back() == ' ')) result.pop_back();
    return result;
}

ErrorPtr notJSONError(std::string detail) {
    return Error::make(NSCocoaErrorDomain, kJSONReadCorruptErrorCode,
                       Value::Dictionary{{std::string(NSLocalizedDescriptionKey),
                                          std::string(kNotInCorrectFormat)},
                                         {std::string(kJSONErrorDetailKey), std::move(detail)}});
}

ErrorPtr wrongKindError(Value::Kind expected, Value::Kind found) {
    std::string detail = "Expected a JSON value of kind " + std::string(kindName(expected)) +
                         ", found kind " + std::string(kindName(found)) + ".";
    return Error::make(VNErrorDomain, 0,
                       Value::Dictionary{{std::string(VNErrUserInfoKey), VNErrCodeInvalidParameter},
                                         {std::string(kJSONErrorDetailKey), std::move(detail)}});
}

// The value of the four hexadecimal digits at text[at], if there are four.
std::optional<char32_t> hexUnit(std::string_view text, std::size_t at) {
    if (at + 4 > text.size()) return std::nullopt;
    std::uint32_t unit = 0;
    const auto [end, error] = std::from_chars(text.data() + at, text.data() + at + 4, unit, 16);
    if (error != std::errc() || end != text.data() + at + 4) return std::nullopt;
    return static_cast<char32_t>(unit);
}

bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// Whether a string of the text escapes half of a surrogate pair alone ("\ud800", "\udc00",
// "\ud800\u0041"). The parser would turn such an escape into bytes that are not UTF-8, or
// into a wrong character. Outside strings no quote or backslash is valid JSON, so a walk
// that toggles at quotes finds every string.
bool hasUnpairedSurrogateEscape(std::string_view text) {
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') inString = !inString;
        if (!inString || text[i] != '\\') continue;
        const bool unicodeEscape = i + 1 < text.size() && text[i + 1] == 'u';
        const std::optional<char32_t> unit = unicodeEscape ? hexUnit(text, i + 2) : std::nullopt;
        if (!unit) {
            ++i;  // the escaped character, a quote perhaps, does not end the string
            continue;
        }
        i += 5;
        if (isLowSurrogate(*unit)) return true;
        if (!isHighSurrogate(*unit)) continue;
        const bool lowFollows = i + 2 < text.size() && text[i + 1] == '\\' && text[i + 2] == 'u';
        const std::optional<char32_t> low = lowFollows ? hexUnit(text, i + 3) : std::nullopt;
        if (!low || !isLowSurrogate(*low)) return true;
        i += 6;
    }
    return false;
}

// Parses the text; on failure answers the error's detail instead.
std::optional<Value> parse(std::string_view text, std::string& failure) {
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark)
        text.remove_prefix(kByteOrderMark.size());
    // The parser's own check lets overlong forms and encoded surrogates through.
    if (!platform_internal::isValidUtf8(text)) {
        failure = "The text is not valid UTF-8";
        return std::nullopt;
    }
    if (hasUnpairedSurrogateEscape(text)) {
        failure = "A string escapes half of a surrogate pair alone";
        return std::nullopt;
    }
    ValueBuilder builder;
    const std::unique_ptr<yajl_handle_t, ParserDeleter> parser(
        yajl_alloc(&kBuilderCallbacks, nullptr, &builder));
    yajl_status status =
        yajl_parse(parser.get(), reinterpret_cast<const unsigned char*>(text.data()), text.size());
    if (status == yajl_status_ok) status = yajl_complete_parse(parser.get());
    if (status == yajl_status_client_canceled) {
        failure = builder.failure();
        return std::nullopt;
    }
    if (status != yajl_status_ok) {
        failure = parserMessage(parser.get(), text);
        return std::nullopt;
    }
    if (!builder.hasRoot()) {
        failure = "No JSON value in the text";
        return std::nullopt;
    }
    return std::move(builder.root());
}

// ---- Writing

constexpr std::size_t kGeneratorDepthLimit = YAJL_MAX_DEPTH - 1;

template <typename Scalar>
std::string shortestText(Scalar value) {
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, static_cast<std::size_t>(result.ptr - buffer));
}

// The JSON literal of a number: true or false, the shortest digits, a decimal's plain
// notation, or null for what JSON cannot hold (non-finite values, the decimal NaN).
std::string numberLiteral(const Number& number) {
    switch (number.kind()) {
        case Number::Kind::boolean:
            return number.boolValue() ? "true" : "false";
        case Number::Kind::signedInteger:
            return shortestText(number.integerValue());
        case Number::Kind::unsignedInteger:
            return shortestText(number.unsignedIntegerValue());
        case Number::Kind::floatingPoint:
            return std::isfinite(number.floatValue()) ? shortestText(number.floatValue()) : "null";
        case Number::Kind::doublePrecision:
            return std::isfinite(number.doubleValue()) ? shortestText(number.doubleValue())
                                                       : "null";
        case Number::Kind::decimal: {
            const Decimal decimal = number.decimalValue();
            return decimal.isNaN() ? "null" : decimal.description();
        }
    }
    return "null";
}

// The text as JSON can hold it: invalid UTF-8 becomes U+FFFD.
template <typename Use>
void withValidUtf8(std::string_view text, Use use) {
    if (platform_internal::isValidUtf8(text)) {
        use(text);
    } else {
        use(std::string_view(platform_internal::replacingInvalidUtf8(text)));
    }
}

// The compact JSON of a value without any depth limit, written without recursion, character
// for character as the generator writes it. It is what a container beyond the generator's
// depth limit is written as (inside one string), so that however deep a value is, each of its
// texts is escaped at most twice.
class UnlimitedCompactWriter {
  public:
    std::string write(const Value& root) {
        const Value* pending = &root;
        for (;;) {
            if (pending) open(*pending);
            pending = nullptr;
            if (frames_.empty()) return std::move(text_);
            Frame& top = frames_.back();
            if (top.array) {
                if (top.index == top.array->size()) {
                    text_ += ']';
                    frames_.pop_back();
                    continue;
                }
                if (top.index > 0) text_ += ',';
                pending = &(*top.array)[top.index++];
            } else {
                if (top.member == top.dictionary->end()) {
                    text_ += '}';
                    frames_.pop_back();
                    continue;
                }
                if (top.member != top.dictionary->begin()) text_ += ',';
                appendString(top.member->first);
                text_ += ':';
                pending = &top.member->second;
                ++top.member;
            }
        }
    }

  private:
    struct Frame {
        const Value::Array* array = nullptr;
        std::size_t index = 0;
        const Value::Dictionary* dictionary = nullptr;
        Value::Dictionary::const_iterator member;
    };

    std::vector<Frame> frames_;
    std::string text_;

    // Writes a scalar, or the opening of a container (whose members follow).
    void open(const Value& value) {
        if (const Value::Array* array = value.array()) {
            text_ += '[';
            frames_.push_back(Frame{array, 0, nullptr, {}});
        } else if (const Value::Dictionary* dictionary = value.dictionary()) {
            text_ += '{';
            frames_.push_back(Frame{nullptr, 0, dictionary, dictionary->begin()});
        } else if (const Number* number = value.number()) {
            text_ += numberLiteral(*number);
        } else if (const std::string* text = value.string()) {
            appendString(*text);
        } else if (value.isNil() || value.isNull()) {
            text_ += "null";
        } else {
            appendString(value.description());
        }
    }

    // Escapes as the generator does: quote, backslash and the short escapes, other control
    // characters as \u00XX (upper-case hex), everything else as it is.
    void appendString(std::string_view text) {
        withValidUtf8(text, [this](std::string_view valid) {
            static constexpr char kHex[] = "0123456789ABCDEF";
            text_ += '"';
            for (const char c : valid) {
                switch (c) {
                    case '"':
                        text_ += "\\\"";
                        break;
                    case '\\':
                        text_ += "\\\\";
                        break;
                    case '\b':
                        text_ += "\\b";
                        break;
                    case '\f':
                        text_ += "\\f";
                        break;
                    case '\n':
                        text_ += "\\n";
                        break;
                    case '\r':
                        text_ += "\\r";
                        break;
                    case '\t':
                        text_ += "\\t";
                        break;
                    default:
                        if (static_cast<unsigned char>(c) < 0x20) {
                            text_ += "\\u00";
                            text_ += kHex[(c >> 4) & 0xF];
                            text_ += kHex[c & 0xF];
                        } else {
                            text_ += c;
                        }
                }
            }
            text_ += '"';
        });
    }
};

class Generator {
  public:
    explicit Generator(JSONWritingStyle style) : generator_(yajl_gen_alloc(nullptr)) {
        if (style == JSONWritingStyle::pretty) {
            yajl_gen_config(generator_.get(), yajl_gen_beautify, 1);
            yajl_gen_config(generator_.get(), yajl_gen_indent_string, "\t");
        }
    }

    void write(const Value& value, std::size_t depth) {
        switch (value.kind()) {
            case Value::Kind::nil:
            case Value::Kind::null:
                check(yajl_gen_null(generator_.get()));
                break;
            case Value::Kind::number:
                writeNumber(*value.number());
                break;
            case Value::Kind::string:
                writeString(*value.string());
                break;
            case Value::Kind::data:
            case Value::Kind::date:
            case Value::Kind::object:
                writeString(value.description());
                break;
            case Value::Kind::array:
            case Value::Kind::dictionary:
                writeContainer(value, depth);
                break;
        }
    }

    std::string text() const {
        const unsigned char* buffer = nullptr;
        std::size_t length = 0;
        yajl_gen_get_buf(generator_.get(), &buffer, &length);
        return std::string(reinterpret_cast<const char*>(buffer), length);
    }

  private:
    struct GeneratorDeleter {
        void operator()(yajl_gen generator) const { yajl_gen_free(generator); }
    };

    static void check(yajl_gen_status status) {
        if (status != yajl_gen_status_ok)
            fatalError("JSON generation failed with status " + std::to_string(status));
    }

    void writeContainer(const Value& value, std::size_t depth) {
        if (depth >= kGeneratorDepthLimit) {
            writeString(UnlimitedCompactWriter().write(value));
            return;
        }
        if (const Value::Array* elements = value.array()) {
            check(yajl_gen_array_open(generator_.get()));
            for (const Value& element : *elements) write(element, depth + 1);
            check(yajl_gen_array_close(generator_.get()));
            return;
        }
        check(yajl_gen_map_open(generator_.get()));
        for (const auto& [key, element] : *value.dictionary()) {
            writeString(key);
            write(element, depth + 1);
        }
        check(yajl_gen_map_close(generator_.get()));
    }

    void writeString(std::string_view text) {
        withValidUtf8(text, [this](std::string_view valid) {
            check(yajl_gen_string(generator_.get(),
                                  reinterpret_cast<const unsigned char*>(valid.data()),
                                  valid.size()));
        });
    }

    void writeNumber(const Number& number) {
        if (number.kind() == Number::Kind::boolean) {
            check(yajl_gen_bool(generator_.get(), number.boolValue() ? 1 : 0));
            return;
        }
        const std::string literal = numberLiteral(number);
        if (literal == "null") {
            check(yajl_gen_null(generator_.get()));
        } else {
            check(yajl_gen_number(generator_.get(), literal.data(), literal.size()));
        }
    }

    std::unique_ptr<yajl_gen_t, GeneratorDeleter> generator_;
};

}  // namespace

std::string jsonString(const Value& value, JSONWritingStyle style) {
    Generator generator(style);
    generator.write(value, 0);
    return generator.text();
}

namespace VNUtilities {

Value jsonObject(std::string_view text, std::optional<Value::Kind> ofClass, ErrorPtr* error) {
    std::string failure;
    std::optional<Value> value = parse(text, failure);
    if (!value) {
        if (error) *error = notJSONError(std::move(failure));
        return {};
    }
    if (ofClass && value->kind() != *ofClass) {
        if (error) *error = wrongKindError(*ofClass, value->kind());
        return {};
    }
    if (error) *error = nullptr;
    return std::move(*value);
}

Value jsonObject(const Data& data, std::optional<Value::Kind> ofClass, ErrorPtr* error) {
    return jsonObject(std::string_view(reinterpret_cast<const char*>(data.data()), data.size()),
                      ofClass, error);
}

}  // namespace VNUtilities
}  // namespace vn
