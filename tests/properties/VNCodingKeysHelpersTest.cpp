#include "vn/properties/VNCodingKeysHelpers.h"

#include <gtest/gtest.h>

#include <limits>

#include "testing/RecordingLoggerService.h"
#include "testing/ScopedProcessState.h"
#include "vn/services/VNFoundationServices.h"

namespace vn {
namespace {

using testing::RecordingLoggerService;

// A coding key of the caller's own type, as a model enumeration would provide.
struct TitleKey {
    std::string stringValue() const { return "title"; }
};

class VNCodingKeysHelpersTest : public ::testing::Test {
  protected:
    void SetUp() override { VNFoundationServices::registerLoggerService(logger); }

    testing::ScopedProcessState state;
    std::shared_ptr<RecordingLoggerService> logger = std::make_shared<RecordingLoggerService>();
    Value::Dictionary model{{"title", "Report"},
                            {"count", 12},
                            {"ratio", 0.5},
                            {"flag", true},
                            {"list", Value::Array{1, "two"}},
                            {"null", Value::null()}};
    std::function<Value(const VNStringCodingKey&)> lookup = [this](const VNStringCodingKey& key) {
        const auto found = model.find(key.value);
        return found == model.end() ? Value{} : found->second;
    };
};

TEST_F(VNCodingKeysHelpersTest, AnswersValuesOfTheRequestedTypeWithoutLogging) {
    EXPECT_EQ(VNCodingKeysHelpers::typedValueLoggingError<std::string>(VNStringCodingKey{"title"},
                                                                       lookup),
              "Report");
    EXPECT_EQ(VNCodingKeysHelpers::typedValueLoggingError<std::int64_t>(VNStringCodingKey{"count"},
                                                                        lookup),
              12);
    EXPECT_EQ(
        VNCodingKeysHelpers::typedValueLoggingError<double>(VNStringCodingKey{"count"}, lookup),
        12.0);
    EXPECT_EQ(
        VNCodingKeysHelpers::typedValueLoggingError<double>(VNStringCodingKey{"ratio"}, lookup),
        0.5);
    EXPECT_EQ(VNCodingKeysHelpers::typedValueLoggingError<bool>(VNStringCodingKey{"flag"}, lookup),
              true);
    EXPECT_EQ(VNCodingKeysHelpers::typedValueLoggingError<Value::Array>(VNStringCodingKey{"list"},
                                                                        lookup),
              (Value::Array{1, "two"}));
    EXPECT_EQ(VNCodingKeysHelpers::typedValueLoggingError<Value>(VNStringCodingKey{"null"}, lookup),
              Value::null());
    const auto byOwnKey = VNCodingKeysHelpers::typedValueLoggingError<std::string>(
        TitleKey{}, [this](const TitleKey& key) { return model[key.stringValue()]; });
    EXPECT_EQ(byOwnKey, "Report");
    EXPECT_TRUE(logger->entries().empty());
}

TEST_F(VNCodingKeysHelpersTest, SendsTheExactMessagesToTheLoggerService) {
    EXPECT_EQ(VNCodingKeysHelpers::typedValueLoggingError<std::string>(VNStringCodingKey{"missing"},
                                                                       lookup),
              std::nullopt);
    EXPECT_EQ(VNCodingKeysHelpers::typedValueLoggingError<std::int64_t>(VNStringCodingKey{"title"},
                                                                        lookup),
              std::nullopt);
    EXPECT_EQ(
        VNCodingKeysHelpers::typedValueLoggingError<std::string>(VNStringCodingKey{"list"}, lookup),
        std::nullopt);
    EXPECT_EQ(VNCodingKeysHelpers::typedValueLoggingError<Value::Dictionary>(
                  VNStringCodingKey{"null"}, lookup),
              std::nullopt);

    ASSERT_EQ(logger->entries().size(), 4u);
    EXPECT_EQ(logger->entries()[0].message, "Value for 'missing' field not present");
    EXPECT_EQ(logger->entries()[1].message,
              "Value for 'title' key has invalid type. Required Int but found: Report");
    EXPECT_EQ(
        logger->entries()[2].message,
        "Value for 'list' key has invalid type. Required String but found: (\n    1,\n    two\n)");
    EXPECT_EQ(logger->entries()[3].message,
              "Value for 'null' key has invalid type. Required Dictionary but found: <null>");
    for (const RecordingLoggerService::Entry& logged : logger->entries()) {
        EXPECT_EQ(rawValue(logged.type), 0);
        EXPECT_EQ(rawValue(logged.level), 3);
        EXPECT_TRUE(logged.logToConsole);
    }
}

TEST_F(VNCodingKeysHelpersTest, EachSwitchSilencesOnlyItsOwnMessage) {
    const VNStringCodingKey missing{"missing"};
    const VNStringCodingKey title{"title"};
    EXPECT_FALSE(VNCodingKeysHelpers::typedValue<std::string>(missing, lookup, false, true));
    EXPECT_FALSE(VNCodingKeysHelpers::typedValue<bool>(title, lookup, true, false));
    EXPECT_TRUE(logger->entries().empty());

    EXPECT_FALSE(VNCodingKeysHelpers::typedValue<std::string>(missing, lookup, true, false));
    EXPECT_FALSE(VNCodingKeysHelpers::typedValue<bool>(title, lookup, false, true));
    ASSERT_EQ(logger->entries().size(), 2u);
    EXPECT_EQ(logger->entries()[0].message, "Value for 'missing' field not present");
    EXPECT_EQ(logger->entries()[1].message,
              "Value for 'title' key has invalid type. Required Bool but found: Report");
}

TEST_F(VNCodingKeysHelpersTest, ConversionsAreChecksNotCoercions) {
    struct Case {
        Value value;
        bool asInt;
        bool asDouble;
        bool asBool;
        bool asString;
    };
    const std::vector<Case> cases = {
        {42, true, true, false, false},
        {std::uint64_t{7}, true, true, false, false},
        {std::numeric_limits<std::uint64_t>::max(), false, true, false, false},
        {3.0, true, true, false, false},
        {3.5, false, true, false, false},
        {1e300, false, true, false, false},
        {Decimal::parse("12").value(), true, true, false, false},
        {Decimal::parse("12.5").value(), false, true, false, false},
        {true, false, false, true, false},
        {"42", false, false, false, true},
        {"true", false, false, false, true},
        {Value::null(), false, false, false, false},
    };
    VNFoundationServices::reset();  // no messages wanted here
    for (const Case& c : cases) {
        auto constant = [&c](const VNStringCodingKey&) { return c.value; };
        const VNStringCodingKey key{"k"};
        EXPECT_EQ(
            VNCodingKeysHelpers::typedValueLoggingError<std::int64_t>(key, constant).has_value(),
            c.asInt)
            << c.value.description();
        EXPECT_EQ(VNCodingKeysHelpers::typedValueLoggingError<double>(key, constant).has_value(),
                  c.asDouble)
            << c.value.description();
        EXPECT_EQ(VNCodingKeysHelpers::typedValueLoggingError<bool>(key, constant).has_value(),
                  c.asBool)
            << c.value.description();
        EXPECT_EQ(
            VNCodingKeysHelpers::typedValueLoggingError<std::string>(key, constant).has_value(),
            c.asString)
            << c.value.description();
    }
}

class Widget : public Object {};
class SpecialWidget final : public Widget {};

TEST_F(VNCodingKeysHelpersTest, ObjectTypesMatchSubclassesAndAreNamedByTheirClass) {
    const Value special(std::make_shared<SpecialWidget>());
    auto answer = [&special](const VNStringCodingKey&) { return special; };
    EXPECT_TRUE(VNCodingKeysHelpers::typedValueLoggingError<std::shared_ptr<Widget>>(
        VNStringCodingKey{"w"}, answer));

    auto text = [](const VNStringCodingKey&) { return Value("plain"); };
    EXPECT_FALSE(VNCodingKeysHelpers::typedValueLoggingError<std::shared_ptr<Widget>>(
        VNStringCodingKey{"w"}, text));
    ASSERT_EQ(logger->entries().size(), 1u);
    EXPECT_EQ(logger->entries()[0].message,
              "Value for 'w' key has invalid type. Required Widget but found: plain");
}

// The properties area does not build on the log (the layering check keeps it so): the console
// and the service are all there is to watch.
TEST_F(VNCodingKeysHelpersTest, WithoutALoggerServiceNothingIsWrittenAnywhere) {
    VNFoundationServices::reset();
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(VNCodingKeysHelpers::typedValueLoggingError<std::string>(VNStringCodingKey{"missing"},
                                                                       lookup),
              std::nullopt);
    EXPECT_EQ(VNCodingKeysHelpers::typedValueLoggingError<std::string>(VNStringCodingKey{"count"},
                                                                       lookup),
              std::nullopt);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(logger->entries().empty()) << "the unregistered service received nothing";
}

}  // namespace
}  // namespace vn
