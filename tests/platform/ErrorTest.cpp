#include "vn/platform/Error.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(Error, ReadsItsUserInformation) {
    const ErrorPtr underlying = Error::make(NSPOSIXErrorDomain, 2);
    const ErrorPtr error =
        Error::make(VNErrorDomain, 550,
                    Value::Dictionary{
                        {std::string(NSLocalizedDescriptionKey), "Permission denied"},
                        {std::string(NSLocalizedRecoverySuggestionErrorKey), "Enable it"},
                        {std::string(NSLocalizedRecoveryOptionsErrorKey), Value::Array{"Settings"}},
                        {std::string(NSUnderlyingErrorKey), underlying},
                    });
    EXPECT_EQ(error->localizedDescription(), "Permission denied");
    EXPECT_EQ(error->localizedRecoverySuggestion(), "Enable it");
    EXPECT_EQ(error->localizedRecoveryOptions(), std::vector<std::string>{"Settings"});
    EXPECT_EQ(error->underlyingError(), underlying);
    EXPECT_EQ(error->description(),
              "Error Domain=vn Code=550 \"Permission denied\" UserInfo={\n"
              "    NSLocalizedDescription = \"Permission denied\";\n"
              "    NSLocalizedRecoveryOptions = (\n"
              "        Settings\n"
              "    );\n"
              "    NSLocalizedRecoverySuggestion = \"Enable it\";\n"
              "    NSUnderlyingError = Error Domain=NSPOSIXErrorDomain Code=2 \"The operation "
              "couldn\u2019t be "
              "completed. (NSPOSIXErrorDomain error 2.)\";\n"
              "}");
}

TEST(Error, LocalizedDescriptionOnlyAcceptsText) {
    const ErrorPtr plain = Error::make(VNErrorDomain, 7);
    EXPECT_FALSE(plain->hasUserInfo());
    EXPECT_TRUE(plain->userInfo().empty());
    EXPECT_EQ(plain->localizedDescription(),
              "The operation couldn\u2019t be completed. (vn error 7.)");
    const ErrorPtr numeric = Error::make(
        VNErrorDomain, 0, Value::Dictionary{{std::string(NSLocalizedDescriptionKey), 12}});
    EXPECT_FALSE(numeric->hasUserInfoLocalizedDescription());
    EXPECT_EQ(numeric->userInfoLocalizedDescription(), std::nullopt);
    const ErrorPtr mixedOptions = Error::make(
        VNErrorDomain, 0,
        Value::Dictionary{{std::string(NSLocalizedRecoveryOptionsErrorKey), Value::Array{"a", 1}}});
    EXPECT_EQ(mixedOptions->localizedRecoveryOptions(), std::nullopt);
}

TEST(Error, ClassifiesByCodeAndExactDomain) {
    const auto is = [](std::string_view domain, std::int64_t code,
                       bool (Error::*predicate)()
                           const) { return (*Error::make(domain, code).*predicate)(); };
    EXPECT_TRUE(is(NSCocoaErrorDomain, 3072, &Error::isUserCancelledError));
    EXPECT_FALSE(is(VNErrorDomain, VNErrCodeUserCancelled, &Error::isUserCancelledError));
    EXPECT_FALSE(is("nscocoaerrordomain", 3072, &Error::isUserCancelledError));
    EXPECT_TRUE(is(VNErrorDomain, 99991, &Error::isLoopExitError));
    EXPECT_TRUE(is(VNErrorDomain, 403139, &Error::isNotAuthorizedError));
    EXPECT_FALSE(is("VN", 403139, &Error::isNotAuthorizedError));
    EXPECT_TRUE(is(NSURLErrorDomain, -1009, &Error::isNotConnectedToInternetError));
    EXPECT_FALSE(is(NSURLErrorDomain, -1001, &Error::isNotConnectedToInternetError));
    for (const std::int64_t code : {-1001, -1003, -1004, -1005, -1009, -1018, -1019, -1020}) {
        EXPECT_TRUE(is(NSURLErrorDomain, code, &Error::isNetworkPossibleError)) << code;
    }
    for (const std::int64_t code : {-1000, -1002, -1006, -1021, 0}) {
        EXPECT_FALSE(is(NSURLErrorDomain, code, &Error::isNetworkPossibleError)) << code;
    }
    EXPECT_FALSE(is(VNErrorDomain, -1009, &Error::isNetworkPossibleError));
}

TEST(Error, LoginCanceledNeedsUserCancelledAndATrueFlag) {
    const auto withFlag = [](std::string_view domain, Value flag) {
        return Error::make(domain, 3072,
                           Value::Dictionary{{std::string(VNLoginCanceledUserInfoKey), flag}});
    };
    EXPECT_TRUE(withFlag(NSCocoaErrorDomain, true)->isLoginCanceledError());
    EXPECT_TRUE(withFlag(NSCocoaErrorDomain, "yes")->isLoginCanceledError());
    EXPECT_FALSE(withFlag(NSCocoaErrorDomain, "")->isLoginCanceledError());
    EXPECT_FALSE(withFlag(NSCocoaErrorDomain, Value::null())->isLoginCanceledError());
    EXPECT_FALSE(withFlag(NSCocoaErrorDomain, 0)->isLoginCanceledError());
    EXPECT_FALSE(withFlag(VNErrorDomain, true)->isLoginCanceledError());
    EXPECT_FALSE(Error::make(NSCocoaErrorDomain, 3072)->isLoginCanceledError());
}

TEST(Error, EqualityCoversDomainCodeAndUserInfo) {
    const Value info(Value::Dictionary{{"k", 1}});
    EXPECT_TRUE(Error::make("d", 1, info)->isEqual(*Error::make("d", 1, info)));
    EXPECT_FALSE(Error::make("d", 1, info)->isEqual(*Error::make("d", 2, info)));
    EXPECT_FALSE(Error::make("d", 1, info)->isEqual(*Error::make("d", 1)));
    EXPECT_EQ(Value(Error::make("d", 1)), Value(Error::make("d", 1)));
}

}  // namespace
}  // namespace vn
