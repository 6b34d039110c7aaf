#include "core/files.h"

#include <chrono>
#include <thread>

#include "child.h"
#include "support.h"

namespace hyetex {
namespace {

using test::ReadFile;
using test::TempFolder;
namespace fs = std::filesystem;

int FilesIn(const std::string& folder) {
  return static_cast<int>(std::distance(fs::directory_iterator(folder), {}));
}

TEST(Files, AFullDiskLeavesTheOldFileWholeAndNoRest) {
  const TempFolder folder;
  const std::string path = folder / "Tasks.lst";
  ASSERT_TRUE(WriteWholeFile(path, "old"));
  EXPECT_TRUE(test::OnFullDisk(1000, [&] {
    const auto result = WriteWholeFile(path, std::string(5000, 'x'));
    return !result && result.error().find(path) != std::string::npos;
  }));
  EXPECT_EQ(ReadFile(path), "old");
  EXPECT_EQ(FilesIn(folder.Path()), 1);
}

TEST(Files, WhatCannotBeWrittenSaysSoAndChangesNothing) {
  const TempFolder folder;
  EXPECT_FALSE(WriteWholeFile(folder / "missing/a.dat", "x"));
  EXPECT_FALSE(WriteWholeFile(folder.Path(), "x"));
  ASSERT_TRUE(WriteWholeFile(folder / "a.dat", "old"));
  EXPECT_TRUE(
      test::InReadOnlyFolder(folder.Path(), [&] { return !WriteWholeFile(folder / "a.dat", "new"); }));
  EXPECT_EQ(ReadFile(folder / "a.dat"), "old");
  EXPECT_EQ(FilesIn(folder.Path()), 1);
}

TEST(Files, KeepsPermissionsAndWhatALinkPointsTo) {
  const TempFolder folder;
  ASSERT_TRUE(WriteWholeFile(folder / "real.dat", "old"));
  fs::permissions(folder / "real.dat", fs::perms(0600));
  fs::create_symlink("real.dat", folder / "link.dat");
  ASSERT_TRUE(WriteWholeFile(folder / "link.dat", std::string("n\0w\r\n", 5)));
  EXPECT_TRUE(fs::is_symlink(folder / "link.dat"));
  EXPECT_EQ(ReadFile(folder / "real.dat"), std::string("n\0w\r\n", 5));
  EXPECT_EQ(fs::status(folder / "real.dat").permissions(), fs::perms(0600));
  EXPECT_EQ(FilesIn(folder.Path()), 2);
}

TEST(Files, AKilledWriterLeavesOldOrNewWhole) {
  const TempFolder folder;
  const std::string path = folder / "a.dat", a(200'000, 'a'), b(300'000, 'b');
  ASSERT_TRUE(WriteWholeFile(path, a));
  for (int round = 0; round < 12; ++round) {
    const pid_t child = test::StartChild([&] {
      for (;;) {
        if (!WriteWholeFile(path, b) || !WriteWholeFile(path, a)) return false;
      }
    });
    std::this_thread::sleep_for(std::chrono::microseconds(1000 + 1700 * round));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    const std::string left = ReadFile(path);
    ASSERT_TRUE(left == a || left == b) << left.size();
  }
}

TEST(Files, ReadsOnlyWholeFilesOfABearableSize) {
  const TempFolder folder;
  test::WriteFile(folder / "a.dat", "12345");
  EXPECT_EQ(ReadWholeFile(folder / "a.dat", 5).value(), "12345");
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  for (const auto& [path, most] : std::vector<std::pair<std::string, std::size_t>>{
           {folder / "a.dat", 4}, {folder / "none.dat", 5}, {folder.Path(), 5}, {folder / "pipe", 5}}) {
    const auto result = ReadWholeFile(path, most);
    ASSERT_FALSE(result) << path;
    EXPECT_NE(result.error().find(path), std::string::npos);
    EXPECT_EQ(result.error().find('\n'), std::string::npos);
  }
}

TEST(Files, TakesPathsApartAtBothSeparators) {
  EXPECT_EQ(BaseName("data\\sub/RG12-19980305-1230.dat"), "RG12-19980305-1230.dat");
  EXPECT_EQ(JoinPath("a\\", "b"), "a\\b");
  const TempFolder folder;
  EXPECT_EQ(CheckTargetFolder(folder.Path(), "prog"), WithBackslash(folder.Path()));
  EXPECT_EQ(CheckTargetFolder(folder / "gone", "prog"), "prog");
}

}  // namespace
}  // namespace hyetex
