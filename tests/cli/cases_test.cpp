// Whole sessions, each a folder of tests/cases:
//   program/      the program folder that the session starts from
//   args          what follows "digitize --folder program", one word a line
//   journal.txt   the session, where the words name it
//   expected/     the chart file, by its name; "report", what is printed but for the line with the file's
//                 path; "notes", what is said on standard error; or "error", the one line of a refusal
// A further case is a further folder.
#include <algorithm>
#include <filesystem>
#include <vector>

#include "cli/run.h"
#include "paths.h"

namespace hyetex::test {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> CaseNames() {
  std::vector<std::string> names;
  std::error_code missing;
  for (const auto& entry : fs::directory_iterator(test::Cases(), missing))
    if (entry.is_directory()) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> ChartFilesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder))
    if (entry.path().filename().string().find('-') != std::string::npos && entry.path().extension() == ".dat")
      names.push_back(entry.path().filename().string());
  return names;
}

class Cases : public ::testing::TestWithParam<std::string> {};

TEST(CaseFolders, AreFound) { EXPECT_THAT(CaseNames(), ::testing::SizeIs(::testing::Gt(1U))); }

TEST_P(Cases, GivesExactlyWhatIsExpected) {
  const TempFolder folder;
  const fs::path own = folder / "case", expected = own / "expected";
  fs::copy(fs::path(test::Cases()) / GetParam(), own, fs::copy_options::recursive);
  std::vector<std::string> words{"digitize", "--folder", "program"};
  for (const std::string& word : Lines(ReadFile(own / "args"))) words.push_back(word);

  const Ran ran = RunCli(words, {.Folder = own});

  const bool refused = fs::exists(expected / "error");
  const std::vector<std::string> charts = ChartFilesIn(expected);
  ASSERT_NE(charts.empty(), !refused) << "a case expects one chart file or one error";
  std::string out;
  for (const std::string& line : Lines(ran.Out))
    if (!line.starts_with("Chart file: ")) out += line + "\n";
  EXPECT_EQ(out, ReadFile(expected / "report"));
  EXPECT_EQ(ran.Error, ReadFile(expected / (refused ? "error" : "notes")));
  EXPECT_EQ(ran.Status, refused ? 1 : 0);
  ASSERT_EQ(ChartFilesIn(own / "program"), charts);
  for (const std::string& name : charts) {
    EXPECT_EQ(ReadFile(own / "program" / name), ReadFile(expected / name));
    EXPECT_THAT(ran.Out, ::testing::EndsWith("Chart file: program/" + name + "\n"));
  }
}

INSTANTIATE_TEST_SUITE_P(Folders, Cases, ::testing::ValuesIn(CaseNames()), [](const auto& test) {
  std::string name = test.param;
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return name;
});

}  // namespace
}  // namespace hyetex::test
