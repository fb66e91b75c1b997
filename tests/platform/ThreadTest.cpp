#include "vn/platform/Thread.h"

#include <gtest/gtest.h>

#include <thread>

#include "vn/platform/Date.h"
#include "vn/platform/Exception.h"
#include "vn/platform/FatalError.h"

// External linkage, so that the exported symbol table names it.
[[gnu::noinline]] std::vector<std::string> symbolsFromANamedFunction() {
    return vn::Thread::callStackSymbols();
}

namespace vn {
namespace {

TEST(Thread, TheThreadThatRunsMainIsTheMainThread) {
    EXPECT_TRUE(Thread::isMainThread());
    bool otherIsMain = true;
    std::thread([&] { otherIsMain = Thread::isMainThread(); }).join();
    EXPECT_FALSE(otherIsMain);
}

TEST(Thread, EachThreadHasItsOwnDictionary) {
    Thread::threadDictionary()["key"] = "main";
    Value seenByOther;
    std::thread([&] {
        seenByOther = Thread::threadDictionary()["key"];
        Thread::threadDictionary()["key"] = "other";
    }).join();
    EXPECT_TRUE(seenByOther.isNil());
    EXPECT_EQ(Thread::threadDictionary()["key"], Value("main"));
}

TEST(Thread, CallStackSymbolsAreNumberedAndDemangled) {
    const auto symbols = symbolsFromANamedFunction();
    ASSERT_GE(symbols.size(), 2u);
    EXPECT_EQ(symbols[0].rfind("0 ", 0), 0u);
    EXPECT_NE(symbols[0].find("symbolsFromANamedFunction"), std::string::npos) << symbols[0];
}

TEST(Exception, CarriesNameReasonAndTheStackWhereItWasMade) {
    try {
        throw Exception(std::string(NSInternalInconsistencyException), "bad state", {{"k", 1}});
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.name(), "NSInternalInconsistencyException");
        EXPECT_EQ(exception.reason(), "bad state");
        EXPECT_STREQ(exception.what(), "bad state");
        EXPECT_EQ(exception.userInfo().at("k"), Value(1));
        EXPECT_FALSE(exception.callStackSymbols().empty());
    }
}

TEST(FatalErrorDeathTest, StopsTheProcessWithTheMessage) {
    EXPECT_DEATH(fatalError("gate used before start"), "Fatal error: gate used before start");
    EXPECT_DEATH(unimplementedInitializer("VNFoundation.VNNumberWithPictureFormatter", "init()"),
                 "Use of unimplemented initializer 'init\\(\\)' for class "
                 "'VNFoundation.VNNumberWithPictureFormatter'");
}

TEST(Date, DescribesProlepticGregorianInstantsInGmt) {
    EXPECT_EQ(Date{0}.description(), "2001-01-01 00:00:00 +0000");
    EXPECT_EQ(Date{-1}.description(), "2000-12-31 23:59:59 +0000");
    EXPECT_EQ(Date{-63113904000}.description(), "0001-01-01 00:00:00 +0000");
    EXPECT_EQ(Date::fromTimeIntervalSince1970(0).description(), "1970-01-01 00:00:00 +0000");
    EXPECT_EQ(Date{604800.9}.description(), "2001-01-08 00:00:00 +0000");
    EXPECT_DOUBLE_EQ(Date::fromTimeIntervalSince1970(10).timeIntervalSince1970(), 10);
}

}  // namespace
}  // namespace vn
