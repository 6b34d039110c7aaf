// populate: the command's words, its counts and its exit status.
#include "cli/run.h"
#include "database/conversion/population_fixture.h"

namespace hyetex::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class PopulateCommand : public PopulationFixture {
 protected:
  void SetUp() override {
    PopulationFixture::SetUp();
    ASSERT_TRUE(SaveLists(Folder.Path(), Lists));
  }
  Ran Populate(std::vector<std::string> words) {
    words.insert(words.begin(),
                 {"populate", "--folder", Folder.Path(), "--db", Text(), "--instrument", "RG12"});
    return RunCli(words);
  }
  static std::string Counts(int converted, int skipped, int failed, int rows) {
    return "Charts converted: " + std::to_string(converted) + "\nCharts skipped: " + std::to_string(skipped) +
           "\nCharts not converted: " + std::to_string(failed) + "\nRows written: " + std::to_string(rows) +
           "\n";
  }
};
HYETEX_ON_ALL_ENGINES(PopulateCommand);

TEST_P(PopulateCommand, ConvertsSkipsAndReplaces) {
  Store({});
  Store({.Start = MakeDate(1998, 3, 6), .End = MakeDate(1998, 3, 7), .Points = {"0,0,"}});
  const Ran first = Populate({"--gmt", "-2", "--manual", "--log"});
  EXPECT_EQ(first.Out, Counts(1, 0, 1, 4));
  EXPECT_THAT(first.Error, HasSubstr("RG12 06/03/1998: not converted: the chart's points span no time"));
  EXPECT_EQ(first.Status, 1);
  EXPECT_EQ(Rows()[0], "1998-03-05T12:00:00 | 1998-03-05T12:30:00 | 3 |  ");
  EXPECT_THAT(ReadFile(Folder / "datalog.txt"), HasSubstr("4 records added to DB"));

  Run("DELETE FROM chart_ascii WHERE chart_date > '1998-03-05 12:00:00'");
  const Ran nothing = Populate({});
  EXPECT_EQ(nothing.Out, Counts(0, 0, 0, 0));
  EXPECT_EQ(nothing.Status, 0);
  const Ran skipped = Populate({"--all", "--gmt", "-2"});
  EXPECT_EQ(skipped.Out, Counts(0, 1, 0, 0));
  EXPECT_THAT(skipped.Error, HasSubstr("05/03/1998 10:00:00 to 05/03/1998 12:00:00"));
  EXPECT_EQ(skipped.Status, 1);
  const Ran replaced = Populate({"--all", "--gmt", "-2", "--overwrite", "--lapse", "45", "--alpha"});
  EXPECT_EQ(replaced.Out, Counts(1, 0, 0, 2));
  EXPECT_EQ(replaced.Error, "");
  EXPECT_EQ(replaced.Status, 0);
  EXPECT_THAT(Rows(), SizeIs(2));
}

TEST_P(PopulateCommand, SaysWhatIsOff) {
  EXPECT_THAT(RunCli({"populate"}).Error, HasSubstr("--instrument is required"));
  for (const char* number : {"two", "2x", "", "inf", "1e9", "14.5", "-15"})
    EXPECT_EQ(Populate({"--gmt", number}).Status, 2) << number;
  EXPECT_EQ(Populate({"--lapse", "-1"}).Status, 2);
  EXPECT_EQ(Populate({"more"}).Status, 2);
  const Ran unknown = RunCli({"populate", "--folder", Folder.Path(), "--db", Text(), "--instrument", "RG99"});
  EXPECT_EQ(unknown.Status, 1);
  EXPECT_THAT(unknown.Error, HasSubstr("no instrument RG99"));
  Store({.Points = {"30,5,", "60,5,\r\nNumber of Points: 9"}});
  const Ran cut = Populate({"--overwrite"});
  EXPECT_EQ(cut.Out, Counts(0, 0, 1, 0));
  EXPECT_THAT(cut.Error, HasSubstr("cut off"));
  EXPECT_EQ(cut.Status, 1);
  Run("DROP TABLE chart_ascii");
  const Ran ran = Populate({});
  EXPECT_EQ(ran.Status, 1);
  EXPECT_THAT(ran.Error, HasSubstr("no table"));
}

}  // namespace
}  // namespace hyetex::test
