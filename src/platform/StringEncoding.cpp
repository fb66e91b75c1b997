#include "vn/platform/StringEncoding.h"

#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

namespace vn {
namespace {

// An encoding the platform names only through its lower-level encoding number.
constexpr StringEncoding viaLowerLevel(std::uint32_t number) {
    return 0x80000000u + number;
}

struct Charset {
    StringEncoding encoding;
    std::string_view icuName;
    std::array<std::string_view, 3> names;  // the first is the preferred one; empty slots unused
};

constexpr std::array<Charset, 37> kCharsets{{
    {NSASCIIStringEncoding, "US-ASCII", {"us-ascii", "ascii"}},
    {NSUTF8StringEncoding, "UTF-8", {"utf-8", "utf8"}},
    {NSISOLatin1StringEncoding, "ISO-8859-1", {"iso-8859-1", "latin1", "iso_8859-1"}},
    {NSISOLatin2StringEncoding, "ISO-8859-2", {"iso-8859-2", "latin2"}},
    {viaLowerLevel(0x0203), "ISO-8859-3", {"iso-8859-3"}},
    {viaLowerLevel(0x0204), "ISO-8859-4", {"iso-8859-4"}},
    {viaLowerLevel(0x0205), "ISO-8859-5", {"iso-8859-5"}},
    {viaLowerLevel(0x0206), "ISO-8859-6", {"iso-8859-6"}},
    {viaLowerLevel(0x0207), "ISO-8859-7", {"iso-8859-7"}},
    {viaLowerLevel(0x0208), "ISO-8859-8", {"iso-8859-8"}},
    {viaLowerLevel(0x0209), "ISO-8859-9", {"iso-8859-9", "latin5"}},
    {viaLowerLevel(0x020A), "ISO-8859-10", {"iso-8859-10"}},
    {viaLowerLevel(0x020B), "ISO-8859-11", {"iso-8859-11"}},
    {viaLowerLevel(0x020D), "ISO-8859-13", {"iso-8859-13"}},
    {viaLowerLevel(0x020E), "ISO-8859-14", {"iso-8859-14"}},
    {viaLowerLevel(0x020F), "ISO-8859-15", {"iso-8859-15", "latin-9"}},
    {viaLowerLevel(0x0210), "ISO-8859-16", {"iso-8859-16"}},
    {NSJapaneseEUCStringEncoding, "EUC-JP", {"euc-jp"}},
    {NSShiftJISStringEncoding, "Shift_JIS", {"shift_jis", "sjis", "shift-jis"}},
    {NSISO2022JPStringEncoding, "ISO-2022-JP", {"iso-2022-jp"}},
    {viaLowerLevel(0x041D), "windows-874", {"windows-874", "cp874"}},
    {NSWindowsCP1250StringEncoding, "windows-1250", {"windows-1250", "cp1250"}},
    {NSWindowsCP1251StringEncoding, "windows-1251", {"windows-1251", "cp1251"}},
    {NSWindowsCP1252StringEncoding, "windows-1252", {"windows-1252", "cp1252"}},
    {NSWindowsCP1253StringEncoding, "windows-1253", {"windows-1253", "cp1253"}},
    {NSWindowsCP1254StringEncoding, "windows-1254", {"windows-1254", "cp1254"}},
    {viaLowerLevel(0x0505), "windows-1255", {"windows-1255", "cp1255"}},
    {viaLowerLevel(0x0506), "windows-1256", {"windows-1256", "cp1256"}},
    {viaLowerLevel(0x0507), "windows-1257", {"windows-1257", "cp1257"}},
    {viaLowerLevel(0x0508), "windows-1258", {"windows-1258", "cp1258"}},
    {NSMacOSRomanStringEncoding, "macintosh", {"macintosh", "x-mac-roman", "mac"}},
    {NSUTF16StringEncoding, "UTF-16", {"utf-16", "utf16"}},
    {NSUTF16BigEndianStringEncoding, "UTF-16BE", {"utf-16be"}},
    {NSUTF16LittleEndianStringEncoding, "UTF-16LE", {"utf-16le"}},
    {NSUTF32StringEncoding, "UTF-32", {"utf-32", "utf32"}},
    {NSUTF32BigEndianStringEncoding, "UTF-32BE", {"utf-32be"}},
    {NSUTF32LittleEndianStringEncoding, "UTF-32LE", {"utf-32le"}},
}};

const Charset* charsetForEncoding(StringEncoding encoding) {
    const auto found = std::find_if(kCharsets.begin(), kCharsets.end(),
                                    [&](const Charset& c) { return c.encoding == encoding; });
    return found == kCharsets.end() ? nullptr : &*found;
}

std::string normalisedCharsetName(std::string_view charset) {
    const auto first = charset.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    const auto last = charset.find_last_not_of(" \t\r\n");
    std::string name(charset.substr(first, last - first + 1));
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) {
        return static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    });
    // "utf-16 bom": the UTF names may say that the text starts with a byte-order mark.
    if (name.starts_with("utf") && name.ends_with(" bom")) name.resize(name.size() - 4);
    return name;
}

struct ConverterCloser {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

// A converter that stops at the first character it cannot convert, instead of substituting.
Converter strictConverter(const Charset& charset) {
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(std::string(charset.icuName).c_str(), &status));
    if (U_FAILURE(status)) return nullptr;
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                          &status);
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                        &status);
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

std::optional<std::u16string> utf16FromUtf8(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    const auto size = static_cast<int32_t>(text.size());
    u_strFromUTF8(nullptr, 0, &length, text.data(), size, &status);
    if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) return std::nullopt;
    std::u16string result(static_cast<std::size_t>(length), u'\0');
    status = U_ZERO_ERROR;
    u_strFromUTF8(result.data(), length, nullptr, text.data(), size, &status);
    if (U_FAILURE(status)) return std::nullopt;
    return result;
}

std::optional<std::string> utf8FromUtf16(const std::u16string& text) {
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    const auto size = static_cast<int32_t>(text.size());
    u_strToUTF8(nullptr, 0, &length, text.data(), size, &status);
    if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) return std::nullopt;
    std::string result(static_cast<std::size_t>(length), '\0');
    status = U_ZERO_ERROR;
    u_strToUTF8(result.data(), length, nullptr, text.data(), size, &status);
    if (U_FAILURE(status)) return std::nullopt;
    return result;
}

}  // namespace

std::optional<Data> dataUsingEncoding(std::string_view text, StringEncoding encoding) {
    const Charset* charset = charsetForEncoding(encoding);
    if (!charset) return std::nullopt;
    const auto utf16 = utf16FromUtf8(text);
    if (!utf16) return std::nullopt;
    const Converter converter = strictConverter(*charset);
    if (!converter) return std::nullopt;
    const auto size = static_cast<int32_t>(utf16->size());
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length =
        ucnv_fromUChars(converter.get(), nullptr, 0, utf16->data(), size, &status);
    if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) return std::nullopt;
    Data bytes(static_cast<std::size_t>(length) + 1);  // room for the terminator ICU may write
    status = U_ZERO_ERROR;
    ucnv_resetFromUnicode(converter.get());
    ucnv_fromUChars(converter.get(), reinterpret_cast<char*>(bytes.data()),
                    static_cast<int32_t>(bytes.size()), utf16->data(), size, &status);
    if (U_FAILURE(status)) return std::nullopt;
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

std::optional<std::string> stringFromData(const Data& data, StringEncoding encoding) {
    const Charset* charset = charsetForEncoding(encoding);
    if (!charset) return std::nullopt;
    const Converter converter = strictConverter(*charset);
    if (!converter) return std::nullopt;
    const auto* source = reinterpret_cast<const char*>(data.data());
    const auto size = static_cast<int32_t>(data.size());
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(converter.get(), nullptr, 0, source, size, &status);
    if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) return std::nullopt;
    std::u16string utf16(static_cast<std::size_t>(length) + 1, u'\0');
    status = U_ZERO_ERROR;
    ucnv_resetToUnicode(converter.get());
    ucnv_toUChars(converter.get(), utf16.data(), static_cast<int32_t>(utf16.size()), source, size,
                  &status);
    if (U_FAILURE(status)) return std::nullopt;
    utf16.resize(static_cast<std::size_t>(length));
    return utf8FromUtf16(utf16);
}

std::optional<std::string> charsetNameForEncoding(StringEncoding encoding) {
    const Charset* charset = charsetForEncoding(encoding);
    if (!charset) return std::nullopt;
    return std::string(charset->names.front());
}

namespace VNUtilities {

std::optional<StringEncoding> stringEncoding(std::string_view charset) {
    const std::string name = normalisedCharsetName(charset);
    if (name.empty()) return std::nullopt;
    for (const Charset& entry : kCharsets) {
        for (const std::string_view known : entry.names) {
            if (!known.empty() && known == name) return entry.encoding;
        }
    }
    return std::nullopt;
}

std::optional<StringEncoding> stringEncodingFromCharsetString(std::string_view charset) {
    return stringEncoding(charset);
}

}  // namespace VNUtilities
}  // namespace vn
