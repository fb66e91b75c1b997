#include "vn/network/URLError.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(URLError, CarriesDomainCodeDescriptionFailingURLAndCause) {
    const ErrorPtr cause = Error::make(VNCurlErrorDomain, 7);
    const ErrorPtr error = URLError(NSURLErrorCannotConnectToHost, "http://127.0.0.1:1/", cause);
    EXPECT_EQ(error->domain(), NSURLErrorDomain);
    EXPECT_EQ(error->code(), -1004);
    EXPECT_EQ(error->localizedDescription(), "Could not connect to the server.");
    EXPECT_EQ(*error->userInfoValue(NSErrorFailingURLStringErrorKey).string(),
              "http://127.0.0.1:1/");
    EXPECT_EQ(*error->userInfoValue(NSErrorFailingURLKey).string(), "http://127.0.0.1:1/");
    ASSERT_TRUE(error->underlyingError());
    EXPECT_EQ(error->underlyingError()->code(), 7);
    EXPECT_TRUE(error->isNetworkPossibleError());
}

TEST(URLError, WithoutURLOrCauseHasOnlyTheDescription) {
    const ErrorPtr error = URLError(NSURLErrorCancelled, std::nullopt);
    EXPECT_EQ(error->userInfo().size(), 1u);
    EXPECT_EQ(error->localizedDescription(), "cancelled");
}

}  // namespace
}  // namespace vn
