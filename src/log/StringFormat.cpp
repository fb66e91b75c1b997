#include "vn/log/StringFormat.h"

#include <cstdint>
#include <cstdio>

#include "platform/internal/CLocale.h"

namespace vn {
namespace {

// One parsed conversion: "%" [position "$"] flags [width] ["." precision] [length] conversion.
struct Directive {
    std::string flags;
    std::optional<int> width;  // negative widths from "*" arrive as the "-" flag
    std::optional<int> precision;
    std::string length;
    char conversion = '\0';
    std::optional<std::size_t> position;  // 1-based, from "n$"

    // Whether the width or the precision is beyond what a conversion is allowed to produce.
    bool isOversized() const {
        return (width && *width > kStringFormatMaximumWidth) ||
               (precision && *precision > kStringFormatMaximumWidth);
    }
};

// Reads the arguments in order, or by position for "%n$" directives.
class ArgumentReader {
  public:
    explicit ArgumentReader(std::span<const Value> arguments) : arguments_(arguments) {}

    const Value& next() { return at(next_++); }
    const Value& at(std::size_t index) const {
        static const Value nil;
        return index < arguments_.size() ? arguments_[index] : nil;
    }
    void jumpAfter(std::size_t index) { next_ = index + 1; }

  private:
    std::span<const Value> arguments_;
    std::size_t next_ = 0;
};

// Puts the calling thread in the C locale for the scope's life, so that the C library's
// conversions write numbers with "." whatever the process's locale is.
class CLocaleScope {
  public:
    CLocaleScope()
        : previous_(platform_internal::cLocale() ? uselocale(platform_internal::cLocale())
                                                 : nullptr) {}
    ~CLocaleScope() {
        if (previous_) uselocale(previous_);
    }
    CLocaleScope(const CLocaleScope&) = delete;
    CLocaleScope& operator=(const CLocaleScope&) = delete;

  private:
    locale_t previous_;
};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Reads decimal digits at format[i...]; nullopt when there are none.
std::optional<std::size_t> readNumber(std::string_view format, std::size_t& i) {
    if (i >= format.size() || !isDigit(format[i])) return std::nullopt;
    std::size_t value = 0;
    while (i < format.size() && isDigit(format[i])) {
        if (value < 100000000) value = value * 10 + static_cast<std::size_t>(format[i] - '0');
        ++i;
    }
    return value;
}

std::int64_t signedValue(const Value& value) {
    const Number* number = value.number();
    if (!number) return 0;
    if (number->kind() == Number::Kind::unsignedInteger)
        return static_cast<std::int64_t>(number->unsignedIntegerValue());
    return number->integerValue();
}

std::uint64_t unsignedValue(const Value& value) {
    const Number* number = value.number();
    if (!number) return 0;
    if (number->kind() == Number::Kind::unsignedInteger) return number->unsignedIntegerValue();
    return static_cast<std::uint64_t>(number->integerValue());
}

double doubleValue(const Value& value) {
    const Number* number = value.number();
    return number ? number->doubleValue() : 0.0;
}

// An "*" width or precision: the argument's integer value.
int starValue(const Value& value) {
    const std::int64_t raw = signedValue(value);
    if (raw > 100000000) return 100000000;
    if (raw < -100000000) return -100000000;
    return static_cast<int>(raw);
}

// Cuts a value to the size its length modifier names, as the C function reads its argument.
std::int64_t cutSigned(std::int64_t value, const std::string& length) {
    if (length == "hh") return static_cast<std::int8_t>(value);
    if (length == "h") return static_cast<std::int16_t>(value);
    if (length.empty()) return static_cast<std::int32_t>(value);
    return value;
}

std::uint64_t cutUnsigned(std::uint64_t value, const std::string& length) {
    if (length == "hh") return static_cast<std::uint8_t>(value);
    if (length == "h") return static_cast<std::uint16_t>(value);
    if (length.empty()) return static_cast<std::uint32_t>(value);
    return value;
}

std::string cFormatFor(const Directive& d, std::string_view cLength, char conversion) {
    std::string cFormat = "%";
    cFormat += d.flags;
    if (d.width) cFormat += std::to_string(*d.width);
    if (d.precision) {
        cFormat.push_back('.');
        cFormat += std::to_string(*d.precision);
    }
    cFormat.append(cLength);
    cFormat.push_back(conversion);
    return cFormat;
}

template <typename T>
void appendPrintf(std::string& out, const std::string& cFormat, T value) {
    char buffer[128];
    const int needed = std::snprintf(buffer, sizeof buffer, cFormat.c_str(), value);
    if (needed < 0) return;
    if (static_cast<std::size_t>(needed) < sizeof buffer) {
        out.append(buffer, static_cast<std::size_t>(needed));
        return;
    }
    std::string large(static_cast<std::size_t>(needed) + 1, '\0');
    std::snprintf(large.data(), large.size(), cFormat.c_str(), value);
    large.resize(static_cast<std::size_t>(needed));
    out += large;
}

void appendCodePoint(std::string& out, std::uint32_t code) {
    if (code < 0x80) {
        out.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (code >> 6)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else if (code < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (code >> 12)));
        out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (code >> 18)));
        out.push_back(static_cast<char>(0x80 | ((code >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    }
}

bool isContinuationByte(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// Text with precision (at most that many characters) and width (padded with spaces, on the
// left unless the "-" flag is given), both counted in code points.
void appendText(std::string& out, std::string_view text, const Directive& d) {
    std::size_t characters = 0;
    std::size_t end = 0;
    while (end < text.size()) {
        if (d.precision && characters == static_cast<std::size_t>(*d.precision)) break;
        ++end;
        while (end < text.size() && isContinuationByte(text[end])) ++end;
        ++characters;
    }
    const std::size_t width = d.width ? static_cast<std::size_t>(*d.width) : 0;
    const std::size_t padding = width > characters ? width - characters : 0;
    const bool leftAligned = d.flags.find('-') != std::string::npos;
    if (!leftAligned) out.append(padding, ' ');
    out.append(text.substr(0, end));
    if (leftAligned) out.append(padding, ' ');
}

std::string textOf(const Value& value, bool asDescription) {
    if (value.isNil()) return "(null)";
    if (!asDescription) {
        if (const std::string* text = value.string()) return *text;
    }
    return value.description();
}

std::string pointerText(const Value& value) {
    std::uintptr_t address = 0;
    if (value.isObject()) {
        address = reinterpret_cast<std::uintptr_t>(value.object().get());
    } else {
        address = static_cast<std::uintptr_t>(unsignedValue(value));
    }
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "0x%llx", static_cast<unsigned long long>(address));
    return buffer;
}

void appendConversion(std::string& out, const Directive& d, const Value& argument) {
    switch (d.conversion) {
        case '@':
            appendText(out, textOf(argument, true), d);
            break;
        case 's':
            appendText(out, textOf(argument, false), d);
            break;
        case 'd':
        case 'i':
            appendPrintf(out, cFormatFor(d, "ll", d.conversion),
                         static_cast<long long>(cutSigned(signedValue(argument), d.length)));
            break;
        case 'u':
        case 'o':
        case 'x':
        case 'X':
            appendPrintf(
                out, cFormatFor(d, "ll", d.conversion),
                static_cast<unsigned long long>(cutUnsigned(unsignedValue(argument), d.length)));
            break;
        case 'f':
        case 'F':
        case 'e':
        case 'E':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            appendPrintf(out, cFormatFor(d, "", d.conversion), doubleValue(argument));
            break;
        case 'c':
        case 'C': {
            const std::uint32_t code = d.conversion == 'c'
                                           ? static_cast<std::uint8_t>(unsignedValue(argument))
                                           : static_cast<std::uint16_t>(unsignedValue(argument));
            std::string character;
            if (code != 0) appendCodePoint(character, code);
            Directive noPrecision = d;
            noPrecision.precision.reset();
            appendText(out, character, noPrecision);
            break;
        }
        case 'p':
            appendText(out, pointerText(argument), d);
            break;
        default:
            break;
    }
}

bool consumesArgument(char conversion) {
    return std::string_view("@sdiuoxXfFeEgGaAcCp").find(conversion) != std::string_view::npos;
}

bool isLengthModifier(char c) {
    return std::string_view("hlqLjzt").find(c) != std::string_view::npos;
}

bool isFlag(char c) {
    return std::string_view("-+ #0'").find(c) != std::string_view::npos;
}

// Reads a width or precision that is "*" or "*n$" from the arguments.
int readStar(std::string_view format, std::size_t& i, ArgumentReader& arguments) {
    ++i;  // the "*"
    std::size_t look = i;
    if (const auto position = readNumber(format, look);
        position && look < format.size() && format[look] == '$') {
        i = look + 1;
        return starValue(arguments.at(*position == 0 ? 0 : *position - 1));
    }
    return starValue(arguments.next());
}

// Parses the directive after the "%" at format[start]; returns the index after it, or npos
// when the format ends inside the directive.
std::size_t parseDirective(std::string_view format, std::size_t start, ArgumentReader& arguments,
                           Directive& d) {
    std::size_t i = start + 1;
    std::size_t look = i;
    if (const auto position = readNumber(format, look);
        position && look < format.size() && format[look] == '$') {
        d.position = *position;
        i = look + 1;
    }
    while (i < format.size() && isFlag(format[i])) d.flags.push_back(format[i++]);
    if (i < format.size() && format[i] == '*') {
        const int width = readStar(format, i, arguments);
        if (width < 0) d.flags.push_back('-');
        d.width = width < 0 ? -width : width;
    } else if (const auto width = readNumber(format, i)) {
        d.width = static_cast<int>(*width);
    }
    if (i < format.size() && format[i] == '.') {
        ++i;
        if (i < format.size() && format[i] == '*') {
            const int precision = readStar(format, i, arguments);
            if (precision >= 0) d.precision = precision;  // a negative precision counts as none
        } else {
            d.precision = static_cast<int>(readNumber(format, i).value_or(0));
        }
    }
    while (i < format.size() && isLengthModifier(format[i])) d.length.push_back(format[i++]);
    if (i >= format.size()) return std::string_view::npos;
    d.conversion = format[i];
    return i + 1;
}

}  // namespace

std::string stringWithFormatArguments(std::string_view format, std::span<const Value> arguments) {
    const CLocaleScope numbersInCLocale;
    ArgumentReader reader(arguments);
    std::string out;
    out.reserve(format.size() + 16 * arguments.size());
    std::size_t i = 0;
    while (i < format.size()) {
        const std::size_t percent = format.find('%', i);
        out.append(format.substr(
            i, percent == std::string_view::npos ? std::string_view::npos : percent - i));
        if (percent == std::string_view::npos) break;
        Directive d;
        const std::size_t after = parseDirective(format, percent, reader, d);
        if (after == std::string_view::npos) {
            out.append(format.substr(percent));  // an unfinished directive stays as written
            break;
        }
        if (d.conversion == '%') {
            out.push_back('%');
        } else if (consumesArgument(d.conversion) && d.isOversized()) {
            // Fails as an unknown conversion does, but passes over its argument so that the
            // conversions after it still get theirs.
            out.append(format.substr(percent, after - percent));
            if (d.position) {
                reader.jumpAfter(*d.position == 0 ? 0 : *d.position - 1);
            } else {
                static_cast<void>(reader.next());
            }
        } else if (consumesArgument(d.conversion)) {
            if (d.position) {
                const std::size_t index = *d.position == 0 ? 0 : *d.position - 1;
                appendConversion(out, d, reader.at(index));
                reader.jumpAfter(index);
            } else {
                appendConversion(out, d, reader.next());
            }
        } else if (d.conversion != 'n') {
            out.append(format.substr(percent, after - percent));
        }
        i = after;
    }
    return out;
}

}  // namespace vn
