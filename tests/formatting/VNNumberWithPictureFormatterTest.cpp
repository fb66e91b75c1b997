// The mask formatter: digits placed into a mask from the right, and read back from it.
#include "vn/formatting/VNNumberWithPictureFormatter.h"

#include <gtest/gtest.h>

#include "vn/coding/KeyedArchiver.h"
#include "vn/coding/KeyedUnarchiver.h"

namespace vn {
namespace {

struct MaskCase {
    const char* mask;
    Number number;
    const char* shown;
};

TEST(VNNumberWithPictureFormatter, PlacesTheNumbersCharactersFromTheRight) {
    const MaskCase cases[] = {
        {"000-0000", Number(1234567), "123-4567"},
        {"000-0000", Number(123), "000-0123"},
        {"000-0000", Number(123456789), "345-6789"},  // digits beyond the mask are dropped
        {"000-0000", Number(1234567.0), "123-4567"},  // through the number's description
        {"###", Number(0), " "},
        {"###", Number(5), "5"},
        {"##-##", Number(0), "- "},
        {"##-##", Number(5), "-5"},
        {"##-##", Number(1234), "12-34"},
        {"00\u00B700", Number(1234), "12\u00B734"},  // a non-ASCII literal stays whole
        {"(000) 0000", Number(5551234), "(555) 1234"},
        {"", Number(5), ""},
    };
    for (const MaskCase& c : cases) {
        SCOPED_TRACE(c.mask);
        VNNumberWithPictureFormatter formatter(c.mask);
        EXPECT_EQ(formatter.stringFromNumber(c.number), c.shown);
        EXPECT_EQ(formatter.stringForObjectValue(Value(c.number)), c.shown);
    }
}

TEST(VNNumberWithPictureFormatter, ReadsDigitsBackThroughTheMask) {
    const auto phone = VNNumberWithPictureFormatter::initWithNumberFormat("000-0000");
    EXPECT_EQ(phone->numberFromString("123-4567"), Number(1234567));
    EXPECT_EQ(phone->numberFromString("000-0123"), Number(123));
    EXPECT_EQ(phone->numberFromString("99123-4567"),
              Number(1234567));                                   // text beyond the mask is ignored
    EXPECT_EQ(phone->numberFromString("1234567"), std::nullopt);  // the dash is required
    EXPECT_EQ(phone->numberFromString("123-456x"), std::nullopt);  // a mandatory digit is required
    EXPECT_EQ(phone->numberFromString("3-4567"), std::nullopt);    // the text ran out

    // An optional position passes over what is not a digit without consuming it.
    VNNumberWithPictureFormatter optional("##-##");
    EXPECT_EQ(optional.numberFromString("-5"), Number(5));
    EXPECT_EQ(optional.numberFromString("12-34"), Number(1234));
    EXPECT_EQ(optional.numberFromString("- "), std::nullopt);
    EXPECT_EQ(optional.numberFromString("12-34")->kind(), Number::Kind::signedInteger);

    VNNumberWithPictureFormatter middleDot("00\u00B700");
    EXPECT_EQ(middleDot.numberFromString("12\u00B734"), Number(1234));
    EXPECT_EQ(middleDot.stringForObjectValue(Value("1234")), std::nullopt);
}

TEST(VNNumberWithPictureFormatter, MaskIsReadableAndWritable) {
    VNNumberWithPictureFormatter formatter("0-0");
    EXPECT_EQ(formatter.vnNumberFormat(), "0-0");
    formatter.setVnNumberFormat("00/00");
    EXPECT_EQ(formatter.stringFromNumber(Number(1231)), "12/31");
}

TEST(VNNumberWithPictureFormatterDeathTest, PlainInitializerIsUnavailable) {
    EXPECT_DEATH(VNNumberWithPictureFormatter(),
                 "Use of unimplemented initializer 'init\\(\\)' for class "
                 "'VNFoundation.VNNumberWithPictureFormatter'");
}

TEST(VNNumberWithPictureFormatterDeathTest, TextWithoutDigitsOrBeyond64BitsIsFatal) {
    VNNumberWithPictureFormatter optional("##");
    EXPECT_DEATH(static_cast<void>(optional.numberFromString("ab")), "no digit");
    VNNumberWithPictureFormatter wide(std::string(25, '0'));
    EXPECT_DEATH(static_cast<void>(wide.numberFromString(std::string(25, '9'))),
                 "does not fit a 64-bit integer");
}

}  // namespace
}  // namespace vn

namespace vn {
namespace {

// A stand-in for an archive written by another version: an object of the formatter's class
// whose fields lack the mask.
class MasklessFormatter final : public Object, public Coding {
  public:
    void encodeWithCoder(Coder& coder) const override { coder.encodeInteger(3, "other"); }
    std::string classNameForCoder() const override {
        return std::string(VNNumberWithPictureFormatter::codingClassName);
    }
};

TEST(VNNumberWithPictureFormatterArchiving, TheMaskSurvivesAnArchiveUnderItsKey) {
    const auto formatter = VNNumberWithPictureFormatter::initWithNumberFormat("000-0000");
    ErrorPtr error;
    const std::optional<Data> archive =
        KeyedArchiver::archivedDataWithRootObject(formatter, &error);
    ASSERT_TRUE(archive) << error->description();

    const std::optional<std::string> tree = KeyedUnarchiver::describeArchive(*archive);
    ASSERT_TRUE(tree);
    EXPECT_NE(tree->find("VNFoundation.VNNumberWithPictureFormatter"), std::string::npos) << *tree;
    EXPECT_NE(tree->find("vn.numberFormat"), std::string::npos) << *tree;

    const auto restored =
        KeyedUnarchiver::unarchivedObjectOfClass<VNNumberWithPictureFormatter>(*archive, &error);
    ASSERT_TRUE(restored) << error->description();
    EXPECT_EQ(restored->vnNumberFormat(), "000-0000");
    EXPECT_EQ(restored->stringFromNumber(Number(1234567)), "123-4567");
}

TEST(VNNumberWithPictureFormatterArchiving, AnArchiveWithoutTheMaskFailsToDecode) {
    const std::optional<Data> archive =
        KeyedArchiver::archivedDataWithRootObject(std::make_shared<MasklessFormatter>());
    ASSERT_TRUE(archive);
    ErrorPtr error;
    EXPECT_FALSE(
        KeyedUnarchiver::unarchivedObjectOfClass<VNNumberWithPictureFormatter>(*archive, &error));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error->code(), NSCoderReadCorruptError);
}

}  // namespace
}  // namespace vn
