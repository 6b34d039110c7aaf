#include "chartfiles/chart_reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "chartfiles/chart_text.h"
#include "core/dates.h"
#include "plain_session.h"
#include "support.h"

namespace hyetex::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

ChartReading Read(std::string_view text, std::string_view name = "", const ReadingOptions& options = {}) {
  ChartReading reading;
  ReadChartText(text, name, options, reading);
  return reading;
}

// A chart file with something of everything.
std::string SampleText() {
  ChartRecord chart;
  chart.StartTime = MakeDate(1998, 5, 1, 8);
  chart.EndTime = MakeDate(1998, 5, 11, 6, 30);
  chart.EyedDepth = 12.4F;
  chart.ManualDepth = NoDepth;
  chart.Reliability = 1;
  chart.GeneralComment = "CODE301 + Hail, later snow";
  Session session = PlainSession(chart);
  session.Line.Add(0.5, 1);
  session.Line.Add(3.25, 60);
  session.Line.Add(3.5, 2, false, "CODE202");
  session.Line.Add(6, 30, true);
  session.Line.Add(9, 31.5, false, "Ink, thin");
  return MakeChartText(session, {"Core", "Agency", "Hill", "RG1", "Ada"}, "Traced, twice")->Text;
}

void ExpectSample(const ChartReading& reading) {
  const ChartRecord& chart = reading.Chart;
  EXPECT_EQ(chart.InstrumentCode, "RG1");
  EXPECT_EQ(chart.InstrumentIndex, 1);
  EXPECT_EQ(chart.StartTime, MakeDate(1998, 5, 1, 8));
  EXPECT_EQ(chart.EndTime, MakeDate(1998, 5, 11, 6, 30));
  // The time is 3 days to the alpha point and 3 from the segment's start; the alpha is 0.25 / 58.
  EXPECT_THAT((std::array{chart.DigitizedTime, chart.EyedDepth, chart.DigitizedDepth, chart.SelectedDepth,
                          chart.ManualDepth, chart.AlphaValues[1], chart.SelectedAlpha}),
              ElementsAre(144.0F, 12.4F, 60.5F, 60.5F, NoDepth, 0.004310F, NoAlpha));
  EXPECT_THAT((std::array{chart.AlphaCount, chart.Reliability, chart.RawCount, chart.SeriesCount}),
              ElementsAre(1, 1, 5, 3));
  EXPECT_EQ(chart.GeneralComment, "CODE301 + Hail, later snow");
  EXPECT_EQ(chart.DigitizerComment, "Traced, twice");
  ASSERT_EQ(reading.RawPoints.size(), 6U);
  EXPECT_EQ(reading.RawPoints[0].X, 0);
  EXPECT_EQ(reading.RawPoints[2].X, 3.25);
  EXPECT_EQ(reading.RawPoints[2].Y, 60);
  EXPECT_EQ(reading.RawPoints[4].Comment, "CODE201");
  EXPECT_EQ(reading.RawPoints[5].Comment, "Ink, thin");
  EXPECT_THAT(reading.Notes, IsEmpty());
}

TEST(ChartReader, ReadsBackWhatWasWrittenWhateverItsLineEnds) {
  const std::vector<StationRecord> stations{{"Dale", "RG2"}, {"Hill", "rg1"}};
  const std::string text = SampleText();
  std::string bare = text;
  std::erase(bare, '\r');
  for (const std::string& form :
       {text, text.substr(0, text.size() - 2), bare, bare.substr(0, bare.size() - 1)})
    ExpectSample(Read(form, "", {.Stations = stations}));
  ChartReading stored;
  ReadStoredChart("RG1-19980501-0800.dat\n" + bare, {.Stations = stations}, stored);
  ExpectSample(stored);
  EXPECT_EQ(stored.Chart.FileName, "RG1-19980501-0800.dat");
}

TEST(ChartReader, WordsTellTheLinesOfOtherVersions) {
  const auto chart = [](const char* line) { return Read(line).Chart; };
  EXPECT_EQ(chart("The END's start: 02/01/98").StartTime, MakeDate(1998, 1, 2)) << "the first test decides";
  EXPECT_EQ(chart("ENDED: 02/01/98 08:00").EndTime, MakeDate(1998, 1, 2, 8));
  EXPECT_EQ(chart("Instrument: RG7").InstrumentCode, "RG7");
  EXPECT_EQ(chart("A general comment: by instrument 7").InstrumentCode, "by instrument 7");
  EXPECT_EQ(chart("the general comment: wet").GeneralComment, "wet");
  EXPECT_EQ(chart("Alpha value 1: 0.25").AlphaValues[1], 0.25F);
  EXPECT_EQ(chart("alpha 12:  0.25").AlphaValues[1], 0.25F);
  EXPECT_EQ(chart("alpha value selected: 0.25 (none better)").SelectedAlpha, NoAlpha);
  EXPECT_EQ(chart("Alpha Value Selected: 0.25").SelectedAlpha, 0.25F);
  EXPECT_EQ(chart("Chart Method: 1 - Non-Linear").ChartMethod, 1);
  EXPECT_EQ(chart("Chart Reliability: 3 - Unreliable").Reliability, 3);
  EXPECT_EQ(chart("Chart Reliability: 3-Unreliable").Reliability, 3);
  EXPECT_EQ(chart("Eyed Depth: 1e999").EyedDepth, 0);
  EXPECT_EQ(chart("Manual Depth:7.5").ManualDepth, 0.5F);
  EXPECT_EQ(chart("Number of Points: 7,").RawCount, 0);
  EXPECT_EQ(Read("1.5,2.5").RawPoints.at(1).Y, 2.5);
  const RawPoint point = Read("-1.5,x,a,b").RawPoints.at(1);
  EXPECT_EQ(point.X, -1.5);
  EXPECT_EQ(point.Y, 0);
  EXPECT_EQ(point.Comment, "a,b");
}

TEST(ChartReader, HalfAPointIsLeftOutAndSaysNothingOfTheChart) {
  const ChartReading reading = Read("1,2,\n3,x,END: 02/01/98\n5,Instrument: RG7\n 7, 8,a:b\n9,\n");
  EXPECT_EQ(reading.Chart.RawCount, 3);
  EXPECT_EQ(reading.RawPoints[2].Comment, "a:b");
  EXPECT_TRUE(reading.Chart.EndTime == 0 && reading.Chart.InstrumentCode.empty());
  EXPECT_THAT(reading.Notes, ElementsAre(HasSubstr("line 2:"), HasSubstr("line 3:")));
  EXPECT_THAT(Read("Start: soon").Notes, ElementsAre(HasSubstr("is no date")));
}

TEST(ChartReader, NameGivesTheCentury) {
  struct {
    const char *Name, *Start, *End;
    int StartYear, EndYear;
  } const cases[] = {{"RG1-19250102-0800.dat", "02/01/25 08:00", "03/01/25", 1925, 1925},
                     {"/a/RG1-18991231-1800.DAT", "31/12/99 18:00", "01/01/00 18:00", 1899, 1900},
                     {"RG1-19291231-0000.dat", "31/12/29", "01/01/30", 1929, 1930},
                     {"RG1-19991231-0000.dat", "31/12/99", "01/01/00", 1999, 2000},
                     {"", "02/01/25 08:00", "03/01/25", 2025, 2025},
                     {"RG1-19250103-0800.dat", "02/01/25 08:00", "03/01/25", 2025, 2025},  // of another chart
                     {"RG1-19250202-0800.dat", "02/01/25 08:00", "03/01/25", 2025, 2025},
                     {"RG1-19250102-0800.dat", "02/01/2025 08:00", "03/01/25", 2025, 2025},
                     {"RG1-19250102-0800.dat", "02/01/25 08:00", "03/01/2026", 1925, 2026}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.Name) + " " + c.Start);
    const std::string text = std::string("Start: ") + c.Start + "\nEnd: " + c.End + "\n";
    ChartReading stored;
    ReadStoredChart(std::string(c.Name) + "\n" + text, {}, stored);
    for (const ChartReading& reading : {Read(text, c.Name), stored}) {
      EXPECT_EQ(ToCalendar(reading.Chart.StartTime).Year, c.StartYear);
      EXPECT_EQ(ToCalendar(reading.Chart.EndTime).Year, c.EndYear);
    }
  }
}

TEST(ChartReader, TakesDamagedFilesAsFarAsTheyGo) {
  const auto expectSound = [](const ChartReading& reading) {
    EXPECT_EQ(static_cast<int>(reading.RawPoints.size()), reading.Chart.RawCount + 1);
    EXPECT_EQ(static_cast<int>(reading.SeriesPoints.size()), reading.Chart.SeriesCount + 1);
    for (const SeriesPoint& point : reading.SeriesPoints)
      ASSERT_TRUE(std::isfinite(point.Time) && std::isfinite(point.Depth));
  };
  const std::string text = SampleText();
  for (std::size_t length = 0; length < text.size(); ++length) {
    const ChartReading reading = Read(std::string_view(text).substr(0, length));
    expectSound(reading);
    ASSERT_LE(reading.Chart.RawCount, 5);
  }
  std::mt19937 random(7);
  for (int i = 0; i < 300; ++i) {
    std::string bytes = text;
    const int changes = i < 200 ? 5 : static_cast<int>(bytes.size());  // a few bytes, or all
    for (int k = 0; k < changes; ++k) bytes[random() % bytes.size()] = static_cast<char>(random());
    expectSound(Read(bytes));
  }
}

TEST(ChartReader, LeavesNothingOfTheChartBefore) {
  ChartReading reading = Read(SampleText() + "1,a:b\n");
  ReadStoredChart("", {}, reading);
  EXPECT_EQ(reading.Chart.RawCount, 5) << "no text is no chart";
  ReadChartText("", "", {}, reading);
  EXPECT_EQ(reading.Chart.InstrumentCode, "");
  EXPECT_EQ(reading.Chart.RawCount, 0);
  EXPECT_EQ(reading.Chart.SeriesCount, 0);
  EXPECT_EQ(reading.Chart.AlphaCount, 0);
  EXPECT_THAT(reading.Notes, IsEmpty());
}

TEST(ChartReader, FindsBareNamesInTheDataFolderAndRefusesInOneLine) {
  const TempFolder folder;
  std::filesystem::create_directory(folder / "Data");
  WriteFile(folder / "Data/a.dat", "Eyed Depth: 3\n");
  std::filesystem::resize_file((WriteFile(folder / "huge.dat", ""), folder / "huge.dat"), 100U << 20);
  ChartReading reading;
  ASSERT_TRUE(ReadChartFile("a.dat", folder.Path(), {}, reading));
  EXPECT_EQ(reading.Chart.EyedDepth, 3);
  EXPECT_EQ(reading.Chart.FileName, "a.dat");
  for (const std::string& path : {folder / "a.dat", folder / "huge.dat", folder / "Data", std::string()}) {
    const auto refused = ReadChartFile(path, folder.Path(), {}, reading);
    ASSERT_FALSE(refused) << path;
    EXPECT_THAT(refused.error(), HasSubstr(path));
    EXPECT_EQ(refused.error().find('\n'), std::string::npos);
  }
}

}  // namespace
}  // namespace hyetex::test
