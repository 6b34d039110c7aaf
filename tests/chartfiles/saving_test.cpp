#include "chartfiles/saving.h"

#include "chartfiles/comment_list.h"
#include "chartfiles/traced_week.h"
#include "core/definitions.h"
#include "core/files.h"
#include "support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

// The program folder keeps chart files in itself.
class Saving : public ::testing::Test {
 protected:
  Result<SaveOutcome> Save(bool overwrite = true, bool despiteNotes = true) {
    return SaveDigitization(session_, WeekOrigin, settings_, "checked",
                            {.Overwrite = Answer(overwrite), .DespiteNotes = Answer(despiteNotes)});
  }
  Confirm Answer(bool yes) {
    return [this, yes](const std::string& question) {
      asked_.push_back(question);
      return yes;
    };
  }
  void SetRow(const char* row) { ASSERT_TRUE(SetDefinition(folder_.Path(), setting::TaskRow.Name, row)); }
  std::string Row() { return GetDefinition(folder_.Path(), setting::TaskRow.Name); }

  TempFolder folder_;
  Settings settings_{folder_.Path()};
  Session session_ = TracedWeek();
  std::string path_ = folder_ / WeekFile;
  std::vector<std::string> asked_;
};

TEST_F(Saving, RaisesTheRowAndLeavesRowsThatAreNoneAlone) {
  for (const auto& [row, raised] : {std::pair("4", "5"), {"0", "0"}, {"", ""}, {"first", "first"}}) {
    SetRow(row);
    session_.Saved = false;
    EXPECT_EQ(Save(), SaveOutcome::Written);
    EXPECT_TRUE(session_.Saved);
    EXPECT_EQ(Row(), raised);
  }
}

TEST_F(Saving, TakesTheTargetFolderAndFallsBackToTheProgramFolder) {
  const TempFolder target;
  for (const auto& [folder, file] : {std::pair(target.Path(), target / WeekFile), {target / "gone", path_}}) {
    ASSERT_TRUE(settings_.Set(setting::TargetFolder, folder));
    EXPECT_FALSE(FileExists(file));
    EXPECT_EQ(Save(), SaveOutcome::Written);
    EXPECT_TRUE(FileExists(file));
  }
}

TEST_F(Saving, OffersAnotherFolderUntilOneTakesTheFile) {
  const TempFolder other;
  std::vector<std::optional<std::string>> folders;
  const auto save = [&] {
    return SaveDigitization(
        session_, WeekOrigin, settings_, "",
        {.Overwrite = Answer(true), .DespiteNotes = Answer(true), .OtherFolder = [&](const std::string& why) {
           asked_.push_back(why);
           const auto next = folders.front();
           folders.erase(folders.begin());
           return next;
         }});
  };
  const std::string gone = folder_ / "gone";
  ASSERT_TRUE(settings_.Set(setting::TargetFolder, gone));
  folders = {std::nullopt};
  EXPECT_EQ(save(), SaveOutcome::NotWanted);
  EXPECT_FALSE(FileExists(path_)) << "nor where nobody looks for it";
  EXPECT_FALSE(session_.Saved);
  folders = {folder_ / "nor here", other.Path()};
  EXPECT_EQ(save(), SaveOutcome::Written);
  EXPECT_TRUE(FileExists(other / WeekFile));
  EXPECT_THAT(asked_, testing::ElementsAre("There is no folder " + gone, "There is no folder " + gone,
                                           testing::HasSubstr("nor here")));
  EXPECT_EQ(settings_.Get(setting::TargetFolder), gone) << "it may be back for the next chart";
}

TEST_F(Saving, KeepsTheOldFileWhenItMayNotBeOverwritten) {
  WriteFile(path_, "old");
  SetRow("4");
  EXPECT_EQ(Save(false), SaveOutcome::KeptOldFile);
  EXPECT_EQ(ReadFile(path_), "old");
  EXPECT_FALSE(session_.Saved);
  EXPECT_EQ(Row(), "4");
  EXPECT_EQ(Save(true), SaveOutcome::Written);
  EXPECT_THAT(ReadFile(path_), testing::StartsWith("HYETEX88 ASCII FILE\r\n"));
}

TEST_F(Saving, RefusesWhatIsNoChartAndWhatItCannotWrite) {
  SetRow("4");
  std::filesystem::create_directory(path_);  // no file can take its place
  EXPECT_FALSE(Save());
  EXPECT_FALSE(session_.Saved);
  EXPECT_EQ(Row(), "4");
  std::filesystem::remove(path_);

  session_.Chart.GeneralComment.assign(MostChartBytes, 'x');
  EXPECT_FALSE(Save());
  session_.Chart.GeneralComment.clear();
  const Date end = std::exchange(session_.Chart.EndTime, session_.Chart.StartTime);
  EXPECT_EQ(Save().error(), "The beginning time and date must be less than the ending time and date");
  session_.Chart.EndTime = end;
  session_.Line.RemoveLast();
  EXPECT_FALSE(Save()) << "one point is no chart";
  EXPECT_FALSE(FileExists(path_));
}

TEST(Details, JoinDatesWithTimesAndReadDepthsLeniently) {
  ChartRecord chart = WeekChart();
  // A picker for dates may carry a time along, and one for times a date.
  EditedDetails edited{.BeginDate = MakeDate(1998, 3, 6, 9),
                       .BeginTime = MakeDate(2020, 1, 1, 18),
                       .EndDate = MakeDate(1998, 3, 7),
                       .EndTime = 0,
                       .EyedDepth = "7.5 mm",
                       .ManualDepth = "none"};
  EXPECT_FALSE(TakeDetails(edited, chart));
  EXPECT_EQ(DateText(chart.StartTime), "06/03/98 18:00");
  EXPECT_EQ(DateText(chart.EndTime), "07/03/98");
  EXPECT_EQ(chart.EyedDepth, 7.5F);
  EXPECT_EQ(chart.ManualDepth, 0);

  edited.EyedDepth = "8";
  edited.EndDate = edited.BeginDate;
  edited.EndTime = edited.BeginTime;
  EXPECT_EQ(TakeDetails(edited, chart),
            "The beginning time and date must be less than the ending time and date");
  EXPECT_EQ(DateText(chart.EndTime) + " " + ShortText(chart.EyedDepth), "07/03/98 7.5") << "none is taken";
}

TEST(DepthChoices, AreRoundedAndTheAverageOfAnUnknownDepthIsUnknown) {
  Session session = TracedWeek();
  session.Line.Add(7, 12.25);
  EXPECT_EQ(ChosenDepth(session, DepthChoice::Digitized), 12.2F);
  session.Chart.EyedDepth = NoDepth;
  EXPECT_EQ(ChosenDepth(session, DepthChoice::Average), NoDepth);
}

TEST(Steps, AreCleanNumbersAndStopAtZero) {
  std::string text = "";
  for (int i = 0; i < 7; ++i) text = StepNumber(text, 0.1);
  EXPECT_EQ(text, "0.7");
  EXPECT_EQ(StepNumber("0.05", -0.1), "0");
  EXPECT_EQ(StepNumber("-1", -0.1), "-1") << "an unknown depth stays unknown";
  EXPECT_EQ(StepNumber("-1", 0.1), "0");
  EXPECT_EQ(StepNumber("0", -0.01, std::nullopt), "-0.01");
}

TEST(Blinking, GoesByASizeableFactorOfADepthThatMatters) {
  ChartRecord chart = WeekChart();
  ChartReport report;
  report.Factors = {-9, 90, 6, 0};
  EXPECT_TRUE(FactorBlinks(Factor::Digitized, report, chart)) << "a factor's sign does not matter";
  EXPECT_FALSE(FactorBlinks(Factor::Manual, report, chart)) << "the manual one never does";
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
