#include <gtest/gtest.h>

#include "testing/CapturingLogListener.h"
#include "testing/ScopedProcessState.h"
#include "vn/log/VNLog.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/UserDefaults.h"

namespace vn {
namespace {

using testing::CapturingLogListener;
using testing::ScopedProcessState;

TEST(VNLogJSON, ObjectIsWrittenAsTabIndentedJSONUnderItsTitle) {
    ScopedProcessState state;
    const auto listener = std::make_shared<CapturingLogListener>();
    VNLog::addListener(listener);
    VNLog::logJSONObject(Value::Dictionary{{"id", 7}, {"tags", Value::Array{"a"}}}, "request");
    ASSERT_EQ(listener->messages().size(), 1u);
    EXPECT_EQ(
        listener->messages()[0],
        "{\n\t\"request\": {\n\t\t\"id\": 7,\n\t\t\"tags\": [\n\t\t\t\"a\"\n\t\t]\n\t}\n}\n\n");
}

TEST(VNLogJSON, ParserElementsFollowTheResponsesSwitchAndAreBuiltOnlyWhenWritten) {
    ScopedProcessState state;
    const auto listener = std::make_shared<CapturingLogListener>();
    VNLog::addListener(listener);
    int evaluations = 0;
    const auto element = [&] {
        ++evaluations;
        return Value(Value::Array{1, "two"});
    };

    VNLog::logJSONParserElementIfEnabled(element);  // listener alone does not open the gate
    EXPECT_EQ(evaluations, 0);

    ScopedProcessState::turnLogFileOn();  // responses default to true
    VNLog::logJSONParserElementIfEnabled(element);
    EXPECT_EQ(evaluations, 1);
    UserDefaults::standard().setBool(false, VNLog::logResponsesPreferenceKey);
    VNLog::logJSONParserElementIfEnabled(element);
    EXPECT_EQ(evaluations, 1);

    VNUtilities::setShowDeveloperInfo(true);
    VNLog::logJSONParserElementIfEnabled(Value("x"));
    EXPECT_EQ(
        listener->messages(),
        (std::vector<std::string>{"JSON Parser: (\n    1,\n    two\n)\n", "JSON Parser: x\n"}));
}

}  // namespace
}  // namespace vn
