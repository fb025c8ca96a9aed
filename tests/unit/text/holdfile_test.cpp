#include "text/holdfile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace quelmark {
namespace {

// As another program would try to hold the file; it lets go at once.
bool AnotherCouldHold(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDWR);
    const bool held = ::flock(file, LOCK_EX | LOCK_NB) == 0;
    ::close(file);
    return held;
}

TEST(HoldFile, IsHeldAgainstOthersAndMayBeHeldAgain) {
    const std::string path = std::filesystem::temp_directory_path() / ("held." + std::to_string(::getpid()));
    EXPECT_TRUE(HoldFile(path));
    EXPECT_TRUE(HoldFile(path));
    EXPECT_FALSE(AnotherCouldHold(path));
    std::filesystem::remove(path);
}
TEST(HoldFile, OneThatAnotherHoldsOrThatCannotBeMadeIsNotHeld) {
    const std::string path = std::filesystem::temp_directory_path() / ("taken." + std::to_string(::getpid()));
    const int file = ::open(path.c_str(), O_RDWR | O_CREAT, 0600);
    ASSERT_EQ(::flock(file, LOCK_EX | LOCK_NB), 0);
    EXPECT_FALSE(HoldFile(path));
    ::close(file);
    EXPECT_TRUE(HoldFile(path));
    EXPECT_FALSE(HoldFile("/no/such/folder/file"));
    std::filesystem::remove(path);
}

}  // namespace
}  // namespace quelmark
