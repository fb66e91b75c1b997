// The host-supplied settings: user defaults, bundle, execution environment, locale.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "testing/ScopedProcessState.h"
#include "vn/platform/Bundle.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/FileSystem.h"
#include "vn/platform/Locale.h"
#include "vn/platform/NotificationCenter.h"
#include "vn/platform/UserDefaults.h"

namespace vn {
namespace {

TEST(UserDefaults, SetValuesWinOverRegisteredDefaultsUntilRemoved) {
    UserDefaults defaults;
    defaults.registerDefaults({{"flag", true}, {"count", 3}});
    EXPECT_TRUE(defaults.boolForKey("flag"));
    EXPECT_EQ(defaults.integerForKey("count"), 3);
    defaults.setBool(false, "flag");
    EXPECT_FALSE(defaults.boolForKey("flag"));
    defaults.removeObjectForKey("flag");
    EXPECT_TRUE(defaults.boolForKey("flag"));
    defaults.reset();
    EXPECT_FALSE(defaults.boolForKey("flag"));
    EXPECT_TRUE(defaults.objectForKey("count").isNil());
}

TEST(UserDefaults, ReadsBooleansLikeThePlatform) {
    UserDefaults defaults;
    const std::pair<Value, bool> cases[] = {
        {Value("YES"), true}, {Value("1"), true},
        {Value("no"), false}, {Value(2), true},
        {Value(0), false},    {Value::null(), false},
        {Value(), false},     {Value(Value::Array{1}), false},
    };
    for (const auto& [value, expected] : cases) {
        defaults.setObject(value, "key");
        EXPECT_EQ(defaults.boolForKey("key"), expected) << value.description();
    }
    defaults.setObject("42abc", "n");
    EXPECT_EQ(defaults.integerForKey("n"), 42);
    EXPECT_EQ(defaults.stringForKey("n"), "42abc");
}

TEST(UserDefaults, ConcurrentReadersAndWritersSeeWholeValues) {
    UserDefaults defaults;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 5000; ++i) {
                if (t % 2 == 0) {
                    defaults.setObject(Value::Array{i, i}, "pair");
                } else {
                    const Value pair = defaults.objectForKey("pair");
                    if (const auto* items = pair.array()) {
                        ASSERT_EQ((*items)[0], (*items)[1]);
                    }
                }
            }
        });
    }
    for (auto& thread : threads) thread.join();
}

TEST(Bundle, MissingLocalizedTextFallsBackToTheKey) {
    Bundle bundle;
    EXPECT_EQ(bundle.localizedString("Settings"), "Settings");
    EXPECT_EQ(bundle.localizedString("key", "fallback"), "fallback");
    bundle.setLocalizedStrings({{"Settings", "Ajustes"}});
    EXPECT_EQ(bundle.localizedString("Settings"), "Ajustes");
    bundle.setInfoDictionary({{"VNLocalNetworkPermissionTimeout", 12}});
    EXPECT_EQ(bundle.objectForInfoDictionaryKey("VNLocalNetworkPermissionTimeout"), Value(12));
    EXPECT_TRUE(bundle.objectForInfoDictionaryKey("absent").isNil());
}

TEST(ExecutionEnvironment, HostSetsSwitchesAndOpensUrls) {
    const testing::ScopedProcessState state;
    VNUtilities::setShowDeveloperInfo(true);
    EXPECT_TRUE(VNUtilities::showDeveloperInfo());
    VNUtilities::setShowDeveloperInfo(false);
    EXPECT_FALSE(VNUtilities::showDeveloperInfo());

    bool heardFalse = false;
    VNExecutionEnvironmentHelper::openURL("app-settings:", {},
                                          [&](bool success) { heardFalse = !success; });
    EXPECT_TRUE(heardFalse);

    std::string opened;
    VNExecutionEnvironmentHelper::setURLOpener(
        [&](const std::string& url, const Value::Dictionary&,
            const VNExecutionEnvironmentHelper::Completion&) { opened = url; });
    VNExecutionEnvironmentHelper::openURL(std::string(UIApplicationOpenSettingsURLString));
    EXPECT_EQ(opened, "app-settings:");

    int terminations = 0;
    const ObjectPtr token = NotificationCenter::defaultCenter().addObserver(
        VNExecutionEnvironmentHelper::currentContextWillTerminateNotification(), nullptr, nullptr,
        [&](const Notification&) { ++terminations; });
    VNExecutionEnvironmentHelper::postCurrentContextWillTerminate();
    NotificationCenter::defaultCenter().removeObserver(token);
    EXPECT_EQ(terminations, 1);
}

TEST(Locale, ReadsNumberSymbolsFromRealLocales) {
    EXPECT_EQ(Locale("en_US").decimalSeparator(), ".");
    EXPECT_EQ(Locale("en_US").groupingSeparator(), ",");
    EXPECT_EQ(Locale("de_DE").decimalSeparator(), ",");
    EXPECT_EQ(Locale("de_DE").groupingSeparator(), ".");
    EXPECT_EQ(Locale("es_UY").decimalSeparator(), ",");
    EXPECT_EQ(Locale("en_US_POSIX").decimalSeparator(), ".");
}

TEST(Locale, ChangingTheCurrentLocaleNotifiesAndRefreshesTheSeparator) {
    const testing::ScopedProcessState state;
    int changes = 0;
    const ObjectPtr token = NotificationCenter::defaultCenter().addObserver(
        NSCurrentLocaleDidChangeNotification, nullptr, nullptr,
        [&](const Notification&) { ++changes; });
    Locale::setCurrent("de_DE");
    EXPECT_EQ(Locale::current().identifier(), "de_DE");
    EXPECT_EQ(Locale::currentDecimalSeparator(), ",");
    Locale::setCurrent("en_US");
    EXPECT_EQ(Locale::currentDecimalSeparator(), ".");
    NotificationCenter::defaultCenter().removeObserver(token);
    EXPECT_EQ(changes, 2);
}

TEST(FileSystem, TemporaryDirectoryEndsWithASlash) {
    const std::string directory = temporaryDirectory();
    ASSERT_FALSE(directory.empty());
    EXPECT_EQ(directory.back(), '/');
}

}  // namespace
}  // namespace vn
