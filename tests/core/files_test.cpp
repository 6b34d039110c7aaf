#include "core/files.h"

#include <chrono>
#include <thread>

#include "child.h"
#include "core/definitions.h"
#include "core/folder_lock.h"
#include "core/program_files.h"
#include "core/temporary_file.h"
#include "core/text.h"
#include "staging/lists/lists.h"
#include "support.h"

namespace hyetex {
namespace {

using test::ReadFile;
using test::TempFolder;
using test::WriteFile;
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

// A kill at any moment may leave a temporary file; its name is given away only by its life.
TEST(Files, ATemporaryFileIsNoChartAndGoesWithTheNextStart) {
  const TempFolder folder;
  const auto names = [&] {
    std::vector<std::string> all;
    for (const auto& entry : fs::directory_iterator(folder.Path())) all.push_back(entry.path().filename());
    std::sort(all.begin(), all.end());
    return all;
  };
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = test::StartChild([&] {
    const auto file = TemporaryFile::In(folder.Path());
    if (!file || ::write(ready[1], "+", 1) != 1) return false;
    for (;;) ::pause();
  });
  char mark = 0;
  ASSERT_EQ(::read(ready[0], &mark, 1), 1);
  ASSERT_EQ(names().size(), 1U);
  const std::string temporary = names()[0];
  EXPECT_EQ(UpperAscii(temporary).find(".DAT"), std::string::npos);
  WriteFile(folder / (temporary + "-journal"), "a driver's");
  // What only looks alike is somebody's file.
  for (const std::string& name :
       std::vector<std::string>{".hyetex-1.tmp", ".hyetex-x-abcdef.tmp", "a.dat.abcdef", temporary + "x"})
    WriteFile(folder / name, "");

  ClearTemporaries(folder.Path());
  EXPECT_EQ(names().size(), 6U) << "its program lives";
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  ASSERT_TRUE(FolderLock::Take(folder.Path()));
  EXPECT_EQ(names(), (std::vector<std::string>{".hyetex-1.tmp", temporary + "x", ".hyetex-x-abcdef.tmp",
                                               "a.dat.abcdef", "hyetex.lock"}));
}

TEST(Files, ALockedFolderNamesItsHolderUntilThatEnds) {
  const TempFolder folder;
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = test::StartChild([&] {
    const auto lock = FolderLock::Take(folder.Path());
    if (!lock || ::write(ready[1], "+", 1) != 1) return false;
    for (;;) ::pause();
  });
  char mark = 0;
  ASSERT_EQ(::read(ready[0], &mark, 1), 1);
  const auto refused = FolderLock::Take(folder.Path());
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error(), "Hyetex is already running on the program folder " + folder.Path() +
                                 " (process " + std::to_string(child) + ")");
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_TRUE(FolderLock::Take(folder.Path()));
  EXPECT_NE(FolderLock::Take(folder / "none").error().find(folder / "none"), std::string::npos);
}

TEST(Files, ACopyHasTheModeOfItsFileAndSecretsAreForTheirOwner) {
  const TempFolder folder;
  WriteFile(folder / "odd.dat", "x");
  for (const unsigned mode : {0600U, 0640U}) {
    ::chmod((folder / "odd.dat").c_str(), mode);
    const auto copy = KeepCopy(folder / "odd.dat");
    ASSERT_TRUE(copy);
    EXPECT_EQ(ModeOf(*copy), mode);
    fs::remove(*copy);
  }
  const std::string settings = folder / "Definitions.dat";
  WriteFile(settings, "");
  ::chmod(settings.c_str(), 0644);
  ASSERT_TRUE(SetDefinition(folder.Path(), "DataBaseName", "DSN=rain;PWD=secret"));
  ASSERT_TRUE(SaveLists(folder.Path(), {}));
  EXPECT_EQ(ModeOf(settings), OwnerOnly);
  EXPECT_EQ(ModeOf(folder / "lists.dat"), OwnerOnly);
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
  WriteFile(folder / "a.dat", "12345");
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
