#include "vn/errors/NSErrorVNFoundation.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

#include "testing/CapturingLogListener.h"
#include "testing/ScopedProcessState.h"
#include "vn/errors/ErrorClassTextProviders.h"
#include "vn/errors/VNRecoveryAttempter.h"
#include "vn/log/VNLog.h"
#include "vn/platform/Bundle.h"
#include "vn/platform/ExecutionEnvironment.h"

namespace vn {
namespace {

using testing::CapturingLogListener;
using testing::ScopedProcessState;
using Info = Value::Dictionary;

const std::string kDescription(NSLocalizedDescriptionKey);

// The error's domain, code and user info, where nil (no user info) differs from {}.
std::string shape(const ErrorPtr& error) {
    return error->domain() + "/" + std::to_string(error->code()) + " " +
           (error->hasUserInfo() ? Value(error->userInfo()).description() : "nil");
}
std::string shape(std::string_view domain, std::int64_t code,
                  std::optional<Info> info = std::nullopt) {
    return shape(Error::make(domain, code, info ? Value(*info) : Value()));
}

class NSErrorVNFoundationTest : public ::testing::Test {
  protected:
    void SetUp() override { VNLog::addListener(log); }
    void TearDown() override {
        for (const auto name :
             {VNGoToSettingsRecoveryOptionTextName, VNGoToSettingsDescriptionTextName,
              VNGoToSettingsRecoverySuggestionTextName}) {
            registerErrorClassTextProvider(name, nullptr);
        }
    }
    // Records the URLs the host is asked to open.
    void recordOpenedURLs() {
        VNExecutionEnvironmentHelper::setURLOpener(
            [this](const std::string& url, const Value::Dictionary& options, auto completion) {
                EXPECT_TRUE(options.empty());
                EXPECT_FALSE(completion);
                opened.push_back(url);
            });
    }

    ScopedProcessState state;
    std::shared_ptr<CapturingLogListener> log = std::make_shared<CapturingLogListener>();
    std::vector<std::string> opened;
};

TEST_F(NSErrorVNFoundationTest, FactoriesWithoutDeveloperTextsHaveTheirDomainCodeAndUserInfo) {
    const ErrorPtr underlying = Error::make(NSPOSIXErrorDomain, 2);
    const std::vector<std::pair<ErrorPtr, std::string>> cases = {
        {userCancelledError(), shape(NSCocoaErrorDomain, 3072)},
        {userCancelledError(underlying),
         shape(NSCocoaErrorDomain, 3072, Info{{"NSUnderlyingError", underlying}})},
        {userCancelledErrorWithUnderlyingError(nullptr), shape(NSCocoaErrorDomain, 3072)},
        {loopExitError(), shape(VNErrorDomain, 99991)},
        {defaultVNError(), shape(VNErrorDomain, 0)},
        {loginCanceledError(), shape(NSCocoaErrorDomain, 3072, Info{{"vn.loginCanceled", true}})},
        {defaultVNErrorWithLocalizedDescription("Oops"),
         shape(VNErrorDomain, 0, Info{{kDescription, "Oops"}})},
        {defaultVNErrorWithLocalizedDescription(std::nullopt), shape(VNErrorDomain, 0)},
        {defaultVNErrorWithCode(17, "Seventeen"),
         shape(VNErrorDomain, 17, Info{{kDescription, "Seventeen"}})},
        {defaultVNErrorWithCode(-4, std::nullopt), shape(VNErrorDomain, -4)},
        {errorWithDomainLocalizedDescription("x.y", 5, "Five"),
         shape("x.y", 5, Info{{kDescription, "Five"}})},
        {notAutorizedErrorWithDescription("No"),
         shape(VNErrorDomain, 403139, Info{{kDescription, "No"}})},
        {notAutorizedErrorWithDescription(std::nullopt), shape(VNErrorDomain, 403139)},
        {errorForHTTPURLResponseStatusCode(404),
         shape("vn.httpStatusCode", 404, Info{{kDescription, "not found"}})},
        {errorForHTTPURLResponseStatusCode(200),
         shape("vn.httpStatusCode", 200, Info{{kDescription, "no error"}})},
    };
    for (const auto& [error, expected] : cases) EXPECT_EQ(shape(error), expected);
    EXPECT_TRUE(log->messages().empty()) << "localized descriptions never go to the log";

    EXPECT_TRUE(loginCanceledError()->isUserCancelledError());
    EXPECT_TRUE(loginCanceledError()->isLoginCanceledError());
    EXPECT_FALSE(userCancelledError()->isLoginCanceledError());
    EXPECT_FALSE(
        defaultVNErrorWithCode(VNErrCodeUserCancelled, std::nullopt)->isUserCancelledError());
    EXPECT_TRUE(loopExitError()->isLoopExitError());
    EXPECT_TRUE(notAutorizedErrorWithDescription(std::nullopt)->isNotAuthorizedError());
    EXPECT_FALSE(errorForHTTPURLResponseStatusCode(403)->isNotAuthorizedError());
}

TEST_F(NSErrorVNFoundationTest, DeveloperDescriptionGoesIntoTheErrorInDeveloperMode) {
    VNUtilities::setShowDeveloperInfo(true);
    ::testing::internal::CaptureStdout();  // the console is on in developer mode
    const std::vector<std::pair<ErrorPtr, std::string>> cases = {
        {defaultVNErrorWithDeveloperDescription("no info"),
         shape("vn", 0, Info{{kDescription, "no info"}})},
        {defaultVNErrorWithDeveloperDescription("empty", Info{}),
         shape("vn", 0, Info{{kDescription, "empty"}})},
        {defaultVNErrorWithDeveloperDescription("new", Info{{"kept", 1}, {kDescription, "old"}}),
         shape("vn", 0, Info{{"kept", 1}, {kDescription, "new"}})},
        {fatalVNErrorWithDeveloperDescription("fatal"),
         shape("vn.fatal", 0, Info{{kDescription, "fatal"}})},
        {errorWithDomain("d", 9, "any", Info{{"k", "v"}}),
         shape("d", 9, Info{{"k", "v"}, {kDescription, "any"}})},
        {errorWithDomain("d", 1, "three"), shape("d", 1, Info{{kDescription, "three"}})},
    };
    for (const auto& [error, expected] : cases) EXPECT_EQ(shape(error), expected);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(log->messages().empty());
}

TEST_F(NSErrorVNFoundationTest, DeveloperDescriptionGoesOnlyToTheLogOutsideDeveloperMode) {
    const Info given{{"kept", 1}, {kDescription, "user text"}};
    const std::vector<std::pair<ErrorPtr, std::string>> cases = {
        {defaultVNErrorWithDeveloperDescription("first"), shape("vn", 0)},  // nil stays nil
        {defaultVNErrorWithDeveloperDescription("second", Info{}), shape("vn", 0, Info{})},
        {errorWithDomain("d", 4, "third", given), shape("d", 4, given)},
        {fatalVNErrorWithDeveloperDescription("fourth"), shape("vn.fatal", 0)},
    };
    for (const auto& [error, expected] : cases) EXPECT_EQ(shape(error), expected);
    EXPECT_EQ(log->messages(), (std::vector<std::string>{"ERROR: first\n", "ERROR: second\n",
                                                         "ERROR: third\n", "ERROR: fourth\n"}));
}

TEST_F(NSErrorVNFoundationTest, WrongNumberOfParametersIsAnInvalidParameterError) {
    VNUtilities::setShowDeveloperInfo(true);
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(shape(wrongNumberOfParametersDeveloperErrorForMethod("Foo", 1, 2)),
              shape("vn", 0,
                    Info{{"VNErr", 3},
                         {kDescription,
                          "Wrong number of parameters calling Foo: received 1, expected: 2"}}));
    EXPECT_EQ(shape(wrongNumberOfParametersDeveloperErrorForMethod("Bar")),
              shape("vn", 0,
                    Info{{"VNErr", 3}, {kDescription, "Wrong number of parameters calling Bar"}}));
    ::testing::internal::GetCapturedStdout();

    VNUtilities::setShowDeveloperInfo(false);
    EXPECT_EQ(shape(wrongNumberOfParametersDeveloperErrorForMethod("Foo", 0, 3)),
              shape("vn", 0, Info{{"VNErr", 3}}));
    EXPECT_EQ(log->messages(),
              std::vector<std::string>{
                  "ERROR: Wrong number of parameters calling Foo: received 0, expected: 3\n"});
    EXPECT_DEATH(wrongNumberOfParametersDeveloperErrorForMethod("Foo", -1, 2),
                 "Fatal error: .*Foo");
    EXPECT_DEATH(wrongNumberOfParametersDeveloperErrorForMethod("Foo", 1, -2),
                 "Fatal error: .*Foo");
}

TEST_F(NSErrorVNFoundationTest, PosixErrorDescribesTheCurrentErrnoNotItsArgument) {
    errno = ENOENT;
    EXPECT_EQ(shape(posixError(EACCES)),
              shape(NSPOSIXErrorDomain, EACCES, Info{{kDescription, strerror(ENOENT)}}));
}

TEST_F(NSErrorVNFoundationTest, LoggingTheDescriptionHappensOnlyInDeveloperMode) {
    const ErrorPtr described = defaultVNErrorWithLocalizedDescription("shown");
    EXPECT_FALSE(logLocalizedDescriptionIfShowDeveloperInfoIsEnabled(*described));
    VNUtilities::setShowDeveloperInfo(true);
    ::testing::internal::CaptureStdout();
    EXPECT_TRUE(logLocalizedDescriptionIfShowDeveloperInfoIsEnabled(*described));
    EXPECT_TRUE(logLocalizedDescriptionIfShowDeveloperInfoIsEnabled(*defaultVNError()))
        << "nothing to write";
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "ERROR: shown\n");
    EXPECT_EQ(log->messages(), std::vector<std::string>{"ERROR: shown\n"});
}

TEST_F(NSErrorVNFoundationTest, PermissionDeniedCarriesDefaultTextsAndASettingsRecovery) {
    recordOpenedURLs();
    const ErrorPtr error = permissionDeniedErrorWithGoToSettingsRecoveryAttempter();
    EXPECT_EQ(error->domain(), VNErrorDomain);
    EXPECT_EQ(error->code(), 550);
    EXPECT_EQ(error->localizedDescription(), "Permission denied");
    EXPECT_EQ(error->localizedRecoverySuggestion(), "Enable permission in Settings");
    EXPECT_EQ(error->localizedRecoveryOptions(), std::vector<std::string>{"Settings"});
    const auto attempter =
        std::dynamic_pointer_cast<VNRecoveryAttempter>(error->recoveryAttempter());
    ASSERT_NE(attempter, nullptr);
    EXPECT_TRUE(attempter->attemptRecoveryFromError(error, 0));
    EXPECT_EQ(opened, std::vector<std::string>{std::string(UIApplicationOpenSettingsURLString)});

    // Only a "vn"/550 error whose chosen option is this attempter's title is recovered.
    const auto withOptions = [](std::string_view domain, std::int64_t code, Value::Array options) {
        return Error::make(domain, code,
                           Info{{std::string(NSLocalizedRecoveryOptionsErrorKey), options}});
    };
    for (const ErrorPtr& other :
         {defaultVNError(), withOptions("VN", 550, {"Settings"}),
          withOptions("vn", 551, {"Settings"}), withOptions("vn", 550, {"Réglages"}),
          Error::make(VNErrorDomain, 550), ErrorPtr()}) {
        EXPECT_FALSE(attempter->attemptRecoveryFromError(other, 0))
            << (other ? shape(other) : "null");
    }
    EXPECT_EQ(opened.size(), 1u);
    EXPECT_DEATH(attempter->attemptRecoveryFromError(error, 1),
                 "Fatal error: Recovery option index 1");
    EXPECT_DEATH(attempter->attemptRecoveryFromError(error, -1),
                 "Fatal error: Recovery option index -1");
}

TEST_F(NSErrorVNFoundationTest,
       PermissionDeniedTextsPreferArgumentsThenInjectedTextsThenTheBundle) {
    Bundle::main().setLocalizedStrings(
        {{"Settings", "Réglages"},
         {"Permission denied", "Permission refusée"},
         {"Enable permission in Settings", "Activez la permission"}});
    ErrorPtr error = permissionDeniedErrorWithGoToSettingsRecoveryAttempter();
    EXPECT_EQ(error->localizedRecoveryOptions(), std::vector<std::string>{"Réglages"});
    EXPECT_EQ(error->localizedDescription(), "Permission refusée");
    EXPECT_EQ(error->localizedRecoverySuggestion(), "Activez la permission");

    registerErrorClassTextProvider(VNGoToSettingsDescriptionTextName,
                                   [] { return std::string("Injected"); });
    registerErrorClassTextProvider(VNGoToSettingsRecoverySuggestionTextName,
                                   [] { return std::nullopt; });
    error = permissionDeniedErrorWithGoToSettingsRecoveryAttempter();
    EXPECT_EQ(error->localizedDescription(), "Injected");
    EXPECT_EQ(error->localizedRecoverySuggestion(), "Activez la permission")
        << "a provider may decline";

    error = permissionDeniedErrorWithGoToSettingsRecoveryAttempter("Open", "Given", std::nullopt);
    EXPECT_EQ(error->localizedRecoveryOptions(), std::vector<std::string>{"Open"});
    EXPECT_EQ(error->localizedDescription(), "Given");

    recordOpenedURLs();  // the attempter recovers with the option title its error was made with
    const auto attempter =
        std::dynamic_pointer_cast<VNRecoveryAttempter>(error->recoveryAttempter());
    EXPECT_TRUE(attempter->attemptRecoveryFromError(error, 0));
    EXPECT_FALSE(attempter->attemptRecoveryFromError(
        permissionDeniedErrorWithGoToSettingsRecoveryAttempter(), 0));
    EXPECT_EQ(opened.size(), 1u);
}

}  // namespace
}  // namespace vn
