// What digitize refuses or looks up besides the session itself; whole sessions are the folders of
// tests/cases.
#include <filesystem>

#include "cli/run.h"
#include "paths.h"

namespace hyetex::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

constexpr const char* Name = "RG12-19980305-1230.dat";

class Digitize : public ::testing::Test {
 protected:
  Digitize() { fs::copy(fs::path(test::Cases()) / "linear", Folder.Path(), fs::copy_options::recursive); }

  Ran Run(std::vector<std::string> words, const RunWith& with = {}) {
    words.insert(words.begin(), {"digitize", "--folder", Folder / "program"});
    words.push_back(Folder / "journal.txt");
    return RunCli(words, with);
  }
  std::string Chart() { return ReadFile(Folder / "program/" + Name); }
  // No other file than what the case brought may be left, a temporary one least of all.
  // But for the lock, which stays where one was taken.
  std::size_t Files(const std::string& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {})) -
           (fs::exists(folder + "/hyetex.lock") ? 1 : 0);
  }

  TempFolder Folder;
};

TEST_F(Digitize, LeavesAnOldFileAloneUnlessToldOtherwise) {
  WriteFile(Folder / "program/" + Name, "old");
  const Ran refused = Run({"--task", "1"});
  EXPECT_EQ(refused.Status, 1);
  EXPECT_THAT(refused.Error, HasSubstr("There is an existing file by the name of RG12-19980305-1230.dat. The "
                                       "programme will overwrite it."));
  EXPECT_EQ(Chart(), "old");
  EXPECT_EQ(Run({"--task", "1", "--overwrite", "--comment", "Traced\ntwice"}).Status, 0);
  EXPECT_EQ(Chart(), ReadFile(fs::path(test::Cases()) / "linear/expected" / Name));
}

TEST_F(Digitize, RefusesInOneLineAndWritesNothing) {
  WriteFile(Folder / "file", "");
  struct {
    std::vector<std::string> Words;
    const char* Error;
    int Status = 1;
  } const cases[] = {
      {{"--task", "2"}, "There is no chart 2"},
      {{"--task", "1", "--user", "Nobody"}, "There is no such user: \"Nobody\""},
      {{"--task", "1", "--user", ""}, "--user: a name", 2},
      {{"--task", "1", "--chart-type", "6"}, "There is no chart type 6"},
      {{"--task", "1", "--target", Folder / "none"}, "There is no target folder /"},
      {{"--task", "1", "--target", ""}, "--target: a name", 2},
      {{"--task", "1", "--target", Folder / "file"}, "There is no target folder /"},
      {{"--task", "1", "--target", "/proc"}, "Cannot write /proc/"}};  // where nobody can make a file
  const std::size_t files = Files(Folder / "program");
  for (const auto& c : cases) {
    const Ran ran = Run(c.Words);
    SCOPED_TRACE(c.Error);
    EXPECT_EQ(ran.Status, c.Status);
    EXPECT_THAT(ran.Error, HasSubstr(c.Error));
    EXPECT_EQ(ran.Out.find("Chart file"), std::string::npos);
    EXPECT_EQ(Files(Folder / "program"), files);
  }
}

TEST_F(Digitize, TakesTheTargetFolderOfTheSettingsWhileItExists) {
  fs::create_directory(Folder / "charts");
  WriteFile(Folder / "program/Definitions.dat",
            "frmLogin-UserName: ada traced\r\nTargetFolder: " + (Folder / "charts") + "\r\n");
  ASSERT_EQ(Run({"--task", "1"}).Status, 0);
  EXPECT_EQ(Files(Folder / "charts"), 1U);
  EXPECT_THAT(ReadFile(Folder / "charts/" + Name), HasSubstr("\r\nDigitized By: Ada Traced\r\n"));
  fs::remove_all(Folder / "charts");
  ASSERT_EQ(Run({"--task", "1"}).Status, 0);
  EXPECT_THAT(Chart(), HasSubstr("HYETEX88 ASCII FILE"));
}

TEST_F(Digitize, FailsWhenItsReportIsLost) {
  EXPECT_EQ(Run({"--task", "1"}, {.Out = "/dev/full"}).Status, 1);
}

}  // namespace
}  // namespace hyetex::test
