#include "vn/coding/Coder.h"

#include <gtest/gtest.h>

#include "testing/KeyedArchiveTesting.h"
#include "vn/coding/KeyedArchiver.h"
#include "vn/coding/KeyedUnarchiver.h"

namespace vn {
namespace {

Data archiveWithTopLevel() {
    KeyedArchiver archiver;
    archiver.encodeBool(true, "flag");
    archiver.encodeInteger(-42, "count");
    archiver.encodeDouble(2.75, "ratio");
    archiver.encodeValue(9.9, "boxed double");
    archiver.encodeString("text", "name");
    archiver.encodeValue(Value{}, "stored nil");
    archiver.encodeValue(Value::Array{1}, "list");
    return archiver.encodedData();
}

TEST(Coder, ScalarDecodersConvertNumbersAndDefaultWhenMissing) {
    KeyedUnarchiver unarchiver(archiveWithTopLevel());
    EXPECT_TRUE(unarchiver.decodeBool("flag"));
    EXPECT_EQ(unarchiver.decodeInteger("flag"), 1);
    EXPECT_EQ(unarchiver.decodeInteger("count"), -42);
    EXPECT_TRUE(unarchiver.decodeBool("count"));
    EXPECT_EQ(unarchiver.decodeDouble("count"), -42.0);
    EXPECT_EQ(unarchiver.decodeDouble("ratio"), 2.75);
    EXPECT_EQ(unarchiver.decodeInteger("boxed double"), 9) << "doubles truncate toward zero";
    EXPECT_EQ(unarchiver.decodeString("name"), "text");

    EXPECT_FALSE(unarchiver.decodeBool("missing"));
    EXPECT_EQ(unarchiver.decodeInteger("missing"), 0);
    EXPECT_EQ(unarchiver.decodeDouble("missing"), 0.0);
    EXPECT_EQ(unarchiver.decodeString("missing"), std::nullopt);
    EXPECT_EQ(unarchiver.decodeObject("name"), nullptr) << "a text is a value, not an object";
    EXPECT_EQ(unarchiver.error(), nullptr);
}

TEST(Coder, StoredNilIsContainedButDecodesAsNil) {
    KeyedUnarchiver unarchiver(archiveWithTopLevel());
    EXPECT_TRUE(unarchiver.containsValueForKey("stored nil"));
    EXPECT_TRUE(unarchiver.decodeValue("stored nil").isNil());
    EXPECT_EQ(unarchiver.decodeString("stored nil"), std::nullopt);
    EXPECT_EQ(unarchiver.error(), nullptr);
}

TEST(Coder, AValueOfTheWrongKindFailsTheCoderAndLaterDecodesAnswerNil) {
    const std::vector<std::pair<std::string, std::function<void(Coder&)>>> mismatches = {
        {"is not a number", [](Coder& coder) { EXPECT_EQ(coder.decodeInteger("name"), 0); }},
        {"is not a number", [](Coder& coder) { EXPECT_FALSE(coder.decodeBool("list")); }},
        {"is not a number", [](Coder& coder) { EXPECT_EQ(coder.decodeDouble("name"), 0.0); }},
        {"is not a text",
         [](Coder& coder) { EXPECT_EQ(coder.decodeString("count"), std::nullopt); }},
    };
    for (const auto& [reason, decode] : mismatches) {
        KeyedUnarchiver unarchiver(archiveWithTopLevel());
        decode(unarchiver);
        ASSERT_TRUE(unarchiver.error());
        EXPECT_EQ(unarchiver.error()->code(), NSCoderReadCorruptError);
        EXPECT_NE(
            unarchiver.error()->userInfoValue(NSDebugDescriptionErrorKey).string()->find(reason),
            std::string::npos);
        EXPECT_TRUE(unarchiver.decodeValue("flag").isNil())
            << "a failed coder decodes nothing more";
    }
}

TEST(Coder, TheFirstRecordedErrorWins) {
    KeyedArchiver archiver;
    const ErrorPtr first = Coder::makeCodingError(NSCoderInvalidValueError, "first");
    archiver.failWithError(first);
    archiver.failWithError(Coder::makeCodingError(NSCoderInvalidValueError, "second"));
    EXPECT_EQ(archiver.error(), first);
    EXPECT_TRUE(archiver.encodedData().empty());
    EXPECT_EQ(*first->userInfoValue(NSDebugDescriptionErrorKey).string(), "first");
    EXPECT_EQ(first->domain(), NSCocoaErrorDomain);
}

}  // namespace
}  // namespace vn
