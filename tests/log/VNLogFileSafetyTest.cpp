// The log file lives at a fixed name in a temporary folder other local users may write to: a
// symbolic link planted there must never lead the log into someone else's file.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

#include "testing/ScopedProcessState.h"
#include "vn/log/VNLog.h"
#include "vn/platform/FileSystem.h"

namespace vn {
namespace {

namespace fs = std::filesystem;
using testing::ScopedProcessState;

constexpr const char* kVictimContent = "another user's precious lines\n";

std::string contentOf(const fs::path& path) {
    std::stringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

// A fresh folder under base, removed with everything in it at the end of the scope.
class ScratchFolder {
  public:
    explicit ScratchFolder(const std::string& base) {
        std::string pattern = base + "vn-log-safety-XXXXXX";
        if (mkdtemp(pattern.data())) path_ = pattern;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        if (!path_.empty()) fs::remove_all(path_, ignored);
    }
    const fs::path& path() const { return path_; }

  private:
    fs::path path_;
};

// In a child process (whose logger is created there, in the folder TMPDIR names), a symbolic
// link to a victim file planted at the log file's name is replaced, not followed: the victim
// keeps its content and the log is a regular file of the owner's alone.
TEST(VNLogFileSafetyDeathTest, APlantedLinkIsReplacedByAnOwnerOnlyFile) {
    constexpr const char* kFolderVariable = "VN_LOG_SAFETY_TEST_FOLDER";
    const char* inherited = std::getenv(kFolderVariable);
    // The child runs this body again: it takes the parent's folder and makes none.
    std::optional<ScratchFolder> scratch;
    if (!inherited) scratch.emplace(temporaryDirectory());
    const fs::path folder = inherited ? fs::path(inherited) : scratch->path();
    ASSERT_FALSE(folder.empty());
    setenv(kFolderVariable, folder.c_str(), 1);
    const fs::path victim = folder / "victim.txt";
    const fs::path logFile = folder / "vnlog.log";
    if (!inherited) {
        std::ofstream(victim) << kVictimContent;
        fs::create_symlink(victim, logFile);
    }
    EXPECT_EXIT(
        {
            setenv("TMPDIR", folder.c_str(), 1);
            ScopedProcessState::turnLogFileOn();
            VNLog::logMessage("a line of the log");
            std::exit(VNLog::sharedInstance()->logFilePath() == logFile.string() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    unsetenv(kFolderVariable);
    EXPECT_EQ(contentOf(victim), kVictimContent);
    ASSERT_FALSE(fs::is_symlink(logFile));
    EXPECT_EQ(contentOf(logFile), "a line of the log\n");
    struct stat status {};
    ASSERT_EQ(::stat(logFile.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u) << "readable and writable by its owner only";
}

// The attack itself: in a shared, sticky temporary folder another user (root here) has
// planted a link to a file the logging user may write. The logging user (nobody) cannot
// delete the link, and must neither follow it nor truncate the file; it says so on the
// console instead. Playing two users needs root.
TEST(VNLogFileSafetyDeathTest, AnotherUsersLinkIsNeverFollowed) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root to act as two users";
    constexpr uid_t kNobody = 65534;
    constexpr const char* kFolderVariable = "VN_LOG_SAFETY_TEST_SHARED_FOLDER";
    const char* inherited = std::getenv(kFolderVariable);
    // Under /tmp itself: the logging user must be able to reach the folder.
    std::optional<ScratchFolder> scratch;
    if (!inherited) scratch.emplace("/tmp/");
    const fs::path folder = inherited ? fs::path(inherited) : scratch->path();
    ASSERT_FALSE(folder.empty());
    setenv(kFolderVariable, folder.c_str(), 1);
    const fs::path victim = folder / "victim.txt";
    const fs::path logFile = folder / "vnlog.log";
    if (!inherited) {
        std::ofstream(victim) << kVictimContent;
        fs::permissions(victim, fs::perms::all & ~(fs::perms::owner_exec | fs::perms::group_exec |
                                                   fs::perms::others_exec));
        fs::create_symlink(victim, logFile);
        fs::permissions(folder, fs::perms::all | fs::perms::sticky_bit);
    }
    EXPECT_EXIT(
        {
            if (setgid(kNobody) != 0 || setuid(kNobody) != 0) std::exit(3);
            setenv("TMPDIR", folder.c_str(), 1);
            ScopedProcessState::turnLogFileOn();
            VNLog::logMessage("a line of the log");
            VNLog::logMessage("another line");
            std::exit(VNLog::logString().has_value() ? 1 : 0);
        },
        ::testing::ExitedWithCode(0),
        "VNLog: cannot create the log file .*vnlog.log \\(File exists\\); messages are not "
        "written to a file");
    unsetenv(kFolderVariable);
    EXPECT_EQ(contentOf(victim), kVictimContent);
    EXPECT_TRUE(fs::is_symlink(logFile)) << "the other user's link is left alone";
}

}  // namespace
}  // namespace vn
