#include "chartfiles/saving.h"

#include "chartfiles/comment_list.h"
#include "chartfiles/plain_session.h"
#include "core/files.h"
#include "staging/definitions.h"
#include "support.h"

namespace hyetex {
namespace {

using test::PlainSession;
using test::ReadFile;
using test::TempFolder;
using test::WriteFile;

ChartRecord SevenDays() {
  ChartRecord chart;
  chart.StartTime = MakeDate(1998, 3, 5, 12, 30);
  chart.EndTime = chart.StartTime + 7;
  chart.EyedDepth = 12;
  chart.ManualDepth = 11;
  return chart;
}

// A traced chart, and a program folder that keeps chart files in itself.
class Saving : public ::testing::Test {
 protected:
  Saving() {
    session_.Line.Add(0, 0);
    session_.Line.Add(7, 12.25);
  }

  Result<SaveOutcome> Save(bool overwrite = true, bool despiteNotes = true) {
    return SaveDigitization(session_, {"C", "A", "S", "RG12", "U"}, folder_.Path(), "checked",
                            {.Overwrite = Answer(overwrite), .DespiteNotes = Answer(despiteNotes)});
  }
  Confirm Answer(bool yes) {
    return [this, yes](const std::string& question) {
      asked_.push_back(question);
      return yes;
    };
  }

  TempFolder folder_;
  Session session_ = PlainSession(SevenDays());
  std::string path_ = folder_ / "RG12-19980305-1230.dat";
  std::vector<std::string> asked_;
};

TEST_F(Saving, WritesTheFileMarksTheSessionAndRaisesTheRow) {
  ASSERT_TRUE(SetDefinition(folder_.Path(), "frmTasks-Row", "4"));
  EXPECT_EQ(Save(), SaveOutcome::Written);
  EXPECT_TRUE(session_.Saved);
  EXPECT_EQ(GetDefinition(folder_.Path(), "frmTasks-Row"), "5");
  EXPECT_THAT(ReadFile(path_), testing::HasSubstr("\r\nDigitizer Comment: checked\r\n"));
  EXPECT_TRUE(asked_.empty());
}

TEST_F(Saving, LeavesRowsThatAreNoneAlone) {
  for (const char* none : {"0", "", "first"}) {
    ASSERT_TRUE(SetDefinition(folder_.Path(), "frmTasks-Row", none));
    EXPECT_EQ(Save(), SaveOutcome::Written);
    EXPECT_EQ(GetDefinition(folder_.Path(), "frmTasks-Row"), none);
  }
}

TEST_F(Saving, TakesTheTargetFolderAndFallsBackToTheProgramFolder) {
  const TempFolder target;
  ASSERT_TRUE(SetDefinition(folder_.Path(), "TargetFolder", target.Path()));
  EXPECT_EQ(Save(), SaveOutcome::Written);
  EXPECT_TRUE(FileExists(target / "RG12-19980305-1230.dat"));
  EXPECT_FALSE(FileExists(path_));

  ASSERT_TRUE(SetDefinition(folder_.Path(), "TargetFolder", target / "gone"));
  EXPECT_EQ(Save(), SaveOutcome::Written);
  EXPECT_TRUE(FileExists(path_));
}

TEST_F(Saving, KeepsTheOldFileWhenItMayNotBeOverwritten) {
  WriteFile(path_, "old");
  ASSERT_TRUE(SetDefinition(folder_.Path(), "frmTasks-Row", "4"));
  EXPECT_EQ(Save(false), SaveOutcome::KeptOldFile);
  EXPECT_EQ(ReadFile(path_), "old");
  EXPECT_FALSE(session_.Saved);
  EXPECT_EQ(GetDefinition(folder_.Path(), "frmTasks-Row"), "4");
  EXPECT_THAT(asked_, testing::ElementsAre("There is an existing file by the name of RG12-19980305-1230.dat. "
                                           "The programme will overwrite it."));
  EXPECT_EQ(Save(true), SaveOutcome::Written);
  EXPECT_THAT(ReadFile(path_), testing::StartsWith("HYETEX88 ASCII FILE\r\n"));
}

TEST_F(Saving, TellsWhatReadersWillNotSeeBeforeItWrites) {
  session_.Line.AddComment(1, "at 12:30");
  EXPECT_EQ(Save(true, false), SaveOutcome::NotWanted);
  EXPECT_FALSE(FileExists(path_));
  EXPECT_FALSE(session_.Saved);
  EXPECT_THAT(asked_, testing::ElementsAre(testing::HasSubstr("at 12:30")));
  EXPECT_EQ(Save(true, true), SaveOutcome::Written);
}

TEST_F(Saving, RefusesWhatIsNoChartAndWhatItCannotWrite) {
  ASSERT_TRUE(SetDefinition(folder_.Path(), "frmTasks-Row", "4"));
  std::filesystem::create_directory(path_);  // no file can take its place
  EXPECT_FALSE(Save());
  EXPECT_FALSE(session_.Saved);
  EXPECT_EQ(GetDefinition(folder_.Path(), "frmTasks-Row"), "4");
  std::filesystem::remove(path_);

  session_.Chart.GeneralComment = "two\nlines";
  EXPECT_FALSE(Save());
  session_.Chart.GeneralComment.clear();
  session_.Line.RemoveLast();
  EXPECT_FALSE(Save()) << "one point is no chart";
  EXPECT_FALSE(FileExists(path_));
}

TEST(Details, JoinDatesWithTimesAndReadDepthsLeniently) {
  ChartRecord chart = SevenDays();
  const EditedDetails shown = DetailsOf(chart);
  ChartRecord same;
  TakeDetails(shown, same);
  EXPECT_EQ(DateText(same.StartTime) + DateText(same.EndTime),
            DateText(chart.StartTime) + DateText(chart.EndTime));
  EXPECT_EQ(same.EyedDepth, chart.EyedDepth);

  // A picker for dates may carry a time along, and one for times a date.
  TakeDetails({.BeginDate = MakeDate(1998, 3, 6, 9),
               .BeginTime = MakeDate(2020, 1, 1, 18),
               .EndDate = MakeDate(1998, 3, 7),
               .EndTime = 0,
               .EyedDepth = "7.5 mm",
               .ManualDepth = "none"},
              chart);
  EXPECT_EQ(DateText(chart.StartTime), "06/03/98 18:00");
  EXPECT_EQ(DateText(chart.EndTime), "07/03/98");
  EXPECT_EQ(chart.EyedDepth, 7.5F);
  EXPECT_EQ(chart.ManualDepth, 0);
}

TEST(DepthChoices, GiveEachDepthAndLeaveTheOwnOneAlone) {
  Session session = PlainSession(SevenDays());
  session.Line.Add(0, 0);
  session.Line.Add(7, 12.25);
  EXPECT_EQ(ChosenDepth(session, DepthChoice::Eyed), 12);
  EXPECT_EQ(ChosenDepth(session, DepthChoice::Digitized), 12.2F);
  EXPECT_EQ(ChosenDepth(session, DepthChoice::Average), 12.1F);
  EXPECT_EQ(ChosenDepth(session, DepthChoice::Manual), 11);
  EXPECT_EQ(ChosenDepth(session, DepthChoice::Other), std::nullopt);
  session.Chart.EyedDepth = NoDepth;
  EXPECT_EQ(ChosenDepth(session, DepthChoice::Average), NoDepth);
}

TEST(Steps, AreCleanNumbersAndStopAtZero) {
  std::string text = "";
  for (int i = 0; i < 7; ++i) text = StepNumber(text, 0.1);
  EXPECT_EQ(text, "0.7");
  EXPECT_EQ(StepNumber("12.4 mm", -0.1), "12.3");
  EXPECT_EQ(StepNumber("0.05", -0.1), "0");
  EXPECT_EQ(StepNumber("-1", -0.1), "-1") << "an unknown depth stays unknown";
  EXPECT_EQ(StepNumber("-1", 0.1), "0");
  EXPECT_EQ(StepNumber("0", -0.01, std::nullopt), "-0.01");
}

TEST(Blinking, ShowsOnlyFactorsInAlertAndNeverTheManualOne) {
  const Rgb back{240, 240, 240}, text{0, 0, 0}, red{255, 0, 0};
  EXPECT_EQ(BlinkedColour(text, back, true), back);
  EXPECT_EQ(BlinkedColour(back, back, true), red);
  EXPECT_EQ(BlinkedColour(red, back, true), back);
  EXPECT_EQ(BlinkedColour(red, back, false), back);
  EXPECT_EQ(BlinkedColour(back, back, false), back);

  ChartRecord chart = SevenDays();
  ChartReport report;
  report.Factors = {-9, 90, 6, 0};
  EXPECT_TRUE(FactorBlinks(Factor::Digitized, report, chart)) << "a factor's sign does not matter";
  EXPECT_FALSE(FactorBlinks(Factor::Manual, report, chart));
  EXPECT_FALSE(FactorBlinks(Factor::Time, report, chart));
  chart.EyedDepth = 4.9F;
  EXPECT_FALSE(FactorBlinks(Factor::Digitized, report, chart));
}

TEST(Origins, NameWhatTheStationsListSaysAndRefuseWhatNamesNoFile) {
  ReferenceLists lists;
  lists.Cores = {"Core"};
  lists.Agencies = {{"Agency", 0}};
  lists.Stations = {{"Hill", "RG12", 0, 0}, {"Dale", "RG/3", 0, 0}, {"Moor", "", 0, 0}};
  ChartRecord chart;
  const auto origin = OriginOfChart(lists, chart, "Ann");
  ASSERT_TRUE(origin);
  EXPECT_EQ(origin->Core + "," + origin->Agency + "," + origin->Station + "," + origin->InstrumentCode + "," +
                origin->User,
            "Core,Agency,Hill,RG12,Ann");
  for (const int station : {1, 2, -1}) {
    chart.InstrumentIndex = static_cast<std::int16_t>(station);
    EXPECT_FALSE(OriginOfChart(lists, chart, "Ann")) << station;
  }
}

TEST(CommentList, ShowsUserCodesThenTheProgramsOwn) {
  const std::vector<CommentRecord> user{{}, {"Ink ran dry", 301}, {"Half code", 30.5F}};
  EXPECT_EQ(CommentListText(user),
            "CODE301 - Ink ran dry\r\n"
            "CODE30.5 - Half code\r\n"
            "\r\n"
            "Programmer's Comments Codes\r\n"
            "CODE201 - Beginning of new segment\r\n"
            "CODE202 - Alpha Location\r\n"
            "CODE203 - Leveled point\r\n"
            "CODE204 - Beginning of another sheet\r\n"
            "CODE206 - End of recovered data\r\n"
            "CODE205 - End of data gap\r\n"
            "CODE210 - Digitized depth factor alert\r\n"
            "CODE211 - Manual depth factor alert\r\n"
            "CODE212 - Time factor alert\r\n"
            "CODE213 - Extremely defective chart\r\n");
}

}  // namespace
}  // namespace hyetex
