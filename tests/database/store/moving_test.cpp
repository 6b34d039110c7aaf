// Loaded files on their way into the target folder, also onto another file system.
#include <gmock/gmock.h>

#include <filesystem>

#include "core/files.h"
#include "database/store/loading.h"
#include "support.h"

namespace hyetex {
namespace {

namespace fs = std::filesystem;
using namespace hyetex::test;
using ::testing::HasSubstr;

constexpr const char* Name = "RG12-19980305-1000.dat";

class Moving : public ::testing::Test {
 protected:
  Moving() { WriteFile(folder_ / Name, "HYETEX88"); }
  Result<void> Move(const std::string& target) {
    UnwatchedProgress progress;
    const std::string paths[] = {folder_ / Name};
    return MoveFilesAfterLoading(paths, target, progress);
  }

  TempFolder folder_;
};

TEST_F(Moving, EndsWhatWasKilledBetweenCopyAndRemoval) {
  fs::create_directory(folder_ / "moved");
  WriteFile(folder_ / ("moved/" + std::string(Name)), "HYETEX88");
  WriteFile(folder_ / "moved/.hyetex-999999999-abcdef.tmp", "HYE");
  ASSERT_TRUE(Move(folder_ / "moved"));
  EXPECT_FALSE(fs::exists(folder_ / Name));
  EXPECT_EQ(ReadFile(folder_ / ("moved/" + std::string(Name))), "HYETEX88");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / "moved"), {}), 1);
}

TEST_F(Moving, LeavesBothWhereAnotherFileOrTheFileItselfStandsInTheWay) {
  fs::create_directory(folder_ / "moved");
  WriteFile(folder_ / ("moved/" + std::string(Name)), "HYETEX8");
  fs::create_directory_symlink(folder_.Path(), folder_ / "same");
  fs::create_directory(folder_ / "link");
  fs::create_symlink(folder_ / Name, folder_ / ("link/" + std::string(Name)));
  for (const std::string& target : {folder_ / "moved", folder_.Path(), folder_ / "same", folder_ / "link"}) {
    const auto moved = Move(target);
    ASSERT_FALSE(moved) << target;
    EXPECT_THAT(moved.error(), HasSubstr("Error 58 in frmLoad.MoveFilesAfterLoading"));
    EXPECT_EQ(ReadFile(folder_ / Name), "HYETEX88") << target;
  }
  EXPECT_EQ(ReadFile(folder_ / ("moved/" + std::string(Name))), "HYETEX8");
}

TEST_F(Moving, CopiesToAnotherFileSystemWithItsMode) {
  if (!FolderExists("/dev/shm")) GTEST_SKIP() << "there is no other file system";
  const fs::path other = fs::path("/dev/shm") / fs::path(folder_.Path()).filename();
  fs::permissions(folder_ / Name, fs::perms::owner_read | fs::perms::owner_write);
  const auto moved = Move(other);
  const auto bytes = ReadWholeFile(other / Name, 100);
  const auto mode = ModeOf(other / Name);
  fs::remove_all(other);
  ASSERT_TRUE(moved) << moved.error();
  EXPECT_EQ(bytes.value_or(""), "HYETEX88");
  EXPECT_EQ(mode, 0600U);
  EXPECT_FALSE(fs::exists(folder_ / Name));
}

}  // namespace
}  // namespace hyetex
