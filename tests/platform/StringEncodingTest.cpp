// Charset names, the platform's encoding values, and conversion to and from bytes.
#include "vn/platform/StringEncoding.h"

#include <gtest/gtest.h>

#include <bit>

namespace vn {
namespace {

using VNUtilities::stringEncoding;

TEST(StringEncoding, CharsetNamesGiveThePlatformsValues) {
    const std::pair<const char*, StringEncoding> names[] = {
        {"us-ascii", NSASCIIStringEncoding},
        {"ASCII", NSASCIIStringEncoding},
        {"utf-8", NSUTF8StringEncoding},
        {"ISO-8859-1", NSISOLatin1StringEncoding},
        {"iso-8859-2", NSISOLatin2StringEncoding},
        {"iso-8859-15", 0x8000020F},
        {"iso-8859-16", 0x80000210},
        {"euc-jp", NSJapaneseEUCStringEncoding},
        {"Shift_JIS", NSShiftJISStringEncoding},
        {"iso-2022-jp", NSISO2022JPStringEncoding},
        {"windows-1250", NSWindowsCP1250StringEncoding},
        {"windows-1251", NSWindowsCP1251StringEncoding},
        {"windows-1252", NSWindowsCP1252StringEncoding},
        {"windows-1253", NSWindowsCP1253StringEncoding},
        {"windows-1254", NSWindowsCP1254StringEncoding},
        {"windows-1257", 0x80000507},
        {"utf-16", NSUTF16StringEncoding},
        {"UTF-16BE", NSUTF16BigEndianStringEncoding},
        {"utf-16le", NSUTF16LittleEndianStringEncoding},
        {"utf-32", NSUTF32StringEncoding},
        {"utf-32be", NSUTF32BigEndianStringEncoding},
        {"utf-32le", NSUTF32LittleEndianStringEncoding},
        {" utf-16LE BOM ", NSUTF16LittleEndianStringEncoding},
        {"utf-32 bom", NSUTF32StringEncoding},
    };
    for (const auto& [name, encoding] : names) {
        EXPECT_EQ(stringEncoding(name), encoding) << name;
        EXPECT_EQ(VNUtilities::stringEncodingFromCharsetString(name), encoding) << name;
    }
    for (const char* unknown : {"", "klingon", "iso-8859", "iso-8859-1 bom", "utf-7"}) {
        EXPECT_EQ(stringEncoding(unknown), std::nullopt) << unknown;
    }
}

TEST(StringEncoding, EveryKnownCharsetConvertsBothWays) {
    const char* charsets[] = {"us-ascii",     "utf-8",        "iso-8859-1",   "iso-8859-2",
                              "iso-8859-3",   "iso-8859-4",   "iso-8859-5",   "iso-8859-6",
                              "iso-8859-7",   "iso-8859-8",   "iso-8859-9",   "iso-8859-10",
                              "iso-8859-11",  "iso-8859-13",  "iso-8859-14",  "iso-8859-15",
                              "euc-jp",       "shift_jis",    "iso-2022-jp",  "windows-874",
                              "windows-1250", "windows-1251", "windows-1252", "windows-1253",
                              "windows-1254", "windows-1255", "windows-1256", "windows-1257",
                              "windows-1258", "macintosh",    "utf-16",       "utf-16be",
                              "utf-16le",     "utf-32",       "utf-32be",     "utf-32le"};
    for (const char* charset : charsets) {
        SCOPED_TRACE(charset);
        const auto encoding = stringEncoding(charset);
        ASSERT_TRUE(encoding.has_value());
        const auto bytes = dataUsingEncoding("Hello 42", *encoding);
        ASSERT_TRUE(bytes.has_value());
        EXPECT_EQ(stringFromData(*bytes, *encoding), "Hello 42");
        EXPECT_EQ(stringEncoding(*charsetNameForEncoding(*encoding)), encoding);
    }
}

TEST(StringEncoding, ConvertsExactlyOrNotAtAll) {
    EXPECT_EQ(dataUsingEncoding("\xC3\xA9", NSISOLatin1StringEncoding), (Data{0xE9}));
    EXPECT_EQ(dataUsingEncoding("\xE6\x97\xA5\xE6\x9C\xAC", NSShiftJISStringEncoding),
              (Data{0x93, 0xFA, 0x96, 0x7B}));
    const Data bigEndianA{0xFE, 0xFF, 0x00, 0x41};
    const Data littleEndianA{0xFF, 0xFE, 0x41, 0x00};
    EXPECT_EQ(dataUsingEncoding("A", NSUTF16StringEncoding),
              std::endian::native == std::endian::little ? littleEndianA : bigEndianA);
    EXPECT_EQ(stringFromData(bigEndianA, NSUTF16StringEncoding), "A");
    EXPECT_EQ(stringFromData(Data{0x00, 0x41}, NSUTF16StringEncoding),
              "A");  // big-endian without a mark
    EXPECT_EQ(dataUsingEncoding("A", NSUTF16LittleEndianStringEncoding), (Data{0x41, 0x00}));
    EXPECT_EQ(dataUsingEncoding("\xE2\x82\xAC", NSWindowsCP1252StringEncoding), (Data{0x80}));
    EXPECT_EQ(stringFromData(littleEndianA, NSUTF16StringEncoding), "A");

    EXPECT_EQ(dataUsingEncoding("\xE6\x97\xA5", NSISOLatin1StringEncoding),
              std::nullopt);  // not representable
    EXPECT_EQ(dataUsingEncoding("caf\xC3\xA9", NSASCIIStringEncoding), std::nullopt);
    EXPECT_EQ(dataUsingEncoding("bad \xFF", NSUTF8StringEncoding),
              std::nullopt);  // not UTF-8 to begin with
    EXPECT_EQ(stringFromData(Data{0x61, 0xFF}, NSUTF8StringEncoding), std::nullopt);
    EXPECT_EQ(stringFromData(Data{0x80}, NSASCIIStringEncoding), std::nullopt);
    EXPECT_EQ(stringFromData(Data{0x41}, 9999), std::nullopt);
    EXPECT_EQ(dataUsingEncoding("", NSUTF8StringEncoding), Data{});
}

}  // namespace
}  // namespace vn
