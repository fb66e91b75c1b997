#include "platform/internal/DecimalReading.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "platform/internal/CLocale.h"

namespace vn::platform_internal {
namespace {

constexpr std::size_t kNoNumber = std::string::npos;

template <typename Floating>
std::size_t readAtStart(ExactReading mode, std::string_view text, Floating* value) {
    return mode == ExactReading::always
               ? readDecimalWithPoint<ExactReading::always>(text, 0, value)
               : readDecimalWithPoint<ExactReading::forShortTexts>(text, 0, value);
}

// Reads text at 0 in both modes, alone and followed by a long tail (which moves short texts off
// the exact reading of forShortTexts), and checks the end and, bit for bit, the value against
// strtod_l()/strtof_l() in the C locale.
void expectReadLikeStrtod(const std::string& text, std::size_t expectedEnd) {
    const std::string tail = " and then a long text that follows the number";
    for (const std::string& subject : {text, text + tail}) {
        for (const ExactReading mode : {ExactReading::forShortTexts, ExactReading::always}) {
            const std::string context =
                "\"" + subject + "\" mode " + std::to_string(static_cast<int>(mode));
            double value = -12345;
            float floatValue = -12345;
            const std::size_t end = readAtStart(mode, subject, &value);
            const std::size_t floatEnd = readAtStart(mode, subject, &floatValue);
            if (expectedEnd == kNoNumber) {
                EXPECT_EQ(end, 0u) << context;
                EXPECT_EQ(floatEnd, 0u) << context;
                EXPECT_EQ(value, -12345) << "untouched: " << context;
                continue;
            }
            EXPECT_EQ(end, expectedEnd) << context;
            EXPECT_EQ(floatEnd, expectedEnd) << context;
            const std::string number = subject.substr(0, expectedEnd);
            const double expected = strtod_l(number.c_str(), nullptr, cLocale());
            const float expectedFloat = strtof_l(number.c_str(), nullptr, cLocale());
            EXPECT_EQ(std::memcmp(&value, &expected, sizeof value), 0)
                << context << " gives " << value << ", strtod " << expected;
            EXPECT_EQ(std::memcmp(&floatValue, &expectedFloat, sizeof floatValue), 0)
                << context << " gives " << floatValue << ", strtof " << expectedFloat;
        }
    }
}

TEST(DecimalReading, ReadsLikeStrtodInTheCLocaleOnBothSidesOfTheExactBoundaries) {
    const struct {
        std::string text;
        std::size_t end;
    } cases[] = {
        // Mantissas: 2^53 is the last exact double integer, 2^24 the last exact float one.
        {"9007199254740992", 16},
        {"9007199254740993", 16},
        {"-9007199254740993", 17},
        {"16777216", 8},
        {"16777217", 8},
        {"1234567890123456", 16},
        {"12345678901234567", 17},
        {"000000000000000000000000001.5", 29},
        // Digits: 19 fit a 64-bit mantissa, leading zeros included; more go the general way.
        {"0000000000000000001", 19},
        {"00000000000000000001", 20},
        {"0.000000000000000001", 20},
        {"0.0000000000000000001", 21},
        // Powers of ten: 1e22 is the last exact double one, 1e10 the last exact float one.
        {"1e22", 4},
        {"1e23", 4},
        {"1e-22", 5},
        {"1e-23", 5},
        {"9007199254740992e22", 19},
        {"1e10", 4},
        {"1e11", 4},
        {"3.3e-10", 7},
        // Range: the largest double, overflow, the smallest subnormal, underflow.
        {"1.7976931348623157e308", 22},
        {"1.8e308", 7},
        {"-1e99999", 8},
        {"7e0000000000000000000000000001", 30},
        {"1e-99999", 8},
        {"4.9e-324", 8},
        {"2e-324", 6},
        {"1e-400", 6},
        // Signs and zeros.
        {"-0", 2},
        {"+0.0", 4},
        {"-0.0e5", 6},
        {"+7", 2},
        // Points and exponents without digits.
        {"5.", 2},
        {".5", 2},
        {"-.5", 3},
        {"1e", 1},
        {"1e+", 1},
        {"1E-x", 1},
        {"2.5E+3", 6},
        {"0x10", 1},
        // No number at all.
        {"", kNoNumber},
        {".", kNoNumber},
        {"-", kNoNumber},
        {"+-5", kNoNumber},
        {"-+5", kNoNumber},
        {"e5", kNoNumber},
        {" 1", kNoNumber},
        {"inf", kNoNumber},
        {"nan", kNoNumber},
        {"-.e1", kNoNumber},
    };
    for (const auto& c : cases) expectReadLikeStrtod(c.text, c.end);
}

TEST(DecimalReading, ReadsFromTheGivenOffsetAndMayOnlyMeasure) {
    const std::string text = "x=-12.5e1;";
    double value = 0;
    EXPECT_EQ(readDecimalWithPoint(text, 2, &value), 9u);
    EXPECT_EQ(value, -125.0);
    EXPECT_EQ(readDecimalWithPoint(text, 2, static_cast<double*>(nullptr)), 9u);
    EXPECT_EQ(readDecimalWithPoint(text, 0, &value), 0u) << "no number at the start";
    EXPECT_EQ(readDecimalWithPoint(text, text.size(), &value), text.size()) << "at the end";
}

TEST(DecimalReading, FallsBackToTheCLibraryInTheCLocaleForOutOfRangeNumbers) {
    EXPECT_EQ(strtodInCLocale("1e400"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(strtodInCLocale("-1e-400"), 0.0);
    EXPECT_TRUE(std::signbit(strtodInCLocale("-1e-400")));
    EXPECT_EQ(strtofInCLocale("1e39"), std::numeric_limits<float>::infinity());
    EXPECT_EQ(strtodInCLocale("2.5"), 2.5) << "the point, whatever the process locale";
    ASSERT_NE(cLocale(), static_cast<locale_t>(nullptr));
    EXPECT_EQ(cLocale(), cLocale()) << "made once";
}

}  // namespace
}  // namespace vn::platform_internal
