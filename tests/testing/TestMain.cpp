// Entry point of every test program. Each test process gets a temporary directory of its own
// (as TMPDIR), so tests that run in parallel never share files such as the log file.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    std::string pattern = (std::filesystem::temp_directory_path() / "vn-test-XXXXXX").string();
    const char* directory = mkdtemp(pattern.data());
    if (directory) setenv("TMPDIR", directory, 1);
    const int result = RUN_ALL_TESTS();
    if (directory) {
        std::error_code ignored;
        std::filesystem::remove_all(directory, ignored);
    }
    return result;
}
