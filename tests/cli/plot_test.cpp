#include <gmock/gmock.h>

#include <algorithm>

#include "cli/run.h"

namespace hyetex::test {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

std::string Chart(const std::string& name) { return Sources() + "/tests/cases/" + name; }
const std::string Linear = "linear/expected/RG12-19980305-1230.dat";

TEST(Plot, WritesEachKindOfPictureWithoutADisplay) {
  const TempFolder folder;
  const struct {
    const char *Chart, *View, *Page, *PdfPage;
  } cases[] = {{"linear/expected/RG12-19980305-1230.dat", "series", "--landscape", "[ 0 0 842 595 ]"},
               {"attached-strips/expected/RG7-20031130-0800.dat", "trace", "--portrait", "[ 0 0 595 842 ]"}};
  for (const auto& c : cases) {
    const Ran ran = RunCli({"plot", Chart(c.Chart), "--view", c.View, c.Page, "--step", "15", "--alpha",
                            "--pdf", folder / "a.pdf", "--png", folder / "a.png", "--svg", folder / "a.svg"});
    EXPECT_EQ(ran.Status, 0);
    EXPECT_EQ(ran.Error + ran.Out, "");
    const std::string pdf = ReadFile(folder / "a.pdf"), png = ReadFile(folder / "a.png");
    EXPECT_THAT(pdf, StartsWith("%PDF-"));
    EXPECT_THAT(pdf, HasSubstr(c.PdfPage));
    EXPECT_THAT(pdf, EndsWith("%%EOF\n"));
    EXPECT_THAT(png, StartsWith("\x89PNG"));
    EXPECT_GT(png.size(), 20000U);
    EXPECT_THAT(ReadFile(folder / "a.svg"), EndsWith("</svg>\n"));
  }
}

TEST(Plot, SaysWhatAChartLacksAndDrawsThat) {
  const TempFolder folder;
  const Ran ran = RunCli({"plot", "--view", "series", "--png", folder / "a.png",
                          Chart("empty-form/expected/RG7-19960704-0000.dat")});
  EXPECT_EQ(ran.Status, 0);
  EXPECT_THAT(ran.Error, HasSubstr("not digitized"));
  EXPECT_THAT(ReadFile(folder / "a.png"), StartsWith("\x89PNG"));
}

TEST(Plot, LeavesWhatIsThereWhenItFails) {
  const TempFolder folder;
  const std::string chart = folder / "chart.dat", picture = folder / "a.png";
  const std::string bytes = ReadFile(Chart(Linear));
  WriteFile(chart, bytes);
  WriteFile(picture, "old");
  const struct {
    std::vector<std::string> Words;
    int Status;
    const char* Error;
  } cases[] = {
      {{"--view", "trace"}, 2, "--pdf"},
      {{"--png", picture}, 2, "--view is required"},
      {{"--view", "rain", "--png", picture}, 2, "trace or series is wanted"},
      {{"--view", "series", "--step", "0", "--png", picture}, 2, "--step"},
      {{"--view", "series", "--font-size", "99", "--png", picture}, 2, "--font-size"},
      {{"--view", "trace", "--portrait", "--landscape", "--png", picture}, 2, "--landscape"},
      {{"--view", "trace", "--png", chart}, 2, "the chart file itself"},
      {{"--view", "trace", "--png", picture, "--svg", folder.Path() + "/./a.png"}, 2, "cannot both be"},
      {{"--view", "trace", "--png", folder / "no/a.png"}, 1, "no/a.png"},
      {{"--view", "trace", "--svg", folder / "no/a.svg", "--pdf", folder / "no/a.pdf"}, 1, "no/a"}};
  for (const auto& c : cases) {
    std::vector<std::string> words{"plot", chart};
    words.insert(words.end(), c.Words.begin(), c.Words.end());
    SCOPED_TRACE(::testing::PrintToString(words));
    const Ran ran = RunCli(words);
    EXPECT_EQ(ran.Status, c.Status);
    EXPECT_THAT(ran.Error, StartsWith("hyetex-cli: "));
    EXPECT_THAT(ran.Error, HasSubstr(c.Error));
    EXPECT_EQ(ReadFile(chart), bytes);
    EXPECT_EQ(ReadFile(picture), "old");
  }
  EXPECT_EQ(RunCli({"plot", "--view", "trace", "--png", picture, folder / "none.dat"}).Status, 1);
  EXPECT_EQ(ReadFile(picture), "old");
}

TEST(Report, SumsUpChartsAndNamesWhatIsNone) {
  const TempFolder folder;
  const std::string words = folder / "words.dat";
  WriteFile(words, "12,5,no chart's point\r\n");
  const Ran ran = RunCli({"report", Chart(Linear), words, folder / "none.dat", Chart(Linear)});
  EXPECT_EQ(ran.Status, 1);
  EXPECT_THAT(ran.Error, HasSubstr(words + ": it is no chart file"));
  EXPECT_THAT(ran.Error, HasSubstr("none.dat"));
  EXPECT_EQ(std::ranges::count(ran.Out, '\n'), 4) << ran.Out;
  EXPECT_NE(ran.Out.rfind("05/03/1998  12:30:00"), ran.Out.find("05/03/1998  12:30:00"));
}

}  // namespace
}  // namespace hyetex::test
