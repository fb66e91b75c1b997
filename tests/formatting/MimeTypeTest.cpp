// MIME types from path extensions: the system database, then the override tables.
#include "testing/ScopedProcessState.h"
#include "vn/formatting/MimeType.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace vn {
namespace {

TEST(MimeType, UsesTheSystemDatabaseCaseInsensitively) {
    EXPECT_EQ(mimeType("png"), "image/png");
    EXPECT_EQ(mimeTypeFromPathExtension("PNG"), "image/png");
    EXPECT_EQ(mimeTypeForPathExtension("json"), "application/json");
    EXPECT_EQ(mimeTypeForPathExtension(""), "application/octet-stream");
    EXPECT_EQ(mimeTypeForPathExtension("no-such-extension"), mimeTypeApplicationOctetStream);
    EXPECT_EQ(mimeType(""), std::nullopt);
    // Not known to the system database: the override tables answer.
    EXPECT_EQ(mimeType("divx"), "video/x-divx");
    EXPECT_EQ(mimeType("sif"), "application/x-stuffit");
    EXPECT_EQ(mimeType("caf"), "audio/x-caf");
}

class MimeTypeWithSmallDatabase : public ::testing::Test {
  protected:
    void SetUp() override {
        path_ = std::filesystem::temp_directory_path() / "mime.types";
        std::ofstream file(path_);
        file << "# a database that knows few types\n"
                "image/png\t\tpng PNG2\n"
                "application/x-stuffit sit   # comment\n"
                "audio/x-first aifc\n"
                "text/plain txt\n"
                "text/other txt\n"
                "application/empty\n";
        file.close();
        setSystemMimeTypesPath(path_.string());
    }
    testing::ScopedProcessState state_;
    std::filesystem::path path_;
};

TEST_F(MimeTypeWithSmallDatabase, OverridesApplyOnlyWhereTheDatabaseHasNoType) {
    EXPECT_EQ(mimeType("png2"), "image/png");
    EXPECT_EQ(mimeType("txt"), "text/plain");  // the first type listed wins
    EXPECT_EQ(mimeType("aifc"), "audio/x-first");
    EXPECT_EQ(mimeType("sit"), "application/x-stuffit");
    const std::pair<const char*, const char*> byExtension[] = {
        {"swf", "application/x-shockwave-flash"},
        {"ogg", "audio/vorbis"},
        {"oga", "audio/vorbis"},
        {"spx", "audio/vorbis"},
        {"webm", "video/webm"},
        {"ogv", "video/ogg"},
        {"divx", "video/x-divx"},
        {"sif", "application/x-stuffit"},
        {"rar", "application/x-rar-compressed"},
        {"dmg", "application/x-apple-diskimage"},
    };
    for (const auto& [extension, type] : byExtension)
        EXPECT_EQ(mimeType(extension), type) << extension;
    const std::pair<const char*, const char*> byIdentifier[] = {
        {"pages", "application/x-iwork-pages-sffpages"},
        {"key", "application/x-iwork-keynote-sffkey"},
        {"NUMBERS", "application/x-iwork-numbers-sffnumbers"},
        {"caf", "audio/x-caf"},
        {"mp2", "video/mpeg"},
    };
    for (const auto& [extension, type] : byIdentifier)
        EXPECT_EQ(mimeType(extension), type) << extension;
    // The extension table compares exactly.
    EXPECT_EQ(mimeType("OGG"), std::nullopt);
    EXPECT_EQ(mimeTypeForPathExtension("OGG"), "application/octet-stream");
}

TEST_F(MimeTypeWithSmallDatabase, UnreadableDatabaseLeavesOnlyTheTables) {
    setSystemMimeTypesPath((path_.parent_path() / "missing.types").string());
    EXPECT_EQ(mimeType("png"), std::nullopt);
    EXPECT_EQ(mimeType("rar"), "application/x-rar-compressed");
}

}  // namespace
}  // namespace vn
