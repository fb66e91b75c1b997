#include "vn/services/VNLogAlertMessageService.h"

#include <gtest/gtest.h>

#include "testing/ScopedProcessState.h"
#include "vn/platform/ExecutionEnvironment.h"

namespace vn {
namespace {

using Show = std::function<void(VNLogAlertMessageService&, VNAlertHandler, VNAlertHandler)>;

// Runs show with standard output captured; returns what was printed and the handlers' calls.
std::pair<std::string, std::string> capture(const Show& show) {
    VNLogAlertMessageService service;
    std::string calls;
    ::testing::internal::CaptureStdout();
    show(
        service, [&] { calls += "completion;"; }, [&] { calls += "dismissed;"; });
    return {::testing::internal::GetCapturedStdout(), calls};
}

class VNLogAlertMessageServiceTest : public ::testing::Test {
  protected:
    testing::ScopedProcessState state;
};

TEST_F(VNLogAlertMessageServiceTest,
       PrintsEachTextOnItsOwnLineOnlyInDeveloperModeThenCallsTheHandlers) {
    const ErrorPtr plain = Error::make(VNErrorDomain, 1);
    const ErrorPtr withSuggestion = Error::make(
        VNErrorDomain, 550,
        Value::Dictionary{
            {std::string(NSLocalizedDescriptionKey), "Permission denied"},
            {std::string(NSLocalizedRecoverySuggestionErrorKey), "Enable permission in Settings"}});
    const std::vector<std::pair<Show, std::string>> cases = {
        {[](auto& s, auto c, auto d) { s.showMessage("hello", c, d); }, "hello\n"},
        {[](auto& s, auto c, auto d) {
             s.showMessages({"a", "b"}, c, d);
         },
         "a\nb\n"},
        {[](auto& s, auto c, auto d) { s.showAlertWithTitle("T", "M", c, d); }, "T\nM\n"},
        {[](auto& s, auto c, auto d) { s.showAlertWithTitle("T", std::nullopt, c, d); }, "T\n"},
        {[](auto& s, auto c, auto d) { s.showAlertWithTitle(std::nullopt, "M", c, d); }, "M\n"},
        {[](auto& s, auto c, auto d) { s.showAlertWithTitle(std::nullopt, std::nullopt, c, d); },
         ""},
        {[&](auto& s, auto c, auto d) { s.showAlertForError(withSuggestion, c, d); },
         "Permission denied\nEnable permission in Settings\n"},
        // The library's own user-cancelled code is an ordinary error here.
        {[&](auto& s, auto c, auto d) { s.showAlertForError(Error::make(VNErrorDomain, 2), c, d); },
         "The operation couldn\u2019t be completed. (vn error 2.)\n"},
        // The forms without handlers print the same.
        {[&](auto& s, auto c, auto d) {
             s.showMessage("x");
             s.showMessages({"y"});
             s.showAlertWithTitle("z", std::nullopt);
             s.showAlertForError(plain);
             c();
             d();
         },
         "x\ny\nz\nThe operation couldn\u2019t be completed. (vn error 1.)\n"},
    };
    for (const auto& [show, printed] : cases) {
        for (const bool developerMode : {true, false}) {
            VNUtilities::setShowDeveloperInfo(developerMode);
            const auto [output, calls] = capture(show);
            EXPECT_EQ(output, developerMode ? printed : "") << printed;
            EXPECT_EQ(calls, "completion;dismissed;") << printed;
        }
    }
}

TEST_F(VNLogAlertMessageServiceTest, CancelledAndMissingErrorsShowNothingAndCallNoHandler) {
    VNUtilities::setShowDeveloperInfo(true);
    for (const ErrorPtr& silent :
         {ErrorPtr(), Error::make(NSCocoaErrorDomain, NSUserCancelledError)}) {
        const auto [output, calls] =
            capture([&](auto& s, auto c, auto d) { s.showAlertForError(silent, c, d); });
        EXPECT_EQ(output, "");
        EXPECT_EQ(calls, "");
    }
    const auto [output, calls] =
        capture([](auto& s, auto, auto) { s.showMessages({"x"}, nullptr, nullptr); });
    EXPECT_EQ(output, "x\n") << "empty handlers are skipped";
}

}  // namespace
}  // namespace vn
