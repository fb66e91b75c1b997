#include "vn/properties/VNInsensitiveMetadata.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(VNInsensitiveMetadata, ProbesStrippedLowercasedAndAlternateKeysInOrder) {
    struct Case {
        std::string key;
        Value::Dictionary metadata;
        Value expected;
    };
    const std::vector<Case> cases = {
        {"title", {{"title", 1}}, 1},                 // exact
        {"@Title", {{"title", 1}}, 1},                // stripped, lower case
        {"@Title", {{"Title", 1}, {"title", 2}}, 1},  // stripped wins over lower case
        {"name", {{"@name", 1}}, 1},                  // alternate with "@"
        {"Name", {{"@name", 1}}, 1},                  // alternate in lower case
        {"Name", {{"@Name", 1}, {"@name", 2}}, 1},    // exact alternate first
        {"@name", {{"@name", 1}, {"name", 2}}, 2},    // the stripped key comes first
        {"@Name", {{"@name", 1}}, 1},                 // the key itself, lower-cased
        {"title", {{"Title", 1}}, Value{}},           // dictionary keys are not lower-cased
        {"@title", {{"@Title", 1}}, Value{}},
        {"", {{"", 1}}, 1},            // empty key probed as empty...
        {"", {{"@", 1}}, 1},           // ...then as "@"
        {"@", {{"", 1}}, 1},           // "@" strips to empty
        {"ÄRGER", {{"ärger", 1}}, 1},  // lower case beyond ASCII
        {"missing", {{"other", 1}}, Value{}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(VNInsensitiveMetadata::metadataObjectForKey(c.key, c.metadata), c.expected)
            << "key " << c.key;
        EXPECT_EQ(VNInsensitiveMetadata::metadataObjectForKey(c.key, Value(c.metadata)), c.expected)
            << "key " << c.key;
    }
}

TEST(VNInsensitiveMetadata, AbsentOrNonDictionaryMetadataFindsNothing) {
    EXPECT_TRUE(VNInsensitiveMetadata::metadataObjectForKey("title", Value{}).isNil());
    EXPECT_TRUE(VNInsensitiveMetadata::metadataObjectForKey("title", Value::null()).isNil());
    EXPECT_TRUE(VNInsensitiveMetadata::metadataObjectForKey("title", Value("title")).isNil());
    EXPECT_TRUE(VNInsensitiveMetadata::metadataObjectForKey("0", Value(Value::Array{1})).isNil());
}

TEST(VNInsensitiveMetadata, FindsTheNullMarkerAsAValue) {
    const Value found = VNInsensitiveMetadata::metadataObjectForKey(
        "@Flag", Value::Dictionary{{"flag", Value::null()}});
    EXPECT_TRUE(found.isNull());
}

}  // namespace
}  // namespace vn
