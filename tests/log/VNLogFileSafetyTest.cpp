// The log file lives at a fixed name in a temporary folder other local users may write to: a
// symbolic link planted there must never lead the log into someone else's file.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
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

// The folder a death test works in, with a victim file and, at the log file's name, a link to
// it. The child runs the test body again: the parent makes the folder under base, plants the
// link and names the folder in variable; the child finds it there and makes nothing. The
// parent removes the folder with everything in it at the end of the scope.
class PlantedLinkFolder {
  public:
    PlantedLinkFolder(const char* variable, const std::string& base) : variable_(variable) {
        if (const char* inherited = std::getenv(variable)) {
            path_ = inherited;
            return;
        }
        std::string pattern = base + "vn-log-safety-XXXXXX";
        if (!mkdtemp(pattern.data())) return;
        path_ = pattern;
        isParent_ = true;
        setenv(variable, path_.c_str(), 1);
        std::ofstream(victim()) << kVictimContent;
        fs::create_symlink(victim(), logFile());
    }
    ~PlantedLinkFolder() {
        if (!isParent_) return;
        unsetenv(variable_);
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    PlantedLinkFolder(const PlantedLinkFolder&) = delete;
    PlantedLinkFolder& operator=(const PlantedLinkFolder&) = delete;

    bool isParent() const { return isParent_; }
    const fs::path& path() const { return path_; }
    fs::path victim() const { return path_ / "victim.txt"; }
    fs::path logFile() const { return path_ / "vnlog.log"; }

  private:
    const char* variable_;
    fs::path path_;
    bool isParent_ = false;
};

// In a child process (whose logger is created there, in the folder TMPDIR names), a symbolic
// link to a victim file planted at the log file's name is replaced, not followed: the victim
// keeps its content and the log is a regular file of the owner's alone.
TEST(VNLogFileSafetyDeathTest, APlantedLinkIsReplacedByAnOwnerOnlyFile) {
    const PlantedLinkFolder planted("VN_LOG_SAFETY_TEST_FOLDER", temporaryDirectory());
    ASSERT_FALSE(planted.path().empty());
    const fs::path& folder = planted.path();
    const fs::path victim = planted.victim();
    const fs::path logFile = planted.logFile();
    EXPECT_EXIT(
        {
            setenv("TMPDIR", folder.c_str(), 1);
            ScopedProcessState::turnLogFileOn();
            VNLog::logMessage("a line of the log");
            std::exit(VNLog::sharedInstance()->logFilePath() == logFile.string() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
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
    // Under /tmp itself: the logging user must be able to reach the folder.
    const PlantedLinkFolder planted("VN_LOG_SAFETY_TEST_SHARED_FOLDER", "/tmp/");
    ASSERT_FALSE(planted.path().empty());
    const fs::path& folder = planted.path();
    const fs::path victim = planted.victim();
    const fs::path logFile = planted.logFile();
    if (planted.isParent()) {
        fs::permissions(victim, fs::perms::all & ~(fs::perms::owner_exec | fs::perms::group_exec |
                                                   fs::perms::others_exec));
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
    EXPECT_EQ(contentOf(victim), kVictimContent);
    EXPECT_TRUE(fs::is_symlink(logFile)) << "the other user's link is left alone";
}

}  // namespace
}  // namespace vn
